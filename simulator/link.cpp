#include "link.h"

#include <chrono>

namespace kelvarissim {

namespace {

namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;

constexpr char const* subprotocol = "event-protocol";
constexpr std::chrono::seconds handshakeTimeout{30};

bool isOrdinaryClose(beast::error_code const& error) {
    namespace asio = boost::asio;
    return !error || error == asio::error::eof || error == asio::error::connection_reset ||
           error == asio::error::broken_pipe || error == asio::error::operation_aborted ||
           error == http::error::end_of_stream || error == websocket::error::closed;
}

} // namespace

Link::Link(boost::asio::ip::tcp::socket socket, ClientId clientId, LinkListener& linkListener)
    : stream(std::move(socket)), clientNumber(clientId), listener(linkListener) {}

void Link::start() {
    beast::tcp_stream& tcp = beast::get_lowest_layer(stream);
    Error ignored;
    tcp.socket().set_option(boost::asio::ip::tcp::no_delay(true), ignored);
    tcp.expires_after(handshakeTimeout);
    http::async_read(tcp, input, upgrade, [self = shared_from_this()](Error error, std::size_t) {
        if (error) {
            self->end(error);
        } else {
            self->acceptUpgrade();
        }
    });
}

void Link::acceptUpgrade() {
    beast::get_lowest_layer(stream).expires_never();
    stream.set_option(
        websocket::stream_base::timeout{handshakeTimeout, websocket::stream_base::none(), false});
    if (http::token_list(upgrade[http::field::sec_websocket_protocol]).exists(subprotocol)) {
        stream.set_option(websocket::stream_base::decorator([](websocket::response_type& response) {
            response.set(http::field::sec_websocket_protocol, subprotocol);
        }));
    }
    stream.async_accept(upgrade, [self = shared_from_this()](Error error) {
        if (error) {
            self->end(error);
        } else {
            self->opened();
        }
    });
}

void Link::opened() {
    // These time-outs are off, because an idle link is no fault and a client may take its time after a close
    // frame.
    stream.set_option(websocket::stream_base::timeout{websocket::stream_base::none(),
                                                      websocket::stream_base::none(), false});
    stream.auto_fragment(false);
    stream.text(true);
    input.clear();
    isOpen = true;
    listener.opened(shared_from_this());
    read();
}

void Link::read() {
    stream.async_read(input, [self = shared_from_this()](Error error, std::size_t) {
        if (error) {
            self->end(error);
            return;
        }
        Message const message{beast::buffers_to_string(self->input.data()), self->stream.got_text(),
                              ++self->messagesRead};
        self->input.clear();
        if (self->listener.received(self, message)) {
            self->read();
        }
    });
}

void Link::send(std::shared_ptr<std::string const> text) {
    outgoing.push_back(std::move(text));
    if (outgoing.size() == 1) {
        write();
    }
}

void Link::write() {
    stream.async_write(boost::asio::buffer(*outgoing.front()),
                       [self = shared_from_this()](Error error, std::size_t) {
                           if (error) {
                               self->end(error);
                               return;
                           }
                           self->outgoing.pop_front();
                           if (!self->outgoing.empty()) {
                               self->write();
                           } else if (self->ending != Ending::none) {
                               self->finish();
                           }
                       });
}

void Link::endWith(Ending how) {
    if (!acceptsReports()) {
        return;
    }
    ending = how;
    if (outgoing.empty()) {
        finish();
    }
}

void Link::finish() {
    if (ending == Ending::drop) {
        end({});
        return;
    }
    stream.async_close(websocket::close_code::normal,
                       [self = shared_from_this()](Error error) { self->end(error); });
}

void Link::end(Error error) {
    if (hasEnded) {
        return;
    }
    hasEnded = true;
    Error ignored;
    beast::get_lowest_layer(stream).socket().shutdown(boost::asio::ip::tcp::socket::shutdown_both, ignored);
    beast::get_lowest_layer(stream).close();
    std::string const reason = isOrdinaryClose(error) ? "" : error.message();
    if (isOpen) {
        listener.ended(*this, reason);
    } else if (!reason.empty()) {
        listener.refused(reason);
    }
}

} // namespace kelvarissim
