// This is what one would write without a client of one's own: it makes the exchange of a run of "sdkcli state" by
// Boost.Beast and jsoncpp. beast PORT run | beast PORT loop COUNT, which prints round trips a second.

#include <utility> // Asio of this version needs it and doesn't include it

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <json/json.h>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;

class Client {
public:
    explicit Client(std::string const& port) {
        net::connect(stream.next_layer(), net::ip::tcp::resolver(io).resolve("127.0.0.1", port));
        stream.set_option(websocket::stream_base::decorator([](websocket::request_type& request) {
            request.set(beast::http::field::sec_websocket_protocol, "event-protocol");
        }));
        stream.handshake("127.0.0.1:" + port, "/");
        stream.next_layer().set_option(net::ip::tcp::no_delay(true));
        stream.text(true);
    }

    void send(std::string const& name, Json::Value const& payload) {
        Json::Value request(Json::arrayValue);
        request.append(name);
        request.append(payload);
        request.append("kelvaris_sdk");
        stream.write(net::buffer(request.toStyledString()));
    }

    Json::Value receive() {
        beast::flat_buffer buffer;
        stream.read(buffer);
        auto const* const text = static_cast<char const*>(buffer.data().data());
        Json::Value report;
        if (!reader->parse(text, text + buffer.size(), &report, nullptr)) {
            throw std::runtime_error("not a report");
        }
        return report;
    }

private:
    net::io_context io;
    websocket::stream<net::ip::tcp::socket> stream{io};
    std::unique_ptr<Json::CharReader> reader{Json::CharReaderBuilder().newCharReader()};
};

void loop(Client& client, int count) {
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        client.send("request_current_state", {});
        client.receive();
    }
    std::chrono::duration<double> const seconds = std::chrono::steady_clock::now() - start;
    std::printf("%.2f\n", count / seconds.count());
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 3) {
        std::fputs("usage: beast PORT run | beast PORT loop COUNT\n", stderr);
        return 2;
    }
    try {
        Client client(argv[1]);
        Json::Value name;
        name["name"] = "Kelvaris";
        client.send("set_app_name", name);
        client.send("request_current_state", {});
        Json::Value document;
        document["state"] = client.receive()[1]["state"];
        if (argc > 3) {
            loop(client, std::atoi(argv[3]));
        } else {
            std::fputs(document.toStyledString().c_str(), stdout);
        }
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "beast: %s\n", failure.what());
        return 1;
    }
    return 0;
}
