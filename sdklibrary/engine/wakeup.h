// A signal ends the reader thread's wait.

#pragma once

#include <atomic>

namespace kelvarissdk {

// An eventfd that ends the reader's wait. Signals that come before the reader has seen the first of them cost no
// system call.
class Wakeup {
public:
    Wakeup();
    ~Wakeup() {
        close();
    }
    Wakeup(Wakeup const&) = delete;
    Wakeup& operator=(Wakeup const&) = delete;

    // -1 where the process had no descriptor left: nothing ends a wait then, and the reader has to look by itself.
    int descriptor() const;
    // The calling thread can't be cancelled in it.
    void signal();
    // The caller of clear() sees all that was done before a signal that it clears.
    void clear();
    // Waits for a signal, at most this long; -1: without limit.
    void wait(int milliseconds) const;
    // Gives the descriptor back; nothing can be signalled any more.
    void close();

private:
    int fd;
    std::atomic<bool> signalled = false;
};

} // namespace kelvarissdk
