// Asks for several things at once and waits for all of them. The daemon's port may be given.
//
//     c++ -std=c++17 futures.cpp -lkelvarissdk -o futures
//     ./futures [PORT]

#include <cstdio>
#include <cstdlib>

#include <kelvarissdk/kelvarissdk.hpp>

int main(int argc, char* argv[]) {
    kelvaris::CreateSettings settings;
    if (argc > 1) {
        settings.port = static_cast<std::uint16_t>(std::atoi(argv[1]));
    }
    kelvaris::Client const client(settings);

    auto state = client.getState().future();
    auto adapters = client.getAdapters().future();
    auto directory = client.getDirectory().future();
    try {
        std::puts(toString(state.get().value().state));
        for (kelvaris::AdapterData const& adapter : adapters.get().value().adapters) {
            std::printf("%s, %s", adapter.adapterID.c_str(), toString(adapter.type));
            if (adapter.rateLimit) {
                std::printf(", at most %lld bit/s", static_cast<long long>(*adapter.rateLimit));
            }
            std::puts("");
        }
        auto const servers = directory.get().value().servers;
        if (!servers.empty()) {
            std::printf("%zu servers, the first: %s\n", servers.size(), toString(servers.front()).c_str());
        }
    } catch (kelvaris::Exception const& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
