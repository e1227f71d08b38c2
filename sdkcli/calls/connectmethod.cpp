#include "calls.h"

#include "finish.h"

int requestServerSettings() {
    return finish(KelvarisSDK_GetServerSettings(sdk, nullptr, nullptr), printServerSettingsResult);
}

int setConnectMethodAuto(KelvarisSDK_AutoConnectMethod method) {
    return finish(KelvarisSDK_SetConnectMethodAuto(sdk, method, nullptr, nullptr), printServerSettingsResult);
}

int setConnectMethodCountry(char const* country) {
    return finish(KelvarisSDK_SetConnectMethodCountry(sdk, country, nullptr, nullptr),
                  printServerSettingsResult);
}

int setConnectMethodCity(char const* country, char const* city) {
    return finish(KelvarisSDK_SetConnectMethodCity(sdk, country, city, nullptr, nullptr),
                  printServerSettingsResult);
}

int setConnectMethodServer(char const* country, char const* city, int num) {
    return finish(KelvarisSDK_SetConnectMethodServer(sdk, country, city, num, nullptr, nullptr),
                  printServerSettingsResult);
}
