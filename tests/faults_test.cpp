// Faults on the link that concern the whole library, daemons that stop and come back, and how the tool ends
// where its output leads nowhere.

#include "support/sdk.h"
#include "support/simulator.h"

#include <csignal>
#include <optional>

using namespace harness;
using namespace kelvarissdk;

// The daemon resets the connection at the first of two requests that leave together, holds the next attempt
// in its upgrade, and accepts the third. A subscription hears it before and after, and its records keep the code of the
// returned one.
TEST(Faults, RequestsAroundAReconnectLeaveOnce) {
    ScriptedDaemon daemon({asked("current_state", R"({"state":6})"),
                           {.request = "first", .then = Then::reset},
                           {"during"},
                           {"still during"},
                           {"after", "null", {state(2)}}},
                          {.appName = std::nullopt, .upgrades = {{}, {.bytes = "HTTP/1.1 101"}}});
    Sdk sdk(daemon);
    Inbox inbox;
    KelvarisSDK_StateResult const returned = sdk.getState(Inbox::keep, &inbox);
    EXPECT_EQ(inbox.take().state, KelvarisSDK_State_CONNECTED);
    std::string log;
    auto lost = std::async(std::launch::async, [&] {
        Entry(sdk.link(), "", log, awaiting("never", 600, {"first", "second"})).wait();
    });
    daemon.waitForConnections(2);
    sdk.link().sendRequest("during");
    sdk.link().sendRequest("still during");
    daemon.dropConnection(Then::reset);
    daemon.waitForRequest("still during");
    sdk.link().sendRequest("after");
    KelvarisSDK_StateResult const later = inbox.take();
    EXPECT_EQ(later.state, 2U);
    EXPECT_EQ(later.base.errorCode, KelvarisSDK_ErrorType_ASYNC_CALL);
    EXPECT_EQ(later.base.callbackId, returned.base.callbackId);
}

// The connection is reset while a callback runs, and only what the callback sends shows it: the next attempt doesn't wait
// for the time-out of that.
TEST(Faults, LossThatSendingShowsIsNotWaitedOut) {
    ScriptedDaemon daemon({asked("version_data", "{}")}, noName);
    Sdk sdk(daemon);
    inCallback(sdk.handle(), [&] {
        daemon.dropConnection();
        std::this_thread::sleep_for(std::chrono::milliseconds(100)); // until the reset has come
        EventDescription lost = awaiting("nothing", 60'000, {"lost"});
        sdk.link().getResult(lost, [](auto&&...) { return true; });
    });
    daemon.waitForConnections(2);
}

// Neither sending nor the time-outs nor the end wait for a peer that takes nothing more.
TEST(Faults, PeerThatNeverReads) {
    ScriptedDaemon daemon({{.request = "last", .then = Then::stopReading}}, noName);
    WebsocketImpl link("127.0.0.1", daemon.port());
    link.sendRequest("last");
    daemon.waitForRequest("last");
    Json::Value const megabyte = std::string(1'000'000, 'x');
    for (int i = 0; i < 20; ++i) {
        link.sendRequest("large", megabyte);
    }
    std::string log;
    Entry(link, "", log, awaiting("never", 300, {"small"})).wait();
}

// Messages that concern nobody delay neither an answer nor a time-out, though there is always another one.
TEST(Faults, FloodOfUnknownEvents) {
    std::string flood;
    for (int i = 0; i < 20'000; ++i) {
        flood += frame(0x81, R"(["report_of_something_else",{"state":1}])");
    }
    ScriptedDaemon daemon(
        {{"request_current_state", "null", {raw(flood), state(6), raw(flood)}}, {"unanswered"}}, noName);
    Sdk sdk(daemon);
    EXPECT_EQ(sdk.getState(nullptr, nullptr).state, KelvarisSDK_State_CONNECTED);
    std::string log;
    auto call = std::async(std::launch::async, [&] {
        Entry(sdk.link(), "", log, awaiting("never", 300, {"unanswered"})).wait();
    });
    int rounds = 0;
    while (call.wait_for(std::chrono::seconds(0)) != std::future_status::ready && ++rounds < 1000) {
        daemon.send(raw(flood.substr(0, flood.size() / 2)));
        sdk.link().sendRequest("tick"); // so that no more is on its way than the library has taken
        daemon.waitForRequest("tick");
    }
    EXPECT_LT(rounds, 1000);
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
    Process run(tool({"-p", port, "stats", "2"}));
    run.waitForOutput("[\"connection_stats\"");

    simulator.reset();
    simulator.emplace(std::vector<std::string>{"--interval", "20"}, static_cast<uint16_t>(std::stoi(port)));
    while (KelvarisSDK_GetVersion(handle.sdk, nullptr, nullptr).base.error) { // handed to the dead link
    }
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
TEST(HostProcess, ClosedPipeEndsTheToolQuietly) {
    ScriptedDaemon daemon({{"request_current_state"}});
    std::string const run = "{ " EMULATOR SDKCLI_PATH " -p " + std::to_string(daemon.port()) +
                            " state; echo $? >&2; } | { exec <&-; echo closed >&2; }";
    Process shell({.path = "/bin/sh", .argv = {"sh", "-c", run}});
    shell.waitForOutput("closed\n");
    daemon.waitForRequest("request_current_state");
    daemon.send(state(6));
    EXPECT_EQ(shell.wait().err, "closed\n" + std::to_string(128 + SIGPIPE) + "\n");
}
