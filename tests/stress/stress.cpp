// stress [SECONDS [ROUNDS]]: how the library keeps its feet for a long time. Eight threads make mixed calls on
// handles they share and unregister at random, for so many seconds (30), while the daemons drop the links; for as long,
// calls are made on links on which nothing else happens, so that a lost wake-up is a hang, and threads are cancelled in
// them; for as long, handles are made, used and destroyed while the daemon is killed and started again, the process forks
// and allocations fail at random; then handles are made and destroyed in so many rounds (10000) under the hands of a
// daemon that never falls silent. Status 1 when a record isn't one of those that may come, when descriptors or threads are left over, or when
// memory has grown; a hang ends it by an alarm. User data are freed as soon as no callback may use them any more.

#include "support/calls.h"
#include "support/child.h"
#include "support/simulator.h"
#include "wswrapper.h"

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <malloc.h>
#include <map>
#include <memory>
#include <random>
#include <thread>

using namespace harness;
using Clock = std::chrono::steady_clock;
using Random = std::minstd_rand;

namespace {

constexpr std::size_t threadCount = 8;
constexpr std::size_t growthAllowed = 1 << 20;

std::atomic<long> synchronous = 0;
std::atomic<long> asynchronous = 0;
std::atomic<long> deliveries = 0;
std::atomic<long> timeOuts = 0;
std::atomic<long> wrong = 0;
std::atomic<long> cancelled = 0;
std::atomic<long> forks = 0;
std::atomic<long> hungForks = 0;
std::atomic<long> restarts = 0;
std::atomic<long> failedAllocations = 0;

// Memory runs out for the library alone: on the threads of its own, and on others while they are inside it.
std::atomic<bool> lacksMemory = false;
thread_local bool isInside = false;

bool allocationFails() {
    static constinit thread_local std::uint64_t dice = 1; // differs by what each thread does
    if (!lacksMemory || (!isInside && !kelvarissdk::WebsocketImpl::isInReaderThread)) {
        return false;
    }
    dice = (dice * 6364136223846793005U + 1442695040888963407U) ^ reinterpret_cast<std::uintptr_t>(&dice);
    return (dice >> 33) % 2000 == 0 && ++failedAllocations;
}

// Inside a callback a subscription keeps the code of its last error when its reports come again.
void judge(KelvarisSDK_BaseResult const& base, bool insideCallback = false) {
    alarm(30); // for a hang
    static std::map<int, std::string> const texts = {
        {KelvarisSDK_ErrorType_NO_ERROR, ""},
        {KelvarisSDK_ErrorType_ASYNC_CALL, "Result is an async call SDK"},
        {KelvarisSDK_ErrorType_TIMEOUT, "Timeout"},
        {KelvarisSDK_ErrorType_NOT_CONNECTED, "Unable to connect"},
        {KelvarisSDK_ErrorType_LOCKED_BY_SERVER, "Setting locked by server configuration"}};
    if (lacksMemory && base.error && base.errorCode == KelvarisSDK_ErrorType_SDK) {
        return;
    }
    auto const text = texts.find(base.errorCode);
    bool const isKept = insideCallback && (text == texts.find(KelvarisSDK_ErrorType_TIMEOUT) ||
                                           text == texts.find(KelvarisSDK_ErrorType_NOT_CONNECTED));
    bool const isRight = base.error == (base.errorCode > 3584) || isKept;
    if (text == texts.end() || text->second != base.errorMessage || !isRight ||
        (insideCallback && base.errorCode == 0)) {
        ++wrong;
        std::fprintf(stderr, "stress: a record with error %d, code %d, \"%.200s\"\n", base.error,
                     base.errorCode, base.errorMessage);
    }
    timeOuts += base.error && base.errorCode != KelvarisSDK_ErrorType_LOCKED_BY_SERVER ? 1 : 0;
}

// An asynchronous call's user data.
struct Waiting {
    KelvarisSDK_Handle* sdk = nullptr;
    uint64_t id = 0;
    unsigned count = 0;
};

template <class T> bool deliver(T result, void* userData) {
    auto& waiting = *static_cast<Waiting*>(userData);
    ++deliveries;
    judge(result.base, true);
    if (++waiting.count % 16 == 0) {
        int const code = KelvarisSDK_GetState(waiting.sdk, nullptr, nullptr).base.errorCode;
        wrong += code == KelvarisSDK_ErrorType_SYNCHRONOUS_IN_CALLBACK ? 0 : 1;
        KelvarisSDK_UnregisterCallback(waiting.sdk, result.base.callbackId);
    }
    return waiting.count % 10 != 0;
}

// Some calls of one thread. It begins with every read that the daemon answers and two settings.
class Caller {
public:
    Caller(std::vector<KelvarisSDK_Handle*> const& handles, Random& dice) : random(dice), sdks(handles) {}
    ~Caller() {
        while (!waiting.empty()) {
            unregisterOne();
        }
    }
    Caller(Caller const&) = delete;
    Caller& operator=(Caller const&) = delete;

    void makeAnyCall() {
        auto const& [name, takesTexts, start] = callsWith<Caller>[random() % std::size(callsWith<Caller>)];
        bool const isAnswered = name.starts_with("Get") && name != "GetSessionStats";
        if (!isAnswered && name != "SetJumboPackets" && name != "SetMode") {
            return;
        }
        KelvarisSDK_Handle* const sdk = sdks[random() % sdks.size()];
        isSynchronous = random() % 2 == 0;
        if (isSynchronous) {
            start(sdk, *this);
            ++synchronous;
            return;
        }
        waiting.push_back(std::make_unique<Waiting>(Waiting{.sdk = sdk}));
        waiting.back()->id = start(sdk, *this).callbackId;
        ++asynchronous;
        while (random() % 3 == 0 ? !waiting.empty() : waiting.size() > 20) {
            unregisterOne();
        }
    }

    template <class Result, class T> T give() {
        if constexpr (std::is_same_v<T, bool (*)(Result, void*)>) {
            return isSynchronous ? nullptr : deliver<Result>;
        } else if constexpr (std::is_same_v<T, void*>) {
            return isSynchronous ? nullptr : waiting.back().get();
        } else {
            return T(1);
        }
    }

    template <class Result> void see(Result const& returned) {
        judge(returned.base);
        if constexpr (requires { returned.build; }) { // what one thread finds is its own
            wrong += !isSynchronous || returned.base.error || returned.build == 9063 ? 0 : 1;
        }
    }

private:
    void unregisterOne() {
        auto const which = waiting.begin() + static_cast<std::ptrdiff_t>(random() % waiting.size());
        KelvarisSDK_UnregisterCallback((*which)->sdk, (*which)->id);
        waiting.erase(which);
    }

    Random& random;
    std::vector<KelvarisSDK_Handle*> const& sdks;
    std::vector<std::unique_ptr<Waiting>> waiting;
    bool isSynchronous = true;
};

// Lets each of the threads repeat the body for as long as it goes on.
void inThreads(std::function<bool()> const& goesOn, std::function<void(Random&)> const& body) {
    std::vector<std::jthread> threads;
    for (unsigned i = 1; i <= threadCount; ++i) {
        threads.emplace_back([&, random = Random(i)]() mutable {
            while (goesOn()) {
                body(random);
            }
        });
    }
}

std::function<bool()> during(std::chrono::milliseconds duration) {
    return [end = Clock::now() + duration] { return Clock::now() < end; };
}

void mixedCalls(std::chrono::milliseconds duration) {
    // The lock of another setting disarms a call's time-out, so a call whose link then drops would wait for ever: only the
    // daemon that keeps its links has a lock.
    Simulator const dropping({"--interval", "5", "--drop-after", "61"});
    Simulator const alsoDropping({"--interval", "7", "--drop-after", "223"});
    Simulator const steady({"--interval", "3", "--lock", "set_connection_algorithm=1"});
    Handle const first(dropping.port);
    Handle const second(alsoDropping.port);
    Handle const third(steady.port);
    std::vector<KelvarisSDK_Handle*> const sdks = {first.sdk, second.sdk, third.sdk};
    for (KelvarisSDK_Handle* const sdk : sdks) {
        KelvarisSDK_EnableStatUpdates(sdk, true, 0, nullptr);
    }
    inThreads(during(duration), [&](Random& random) {
        Caller caller(sdks, random);
        for (int i = 0; i < 300; ++i) {
            caller.makeAnyCall();
        }
    });
}

void createAndDestroy(long rounds) {
    Simulator const chatty({"--interval", "1"});
    std::atomic<long> next = 0;
    inThreads([&] { return next++ < rounds; },
              [&](Random& random) {
                  Waiting connections;
                  Waiting state;
                  Handle const handle(chatty.port);
                  connections.sdk = state.sdk = handle.sdk;
                  KelvarisSDK_EnableStatUpdates(handle.sdk, true, 0, nullptr);
                  KelvarisSDK_GetConnectionStats(handle.sdk, deliver, &connections);
                  KelvarisSDK_GetState(handle.sdk, deliver, &state);
                  if (random() % 2 == 0) {
                      judge(KelvarisSDK_GetVersion(handle.sdk, nullptr, nullptr).base);
                  }
              });
}

using Link = std::unique_ptr<kelvarissdk::WebsocketImpl>;

// Where the daemon answers surely, an answer is waited for without limit.
void ask(Link const& link, bool answers, unsigned long dice) {
    kelvarissdk::Exchange exchange = kelvarissdk::query("request_current_state", "report_current_state");
    exchange.timeoutMs = 1 + dice % 20;
    if (dice % 4 == 0) {
        exchange = {.awaited = {{"nothing"}}, .timeoutMs = exchange.timeoutMs};
    } else if (answers) {
        exchange.timeoutMs = 0;
    }
    auto const fill = [](KelvarisSDK_StateResult&, Json::Value const&) {};
    judge(kelvarissdk::wsNonSubscriptionWrapper<KelvarisSDK_StateResult>(nullptr, nullptr, link, exchange,
                                                                         +fill)
              .base);
    ++synchronous;
}

void registerAndUnregister(Link const& link) {
    auto const seen = std::make_unique<long>(0);
    auto description = awaiting("report_current_state", 3'600'000, {"request_current_state"});
    link->removeCallback(link->getResult(description, [&](auto&&...) { return ++*seen > 2; }));
    ++asynchronous;
}

// The thread sanitizer takes a thread that was cancelled in its wait for one that still waits, and overlooks its atomic
// operations from then on.
constexpr bool cancelInWait = std::string_view(SANITIZED_BY) != "thread";

void quietLinks(std::chrono::milliseconds duration) {
    Simulator const quiet({"--interval", "3600000"});
    Simulator const dropping({"--interval", "3600000", "--drop-after", "17"});
    Simulator const closing({"--interval", "3600000", "--close-frame-after", "5"});
    std::array const ports = {quiet.port, quiet.port, dropping.port, closing.port};
    inThreads(during(duration), [&](Random& random) {
        std::uint16_t const port = ports[random() % ports.size()];
        auto const link = std::make_unique<kelvarissdk::WebsocketImpl>("127.0.0.1", port);
        auto const start = [&](bool endless, unsigned long count) {
            return std::thread(
                [&link, endless, count, answers = port == quiet.port, dice = random]() mutable {
                    for (unsigned long i = 0; endless || i < count; ++i) {
                        dice() % 4 == 0 || (endless && !cancelInWait) ? registerAndUnregister(link)
                                                                      : ask(link, answers, dice());
                        pthread_testcancel();
                    }
                });
        };
        std::thread victim = start(true, 0);
        std::thread other = start(false, random() % 10);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 5000));
        pthread_cancel(victim.native_handle());
        victim.join();
        other.join();
        start(false, 2).join();
        ++cancelled;
    });
}

// This address sanitizer doesn't take the locks of its allocator before a fork, so that a child may wait for a thread that
// only the parent has. Such a child is ended by its alarm.
constexpr bool allocatorMayHang = std::string_view(SANITIZED_BY).starts_with("address");

void fork(KelvarisSDK_Handle* sdk, std::uint16_t port) {
    int const status = inChild([&] {
        lacksMemory = false;
        return wrongInChild(sdk, port);
    });
    if (status == -SIGALRM && allocatorMayHang) {
        ++hungForks;
    } else if (status != 0) {
        ++wrong;
        std::fprintf(stderr, "stress: a child ended with %d\n", status);
    }
    ++forks;
}

void useWithoutMemory(std::uint16_t port, std::uint16_t steadyPort, Random& random) {
    isInside = true;
    KelvarisSDK_Handle* const sdk =
        KelvarisSDK_CreateWithSettings({.appName = "stress", .address = "127.0.0.1", .port = port});
    isInside = false;
    if (random() % 4 == 0) {
        fork(sdk, steadyPort);
    }
    Waiting connections{.sdk = sdk};
    Waiting adapters{.sdk = sdk};
    isInside = true;
    KelvarisSDK_EnableStatUpdates(sdk, true, 0, nullptr);
    connections.id = KelvarisSDK_GetConnectionStats(sdk, deliver, &connections).base.callbackId;
    judge(KelvarisSDK_GetAdapters(sdk, deliver, &adapters).base);
    judge(KelvarisSDK_SetJumboPackets(sdk, true, nullptr, nullptr).base);
    judge(KelvarisSDK_GetDirectory(sdk, nullptr, nullptr).base);
    isInside = false;
    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 50));
    isInside = true;
    KelvarisSDK_Destroy(sdk);
    isInside = false;
}

void trouble(std::chrono::milliseconds duration) {
    std::vector<std::string> const options = {"--interval", "50"};
    Simulator const steady(options);
    std::optional<Simulator> restarted(std::in_place, options);
    std::uint16_t const port = restarted->port;
    auto const goesOn = during(duration);
    lacksMemory = true;
    std::jthread const restarter([&] {
        for (; goesOn(); ++restarts) {
            std::this_thread::sleep_for(std::chrono::milliseconds(700));
            restarted.reset();
            restarted.emplace(options, port);
        }
    });
    inThreads(goesOn, [&](Random& random) {
        useWithoutMemory(random() % 2 == 0 ? port : steady.port, steady.port, random);
    });
    lacksMemory = false;
}

// The kernel counts a thread for a moment after it has been joined.
struct Held {
    std::ptrdiff_t descriptors = count("/proc/self/fd");
    std::ptrdiff_t threads = count("/proc/self/task");
    std::size_t memory = mallinfo2().uordblks;

    static std::ptrdiff_t count(char const* folder) {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    }
};

bool sameAs(Held const& before, char const* stage) {
    auto const end = Clock::now() + std::chrono::seconds(5);
    Held now;
    while (now.threads != before.threads && Clock::now() < end) {
        std::this_thread::yield();
        now = Held();
    }
    std::printf("%s: descriptors %td to %td, threads %td to %td, memory in use %zu to %zu\n", stage,
                before.descriptors, now.descriptors, before.threads, now.threads, before.memory, now.memory);
    return now.descriptors == before.descriptors && now.threads == before.threads &&
           now.memory <= before.memory + growthAllowed;
}

} // namespace

// These stand in for the library's as well. Inlined, they would look to the compiler like a mismatch of new and free.
[[gnu::visibility("default"), gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = allocationFails() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
[[gnu::visibility("default"), gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::visibility("default"), gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

// A process that was forked off from one with threads has threads of its own here.
extern "C" [[gnu::visibility("default")]] char const* __tsan_default_options() {
    return "die_after_fork=0";
}

int main(int argc, char** argv) {
    long const seconds = argc > 1 ? std::atol(argv[1]) : 30;
    long const rounds = argc > 2 ? std::atol(argv[2]) : 10'000;
    createAndDestroy(10); // what is made once and kept, like the table of locations
    Held const before;
    mixedCalls(std::chrono::seconds(seconds));
    quietLinks(std::chrono::seconds(seconds));
    trouble(std::chrono::seconds(seconds));
    bool const tidy = sameAs(before, "calls");
    createAndDestroy(rounds);
    bool const tidyAgain = sameAs(before, "rounds");
    std::printf("%ld synchronous and %ld asynchronous calls, %ld deliveries, %ld time-outs, %ld threads "
                "cancelled, %ld rounds, %ld forks (%ld hung in the sanitizer), %ld restarts, %ld failed "
                "allocations, %ld wrong records\n",
                synchronous.load(), asynchronous.load(), deliveries.load(), timeOuts.load(), cancelled.load(),
                rounds, forks.load(), hungForks.load(), restarts.load(), failedAllocations.load(),
                wrong.load());
    return tidy && tidyAgain && wrong == 0 ? 0 : 1;
}
