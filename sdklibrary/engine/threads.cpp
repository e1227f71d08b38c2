#include "threads.h"

#include <atomic>
#include <csignal>
#include <new>
#include <pthread.h>
#include <system_error>
#include <utility>

#include "websockets.h"

namespace kelvarissdk {

namespace {

// While one lives, the calling thread blocks all signals but those by which the processor reports a fault. A thread that
// it starts meanwhile keeps that mask: what the host's users and timers send belongs to the host's own threads, but a
// fault in a callback belongs to the thread that runs it.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t mask;
        sigfillset(&mask);
        for (int const fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
            sigdelset(&mask, fault);
        }
        pthread_sigmask(SIG_SETMASK, &mask, &previous);
    }
    ~SignalsBlocked() {
        pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    }
    SignalsBlocked(SignalsBlocked const&) = delete;
    SignalsBlocked& operator=(SignalsBlocked const&) = delete;

private:
    sigset_t previous;
};

std::atomic<unsigned> generation = 0;

// The one thread of the new process isn't a reader thread, though it may have been forked off by one.
void enterChild() {
    ++generation;
    WebsocketImpl::isInReaderThread = false;
}

// 0 where forks are counted. This stands before the host can fork.
int const forkHandler = pthread_atfork(nullptr, nullptr, enterChild);

} // namespace

std::thread startThread(std::function<void()> body) {
    SignalsBlocked const blocked;
    try {
        return std::thread(std::move(body));
    } catch (std::system_error const& failure) {
        throw std::system_error(failure.code(), "thread constructor failed");
    }
}

unsigned forkGeneration() {
    if (forkHandler != 0) {
        throw std::bad_alloc();
    }
    return generation;
}

} // namespace kelvarissdk
