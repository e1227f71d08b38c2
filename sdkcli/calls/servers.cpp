#include "calls.h"

#include "finish.h"

int requestServers() {
    return finish(KelvarisSDK_GetDirectory(sdk, nullptr, nullptr), printDirectoryResult);
}
