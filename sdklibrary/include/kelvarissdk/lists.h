/*
 * Lists of traffic: the firewall, the local proxy and its streaming services, and what counts as streaming.
 *
 * The daemon replaces whole lists only. To add or remove an item, get the list, change it and set it; nothing
 * keeps another client from changing it in between.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_LISTS_H
#define KELVARISSDK_LISTS_H

#include <netinet/in.h>

#include <kelvarissdk/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The four lists that each of the three records holds. */
typedef struct KelvarisSDK_ListBlock {
    uint16_t domainCount;      /* elements of `domains` in use */
    char domains[100][50];     /* text; no terminator when full */
    uint16_t ipv4Count;        /* elements of `ipv4` in use */
    struct in_addr ipv4[100];  /* all zero: the report's text is no such address */
    uint16_t ipv6Count;        /* elements of `ipv6` in use */
    struct in6_addr ipv6[100]; /* likewise */
    uint16_t portCount;        /* elements of `ports` in use */
    KelvarisSDK_ProtocolPortPair ports[100];
} KelvarisSDK_ListBlock;

/*
 * Every function that replaces a list takes a count and an array. Of a count above 100 the first 100 items
 * are sent, and the array needs no more; a count of 0 clears the list. A domain is any text; it ends at its
 * terminator or with its 50 bytes.
 */

/* ---- Firewall ---- */

/** What the firewall's lists mean. */
enum KELVARISSDK_TAG(KelvarisSDK_FirewallMode) KELVARISSDK_UINT32 {
    KelvarisSDK_FirewallMode_OFF = 0,
    KelvarisSDK_FirewallMode_ALLOWLIST = 1,
    KelvarisSDK_FirewallMode_DENYLIST = 2
};
KELVARISSDK_ENUM(KelvarisSDK_FirewallMode)

/** "off", "allowlist" or "denylist"; "Unknown mode" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_FirewallMode_toString(KelvarisSDK_FirewallMode mode);

/** From report_firewall_settings. */
typedef struct KelvarisSDK_FirewallSettingsResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_FirewallMode mode; /* off when the report names no mode or an unknown one */
    KelvarisSDK_ListBlock lists;
} KelvarisSDK_FirewallSettingsResult;

typedef bool (*KelvarisSDK_FirewallSettingsCallback)(KelvarisSDK_FirewallSettingsResult result,
                                                     void* userData);

/** The firewall's mode and lists. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_FirewallSettingsResult KelvarisSDK_GetFirewallSettings(
    KelvarisSDK_Handle* sdk, KelvarisSDK_FirewallSettingsCallback callback, void* userData);

/** Sets what the lists mean. Any number is sent, as its text. */
KELVARISSDK_API KelvarisSDK_FirewallSettingsResult
KelvarisSDK_SetFirewallMode(KelvarisSDK_Handle* sdk, KelvarisSDK_FirewallMode mode,
                            KelvarisSDK_FirewallSettingsCallback callback, void* userData);

/** Replaces the domains of the firewall. */
KELVARISSDK_API KelvarisSDK_FirewallSettingsResult
KelvarisSDK_SetFirewallDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                               KelvarisSDK_FirewallSettingsCallback callback, void* userData);

/** Replaces the IPv4 addresses of the firewall. */
KELVARISSDK_API KelvarisSDK_FirewallSettingsResult
KelvarisSDK_SetFirewallIPv4(KelvarisSDK_Handle* sdk, unsigned short count, struct in_addr* addresses,
                            KelvarisSDK_FirewallSettingsCallback callback, void* userData);

/** Replaces the IPv6 addresses of the firewall. */
KELVARISSDK_API KelvarisSDK_FirewallSettingsResult
KelvarisSDK_SetFirewallIPv6(KelvarisSDK_Handle* sdk, unsigned short count, struct in6_addr* addresses,
                            KelvarisSDK_FirewallSettingsCallback callback, void* userData);

/** Replaces the ports of the firewall. */
KELVARISSDK_API KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallPorts(
    KelvarisSDK_Handle* sdk, unsigned short count, KelvarisSDK_ProtocolPortPair* ports,
    KelvarisSDK_FirewallSettingsCallback callback, void* userData);

/* ---- Local proxy ---- */

/** What the local proxy's lists mean. */
enum KELVARISSDK_TAG(KelvarisSDK_LocalProxyMatchMode) KELVARISSDK_UINT32 {
    KelvarisSDK_LocalProxyMatchMode_ALLOWLIST = 0,
    KelvarisSDK_LocalProxyMatchMode_DENYLIST = 1
};
KELVARISSDK_ENUM(KelvarisSDK_LocalProxyMatchMode)

/** A service with the domains of it that the local proxy watches, and those that it proxies. */
typedef struct KelvarisSDK_LocalProxyService {
    char title[30]; /* the service's name; no terminator when full */
    bool enabled;
    uint16_t watchedDomainCount; /* elements of `watchedDomains` in use */
    char watchedDomains[12][50]; /* text; no terminator when full */
    uint16_t proxiedDomainCount; /* elements of `proxiedDomains` in use */
    char proxiedDomains[12][50]; /* text; no terminator when full */
} KelvarisSDK_LocalProxyService;

/** From report_localproxy_settings. */
typedef struct KelvarisSDK_LocalProxySettingsResult {
    KelvarisSDK_BaseResult base;
    bool enabled;
    KelvarisSDK_LocalProxyMatchMode matchMode; /* allowlist when the report names none or an unknown one */
    KelvarisSDK_ListBlock lists;
    uint16_t watchlistCount; /* elements of `watchlist` in use */
    KelvarisSDK_LocalProxyService watchlist[25];
} KelvarisSDK_LocalProxySettingsResult;

typedef bool (*KelvarisSDK_LocalProxySettingsCallback)(KelvarisSDK_LocalProxySettingsResult result,
                                                       void* userData);

/** The local proxy's switch, lists and services. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_LocalProxySettingsResult KelvarisSDK_GetLocalProxySettings(
    KelvarisSDK_Handle* sdk, KelvarisSDK_LocalProxySettingsCallback callback, void* userData);

/** Switches the local proxy. */
KELVARISSDK_API KelvarisSDK_LocalProxySettingsResult KelvarisSDK_SetLocalProxyEnabled(
    KelvarisSDK_Handle* sdk, bool enabled, KelvarisSDK_LocalProxySettingsCallback callback, void* userData);

/** Replaces the domains of the local proxy. */
KELVARISSDK_API KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                                 KelvarisSDK_LocalProxySettingsCallback callback, void* userData);

/** Replaces the IPv4 addresses of the local proxy. */
KELVARISSDK_API KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyIPv4(KelvarisSDK_Handle* sdk, unsigned short count, struct in_addr* addresses,
                              KelvarisSDK_LocalProxySettingsCallback callback, void* userData);

/** Replaces the IPv6 addresses of the local proxy. */
KELVARISSDK_API KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyIPv6(KelvarisSDK_Handle* sdk, unsigned short count, struct in6_addr* addresses,
                              KelvarisSDK_LocalProxySettingsCallback callback, void* userData);

/**
 * Replaces the ports of the local proxy. This call takes a lock of the firewall's ports for its own. A lock
 * of the proxy's ports ends only its time-out, and the call waits for the next report without limit.
 */
KELVARISSDK_API KelvarisSDK_LocalProxySettingsResult KelvarisSDK_SetLocalProxyPorts(
    KelvarisSDK_Handle* sdk, unsigned short count, KelvarisSDK_ProtocolPortPair* ports,
    KelvarisSDK_LocalProxySettingsCallback callback, void* userData);

/** Switches the service of this title. No lock concerns it, and the title isn't checked here. */
KELVARISSDK_API KelvarisSDK_LocalProxySettingsResult KelvarisSDK_SetLocalProxyDomainWatchlistEnable(
    KelvarisSDK_Handle* sdk, char const* title, bool enabled, KelvarisSDK_LocalProxySettingsCallback callback,
    void* userData);

/* ---- Streaming ---- */

/** From report_streaming_settings. */
typedef struct KelvarisSDK_StreamingSettingsResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_ListBlock lists;
} KelvarisSDK_StreamingSettingsResult;

typedef bool (*KelvarisSDK_StreamingSettingsCallback)(KelvarisSDK_StreamingSettingsResult result,
                                                      void* userData);

/** The lists of what counts as streaming. Subscription: every later report of them. */
KELVARISSDK_API KelvarisSDK_StreamingSettingsResult KelvarisSDK_GetStreamingSettings(
    KelvarisSDK_Handle* sdk, KelvarisSDK_StreamingSettingsCallback callback, void* userData);

/** Replaces the domains that count as streaming. */
KELVARISSDK_API KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                                KelvarisSDK_StreamingSettingsCallback callback, void* userData);

/** Replaces the IPv4 addresses that count as streaming. */
KELVARISSDK_API KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingIPv4(KelvarisSDK_Handle* sdk, unsigned short count, struct in_addr* addresses,
                             KelvarisSDK_StreamingSettingsCallback callback, void* userData);

/** Replaces the IPv6 addresses that count as streaming. */
KELVARISSDK_API KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingIPv6(KelvarisSDK_Handle* sdk, unsigned short count, struct in6_addr* addresses,
                             KelvarisSDK_StreamingSettingsCallback callback, void* userData);

/** Replaces the ports that count as streaming. */
KELVARISSDK_API KelvarisSDK_StreamingSettingsResult KelvarisSDK_SetStreamingPorts(
    KelvarisSDK_Handle* sdk, unsigned short count, KelvarisSDK_ProtocolPortPair* ports,
    KelvarisSDK_StreamingSettingsCallback callback, void* userData);

#ifdef __cplusplus
}
#endif

#endif
