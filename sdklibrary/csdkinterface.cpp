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
