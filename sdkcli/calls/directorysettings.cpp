#include "calls.h"

#include "finish.h"

int requestDirectory() {
    return finish(KelvarisSDK_GetDirectorySettings(sdk, nullptr, nullptr), printDirectorySettingsResult);
}

int setEsniEnabled(bool enabled) {
    return finish(KelvarisSDK_SetESNIEnabled(sdk, enabled, nullptr, nullptr), printDirectorySettingsResult);
}

int setDirectory(char const* domain) {
    return finish(KelvarisSDK_SetDirectoryDomain(sdk, domain, nullptr, nullptr),
                  printDirectorySettingsResult);
}

int resetDirectory() {
    return finish(KelvarisSDK_ResetDirectoryDomain(sdk, nullptr, nullptr), printDirectorySettingsResult);
}

int setGateway(char const* uri) {
    return finish(KelvarisSDK_SetDirectoryGatewayURI(sdk, uri, nullptr, nullptr),
                  printDirectorySettingsResult);
}

int resetGateway() {
    return finish(KelvarisSDK_ResetDirectoryGatewayURI(sdk, nullptr, nullptr), printDirectorySettingsResult);
}
