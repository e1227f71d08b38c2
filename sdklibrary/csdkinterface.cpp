// The C interface: each function hands its arguments to the method of its name.

#include <kelvarissdk/csdkinterface.h>

#include "kelvarissdk.h"

namespace {

kelvarissdk::KelvarisSDK* object(KelvarisSDK_Handle* sdk) {
    return reinterpret_cast<kelvarissdk::KelvarisSDK*>(sdk);
}

} // namespace

// core

void KelvarisSDK_InitializeCreateSettings(KelvarisSDK_CreateSettings* settings) {
    *settings = {.appName = "", .address = "127.0.0.1", .port = 9330};
}

KelvarisSDK_Handle* KelvarisSDK_CreateWithSettings(KelvarisSDK_CreateSettings settings) {
    return reinterpret_cast<KelvarisSDK_Handle*>(new kelvarissdk::KelvarisSDK(settings));
}

void KelvarisSDK_Destroy(KelvarisSDK_Handle* sdk) {
    delete object(sdk);
}

void KelvarisSDK_UnregisterCallback(KelvarisSDK_Handle* sdk, unsigned long long callbackId) {
    object(sdk)->unregisterCallback(callbackId);
}

KelvarisSDK_StateResult KelvarisSDK_GetState(KelvarisSDK_Handle* sdk, KelvarisSDK_StateCallback callback,
                                             void* userData) {
    return object(sdk)->getState(callback, userData);
}

KelvarisSDK_VersionResult KelvarisSDK_GetVersion(KelvarisSDK_Handle* sdk,
                                                 KelvarisSDK_VersionCallback callback, void* userData) {
    return object(sdk)->getVersion(callback, userData);
}

KelvarisSDK_BaseResult KelvarisSDK_DaemonExit(KelvarisSDK_Handle* sdk) {
    return object(sdk)->daemonExit();
}

// session

// settings

// adapters

// lists

KelvarisSDK_FirewallSettingsResult
KelvarisSDK_GetFirewallSettings(KelvarisSDK_Handle* sdk, KelvarisSDK_FirewallSettingsCallback callback,
                                void* userData) {
    return object(sdk)->getFirewallSettings(callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallMode(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_FirewallMode mode,
                                                               KelvarisSDK_FirewallSettingsCallback callback,
                                                               void* userData) {
    return object(sdk)->setFirewallMode(mode, callback, userData);
}

KelvarisSDK_FirewallSettingsResult
KelvarisSDK_SetFirewallDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                               KelvarisSDK_FirewallSettingsCallback callback, void* userData) {
    return object(sdk)->setFirewallDomains(count, domains, callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallIPv4(KelvarisSDK_Handle* sdk, unsigned short count,
                                                               in_addr* addresses,
                                                               KelvarisSDK_FirewallSettingsCallback callback,
                                                               void* userData) {
    return object(sdk)->setFirewallIPv4(count, addresses, callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallIPv6(KelvarisSDK_Handle* sdk, unsigned short count,
                                                               in6_addr* addresses,
                                                               KelvarisSDK_FirewallSettingsCallback callback,
                                                               void* userData) {
    return object(sdk)->setFirewallIPv6(count, addresses, callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                                                                KelvarisSDK_ProtocolPortPair* ports,
                                                                KelvarisSDK_FirewallSettingsCallback callback,
                                                                void* userData) {
    return object(sdk)->setFirewallPorts(count, ports, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_GetLocalProxySettings(KelvarisSDK_Handle* sdk, KelvarisSDK_LocalProxySettingsCallback callback,
                                  void* userData) {
    return object(sdk)->getLocalProxySettings(callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyEnabled(KelvarisSDK_Handle* sdk, bool enabled,
                                 KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return object(sdk)->setLocalProxyEnabled(enabled, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                                 KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return object(sdk)->setLocalProxyDomains(count, domains, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyIPv4(KelvarisSDK_Handle* sdk, unsigned short count, in_addr* addresses,
                              KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return object(sdk)->setLocalProxyIPv4(count, addresses, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyIPv6(KelvarisSDK_Handle* sdk, unsigned short count, in6_addr* addresses,
                              KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return object(sdk)->setLocalProxyIPv6(count, addresses, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                               KelvarisSDK_ProtocolPortPair* ports,
                               KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return object(sdk)->setLocalProxyPorts(count, ports, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyDomainWatchlistEnable(KelvarisSDK_Handle* sdk, char const* title, bool enabled,
                                               KelvarisSDK_LocalProxySettingsCallback callback,
                                               void* userData) {
    return object(sdk)->setLocalProxyDomainWatchlistEnable(title, enabled, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_GetStreamingSettings(KelvarisSDK_Handle* sdk, KelvarisSDK_StreamingSettingsCallback callback,
                                 void* userData) {
    return object(sdk)->getStreamingSettings(callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                                KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return object(sdk)->setStreamingDomains(count, domains, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingIPv4(KelvarisSDK_Handle* sdk, unsigned short count, in_addr* addresses,
                             KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return object(sdk)->setStreamingIPv4(count, addresses, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingIPv6(KelvarisSDK_Handle* sdk, unsigned short count, in6_addr* addresses,
                             KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return object(sdk)->setStreamingIPv6(count, addresses, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                              KelvarisSDK_ProtocolPortPair* ports,
                              KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return object(sdk)->setStreamingPorts(count, ports, callback, userData);
}

// telemetry

// safebrowsing
