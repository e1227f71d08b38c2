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

// telemetry

// safebrowsing

// One of the two calls with steps of their own; the other is the stop below.
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
