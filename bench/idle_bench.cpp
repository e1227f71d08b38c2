// This measures what a handle does while nothing happens.

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "handles.h"

namespace {

using std::chrono::milliseconds;

// Counts all threads but this one.
struct Activity {
    int threads = 0;
    long wakeUps = 0;
    double cpu = 0; // seconds
};

Activity activity() {
    Activity sum;
    for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
        if (task.path().filename() == std::to_string(getpid())) {
            continue;
        }
        ++sum.threads;
        double nanoseconds = 0;
        mustSucceed(bool(std::ifstream(task.path() / "schedstat") >> nanoseconds), "no account of time");
        sum.cpu += nanoseconds / 1e9;
        std::ifstream status(task.path() / "status");
        std::string word;
        while (status >> word) {
            if (word == "voluntary_ctxt_switches:") {
                long count = 0;
                status >> count;
                sum.wakeUps += count;
            }
        }
    }
    return sum;
}

void watchIdle(benchmark::State& state, milliseconds time = milliseconds(12000)) {
    std::this_thread::sleep_for(milliseconds(500));
    Activity const before = activity();
    auto const start = Clock::now();
    for (auto _ : state) {
        std::this_thread::sleep_for(time);
    }
    double const seconds = secondsSince(start);
    Activity const after = activity();
    state.counters["threads"] = after.threads;
    state.counters["cpu"] = (after.cpu - before.cpu) / seconds;
    state.counters["wakeUps"] = static_cast<double>(after.wakeUps - before.wakeUps) / seconds;
}

void idleLinked(benchmark::State& state) {
    Handle const handle = linkedHandle();
    watchIdle(state);
}
BENCHMARK(idleLinked)->Iterations(1);

// A repeat comes every 45 seconds. The load daemon answers none of them.
void idleSubscribed(benchmark::State& state) {
    Handle const handle = makeHandle(portFrom("LOAD_PORT"));
    mustSucceed(reads[0](handle.get()), "a read of the load daemon failed");
    mustSucceed(!KelvarisSDK_EnableStatUpdates(handle.get(), true, 0, nullptr).error, "no subscription");
    watchIdle(state, milliseconds(50000));
}
BENCHMARK(idleSubscribed)->Iterations(1);

void idleClosing(benchmark::State& state) {
    Handle const handle = makeHandle(portFrom("CLOSING_PORT"));
    watchIdle(state);
}
BENCHMARK(idleClosing)->Iterations(1);

// Holds a bound port of the loopback interface, which takes connections if it listens, and never answers.
class MutePort {
public:
    explicit MutePort(bool listens) : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        mustSucceed(bind(descriptor, generic, size) == 0 && getsockname(descriptor, generic, &size) == 0 &&
                        (!listens || listen(descriptor, 1) == 0),
                    "no port");
        port = ntohs(address.sin_port);
    }
    ~MutePort() {
        close(descriptor);
    }
    MutePort(MutePort const&) = delete;
    MutePort& operator=(MutePort const&) = delete;

    std::uint16_t port = 0;

private:
    int const descriptor;
};

void idleWithoutDaemon(benchmark::State& state) {
    MutePort const nobody(false);
    Handle const handle = makeHandle(nobody.port);
    watchIdle(state);
}
BENCHMARK(idleWithoutDaemon)->Iterations(1);

void idleUnanswered(benchmark::State& state) {
    auto mute = std::make_unique<MutePort>(true);
    Handle const handle = makeHandle(mute->port);
    watchIdle(state);
    mute.reset(); // ends the upgrade, which the end of the handle waits for
}
BENCHMARK(idleUnanswered)->Iterations(1);

} // namespace
