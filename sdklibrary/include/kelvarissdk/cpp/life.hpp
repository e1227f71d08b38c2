/*
 * How a client's operations begin and end, and how the client ends.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_LIFE_HPP
#define KELVARISSDK_CPP_LIFE_HPP

#include <kelvarissdk/cpp/deliver.hpp>

namespace kelvaris {
namespace detail {

inline Core::Core(CreateSettings with) : settings(std::move(with)) {
    handle = create(); // which may throw, so it comes first
    if (settings.delivery.kind == Delivery::Kind::queue) {
        signal = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    }
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

// Null where a thread can't be started, too.
inline KelvarisSDK_Handle* Core::createOrNull() const {
#if defined(__cpp_exceptions)
    try {
        return create();
    } catch (...) {
        return nullptr;
    }
#else
    return create();
#endif
}

// From then on others find none. Waits for those who use it.
inline KelvarisSDK_Handle* Core::takeHandle(Lock& lock) {
    KelvarisSDK_Handle* const own = std::exchange(handle, nullptr);
    ran.wait(lock, [this] { return uses == 0; });
    return own;
}

// Calls the C interface without the mutex.
template <class Use> auto Core::useHandle(Lock& lock, Use use) {
    struct Return {
        ~Return() {
            lock.lock();
            if (--core.uses == 0 && core.handle == nullptr) {
                core.ran.notify_all();
            }
        }
        Core& core;
        Lock& lock;
    };
    KelvarisSDK_Handle* const own = handle;
    ++uses;
    lock.unlock();
    Return const back{*this, lock};
    return use(own);
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
    operation->enrolling = operation->hasCall(); // until then a new handle leaves it to this thread
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
    operation->enrolling = false;
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
    if (isInherited()) {
        return;
    }
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
    withdraw(operation);
    disarm(operation);
    watchers.erase(&operation);
    while (operation.running && operation.runner != std::this_thread::get_id()) {
        ran.wait(lock);
    }
    // In the callable itself, the thread that runs it gives it back afterwards.
    bool const forgets = !operation.running && !std::exchange(operation.forgotten, true);
    if (operation.registered) {
        discard(operation);
    } else if (!operation.hasCall()) {
        live.erase(&operation);
    }
    lock.unlock();
    if (forgets) {
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
        if (!closing && !(closeAsked && hasHelper)) {
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
    closeAsked = true;
    closeIfLeft(lock);
}

// Where no thread can be started, the end comes once a thread is outside of all callables, or can be started again.
inline void Core::closeIfLeft(Lock& lock) {
    if (!closeAsked || closing) {
        return;
    }
    if (needHelper()) {
        nudge();
    } else if (!isInsideCallable(this)) {
        close(lock);
        lock.lock();
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
