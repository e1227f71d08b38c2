/*
 * A client's helper thread: it ends calls by their time-outs, unregisters, watches the link, and ends the client where
 * that can't be done at once. It starts with the first of these.
 *
 * The C interface reports no link, so its loss is found by a read of the version, which no subscription hears, when
 * nothing has come for a second; there is one read at a time. That request may have gone down with the link, so at the
 * loss a read of the state takes its place and is left standing: the library keeps the request while it has no link, and
 * the subscription that this read is stays until it is answered. Once more it is made anew, if the library says after
 * five seconds that there is no link. So a daemon that comes back after whatever time finds three requests at most.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_LINK_HPP
#define KELVARISSDK_CPP_LINK_HPP

#include <kelvarissdk/cpp/life.hpp>

namespace kelvaris {
namespace detail {

inline constexpr std::chrono::seconds quietLimit{
    1}; // until a probe is sent, and until it is taken for unanswered
inline constexpr std::chrono::seconds statisticsLimit{3};
inline constexpr std::chrono::seconds longestStatisticsLimit{45};

// What runs on the reader thread stays between its construction and its end.
class ReaderScope {
public:
    explicit ReaderScope(Core const* core) : reader(readerOf, core), notHere(mustNotWait, true) {}

private:
    Exchanged<Core const*> reader;
    Exchanged<bool> notHere;
};

// ---- The helper thread; with the mutex held ----

// The host's signals stay with its own threads.
inline bool Core::needHelper() {
    if (hasHelper || closing) {
        return hasHelper;
    }
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    for (int const fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
        sigdelset(&all, fault);
    }
    pthread_sigmask(SIG_SETMASK, &all, &before);
    auto own = std::make_unique<std::shared_ptr<Core>>(shared_from_this());
    hasHelper = pthread_create(&helper, nullptr, help, own.get()) == 0;
    if (hasHelper) {
        static_cast<void>(own.release());
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return hasHelper;
}

inline void Core::nudge() {
    nudged = true;
    wake.notify_one();
}

inline void* Core::help(void* core) {
    std::unique_ptr<std::shared_ptr<Core>> const own(static_cast<std::shared_ptr<Core>*>(core));
    (*own)->helpOn();
    return nullptr;
}

inline void Core::helpOn() {
    Lock lock(mutex);
    while (!helperEnds) {
        nudged = false;
        if (closeAsked && !closing) {
            close(lock);
            return;
        }
        expire(lock);
        if (!discarded.empty() && !readerBusy) {
            unregisterDiscarded(lock);
        }
        if (settings.probing && !readerBusy && !helperEnds) {
            superviseLink(lock);
            superviseStatistics(lock);
        }
        if (!nudged && !helperEnds) {
            wake.wait_until(lock, nextDue(), [this] { return nudged; });
        }
    }
}

inline void Core::expire(Lock& lock) {
    auto const now = Clock::now();
    bool expired = false;
    while (!timers.empty() && timers.begin()->first <= now) {
        OperationPtr const operation = timers.begin()->second;
        settle(*operation, errorOf(ErrorType::TIMEOUT));
        if (operation->registered) {
            discarded.push_back(operation);
        }
        expired = true;
    }
    if (expired) {
        flush(lock);
        lock.lock();
    }
}

inline void Core::unregisterDiscarded(Lock& lock) {
    std::vector<OperationPtr> own;
    own.swap(discarded);
    bool const isUnregistered = useHandle(lock, [&own](KelvarisSDK_Handle* of) {
        for (OperationPtr const& operation : own) {
            KelvarisSDK_UnregisterCallback(of, operation->id);
        }
        return of != nullptr; // while it is destroyed, callbacks still come
    });
    for (OperationPtr const& operation : own) {
        // One that calls back twice can be unregistered for its second time only.
        if (isUnregistered && operation->traits.callbacks == 1) {
            operation->registered = false;
            live.erase(operation.get());
        }
    }
    lock.unlock();
    own.clear();
    lock.lock();
}

inline Clock::time_point Core::nextDue() const {
    auto due = Clock::time_point::max();
    if (!timers.empty()) {
        due = timers.begin()->first;
    }
    if (settings.probing && readerBusy) {
        due = std::min(due, Clock::now() + quietLimit);
    } else if (settings.probing && link != Link::LOST) {
        due = std::min(due, quietLimit + (probing && probedAt >= lastHeard ? probedAt : lastHeard));
        if (link == Link::UP && hasStatistics()) {
            due = std::min(due, statisticsHeard + statisticsPatience);
        }
    }
    // A wait until the end of time overflows where the clock is converted.
    return std::min(due, Clock::now() + std::chrono::hours(24));
}

// ---- The link; with the mutex held but for watch() ----

inline void Core::heard(Operation const& operation, KelvarisSDK_BaseResult const& head) {
    if (!settings.probing) {
        return;
    }
    if (!head.error) {
        lastHeard = Clock::now();
        if (operation.traits.statistics) {
            statisticsHeard = lastHeard;
            statisticsPatience = statisticsLimit;
        }
        changeLink(Link::UP);
    } else if (head.errorCode == KelvarisSDK_ErrorType_NOT_CONNECTED) {
        changeLink(Link::LOST);
    }
}

inline void Core::changeLink(Link to) {
    if (link == to || closing) {
        return;
    }
    returned = returned || (to == Link::UP && link == Link::LOST && everUp);
    everUp = everUp || to == Link::UP;
    standingWanted = to == Link::LOST;
    standingRenewed = false;
    link = to;
    for (auto const& [operation, tell] : watchers) {
        tell(to);
    }
    nudge();
}

// A watcher that comes late is told how things stand.
inline void Core::watch(Operation& operation, std::function<void(Link)> tell) {
    if (isInherited()) {
        return;
    }
    Lock lock(mutex);
    if (closing || operation.settled) {
        return;
    }
    if (link) {
        tell(*link);
    }
    watchers.emplace(&operation, std::move(tell));
    flush(lock);
}

inline void Core::superviseLink(Lock& lock) {
    if (probeEnded) {
        if (!replacing || Clock::now() >= lastHeard + quietLimit) {
            replaceHandle(lock);
        }
        return;
    }
    if (returned) {
        returned = false;
        readAnew(lock);
    }
    auto const now = Clock::now();
    if (link == Link::LOST) {
        if (std::exchange(standingWanted, false)) {
            probe<KelvarisSDK_GetState>(lock);
        }
    } else if (now >= lastHeard + quietLimit) {
        // What came after a probe shows that there was a link, and says nothing of now.
        if (!probing || probedAt < lastHeard) {
            probe<KelvarisSDK_GetVersion>(lock);
        } else if (now >= probedAt + quietLimit) {
            changeLink(Link::LOST);
            flush(lock);
            lock.lock();
        }
    }
}

template <auto read> void Core::probe(Lock& lock) {
    if (probing) {
        useHandle(lock, [before = probeId](KelvarisSDK_Handle* own) {
            KelvarisSDK_UnregisterCallback(own, before);
            return true;
        });
    }
    probing = true; // before the answer, which may come before the call returns
    probedAt = Clock::now();
    KelvarisSDK_BaseResult const head = useHandle(lock, [this](KelvarisSDK_Handle* own) {
        return read(
                   own, [](auto record, void* core) { return onProbe(record.base, core); }, this)
            .base;
    });
    probeId = head.callbackId;
    if (head.error) { // there is no handle
        probing = false;
        changeLink(Link::LOST);
    }
}

inline bool Core::onProbe(KelvarisSDK_BaseResult const& head, void* core) {
    Core& self = *static_cast<Core*>(core);
    ReaderScope const here(&self);
    Lock lock(self.mutex);
    bool const waits = head.error && head.errorCode == KelvarisSDK_ErrorType_NOT_CONNECTED;
    if (waits) {
        self.changeLink(Link::LOST);
        self.standingWanted = !std::exchange(self.standingRenewed, true);
    } else {
        self.probing = false;
        if (head.error && head.errorCode == KelvarisSDK_ErrorType_TIMEOUT) {
            self.probeEnded = true;
        } else { // also a report that can't be read is one
            self.lastHeard = Clock::now();
            self.changeLink(Link::UP);
        }
    }
    self.nudge();
    self.leaveCallback(lock);
    return waits;
}

// A read's report reaches the subscriptions of its kind, so they needn't be made again.
inline void Core::readAnew(Lock& lock) {
    enableStatistics(lock); // before a read of them, which names no periods
    std::vector<OperationPtr> streams;
    for (auto const& [key, operation] : live) {
        if (operation->registered && operation->stream && !operation->settled && operation->traits.reread) {
            streams.push_back(operation);
        }
    }
    useHandle(lock, [&streams](KelvarisSDK_Handle* own) {
        for (OperationPtr const& operation : streams) {
            operation->readAnew(own);
        }
        streams.clear(); // here, because the last of one may go
        return true;
    });
}

// Nobody but the helper gets here, so there is one at a time. Where no handle can be made, it is tried again in a second.
inline void Core::replaceHandle(Lock& lock) {
    probeEnded = false;
    probing = false;
    replacing = true;
    changeLink(Link::ENDED);
    flush(lock);
    lock.lock();
    KelvarisSDK_Handle* const old = takeHandle(lock);
    lock.unlock();
    KelvarisSDK_Destroy(old);
    KelvarisSDK_Handle* const fresh = createOrNull();
    std::vector<OperationPtr> streams;
    std::vector<OperationPtr> ended;
    lock.lock();
    handle = fresh;
    ++generation;
    replacing = fresh == nullptr;
    probeEnded = replacing;
    lastHeard = Clock::now();
    discarded.clear();
    for (auto entry = live.begin(); entry != live.end();) {
        Operation& operation = *entry->second;
        bool const stays = !operation.hasCall() || operation.enrolling;
        bool const waited = !operation.registered && !operation.settled; // for the new handle
        if (!stays) {
            operation.registered = false;
        }
        if (!stays && (waited || (operation.stream && !operation.settled))) {
            streams.push_back(entry->second);
        } else if (!stays) {
            settle(operation, errorOf(ErrorType::TIMEOUT));
            ended.push_back(std::move(entry->second));
            entry = live.erase(entry);
            continue;
        }
        ++entry;
    }
    flush(lock);
    lock.lock();
    if (replacing) {
        return;
    }
    enableStatistics(lock);
    lock.unlock();
    for (OperationPtr const& operation : streams) {
        enroll(operation);
    }
    lock.lock();
}

// ---- Statistics ----

inline void Core::wantStatistics(bool enable, std::vector<unsigned> const& ofPeriods) {
    if (isInherited()) {
        return;
    }
    Lock const lock(mutex);
    statistics = enable;
    periods = ofPeriods;
    statisticsHeard = Clock::now();
    statisticsPatience = statisticsLimit;
    nudge();
}

inline void Core::enableStatistics(Lock& lock) {
    if (statistics) {
        statisticsHeard = Clock::now();
        useHandle(lock, [own = periods](KelvarisSDK_Handle* of) mutable {
            return KelvarisSDK_EnableStatUpdates(of, true, static_cast<unsigned char>(own.size()),
                                                 own.data());
        });
    }
}

inline bool Core::hasStatistics() const {
    for (auto const& [key, operation] : live) {
        if (statistics && operation->traits.statistics && operation->stream && !operation->settled) {
            return true;
        }
    }
    return false;
}

// Each time in vain it waits longer: a daemon may have a slower pace.
inline void Core::superviseStatistics(Lock& lock) {
    if (link == Link::UP && hasStatistics() && Clock::now() >= statisticsHeard + statisticsPatience) {
        statisticsPatience = std::min<Clock::duration>(statisticsPatience * 2, longestStatisticsLimit);
        enableStatistics(lock);
    }
}

} // namespace detail
} // namespace kelvaris

#endif
