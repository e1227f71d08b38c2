#pragma once

#include "kelvarissdk.h"
#include "support/texts.h"
#include "websockets.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <kelvarissdk/csdkinterface.h>
#include <mutex>

// The library's end of the link, what its callbacks bring, and its class on a scripted daemon, to reach what no command
// line does.
namespace harness {

class Handle {
public:
    explicit Handle(uint16_t port)
        : sdk(KelvarisSDK_CreateWithSettings({.appName = "", .address = "127.0.0.1", .port = port})) {}
    ~Handle() {
        KelvarisSDK_Destroy(sdk);
    }
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;

    KelvarisSDK_Handle* sdk;
};

// Holds what a callback got, for the test's thread to take in order.
template <class T> class InboxOf {
public:
    static bool keep(T result, void* userData) {
        static_cast<InboxOf*>(userData)->put(result);
        return true;
    }

    void put(T const& result) {
        std::lock_guard const lock(mutex);
        results.push_back(result);
        changed.notify_all();
    }

    T take() {
        std::unique_lock lock(mutex);
        if (!changed.wait_for(lock, patience(), [this] { return !results.empty(); })) {
            ADD_FAILURE() << "no callback came";
            return {};
        }
        T const first = results.front();
        results.pop_front();
        return first;
    }

    bool empty() {
        std::lock_guard const lock(mutex);
        return results.empty();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<T> results;
};
using Inbox = InboxOf<KelvarisSDK_StateResult>;

inline Options const noName{.appName = std::nullopt};

// Runs this on the library's own thread, inside a callback of a call that the daemon answers, and waits for its end.
inline void inCallback(KelvarisSDK_Handle* sdk, std::function<void()> body) {
    std::packaged_task<void()> task(std::move(body));
    auto const callback = [](KelvarisSDK_VersionResult, void* userData) {
        (*static_cast<std::packaged_task<void()>*>(userData))();
        return true;
    };
    KelvarisSDK_GetVersion(sdk, callback, &task);
    task.get_future().get();
}

class Sdk : public kelvarissdk::KelvarisSDK {
public:
    explicit Sdk(ScriptedDaemon const& daemon)
        : KelvarisSDK({.appName = "", .address = "127.0.0.1", .port = daemon.port()}) {}
    KelvarisSDK_Handle* handle() {
        return reinterpret_cast<KelvarisSDK_Handle*>(static_cast<kelvarissdk::KelvarisSDK*>(this));
    }
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

// Is an entry of its own in the event table, which writes down what it is called for: its name and the event's.
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
