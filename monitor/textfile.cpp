#include "textfile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace monitor {

namespace {

// 0 or the error.
int writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        ssize_t const count = write(descriptor, content.data(), content.size());
        if (count > 0) {
            content.remove_prefix(static_cast<std::size_t>(count));
        } else if (count < 0 && errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace

// A device would be replaced by a file.
TextFile::TextFile(std::string ofName) : name(std::move(ofName)), aside(name + ".new") {
    struct stat status {};
    if (stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        throw std::runtime_error(name + " is no file");
    }
}

// What a killed program has left aside is taken away first, so that nobody else's file is written through a link.
void TextFile::replace(std::string_view content) const {
    unlink(aside.c_str());
    int const descriptor = open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), aside);
    }
    int error = writeAll(descriptor, content);
    if (close(descriptor) != 0 && error == 0) {
        error = errno;
    }
    if (error == 0 && rename(aside.c_str(), name.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        unlink(aside.c_str());
        throw std::system_error(error, std::generic_category(), name);
    }
}

void TextFile::remove() const {
    unlink(name.c_str());
}

} // namespace monitor
