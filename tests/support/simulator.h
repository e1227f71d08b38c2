#pragma once

#include "support/process.h"

#include <cstdint>

namespace harness {

// The simulated daemon as a child, which listens once the object stands; killed with it.
class Simulator {
public:
    explicit Simulator(std::vector<std::string> const& options = {}, std::uint16_t wanted = 0)
        : process(commandLine(options, wanted)) {
        process.waitForOutput("\n");
        port = static_cast<std::uint16_t>(std::stoi(process.out().substr(process.out().rfind(':') + 1)));
    }

    Process process;
    std::uint16_t port = 0;

private:
    static Command commandLine(std::vector<std::string> const& options, std::uint16_t wanted) {
        Command command{.path = SIMULATOR_PATH, .argv = {"kelvarissim", "--port", std::to_string(wanted)}};
        command.argv.insert(command.argv.end(), options.begin(), options.end());
        return command;
    }
};

} // namespace harness
