// This is the grammar of the statistics and the tests.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "actions.h"
#include "calls.h"
#include "periods.h"
#include "readers.h"

namespace {

// Reads the name of a period, or its hours.
std::optional<uint32_t> readPeriod(char const* word) {
    for (NamedPeriod const& period : namedPeriods) {
        if (equals(word, period.name)) {
            return period.hours;
        }
    }
    return readCount(word);
}

} // namespace

int statsAction(int argc, char* argv[]) {
    if (argc == 2) {
        return requestStats(-1, 0, nullptr);
    }
    constexpr std::size_t maxPeriods = std::extent_v<decltype(KelvarisSDK_SessionStatsResult::periods)>;
    uint32_t periods[maxPeriods] = {};
    auto const count = static_cast<std::size_t>(argc - 3);
    if (count > maxPeriods) {
        return invalid(usage::stats);
    }
    std::optional<int> const duration = readInt(argv[2], -1);
    if (!duration) {
        return invalid(usage::stats);
    }
    for (std::size_t i = 0; i < count; ++i) {
        std::optional<uint32_t> const period = readPeriod(argv[3 + i]);
        if (!period) {
            return invalid(usage::stats);
        }
        periods[i] = *period;
    }
    return requestStats(*duration, static_cast<unsigned char>(count), periods);
}

// The two tests ignore further words.

int speedtestAction(int /*argc*/, char* /*argv*/[]) {
    return startSpeedtest();
}

int streamtestAction(int /*argc*/, char* /*argv*/[]) {
    return startStreamtest();
}
