#pragma once

#include "options.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace kelvarissim {

// The command line decides here where the daemon listens and which faults it shows.
struct Settings {
    std::uint16_t port = 9330; // 0: any free one
    bool verbose = false;
    int intervalMs = 1000; // between two periodic reports
    bool traffic = false;
    std::uint64_t seed = 1; // of the traffic
    int speed = 1;          // of the traffic's clock
    bool silent = false;
    int delayMs = 0;
    std::map<std::string, int> locks; // request name -> reason
    std::optional<unsigned> dropAfter;
    std::optional<unsigned> closeFrameAfter;
};

void addDaemonOptions(OptionTable& options, Settings& settings);

} // namespace kelvarissim
