#include "calls.h"

#include "finish.h"

KelvarisSDK_Handle* sdk = nullptr;

int requestState() {
    return finish(KelvarisSDK_GetState(sdk, nullptr, nullptr), printStateResult);
}

int requestVersion() {
    return finish(KelvarisSDK_GetVersion(sdk, nullptr, nullptr), printVersionResult);
}

int requestExit() {
    KelvarisSDK_BaseResult const result = KelvarisSDK_DaemonExit(sdk);
    if (result.error) {
        printError(result);
        return 1;
    }
    return 0;
}
