#include "kelvarissdk.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <system_error>

#include "fields.h"
#include "threads.h"
#include "websockets.h"

namespace kelvarissdk {

namespace {

constexpr uint64_t statsRepeatMs = 45001;

} // namespace

std::atomic<int> KelvarisSDK::instances = 0;

KelvarisSDK::KelvarisSDK(KelvarisSDK_CreateSettings const& settings) {
    std::memcpy(appName, settings.appName, sizeof(appName));
    websocket = std::make_unique<WebsocketImpl>(textIn(settings, settings.address).c_str(), settings.port);
    std::string const name = textIn(appName);
    if (!name.empty()) {
        setAppName(name.c_str());
    }
    ++instances;
}

KelvarisSDK::~KelvarisSDK() {
    {
        std::lock_guard const lock(statsLock);
        statsRunnerActive = false;
    }
    statsChanged.notify_all();
    // The stats thread no longer uses the link, so both threads can end at the same time.
    if (websocket) {
        websocket->end();
    }
    if (statsThread.joinable()) {
        statsThread.join();
    }
    --instances;
}

bool KelvarisSDK::isInherited() const {
    return websocket && websocket->isInherited();
}

// What the fork interrupted can't be freed. It stays within reach, so that nobody takes it for a leak.
void KelvarisSDK::destroyInherited(KelvarisSDK* sdk) {
    static std::atomic<KelvarisSDK*> kept = nullptr;
    if (sdk->websocket->forgetThread() && sdk->statsLock.try_lock()) {
        sdk->statsLock.unlock();
        ::new (&sdk->statsThread) std::thread;
        ::new (&sdk->statsChanged) std::condition_variable;
        delete sdk;
    } else {
        sdk->nextKept = kept.exchange(sdk);
    }
}

bool KelvarisSDK::startStatsThread() {
    if (statsThread.joinable()) {
        return true;
    }
    try {
        statsThread = startThread([this] { statsEnabledRunner(); });
        return true;
    } catch (std::system_error const&) {
        return false;
    }
}

// Repeats a subscription as soon as it is wanted, and then whenever the time has come. One that was ended and begun
// again in between is repeated when the time since the last repeat is over.
void KelvarisSDK::statsEnabledRunner() {
    std::optional<uint64_t> nextRepeat;
    std::unique_lock lock(statsLock);
    while (statsRunnerActive) {
        uint64_t const now = getTimeMillis();
        if (!statsEnabled) {
            statsChanged.wait(lock);
        } else if (nextRepeat && now < *nextRepeat) {
            statsChanged.wait_for(lock, std::chrono::milliseconds(*nextRepeat - now));
        } else {
            try {
                sendStatSubscription(true, 0, nullptr);
            } catch (std::exception const&) {
                // Without memory this repeat is left out, and the next one comes in its time.
            }
            nextRepeat = now + statsRepeatMs;
        }
    }
}

} // namespace kelvarissdk
