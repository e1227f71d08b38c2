// A host that shares its process with the library: it has a C++ runtime, a C++ locale and a jsoncpp of its own, and
// no threads when the library asks for one. Prints a line for each expectation that fails. Usage: PORT [comma|throw]

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <exception>
#include <json/json.h>
#include <kelvarissdk/csdkinterface.h>
#include <locale>
#include <pthread.h>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <unistd.h>

static bool noThreads = false;

// The library's threads are made by this function as well.
extern "C" int pthread_create(pthread_t* thread, pthread_attr_t const* attributes, void* (*body)(void*),
                              void* argument) {
    static auto const next = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return noThreads ? EAGAIN : next(thread, attributes, body, argument);
}

namespace {

int failures = 0;

void expect(bool holds, char const* what) {
    if (!holds) {
        std::printf("failed: %s\n", what);
        ++failures;
    }
}

struct DecimalComma : std::numpunct<char> {
    char do_decimal_point() const override {
        return ',';
    }
};

KelvarisSDK_Handle* create(unsigned short port) {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    settings.port = port;
    return KelvarisSDK_CreateWithSettings(settings);
}

void handleWithoutThread(unsigned short port) {
    noThreads = true;
    try {
        KelvarisSDK_Destroy(create(port));
        expect(false, "a handle without its thread");
    } catch (std::system_error const& failure) {
        expect(failure.code().value() == EAGAIN, "the code of the system error");
        expect(std::strstr(failure.what(), "thread constructor failed") != nullptr, "its text");
    }
    noThreads = false;
}

void statisticsWithoutThread(KelvarisSDK_Handle* sdk) {
    noThreads = true;
    KelvarisSDK_BaseResult const refused = KelvarisSDK_EnableStatUpdates(sdk, true, 0, nullptr);
    noThreads = false;
    expect(refused.error && refused.errorCode == 3840, "statistics without their thread");
    expect(!KelvarisSDK_GetState(sdk, nullptr, nullptr).base.error, "a call after that");
}

void speeds(KelvarisSDK_Handle* sdk) {
    for (double const speed : {1234.5, 1234.75}) {
        double const set = KelvarisSDK_SetOverflowThreshold(sdk, speed, nullptr, nullptr).overflowThreshold;
        expect(set == speed, "a speed as it was set");
    }
}

// The host reads and writes documents while the library reads and writes its own.
void bothAtWork(KelvarisSDK_Handle* sdk) {
    bool read = true;
    std::thread calls([&] {
        for (int i = 0; i < 200; ++i) {
            read = !KelvarisSDK_GetAdapters(sdk, nullptr, nullptr).base.error && read;
        }
    });
    bool intact = true;
    for (int i = 0; i < 2000; ++i) {
        Json::Value document;
        std::istringstream(R"({"names":["a","b"],"count":)" + std::to_string(i) + "}") >> document;
        document["names"].append(document["count"]);
        intact = Json::writeString(Json::StreamWriterBuilder(), document["names"][2]) == std::to_string(i) &&
                 intact;
    }
    calls.join();
    expect(read, "the library's reads");
    expect(intact, "the host's documents");
}

// The process ends by the host's own handler of exceptions that nobody catches.
void throwInCallback(unsigned short port) {
    std::set_terminate([] { std::_Exit(42); });
    auto const callback = [](KelvarisSDK_StateResult, void*) -> bool { throw 1; };
    KelvarisSDK_GetState(create(port), callback, nullptr);
    pause();
}

} // namespace

int main(int argc, char* argv[]) {
    auto const port = static_cast<unsigned short>(std::atoi(argv[1]));
    if (argc > 2 && std::strcmp(argv[2], "throw") == 0) {
        throwInCallback(port);
    }
    handleWithoutThread(port);
    KelvarisSDK_Handle* const sdk = create(port);
    statisticsWithoutThread(sdk);
    bothAtWork(sdk);
    if (argc > 2) {
        std::locale::global(std::locale(std::locale(), new DecimalComma));
    }
    speeds(sdk);
    KelvarisSDK_Destroy(sdk);
    return failures == 0 ? 0 : 1;
}
