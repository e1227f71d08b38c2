#pragma once

#include "statistics.h"

#include <array>
#include <random>
#include <string>

namespace kelvarissim {

// The simulated traffic of a bonded session. The Wi-Fi link fades, drops and recovers every twenty steps;
// meanwhile the cellular link, with three times the latency, carries everything, and the stream's health
// becomes poor. The noise is the same in every run.
class Traffic final : public Statistics {
public:
    Traffic();

    void begin() override {}
    // Advances by one step: the links get new values, and the counters grow by the traffic of that time. The
    // adapters stay as they are.
    bool advance(std::chrono::milliseconds time) override;
    void endReport() override {}
    bool goesOnUnheard() const override {
        return false;
    }
    Json::Value connectionReport() const override;
    Json::Value sessionReport(std::set<Period> const& periods) const override;
    Json::Value streamingReport() const override;

private:
    struct Link {
        std::string adapter;
        std::string localIp;
        std::string protocol;
        double baseLatencyMs;
        double downMbps; // at full quality, as is the next
        double upMbps;
        double quality = 1; // from 0, which is down, to 1
        double latencyMs = 0;
        double jitterMs = 0;
        double loss = 0;
        std::int64_t receiveBps = 0;
        std::int64_t sendBps = 0;
    };

    struct Counters {
        std::int64_t received = 0;
        std::int64_t sent = 0;
        std::int64_t resent = 0;
        std::int64_t failovers = 0;
        double maxDownMbps = 0;
        double maxUpMbps = 0;
    };

    double noise(double spread); // a random factor around 1
    void advanceLink(Link& link, double quality);
    void count(std::chrono::milliseconds time);
    Json::Value connection(Link const& link) const;
    Json::Value period(Period hours) const;
    Json::Value benefit(double Link::*mbps) const;

    std::minstd_rand random;
    std::int64_t const start; // milliseconds since the epoch, as are the reports' times
    std::int64_t now;
    unsigned step = 0;
    std::array<Link, 2> links; // Wi-Fi, cellular
    Counters counters;
};

} // namespace kelvarissim
