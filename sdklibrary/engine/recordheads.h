// A failure is told by the head of its record.

#pragma once

#include <kelvarissdk/types.h>

namespace kelvarissdk {

// Fills the head of a record for a failure of the library itself.
void setSdkError(KelvarisSDK_BaseResult* result);
// Each fills the head of a record with an error type and that type's own text.
void noWebsocketImplementation(KelvarisSDK_BaseResult* result);
void invalidArgument(KelvarisSDK_BaseResult* result);
void callbackRequired(KelvarisSDK_BaseResult* result);
void synchronousCalledFromAsynchronousCallback(KelvarisSDK_BaseResult* result);
// Does the same for what an asynchronous call returns at once, but `error` is false.
void asyncMode(KelvarisSDK_BaseResult* result);
// Reason 1 is the server's lock and 2 the account's; any other leaves the record as it is.
void settingLocked(KelvarisSDK_BaseResult* result, int reason);

} // namespace kelvarissdk
