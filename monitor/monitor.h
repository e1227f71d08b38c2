#pragma once

#include "command.h"

#include <exception>

namespace monitor {

// Owns the client, which supervises the link, and the snapshot: subscribes to what a command wants, puts each report into
// the snapshot, and calls the command.
class Monitor {
public:
    Monitor(Loop& loop, Options const& options);
    Monitor(Monitor const&) = delete;
    Monitor& operator=(Monitor const&) = delete;

    Snapshot const& snapshot() const {
        return known;
    }
    // The command lives as long as the monitor. Once.
    void start(Command& command);

private:
    template <class T, class Put> void subscribe(Topic topic, kelvaris::StreamCall<T> const& call, Put put);
    void refresh();
    void answered(Topic topic);
    void announce(Topic topic);
    void open();
    void dispatch();

    Loop& loop;
    Options const& options;
    Snapshot known;
    Command* command = nullptr;
    Topics wanted;
    Topics unanswered;
    bool isOpen = false;
    std::exception_ptr thrown; // by a callable, which the client catches

    std::optional<kelvaris::Client>
        client; // begins with start(): its threads keep off the signals that are blocked then
    std::vector<kelvaris::Subscription> subscriptions;
};

} // namespace monitor
