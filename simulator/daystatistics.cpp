#include "daystatistics.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvarissim {

namespace {

constexpr std::int64_t minuteMs = 60'000;
constexpr std::int64_t hourMs = 60 * minuteMs;

// How a line shows in the reports. Its place in the table is its place in the world and in the day.
struct Description {
    char const* id;
    char const* name;
    char const* description;
    char const* type;
    char const* localIp;
    char const* protocol;
    Character character;
};

std::array<Description, 4> const table = {{
    {"eth0",
     "Wired",
     "Fibre line",
     "Ethernet",
     "192.168.1.20",
     "udp",
     {95, 38, 9, 0.03, 0, 0.05, 1, 0, 0, 0}},
    {"wlan0",
     "Wireless",
     "Wi-Fi adapter",
     "Wi-Fi",
     "192.168.40.23",
     "udp",
     {60, 22, 17, 0.45, 0.002, 0.6, 0.6, 10, 40, 0}},
    {"wwan0",
     "Mobile",
     "Cellular modem",
     "Cellular",
     "10.64.12.7",
     "tcp-multi",
     {42, 11, 48, 0.35, 0.012, 0.5, 0.18, 14, 6, 0}},
    {"eth1",
     "Satellite",
     "Satellite terminal",
     "Ethernet",
     "100.72.9.41",
     "tcp",
     {80, 10, 41, 0.2, 0.004, 0.3, 1, 0, 0, 240}},
}};

std::vector<Character> characters() {
    std::vector<Character> all;
    all.reserve(table.size());
    for (Description const& each : table) {
        all.push_back(each.character);
    }
    return all;
}

std::optional<std::int64_t> optionalNumber(Json::Value const& object, char const* key) {
    return object.isMember(key) ? std::optional(object[key].asInt64()) : std::nullopt;
}

void readSettings(Usage& usage, Json::Value const& adapter) {
    Json::Value const& limits = adapter["limits"];
    int const priority = adapter["priority"].asInt();
    bool const isKnown = priority == 1 || priority == Line::backup || priority == Line::never;
    usage.priority = isKnown ? priority : 0;
    usage.rateLimit = optionalNumber(adapter, "rateLimit");
    usage.max = optionalNumber(limits, "max");
    usage.maxDaily = optionalNumber(limits, "maxDaily");
    usage.boostDaily = limits["boostDaily"].asInt64();
    usage.overlimitRate = limits["overlimitRate"].asInt64();
    usage.resetDay = limits["resetDay"].asInt64();
    usage.month = limits["usage"].asInt64();
    usage.day = limits["usageDaily"].asInt64();
}

void writeUsage(Json::Value& adapter, Line const& line) {
    adapter["connectionState"] = static_cast<int>(line.state());
    adapter["limits"]["usage"] = Json::Int64(line.usage.month);
    adapter["limits"]["usageDaily"] = Json::Int64(line.usage.day);
    adapter["limits"]["boostDaily"] = Json::Int64(line.usage.boostDaily);
}

bool isUp(Line const& line) {
    return line.state() == Line::State::connected;
}

} // namespace

std::vector<Json::Value> dayAdapters() {
    std::vector<Json::Value> adapters;
    for (Description const& each : table) {
        Json::Value& adapter = adapters.emplace_back();
        adapter["guid"] = each.id;
        adapter["name"] = each.name;
        adapter["description"] = each.description;
        adapter["type"] = each.type;
        adapter["connectionState"] = static_cast<int>(Line::State::connected);
        adapter["priority"] = 0;
        Json::Value& limits = adapter["limits"];
        for (char const* key : {"usage", "usageDaily", "resetDay", "boostDaily"}) {
            limits[key] = 0;
        }
    }
    adapters[1]["ssid"] = "Harbour Cafe";
    adapters[1]["bssid"] = "02:00:5e:10:20:30";

    Json::Value& cellular = adapters[2]["limits"];
    cellular["usage"] = Json::Int64(16'200'000'000);
    cellular["max"] = Json::Int64(20'000'000'000);
    cellular["resetDay"] = 15;
    cellular["usageDaily"] = 720'000'000;
    cellular["maxDaily"] = 1'000'000'000;
    cellular["overlimitRate"] = 128'000;

    Json::Value& satellite = adapters[3]["limits"];
    satellite["usage"] = Json::Int64(141'000'000'000);
    satellite["max"] = Json::Int64(150'000'000'000);
    satellite["usageDaily"] = 1'300'000'000;
    satellite["overlimitRate"] = 0;
    return adapters;
}

DayStatistics::DayStatistics(World& surroundings, int speedFactor)
    : world(surroundings), day(characters(), *surroundings.trafficSeed), speed(speedFactor) {
    DayStatistics::advance(std::chrono::milliseconds(0));
}

void DayStatistics::begin() {
    dayStart = millisecondsSinceEpoch();
    waitEnd = waitEnd.value_or(*dayStart);
}

bool DayStatistics::advance(std::chrono::milliseconds time) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        readSettings(day.lines[i].usage, world.adapters[i]);
    }
    bool const hasChanged = day.advance(time);
    bool const wasConnected = day.isConnected();
    day.setConnected(world.state == SessionState::connected);
    if (day.isConnected() && !wasConnected) {
        sessionStart = millisecondsSinceEpoch();
        waitEnd = dayStart;
    } else if (wasConnected && !day.isConnected()) {
        waitEnd = waitEnd.value_or(millisecondsSinceEpoch());
    }
    for (std::size_t i = 0; i < table.size(); ++i) {
        writeUsage(world.adapters[i], day.lines[i]);
    }
    return hasChanged;
}

// A line that is up and idle, because it is a backup or over its limit, sleeps.
Json::Value DayStatistics::connection(std::size_t index) const {
    Description const& description = table[index];
    Line const& line = day.lines[index];
    bool const up = isUp(line);
    Bytes const rate = day.rate(index); // also of a line that has just dropped out
    auto const window = static_cast<double>(rate.sent) / 8000 * line.latencyMs();
    Json::Value report;
    report["guid"] = description.id;
    report["key"] = std::string(description.id) + "-198.51.100.4:443";
    report["protocol"] = description.protocol;
    report["cnnct"] = up;
    report["zzz"] = up && rate.received + rate.sent == 0 ? 1 : 0;
    report["localIp"] = up ? description.localIp : "";
    report["privateIp"] = up ? "10.202.0.2" : "";
    report["remoteIp"] = "198.51.100.4";
    report["numConns"] = up ? 8 : 0;
    report["bInF"] = rounded(window * 0.6);
    report["bInFL"] = rounded(window);
    report["lsR"] = up ? line.loss() : 1;
    report["lsS"] = up ? line.loss() / 2 : 1;
    report["ltMs"] = up ? rounded(line.latencyMs()) : 0;
    report["jtMs"] = up ? rounded(line.jitterMs()) : 0;
    report["rcvBps"] = rate.received;
    report["sndBps"] = rate.sent;
    report["totBps"] = rate.received + rate.sent;
    report["rcvEstMbps"] = line.usableDown();
    report["sndEstMbps"] = line.usableUp();
    report["mos"] = up ? meanOpinionScore(line.latencyMs(), line.loss()) : 0;
    return report;
}

Json::Value DayStatistics::connectionReport() const {
    Json::Value report;
    report["time"] = dayStart.value_or(millisecondsSinceEpoch()) + day.elapsedMs();
    report["connections"] = Json::arrayValue;
    for (std::size_t i = 0; day.isConnected() && i < table.size(); ++i) {
        if (day.lines[i].usage.priority != Line::never) {
            report["connections"].append(connection(i));
        }
    }
    return report;
}

Json::Value DayStatistics::benefit(bool isUpload) const {
    double combined = 0;
    double fastest = 0;
    int connections = 0;
    for (Line const& line : day.lines) {
        double const usable = isUpload ? line.usableUp() : line.usableDown();
        combined += usable;
        fastest = std::max(fastest, usable);
        connections += usable > 0 ? 1 : 0;
    }
    Json::Value report;
    report["num_connections"] = connections;
    report["combined_mbps"] = combined;
    report["fastest_conn_mbps"] = fastest;
    return report;
}

// How long the session has waited for the day.
std::int64_t DayStatistics::beforeDay() const {
    return std::max<std::int64_t>(waitEnd.value_or(millisecondsSinceEpoch()) - sessionStart, 0);
}

std::int64_t DayStatistics::sessionMs() const {
    return beforeDay() + day.sessionMs();
}

std::int64_t DayStatistics::toldSessionStart() const {
    return sessionStart - (day.sessionMs() - day.sessionMs() / speed);
}

// What a period holds of the time before this session is a fixed amount for each hour, for a year at most. All of
// the time has that year however long the session is, because its counters never fall.
Json::Value DayStatistics::period(Period hours) const {
    Counters const counted = hours == 0 ? day.counted() : day.counted(hours);
    std::int64_t const longest = std::min<std::int64_t>(hours, 8760);
    std::int64_t const earlier =
        hours == allTime ? longest : std::max<std::int64_t>(longest - day.sessionHours(), 0);
    std::int64_t const received = counted.bytes.received + earlier * 9'000'000'000;
    std::int64_t const sent = counted.bytes.sent + earlier * 1'000'000'000;
    std::int64_t const inPeriodMs =
        hours == 0 || hours == allTime ? sessionMs() : std::min(sessionMs(), hours * hourMs);
    Json::Value report;
    report["bytes_recv"] = received;
    report["bytes_sent"] = sent;
    report["encrypted_bytes_recv"] = received / 10 * 9;
    report["encrypted_bytes_sent"] = sent / 10 * 9;
    report["max_download_mbps"] = day.maxDownMbps();
    report["max_upload_mbps"] = day.maxUpMbps();
    report["days_since_first"] = static_cast<int>((earlier * hourMs + inPeriodMs) / (24 * hourMs));
    report["num_failovers"] = counted.failovers + earlier * 12;
    report["num_sessions"] = 1 + earlier / 8;
    report["retrans_bytes"] = counted.resent + earlier * 40'000'000;
    report["session_start_time"] = toldSessionStart() + sessionMs() - inPeriodMs - earlier * hourMs;
    report["total_connected_minutes"] = inPeriodMs / minuteMs + earlier * 20;
    report["down_benefit"] = benefit(false);
    report["up_benefit"] = benefit(true);

    Json::Value& tun = report["tun"] = packetCounts(received, sent);
    tun["buffer_waits"] = earlier * 3;
    tun["packet_waits"] = earlier * 11;
    tun["read_queue"] = 2;
    tun["dropped_incoming"] = (counted.failovers + earlier) * 4;
    report["packet_handler"] = packetCounts(received + received / 20, sent + sent / 20);
    report["packet_handler"]["retries"] = counted.resent / packetBytes + earlier * 30'000;
    report["cp_benefit"]["cp_detect"] = earlier / 168;
    report["cp_benefit"]["cp_success"] = earlier / 168;

    Json::Value& streaming = report["streaming"];
    streaming["total_failover_saves"] = counted.failoverSaves + earlier * 12;
    streaming["total_speed_saves"] = counted.speedSaves + earlier * 100;
    streaming["total_redundant_saves"] = counted.redundantSaves + earlier * 40;
    streaming["total_streams"] = counted.streams + earlier * 15;
    streaming["unique_saves"] = counted.savedStreams + earlier * 14;
    return report;
}

Json::Value DayStatistics::sessionReport(std::set<Period> const& periods) const {
    Json::Value report(Json::objectValue);
    for (Period const hours : periods) {
        report[std::to_string(hours)] = period(hours);
    }
    return report;
}

Json::Value DayStatistics::stream(Stream const& stream) const {
    bool const isActive = day.isActive(stream);
    std::int64_t const durationMs = std::min(day.elapsedMs(), stream.endMs) - stream.startMs;
    auto const steps = static_cast<double>(std::max(durationMs, stepMs)) / stepMs;
    Json::Value report;
    report["active"] = isActive;
    report["id"] = Json::UInt64(stream.id);
    report["group_id"] = 1;
    report["name"] = stream.kind.name;
    report["start_time"] = toldSessionStart() + beforeDay() + stream.startMs - day.sessionStartMs();
    report["duration"] = durationMs;
    report["download_speed"] = stream.downMbps;
    report["upload_speed"] = stream.upMbps;
    report["average_download_speed"] = stream.downSum / steps;
    report["average_upload_speed"] = stream.upSum / steps;
    report["redundant_saves"] = stream.redundantSaves;
    report["speed_saves"] = stream.speedSaves;
    report["failover_saves"] = stream.failoverSaves;
    report["health"] = !isActive ? 0 : stream.troubleSeconds > 0 ? 1 : 2;
    return report;
}

Json::Value DayStatistics::streamingReport() const {
    auto const any = [this](auto isBad) {
        return std::any_of(day.lines.begin(), day.lines.end(),
                           [&](Line const& line) { return line.usableDown() > 0 && isBad(line); });
    };
    Json::Value report;
    report["bonding_mode"] = world.connectionSettings["algorithm"];
    report["badLoss"] = any([](Line const& line) { return line.loss() > 0.05; });
    report["badLatency"] = any([](Line const& line) { return line.latencyMs() > 100; });
    report["badCpu"] = false;
    report["badMemory"] = false;
    report["streams"] = Json::arrayValue;
    for (Stream const& each : day.streams()) {
        report["streams"].append(stream(each));
    }
    return report;
}

} // namespace kelvarissim
