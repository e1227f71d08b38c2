#include "calls.h"

#include "finish.h"

// Connection settings

int requestConnectionSettings() {
    return finish(KelvarisSDK_GetSettings(sdk, nullptr, nullptr), printSettingsResult);
}

int setMode(KelvarisSDK_BondingMode mode) {
    return finish(KelvarisSDK_SetMode(sdk, mode, nullptr, nullptr), printSettingsResult);
}

int setTransportMode(KelvarisSDK_TransportMode mode) {
    return finish(KelvarisSDK_SetConnectionTransportMode(sdk, mode, nullptr, nullptr), printSettingsResult);
}

int setEncryption(bool enable) {
    return finish(KelvarisSDK_SetTunnelEncrypted(sdk, enable, nullptr, nullptr), printSettingsResult);
}

int setJumboMtu(bool enable) {
    return finish(KelvarisSDK_SetJumboPackets(sdk, enable, nullptr, nullptr), printSettingsResult);
}

int setPacketAggregation(bool enable) {
    return finish(KelvarisSDK_SetPacketAggregation(sdk, enable, nullptr, nullptr), printSettingsResult);
}

int setHeaderCompression(bool enable) {
    return finish(KelvarisSDK_SetHeaderCompression(sdk, enable, nullptr, nullptr), printSettingsResult);
}

int setStartupConnect(bool connect) {
    return finish(KelvarisSDK_SetStartupConnect(sdk, connect, nullptr, nullptr), printSettingsResult);
}

int setOverflowThreshold(double speed) {
    return finish(KelvarisSDK_SetOverflowThreshold(sdk, speed, nullptr, nullptr), printSettingsResult);
}

int enableDefaultRoute(bool enable) {
    return finish(KelvarisSDK_SetEnableDefaultRoute(sdk, enable, nullptr, nullptr), printSettingsResult);
}

int setForwardPorts(unsigned short count, KelvarisSDK_ProtocolPortPair* ports) {
    return finish(KelvarisSDK_SetForwardPorts(sdk, count, ports, nullptr, nullptr), printSettingsResult);
}

int setConnectionEncryption(char const* adapterID, bool enable) {
    return finish(KelvarisSDK_SetConnectionEncryption(sdk, adapterID, enable, nullptr, nullptr),
                  printSettingsResult);
}

// Privacy and DNS

int requestPrivacySettings() {
    return finish(KelvarisSDK_GetPrivacySettings(sdk, nullptr, nullptr), printPrivacySettingsResult);
}

int setDnsServers(unsigned short count, DnsText* addresses) {
    return finish(KelvarisSDK_SetDNSServers(sdk, count, addresses, nullptr, nullptr),
                  printPrivacySettingsResult);
}

// Captive portals

int requestCaptivePortalCheck() {
    return finish(KelvarisSDK_CheckForCaptivePortals(sdk, nullptr, nullptr), printCaptivePortalResult);
}

int setCaptivePortalLoginOn(char const* adapterID) {
    return finish(KelvarisSDK_SetCaptivePortalLoginMode(sdk, true, adapterID, nullptr, nullptr),
                  printCaptivePortalLoginResult);
}

int setCaptivePortalLoginOff() {
    return finish(KelvarisSDK_SetCaptivePortalLoginMode(sdk, false, nullptr, nullptr, nullptr),
                  printCaptivePortalLoginResult);
}
