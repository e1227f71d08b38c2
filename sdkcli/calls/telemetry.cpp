#include "calls.h"

#include "finish.h"
#include "stream.h"

namespace {

bool statsCbState(KelvarisSDK_StateResult result, void* userData) {
    return printReport("[\"state\",", result, userData, printStateResult);
}

bool statsCbAdapters(KelvarisSDK_AdaptersResult result, void* userData) {
    return printReport("[\"adapters\",", result, userData, printAdaptersResult);
}

void printConnectionStats(KelvarisSDK_ConnectionStatsResult const& result) {
    printConnectionStatsResult(result, false);
}

bool statsCbConnectionStats(KelvarisSDK_ConnectionStatsResult result, void* userData) {
    return printReport("[\"connection_stats\",", result, userData, printConnectionStats);
}

bool statsCbSessionStats(KelvarisSDK_SessionStatsResult result, void* userData) {
    return printReport("[\"session_stats\",", result, userData, printSessionStatsResult);
}

bool statsCbStreamingStats(KelvarisSDK_StreamingStatsResult result, void* userData) {
    return printReport("[\"streaming_stats\",", result, userData, printStreamingStatsResult);
}

} // namespace

// A registration that fails says so through its callback.
int requestStats(int duration, unsigned char count, unsigned int* periods) {
    FirstReportTime firstReportTime = 0;
    auto const state = KelvarisSDK_GetState(sdk, statsCbState, &firstReportTime);
    auto const adapters = KelvarisSDK_GetAdapters(sdk, statsCbAdapters, &firstReportTime);
    auto const connections = KelvarisSDK_GetConnectionStats(sdk, statsCbConnectionStats, &firstReportTime);
    auto const sessions = KelvarisSDK_GetSessionStats(sdk, statsCbSessionStats, &firstReportTime);
    auto const streams = KelvarisSDK_GetStreamingStats(sdk, statsCbStreamingStats, &firstReportTime);
    KelvarisSDK_EnableStatUpdates(sdk, true, count, periods);
    waitForEndOfStream(duration, firstReportTime);
    KelvarisSDK_EnableStatUpdates(sdk, false, 0, nullptr);
    KelvarisSDK_UnregisterCallback(sdk, state.base.callbackId);
    KelvarisSDK_UnregisterCallback(sdk, adapters.base.callbackId);
    KelvarisSDK_UnregisterCallback(sdk, connections.base.callbackId);
    KelvarisSDK_UnregisterCallback(sdk, sessions.base.callbackId);
    KelvarisSDK_UnregisterCallback(sdk, streams.base.callbackId);
    return 0;
}

int requestLastDisconnectEvent() {
    return finish(KelvarisSDK_GetLastDisconnectEvent(sdk, nullptr, nullptr), printDisconnectEvent);
}

int startSpeedtest() {
    return finish(KelvarisSDK_StartSpeedTest(sdk, nullptr, nullptr), printSpeedTestResult);
}

int startStreamtest() {
    return finish(KelvarisSDK_StartStreamTest(sdk, nullptr, nullptr), printSpeedTestResult);
}

int requestSpeedTestResults() {
    return finish(KelvarisSDK_GetSpeedTestResults(sdk, nullptr, nullptr), printSpeedTestResult);
}
