// A run takes the options, makes the library object, runs one action, destroys the object and ends with its
// status. Whatever it is that memory runs out for, the status is 1, and a line says so.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <exception>
#include <fcntl.h>
#include <malloc.h>
#include <new>
#include <system_error>
#include <typeinfo>
#include <unistd.h>

#include "arguments.h"
#include "calls.h"
#include "readers.h"

namespace {

// A descriptor closed by the caller would be given to the link to the daemon, and documents would go there.
// The stand-ins fail to write, as the closed descriptors would.
void occupyStandardDescriptors() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

// A run's threads hardly ever allocate at the same time; an arena for each would only be mapped and unmapped.
void shareOneArena() {
    mallopt(M_ARENA_MAX, 1);
}

void setBinName(char const* path) {
    char const* separator = std::strrchr(path, '/');
    if (separator == nullptr) {
        separator = std::strrchr(path, '\\');
    }
    std::strncpy(binName, separator == nullptr ? path : separator + 1, sizeof(binName) - 1);
}

bool isOption(char const* word, char const* brief, char const* full) {
    return equals(word, brief) || equals(word, full);
}

// The options stand in fixed places: "-i ADDRESS" first, "-p PORT" first or directly behind it. This moves
// the words of the action to the front.
void takeOptions(int& argc, char**& argv, KelvarisSDK_CreateSettings& settings) {
    if (argc == 2) {
        return;
    }
    if (isOption(argv[1], "-i", "--ip")) {
        copyWord(settings.address, argv[2]);
        bool const portMayFollow = argc >= 5;
        argc -= 2;
        argv += 2;
        if (!portMayFollow) {
            return;
        }
    }
    if (isOption(argv[1], "-p", "--port")) {
        settings.port = static_cast<uint16_t>(std::atoi(argv[2]));
        argc -= 2;
        argv += 2;
    }
}

// Several threads may run out of memory; one line is enough.
void reportLackOfMemory() {
    static constinit bool reported = false; // guarded by the lock of the stream
    flockfile(stderr);
    if (!reported) {
        reported = true;
        std::fprintf(stderr, "%s: out of memory\n", binName);
    }
    funlockfile(stderr);
}

std::terminate_handler endAsEver = nullptr; // the runtime's own, constant while other threads run

// An exception that finds no memory for itself ends here; another one that nobody catches ends the process as ever.
[[noreturn]] void endUncaught() {
    std::type_info const* const thrown = abi::__cxa_current_exception_type();
    if (thrown == nullptr || *thrown == typeid(std::bad_alloc)) {
        reportLackOfMemory();
        std::_Exit(1);
    }
    endAsEver();
    std::abort();
}

int runAction(int argc, char* argv[]) {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    copyWord(settings.appName, "Kelvaris");
    takeOptions(argc, argv, settings);

    sdk = KelvarisSDK_CreateWithSettings(settings);
    if (sdk == nullptr) {
        throw std::bad_alloc();
    }
    return processArgs(argc, argv);
}

int run(int argc, char* argv[]) {
    if (argc < 2 || isOption(argv[1], "-h", "--help")) {
        showUsage(0);
        return 0;
    }
    return runAction(argc, argv);
}

} // namespace

int main(int argc, char* argv[]) {
    shareOneArena();
    occupyStandardDescriptors();
    setBinName(argc > 0 ? argv[0] : "");
    endAsEver = std::set_terminate(endUncaught);

    // Apart from a thread that can't be started, an action throws only when memory runs out.
    int status = 1;
    try {
        status = run(argc, argv);
    } catch (std::system_error const& failure) {
        std::fprintf(stderr, "%s: %s\n", binName, failure.what());
    } catch (std::exception const&) {
        reportLackOfMemory();
    }
    KelvarisSDK_Destroy(sdk);
    sdk = nullptr;

    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fprintf(stderr, "%s: can't write to standard output\n", binName);
        return 1;
    }
    return status;
}
