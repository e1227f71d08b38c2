#include "calls.h"

#include "finish.h"

int requestAdapters() {
    return finish(KelvarisSDK_GetAdapters(sdk, nullptr, nullptr), printAdaptersResult);
}

int setAdapterPriority(char const* adapterID, KelvarisSDK_ConnectionPriority priority) {
    return finish(KelvarisSDK_SetConnectionPriorities(sdk, adapterID, priority, nullptr, nullptr),
                  printAdaptersResult);
}

int setAdapterRateLimit(char const* adapterID, long long bitsPerSecond) {
    return finish(KelvarisSDK_SetConnectionRateLimit(sdk, adapterID, bitsPerSecond, nullptr, nullptr),
                  printAdaptersResult);
}

int resetConnectionRateLimit(char const* adapterID) {
    return finish(KelvarisSDK_ResetConnectionRateLimit(sdk, adapterID, nullptr, nullptr),
                  printAdaptersResult);
}

int setAdapterMonthlyDataLimit(char const* adapterID, long long bytes, long long resetDay) {
    return finish(KelvarisSDK_SetAdapterMonthlyDataLimit(sdk, adapterID, bytes, resetDay, nullptr, nullptr),
                  printAdaptersResult);
}

int disableAdapterMonthlyDataLimit(char const* adapterID) {
    return finish(KelvarisSDK_DisableAdapterMonthlyDataLimit(sdk, adapterID, nullptr, nullptr),
                  printAdaptersResult);
}

int setAdapterDailyDataLimit(char const* adapterID, long long bytes) {
    return finish(KelvarisSDK_SetAdapterDailyDataLimit(sdk, adapterID, bytes, nullptr, nullptr),
                  printAdaptersResult);
}

int disableAdapterDailyDataLimit(char const* adapterID) {
    return finish(KelvarisSDK_DisableAdapterDailyDataLimit(sdk, adapterID, nullptr, nullptr),
                  printAdaptersResult);
}

int addAdapterDailyDataLimitBoost(char const* adapterID, long long bytes) {
    return finish(KelvarisSDK_AddAdapterDailyDataLimitBoost(sdk, adapterID, bytes, nullptr, nullptr),
                  printAdaptersResult);
}

int setAdapterOverlimitRatelimit(char const* adapterID, long long bitsPerSecond) {
    return finish(KelvarisSDK_SetAdapterOverlimitRateLimit(sdk, adapterID, bitsPerSecond, nullptr, nullptr),
                  printAdaptersResult);
}

int resetAdapterUsage(char const* adapterID) {
    return finish(KelvarisSDK_ResetAdapterUsage(sdk, adapterID, nullptr, nullptr), printAdaptersResult);
}
