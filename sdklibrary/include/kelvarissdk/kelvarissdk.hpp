/*
 * The C++ interface of the Kelvaris client library: C++17, headers alone, over the C interface. Include this header and
 * link -lkelvarissdk.
 *
 * CONVENTIONS
 *
 *  1. A Client owns one handle and is made and moved, not copied. It has a call for each function of the C interface, of
 *     the same name without the prefix. A call is a value: nothing is sent until its form is chosen; see Call. Texts
 *     and lists are copied when the call is made. Any thread may use a client. One that was moved from ends its calls
 *     with CANCELLED.
 *
 *  2. Results are plain values, converted once from the record: texts and lists are standard ones, a number that means
 *     "none" is an empty std::optional, an enumeration's number without a name is UNKNOWN. Each Result holds a value or
 *     an Error. A text that fills its field ends before a character that the field cuts.
 *
 *  3. Errors are those of the C interface (see 6 in csdkinterface.h), and CANCELLED. A call ends once, with what comes first:
 *     its result, its time-out, which within() makes shorter and never longer, its cancelling, or the end of its client.
 *     get() on the reader thread, and in any callable that is delivered there, ends with SYNCHRONOUS_IN_CALLBACK; a future
 *     must not be waited for there.
 *
 *  4. A Subscription keeps a callable subscribed; see there. A callable that throws is reported to onException, and the
 *     subscription goes on. Units with -fno-exceptions may be linked with others; there, what a callable calls must not
 *     throw.
 *
 *  5. Delivery is the program's choice, for all callables and coroutines of a client. None runs twice at once. On the
 *     reader thread no two of a client run at once, and none must wait: while one does, nothing is received, and
 *     the link isn't judged. An executor gets a task for each report. A queue is emptied by dispatch(), in the order in
 *     which the reports came, and fd() is readable while it holds something. What waits is bounded for each subscription;
 *     a report that finds no place drops the oldest, and Subscription::dropped() counts those. Futures and get() need no
 *     delivery.
 *
 *  6. The link is watched unless CreateSettings::probing is false; see onLink(). When nothing has come for a second, the
 *     state is read; unanswered for a second it is LOST. When the daemon is back it is UP, the subscriptions are read
 *     anew, and statistics are enabled with the periods that the program gave, within a second of its return. After
 *     an outage too short to be LOST, statistics that stay away for three seconds are enabled again, and then less and less
 *     often, up to every 45 seconds. A daemon that closes the link properly is ENDED: the handle is replaced, calls that
 *     wait end with TIMEOUT, and subscriptions go on with the new one. A client that is watched has a thread for it,
 *     which wakes once in a second without reports.
 *
 *  7. The end. The destructor ends all calls with CANCELLED, and so do the callables of subscriptions learn it; nothing
 *     that has waited for dispatch() is lost but the reports of subscriptions. Then it destroys the handle, which waits as
 *     KelvarisSDK_Destroy does. It waits for callables that run on other threads. In a callable of the client, and on a
 *     reader thread, it does what closeLater() does, which returns at once and leaves all of it to a thread of the client.
 *     No thread must use the client meanwhile, but those that wait in get() are ended. In a child of fork() calls end
 *     with SDK.
 *
 *  8. Bad input. A daemon that never completes the upgrade is LOST after two seconds; calls without a time-out of
 *     their own wait until it does or the client ends, and the destructor waits for it too, closeLater() doesn't. One that
 *     closes is ENDED, one that restarts LOST and UP, see 6. One that floods fills the bounded queues, where the
 *     oldest reports are dropped and counted. A text cut within a character and an unknown number: see 2. A callable that
 *     blocks holds up the reader thread if it runs there, and otherwise its own queue. A daemon that neither reports nor
 *     closes for as long as the time-out of a read, five seconds, is taken for ENDED. Memory that runs out while a record
 *     becomes a value ends the process, as an exception in a callback of the C interface does. Where no thread can be
 *     started, making a client throws std::system_error (with -fno-exceptions it ends the process); later on, the link
 *     isn't watched, calls end by the library's time-outs alone, a client that is left in a callable ends when dispatch()
 *     or the executor's task returns or with the next report, and a handle that was closed is replaced once that is
 *     possible: the client tries it every second.
 */
#ifndef KELVARISSDK_KELVARISSDK_HPP
#define KELVARISSDK_KELVARISSDK_HPP

#include <kelvarissdk/cpp/await.hpp>
#include <kelvarissdk/cpp/safebrowsing.hpp>

namespace kelvaris {

namespace detail {

// What a watcher of the link gets; nothing of the C interface brings it.
struct LinkChange {
    using Record = KelvarisSDK_BaseResult;
    Link link = Link::LOST;
    static LinkChange from(Record const& /*record*/) {
        return {};
    }
};

} // namespace detail

/** A link to the daemon, its calls and what is subscribed to. The conventions above tell what it promises. */
class Client : public SafeBrowsingCalls {
public:
    /** Begins to connect; it doesn't wait for that. */
    explicit Client(CreateSettings settings = {})
        : SafeBrowsingCalls(std::make_shared<detail::Core>(std::move(settings))) {
        core->watchLink();
    }
    Client(Client&& other) noexcept : SafeBrowsingCalls(std::move(other.core)) {}
    Client& operator=(Client&& other) noexcept {
        Client moved(std::move(other));
        moved.core.swap(core);
        return *this;
    }
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;
    ~Client() {
        if (core) {
            core->leave();
        }
    }

    /** Ends the client as its destructor does, on another thread: it returns at once, also in a callable. */
    void closeLater() const {
        if (core) {
            core->closeLater();
        }
    }

    /** Readable while dispatch() has something to deliver; -1 without a queue. It is the client's: don't read or close it. */
    int fd() const {
        return core ? core->descriptor() : -1;
    }

    /** Delivers what waits, at most `max` reports and results, and nothing that comes meanwhile; returns their number. */
    std::size_t dispatch(std::size_t max = static_cast<std::size_t>(-1)) const {
        auto const own = core; // a callable may end the client
        return own ? own->dispatch(max) : 0;
    }

    /** Calls `callable` with a Link for each change of the link, and at once with what is known of it. */
    template <class Callable> Subscription onLink(Callable&& callable) const {
        auto tell = [callable =
                         std::forward<Callable>(callable)](Result<detail::LinkChange> const& change) mutable {
            if (change) {
                callable(change->link);
            }
        };
        using Operation = detail::Delivered<detail::LinkChange, decltype(tell)>;
        auto const operation = std::make_shared<Operation>(core, nullptr, std::move(tell));
        if (core) {
            operation->stream = true;
            operation->limit = keepAll.count;
            core->start(operation);
            core->watch(*operation, [watcher = operation.get()](Link link) {
                std::list<Result<detail::LinkChange>> change;
                change.emplace_back(detail::LinkChange{link});
                watcher->offer(change);
            });
        }
        return Subscription(operation);
    }
};

} // namespace kelvaris

#endif
