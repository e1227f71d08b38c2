#include "day.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvarissim {

namespace {

constexpr std::int64_t hourMs = 3'600'000;
constexpr std::int64_t dayMs = 24 * hourMs;
constexpr std::int64_t firstHour = 8;
constexpr int firstDayOfMonth = 6;
constexpr int daysOfMonth = 30;

constexpr std::size_t maxStreams = 4;
constexpr std::int64_t shownAfterEndMs = 15'000;
constexpr double troubleSeconds = 3;

constexpr std::array<StreamKind, 5> kinds = {{
    {"Video call", 3.5, 3},
    {"Film", 14, 0.2},
    {"Broadcast", 0.4, 8},
    {"Music", 0.4, 0.05},
    {"Game", 1.2, 0.6},
}};

} // namespace

Day::Day(std::vector<Character> const& characters, std::uint64_t seed)
    : random(seed), ripples(random.next()), quietSeconds(random.uniform(5, 30)), window(characters.size()) {
    for (Character const& character : characters) {
        lines.emplace_back(character, random.next());
    }
}

void Day::setConnected(bool connected) {
    if (connected == hasSession) {
        return;
    }
    hasSession = connected;
    if (connected) {
        sessionStart = elapsedMs();
        counters = {};
        hourly.clear();
        maxDown = maxUp = 0;
        std::fill(window.begin(), window.end(), Bytes{}); // the rates are this session's too
    } else {
        sessionEnd = elapsedMs();
        streamList.clear();
    }
}

bool Day::advance(std::chrono::milliseconds time) {
    std::vector<Line::State> before;
    for (Line const& line : lines) {
        before.push_back(line.state());
    }
    remainderMs += time.count();
    for (; remainderMs >= stepMs; remainderMs -= stepMs) {
        step();
    }
    return !std::equal(lines.begin(), lines.end(), before.begin(),
                       [](Line const& line, Line::State state) { return line.state() == state; });
}

Bytes Day::rate(std::size_t line) const {
    if (windowSteps == 0) {
        return {};
    }
    auto const perSecond = [this](std::int64_t bytes) { return bytes * 8 * 1000 / (windowSteps * stepMs); };
    return {perSecond(window[line].received), perSecond(window[line].sent)};
}

Counters Day::counted(std::int64_t hours) const {
    if (hours >= sessionHours()) {
        return counters;
    }
    Counters const& before = hourly[static_cast<std::size_t>(sessionHours() - hours - 1)];
    Counters since = counters;
    since.bytes.received -= before.bytes.received;
    since.bytes.sent -= before.bytes.sent;
    since.resent -= before.resent;
    since.failovers -= before.failovers;
    since.streams -= before.streams;
    since.failoverSaves -= before.failoverSaves;
    since.speedSaves -= before.speedSaves;
    since.redundantSaves -= before.redundantSaves;
    since.savedStreams -= before.savedStreams;
    return since;
}

void Day::step() {
    ++steps;
    if (isReported) {
        std::fill(window.begin(), window.end(), Bytes{});
        windowSteps = 0;
        isReported = false;
    }
    ++windowSteps;
    beginDayAtMidnight();
    std::erase_if(streamList,
                  [this](Stream const& stream) { return elapsedMs() >= stream.endMs + shownAfterEndMs; });
    for (Line& line : lines) {
        Line::Mishap const mishap = line.advance();
        if (hasSession && line.usage.priority != Line::never) {
            saveStreams(mishap);
        }
    }
    // What people want doesn't depend on whether they get it, so the dice are thrown without a session too.
    Demand const wanted = demand();
    if (!hasSession) {
        return;
    }
    Demand const carried = carryAll(wanted);
    maxDown = std::max(maxDown, carried.down);
    maxUp = std::max(maxUp, carried.up);
    feedStreams(streamDemand(), carried);
    if ((elapsedMs() - sessionStart) % hourMs == 0) {
        hourly.push_back(counters);
    }
}

void Day::beginDayAtMidnight() {
    std::int64_t const sinceFirstMidnight = elapsedMs() + firstHour * hourMs;
    if (sinceFirstMidnight % dayMs != 0) {
        return;
    }
    auto const today = static_cast<int>((firstDayOfMonth - 1 + sinceFirstMidnight / dayMs) % daysOfMonth) + 1;
    for (Line& line : lines) {
        line.usage.beginDay(today);
    }
}

// How much is going on at this time of the day, from 0 to 1.
double Day::busyness() const {
    constexpr std::array<double, 25> hours = {0.25, 0.15, 0.08, 0.05, 0.05, 0.08, 0.2, 0.45, 0.7,
                                              0.8,  0.75, 0.7,  0.75, 0.8,  0.75, 0.7, 0.75, 0.85,
                                              0.95, 1,    1,    0.95, 0.75, 0.45, 0.25};
    std::int64_t const time = (elapsedMs() + firstHour * hourMs) % dayMs;
    auto const hour = static_cast<std::size_t>(time / hourMs);
    double const part = static_cast<double>(time % hourMs) / hourMs;
    return hours[hour] + (hours[hour + 1] - hours[hour]) * part;
}

void Day::saveStreams(Line::Mishap mishap) {
    if (mishap == Line::Mishap::none) {
        return;
    }
    counters.failovers += mishap == Line::Mishap::dropped ? 1 : 0;
    for (Stream& stream : streamList) {
        if (!isActive(stream)) {
            continue;
        }
        counters.savedStreams += stream.saves() == 0 ? 1 : 0;
        switch (mishap) {
        case Line::Mishap::dropped:
            ++stream.failoverSaves;
            ++counters.failoverSaves;
            stream.troubleSeconds = troubleSeconds;
            break;
        case Line::Mishap::slowed:
            ++stream.speedSaves;
            ++counters.speedSaves;
            break;
        default:
            ++stream.redundantSaves;
            ++counters.redundantSaves;
            stream.troubleSeconds = troubleSeconds;
        }
    }
}

void Day::beginStream() {
    auto const kind = static_cast<std::size_t>(random.uniform(0, kinds.size()));
    auto const durationMs = static_cast<std::int64_t>(random.uniform(60, 600)) * 1000;
    quietSeconds = random.uniform(60, 340);
    if (hasSession && streamList.size() < maxStreams) {
        streamList.push_back({++lastStream, kinds[kind], elapsedMs(), elapsedMs() + durationMs});
        ++counters.streams;
    }
}

Day::Demand Day::streamDemand() const {
    Demand sum;
    for (Stream const& stream : streamList) {
        if (isActive(stream)) {
            sum.down += stream.kind.downMbps;
            sum.up += stream.kind.upMbps;
        }
    }
    return sum;
}

Day::Demand Day::demand() {
    double const busy = busyness();
    quietSeconds -= stepSeconds * busy;
    if (quietSeconds <= 0) {
        beginStream();
    }
    browsing += (busy * 10 * random.uniform(0, 2) - browsing) * 0.05;
    downloadSeconds -= stepSeconds;
    if (random.chance(busy * stepSeconds / 120)) {
        downloadSeconds = random.uniform(5, 40);
    }
    uploadSeconds -= stepSeconds;
    if (random.chance(busy * stepSeconds / 250)) {
        uploadSeconds = random.uniform(5, 25);
    }
    Demand sum = streamDemand();
    sum.down += browsing + (downloadSeconds > 0 ? 160 : 0);
    sum.up += browsing * 0.15 + (uploadSeconds > 0 ? 40 : 0);
    return sum;
}

// A secondary line carries what the first ones can't, and a backup what would otherwise have no line at all.
Day::Demand Day::carryAll(Demand wanted) {
    Demand all;
    bool hasLine = false;
    for (int const priority : {0, 1, Line::backup}) {
        if (priority == Line::backup && hasLine) {
            wanted = {};
        }
        Demand const carried = carryTier(priority, wanted);
        hasLine = hasLine || std::any_of(lines.begin(), lines.end(), [priority](Line const& line) {
                      return line.usage.priority == priority && line.usableDown() > 0;
                  });
        wanted.down -= carried.down;
        wanted.up -= carried.up;
        all.down += carried.down;
        all.up += carried.up;
    }
    return all;
}

// Lines of the same priority share in proportion to what they can do.
Day::Demand Day::carryTier(int priority, Demand wanted) {
    Demand usable;
    for (Line const& line : lines) {
        if (line.usage.priority == priority) {
            usable.down += line.usableDown();
            usable.up += line.usableUp();
        }
    }
    double const down = usable.down > 0 ? std::min(wanted.down / usable.down, 1.0) : 0;
    double const up = usable.up > 0 ? std::min(wanted.up / usable.up, 1.0) : 0;
    Demand carried;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Line& line = lines[i];
        if (line.usage.priority != priority) {
            continue;
        }
        Bytes const bytes = line.carry(line.usableDown() * down, line.usableUp() * up);
        window[i] += bytes;
        counters.bytes += bytes;
        counters.resent += std::llround(static_cast<double>(bytes.received) * line.loss());
        carried.down += static_cast<double>(bytes.received) * 8 / 1e6 / stepSeconds;
        carried.up += static_cast<double>(bytes.sent) * 8 / 1e6 / stepSeconds;
    }
    return carried;
}

// Streams come before anything else, so they get less than they want only when all lines together can't carry
// them.
void Day::feedStreams(Demand wanted, Demand carried) {
    double const down = wanted.down > 0 ? std::min(carried.down / wanted.down, 1.0) : 0;
    double const up = wanted.up > 0 ? std::min(carried.up / wanted.up, 1.0) : 0;
    for (Stream& stream : streamList) {
        stream.downMbps = stream.upMbps = 0;
        if (!isActive(stream)) {
            continue;
        }
        stream.downMbps = stream.kind.downMbps * down * ripples.uniform(0.9, 1);
        stream.upMbps = stream.kind.upMbps * up * ripples.uniform(0.9, 1);
        stream.downSum += stream.downMbps;
        stream.upSum += stream.upMbps;
        stream.troubleSeconds =
            std::min(down, up) < 0.9 ? troubleSeconds : stream.troubleSeconds - stepSeconds;
    }
}

} // namespace kelvarissim
