// A host whose memory runs out. Prints what comes of making a handle and of one call, and then, with memory again, of
// another call and of the handle's end. Usage: PORT "CALL [async]"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <kelvarissdk/csdkinterface.h>
#include <semaphore.h>
#include <string_view>
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

// What differs from one report to the next.
template <class T> void clearWhatChanges(T& result) {
    result.base.callbackId = 0;
    if constexpr (std::is_same_v<T, KelvarisSDK_AdaptersResult>) {
        for (auto& adapter : result.adapters) {
            adapter.dataUsage.usage = adapter.dataUsage.usageDaily = 0;
        }
    }
}

template <class T> void print(char const* what, T result) {
    clearWhatChanges(result);
    unsigned long long sum = 0;
    for (std::size_t i = 0; i < sizeof result; ++i) {
        sum = sum * 31 + reinterpret_cast<unsigned char const*>(&result)[i];
    }
    std::printf("%s %s %d %llx\n", what, result.base.error ? "error" : "result", result.base.errorCode, sum);
}

sem_t called;

template <class T> bool take(T result, void* seen) {
    *static_cast<T*>(seen) = result;
    sem_post(&called);
    return false;
}

template <class T, class... Parameters, class... Given>
void perform(bool async, T (*call)(KelvarisSDK_Handle*, Parameters...), KelvarisSDK_Handle* sdk,
             Given... given) {
    static T seen;
    T const returned = call(sdk, given..., async ? take<T> : nullptr, &seen);
    if (!async || returned.base.error) {
        print("record", returned);
        return;
    }
    while (sem_wait(&called) != 0) {
    }
    print("record", seen);
}

void perform(std::string_view call, bool async, KelvarisSDK_Handle* sdk) {
    static char domains[][50] = {"b.x", "c.x"};
    if (call == "state") {
        perform(async, KelvarisSDK_GetState, sdk);
    } else if (call == "directory") {
        perform(async, KelvarisSDK_GetDirectory, sdk);
    } else if (call == "jumbo") {
        perform(async, KelvarisSDK_SetJumboPackets, sdk, true);
    } else if (call == "adapters") {
        perform(async, KelvarisSDK_GetAdapters, sdk);
    } else if (call == "firewall") {
        perform(async, KelvarisSDK_SetFirewallDomains, sdk, static_cast<unsigned short>(2), domains);
    } else if (call == "disconnects") {
        perform(async, KelvarisSDK_GetLastDisconnectEvent, sdk);
    } else if (call == "safebrowsing") {
        perform(async, KelvarisSDK_InitSafeBrowsing, sdk, "config");
    }
}

} // namespace

int main(int, char* argv[]) {
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
    std::string_view const call = argv[2];
    perform(call.substr(0, call.find(' ')), call.ends_with(" async"), sdk);
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
