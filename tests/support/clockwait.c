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

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           struct timespec const* deadline) {
    __typeof__(pthread_cond_clockwait)* next = NULL;
    *(void**)&next = dlsym(RTLD_NEXT, "pthread_cond_clockwait");
    long long const second = 1000000000;
    struct timespec faked;
    struct timespec real;
    clock_gettime(clock, &faked);
    syscall(SYS_clock_gettime, clock, &real);
    long long left = (deadline->tv_sec - faked.tv_sec) * second + deadline->tv_nsec - faked.tv_nsec;
    left = left < 0 ? 0 : left / atoi(strchr(getenv("FAKETIME"), 'x') + 1);
    long long const end = real.tv_sec * second + real.tv_nsec + left;
    struct timespec const realDeadline = {end / second, end % second};
    return next(condition, mutex, clock, &realDeadline);
}
