// These tests hold the C interface to what it promises about callbacks, threads and handles.

#include "support/sdk.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

using namespace harness;

namespace {

// It takes both kinds of report, so that one function serves both kinds of call.
std::string numbered(std::string const& name, int number) {
    std::string const text = std::to_string(number);
    return report(name, R"({"state":)" + text + R"(,"maj":)" + text + "}");
}

template <class T> using Call = T (*)(KelvarisSDK_Handle*, bool (*)(T, void*), void*);

// What the first callback of `name` does: a synchronous call, which is refused and sends nothing; the end of its
// own entry and of one that the same message would still reach; a new call, which this message doesn't reach.
template <class T> void changeTheTable(Call<T> call, auto number, std::string const& name) {
    std::string const request = "request_" + name;
    ScriptedDaemon daemon({{request}, {request}, {request}}, noName);
    Handle handle(daemon.port());
    struct {
        Call<T> call = nullptr;
        KelvarisSDK_Handle* sdk = nullptr;
        std::promise<uint64_t> ownId, otherId;
        int synchronousCode = 0;
        InboxOf<T> own, other, added;
    } calls;
    calls.call = call;
    calls.sdk = handle.sdk;
    auto const callback = [](T result, void* userData) {
        auto& all = *static_cast<decltype(calls)*>(userData);
        all.own.put(result);
        all.synchronousCode = all.call(all.sdk, nullptr, nullptr).base.errorCode;
        KelvarisSDK_UnregisterCallback(all.sdk, all.ownId.get_future().get());
        KelvarisSDK_UnregisterCallback(all.sdk, all.otherId.get_future().get());
        all.call(all.sdk, InboxOf<T>::keep, &all.added);
        return true;
    };
    calls.ownId.set_value(call(handle.sdk, callback, &calls).base.callbackId);
    calls.otherId.set_value(call(handle.sdk, InboxOf<T>::keep, &calls.other).base.callbackId);
    daemon.waitForRequest(request);
    daemon.waitForRequest(request);
    daemon.send(numbered(name, 1));
    daemon.waitForRequest(request);
    daemon.send(numbered(name, 2));
    EXPECT_EQ(calls.added.take().*number, 2U);
    EXPECT_EQ(calls.own.take().*number, 1U);
    EXPECT_TRUE(calls.own.empty());
    EXPECT_TRUE(calls.other.empty());
    EXPECT_EQ(calls.synchronousCode, 3847);
}

} // namespace

TEST(Callbacks, MayChangeTheTable) {
    changeTheTable(KelvarisSDK_GetState, &KelvarisSDK_StateResult::state, "current_state");
    changeTheTable(KelvarisSDK_GetVersion, &KelvarisSDK_VersionResult::maj, "version_data");
}

// While a callback runs, another thread's asynchronous call returns; unregistering waits for the callback, and
// no other follows.
TEST(Callbacks, NoneRunsAfterUnregistering) {
    ScriptedDaemon daemon({asked("current_state", R"({"state":6})"),
                           {"request_connection_settings"},
                           {"request_version_data", "null", {state(6), numbered("version_data", 12)}}},
                          noName);
    struct {
        std::promise<void> entered, called, unregistered;
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
TEST(Handles, EndDropsWhatWaitsAndSendsWhatIsQueued) {
    ScriptedDaemon daemon({asked("current_state", R"({"state":6})"), {"request_version_data"}, {"exit"}},
                          noName);
    std::promise<void> entered;
    InboxOf<KelvarisSDK_VersionResult> dropped;
    auto const pause = [](KelvarisSDK_StateResult, void* userData) {
        static_cast<std::promise<void>*>(userData)->set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        return false;
    };
    {
        Handle const handle(daemon.port());
        KelvarisSDK_GetState(handle.sdk, pause, &entered);
        KelvarisSDK_GetVersion(handle.sdk, decltype(dropped)::keep, &dropped);
        KelvarisSDK_UnregisterCallback(handle.sdk, 1ULL << 60);
        entered.get_future().wait();
        EXPECT_FALSE(KelvarisSDK_DaemonExit(handle.sdk).error);
    }
    EXPECT_TRUE(dropped.empty());
}
