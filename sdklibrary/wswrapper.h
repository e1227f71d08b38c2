// From a family's method to the engine and back: what a method says of its call (an Exchange and a way to
// fill the record) and the templates that do what all calls have in common.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <semaphore.h>
#include <string>
#include <type_traits>
#include <vector>

#include <json/json.h>
#include <kelvarissdk/types.h>

#include "websockets.h"

namespace kelvarissdk {

// A call's record, zeroed at first, shared by the caller and the handler in the event table.
template <class T> struct lockedResult {
    std::mutex mutex;
    T result{};
};

// The daemon's answer in the place of a report when a setting can't be changed.
constexpr char lockReport[] = "report_setting_locked";

struct wsWrapperOptions {
    bool async = false;        // a callback was given
    bool subscription = false; // the callback may keep the entry alive
    // Empty, or the name that a lock report must carry to concern the call.
    std::string settingName = {};
};

// Given an event it fills the record; true: the record is complete.
using EventParser = EventHandler;

// Where a synchronous caller waits for its record.
class Completion {
public:
    Completion();
    ~Completion();
    Completion(Completion const&) = delete;
    Completion& operator=(Completion const&) = delete;

    void wait();
    void set();

private:
    sem_t done;
};

// The head of a call's record and what guards it; `owner` keeps both alive.
struct CallRecord {
    std::shared_ptr<void> owner;
    std::mutex& mutex;
    KelvarisSDK_BaseResult& head;
};

// The handler that stands in the event table: time-outs and locks here, other events by the parser; a
// finished record goes to the callback or wakes the caller.
EventHandler callHandler(CallRecord record, wsWrapperOptions options, EventParser parser,
                         std::function<bool()> asyncInvoker, std::shared_ptr<Completion> completion);

// Registers the call. Returns what the method returns: the finished record of a synchronous call; of an
// asynchronous one the record that only says so, taken before the callback can change the shared one.
template <class T>
T wsWrapper(WebsocketImpl* websocket, EventDescription& description, std::shared_ptr<lockedResult<T>> shared,
            wsWrapperOptions const& options, EventParser parser, std::function<bool()> asyncInvoker) {
    KelvarisSDK_BaseResult& head = shared->result.base;
    if (!options.async && WebsocketImpl::isInReaderThread) {
        synchronousCalledFromAsynchronousCallback(&head);
        return shared->result;
    }
    if (!options.settingName.empty()) {
        WebsocketImpl::waitForEvent(description, lockReport);
    }
    auto completion = std::make_shared<Completion>();
    EventHandler handler = callHandler({shared, shared->mutex, head}, options, std::move(parser),
                                       std::move(asyncInvoker), completion);
    if (options.async) {
        asyncMode(&head);
        T returned = shared->result;
        returned.base.callbackId = websocket->getResult(description, std::move(handler), &head.callbackId);
        return returned;
    }
    websocket->getResult(description, std::move(handler), &head.callbackId);
    completion->wait();
    std::lock_guard const lock(shared->mutex);
    return shared->result;
}

template <class T, class F>
T wsWrapperForCallback(F& callback, void* userData, WebsocketImpl* websocket, EventDescription& description,
                       std::shared_ptr<lockedResult<T>> shared, wsWrapperOptions options,
                       EventParser parser) {
    options.async = callback != nullptr;
    auto invoker = [callback, userData, record = shared.get()] {
        return callback != nullptr && callback(record->result, userData);
    };
    return wsWrapper(websocket, description, std::move(shared), options, std::move(parser), invoker);
}

// Goes on delivering until the callback returns false.
template <class T, class F>
T wsSubscriptionWrapper(F& callback, void* userData, WebsocketImpl* websocket, EventDescription& description,
                        std::shared_ptr<lockedResult<T>> shared, EventParser parser) {
    return wsWrapperForCallback(callback, userData, websocket, description, std::move(shared),
                                {.subscription = true}, std::move(parser));
}

// Ends with its first result.
template <class T, class F>
T wsNonSubscriptionWrapper(F& callback, void* userData, WebsocketImpl* websocket,
                           EventDescription& description, std::shared_ptr<lockedResult<T>> shared,
                           EventParser parser) {
    return wsWrapperForCallback(callback, userData, websocket, description, std::move(shared), {},
                                std::move(parser));
}

// The same for a call that changes a setting, which the daemon may answer with a lock.
template <class T, class F>
T wsNonSubscriptionWrapper(F& callback, void* userData, WebsocketImpl* websocket,
                           EventDescription& description, std::shared_ptr<lockedResult<T>> shared,
                           std::string const& settingName, EventParser parser) {
    return wsWrapperForCallback(callback, userData, websocket, description, std::move(shared),
                                {.settingName = settingName}, std::move(parser));
}

struct Request {
    std::string name;
    Json::Value payload = {};
};

struct AwaitedReport {
    std::string event;
    Json::Value members = {}; // null: any report of that name; else what the payload must hold
};

// What a call sends and awaits. Calls with one request and one report use read() and change() below.
struct Exchange {
    std::vector<Request> requests = {};
    std::vector<AwaitedReport> awaited = {};
    std::vector<std::string> subscribed = {}; // reports that come without being asked for; a RecordParser
                                              // tells them from those that finish the record
    uint64_t timeoutMs = 5000;                // 0: none
    std::string settingName = {};             // of one-shot calls only
    bool failedUntilReported = false; // a synchronous record's `error` is set until a report clears it
};

// Asks for a report.
Exchange read(char const* request, char const* report);
// Changes a setting that can be locked, under the request's own name.
Exchange change(char const* request, Json::Value const& payload, char const* report);
// Asks for something that no lock concerns.
Exchange order(char const* request, Json::Value const& payload, char const* report);

EventDescription describe(Exchange const& exchange);

// Fills the record from an awaited report's payload; the record is then complete.
template <class T> using Filler = void (*)(T&, Json::Value const&);
// For calls that tell several events apart: true when the record is complete. It clears `error` itself.
template <class T>
using RecordParser = std::function<bool(T&, std::string const& event, Json::Value const& payload)>;

template <class T> RecordParser<T> parserOf(Filler<T> fill) {
    return [fill](T& result, std::string const&, Json::Value const& payload) {
        result.base.error = false;
        fill(result, payload);
        return true;
    };
}

// A record that only says why the call was refused.
template <class T> T refused(void (*reason)(KelvarisSDK_BaseResult*)) {
    T result{};
    reason(&result.base);
    return result;
}

enum class Delivery { subscription, oneShot };

template <class T>
T call(WebsocketImpl* websocket, Delivery delivery, bool (*callback)(T, void*), void* userData,
       Exchange const& exchange, RecordParser<T> fill) {
    if (websocket == nullptr) {
        return refused<T>(noWebsocketImplementation);
    }
    auto shared = std::make_shared<lockedResult<T>>();
    EventDescription description = describe(exchange);
    shared->result.base.error = exchange.failedUntilReported;
    auto parser = [record = shared.get(), fill = std::move(fill)](
                      std::string const& event, std::string const&, Json::Value const& message) {
        return fill(record->result, event, payloadOf(message));
    };
    if (delivery == Delivery::subscription) {
        return wsSubscriptionWrapper(callback, userData, websocket, description, std::move(shared), parser);
    }
    if (exchange.settingName.empty()) {
        return wsNonSubscriptionWrapper(callback, userData, websocket, description, std::move(shared),
                                        parser);
    }
    return wsNonSubscriptionWrapper(callback, userData, websocket, description, std::move(shared),
                                    exchange.settingName, parser);
}

// What the families' methods say: link, callback, user data, exchange, how the record is filled.
template <class T>
T subscriptionCall(WebsocketImpl* websocket, bool (*callback)(T, void*), void* userData,
                   Exchange const& exchange, std::type_identity_t<Filler<T>> fill) {
    return call(websocket, Delivery::subscription, callback, userData, exchange, parserOf<T>(fill));
}

template <class T>
T subscriptionCall(WebsocketImpl* websocket, bool (*callback)(T, void*), void* userData,
                   Exchange const& exchange, std::type_identity_t<RecordParser<T>> parse) {
    return call(websocket, Delivery::subscription, callback, userData, exchange, std::move(parse));
}

template <class T>
T oneShotCall(WebsocketImpl* websocket, bool (*callback)(T, void*), void* userData, Exchange const& exchange,
              std::type_identity_t<Filler<T>> fill) {
    return call(websocket, Delivery::oneShot, callback, userData, exchange, parserOf<T>(fill));
}

template <class T>
T oneShotCall(WebsocketImpl* websocket, bool (*callback)(T, void*), void* userData, Exchange const& exchange,
              std::type_identity_t<RecordParser<T>> parse) {
    return call(websocket, Delivery::oneShot, callback, userData, exchange, std::move(parse));
}

} // namespace kelvarissdk
