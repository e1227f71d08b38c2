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
#include <cstring>
#include <exception>
#include <iterator>
#include <new>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include <kelvarissdk/types.h>

#include "keys.h"
#include "parsejson.h"
#include "step.h"
#include "threads.h"

namespace kelvarissdk {

namespace {

constexpr int drainMs = 100;                // for what is queued when the object ends
constexpr int maxWaitWithoutWakeupMs = 100; // where the process had no descriptor for the signal
constexpr int reconnectMs = 250;

// A payload passes when it passes every filter object of the entry's "members".
bool passesFilter(Json::Value const& members, Json::Value const& payload) {
    if (!payload.isObject()) {
        return false;
    }
    bool passes = true;
    for (Json::Value const& filter : members) {
        for (auto wanted = filter.begin(); wanted != filter.end(); ++wanted) {
            std::string const key = wanted.name();
            Json::Value const* value = payload.find(key.data(), key.data() + key.size());
            passes = passes && value != nullptr && (wanted->isNull() || *value == *wanted);
        }
    }
    return passes;
}

// What a handler is told of a time-out.
Json::Value errorMessage(char const* text, KelvarisSDK_ErrorType type) {
    Json::Value message;
    message[Keys::_msg] = text;
    message[Keys::_type] = type;
    return message;
}

// Overwrites the texts of a value, which leaves the rest of it as it is.
void wipe(Json::Value& value) {
    if (value.isString()) {
        char const* begin = nullptr;
        char const* end = nullptr;
        value.getString(&begin, &end);
        explicit_bzero(const_cast<char*>(begin), static_cast<std::size_t>(end - begin));
    } else if (value.isArray() || value.isObject()) {
        for (Json::Value& element : value) {
            wipe(element);
        }
    }
}

bool namesEvent(Json::Value const& awaited, std::string const& name) {
    char const* begin = nullptr;
    char const* end = nullptr;
    return awaited["event"].getString(&begin, &end) && std::string_view(begin, end) == name;
}

} // namespace

uint64_t getTimeMillis() {
    auto const now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()) /
           1'000'000;
}

// One message from the daemon, which is parsed once, and only when somebody wants it.
class WebsocketImpl::Message {
public:
    Message(std::string eventName, std::string const& rawText) : name(std::move(eventName)), text(rawText) {}

    void parse(JsonReader& reader) {
        if (!isParsed) {
            isParsed = true;
            parseJson(reader, document, text);
        }
    }

    // Null as long as nobody has wanted it parsed.
    Json::Value const& parsed() const {
        return document;
    }

    std::string const name;
    std::string const& text;

private:
    Json::Value document;
    bool isParsed = false;
};

Request::Request(std::string ofName, Json::Value withPayload)
    : name(std::move(ofName)), payload(std::move(withPayload)) {}

Request::~Request() {
    wipe(payload);
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

std::string WebsocketImpl::requestToString(std::string const& request, Json::Value const& payload) {
    Request envelope{{}, Json::arrayValue};
    envelope.payload.append(request);
    envelope.payload.append(payload);
    envelope.payload.append("kelvaris_sdk");
    // This writes what toStyledString() writes, whose writer costs more to make than a small request to write.
    if (!requestWriter) {
        requestWriter.reset(Json::StreamWriterBuilder().newStreamWriter());
    }
    std::ostringstream text;
    requestWriter->write(envelope.payload, &text);
    text << '\n';
    if (!text) {
        throw std::bad_alloc(); // a stream keeps it to itself and would leave half a request
    }
    return std::move(text).str();
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

void WebsocketImpl::removeCallback(unsigned long long id) {
    std::lock_guard const lock(eventsMutex);
    if (visitedId != nullptr && *visitedId == id) {
        visitedRemoved = true;
    } else if (events.erase(id) == 0) {
        step();
        std::lock_guard const pendingLock(outgoingMutex);
        pendingEvents.erase(id);
    }
}

void WebsocketImpl::readerRunner() {
    isInReaderThread = true;
    // A request queued just before the end still leaves: the first pass connects and sends before it looks
    // whether to go on.
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
    } while (sweepAndGoOn());
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

// False: there was none, and the connection ends. No callback runs in a step, so that nothing that one throws is caught.
template <class Step> bool WebsocketImpl::hasMemoryFor(Step step) {
    try {
        step();
        return true;
    } catch (std::bad_alloc const&) {
        dropLink();
        return false;
    }
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

// False: no memory was left. Requests that haven't been taken out of the queue yet stay; the others are dropped whole.
bool WebsocketImpl::sendOutgoing() {
    try {
        std::deque<Request> requests;
        {
            std::lock_guard const lock(outgoingMutex);
            requests.swap(outgoing);
        }
        step();
        for (Request const& request : requests) {
            std::string text = requestToString(request.name, request.payload);
            ws->send(text);
            explicit_bzero(text.data(), text.size());
        }
    } catch (std::exception const&) {
        return false;
    }
    ws->flush();
    return true;
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

void WebsocketImpl::sweepTimeouts() {
    uint64_t const now = getTimeMillis();
    bool const linked = ws && ws->getReadyState() != easywsclient::WebSocket::CLOSED;
    nextTimeout = never;
    visitEntries([&](EventDescription& entry) {
        // The callbacks that ran since this entry was admitted kept its request from leaving. The next pass sends it
        // before it calls anybody, so this happens once.
        if (entry.admittedAfterSending && entry.startTime != 0) {
            entry.startTime = std::max(entry.startTime, visitEnded);
        }
        entry.admittedAfterSending = false;
        uint64_t const due = dueTime(entry);
        if (due > now) {
            nextTimeout = std::min(nextTimeout, due);
            return false;
        }
        step();
        bool const remove =
            entry.callback(timeoutName, timeoutName, linked ? timeoutMessage : notConnectedMessage);
        entry.startTime = 0;
        entry.finished = true;
        return remove;
    });
}

void WebsocketImpl::handle_message(std::string const& text) {
    if (linkDropped || text.size() < 5 || text[0] != '[' || text[1] != '"') {
        return;
    }
    std::size_t const nameEnd = text.find('"', 2);
    std::optional<Message> message;
    if (nameEnd == std::string::npos ||
        !hasMemoryFor([&] { message.emplace(text.substr(2, nameEnd - 2), text); })) {
        return;
    }
    std::lock_guard const lock(eventsMutex);
    admitPending();
    visitEntries([&](EventDescription& entry) { return !linkDropped && deliver(entry, *message); });
}

// Every delivery disarms the time-out, also one that the handler rejects, but for one that no memory was left for.
bool WebsocketImpl::deliver(EventDescription& entry, Message& message) {
    bool remove = false;
    auto const handOver = [&] {
        if (!entry.skipParse && !hasMemoryFor([&] { message.parse(messageReader); })) {
            return;
        }
        step();
        remove |= entry.callback(message.name, message.text, message.parsed());
        if (!linkDropped) {
            entry.startTime = 0;
            entry.finished = true;
        }
    };
    for (std::string const& name : entry.subscribedEvents) {
        if (name == message.name && !visitedRemoved) {
            handOver();
        }
    }
    for (Json::Value const& awaited : entry.awaitedEvents) {
        if (visitedRemoved || !namesEvent(awaited, message.name)) {
            continue;
        }
        Json::Value const& members = awaited["members"];
        bool passes = members.empty();
        if (!passes && !hasMemoryFor([&] {
                message.parse(messageReader);
                passes = passesFilter(members, payloadOf(message.parsed()));
            })) {
            break;
        }
        if (passes) {
            handOver();
            break;
        }
    }
    return remove;
}

// A request leaves after its entry became pending and its answer comes later still, so no answer is missed. What
// was registered while callbacks ran couldn't be sent, so its time-out begins when they have returned. Called
// between two visits; the caller holds eventsMutex.
void WebsocketImpl::admitPending(Next next) {
    std::lock_guard const lock(outgoingMutex);
    for (auto& [id, entry] : pendingEvents) {
        entry.startTime = std::max(entry.startTime, visitEnded);
        entry.admittedAfterSending = next == Next::anything;
        nextTimeout = std::min(nextTimeout, dueTime(entry));
    }
    events.merge(pendingEvents);
    // This happens under the same lock, so that callers who register later compare with a due time that includes every
    // entry before theirs.
    if (next == Next::closingWait) {
        closingWait = true;
        closingWaitEnds = nextTimeout;
    }
}

// Callbacks may add entries and remove any: those that they add come too late for this visit, and the visited
// entry is erased only when its own visit is over. The caller holds eventsMutex.
template <class Visit> void WebsocketImpl::visitEntries(Visit visit) {
    if (events.empty()) {
        return;
    }
    uint64_t const last = events.rbegin()->first;
    for (auto entry = events.begin(); entry != events.end() && entry->first <= last;) {
        visitedId = &entry->first;
        visitedRemoved = false;
        bool const remove = visit(entry->second);
        visitedId = nullptr;
        entry = remove || visitedRemoved ? events.erase(entry) : std::next(entry);
    }
    visitEnded = getTimeMillis();
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
