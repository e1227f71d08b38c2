/*
 * The network adapters that the daemon bonds: what they are, when they are used, how much they may carry.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_ADAPTERS_H
#define KELVARISSDK_ADAPTERS_H

#include <kelvarissdk/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** State of the connection over an adapter. */
enum KELVARISSDK_TAG(KelvarisSDK_ConnectionState) KELVARISSDK_UINT32 {
    KelvarisSDK_ConnectionState_DISCONNECTED = 0,
    KelvarisSDK_ConnectionState_CONNECTING = 1,
    KelvarisSDK_ConnectionState_CONNECTED = 2
};
KELVARISSDK_ENUM(KelvarisSDK_ConnectionState)

/** "disconnected", "connecting" or "connected"; "disconnected" for any other number. A constant; never
 * freed. */
KELVARISSDK_API char const* KelvarisSDK_ConnectionState_toString(KelvarisSDK_ConnectionState state);

/** The kind of network that an adapter is in. */
enum KELVARISSDK_TAG(KelvarisSDK_NetworkType) KELVARISSDK_UINT32 {
    KelvarisSDK_NetworkType_WIFI = 0,
    KelvarisSDK_NetworkType_ETHERNET = 1,
    KelvarisSDK_NetworkType_CELLULAR = 2,
    KelvarisSDK_NetworkType_VPN = 3,
    KelvarisSDK_NetworkType_LOOPBACK = 4,
    KelvarisSDK_NetworkType_BLUETOOTH = 5,
    KelvarisSDK_NetworkType_UNKNOWN = 6 /* what any other name of the daemon is read as */
};
KELVARISSDK_ENUM(KelvarisSDK_NetworkType)

/** "Wi-Fi", "Ethernet" and so on, "Unknown" for 6; "Wi-Fi" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_NetworkType_toString(KelvarisSDK_NetworkType type);

/** When an adapter is used. */
enum KELVARISSDK_TAG(KelvarisSDK_ConnectionPriority) KELVARISSDK_UINT32 {
    KelvarisSDK_ConnectionPriority_ALWAYS = 0,
    KelvarisSDK_ConnectionPriority_SECONDARY = 1,
    KelvarisSDK_ConnectionPriority_BACKUP = 2,
    KelvarisSDK_ConnectionPriority_NEVER = 3
};
KELVARISSDK_ENUM(KelvarisSDK_ConnectionPriority)

/** "always", "secondary", "backup" or "never"; "always" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_ConnectionPriority_toString(KelvarisSDK_ConnectionPriority priority);

/** What an adapter has carried and may carry. */
typedef struct KelvarisSDK_AdapterUsageData {
    int64_t usage;         /* bytes in the month */
    int64_t usageDaily;    /* bytes in the day */
    int64_t max;           /* bytes per month, -1: none reported */
    int64_t resetDay;      /* day of the month on which the monthly usage begins anew, 0: last 30 days */
    int64_t maxDaily;      /* bytes per day, -1: none reported */
    int64_t boostDaily;    /* bytes added to the daily limit */
    int64_t overlimitRate; /* bits per second once over a limit, -1: none reported */
} KelvarisSDK_AdapterUsageData;

/** One network adapter with its limits and its usage. */
typedef struct KelvarisSDK_AdapterData {
    char adapterID[100];   /* names the adapter in calls; no terminator when full */
    char name[100];        /* text; no terminator when full */
    char description[100]; /* text; no terminator when full */
    KelvarisSDK_ConnectionState state;
    KelvarisSDK_NetworkType type; /* UNKNOWN: none reported, or an unknown one */
    KelvarisSDK_ConnectionPriority priority;
    char ssid[100];    /* the wireless network's name; no terminator when full */
    char bssid[100];   /* the wireless network's hardware address; no terminator when full */
    int64_t rateLimit; /* bits per second, at most 2147483647; -1: none reported */
    KelvarisSDK_AdapterUsageData dataUsage;
} KelvarisSDK_AdapterData;

/**
 * The adapters, from report_networks. A report in which any `rateLimit` is 2147483648 bit/s (2^31) or more
 * can't be read: every call that waits for it ends with SDK (3840), until the daemon reports a lower limit.
 */
typedef struct KelvarisSDK_AdaptersResult {
    KelvarisSDK_BaseResult base;
    uint32_t adapterCount; /* elements of `adapters` in use */
    KelvarisSDK_AdapterData adapters[25];
} KelvarisSDK_AdaptersResult;

typedef bool (*KelvarisSDK_AdaptersCallback)(KelvarisSDK_AdaptersResult result, void* userData);

/*
 * All calls bring the whole list. Whether an id is known is the daemon's to judge, and so is what it makes of
 * numbers below zero.
 */

/** The adapters. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_GetAdapters(KelvarisSDK_Handle* sdk,
                                                                   KelvarisSDK_AdaptersCallback callback,
                                                                   void* userData);

/** Sets when one adapter is used. INVALID_ARGUMENT (3842) when the priority is above NEVER. */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_SetConnectionPriorities(
    KelvarisSDK_Handle* sdk, char const* adapterID, KelvarisSDK_ConnectionPriority priority,
    KelvarisSDK_AdaptersCallback callback, void* userData);

/**
 * Limits an adapter's rate; 0 lifts the limit. Keep it below 2147483648 (2^31): a larger limit is sent, but a
 * report of it can't be read, see KelvarisSDK_AdaptersResult.
 */
KELVARISSDK_API KelvarisSDK_AdaptersResult
KelvarisSDK_SetConnectionRateLimit(KelvarisSDK_Handle* sdk, char const* adapterID, long long bitsPerSecond,
                                   KelvarisSDK_AdaptersCallback callback, void* userData);

/** Lifts the limit of an adapter's rate. */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_ResetConnectionRateLimit(
    KelvarisSDK_Handle* sdk, char const* adapterID, KelvarisSDK_AdaptersCallback callback, void* userData);

/**
 * Limits what an adapter carries in a month; 0 bytes lift the limit. The month begins on `resetDay`; with 0
 * it is the last 30 days.
 */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterMonthlyDataLimit(
    KelvarisSDK_Handle* sdk, char const* adapterID, long long bytes, long long resetDay,
    KelvarisSDK_AdaptersCallback callback, void* userData);

/** Lifts the monthly limit. */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterMonthlyDataLimit(
    KelvarisSDK_Handle* sdk, char const* adapterID, KelvarisSDK_AdaptersCallback callback, void* userData);

/** Limits what an adapter carries in a day; 0 bytes lift the limit. */
KELVARISSDK_API KelvarisSDK_AdaptersResult
KelvarisSDK_SetAdapterDailyDataLimit(KelvarisSDK_Handle* sdk, char const* adapterID, long long bytes,
                                     KelvarisSDK_AdaptersCallback callback, void* userData);

/** Lifts the daily limit. */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterDailyDataLimit(
    KelvarisSDK_Handle* sdk, char const* adapterID, KelvarisSDK_AdaptersCallback callback, void* userData);

/** Adds this many bytes to the daily limit, once. No lock concerns it. */
KELVARISSDK_API KelvarisSDK_AdaptersResult
KelvarisSDK_AddAdapterDailyDataLimitBoost(KelvarisSDK_Handle* sdk, char const* adapterID, long long bytes,
                                          KelvarisSDK_AdaptersCallback callback, void* userData);

/** Limits the rate of an adapter that is over one of its data limits; with 0 it isn't used then. */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterOverlimitRateLimit(
    KelvarisSDK_Handle* sdk, char const* adapterID, long long bitsPerSecond,
    KelvarisSDK_AdaptersCallback callback, void* userData);

/** Sets an adapter's usage back to 0. No lock concerns it. */
KELVARISSDK_API KelvarisSDK_AdaptersResult KelvarisSDK_ResetAdapterUsage(
    KelvarisSDK_Handle* sdk, char const* adapterID, KelvarisSDK_AdaptersCallback callback, void* userData);

#ifdef __cplusplus
}
#endif

#endif
