#include "daemonoptions.h"

#include <limits>

namespace kelvarissim {

namespace {

constexpr int maxMs = 3'600'000;
constexpr int maxSpeed = 1440; // a day in a minute
constexpr unsigned maxRequests = std::numeric_limits<unsigned>::max();

// Reads "REQUEST=REASON". A request name may contain "=", so the last one separates.
bool addLock(std::map<std::string, int>& locks, std::string const& word) {
    std::size_t const equals = word.rfind('=');
    if (equals == std::string::npos || equals == 0) {
        return false;
    }
    auto const reason = readNumber<int>(std::string_view(word).substr(equals + 1),
                                        std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    if (reason) {
        locks[word.substr(0, equals)] = *reason;
    }
    return reason.has_value();
}

} // namespace

void addDaemonOptions(OptionTable& options, Settings& settings) {
    options.number<std::uint16_t>("--port", "N", "listens on this port (9330); 0 picks a free one", 0, 65535,
                                  settings.port);
    options.flag("--verbose", "logs each request (<-) and each report (->) on standard error",
                 settings.verbose);
    options.number("--interval", "MS", "time between two periodic reports (1000)", 1, maxMs,
                   settings.intervalMs);
    options.flag("--traffic", "connects at the start and lives through days of lively traffic",
                 settings.traffic);
    options.number("--seed", "N", "which days --traffic lives through (1)", std::uint64_t{0},
                   std::numeric_limits<std::uint64_t>::max(), settings.seed);
    options.number("--speed", "FACTOR", "how much faster they pass than real ones (1)", 1, maxSpeed,
                   settings.speed);
    options.flag("--silent", "upgrades and obeys, but reports nothing", settings.silent);
    options.number("--delay", "MS", "handles each request that much later, in order", 0, maxMs,
                   settings.delayMs);
    options.text("--lock", "REQUEST=REASON", "answers that request with a locked setting; repeatable",
                 [&settings](std::string const& word) { return addLock(settings.locks, word); });
    options.number("--drop-after", "N", "drops each link after N requests on it, set_app_name included", 1U,
                   maxRequests, settings.dropAfter);
    options.number("--close-frame-after", "N", "sends a WebSocket close frame after N requests instead", 1U,
                   maxRequests, settings.closeFrameAfter);
}

} // namespace kelvarissim
