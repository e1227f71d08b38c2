// A library with the C++ runtime inside gives the runtime's memory back when its host unloads it. That of GNU has such
// memory.

#include "kelvarissdk.h"

#ifdef __GLIBCXX__

// The runtime brings this function along and declares it in no header.
namespace __gnu_cxx {
void __freeres();
}

namespace {

// The runtime sets memory aside for exceptions that are thrown when no other is left, and never frees it. The
// end of the process comes here as well, where the threads of a handle may still need it.
[[gnu::destructor]] void freeExceptionMemory() {
    if (kelvarissdk::KelvarisSDK::instances == 0) {
        __gnu_cxx::__freeres();
    }
}

} // namespace

#endif
