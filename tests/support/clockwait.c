/* Preloaded behind libfaketime, which turns all waits of a program faster but this one, the wait_for() of a
   std::condition_variable. */

#include <pthread.h>
#include <time.h>

extern int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                  struct timespec const* deadline);

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           struct timespec const* deadline) {
    long const second = 1000000000;
    struct timespec now;
    struct timespec end;
    clock_gettime(clock, &now);
    clock_gettime(CLOCK_REALTIME, &end);
    end.tv_sec += deadline->tv_sec - now.tv_sec;
    end.tv_nsec += deadline->tv_nsec - now.tv_nsec + second; /* between 0 and three seconds */
    end.tv_sec += end.tv_nsec / second - 1;
    end.tv_nsec %= second;
    return pthread_cond_timedwait(condition, mutex, &end);
}
