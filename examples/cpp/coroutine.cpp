// Awaits one call after the other. The daemon's port may be given.
//
//     c++ -std=c++20 coroutine.cpp -lkelvarissdk -o coroutine
//     ./coroutine [PORT]

#include <cstdio>
#include <cstdlib>
#include <poll.h>

#include <kelvarissdk/kelvarissdk.hpp>

// The least that a coroutine needs; programs have a richer one.
struct Task {
    struct promise_type {
        Task get_return_object() {
            return {};
        }
        std::suspend_never initial_suspend() noexcept {
            return {};
        }
        std::suspend_never final_suspend() noexcept {
            return {};
        }
        void return_void() {}
        void unhandled_exception() {
            std::terminate();
        }
    };
};

static Task show(kelvaris::Client const& client, bool& done) {
    auto const state = co_await client.getState();
    std::puts(state ? toString(state->state) : state.error().message.c_str());
    auto const version = co_await client.getVersion().within(std::chrono::seconds(1));
    std::printf("daemon %d\n", version ? version->maj : 0);
    done = true;
}

int main(int argc, char* argv[]) {
    kelvaris::CreateSettings settings;
    settings.delivery = kelvaris::Delivery::byQueue(); // the coroutine stays on this thread
    if (argc > 1) {
        settings.port = static_cast<std::uint16_t>(std::atoi(argv[1]));
    }
    kelvaris::Client const client(settings);
    bool done = false;
    show(client, done);
    while (!done) {
        pollfd readable{client.fd(), POLLIN, 0};
        poll(&readable, 1, -1);
        client.dispatch();
    }
    return 0;
}
