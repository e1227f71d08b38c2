// A daemon message through the engine into every family's parser and on into its printer. The first byte of the input
// chooses the event, the rest is the payload's text. The link has no daemon; messages are handed to the engine.

#include "jsonprinter.h"
#include "kelvarissdk.h"
#include "reports.h"
#include "websockets.h"

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <optional>

namespace {

template <auto print, class Result> bool printed(Result result, void*) {
    if (result.base.error) {
        printError(result.base);
    } else {
        print(result);
    }
    return true;
}

template <class Result> using Read = Result (kelvarissdk::KelvarisSDK::*)(bool (*)(Result, void*), void*);

class Library : public kelvarissdk::KelvarisSDK {
public:
    Library() : KelvarisSDK({.appName = "", .address = "127.0.0.1", .port = 0}) {
        read<printStateResult>(&Library::getState);
        read<printAccountingResult>(&Library::getAccountingData);
        read<printDirectoryResult>(&Library::getDirectory);
        read<printConnectResult>(&Library::getConnectedServer);
        read<printServerSettingsResult>(&Library::getServerSettings);
        read<printDirectorySettingsResult>(&Library::getDirectorySettings);
        read<printAdaptersResult>(&Library::getAdapters);
        read<printSettingsResult>(&Library::getSettings);
        read<printPrivacySettingsResult>(&Library::getPrivacySettings);
        read<printFirewallResult>(&Library::getFirewallSettings);
        read<printLocalProxyResult>(&Library::getLocalProxySettings);
        read<printStreamingBypass>(&Library::getLocalProxySettings);
        read<printStreamingResult>(&Library::getStreamingSettings);
        read<[](auto const& result) { printConnectionStatsResult(result, false); }>(
            &Library::getConnectionStats);
        read<[](auto const& result) { printConnectionStatsResult(result, true); }>(
            &Library::getConnectionStats);
        read<printSessionStatsResult>(&Library::getSessionStats);
        read<printStreamingStatsResult>(&Library::getStreamingStats);
        read<printDisconnectEvent>(&Library::getLastDisconnectEvent);
        read<printSpeedTestResult>(&Library::getSpeedTestResults);
        read<printSafeBrowsingResult>(&Library::getSafeBrowsing);
        read<printSafeBrowsingStatsResult>(&Library::getSafeBrowsingStats);
        read<printSafeBrowsingErrorResult>(&Library::listenForSafeBrowsingError);
        read<printSafeBrowsingBlockResult>(&Library::listenForSafeBrowsingBlock);
    }

    void deliver(std::string const& text) {
        std::vector<uint64_t> const ids = {
            read<printVersionResult>(&Library::getVersion),
            read<printStateResult>(&Library::loginAutoAccount),
            read<printConnectResult>(&Library::connectProxy),
            read<printCaptivePortalResult>(&Library::checkForCaptivePortals),
            read<printSpeedTestResult>(&Library::startStreamTest),
            initSafeBrowsing("", printed<printSafeBrowsingConnectError>, nullptr).base.callbackId,
            setCaptivePortalLoginMode(false, nullptr, printed<printCaptivePortalLoginResult>, nullptr)
                .base.callbackId,
        };
        websocket->handle_message(text);
        for (uint64_t const id : ids) {
            unregisterCallback(id);
        }
    }

private:
    template <auto print, class Result> uint64_t read(Read<Result> call) {
        return (this->*call)(printed<print, Result>, nullptr).base.callbackId;
    }
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    stderr = std::fopen("/dev/null", "w");
    return std::freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    // The requests of its calls stay queued, because it has no link.
    static std::optional<Library> library;
    static unsigned inputs = 0;
    if (inputs++ % 1000 == 0) {
        library.emplace();
    }
    if (size > 0) {
        std::string const payload(reinterpret_cast<char const*>(data) + 1, size - 1);
        library->deliver(std::string("[\"report_") + reports[data[0] % std::size(reports)] + "\"," + payload +
                         "]");
    }
    return 0;
}
