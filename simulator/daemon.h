#pragma once

#include "world.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <json/value.h>
#include <string>

namespace kelvarissim {

using ClientId = std::uint64_t; // never used again for another link
using TimerId = std::uint64_t;

// A client in a line of the log.
inline std::string clientText(ClientId client) {
    return "client " + std::to_string(client);
}

// What a family sees of the daemon. Everything runs on one thread: a handler or a timer has the world to
// itself until it returns, and must not block. An exception that leaves one (a payload of the wrong type,
// say) is logged, and the daemon goes on.
class Daemon {
public:
    virtual ~Daemon() = default;

    virtual World& world() = 0;

    // To one client; nothing happens when it is gone, so timers may keep its id.
    virtual void send(ClientId client, std::string const& report, Json::Value const& payload) = 0;
    // To every client.
    virtual void broadcast(std::string const& report, Json::Value const& payload) = 0;

    // Once, after the given time.
    virtual TimerId after(std::chrono::milliseconds delay, std::function<void()> action) = 0;
    // Again and again, first after one period, until the action returns false or throws.
    virtual TimerId every(std::chrono::milliseconds period, std::function<bool()> action) = 0;
    // Ids of timers that have ended are ignored; an action may cancel its own timer.
    virtual void cancel(TimerId timer) = 0;
    // The period of reports that come of their own accord, from --interval.
    virtual std::chrono::milliseconds interval() const = 0;

    // One line in the log of --verbose.
    virtual void log(std::string const& line) = 0;
    // Ends the daemon once the current handler has returned.
    virtual void stop() = 0;
};

} // namespace kelvarissim
