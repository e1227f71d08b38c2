// What the library does to the process that it is a guest in: its signals, its forks, its end, its exceptions.

#include "support/scripteddaemon.h"
#include "support/sdk.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <future>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace harness;

// The thread sanitizer would let every process sleep for a second at its end.
extern "C" [[gnu::visibility("default")]] char const* __tsan_default_options() {
    return "atexit_sleep_ms=0";
}

// The thread sanitizer takes a thread that a child starts for the parent's whose stack it gets, and ends the child.
#ifdef __SANITIZE_THREAD__
constexpr bool childMayStartThreads = false;
#else
constexpr bool childMayStartThreads = true;
#endif

namespace {

// A child that a callback forks off inherits the signals that the library's thread blocks.
void limitTime() {
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
    alarm(static_cast<unsigned>(patience().count()));
}

// The status of a child that runs this and ends with what it returns; the negative number of a signal.
template <class Body> int inChild(Body body) {
    pid_t const child = fork();
    if (child == 0) {
        limitTime();
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

int codeOf(KelvarisSDK_Handle* sdk) {
    return KelvarisSDK_GetVersion(sdk, nullptr, nullptr).base.errorCode;
}

struct Guest {
    KelvarisSDK_Handle* sdk;
    std::uint16_t port;
    std::promise<int> result = {};
};

InboxOf<KelvarisSDK_VersionResult> versions;

// Counts what is wrong with the handle of a parent, and with one of the child's own.
int tryInChild(Guest const& parents) {
    return inChild([&] {
        bool const refused =
            codeOf(parents.sdk) == KelvarisSDK_ErrorType_SDK &&
            KelvarisSDK_GetState(parents.sdk, InboxOf<KelvarisSDK_StateResult>::keep, nullptr).base.error &&
            KelvarisSDK_EnableStatUpdates(parents.sdk, true, 0, nullptr).error;
        KelvarisSDK_UnregisterCallback(parents.sdk, 0);
        KelvarisSDK_Destroy(parents.sdk);
        return (refused ? 0 : 1) +
               (!childMayStartThreads || codeOf(Handle(parents.port).sdk) == KelvarisSDK_ErrorType_NO_ERROR
                    ? 0
                    : 2);
    });
}

// Callbacks that do something to their process.
bool forkInside(KelvarisSDK_VersionResult /*result*/, void* userData) {
    auto& guest = *static_cast<Guest*>(userData);
    guest.result.set_value(tryInChild(guest));
    return true;
}

// Forks while a request is queued.
bool forkAndReturn(KelvarisSDK_VersionResult /*result*/, void* userData) {
    auto& guest = *static_cast<Guest*>(userData);
    KelvarisSDK_GetVersion(guest.sdk, InboxOf<KelvarisSDK_VersionResult>::keep, &versions);
    pid_t const child = fork();
    if (child == 0) {
        limitTime();
    } else {
        guest.result.set_value(child);
    }
    return true;
}

volatile std::sig_atomic_t faults = 0;

bool raiseFault(KelvarisSDK_VersionResult /*result*/, void* userData) {
    std::raise(SIGFPE);
    static_cast<Guest*>(userData)->result.set_value(int{faults});
    return true;
}

bool throwOutOfMemory(KelvarisSDK_VersionResult /*result*/, void* /*userData*/) {
    throw std::bad_alloc();
}

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
    Guest guest{handle.sdk, simulator.port};
    KelvarisSDK_GetVersion(handle.sdk, raiseFault, &guest);
    EXPECT_EQ(guest.result.get_future().get(), 1);
}

// Each child makes one request, on a connection of its own. The parent's sees nothing of it.
TEST(HostProcess, MayFork) {
    Step const version{"request_version_data", "null", {report("version_data", "{}")}};
    Step const statistics{"stat_subscribe", R"({"enable":true})"};
    std::vector<Step> exchange = {statistics, statistics, version, version};
    exchange.resize(childMayStartThreads ? 6 : 4, version);
    ScriptedDaemon daemon(exchange, {.appName = std::nullopt});
    Handle const handle(daemon.port());
    KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
    daemon.waitForRequest("stat_subscribe");
    daemon.waitForRequest("stat_subscribe");
    EXPECT_EQ(codeOf(handle.sdk), KelvarisSDK_ErrorType_NO_ERROR);
    EXPECT_EQ(tryInChild({handle.sdk, daemon.port()}), 0);
    EXPECT_EQ(codeOf(handle.sdk), KelvarisSDK_ErrorType_NO_ERROR);
    EXPECT_EQ(tryInChild({handle.sdk, daemon.port()}), 0);
}

// What the handle's own thread was doing then can't be freed in the child.
TEST(HostProcess, MayForkInACallback) {
    Simulator const simulator;
    Handle const handle(simulator.port);
    KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
    Guest guest{handle.sdk, simulator.port};
    KelvarisSDK_GetVersion(handle.sdk, forkInside, &guest);
    EXPECT_EQ(guest.result.get_future().get(), 0);
}

// The child's one thread is a copy of the handle's own, so the child ends with it.
TEST(HostProcess, ChildOfACallbackEndsWithIt) {
    Step const version{"request_version_data", "null", {report("version_data", "{}")}};
    ScriptedDaemon daemon({version, version, version}, {.appName = std::nullopt});
    Handle const handle(daemon.port());
    Guest guest{handle.sdk, daemon.port()};
    KelvarisSDK_GetVersion(handle.sdk, forkAndReturn, &guest);
    int status = -1;
    waitpid(guest.result.get_future().get(), &status, 0);
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
                  KelvarisSDK_GetVersion(handle.sdk, throwOutOfMemory, nullptr);
                  pause();
                  return 0;
              }),
              42);
}
