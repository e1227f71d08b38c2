#pragma once

#include "support/sdk.h"

#include <csignal>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

namespace harness {

// The thread sanitizer takes a thread that a child starts for the parent's whose stack it gets, and ends the child.
#ifdef __SANITIZE_THREAD__
constexpr bool childMayStartThreads = false;
#else
constexpr bool childMayStartThreads = true;
#endif

// A sanitizer's allocator may be at work for another thread when a child is made, and the child then waits for it. Nor does a
// sanitizer know the first thread of a child that another one than main() has forked off.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

// Ends a child that hangs. One that a callback forks off inherits the signals that the library's thread blocks.
inline void limitTime() {
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
    alarm(static_cast<unsigned>(patience().count()));
}

// The status of a child that runs this and ends with what it returns; the negative number of a signal.
template <class Body> int inChild(Body body) {
    pid_t const child = fork();
    if (child == 0) {
        limitTime();
        _exit(body());
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

inline int codeOf(KelvarisSDK_Handle* sdk) {
    return KelvarisSDK_GetVersion(sdk, nullptr, nullptr).base.errorCode;
}

// Counts what is wrong in a child with the handle of a parent, and with one of the child's own.
inline int wrongInChild(KelvarisSDK_Handle* parents, std::uint16_t port) {
    bool const isRefused = codeOf(parents) == KelvarisSDK_ErrorType_SDK &&
                           KelvarisSDK_GetState(parents, Inbox::keep, nullptr).base.error &&
                           KelvarisSDK_EnableStatUpdates(parents, true, 0, nullptr).error;
    KelvarisSDK_UnregisterCallback(parents, 0);
    KelvarisSDK_Destroy(parents);
    bool const isOwnRight =
        !childMayStartThreads || codeOf(Handle(port).sdk) == KelvarisSDK_ErrorType_NO_ERROR;
    return (isRefused ? 0 : 1) + (isOwnRight ? 0 : 2);
}

} // namespace harness
