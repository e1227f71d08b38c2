// The two halves of the WebSocket client share the descriptor, the bytes that have arrived, and how bytes are sent.

#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

namespace easywsclient {

constexpr std::size_t initialCapacity = std::size_t{16} * 1024;
constexpr std::size_t retainedCapacity = std::size_t{4} * 1024 * 1024; // an empty buffer above this is freed

inline std::span<std::uint8_t const> bytesOf(std::string const& text) {
    return {reinterpret_cast<std::uint8_t const*>(text.data()), text.size()};
}

// Owns a descriptor, so that it is closed exactly once.
class Descriptor {
public:
    explicit Descriptor(int owned = -1) : descriptor(owned) {}
    Descriptor(Descriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() {
        close();
    }

    int get() const {
        return descriptor;
    }

    void close() {
        if (descriptor >= 0) {
            ::close(std::exchange(descriptor, -1));
        }
    }

private:
    int descriptor;
};

// Holds the bytes that have arrived and aren't consumed yet, and the storage behind them.
class ReceiveBuffer {
public:
    std::size_t size() const {
        return end - begin;
    }

    std::span<std::uint8_t> bytes() {
        return {storage.data() + begin, size()};
    }

    void consume(std::size_t count) {
        begin += count;
    }

    void clear() {
        begin = end = 0;
    }

    void compact() {
        if (begin > 0) {
            std::memmove(storage.data(), storage.data() + begin, size());
            end -= std::exchange(begin, 0);
        }
    }

    void releaseLargeStorage() {
        if (size() == 0 && storage.size() > retainedCapacity) {
            *this = ReceiveBuffer();
        }
    }

    // Reads once into the free storage, which grows when little of it is left. The result is that of recv().
    ssize_t read(int descriptor) {
        if (storage.size() - end <= storage.size() / 4) {
            storage.resize(std::max(initialCapacity, 2 * storage.size()));
        }
        ssize_t result = 0;
        do {
            result = ::recv(descriptor, storage.data() + end, storage.size() - end, 0);
        } while (result < 0 && errno == EINTR);
        end += result > 0 ? static_cast<std::size_t>(result) : 0;
        return result;
    }

    bool isFull() const {
        return end == storage.size();
    }

private:
    std::vector<std::uint8_t> storage; // its size is what a read may use; only begin to end holds bytes
    std::size_t begin = 0;
    std::size_t end = 0;
};

inline ssize_t sendQuietly(int descriptor, std::span<std::uint8_t const> bytes) {
    ssize_t result = 0;
    do {
        result = ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    } while (result < 0 && errno == EINTR);
    return result;
}

} // namespace easywsclient
