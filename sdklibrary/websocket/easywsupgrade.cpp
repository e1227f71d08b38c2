#include "easywsupgrade.h"

#include <array>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>

namespace easywsclient {

namespace {

struct Address {
    char host[128] = "";
    int port = 80;
    char path[128] = "";
};

// Tries the forms in this order. "%s" matches no empty path, so "ws://host:port/" fails the first form and is taken
// by the third, which ignores the slash.
std::optional<Address> parseUrl(std::string const& url) {
    if (url.size() >= sizeof Address::host) {
        return std::nullopt;
    }
    Address address;
    if (std::sscanf(url.c_str(), "ws://%127[^:/]:%d/%127s", address.host, &address.port, address.path) == 3) {
        return address;
    }
    address.port = 80;
    if (std::sscanf(url.c_str(), "ws://%127[^:/]/%127s", address.host, address.path) == 2 ||
        std::sscanf(url.c_str(), "ws://%127[^:/]:%d", address.host, &address.port) == 2 ||
        std::sscanf(url.c_str(), "ws://%127[^:/]", address.host) == 1) {
        return address;
    }
    return std::nullopt;
}

// A connect that a signal interrupts goes on in the kernel; its end shows as readiness to write.
bool connectBlocking(int descriptor, addrinfo const& target) {
    if (::connect(descriptor, target.ai_addr, target.ai_addrlen) == 0) {
        return true;
    }
    if (errno != EINTR) {
        return false;
    }
    pollfd pending{descriptor, POLLOUT, 0};
    while (::poll(&pending, 1, -1) < 0 && errno == EINTR) {
    }
    int error = 0;
    socklen_t size = sizeof error;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

Descriptor connectTo(Address const& address) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(address.host, std::to_string(address.port).c_str(), &hints, &found) != 0) {
        return Descriptor();
    }
    std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> const results(found, &::freeaddrinfo);
    for (addrinfo const* result = found; result != nullptr; result = result->ai_next) {
        Descriptor socket(
            ::socket(result->ai_family, result->ai_socktype | SOCK_CLOEXEC, result->ai_protocol));
        if (socket.get() >= 0 && connectBlocking(socket.get(), *result)) {
            return socket;
        }
    }
    return Descriptor();
}

// All lines leave in one segment. A failure isn't looked at, because it shows when the answer is read.
void sendUpgrade(int descriptor, Address const& address, std::string const& origin) {
    std::string request = std::string("GET /") + address.path + " HTTP/1.1\r\nHost: " + address.host;
    if (address.port != 80) {
        request += ':';
        request += std::to_string(address.port);
    }
    request += "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n";
    if (!origin.empty()) {
        request += std::string("Origin: ") + origin.c_str() + "\r\n";
    }
    request += "Sec-WebSocket-Key: QpV7dKz2RmYt4LsHn8XwBg==\r\n"
               "Sec-WebSocket-Version: 13\r\n"
               "Sec-WebSocket-Protocol: event-protocol\r\n"
               "\r\n";
    std::span<std::uint8_t const> rest = bytesOf(request);
    while (!rest.empty()) {
        ssize_t const result = sendQuietly(descriptor, rest);
        if (result <= 0) {
            return;
        }
        rest = rest.subspan(static_cast<std::size_t>(result));
    }
}

using Line = std::array<char, 256>;

// Reads a line, or the first 255 bytes of it, and puts a terminator behind it. A line has at least 2 bytes:
// one that starts with a lone line feed runs on. Returns its length, or nothing when the connection has ended
// or failed.
std::optional<std::size_t> readLine(int descriptor, ReceiveBuffer& received, Line& line) {
    std::size_t length = 0;
    while (length < line.size() - 1 &&
           (length < 2 || (line[length - 2] != '\r' && line[length - 1] != '\n'))) {
        if (received.size() == 0) {
            received.clear();
            if (received.read(descriptor) <= 0) {
                return std::nullopt;
            }
        }
        line[length++] = static_cast<char>(received.bytes().front());
        received.consume(1);
    }
    line[length] = '\0';
    return length;
}

// The status line must say 101; the headers are skipped, unseen. What is left in `received` are frames.
bool readUpgradeAnswer(int descriptor, ReceiveBuffer& received) {
    Line line;
    std::optional<std::size_t> length = readLine(descriptor, received, line);
    int status = 0;
    if (!length || *length == line.size() - 1 || std::sscanf(line.data(), "HTTP/1.1 %d", &status) != 1 ||
        status != 101) {
        return false;
    }
    do {
        length = readLine(descriptor, received, line);
    } while (length && !(line[0] == '\r' && line[1] == '\n'));
    return length.has_value();
}

} // namespace

std::optional<Upgraded> upgrade(std::string const& url, std::string const& origin) {
    std::optional<Address> const address = parseUrl(url);
    if (!address || origin.size() > 199) {
        return std::nullopt;
    }
    Descriptor socket = connectTo(*address);
    if (socket.get() < 0) {
        return std::nullopt;
    }
    sendUpgrade(socket.get(), *address, origin);
    ReceiveBuffer received;
    if (!readUpgradeAnswer(socket.get(), received)) {
        return std::nullopt;
    }
    int const on = 1; // requests and reports are small and shall leave at once
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ::fcntl(socket.get(), F_SETFL, O_NONBLOCK);
    return Upgraded{std::move(socket), std::move(received)};
}

} // namespace easywsclient
