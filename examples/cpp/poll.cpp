// Watches the session's state and the link in a loop of its own, until Return or so many states.
//
//     c++ -std=c++17 poll.cpp -lkelvarissdk -o poll
//     ./poll [PORT [COUNT]]

#include <cstdio>
#include <cstdlib>
#include <poll.h>

#include <kelvarissdk/kelvarissdk.hpp>

int main(int argc, char* argv[]) {
    kelvaris::CreateSettings settings;
    settings.delivery = kelvaris::Delivery::byQueue();
    if (argc > 1) {
        settings.port = static_cast<std::uint16_t>(std::atoi(argv[1]));
    }
    long left = argc > 2 ? std::atol(argv[2]) : -1; // below 0: no end
    kelvaris::Client const client(settings);

    auto const states =
        client.getState().subscribe([&left](kelvaris::Result<kelvaris::StateResult> const& state) {
            std::puts(state ? toString(state->state) : state.error().message.c_str());
            std::fflush(stdout);
            --left;
        });
    auto const link = client.onLink([](kelvaris::Link to) {
        std::fputs(to == kelvaris::Link::UP ? "linked\n" : "the daemon is away\n", stderr);
    });

    pollfd watched[] = {{client.fd(), POLLIN, 0}, {0, POLLIN, 0}};
    nfds_t const count = left < 0 ? 2 : 1;
    while (left != 0 && poll(watched, count, -1) > 0 && watched[1].revents == 0) {
        client.dispatch(16); // a few at a time, so that the other descriptor isn't starved
    }
    return 0;
}
