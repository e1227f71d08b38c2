#include "server.h"

#include "envelope.h"

#include <algorithm>
#include <csignal>
#include <iostream>

namespace kelvarissim {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::chrono::milliseconds acceptRetryDelay{100};

void logAlways(std::string const& text) {
    std::cerr << "kelvarissim: " + text + '\n';
}

// Returns the start of a message for the log, with every byte replaced that would break the line.
std::string excerpt(std::string const& message) {
    constexpr std::size_t maxLength = 200;
    std::string start = message.substr(0, maxLength);
    std::replace_if(
        start.begin(), start.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return message.size() > maxLength ? start + "..." : start;
}

// The families read payloads without testing their types; a value that doesn't convert throws, and the
// exception ends here.
template <typename Action> bool guarded(std::string const& what, Action action) {
    try {
        action();
        return true;
    } catch (std::exception const& error) {
        logAlways(what + ": " + error.what());
        return false;
    }
}

} // namespace

Server::Server(Registry const& families, Settings const& commandLine)
    : registry(families), settings(commandLine) {
    if (settings.traffic) {
        sharedWorld.trafficSeed = settings.seed;
    }
}

std::uint16_t Server::listen() {
    // The signals are caught from here on, because whoever has read the port may send one at once.
    signals.add(SIGINT);
    signals.add(SIGTERM);
    tcp::endpoint const endpoint(asio::ip::address_v4::loopback(), settings.port);
    acceptor.open(endpoint.protocol());
    acceptor.set_option(tcp::acceptor::reuse_address(true));
    acceptor.bind(endpoint);
    acceptor.listen();
    return acceptor.local_endpoint().port();
}

void Server::run() {
    signals.async_wait([this](boost::system::error_code const& error, int) {
        if (!error) {
            stop();
        }
    });
    for (StartHandler const& handler : registry.startHandlers()) {
        handler(*this);
    }
    accept();
    io.run();
}

void Server::accept() {
    acceptor.async_accept([this](boost::system::error_code const& error, tcp::socket socket) {
        if (error) {
            // The process is usually out of descriptors then, and some may be free a little later.
            logAlways("accept: " + error.message());
            after(acceptRetryDelay, [this] { accept(); });
            return;
        }
        std::make_shared<Link>(std::move(socket), ++lastClient, *this)->start();
        accept();
    });
}

void Server::opened(std::shared_ptr<Link> const& link) {
    links.emplace(link->id(), link);
    log(clientText(link->id()) + " connected");
}

void Server::ended(Link const& link, std::string const& reason) {
    ClientId const client = link.id();
    links.erase(client);
    if (reason.empty()) {
        log(clientText(client) + " gone");
    } else {
        logAlways(clientText(client) + " gone: " + reason);
    }
    for (DisconnectHandler const& handler : registry.disconnectHandlers()) {
        guarded(clientText(client) + " gone", [&] { handler(*this, client); });
    }
}

void Server::refused(std::string const& reason) {
    logAlways("refused a connection: " + reason);
}

bool Server::received(std::shared_ptr<Link> const& link, Message const& message) {
    Json::Value request;
    bool const good = guarded("bad request '" + excerpt(withoutSecrets(message.text)) + '\'', [&] {
        if (!message.isText) {
            throw std::runtime_error("not a text frame");
        }
        request = parseRequest(message.text);
        if (settings.verbose) {
            std::cerr << "<- " + compactText(withoutSecrets(request)) + '\n';
        }
    });
    bool const drops = message.number == settings.dropAfter;
    bool const closes = message.number == settings.closeFrameAfter;

    auto action = [this, link, good, request = std::move(request), drops, closes] {
        if (good) {
            handle(link->id(), request);
        }
        if (drops) {
            link->drop();
        } else if (closes) {
            link->sendCloseFrame();
        }
    };
    if (settings.delayMs == 0) {
        action();
    } else {
        // Each timer runs the oldest action, so the order of requests is kept even when two timers end at
        // once.
        delayed.emplace_back(std::move(action));
        after(std::chrono::milliseconds(settings.delayMs), [this] { runDelayed(); });
    }
    return !drops && !closes;
}

void Server::runDelayed() {
    std::function<void()> const action = std::move(delayed.front());
    delayed.pop_front();
    action();
}

void Server::handle(ClientId client, Json::Value const& request) {
    std::string const name = request[0].asString();
    auto lock = settings.locks.find(name);
    if (lock == settings.locks.end()) {
        lock = settings.locks.find(registry.additionalLock(name));
    }
    if (lock != settings.locks.end()) {
        Json::Value payload;
        payload["setting"] = lock->first;
        payload["reason"] = lock->second;
        send(client, "report_setting_locked", payload);
        return;
    }
    Handler const* handler = registry.find(name);
    if (handler == nullptr) {
        log("unknown request '" + excerpt(name) + '\'');
        return;
    }
    guarded("request " + name, [&] { (*handler)(Request{*this, client, request[1]}); });
}

void Server::send(ClientId client, std::string const& report, Json::Value const& payload) {
    auto const link = links.find(client);
    if (link != links.end()) {
        sendText(*link->second, std::make_shared<std::string const>(reportText(report, payload)));
    }
}

void Server::broadcast(std::string const& report, Json::Value const& payload) {
    auto const text = std::make_shared<std::string const>(reportText(report, payload));
    for (auto const& [client, link] : links) {
        sendText(*link, text);
    }
}

void Server::sendText(Link& link, std::shared_ptr<std::string const> const& text) {
    if (settings.silent || !link.acceptsReports()) {
        return;
    }
    if (settings.verbose) {
        std::cerr << "-> " + *text + '\n';
    }
    link.send(text);
}

TimerId Server::after(std::chrono::milliseconds delay, std::function<void()> action) {
    return every(delay, [action = std::move(action)] {
        action();
        return false;
    });
}

TimerId Server::every(std::chrono::milliseconds period, std::function<bool()> action) {
    TimerId const id = ++lastTimer;
    timers.emplace(id, std::make_shared<Timer>(Timer{asio::steady_timer(io), period, std::move(action)}));
    arm(id);
    return id;
}

void Server::arm(TimerId id) {
    Timer& timer = *timers.at(id);
    timer.clock.expires_after(timer.period);
    timer.clock.async_wait([this, id](boost::system::error_code const&) {
        auto const found = timers.find(id);
        if (found == timers.end()) {
            return; // cancelled
        }
        // The action may cancel its own timer, so this reference keeps the timer alive while it runs.
        std::shared_ptr<Timer> const running = found->second;
        bool again = false;
        guarded("timer", [&] { again = running->action(); });
        if (!again) {
            timers.erase(id);
        } else if (timers.count(id) != 0) {
            arm(id);
        }
    });
}

std::chrono::milliseconds Server::interval() const {
    return std::chrono::milliseconds(settings.intervalMs);
}

int Server::trafficSpeed() const {
    return settings.traffic ? settings.speed : 1;
}

void Server::log(std::string const& line) {
    if (settings.verbose) {
        logAlways(line);
    }
}

} // namespace kelvarissim
