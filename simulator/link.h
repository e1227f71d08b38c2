#pragma once

#include "daemon.h"
#include "network.h"

#include <deque>
#include <memory>
#include <string>

namespace kelvarissim {

class Link;

struct Message {
    std::string text;
    bool isText;     // false: the client sent a binary message
    unsigned number; // counted per link, from 1
};

// A listener is notified of what happens on a link. ended() follows opened() exactly once.
class LinkListener {
public:
    virtual ~LinkListener() = default;
    virtual void opened(std::shared_ptr<Link> const& link) = 0;
    // Returning false stops the reading from the link.
    virtual bool received(std::shared_ptr<Link> const& link, Message const& message) = 0;
    // The reason is empty when the client closed the connection in an ordinary way.
    virtual void ended(Link const& link, std::string const& reason) = 0;
    // The peer failed in the upgrade and never became a client.
    virtual void refused(std::string const& reason) = 0;
};

// Owns the TCP connection and WebSocket of one client, from the accept to the end. The pending operations
// share the ownership of the link, so it lives until the last of them has finished.
class Link : public std::enable_shared_from_this<Link> {
public:
    Link(boost::asio::ip::tcp::socket socket, ClientId clientId, LinkListener& linkListener);

    ClientId id() const {
        return clientNumber;
    }
    void start();
    // This is false once drop() or sendCloseFrame() has been called.
    bool acceptsReports() const {
        return ending == Ending::none && !hasEnded;
    }
    void send(std::shared_ptr<std::string const> text);
    // Both calls first send the queued reports. drop() ends the connection without a close frame; after
    // sendCloseFrame() the connection stays until the client ends it.
    void drop() {
        endWith(Ending::drop);
    }
    void sendCloseFrame() {
        endWith(Ending::closeFrame);
    }

private:
    using Error = boost::beast::error_code;
    enum class Ending { none, drop, closeFrame };

    void acceptUpgrade();
    void opened();
    void read();
    void write();
    void endWith(Ending how);
    void finish();
    void end(Error error);

    boost::beast::websocket::stream<boost::beast::tcp_stream> stream;
    boost::beast::flat_buffer input;
    boost::beast::http::request<boost::beast::http::string_body> upgrade;
    ClientId const clientNumber;
    LinkListener& listener;
    std::deque<std::shared_ptr<std::string const>> outgoing; // the front is being written
    unsigned messagesRead = 0;
    Ending ending = Ending::none;
    bool isOpen = false;
    bool hasEnded = false;
};

} // namespace kelvarissim
