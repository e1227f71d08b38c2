#include "support/texts.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace harness {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

int checked(ssize_t result, char const* what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return static_cast<int>(result);
}

// Appends what the descriptor has behind the text.
void readOn(int descriptor, std::string& text) {
    std::array<char, 65536> chunk;
    for (ssize_t size = 1; size > 0;) {
        size = pread(descriptor, chunk.data(), chunk.size(), static_cast<off_t>(text.size()));
        text.append(chunk.data(), static_cast<std::size_t>(std::max<ssize_t>(0, size)));
    }
}

// A faster clock comes from outside, as a library in front of the others, which on ARM passes over the monotonic clock
// unless it is told not to. The address sanitizer wants to be the first itself, but does without.
std::vector<std::string> environmentOf(Command const& command) {
    std::vector<std::string> variables;
    if (command.clock != 1) {
        variables = {"LD_PRELOAD=" FAST_CLOCK, "FAKETIME=+0 x" + std::to_string(command.clock),
                     "FAKETIME_DONT_FAKE_MONOTONIC=0", "ASAN_OPTIONS=verify_asan_link_order=0"};
    }
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    return variables;
}

// The command, or for a program of another machine the emulator's, which gives the program its name.
Command started(Command command) {
    if (command.path == "/proc/self/exe") {
        command.path = std::filesystem::read_symlink(command.path);
    }
    std::vector<std::string> words = split(EMULATOR);
    if (!words.empty() && command.path.starts_with(PROGRAMS)) {
        words.insert(words.end(), {"-0", command.argv[0], command.path});
        command.argv.erase(command.argv.begin());
        command.argv.insert(command.argv.begin(), words.begin(), words.end());
        command.path = words[0];
    }
    return command;
}

std::vector<char*> pointersTo(std::vector<std::string> const& texts) {
    std::vector<char*> pointers;
    for (std::string const& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t spawn(Command const& command, int in, int out, int err) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
    // A daemon's sockets, inherited, would hold its connections open.
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);

    // Whoever started the tests may ignore signals that the child is to end by.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigfillset(&defaults);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> const environment = environmentOf(command);
    pid_t pid = -1;
    errno = posix_spawnp(&pid, command.path.c_str(), &actions, &attributes, pointersTo(command.argv).data(),
                         pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return checked(pid, command.path.c_str());
}

} // namespace

Process::Process(Command const& command) : deadline(steady_clock::now() + 6 * patience()) {
    for (int* file : {&input, &output, &errors}) {
        *file = checked(memfd_create("stream", MFD_CLOEXEC), "memfd_create");
    }
    if (command.input) {
        checked(pwrite(input, command.input->data(), command.input->size(), 0), "write the input");
    } else {
        std::array<char, 64> name = {};
        keyboard = checked(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK), "posix_openpt");
        checked(unlockpt(keyboard), "unlockpt");
        checked(ptsname_r(keyboard, name.data(), name.size()), "ptsname_r");
        close(input);
        input = checked(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC), name.data());
    }
    pid = spawn(started(command), input, output, errors);
}

Process::~Process() {
    if (pid > 0) {
        kill(pid, SIGKILL);
        wait();
    }
    for (int const file : {input, output, errors, keyboard}) {
        close(file);
    }
}

// Takes what the child has written until now. Nothing tells of that, nor of a changed flag of the terminal.
bool Process::goesOn() {
    if (steady_clock::now() >= deadline) {
        ADD_FAILURE() << "killed after 120 s; it had printed:\n" << outcome.out << outcome.err;
        kill(pid, SIGKILL);
        deadline = steady_clock::time_point::max();
    }
    int status = 0;
    bool const hasEnded = checked(waitpid(pid, &status, WNOHANG), "waitpid") == pid;
    readOn(output, outcome.out);
    readOn(errors, outcome.err);
    std::array<char, 4096> chunk;
    for (ssize_t size = 1; size > 0 && keyboard >= 0;) {
        size = read(keyboard, chunk.data(), chunk.size());
        outcome.terminal.append(chunk.data(), static_cast<std::size_t>(std::max<ssize_t>(0, size)));
    }
    if (hasEnded) { // libfaketime leaves something of a process that ends by a signal
        unlink(("/dev/shm/faketime_shm_" + std::to_string(pid)).c_str());
        unlink(("/dev/shm/sem.faketime_sem_" + std::to_string(pid)).c_str());
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        pid = -1;
        return false;
    }
    std::this_thread::sleep_for(1ms);
    return true;
}

void Process::waitForOutput(std::string const& text) {
    auto const seen = [&] {
        return std::min(outcome.out.find(text), outcome.err.find(text)) != std::string::npos;
    };
    while (!seen() && pid > 0) {
        goesOn();
    }
    EXPECT_TRUE(seen()) << "never printed: " << text << "\nbut:\n" << outcome.out << outcome.err;
}

void Process::waitForEcho(bool on) {
    auto const isSo = [&] {
        termios attributes = {};
        checked(tcgetattr(input, &attributes), "tcgetattr");
        return ((attributes.c_lflag & ECHO) != 0) == on;
    };
    while (!isSo() && pid > 0) {
        goesOn();
    }
    EXPECT_TRUE(isSo()) << "the terminal's ECHO stayed " << (on ? "off" : "on");
}

void Process::type(std::string const& text) const {
    checked(write(keyboard, text.data(), text.size()), "write to the terminal");
}

void Process::signal(int number) const {
    checked(kill(pid, number), "kill");
}

bool Process::catches(int signal) const {
    std::string const status = contents("/proc/" + std::to_string(pid) + "/status");
    auto const mask = std::stoull(status.substr(status.find("SigCgt:") + 7), nullptr, 16);
    return (mask >> (signal - 1) & 1) != 0;
}

Outcome const& Process::wait() {
    while (goesOn()) {
    }
    return outcome;
}

Outcome runProcess(Command const& command) {
    return Process(command).wait();
}

bool ranOnClock(int clock) {
    if (std::getenv("FAKETIME") != nullptr) {
        return false;
    }
    testing::TestInfo const& test = *testing::UnitTest::GetInstance()->current_test_info();
    std::string const filter = std::string("--gtest_filter=") + test.test_suite_name() + '.' + test.name();
    Outcome const outcome = runProcess({.path = "/proc/self/exe", .argv = {"test", filter}, .clock = clock});
    EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
    return true;
}

std::chrono::seconds patience() {
    char const* const clock = std::getenv("FAKETIME");
    return 20s * (clock == nullptr ? 1 : std::atoi(std::strchr(clock, 'x') + 1));
}

} // namespace harness
