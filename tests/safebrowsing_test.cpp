// Safe browsing: the two steps of a start, the two event streams.

#include "support/handle.h"
#include "support/rows.h"

#include <atomic>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <thread>

using namespace harness;

namespace {

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

// A time-out for each step.
TEST(SafeBrowsing, StartWithoutAnAnswer) {
    Row start = failing(
        "safebrowsing start c",
        {{"enable_safe_browsing", R"({"enable":true})"}, {"initialize_safe_browsing", R"({"config":"c"})"}},
        timedOut);
    start.clock = 20;
    runRows({start});
}

// With a callback both steps are under way at once, and it runs for each.
TEST(SafeBrowsing, StartWithACallback) {
    ScriptedDaemon daemon({{"enable_safe_browsing", R"({"enable":true})"},
                           {"initialize_safe_browsing",
                            R"({"config":"c"})",
                            {report("safe_browsing_connect_error", R"({"error":5})"),
                             report("safe_browsing_settings", R"({"enabled":true})")}}},
                          {.appName = std::nullopt});
    Handle const handle(daemon.port());
    std::promise<KelvarisSDK_SafeBrowsingResult> steps[2];
    auto const callback = [](KelvarisSDK_SafeBrowsingResult result, void* userData) {
        static_cast<std::promise<KelvarisSDK_SafeBrowsingResult>*>(userData)[result.enabled].set_value(
            result);
        return true;
    };
    auto const returned = KelvarisSDK_StartSafeBrowsing(handle.sdk, "c", callback, steps);
    KelvarisSDK_SafeBrowsingResult const second = steps[0].get_future().get();
    EXPECT_EQ(second.base.callbackId, returned.base.callbackId);
    EXPECT_EQ(second.connectErrorCode, 5);
    EXPECT_FALSE(steps[1].get_future().get().connectErrorSet);
}

// A full message runs on into the host; behind a full host the record ends. 0 seconds and -1 have no end.
TEST(SafeBrowsing, Streams) {
    std::string const message(200, 'm');
    std::string const host(253, 'h');
    std::string const error = "[\"safebrowsing_error\",\n" + styled(R"({"error":-7,"message":")" + message +
                                                                    host + R"(","host":")" + host + "\"}");
    std::string const payload = R"({"error":-7,"safebro_msg":")" + message + R"(M","host":")" + host + "H\"}";
    testStream("errors 2", "safe_browsing_lookup_error", payload, error, false);
    testStream("errors -1", "safe_browsing_lookup_error", payload, error, true);
    std::string const block = R"({"redirected":true,"host":"h"})";
    testStream("redirects", "safe_browsing_block", block, "[\"safebrowsing_block\",\n" + styled(block), true);
}
