#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

// Programs as children of the test process. A child has 120 s; then it is killed, and the test fails.
// All calls are for one thread; what goes wrong in starting a child is thrown.
namespace harness {

struct Command {
    std::string path;
    std::vector<std::string> argv;         // the first is the name that the program sees as its own
    std::optional<std::string> input = ""; // without a value it is a terminal, where type() types
    int clock = 1;                         // how many times as fast as ours the child's clocks and waits run
};

struct Outcome {
    int status = 0; // exit status, or the negative number of the signal that ended the process
    std::string out = {};
    std::string err = {};
    std::string terminal = {}; // what the terminal showed of what was typed
};

class Process {
public:
    explicit Process(Command const& command);
    ~Process(); // kills a child that nobody has waited for
    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    // Each fails the test if the child ends before that.
    void waitForOutput(std::string const& text); // on either stream
    void waitForEcho(bool on);                   // the terminal's ECHO flag, also after the child's end

    void type(std::string const& text) const;
    void signal(int number) const;
    bool catches(int signal) const;
    pid_t id() const {
        return pid;
    }
    std::string const& out() const {
        return outcome.out;
    }
    Outcome const& wait(); // once; both streams are read to their ends

private:
    void exchange(std::chrono::milliseconds limit);
    bool isOpen() const {
        return outEnd >= 0 || errEnd >= 0;
    }

    pid_t pid = -1;
    std::chrono::steady_clock::time_point deadline;
    int outEnd = -1;
    int errEnd = -1;
    int keyboard = -1; // the end of the terminal that types and sees
    int terminal = -1; // the child's, kept to look at its flags
    Outcome outcome;
};

Outcome runProcess(Command const& command);

// For the first line of a test that waits long: if (ranOnClock(20)) return;
// The test then runs in a child, on a clock so many times as fast, and what the child says is the result.
bool ranOnClock(int clock);

// How long the harness waits for what has to come: 20 s, whatever the clock.
std::chrono::seconds patience();

} // namespace harness
