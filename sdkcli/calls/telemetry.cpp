#include "calls.h"

#include <array>

#include "finish.h"
#include "stream.h"

namespace {

bool statsCbState(KelvarisSDK_StateResult result, void* userData) {
    return printReport("state", result, userData, printStateResult);
}

bool statsCbAdapters(KelvarisSDK_AdaptersResult result, void* userData) {
    return printReport("adapters", result, userData, printAdaptersResult);
}

void printConnectionStats(KelvarisSDK_ConnectionStatsResult const& result) {
    printConnectionStatsResult(result, false);
}

bool statsCbConnectionStats(KelvarisSDK_ConnectionStatsResult result, void* userData) {
    return printReport("connection_stats", result, userData, printConnectionStats);
}

bool statsCbSessionStats(KelvarisSDK_SessionStatsResult result, void* userData) {
    return printReport("session_stats", result, userData, printSessionStatsResult);
}

bool statsCbStreamingStats(KelvarisSDK_StreamingStatsResult result, void* userData) {
    return printReport("streaming_stats", result, userData, printStreamingStatsResult);
}

} // namespace

// A registration for which memory runs out says so by what it returns alone.
int requestStats(int duration, unsigned char count, unsigned int* periods) {
    static constinit Stream stream;
    std::array const calls = {
        KelvarisSDK_GetState(sdk, statsCbState, &stream).base,
        KelvarisSDK_GetAdapters(sdk, statsCbAdapters, &stream).base,
        KelvarisSDK_GetConnectionStats(sdk, statsCbConnectionStats, &stream).base,
        KelvarisSDK_GetSessionStats(sdk, statsCbSessionStats, &stream).base,
        KelvarisSDK_GetStreamingStats(sdk, statsCbStreamingStats, &stream).base,
        KelvarisSDK_EnableStatUpdates(sdk, true, count, periods),
    };
    waitForEndOfStream(duration, stream, calls);
    KelvarisSDK_BaseResult const end = KelvarisSDK_EnableStatUpdates(sdk, false, 0, nullptr);
    int const status = endStream(stream, calls);
    return status == 0 ? finishSilently(end) : status;
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
