#include "calls.h"

#include "finish.h"
#include "stream.h"

namespace {

// Does what finish() does, but a connect error is a result with a document and a status of its own.
int finishOrConnectError(KelvarisSDK_SafeBrowsingResult const& result, int connectErrorStatus) {
    if (!result.base.error && result.connectErrorSet) {
        printSafeBrowsingConnectError(result);
        return connectErrorStatus;
    }
    return finish(result, printSafeBrowsingResult);
}

bool safeBrowsingErrorCb(KelvarisSDK_SafeBrowsingErrorResult result, void* userData) {
    return printReport("safebrowsing_error", result, userData, printSafeBrowsingErrorResult);
}

bool safeBrowsingBlockCb(KelvarisSDK_SafeBrowsingBlockResult result, void* userData) {
    return printReport("safebrowsing_block", result, userData, printSafeBrowsingBlockResult);
}

int listen(int duration, Stream const& stream, KelvarisSDK_BaseResult const& call) {
    waitForEndOfStream(duration, stream, {&call, 1});
    return endStream(stream, {&call, 1});
}

} // namespace

// A connect error of the second step isn't looked at here: the settings are printed as far as they are known.
int startSafeBrowsing(char const* config) {
    return finish(KelvarisSDK_StartSafeBrowsing(sdk, config, nullptr, nullptr), printSafeBrowsingResult);
}

int stopSafeBrowsing() {
    return finish(KelvarisSDK_StopSafeBrowsing(sdk, nullptr, nullptr), printSafeBrowsingResult);
}

int initSafeBrowsing(char const* config) {
    return finishOrConnectError(KelvarisSDK_InitSafeBrowsing(sdk, config, nullptr, nullptr), 1);
}

int setSafeBrowsingConfig(char const* config) {
    return finish(KelvarisSDK_SetSafeBrowsingConfig(sdk, config, nullptr, nullptr), printSafeBrowsingResult);
}

int setSafeBrowsingEnabled(bool enable) {
    return finish(KelvarisSDK_SetSafeBrowsingEnabled(sdk, enable, nullptr, nullptr), printSafeBrowsingResult);
}

int setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel level) {
    return finish(KelvarisSDK_SetSafeBrowsingLogLevel(sdk, level, nullptr, nullptr), printSafeBrowsingResult);
}

int setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride value) {
    return finish(KelvarisSDK_SetSafeBrowsingSafeNetworkOverride(sdk, value, nullptr, nullptr),
                  printSafeBrowsingResult);
}

int refreshSafeBrowsingToken(char const* token) {
    return finishOrConnectError(KelvarisSDK_RefreshSafeBrowsingToken(sdk, token, nullptr, nullptr), 1);
}

int reportSafeBrowsingHomeNetwork(unsigned int retries, unsigned long long delay,
                                  unsigned long long timeout) {
    KelvarisSDK_SafeBrowsingResult const result = KelvarisSDK_ReportSafeBrowsingHomeNetworkWithParameters(
        sdk, retries, delay, timeout, nullptr, nullptr);
    bool const isHarmless = result.connectErrorCode == 0 || result.connectErrorCode == 17;
    return finishOrConnectError(result, isHarmless ? 0 : 1);
}

int updateSafeBrowsingExtraInfo(char const* info) {
    return finishOrConnectError(KelvarisSDK_UpdateSafeBrowsingExtraInfo(sdk, info, nullptr, nullptr), 1);
}

int getSafeBrowsingSettings() {
    return finish(KelvarisSDK_GetSafeBrowsing(sdk, nullptr, nullptr), printSafeBrowsingResult);
}

int listenForSafeBrowsingErrors(int duration) {
    static constinit Stream stream;
    return listen(duration, stream,
                  KelvarisSDK_ListenForSafeBrowsingError(sdk, safeBrowsingErrorCb, &stream).base);
}

int listenForSafeBrowsingBlocks(int duration) {
    static constinit Stream stream;
    return listen(duration, stream,
                  KelvarisSDK_ListenForSafeBrowsingBlock(sdk, safeBrowsingBlockCb, &stream).base);
}

int getSafeBrowsingStats() {
    return finish(KelvarisSDK_GetSafeBrowsingStats(sdk, nullptr, nullptr), printSafeBrowsingStatsResult);
}
