#include "support/scripteddaemon.h"

#include <chrono>
#include <condition_variable>
#include <gtest/gtest.h>
#include <json/reader.h>
#include <mutex>
#include <sstream>
#include <thread>
#include <utility> // Asio of this version needs it and doesn't include it

// All handlers run on one thread, and the thread sanitizer doesn't know fences.
#define BOOST_ASIO_DISABLE_FENCED_BLOCK
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>

namespace harness {

namespace {

namespace net = boost::asio;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;
using net::ip::tcp;

struct Connection {
    explicit Connection(tcp::socket socket) : ws(std::move(socket)), timer(ws.get_executor()) {}

    tcp::socket& socket() {
        return ws.next_layer();
    }

    // A client may be gone before its answer: what it printed tells.
    void write(std::string const& answer) {
        error_code gone;
        net::write(socket(), net::buffer(answer), gone);
    }

    websocket::stream<tcp::socket> ws;
    net::steady_timer timer;
    std::string upgrade; // the request, and what came with it
    boost::beast::flat_buffer message;
    bool deaf = false;
    bool ended = false;
};
using ConnectionPtr = std::shared_ptr<Connection>;

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

bool isProtocolError(error_code error) {
    error_code const closed = websocket::error::closed;
    return error.category() == closed.category() && error != closed;
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

Answer raw(std::string bytes) {
    Answer answer("");
    answer.bytes = std::move(bytes);
    return answer;
}

// All sockets belong to the one thread that runs `io`.
struct ScriptedDaemon::Impl {
    Impl(std::vector<Step> steps, Options given) : script(std::move(steps)), options(std::move(given)) {
        for (Step const& step : script) {
            expected.push_back(envelope(step.request, parsed(step.payload)));
        }
        // A port that is bound without anybody listening refuses connections, and nobody else gets it.
        acceptor.open(tcp::v4());
        acceptor.bind({net::ip::address_v4::loopback(), 0});
        port = acceptor.local_endpoint().port();
        if (options.listen) {
            acceptor.listen();
            accepting = true;
            accept();
        }
        thread = std::thread([this] {
            auto const keepRunning = net::make_work_guard(io);
            io.run();
        });
    }

    void accept() {
        acceptor.async_accept([this](error_code error, tcp::socket socket) {
            if (!error) {
                greet(std::move(socket));
                accept();
                return;
            }
            update([this] { accepting = false; });
        });
    }

    // A client that has come and gone in the meantime still has its say.
    void acceptWhatIsPending() {
        error_code error;
        acceptor.non_blocking(true, error);
        while (!error) {
            tcp::socket socket(io);
            acceptor.accept(socket, error);
            if (!error) {
                greet(std::move(socket));
            }
        }
        acceptor.close(error);
    }

    void greet(tcp::socket socket) {
        auto connection = std::make_shared<Connection>(std::move(socket));
        Upgrade const upgrade = greeted < options.upgrades.size() ? options.upgrades[greeted] : Upgrade();
        ++greeted;
        update([this] { ++alive; });
        net::async_read_until(connection->socket(), net::dynamic_buffer(connection->upgrade), "\r\n\r\n",
                              [=, this](error_code error, std::size_t) {
                                  if (error) {
                                      end(connection);
                                  } else {
                                      answerUpgrade(connection, upgrade);
                                  }
                              });
    }

    void answerUpgrade(ConnectionPtr const& connection, Upgrade const& upgrade) {
        bool const proper = upgrade.bytes.empty() && upgrade.then == Then::carryOn;
        if (proper) {
            connection->ws.control_callback([this](websocket::frame_type kind, boost::beast::string_view) {
                bool const isClose = kind == websocket::frame_type::close;
                update([&] { problems += isClose ? "a close frame\n" : ""; });
            });
            error_code error;
            connection->ws.accept(net::buffer(connection->upgrade), error);
            if (error) {
                end(connection, error);
                return;
            }
        } else {
            connection->write(upgrade.bytes);
        }
        current = connection;
        update([this] { ++upgraded; });
        if (proper) {
            advance(connection);
            return;
        }
        act(connection, upgrade.then);
        net::async_read(connection->socket(), net::dynamic_buffer(connection->upgrade),
                        [=, this](error_code, std::size_t) { end(connection); });
    }

    // Does the step that waits for no request, if it is one's turn, and reads on.
    void advance(ConnectionPtr const& connection) {
        bool const unasked = next < script.size() && script[next].request.empty();
        if (unasked && !connection->deaf && !connection->ended) {
            perform(connection, script[next++]);
        } else {
            read(connection);
        }
    }

    void perform(ConnectionPtr const& connection, Step const& step) {
        connection->timer.expires_after(std::chrono::milliseconds(step.delayMs));
        connection->timer.async_wait([=, this, &step](error_code) {
            for (Answer const& answer : step.answers) {
                connection->write(answer.bytes);
            }
            act(connection, step.then);
            advance(connection);
        });
    }

    void act(ConnectionPtr const& connection, Then then) {
        error_code gone;
        switch (then) {
        case Then::carryOn:
            break;
        case Then::reset:
            connection->socket().set_option(net::socket_base::linger(true, 0), gone);
            connection->socket().close(gone);
            end(connection);
            break;
        case Then::close:
            connection->deaf = true;
            connection->socket().shutdown(tcp::socket::shutdown_send, gone);
            break;
        case Then::closeFrame:
            connection->write(frame(0x88, ""));
            break;
        case Then::stopReading:
            unread.push_back(connection);
            end(connection);
            break;
        }
    }

    void read(ConnectionPtr const& connection) {
        if (connection->ended) {
            return;
        }
        connection->message.clear();
        connection->ws.async_read(connection->message, [=, this](error_code error, std::size_t) {
            if (error) {
                end(connection, error);
                return;
            }
            if (connection->deaf || connection->ended) {
                read(connection);
                return;
            }
            bool const isText = connection->ws.got_text();
            Step const* step = record(boost::beast::buffers_to_string(connection->message.data()), isText);
            if (step != nullptr) {
                perform(connection, *step);
            } else {
                advance(connection);
            }
        });
    }

    // Returns the step that waited for this request.
    Step const* record(std::string const& text, bool isText) {
        Json::Value document;
        std::istringstream stream(text);
        bool const readable = Json::parseFromStream(Json::CharReaderBuilder(), stream, &document, nullptr);
        if (!isText || !readable || !document.isArray() || !document[0].isString()) {
            update([&] { problems += "not a request: " + text + "\n"; });
            return nullptr;
        }
        std::string const name = document[0].asString();
        std::string wanted = envelope(name, document[1]);
        Step const* step = nullptr;
        bool const introduction = options.appName && !introduced;
        introduced = true;
        if (introduction) {
            Json::Value payload;
            payload["name"] = *options.appName;
            wanted = envelope("set_app_name", payload);
        } else if (next < script.size() && script[next].request == name) {
            wanted = expected[next];
            step = &script[next++];
        }
        update([&] {
            requests.push_back({name, text, introduction || step != nullptr});
            problems += text == wanted ? "" : "expected the request " + wanted + "but got " + text;
        });
        return step;
    }

    void end(ConnectionPtr const& connection, error_code error = {}) {
        if (connection->ended) {
            return;
        }
        connection->ended = true;
        if (current == connection) {
            current = nullptr;
        }
        update([&] {
            --alive;
            problems += isProtocolError(error) ? error.message() + "\n" : "";
        });
    }

    template <typename Change> void update(Change change) {
        std::scoped_lock const lock(mutex);
        change();
        changed.notify_all();
    }

    template <typename Action> void onCurrent(Action action) {
        net::post(io, [this, action] {
            ConnectionPtr const connection = current;
            if (connection != nullptr) {
                action(connection);
            } else {
                update([this] { problems += "the test acted on a connection that isn't there\n"; });
            }
        });
    }

    template <typename Predicate> void wait(std::string const& what, Predicate met) {
        std::unique_lock lock(mutex);
        if (!changed.wait_for(lock, std::chrono::seconds(20), met)) {
            ADD_FAILURE() << "the daemon waited in vain for " << what;
        }
    }

    std::vector<Step> const script;
    Options const options;
    std::vector<std::string> expected; // text of each step's request
    net::io_context io{1};
    tcp::acceptor acceptor{io};
    std::uint16_t port = 0;
    std::thread thread;
    bool finished = false;

    // Owned by the thread.
    ConnectionPtr current;
    std::vector<ConnectionPtr> unread;
    std::size_t greeted = 0;
    std::size_t next = 0; // step
    bool introduced = false;

    // Guarded by the mutex.
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Request> requests;
    std::string problems;
    std::size_t alive = 0; // connections
    std::size_t upgraded = 0;
    bool accepting = false;
};

ScriptedDaemon::ScriptedDaemon(std::vector<Step> script, Options options)
    : impl(std::make_unique<Impl>(std::move(script), std::move(options))) {}

ScriptedDaemon::~ScriptedDaemon() {
    if (!impl->finished) {
        EXPECT_EQ(finish(), "");
    }
}

std::uint16_t ScriptedDaemon::port() const {
    return impl->port;
}

void ScriptedDaemon::send(Answer const& answer) {
    impl->onCurrent([answer](ConnectionPtr const& connection) { connection->write(answer.bytes); });
}

void ScriptedDaemon::dropConnection(Then how) {
    impl->onCurrent([this, how](ConnectionPtr const& connection) { impl->act(connection, how); });
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

std::string ScriptedDaemon::finish() {
    impl->finished = true;
    net::post(impl->io, [this] { impl->acceptWhatIsPending(); });
    impl->wait("its client's end", [&] { return !impl->accepting && impl->alive == 0; });
    impl->io.stop();
    impl->thread.join();

    std::string report = impl->problems;
    for (Request const& request : impl->requests) {
        report += request.expected ? "" : "unexpected request " + request.text;
    }
    for (std::size_t i = impl->next; i < impl->script.size(); ++i) {
        report += "unused step \"" + impl->script[i].request + "\"\n";
    }
    return report;
}

} // namespace harness
