#include "support/scripteddaemon.h"

#include "support/process.h"

#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <json/reader.h>
#include <list>
#include <mutex>
#include <netinet/tcp.h>
#include <optional>
#include <poll.h>
#include <sstream>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace harness {

namespace {

struct Connection {
    int fd;
    std::string received = {}; // and not taken yet
    bool isUpgraded = false;
    bool isHeard = true; // or else what comes is ignored
    bool isOver = false;
};

struct Request {
    std::string name;
    std::string text;
    bool expected = false; // by the script, or by the test
    bool waitedFor = false;
};

std::string envelope(std::string const& name, Json::Value const& payload) {
    Json::Value document(Json::arrayValue);
    document.append(name);
    document.append(payload);
    document.append("kelvaris_sdk");
    return document.toStyledString();
}

// A client may be gone before its answer: what it printed tells.
void write(Connection const& connection, std::string const& bytes) {
    send(connection.fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

} // namespace

Json::Value parsed(std::string const& json) {
    Json::Value document;
    std::istringstream(json) >> document;
    return document;
}

std::string styled(std::string const& json) {
    return parsed(json).toStyledString();
}

std::string frame(unsigned char first, std::string_view payload) {
    std::size_t const size = payload.size();
    int const extended = size < 126 ? 0 : size < 65536 ? 2 : 8;
    std::string bytes(1, static_cast<char>(first));
    bytes += static_cast<char>(extended == 0 ? size : extended == 2 ? 126 : 127);
    for (int i = extended - 1; i >= 0; --i) {
        bytes += static_cast<char>(size >> (8 * i) & 0xFF);
    }
    return bytes.append(payload);
}

std::string maskedFrame(unsigned char first, std::string_view payload, std::string const& key) {
    std::string bytes = frame(first, payload);
    bytes[1] = static_cast<char>(bytes[1] | 0x80);
    bytes.insert(bytes.size() - payload.size(), key);
    for (std::size_t i = 0, start = bytes.size() - payload.size(); i < payload.size(); ++i) {
        bytes[start + i] = static_cast<char>(bytes[start + i] ^ key[i % 4]);
    }
    return bytes;
}

Answer raw(std::string bytes) {
    Answer answer("");
    answer.bytes = std::move(bytes);
    return answer;
}

// Each connection is read by a thread of its own, which holds the mutex for all that it does then.
struct ScriptedDaemon::Impl {
    Impl(std::vector<Step> steps, Options given) : script(std::move(steps)), options(std::move(given)) {
        for (Step const& step : script) {
            expected.push_back(envelope(step.request, parsed(step.payload)));
        }
        // A port that is bound without anybody listening refuses connections, and nobody else gets it.
        sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t size = sizeof address;
        bind(listener, reinterpret_cast<sockaddr*>(&address), size);
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
        port = ntohs(address.sin_port);
        if (options.listen) {
            int const on = 1; // its connections have it too
            setsockopt(listener, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            listen(listener, SOMAXCONN);
            std::scoped_lock const lock(mutex);
            threads.emplace_back([this] { acceptAll(); });
        }
    }

    ~Impl() {
        for (int const fd : {unread, listener, finished}) {
            close(fd);
        }
    }

    // A client that has come and gone before the end still has its say.
    void acceptAll() {
        std::array<pollfd, 2> ends = {{{listener, POLLIN, 0}, {finished, POLLIN, 0}}};
        while (poll(ends.data(), ends.size(), -1) > 0) {
            int const fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            std::scoped_lock const lock(mutex);
            if (fd >= 0) {
                connections.push_back({fd});
                threads.emplace_back([this, &connection = connections.back()] { serve(connection); });
                ++alive;
            } else if (ends[1].revents != 0) {
                isAccepting = false;
                changed.notify_all();
                return;
            }
        }
    }

    void serve(Connection& connection) {
        std::array<char, 65536> chunk;
        std::unique_lock lock(mutex);
        while (!connection.isOver) {
            lock.unlock();
            ssize_t const size = recv(connection.fd, chunk.data(), chunk.size(), 0);
            lock.lock();
            if (size <= 0) {
                bool const isCut = size == 0 && connection.isHeard && !connection.received.empty();
                problems += isCut ? "cut off: " + connection.received + "\n" : "";
                break;
            }
            connection.received.append(chunk.data(), static_cast<std::size_t>(size));
            goOn(connection, lock);
            changed.notify_all();
        }
        current = current == &connection ? nullptr : current;
        int const fd = std::exchange(connection.fd, -1);
        if (fd != unread) {
            close(fd);
        }
        --alive;
        changed.notify_all();
    }

    // Does what the script and the connection's bytes allow.
    void goOn(Connection& connection, std::unique_lock<std::mutex>& lock) {
        if (!connection.isUpgraded) {
            answerUpgrade(connection);
        }
        while (connection.isUpgraded && connection.isHeard) {
            std::optional<std::string> const request = takeFrame(connection.received);
            if (!request) {
                return;
            }
            if (Step const* const step = record(*request)) {
                lock.unlock();
                std::this_thread::sleep_for(std::chrono::milliseconds(step->delayMs));
                lock.lock();
                for (Answer const& answer : step->answers) {
                    write(connection, answer.bytes);
                }
                act(connection, step->then);
            }
        }
    }

    void answerUpgrade(Connection& connection) {
        std::size_t const end = connection.received.find("\r\n\r\n");
        if (end == std::string::npos) {
            return;
        }
        if (connection.received.find("\r\nOrigin: easywsclient://\r\n") > end) {
            problems += "without the origin: " + connection.received;
        }
        connection.received.erase(0, end + 4);
        connection.isUpgraded = true;
        current = &connection;
        Upgrade const upgrade = upgraded < options.upgrades.size() ? options.upgrades[upgraded] : Upgrade();
        ++upgraded;
        connection.isHeard = upgrade.bytes.empty() && upgrade.then == Then::carryOn;
        write(connection, connection.isHeard ? "HTTP/1.1 101 Switching Protocols\r\n\r\n" : upgrade.bytes);
        act(connection, upgrade.then);
    }

    void act(Connection& connection, Then then) {
        linger const byReset{1, 0};
        if (then == Then::closeFrame) {
            write(connection, frame(0x88, ""));
        }
        if (then == Then::carryOn || then == Then::closeFrame) {
            return;
        }
        connection.isHeard = false;
        connection.isOver = true;
        if (then == Then::reset) {
            setsockopt(connection.fd, SOL_SOCKET, SO_LINGER, &byReset, sizeof byReset);
            shutdown(connection.fd, SHUT_RD); // ends the thread's wait
        } else {
            unread = connection.fd;
        }
    }

    // The next message. A client's frames are whole ones, and all are masked with the same key.
    std::optional<std::string> takeFrame(std::string& bytes) {
        std::size_t size = bytes.size() < 2 ? 0 : bytes[1] & 0x7F;
        std::size_t const extended = size == 126 ? 2 : size == 127 ? 8 : 0;
        std::size_t const header = 2 + extended + 4;
        if (extended > 0) {
            size = 0;
            for (char const byte : bytes.substr(2, extended)) {
                size = size << 8 | static_cast<unsigned char>(byte);
            }
        }
        if (bytes.size() < header + size) {
            return std::nullopt;
        }
        std::string const whole = bytes.substr(0, header + size);
        bytes.erase(0, whole.size());
        std::string const text = maskedFrame(0x81, whole.substr(header)).substr(header); // masked twice
        problems +=
            whole == maskedFrame(0x81, text) ? "" : "wrong frame " + testing::PrintToString(whole) + "\n";
        return text;
    }

    // Returns the step that waited for this request.
    Step const* record(std::string const& text) {
        Json::Value const document = parsed(text);
        std::string const name = document[0].asString();
        std::string wanted = envelope(name, document[1]);
        Step const* step = nullptr;
        bool const introduction =
            options.appName && !introduced && (!options.mayMiss || name == "set_app_name");
        introduced = true;
        if (options.mayMiss) {
            skipTo(text);
        }
        if (introduction) {
            Json::Value payload;
            payload["name"] = *options.appName;
            wanted = envelope("set_app_name", payload);
        } else if (next < script.size() && script[next].request == name) {
            wanted = expected[next];
            step = &script[next++];
        }
        requests.push_back({name, text, introduction || step != nullptr});
        problems += text == wanted ? "" : "expected the request " + wanted + "but got " + text;
        return step;
    }

    void skipTo(std::string const& text) {
        for (std::size_t i = next; i < script.size(); ++i) {
            bool const followsRead = i > next && script[i].request.starts_with("set_") &&
                                     script[i - 1].request.starts_with("request_");
            if (expected[i] == text && !followsRead) {
                next = i;
                return;
            }
        }
    }

    void onCurrent(std::function<void(Connection&)> const& action) {
        std::scoped_lock const lock(mutex);
        if (current != nullptr) {
            action(*current);
        } else {
            problems += "the test acted on a connection that isn't there\n";
        }
    }

    template <typename Predicate> void wait(std::string const& what, Predicate met) {
        std::unique_lock lock(mutex);
        if (!changed.wait_for(lock, patience(), met)) {
            ADD_FAILURE() << "the daemon waited in vain for " << what;
        }
    }

    std::vector<Step> const script;
    Options const options;
    std::vector<std::string> expected; // text of each step's request
    std::uint16_t port = 0;
    int const finished = eventfd(0, EFD_CLOEXEC);
    int const listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);

    // Guarded by the mutex.
    std::mutex mutex;
    std::condition_variable changed;
    std::list<Connection> connections;
    std::list<std::jthread> threads;
    bool isAccepting = options.listen;
    std::size_t alive = 0; // connections
    Connection* current = nullptr;
    int unread = -1;
    std::vector<Request> requests;
    std::string problems;
    std::size_t upgraded = 0; // connections
    std::size_t next = 0;     // step
    bool introduced = false;
    bool isFinished = false;
};

ScriptedDaemon::ScriptedDaemon(std::vector<Step> script, Options options)
    : impl(std::make_unique<Impl>(std::move(script), std::move(options))) {}

ScriptedDaemon::~ScriptedDaemon() {
    if (!impl->isFinished) {
        EXPECT_EQ(finish(), "");
    }
}

std::uint16_t ScriptedDaemon::port() const {
    return impl->port;
}

void ScriptedDaemon::send(Answer const& answer) {
    impl->onCurrent([answer](Connection& connection) { write(connection, answer.bytes); });
}

void ScriptedDaemon::dropConnection(Then how) {
    impl->onCurrent([this, how](Connection& connection) { impl->act(connection, how); });
}

void ScriptedDaemon::waitForRequest(std::string const& name) {
    impl->wait("the request " + name, [&] {
        for (Request& request : impl->requests) {
            if (!request.waitedFor && request.name == name) {
                return request.waitedFor = request.expected = true;
            }
        }
        return false;
    });
}

void ScriptedDaemon::waitForConnections(std::size_t count) {
    impl->wait("a connection", [&] { return impl->upgraded >= count; });
}

std::size_t ScriptedDaemon::connections() const {
    std::scoped_lock const lock(impl->mutex);
    return impl->upgraded;
}

std::string ScriptedDaemon::finish() {
    impl->isFinished = true;
    eventfd_write(impl->finished, 1);
    impl->wait("its client's end", [&] { return !impl->isAccepting && impl->alive == 0; });
    for (Connection& connection : impl->connections) {
        std::scoped_lock const lock(impl->mutex);
        impl->act(connection, Then::reset); // if that was in vain
    }
    impl->threads.clear();
    std::string report = impl->problems;
    for (Request const& request : impl->requests) {
        report += request.expected ? "" : "unexpected request " + request.text;
    }
    for (std::size_t i = impl->next; i < impl->script.size() && !impl->options.mayMiss; ++i) {
        report += "unused step \"" + impl->script[i].request + "\"\n";
    }
    return report;
}

} // namespace harness
