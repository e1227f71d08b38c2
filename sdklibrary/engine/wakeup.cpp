#include "wakeup.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "step.h"

namespace kelvarissdk {

Wakeup::Wakeup() : fd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void Wakeup::close() {
    if (fd >= 0) {
        ::close(std::exchange(fd, -1));
    }
}

int Wakeup::descriptor() const {
    return fd;
}

// A thread that was cancelled between the flag and the write would leave the flag set for good, and no later signal
// would be written: the system call is made without the point of cancellation that eventfd_write() is.
void Wakeup::signal() {
    step();
    if (!signalled.exchange(true)) {
        step();
        eventfd_t const one = 1;
        syscall(SYS_write, fd, &one, sizeof(one));
    }
}

// The descriptor is emptied before the flag is cleared: a signal that comes between the two finds the reader awake.
void Wakeup::clear() {
    eventfd_t signals = 0;
    eventfd_read(fd, &signals);
    step();
    signalled.exchange(false);
    step();
}

void Wakeup::wait(int milliseconds) const {
    pollfd descriptor{fd, POLLIN, 0};
    poll(&descriptor, 1, milliseconds);
}

} // namespace kelvarissdk
