// The grammar of the statistics and the tests.

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>

#include "../calls.h"
#include "actions.h"
#include "readers.h"

namespace {

// Hours, or the name of a period.
std::optional<uint32_t> readPeriod(char const* word) {
    if (is(word, "current")) {
        return 0;
    }
    if (is(word, "total")) {
        return UINT32_MAX;
    }
    if (is(word, "day")) {
        return 24;
    }
    if (is(word, "week")) {
        return 168;
    }
    if (is(word, "month")) {
        return 720;
    }
    return readCount(word);
}

} // namespace

int statsAction(int argc, char* argv[]) {
    char const* const usage =
        "stats [duration in seconds] [current|day|week|month|total|<period in hours>] ...";
    if (argc == 2) {
        return requestStats(-1, 0, nullptr);
    }
    uint32_t periods[5] = {};
    auto const count = static_cast<std::size_t>(argc - 3);
    if (count > std::size(periods)) {
        return invalid(usage);
    }
    std::optional<int> const duration = readInt(argv[2], -1);
    if (!duration) {
        return invalid(usage);
    }
    for (std::size_t i = 0; i < count; ++i) {
        std::optional<uint32_t> const period = readPeriod(argv[3 + i]);
        if (!period) {
            return invalid(usage);
        }
        periods[i] = *period;
    }
    return requestStats(*duration, static_cast<unsigned char>(count), periods);
}

// Words behind the two are ignored.
int speedtestAction() {
    return startSpeedtest();
}

int streamtestAction() {
    return startStreamtest();
}
