// What the library does to the process that it is a guest in: its signals, its forks, its end, its exceptions.

#include "support/child.h"
#include "support/simulator.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <pthread.h>

using namespace harness;

// The thread sanitizer would let every process sleep for a second at its end.
extern "C" [[gnu::visibility("default")]] char const* __tsan_default_options() {
    return "atexit_sleep_ms=0";
}

namespace {

struct Guest {
    KelvarisSDK_Handle* sdk;
    std::uint16_t port;
    std::promise<int> result = {};
};

volatile std::sig_atomic_t faults = 0;

// Names one place after the other, for as long as the process lives.
bool namePlaces(KelvarisSDK_ConnectResult result, void* userData) {
    auto& guest = *static_cast<Guest*>(userData);
    KelvarisSDK_ServerInformationDetailed_toString(result.server);
    if (!result.base.error && guest.port != 0) {
        guest.port = 0;
        guest.result.set_value(0);
    }
    KelvarisSDK_GetConnectedServer(guest.sdk, namePlaces, userData);
    return false;
}

} // namespace

// The library's threads begin before the host blocks a signal for itself. That of a fault stays with its thread.
TEST(HostProcess, KeepsItsSignals) {
    Simulator const simulator;
    Handle const handle(simulator.port);
    KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
    EXPECT_EQ(codeOf(handle.sdk), KelvarisSDK_ErrorType_NO_ERROR);
    sigset_t terminations;
    sigemptyset(&terminations);
    sigaddset(&terminations, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &terminations, nullptr);
    kill(getpid(), SIGTERM);
    int received = 0;
    sigwait(&terminations, &received);
    EXPECT_EQ(received, SIGTERM);

    std::signal(SIGFPE, [](int) { faults = faults + 1; });
    inCallback(handle.sdk, [] {
        std::raise(SIGFPE);
        EXPECT_EQ(faults, 1);
    });
}

// Each child makes one request, on a connection of its own. The parent's sees nothing of it.
TEST(HostProcess, MayFork) {
    Step const version{"request_version_data", "null", {report("version_data", "{}")}};
    Step const statistics{"stat_subscribe", R"({"enable":true})"};
    std::vector<Step> exchange = {statistics, statistics};
    exchange.resize(childMayStartThreads ? 6 : 4, version);
    ScriptedDaemon daemon(exchange, noName);
    Handle const handle(daemon.port());
    KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
    daemon.waitForRequest("stat_subscribe");
    daemon.waitForRequest("stat_subscribe");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(codeOf(handle.sdk), KelvarisSDK_ErrorType_NO_ERROR);
        EXPECT_EQ(inChild([&] { return wrongInChild(handle.sdk, daemon.port()); }), 0);
    }
}

// What the handle's own thread was doing then can't be freed in the child.
TEST(HostProcess, MayForkInACallback) {
    Simulator const simulator;
    Handle const handle(simulator.port);
    KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
    inCallback(handle.sdk,
               [&] { EXPECT_EQ(inChild([&] { return wrongInChild(handle.sdk, simulator.port); }), 0); });
}

// The child's one thread is a copy of the handle's own, so the child ends with it.
TEST(HostProcess, ChildOfACallbackEndsWithIt) {
    if (isSanitized) {
        GTEST_SKIP() << "a sanitizer doesn't know the thread that ends here";
    }
    Step const version{"request_version_data", "null", {report("version_data", "{}")}};
    ScriptedDaemon daemon({version, version, version}, noName);
    Handle const handle(daemon.port());
    InboxOf<KelvarisSDK_VersionResult> versions;
    pid_t child = -1;
    inCallback(handle.sdk, [&] {
        KelvarisSDK_GetVersion(handle.sdk, decltype(versions)::keep, &versions);
        child = fork();
        if (child == 0) {
            limitTime();
        }
    });
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(versions.take().base.error);
    EXPECT_EQ(codeOf(handle.sdk), KelvarisSDK_ErrorType_NO_ERROR);
}

// The handle is gone, and the thread ends where it can be cancelled next.
TEST(HostProcess, MayCancelAThreadThatDestroys) {
    Simulator const simulator;
    KelvarisSDK_Handle* const sdk =
        KelvarisSDK_CreateWithSettings({.appName = "", .address = "127.0.0.1", .port = simulator.port});
    pthread_t thread{};
    auto const destroy = [](void* handle) -> void* {
        pthread_cancel(pthread_self());
        KelvarisSDK_Destroy(static_cast<KelvarisSDK_Handle*>(handle));
        pthread_testcancel();
        return nullptr;
    };
    pthread_create(&thread, nullptr, destroy, sdk);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
}

// The first look-up fills the table, and each takes the table's lock.
TEST(HostProcess, MayForkWhileItNamesPlaces) {
    if (isSanitized) {
        GTEST_SKIP() << "the sanitizer's allocator isn't free in such a child";
    }
    KelvarisSDK_ServerInformation const place{"us", "nyc", 0, false};
    std::atomic<bool> goesOn = true;
    auto names = std::async(std::launch::async, [&] {
        while (goesOn) {
            KelvarisSDK_ServerInformation_GetCountryName(place);
        }
    });
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(inChild([&] { return *KelvarisSDK_ServerInformation_GetCityName(place) == 'N' ? 0 : 1; }),
                  0);
    }
    goesOn = false;
}

TEST(HostProcess, MayEndWithALiveHandle) {
    Simulator const simulator;
    EXPECT_FALSE(KelvarisSDK_ConnectCountry(Handle(simulator.port).sdk, "us", nullptr, nullptr).base.error);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(inChild([&]() -> int {
                      Handle const handle(simulator.port);
                      Guest guest{handle.sdk, simulator.port};
                      KelvarisSDK_GetConnectedServer(handle.sdk, namePlaces, &guest);
                      guest.result.get_future().wait();
                      i % 4 == 0 ? std::quick_exit(0) : std::exit(0);
                  }),
                  0);
    }
}

// Nothing of the library catches what a callback throws, not even what the library itself throws.
TEST(HostProcess, SeesWhatACallbackThrows) {
    Simulator const simulator;
    EXPECT_EQ(inChild([&] {
                  std::set_terminate([] { _exit(42); });
                  Handle const handle(simulator.port);
                  auto const callback = [](KelvarisSDK_VersionResult, void*) -> bool {
                      throw std::bad_alloc();
                  };
                  KelvarisSDK_GetVersion(handle.sdk, callback, nullptr);
                  pause();
                  return 0;
              }),
              42);
}
