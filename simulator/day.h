#pragma once

#include "line.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace kelvarissim {

struct StreamKind {
    char const* name;
    double downMbps;
    double upMbps;
};

struct Stream {
    std::uint64_t id;
    StreamKind kind;
    std::int64_t startMs; // since the day's begin, as is the next
    std::int64_t endMs;
    double downMbps = 0; // what it gets now
    double upMbps = 0;
    double downSum = 0; // over all steps
    double upSum = 0;
    int failoverSaves = 0;
    int speedSaves = 0;
    int redundantSaves = 0;
    double troubleSeconds = 0; // for which it is in poor health yet

    int saves() const {
        return failoverSaves + speedSaves + redundantSaves;
    }
};

struct Counters {
    Bytes bytes;
    std::int64_t resent = 0; // bytes
    std::int64_t failovers = 0;
    std::int64_t streams = 0;
    std::int64_t failoverSaves = 0;
    std::int64_t speedSaves = 0;
    std::int64_t redundantSaves = 0;
    std::int64_t savedStreams = 0;
};

// What several people do with a bonded line from eight in the morning on, and how its adapters bear it: a rhythm
// of the day, downloads, streams, drop-outs, data limits. The sixth of a month of thirty days is the first day. The
// same seed makes the same days, and a change that a client makes changes only what follows from it.
class Day {
public:
    Day(std::vector<Character> const& characters, std::uint64_t seed);

    // A new session begins with the connection, and ends with it. Nothing is carried without one.
    void setConnected(bool connected);
    // Says whether the state of a line has changed. The part of the time that is no whole step counts the next time.
    bool advance(std::chrono::milliseconds time);
    // The rates are those since the last report; the next one's begin after this.
    void endReport() {
        isReported = true;
    }

    std::vector<Line> lines;

    bool isConnected() const {
        return hasSession;
    }
    std::int64_t elapsedMs() const {
        return steps * stepMs;
    }
    std::int64_t sessionStartMs() const {
        return sessionStart;
    }
    // Of the last session when there is none.
    std::int64_t sessionMs() const {
        return (hasSession ? elapsedMs() : sessionEnd) - sessionStart;
    }
    // Bits per second on average since the last report.
    Bytes rate(std::size_t line) const;
    // The streams that go on, and for a moment those that have ended.
    std::vector<Stream> const& streams() const {
        return streamList;
    }
    bool isActive(Stream const& stream) const {
        return elapsedMs() < stream.endMs;
    }
    std::int64_t sessionHours() const {
        return static_cast<std::int64_t>(hourly.size());
    }
    // What the session has counted in these last hours, or in all of its time if that is shorter.
    Counters counted(std::int64_t hours) const;
    Counters counted() const {
        return counters;
    }
    double maxDownMbps() const {
        return maxDown;
    }
    double maxUpMbps() const {
        return maxUp;
    }

private:
    struct Demand {
        double down = 0; // Mbit/s
        double up = 0;
    };

    void step();
    void beginDayAtMidnight();
    double busyness() const;
    void saveStreams(Line::Mishap mishap);
    void beginStream();
    Demand streamDemand() const;
    Demand demand();
    Demand carryAll(Demand wanted);
    Demand carryTier(int priority, Demand wanted);
    void feedStreams(Demand wanted, Demand carried);

    Random random;  // for what people want
    Random ripples; // for how streams vary, which is asked more often the more streams there are
    std::int64_t steps = 0;
    std::int64_t remainderMs = 0;

    double browsing = 4;        // Mbit/s
    double downloadSeconds = 0; // until its end, as is the next
    double uploadSeconds = 0;
    double quietSeconds; // until the next stream
    std::uint64_t lastStream = 0;
    std::vector<Stream> streamList;

    std::vector<Bytes> window; // of each line, since the last report
    std::int64_t windowSteps = 0;
    bool isReported = false; // the window begins anew with the next step

    bool hasSession = false;
    std::int64_t sessionStart = 0;
    std::int64_t sessionEnd = 0;
    Counters counters;
    std::vector<Counters> hourly; // at the end of each hour of the session
    double maxDown = 0;           // Mbit/s in a step
    double maxUp = 0;
};

} // namespace kelvarissim
