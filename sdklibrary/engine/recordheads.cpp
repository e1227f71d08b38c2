#include "recordheads.h"

#include <cstdint>

#include "fields.h"

namespace kelvarissdk {

namespace {

void setError(KelvarisSDK_BaseResult* result, KelvarisSDK_ErrorType type) {
    result->error = true;
    result->errorCode = static_cast<int32_t>(type);
    setText(result->errorMessage, KelvarisSDK_ErrorType_toString(type));
}

} // namespace

void setSdkError(KelvarisSDK_BaseResult* result) {
    setError(result, KelvarisSDK_ErrorType_SDK);
    setText(result->errorMessage, "Error from SDK");
}

void noWebsocketImplementation(KelvarisSDK_BaseResult* result) {
    setError(result, KelvarisSDK_ErrorType_SDK);
}

void invalidArgument(KelvarisSDK_BaseResult* result) {
    setError(result, KelvarisSDK_ErrorType_INVALID_ARGUMENT);
}

void callbackRequired(KelvarisSDK_BaseResult* result) {
    setError(result, KelvarisSDK_ErrorType_CALLBACK_REQUIRED);
}

void synchronousCalledFromAsynchronousCallback(KelvarisSDK_BaseResult* result) {
    setError(result, KelvarisSDK_ErrorType_SYNCHRONOUS_IN_CALLBACK);
}

void asyncMode(KelvarisSDK_BaseResult* result) {
    setError(result, KelvarisSDK_ErrorType_ASYNC_CALL);
    result->error = false;
}

void settingLocked(KelvarisSDK_BaseResult* result, int reason) {
    if (reason == 1) {
        setError(result, KelvarisSDK_ErrorType_LOCKED_BY_SERVER);
    } else if (reason == 2) {
        setError(result, KelvarisSDK_ErrorType_LOCKED_BY_ACCOUNT);
    }
}

} // namespace kelvarissdk
