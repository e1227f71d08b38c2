#include "stream.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <unistd.h>

#include "calls.h"

namespace {

// Returns the first call that has failed, or the end.
auto failedCall(StreamCalls calls) {
    return std::find_if(calls.begin(), calls.end(), [](auto const& call) { return call.error; });
}

} // namespace

void noteReport(Stream& stream) {
    if (stream.firstReportTime == 0) {
        stream.firstReportTime = std::time(nullptr);
    }
}

void waitForEndOfStream(int duration, Stream const& stream, StreamCalls calls) {
    if (failedCall(calls) != calls.end()) {
        return;
    }
    while (std::ferror(stdout) == 0 && !stream.lacksMemory &&
           (duration <= 0 || stream.firstReportTime == 0 ||
            std::time(nullptr) - stream.firstReportTime < duration)) {
        sleep(1);
    }
}

int endStream(Stream const& stream, StreamCalls calls) {
    for (KelvarisSDK_BaseResult const& call : calls) {
        KelvarisSDK_UnregisterCallback(sdk, call.callbackId);
    }
    if (stream.lacksMemory) {
        throw std::bad_alloc();
    }
    auto const failed = failedCall(calls);
    return failed == calls.end() ? 0 : finishSilently(*failed);
}
