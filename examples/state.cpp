// Prints the session's state and each change of it, until Ctrl-C or so many states. The daemon's port may be
// given.
//
//     c++ -std=c++17 state.cpp -lkelvarissdk -o state
//     ./state [PORT [COUNT]]

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <semaphore.h>

#include <kelvarissdk/csdkinterface.h>

using Handle = std::unique_ptr<KelvarisSDK_Handle, decltype(&KelvarisSDK_Destroy)>;

struct Listener {
    unsigned long left; // 0: no end
    bool failed = false;
};

static sem_t ended; // a semaphore may be posted by a signal handler

// Runs on the library's thread: prints and returns, and waits for nothing.
static bool showState(KelvarisSDK_StateResult result, void* userData) {
    auto* listener = static_cast<Listener*>(userData);
    listener->failed = result.base.error;
    if (listener->failed) { // the message has no terminator when it fills its field
        std::fprintf(stderr, "%.*s\n", int{sizeof(result.base.errorMessage)}, result.base.errorMessage);
    } else {
        std::puts(KelvarisSDK_State_toString(result.state));
        std::fflush(stdout);
    }
    bool const last = listener->failed || --listener->left == 0;
    if (last) {
        sem_post(&ended);
    }
    return !last; // true keeps the subscription
}

int main(int argc, char* argv[]) {
    sem_init(&ended, 0, 0);
    std::signal(SIGINT, [](int) { sem_post(&ended); });

    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    if (argc > 1) {
        settings.port = static_cast<uint16_t>(std::atoi(argv[1]));
    }
    Listener listener{argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0};
    Handle sdk(KelvarisSDK_CreateWithSettings(settings), KelvarisSDK_Destroy);
    KelvarisSDK_GetState(sdk.get(), showState, &listener);
    while (sem_wait(&ended) != 0) { // interrupted by a signal that isn't ours
    }
    sdk.reset(); // no callback runs behind this
    return listener.failed ? 1 : 0;
}
