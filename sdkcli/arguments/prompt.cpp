#include "prompt.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <termios.h>
#include <unistd.h>

// While the prompt waits, a signal that ends the process puts the terminal back first.

namespace {

constexpr std::array endingSignals = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

termios echoing; // is constant while the handlers are in place

// The handler is installed to fire once, so the signal that it raises again has its default effect.
extern "C" void restoreAndEnd(int signal) {
    tcsetattr(STDIN_FILENO, TCSANOW, &echoing);
    raise(signal);
}

class EchoOff {
public:
    EchoOff() : isTerminal(tcgetattr(STDIN_FILENO, &echoing) == 0) {
        if (!isTerminal) {
            return;
        }
        struct sigaction ending {};
        ending.sa_handler = restoreAndEnd;
        ending.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            sigaction(endingSignals[i], nullptr, &previous[i]);
            if (previous[i].sa_handler != SIG_IGN) {
                sigaction(endingSignals[i], &ending, nullptr);
            }
        }
        termios silent = echoing;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &silent);
    }

    ~EchoOff() {
        if (!isTerminal) {
            return;
        }
        tcsetattr(STDIN_FILENO, TCSANOW, &echoing);
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            sigaction(endingSignals[i], &previous[i], nullptr);
        }
    }

    EchoOff(EchoOff const&) = delete;
    EchoOff& operator=(EchoOff const&) = delete;

private:
    bool isTerminal;
    std::array<struct sigaction, endingSignals.size()> previous{};
};

} // namespace

void readPrivate(char const* prompt, char* buffer, int size) {
    std::printf("%s : ", prompt);
    std::fflush(stdout);

    char* line = nullptr;
    std::size_t lineCapacity = 0;
    EchoOff const echoOff;
    ssize_t const length = getline(&line, &lineCapacity, stdin);
    if (length > 0) {
        line[length - 1] = '\0';
    }
    auto const capacity = static_cast<std::size_t>(size);
    std::memset(buffer, 0, capacity);
    if (length > 0) {
        std::strncpy(buffer, line, capacity - 1);
    }
    if (line != nullptr) {
        explicit_bzero(line, lineCapacity);
        std::free(line);
    }
}
