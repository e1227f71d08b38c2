#include "easywsclient.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <span>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

#include "easywsframes.h"
#include "easywssocket.h"
#include "easywsupgrade.h"
#include "wipingallocator.h"

// The buffers. Received bytes stand in rxBuffer between two offsets: taking bytes out moves the first, a read
// moves the second, and before each round of reads what is left moves to the front, once. The payload of a
// data frame goes on into partialMessage as it comes, while it is in the processor's cache; the callback is
// given that string. So rxBuffer stays small, however large a frame is, and no buffer grows by the length
// that a frame only claims. Outgoing frames are appended to txBuffer and leave it by an offset as well.
// Neither direction moves memory per frame.

namespace easywsclient {
namespace {

constexpr std::size_t maxBytesPerPoll = std::size_t{256} * 1024; // a flood can't keep poll() from returning
constexpr std::size_t maxUnsentPongs = std::size_t{64} * 1024;   // in bytes

class _RealWebSocket final : public WebSocket {
public:
    _RealWebSocket(Descriptor socket, ReceiveBuffer received, bool useMask)
        : rxBuffer(std::move(received)),
          socketDescriptor(std::move(socket)),
          maskFrames(useMask),
          arrivedWithUpgrade(rxBuffer.size() > 0) {}

    void poll(int timeout) override {
        if (readyState == CLOSED) {
            if (timeout > 0) {
                wait(timeout);
            }
            return;
        }
        // Frames that came with the upgrade must not wait for others to follow them.
        bool const mayWait = !std::exchange(arrivedWithUpgrade, false);
        short const events = mayWait && timeout != 0 ? wait(timeout) : assumedEvents;
        if ((events & ~POLLOUT) != 0) {
            endWithoutMemory([&] { receive((events & ~(POLLIN | POLLOUT)) != 0); });
        }
        if (readyState != CLOSED) {
            transmit();
        }
        if (readyState == CLOSING && unsentBytes() == 0) {
            end();
        }
    }

    void flush() override {
        if (readyState != CLOSED) {
            transmit();
        }
    }

    void send(std::string const& message) override {
        sendData(opcode_type::text, bytesOf(message));
    }

    void sendBinary(std::string const& message) override {
        sendData(opcode_type::binary, bytesOf(message));
    }

    void sendBinary(std::vector<unsigned char> const& message) override {
        sendData(opcode_type::binary, message);
    }

    void sendPing() override {
        sendData(opcode_type::ping, {});
    }

    void close() override {
        if (readyState < CONNECTING) {
            return;
        }
        readyState = CLOSING;
        static constexpr std::uint8_t closeFrame[] = {0x88, 0x80, 0x00, 0x00, 0x00, 0x00};
        txBuffer.insert(txBuffer.end(), std::begin(closeFrame), std::end(closeFrame));
    }

    readyStateValues getReadyState() const override {
        return readyState;
    }

    void _dispatchBinary(BytesCallback_Imp& callable) override {
        class CallbackAdapter : public Callback_Imp {
        public:
            explicit CallbackAdapter(BytesCallback_Imp& wrapped) : callable(wrapped) {}
            void operator()(std::string const& message) override {
                callable({message.begin(), message.end()});
            }

        private:
            BytesCallback_Imp& callable;
        };
        CallbackAdapter adapter(callable);
        _dispatch(adapter);
    }

    void _dispatch(Callback_Imp& callable) override {
        for (bool complete = true; complete;) {
            complete = false;
            endWithoutMemory([&] { complete = takeMessage(); });
            if (complete) {
                deliver(callable);
            }
        }
        rxBuffer.releaseLargeStorage();
    }

    void watch(int descriptor, std::atomic<bool>* waiting) override {
        watched = descriptor;
        isWaiting = waiting;
    }

    void closeDescriptor() override {
        socketDescriptor.close();
    }

    std::size_t unsentBytes() const override {
        return txBuffer.size() - txSent;
    }

private:
    // A socket that nobody has waited for is assumed to be readable and ended, so that it is read until it is dry.
    static constexpr short assumedEvents = POLLIN | POLLRDHUP;

    // Returns what the wait has found out about the socket. A closed one is left out by its descriptor, -1.
    short wait(int timeout) const {
        auto const requested = static_cast<short>(assumedEvents | (unsentBytes() > 0 ? POLLOUT : 0));
        pollfd descriptors[] = {{socketDescriptor.get(), requested, 0}, {watched, POLLIN, 0}};
        setWaiting(true);
        int const ready = ::poll(descriptors, std::size(descriptors), timeout);
        setWaiting(false);
        return ready < 0 ? assumedEvents : descriptors[0].revents;
    }

    void setWaiting(bool waiting) const {
        if (isWaiting != nullptr) {
            *isWaiting = waiting;
        }
    }

    // Ends the connection when a step finds no memory: what was received is lost then. No callback runs in a step.
    template <class Step> void endWithoutMemory(Step step) {
        try {
            step();
        } catch (std::bad_alloc const&) {
            rxFailed = true;
            rxBuffer = ReceiveBuffer();
            dataFrame.reset();
            partialMessage = std::string();
            end();
        }
    }

    // A read that doesn't fill the storage has emptied the socket. When the peer may have ended the connection, reading
    // goes on behind that, so that the state shows it at once.
    void receive(bool untilDry) {
        if (rxFailed) {
            rxBuffer.clear();
        }
        rxBuffer.compact();
        std::size_t const maxSize = rxBuffer.size() + maxBytesPerPoll;
        while (rxBuffer.size() < maxSize) {
            ssize_t const result = rxBuffer.read(socketDescriptor.get());
            if (result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
                return;
            }
            if (result <= 0) {
                end();
                return;
            }
            if (!untilDry && !rxBuffer.isFull()) {
                return;
            }
        }
    }

    void transmit() {
        while (unsentBytes() > 0) {
            ssize_t const result = sendQuietly(socketDescriptor.get(), std::span(txBuffer).subspan(txSent));
            if (result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
                return;
            }
            if (result <= 0) {
                end();
                return;
            }
            txSent += static_cast<std::size_t>(result);
        }
        removeSent();
        pongs.clear();
        pongBytes = 0;
        if (txBuffer.capacity() > retainedCapacity) {
            txBuffer.shrink_to_fit();
        }
    }

    void end() {
        socketDescriptor.close();
        readyState = CLOSED;
    }

    void sendData(opcode_type opcode, std::span<std::uint8_t const> payload) {
        if (readyState < CONNECTING) {
            return;
        }
        if (txSent > txBuffer.size() / 2) {
            removeSent();
        }
        std::size_t const extended = payload.size() < 126 ? 0 : payload.size() < 65536 ? 2 : 8;
        std::size_t const shortLength = extended == 0 ? payload.size() : extended == 2 ? 126 : 127;
        std::size_t const headerSize = 2 + extended + (maskFrames ? masking_key.size() : 0);
        // The storage for all of it comes first: memory that runs out leaves no half frame behind.
        std::size_t const start = txBuffer.size();
        txBuffer.resize(start + headerSize + payload.size());
        auto out = txBuffer.begin() + static_cast<std::ptrdiff_t>(start);
        *out++ = static_cast<std::uint8_t>(0x80U | static_cast<unsigned>(opcode));
        *out++ = static_cast<std::uint8_t>((maskFrames ? 0x80U : 0U) | shortLength);
        for (std::size_t byte = extended; byte-- > 0;) {
            *out++ = static_cast<std::uint8_t>(payload.size() >> (8 * byte));
        }
        if (maskFrames) {
            out = std::copy(masking_key.begin(), masking_key.end(), out);
        }
        std::copy(payload.begin(), payload.end(), out);
        if (maskFrames) {
            applyMask(std::span(txBuffer).last(payload.size()), masking_key);
        }
    }

    // Requests may hold passwords, so nothing of them stays in the storage.
    void removeSent() {
        if (txSent == 0) {
            return;
        }
        std::copy(txBuffer.begin() + static_cast<std::ptrdiff_t>(txSent), txBuffer.end(), txBuffer.begin());
        std::size_t const rest = unsentBytes();
        explicit_bzero(txBuffer.data() + rest, txSent);
        txBuffer.resize(rest);
        txRemoved += std::exchange(txSent, 0);
    }

    // A peer that pings and doesn't read is owed the answer to its latest ping only (RFC 6455, 5.5.3).
    void sendPong(std::span<std::uint8_t const> payload) {
        std::size_t const before = unsentBytes();
        sendData(opcode_type::pong, payload);
        std::uint64_t const end = txRemoved + txBuffer.size();
        pongs.push_back({end - (unsentBytes() - before), end});
        pongBytes += pongs.back().end - pongs.back().begin;
        if (pongBytes > maxUnsentPongs) {
            forgetSentPongs();
        }
        if (pongBytes > maxUnsentPongs) {
            keepLatestPong();
        }
    }

    // One that has begun to leave has to go on.
    void forgetSentPongs() {
        std::erase_if(pongs, [this](Range const& pong) { return pong.begin < txRemoved + txSent; });
        pongBytes = 0;
        for (Range const& pong : pongs) {
            pongBytes += pong.end - pong.begin;
        }
    }

    // Takes all pongs but the last one, with which the buffer ends, out of it.
    void keepLatestPong() {
        auto const at = [this](std::uint64_t position) {
            return txBuffer.begin() + static_cast<std::ptrdiff_t>(position - txRemoved);
        };
        auto kept = at(pongs.front().begin);
        for (std::size_t i = 0; i + 1 < pongs.size(); ++i) {
            kept = std::copy(at(pongs[i].end), at(pongs[i + 1].begin), kept);
        }
        kept = std::copy(at(pongs.back().begin), txBuffer.end(), kept);
        std::fill(kept, txBuffer.end(), std::uint8_t{0});
        txBuffer.erase(kept, txBuffer.end());
        pongBytes = pongs.back().end - pongs.back().begin;
        std::uint64_t const end = txRemoved + txBuffer.size();
        pongs = {{end - pongBytes, end}};
    }

    // Handles control frames up to the next data frame and consumes that one's header. False when it isn't there yet.
    bool takeHeader() {
        while (std::optional<wsheader_type> const header = parseHeader(rxBuffer.bytes())) {
            if (header->length >> 63 != 0) {
                rxFailed = true;
                std::fputs("ERROR: Frame has invalid frame length. Closing.\n", stderr);
                close();
                return false;
            }
            if (header->opcode <= opcode_type::binary) {
                rxBuffer.consume(header->headerSize);
                dataFrame = header;
                return true;
            }
            if (rxBuffer.size() - header->headerSize < header->length) {
                return false;
            }
            takeControlFrame(*header);
        }
        return false;
    }

    void takeControlFrame(wsheader_type const& header) {
        std::span<std::uint8_t> const payload =
            rxBuffer.bytes().subspan(header.headerSize, static_cast<std::size_t>(header.length));
        rxBuffer.consume(header.headerSize + payload.size());
        if (header.opcode == opcode_type::ping) {
            if (header.mask) {
                applyMask(payload, header.key);
            }
            sendPong(payload);
        } else if (header.opcode != opcode_type::pong) {
            close(); // a frame of an unknown kind ends the connection like a close frame
        }
    }

    // True: partialMessage is a whole message. False: its rest has to come first.
    bool takeMessage() {
        while (!rxFailed && (dataFrame || takeHeader())) {
            appendPayload(
                static_cast<std::size_t>(std::min<std::uint64_t>(dataFrame->length, rxBuffer.size())));
            if (dataFrame->length > 0) {
                return false;
            }
            bool const isLast = dataFrame->fin;
            dataFrame.reset();
            if (isLast) {
                return true;
            }
        }
        return false;
    }

    void appendPayload(std::size_t count) {
        std::span<std::uint8_t> const payload = rxBuffer.bytes().first(count);
        if (dataFrame->mask) {
            applyMask(payload, dataFrame->key);
            MaskKey const key = dataFrame->key; // the rest of the payload begins at another byte of the key
            for (std::size_t i = 0; i < key.size(); ++i) {
                dataFrame->key[i] = key[(i + count) & 3];
            }
        }
        partialMessage.append(reinterpret_cast<char const*>(payload.data()), count);
        rxBuffer.consume(count);
        dataFrame->length -= count;
    }

    // The message is out of the object's state before the callback runs, which may use the object or throw.
    // Its memory serves the next one, unless it was large.
    void deliver(Callback_Imp& callable) {
        std::string message = std::exchange(partialMessage, std::string());
        callable(message);
        if (message.capacity() <= retainedCapacity && partialMessage.empty()) {
            message.clear();
            partialMessage = std::move(message);
        }
    }

    // A frame's place in all that was ever queued.
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
    };

    ReceiveBuffer rxBuffer;
    std::vector<std::uint8_t, WipingAllocator<std::uint8_t>> txBuffer;
    std::size_t txSent = 0;                 // of txBuffer, from its front
    std::uint64_t txRemoved = 0;            // from its front, of all that was ever in it
    std::vector<Range> pongs;               // in txBuffer, since it was empty last
    std::uint64_t pongBytes = 0;            // of these
    std::optional<wsheader_type> dataFrame; // the one being taken in: `length` is what is still to come
    std::string partialMessage;
    Descriptor socketDescriptor;
    readyStateValues readyState = OPEN;
    bool const maskFrames;
    bool rxFailed = false; // a frame could not be accepted, so where the next one starts is unknown
    bool arrivedWithUpgrade;
    int watched = -1;
    std::atomic<bool>* isWaiting = nullptr;
};

WebSocket* from_url(std::string const& url, std::string const& origin, bool useMask) {
    std::optional<Upgraded> connection = upgrade(url, origin);
    if (!connection) {
        return nullptr;
    }
    return new _RealWebSocket(std::move(connection->socket), std::move(connection->received), useMask);
}

} // namespace

WebSocket* WebSocket::from_url(std::string const& url, std::string const& origin) {
    return easywsclient::from_url(url, origin, true);
}

} // namespace easywsclient
