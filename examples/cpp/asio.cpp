// Watches the session's state on the threads of an Asio context, until so many states.
//
//     c++ -std=c++17 asio.cpp -lkelvarissdk -pthread -o asio
//     ./asio [PORT [COUNT]]

#include <cstdio>
#include <cstdlib>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <kelvarissdk/kelvarissdk.hpp>

int main(int argc, char* argv[]) {
    boost::asio::io_context context;
    auto work = boost::asio::make_work_guard(context);

    kelvaris::CreateSettings settings;
    settings.delivery = kelvaris::Delivery::byExecutor(
        [&context](kelvaris::Delivery::Task task) { boost::asio::post(context, std::move(task)); });
    if (argc > 1) {
        settings.port = static_cast<std::uint16_t>(std::atoi(argv[1]));
    }
    long left = argc > 2 ? std::atol(argv[2]) : -1; // below 0: no end
    kelvaris::Client const client(std::move(settings));

    auto const states =
        client.getState().subscribe([&](kelvaris::Result<kelvaris::StateResult> const& state) {
            std::puts(state ? toString(state->state) : state.error().message.c_str());
            std::fflush(stdout);
            if (--left == 0) {
                work.reset();
                context.stop();
            }
        });
    context.run();
    return 0;
}
