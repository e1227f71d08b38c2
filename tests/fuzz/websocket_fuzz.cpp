// Raw bytes from a peer, in slices that the input chooses, into the WebSocket client: an upgrade answer and
// frames. The files are included for what stands behind from_url, which then needs no listening socket.

#include "../../sdklibrary/websocket/easywsclient.cpp"
#include "../../sdklibrary/websocket/easywsframes.cpp"
#include "../../sdklibrary/websocket/easywsupgrade.cpp"

#include <cstdint>

namespace {

// The slices: each is as long as its first byte says.
void feed(int descriptor, std::span<std::uint8_t const> input, easywsclient::WebSocket& socket) {
    while (!input.empty()) {
        std::size_t const length = std::min<std::size_t>(input.front(), input.size() - 1);
        if (::send(descriptor, input.data() + 1, length, MSG_NOSIGNAL) < 0) {
            return;
        }
        input = input.subspan(1 + length);
        socket.poll(0);
        socket.dispatch([&](std::string const& message) { socket.send(message); });
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    int ends[2];
    if (size == 0 || ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) {
        return 0;
    }
    easywsclient::Descriptor ours(ends[0]);
    easywsclient::Descriptor peers(ends[1]);
    std::span<std::uint8_t const> input(data + 1, size - 1);
    if (data[0] % 2 == 0) {
        // All bytes at once and the end of the stream: what the upgrade leaves is the first frame.
        easywsclient::ReceiveBuffer received;
        ::send(peers.get(), input.data(), input.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        peers.close();
        easywsclient::readUpgradeAnswer(ours.get(), received);
        return 0;
    }
    ::fcntl(ours.get(), F_SETFL, O_NONBLOCK);
    easywsclient::_RealWebSocket socket(std::move(ours), {}, true);
    feed(peers.get(), input, socket);
    peers.close();
    socket.poll(0);
    socket.dispatch([](std::string const&) {});
    return 0;
}
