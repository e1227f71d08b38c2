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

// adapters

// lists

// telemetry

// safebrowsing
