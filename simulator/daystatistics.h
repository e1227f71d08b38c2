#pragma once

#include "day.h"
#include "statistics.h"
#include "world.h"

namespace kelvarissim {

// Returns the adapters of --traffic in the form of their report.
std::vector<Json::Value> dayAdapters();

// The reports of --traffic. What clients set for the adapters stands in the world and decides what the day's lines
// may carry; what they have carried is written back there. Who takes the age of a session or a stream from its start
// has the real clock for it, so the starts are told so much earlier as the day has gained on that clock.
class DayStatistics final : public Statistics {
public:
    DayStatistics(World& surroundings, int speedFactor);

    void begin() override;
    bool advance(std::chrono::milliseconds time) override;
    void endReport() override {
        day.endReport();
    }
    bool goesOnUnheard() const override {
        return true;
    }
    Json::Value connectionReport() const override;
    Json::Value sessionReport(std::set<Period> const& periods) const override;
    Json::Value streamingReport() const override;

private:
    Json::Value connection(std::size_t index) const;
    Json::Value period(Period hours) const;
    Json::Value benefit(bool isUpload) const;
    Json::Value stream(Stream const& stream) const;
    std::int64_t beforeDay() const;
    std::int64_t sessionMs() const;
    std::int64_t toldSessionStart() const;

    World& world;
    Day day;
    int const speed;
    std::optional<std::int64_t> dayStart; // milliseconds since the epoch, as are the reports' times
    std::int64_t sessionStart = 0;        // by the real clock, as is the next
    std::optional<std::int64_t> waitEnd;  // when the day began, or the session ended before it
};

} // namespace kelvarissim
