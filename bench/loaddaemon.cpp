// A daemon for loads that the simulator doesn't make: bursts of reports, long ones, a full server directory.
// A client orders its load by its application's name: after "load COUNT SIZE" each of its requests is
// answered by COUNT reports, which have SIZE bytes of padding if they report the state. It listens on a free
// port of 127.0.0.1, prints which, and runs until it is killed.

#include <utility> // Asio of this version needs it and doesn't include it

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>
#include <cstdio>
#include <exception>
#include <json/json.h>
#include <map>
#include <sstream>
#include <string>
#include <thread>

namespace {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;
using net::ip::tcp;

struct Load {
    int count = 1;
    std::size_t size = 0;
};

Load loadOf(std::string const& appName) {
    Load load;
    std::string word;
    std::istringstream words(appName);
    words >> word;
    if (word == "load") {
        words >> load.count >> load.size;
    }
    return load;
}

Json::Value directory() {
    constexpr int fullDirectory = 400;
    constexpr int serversInACity = 8;
    Json::Value servers(Json::arrayValue);
    for (int i = 0; i < fullDirectory; ++i) {
        int const city = i / serversInACity;
        Json::Value server;
        server["country"] =
            std::string{static_cast<char>('a' + city / 26), static_cast<char>('a' + city % 26)};
        server["city"] = "city" + std::to_string(city);
        server["num"] = i % serversInACity + 1;
        server["private"] = "no";
        servers.append(std::move(server));
    }
    return servers;
}

Json::Value state(std::size_t padding) {
    Json::Value payload;
    payload["state"] = 2;
    if (padding > 0) {
        payload["padding"] = std::string(padding, 'x');
    }
    return payload;
}

std::string frame(std::string const& name, Json::Value const& payload) {
    Json::StreamWriterBuilder compact;
    compact["indentation"] = "";
    Json::Value report(Json::arrayValue);
    report.append(name);
    report.append(payload);
    std::string const text = Json::writeString(compact, report);
    int const extended = text.size() < 126 ? 0 : text.size() < 65536 ? 2 : 8;
    std::string bytes = "\x81";
    bytes += static_cast<char>(extended == 0 ? text.size() : extended == 2 ? 126U : 127U);
    for (int byte = extended; byte-- > 0;) {
        bytes += static_cast<char>(text.size() >> (8 * byte) & 0xFF);
    }
    return bytes + text;
}

// Holds everything that a request is answered by, as it goes out.
std::string answer(std::string const& request, Load const& load) {
    std::string one;
    if (request == "request_current_state") {
        one = frame("report_current_state", state(load.size));
    } else if (request == "request_directory") {
        // Made once: making it takes as long as what is measured.
        static std::string const report = frame("report_directory", directory());
        one = report;
    }
    std::string all;
    all.reserve(one.size() * static_cast<std::size_t>(load.count));
    for (int i = 0; i < load.count; ++i) {
        all += one;
    }
    return all;
}

void serve(tcp::socket socket) {
    socket.set_option(tcp::no_delay(true));
    websocket::stream<tcp::socket> stream(std::move(socket));
    stream.accept();
    Load load;
    std::map<std::string, std::string> answers; // by request
    while (true) {
        beast::flat_buffer message;
        stream.read(message);
        std::istringstream text(beast::buffers_to_string(message.data()));
        Json::Value request;
        text >> request;
        std::string const name = request[0].asString();
        if (name == "set_app_name") {
            load = loadOf(request[1]["name"].asString());
            continue;
        }
        auto found = answers.find(name);
        if (found == answers.end()) {
            found = answers.emplace(name, answer(name, load)).first;
        }
        net::write(stream.next_layer(), net::buffer(found->second));
    }
}

} // namespace

int main() {
    try {
        net::io_context io;
        tcp::acceptor acceptor(io, {net::ip::address_v4::loopback(), 0});
        std::printf("loaddaemon: listening on 127.0.0.1:%d\n", acceptor.local_endpoint().port());
        std::fflush(stdout);
        while (true) {
            std::thread(
                [](tcp::socket socket) {
                    try {
                        serve(std::move(socket));
                    } catch (boost::system::system_error const&) {
                        // The client has gone: that is how each run ends.
                    }
                },
                acceptor.accept())
                .detach();
        }
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "loaddaemon: %s\n", failure.what());
        return 1;
    }
}
