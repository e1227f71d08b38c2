#include "output.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace monitor {

namespace {

constexpr std::size_t longestWaiting = 1048576;

// A machine that lost its power has left a part of a line, say.
bool endsWithinLine(std::string const& file, off_t size) {
    char last = '\n';
    int const descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    bool const isRead = descriptor >= 0 && pread(descriptor, &last, 1, size - 1) == 1;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    return isRead && last != '\n';
}

bool canWrite(int descriptor) {
    pollfd polled{descriptor, POLLOUT, 0};
    return poll(&polled, 1, 0) > 0;
}

} // namespace

Output::Output(Loop& ofLoop, std::string ofFile) : loop(ofLoop), file(std::move(ofFile)) {
    open();
}

Output::~Output() {
    try {
        flush();
    } catch (std::system_error const&) {
        // It is too late to say so.
    }
    close();
}

void Output::open() {
    descriptor =
        file.empty()
            ? STDOUT_FILENO
            : ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), file);
    }
    struct stat status {};
    fresh = file.empty() || (fstat(descriptor, &status) == 0 && status.st_size == 0);
    if (!file.empty() && S_ISREG(status.st_mode) && endsWithinLine(file, status.st_size)) {
        waiting = '\n' + waiting;
    }
    watched = loop.addDescriptor(descriptor, 0, [this](short events) {
        (events & (POLLERR | POLLHUP)) != 0 ? loop.end(0) : flush(); // the reader has gone
    });
}

void Output::close() {
    loop.removeDescriptor(watched);
    if (descriptor != STDOUT_FILENO) {
        ::close(descriptor);
    }
}

void Output::reopen() {
    if (!file.empty()) {
        flush();
        close();
        open();
    }
}

bool Output::write(std::string_view lines) {
    if (waiting.size() + lines.size() > longestWaiting) {
        return false;
    }
    fresh = false;
    waiting += lines;
    flush();
    return true;
}

void Output::whenWritten(std::function<void()> action) {
    written = std::move(action);
    flush();
}

// A descriptor that poll() calls writable takes a piece of this size at once. Making it non-blocking would change it for
// everybody who shares it.
void Output::flush() {
    while (!waiting.empty() && canWrite(descriptor)) {
        ssize_t const count =
            ::write(descriptor, waiting.data(), std::min<std::size_t>(waiting.size(), PIPE_BUF));
        if (count >= 0) {
            auto const done = static_cast<std::size_t>(count);
            auto const end = waiting.rfind('\n', done - 1);
            unfinished = done == 0 || end == std::string::npos ? unfinished + done : done - end - 1;
            waiting.erase(0, done);
        } else if (errno == EPIPE) {
            waiting.clear();
            loop.end(0);
        } else if (errno == EAGAIN) {
            break;
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
    loop.setEvents(watched, static_cast<short>(waiting.empty() ? 0 : POLLOUT));
    if (waiting.empty() && written) {
        std::exchange(written, nullptr)();
    }
}

// A full disk has taken a part of a line, which would spoil what is added later.
void Output::fail(int error) {
    waiting.clear();
    bool isCut = unfinished == 0;
    struct stat status {};
    if (!file.empty() && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        isCut = ftruncate(descriptor, status.st_size - static_cast<off_t>(unfinished)) == 0;
    }
    std::string const name = file.empty() ? "standard output" : file;
    throw std::system_error(error, std::generic_category(),
                            isCut ? name : name + ", which may end within a line");
}

} // namespace monitor
