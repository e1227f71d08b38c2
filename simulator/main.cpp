#include "families.h"
#include "server.h"

#include <csignal>
#include <exception>
#include <iostream>

namespace kelvarissim {

namespace {

void registerFamilies(Registry& registry) {
    registerCore(registry);
    registerSession(registry);
    registerDirectorySettings(registry);
    registerSettings(registry);
    registerAdapters(registry);
    registerTrafficLists(registry);
    registerTelemetry(registry);
    registerSafeBrowsing(registry);
}

int run(std::vector<std::string> const& words) {
    OptionTable options;
    Settings settings;
    addDaemonOptions(options, settings);
    Registry registry(options);
    registerFamilies(registry);
    OptionTable::Outcome const outcome = options.parse(words, std::cout, std::cerr);
    if (outcome != OptionTable::Outcome::run) {
        return outcome == OptionTable::Outcome::helpShown ? 0 : 2;
    }

    Server server(registry, settings);
    std::uint16_t const port = server.listen();
    std::cout << "kelvarissim: listening on 127.0.0.1:" << port << std::endl;
    server.run();
    return 0;
}

} // namespace

} // namespace kelvarissim

int main(int argc, char** argv) {
    // A reader of the log may end before the daemon does, which must not end the daemon too.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return kelvarissim::run({argv + 1, argv + argc});
    } catch (std::exception const& error) {
        std::cerr << "kelvarissim: " << error.what() << '\n';
        return 1;
    }
}
