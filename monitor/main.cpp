// A run reads its words, makes the loop, the monitor and the command, and runs until the command or a signal ends it.

#include "monitor.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <malloc.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

using namespace monitor;

// What is queued for a daemon that answers leaves within 100 ms.
constexpr itimerval leavingLimit{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_usec = 250'000}};

std::atomic<int> finalStatus = 1;

// Descriptors that the caller has closed would be given to the link, and lines would go there. The stand-ins fail to
// write, as the closed ones would.
void occupyStandardDescriptors() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

// A daemon that never completes the upgrade would hold up the end of the client.
void limitLeaving(int status) {
    finalStatus = status;
    std::signal(SIGALRM, [](int) { _exit(finalStatus); });
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &alarms, nullptr);
    setitimer(ITIMER_REAL, &leavingLimit, nullptr);
}

void onInterrupt(Loop& loop, std::unique_ptr<Command> const& command) {
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        loop.onSignalUnlessIgnored(signal,
                                   [&loop, &command, signal] { loop.end(command->interrupted(signal)); });
    }
}

int run(Options const& options) {
    Loop loop;
    Monitor monitor(loop, options);
    std::unique_ptr<Command> command;
    onInterrupt(loop, command);
    int status = 1;
    std::string failure;
    try {
        command = options.make({loop, monitor.snapshot(), options});
        monitor.start(*command);
        status = loop.run();
    } catch (std::exception const& error) {
        failure = error.what();
    }
    command.reset(); // what it did to the terminal is undone before anything is said
    if (!failure.empty()) {
        std::fprintf(stderr, "kelvaris-monitor: %s\n", failure.c_str());
    }
    limitLeaving(status);
    return status;
}

} // namespace

int main(int argc, char* argv[]) {
    occupyStandardDescriptors();
    mallopt(M_ARENA_MAX, 1); // the threads hardly ever allocate at the same time
    // A reader that has gone and a file that must not grow are errors of the write.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        Options options;
        auto const status = readWords(argc, argv, options);
        return status ? *status : run(options);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "kelvaris-monitor: %s\n", error.what());
    }
    return 1;
}
