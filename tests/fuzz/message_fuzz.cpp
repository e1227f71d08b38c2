// A daemon message through the engine into every family's parser and on into its printer. The first byte of the input
// chooses the event, the rest is the payload's text. The link has no daemon; messages are handed to the engine.

#include "jsonprinter.h"
#include "kelvarissdk.h"
#include "websockets.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr std::array events = {
    "report_current_state",
    "report_version_data",
    "report_accounting_data",
    "report_login_error",
    "report_directory",
    "report_connected_server",
    "report_connect_error",
    "report_server_settings",
    "report_directory_settings",
    "report_networks",
    "report_connection_settings",
    "report_privacy_settings",
    "report_captive_networks",
    "report_cplogin_network",
    "report_firewall_settings",
    "report_localproxy_settings",
    "report_streaming_settings",
    "report_connection_stats",
    "report_session_stats",
    "report_streaming_stats",
    "report_disconnect_reason",
    "report_speedtest_results",
    "report_safe_browsing_settings",
    "report_safe_browsing_connect_error",
    "report_safe_browsing_stats",
    "report_safe_browsing_lookup_error",
    "report_safe_browsing_block",
    "report_setting_locked",
};

template <class Result, void (*print)(Result const&)> bool printRecord(Result result, void*) {
    if (result.base.error) {
        printError(result.base);
    } else {
        print(result);
    }
    return true;
}

template <bool brief> void printConnections(KelvarisSDK_ConnectionStatsResult const& result) {
    printConnectionStatsResult(result, brief);
}

template <class Result> using Read = Result (kelvarissdk::KelvarisSDK::*)(bool (*)(Result, void*), void*);

class Library : public kelvarissdk::KelvarisSDK {
public:
    Library() : KelvarisSDK(settings()) {
        subscribe<printStateResult>(&Library::getState);
        subscribe<printAccountingResult>(&Library::getAccountingData);
        subscribe<printDirectoryResult>(&Library::getDirectory);
        subscribe<printConnectResult>(&Library::getConnectedServer);
        subscribe<printServerSettingsResult>(&Library::getServerSettings);
        subscribe<printDirectorySettingsResult>(&Library::getDirectorySettings);
        subscribe<printAdaptersResult>(&Library::getAdapters);
        subscribe<printSettingsResult>(&Library::getSettings);
        subscribe<printPrivacySettingsResult>(&Library::getPrivacySettings);
        subscribe<printFirewallResult>(&Library::getFirewallSettings);
        subscribe<printLocalProxyResult>(&Library::getLocalProxySettings);
        subscribe<printStreamingBypass>(&Library::getLocalProxySettings);
        subscribe<printStreamingResult>(&Library::getStreamingSettings);
        subscribe<printConnections<false>>(&Library::getConnectionStats);
        subscribe<printConnections<true>>(&Library::getConnectionStats);
        subscribe<printSessionStatsResult>(&Library::getSessionStats);
        subscribe<printStreamingStatsResult>(&Library::getStreamingStats);
        subscribe<printDisconnectEvent>(&Library::getLastDisconnectEvent);
        subscribe<printSpeedTestResult>(&Library::getSpeedTestResults);
        subscribe<printSafeBrowsingResult>(&Library::getSafeBrowsing);
        subscribe<printSafeBrowsingStatsResult>(&Library::getSafeBrowsingStats);
        subscribe<printSafeBrowsingErrorResult>(&Library::listenForSafeBrowsingError);
        subscribe<printSafeBrowsingBlockResult>(&Library::listenForSafeBrowsingBlock);
    }

    void deliver(std::string const& text) {
        std::vector<uint64_t> const ids = {
            once<printVersionResult>(&Library::getVersion),
            once<printStateResult>(&Library::loginAutoAccount),
            once<printConnectResult>(&Library::connectProxy),
            once<printCaptivePortalResult>(&Library::checkForCaptivePortals),
            once<printSpeedTestResult>(&Library::startStreamTest),
            initSafeBrowsing("", printRecord<KelvarisSDK_SafeBrowsingResult, printSafeBrowsingConnectError>,
                             nullptr)
                .base.callbackId,
            setCaptivePortalLoginMode(
                false, nullptr,
                printRecord<KelvarisSDK_CaptivePortalLoginResult, printCaptivePortalLoginResult>, nullptr)
                .base.callbackId,
        };
        websocket->handle_message(text);
        for (uint64_t const id : ids) {
            unregisterCallback(id);
        }
    }

private:
    static KelvarisSDK_CreateSettings settings() {
        KelvarisSDK_CreateSettings settings;
        KelvarisSDK_InitializeCreateSettings(&settings);
        settings.port = 0;
        return settings;
    }

    template <auto print, class Result> void subscribe(Read<Result> read) {
        once<print>(read);
    }

    template <auto print, class Result> uint64_t once(Read<Result> read) {
        return (this->*read)(printRecord<Result, print>, nullptr).base.callbackId;
    }
};

Library* library;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    stderr = std::fopen("/dev/null", "w");
    if (std::freopen("/dev/null", "w", stdout) == nullptr) {
        std::abort();
    }
    static Library instance;
    library = &instance;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::string const payload(reinterpret_cast<char const*>(data) + 1, size - 1);
    library->deliver(std::string("[\"") + events[data[0] % events.size()] + "\"," + payload + "]");
    return 0;
}
