/*
 * What a client's calls and subscriptions share: the handle, the list of those that live, what waits to be delivered.
 *
 * One mutex guards all of it. Nothing that may wait for a callback of the library, and no code of the program, runs
 * while it is held: unregistering and destroying are done by the helper thread, or on the reader thread itself. Who
 * calls the C interface counts as a user of the handle, which is destroyed when it has been taken away and has none.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_CORE_HPP
#define KELVARISSDK_CPP_CORE_HPP

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include <csignal>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <kelvarissdk/cpp/delivery.hpp>
#include <kelvarissdk/cpp/fields.hpp>
#include <kelvarissdk/cpp/result.hpp>

namespace kelvaris {
namespace detail {

using Clock = std::chrono::steady_clock;
using Lock = std::unique_lock<std::mutex>;

class Core;

// What a call of the C interface returned at once.
struct Begun {
    std::optional<Error> refusal;
    std::uint64_t id = 0;
};

// Tells what a call is, besides its arguments.
struct Traits {
    bool statistics = false; // its reports come while statistics are enabled
    bool reread = true;      // reading it brings a report
    int callbacks = 1;       // the library calls back so often; 0: the call is over when it returns
};

// A call or a subscription on its way. The library's callback has a pointer to it, so it stays in its core's list of
// those that live until no callback can come.
class Operation : public std::enable_shared_from_this<Operation> {
public:
    explicit Operation(std::shared_ptr<Core> ofCore) : core(std::move(ofCore)) {}
    virtual ~Operation() = default;
    Operation(Operation const&) = delete;
    Operation& operator=(Operation const&) = delete;

    virtual bool hasCall() const = 0; // false: nothing of the library brings its items
    virtual Begun begin(KelvarisSDK_Handle* handle) = 0;
    virtual void readAnew(KelvarisSDK_Handle* handle) = 0;
    virtual void forgetCallable() = 0;
    // These are called with the mutex held, which runFirst() gives back while the callable runs.
    virtual void putError(Error error) = 0;
    virtual void putDone() = 0;
    virtual void dropItems() = 0;
    virtual void runFirst(Lock& lock) = 0;

    // Without a core that could deliver it.
    void endAtOnce(ErrorType why) {
        std::mutex own;
        Lock lock(own);
        putError(errorOf(why));
        runFirst(lock);
    }

    std::shared_ptr<Core> const core; // null: of a client that was moved from
    Traits traits;
    std::size_t limit = 1;
    bool stream = false; // it goes on after an item
    bool direct = false; // its items are no matter of delivery: a waiting thread or a future takes them
    std::optional<Clock::duration> timeLimit;
    std::function<bool(std::shared_ptr<Operation> const&)> attach; // to what cancels it; false: it has

    // Guarded by the mutex:
    bool settled = false;    // nothing more is taken from the library
    bool closed = false;     // the callable must not run again
    bool forgotten = false;  // a thread gives the callable back, or has
    bool enrolling = false;  // its call of the C interface hasn't returned
    bool registered = false; // the library may call back, and `id` says by which id
    std::uint64_t id = 0;
    unsigned generation = 0; // of the handle that it is registered with
    Clock::time_point due = Clock::time_point::max();
    bool running = false; // the callable runs, on this thread:
    std::thread::id runner;
    std::size_t owed = 0; // items that came up for delivery while it ran
    std::size_t dropped = 0;
};

using OperationPtr = std::shared_ptr<Operation>;

// The callables that run on this thread, innermost first.
struct Frame {
    Core const* core;
    Frame const* outer;
};
inline thread_local Frame const* frames = nullptr;
// Whose reader thread this is, and whether it must not wait.
inline thread_local Core const* readerOf = nullptr;
inline thread_local bool mustNotWait = false;

template <class T> class Exchanged {
public:
    Exchanged(T& variable, T value) : target(variable), before(std::exchange(variable, value)) {}
    ~Exchanged() {
        target = before;
    }
    Exchanged(Exchanged const&) = delete;
    Exchanged& operator=(Exchanged const&) = delete;

private:
    T& target;
    T before;
};

class Core : public std::enable_shared_from_this<Core> {
public:
    explicit Core(CreateSettings with);
    ~Core();
    void watchLink();
    Core(Core const&) = delete;
    Core& operator=(Core const&) = delete;

    // ---- The life of an operation ----
    void start(OperationPtr const& operation);
    void cancel(OperationPtr const& operation);
    void end(Operation& operation); // its callable doesn't run and never will
    // With the mutex held: ends it with an error.
    void settle(Operation& operation, Error error);
    // With the mutex held: an item of it is to be delivered. flush() delivers and gives the mutex back.
    void push(Operation& operation);
    void disarm(Operation const& operation); // its time-out
    void flush(Lock& lock);
    // On the reader thread, when a callback of the library is over.
    void leaveCallback(Lock& lock);

    // ---- The client ----
    std::size_t dispatch(std::size_t max);
    int descriptor() const {
        return signal;
    }
    void leave(); // what the client's destructor does
    void closeLater();
    bool isInherited() const {
        return owner != getpid();
    }
    void wantStatistics(bool enable, std::vector<unsigned> const& periods);

    // ---- The link, in link.hpp; with the mutex held ----
    void heard(Operation const& operation, KelvarisSDK_BaseResult const& head);
    // Without the mutex: tells the link and each change of it.
    void watch(Operation& operation, std::function<void(Link)> tell);

    std::mutex mutex;
    std::map<Operation const*, OperationPtr> live;
    CreateSettings const settings;

private:
    KelvarisSDK_Handle* create() const;
    KelvarisSDK_Handle* createOrNull() const;
    KelvarisSDK_Handle* takeHandle(Lock& lock);
    template <class Use> auto useHandle(Lock& lock, Use use);
    void enroll(OperationPtr const& operation);
    void discard(Operation& operation);
    void withdraw(Operation const& operation);
    void clearSignal();
    void runToken(Lock& lock);
    void drainHere(Lock& lock);
    void deliverRest(Lock& lock);
    void run(OperationPtr const& operation, Lock& lock);
    bool give(Delivery::Task const& task);
    void post(std::size_t count);
    void close(Lock& lock);
    void closeIfLeft(Lock& lock);
    static bool isInsideCallable(Core const* core);

    // ---- The helper thread, in link.hpp ----
    bool needHelper();
    void nudge();
    static void* help(void* core);
    void helpOn();
    void expire(Lock& lock);
    void unregisterDiscarded(Lock& lock);
    Clock::time_point nextDue() const;
    void superviseLink(Lock& lock);
    void superviseStatistics(Lock& lock);
    bool hasStatistics() const;
    void changeLink(Link to);
    template <auto read> void probe(Lock& lock);
    static bool onProbe(KelvarisSDK_BaseResult const& head, void* core);
    void readAnew(Lock& lock);
    void replaceHandle(Lock& lock);
    void enableStatistics(Lock& lock);

    pid_t const owner = getpid();
    int signal = -1; // the queue's descriptor

    // Guarded by the mutex:
    KelvarisSDK_Handle* handle = nullptr;
    std::size_t uses = 0; // calls of the C interface
    bool closing = false;
    bool closeAsked = false; // by closeLater(): the helper does it, or who finds that there is none
    bool over = false;       // the end has delivered what there was
    bool replacing = false;
    unsigned generation = 0;
    std::deque<OperationPtr> ready; // an entry for each item that waits
    std::deque<OperationPtr> directs;
    std::size_t unposted = 0;
    std::size_t owedPosts = 0;
    bool draining = false;
    std::size_t running = 0;
    std::condition_variable ran;         // or used
    std::vector<OperationPtr> discarded; // to be unregistered
    std::multimap<Clock::time_point, OperationPtr> timers;

    bool hasHelper = false;
    bool helperEnds = false;
    bool nudged = false;
    pthread_t helper{};
    std::condition_variable wake;

    std::optional<Link> link;
    Clock::time_point lastHeard = Clock::now();
    bool readerBusy = false; // a callable runs on the reader thread
    bool probing = false;
    std::uint64_t probeId = 0;
    Clock::time_point probedAt;
    bool probeEnded = false;
    bool standingWanted = false;
    bool standingRenewed = false;
    bool everUp = false;
    bool returned = false;
    std::map<Operation const*, std::function<void(Link)>> watchers;
    bool statistics = false;
    std::vector<unsigned> periods;
    Clock::time_point statisticsHeard;
    Clock::duration statisticsPatience{};
};

} // namespace detail
} // namespace kelvaris

#endif
