#include "metrics.h"

#include <span>

namespace monitor {

namespace {

using enum MetricType;
using Value = std::optional<double>;

constexpr double bitsPerByte = 8;
constexpr double bitsPerMegabit = 1e6;

// Numbers below zero mean that there is none.
Value unlessNegative(double number) {
    return number < 0 ? Value() : number;
}

Value bytes(std::int64_t number) {
    return unlessNegative(static_cast<double>(number));
}

Value fromBits(std::int64_t bitsPerSecond) {
    return unlessNegative(static_cast<double>(bitsPerSecond) / bitsPerByte);
}

double bytesFromMegabits(double megabits) {
    return megabits * bitsPerMegabit / bitsPerByte;
}

Value fromMegabits(double megabitsPerSecond) {
    return unlessNegative(bytesFromMegabits(megabitsPerSecond));
}

Value seconds(std::chrono::duration<double> time) {
    return unlessNegative(time.count());
}

Value bytesOf(std::optional<std::int64_t> const& number) {
    return number ? bytes(*number) : std::nullopt;
}

Value fromBitsOf(std::optional<std::int64_t> const& bitsPerSecond) {
    return bitsPerSecond ? fromBits(*bitsPerSecond) : std::nullopt;
}

void addIfThere(Exposition& to, Labels const& labels, Value const& value) {
    if (value) {
        to.add(labels, *value);
    }
}

// ---- Adapters ----

using kelvaris::AdapterData;

Labels labelsOf(AdapterData const& adapter) {
    return {"adapter", adapter.adapterID};
}

struct AdapterMetric {
    char const* name;
    char const* help;
    Value (*value)(AdapterData const& adapter);
};

constexpr AdapterMetric adapterMetrics[] = {
    {"kelvaris_adapter_daily_boost_bytes", "What the limit of the current day is raised by.",
     [](AdapterData const& adapter) { return bytes(adapter.dataUsage.boostDaily); }},
    {"kelvaris_adapter_usage_reset_day",
     "Day of the month on which the usage in the window month begins anew; absent: it is that of 30 days.",
     [](AdapterData const& adapter) { return bytesOf(adapter.dataUsage.resetDay); }},
    {"kelvaris_adapter_rate_limit_bytes_per_second", "What the adapter may receive and send.",
     [](AdapterData const& adapter) { return fromBitsOf(limitOf(adapter.rateLimit)); }},
    {"kelvaris_adapter_overlimit_rate_bytes_per_second",
     "Its rate limit once it is over a data limit; 0: it isn't used then.",
     [](AdapterData const& adapter) { return fromBitsOf(adapter.dataUsage.overlimitRate); }},
};

void addAdapterState(Exposition& to, std::vector<AdapterData> const& adapters) {
    using kelvaris::ConnectionState;
    to.metric(gauge, "kelvaris_adapter_state", "1 for the state of the connection over the adapter.");
    for (AdapterData const& each : adapters) {
        for (ConnectionState const state :
             {ConnectionState::DISCONNECTED, ConnectionState::CONNECTING, ConnectionState::CONNECTED}) {
            to.add(labelsOf(each).with("state", toString(state)), each.state == state ? 1 : 0);
        }
    }
}

void addAdapters(Exposition& to, std::vector<AdapterData> const& adapters) {
    to.metric(info, "kelvaris_adapter_info", "A network adapter.");
    for (AdapterData const& each : adapters) {
        to.add(labelsOf(each)
                   .with("name", each.name)
                   .with("description", each.description)
                   .with("type", toString(each.type))
                   .with("priority", toString(each.priority))
                   .with("ssid", each.ssid),
               1);
    }
    addAdapterState(to, adapters);
    to.metric(gauge, "kelvaris_adapter_usage_bytes", "What the adapter has carried in the window.");
    for (AdapterData const& each : adapters) {
        addIfThere(to, labelsOf(each).with("window", "month"), bytes(each.dataUsage.usage));
        addIfThere(to, labelsOf(each).with("window", "day"), bytes(each.dataUsage.usageDaily));
    }
    to.metric(gauge, "kelvaris_adapter_limit_bytes", "What the adapter may carry in the window.");
    for (AdapterData const& each : adapters) {
        addIfThere(to, labelsOf(each).with("window", "month"), bytesOf(limitOf(each.dataUsage.max)));
        addIfThere(to, labelsOf(each).with("window", "day"), bytesOf(limitOf(each.dataUsage.maxDaily)));
    }
    for (AdapterMetric const& metric : adapterMetrics) {
        to.metric(gauge, metric.name, metric.help);
        for (AdapterData const& each : adapters) {
            addIfThere(to, labelsOf(each), metric.value(each));
        }
    }
}

// ---- Connections ----

using kelvaris::ConnectionStats;

Labels labelsOf(ConnectionStats const& connection) {
    return Labels("adapter", connection.adapterID).with("connection", connection.connectionID);
}

struct ConnectionMetric {
    char const* name;
    char const* help;
    Value (*value)(ConnectionStats const& connection);
};

constexpr ConnectionMetric connectionMetrics[] = {
    {"kelvaris_connection_connected", "Whether the connection is there.",
     [](ConnectionStats const& stats) -> Value { return stats.connected; }},
    {"kelvaris_connection_sleeping", "Whether the connection is there, but not in use.",
     [](ConnectionStats const& stats) -> Value { return stats.sleeping; }},
    {"kelvaris_connection_receive_bytes_per_second", "Current rate.",
     [](ConnectionStats const& stats) { return fromBits(stats.receiveBps); }},
    {"kelvaris_connection_send_bytes_per_second", "Current rate.",
     [](ConnectionStats const& stats) { return fromBits(stats.sendBps); }},
    {"kelvaris_connection_receive_estimate_bytes_per_second",
     "The rate that the connection is thought to reach.",
     [](ConnectionStats const& stats) { return fromMegabits(stats.receiveEstimateMbps); }},
    {"kelvaris_connection_send_estimate_bytes_per_second",
     "The rate that the connection is thought to reach.",
     [](ConnectionStats const& stats) { return fromMegabits(stats.sendEstimateMbps); }},
    {"kelvaris_connection_in_flight_bytes", "Bytes on their way.",
     [](ConnectionStats const& stats) { return bytes(stats.inFlight); }},
    {"kelvaris_connection_in_flight_window_bytes", "Bytes that may be on their way at once.",
     [](ConnectionStats const& stats) { return bytes(stats.inFlightWindow); }},
    {"kelvaris_connection_sockets", "Sockets of the connection.",
     [](ConnectionStats const& stats) { return unlessNegative(stats.numberOfSockets); }},
};

// What can be measured only over a connection that is there.
constexpr ConnectionMetric pathMetrics[] = {
    {"kelvaris_connection_latency_seconds", "Round-trip time.",
     [](ConnectionStats const& stats) { return seconds(stats.latencyMs); }},
    {"kelvaris_connection_jitter_seconds", "How much the latency varies.",
     [](ConnectionStats const& stats) { return seconds(stats.jitterMs); }},
    {"kelvaris_connection_mean_opinion_score", "Quality for calls, from 1 to 5.",
     [](ConnectionStats const& stats) -> Value { return stats.mos >= 1 ? Value(stats.mos) : Value(); }},
};

void addConnections(Exposition& to, Part<kelvaris::ConnectionStatsResult> const& part) {
    std::vector<ConnectionStats> const& connections = part->connections;
    to.metric(gauge, "kelvaris_statistics_timestamp_seconds",
              "When connections were last reported, since 1970.");
    to.add({}, std::chrono::duration<double>(part.wallTime.time_since_epoch()).count());
    to.metric(info, "kelvaris_connection_info", "A bonded connection.");
    for (ConnectionStats const& each : connections) {
        to.add(labelsOf(each).with("transport", toString(each.protocol)), 1);
    }
    for (ConnectionMetric const& metric : connectionMetrics) {
        to.metric(gauge, metric.name, metric.help);
        for (ConnectionStats const& each : connections) {
            addIfThere(to, labelsOf(each), metric.value(each));
        }
    }
    for (ConnectionMetric const& metric : pathMetrics) {
        to.metric(gauge, metric.name, metric.help);
        for (ConnectionStats const& each : connections) {
            addIfThere(to, labelsOf(each), each.connected ? metric.value(each) : std::nullopt);
        }
    }
    to.metric(gauge, "kelvaris_connection_loss_ratio", "The part of the packets that is lost, from 0 to 1.");
    for (ConnectionStats const& each : connections) {
        if (each.connected) {
            addIfThere(to, labelsOf(each).with("direction", "receive"), unlessNegative(each.lossReceive));
            addIfThere(to, labelsOf(each).with("direction", "send"), unlessNegative(each.lossSend));
        }
    }
}

// ---- The session ----

using kelvaris::SessionStats;

struct SessionMetric {
    MetricType type;
    char const* name;
    char const* help;
    Value (*value)(SessionStats const& session);
};

constexpr SessionMetric sessionMetrics[] = {
    {counter, "kelvaris_received_bytes_total", "Received in the current session.",
     [](SessionStats const& session) { return bytes(session.bytesReceived); }},
    {counter, "kelvaris_sent_bytes_total", "Sent in the current session.",
     [](SessionStats const& session) { return bytes(session.bytesSent); }},
    {counter, "kelvaris_encrypted_received_bytes_total", "Received encrypted in the current session.",
     [](SessionStats const& session) { return bytes(session.encryptedBytesReceived); }},
    {counter, "kelvaris_encrypted_sent_bytes_total", "Sent encrypted in the current session.",
     [](SessionStats const& session) { return bytes(session.encryptedBytesSent); }},
    {counter, "kelvaris_retransmitted_bytes_total", "Sent again in the current session.",
     [](SessionStats const& session) { return bytes(session.retransBytes); }},
    {counter, "kelvaris_failovers_total", "Failovers in the current session.",
     [](SessionStats const& session) { return bytes(session.numFailovers); }},
    {counter, "kelvaris_stream_unique_saves_total", "Streams saved in the current session.",
     [](SessionStats const& session) -> Value { return static_cast<double>(session.uniqueSaves); }},
    {counter, "kelvaris_streams_total", "Streams in the current session.",
     [](SessionStats const& session) -> Value { return static_cast<double>(session.totalStreams); }},
    {gauge, "kelvaris_session_connected_seconds",
     "How long the session has been connected, in whole minutes.",
     [](SessionStats const& session) { return seconds(session.totalConnectedMinutes); }},
    {gauge, "kelvaris_session_max_receive_bytes_per_second", "The highest rate in the session.",
     [](SessionStats const& session) { return fromMegabits(session.maxDownloadSpeed); }},
    {gauge, "kelvaris_session_max_send_bytes_per_second", "The highest rate in the session.",
     [](SessionStats const& session) { return fromMegabits(session.maxUploadSpeed); }},
    {gauge, "kelvaris_session_receive_benefit_bytes_per_second",
     "Bonding's gain over the fastest connection; below zero: a loss.",
     [](SessionStats const& session) -> Value { return bytesFromMegabits(session.mbpsDownBenefit); }},
    {gauge, "kelvaris_session_send_benefit_bytes_per_second",
     "Bonding's gain over the fastest connection; below zero: a loss.",
     [](SessionStats const& session) -> Value { return bytesFromMegabits(session.mbpsUpBenefit); }},
};

void addSession(Exposition& to, Snapshot const& snapshot) {
    for (SessionMetric const& metric : sessionMetrics) {
        to.metric(metric.type, metric.name, metric.help);
        addIfThere(to, {}, metric.value(*snapshot.session));
    }
    to.metric(counter, "kelvaris_stream_saves_total",
              "Saves of streams in the current session, by what made them.");
    auto const addSaves = [&to](char const* by, std::uint64_t count) {
        to.add({"by", by}, static_cast<double>(count));
    };
    addSaves("failover", snapshot.session->totalFailoverSaves);
    addSaves("speed", snapshot.session->totalSpeedModeSaves);
    addSaves("redundant", snapshot.session->totalRedundantModeSaves);
    if (auto const since = snapshot.connectedSince()) {
        to.metric(gauge, "kelvaris_session_start_timestamp_seconds", "When the session began, since 1970.");
        to.add({}, std::chrono::duration<double>(since->time_since_epoch()).count());
    }
}

// ---- Streams ----

void addStreams(Exposition& to, kelvaris::StreamingStatsResult const& report) {
    using kelvaris::StreamHealth;
    to.metric(gauge, "kelvaris_active_streams", "How many streams are active, by their health.");
    for (StreamHealth const health : {StreamHealth::STOPPED, StreamHealth::POOR, StreamHealth::GOOD}) {
        auto const count =
            std::count_if(report.streams.begin(), report.streams.end(),
                          [health](auto const& each) { return each.active && each.health == health; });
        to.add({"health", toString(health)}, static_cast<double>(count));
    }
    to.metric(gauge, "kelvaris_streaming_impaired", "Whether streams suffer from this.");
    to.add({"cause", "loss"}, report.badLoss);
    to.add({"cause", "latency"}, report.badLatency);
    to.add({"cause", "cpu"}, report.badCpu);
    to.add({"cause", "memory"}, report.badMemory);

    auto const addRates = [&](char const* name, double kelvaris::StreamStats::*rate) {
        to.metric(gauge, name, "Current rate of an active stream.");
        for (kelvaris::StreamStats const& each : report.streams) {
            if (each.active) {
                addIfThere(to, Labels("stream", std::to_string(each.id)).with("name", each.name),
                           fromMegabits(each.*rate));
            }
        }
    };
    addRates("kelvaris_stream_receive_bytes_per_second", &kelvaris::StreamStats::downloadSpeed);
    addRates("kelvaris_stream_send_bytes_per_second", &kelvaris::StreamStats::uploadSpeed);
}

// ---- The rest ----

void addState(Exposition& to, kelvaris::State current) {
    if (current >= kelvaris::State::UNKNOWN) {
        return;
    }
    to.metric(gauge, "kelvaris_state", "1 for the state of the session.");
    for (auto state = kelvaris::State::LOGGED_OUT; state != kelvaris::State::UNKNOWN;
         state = static_cast<kelvaris::State>(static_cast<unsigned>(state) + 1)) {
        to.add({"state", toString(state)}, state == current ? 1 : 0);
    }
}

void addServer(Exposition& to, Snapshot const& snapshot) {
    std::string const name = snapshot.serverName();
    if (!name.empty()) {
        to.metric(info, "kelvaris_server_info", "The server of the session.");
        to.add(Labels("server", name)
                   .with("country", snapshot.server->country)
                   .with("city", snapshot.server->city)
                   .with("private", snapshot.server->isPrivate ? "true" : "false"),
               1);
    }
}

void addSettings(Exposition& to, Settings const& settings) {
    to.metric(info, "kelvaris_settings_info", "How the daemon is to connect.");
    to.add(Labels("bonding_mode", toString(settings.bondingMode))
               .with("transport_mode", toString(settings.transportMode))
               .with("encrypted", settings.encrypted ? "true" : "false"),
           1);
}

void addFailures(Exposition& to, std::map<Topic, Failure> const& failures) {
    to.metric(gauge, "kelvaris_read_failed", "1 for what of the daemon can't be read now.");
    for (auto const& [topic, failure] : failures) {
        to.add({"topic", toString(topic)}, 1);
    }
}

} // namespace

std::string metricsOf(Snapshot const& snapshot, Format format) {
    Exposition metrics(format);
    metrics.metric(gauge, "kelvaris_up", "Whether the daemon answers.");
    metrics.add({}, snapshot.isUp());
    if (!snapshot.isUp()) {
        return metrics.take();
    }
    if (snapshot.state.current) {
        addState(metrics, *snapshot.state);
    }
    if (snapshot.server.current) {
        addServer(metrics, snapshot);
    }
    if (snapshot.settings.current) {
        addSettings(metrics, *snapshot.settings);
    }
    if (snapshot.adapters.current) {
        addAdapters(metrics, *snapshot.adapters);
    }
    if (snapshot.connections.current) {
        addConnections(metrics, snapshot.connections);
    }
    if (snapshot.session.current) {
        addSession(metrics, snapshot);
    }
    if (snapshot.streams.current) {
        addStreams(metrics, *snapshot.streams);
    }
    addFailures(metrics, snapshot.errors);
    return metrics.take();
}

} // namespace monitor
