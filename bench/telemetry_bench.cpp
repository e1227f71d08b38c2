// What a report of 25 connections costs the library's thread, in bursts of different lengths, beside what
// parsing its JSON costs by itself. Times are of that thread's processor clock.

#include <atomic>
#include <benchmark/benchmark.h>
#include <ctime>
#include <json/json.h>
#include <kelvarissdk/csdkinterface.h>
#include <string>

#include "support/scripteddaemon.h"

namespace {

std::string reportText() {
    Json::Value report(Json::arrayValue);
    report.append("report_connection_stats");
    Json::Value& payload = report.append(Json::Value());
    payload["time"] = Json::Int64(1795384539360);
    for (int i = 0; i < 25; ++i) {
        Json::Value& connection = payload["connections"].append(Json::Value());
        for (char const* key : {"guid", "key", "localIp", "privateIp", "remoteIp"}) {
            connection[key] = "198.51.100." + std::to_string(i);
        }
        for (char const* key : {"bInF", "bInFL", "ltMs", "totBps", "sndBps", "rcvBps", "numConns", "jtMs"}) {
            connection[key] = 1000 + i;
        }
        for (char const* key : {"lsR", "lsS", "sndEstMbps", "rcvEstMbps", "mos"}) {
            connection[key] = 0.0625 * i;
        }
        connection["cnnct"] = true;
        connection["zzz"] = 0;
        connection["protocol"] = "tcp-multi";
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, report);
}

double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

struct Burst {
    long length;
    long received = 0;
    double start = 0; // at the first report
    double seconds = 0;
    std::atomic<bool> done = false;
};

bool count(KelvarisSDK_ConnectionStatsResult, void* userData) {
    Burst& burst = *static_cast<Burst*>(userData);
    if (burst.received++ == 0) {
        burst.start = threadSeconds();
    } else if (burst.received == burst.length) {
        burst.seconds = threadSeconds() - burst.start;
        burst.done = true;
        burst.done.notify_one();
    }
    return true;
}

void BurstOfReports(benchmark::State& state) {
    std::string frames;
    for (int i = 0; i < 1000; ++i) {
        frames += harness::frame(0x81, reportText());
    }
    harness::ScriptedDaemon daemon({}, {.appName = std::nullopt});
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    settings.port = daemon.port();
    KelvarisSDK_Handle* const sdk = KelvarisSDK_CreateWithSettings(settings);
    for (auto _ : state) {
        Burst burst{.length = state.range(0)};
        auto const call = KelvarisSDK_GetConnectionStats(sdk, count, &burst);
        daemon.waitForRequest("request_connection_stats");
        for (long sent = 0; sent < burst.length; sent += 1000) {
            daemon.send(harness::raw(frames));
        }
        burst.done.wait(false);
        KelvarisSDK_UnregisterCallback(sdk, call.base.callbackId);
        state.SetIterationTime(burst.seconds);
        state.counters["us_per_report"] = burst.seconds / static_cast<double>(burst.length - 1) * 1e6;
    }
    KelvarisSDK_Destroy(sdk);
}
BENCHMARK(BurstOfReports)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void ParseOneReport(benchmark::State& state) {
    std::string const text = reportText();
    Json::Reader reader;
    for (auto _ : state) {
        Json::Value document;
        benchmark::DoNotOptimize(reader.parse(text, document, false));
    }
    state.counters["bytes"] = static_cast<double>(text.size());
}
BENCHMARK(ParseOneReport)->Unit(benchmark::kMicrosecond);
#pragma GCC diagnostic pop

} // namespace

BENCHMARK_MAIN();
