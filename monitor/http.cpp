#include "http.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace monitor {

namespace {

// Connections that are kept. The server takes some more, so that a new one gets in before an idle one has left.
constexpr std::size_t keptClients = 32;
constexpr unsigned mostClients = 2 * keptClients;
constexpr unsigned idleLimit = 30; // seconds
constexpr std::size_t requestLimit =
    16384; // bytes of a request's head, and what else a connection needs meanwhile

using Addresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

std::string nameOf(Endpoint const& endpoint) {
    bool const isIPv6 = endpoint.address.find(':') != std::string::npos;
    return (isIPv6 ? "[" + endpoint.address + "]" : endpoint.address) + ":" + std::to_string(endpoint.port);
}

Addresses resolve(Endpoint const& endpoint) {
    addrinfo hints{};
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    int const error =
        getaddrinfo(endpoint.address.c_str(), std::to_string(endpoint.port).c_str(), &hints, &found);
    if (error != 0) {
        throw std::runtime_error("can't listen on " + nameOf(endpoint) + ": " + gai_strerror(error));
    }
    return {found, freeaddrinfo};
}

// A port that was just left may be used at once, and an IPv6 address doesn't stand for IPv4 ones too.
int listenOn(Endpoint const& endpoint) {
    Addresses const found = resolve(endpoint);
    int const descriptor = socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    int const on = 1;
    bool const isDone =
        descriptor >= 0 && setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
        (found->ai_family != AF_INET6 ||
         setsockopt(descriptor, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on) == 0) &&
        bind(descriptor, found->ai_addr, found->ai_addrlen) == 0 && listen(descriptor, SOMAXCONN) == 0;
    if (!isDone) {
        int const error = errno;
        if (descriptor >= 0) {
            close(descriptor);
        }
        throw std::system_error(error, std::generic_category(), "can't listen on " + nameOf(endpoint));
    }
    return descriptor;
}

// Port 0 stands for one that the system has chosen.
std::uint16_t portOf(int descriptor) {
    sockaddr_storage bound{};
    socklen_t size = sizeof bound;
    getsockname(descriptor, reinterpret_cast<sockaddr*>(&bound), &size);
    return ntohs(bound.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6 const&>(bound).sin6_port
                                             : reinterpret_cast<sockaddr_in const&>(bound).sin_port);
}

MHD_Result queue(MHD_Connection* connection, HttpReply const& reply) {
    Microhttpd const& http = Microhttpd::get();
    MHD_Response* const response =
        http.createResponse(reply.body.size(), const_cast<char*>(reply.body.data()), MHD_RESPMEM_MUST_COPY);
    if (response == nullptr) {
        return MHD_NO;
    }
    http.addHeader(response, MHD_HTTP_HEADER_CONTENT_TYPE, reply.type.c_str());
    http.addHeader(response, MHD_HTTP_HEADER_VARY, MHD_HTTP_HEADER_ACCEPT);
    if (reply.status == MHD_HTTP_METHOD_NOT_ALLOWED) {
        http.addHeader(response, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
    }
    MHD_Result const result = http.queueResponse(connection, reply.status, response);
    http.destroyResponse(response);
    return result;
}

} // namespace

HttpServer::HttpServer(Loop& ofLoop, Endpoint const& endpoint, Answer ofAnswer)
    : loop(ofLoop), answer(std::move(ofAnswer)) {
    int const descriptor = listenOn(endpoint);
    address = "http://" + nameOf({endpoint.address, portOf(descriptor)});
    daemon = http.startDaemon(MHD_USE_EPOLL, 0, nullptr, nullptr, onRequest, this, MHD_OPTION_LISTEN_SOCKET,
                              descriptor, MHD_OPTION_NOTIFY_CONNECTION, onConnection, this,
                              MHD_OPTION_CONNECTION_LIMIT, mostClients, MHD_OPTION_CONNECTION_TIMEOUT,
                              idleLimit, MHD_OPTION_CONNECTION_MEMORY_LIMIT, requestLimit, MHD_OPTION_END);
    if (daemon == nullptr) {
        close(descriptor);
        throw std::runtime_error("the HTTP server can't be started");
    }
}

HttpServer::~HttpServer() {
    loop.removeDescriptor(watched);
    loop.removeTimer(timer);
    http.stopDaemon(daemon);
}

void HttpServer::begin() {
    int const descriptor = http.daemonInfo(daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
    watched = loop.addDescriptor(descriptor, POLLIN, [this](short) { work(); });
}

void HttpServer::work() {
    http.run(daemon);
    loop.removeTimer(std::exchange(timer, 0));
    MHD_UNSIGNED_LONG_LONG milliseconds = 0;
    if (http.timeout(daemon, &milliseconds) == MHD_YES) {
        timer = loop.setTimer(std::chrono::milliseconds(milliseconds), [this] { work(); });
    }
}

// The first call for a request has its head only; an answer then would close the connection.
MHD_Result HttpServer::onRequest(void* self, MHD_Connection* connection, char const* url, char const* method,
                                 char const*, char const*, std::size_t* uploadSize, void** seen) {
    static char mark;
    bool const isRead =
        std::strcmp(method, MHD_HTTP_METHOD_GET) == 0 || std::strcmp(method, MHD_HTTP_METHOD_HEAD) == 0;
    if (isRead && std::exchange(*seen, &mark) == nullptr) {
        return MHD_YES;
    }
    if (isRead && *uploadSize != 0) {
        *uploadSize = 0; // a body, which means nothing
        return MHD_YES;
    }
    try {
        return static_cast<HttpServer*>(self)->answerTo(connection, url, isRead);
    } catch (std::exception const&) {
        return MHD_NO; // there was no memory; the connection is closed
    }
}

MHD_Result HttpServer::answerTo(MHD_Connection* connection, char const* url, bool isRead) {
    if (!isRead) {
        return queue(connection,
                     {MHD_HTTP_METHOD_NOT_ALLOWED, plainText, "Only GET and HEAD are answered.\n"});
    }
    char const* const accept = http.lookup(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_ACCEPT);
    MHD_Result const result = queue(connection, answer({url, accept == nullptr ? "" : accept}));
    void* const client = http.connectionInfo(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context;
    static_cast<Client*>(client)->lastAnswer = Clock::now();
    return result;
}

void HttpServer::onConnection(void* self, MHD_Connection* connection, void** client,
                              MHD_ConnectionNotificationCode code) {
    HttpServer& server = *static_cast<HttpServer*>(self);
    if (code == MHD_CONNECTION_NOTIFY_CLOSED) {
        std::erase_if(server.clients, [client](Client const& each) { return &each == *client; });
        return;
    }
    server.makeRoom();
    int const socket = server.http.connectionInfo(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
    *client = &server.clients.emplace_back(Client{socket, Clock::now()});
}

// The server finds the connection closed in its next round.
void HttpServer::makeRoom() {
    auto const isKept = [](Client const& client) { return !client.isCutOff; };
    if (static_cast<std::size_t>(std::count_if(clients.begin(), clients.end(), isKept)) < keptClients) {
        return;
    }
    auto const idlest =
        std::min_element(clients.begin(), clients.end(), [](Client const& one, Client const& other) {
            return std::pair(one.isCutOff, one.lastAnswer) < std::pair(other.isCutOff, other.lastAnswer);
        });
    idlest->isCutOff = true;
    shutdown(idlest->socket, SHUT_RDWR);
}

} // namespace monitor
