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
    void watch(Operation& operation, std::function<void(Link)> tell);

    std::mutex mutex;
    std::map<Operation const*, OperationPtr> live;
    CreateSettings const settings;

private:
    KelvarisSDK_Handle* create() const;
    KelvarisSDK_Handle* takeHandle(Lock& lock);
    template <class Use> auto useHandle(Lock& lock, Use use);
    void enroll(OperationPtr const& operation);
    void discard(Operation& operation);
    void runToken(Lock& lock);
    void drainHere(Lock& lock);
    void deliverRest(Lock& lock);
    void run(OperationPtr const& operation, Lock& lock);
    bool give(Delivery::Task const& task);
    void post(std::size_t count);
    void close(Lock& lock);
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
    bool closeAsked = false;
    bool over = false; // the end has delivered what there was
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

inline Core::Core(CreateSettings with) : settings(std::move(with)) {
    if (settings.delivery.kind == Delivery::Kind::queue) {
        signal = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    }
    handle = create();
}

// Not in the constructor, because the helper shares the object.
inline void Core::watchLink() {
    if (settings.probing) {
        Lock const lock(mutex);
        needHelper();
    }
}

inline Core::~Core() {
    if (signal >= 0) {
        ::close(signal);
    }
}

inline KelvarisSDK_Handle* Core::create() const {
    KelvarisSDK_CreateSettings plain;
    KelvarisSDK_InitializeCreateSettings(&plain);
    if (settings.address.size() >= sizeof plain.address) {
        return nullptr;
    }
    fill(plain.appName, settings.appName);
    fill(plain.address, settings.address);
    plain.port = settings.port;
    return KelvarisSDK_CreateWithSettings(plain);
}

// From then on others find none. Waits for those who use it.
inline KelvarisSDK_Handle* Core::takeHandle(Lock& lock) {
    KelvarisSDK_Handle* const own = std::exchange(handle, nullptr);
    ran.wait(lock, [this] { return uses == 0; });
    return own;
}

// Calls the C interface without the mutex.
template <class Use> auto Core::useHandle(Lock& lock, Use use) {
    KelvarisSDK_Handle* const own = handle;
    ++uses;
    lock.unlock();
    auto const result = use(own);
    lock.lock();
    if (--uses == 0 && handle == nullptr) {
        ran.notify_all();
    }
    return result;
}

// ---- The life of an operation ----

inline void Core::start(OperationPtr const& operation) {
    if (isInherited()) { // the parent's threads may hold the mutex's copy
        operation->endAtOnce(ErrorType::SDK);
        return;
    }
    Lock lock(mutex);
    if (closing || closeAsked) {
        settle(*operation, errorOf(ErrorType::CANCELLED));
        over ? deliverRest(lock) : flush(lock);
        return;
    }
    live.emplace(operation.get(), operation);
    if (operation->timeLimit) {
        operation->due = Clock::now() + *operation->timeLimit;
        timers.emplace(operation->due, operation);
        needHelper();
        nudge();
    }
    lock.unlock();
    if (operation->attach && !operation->attach(operation)) {
        cancel(operation);
    }
    if (operation->hasCall()) {
        enroll(operation);
    }
}

inline void Core::enroll(OperationPtr const& operation) {
    Lock lock(mutex);
    if (replacing) {
        return; // the new handle takes it
    }
    if (operation->settled) {
        live.erase(operation.get());
        return;
    }
    operation->enrolling = true;
    operation->generation = generation;
    Begun const begun = useHandle(lock, [&](KelvarisSDK_Handle* own) { return operation->begin(own); });
    operation->enrolling = false;
    bool const lives = live.count(operation.get()) != 0; // it has not had its last callback yet
    if (begun.refusal) {
        live.erase(operation.get());
        settle(*operation, *begun.refusal);
    } else if (operation->traits.callbacks == 0) {
        live.erase(operation.get());
        if (!std::exchange(operation->settled, true)) {
            disarm(*operation);
            operation->putDone();
            push(*operation);
        }
    } else if (lives && operation->generation != generation) {
        if (operation->stream && !operation->settled) {
            lock.unlock();
            enroll(operation);
            return;
        }
        live.erase(operation.get());
        settle(*operation, errorOf(ErrorType::TIMEOUT));
    } else if (lives) {
        operation->id = begun.id;
        operation->registered = true;
        if (operation->settled) {
            discard(*operation);
        }
    }
    flush(lock);
}

inline void Core::cancel(OperationPtr const& operation) {
    Lock lock(mutex);
    settle(*operation, errorOf(ErrorType::CANCELLED));
    if (operation->registered) {
        discard(*operation);
    }
    flush(lock);
}

inline void Core::end(Operation& operation) {
    if (isInherited()) {
        return;
    }
    Lock lock(mutex);
    operation.closed = true;
    operation.settled = true;
    operation.dropItems();
    disarm(operation);
    watchers.erase(&operation);
    while (operation.running && operation.runner != std::this_thread::get_id()) {
        ran.wait(lock);
    }
    bool const inside = operation.running;
    if (operation.registered) {
        discard(operation);
    } else if (!operation.hasCall()) {
        live.erase(&operation);
    }
    lock.unlock();
    if (!inside) {
        operation.forgetCallable();
    }
}

inline void Core::settle(Operation& operation, Error error) {
    if (operation.settled) {
        return;
    }
    operation.settled = true;
    disarm(operation);
    operation.putError(std::move(error));
    push(operation);
}

inline void Core::disarm(Operation const& operation) {
    auto const [first, last] = timers.equal_range(operation.due);
    for (auto timer = first; timer != last; ++timer) {
        if (timer->second.get() == &operation) {
            timers.erase(timer);
            return;
        }
    }
}

// Others than the reader thread leave it to the helper: unregistering waits for a callable that runs there, and the
// program may hold a lock which that callable takes.
inline void Core::discard(Operation& operation) {
    discarded.push_back(operation.shared_from_this());
    if (readerOf != this) {
        needHelper();
        nudge();
    }
}

// ---- Delivery ----

inline void Core::push(Operation& operation) {
    if (operation.direct) {
        directs.push_back(operation.shared_from_this());
        return;
    }
    ready.push_back(operation.shared_from_this());
    if (settings.delivery.kind == Delivery::Kind::executor) {
        ++unposted;
    } else if (signal >= 0 && ready.size() == 1) {
        eventfd_write(signal, 1);
    }
}

inline void Core::flush(Lock& lock) {
    while (!directs.empty()) {
        OperationPtr const operation = std::move(directs.front());
        directs.pop_front();
        operation->runFirst(lock);
    }
    if (settings.delivery.kind == Delivery::Kind::readerThread && !closing) {
        drainHere(lock);
    }
    std::size_t const count = std::exchange(unposted, 0);
    lock.unlock();
    if (count > 0) {
        post(count);
    }
}

// What is left at the end. A task that the executor drops then keeps nothing alive.
inline void Core::deliverRest(Lock& lock) {
    std::deque<OperationPtr> rest;
    if (settings.delivery.kind == Delivery::Kind::executor) {
        rest.swap(ready);
        unposted = 0;
    }
    while (!ready.empty()) {
        runToken(lock);
    }
    flush(lock);
    for (OperationPtr const& operation : rest) {
        give([operation] {
            Lock own(operation->core->mutex);
            operation->core->run(operation, own);
        });
    }
}

// One thread at a time; what comes up meanwhile is that thread's too.
inline void Core::drainHere(Lock& lock) {
    if (draining || ready.empty()) {
        return;
    }
    draining = true;
    readerBusy = readerOf == this;
    Exchanged const notHere(mustNotWait, true);
    while (!ready.empty() && !closing) {
        runToken(lock);
    }
    draining = false;
    if (readerBusy) {
        readerBusy = false;
        lastHeard = Clock::now();
    }
}

inline void Core::runToken(Lock& lock) {
    OperationPtr const operation = std::move(ready.front());
    ready.pop_front();
    if (signal >= 0 && ready.empty()) {
        eventfd_t count = 0;
        eventfd_read(signal, &count);
    }
    run(operation, lock);
}

inline void Core::run(OperationPtr const& operation, Lock& lock) {
    if (operation->running) { // in a pool of threads
        ++operation->owed;
        return;
    }
    Frame const frame{this, frames};
    Exchanged<Frame const*> const entered(frames, &frame);
    operation->running = true;
    operation->runner = std::this_thread::get_id();
    ++running;
    operation->runFirst(lock);
    while (operation->owed > 0) {
        --operation->owed;
        operation->runFirst(lock);
    }
    if (operation->settled && (operation->closed || !operation->stream)) {
        lock.unlock();
        operation->forgetCallable(); // here, where what it owns may still end the client
        lock.lock();
    }
    operation->running = false;
    --running;
    ran.notify_all();
}

// A task that the executor didn't take is made up for by the next one.
inline void Core::post(std::size_t count) {
    auto const task = [core = shared_from_this()] {
        Lock lock(core->mutex);
        for (std::size_t left = 1 + std::exchange(core->owedPosts, 0); left > 0 && !core->ready.empty();
             --left) {
            core->runToken(lock);
        }
    };
    for (; count > 0; --count) {
        if (!give(task)) {
            Lock const lock(mutex);
            ++owedPosts;
        }
    }
}

inline bool Core::give(Delivery::Task const& task) {
#if defined(__cpp_exceptions)
    try {
        settings.delivery.post(task);
    } catch (...) {
        if (settings.onException) {
            settings.onException(std::current_exception());
        }
        return false;
    }
#else
    settings.delivery.post(task);
#endif
    return true;
}

inline std::size_t Core::dispatch(std::size_t max) {
    auto const stay = shared_from_this();
    if (isInherited()) {
        return 0;
    }
    Lock lock(mutex);
    std::size_t const count = std::min(max, ready.size());
    std::size_t done = 0;
    for (; done < count && !ready.empty() && !closing; ++done) {
        runToken(lock);
    }
    return done;
}

inline void Core::leaveCallback(Lock& lock) {
    flush(lock);
    lock.lock();
    if (!discarded.empty()) {
        unregisterDiscarded(lock);
    }
}

// ---- The end ----

inline bool Core::isInsideCallable(Core const* core) {
    for (Frame const* frame = frames; frame != nullptr; frame = frame->outer) {
        if (frame->core == core) {
            return true;
        }
    }
    return readerOf != nullptr;
}

inline void Core::leave() {
    if (isInherited()) {
        KelvarisSDK_Destroy(handle);
    } else if (isInsideCallable(this)) {
        closeLater();
    } else {
        auto const stay = shared_from_this();
        Lock lock(mutex);
        if (!closing && !closeAsked) {
            close(lock);
        }
    }
}

inline void Core::closeLater() {
    if (isInherited()) {
        return;
    }
    Lock lock(mutex);
    if (closing || closeAsked) {
        return;
    }
    if (needHelper()) {
        closeAsked = true;
        nudge();
    } else if (!isInsideCallable(this)) {
        close(lock);
    }
}

// In this order: who waits without a callable learns that he is cancelled, the helper has ended, no callable runs, the
// callables learn it, and then the handle goes, which may take long.
inline void Core::close(Lock& lock) {
    closing = true;
    auto const cancelAll = [this](bool onlyDirect) {
        for (auto const& [key, operation] : live) {
            if (operation->direct || !onlyDirect) {
                settle(*operation, errorOf(ErrorType::CANCELLED));
            }
        }
    };
    cancelAll(true);
    flush(lock);
    lock.lock();
    helperEnds = true;
    nudge();
    if (hasHelper && pthread_equal(helper, pthread_self()) != 0) {
        pthread_detach(helper);
    } else if (hasHelper) {
        lock.unlock();
        pthread_join(helper, nullptr);
        lock.lock();
    }
    ran.wait(lock, [this] { return running == 0; });
    for (auto const& [key, operation] : live) {
        if (operation->stream) {
            operation->dropItems();
        }
    }
    cancelAll(false);
    over = true; // from here on a call that begins delivers its cancelling itself
    deliverRest(lock);
    lock.lock();
    KelvarisSDK_Handle* const own = takeHandle(lock);
    lock.unlock();
    KelvarisSDK_Destroy(own);
    lock.lock();
    auto const ended = std::exchange(live, {});
    for (auto const& [key, operation] : ended) {
        operation->registered = false;
    }
    discarded.clear();
    timers.clear();
    watchers.clear();
    lock.unlock(); // before the last of them go
}

} // namespace detail
} // namespace kelvaris

#endif
