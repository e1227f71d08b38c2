// The request engine: event table, filters, time-outs, reconnecting, callbacks. Calls with short time-outs of
// their own go through the wrappers; the others through the C interface.

#include "support/handle.h"
#include "support/sdk.h"
#include "wswrapper.h"

#include <future>
#include <gtest/gtest.h>
#include <thread>

using namespace harness;
using namespace kelvarissdk;

namespace {

constexpr char connected[] = R"(["report_current_state",{"state":6}])";

void fillState(KelvarisSDK_StateResult& result, Json::Value const& payload) {
    result.state = static_cast<KelvarisSDK_State>(payload["state"].asUInt());
}

KelvarisSDK_StateResult call(std::unique_ptr<WebsocketImpl> const& link, Exchange const& exchange) {
    return wsNonSubscriptionWrapper<KelvarisSDK_StateResult>(nullptr, nullptr, link, exchange, fillState);
}

KelvarisSDK_StateResult getState(Handle const& handle) {
    return KelvarisSDK_GetState(handle.sdk, nullptr, nullptr);
}

// The request of GetState.
Step asked(std::vector<Answer> const& answers = {}, Then then = Then::carryOn) {
    return {"request_current_state", "null", answers, then};
}

std::string messageOf(KelvarisSDK_BaseResult const& base) {
    return std::string(base.errorMessage, strnlen(base.errorMessage, sizeof(base.errorMessage)));
}

} // namespace

TEST(Engine, AsynchronousCallReturnsAtOnceAndItsRecordKeepsTheCode) {
    ScriptedDaemon daemon({asked({connected})}, noName);
    Handle handle(daemon.port());
    Inbox inbox;
    KelvarisSDK_StateResult const returned = KelvarisSDK_GetState(handle.sdk, Inbox::keep, &inbox);
    EXPECT_FALSE(returned.base.error);
    EXPECT_EQ(returned.base.errorCode, 3584);
    EXPECT_EQ(messageOf(returned.base), "Result is an async call SDK");
    EXPECT_EQ(returned.state, 0U);

    KelvarisSDK_StateResult const delivered = inbox.take();
    EXPECT_EQ(delivered.state, KelvarisSDK_State_CONNECTED);
    EXPECT_FALSE(delivered.base.error);
    EXPECT_EQ(delivered.base.errorCode, 3584);
    EXPECT_EQ(delivered.base.callbackId, returned.base.callbackId);
}

TEST(Engine, OneReportFinishesAllCallsThatAwaitItsName) {
    ScriptedDaemon daemon({asked(), asked()}, noName);
    Handle handle(daemon.port());
    auto first = std::async(std::launch::async, [&] { return getState(handle).state; });
    auto second = std::async(std::launch::async, [&] { return getState(handle).state; });
    daemon.waitForRequest("request_current_state");
    daemon.waitForRequest("request_current_state");
    daemon.send(connected);
    EXPECT_EQ(first.get(), KelvarisSDK_State_CONNECTED);
    EXPECT_EQ(second.get(), KelvarisSDK_State_CONNECTED);
}

// What is no array that begins with a name, what nobody waits for and what only the library may say changes
// nothing.
TEST(Engine, MessagesWithoutANameOrAnEntryAreDropped) {
    ScriptedDaemon daemon(
        {asked({"", R"(["a")", R"( ["report_current_state",{"state":1}])", R"([ "report_current_state",{}])",
                R"({"a":1})", R"(["report_current_state)", R"(["sdk_error",{"type":5,"msg":"no"}])",
                R"(["unknown",{)", connected})},
        noName);
    Handle handle(daemon.port());
    EXPECT_EQ(getState(handle).state, KelvarisSDK_State_CONNECTED);
}

TEST(Engine, BrokenJsonPrintsTwoLinesAndReadsAsNull) {
    std::string const deep =
        "[\"report_current_state\"," + std::string(1100, '[') + std::string(1100, ']') + "]";
    ScriptedDaemon daemon({asked({R"(["report_current_state",{"state":6},])"}), asked({deep})}, noName);
    Handle handle(daemon.port());
    for (int i = 0; i < 2; ++i) {
        testing::internal::CaptureStderr();
        EXPECT_FALSE(getState(handle).base.error);
        std::string const printed = testing::internal::GetCapturedStderr();
        EXPECT_EQ(printed.find("Failed to parse JSON: "), 0U) << printed;
        EXPECT_NE(printed.find("\nJSON was: [\"report_current_state\""), std::string::npos) << printed;
    }
}

TEST(Engine, ReportThatCantBeReadEndsItsCallOnly) {
    ScriptedDaemon daemon({{"request_version_data"},
                           asked({R"(["report_current_state",{"state":"x"}])"}),
                           asked({R"(["report_current_state",[1]])"}),
                           asked({R"(["report_current_state",{"state":3000000000}])"})},
                          noName);
    Handle handle(daemon.port());
    auto version =
        std::async(std::launch::async, [&] { return KelvarisSDK_GetVersion(handle.sdk, nullptr, nullptr); });
    daemon.waitForRequest("request_version_data");
    for (int i = 0; i < 3; ++i) {
        KelvarisSDK_BaseResult const base = getState(handle).base;
        EXPECT_TRUE(base.error);
        EXPECT_EQ(base.errorCode, 3840);
        EXPECT_EQ(messageOf(base), "Error from SDK");
    }
    daemon.send(R"(["report_version_data",{"maj":70000,"min":2,"bug":3,"build":4}])");
    KelvarisSDK_VersionResult const result = version.get();
    EXPECT_FALSE(result.base.error);
    EXPECT_EQ(result.maj, 70000 - 65536);
}

// A later good report clears the flag and nothing else.
TEST(Engine, SubscriptionOutlivesAnErrorRecord) {
    ScriptedDaemon daemon({asked({R"(["report_current_state",{"state":{}}])", connected})}, noName);
    Handle handle(daemon.port());
    Inbox inbox;
    KelvarisSDK_GetState(handle.sdk, Inbox::keep, &inbox);
    EXPECT_TRUE(inbox.take().base.error);
    KelvarisSDK_StateResult const second = inbox.take();
    EXPECT_FALSE(second.base.error);
    EXPECT_EQ(second.base.errorCode, 3840);
    EXPECT_EQ(second.state, KelvarisSDK_State_CONNECTED);
}

TEST(Engine, FilterTestsEveryKeyAndNullAsksForPresence) {
    ScriptedDaemon daemon({}, noName);
    auto const link = std::make_unique<WebsocketImpl>("127.0.0.1", daemon.port());
    Inbox inbox;
    Json::Value filter;
    filter["kind"] = 2;
    filter["state"] = Json::Value();
    wsSubscriptionWrapper(Inbox::keep, &inbox, link, {.awaited = {{"e", filter}}, .timeoutMs = 0}, fillState);
    daemon.waitForConnections(1);
    for (char const* text :
         {R"(["e",{"kind":2}])", R"(["e",{"kind":3,"state":1}])", R"(["e",{"kind":"2","state":2}])",
          R"(["e",{"state":3}])", R"(["e",[2]])", R"(["e"])", R"(["e",{"kind":2,"state":6}])"}) {
        daemon.send(text);
    }
    EXPECT_EQ(inbox.take().state, 6U);
}

// The answers of both deliveries are taken together: one that is done ends the entry.
TEST(Engine, NameInBothListsIsDeliveredTwice) {
    ScriptedDaemon daemon({}, noName);
    auto const link = std::make_unique<WebsocketImpl>("127.0.0.1", daemon.port());
    EventDescription description;
    WebsocketImpl::subscribeToEvent(description, "e");
    WebsocketImpl::waitForEvent(description, "e");
    WebsocketImpl::waitForEvent(description, "e");
    std::atomic<int> deliveries = 0;
    std::promise<void> marked;
    link->getResult(description, [&](std::string const&, std::string const&, Json::Value const&) {
        return ++deliveries == 1; // the first of two says "done", the second "go on"
    });
    EventDescription mark;
    WebsocketImpl::waitForEvent(mark, "mark");
    link->getResult(mark, [&](std::string const&, std::string const&, Json::Value const&) {
        marked.set_value();
        return true;
    });
    daemon.waitForConnections(1);
    daemon.send(R"(["e",{}])");
    daemon.send(R"(["e",{}])");
    daemon.send(R"(["mark",{}])");
    marked.get_future().wait();
    EXPECT_EQ(deliveries, 2);
}

// Time-outs, side by side: each thread waits for one of its own.
TEST(Engine, TimeOuts) {
    ScriptedDaemon silent({asked()}, noName);
    ScriptedDaemon absent({}, {.appName = std::nullopt, .listen = false});
    ScriptedDaemon closing({asked({}, Then::closeFrame)}, noName);
    ScriptedDaemon answering({asked({connected})}, noName);
    ScriptedDaemon rejecting({{"set", "null", {R"(["report_setting_locked",{"setting":"other"}])"}}}, noName);
    auto const timeOut = [](ScriptedDaemon const& daemon, int code, std::string const& message) {
        auto const link = std::make_unique<WebsocketImpl>("127.0.0.1", daemon.port());
        KelvarisSDK_BaseResult const base = call(link, {.requests = {{"request_current_state"}},
                                                        .awaited = {{"report_current_state"}},
                                                        .timeoutMs = 300})
                                                .base;
        EXPECT_TRUE(base.error);
        EXPECT_EQ(base.errorCode, code);
        EXPECT_EQ(messageOf(base), message);
    };
    std::vector<std::jthread> threads;
    threads.emplace_back([&] { timeOut(silent, 3841, "Timeout"); });
    threads.emplace_back([&] { timeOut(absent, 3845, "Unable to connect"); });
    threads.emplace_back([&] { timeOut(closing, 3841, "Timeout"); });
    // A delivery disarms the time-out even when it finishes nothing: a second call's time-out shows that the
    // first one's would have come.
    threads.emplace_back([&] {
        auto const link = std::make_unique<WebsocketImpl>("127.0.0.1", rejecting.port());
        auto locked = std::async(std::launch::async, [&] {
            Exchange exchange = change("set", Json::Value(), "report_set");
            exchange.timeoutMs = 300;
            return call(link, exchange).base.errorCode;
        });
        rejecting.waitForRequest("set");
        EXPECT_EQ(call(link, {.awaited = {{"never"}}, .timeoutMs = 600}).base.errorCode, 3841);
        rejecting.send(R"(["report_setting_locked",{"setting":"set","reason":2}])");
        EXPECT_EQ(locked.get(), 3848);
    });
    // A subscription gets one time-out and no second; what awaits nothing gets none.
    threads.emplace_back([&] {
        auto const link = std::make_unique<WebsocketImpl>("127.0.0.1", absent.port());
        Inbox waiting;
        Inbox listening;
        wsSubscriptionWrapper(Inbox::keep, &waiting, link, {.awaited = {{"never"}}, .timeoutMs = 100},
                              fillState);
        wsSubscriptionWrapper(Inbox::keep, &listening, link, {.subscribed = {"never"}, .timeoutMs = 100},
                              fillState);
        call(link, {.awaited = {{"never"}}, .timeoutMs = 900});
        EXPECT_EQ(waiting.take().base.errorCode, 3845);
        EXPECT_TRUE(waiting.empty());
        EXPECT_TRUE(listening.empty());
    });
    // A request can't leave while a callback runs, so its time-out begins when the callback has returned.
    threads.emplace_back([&] {
        auto const link = std::make_unique<WebsocketImpl>("127.0.0.1", answering.port());
        std::promise<void> entered;
        EventDescription slow;
        WebsocketImpl::subscribeToEvent(slow, "slow");
        link->getResult(slow, [&](std::string const&, std::string const&, Json::Value const&) {
            entered.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(900));
            return true;
        });
        answering.waitForConnections(1);
        answering.send(R"(["slow",{}])");
        entered.get_future().wait();
        Exchange exchange = query("request_current_state", "report_current_state");
        exchange.timeoutMs = 700;
        EXPECT_EQ(messageOf(call(link, exchange).base), "");
    });
}

TEST(Engine, LockReports) {
    struct Case {
        char const* payload;
        bool error;
        int code;
    };
    for (Case const& c : {Case{R"({"setting":"set","reason":1})", true, 3846},
                          {R"({"setting":"set","reason":2})", true, 3848},
                          {R"({"setting":"set","reason":3})", false, 0},
                          {R"({"setting":"set","reason":"x"})", true, 3840},
                          {R"({"setting":[],"reason":1})", true, 3840}}) {
        SCOPED_TRACE(c.payload);
        ScriptedDaemon daemon(
            {{"set",
              "null",
              {R"(["report_setting_locked",{"reason":1}])", R"(["report_setting_locked",[1]])",
               R"(["report_setting_locked",{"setting":"set2","reason":1}])",
               "[\"report_setting_locked\"," + std::string(c.payload) + "]"}}},
            noName);
        auto const link = std::make_unique<WebsocketImpl>("127.0.0.1", daemon.port());
        KelvarisSDK_BaseResult const base = call(link, change("set", Json::Value(), "report_set")).base;
        EXPECT_EQ(base.error, c.error);
        EXPECT_EQ(base.errorCode, c.code);
    }
}

// Requests queued while there is no link leave with the next one, what was sent before isn't repeated, and a
// subscription hears what the daemon says after the reconnect.
TEST(Engine, ReconnectKeepsTheTableAndRepeatsNothing) {
    ScriptedDaemon daemon(
        {asked({connected}, Then::reset),
         {"request_version_data",
          "null",
          {R"(["report_version_data",{"maj":1}])", R"(["report_current_state",{"state":2}])"}}},
        noName);
    Handle handle(daemon.port());
    Inbox inbox;
    KelvarisSDK_GetState(handle.sdk, Inbox::keep, &inbox);
    EXPECT_EQ(inbox.take().state, 6U);
    daemon.waitForConnections(2);
    EXPECT_EQ(KelvarisSDK_GetVersion(handle.sdk, nullptr, nullptr).maj, 1);
    EXPECT_EQ(inbox.take().state, 2U);
}

// Inside a callback: end the own entry, end another one that the same message would still reach, start a
// call, which this message doesn't reach any more, and try a synchronous call, which sends nothing.
TEST(Engine, CallbacksMayChangeTheTable) {
    ScriptedDaemon daemon({asked(), asked(), asked()}, noName);
    Handle handle(daemon.port());
    struct Calls {
        KelvarisSDK_Handle* sdk;
        Inbox own, other, added;
        std::promise<uint64_t> ownId, otherId;
        std::promise<KelvarisSDK_VersionResult> synchronous;
    } calls;
    calls.sdk = handle.sdk;

    auto const callback = [](KelvarisSDK_StateResult result, void* userData) {
        auto& all = *static_cast<Calls*>(userData);
        all.synchronous.set_value(KelvarisSDK_GetVersion(all.sdk, nullptr, nullptr));
        KelvarisSDK_UnregisterCallback(all.sdk, all.ownId.get_future().get());
        KelvarisSDK_UnregisterCallback(all.sdk, all.otherId.get_future().get());
        KelvarisSDK_GetState(all.sdk, Inbox::keep, &all.added);
        all.own.put(result);
        return true;
    };
    calls.ownId.set_value(KelvarisSDK_GetState(handle.sdk, callback, &calls).base.callbackId);
    calls.otherId.set_value(KelvarisSDK_GetState(handle.sdk, Inbox::keep, &calls.other).base.callbackId);
    daemon.waitForRequest("request_current_state");
    daemon.waitForRequest("request_current_state");
    daemon.send(connected);
    EXPECT_EQ(calls.own.take().state, 6U);
    daemon.waitForRequest("request_current_state");
    daemon.send(R"(["report_current_state",{"state":2}])");
    EXPECT_EQ(calls.added.take().state, 2U);
    EXPECT_TRUE(calls.own.empty());
    EXPECT_TRUE(calls.other.empty());
    KelvarisSDK_VersionResult const refused = calls.synchronous.get_future().get();
    EXPECT_TRUE(refused.base.error);
    EXPECT_EQ(refused.base.errorCode, 3847);
}

TEST(Engine, DestroyDropsWaitingCallsAndSendsWhatIsQueued) {
    ScriptedDaemon daemon({asked(), {"exit"}}, noName);
    Inbox inbox;
    {
        Handle handle(daemon.port());
        KelvarisSDK_GetState(handle.sdk, Inbox::keep, &inbox);
        KelvarisSDK_UnregisterCallback(handle.sdk, 1ULL << 60);
        daemon.waitForRequest("request_current_state"); // so that the next one has to leave in the last pass
        EXPECT_FALSE(KelvarisSDK_DaemonExit(handle.sdk).error);
    }
    EXPECT_TRUE(inbox.empty());
    KelvarisSDK_Destroy(nullptr);
}

TEST(Engine, WithoutALinkEveryFormOfCallFails) {
    ScriptedDaemon daemon({}, noName);
    Sdk sdk(daemon);
    sdk.unlink();
    for (KelvarisSDK_BaseResult const& base :
         {sdk.daemonExit(), sdk.enableStatUpdates(true, 0, nullptr), sdk.getState(nullptr, nullptr).base,
          sdk.getVersion(nullptr, nullptr).base}) {
        EXPECT_TRUE(base.error);
        EXPECT_EQ(base.errorCode, 3840);
        EXPECT_EQ(messageOf(base), "An error in the SDK");
    }
    sdk.unregisterCallback(0);
}
