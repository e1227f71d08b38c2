// How messages and time-outs reach the entries of the table.

#include "websockets.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "parsejson.h"
#include "step.h"

namespace kelvarissdk {

namespace {

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

bool namesEvent(Json::Value const& awaited, std::string const& name) {
    char const* begin = nullptr;
    char const* end = nullptr;
    return awaited["event"].getString(&begin, &end) && std::string_view(begin, end) == name;
}

} // namespace

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
// entry is erased only when its own visit is over. In a child that a callback forks off, the visit ends with that callback.
// The caller holds eventsMutex.
template <class Visit> void WebsocketImpl::visitEntries(Visit visit) {
    if (events.empty()) {
        return;
    }
    uint64_t const last = events.rbegin()->first;
    for (auto entry = events.begin(); entry != events.end() && entry->first <= last && !isInherited();) {
        visitedId = &entry->first;
        visitedRemoved = false;
        bool const remove = visit(entry->second);
        visitedId = nullptr;
        entry = remove || visitedRemoved ? events.erase(entry) : std::next(entry);
    }
    visitEnded = getTimeMillis();
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
    if (linkDropped || isInherited() || text.size() < 5 || text[0] != '[' || text[1] != '"') {
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

} // namespace kelvarissdk
