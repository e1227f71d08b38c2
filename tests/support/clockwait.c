/* Preloaded behind libfaketime, which makes all waits of a program faster but this one, the wait_for() of a
   std::condition_variable. Whoever stands in front of the C library, a sanitizer, goes on seeing it. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

/* 64-bit machines have the second call alone, the newest 32-bit ones the first. */
#ifndef SYS_clock_gettime64
#define SYS_clock_gettime64 SYS_clock_gettime
#endif
#ifndef SYS_clock_gettime
#define SYS_clock_gettime SYS_clock_gettime64
#endif

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           struct timespec const* deadline) {
    /* Where only time_t has 64 bits, the C library has functions of its own for it, and its header gives this one the
       name of the other. */
    _Bool const longTimes = sizeof(time_t) > sizeof(long);
    __typeof__(pthread_cond_clockwait)* next = NULL;
    *(void**)&next = dlsym(RTLD_NEXT, longTimes ? "__pthread_cond_clockwait64" : "pthread_cond_clockwait");
    long long const second = 1000000000;
    struct timespec faked;
    struct timespec real;
    clock_gettime(clock, &faked);
    syscall(longTimes ? SYS_clock_gettime64 : SYS_clock_gettime, clock, &real);
    long long left = (deadline->tv_sec - faked.tv_sec) * second + deadline->tv_nsec - faked.tv_nsec;
    left = left < 0 ? 0 : left / atoi(strchr(getenv("FAKETIME"), 'x') + 1);
    long long const end = real.tv_sec * second + real.tv_nsec + left;
    struct timespec const realDeadline = {(time_t)(end / second), (long)(end % second)};
    return next(condition, mutex, clock, &realDeadline);
}
