/*
 * Safe browsing: a filter in the daemon that looks hosts up at a service and blocks or redirects them.
 * Configuration, token and extra information are texts of that service, which the library passes on unread.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_SAFEBROWSING_H
#define KELVARISSDK_SAFEBROWSING_H

#include <kelvarissdk/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What the service writes into its log. The numbers are not in the order of severity. */
enum KELVARISSDK_TAG(KelvarisSDK_SafeBrowsingLogLevel) KELVARISSDK_UINT32 {
    KelvarisSDK_SafeBrowsingLogLevel_DEBUG = 0,
    KelvarisSDK_SafeBrowsingLogLevel_INFO = 1,
    KelvarisSDK_SafeBrowsingLogLevel_ERROR = 2,
    KelvarisSDK_SafeBrowsingLogLevel_TRACE = 3,
    KelvarisSDK_SafeBrowsingLogLevel_WARNING = 4
};
KELVARISSDK_ENUM(KelvarisSDK_SafeBrowsingLogLevel)

/** "debug", "info", "error", "trace" or "warning"; "debug" for any other number. A constant; never freed. */
KELVARISSDK_API char const*
KelvarisSDK_SafeBrowsing_LogLevel_toString(KelvarisSDK_SafeBrowsingLogLevel level);

/** The override of the service's own decision whether the network is safe. */
enum KELVARISSDK_TAG(KelvarisSDK_SafeBrowsingSafeNetworkOverride) KELVARISSDK_UINT32 {
    KelvarisSDK_SafeBrowsingSafeNetworkOverride_NONE = 0,
    KelvarisSDK_SafeBrowsingSafeNetworkOverride_UNSAFE = 1,
    KelvarisSDK_SafeBrowsingSafeNetworkOverride_SAFE = 2
};
KELVARISSDK_ENUM(KelvarisSDK_SafeBrowsingSafeNetworkOverride)

/** "none", "unsafe" or "safe"; "none" for any other number. A constant; never freed. */
KELVARISSDK_API char const*
KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString(KelvarisSDK_SafeBrowsingSafeNetworkOverride value);

/**
 * The filter's state, from report_safe_browsing_settings; or, from report_safe_browsing_connect_error, why
 * the service couldn't be reached. A connect error is a result: `error` in the head stays false.
 */
typedef struct KelvarisSDK_SafeBrowsingResult {
    KelvarisSDK_BaseResult base;
    bool connectErrorSet;                      /* a connect error came, and the next two fields hold it */
    int32_t connectErrorCode;                  /* the service's own number */
    char connectErrorMessage[200];             /* text; no terminator when full */
    bool initialized;                          /* the service is initialized */
    bool configSet;                            /* it has a configuration */
    bool enabled;                              /* it is enabled */
    KelvarisSDK_SafeBrowsingLogLevel logLevel; /* 0 until a known text came */
    KelvarisSDK_SafeBrowsingSafeNetworkOverride networkOverride; /* 0 until a known text came */
} KelvarisSDK_SafeBrowsingResult;

typedef bool (*KelvarisSDK_SafeBrowsingCallback)(KelvarisSDK_SafeBrowsingResult result, void* userData);

/** A failed look-up, from report_safe_browsing_lookup_error. */
typedef struct KelvarisSDK_SafeBrowsingErrorResult {
    KelvarisSDK_BaseResult base;
    bool connectErrorSet; /* always false */
    int32_t error;        /* the service's own number */
    char message[200];    /* text; no terminator when full */
    char host[253];       /* text; no terminator when full */
} KelvarisSDK_SafeBrowsingErrorResult;

typedef bool (*KelvarisSDK_SafeBrowsingErrorCallback)(KelvarisSDK_SafeBrowsingErrorResult result,
                                                      void* userData);

/** A blocked host, from report_safe_browsing_block. */
typedef struct KelvarisSDK_SafeBrowsingBlockResult {
    KelvarisSDK_BaseResult base;
    bool redirected; /* the host was redirected */
    char host[253];  /* text; no terminator when full */
} KelvarisSDK_SafeBrowsingBlockResult;

typedef bool (*KelvarisSDK_SafeBrowsingBlockCallback)(KelvarisSDK_SafeBrowsingBlockResult result,
                                                      void* userData);

/** The filter's counters, from report_safe_browsing_stats. */
typedef struct KelvarisSDK_SafeBrowsingStatsResult {
    KelvarisSDK_BaseResult base;
    uint32_t min; /* as reported, as are the next two */
    uint32_t max;
    uint32_t average;
    uint32_t num_errors; /* a count, as is each field whose name begins so */
    uint32_t num_blocks;
    double failure_rate; /* as reported */
    uint32_t num_block_responses;
    uint64_t num_lookups;
    uint64_t num_packets_filtered;
} KelvarisSDK_SafeBrowsingStatsResult;

typedef bool (*KelvarisSDK_SafeBrowsingStatsCallback)(KelvarisSDK_SafeBrowsingStatsResult result,
                                                      void* userData);

/**
 * Enables the filter, then initializes it with the configuration. Returns the record of the second step and
 * drops that of the first; a callback runs for both. Only the second step can be unregistered, so the user
 * data must live until both have called back or the handle is destroyed. When the call returns with `error`
 * true because memory ran out between the steps, the callback never runs, though the first request may have
 * been sent. A synchronous call can last two time-outs, 10 s. As in KelvarisSDK_InitSafeBrowsing, a connect error is a result.
 */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_StartSafeBrowsing(
    KelvarisSDK_Handle* sdk, char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** Disables the filter, then initializes it with an empty configuration. Otherwise like the start. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_StopSafeBrowsing(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** Hands the service its configuration. A connect error is a result. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_InitSafeBrowsing(
    KelvarisSDK_Handle* sdk, char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** Changes the configuration. The lock that concerns this call is the initialization's. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingConfig(
    KelvarisSDK_Handle* sdk, char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** Turns the filter on or off. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingEnabled(
    KelvarisSDK_Handle* sdk, bool enable, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** Sets what the service logs; no lock concerns it. A number without a level is sent as debug. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult
KelvarisSDK_SetSafeBrowsingLogLevel(KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingLogLevel level,
                                    KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** Sets the override; no lock concerns it. An unknown number is sent as none. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingSafeNetworkOverride(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingSafeNetworkOverride value,
    KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/**
 * Hands the service a new token. Ends with the first settings that are initialized, or with a connect error,
 * which is a result.
 */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_RefreshSafeBrowsingToken(
    KelvarisSDK_Handle* sdk, char const* token, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/**
 * Reports this network to the service as the home network. The three numbers go to the daemon as they are,
 * which defines their units. Ends like KelvarisSDK_RefreshSafeBrowsingToken, and the lock that concerns it is
 * that call's too.
 */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_ReportSafeBrowsingHomeNetworkWithParameters(
    KelvarisSDK_Handle* sdk, unsigned int retries, unsigned long long delay, unsigned long long timeout,
    KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** Hands the service extra information. Ends like KelvarisSDK_RefreshSafeBrowsingToken. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_UpdateSafeBrowsingExtraInfo(
    KelvarisSDK_Handle* sdk, char const* info, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/** The filter's state. Subscription: every later report of it. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingResult KelvarisSDK_GetSafeBrowsing(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingCallback callback, void* userData);

/**
 * Each look-up that fails from now on. Subscription without a request and without a time-out. There is no
 * synchronous form: a null callback is refused with CALLBACK_REQUIRED (3843).
 */
KELVARISSDK_API KelvarisSDK_SafeBrowsingErrorResult KelvarisSDK_ListenForSafeBrowsingError(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingErrorCallback callback, void* userData);

/** Each host that is blocked from now on. Otherwise like KelvarisSDK_ListenForSafeBrowsingError. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingBlockResult KelvarisSDK_ListenForSafeBrowsingBlock(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingBlockCallback callback, void* userData);

/** The filter's counters. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_SafeBrowsingStatsResult KelvarisSDK_GetSafeBrowsingStats(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingStatsCallback callback, void* userData);

#ifdef __cplusplus
}
#endif

#endif
