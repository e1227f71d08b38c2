// Prints the session's state and the daemon's version. The daemon's port may be given.
//
//     c++ -std=c++17 blocking.cpp -lkelvarissdk -o blocking
//     ./blocking [PORT]

#include <cstdio>
#include <cstdlib>

#include <kelvarissdk/kelvarissdk.hpp>

int main(int argc, char* argv[]) {
    kelvaris::CreateSettings settings;
    settings.appName = "blocking";
    if (argc > 1) {
        settings.port = static_cast<std::uint16_t>(std::atoi(argv[1]));
    }
    kelvaris::Client const client(settings);

    // A result is a value or an error.
    kelvaris::Result<kelvaris::StateResult> const state =
        client.getState().within(std::chrono::seconds(2)).get();
    if (!state) {
        std::fprintf(stderr, "%s\n", state.error().message.c_str());
        return 1;
    }
    std::puts(toString(state->state));

    // Or it throws.
    try {
        kelvaris::VersionResult const version = client.getVersion().get().value();
        std::printf("daemon %d.%d.%d\n", version.maj, version.min, version.bug);
    } catch (kelvaris::Exception const& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
