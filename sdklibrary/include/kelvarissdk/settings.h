/*
 * How the daemon's tunnel is set up: connection settings, privacy and DNS, captive portals.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_SETTINGS_H
#define KELVARISSDK_SETTINGS_H

#include <kelvarissdk/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Connection settings ---- */

/** Whether an adapter's part of the tunnel is encrypted. */
typedef struct KelvarisSDK_ConnectionEncryption {
    char adapterID[100]; /* text; no terminator when full */
    bool encrypted;
} KelvarisSDK_ConnectionEncryption;

/** How many sockets an adapter's part of the tunnel uses. */
typedef struct KelvarisSDK_ConnectionParallelSockets {
    char adapterID[100]; /* text; no terminator when full */
    uint16_t sockets;    /* their number */
} KelvarisSDK_ConnectionParallelSockets;

/** The connection settings, from report_connection_settings. */
typedef struct KelvarisSDK_SettingsResult {
    KelvarisSDK_BaseResult base;
    bool jumboPackets;
    bool encrypted;                          /* the whole tunnel */
    bool allowChaChaEncryption;              /* no call sets it */
    KelvarisSDK_BondingMode bondingMode;     /* SPEED: none reported, or an unknown one */
    bool startupConnect;                     /* connects when the daemon starts */
    KelvarisSDK_TransportMode transportMode; /* AUTO: none reported, or an unknown one */
    uint16_t forwardedPortCount;             /* elements of `forwardedPorts` in use */
    KelvarisSDK_ProtocolPortPair forwardedPorts[20];
    bool perConnectionEncryptionEnabled;   /* the adapters' own settings are in force */
    uint16_t perConnectionEncryptionCount; /* 0 while they are not */
    KelvarisSDK_ConnectionEncryption perConnectionEncryptionSettings[25];
    uint16_t perConnectionParallelSocketsCount; /* elements of `perConnectionParallelSockets` in use */
    KelvarisSDK_ConnectionParallelSockets perConnectionParallelSockets[25];
    double overflowThreshold;         /* Mbps; it decides when secondary adapters are used */
    double priorityOverflowThreshold; /* as reported; no call sets it */
    bool packetAggregation;
    bool enableDefaultRoute;
    bool headerCompression;
    char language[3]; /* the daemon's language code; no terminator when full; no call sets it */
} KelvarisSDK_SettingsResult;

typedef bool (*KelvarisSDK_SettingsCallback)(KelvarisSDK_SettingsResult result, void* userData);

/* All calls bring all settings, as they are after the change. */

/** The connection settings. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_GetSettings(KelvarisSDK_Handle* sdk,
                                                                   KelvarisSDK_SettingsCallback callback,
                                                                   void* userData);

/** How several adapters are used at once. A mode without a name is sent as speed. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetMode(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_BondingMode mode,
                                                               KelvarisSDK_SettingsCallback callback,
                                                               void* userData);

/** How the packets travel. A mode without a name is sent as auto. */
KELVARISSDK_API KelvarisSDK_SettingsResult
KelvarisSDK_SetConnectionTransportMode(KelvarisSDK_Handle* sdk, KelvarisSDK_TransportMode mode,
                                       KelvarisSDK_SettingsCallback callback, void* userData);

/** Encrypts the whole tunnel, or doesn't. One lock holds for this and KelvarisSDK_SetConnectionEncryption. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetTunnelEncrypted(
    KelvarisSDK_Handle* sdk, bool enable, KelvarisSDK_SettingsCallback callback, void* userData);

/** Switches jumbo packets on or off. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetJumboPackets(KelvarisSDK_Handle* sdk, bool enable,
                                                                       KelvarisSDK_SettingsCallback callback,
                                                                       void* userData);

/** Switches packet aggregation on or off. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetPacketAggregation(
    KelvarisSDK_Handle* sdk, bool enable, KelvarisSDK_SettingsCallback callback, void* userData);

/** Switches header compression on or off. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetHeaderCompression(
    KelvarisSDK_Handle* sdk, bool enable, KelvarisSDK_SettingsCallback callback, void* userData);

/** Lets the daemon connect when it starts, or not. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetStartupConnect(
    KelvarisSDK_Handle* sdk, bool connect, KelvarisSDK_SettingsCallback callback, void* userData);

/** Sets the threshold in Mbps that decides when secondary adapters are used. Nothing is checked here. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetOverflowThreshold(
    KelvarisSDK_Handle* sdk, double speed, KelvarisSDK_SettingsCallback callback, void* userData);

/** Switches the default route into the tunnel on or off. */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetEnableDefaultRoute(
    KelvarisSDK_Handle* sdk, bool enable, KelvarisSDK_SettingsCallback callback, void* userData);

/**
 * Replaces the forwarded ports by the first 20 of `ports`; count 0 clears the list. A protocol without a
 * name isn't sent, its port is.
 */
KELVARISSDK_API KelvarisSDK_SettingsResult KelvarisSDK_SetForwardPorts(KelvarisSDK_Handle* sdk,
                                                                       unsigned short count,
                                                                       KelvarisSDK_ProtocolPortPair* ports,
                                                                       KelvarisSDK_SettingsCallback callback,
                                                                       void* userData);

/** Encrypts one adapter's part of the tunnel, or doesn't. */
KELVARISSDK_API KelvarisSDK_SettingsResult
KelvarisSDK_SetConnectionEncryption(KelvarisSDK_Handle* sdk, char const* adapterID, bool enable,
                                    KelvarisSDK_SettingsCallback callback, void* userData);

/* ---- Privacy and DNS ---- */

/** The privacy settings, from report_privacy_settings. */
typedef struct KelvarisSDK_PrivacySettingsResult {
    KelvarisSDK_BaseResult base;
    bool killswitch;            /* this and the next two: no call sets them */
    bool dnsleak;               /* DNS leak protection */
    bool ipleak;                /* IP leak protection */
    uint16_t dnsAddressCount;   /* elements of `dnsAddresses` in use */
    char dnsAddresses[3][46];   /* address texts; no terminator when full */
    bool doNotStoreCredentials; /* no call sets it */
} KelvarisSDK_PrivacySettingsResult;

typedef bool (*KelvarisSDK_PrivacySettingsCallback)(KelvarisSDK_PrivacySettingsResult result, void* userData);

/** The privacy settings. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_PrivacySettingsResult KelvarisSDK_GetPrivacySettings(
    KelvarisSDK_Handle* sdk, KelvarisSDK_PrivacySettingsCallback callback, void* userData);

/**
 * Replaces the DNS servers by the first 3 of `addresses`; count 0 clears the list. Each text ends at its
 * terminator or with its 46 bytes. Whether it is an address isn't checked here.
 */
KELVARISSDK_API KelvarisSDK_PrivacySettingsResult
KelvarisSDK_SetDNSServers(KelvarisSDK_Handle* sdk, unsigned short count, char (*addresses)[46],
                          KelvarisSDK_PrivacySettingsCallback callback, void* userData);

/* ---- Captive portals ---- */

/** The networks behind a captive portal, from report_captive_networks. */
typedef struct KelvarisSDK_CaptivePortalCheckResult {
    KelvarisSDK_BaseResult base;
    uint32_t networkCount;  /* elements of `networks` in use */
    char networks[25][100]; /* text; no terminator when full */
} KelvarisSDK_CaptivePortalCheckResult;

typedef bool (*KelvarisSDK_CaptivePortalCheckCallback)(KelvarisSDK_CaptivePortalCheckResult result,
                                                       void* userData);

/** The adapter that is left out of the tunnel for a portal's login, from report_cplogin_network. */
typedef struct KelvarisSDK_CaptivePortalLoginResult {
    KelvarisSDK_BaseResult base;
    bool enabled;
    char adapterID[100]; /* text; no terminator when full */
} KelvarisSDK_CaptivePortalLoginResult;

typedef bool (*KelvarisSDK_CaptivePortalLoginCallback)(KelvarisSDK_CaptivePortalLoginResult result,
                                                       void* userData);

/** Lets the daemon test the networks. Time-out: 30 seconds. */
KELVARISSDK_API KelvarisSDK_CaptivePortalCheckResult KelvarisSDK_CheckForCaptivePortals(
    KelvarisSDK_Handle* sdk, KelvarisSDK_CaptivePortalCheckCallback callback, void* userData);

/**
 * Leaves an adapter out of the tunnel, so that somebody can log in through the portal, or ends that. No lock
 * concerns it. `adapterID` may be null when `enable` is false; INVALID_ARGUMENT (3842) when it is null and
 * `enable` is true.
 */
KELVARISSDK_API KelvarisSDK_CaptivePortalLoginResult
KelvarisSDK_SetCaptivePortalLoginMode(KelvarisSDK_Handle* sdk, bool enable, char const* adapterID,
                                      KelvarisSDK_CaptivePortalLoginCallback callback, void* userData);

#ifdef __cplusplus
}
#endif

#endif
