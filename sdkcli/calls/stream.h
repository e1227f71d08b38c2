// Some actions stay connected and print a stream of documents. Each document is an array of its tag and its
// content, followed by an empty line.

#pragma once

#include <atomic>
#include <ctime>
#include <exception>
#include <span>
#include <type_traits>

#include "finish.h"

// The library's thread, which prints a stream, tells this to the main thread, which waits for its end. A stream is static,
// because callbacks may run until the library object is destroyed, whatever ends the action.
struct Stream {
    std::atomic<std::time_t> firstReportTime = 0; // 0 until the first document came
    std::atomic<bool> lacksMemory = false;        // for a document, and none is printed any more
};
static_assert(std::is_trivially_destructible_v<Stream>);

// Notes the time of a first document.
void noteReport(Stream& stream);

// Does what every callback of a stream does; `userData` is the Stream. Returns true while the stream goes on.
template <class Result>
bool printReport(char const* tag, Result const& result, void* userData, void (*print)(Result const&)) {
    Stream& stream = *static_cast<Stream*>(userData);
    if (stream.lacksMemory) {
        return false;
    }
    noteReport(stream);
    try {
        ReportFrame const frame(result.base.error ? "error" : tag);
        finish(result, print);
    } catch (std::exception const&) { // must not reach the library, and says that memory ran out
        stream.lacksMemory = true;
    }
    return !stream.lacksMemory;
}

// What the calls returned that a stream consists of.
using StreamCalls = std::span<KelvarisSDK_BaseResult const>;

// Sleeps in steps of a second until a positive duration has passed since the first document, or until a
// document couldn't be made or written. 0 and -1 have no end. There is nothing to wait for when a call has failed.
void waitForEndOfStream(int duration, Stream const& stream, StreamCalls calls);

// Unregisters the calls and returns the run's status. A call that has failed is printed; memory that ran out for a
// document is thrown.
int endStream(Stream const& stream, StreamCalls calls);
