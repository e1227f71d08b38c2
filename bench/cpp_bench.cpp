// The C++ layer beside the C interface that it stands on: a blocking call, a report that the queue delivers, and what a
// consumer that doesn't keep up makes a program keep.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <kelvarissdk/kelvarissdk.hpp>
#include <poll.h>
#include <string>
#include <thread>
#include <vector>

#include "handles.h"

namespace {

kelvaris::Client clientOf(std::uint16_t port, std::string appName = "bench") {
    return kelvaris::Client(
        {.appName = std::move(appName), .port = port, .delivery = kelvaris::Delivery::byQueue()});
}

double median(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <class Call> double timeOf(Call call) {
    auto const start = Clock::now();
    mustSucceed(call(), "a call failed");
    return secondsSince(start);
}

// One call by each in turn, so that a slow moment hits both.
void cppCall(benchmark::State& state) {
    Handle const handle = linkedHandle();
    kelvaris::Client const client = clientOf(portFrom("SIMULATOR_PORT"));
    mustSucceed(static_cast<bool>(client.getState().get()), "no simulator");
    std::vector<double> plain;
    std::vector<double> layered;
    for (auto _ : state) {
        plain.push_back(timeOf([&] { return reads[0](handle.get()); }));
        layered.push_back(timeOf([&] { return static_cast<bool>(client.getState().get()); }));
    }
    state.counters["c"] = median(plain);
    state.counters["cpp"] = median(layered);
}
BENCHMARK(cppCall)->Iterations(5000);

void dispatchUntil(kelvaris::Client const& client, int const& left) {
    while (left > 0) {
        pollfd readable{client.fd(), POLLIN, 0};
        poll(&readable, 1, -1);
        client.dispatch();
    }
}

// The time between the first and the last report of a burst, which another thread receives, for each of them; and the
// processor time of both threads, since where one of them has to wait for a processor the other's time says little.
void cppDelivered(benchmark::State& state) {
    auto const count = static_cast<int>(state.range(0));
    kelvaris::Client const client = clientOf(portFrom("LOAD_PORT"), "load " + std::to_string(count) + " 0");
    std::vector<double> times;
    std::vector<double> cpuTimes;
    for (auto _ : state) {
        double const cpuBefore = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
        int left = count;
        Clock::time_point first;
        auto const states = client.getState().subscribe(
            kelvaris::Keep{static_cast<std::size_t>(count)}, [&](auto const& report) {
                mustSucceed(static_cast<bool>(report), "a report of a burst failed");
                if (left-- == count) {
                    first = Clock::now();
                }
            });
        dispatchUntil(client, left);
        times.push_back(secondsSince(first) / (count - 1));
        cpuTimes.push_back((cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - cpuBefore) / count);
    }
    state.counters["median"] = median(times);
    state.counters["cpuPerReport"] = median(cpuTimes);
}
BENCHMARK(cppDelivered)->Arg(1000)->Iterations(100);

// The consumer takes one report in a millisecond, while 100,000 come.
void cppGrowth(benchmark::State& state) {
    constexpr int count = 100'000;
    kelvaris::Client const client = clientOf(portFrom("LOAD_PORT"), "load " + std::to_string(count) + " 0");
    auto const burst = [&client] {
        std::size_t taken = 0;
        auto const states = client.getState().subscribe([&taken](auto const&) { ++taken; });
        while (taken + states.dropped() < count) {
            client.dispatch(1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return residentKiB();
    };
    long before = 0;
    for (int warmUp = 0; warmUp < 3; ++warmUp) {
        before = burst();
    }
    for (auto _ : state) {
        state.counters["KiB"] = static_cast<double>(burst() - before);
    }
}
BENCHMARK(cppGrowth)->Iterations(1);

} // namespace
