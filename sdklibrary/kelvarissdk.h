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

    // telemetry

    // safebrowsing
    KelvarisSDK_SafeBrowsingResult
    initSafeBrowsing(char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult
    setSafeBrowsingConfig(char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult
    setSafeBrowsingEnabled(bool enable, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel level,
                                                           KelvarisSDK_SafeBrowsingCallback callback,
                                                           void* userData);
    KelvarisSDK_SafeBrowsingResult
    setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride value,
                                       KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult
    refreshSafeBrowsingToken(char const* token, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    // Unlike the others, with its own arguments last.
    KelvarisSDK_SafeBrowsingResult reportSafeBrowsingHomeNetwork(KelvarisSDK_SafeBrowsingCallback callback,
                                                                 void* userData, unsigned int retries,
                                                                 unsigned long long delay,
                                                                 unsigned long long timeout);
    KelvarisSDK_SafeBrowsingResult
    updateSafeBrowsingExtraInfo(char const* info, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult getSafeBrowsing(KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingErrorResult
    listenForSafeBrowsingError(KelvarisSDK_SafeBrowsingErrorCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingBlockResult
    listenForSafeBrowsingBlock(KelvarisSDK_SafeBrowsingBlockCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingStatsResult getSafeBrowsingStats(KelvarisSDK_SafeBrowsingStatsCallback callback,
                                                             void* userData);

protected:
    // Constant after construction.
    char appName[32];
    std::unique_ptr<WebsocketImpl> websocket; // no method starts a call without it
};

} // namespace kelvarissdk
