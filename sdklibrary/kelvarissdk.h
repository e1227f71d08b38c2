// The library object behind the C interface: one link to the daemon, and a method for every call.

#pragma once

#include <memory>

#include <kelvarissdk/csdkinterface.h>

namespace kelvarissdk {

class WebsocketImpl;

// Safe for use from several threads. A method has its own arguments, then the callback, then the user data; a
// null callback makes the call synchronous. The methods of a family stand in kelvarissdk_calls/.
class KelvarisSDK {
public:
    // Starts the threads; failure throws std::system_error.
    explicit KelvarisSDK(KelvarisSDK_CreateSettings const& settings);
    // Returns when the threads have ended. No other thread may be inside a call.
    ~KelvarisSDK();
    KelvarisSDK(KelvarisSDK const&) = delete;
    KelvarisSDK& operator=(KelvarisSDK const&) = delete;

    // core
    KelvarisSDK_BaseResult setAppName(char const* name);
    void unregisterCallback(unsigned long long callbackId);
    KelvarisSDK_StateResult getState(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_VersionResult getVersion(KelvarisSDK_VersionCallback callback, void* userData);
    KelvarisSDK_BaseResult daemonExit();

    // session

    // settings

    // adapters

    // lists
    KelvarisSDK_FirewallSettingsResult getFirewallSettings(KelvarisSDK_FirewallSettingsCallback callback,
                                                           void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallMode(KelvarisSDK_FirewallMode mode,
                                                       KelvarisSDK_FirewallSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallDomains(unsigned short count, char (*domains)[50],
                                                          KelvarisSDK_FirewallSettingsCallback callback,
                                                          void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallIPv4(unsigned short count, in_addr* addresses,
                                                       KelvarisSDK_FirewallSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallIPv6(unsigned short count, in6_addr* addresses,
                                                       KelvarisSDK_FirewallSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallPorts(unsigned short count,
                                                        KelvarisSDK_ProtocolPortPair* ports,
                                                        KelvarisSDK_FirewallSettingsCallback callback,
                                                        void* userData);
    KelvarisSDK_LocalProxySettingsResult
    getLocalProxySettings(KelvarisSDK_LocalProxySettingsCallback callback, void* userData);
    KelvarisSDK_LocalProxySettingsResult
    setLocalProxyEnabled(bool enabled, KelvarisSDK_LocalProxySettingsCallback callback, void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyDomains(unsigned short count, char (*domains)[50],
                                                              KelvarisSDK_LocalProxySettingsCallback callback,
                                                              void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyIPv4(unsigned short count, in_addr* addresses,
                                                           KelvarisSDK_LocalProxySettingsCallback callback,
                                                           void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyIPv6(unsigned short count, in6_addr* addresses,
                                                           KelvarisSDK_LocalProxySettingsCallback callback,
                                                           void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyPorts(unsigned short count,
                                                            KelvarisSDK_ProtocolPortPair* ports,
                                                            KelvarisSDK_LocalProxySettingsCallback callback,
                                                            void* userData);
    KelvarisSDK_LocalProxySettingsResult
    setLocalProxyDomainWatchlistEnable(char const* title, bool enabled,
                                       KelvarisSDK_LocalProxySettingsCallback callback, void* userData);
    KelvarisSDK_StreamingSettingsResult getStreamingSettings(KelvarisSDK_StreamingSettingsCallback callback,
                                                             void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingDomains(unsigned short count, char (*domains)[50],
                                                            KelvarisSDK_StreamingSettingsCallback callback,
                                                            void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingIPv4(unsigned short count, in_addr* addresses,
                                                         KelvarisSDK_StreamingSettingsCallback callback,
                                                         void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingIPv6(unsigned short count, in6_addr* addresses,
                                                         KelvarisSDK_StreamingSettingsCallback callback,
                                                         void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingPorts(unsigned short count,
                                                          KelvarisSDK_ProtocolPortPair* ports,
                                                          KelvarisSDK_StreamingSettingsCallback callback,
                                                          void* userData);

    // telemetry

    // safebrowsing

protected:
    // Constant after construction.
    char appName[32];
    std::unique_ptr<WebsocketImpl> websocket; // no method starts a call without it
};

} // namespace kelvarissdk
