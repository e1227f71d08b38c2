#include "stream.h"

#include <unistd.h>

void noteReport(FirstReportTime& firstReportTime) {
    if (firstReportTime == 0) {
        firstReportTime = std::time(nullptr);
    }
}

void printStreamError(KelvarisSDK_BaseResult const& result) {
    std::fputs("[\"error\",\n", stderr);
    printError(result);
    std::fputs("]\n\n", stderr);
}

void waitForEndOfStream(int duration, FirstReportTime const& firstReportTime) {
    while (std::ferror(stdout) == 0 &&
           (duration <= 0 || firstReportTime == 0 || std::time(nullptr) - firstReportTime < duration)) {
        sleep(1);
    }
}
