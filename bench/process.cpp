#include "process.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

int checked(int result, char const* what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
}

// Keeps what a child writes in memory, so that nobody has to read while it runs.
class Output {
public:
    Output() : descriptor(checked(memfd_create("output", MFD_CLOEXEC), "memfd_create")) {}
    ~Output() {
        close(descriptor);
    }
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    int get() const {
        return descriptor;
    }

    std::string text() const {
        std::string all(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
        all.resize(static_cast<std::size_t>(checked(
            static_cast<int>(pread(descriptor, all.data(), all.size(), 0)), "can't read a child's output")));
        return all;
    }

private:
    int const descriptor;
};

constexpr int inherited = -1;

pid_t spawn(std::vector<std::string> const& argv, int out, int err) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
    if (err != inherited) {
        posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
    }
    std::vector<char*> words;
    for (std::string const& word : argv) {
        words.push_back(const_cast<char*>(word.c_str()));
    }
    words.push_back(nullptr);
    pid_t child = -1;
    errno = posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return checked(errno == 0 ? child : -1, words[0]);
}

double seconds(timeval const& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

Run run(std::vector<std::string> const& argv, int expectedStatus) {
    Output const out;
    Output const err;
    int status = 0;
    rusage usage{};
    auto const start = std::chrono::steady_clock::now();
    pid_t const child = spawn(argv, out.get(), err.get());
    checked(wait4(child, &status, 0, &usage), "wait4");
    std::chrono::duration<double> const wall = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != expectedStatus) {
        std::string commandLine;
        for (std::string const& word : argv) {
            commandLine += word + ' ';
        }
        std::string const end = WIFEXITED(status) ? "status " + std::to_string(WEXITSTATUS(status))
                                                  : "signal " + std::to_string(WTERMSIG(status));
        throw std::runtime_error(commandLine + "ended with " + end + ": " + err.text());
    }
    return {wall.count(), seconds(usage.ru_utime) + seconds(usage.ru_stime), out.text()};
}

Pinned::Pinned() {
    checked(sched_getaffinity(0, sizeof before, &before), "sched_getaffinity");
    cpu_set_t one;
    CPU_ZERO(&one);
    for (std::size_t cpu = 0; CPU_COUNT(&one) == 0; ++cpu) {
        if (CPU_ISSET(cpu, &before)) {
            CPU_SET(cpu, &one);
        }
    }
    checked(sched_setaffinity(0, sizeof one, &one), "sched_setaffinity");
}

Pinned::~Pinned() {
    sched_setaffinity(0, sizeof before, &before);
}

Daemon::Daemon(std::vector<std::string> const& argv) {
    int ends[2];
    checked(pipe2(ends, O_CLOEXEC), "pipe2");
    child = spawn(argv, ends[1], inherited);
    close(ends[1]);
    char character = 0;
    while (read(ends[0], &character, 1) == 1 && character != '\n') {
        portText = character == ':' ? "" : portText + character;
    }
    close(ends[0]);
    if (portText.empty()) {
        throw std::runtime_error(argv[0] + " doesn't start");
    }
}

Daemon::~Daemon() {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

ClosedPort::ClosedPort() : descriptor(checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket")) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    checked(bind(descriptor, generic, size), "bind");
    checked(getsockname(descriptor, generic, &size), "getsockname");
    portText = std::to_string(ntohs(address.sin_port));
}

ClosedPort::~ClosedPort() {
    close(descriptor);
}
