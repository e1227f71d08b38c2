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

KelvarisSDK_StateResult KelvarisSDK_Login(KelvarisSDK_Handle* sdk, char const* username, char const* password,
                                          KelvarisSDK_StateCallback callback, void* userData) {
    return object(sdk)->login(username, password, callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_LoginOAuth(KelvarisSDK_Handle* sdk, char const* token,
                                               KelvarisSDK_StateCallback callback, void* userData) {
    return object(sdk)->loginOAuth(token, callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_LoginAutoAccount(KelvarisSDK_Handle* sdk,
                                                     KelvarisSDK_StateCallback callback, void* userData) {
    return object(sdk)->loginAutoAccount(callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_Logout(KelvarisSDK_Handle* sdk, KelvarisSDK_StateCallback callback,
                                           void* userData) {
    return object(sdk)->logout(callback, userData);
}

KelvarisSDK_AccountingResult KelvarisSDK_GetAccountingData(KelvarisSDK_Handle* sdk,
                                                           KelvarisSDK_AccountingCallback callback,
                                                           void* userData) {
    return object(sdk)->getAccountingData(callback, userData);
}

KelvarisSDK_DirectoryResult KelvarisSDK_GetDirectory(KelvarisSDK_Handle* sdk,
                                                     KelvarisSDK_DirectoryCallback callback, void* userData) {
    return object(sdk)->getDirectory(callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectAuto(KelvarisSDK_Handle* sdk,
                                                  KelvarisSDK_AutoConnectMethod method,
                                                  KelvarisSDK_ConnectCallback callback, void* userData) {
    return object(sdk)->connectAuto(method, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectCountry(KelvarisSDK_Handle* sdk, char const* country,
                                                     KelvarisSDK_ConnectCallback callback, void* userData) {
    return object(sdk)->connectCountry(country, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectCity(KelvarisSDK_Handle* sdk, char const* country,
                                                  char const* city, KelvarisSDK_ConnectCallback callback,
                                                  void* userData) {
    return object(sdk)->connectCity(country, city, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectServer(KelvarisSDK_Handle* sdk, char const* country,
                                                    char const* city, int num,
                                                    KelvarisSDK_ConnectCallback callback, void* userData) {
    return object(sdk)->connectServer(country, city, num, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectProxy(KelvarisSDK_Handle* sdk,
                                                   KelvarisSDK_ConnectCallback callback, void* userData) {
    return object(sdk)->connectProxy(callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_Disconnect(KelvarisSDK_Handle* sdk, KelvarisSDK_StateCallback callback,
                                               void* userData) {
    return object(sdk)->disconnect(callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_GetConnectedServer(KelvarisSDK_Handle* sdk,
                                                         KelvarisSDK_ConnectCallback callback,
                                                         void* userData) {
    return object(sdk)->getConnectedServer(callback, userData);
}

KelvarisSDK_ServerSettingsResult KelvarisSDK_GetServerSettings(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_ServerSettingsCallback callback,
                                                               void* userData) {
    return object(sdk)->getServerSettings(callback, userData);
}

KelvarisSDK_ServerSettingsResult KelvarisSDK_SetConnectMethodAuto(KelvarisSDK_Handle* sdk,
                                                                  KelvarisSDK_AutoConnectMethod method,
                                                                  KelvarisSDK_ServerSettingsCallback callback,
                                                                  void* userData) {
    return object(sdk)->setConnectMethodAuto(method, callback, userData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodCountry(KelvarisSDK_Handle* sdk, char const* country,
                                    KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    return object(sdk)->setConnectMethodCountry(country, callback, userData);
}

KelvarisSDK_ServerSettingsResult KelvarisSDK_SetConnectMethodCity(KelvarisSDK_Handle* sdk,
                                                                  char const* country, char const* city,
                                                                  KelvarisSDK_ServerSettingsCallback callback,
                                                                  void* userData) {
    return object(sdk)->setConnectMethodCity(country, city, callback, userData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodServer(KelvarisSDK_Handle* sdk, char const* country, char const* city, int num,
                                   KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    return object(sdk)->setConnectMethodServer(country, city, num, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_GetDirectorySettings(KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback,
                                 void* userData) {
    return object(sdk)->getDirectorySettings(callback, userData);
}

KelvarisSDK_DirectorySettingsResult KelvarisSDK_SetESNIEnabled(KelvarisSDK_Handle* sdk, bool enabled,
                                                               KelvarisSDK_DirectorySettingsCallback callback,
                                                               void* userData) {
    return object(sdk)->setESNIEnabled(enabled, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_SetDirectoryDomain(KelvarisSDK_Handle* sdk, char const* domain,
                               KelvarisSDK_DirectorySettingsCallback callback, void* userData) {
    return object(sdk)->setDirectoryDomain(domain, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_ResetDirectoryDomain(KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback,
                                 void* userData) {
    return object(sdk)->resetDirectoryDomain(callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_SetDirectoryGatewayURI(KelvarisSDK_Handle* sdk, char const* uri,
                                   KelvarisSDK_DirectorySettingsCallback callback, void* userData) {
    return object(sdk)->setDirectoryGatewayURI(uri, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_ResetDirectoryGatewayURI(KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback,
                                     void* userData) {
    return object(sdk)->resetDirectoryGatewayURI(callback, userData);
}

// settings

KelvarisSDK_SettingsResult KelvarisSDK_GetSettings(KelvarisSDK_Handle* sdk,
                                                   KelvarisSDK_SettingsCallback callback, void* userData) {
    return object(sdk)->getSettings(callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetMode(KelvarisSDK_Handle* sdk, KelvarisSDK_BondingMode mode,
                                               KelvarisSDK_SettingsCallback callback, void* userData) {
    return object(sdk)->setMode(mode, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetConnectionTransportMode(KelvarisSDK_Handle* sdk,
                                                                  KelvarisSDK_TransportMode mode,
                                                                  KelvarisSDK_SettingsCallback callback,
                                                                  void* userData) {
    return object(sdk)->setConnectionTransportMode(mode, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetTunnelEncrypted(KelvarisSDK_Handle* sdk, bool enable,
                                                          KelvarisSDK_SettingsCallback callback,
                                                          void* userData) {
    return object(sdk)->setTunnelEncrypted(enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetJumboPackets(KelvarisSDK_Handle* sdk, bool enable,
                                                       KelvarisSDK_SettingsCallback callback,
                                                       void* userData) {
    return object(sdk)->setJumboPackets(enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetPacketAggregation(KelvarisSDK_Handle* sdk, bool enable,
                                                            KelvarisSDK_SettingsCallback callback,
                                                            void* userData) {
    return object(sdk)->setPacketAggregation(enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetHeaderCompression(KelvarisSDK_Handle* sdk, bool enable,
                                                            KelvarisSDK_SettingsCallback callback,
                                                            void* userData) {
    return object(sdk)->setHeaderCompression(enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetStartupConnect(KelvarisSDK_Handle* sdk, bool connect,
                                                         KelvarisSDK_SettingsCallback callback,
                                                         void* userData) {
    return object(sdk)->setStartupConnect(connect, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetOverflowThreshold(KelvarisSDK_Handle* sdk, double speed,
                                                            KelvarisSDK_SettingsCallback callback,
                                                            void* userData) {
    return object(sdk)->setOverflowThreshold(speed, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetEnableDefaultRoute(KelvarisSDK_Handle* sdk, bool enable,
                                                             KelvarisSDK_SettingsCallback callback,
                                                             void* userData) {
    return object(sdk)->setEnableDefaultRoute(enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetForwardPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                                                       KelvarisSDK_ProtocolPortPair* ports,
                                                       KelvarisSDK_SettingsCallback callback,
                                                       void* userData) {
    return object(sdk)->setForwardPorts(count, ports, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetConnectionEncryption(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                               bool enable,
                                                               KelvarisSDK_SettingsCallback callback,
                                                               void* userData) {
    return object(sdk)->setConnectionEncryption(adapterID, enable, callback, userData);
}

KelvarisSDK_PrivacySettingsResult KelvarisSDK_GetPrivacySettings(KelvarisSDK_Handle* sdk,
                                                                 KelvarisSDK_PrivacySettingsCallback callback,
                                                                 void* userData) {
    return object(sdk)->getPrivacySettings(callback, userData);
}

KelvarisSDK_PrivacySettingsResult KelvarisSDK_SetDNSServers(KelvarisSDK_Handle* sdk, unsigned short count,
                                                            char (*addresses)[46],
                                                            KelvarisSDK_PrivacySettingsCallback callback,
                                                            void* userData) {
    return object(sdk)->setDNSServers(count, addresses, callback, userData);
}

KelvarisSDK_CaptivePortalCheckResult
KelvarisSDK_CheckForCaptivePortals(KelvarisSDK_Handle* sdk, KelvarisSDK_CaptivePortalCheckCallback callback,
                                   void* userData) {
    return object(sdk)->checkForCaptivePortals(callback, userData);
}

KelvarisSDK_CaptivePortalLoginResult
KelvarisSDK_SetCaptivePortalLoginMode(KelvarisSDK_Handle* sdk, bool enable, char const* adapterID,
                                      KelvarisSDK_CaptivePortalLoginCallback callback, void* userData) {
    return object(sdk)->setCaptivePortalLoginMode(enable, adapterID, callback, userData);
}

// adapters

KelvarisSDK_AdaptersResult KelvarisSDK_GetAdapters(KelvarisSDK_Handle* sdk,
                                                   KelvarisSDK_AdaptersCallback callback, void* userData) {
    return object(sdk)->getAdapters(callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetConnectionPriorities(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                               KelvarisSDK_ConnectionPriority priority,
                                                               KelvarisSDK_AdaptersCallback callback,
                                                               void* userData) {
    return object(sdk)->setConnectionPriorities(adapterID, priority, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetConnectionRateLimit(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                              long long bitsPerSecond,
                                                              KelvarisSDK_AdaptersCallback callback,
                                                              void* userData) {
    return object(sdk)->setConnectionRateLimit(adapterID, bitsPerSecond, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_ResetConnectionRateLimit(KelvarisSDK_Handle* sdk,
                                                                char const* adapterID,
                                                                KelvarisSDK_AdaptersCallback callback,
                                                                void* userData) {
    return object(sdk)->resetConnectionRateLimit(adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterMonthlyDataLimit(KelvarisSDK_Handle* sdk,
                                                                  char const* adapterID, long long bytes,
                                                                  long long resetDay,
                                                                  KelvarisSDK_AdaptersCallback callback,
                                                                  void* userData) {
    return object(sdk)->setAdapterMonthlyDataLimit(adapterID, bytes, resetDay, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterMonthlyDataLimit(KelvarisSDK_Handle* sdk,
                                                                      char const* adapterID,
                                                                      KelvarisSDK_AdaptersCallback callback,
                                                                      void* userData) {
    return object(sdk)->disableAdapterMonthlyDataLimit(adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterDailyDataLimit(KelvarisSDK_Handle* sdk,
                                                                char const* adapterID, long long bytes,
                                                                KelvarisSDK_AdaptersCallback callback,
                                                                void* userData) {
    return object(sdk)->setAdapterDailyDataLimit(adapterID, bytes, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterDailyDataLimit(KelvarisSDK_Handle* sdk,
                                                                    char const* adapterID,
                                                                    KelvarisSDK_AdaptersCallback callback,
                                                                    void* userData) {
    return object(sdk)->disableAdapterDailyDataLimit(adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_AddAdapterDailyDataLimitBoost(KelvarisSDK_Handle* sdk,
                                                                     char const* adapterID, long long bytes,
                                                                     KelvarisSDK_AdaptersCallback callback,
                                                                     void* userData) {
    return object(sdk)->addAdapterDailyDataLimitBoost(adapterID, bytes, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterOverlimitRateLimit(KelvarisSDK_Handle* sdk,
                                                                    char const* adapterID,
                                                                    long long bitsPerSecond,
                                                                    KelvarisSDK_AdaptersCallback callback,
                                                                    void* userData) {
    return object(sdk)->setAdapterOverlimitRatelimit(adapterID, bitsPerSecond, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_ResetAdapterUsage(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                         KelvarisSDK_AdaptersCallback callback,
                                                         void* userData) {
    return object(sdk)->resetAdapterUsage(adapterID, callback, userData);
}

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

KelvarisSDK_BaseResult KelvarisSDK_EnableStatUpdates(KelvarisSDK_Handle* sdk, bool enable,
                                                     unsigned char periodCount, unsigned int* periods) {
    return object(sdk)->enableStatUpdates(enable, periodCount, periods);
}

KelvarisSDK_ConnectionStatsResult KelvarisSDK_GetConnectionStats(KelvarisSDK_Handle* sdk,
                                                                 KelvarisSDK_ConnectionStatsCallback callback,
                                                                 void* userData) {
    return object(sdk)->getConnectionStats(callback, userData);
}

KelvarisSDK_SessionStatsResult KelvarisSDK_GetSessionStats(KelvarisSDK_Handle* sdk,
                                                           KelvarisSDK_SessionStatsCallback callback,
                                                           void* userData) {
    return object(sdk)->getSessionStats(callback, userData);
}

KelvarisSDK_StreamingStatsResult KelvarisSDK_GetStreamingStats(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_StreamingStatsCallback callback,
                                                               void* userData) {
    return object(sdk)->getStreamingStats(callback, userData);
}

KelvarisSDK_DisconnectEventResult
KelvarisSDK_GetLastDisconnectEvent(KelvarisSDK_Handle* sdk, KelvarisSDK_DisconnectEventCallback callback,
                                   void* userData) {
    return object(sdk)->getLastDisconnectEvent(callback, userData);
}

KelvarisSDK_SpeedTestResult KelvarisSDK_GetSpeedTestResults(KelvarisSDK_Handle* sdk,
                                                            KelvarisSDK_SpeedTestCallback callback,
                                                            void* userData) {
    return object(sdk)->getSpeedTestResults(callback, userData);
}

KelvarisSDK_SpeedTestResult
KelvarisSDK_StartSpeedTest(KelvarisSDK_Handle* sdk, KelvarisSDK_SpeedTestCallback callback, void* userData) {
    return object(sdk)->startSpeedTest(callback, userData);
}

KelvarisSDK_SpeedTestResult
KelvarisSDK_StartStreamTest(KelvarisSDK_Handle* sdk, KelvarisSDK_SpeedTestCallback callback, void* userData) {
    return object(sdk)->startStreamTest(callback, userData);
}

// safebrowsing

// This call and the stop below are the only ones with steps of their own.
KelvarisSDK_SafeBrowsingResult KelvarisSDK_StartSafeBrowsing(KelvarisSDK_Handle* sdk, char const* config,
                                                             KelvarisSDK_SafeBrowsingCallback callback,
                                                             void* userData) {
    object(sdk)->setSafeBrowsingEnabled(true, callback, userData);
    return object(sdk)->initSafeBrowsing(config, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_StopSafeBrowsing(KelvarisSDK_Handle* sdk,
                                                            KelvarisSDK_SafeBrowsingCallback callback,
                                                            void* userData) {
    object(sdk)->setSafeBrowsingEnabled(false, callback, userData);
    return object(sdk)->initSafeBrowsing("", callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_InitSafeBrowsing(KelvarisSDK_Handle* sdk, char const* config,
                                                            KelvarisSDK_SafeBrowsingCallback callback,
                                                            void* userData) {
    return object(sdk)->initSafeBrowsing(config, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingConfig(KelvarisSDK_Handle* sdk, char const* config,
                                                                 KelvarisSDK_SafeBrowsingCallback callback,
                                                                 void* userData) {
    return object(sdk)->setSafeBrowsingConfig(config, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingEnabled(KelvarisSDK_Handle* sdk, bool enable,
                                                                  KelvarisSDK_SafeBrowsingCallback callback,
                                                                  void* userData) {
    return object(sdk)->setSafeBrowsingEnabled(enable, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingLogLevel(KelvarisSDK_Handle* sdk,
                                                                   KelvarisSDK_SafeBrowsingLogLevel level,
                                                                   KelvarisSDK_SafeBrowsingCallback callback,
                                                                   void* userData) {
    return object(sdk)->setSafeBrowsingLogLevel(level, callback, userData);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK_SetSafeBrowsingSafeNetworkOverride(KelvarisSDK_Handle* sdk,
                                               KelvarisSDK_SafeBrowsingSafeNetworkOverride value,
                                               KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return object(sdk)->setSafeBrowsingSafeNetworkOverride(value, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_RefreshSafeBrowsingToken(KelvarisSDK_Handle* sdk,
                                                                    char const* token,
                                                                    KelvarisSDK_SafeBrowsingCallback callback,
                                                                    void* userData) {
    return object(sdk)->refreshSafeBrowsingToken(token, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_ReportSafeBrowsingHomeNetworkWithParameters(
    KelvarisSDK_Handle* sdk, unsigned int retries, unsigned long long delay, unsigned long long timeout,
    KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return object(sdk)->reportSafeBrowsingHomeNetwork(callback, userData, retries, delay, timeout);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK_UpdateSafeBrowsingExtraInfo(KelvarisSDK_Handle* sdk, char const* info,
                                        KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return object(sdk)->updateSafeBrowsingExtraInfo(info, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_GetSafeBrowsing(KelvarisSDK_Handle* sdk,
                                                           KelvarisSDK_SafeBrowsingCallback callback,
                                                           void* userData) {
    return object(sdk)->getSafeBrowsing(callback, userData);
}

KelvarisSDK_SafeBrowsingErrorResult
KelvarisSDK_ListenForSafeBrowsingError(KelvarisSDK_Handle* sdk,
                                       KelvarisSDK_SafeBrowsingErrorCallback callback, void* userData) {
    return object(sdk)->listenForSafeBrowsingError(callback, userData);
}

KelvarisSDK_SafeBrowsingBlockResult
KelvarisSDK_ListenForSafeBrowsingBlock(KelvarisSDK_Handle* sdk,
                                       KelvarisSDK_SafeBrowsingBlockCallback callback, void* userData) {
    return object(sdk)->listenForSafeBrowsingBlock(callback, userData);
}

KelvarisSDK_SafeBrowsingStatsResult
KelvarisSDK_GetSafeBrowsingStats(KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingStatsCallback callback,
                                 void* userData) {
    return object(sdk)->getSafeBrowsingStats(callback, userData);
}
