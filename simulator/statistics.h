#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <json/value.h>
#include <set>

namespace kelvarissim {

using Period = std::uint32_t; // hours; 0: this session
constexpr Period allTime = UINT32_MAX;

inline std::int64_t millisecondsSinceEpoch() {
    auto const time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

constexpr int packetBytes = 1400;

inline Json::Value rounded(double number) {
    return Json::Int64(std::llround(number));
}

// Estimates the mean opinion score of a call over a link, from 1 to 4.4.
inline double meanOpinionScore(double latencyMs, double loss) {
    return std::clamp(4.4 - latencyMs / 250 - loss * 30, 1.0, 4.4);
}

inline Json::Value packetCounts(std::int64_t bytesIn, std::int64_t bytesOut) {
    Json::Value counts;
    counts["packets_in"] = bytesIn / packetBytes;
    counts["packets_out"] = bytesOut / packetBytes;
    counts["bytes_in"] = bytesIn;
    counts["bytes_out"] = bytesOut;
    return counts;
}

// Where the reports of the statistics come from.
class Statistics {
public:
    virtual ~Statistics() = default;

    // Time begins to pass.
    virtual void begin() = 0;
    // Lets this time pass, and says whether it has changed the state of an adapter.
    virtual bool advance(std::chrono::milliseconds time) = 0;
    // Clients have been told of the time that has passed.
    virtual void endReport() = 0;
    // Says whether time passes although no client listens, and between two reports.
    virtual bool goesOnUnheard() const = 0;

    virtual Json::Value connectionReport() const = 0;
    virtual Json::Value sessionReport(std::set<Period> const& periods) const = 0;
    virtual Json::Value streamingReport() const = 0;
};

} // namespace kelvarissim
