// Safe browsing: the control actions with their three kinds of endings, the grammar, the two event streams.

#include "kelvarissdk.h"
#include "support/rows.h"
#include "websockets.h"

#include <atomic>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <thread>

using namespace harness;

namespace {

constexpr char usage[] = "safebrowsing <initialize|config|enable|errors|stats|redirects|loglevel|token|"
                         "homenetwork|override|settings|start|stop|update>";

std::string report(std::string const& name, std::string const& payload) {
    return "[\"report_" + name + "\"," + payload + "]";
}

std::string settings(std::string const& payload) {
    return report("safe_browsing_settings", payload);
}

std::string connectError(int code) {
    return report("safe_browsing_connect_error",
                  R"({"safebro_msg":"refused","error":)" + std::to_string(code) + "}");
}

std::string locked(std::string const& setting, int reason) {
    return report("setting_locked",
                  R"({"setting":")" + setting + R"(","reason":)" + std::to_string(reason) + "}");
}

// Settings whose one true value says which of the three it is, and how they are printed.
std::string const initialized = settings(R"({"initialized":true,"log_level":"trace"})");
std::string const configured = settings(R"({"config_set":true,"network_override":"unsafe"})");
std::string const enabled = settings(R"({"enabled":true,"log_level":"warning","network_override":"safe"})");

std::string printed(std::string const& flag, std::string const& logLevel,
                    std::string const& networkOverride) {
    Json::Value document;
    for (std::string const name : {"initialized", "configSet", "enabled"}) {
        document[name] = name == flag;
    }
    document["log_level"] = logLevel;
    document["network_override"] = networkOverride;
    return document.toStyledString();
}

std::string const printedInitialized = printed("initialized", "trace", "none");
std::string const printedConfigured = printed("configSet", "debug", "unsafe");
std::string const printedEnabled = printed("enabled", "warning", "safe");
std::string const printedNothing = printed("", "debug", "none");

std::string printedConnectError(int code) {
    return styled(R"({"msg":"refused","error":)" + std::to_string(code) + "}");
}

// "safebrowsing" and the words behind it.
std::vector<std::string> argvOf(std::string const& words) {
    std::istringstream stream("safebrowsing " + words);
    return {std::istream_iterator<std::string>(stream), {}};
}

// An action of one request, and how it ends.
Row row(std::string const& words, Step const& step, std::string const& out, int status = 0) {
    return {.name = words + " -> " + out,
            .argv = argvOf(words),
            .exchange = {step},
            .out = out,
            .status = status};
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
    {"homenetwork 1 -2 18446744073709551615", "safe_browsing_report_home_network",
     R"({"retries":1,"delay":18446744073709551614,"timeout":18446744073709551615})",
     "safe_browsing_token_refresh"},
};

// The listeners ask for nothing, so nothing tells when they are in place: the events are sent again and again
// until the tool has printed both. A run of two seconds then has one more to go; an endless one is killed.
Outcome listen(std::string const& words, bool endless, std::string const& event,
               std::string const& document) {
    ScriptedDaemon daemon;
    std::vector<std::string> argv = argvOf(words);
    argv.insert(argv.begin(), {"-p", std::to_string(daemon.port())});
    Process process(tool(argv));
    daemon.waitForConnections(1);
    std::atomic<bool> heard = false;
    std::thread sender([&] {
        while (!heard) {
            daemon.send(report(event, R"({"host":[]})"));
            daemon.send(report(event, document));
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
    process.waitForOutput("\"host\"");
    process.waitForOutput("Error from SDK");
    heard = true;
    sender.join();
    if (endless) {
        process.signal(SIGTERM);
    }
    return process.wait();
}

std::string repeated(std::string const& text, std::string const& in) {
    std::string result = text;
    while (result.size() < in.size()) {
        result += text;
    }
    return result;
}

void testStream(std::string const& action, std::string const& event, std::string const& payload,
                std::string const& document) {
    Outcome const timed = listen(action + " 2", false, event, payload);
    EXPECT_EQ(timed.status, 0);
    EXPECT_EQ(timed.out, repeated(document + "]\n\n", timed.out));
    std::string const error =
        "[\"error\",\n" + errorDocument(3840, "An error in the SDK", "Error from SDK") + "]\n\n";
    EXPECT_EQ(timed.err, repeated(error, timed.err));

    Outcome const endless = listen(action, true, event, payload);
    EXPECT_EQ(endless.status, -SIGTERM);
    EXPECT_EQ(endless.out.find(document), 0U);
}

} // namespace

TEST(SafeBrowsing, Settings) {
    Call const& initialize = settingCalls[0];
    Call const& config = settingCalls[1];
    std::string const homeNetwork = R"({"retries":0,"delay":0,"timeout":0})";
    std::string const unknown = settings(R"({"log_level":"Error","network_override":"SAFE"})");
    std::vector<Row> rows = {
        row("settings", {"request_safe_browsing_settings", "null", {initialized}}, printedInitialized),
        row("settings", {"request_safe_browsing_settings", "null", {unknown}}, printedNothing),
        row("settings", {"request_safe_browsing_settings", "null", {settings("null")}}, printedNothing),
        row("initialize c", {initialize.request, initialize.payload, {configured}}, printedConfigured),
        // A connect error isn't awaited by a call that only changes settings.
        row("config c", {config.request, config.payload, {connectError(1), configured}}, printedConfigured),
        row("enable on", {"enable_safe_browsing", R"({"enable":true})", {enabled}}, printedEnabled),
        row("enable off", {"enable_safe_browsing", R"({"enable":false})", {configured}}, printedConfigured),
        row("homenetwork", {"safe_browsing_report_home_network", homeNetwork, {initialized}},
            printedInitialized),
    };
    // No lock concerns these two.
    for (std::string const level : {"trace", "debug", "info", "warning", "error"}) {
        std::string const request = "set_safe_browsing_log_level";
        std::string const payload = R"({"log_level":")" + level + "\"}";
        Step const step{request, payload, {locked(request, 1), settings(payload)}};
        rows.push_back(row("loglevel " + level, step, printed("", level, "none")));
    }
    for (std::string const value : {"none", "unsafe", "safe"}) {
        std::string const request = "set_safe_browsing_safe_network_override";
        std::string const payload = R"({"network_override":")" + value + "\"}";
        Step const step{request, payload, {locked(request, 1), settings(payload)}};
        rows.push_back(row("override " + value, step, printed("", "debug", value)));
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
        row("initialize c", {initialize.request, initialize.payload, {connectError(17)}},
            printedConnectError(17), 1),
        row("initialize c", {initialize.request, initialize.payload, {tooLong}},
            styled(R"({"error":0,"msg":")" + std::string(200, 'm') + "\"}"), 1),
    };
    for (Call const& call : serviceCalls) {
        for (int const code : {0, 17, 18}) {
            bool const isHarmless = call.words.find("homenetwork") == 0 && code != 18;
            rows.push_back(row(call.words, {call.request, call.payload, {configured, connectError(code)}},
                               printedConnectError(code), isHarmless ? 0 : 1));
        }
        rows.push_back(row(call.words, {call.request, call.payload, {enabled, configured, initialized}},
                           printedInitialized));
    }
    runRows(rows);
}

// Both steps of a start and a stop; the record is the second one's, whatever became of the first.
TEST(SafeBrowsing, StartAndStop) {
    Step const enable{"enable_safe_browsing", R"({"enable":true})", {locked("enable_safe_browsing", 1)}};
    Step const disable{"enable_safe_browsing", R"({"enable":false})", {enabled}};
    Step const refuse{"initialize_safe_browsing", R"({"config":"c"})", {connectError(18)}};
    Step const empty{"initialize_safe_browsing", R"({"config":""})", {configured}};
    runRowsInParallel({
        {.name = "refused", .argv = argvOf("start c"), .exchange = {enable, refuse}, .out = printedNothing},
        {.name = "stop", .argv = argvOf("stop"), .exchange = {disable, empty}, .out = printedConfigured},
        {.name = "a time-out for each step",
         .argv = argvOf("start c"),
         .exchange = {{"enable_safe_browsing", R"({"enable":true})"},
                      {"initialize_safe_browsing", R"({"config":"c"})"}},
         .err = errorDocument(3841, "Timeout waiting for result", "Timeout"),
         .status = 1},
    });
}

// With a callback both steps are under way at once, and it runs for each.
TEST(SafeBrowsing, StartWithACallback) {
    ScriptedDaemon daemon({{"enable_safe_browsing", R"({"enable":true})"},
                           {"initialize_safe_browsing", R"({"config":"c"})", {connectError(5), enabled}}},
                          {.appName = std::nullopt});
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
    std::string const text = "Setting locked by account configuration";
    std::vector<Call> calls = settingCalls;
    calls.insert(calls.end(), serviceCalls.begin(), serviceCalls.end());
    std::vector<Row> rows;
    for (Call const& call : calls) {
        std::string const other = call.request == call.lock ? "other" : call.request;
        rows.push_back(
            row(call.words, {call.request, call.payload, {locked(other, 1), locked(call.lock, 2)}}, "", 1));
        rows.back().err = errorDocument(3848, text, text);
    }
    runRows(rows);
}

TEST(SafeBrowsing, RefusedWords) {
    std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"safebrowsing enable <on|off>", {"enable", "enable On"}},
        {"safebrowsing loglevel <trace|debug|info|warning|error>", {"loglevel", "loglevel warn"}},
        {"safebrowsing override <none|unsafe|safe>", {"override", "override off"}},
        {"safebrowsing errors [duration in seconds]", {"errors -2", "errors 2147483648", "redirects x"}},
        {"safebrowsing homenetwork [retries delay timeout]",
         {"homenetwork -1 2 3", "homenetwork 4294967296 2 3", "homenetwork 1 18446744073709551616 3",
          "homenetwork 1 2 3s"}},
        {usage,
         {"Settings", "listen 1", "settings now", "stop extra", "stats 1", "token a b", "homenetwork 1",
          "homenetwork 1 2", "homenetwork 1 2 3 4", "errors 1 2 3"}},
    };
    for (std::string const action : {"initialize", "config", "token", "start", "update"}) {
        cases.push_back({"safebrowsing " + action + " <string>", {action}});
    }
    std::vector<Row> rows = {{.name = "nothing", .argv = argvOf(""), .err = missing(usage), .status = 3}};
    for (auto const& [shown, refused] : cases) {
        for (std::string const& words : refused) {
            rows.push_back({.name = words, .argv = argvOf(words), .err = invalid(shown), .status = 2});
        }
    }
    runRows(rows);
}

TEST(SafeBrowsing, Stats) {
    std::string const same = R"({"min":1,"max":2,"average":4294967295,"num_errors":4,"num_blocks":5,)"
                             R"("failure_rate":0.5,"num_block_responses":6,)";
    std::string const wire = R"("num_safe_browsing_lookups":18446744073709551615,)"
                             R"("num_safe_browsing_packets_filtered":8})";
    std::string const shown = R"("num_lookups":18446744073709551615,"num_packets_filtered":8})";
    runRows(
        {row("stats", {"request_safe_browsing_stats", "null", {report("safe_browsing_stats", same + wire)}},
             styled(same + shown))});
}

// A full message runs on into the host; behind a full host the record ends.
TEST(SafeBrowsing, ErrorStream) {
    std::string const message(200, 'm');
    std::string const host(253, 'h');
    testStream("errors", "safe_browsing_lookup_error",
               R"({"error":-7,"safebro_msg":")" + message + R"(M","host":")" + host + "H\"}",
               "[\"safebrowsing_error\",\n" +
                   styled(R"({"error":-7,"message":")" + message + host + R"(","host":")" + host + "\"}"));
}

TEST(SafeBrowsing, BlockStream) {
    testStream("redirects", "safe_browsing_block", R"({"redirected":true,"host":"h"})",
               "[\"safebrowsing_block\",\n" + styled(R"({"redirected":true,"host":"h"})"));
}

// A listener without a callback is refused before anybody asks for the link.
TEST(SafeBrowsing, ListenersNeedACallback) {
    class Unlinked : public kelvarissdk::KelvarisSDK {
    public:
        explicit Unlinked(KelvarisSDK_CreateSettings const& create) : KelvarisSDK(create) {
            websocket.reset();
        }
    };
    Unlinked sdk({.appName = "", .address = "127.0.0.1", .port = 0});
    EXPECT_EQ(sdk.listenForSafeBrowsingError(nullptr, nullptr).base.errorCode, 3843);
    EXPECT_EQ(sdk.listenForSafeBrowsingBlock(nullptr, nullptr).base.errorCode, 3843);
}
