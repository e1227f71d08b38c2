#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <kelvarissdk/kelvarissdk.hpp>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace monitor {

using Clock = std::chrono::steady_clock;
using WallClock = std::chrono::system_clock;

// The parts of what is known of the daemon, each of which changes by itself.
enum class Topic : unsigned {
    link,        // whether the daemon answers
    state,       // of the session
    server,      // of the connection
    settings,    // of the connection
    adapters,    // with their limits and what they have carried
    connections, // statistics of each bonded connection
    session,     // totals of the current session
    streams,     // statistics of streams
    error,       // a read has failed
};
constexpr unsigned topicCount = 9;

char const* toString(Topic topic); // "link", "state" and so on
std::optional<Topic> topicNamed(std::string const& name);

// A set of topics.
class Topics {
public:
    constexpr Topics() = default;
    constexpr Topics(std::initializer_list<Topic> topics) {
        for (Topic const each : topics) {
            add(each);
        }
    }
    static constexpr Topics all() {
        Topics topics;
        topics.bits = (1U << topicCount) - 1;
        return topics;
    }

    constexpr void add(Topic topic) {
        bits |= 1U << static_cast<unsigned>(topic);
    }
    constexpr void remove(Topic topic) {
        bits &= ~(1U << static_cast<unsigned>(topic));
    }
    constexpr bool has(Topic topic) const {
        return (bits & 1U << static_cast<unsigned>(topic)) != 0;
    }
    constexpr bool empty() const {
        return bits == 0;
    }
    // Whether these are reported only while statistics are enabled.
    constexpr bool haveStatistics() const {
        return has(Topic::connections) || has(Topic::session) || has(Topic::streams);
    }

private:
    unsigned bits = 0;
};

// A report's value, with what tells how old it is.
template <class T> struct Part {
    std::optional<T> value; // nothing: never reported
    Clock::time_point time; // of the latest report, also of one that brought nothing new
    WallClock::time_point wallTime;
    bool current = false; // the report came over the link that there is now; false: stale

    explicit operator bool() const {
        return value.has_value();
    }
    T const& operator*() const {
        return *value;
    }
    T const* operator->() const {
        return &*value;
    }
};

// What the monitor shows of the connection settings.
struct Settings {
    kelvaris::BondingMode bondingMode = kelvaris::BondingMode::SPEED;
    kelvaris::TransportMode transportMode = kelvaris::TransportMode::AUTO;
    bool encrypted = false;

    bool operator==(Settings const&) const = default;
};

// What all connections over one adapter do together.
struct Traffic {
    Clock::time_point time;
    double receiveBitsPerSecond = 0; // the sum, as is the next
    double sendBitsPerSecond = 0;
    std::optional<double> latencySeconds; // of the fastest one, as is the next; nothing: none is connected
    std::optional<double> jitterSeconds;
    double lossReceive = 0; // ratio from 0 to 1, the worst one's, as is the next
    double lossSend = 0;
    unsigned connected = 0; // how many are
};

struct Failure {
    kelvaris::Error error;
    Topic topic = Topic::error; // whose read has failed
    WallClock::time_point wallTime;
};

// What is known of the daemon. It is the monitor's, and commands read it. Texts are as reported: see text.h for what may
// be shown.
struct Snapshot {
    std::optional<kelvaris::Link> link; // nothing: not known yet
    Clock::time_point linkSince = Clock::now();
    WallClock::time_point linkSinceWall = WallClock::now();

    Part<kelvaris::State> state;
    Part<kelvaris::ServerInformationDetailed> server;
    Part<Settings> settings;
    Part<std::vector<kelvaris::AdapterData>> adapters;
    Part<kelvaris::ConnectionStatsResult> connections; // latest, in the order of the report
    Part<kelvaris::SessionStats> session;
    Part<kelvaris::StreamingStatsResult> streams;
    std::map<Topic, Failure> errors; // the latest of each topic; a later report takes it away

    // For each adapter id, oldest first: one sample for each report of connections that names the adapter. An adapter that
    // has vanished keeps its samples until they are older than historyLimit.
    std::map<std::string, std::deque<Traffic>> history;

    bool isUp() const {
        return link == kelvaris::Link::UP;
    }
    // The state is CONNECTED, and the daemon says so now.
    bool isConnected() const {
        return isUp() && state.current && *state == kelvaris::State::CONNECTED;
    }
    // Connected, and at least one connection has an address.
    bool hasNetwork() const;
    // "United States - New York City #12", with nothing in it that a terminal obeys; empty while there is none.
    std::string serverName() const;
    // When the session began; nothing while there is none or that isn't known.
    std::optional<WallClock::time_point> connectedSince() const;
    // What an adapter does now; nothing while no connection over it is reported.
    Traffic const* trafficOf(std::string const& adapterID) const;
};

constexpr std::chrono::minutes historyLimit{15};
constexpr std::size_t historyCount = 1800; // samples of an adapter, however short the time between them is
constexpr std::size_t historyAdapters = 64;

// A data or rate limit; 0 is none, because that is what lifts one.
std::optional<std::int64_t> limitOf(std::optional<std::int64_t> const& reported);

// What has changed.
struct Change {
    Topic topic = Topic::link;
    WallClock::time_point time;
};

// ---- How reports get into the snapshot. Each returns whether anything has changed. ----

bool setLink(Snapshot& snapshot, kelvaris::Link link);
bool setState(Snapshot& snapshot, kelvaris::State state);
bool setServer(Snapshot& snapshot, kelvaris::ServerInformationDetailed const& server);
bool setSettings(Snapshot& snapshot, kelvaris::SettingsResult const& settings);
bool setAdapters(Snapshot& snapshot, std::vector<kelvaris::AdapterData> const& adapters);
bool setConnections(Snapshot& snapshot, kelvaris::ConnectionStatsResult const& connections);
bool setSession(Snapshot& snapshot, kelvaris::SessionStatsResult const& periods);
bool setStreams(Snapshot& snapshot, kelvaris::StreamingStatsResult const& streams);
bool setError(Snapshot& snapshot, Topic topic, kelvaris::Error const& error);

} // namespace monitor
