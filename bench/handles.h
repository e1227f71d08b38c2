// What the measurements inside one process share: clocks, handles, reads.

#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <kelvarissdk/csdkinterface.h>
#include <memory>
#include <stdexcept>
#include <string>

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

inline double cpuSeconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

inline long residentKiB() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmRSS:") {
    }
    long size = 0;
    status >> size;
    return size;
}

inline std::uint16_t portFrom(char const* variable) {
    char const* const text = std::getenv(variable);
    if (text == nullptr) {
        throw std::runtime_error(std::string(variable) + " isn't set");
    }
    return static_cast<std::uint16_t>(std::atoi(text));
}

struct Destroyer {
    void operator()(KelvarisSDK_Handle* handle) const {
        KelvarisSDK_Destroy(handle);
    }
};
using Handle = std::unique_ptr<KelvarisSDK_Handle, Destroyer>;

inline Handle makeHandle(std::uint16_t port, std::string const& appName = "bench") {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    appName.copy(settings.appName, sizeof settings.appName - 1);
    settings.port = port;
    return Handle(KelvarisSDK_CreateWithSettings(settings));
}

template <class T>
using Getter = T (*)(KelvarisSDK_Handle* handle, bool (*callback)(T, void*), void* userData);

// A synchronous read; false when it failed.
using Read = bool (*)(KelvarisSDK_Handle* handle);

template <auto get> bool read(KelvarisSDK_Handle* handle) {
    return !get(handle, nullptr, nullptr).base.error;
}

// Reads that await different reports, so each report ends one call.
inline constexpr std::array<Read, 6> reads{
    read<KelvarisSDK_GetState>,
    read<KelvarisSDK_GetVersion>,
    read<KelvarisSDK_GetSettings>,
    read<KelvarisSDK_GetAdapters>,
    read<KelvarisSDK_GetFirewallSettings>,
    read<KelvarisSDK_GetDirectorySettings>,
};

inline void mustSucceed(bool success, char const* what) {
    if (!success) {
        throw std::runtime_error(what);
    }
}

inline Handle linkedHandle() {
    Handle handle = makeHandle(portFrom("SIMULATOR_PORT"));
    for (Read const read : reads) {
        mustSucceed(read(handle.get()), "a read of the simulator failed");
    }
    return handle;
}
