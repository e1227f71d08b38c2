#pragma once

#include "random.h"

#include <cstdint>
#include <optional>

namespace kelvarissim {

// The traffic advances in steps of this length, so that a day doesn't depend on how often it is reported.
constexpr std::int64_t stepMs = 100;
constexpr double stepSeconds = stepMs / 1000.0;

// The temper of an adapter's line. The quality of a line goes from 0 to 1; rates and latency follow it.
struct Character {
    double downMbps; // at full quality, as are the next two
    double upMbps;
    double latencyMs;
    double jitter;      // as a part of the latency
    double loss;        // the ratio of lost packets
    double wander;      // how far the quality strays
    double lullQuality; // between two bursts, is 1 for a line without lulls
    double lullSeconds; // how long a lull takes on average, and then a burst
    double burstSeconds;
    double secondsUp; // from one drop-out to the next on average; 0: it never drops out
};

// What a client sets, and what the daemon counts for it.
struct Usage {
    int priority = 0;                      // as on the wire
    std::optional<std::int64_t> rateLimit; // bits per second in each direction
    std::optional<std::int64_t> max;       // bytes
    std::optional<std::int64_t> maxDaily;
    std::int64_t boostDaily = 0;
    std::int64_t overlimitRate = 0; // bits per second in each direction; 0: the line isn't used over a limit
    std::int64_t resetDay = 0;      // 0: the month is the last thirty days
    std::int64_t month = 0;         // bytes, as is the next
    std::int64_t day = 0;

    // The bytes that the tighter limit leaves, which are never negative; nothing without a limit.
    std::optional<std::int64_t> left() const;
    void beginDay(int dayOfMonth);
};

struct Bytes {
    std::int64_t received = 0;
    std::int64_t sent = 0;

    Bytes& operator+=(Bytes const& more) {
        received += more.received;
        sent += more.sent;
        return *this;
    }
};

class Line {
public:
    enum class State { disconnected, connecting, connected }; // numbered as on the wire
    // What has happened to the line in a step that streams have to be saved from.
    enum class Mishap { none, dropped, slowed, lossy };

    static constexpr int backup = 2; // priorities on the wire
    static constexpr int never = 100;

    Line(Character const& character, std::uint64_t seed);

    Mishap advance();
    // Carries as much of these rates in this step as a data limit allows, and counts it.
    Bytes carry(double downMbps, double upMbps);

    // The rates that the line may have now, both 0 when it isn't to be used.
    double usableDown() const {
        return usable(temper.downMbps);
    }
    double usableUp() const {
        return usable(temper.upMbps);
    }

    Usage usage;

    // What a report tells.
    State state() const {
        return now;
    }
    double quality() const {
        return currentQuality;
    }
    double latencyMs() const {
        return latency;
    }
    double jitterMs() const {
        return jitter;
    }
    double loss() const {
        return lossRatio;
    }
    Character const& character() const {
        return temper;
    }

private:
    bool dropOut();
    bool changePace();
    double usable(double mbps) const;

    Character temper;
    Random random;
    State now = State::connected;
    double stateSeconds; // until the state changes
    bool isLull = false;
    double currentQuality = 1;
    double spike = 0; // more loss, for a moment
    double load = 0;  // of the last step, from 0 to 1
    double latency;
    double jitter;
    double lossRatio;
};

} // namespace kelvarissim
