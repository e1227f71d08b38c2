#include "wswrapper.h"

#include <cerrno>
#include <exception>
#include <semaphore.h>
#include <utility>

#include "fields.h"
#include "keys.h"
#include "step.h"

namespace kelvarissdk {

namespace {

// The daemon reports this instead of the setting when the setting can't be changed.
constexpr char lockReport[] = "report_setting_locked";

// A synchronous caller waits here for its record.
class Completion {
public:
    Completion() {
        sem_init(&done, 0, 0);
    }
    ~Completion() {
        sem_destroy(&done);
    }
    Completion(Completion const&) = delete;
    Completion& operator=(Completion const&) = delete;

    void wait() {
        while (sem_wait(&done) != 0 && errno == EINTR) {
        }
    }
    void set() {
        sem_post(&done);
    }

private:
    sem_t done;
};

// A time-out brings its own type and text.
void setEngineError(KelvarisSDK_BaseResult& head, Json::Value const& message) {
    setSdkError(&head);
    if (message.isMember(Keys::_type)) {
        head.errorCode = message[Keys::_type].asInt();
    }
    if (message.isMember(Keys::_msg)) {
        copyText(head.errorMessage, message[Keys::_msg]);
    }
}

// True when the lock concerns this call; the record then says so.
bool takesLock(KelvarisSDK_BaseResult& head, std::string const& settingName, Json::Value const& payload) {
    if (!payload.isObject() || !payload.isMember(Keys::_setting) ||
        payload[Keys::_setting].asString() != settingName) {
        return false;
    }
    settingLocked(&head, payload[Keys::_reason].asInt());
    return true;
}

enum class Meaning { another, finished, outOfMemory };

// Decides what an event means for a call: a time-out, the call's own lock and a complete report finish its record,
// and so does, as an error, a report that can't be converted.
Meaning take(KelvarisSDK_BaseResult& head, std::string const& settingName, EventParser const& parser,
             std::string const& event, std::string const& text, Json::Value const& message) {
    if (event == timeoutEvent) {
        setEngineError(head, message);
        return Meaning::finished;
    }
    try {
        bool const finished = event == lockReport && !settingName.empty()
                                  ? takesLock(head, settingName, payloadOf(message))
                                  : parser(event, text, message);
        return finished ? Meaning::finished : Meaning::another;
    } catch (std::exception const& failure) {
        if (isOutOfMemory(failure)) {
            return Meaning::outOfMemory;
        }
        setSdkError(&head);
        return Meaning::finished;
    }
}

EventDescription describe(Exchange const& exchange) {
    EventDescription description;
    description.timeoutMs = exchange.timeoutMs;
    description.requests = exchange.requests;
    for (std::string const& event : exchange.subscribed) {
        WebsocketImpl::subscribeToEvent(description, event);
    }
    for (AwaitedReport const& report : exchange.awaited) {
        if (report.members.isNull()) {
            WebsocketImpl::waitForEvent(description, report.event);
        } else {
            WebsocketImpl::waitForEventWithMember(description, report.event, report.members);
        }
    }
    return description;
}

} // namespace

bool registerCall(WebsocketImpl* websocket, Exchange const& exchange, std::shared_ptr<lockedHead> shared,
                  wsWrapperOptions options, EventParser parser, std::function<bool()> asyncInvoker,
                  KelvarisSDK_BaseResult& returned) {
    bool const async = options.async;
    if (websocket == nullptr) {
        noWebsocketImplementation(&returned);
        return false;
    }
    if (!async && WebsocketImpl::isInReaderThread) {
        synchronousCalledFromAsynchronousCallback(&returned);
        return false;
    }
    EventDescription description = describe(exchange);
    if (!options.settingName.empty()) {
        WebsocketImpl::waitForEvent(description, lockReport);
    }
    KelvarisSDK_BaseResult& head = shared->head;
    head.error = exchange.failedUntilReported;
    if (async) {
        asyncMode(&head);
        returned = head; // taken before the callback can change the shared record
    }

    std::shared_ptr<Completion> const completion = async ? nullptr : std::make_shared<Completion>();
    // No exception of a callback is caught on the way: the host's own handler for those that nobody catches shall see it.
    auto handler = [websocket, shared = std::move(shared), options = std::move(options),
                    parser = std::move(parser), asyncInvoker = std::move(asyncInvoker), completion](
                       std::string const& event, std::string const& text, Json::Value const& message) {
        std::unique_lock lock(shared->mutex);
        Meaning const meaning = take(shared->head, options.settingName, parser, event, text, message);
        if (meaning == Meaning::outOfMemory) {
            websocket->dropLink();
        }
        if (meaning != Meaning::finished) {
            return false;
        }
        if (options.async) {
            return !asyncInvoker() || !options.subscription;
        }
        lock.unlock(); // so that the woken caller finds it free
        step();
        completion->set();
        return true;
    };
    returned.callbackId = websocket->getResult(description, std::move(handler), &head.callbackId);
    if (async) {
        return false;
    }
    completion->wait();
    return true;
}

Exchange query(char const* request, char const* report) {
    return {.requests = {{request}}, .awaited = {{report}}};
}

Exchange change(char const* request, Json::Value const& payload, char const* report) {
    return {.requests = {{request, payload}}, .awaited = {{report}}, .settingName = request};
}

Exchange command(char const* request, Json::Value const& payload, char const* report) {
    return {.requests = {{request, payload}}, .awaited = {{report}}};
}

} // namespace kelvarissdk
