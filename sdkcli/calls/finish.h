// Most actions end in the same way.

#pragma once

#include "jsonprinter.h"

// Prints the record, or why there is none. Returns the run's status.
template <class Result> int finish(Result const& result, void (*print)(Result const&)) {
    if (result.base.error) {
        printError(result.base);
        return 1;
    }
    print(result);
    return 0;
}
