// Some actions stay connected and print a stream of documents. Each document is an array of its tag and its
// content, followed by an empty line.

#pragma once

#include <atomic>
#include <cstdio>
#include <ctime>

#include "jsonprinter.h"

// This is when the stream's first document came, and 0 before that. The library's thread writes it, the main
// thread reads it.
using FirstReportTime = std::atomic<std::time_t>;

// Notes the time of a first document, and prints the framing and content of an error on standard error.
void noteReport(FirstReportTime& firstReportTime);
void printStreamError(KelvarisSDK_BaseResult const& result);

// Does what every callback of a stream does; `userData` is the stream's FirstReportTime. Returns true, because the
// stream goes on.
template <class Result>
bool printReport(char const* tag, Result const& result, void* userData, void (*print)(Result const&)) {
    noteReport(*static_cast<FirstReportTime*>(userData));
    if (result.base.error) {
        printStreamError(result.base);
    } else {
        std::puts(tag);
        print(result);
        std::puts("]\n");
    }
    return true;
}

// Sleeps in steps of a second until a positive duration has passed since the first document, or until a
// document couldn't be written. 0 and -1 have no end.
void waitForEndOfStream(int duration, FirstReportTime const& firstReportTime);
