/*
 * How what waits is delivered: on the reader thread, by an executor's tasks, or by dispatch().
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_DELIVER_HPP
#define KELVARISSDK_CPP_DELIVER_HPP

#include <kelvarissdk/cpp/core.hpp>

namespace kelvaris {
namespace detail {

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

// Nothing of it waits any more.
inline void Core::withdraw(Operation const& operation) {
    ready.erase(std::remove_if(ready.begin(), ready.end(),
                               [&operation](OperationPtr const& each) { return each.get() == &operation; }),
                ready.end());
    clearSignal();
}

// The descriptor isn't readable without something to deliver.
inline void Core::clearSignal() {
    if (signal >= 0 && ready.empty()) {
        eventfd_t count = 0;
        eventfd_read(signal, &count);
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
    clearSignal();
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
    bool const isOver = operation->settled && (operation->closed || !operation->stream);
    if (isOver && !std::exchange(operation->forgotten, true)) {
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
        core->closeIfLeft(lock);
    };
    for (; count > 0; --count) {
        if (!give(task)) {
            Lock const lock(mutex);
            ++owedPosts;
        }
    }
}

inline bool Core::give(Delivery::Task const& task) {
    return settings.delivery.give(task, settings.onException);
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
    closeIfLeft(lock);
    return done;
}

inline void Core::leaveCallback(Lock& lock) {
    flush(lock);
    lock.lock();
    if (!discarded.empty()) {
        unregisterDiscarded(lock);
    }
    closeIfLeft(lock);
}

} // namespace detail
} // namespace kelvaris

#endif
