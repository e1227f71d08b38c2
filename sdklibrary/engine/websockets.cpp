// The life of a call: getResult queues an entry for the table together with the call's requests; the reader
// thread sends the requests, takes each message's event name from its raw text and hands the message to every
// entry that waits for that name; the entry's handler fills the call's record and says whether the
// entry is done. A time-out is a delivery too: the sweep hands the entry the event "sdk_error", and
// a daemon's event of that name reaches nobody, because no entry awaits it.
//
// One pass of the reader: connect if there is no socket, send, wait, deliver, sweep the time-outs, look whether to
// go on. The wait lasts until the socket has something, the next time-out is due, a request or an entry is queued, or
// the object ends; in the closing state only the last three end it, and of the entries one that is due earlier. No
// wake-up gets lost, because the reader clears the signal first and only then takes the queues and looks for the next
// time-out, and a caller queues first and signals then: what the reader didn't see in the queues ends its wait by the
// signal. Between two attempts to connect the reader waits for nothing but the end.

#include "websockets.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <exception>
#include <iterator>
#include <new>
#include <utility>

#include <kelvarissdk/types.h>

#include "keys.h"
#include "step.h"
#include "threads.h"

namespace kelvarissdk {

namespace {

constexpr int drainMs = 100;                // for what is queued when the object ends
constexpr int maxWaitWithoutWakeupMs = 100; // where the process had no descriptor for the signal
constexpr int reconnectMs = 250;

// What a handler is told of a time-out.
Json::Value errorMessage(char const* text, KelvarisSDK_ErrorType type) {
    Json::Value message;
    message[Keys::_msg] = text;
    message[Keys::_type] = type;
    return message;
}

} // namespace

uint64_t getTimeMillis() {
    auto const now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()) /
           1'000'000;
}

std::atomic<uint64_t> WebsocketImpl::nextEventId = 0;
constinit thread_local bool WebsocketImpl::isInReaderThread = false;

WebsocketImpl::WebsocketImpl(char const* daemonAddress, unsigned short daemonPort)
    : generation(forkGeneration()),
      address(daemonAddress),
      port(daemonPort),
      timeoutMessage(errorMessage("Timeout", KelvarisSDK_ErrorType_TIMEOUT)),
      notConnectedMessage(errorMessage("Unable to connect", KelvarisSDK_ErrorType_NOT_CONNECTED)),
      readerThread(startThread([this] { readerRunner(); })) {
    // On a processor that both threads share, the reader begins to connect, and the caller prepares its first request
    // while the daemon answers.
    std::this_thread::yield();
}

WebsocketImpl::~WebsocketImpl() {
    end();
}

void WebsocketImpl::end() {
    if (!readerThread.joinable()) {
        return;
    }
    {
        std::lock_guard const lock(runningMutex);
        running = false;
    }
    step();
    runningChanged.notify_all();
    wakeup.signal();
    readerThread.join();
}

void WebsocketImpl::sendRequest(std::string const& request, Json::Value const& payload) {
    Request queued{request, payload};
    bool wake = false;
    {
        std::lock_guard const lock(outgoingMutex);
        outgoing.push_back(std::move(queued));
        wake = !closingWait;
    }
    if (wake) {
        wakeup.signal();
    }
}

void WebsocketImpl::sendRequest(EventDescription& description, std::string const& request,
                                Json::Value const& payload) {
    description.requests.emplace_back(request, payload);
}

void WebsocketImpl::waitForEvent(EventDescription& description, std::string const& event) {
    Json::Value awaited;
    awaited["event"] = event;
    awaited["members"] = Json::arrayValue;
    description.awaitedEvents.push_back(std::move(awaited));
}

void WebsocketImpl::waitForEventWithMember(EventDescription& description, std::string const& event,
                                           Json::Value const& members) {
    waitForEvent(description, event);
    description.awaitedEvents.back()["members"].append(members);
}

void WebsocketImpl::subscribeToEvent(EventDescription& description, std::string const& event) {
    description.subscribedEvents.push_back(event);
}

uint64_t WebsocketImpl::getResult(EventDescription& description, EventHandler handler, uint64_t* assignedId) {
    description.callback = std::move(handler);
    uint64_t const id = nextEventId++;
    bool wake = false;
    if (assignedId != nullptr) {
        *assignedId = id;
    }
    std::vector<Request> requests = std::move(description.requests);
    description.startTime = getTimeMillis();
    uint64_t const due = dueTime(description);
    std::map<uint64_t, EventDescription> registered;
    registered.emplace(id, std::move(description));
    step();
    {
        std::lock_guard const lock(outgoingMutex);
        // The merge can't fail, so a call that throws here leaves no entry behind.
        outgoing.insert(outgoing.end(), std::move_iterator(requests.begin()),
                        std::move_iterator(requests.end()));
        wake = !closingWait || due < closingWaitEnds;
        pendingEvents.merge(registered);
    }
    if (wake) {
        wakeup.signal();
    }
    return id;
}

void WebsocketImpl::readerRunner() {
    isInReaderThread = true;
    // A request queued just before the end still leaves: the first pass connects and sends before it looks
    // whether to go on. A callback that forks may return in the child as well, and the link is the parent's.
    do {
        if (!ws) {
            connect();
        }
        if (!ws) {
            waitForEnd(reconnectMs);
        } else if (ws->getReadyState() == easywsclient::WebSocket::CLOSED) {
            ws.reset();
            waitForEnd(reconnectMs);
        } else {
            serveSocket();
        }
    } while (!isInherited() && sweepAndGoOn() && !isInherited());
}

// Without memory it fails like any other attempt.
void WebsocketImpl::connect() {
    try {
        std::string const url = "ws://" + address + ":" + std::to_string(port) + "/";
        ws.reset(easywsclient::WebSocket::from_url(url, "easywsclient://"));
    } catch (std::bad_alloc const&) {
        return;
    }
    if (ws) {
        ws->watch(wakeup.descriptor(), &asleep);
    }
}

void WebsocketImpl::serveSocket() {
    // The link is closing when the daemon asked for it or broke the protocol, and stays so for good.
    bool const closing = ws->getReadyState() == easywsclient::WebSocket::CLOSING;
    // The signal is cleared before the queues and `running` are read, so that whatever comes later ends the wait.
    wakeup.clear();
    int const wait = timeToWait(closing);
    step();
    if (closing) {
        asleep = true;
        wakeup.wait(wait);
        asleep = false;
        return;
    }
    if (sendOutgoing()) {
        step();
        // After a loss that sending has shown, poll() would sleep the whole wait and delay the next attempt to connect.
        if (ws->getReadyState() != easywsclient::WebSocket::CLOSED) {
            ws->poll(wait);
        }
        ws->dispatch([this](std::string const& text) { handle_message(text); });
    } else {
        dropLink();
    }
    if (linkDropped) {
        linkDropped = false;
        ws.reset();
        waitForEnd(reconnectMs);
    }
}

void WebsocketImpl::dropLink() {
    linkDropped = true;
}

// How long the reader may wait when nothing happens, in milliseconds; -1: without limit.
int WebsocketImpl::timeToWait(bool closing) {
    std::lock_guard const eventsLock(eventsMutex);
    admitPending(closing ? Next::closingWait : Next::sending);
    step();
    {
        std::lock_guard const runningLock(runningMutex);
        if (!running) {
            return 0;
        }
    }
    uint64_t const longest = wakeup.descriptor() < 0 ? maxWaitWithoutWakeupMs : INT_MAX;
    if (nextTimeout == never) {
        return longest == INT_MAX ? -1 : maxWaitWithoutWakeupMs;
    }
    uint64_t const now = getTimeMillis();
    return static_cast<int>(std::min(nextTimeout - std::min(nextTimeout, now), longest));
}

// Only the destructor ends this wait early.
void WebsocketImpl::waitForEnd(int milliseconds) {
    step();
    std::unique_lock lock(runningMutex);
    asleep = true;
    runningChanged.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return !running; });
    asleep = false;
}

bool WebsocketImpl::sweepAndGoOn() {
    std::lock_guard const eventsLock(eventsMutex);
    admitPending();
    step();
    sweepTimeouts();
    step();
    std::lock_guard const runningLock(runningMutex);
    if (!running && ws && ws->getReadyState() == easywsclient::WebSocket::OPEN) {
        drainOnShutdown();
    }
    return running;
}

// Sends what is queued, and reads what has come, because closing with bytes unread would reset the connection
// while the daemon still reads from it.
void WebsocketImpl::drainOnShutdown() {
    ws->watch(-1);
    if (!sendOutgoing()) {
        return;
    }
    ws->poll(0);
    uint64_t const start = getTimeMillis();
    uint64_t waited = 0;
    while (ws->getReadyState() == easywsclient::WebSocket::OPEN && ws->unsentBytes() > 0 &&
           waited < drainMs) {
        ws->poll(drainMs - static_cast<int>(waited));
        waited = getTimeMillis() - start;
    }
}

uint64_t WebsocketImpl::dueTime(EventDescription const& entry) {
    bool const armed = entry.timeoutMs != 0 && entry.startTime != 0 && !entry.awaitedEvents.empty();
    // A time-out is over when more than its milliseconds have passed.
    return armed && entry.timeoutMs < never - entry.startTime - 1 ? entry.startTime + entry.timeoutMs + 1
                                                                  : never;
}

bool WebsocketImpl::isInherited() const {
    return generation != forkGeneration();
}

// The copies of thread and condition variable are replaced by fresh ones: their destructors would wait for a thread that
// isn't in this process.
bool WebsocketImpl::forgetThread() {
    if (asleep && eventsMutex.try_lock()) {
        bool const isWhole = outgoingMutex.try_lock();
        if (isWhole) {
            outgoingMutex.unlock();
        }
        eventsMutex.unlock();
        if (isWhole) {
            ::new (&readerThread) std::thread;
            ::new (&runningChanged) std::condition_variable;
            return true;
        }
    }
    wakeup.close();
    if (ws) {
        ws->closeDescriptor();
    }
    return false;
}

} // namespace kelvarissdk
