// Faults on the link that concern the whole library, daemons that stop and come back, and how the tool ends
// where its output leads nowhere.

#include "support/handle.h"
#include "support/rows.h"
#include "support/simulator.h"
#include "websockets.h"
#include "wswrapper.h"

#include <array>
#include <csignal>
#include <future>
#include <memory>
#include <optional>
#include <vector>

using namespace harness;
using namespace kelvarissdk;

namespace {

constexpr char connected[] = R"(["report_current_state",{"state":6}])";
constexpr char loggedIn[] = R"(["report_current_state",{"state":2}])";

Options const noName{.appName = std::nullopt};

KelvarisSDK_StateResult ask(WebsocketImpl& link, std::vector<kelvarissdk::Request> const& requests,
                            uint64_t timeoutMs, Inbox* inbox = nullptr) {
    return oneShotCall<KelvarisSDK_StateResult>(
        &link, inbox != nullptr ? Inbox::keep : nullptr, inbox,
        {.requests = requests, .awaited = {{"report_current_state"}}, .timeoutMs = timeoutMs},
        [](KelvarisSDK_StateResult& result, Json::Value const& payload) {
            result.state = static_cast<KelvarisSDK_State>(payload["state"].asUInt());
        });
}

// A daemon and a client that waits without a time-out for what the daemon says in the end.
struct Pair {
    Pair(std::vector<Step> const& script, Options const& options)
        : daemon(script, options), link("127.0.0.1", daemon.port()) {
        ask(link, {{"request_current_state"}}, 0, &inbox);
    }

    Inbox inbox;
    ScriptedDaemon daemon;
    WebsocketImpl link;
};

} // namespace

// What was queued leaves with the first connection that gets through, and only then.
TEST(Faults, UpgradeCutAtEveryByte) {
    std::string const answer = "HTTP/1.1 101 Switching\r\nA: b\r\n\r\n";
    std::vector<std::unique_ptr<Pair>> pairs;
    for (std::size_t cut = 0; cut < answer.size(); ++cut) {
        for (Then const then : {Then::close, Then::reset}) {
            Options options = noName;
            options.upgrades = {{.bytes = answer.substr(0, cut), .then = then}};
            pairs.push_back(std::make_unique<Pair>(
                std::vector<Step>{{.request = "request_current_state", .answers = {connected}}}, options));
        }
    }
    for (auto const& pair : pairs) {
        ASSERT_EQ(pair->inbox.take().state, KelvarisSDK_State_CONNECTED);
    }
}

// The call lives on, its request isn't repeated, and no byte of the dead connection gets into the next one.
TEST(Faults, ReportCutAtEveryByte) {
    std::string const whole = frame(0x81, connected);
    std::vector<std::unique_ptr<Pair>> pairs;
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        for (Then const then : {Then::close, Then::reset}) {
            std::vector<Step> const script = {
                {.request = "request_current_state", .answers = {raw(whole.substr(0, cut))}, .then = then},
                {.answers = {loggedIn}}};
            pairs.push_back(std::make_unique<Pair>(script, noName));
        }
    }
    for (auto const& pair : pairs) {
        ASSERT_EQ(pair->inbox.take().state, KelvarisSDK_State_LOGGED_IN);
    }
}

// The daemon resets the connection at the first of two requests that leave together, holds the next attempt
// in its upgrade, and accepts the third.
TEST(Faults, RequestsAroundAReconnectLeaveOnce) {
    Options options = noName;
    options.upgrades = {{}, {.bytes = "HTTP/1.1 101"}};
    ScriptedDaemon daemon({{.request = "first", .then = Then::reset},
                           {.request = "during"},
                           {.request = "still during"},
                           {.request = "after"}},
                          options);
    WebsocketImpl link("127.0.0.1", daemon.port());
    auto lost = std::async(std::launch::async, [&] { return ask(link, {{"first"}, {"second"}}, 1000); });
    daemon.waitForConnections(2);
    link.sendRequest("during");
    link.sendRequest("still during");
    daemon.dropConnection(Then::reset);
    daemon.waitForRequest("still during");
    link.sendRequest("after");
    daemon.waitForRequest("after");
    KelvarisSDK_StateResult const result = lost.get();
    EXPECT_TRUE(result.base.error);
    // Without a link only if the machine took longer than the time-out to make it again.
    EXPECT_TRUE(result.base.errorCode == 3841 || result.base.errorCode == 3845) << result.base.errorCode;
}

// Neither sending nor the time-outs nor the end wait for a peer that takes nothing more.
TEST(Faults, PeerThatNeverReads) {
    ScriptedDaemon daemon({{.request = "last", .then = Then::stopReading}}, noName);
    auto link = std::make_unique<WebsocketImpl>("127.0.0.1", daemon.port());
    link->sendRequest("last");
    daemon.waitForRequest("last");
    Json::Value const megabyte = std::string(1'000'000, 'x');
    for (int i = 0; i < 20; ++i) {
        link->sendRequest("large", megabyte);
    }
    EXPECT_EQ(ask(*link, {{"request_current_state"}}, 300).base.errorCode, 3841);
    uint64_t const start = getTimeMillis();
    link.reset();
    EXPECT_LT(getTimeMillis() - start, 5000U);
}

// Messages that concern nobody delay neither an answer nor a time-out, though there is always another one.
TEST(Faults, FloodOfUnknownEvents) {
    std::string flood;
    for (int i = 0; i < 20'000; ++i) {
        flood += frame(0x81, R"(["report_of_something_else",{"state":1}])");
    }
    ScriptedDaemon daemon(
        {{.request = "request_current_state", .answers = {raw(flood), connected, raw(flood)}},
         {.request = "unanswered"}},
        noName);
    WebsocketImpl link("127.0.0.1", daemon.port());
    EXPECT_EQ(ask(link, {{"request_current_state"}}, 5000).state, KelvarisSDK_State_CONNECTED);
    auto call = std::async(std::launch::async, [&] { return ask(link, {{"unanswered"}}, 300); });
    int rounds = 0;
    while (call.wait_for(std::chrono::seconds(0)) != std::future_status::ready && ++rounds < 1000) {
        daemon.send(raw(flood.substr(0, flood.size() / 2)));
        link.sendRequest("tick"); // so that no more is on its way than the library has taken
        daemon.waitForRequest("tick");
    }
    EXPECT_LT(rounds, 1000);
    EXPECT_EQ(call.get().base.errorCode, 3841);
}

TEST(Faults, DaemonStoppedAndContinued) {
    Simulator simulator;
    WebsocketImpl link("127.0.0.1", simulator.port);
    EXPECT_FALSE(ask(link, {{"request_current_state"}}, 0).base.error);
    simulator.process.signal(SIGSTOP);
    KelvarisSDK_StateResult result{};
    while (!result.base.error) { // a process may run on for a moment
        result = ask(link, {{"request_current_state"}}, 300);
    }
    EXPECT_EQ(result.base.errorCode, 3841);
    simulator.process.signal(SIGCONT);
    EXPECT_FALSE(ask(link, {{"request_current_state"}}, 0).base.error);
}

// The new daemon has to be told again of the subscription; the waiting entry is still the same.
TEST(Faults, DaemonRestarted) {
    std::optional<Simulator> simulator(std::in_place, std::vector<std::string>{"--interval", "20"});
    InboxOf<KelvarisSDK_ConnectionStatsResult> inbox;
    Handle const handle(simulator->port);
    std::string const port = std::to_string(simulator->port);
    KelvarisSDK_GetConnectionStats(handle.sdk, decltype(inbox)::keep, &inbox);
    KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
    inbox.take();
    Process run(tool({"-p", port, "stats", "3"}));
    run.waitForOutput("[\"connection_stats\"");

    simulator.reset();
    simulator.emplace(std::vector<std::string>{"--interval", "20"}, static_cast<uint16_t>(std::stoi(port)));
    EXPECT_FALSE(KelvarisSDK_GetVersion(handle.sdk, nullptr, nullptr).base.error);
    while (!inbox.empty()) { // those of the first daemon
        inbox.take();
    }
    KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
    EXPECT_FALSE(inbox.take().base.error);
    Outcome const& outcome = run.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

// The reader of the pipe is gone before the tool has anything to print.
TEST(Guest, ClosedPipeEndsTheToolQuietly) {
    ScriptedDaemon daemon({{.request = "request_current_state"}});
    std::string const run = "{ " SDKCLI_PATH " -p " + std::to_string(daemon.port()) +
                            " state; echo $? >&2; } | { exec <&-; echo closed >&2; }";
    Process shell({.path = "/bin/sh", .argv = {"sh", "-c", run}});
    shell.waitForOutput("closed\n");
    daemon.waitForRequest("request_current_state");
    daemon.send(connected);
    EXPECT_EQ(shell.wait().err, "closed\n" + std::to_string(128 + SIGPIPE) + "\n");
}

// Each of these runs fails with the password in its hands.
TEST(Guest, PasswordIsNeverPrinted) {
    auto const row = [](char const* payload, std::string const& error) {
        return Row{.name = payload,
                   .argv = {"login", "me", "Correct horse"},
                   .exchange = {{.request = "login",
                                 .payload = R"({"password":"Correct horse","username":"me"})",
                                 .answers = {"[\"report_login_error\"," + std::string(payload) + "]"}}},
                   .err = error,
                   .status = 1};
    };
    runRows({
        row(R"({"type":3,"msg":"no"})", errorDocument(3, "Invalid credentials", "no")),
        row(R"({"type":[]})", errorDocument(3840, "An error in the SDK", "Error from SDK")),
        {.name = "too many words",
         .argv = {"login", "me", "Correct horse", "more"},
         .err = invalid("login <username> [password]"),
         .status = 2},
    });
}

TEST(Guest, OutputIsTheSameFromRunToRun) {
    Simulator const simulator;
    for (std::string const what : {"servers", "settings"}) {
        Command const command = tool({"-p", std::to_string(simulator.port), "show", what});
        Outcome const first = runProcess(command);
        EXPECT_EQ(first.status, 0) << what;
        EXPECT_EQ(first.out, runProcess(command).out);
    }
}
