#include "watchhook.h"
#include "text.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <spawn.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace monitor {

namespace {

// The kernel takes no longer variable (MAX_ARG_STRLEN); then the standard input alone has the data.
constexpr std::size_t longestVariable = 128 * 1024 - 1;
// Between asking a program to end and ending it.
constexpr std::chrono::seconds grace{1};

// The environment with our variables in it.
std::vector<std::string> environmentFor(Event const& event, Options const& options) {
    std::vector<std::string> const ours = {
        "KELVARIS_ADDRESS=" + options.address, "KELVARIS_PORT=" + std::to_string(options.port),
        "KELVARIS_TIME=" + event.time,         "KELVARIS_SEQ=" + event.seq,
        "KELVARIS_EVENT=" + event.name,        "KELVARIS_DATA=" + event.data,
    };
    std::vector<std::string> all;
    for (char** each = environ; *each != nullptr; ++each) {
        std::string_view const name(*each, std::strcspn(*each, "="));
        bool isOurs = false;
        for (std::string const& variable : ours) {
            isOurs = isOurs || (variable.starts_with(name) && variable[name.size()] == '=');
        }
        if (!isOurs) {
            all.emplace_back(*each);
        }
    }
    for (std::string const& variable : ours) {
        if (variable.size() <= longestVariable) {
            all.push_back(variable);
        }
    }
    return all;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

// A file in memory takes a text of any length, whether its reader reads or not. -1, and errno, when there is none.
int fileWith(std::string const& text) {
    int const file = memfd_create("event", MFD_CLOEXEC);
    bool const isWritten = file >= 0 &&
                           write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                           lseek(file, 0, SEEK_SET) == 0;
    if (file >= 0 && !isWritten) {
        close(file);
        return -1;
    }
    return file;
}

// Starts it in a process group of its own, which can be ended as a whole, with the signals as a program expects them.
// Returns an error number.
int spawn(pid_t& child, std::vector<std::string> words, std::vector<std::string> environment, int input,
          sigset_t const& mask) {
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    sigaddset(&defaults, SIGXFSZ);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setsigmask(&attributes, &mask);
    auto const arguments = pointersTo(words);
    auto const variables = pointersTo(environment);
    int const error =
        posix_spawnp(&child, arguments.front(), &files, &attributes, arguments.data(), variables.data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error;
}

} // namespace

std::string Event::line() const {
    return R"({"time":")" + time + R"(","seq":)" + seq + R"(,"event":")" + name + R"(","data":)" + data +
           "}\n";
}

Hook::Hook(Loop& ofLoop, Options const& ofOptions) : loop(ofLoop), options(ofOptions) {
    std::signal(SIGCHLD, SIG_DFL); // a caller that ignores it would have us wait for nothing
    loop.onSignal(SIGCHLD, [this] { reap(); });
}

Hook::~Hook() {
    if (child == 0) {
        return;
    }
    kill(-child, SIGTERM);
    auto const limit = Clock::now() + grace;
    while (waitpid(child, nullptr, WNOHANG) == 0) {
        if (Clock::now() >= limit) {
            kill(-child, SIGKILL);
            waitpid(child, nullptr, 0);
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void Hook::run(Event&& event) {
    if (child == 0) {
        start(event);
    } else {
        pending = std::move(event);
    }
}

void Hook::start(Event const& event) {
    int const input = fileWith(event.line());
    int const error = input < 0 ? errno
                                : spawn(child, options.watch.hook, environmentFor(event, options), input,
                                        loop.originalMask());
    if (input >= 0) {
        close(input);
    }
    if (error != 0) {
        child = 0;
        tell(std::string("can't be started: ") + std::strerror(error));
        return;
    }
    stopped = false;
    timer = loop.setTimer(std::chrono::duration_cast<Clock::duration>(options.watch.hookTimeout),
                          [this] { stop(); });
}

// Its time is over: it is asked to end, and then ended.
void Hook::stop() {
    kill(-child, stopped ? SIGKILL : SIGTERM);
    if (!stopped) {
        stopped = true;
        timer = loop.setTimer(grace, [this] { stop(); });
    }
}

void Hook::reap() {
    siginfo_t info{};
    if (child == 0 || waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
        info.si_pid == 0) {
        return; // it was stopped, or goes on
    }
    if (stopped) {
        kill(-child, SIGKILL); // what it has started; until it is waited for, its number is nobody else's
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (stopped) {
        tell("took longer than " + plain(options.watch.hookTimeout.count()) + " s and was killed");
    } else if (WIFSIGNALED(status)) {
        tell("was ended by signal " + std::to_string(WTERMSIG(status)));
    } else if (WEXITSTATUS(status) != 0) {
        tell("ended with status " + std::to_string(WEXITSTATUS(status)));
    }
    child = 0;
    loop.removeTimer(timer);
    if (pending) {
        Event const event = std::move(*pending);
        pending.reset();
        start(event);
    }
}

void Hook::tell(std::string const& what) const {
    std::fprintf(stderr, "kelvaris-monitor: %s %s\n", printable(options.watch.hook.front()).c_str(),
                 what.c_str());
}

} // namespace monitor
