// Stands between two steps by which threads hand something to each other.

#pragma once

#ifdef KELVARIS_STRESS_DELAYS
#include <ctime>
#include <random>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace kelvarissdk {

// Does nothing, but delays the thread at random in the stress build, so that others come in between. It is no point at
// which a thread can be cancelled, because what surrounds it isn't either.
inline void step() {
#ifdef KELVARIS_STRESS_DELAYS
    thread_local std::minstd_rand random(static_cast<unsigned>(gettid()));
    unsigned long const dice = random() % 64;
    if (dice < 8) {
        timespec const pause{0, static_cast<long>(dice * dice) * 1000};
        syscall(SYS_nanosleep, &pause, nullptr);
    } else if (dice < 32) {
        sched_yield();
    }
#endif
}

} // namespace kelvarissdk
