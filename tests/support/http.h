#pragma once

#include "support/process.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

// An HTTP client that closes after each answer.
namespace harness {

// A connection to this machine.
inline int connectTo(std::uint16_t port) {
    int const descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{
        .sin_family = AF_INET, .sin_port = htons(port), .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
    timeval const limit{patience().count(), 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
    return descriptor;
}

// All that comes until the other side closes.
inline std::string readAll(int descriptor) {
    std::string answer;
    char piece[4096];
    for (ssize_t count = 0; (count = recv(descriptor, piece, sizeof piece, 0)) > 0;) {
        answer.append(piece, static_cast<std::size_t>(count));
    }
    close(descriptor);
    return answer;
}

inline std::string get(std::uint16_t port, std::string const& path = "/metrics",
                       std::string const& method = "GET", std::string const& accept = "*/*") {
    std::string const request =
        method + " " + path + " HTTP/1.1\r\nHost: a\r\nConnection: close\r\nAccept: " + accept + "\r\n\r\n";
    int const descriptor = connectTo(port);
    send(descriptor, request.data(), request.size(), MSG_NOSIGNAL);
    return readAll(descriptor);
}

// Asks until the answer has the text in it.
inline void awaitAnswer(std::uint16_t port, std::string const& path, std::string const& text) {
    auto const limit = std::chrono::steady_clock::now() + patience();
    std::string answer;
    while ((answer = get(port, path)).find(text) == std::string::npos) {
        ASSERT_LT(std::chrono::steady_clock::now(), limit) << text << " isn't in:\n"
                                                           << path << "\n"
                                                           << answer;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

} // namespace harness
