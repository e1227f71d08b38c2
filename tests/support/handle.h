#pragma once

#include "support/process.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <gtest/gtest.h>
#include <kelvarissdk/csdkinterface.h>
#include <mutex>

// The library's end of the link, and what its callbacks bring.
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

// What a callback got, for the test's thread to take in order.
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

} // namespace harness
