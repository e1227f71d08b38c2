#include "prompt.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <termios.h>
#include <unistd.h>

// While the prompt waits, the terminal is silent. It echoes again while the process is stopped and before a signal
// ends it. The handlers run on the main thread, because the library's threads block signals.

namespace {

// All signals are blocked while these are used, in the handlers and outside of them.
termios echoing; // what the terminal goes back to
bool isSilent = false;

// Whoever is in the foreground sets the terminal. A terminal that doesn't control the process knows no foreground.
bool isInBackground() {
    pid_t const foreground = tcgetpgrp(STDIN_FILENO);
    return foreground >= 0 && foreground != getpgrp();
}

// The terminal may have been set anew while the process was stopped.
void silence() {
    termios current{};
    if (isInBackground() || tcgetattr(STDIN_FILENO, &current) != 0) {
        return;
    }
    if (!isSilent) {
        echoing = current;
        isSilent = true;
    }
    current.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &current);
}

// SIGSTOP can't be caught, so the process may come here in the background with the terminal still silent: what it goes
// back to is kept then until the process has the terminal again.
void echo() {
    if (isSilent && !isInBackground()) {
        tcsetattr(STDIN_FILENO, TCSANOW, &echoing);
        isSilent = false;
    }
}

// The handler is installed to fire once, so the signal has its default effect when it comes again, which it does
// once the handler has returned and no longer blocks it.
extern "C" void echoAndEnd(int signal) {
    echo();
    raise(signal);
}

extern "C" void silenceAgain(int /*signal*/) {
    int const error = errno;
    silence();
    errno = error;
}

extern "C" void echoAndStop(int signal) {
    int const error = errno;
    echo();
    struct sigaction stopping {};
    struct sigaction own {};
    sigaction(signal, &stopping, &own);
    raise(signal);
    sigset_t raised;
    sigset_t blocked;
    sigemptyset(&raised);
    sigaddset(&raised, signal);
    pthread_sigmask(SIG_UNBLOCK, &raised, &blocked); // the process stops here
    pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
    sigaction(signal, &own, nullptr);
    silence(); // the process may not have stopped, as nobody could continue it
    errno = error;
}

// This is null for a signal that doesn't stop, continue or end a process.
void (*handlerOf(int signal))(int) {
    switch (signal) {
    case SIGCHLD:
    case SIGURG:
    case SIGWINCH:
        return nullptr;
    case SIGTSTP:
    case SIGTTIN:
    case SIGTTOU:
        return echoAndStop;
    case SIGCONT:
        return silenceAgain;
    default:
        return echoAndEnd;
    }
}

class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &previous);
    }
    ~SignalsBlocked() {
        pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    }
    SignalsBlocked(SignalsBlocked const&) = delete;
    SignalsBlocked& operator=(SignalsBlocked const&) = delete;

private:
    sigset_t previous;
};

class EchoOff {
public:
    EchoOff() {
        SignalsBlocked const blocked;
        for (int signal = 1; signal < NSIG; ++signal) {
            catchSignal(signal);
        }
        silence();
    }

    ~EchoOff() {
        SignalsBlocked const blocked;
        echo();
        for (int signal = 1; signal < NSIG; ++signal) {
            if (caught[signal]) {
                sigaction(signal, &previous[signal], nullptr);
            }
        }
    }

    EchoOff(EchoOff const&) = delete;
    EchoOff& operator=(EchoOff const&) = delete;

private:
    // An ignored signal stays ignored. Some numbers can't be caught.
    void catchSignal(int signal) {
        struct sigaction action {};
        action.sa_handler = handlerOf(signal);
        action.sa_flags = action.sa_handler == echoAndEnd ? static_cast<int>(SA_RESETHAND) : 0;
        sigfillset(&action.sa_mask);
        caught[signal] = action.sa_handler != nullptr && sigaction(signal, nullptr, &previous[signal]) == 0 &&
                         previous[signal].sa_handler == SIG_DFL && sigaction(signal, &action, nullptr) == 0;
    }

    struct sigaction previous[NSIG] = {};
    bool caught[NSIG] = {};
};

// Reads a line's first bytes into the buffer and returns the line's length. Standard input's own buffer would keep a
// copy. A terminal is read by the line, as an end of input that is typed behind some characters ends a read, not the
// line; of a file or a pipe, what follows the line is left to whoever reads next.
std::size_t readLine(char* buffer, std::size_t capacity, bool isTerminal) {
    char piece[4096];
    std::size_t const most = isTerminal ? sizeof(piece) : 1;
    std::size_t length = 0;
    for (bool ended = false; !ended;) {
        ssize_t const size = read(STDIN_FILENO, piece, most);
        if (size < 0 && errno == EINTR) {
            continue; // the process was stopped
        }
        ended = size <= 0;
        for (ssize_t i = 0; i < size && !ended; ++i, ++length) {
            ended = piece[i] == '\n';
            if (length < capacity) {
                buffer[length] = piece[i];
            }
        }
    }
    explicit_bzero(piece, sizeof(piece));
    return length;
}

} // namespace

void readPrivate(char const* prompt, char* buffer, int size) {
    std::printf("%s : ", prompt);
    std::fflush(stdout);

    bool const isTerminal = isatty(STDIN_FILENO) != 0;
    std::optional<EchoOff> echoOff;
    if (isTerminal) {
        echoOff.emplace();
    }
    auto const capacity = static_cast<std::size_t>(size);
    std::size_t const length = readLine(buffer, capacity, isTerminal);
    std::size_t const kept = std::min(length == 0 ? 0 : length - 1, capacity - 1);
    std::fill(std::find(buffer, buffer + kept, '\0'), buffer + capacity, '\0');
}
