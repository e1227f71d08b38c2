#pragma once

#include <cstdint>
#include <pthread.h>

namespace harness {

// While it lives no thread of this process can be started: none finds room for its stack.
class NoThreads {
public:
    NoThreads() {
        pthread_getattr_default_np(&before);
        pthread_attr_t huge = before;
        pthread_attr_setstacksize(&huge, SIZE_MAX / 4 * 3);
        pthread_setattr_default_np(&huge);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&before);
    }
    NoThreads(NoThreads const&) = delete;
    NoThreads& operator=(NoThreads const&) = delete;

private:
    pthread_attr_t before;
};

} // namespace harness
