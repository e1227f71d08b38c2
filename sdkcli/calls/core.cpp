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
    return finishSilently(KelvarisSDK_DaemonExit(sdk));
}
