/*
 * Account and session: logging in, connecting, the servers, how a server is chosen, the directory service.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_SESSION_H
#define KELVARISSDK_SESSION_H

#include <time.h>

#include <kelvarissdk/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Account ---- */

/** How often the account is paid for. */
enum KELVARISSDK_TAG(KelvarisSDK_AccountPaymentType) KELVARISSDK_UINT32 {
    KelvarisSDK_AccountPaymentType_FREE = 0,
    KelvarisSDK_AccountPaymentType_MONTHLY = 1,
    KelvarisSDK_AccountPaymentType_YEARLY = 2
};
KELVARISSDK_ENUM(KelvarisSDK_AccountPaymentType)

/** "free", "monthly" or "yearly"; "Unknown payment type" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_AccountPaymentType_toString(KelvarisSDK_AccountPaymentType type);

/** The account and what it has used in its data period, from report_accounting_data. */
typedef struct KelvarisSDK_AccountingResult {
    KelvarisSDK_BaseResult base;
    char email[250];                            /* text; no terminator when full */
    bool isAutoAccount;                         /* the account was made for a device */
    int64_t bytesAvail;                         /* bytes that the account may use in the period */
    int64_t bytesUsed;                          /* bytes used in the period */
    bool isTeam;                                /* a team's account */
    int32_t minutesAvail;                       /* minutes that the account may use in the period */
    int32_t minutesUsed;                        /* minutes used in the period */
    KelvarisSDK_AccountPaymentType paymentType; /* FREE where the daemon's tier isn't known */
    struct tm periodEndDate; /* year, month and day of the end; all zero where the report has no date */
} KelvarisSDK_AccountingResult;

typedef bool (*KelvarisSDK_AccountingCallback)(KelvarisSDK_AccountingResult result, void* userData);

/**
 * Logs in with a user name and a password, both sent as they are. Ends with the state that the session
 * settles in, LOGGED_IN, CONNECTED or OVERLIMIT, from report_current_state; or with the daemon's own error
 * type and message, from report_login_error. The time-out is 60 seconds; the daemon may go on after it.
 */
KELVARISSDK_API KelvarisSDK_StateResult KelvarisSDK_Login(KelvarisSDK_Handle* sdk, char const* username,
                                                          char const* password,
                                                          KelvarisSDK_StateCallback callback, void* userData);

/** The same with an OAuth access token. */
KELVARISSDK_API KelvarisSDK_StateResult KelvarisSDK_LoginOAuth(KelvarisSDK_Handle* sdk, char const* token,
                                                               KelvarisSDK_StateCallback callback,
                                                               void* userData);

/** The same with an account that is made for this device. */
KELVARISSDK_API KelvarisSDK_StateResult KelvarisSDK_LoginAutoAccount(KelvarisSDK_Handle* sdk,
                                                                     KelvarisSDK_StateCallback callback,
                                                                     void* userData);

/** Logs out. Ends with the state LOGGED_OUT, from report_current_state; at once where that is the state. */
KELVARISSDK_API KelvarisSDK_StateResult KelvarisSDK_Logout(KelvarisSDK_Handle* sdk,
                                                           KelvarisSDK_StateCallback callback,
                                                           void* userData);

/** The account's data. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_AccountingResult KelvarisSDK_GetAccountingData(
    KelvarisSDK_Handle* sdk, KelvarisSDK_AccountingCallback callback, void* userData);

/* ---- Servers ---- */

/** A server of the directory. */
typedef struct KelvarisSDK_ServerInformation {
    char country[10]; /* code; no terminator when full, and then it runs on into `city` */
    char city[20];    /* code; no terminator when full */
    int32_t num;      /* number of the server within the city; 0: none */
    bool isPrivate;   /* private to this account */
} KelvarisSDK_ServerInformation;

/** A server in use. It begins with the fields of KelvarisSDK_ServerInformation at the same places. */
typedef struct KelvarisSDK_ServerInformationDetailed {
    char country[10];       /* code; no terminator when full, and then it runs on into `city` */
    char city[20];          /* code; no terminator when full */
    int32_t num;            /* number of the server within the city; 0: none */
    bool isPrivate;         /* private to this account */
    bool torrentAllowed;    /* true where the report doesn't say */
    uint16_t publicIPCount; /* elements of `publicIP` in use */
    char publicIP[12][46];  /* IPv4 or IPv6 addresses as text; no terminator when full */
} KelvarisSDK_ServerInformationDetailed;

/** The servers that the account may use, in the order of report_directory. */
typedef struct KelvarisSDK_DirectoryResult {
    KelvarisSDK_BaseResult base;
    uint32_t serverCount; /* elements of `servers` in use */
    KelvarisSDK_ServerInformation servers[400];
} KelvarisSDK_DirectoryResult;

typedef bool (*KelvarisSDK_DirectoryCallback)(KelvarisSDK_DirectoryResult result, void* userData);

/** The list of servers. Subscription: every later report of it. */
KELVARISSDK_API KelvarisSDK_DirectoryResult KelvarisSDK_GetDirectory(KelvarisSDK_Handle* sdk,
                                                                     KelvarisSDK_DirectoryCallback callback,
                                                                     void* userData);

/**
 * The English name of the server's country, of at most 100 bytes: "United States"; "proxy" for the proxy;
 * "{{LOCATION.COUNTRY.xx}}" where no name is known for the code xx (known codes are in lower case); empty
 * where there is no code. A static buffer, valid until the next call; null when memory runs out, as in the
 * next three functions.
 */
KELVARISSDK_API char const* KelvarisSDK_ServerInformation_GetCountryName(KelvarisSDK_ServerInformation info);

/** The same for the city: "New York City" or "{{LOCATION.CITY.xx}}". A static buffer of its own. */
KELVARISSDK_API char const* KelvarisSDK_ServerInformation_GetCityName(KelvarisSDK_ServerInformation info);

/**
 * A name for people, of at most 100 bytes: "United States - New York City #12", without the city or the
 * number where there is none. A static buffer, valid until the next call; the buffers of the two functions
 * above change with it.
 */
KELVARISSDK_API char const* KelvarisSDK_ServerInformation_toString(KelvarisSDK_ServerInformation info);

/** The same for a server in use, in the same buffer. */
KELVARISSDK_API char const*
KelvarisSDK_ServerInformationDetailed_toString(KelvarisSDK_ServerInformationDetailed info);

/* ---- Connecting ---- */

/** How the daemon picks a server. */
enum KELVARISSDK_TAG(KelvarisSDK_AutoConnectMethod) KELVARISSDK_UINT32 {
    KelvarisSDK_AutoConnectMethod_CLOSEST = 0,
    KelvarisSDK_AutoConnectMethod_PRIVATE = 1,
    KelvarisSDK_AutoConnectMethod_PUBLIC = 2,
    KelvarisSDK_AutoConnectMethod_LAST = 3,    /* the server used last; for connecting only */
    KelvarisSDK_AutoConnectMethod_P2P = 4,     /* one that permits torrents */
    KelvarisSDK_AutoConnectMethod_AUTO = 5,    /* by the daemon's setting; for connecting only */
    KelvarisSDK_AutoConnectMethod_COUNTRY = 6, /* a fixed place, which has functions of its own */
    KelvarisSDK_AutoConnectMethod_PROXY = 7
};
KELVARISSDK_ENUM(KelvarisSDK_AutoConnectMethod)

/** "closest", "private" and so on; "closest" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_AutoConnectMethod_toString(KelvarisSDK_AutoConnectMethod method);

/** The server of the connection, from report_connected_server. */
typedef struct KelvarisSDK_ConnectResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_ServerInformationDetailed server;
} KelvarisSDK_ConnectResult;

typedef bool (*KelvarisSDK_ConnectCallback)(KelvarisSDK_ConnectResult result, void* userData);

/**
 * Connects to a server that the daemon picks. Ends when the session is CONNECTED, with the server reported
 * last before that; or with the daemon's own error type and message, from report_connect_error or
 * report_login_error. Where no server was reported, the record holds none, with false for `torrentAllowed`.
 * It can be locked as a setting can. The time-out is 60 seconds, up to the first report of a server; the
 * daemon may go on after it. COUNTRY fails with SDK (3840). PROXY and any other number are sent as AUTO: for
 * the proxy there is KelvarisSDK_ConnectProxy.
 */
KELVARISSDK_API KelvarisSDK_ConnectResult KelvarisSDK_ConnectAuto(KelvarisSDK_Handle* sdk,
                                                                  KelvarisSDK_AutoConnectMethod method,
                                                                  KelvarisSDK_ConnectCallback callback,
                                                                  void* userData);

/** The same with a server of a country: its code, or "private" and the code. Nothing is checked here. */
KELVARISSDK_API KelvarisSDK_ConnectResult KelvarisSDK_ConnectCountry(KelvarisSDK_Handle* sdk,
                                                                     char const* country,
                                                                     KelvarisSDK_ConnectCallback callback,
                                                                     void* userData);

/** The same with a server of a city. */
KELVARISSDK_API KelvarisSDK_ConnectResult KelvarisSDK_ConnectCity(KelvarisSDK_Handle* sdk,
                                                                  char const* country, char const* city,
                                                                  KelvarisSDK_ConnectCallback callback,
                                                                  void* userData);

/** The same with one server. */
KELVARISSDK_API KelvarisSDK_ConnectResult KelvarisSDK_ConnectServer(KelvarisSDK_Handle* sdk,
                                                                    char const* country, char const* city,
                                                                    int num,
                                                                    KelvarisSDK_ConnectCallback callback,
                                                                    void* userData);

/** The same through the proxy. */
KELVARISSDK_API KelvarisSDK_ConnectResult KelvarisSDK_ConnectProxy(KelvarisSDK_Handle* sdk,
                                                                   KelvarisSDK_ConnectCallback callback,
                                                                   void* userData);

/** Disconnects. Ends with the state LOGGED_IN or LOGGED_OUT, from report_current_state. */
KELVARISSDK_API KelvarisSDK_StateResult KelvarisSDK_Disconnect(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_StateCallback callback,
                                                               void* userData);

/** The server in use. Subscription: every later report of it. */
KELVARISSDK_API KelvarisSDK_ConnectResult KelvarisSDK_GetConnectedServer(KelvarisSDK_Handle* sdk,
                                                                         KelvarisSDK_ConnectCallback callback,
                                                                         void* userData);

/* ---- Connect method ---- */

/**
 * The daemon's setting of how it picks a server, from report_server_settings. A method that isn't known
 * leaves `connectMethod` as it was: CLOSEST in the first report.
 */
typedef struct KelvarisSDK_ServerSettingsResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_AutoConnectMethod connectMethod; /* COUNTRY: the place below */
    char country[10];                            /* code; no terminator when full */
    char city[20];                               /* code, or empty; no terminator when full */
    int32_t num;                                 /* number of the server, or 0 */
} KelvarisSDK_ServerSettingsResult;

typedef bool (*KelvarisSDK_ServerSettingsCallback)(KelvarisSDK_ServerSettingsResult result, void* userData);

/** The setting. Subscription: every later report of it. */
KELVARISSDK_API KelvarisSDK_ServerSettingsResult KelvarisSDK_GetServerSettings(
    KelvarisSDK_Handle* sdk, KelvarisSDK_ServerSettingsCallback callback, void* userData);

/** Sets CLOSEST, PRIVATE, PUBLIC, P2P or PROXY; any other number is refused with INVALID_ARGUMENT (3842). */
KELVARISSDK_API KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodAuto(KelvarisSDK_Handle* sdk, KelvarisSDK_AutoConnectMethod method,
                                 KelvarisSDK_ServerSettingsCallback callback, void* userData);

/** Sets a country. Nothing is checked here. */
KELVARISSDK_API KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodCountry(KelvarisSDK_Handle* sdk, char const* country,
                                    KelvarisSDK_ServerSettingsCallback callback, void* userData);

/** Sets a city. Nothing is checked here. */
KELVARISSDK_API KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodCity(KelvarisSDK_Handle* sdk, char const* country, char const* city,
                                 KelvarisSDK_ServerSettingsCallback callback, void* userData);

/** Sets one server. Nothing is checked here. */
KELVARISSDK_API KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodServer(KelvarisSDK_Handle* sdk, char const* country, char const* city, int num,
                                   KelvarisSDK_ServerSettingsCallback callback, void* userData);

/* ---- Directory settings ---- */

/** How the daemon reaches its directory service, from report_directory_settings. */
typedef struct KelvarisSDK_DirectorySettingsResult {
    KelvarisSDK_BaseResult base;
    char domain[100];     /* of the directory server; no terminator when full */
    bool enableEsni;      /* encrypted server name indication */
    char gatewayUri[100]; /* of the directory gateway; no terminator when full */
} KelvarisSDK_DirectorySettingsResult;

typedef bool (*KelvarisSDK_DirectorySettingsCallback)(KelvarisSDK_DirectorySettingsResult result,
                                                      void* userData);

/** The settings. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_DirectorySettingsResult KelvarisSDK_GetDirectorySettings(
    KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback, void* userData);

/**
 * Switches encrypted server name indication on or off. A lock by neither the server nor the account ends a
 * synchronous call with `error` set and `errorCode` 0.
 */
KELVARISSDK_API KelvarisSDK_DirectorySettingsResult KelvarisSDK_SetESNIEnabled(
    KelvarisSDK_Handle* sdk, bool enabled, KelvarisSDK_DirectorySettingsCallback callback, void* userData);

/** Sets the directory server's domain; null goes back to the daemon's own. No lock concerns it. */
KELVARISSDK_API KelvarisSDK_DirectorySettingsResult
KelvarisSDK_SetDirectoryDomain(KelvarisSDK_Handle* sdk, char const* domain,
                               KelvarisSDK_DirectorySettingsCallback callback, void* userData);

/** Goes back to the daemon's own domain. The callback's user data is null, whatever is given here. */
KELVARISSDK_API KelvarisSDK_DirectorySettingsResult KelvarisSDK_ResetDirectoryDomain(
    KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback, void* userData);

/** Sets the URI of a directory gateway; null goes back to the daemon's own. No lock concerns it. */
KELVARISSDK_API KelvarisSDK_DirectorySettingsResult KelvarisSDK_SetDirectoryGatewayURI(
    KelvarisSDK_Handle* sdk, char const* uri, KelvarisSDK_DirectorySettingsCallback callback, void* userData);

/** Goes back to the daemon's own gateway. The callback's user data is null, whatever is given here. */
KELVARISSDK_API KelvarisSDK_DirectorySettingsResult KelvarisSDK_ResetDirectoryGatewayURI(
    KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback, void* userData);

#ifdef __cplusplus
}
#endif

#endif
