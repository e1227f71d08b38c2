// The library object behind the C interface: one link to the daemon, and a method for every call.

#pragma once

#include <memory>
#include <string>

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
    KelvarisSDK_StateResult login(char const* username, char const* password,
                                  KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_StateResult loginOAuth(char const* token, KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_StateResult loginAutoAccount(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_StateResult logout(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_AccountingResult getAccountingData(KelvarisSDK_AccountingCallback callback, void* userData);

    KelvarisSDK_DirectoryResult getDirectory(KelvarisSDK_DirectoryCallback callback, void* userData);

    KelvarisSDK_ConnectResult connectAuto(KelvarisSDK_AutoConnectMethod method,
                                          KelvarisSDK_ConnectCallback callback, void* userData);
    KelvarisSDK_ConnectResult connectCountry(char const* country, KelvarisSDK_ConnectCallback callback,
                                             void* userData);
    KelvarisSDK_ConnectResult connectCity(char const* country, char const* city,
                                          KelvarisSDK_ConnectCallback callback, void* userData);
    KelvarisSDK_ConnectResult connectServer(char const* country, char const* city, int num,
                                            KelvarisSDK_ConnectCallback callback, void* userData);
    KelvarisSDK_ConnectResult connectProxy(KelvarisSDK_ConnectCallback callback, void* userData);
    // By the text that names a server or a way to choose one.
    KelvarisSDK_ConnectResult connectCombined(std::string const& server, KelvarisSDK_ConnectCallback callback,
                                              void* userData);
    KelvarisSDK_StateResult disconnect(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_ConnectResult getConnectedServer(KelvarisSDK_ConnectCallback callback, void* userData);

    KelvarisSDK_ServerSettingsResult getServerSettings(KelvarisSDK_ServerSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_ServerSettingsResult setConnectMethodAuto(KelvarisSDK_AutoConnectMethod method,
                                                          KelvarisSDK_ServerSettingsCallback callback,
                                                          void* userData);
    KelvarisSDK_ServerSettingsResult
    setConnectMethodCountry(char const* country, KelvarisSDK_ServerSettingsCallback callback, void* userData);
    KelvarisSDK_ServerSettingsResult setConnectMethodCity(char const* country, char const* city,
                                                          KelvarisSDK_ServerSettingsCallback callback,
                                                          void* userData);
    KelvarisSDK_ServerSettingsResult setConnectMethodServer(char const* country, char const* city, int num,
                                                            KelvarisSDK_ServerSettingsCallback callback,
                                                            void* userData);
    // By the texts of the request.
    KelvarisSDK_ServerSettingsResult setConnectMethodCombined(std::string const& method,
                                                              std::string const& countryCode,
                                                              KelvarisSDK_ServerSettingsCallback callback,
                                                              void* userData);

    KelvarisSDK_DirectorySettingsResult getDirectorySettings(KelvarisSDK_DirectorySettingsCallback callback,
                                                             void* userData);
    KelvarisSDK_DirectorySettingsResult
    setESNIEnabled(bool enabled, KelvarisSDK_DirectorySettingsCallback callback, void* userData);
    KelvarisSDK_DirectorySettingsResult
    setDirectoryDomain(char const* domain, KelvarisSDK_DirectorySettingsCallback callback, void* userData);
    KelvarisSDK_DirectorySettingsResult resetDirectoryDomain(KelvarisSDK_DirectorySettingsCallback callback,
                                                             void* userData);
    KelvarisSDK_DirectorySettingsResult
    setDirectoryGatewayURI(char const* uri, KelvarisSDK_DirectorySettingsCallback callback, void* userData);
    KelvarisSDK_DirectorySettingsResult
    resetDirectoryGatewayURI(KelvarisSDK_DirectorySettingsCallback callback, void* userData);

    // settings

    // adapters

    // lists

    // telemetry

    // safebrowsing

protected:
    // Constant after construction.
    char appName[32];
    std::unique_ptr<WebsocketImpl> websocket; // no method starts a call without it
};

} // namespace kelvarissdk
