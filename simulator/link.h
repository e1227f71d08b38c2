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
    bool isText;     // not a binary one
    unsigned number; // on its link, from 1
};

// Who is told what happens on a link. ended() follows opened() exactly once.
class LinkOwner {
public:
    virtual ~LinkOwner() = default;
    virtual void opened(std::shared_ptr<Link> const& link) = 0;
    // Returns false when nothing more is to be read from the link.
    virtual bool received(std::shared_ptr<Link> const& link, Message const& message) = 0;
    // The reason is empty when the client just went away.
    virtual void ended(Link const& link, std::string const& reason) = 0;
    // A peer that never became a client.
    virtual void refused(std::string const& reason) = 0;
};

// The TCP connection and WebSocket of one client, from the accept to the end. Its pending operations keep it
// alive.
class Link : public std::enable_shared_from_this<Link> {
public:
    Link(boost::asio::ip::tcp::socket socket, ClientId clientId, LinkOwner& linkOwner);

    ClientId id() const {
        return clientNumber;
    }
    void start();
    // False once an end has been asked for.
    bool takesReports() const {
        return ending == Ending::none && !hasEnded;
    }
    void send(std::shared_ptr<std::string const> text);
    // Both first send what is queued. A drop ends the connection without a close frame; after a close frame
    // the connection stays until the client ends it.
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
    LinkOwner& owner;
    std::deque<std::shared_ptr<std::string const>> outgoing; // the front is being written
    unsigned messagesRead = 0;
    Ending ending = Ending::none;
    bool isOpen = false;
    bool hasEnded = false;
};

} // namespace kelvarissim
