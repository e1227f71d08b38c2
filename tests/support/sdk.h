#pragma once

#include "kelvarissdk.h"
#include "support/scripteddaemon.h"
#include "websockets.h"

#include <future>
#include <mutex>
#include <string>
#include <vector>

// The library's class on a scripted daemon, to reach what no command line does.
namespace harness {

inline Options const noName{.appName = std::nullopt};

class Sdk : public kelvarissdk::KelvarisSDK {
public:
    explicit Sdk(ScriptedDaemon const& daemon)
        : KelvarisSDK({.appName = "", .address = "127.0.0.1", .port = daemon.port()}) {}
    kelvarissdk::WebsocketImpl& link() {
        return *websocket;
    }
    bool isAlive() {
        std::lock_guard const lock(statsLock);
        return statsRunnerActive;
    }
    void unlink() {
        websocket.reset();
    }
};

// An entry of its own in the event table, which writes down what it is called for: its name and the event's.
class Entry {
public:
    Entry(kelvarissdk::WebsocketImpl& link, std::string name, std::string& log,
          kelvarissdk::EventDescription description, bool ends = true) {
        link.getResult(description, [this, name, &log, ends](std::string const& event, auto&&, auto&&) {
            log += name + ':' + event + ' ';
            called.set_value();
            return ends;
        });
    }
    void wait() {
        called.get_future().wait();
    }

private:
    std::promise<void> called;
};

inline kelvarissdk::EventDescription awaiting(std::string const& event, uint64_t timeoutMs = 0,
                                              std::vector<std::string> const& requests = {}) {
    kelvarissdk::EventDescription description;
    description.timeoutMs = timeoutMs;
    kelvarissdk::WebsocketImpl::waitForEvent(description, event);
    for (std::string const& request : requests) {
        kelvarissdk::WebsocketImpl::sendRequest(description, request);
    }
    return description;
}

} // namespace harness
