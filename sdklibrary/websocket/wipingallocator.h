// Memory that may hold a secret.

#pragma once

#include <cstddef>
#include <cstring>
#include <memory>

namespace easywsclient {

// Overwrites what it gives back.
template <class T> struct WipingAllocator : std::allocator<T> {
    template <class U> struct rebind { using other = WipingAllocator<U>; };

    void deallocate(T* memory, std::size_t count) {
        explicit_bzero(memory, count * sizeof(T));
        std::allocator<T>::deallocate(memory, count);
    }
};

} // namespace easywsclient
