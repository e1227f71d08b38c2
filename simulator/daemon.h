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

// Returns the name of a client in the log.
inline std::string clientText(ClientId client) {
    return "client " + std::to_string(client);
}

// The families see the daemon through this interface. Everything runs on one thread, so a handler or a timer
// needs no lock, and it must not block. An exception that leaves one (a payload of the wrong type, for
// example) is logged, and the daemon goes on.
class Daemon {
public:
    virtual ~Daemon() = default;

    virtual World& world() = 0;

    // Sends to one client. The call ignores a client that has disconnected, so timers may keep its id.
    virtual void send(ClientId client, std::string const& report, Json::Value const& payload) = 0;
    // Sends to every client.
    virtual void broadcast(std::string const& report, Json::Value const& payload) = 0;

    // Runs the action once, after the given time.
    virtual TimerId after(std::chrono::milliseconds delay, std::function<void()> action) = 0;
    // Runs the action periodically, first after one period, until it returns false or throws.
    virtual TimerId every(std::chrono::milliseconds period, std::function<bool()> action) = 0;
    // The id of a timer that has ended is ignored. An action may cancel its own timer.
    virtual void cancel(TimerId timer) = 0;
    // Returns the period of unrequested reports, from --interval.
    virtual std::chrono::milliseconds interval() const = 0;
    // Returns how many times as fast the traffic's time passes, from --speed.
    virtual int trafficSpeed() const = 0;

    // Writes a line to the log of --verbose.
    virtual void log(std::string const& line) = 0;
    // Ends the daemon once the current handler has returned.
    virtual void stop() = 0;
};

} // namespace kelvarissim
