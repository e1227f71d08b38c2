#pragma once

#include <chrono>
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

// Where the reports of the statistics come from.
class Statistics {
public:
    virtual ~Statistics() = default;

    // Lets this time pass, and says whether it has changed the state of an adapter.
    virtual bool advance(std::chrono::milliseconds time) = 0;
    // Says whether time passes although no client listens.
    virtual bool goesOnUnheard() const = 0;

    virtual Json::Value connectionReport() const = 0;
    virtual Json::Value sessionReport(std::set<Period> const& periods) const = 0;
    virtual Json::Value streamingReport() const = 0;
};

} // namespace kelvarissim
