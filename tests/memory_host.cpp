// A host whose memory runs out. Prints what comes of making a handle and of one call, and then, with memory again, of
// another call and of the handle's end. Usage: PORT CALL [async]

#include "support/calls.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <semaphore.h>
#include <system_error>
#include <type_traits>
#include <unistd.h>

namespace {

// The next free descriptor, which tells whether one was left open.
int nextDescriptor() {
    int const next = dup(STDIN_FILENO);
    close(next);
    return next;
}

// Prints a sum of what doesn't differ from one report to the next.
template <class T> void print(char const* what, T result) {
    result.base.callbackId = 0;
    if constexpr (std::is_same_v<T, KelvarisSDK_AdaptersResult>) {
        for (auto& adapter : result.adapters) {
            adapter.dataUsage.usage = adapter.dataUsage.usageDaily = 0;
        }
    }
    unsigned long long sum = 0;
#if __has_builtin(__builtin_clear_padding) // where it is missing, what stands between the fields is anything
    __builtin_clear_padding(&result);
    for (std::size_t i = 0; i < sizeof result; ++i) {
        sum = sum * 31 + reinterpret_cast<unsigned char const*>(&result)[i];
    }
#endif
    std::printf("%s %s %d %llx\n", what, result.base.error ? "error" : "result", result.base.errorCode, sum);
}

sem_t called;

template <class T> bool take(T result, void* seen) {
    *static_cast<T*>(seen) = result;
    sem_post(&called);
    return false;
}

template <class T> T seen;

struct Arguments {
    bool async;
    char domains[2][50] = {"b.x", "c.x"};

    template <class Result, class T> T give() {
        if constexpr (std::is_same_v<T, bool (*)(Result, void*)>) {
            return async ? take<Result> : nullptr;
        } else if constexpr (std::is_same_v<T, void*>) {
            return &seen<Result>;
        } else if constexpr (std::is_same_v<T, char(*)[50]>) {
            return domains;
        } else if constexpr (std::is_same_v<T, char const*>) {
            return "config";
        } else if constexpr (std::is_pointer_v<T>) {
            return nullptr;
        } else {
            return static_cast<T>(std::is_same_v<T, unsigned short> ? 2 : 1);
        }
    }

    template <class Result> void see(Result const& returned) const {
        while (async && !returned.base.error && sem_wait(&called) != 0) {
        }
        print("record", async && !returned.base.error ? seen<Result> : returned);
    }
};

} // namespace

int main(int argc, char* argv[]) {
    int const free = nextDescriptor();
    sem_init(&called, 0, 0);
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    settings.port = static_cast<unsigned short>(std::atoi(argv[1]));
    KelvarisSDK_Handle* sdk = nullptr;
    try {
        sdk = KelvarisSDK_CreateWithSettings(settings);
    } catch (std::system_error const& failure) {
        std::printf("no thread, %d\n", failure.code().value());
        return 0;
    }
    std::printf("%s\n", sdk != nullptr ? "handle" : "no handle");
    Arguments arguments{.async = argc > 3};
    for (auto const& call : harness::callsWith<Arguments>) {
        if (call.name == argv[2]) {
            call.start(sdk, arguments);
        }
    }
    if (void* const failNothingMore = dlsym(RTLD_DEFAULT, "kelvarisFailNothingMore")) {
        reinterpret_cast<void (*)()>(failNothingMore)();
    }
    // On a faster clock a time-out comes in a moment, and may be the processor's.
    KelvarisSDK_StateResult then = KelvarisSDK_GetState(sdk, nullptr, nullptr);
    for (int i = 0; i < 5 && then.base.errorCode == KelvarisSDK_ErrorType_TIMEOUT; ++i) {
        then = KelvarisSDK_GetState(sdk, nullptr, nullptr);
    }
    print("then", then);
    KelvarisSDK_Destroy(sdk);
    std::printf("%d left, %s\n", nextDescriptor() - free,
                sem_trywait(&called) == 0 ? "called once more" : "no call");
    return 0;
}
