// The stream of statistics: how long it runs, what its records hold at most, the subscription and its repeats.

#include "jsonprinter.h"
#include "support/rows.h"
#include "support/sdk.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <memory>

using namespace harness;

namespace {

// A run of "stats": five requests, the subscription and its first repeat, which has no periods; the end is a
// step more.
std::vector<Step> statsRun(std::string const& subscription = R"({"enable":true})") {
    return {{.request = "request_current_state"},    {.request = "request_networks"},
            {.request = "request_connection_stats"}, {.request = "request_session_stats"},
            {.request = "request_streaming_stats"},  {"stat_subscribe", subscription},
            {"stat_subscribe", R"({"enable":true})"}};
}

} // namespace

TEST(Stats, WithoutAnAnswer) {
    Row silence = row("stats 1 4294967295", statsRun(R"({"enable":true,"periods":[4294967295]})"), "");
    silence.exchange.push_back({"stat_subscribe", R"({"enable":false})"});
    for (int i = 0; i < 5; ++i) {
        silence.err += "[\"error\",\n" + timedOut + "]\n\n";
    }
    silence.clock = 10;
    runRows({silence});
}

TEST(Stats, FullDiskEndsAnEndlessRun) {
    std::vector<Step> script = statsRun();
    script.back().answers = {state(6)};
    script.push_back({"stat_subscribe", R"({"enable":false})"});
    ScriptedDaemon daemon(script);
    std::string const run = SDKCLI_PATH " -p " + std::to_string(daemon.port()) + " stats -1 >/dev/full";
    Outcome const outcome = runProcess({.path = "/bin/sh", .argv = {"sh", "-c", run}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "sdkcli: can't write to standard output\n");
}

// The subscription is repeated every 45 s and not with every tick of the 250 ms between two looks at the clock.
// 0 seconds have no end.
TEST(Stats, EndlessRunRepeatsItsSubscription) {
    int const clock = 25;
    std::vector<Step> script = statsRun();
    script[0].answers = {state(6)};
    script.push_back({"stat_subscribe", R"({"enable":true})", {state(2)}});
    ScriptedDaemon daemon(script);
    Command command = tool({"-p", std::to_string(daemon.port()), "stats", "0"});
    command.clock = clock;
    Process process(command);
    for (int i = 0; i < 2; ++i) {
        daemon.waitForRequest("stat_subscribe");
    }
    auto const start = std::chrono::steady_clock::now();
    daemon.waitForRequest("stat_subscribe");
    auto const passed = clock * (std::chrono::steady_clock::now() - start);
    EXPECT_GT(passed, std::chrono::seconds(43));
    EXPECT_LT(passed, std::chrono::seconds(50));
    process.waitForOutput("LOGGED_IN");
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait().status, -SIGTERM);
}

// The runner repeats the subscription within a tick, without periods; not again when it begins anew after a
// pause. The answers give it the time of two ticks in the pause and of two behind it.
TEST(Stats, SubscriptionAndItsRepeat) {
    Step ticks = asked("disconnect_reason",
                       R"({"disconnectReason":"SLEEP","sessionEnd":-5,"sessionLength":9007199254740993})");
    ticks.delayMs = 600;
    std::vector<Step> const script = {{"stat_subscribe", R"({"enable":true,"periods":[6,5,4,3,2]})"},
                                      {"stat_subscribe", R"({"enable":true})"},
                                      {"stat_subscribe", R"({"enable":false})"},
                                      ticks,
                                      {"stat_subscribe", R"({"enable":true,"periods":[6,5]})"},
                                      ticks};
    ScriptedDaemon daemon(script, noName);
    Sdk sdk(daemon);
    unsigned int periods[] = {6, 5, 4, 3, 2, 1};
    EXPECT_FALSE(sdk.enableStatUpdates(true, 6, periods).error);
    daemon.waitForRequest("stat_subscribe");
    daemon.waitForRequest("stat_subscribe");
    sdk.enableStatUpdates(false, 2, periods);
    KelvarisSDK_DisconnectEventResult const event = sdk.getLastDisconnectEvent(nullptr, nullptr);
    EXPECT_EQ(event.disconnectReason, KelvarisSDK_DisconnectReason_SLEEP);
    EXPECT_EQ(event.sessionEnd, -5);
    EXPECT_EQ(event.sessionLength, 9007199254740993);
    sdk.enableStatUpdates(true, 2, periods);
    sdk.getLastDisconnectEvent(nullptr, nullptr);
}

// A tick is 250 ms. Some ends come before the first tick begins, and a busy machine may hold up a few.
TEST(Stats, DestructionEndsATick) {
    ScriptedDaemon daemon({}, noName);
    std::vector<std::chrono::steady_clock::duration> times;
    for (std::size_t i = 1; i <= 20; ++i) {
        auto sdk = std::make_unique<Sdk>(daemon);
        daemon.waitForConnections(i);
        auto const start = std::chrono::steady_clock::now();
        sdk.reset();
        times.push_back(std::chrono::steady_clock::now() - start);
    }
    std::sort(times.begin(), times.end());
    EXPECT_LT(times[15], std::chrono::milliseconds(200));
}

TEST(Stats, BriefForm) {
    auto const result = std::make_unique<KelvarisSDK_ConnectionStatsResult>();
    result->stats.connectionCount = 1;
    testing::internal::CaptureStdout();
    printConnectionStatsResult(*result, true);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              styled(R"({"time":0,"connections":[{"inFlight":0,"inFlightWindow":0,"connected":false,
                         "sleeping":false,"adapterID":"","connectionID":"","lossReceive":0.0,"lossSend":0.0,
                         "latencyMs":0,"totalBps":0}]})"));
}
