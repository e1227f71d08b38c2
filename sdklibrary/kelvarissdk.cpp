#include "kelvarissdk.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>

#include "fields.h"
#include "websockets.h"

namespace kelvarissdk {

namespace {

constexpr std::chrono::milliseconds statsTick(250);
constexpr uint64_t statsRepeatMs = 45000;

} // namespace

KelvarisSDK::KelvarisSDK(KelvarisSDK_CreateSettings const& settings) {
    std::memcpy(appName, settings.appName, sizeof(appName));
    websocket = std::make_unique<WebsocketImpl>(textIn(settings, settings.address).c_str(), settings.port);
    std::string const name = textIn(appName, appName);
    if (!name.empty()) {
        setAppName(name.c_str());
    }
    statsRunnerActive = true;
    statsThread = startThread([this] { statsEnabledRunner(); });
}

KelvarisSDK::~KelvarisSDK() {
    {
        std::lock_guard const lock(statsLock);
        statsRunnerActive = false;
    }
    statsRunnerEnds.notify_all();
    // The stats thread no longer uses the link, so both threads can end at the same time.
    if (websocket) {
        websocket->end();
    }
    statsThread.join();
}

// The first tick that finds the subscription wanted repeats it; one that was ended and begun again in between is
// repeated when 45 seconds have passed since the last repeat.
void KelvarisSDK::statsEnabledRunner() {
    uint64_t lastRepeat = 0;
    std::unique_lock lock(statsLock);
    while (statsRunnerActive) {
        if (statsEnabled) {
            uint64_t const now = getTimeMillis();
            if (now - lastRepeat > statsRepeatMs) {
                enableStatUpdates(true, 0, nullptr);
                lastRepeat = now;
            }
        }
        statsRunnerEnds.wait_for(lock, statsTick, [this] { return !statsRunnerActive; });
    }
}

} // namespace kelvarissdk
