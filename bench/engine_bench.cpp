// What happens inside one process: calls on a link, the end of a handle, bursts, long messages, and what a
// handle does (idle_bench.cpp) and keeps while nothing happens. SIMULATOR_PORT, CLOSING_PORT (a simulator that answers with
// a close frame) and LOAD_PORT name the daemons. Counters called "median" are in seconds.

#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <future>
#include <json/json.h>
#include <kelvarissdk/csdkinterface.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "easywsclient.h"
#include "handles.h"

namespace {

using std::chrono::milliseconds;

double median(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::string loadName(std::int64_t count, std::int64_t size = 0) {
    return "load " + std::to_string(count) + " " + std::to_string(size);
}

// ---- Calls ----

void idleCall(benchmark::State& state) {
    Handle const handle = linkedHandle();
    std::vector<double> times;
    for (auto _ : state) {
        std::this_thread::sleep_for(milliseconds(2));
        auto const start = Clock::now();
        mustSucceed(reads[0](handle.get()), "a call failed");
        times.push_back(secondsSince(start));
        state.SetIterationTime(times.back());
    }
    state.counters["median"] = median(times);
}
BENCHMARK(idleCall)->UseManualTime()->Iterations(300);

void calls(benchmark::State& state) {
    Handle const handle = linkedHandle();
    for (auto _ : state) {
        mustSucceed(reads[0](handle.get()), "a call failed");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(calls)->UseRealTime()->Iterations(5000);

constexpr int callsOfARead = 2000;

void readsInTurn(benchmark::State& state) {
    Handle const handle = linkedHandle();
    for (auto _ : state) {
        for (int i = 0; i < callsOfARead; ++i) {
            for (Read const read : reads) {
                mustSucceed(read(handle.get()), "a call failed");
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * callsOfARead * static_cast<int>(reads.size()));
}
BENCHMARK(readsInTurn)->UseRealTime()->Iterations(1);

void readsAtOnce(benchmark::State& state) {
    Handle const handle = linkedHandle();
    std::atomic<int> matched = 0;
    for (auto _ : state) {
        std::vector<std::jthread> threads;
        for (Read const read : reads) {
            threads.emplace_back([&matched, &handle, read] {
                for (int i = 0; i < callsOfARead; ++i) {
                    matched += read(handle.get()) ? 1 : 0;
                }
            });
        }
    }
    state.SetItemsProcessed(matched);
}
BENCHMARK(readsAtOnce)->UseRealTime()->Iterations(1);

void destroyIdle(benchmark::State& state) {
    std::vector<double> times;
    for (auto _ : state) {
        Handle handle = linkedHandle();
        std::this_thread::sleep_for(milliseconds(5));
        auto const start = Clock::now();
        handle.reset();
        times.push_back(secondsSince(start));
        state.SetIterationTime(times.back());
    }
    state.counters["median"] = median(times);
}
BENCHMARK(destroyIdle)->UseManualTime()->Iterations(100);

// ---- The WebSocket client by itself ----

class FrameReader {
public:
    FrameReader(std::int64_t count, std::int64_t size)
        : socket(easywsclient::WebSocket::from_url(
              "ws://127.0.0.1:" + std::to_string(portFrom("LOAD_PORT")) + "/", "easywsclient://")) {
        mustSucceed(socket != nullptr, "no load daemon");
        socket->send("[\"set_app_name\", {\"name\": \"" + loadName(count, size) + "\"}, \"kelvaris_sdk\"]");
        receive("request_current_state", count);
    }

    // Returns the last message.
    std::string receive(std::string const& request, std::int64_t count) {
        socket->send("[\"" + request + "\", null, \"kelvaris_sdk\"]");
        std::string last;
        while (count > 0) {
            mustSucceed(socket->getReadyState() == easywsclient::WebSocket::OPEN, "the load daemon has gone");
            socket->poll(1000);
            socket->dispatch([&](std::string const& message) {
                if (--count == 0) {
                    last = message;
                }
            });
        }
        return last;
    }

private:
    std::unique_ptr<easywsclient::WebSocket> socket;
};

// The median is the time from the request to the last report; cpuPerReport leaves out the wait for the
// daemon.
void framed(benchmark::State& state) {
    FrameReader reader(state.range(0), 0);
    std::vector<double> times;
    double const cpuBefore = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
    for (auto _ : state) {
        auto const start = Clock::now();
        reader.receive("request_current_state", state.range(0));
        times.push_back(secondsSince(start));
    }
    double const cpu = cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - cpuBefore;
    state.counters["median"] = median(times);
    state.counters["cpuPerReport"] = cpu / static_cast<double>(state.iterations() * state.range(0));
}
BENCHMARK(framed)->Arg(1000)->UseRealTime()->Iterations(100);
BENCHMARK(framed)->Arg(10000)->UseRealTime()->Iterations(20);
BENCHMARK(framed)->Arg(100000)->UseRealTime()->Iterations(5);

// Arguments: how many messages, of which size. One iteration, as the yardstick has it.
void message(benchmark::State& state) {
    FrameReader reader(state.range(0), state.range(1));
    for (auto _ : state) {
        reader.receive("request_current_state", state.range(0));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * state.range(1));
}
BENCHMARK(message)->Args({1000, 64 << 10})->Args({64, 1 << 20})->UseRealTime()->Iterations(1);

// ---- Reports through the whole library ----

template <class T> class Burst {
public:
    Burst(Getter<T> get, KelvarisSDK_Handle* handle, int count) : left(count), intervals(count - 1) {
        std::future<void> const ended = last.get_future();
        get(handle, &Burst::onReport, this);
        ended.wait();
        mustSucceed(intact, "a report of a burst failed");
    }

    // Returns the time between the ends of the first and of the last report.
    double secondsAReport() const {
        return seconds / intervals;
    }

    // Returns the processor time of the reader thread.
    double cpuSecondsAReport() const {
        return cpu / intervals;
    }

private:
    static bool onReport(T result, void* userData) {
        Burst& burst = *static_cast<Burst*>(userData);
        burst.intact = burst.intact && !result.base.error;
        if (burst.left-- == burst.intervals + 1) {
            burst.first = Clock::now();
            burst.firstCpu = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        }
        if (burst.left == 0 || !burst.intact) {
            burst.seconds = secondsSince(burst.first);
            burst.cpu = cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - burst.firstCpu;
            burst.last.set_value();
            return false;
        }
        return true;
    }

    int left;
    int const intervals;
    bool intact = true;
    Clock::time_point first;
    double firstCpu = 0;
    double seconds = 0;
    double cpu = 0;
    std::promise<void> last;
};

template <class T> void deliver(benchmark::State& state, Getter<T> get) {
    auto const count = static_cast<int>(state.range(0));
    Handle const handle = makeHandle(portFrom("LOAD_PORT"), loadName(count));
    Burst<T>(get, handle.get(), count);
    std::vector<double> times;
    std::vector<double> cpuTimes;
    for (auto _ : state) {
        Burst<T> const burst(get, handle.get(), count);
        times.push_back(burst.secondsAReport());
        cpuTimes.push_back(burst.cpuSecondsAReport());
        state.SetIterationTime(times.back());
    }
    state.counters["median"] = median(times);
    state.counters["cpuPerReport"] = median(cpuTimes);
}

void delivered(benchmark::State& state) {
    deliver(state, KelvarisSDK_GetState);
}
BENCHMARK(delivered)->Arg(1000)->UseManualTime()->Iterations(100);
BENCHMARK(delivered)->Arg(100000)->UseManualTime()->Iterations(3);

void deliveredDirectory(benchmark::State& state) {
    deliver(state, KelvarisSDK_GetDirectory);
}
BENCHMARK(deliveredDirectory)->Arg(200)->UseManualTime()->Iterations(3);

// What jsoncpp alone takes for such a report, by the reader that the library has, on a thread of its own as there:
// malloc takes its locks only where a process has several.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void parse(benchmark::State& state, std::string const& request) {
    std::string const text = FrameReader(1, 0).receive(request, 1);
    std::vector<double> times;
    std::jthread([&] {
        Json::Reader reader;
        for (auto _ : state) {
            auto const start = Clock::now();
            Json::Value document;
            reader.parse(text.data(), text.data() + text.size(), document, false);
            times.push_back(secondsSince(start));
        }
    }).join();
    state.counters["median"] = median(times);
}
#pragma GCC diagnostic pop
BENCHMARK_CAPTURE(parse, state, "request_current_state")->Iterations(10000);
BENCHMARK_CAPTURE(parse, directory, "request_directory")->Iterations(200);

// ---- What a handle keeps ----

// A handle handles 100,000 reports once its buffers have found their size.
void growth(benchmark::State& state) {
    constexpr int count = 100'000;
    Handle const handle = makeHandle(portFrom("LOAD_PORT"), loadName(count));
    constexpr int warmUps = 5;
    long before = 0;
    for (int i = 0; i < warmUps; ++i) {
        Burst<KelvarisSDK_StateResult>(KelvarisSDK_GetState, handle.get(), count);
        before = residentKiB();
    }
    for (auto _ : state) {
        Burst<KelvarisSDK_StateResult>(KelvarisSDK_GetState, handle.get(), count);
    }
    state.counters["KiB"] = static_cast<double>(residentKiB() - before);
}
BENCHMARK(growth)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
