// The streams of statistics and of safe browsing's events: how long they run, the subscription and its repeats.

#include "jsonprinter.h"
#include "support/sdk.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <thread>

using namespace harness;

namespace {

std::string const unreadable =
    styled(R"({"errorCode":3840,"errorType":"An error in the SDK","errorMessage":"Error from SDK"})");

// The listeners ask for nothing, so nothing tells when they are in place: the events are sent again and again
// until the tool has printed both, each whole: the last line of a document comes with the next one. A run of two
// seconds then has one more to go; an endless one is still there seconds later, and is killed.
void testStream(std::string const& words, std::string const& event, std::string const& payload,
                std::string const& document, bool endless) {
    ScriptedDaemon daemon;
    Command command = tool(split("-p " + std::to_string(daemon.port()) + " safebrowsing " + words));
    command.clock = endless ? 20 : 4;
    Process process(command);
    daemon.waitForConnections(1);
    std::atomic<bool> heard = false;
    std::thread sender([&] {
        while (!heard) {
            daemon.send(report(event, R"({"host":[]})"));
            daemon.send(report(event, payload));
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
    process.waitForOutput(document + "]\n\n");
    process.waitForOutput(unreadable + "]\n\n");
    heard = true;
    sender.join();
    if (endless) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        daemon.send(report(event, R"({"host":"later"})"));
        daemon.send(report(event, "{}"));
        process.waitForOutput("later");
        process.signal(SIGTERM);
    }
    Outcome const& outcome = process.wait();
    EXPECT_EQ(outcome.status, endless ? -SIGTERM : 0);
    EXPECT_EQ(outcome.out.find(document + "]\n\n"), 0U);
    EXPECT_EQ(outcome.err.find("[\"error\",\n" + unreadable + "]\n\n"), 0U);
}

} // namespace

// The runner repeats the subscription at once, without periods, but not again when it begins anew after a pause. The
// answers take 600 ms in the pause and behind it, in which a wrong repeat would show.
TEST(Stats, SubscriptionAndItsRepeat) {
    Step slow = asked("disconnect_reason",
                      R"({"disconnectReason":"SLEEP","sessionEnd":-5,"sessionLength":9007199254740993})");
    slow.delayMs = 600;
    std::vector<Step> const script = {{"stat_subscribe", R"({"enable":true,"periods":[6,5,4,3,2]})"},
                                      {"stat_subscribe", R"({"enable":true})"},
                                      {"stat_subscribe", R"({"enable":false})"},
                                      slow,
                                      {"stat_subscribe", R"({"enable":true,"periods":[6,5]})"},
                                      slow};
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

// The thread that it starts ends at once, and the end waits for it.
TEST(Stats, FirstSubscriptionWhileTheHandleEnds) {
    ScriptedDaemon daemon({asked("version_data", "{}"), {"stat_subscribe", R"({"enable":true})"}}, noName);
    auto sdk = std::make_unique<Sdk>(daemon);
    std::promise<void> begun;
    auto inside = std::async(std::launch::async, [&, &own = *sdk] {
        inCallback(own.handle(), [&] {
            begun.set_value();
            while (own.isAlive()) {
                std::this_thread::yield();
            }
            EXPECT_FALSE(own.enableStatUpdates(true, 0, nullptr).error);
        });
    });
    begun.get_future().wait();
    sdk.reset();
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

// A full message runs on into the host; behind a full host the record ends. 0 seconds and -1 have no end.
TEST(SafeBrowsing, Streams) {
    std::string const message(200, 'm');
    std::string const host(253, 'h');
    std::string const error = "[\"safebrowsing_error\",\n" + styled(R"({"error":-7,"message":")" + message +
                                                                    host + R"(","host":")" + host + "\"}");
    std::string const payload = R"({"error":-7,"safebro_msg":")" + message + R"(M","host":")" + host + "H\"}";
    testStream("errors 2", "safe_browsing_lookup_error", payload, error, false);
    testStream("errors 0", "safe_browsing_lookup_error", payload, error, true);
    testStream("errors -1", "safe_browsing_lookup_error", payload, error, true);
    std::string const block = R"({"redirected":true,"host":"h"})";
    testStream("redirects", "safe_browsing_block", block, "[\"safebrowsing_block\",\n" + styled(block), true);
}
