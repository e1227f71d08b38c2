// The floor of a C++ program that loads what the tool loads: the exchange of a run of "sdkcli state" on one
// thread, with jsoncpp both ways. minimal_cpp PORT

#include <arpa/inet.h>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <json/json.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace {

class Link {
public:
    explicit Link(std::uint16_t port) : descriptor(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            throw std::runtime_error("can't connect");
        }
        sendAll("GET / HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
                "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\nOrigin: easywsclient://\r\n"
                "Sec-WebSocket-Key: QpV7dKz2RmYt4LsHn8XwBg==\r\nSec-WebSocket-Version: 13\r\n"
                "Sec-WebSocket-Protocol: event-protocol\r\n\r\n");
        std::size_t head = std::string::npos;
        while ((head = received.find("\r\n\r\n")) == std::string::npos) {
            read();
        }
        received.erase(0, head + 4);
        int const on = 1;
        setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }

    ~Link() {
        close(descriptor);
    }

    Link(Link const&) = delete;
    Link& operator=(Link const&) = delete;

    void sendAll(std::string const& bytes) const {
        for (std::size_t sent = 0; sent < bytes.size();) {
            ssize_t const result = send(descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (result <= 0) {
                throw std::runtime_error("can't send");
            }
            sent += static_cast<std::size_t>(result);
        }
    }

    // The payload of one frame of less than 126 bytes.
    std::string receive() {
        while (received.size() < 2 ||
               received.size() < 2 + std::size_t{static_cast<unsigned char>(received[1])}) {
            read();
        }
        std::string message = received.substr(2, static_cast<unsigned char>(received[1]));
        received.erase(0, 2 + message.size());
        return message;
    }

private:
    void read() {
        std::array<char, 16384> bytes;
        ssize_t const result = recv(descriptor, bytes.data(), bytes.size(), 0);
        if (result <= 0) {
            throw std::runtime_error("the daemon has ended the connection");
        }
        received.append(bytes.data(), static_cast<std::size_t>(result));
    }

    int const descriptor;
    std::string received;
};

std::string frame(std::string const& name, Json::Value const& payload) {
    constexpr std::array<unsigned char, 4> key{0xA7, 0x1C, 0x5E, 0x39};
    Json::Value request(Json::arrayValue);
    request.append(name);
    request.append(payload);
    request.append("kelvaris_sdk");
    std::string const text = request.toStyledString();
    std::string bytes{'\x81', static_cast<char>(0x80 | text.size())};
    bytes.append(key.begin(), key.end());
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes += static_cast<char>(text[i] ^ key[i & 3]);
    }
    return bytes;
}

Json::Value parsed(std::string const& text) {
    Json::CharReaderBuilder const builder;
    std::unique_ptr<Json::CharReader> const reader(builder.newCharReader());
    Json::Value document;
    if (!reader->parse(text.data(), text.data() + text.size(), &document, nullptr)) {
        throw std::runtime_error("not a report: " + text);
    }
    return document;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fputs("usage: minimal_cpp PORT\n", stderr);
        return 2;
    }
    try {
        Link link(static_cast<std::uint16_t>(std::atoi(argv[1])));
        Json::Value name;
        name["name"] = "Kelvaris";
        link.sendAll(frame("set_app_name", name) + frame("request_current_state", {}));
        Json::Value document;
        document["state"] = parsed(link.receive())[1]["state"];
        std::fputs(document.toStyledString().c_str(), stdout);
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "minimal_cpp: %s\n", failure.what());
        return 1;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
