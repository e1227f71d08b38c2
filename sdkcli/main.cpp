// A run takes the options, makes the library object, runs one action, destroys the object and ends with its
// status.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <malloc.h>
#include <system_error>
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

int runAction(int argc, char* argv[]) {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    copyWord(settings.appName, "Kelvaris");
    takeOptions(argc, argv, settings);

    try {
        sdk = KelvarisSDK_CreateWithSettings(settings);
    } catch (std::system_error const& failure) {
        std::fprintf(stderr, "%s: %s\n", binName, failure.what());
        return 1;
    }
    int const status = processArgs(argc, argv);
    KelvarisSDK_Destroy(sdk);
    sdk = nullptr;
    return status;
}

} // namespace

int main(int argc, char* argv[]) {
    shareOneArena();
    occupyStandardDescriptors();
    setBinName(argc > 0 ? argv[0] : "");

    int status = 0;
    if (argc < 2 || isOption(argv[1], "-h", "--help")) {
        showUsage(0);
    } else {
        status = runAction(argc, argv);
    }

    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fprintf(stderr, "%s: can't write to standard output\n", binName);
        return 1;
    }
    return status;
}
