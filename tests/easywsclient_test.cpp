// The WebSocket client against a peer of raw bytes. The peer's thread lives only while from_url blocks;
// from then on both ends are moved by the test itself.

#include "easywsclient.h"
#include "support/scripteddaemon.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using easywsclient::WebSocket;
using harness::frame;
using harness::maskedFrame;
using std::string;
using namespace std::string_literals;
using Messages = std::vector<string>;

namespace {

string const upgraded = "HTTP/1.1 101 Switching\r\nUpgrade: websocket\r\n\r\n";
string const closeFrame = "\x88\x80\0\0\0\0"s;

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

string upgradeRequest(string const& target, string const& host, string const& originLine = "") {
    return "GET " + target + " HTTP/1.1\r\nHost: " + host +
           "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n" + originLine +
           "Sec-WebSocket-Key: QpV7dKz2RmYt4LsHn8XwBg==\r\nSec-WebSocket-Version: 13\r\n"
           "Sec-WebSocket-Protocol: event-protocol\r\n\r\n";
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
        ::setsockopt(listener, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on); // of what it accepts, too
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

    // Connects; the peer answers in these pieces and then closes, if asked to. False says that there is no connection.
    bool open(Messages const& answer = {upgraded}, bool thenClose = false, string const& to = "",
              string const& origin = "") {
        client.reset();
        hangUp();
        messages.clear();
        std::thread server([&] {
            peer = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            char byte = 0;
            for (request.clear(); !request.ends_with("\r\n\r\n") && ::recv(peer, &byte, 1, 0) == 1;) {
                request += byte;
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

    // Returns the next bytes that the client sends, or those that come before the end.
    string take(std::size_t size) {
        string text;
        char chunk[65536];
        for (ssize_t result = 1; text.size() < size && result > 0;) {
            client->poll(0);
            pollfd readable{peer, POLLIN, 0};
            ::poll(&readable, 1, -1);
            result = ::recv(peer, chunk, std::min(sizeof chunk, size - text.size()), MSG_DONTWAIT);
            text.append(chunk, static_cast<std::size_t>(std::max<ssize_t>(0, result)));
        }
        return text;
    }

    int listener = -1;
    int peer = -1;
    string host, url, request;
    Messages messages;
    std::unique_ptr<WebSocket> client;
};

TEST_F(EasyWsClient, SendsTheUpgradeRequest) {
    string const path(127 - url.size(), 'p');
    string const origin(199, 'o');
    string const rows[][3] = {
        {"ws://" + host, "", upgradeRequest("/", host)},
        {url + "a/b?c", "x", upgradeRequest("/a/b?c", host, "Origin: x\r\n")},
        {url + path, origin, upgradeRequest("/" + path, host, "Origin: " + origin + "\r\n")},
    };
    int const next = ::dup(0); // the number that the client's descriptor will have
    ::close(next);
    for (auto const& [target, from, expected] : rows) {
        ASSERT_TRUE(open({upgraded}, false, target, from)) << target;
        EXPECT_EQ(expected, request);
        EXPECT_EQ(FD_CLOEXEC, ::fcntl(next, F_GETFD));
        int noDelay = 0;
        socklen_t size = sizeof noDelay;
        EXPECT_EQ(0, ::getsockopt(next, IPPROTO_TCP, TCP_NODELAY, &noDelay, &size));
        EXPECT_NE(0, noDelay);
        client.reset();
        hangUp();
    }
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

TEST_F(EasyWsClient, JudgesTheAnswer) {
    string const status = "HTTP/1.1 101 ";
    std::pair<string, bool> const rows[] = {
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
    };
    for (auto const& [answer, accepted] : rows) {
        EXPECT_EQ(accepted, open({answer}, true)) << answer.substr(0, 40);
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

TEST_F(EasyWsClient, SendsEveryForm) {
    ASSERT_TRUE(open());
    string expected;
    for (std::size_t const size : {0U, 1U, 125U, 126U, 65535U, 65536U}) {
        client->send(pattern(size));
        expected += maskedFrame(0x81, pattern(size));
        EXPECT_EQ(expected.size(), client->unsentBytes()) << "nothing leaves before poll";
    }
    EXPECT_EQ(expected, take(expected.size()));

    client->sendBinary("a\0b"s);
    client->sendBinary(std::vector<unsigned char>{0, 0xFF, 0xA7});
    client->sendPing();
    client->close();
    client->close();
    client->send("too late");
    EXPECT_EQ(WebSocket::CLOSING, client->getReadyState());
    client->poll(-1);
    EXPECT_EQ(WebSocket::CLOSED, client->getReadyState());
    EXPECT_EQ(maskedFrame(0x82, "a\0b"s) + maskedFrame(0x82, "\0\xFF\xA7"s) + maskedFrame(0x89, "") +
                  closeFrame,
              take(SIZE_MAX));
}

TEST_F(EasyWsClient, QueuesForAPeerThatDoesNotRead) {
    ASSERT_TRUE(open());
    string expected;
    for (int i = 0; i < 40; ++i) { // more than the kernel takes, with sends and reads in between
        string const message = pattern(200'000 + static_cast<std::size_t>(i));
        client->send(message);
        expected += maskedFrame(0x81, message);
        client->poll(0);
    }
    EXPECT_GT(client->unsentBytes(), 0U);
    EXPECT_LT(client->unsentBytes(), expected.size());
    string received = take(expected.size() / 2);
    client->send("last");
    expected += maskedFrame(0x81, "last");
    received += take(expected.size() - received.size());
    EXPECT_TRUE(expected == received);
    EXPECT_EQ(0U, client->unsentBytes());
}

// What the kernel has taken and the pong that has begun to leave go on, and the latest is always among those that are
// left.
TEST_F(EasyWsClient, DropsPongsThatWait) {
    ASSERT_TRUE(open());
    auto const numbered = [](int number) {
        return std::string(100, 'p') + std::to_string(10'000'000 + number);
    };
    int last = 0;
    std::size_t most = 0;
    for (int afterBlocked = 0; afterBlocked < 20;) {
        string pings;
        for (int i = 0; i < 100; ++i) {
            pings += frame(0x89, numbered(++last));
        }
        give(pings);
        client->poll(0);
        afterBlocked += client->unsentBytes() > 0 ? 1 : 0;
        most = std::max(most, client->unsentBytes());
    }
    EXPECT_GT(most, 60'000U);
    EXPECT_LT(most, 67'000U);
    client->send("end");
    string const end = maskedFrame(0x8A, numbered(last)) + maskedFrame(0x81, "end");
    string received;
    for (int ready = 0; !received.ends_with(end);) {
        ::ioctl(peer, FIONREAD, &ready);
        received += take(static_cast<std::size_t>(std::max(ready, 1)));
    }
    int pongs = 0;
    for (int number = 1; number <= last; ++number) {
        string const pong = maskedFrame(0x8A, numbered(number));
        if (received.starts_with(pong)) {
            received.erase(0, pong.size());
            ++pongs;
        }
    }
    EXPECT_LT(pongs, last);
    EXPECT_TRUE(received == maskedFrame(0x81, "end")) << pongs << " of " << last;
}

TEST_F(EasyWsClient, ReceivesEveryFormAndSize) {
    ASSERT_TRUE(open());
    Messages expected;
    string stream;
    for (std::size_t const size : {0U, 125U, 126U, 65535U, 65536U, 1'000'001U}) {
        expected.insert(expected.end(), 2, pattern(size));
        stream += frame(0x82, pattern(size)) + maskedFrame(0x82, pattern(size), "\x01\x80\xFE\x37");
    }
    expected.emplace_back("hi");
    give(stream + "\x81\x7F\0\0\0\0\0\0\0\2hi"s); // a longer form than the length needs
    receive(expected.size());
    EXPECT_TRUE(expected == messages);
}

// The first part comes with the answer to the upgrade, and must not wait for the second.
TEST_F(EasyWsClient, FramesMayBeSplitAnywhere) {
    string const start = maskedFrame(0x81, "whole", "\x11\x22\x33\x44");
    string const stream = start + frame(0x01, "one ") + maskedFrame(0x89, "ping\0!"s, "\x11\x22\x33\x44") +
                          maskedFrame(0x00, "two ", "\x44\x33\x22\x11") + frame(0x8A, "pong") +
                          frame(0x80, "three") + frame(0x80, "stray") + frame(0xF1, "reserved bits") +
                          frame(0x89, "") + frame(0x82, string(130, 'x'));
    Messages const expected{"whole", "one two three", "stray", "reserved bits", string(130, 'x')};
    string const pongs = maskedFrame(0x8A, "ping\0!"s) + maskedFrame(0x8A, "");
    for (std::size_t cut = 0; cut < stream.size(); ++cut) {
        ASSERT_TRUE(open({upgraded + stream.substr(0, cut)}));
        receive(cut >= start.size() ? 1 : 0);
        give(stream.substr(cut));
        receive(expected.size());
        ASSERT_EQ(expected, messages) << cut;
        ASSERT_EQ(pongs, take(pongs.size())) << cut;
    }
}

TEST_F(EasyWsClient, EndsOnACloseFrameAndOnUnknownOnes) {
    for (char const opcode : "\x88\x83\x87\x8B\x8F"s) {
        ASSERT_TRUE(open());
        give(frame(static_cast<unsigned char>(opcode), "\x03\xE8") + frame(0x89, "unanswered") +
             frame(0x81, "behind"));
        EXPECT_EQ(WebSocket::CLOSING, client->getReadyState()) << opcode;
        EXPECT_EQ(Messages{"behind"}, messages) << opcode;
        client->poll(-1);
        EXPECT_EQ(WebSocket::CLOSED, client->getReadyState());
        EXPECT_EQ(closeFrame, take(SIZE_MAX));
    }
}

TEST_F(EasyWsClient, WaitsForAnyLengthButOneWithTheTopBit) {
    for (string const& first : {"\x81"s, "\x89"s}) {
        ASSERT_TRUE(open());
        give(first + "\xFF\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFFkey and some");
        EXPECT_EQ(WebSocket::OPEN, client->getReadyState());
        EXPECT_TRUE(messages.empty());
    }
    ASSERT_TRUE(open());
    testing::internal::CaptureStderr();
    give(frame(0x81, "before") + "\x8A\x7F\x80\0\0\0\0\0\0\0"s + frame(0x81, "behind"));
    EXPECT_EQ(WebSocket::CLOSING, client->getReadyState());
    receive();
    dispatch();
    EXPECT_EQ("ERROR: Frame has invalid frame length. Closing.\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ(Messages{"before"}, messages);
}

TEST_F(EasyWsClient, DeliversWhatCameBeforeTheEnd) {
    string const stream = frame(0x81, "one") + frame(0x81, "two");
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
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
    int const event = ::eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK);
    ASSERT_TRUE(open());
    client->watch(event);
    client->poll(-1);
    EXPECT_EQ(WebSocket::OPEN, client->getReadyState());
    hangUp();
    receive();
    client->poll(3'600'000);
    eventfd_t value = 0;
    EXPECT_EQ(0, ::eventfd_read(event, &value)) << "poll must leave it readable";
    auto const start = std::chrono::steady_clock::now();
    client->poll(-1);
    client->poll(20);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20)) << "closed";
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
        client->send(message);
        client->poll(0);
        throw std::runtime_error(message);
    };
    EXPECT_THROW(client->dispatch(throwing), std::runtime_error);
    client->_dispatchBinary(bytes);
    EXPECT_EQ((std::vector<std::vector<unsigned char>>{{0xFF, 0}, {}}), bytes.all);
    EXPECT_EQ(maskedFrame(0x81, "one"), take(9));
}

} // namespace
