#include "snapshot.h"
#include "text.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace monitor {

namespace {

constexpr std::array<char const*, topicCount> topicNames = {
    "link", "state", "server", "settings", "adapters", "connections", "session", "streams", "error"};

// Puts a value into its part. True when it is another one, or the first one since the link is there.
template <class T, class Same> bool put(Part<T>& part, T value, Same same) {
    bool const isNews = !part.current || !part.value || !same(*part.value, value);
    if (isNews) {
        part.value = std::move(value);
    }
    part.time = Clock::now();
    part.wallTime = WallClock::now();
    part.current = true;
    return isNews;
}

template <class T> bool put(Part<T>& part, T value) {
    return put(part, std::move(value), [](T const& before, T const& now) { return before == now; });
}

auto fieldsOf(kelvaris::AdapterUsageData const& usage) {
    return std::tie(usage.usage, usage.usageDaily, usage.max, usage.resetDay, usage.maxDaily,
                    usage.boostDaily, usage.overlimitRate);
}

bool isSameAdapter(kelvaris::AdapterData const& one, kelvaris::AdapterData const& other) {
    auto const fields = [](kelvaris::AdapterData const& adapter) {
        return std::tie(adapter.adapterID, adapter.name, adapter.description, adapter.state, adapter.type,
                        adapter.priority, adapter.ssid, adapter.bssid, adapter.rateLimit);
    };
    return fields(one) == fields(other) && fieldsOf(one.dataUsage) == fieldsOf(other.dataUsage);
}

bool isSameServer(kelvaris::ServerInformationDetailed const& one,
                  kelvaris::ServerInformationDetailed const& other) {
    auto const fields = [](kelvaris::ServerInformationDetailed const& server) {
        return std::tie(server.country, server.city, server.num, server.isPrivate, server.torrentAllowed,
                        server.publicIP);
    };
    return fields(one) == fields(other);
}

double seconds(std::chrono::milliseconds time) {
    return std::chrono::duration<double>(time).count();
}

void addTo(Traffic& traffic, kelvaris::ConnectionStats const& connection) {
    traffic.receiveBitsPerSecond += static_cast<double>(connection.receiveBps);
    traffic.sendBitsPerSecond += static_cast<double>(connection.sendBps);
    traffic.lossReceive = std::max(traffic.lossReceive, connection.lossReceive);
    traffic.lossSend = std::max(traffic.lossSend, connection.lossSend);
    if (!connection.connected) {
        return;
    }
    ++traffic.connected;
    double const latency = seconds(connection.latencyMs);
    if (!traffic.latencySeconds || latency < *traffic.latencySeconds) {
        traffic.latencySeconds = latency;
        traffic.jitterSeconds = seconds(connection.jitterMs);
    }
}

// A daemon that names ever new adapters must not fill the memory.
void forgetOld(Snapshot& snapshot, Clock::time_point now) {
    auto& history = snapshot.history;
    for (auto& [adapter, samples] : history) {
        while (!samples.empty() &&
               (samples.size() > historyCount || samples.front().time < now - historyLimit)) {
            samples.pop_front();
        }
    }
    std::erase_if(history, [](auto const& entry) { return entry.second.empty(); });
    while (history.size() > historyAdapters) {
        history.erase(
            std::min_element(history.begin(), history.end(), [](auto const& one, auto const& other) {
                return one.second.back().time < other.second.back().time;
            }));
    }
}

} // namespace

char const* toString(Topic topic) {
    return topicNames.at(static_cast<unsigned>(topic));
}

std::optional<Topic> topicNamed(std::string const& name) {
    auto const found = std::find(topicNames.begin(), topicNames.end(), name);
    if (found == topicNames.end()) {
        return std::nullopt;
    }
    return static_cast<Topic>(found - topicNames.begin());
}

std::optional<std::int64_t> limitOf(std::optional<std::int64_t> const& reported) {
    return reported && *reported > 0 ? reported : std::nullopt;
}

bool Snapshot::hasNetwork() const {
    return isConnected() && connections.current &&
           std::any_of(connections->connections.begin(), connections->connections.end(),
                       [](auto const& each) {
                           return each.connected && !(each.localIp.empty() && each.privateIp.empty());
                       });
}

std::string Snapshot::serverName() const {
    bool const hasServer = state && server && !server->country.empty() &&
                           (*state == kelvaris::State::CONNECTED || *state == kelvaris::State::OVERLIMIT);
    return hasServer ? printable(kelvaris::toString(*server)) : "";
}

std::optional<WallClock::time_point> Snapshot::connectedSince() const {
    constexpr std::int64_t latest = 9'000'000'000'000; // in the year 2255; the clock can't count much farther
    bool const isThere = state && *state == kelvaris::State::CONNECTED && session &&
                         session->periodStartTime > 0 && session->periodStartTime <= latest;
    if (!isThere) {
        return std::nullopt;
    }
    return WallClock::time_point(std::chrono::milliseconds(session->periodStartTime));
}

Traffic const* Snapshot::trafficOf(std::string const& adapterID) const {
    auto const samples = history.find(adapterID);
    bool const isThere =
        samples != history.end() && connections && samples->second.back().time == connections.time;
    return isThere ? &samples->second.back() : nullptr;
}

bool setLink(Snapshot& snapshot, kelvaris::Link link) {
    // While the daemon is away the client may close what is left of the link and try again.
    bool const isStillAway = snapshot.link && !snapshot.isUp() && link != kelvaris::Link::UP;
    if (snapshot.link == link || isStillAway) {
        return false;
    }
    snapshot.link = link;
    snapshot.linkSince = Clock::now();
    snapshot.linkSinceWall = WallClock::now();
    if (link != kelvaris::Link::UP) {
        snapshot.state.current = snapshot.server.current = snapshot.settings.current = false;
        snapshot.adapters.current = snapshot.connections.current = snapshot.session.current = false;
        snapshot.streams.current = false;
        snapshot.errors.clear();
    }
    return true;
}

bool setState(Snapshot& snapshot, kelvaris::State state) {
    return put(snapshot.state, state);
}

bool setServer(Snapshot& snapshot, kelvaris::ServerInformationDetailed const& server) {
    return put(snapshot.server, server, isSameServer);
}

bool setSettings(Snapshot& snapshot, kelvaris::SettingsResult const& settings) {
    return put(snapshot.settings, Settings{settings.bondingMode, settings.transportMode, settings.encrypted});
}

bool setAdapters(Snapshot& snapshot, std::vector<kelvaris::AdapterData> const& adapters) {
    return put(snapshot.adapters, adapters, [](auto const& before, auto const& now) {
        return std::equal(before.begin(), before.end(), now.begin(), now.end(), isSameAdapter);
    });
}

bool setConnections(Snapshot& snapshot, kelvaris::ConnectionStatsResult const& connections) {
    put(snapshot.connections, connections, [](auto const&, auto const&) { return false; });
    auto const now = snapshot.connections.time;
    for (kelvaris::ConnectionStats const& each : connections.connections) {
        auto& samples = snapshot.history[each.adapterID];
        if (samples.empty() || samples.back().time != now) {
            samples.emplace_back().time = now;
        }
        addTo(samples.back(), each);
    }
    forgetOld(snapshot, now);
    return true;
}

bool setSession(Snapshot& snapshot, kelvaris::SessionStatsResult const& periods) {
    for (kelvaris::SessionStats const& period : periods.periods) {
        if (period.periodHours == kelvaris::currentSession) {
            return put(snapshot.session, period, [](auto const&, auto const&) { return false; });
        }
    }
    return false;
}

bool setStreams(Snapshot& snapshot, kelvaris::StreamingStatsResult const& streams) {
    return put(snapshot.streams, streams, [](auto const&, auto const&) { return false; });
}

// While the daemon is away no read succeeds, and that the link says.
bool setError(Snapshot& snapshot, Topic topic, kelvaris::Error const& error) {
    if (!snapshot.isUp() || error.code == kelvaris::ErrorType::CANCELLED ||
        error.code == kelvaris::ErrorType::NOT_CONNECTED) {
        return false;
    }
    auto const before = snapshot.errors.find(topic);
    bool const isNews = before == snapshot.errors.end() || before->second.error.number != error.number ||
                        before->second.error.message != error.message;
    snapshot.errors[topic] = {error, topic, WallClock::now()};
    return isNews;
}

} // namespace monitor
