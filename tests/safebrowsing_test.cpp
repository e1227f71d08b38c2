// Safe browsing: the control actions with their three kinds of endings, the grammar, the two event streams.

#include "support/rows.h"
#include "support/sdk.h"

#include <atomic>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <kelvarissdk/csdkinterface.h>
#include <thread>

using namespace harness;

namespace {

std::string settings(std::string const& payload) {
    return report("safe_browsing_settings", payload);
}

std::string connectError(int code) {
    return report("safe_browsing_connect_error",
                  R"({"safebro_msg":"refused","error":)" + std::to_string(code) + "}");
}

// Settings whose one true value says which of the three it is, and how they are printed.
std::string const initialized = settings(R"({"initialized":true,"log_level":"trace"})");
std::string const configured = settings(R"({"config_set":true,"network_override":"unsafe"})");
std::string const enabled = settings(R"({"enabled":true,"log_level":"warning","network_override":"safe"})");

std::string printed(std::string const& members) {
    return changed(R"({"initialized":false,"configSet":false,"enabled":false,"log_level":"debug",
                       "network_override":"none"})",
                   members);
}

std::string const printedInitialized = printed(R"({"initialized":true,"log_level":"trace"})");
std::string const printedConfigured = printed(R"({"configSet":true,"network_override":"unsafe"})");
std::string const printedEnabled =
    printed(R"({"enabled":true,"log_level":"warning","network_override":"safe"})");
std::string const printedNothing = printed("{}");

std::string printedConnectError(int code) {
    return styled(R"({"msg":"refused","error":)" + std::to_string(code) + "}");
}

// An action of one request, and how it ends.
Row ends(std::string const& words, Step const& step, std::string const& out, int status = 0) {
    Row ended = row("safebrowsing " + words, {step}, out);
    ended.status = status;
    return ended;
}

struct Call {
    std::string words;
    std::string request;
    std::string payload;
    std::string lock; // the setting whose lock ends it
};

std::vector<Call> const settingCalls = {
    {"initialize c", "initialize_safe_browsing", R"({"config":"c"})", "initialize_safe_browsing"},
    {"config c", "set_safe_browsing_config", R"({"config":"c"})", "initialize_safe_browsing"},
    {"enable on", "enable_safe_browsing", R"({"enable":true})", "enable_safe_browsing"},
};
// These await an initialized service or a connect error.
std::vector<Call> const serviceCalls = {
    {"token t", "safe_browsing_token_refresh", R"({"token":"t"})", "safe_browsing_token_refresh"},
    {"update i", "set_safe_browsing_extra_info", R"({"info":"i"})", "set_safe_browsing_extra_info"},
    {"homenetwork 0 -2 18446744073709551615", "safe_browsing_report_home_network",
     R"({"retries":0,"delay":18446744073709551614,"timeout":18446744073709551615})",
     "safe_browsing_token_refresh"},
};

// The listeners ask for nothing, so nothing tells when they are in place: the events are sent again and again
// until the tool has printed both, each whole: the last line of a document comes with the next one. A run of two
// seconds then has one more to go; an endless one is killed.
void testStream(std::string const& words, std::string const& event, std::string const& payload,
                std::string const& document, bool endless) {
    ScriptedDaemon daemon;
    Process process(tool(split("-p " + std::to_string(daemon.port()) + " safebrowsing " + words)));
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
        process.signal(SIGTERM);
    }
    Outcome const& outcome = process.wait();
    EXPECT_EQ(outcome.status, endless ? -SIGTERM : 0);
    EXPECT_EQ(outcome.out.find(document + "]\n\n"), 0U);
    EXPECT_EQ(outcome.err.find("[\"error\",\n" + unreadable + "]\n\n"), 0U);
}

} // namespace

TEST(SafeBrowsing, Settings) {
    std::string const config = R"({"config":"c"})";
    std::string const homeNetwork = R"({"retries":0,"delay":0,"timeout":0})";
    std::string const unknown = R"({"log_level":"Error","network_override":"SAFE"})";
    std::vector<Row> rows = {
        ends("settings", asked("safe_browsing_settings", unknown), printedNothing),
        ends("settings", asked("safe_browsing_settings", "null"), printedNothing),
        ends("initialize c", {"initialize_safe_browsing", config, {configured}}, printedConfigured),
        // A connect error isn't awaited by a call that only changes settings.
        ends("config c", {"set_safe_browsing_config", config, {connectError(1), configured}},
             printedConfigured),
        ends("enable on", {"enable_safe_browsing", R"({"enable":true})", {enabled}}, printedEnabled),
        ends("enable off", {"enable_safe_browsing", R"({"enable":false})", {configured}}, printedConfigured),
        ends("homenetwork", {"safe_browsing_report_home_network", homeNetwork, {initialized}},
             printedInitialized),
    };
    // No lock concerns these two.
    auto const change = [&rows](std::string const& words, std::string const& request,
                                std::string const& payload) {
        rows.push_back(
            ends(words, {request, payload, {lock(request, 1), settings(payload)}}, printed(payload)));
    };
    for (std::string const level : {"trace", "debug", "info", "warning", "error"}) {
        change("loglevel " + level, "set_safe_browsing_log_level", R"({"log_level":")" + level + "\"}");
    }
    for (std::string const value : {"none", "unsafe", "safe"}) {
        change("override " + value, "set_safe_browsing_safe_network_override",
               R"({"network_override":")" + value + "\"}");
    }
    runRows(rows);
    auto const level = static_cast<KelvarisSDK_SafeBrowsingLogLevel>(5);
    auto const value = static_cast<KelvarisSDK_SafeBrowsingSafeNetworkOverride>(3);
    EXPECT_STREQ(KelvarisSDK_SafeBrowsing_LogLevel_toString(level), "debug");
    EXPECT_STREQ(KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString(value), "none");
}

TEST(SafeBrowsing, ConnectErrors) {
    Call const& initialize = settingCalls[0];
    std::string const tooLong =
        report("safe_browsing_connect_error", R"({"safebro_msg":")" + std::string(201, 'm') + "\"}");
    std::vector<Row> rows = {
        ends("initialize c", {initialize.request, initialize.payload, {connectError(17)}},
             printedConnectError(17), 1),
        ends("initialize c", {initialize.request, initialize.payload, {tooLong}},
             styled(R"({"error":0,"msg":")" + std::string(200, 'm') + "\"}"), 1),
    };
    for (Call const& call : serviceCalls) {
        for (int const code : {0, 17, 18}) {
            bool const isHarmless = call.words.find("homenetwork") == 0 && code != 18;
            rows.push_back(ends(call.words, {call.request, call.payload, {configured, connectError(code)}},
                                printedConnectError(code), isHarmless ? 0 : 1));
        }
        rows.push_back(ends(call.words, {call.request, call.payload, {enabled, configured, initialized}},
                            printedInitialized));
    }
    runRows(rows);
}

// Both steps of a start and a stop; the record is the second one's, whatever became of the first.
TEST(SafeBrowsing, StartAndStop) {
    Step const enable{"enable_safe_browsing", R"({"enable":true})", {lock("enable_safe_browsing", 1)}};
    Step const disable{"enable_safe_browsing", R"({"enable":false})", {enabled}};
    Step const refuse{"initialize_safe_browsing", R"({"config":"c"})", {connectError(18)}};
    Step const empty{"initialize_safe_browsing", R"({"config":""})", {configured}};
    runRowsInParallel({
        row("safebrowsing start c", {enable, refuse}, printedNothing),
        row("safebrowsing stop", {disable, empty}, printedConfigured),
        // A time-out for each step.
        failing("safebrowsing start c", {{enable.request, enable.payload}, {refuse.request, refuse.payload}},
                timedOut),
    });
}

// With a callback both steps are under way at once, and it runs for each.
TEST(SafeBrowsing, StartWithACallback) {
    ScriptedDaemon daemon({{"enable_safe_browsing", R"({"enable":true})"},
                           {"initialize_safe_browsing", R"({"config":"c"})", {connectError(5), enabled}}},
                          noName);
    KelvarisSDK_Handle* const handle =
        KelvarisSDK_CreateWithSettings({.appName = "", .address = "127.0.0.1", .port = daemon.port()});
    std::promise<KelvarisSDK_SafeBrowsingResult> steps[2];
    auto const callback = [](KelvarisSDK_SafeBrowsingResult result, void* userData) {
        static_cast<std::promise<KelvarisSDK_SafeBrowsingResult>*>(userData)[result.enabled].set_value(
            result);
        return true;
    };
    auto const returned = KelvarisSDK_StartSafeBrowsing(handle, "c", callback, steps);
    KelvarisSDK_SafeBrowsingResult const second = steps[0].get_future().get();
    EXPECT_EQ(second.base.callbackId, returned.base.callbackId);
    EXPECT_EQ(second.connectErrorCode, 5);
    EXPECT_FALSE(steps[1].get_future().get().connectErrorSet);
    KelvarisSDK_Destroy(handle);
}

// A lock counts under the name in the table, under the request's own only where that is the same.
TEST(SafeBrowsing, Locks) {
    std::vector<Row> rows;
    for (std::vector<Call> const& calls : {settingCalls, serviceCalls}) {
        for (Call const& call : calls) {
            std::string const other = call.request == call.lock ? "other" : call.request;
            Step const step{call.request, call.payload, {lock(other, 1), lock(call.lock, 2)}};
            rows.push_back(failing("safebrowsing " + call.words, {step}, lockedByAccount));
        }
    }
    runRows(rows);
}

TEST(SafeBrowsing, RefusedWords) {
    std::string const name = "safebrowsing ";
    std::vector<Row> rows;
    addRefusals(rows, {{name + "enable <on|off>", {}, {name + "enable", name + "enable On"}},
                       {name + "loglevel <trace|debug|info|warning|error>",
                        {},
                        {name + "loglevel", name + "loglevel warn"}},
                       {name + "override <none|unsafe|safe>", {}, {name + "override", name + "override off"}},
                       {name + "errors [duration in seconds]",
                        {},
                        {name + "errors -2", name + "errors 2147483648", name + "redirects x"}},
                       {name + "homenetwork [retries delay timeout]",
                        {},
                        {name + "homenetwork -1 2 3", name + "homenetwork 4294967296 2 3",
                         name + "homenetwork 1 18446744073709551616 3", name + "homenetwork 1 2 3s",
                         name + "homenetwork 1 '' 3", name + "homenetwork 1 0x10 3"}},
                       {name + "<initialize|config|enable|errors|stats|redirects|loglevel|token|homenetwork|"
                               "override|settings|start|stop|update>",
                        {"safebrowsing"},
                        {name + "Settings", name + "settings now", name + "stop extra", name + "stats 1",
                         name + "token a b", name + "homenetwork 1", name + "homenetwork 1 2",
                         name + "homenetwork 1 2 3 4", name + "errors 1 2 3"}}});
    for (std::string const action : {"initialize", "config", "token", "start", "update"}) {
        addRefusals(rows, {{name + action + " <string>", {}, {name + action}}});
    }
    runRows(rows);
}

TEST(SafeBrowsing, Stats) {
    std::string const same = R"({"min":1,"max":2,"average":4294967295,"num_errors":4,"num_blocks":5,)"
                             R"("failure_rate":0.5,"num_block_responses":6,)";
    std::string const wire = R"("num_safe_browsing_lookups":18446744073709551615,)"
                             R"("num_safe_browsing_packets_filtered":8})";
    std::string const shown = R"("num_lookups":18446744073709551615,"num_packets_filtered":8})";
    runRows({row("safebrowsing stats", {asked("safe_browsing_stats", same + wire)}, styled(same + shown))});
}

// A full message runs on into the host; behind a full host the record ends.
TEST(SafeBrowsing, Streams) {
    std::string const message(200, 'm');
    std::string const host(253, 'h');
    std::string const error = "[\"safebrowsing_error\",\n" + styled(R"({"error":-7,"message":")" + message +
                                                                    host + R"(","host":")" + host + "\"}");
    testStream("errors 2", "safe_browsing_lookup_error",
               R"({"error":-7,"safebro_msg":")" + message + R"(M","host":")" + host + "H\"}", error, false);
    std::string const block = R"({"redirected":true,"host":"h"})";
    testStream("redirects", "safe_browsing_block", block, "[\"safebrowsing_block\",\n" + styled(block), true);
}

// A listener without a callback is refused before anybody asks for the link.
TEST(SafeBrowsing, ListenersNeedACallback) {
    ScriptedDaemon daemon;
    Sdk sdk(daemon);
    sdk.unlink();
    EXPECT_EQ(sdk.listenForSafeBrowsingError(nullptr, nullptr).base.errorCode, 3843);
    EXPECT_EQ(sdk.listenForSafeBrowsingBlock(nullptr, nullptr).base.errorCode, 3843);
}
