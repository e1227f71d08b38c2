#include "loop.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace monitor {

Loop::Loop() {
    sigemptyset(&mask);
    sigprocmask(SIG_BLOCK, nullptr, &maskBefore);
    signalDescriptor = signalfd(-1, &mask, SFD_CLOEXEC | SFD_NONBLOCK);
    if (signalDescriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
    addDescriptor(signalDescriptor, POLLIN, [this](short) { readSignals(); });
}

Loop::~Loop() {
    close(signalDescriptor);
}

Loop::Id Loop::addDescriptor(int descriptor, short events, Ready ready) {
    watched.emplace(++lastId, Watched{descriptor, events, std::move(ready)});
    return lastId;
}

void Loop::setEvents(Id descriptor, short events) {
    if (auto const entry = watched.find(descriptor); entry != watched.end()) {
        entry->second.events = events;
    }
}

void Loop::removeDescriptor(Id descriptor) {
    watched.erase(descriptor);
}

Loop::Id Loop::setTimer(Clock::duration delay, std::function<void()> action) {
    return setTimerAt(Clock::now() + delay, std::move(action));
}

Loop::Id Loop::setTimerAt(Clock::time_point time, std::function<void()> action) {
    timers.emplace(++lastId, Timer{time, std::move(action)});
    return lastId;
}

void Loop::removeTimer(Id timer) {
    timers.erase(timer);
}

void Loop::onSignal(int signal, std::function<void()> action) {
    signals[signal] = std::move(action);
    sigaddset(&mask, signal);
    sigprocmask(SIG_BLOCK, &mask, nullptr);
    signalfd(signalDescriptor, &mask, 0);
}

void Loop::onSignalUnlessIgnored(int signal, std::function<void()> action) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) {
        onSignal(signal, std::move(action));
    }
}

// The functions are copied before they run, because they may remove themselves.
void Loop::readSignals() {
    signalfd_siginfo info;
    while (read(signalDescriptor, &info, sizeof info) == sizeof info) {
        if (auto const action = signals[static_cast<int>(info.ssi_signo)]) {
            action();
        }
    }
}

int Loop::untilNextTimer() const {
    auto next = Clock::time_point::max();
    for (auto const& [id, timer] : timers) {
        next = std::min(next, timer.due);
    }
    if (next == Clock::time_point::max()) {
        return -1;
    }
    // Rounded up, so that a timer is due when poll() returns.
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
}

// Those that are set meanwhile wait for the next round, so that a timer of no time can't keep the others waiting.
void Loop::runTimers() {
    auto const now = Clock::now();
    Id const last = lastId;
    for (Id id = 0; !ended;) {
        auto const entry = timers.upper_bound(id);
        if (entry == timers.end() || entry->first > last) {
            return;
        }
        id = entry->first;
        if (entry->second.due <= now) {
            auto const action = std::move(entry->second.action);
            timers.erase(entry);
            action();
        }
    }
}

int Loop::run() {
    std::vector<pollfd> polled;
    std::vector<Id> ids;
    while (!ended) {
        polled.clear();
        ids.clear();
        for (auto const& [id, each] : watched) {
            polled.push_back({each.descriptor, each.events, 0});
            ids.push_back(id);
        }
        if (poll(polled.data(), polled.size(), untilNextTimer()) < 0 && errno != EINTR && errno != EAGAIN) {
            throw std::system_error(errno, std::generic_category(), "poll");
        }
        runTimers();
        for (std::size_t i = 0; i < polled.size() && !ended; ++i) {
            auto const entry = watched.find(ids[i]);
            if (polled[i].revents != 0 && entry != watched.end()) {
                auto const ready = entry->second.ready;
                ready(polled[i].revents);
            }
        }
    }
    return *ended;
}

void Loop::end(int status) {
    if (!ended) {
        ended = status;
    }
}

} // namespace monitor
