// From a family's method to the engine and back: what a method says of its call (an Exchange and the parser of
// its report) and what all calls have in common. A method calls one of the two wrappers, which call wsWrapper(),
// which registers the call with the engine. A new call needs nothing here but query(), change() or command() and a
// function that fills its record.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

#include <json/json.h>
#include <kelvarissdk/types.h>

#include "parsejson.h"
#include "recordheads.h"
#include "websockets.h"

namespace kelvarissdk {

struct AwaitedReport {
    std::string event;
    Json::Value members = {}; // null: any report of that name; else what the payload must hold
};

// What a call sends and awaits. Calls with one request and one report use the three functions below.
struct Exchange {
    std::vector<Request> requests = {};
    std::vector<AwaitedReport> awaited = {};
    std::vector<std::string> subscribed = {}; // reports that come without being asked for; a Chooser tells
                                              // them from those that finish the record
    uint64_t timeoutMs = 5000;                // 0: none
    // Empty, or the name that a lock report must carry to concern this call. Of one-shot calls only.
    std::string settingName = {};
    bool failedUntilReported = false; // a synchronous record's `error` is set until a report clears it
};

// Queries a report.
Exchange query(char const* request, char const* report);
// Changes a setting that can be locked, under the request's own name.
Exchange change(char const* request, Json::Value const& payload, char const* report);
// Commands something that no lock concerns.
Exchange command(char const* request, Json::Value const& payload, char const* report);

// Holds one of the two kinds of function that fill a record from a payload.
template <class T> class RecordParser {
public:
    // Fills the record from any awaited report; the record is then complete.
    using Filler = void (*)(T&, Json::Value const& payload);
    // For calls that tell several events apart: true when the record is complete. It clears `error` itself.
    using Chooser = bool (*)(T&, std::string const& event, Json::Value const& payload);

    RecordParser(Filler function) : fill(function) {}
    RecordParser(Chooser function) : choose(function) {}

    bool operator()(T& result, std::string const& event, Json::Value const& payload) const {
        if (choose != nullptr) {
            return choose(result, event, payload);
        }
        result.base.error = false;
        fill(result, payload);
        return true;
    }

private:
    Filler fill = nullptr;
    Chooser choose = nullptr;
};

// Holds the head of a call's record, and the mutex that guards the record.
struct lockedHead {
    explicit lockedHead(KelvarisSDK_BaseResult& ofRecord) : head(ofRecord) {}
    lockedHead(lockedHead const&) = delete;
    lockedHead& operator=(lockedHead const&) = delete;

    std::mutex mutex;
    KelvarisSDK_BaseResult& head;
};

// Holds a call's record, which is zeroed at first. The caller and the handler in the event table share it.
template <class T> struct lockedResult : lockedHead {
    lockedResult() : lockedHead(result.base) {}

    T result{};
};

struct wsWrapperOptions {
    bool async = false;        // a callback was given
    bool subscription = false; // the callback may keep the entry alive
    std::string settingName = {};
};

// Given an event it fills the record; true: the record is complete.
using EventParser = EventHandler;

// What wsWrapper() does that doesn't depend on the type of the record: registers the call with the engine and, for
// a caller without a callback, waits until the shared record is finished. False: the caller's record is an empty
// one behind the head `returned`, which says that the call is asynchronous, or why it was refused.
bool registerCall(WebsocketImpl* websocket, Exchange const& exchange, std::shared_ptr<lockedHead> shared,
                  wsWrapperOptions options, EventParser parser, std::function<bool()> asyncInvoker,
                  KelvarisSDK_BaseResult& returned);

template <class T>
T wsWrapper(bool (*callback)(T, void*), void* userData, std::unique_ptr<WebsocketImpl> const& websocket,
            Exchange const& exchange, wsWrapperOptions options, RecordParser<T> parse) {
    auto shared = std::make_shared<lockedResult<T>>();
    options.async = callback != nullptr;
    auto const parser = [record = &shared->result, parse](std::string const& event, std::string const&,
                                                          Json::Value const& message) {
        return parse(*record, event, payloadOf(message));
    };
    auto const invoker = [record = &shared->result, callback, userData] {
        return callback != nullptr && callback(*record, userData);
    };
    T returned{};
    if (registerCall(websocket.get(), exchange, shared, std::move(options), parser, invoker, returned.base)) {
        std::lock_guard const lock(shared->mutex);
        returned = shared->result;
    }
    return returned;
}

// Goes on delivering until the callback returns false.
template <class T>
T wsSubscriptionWrapper(bool (*callback)(T, void*), void* userData,
                        std::unique_ptr<WebsocketImpl> const& websocket, Exchange const& exchange,
                        std::type_identity_t<RecordParser<T>> parse) {
    return wsWrapper(callback, userData, websocket, exchange, {.subscription = true}, parse);
}

// Ends with its first result.
template <class T>
T wsNonSubscriptionWrapper(bool (*callback)(T, void*), void* userData,
                           std::unique_ptr<WebsocketImpl> const& websocket, Exchange const& exchange,
                           std::type_identity_t<RecordParser<T>> parse) {
    return wsWrapper(callback, userData, websocket, exchange, {.settingName = exchange.settingName}, parse);
}

// Returns a record that only says why the call was refused.
template <class T> T refused(void (*reason)(KelvarisSDK_BaseResult*)) {
    T result{};
    if constexpr (std::is_same_v<T, KelvarisSDK_BaseResult>) {
        reason(&result);
    } else {
        reason(&result.base);
    }
    return result;
}

} // namespace kelvarissdk
