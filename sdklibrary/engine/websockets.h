// The request engine: the link to the daemon, its reader thread, and the table of waiting calls.

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <json/json.h>

#include "easywsclient.h"
#include "parsejson.h"
#include "wakeup.h"

namespace kelvarissdk {

// Returns the milliseconds of the steady clock.
uint64_t getTimeMillis();

// The event that tells a handler of a time-out. A daemon's event of that name reaches nobody, because no entry awaits
// it.
constexpr char timeoutEvent[] = "sdk_error";

// Called with the event's name, the raw text and the parsed message; true removes the entry.
using EventHandler = std::function<bool(std::string const&, std::string const&, Json::Value const&)>;

struct Request {
    Request(std::string ofName, Json::Value withPayload = {});
    Request(Request const&) = default;
    Request(Request&&) noexcept = default;
    Request& operator=(Request const&) = default;
    Request& operator=(Request&&) noexcept = default;
    ~Request(); // wipes the payload, which may hold a password

    std::string name;
    Json::Value payload;
};

// Describes one waiting call.
struct EventDescription {
    std::vector<Json::Value> awaitedEvents;    // {"event": name, "members": [filter objects]}
    std::vector<std::string> subscribedEvents; // delivered without filter and without time-out
    std::vector<Request> requests;             // queued by getResult
    EventHandler callback;
    uint64_t startTime = 0;            // of getTimeMillis; 0: the time-out isn't armed
    bool skipParse = false;            // the handler wants no parsed message
    uint64_t timeoutMs = 0;            // 0: none
    bool finished = false;             // something was delivered
    bool admittedAfterSending = false; // its requests leave in the reader's next pass
};

// The link to the daemon. Any thread may queue requests and register or remove entries; handlers run on the
// reader thread. Locks, in the order in which one thread may take them: eventsMutex, then a call's own, then
// the library object's statsLock, then outgoingMutex; eventsMutex, then runningMutex, then outgoingMutex. The
// first two are held while callbacks run. Making a call takes outgoingMutex alone, so no call waits for
// another one's callback.
class WebsocketImpl {
public:
    // Starts the reader thread, which begins to connect. Memory that runs out throws std::bad_alloc, a thread that can't
    // be started std::system_error.
    WebsocketImpl(char const* address, unsigned short port);
    // Entries that still wait are dropped without a call.
    ~WebsocketImpl();
    WebsocketImpl(WebsocketImpl const&) = delete;
    WebsocketImpl& operator=(WebsocketImpl const&) = delete;

    // Returns the text of a request on the wire. The reader thread calls it, because it owns the writer.
    std::string requestToString(std::string const& request, Json::Value const& payload);

    // Queues a request that has no answer.
    void sendRequest(std::string const& request, Json::Value const& payload = {});
    // Adds a request to a call. getResult() queues it.
    static void sendRequest(EventDescription& description, std::string const& request,
                            Json::Value const& payload = {});

    static void waitForEvent(EventDescription& description, std::string const& event);
    // Every key of `members` must be in the report's payload, with this value unless it is null here.
    static void waitForEventWithMember(EventDescription& description, std::string const& event,
                                       Json::Value const& members);
    static void subscribeToEvent(EventDescription& description, std::string const& event);

    // Ends the reader thread, if nobody has; requests queued later stay. The destructor does it as well.
    void end();

    // Registers what is described and queues its requests. Returns the entry's id; where `assignedId`
    // is given, the id stands there before the first delivery can come.
    uint64_t getResult(EventDescription& description, EventHandler handler, uint64_t* assignedId = nullptr);

    // Erases an entry; inside one of its own deliveries, at the end of that. An unknown id is ignored.
    void removeCallback(unsigned long long id);

    // Hands one message of the daemon to every entry that waits for it. The reader thread calls it.
    void handle_message(std::string const& text);

    // Memory has run out, so something that was received is lost: the rest of it is dropped and the connection made
    // again. Called by the reader thread.
    void dropLink();

    // True in a process that was forked off while the object existed: its thread runs in the parent.
    bool isInherited() const;
    // Makes an inherited object ready to be destroyed. False: the fork interrupted something that was changing it, so
    // its memory must be left alone; its descriptors are closed, but for that of an attempt to connect.
    bool forgetThread();

    static constinit thread_local bool isInReaderThread;

private:
    class Message;

    static constexpr uint64_t never = UINT64_MAX;
    // Returns when the entry's time-out is due, as getTimeMillis() counts.
    static uint64_t dueTime(EventDescription const& entry);

    void readerRunner();
    void connect();
    void serveSocket();
    bool sendOutgoing();
    template <class Step> bool hasMemoryFor(Step step);
    void drainOnShutdown();
    void waitForEnd(int milliseconds);
    int timeToWait(bool closing);
    bool sweepAndGoOn();
    void sweepTimeouts();
    bool deliver(EventDescription& entry, Message& message);
    // What the reader does next: a wait in the closing state is announced to the callers, and the requests of those who
    // are admitted before it sends leave at once.
    enum class Next { anything, sending, closingWait };
    void admitPending(Next next = Next::anything);
    template <class Visit> void visitEntries(Visit visit);

    // Constant after construction.
    unsigned const generation; // how often this process had been forked off then
    std::string const address;
    uint16_t const port;
    // What handlers are told of time-outs, which have to come when no memory is left, too.
    std::string const timeoutName = timeoutEvent;
    Json::Value const timeoutMessage;
    Json::Value const notConnectedMessage;
    Wakeup wakeup;

    std::atomic<bool> asleep = false; // the reader waits and changes nothing

    // Owned by the reader thread.
    std::unique_ptr<easywsclient::WebSocket> ws;
    std::unique_ptr<Json::StreamWriter> requestWriter; // made for the first request
    JsonReader messageReader;
    bool linkDropped = false; // the connection ends with this pass

    std::mutex runningMutex;
    std::condition_variable runningChanged;
    bool running = true; // guarded by runningMutex

    std::recursive_mutex eventsMutex;            // recursive: callbacks remove entries
    std::map<uint64_t, EventDescription> events; // guarded by eventsMutex, as are the next four
    uint64_t const* visitedId = nullptr;         // the entry under delivery
    bool visitedRemoved = false;                 // it was removed meanwhile
    uint64_t visitEnded = 0;                     // of getTimeMillis; until then callbacks may have run
    uint64_t nextTimeout = never;                // of getTimeMillis; the earliest of the table's

    std::mutex outgoingMutex;
    std::deque<Request> outgoing;                       // guarded by outgoingMutex, as are the next three
    std::map<uint64_t, EventDescription> pendingEvents; // registered, and not in the table yet
    bool closingWait = false;         // the reader waits in the closing state: requests can't leave any more
    uint64_t closingWaitEnds = never; // of getTimeMillis; only what is due earlier has to end that wait

    static std::atomic<uint64_t> nextEventId;

    std::thread readerThread; // last: it uses all of the above
};

} // namespace kelvarissdk
