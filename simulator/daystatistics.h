#pragma once

#include "day.h"
#include "statistics.h"
#include "world.h"

namespace kelvarissim {

// Returns the adapters of --traffic in the form of their report.
std::vector<Json::Value> dayAdapters();

// The reports of --traffic. What clients set for the adapters stands in the world and decides what the day's lines
// may carry; what they have carried is written back there.
class DayStatistics final : public Statistics {
public:
    explicit DayStatistics(World& surroundings);

    bool advance(std::chrono::milliseconds time) override;
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
    std::int64_t now() const {
        return start + day.elapsedMs();
    }

    World& world;
    Day day;
    std::int64_t const start; // milliseconds since the epoch, as are the reports' times
};

} // namespace kelvarissim
