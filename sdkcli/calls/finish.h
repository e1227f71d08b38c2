// Most actions end in the same way.

#pragma once

#include "jsonprinter.h"

// Prints why a call without a result has failed. Returns the run's status.
inline int finishSilently(KelvarisSDK_BaseResult const& result) {
    if (result.error) {
        printError(result);
    }
    return result.error ? 1 : 0;
}

// Prints the record, or why there is none. Returns the run's status.
template <class Result> int finish(Result const& result, void (*print)(Result const&)) {
    int const status = finishSilently(result.base);
    if (status == 0) {
        print(result);
    }
    return status;
}
