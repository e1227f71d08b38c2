// The client end of a WebSocket connection (RFC 6455) over plain TCP: upgrade, frames, whole messages.
//
// Nothing here starts a thread or takes a lock. Only from_url(), poll() and flush() touch the socket: the
// sending operations queue, dispatch() takes messages out of what poll() has read. All of them also work,
// without any effect on the socket, when the connection has ended.

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace easywsclient {

// Receives messages as text.
class Callback_Imp {
public:
    virtual ~Callback_Imp() = default;
    virtual void operator()(std::string const& message) = 0;
};

// Receives messages as bytes.
class BytesCallback_Imp {
public:
    virtual ~BytesCallback_Imp() = default;
    virtual void operator()(std::vector<unsigned char> const& message) = 0;
};

// One connection. An object may be used from one thread at a time; from_url() from several at once. Memory that runs
// out while bytes are received or parsed ends the connection; everywhere else it surfaces as the standard exception.
class WebSocket {
public:
    // Below CONNECTING the connection is ending or has ended. CONNECTING is never reported: an object is born
    // OPEN.
    enum readyStateValues : std::uint32_t { CLOSING, CLOSED, CONNECTING, OPEN };

    // Connects to a URL "ws://HOST[:PORT][/PATH]" of at most 127 bytes and upgrades the connection, with an
    // Origin line (at most 199 bytes) unless that is empty. Blocks until the peer has answered, without a
    // time limit. Returns an OPEN object, which the caller deletes, or null on any failure, without a
    // message.
    static WebSocket* from_url(std::string const& url, std::string const& origin = "");

    // Closes the descriptor at once; what is still queued is dropped, a close frame too.
    virtual ~WebSocket() = default;

    // Waits until the socket has something to read, can take queued bytes or the watched descriptor is
    // readable, for at most `timeout` milliseconds (0: not at all, negative: without limit); a signal ends
    // the wait as well. Then reads what has arrived (some 256 KiB at most, the rest makes the next call
    // return at once) and sends what is queued, as far as neither blocks. The state becomes CLOSED when the
    // peer has ended the connection, when an error broke it, or when CLOSING has sent its last byte. In
    // CLOSED a positive time-out is slept, which the watched descriptor ends too; a negative one returns at
    // once.
    virtual void poll(int timeout) = 0;

    // Queue one message: text, binary, an empty ping. Dropped silently in CLOSING and CLOSED.
    virtual void send(std::string const& message) = 0;
    virtual void sendBinary(std::string const& message) = 0;
    virtual void sendBinary(std::vector<unsigned char> const& message) = 0;
    virtual void sendPing() = 0;

    // Queues a close frame and enters CLOSING; later calls of poll() send what is queued and then close the
    // socket, without waiting for the peer's close frame. No effect in CLOSING and CLOSED.
    virtual void close() = 0;

    virtual readyStateValues getReadyState() const = 0;

    // Hand every complete message to the callback, in order, and answer pings. Of answers that the peer doesn't
    // take, 64 KiB wait; beyond that the latest alone is kept. A close frame from the peer
    // acts as close(), so does an unknown frame; one that can't be accepted ends all parsing. The callback
    // may use every operation but must not delete the object. An exception from it passes through; its
    // message counts as delivered, and the next call goes on with the one behind it.
    virtual void _dispatch(Callback_Imp& callable) = 0;
    virtual void _dispatchBinary(BytesCallback_Imp& callable) = 0;

    // Sends what is queued, as far as that doesn't block.
    virtual void flush() = 0;

    // poll() shall also end its wait when this descriptor (-1: none) is readable. It isn't read, so it ends
    // every wait until the caller has emptied it; the caller keeps it open for as long as it is watched.
    // `waiting`, unless it is null, is true as long as a wait lasts, during which the object doesn't change.
    virtual void watch(int descriptor, std::atomic<bool>* waiting = nullptr) = 0;

    // Closes the descriptor and does nothing else: for the copy of an object in a forked process.
    virtual void closeDescriptor() = 0;

    // Returns the bytes of framed messages that the kernel hasn't taken yet, in CLOSED those that never left.
    virtual std::size_t unsentBytes() const = 0;

    // Does what _dispatch() does, with any callable that takes a std::string const&.
    template <typename Callable> void dispatch(Callable callable) {
        class Wrapper : public Callback_Imp {
        public:
            explicit Wrapper(Callable& wrapped) : callable(wrapped) {}
            void operator()(std::string const& message) override {
                callable(message);
            }

        private:
            Callable& callable;
        };
        Wrapper wrapper(callable);
        _dispatch(wrapper);
    }
};

} // namespace easywsclient
