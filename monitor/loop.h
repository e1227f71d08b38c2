#pragma once

#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <optional>
#include <poll.h>
#include <vector>

namespace monitor {

using Clock = std::chrono::steady_clock;

// The one loop of the program, by poll(): descriptors, timers and signals call functions on the thread that runs it.
// Each function may add and remove what it likes, itself included.
class Loop {
public:
    using Ready = std::function<void(short events)>;
    using Id = unsigned; // never 0

    Loop();
    ~Loop();
    Loop(Loop const&) = delete;
    Loop& operator=(Loop const&) = delete;

    // The descriptor stays the caller's, who removes it before closing it. `events` as poll() has them. Errors and hang-ups
    // are always told, and again and again until the descriptor is removed.
    Id addDescriptor(int descriptor, short events, Ready ready);
    void setEvents(Id descriptor, short events);
    void removeDescriptor(Id descriptor);

    // Calls once after this time. What is removed never runs.
    Id setTimer(Clock::duration delay, std::function<void()> action);
    Id setTimerAt(Clock::time_point time, std::function<void()> action);
    void removeTimer(Id timer);

    // The signal is blocked from then on, and only the loop sees it. Threads that are to leave it alone start later. The
    // newest function for a signal counts.
    void onSignal(int signal, std::function<void()> action);
    // A signal that the caller has the program ignore, as nohup does, stays ignored.
    void onSignalUnlessIgnored(int signal, std::function<void()> action);
    // The mask from before, which a child needs.
    sigset_t const& originalMask() const {
        return maskBefore;
    }

    // Runs until end() has been called, and returns its status.
    int run();
    void end(int status); // the first call counts
    bool hasEnded() const {
        return ended.has_value();
    }

private:
    struct Watched {
        int descriptor;
        short events;
        Ready ready;
    };
    struct Timer {
        Clock::time_point due;
        std::function<void()> action;
    };

    int untilNextTimer() const;
    void runTimers();
    void readSignals();

    Id lastId = 0;
    std::map<Id, Watched> watched;
    std::map<Id, Timer> timers;
    std::map<int, std::function<void()>> signals;
    sigset_t maskBefore{};
    sigset_t mask{};
    int signalDescriptor = -1;
    std::optional<int> ended;
};

} // namespace monitor
