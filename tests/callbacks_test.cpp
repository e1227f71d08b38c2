// What the C interface promises about callbacks, threads and handles.

#include "support/handle.h"
#include "support/scripteddaemon.h"
#include "support/simulator.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace harness;

namespace {

constexpr char connected[] = R"(["report_current_state",{"state":6}])";
constexpr char version[] = R"(["report_version_data",{"maj":12,"min":3,"bug":4,"build":5}])";

Options const noName{.appName = std::nullopt};

} // namespace

// While a callback runs, another thread's asynchronous call returns; unregistering waits for the callback, and
// no other follows.
TEST(Callbacks, NoneRunsAfterUnregistering) {
    ScriptedDaemon daemon({{.request = "request_current_state", .answers = {connected}},
                           {.request = "request_connection_settings"},
                           {.request = "request_version_data", .answers = {connected, version}}},
                          noName);
    struct {
        std::promise<void> entered;
        std::promise<void> called;
        std::promise<void> unregistered;
        std::future_status callSeen = std::future_status::timeout;
        std::future_status unregisteringSeen = std::future_status::ready;
        std::atomic<int> calls = 0;
    } shared;
    Handle const handle(daemon.port());
    auto const callback = [](KelvarisSDK_StateResult, void* userData) {
        auto& own = *static_cast<decltype(shared)*>(userData);
        if (own.calls++ == 0) {
            own.entered.set_value();
            own.callSeen = own.called.get_future().wait_for(std::chrono::seconds(5));
            own.unregisteringSeen = own.unregistered.get_future().wait_for(std::chrono::milliseconds(200));
        }
        return true;
    };
    uint64_t const id = KelvarisSDK_GetState(handle.sdk, callback, &shared).base.callbackId;
    shared.entered.get_future().wait();
    KelvarisSDK_GetSettings(
        handle.sdk, [](KelvarisSDK_SettingsResult, void*) { return false; }, nullptr);
    shared.called.set_value();
    KelvarisSDK_UnregisterCallback(handle.sdk, id);
    shared.unregistered.set_value();
    EXPECT_EQ(KelvarisSDK_GetVersion(handle.sdk, nullptr, nullptr).maj, 12);
    EXPECT_EQ(shared.calls, 1);
    EXPECT_EQ(shared.callSeen, std::future_status::ready);
    EXPECT_EQ(shared.unregisteringSeen, std::future_status::timeout);
}

// What a callback returns ends a subscription and nothing else.
TEST(Callbacks, OneShotEndsAlwaysAndSubscriptionWithFalse) {
    ScriptedDaemon daemon(
        {{.request = "request_current_state"},
         {.request = "request_version_data", .answers = {connected, connected, connected, version, version}},
         {.request = "request_connection_settings", .answers = {R"(["report_connection_settings",{}])"}}},
        noName);
    std::atomic<int> states = 0;
    std::atomic<int> versions = 0;
    Handle const handle(daemon.port());
    KelvarisSDK_GetState(
        handle.sdk,
        [](KelvarisSDK_StateResult, void* count) { return ++*static_cast<std::atomic<int>*>(count) < 2; },
        &states);
    auto const countVersion = [](KelvarisSDK_VersionResult, void* count) {
        ++*static_cast<std::atomic<int>*>(count);
        return true;
    };
    KelvarisSDK_GetVersion(handle.sdk, countVersion, &versions);
    EXPECT_FALSE(KelvarisSDK_GetSettings(handle.sdk, nullptr, nullptr).base.error);
    EXPECT_EQ(states, 2);
    EXPECT_EQ(versions, 1);
}

// Each thread finds in its records what the first call found, whoever else asks.
TEST(Callbacks, ManyThreadsOnOneHandle) {
    Simulator const simulator;
    Handle const handle(simulator.port);
    KelvarisSDK_Handle* const sdk = handle.sdk;
    auto const look = [sdk](int which) -> std::string {
        switch (which % 4) {
        case 0:
            return std::to_string(KelvarisSDK_GetVersion(sdk, nullptr, nullptr).build);
        case 1:
            return std::to_string(KelvarisSDK_GetAdapters(sdk, nullptr, nullptr).adapterCount);
        case 2:
            return std::to_string(KelvarisSDK_GetDirectory(sdk, nullptr, nullptr).serverCount);
        default:
            return KelvarisSDK_GetAccountingData(sdk, nullptr, nullptr).email;
        }
    };
    std::vector<std::future<bool>> threads;
    for (int i = 0; i < 8; ++i) {
        threads.push_back(std::async(std::launch::async, [&look, i, wanted = look(i)] {
            bool right = !wanted.empty() && wanted != "0";
            for (int round = 0; round < 50; ++round) {
                right = look(i) == wanted && right;
            }
            return right;
        }));
    }
    for (auto& thread : threads) {
        EXPECT_TRUE(thread.get());
    }
}

// The thread's own objects are gone by then, the library's among them.
TEST(Handles, ServeTheProgramsExitHandlers) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    static KelvarisSDK_Handle* sdk = nullptr;
    auto const useAtExit = [] {
        Handle handle(1);
        sdk = std::exchange(handle.sdk, nullptr);
        KelvarisSDK_EnableStatUpdates(sdk, true, 0, nullptr);
        std::atexit([] {
            bool const failed = KelvarisSDK_EnableStatUpdates(sdk, false, 0, nullptr).error;
            KelvarisSDK_Destroy(sdk);
            std::fputs(failed ? "failed" : "served", stderr);
        });
        std::exit(0);
    };
    EXPECT_EXIT(useAtExit(), testing::ExitedWithCode(0), "^served$");
}

// The reader is inside a callback when the request is queued and the end begins.
TEST(Handles, EndSendsWhatIsQueued) {
    ScriptedDaemon daemon(
        {{.request = "request_current_state", .answers = {R"(["report_current_state",{"state":6}])"}},
         {.request = "exit"}},
        noName);
    std::promise<void> entered;
    Handle const handle(daemon.port());
    auto const pause = [](KelvarisSDK_StateResult, void* userData) {
        static_cast<std::promise<void>*>(userData)->set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        return false;
    };
    KelvarisSDK_GetState(handle.sdk, pause, &entered);
    entered.get_future().wait();
    KelvarisSDK_DaemonExit(handle.sdk);
}

// The second report of the other daemon has come when the first one is through.
TEST(Handles, DontMeet) {
    ScriptedDaemon daemons[] = {ScriptedDaemon({}, noName), ScriptedDaemon({}, noName)};
    Handle const handles[] = {Handle(daemons[0].port()), Handle(daemons[1].port())};
    using Blocks = InboxOf<KelvarisSDK_SafeBrowsingBlockResult>;
    Blocks inboxes[2];
    for (int i : {0, 1}) {
        KelvarisSDK_ListenForSafeBrowsingBlock(handles[i].sdk, Blocks::keep, &inboxes[i]);
        daemons[i].waitForConnections(1);
    }
    for (int i : {1, 1, 0}) {
        daemons[i].send(R"(["report_safe_browsing_block",{"host":")" + std::to_string(i) + R"("}])");
        EXPECT_EQ(inboxes[i].take().host, std::to_string(i));
    }
}
