#include "server.h"

#include "envelope.h"

#include <algorithm>
#include <csignal>
#include <iostream>

namespace kelvarissim {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::chrono::milliseconds acceptPause{100};

void note(const std::string& text) {
    std::cerr << "kelvarissim: " + text + '\n';
}

// The start of a message for the log, on one line of ASCII whatever bytes it holds.
std::string excerpt(const std::string& message) {
    constexpr std::size_t longest = 200;
    std::string start = message.substr(0, longest);
    std::replace_if(
        start.begin(), start.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return message.size() > longest ? start + "..." : start;
}

// Families read payloads without testing types: what doesn't convert throws, and ends here.
template <typename Action> bool guarded(const std::string& what, Action action) {
    try {
        action();
        return true;
    } catch (const std::exception& error) {
        note(what + ": " + error.what());
        return false;
    }
}

} // namespace

Server::Server(const Registry& families, const Settings& commandLine)
    : registry(families), settings(commandLine) {}

std::uint16_t Server::listen() {
    // Caught from here on: whoever has read the port may send one at once.
    signals.add(SIGINT);
    signals.add(SIGTERM);
    const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), settings.port);
    acceptor.open(endpoint.protocol());
    acceptor.set_option(tcp::acceptor::reuse_address(true));
    acceptor.bind(endpoint);
    acceptor.listen();
    return acceptor.local_endpoint().port();
}

void Server::run() {
    signals.async_wait([this](const boost::system::error_code& error, int) {
        if (!error) {
            stop();
        }
    });
    accept();
    io.run();
}

void Server::accept() {
    acceptor.async_accept([this](const boost::system::error_code& error, tcp::socket socket) {
        if (error) {
            // Out of descriptors, as a rule: some may be free a little later.
            note("accept: " + error.message());
            after(acceptPause, [this] { accept(); });
            return;
        }
        std::make_shared<Link>(std::move(socket), ++lastClient, *this)->start();
        accept();
    });
}

void Server::opened(const std::shared_ptr<Link>& link) {
    links.emplace(link->id(), link);
    log(clientText(link->id()) + " connected");
}

void Server::ended(const Link& link, const std::string& reason) {
    const ClientId client = link.id();
    links.erase(client);
    if (reason.empty()) {
        log(clientText(client) + " gone");
    } else {
        note(clientText(client) + " gone: " + reason);
    }
    for (const ClientGoneHook& hook : registry.clientGoneHooks()) {
        guarded(clientText(client) + " gone", [&] { hook(*this, client); });
    }
}

void Server::refused(const std::string& reason) {
    note("refused a connection: " + reason);
}

bool Server::received(const std::shared_ptr<Link>& link, const Message& message) {
    Json::Value request;
    const bool good = guarded("bad request '" + excerpt(message.text) + '\'', [&] {
        if (!message.isText) {
            throw std::runtime_error("not a text frame");
        }
        request = parseRequest(message.text);
        if (settings.verbose) {
            std::cerr << "<- " + compactText(request) + '\n';
        }
    });
    const bool drops = message.number == settings.dropAfter;
    const bool closes = message.number == settings.closeFrameAfter;

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
        // Each timer runs the oldest action, so the order holds even when two timers end at once.
        delayed.emplace_back(std::move(action));
        after(std::chrono::milliseconds(settings.delayMs), [this] { runDelayed(); });
    }
    return !drops && !closes;
}

void Server::runDelayed() {
    const std::function<void()> action = std::move(delayed.front());
    delayed.pop_front();
    action();
}

void Server::handle(ClientId client, const Json::Value& request) {
    const std::string name = request[0].asString();
    auto lock = settings.locks.find(name);
    if (lock == settings.locks.end()) {
        lock = settings.locks.find(registry.foreignLock(name));
    }
    if (lock != settings.locks.end()) {
        Json::Value payload;
        payload["setting"] = lock->first;
        payload["reason"] = lock->second;
        send(client, "report_setting_locked", payload);
        return;
    }
    const Handler* handler = registry.find(name);
    if (handler == nullptr) {
        log("unknown request '" + excerpt(name) + '\'');
        return;
    }
    guarded("request " + name, [&] { (*handler)(Request{*this, client, request[1]}); });
}

void Server::send(ClientId client, const std::string& report, const Json::Value& payload) {
    const auto link = links.find(client);
    if (link != links.end()) {
        sendText(*link->second, std::make_shared<const std::string>(reportText(report, payload)));
    }
}

void Server::broadcast(const std::string& report, const Json::Value& payload) {
    const auto text = std::make_shared<const std::string>(reportText(report, payload));
    for (const auto& [client, link] : links) {
        sendText(*link, text);
    }
}

void Server::sendText(Link& link, const std::shared_ptr<const std::string>& text) {
    if (settings.silent || !link.takesReports()) {
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
    const TimerId id = ++lastTimer;
    timers.emplace(id, std::make_shared<Timer>(Timer{asio::steady_timer(io), period, std::move(action)}));
    arm(id);
    return id;
}

void Server::arm(TimerId id) {
    Timer& timer = *timers.at(id);
    timer.clock.expires_after(timer.period);
    timer.clock.async_wait([this, id](const boost::system::error_code&) {
        const auto found = timers.find(id);
        if (found == timers.end()) {
            return; // cancelled
        }
        // The action may cancel its own timer, so it holds on to itself while it runs.
        const std::shared_ptr<Timer> running = found->second;
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

void Server::log(const std::string& line) {
    if (settings.verbose) {
        note(line);
    }
}

} // namespace kelvarissim
