// The WebSocket client against a peer of raw bytes. The peer's thread lives only while from_url blocks;
// from then on both ends are moved by the test itself.

#include "easywsclient.h"
#include "support/scripteddaemon.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

using easywsclient::WebSocket;
using std::string;
using namespace std::string_literals;
using Messages = std::vector<string>;

namespace {

string const upgraded = "HTTP/1.1 101 Switching\r\nUpgrade: websocket\r\n\r\n";

string bytes(std::initializer_list<int> values) {
    string text;
    for (int const value : values) {
        text += static_cast<char>(value);
    }
    return text;
}

string bigEndian(std::uint64_t value, int count) {
    string text;
    for (int i = count; i-- > 0;) {
        text += static_cast<char>(value >> (8 * i));
    }
    return text;
}

// Masked where there is a key.
string frame(int first, string payload, string const& key = "") {
    string text = harness::frame(static_cast<unsigned char>(first), payload);
    if (key.empty()) {
        return text;
    }
    text[1] = static_cast<char>(text[1] | 0x80);
    text.resize(text.size() - payload.size());
    for (std::size_t i = 0; i < payload.size(); ++i) {
        payload[i] = static_cast<char>(payload[i] ^ key[i % 4]);
    }
    return text + key + payload;
}

string sent(int first, string const& payload) {
    return frame(first, payload, "\xA7\x1C\x5E\x39");
}

string pattern(std::size_t size) {
    string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>(i * 7 + i / 256);
    }
    return text;
}

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

string readExactly(int socket, std::size_t size) {
    string text(size, '\0');
    return ::recv(socket, text.data(), size, MSG_WAITALL) == static_cast<ssize_t>(size) ? text : "cut short";
}

class EasyWsClient : public testing::Test {
protected:
    EasyWsClient() {
        EXPECT_TRUE(listenAt(INADDR_LOOPBACK, 0));
    }

    ~EasyWsClient() override {
        client.reset();
        hangUp();
        ::close(listener);
    }

    bool listenAt(in_addr_t ip, in_port_t number) {
        ::close(std::exchange(listener, ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)));
        int const on = 1;
        ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{AF_INET, htons(number), {htonl(ip)}, {}};
        socklen_t size = sizeof address;
        bool const listens =
            ::bind(listener, reinterpret_cast<sockaddr*>(&address), size) == 0 && ::listen(listener, 5) == 0;
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
        host = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        url = "ws://" + host + "/";
        return listens;
    }

    void hangUp(bool byReset = false) {
        linger const mode{byReset ? 1 : 0, 0};
        ::setsockopt(peer, SOL_SOCKET, SO_LINGER, &mode, sizeof mode);
        ::close(std::exchange(peer, -1));
    }

    // Connects, with the peer answering in these pieces and then, if asked to, closing. False: no connection.
    bool open(std::vector<string> const& answer = {upgraded}, bool thenClose = false, string const& to = "",
              string const& origin = "") {
        client.reset();
        hangUp();
        std::thread server([&] {
            peer = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            int const on = 1;
            ::setsockopt(peer, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            for (request.clear(); !request.ends_with("\r\n\r\n");) {
                request += readExactly(peer, 1);
            }
            for (string const& piece : answer) {
                ::send(peer, piece.data(), piece.size(), MSG_NOSIGNAL);
            }
            if (thenClose) {
                hangUp();
            }
        });
        client.reset(WebSocket::from_url(to.empty() ? url : to, origin));
        server.join();
        return client != nullptr;
    }

    void dispatch() {
        client->dispatch([this](string const& message) { messages.push_back(message); });
    }

    // Sends bytes to the client, which reads on the way and at least the last of them when they are few.
    void give(string const& text) {
        for (std::size_t done = 0; done < text.size();) {
            ssize_t const result =
                ::send(peer, text.data() + done, text.size() - done, MSG_DONTWAIT | MSG_NOSIGNAL);
            ASSERT_TRUE(result > 0 || errno == EAGAIN);
            done += result > 0 ? static_cast<std::size_t>(result) : 0;
            client->poll(-1);
            dispatch();
        }
    }

    // Lets the client read until so many messages are there or the connection has ended.
    void receive(std::size_t count = SIZE_MAX) {
        while (messages.size() < count && client->getReadyState() != WebSocket::CLOSED) {
            client->poll(-1);
            dispatch();
        }
    }

    // The next bytes that the client sends.
    string take(std::size_t size) {
        string text;
        while (text.size() < size) {
            client->poll(0);
            pollfd readable{peer, POLLIN, 0};
            ::poll(&readable, 1, -1);
            string piece(size - text.size(), '\0');
            ssize_t const result = ::recv(peer, piece.data(), piece.size(), MSG_DONTWAIT);
            if (result <= 0) {
                return text + " and then the end";
            }
            text.append(piece, 0, static_cast<std::size_t>(result));
        }
        return text;
    }

    int listener = -1;
    int peer = -1;
    string host, url, request;
    Messages messages;
    std::unique_ptr<WebSocket> client;
};

string upgradeRequest(string const& target, string const& host, string const& originLine = "") {
    return "GET " + target + " HTTP/1.1\r\nHost: " + host +
           "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n" + originLine +
           "Sec-WebSocket-Key: QpV7dKz2RmYt4LsHn8XwBg==\r\nSec-WebSocket-Version: 13\r\n"
           "Sec-WebSocket-Protocol: event-protocol\r\n\r\n";
}

TEST_F(EasyWsClient, SendsTheUpgradeRequest) {
    string const path(127 - url.size(), 'p');
    string const origin(199, 'o');
    struct {
        string url, origin, expected;
    } const rows[] = {
        {"ws://" + host, "", upgradeRequest("/", host)},
        {url + "a/b?c", "x", upgradeRequest("/a/b?c", host, "Origin: x\r\n")},
        {url + path, origin, upgradeRequest("/" + path, host, "Origin: " + origin + "\r\n")},
    };
    int const next = ::dup(0); // the number that the client's descriptor will have
    ::close(next);
    for (auto const& row : rows) {
        ASSERT_TRUE(open({upgraded}, false, row.url, row.origin)) << row.url;
        EXPECT_EQ(row.expected, request);
        EXPECT_EQ(FD_CLOEXEC, ::fcntl(next, F_GETFD));
        client.reset();
        hangUp();
    }
}

TEST_F(EasyWsClient, RefusesWithoutConnecting) {
    std::ptrdiff_t const before = openDescriptors();
    for (string const& bad : {url + string(128 - url.size(), 'p'), "wss://" + host, host, "ws://"s,
                              "ws://:80/"s, "ws://127.0.0.1:-1/"s, ""s}) {
        EXPECT_EQ(nullptr, WebSocket::from_url(bad)) << bad;
    }
    EXPECT_EQ(nullptr, WebSocket::from_url(url, string(200, 'o')));
    EXPECT_EQ(before, openDescriptors());
    ::fcntl(listener, F_SETFL, O_NONBLOCK);
    EXPECT_EQ(-1, ::accept(listener, nullptr, nullptr));
}

TEST_F(EasyWsClient, LeavesPort80OutOfTheHostLine) {
    if (!listenAt(0x7F000003, 80)) {
        GTEST_SKIP() << "port 80 isn't ours to bind";
    }
    for (char const* target : {"ws://127.0.0.3", "ws://127.0.0.3:80/"}) {
        ASSERT_TRUE(open({upgraded}, false, target));
        EXPECT_EQ(upgradeRequest("/", "127.0.0.3"), request);
    }
}

TEST_F(EasyWsClient, JudgesTheAnswer) {
    string const status = "HTTP/1.1 101 ";
    struct {
        string answer;
        bool accepted;
    } const rows[] = {
        {status + "\r\n\r\n", true},
        {status + string(239, 's') + "\r\n\r\n", true}, // 254 bytes with its end
        {status + string(240, 's') + "\r\n\r\n", false},
        {status + "\r\nLong: " + string(1000, 'h') + "\r\n\r\n", true},
        {"HTTP/1.1 101\r\n" + string(255, 'h') + "\r\n", true}, // what doesn't fit reads as the empty line
        {"HTTP/1.1 101\rXA: b\r\n\r\n", true}, // one byte behind the carriage return ends a line
        {"HTTP/1.1 101\r\n\n\r\n", false},     // a line that starts with a line feed runs on
        {"HTTP/1.1 200 OK\r\n\r\n", false},
        {"HTTP/1.0 101 Switching\r\n\r\n", false},
        {status + "\r\n" + string(100'000, 'h'), false},
        {"", false},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.accepted, open({row.answer}, true)) << row.answer.substr(0, 40);
    }
}

TEST_F(EasyWsClient, ReadsTheAnswerInAnyPieces) {
    std::ptrdiff_t const before = openDescriptors();
    for (std::size_t cut = 0; cut < upgraded.size(); ++cut) {
        EXPECT_FALSE(open({upgraded.substr(0, cut)}, true)) << cut;
        EXPECT_TRUE(open({upgraded.substr(0, cut), upgraded.substr(cut)})) << cut;
    }
    client.reset(); // while open
    hangUp();
    EXPECT_EQ(before, openDescriptors());
}

TEST_F(EasyWsClient, TakesBytesBehindTheAnswerAsFrames) {
    string const whole = frame(0x81, "first");
    ASSERT_TRUE(open({upgraded + whole + frame(0x81, "second").substr(0, 4)}));
    receive(1); // must not wait for more
    EXPECT_EQ(Messages{"first"}, messages);
    give(frame(0x81, "second").substr(4));
    EXPECT_EQ((Messages{"first", "second"}), messages);
}

TEST_F(EasyWsClient, SendsEveryForm) {
    ASSERT_TRUE(open());
    string expected;
    for (std::size_t const size : {0U, 1U, 125U, 126U, 65535U, 65536U}) {
        client->send(pattern(size));
        expected += sent(0x81, pattern(size));
        EXPECT_EQ(expected.size(), client->unsentBytes()) << "nothing leaves before poll";
    }
    EXPECT_EQ(expected, take(expected.size()));
    EXPECT_EQ(0U, client->unsentBytes());

    client->sendBinary("a\0b"s);
    client->sendBinary(std::vector<unsigned char>{0, 0xFF, 0xA7});
    client->sendPing();
    client->close();
    client->close();
    client->send("too late");
    EXPECT_EQ(WebSocket::CLOSING, client->getReadyState());
    expected =
        sent(0x82, "a\0b"s) + sent(0x82, "\0\xFF\xA7"s) + sent(0x89, "") + bytes({0x88, 0x80, 0, 0, 0, 0});
    client->poll(-1);
    EXPECT_EQ(WebSocket::CLOSED, client->getReadyState());
    EXPECT_EQ(expected, readExactly(peer, expected.size()));
    EXPECT_EQ("cut short", readExactly(peer, 1));
}

TEST_F(EasyWsClient, QueuesForAPeerThatDoesNotRead) {
    ASSERT_TRUE(open());
    string expected;
    for (int i = 0; i < 40; ++i) { // more than the kernel takes, with sends and reads in between
        string const message = pattern(300'000 + static_cast<std::size_t>(i));
        client->send(message);
        expected += sent(0x81, message);
        client->poll(0);
    }
    EXPECT_GT(client->unsentBytes(), 0U);
    EXPECT_LT(client->unsentBytes(), expected.size());
    string received = take(expected.size() / 2);
    client->send("last");
    expected += sent(0x81, "last");
    received += take(expected.size() - received.size());
    EXPECT_TRUE(expected == received);
    EXPECT_EQ(0U, client->unsentBytes());
}

TEST_F(EasyWsClient, ReceivesEveryFormAndSize) {
    ASSERT_TRUE(open());
    string const key = bytes({0x01, 0x80, 0xFE, 0x37});
    Messages expected;
    string stream;
    for (std::size_t const size : {0U, 125U, 126U, 65535U, 65536U, 5'000'001U}) {
        for (string const& maskKey : {string(), key}) {
            expected.push_back(pattern(size));
            stream += frame(0x82, pattern(size), maskKey);
        }
    }
    stream += bytes({0x81, 127}) + bigEndian(2, 8) + "hi"; // a longer form than the length needs
    expected.emplace_back("hi");
    give(stream);
    receive(expected.size());
    EXPECT_TRUE(expected == messages);
}

TEST_F(EasyWsClient, FramesMayBeSplitAnywhere) {
    ASSERT_TRUE(open());
    string const key = bytes({0x11, 0x22, 0x33, 0x44});
    string const stream = frame(0x81, "whole", key) + frame(0x01, "one ") + frame(0x89, "ping\0!"s, key) +
                          frame(0x00, "two ", key) + frame(0x8A, "pong") + frame(0x80, "three") +
                          frame(0x80, "stray") + frame(0xF1, "reserved bits") + frame(0x89, "") +
                          frame(0x82, string(130, 'x'), key);
    Messages const expected{"whole", "one two three", "stray", "reserved bits", string(130, 'x')};
    string const pongs = sent(0x8A, "ping\0!"s) + sent(0x8A, "");
    for (std::size_t cut = 1; cut < stream.size(); ++cut) {
        messages.clear();
        give(stream.substr(0, cut));
        give(stream.substr(cut));
        receive(expected.size());
        ASSERT_EQ(expected, messages) << cut;
        ASSERT_EQ(pongs, take(pongs.size())) << cut;
    }
}

TEST_F(EasyWsClient, EndsOnACloseFrameAndOnUnknownOnes) {
    for (int const opcode : {0x88, 0x83, 0x87, 0x8B, 0x8F}) {
        messages.clear();
        ASSERT_TRUE(open());
        give(frame(opcode, "\x03\xE8") + frame(0x89, "unanswered") + frame(0x81, "behind"));
        EXPECT_EQ(WebSocket::CLOSING, client->getReadyState()) << opcode;
        EXPECT_EQ(Messages{"behind"}, messages) << opcode;
        client->poll(-1);
        EXPECT_EQ(WebSocket::CLOSED, client->getReadyState());
        EXPECT_EQ(bytes({0x88, 0x80, 0, 0, 0, 0}), readExactly(peer, 6));
        EXPECT_EQ("cut short", readExactly(peer, 1));
    }
}

TEST_F(EasyWsClient, WaitsForAnyLengthButOneWithTheTopBit) {
    for (int const opcode : {0x81, 0x89}) {
        ASSERT_TRUE(open());
        give(bytes({opcode, 0xFF}) + bigEndian(~std::uint64_t{0} >> 1, 8) + "key and some");
        EXPECT_EQ(WebSocket::OPEN, client->getReadyState());
        EXPECT_TRUE(messages.empty());
    }

    ASSERT_TRUE(open());
    testing::internal::CaptureStderr();
    give(frame(0x81, "before") + bytes({0x8A, 127}) + bigEndian(std::uint64_t{1} << 63, 8) +
         frame(0x81, "behind"));
    EXPECT_EQ(WebSocket::CLOSING, client->getReadyState());
    receive();
    dispatch();
    EXPECT_EQ("ERROR: Frame has invalid frame length. Closing.\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ(Messages{"before"}, messages);
}

TEST_F(EasyWsClient, DeliversWhatCameBeforeTheEnd) {
    string const stream = frame(0x81, "one") + frame(0x81, "two");
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
        messages.clear();
        ASSERT_TRUE(open({upgraded, stream.substr(0, cut)}));
        client->send("unread, so that the end is a reset for odd cuts");
        hangUp(cut % 2 != 0);
        receive();
        // A reset may overtake what came before it.
        EXPECT_TRUE(cut % 2 != 0 ? messages.size() <= cut / 5 : messages.size() == cut / 5) << cut;
        client->send("to nobody");
        client->close();
        client->poll(-1);
        EXPECT_EQ(WebSocket::CLOSED, client->getReadyState());
    }
}

TEST_F(EasyWsClient, AWatchedDescriptorEndsTheWait) {
    auto const waits = [this] {
        auto const start = std::chrono::steady_clock::now();
        client->poll(20);
        return std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(20);
    };
    ASSERT_TRUE(open());
    EXPECT_TRUE(waits() && waits()) << "open";
    int const event = ::eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK);
    client->watch(event);
    client->poll(-1);
    EXPECT_EQ(WebSocket::OPEN, client->getReadyState());
    hangUp();
    receive();
    client->poll(3'600'000);
    eventfd_t value = 0;
    EXPECT_EQ(0, ::eventfd_read(event, &value)) << "poll must leave it readable";

    client->poll(-1);
    EXPECT_TRUE(waits()) << "closed";
    ::close(event);
}

TEST_F(EasyWsClient, TheCallbackMayUseTheObjectAndThrow) {
    struct : easywsclient::BytesCallback_Imp {
        void operator()(std::vector<unsigned char> const& message) override {
            all.push_back(message);
        }
        std::vector<std::vector<unsigned char>> all;
    } bytes;
    ASSERT_TRUE(open({upgraded + frame(0x81, "one") + frame(0x82, "\xFF\0"s) + frame(0x82, "")}));
    auto const throwing = [this](string const& message) {
        messages.push_back(message);
        client->send(message);
        client->poll(0);
        throw std::runtime_error(message);
    };
    EXPECT_THROW(client->dispatch(throwing), std::runtime_error);
    client->_dispatchBinary(bytes);
    EXPECT_EQ(Messages{"one"}, messages);
    EXPECT_EQ((std::vector<std::vector<unsigned char>>{{0xFF, 0}, {}}), bytes.all);
    EXPECT_EQ(sent(0x81, "one"), take(9));
}

} // namespace
