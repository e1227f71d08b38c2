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

KelvarisSDK_SettingsResult KelvarisSDK_SetConnectionEncryption(KelvarisSDK_Handle* sdk, const char* adapterID,
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
KelvarisSDK_SetCaptivePortalLoginMode(KelvarisSDK_Handle* sdk, bool enable, const char* adapterID,
                                      KelvarisSDK_CaptivePortalLoginCallback callback, void* userData) {
    return object(sdk)->setCaptivePortalLoginMode(enable, adapterID, callback, userData);
}

// adapters

KelvarisSDK_AdaptersResult KelvarisSDK_GetAdapters(KelvarisSDK_Handle* sdk,
                                                   KelvarisSDK_AdaptersCallback callback, void* userData) {
    return object(sdk)->getAdapters(callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetConnectionPriorities(KelvarisSDK_Handle* sdk, const char* adapterID,
                                                               KelvarisSDK_ConnectionPriority priority,
                                                               KelvarisSDK_AdaptersCallback callback,
                                                               void* userData) {
    return object(sdk)->setConnectionPriorities(adapterID, priority, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetConnectionRateLimit(KelvarisSDK_Handle* sdk, const char* adapterID,
                                                              long long bitsPerSecond,
                                                              KelvarisSDK_AdaptersCallback callback,
                                                              void* userData) {
    return object(sdk)->setConnectionRateLimit(adapterID, bitsPerSecond, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_ResetConnectionRateLimit(KelvarisSDK_Handle* sdk,
                                                                const char* adapterID,
                                                                KelvarisSDK_AdaptersCallback callback,
                                                                void* userData) {
    return object(sdk)->resetConnectionRateLimit(adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterMonthlyDataLimit(KelvarisSDK_Handle* sdk,
                                                                  const char* adapterID, long long bytes,
                                                                  long long resetDay,
                                                                  KelvarisSDK_AdaptersCallback callback,
                                                                  void* userData) {
    return object(sdk)->setAdapterMonthlyDataLimit(adapterID, bytes, resetDay, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterMonthlyDataLimit(KelvarisSDK_Handle* sdk,
                                                                      const char* adapterID,
                                                                      KelvarisSDK_AdaptersCallback callback,
                                                                      void* userData) {
    return object(sdk)->disableAdapterMonthlyDataLimit(adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterDailyDataLimit(KelvarisSDK_Handle* sdk,
                                                                const char* adapterID, long long bytes,
                                                                KelvarisSDK_AdaptersCallback callback,
                                                                void* userData) {
    return object(sdk)->setAdapterDailyDataLimit(adapterID, bytes, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterDailyDataLimit(KelvarisSDK_Handle* sdk,
                                                                    const char* adapterID,
                                                                    KelvarisSDK_AdaptersCallback callback,
                                                                    void* userData) {
    return object(sdk)->disableAdapterDailyDataLimit(adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_AddAdapterDailyDataLimitBoost(KelvarisSDK_Handle* sdk,
                                                                     const char* adapterID, long long bytes,
                                                                     KelvarisSDK_AdaptersCallback callback,
                                                                     void* userData) {
    return object(sdk)->addAdapterDailyDataLimitBoost(adapterID, bytes, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterOverlimitRateLimit(KelvarisSDK_Handle* sdk,
                                                                    const char* adapterID,
                                                                    long long bitsPerSecond,
                                                                    KelvarisSDK_AdaptersCallback callback,
                                                                    void* userData) {
    return object(sdk)->setAdapterOverlimitRatelimit(adapterID, bitsPerSecond, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_ResetAdapterUsage(KelvarisSDK_Handle* sdk, const char* adapterID,
                                                         KelvarisSDK_AdaptersCallback callback,
                                                         void* userData) {
    return object(sdk)->resetAdapterUsage(adapterID, callback, userData);
}

// lists

// telemetry

KelvarisSDK_BaseResult KelvarisSDK_EnableStatUpdates(KelvarisSDK_Handle* sdk, bool enable,
                                                     unsigned char periodCount, const unsigned int* periods) {
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
