// The floor of a C++ program with shared libraries: the exchange of a run of the tool on one thread, with jsoncpp
// both ways. "servers" prints what the tool prints.
//
//   minimal_cpp PORT state|servers

#include <arpa/inet.h>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <json/json.h>
#include <memory>
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

    // Returns the payload of one frame of less than 64 KiB.
    std::string receive() {
        need(2);
        std::size_t head = 2;
        std::size_t size = byte(1);
        if (size == 126) {
            head = 4;
            need(head);
            size = byte(2) << 8 | byte(3);
        }
        need(head + size);
        std::string message = received.substr(head, size);
        received.erase(0, head + size);
        return message;
    }

private:
    std::size_t byte(std::size_t place) const {
        return static_cast<unsigned char>(received[place]);
    }

    void need(std::size_t count) {
        while (received.size() < count) {
            read();
        }
    }

    void read() {
        std::array<char, 65536> bytes;
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

// Returns the element behind the name of the report that answers the request.
Json::Value ask(Link& link, char const* request) {
    Json::Value name;
    name["name"] = "Kelvaris";
    link.sendAll(frame("set_app_name", name) + frame(request, {}));
    return parsed(link.receive())[1];
}

std::string stateDocument(Json::Value const& payload) {
    Json::Value document;
    document["state"] = payload["state"];
    return document.toStyledString();
}

std::string quoted(std::string const& text) {
    return Json::valueToQuotedString(text.c_str());
}

std::string serverList(Json::Value const& servers, bool privateOnes) {
    std::string list;
    for (Json::Value const& server : servers) {
        if ((server["private"] == "yes") == privateOnes) {
            std::string const city = server["city"].asString();
            std::string const country = server["country"].asString();
            std::string const num = std::to_string(server["num"].asInt());
            std::string const tag = (privateOnes ? "private" : "") + country + '-' + city + '-' + num;
            list += list.empty() ? "\n\t[\n\t\t{" : ",\n\t\t{";
            list += "\n\t\t\t\"city\" : " + quoted(city) + ",\n\t\t\t\"country\" : " + quoted(country) +
                    ",\n\t\t\t\"isPrivate\" : " + (privateOnes ? "true" : "false") +
                    ",\n\t\t\t\"num\" : " + num + ",\n\t\t\t\"tag\" : " + quoted(tag) + "\n\t\t}";
        }
    }
    return list.empty() ? "[]" : list + "\n\t]";
}

// Writes what jsoncpp would write of a document, which takes longer to build and to write than the report to parse.
std::string serversDocument(Json::Value const& servers) {
    return "{\n\t\"private\" : " + serverList(servers, true) +
           ",\n\t\"public\" : " + serverList(servers, false) + "\n}\n";
}

} // namespace

int main(int argc, char* argv[]) {
    std::string const action = argc == 3 ? argv[2] : "";
    if (action != "state" && action != "servers") {
        std::fputs("usage: minimal_cpp PORT state|servers\n", stderr);
        return 2;
    }
    try {
        Link link(static_cast<std::uint16_t>(std::atoi(argv[1])));
        std::string const document = action == "state" ? stateDocument(ask(link, "request_current_state"))
                                                       : serversDocument(ask(link, "request_directory"));
        std::fputs(document.c_str(), stdout);
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "minimal_cpp: %s\n", failure.what());
        return 1;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
