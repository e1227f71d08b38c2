#include "traffic.h"

#include <algorithm>
#include <cmath>

namespace kelvarissim {

namespace {

// Returns the Wi-Fi link's quality in this step; the pattern repeats every twenty steps.
double wifiQuality(unsigned step) {
    constexpr std::array<double, 20> round = {1, 1, 1, 1,   1,   1, 1, 1, 1,   1,
                                              1, 1, 1, 0.5, 0.2, 0, 0, 0, 0.4, 0.8};
    return round[step % round.size()];
}

} // namespace

Traffic::Traffic()
    : start(millisecondsSinceEpoch()),
      now(start),
      links{{{"wlan0", "192.168.1.23", "udp", 18, 60, 20}, {"wwan0", "10.64.12.7", "tcp-multi", 55, 25, 8}}} {
    Traffic::advance(std::chrono::milliseconds(0));
}

bool Traffic::advance(std::chrono::milliseconds time) {
    now = millisecondsSinceEpoch();
    bool const wasUp = links[0].quality > 0;
    advanceLink(links[0], wifiQuality(step));
    advanceLink(links[1], 1);
    if (wasUp && links[0].quality == 0) {
        ++counters.failovers;
    }
    count(time);
    ++step;
    return false;
}

double Traffic::noise(double spread) {
    return std::uniform_real_distribution<double>(1 - spread, 1 + spread)(random);
}

void Traffic::advanceLink(Link& link, double quality) {
    link.quality = quality;
    if (quality == 0) {
        link.latencyMs = link.jitterMs = 0;
        link.loss = 1;
        link.receiveBps = link.sendBps = 0;
        return;
    }
    link.latencyMs = link.baseLatencyMs / quality * noise(0.15);
    link.jitterMs = link.latencyMs * 0.1 * noise(0.5);
    link.loss = (0.002 + 0.05 * (1 - quality)) * noise(0.5);
    link.receiveBps = std::llround(link.downMbps * quality * noise(0.2) * 1e6);
    link.sendBps = std::llround(link.upMbps * quality * noise(0.2) * 1e6);
}

void Traffic::count(std::chrono::milliseconds time) {
    double down = 0;
    double up = 0;
    for (Link const& link : links) {
        std::int64_t const received = link.receiveBps * time.count() / 8000;
        counters.received += received;
        counters.sent += link.sendBps * time.count() / 8000;
        counters.resent += std::llround(static_cast<double>(received) * link.loss);
        down += static_cast<double>(link.receiveBps) / 1e6;
        up += static_cast<double>(link.sendBps) / 1e6;
    }
    counters.maxDownMbps = std::max(counters.maxDownMbps, down);
    counters.maxUpMbps = std::max(counters.maxUpMbps, up);
}

Json::Value Traffic::connection(Link const& link) const {
    bool const isUp = link.quality > 0;
    auto const window = static_cast<double>(link.sendBps) / 8000 * link.latencyMs;
    Json::Value report;
    report["guid"] = link.adapter;
    report["key"] = link.adapter + "-198.51.100.4:443";
    report["protocol"] = link.protocol;
    report["cnnct"] = isUp;
    report["zzz"] = 0;
    report["localIp"] = isUp ? link.localIp : "";
    report["privateIp"] = isUp ? "10.202.0.2" : "";
    report["remoteIp"] = "198.51.100.4";
    report["numConns"] = isUp ? 8 : 0;
    report["bInF"] = rounded(window * 0.6);
    report["bInFL"] = rounded(window);
    report["lsR"] = link.loss;
    report["lsS"] = link.loss / 2;
    report["ltMs"] = rounded(link.latencyMs);
    report["jtMs"] = rounded(link.jitterMs);
    report["rcvBps"] = link.receiveBps;
    report["sndBps"] = link.sendBps;
    report["totBps"] = link.receiveBps + link.sendBps;
    report["rcvEstMbps"] = link.downMbps * link.quality;
    report["sndEstMbps"] = link.upMbps * link.quality;
    report["mos"] = isUp ? meanOpinionScore(link.latencyMs, link.loss) : 0;
    return report;
}

Json::Value Traffic::connectionReport() const {
    Json::Value report;
    report["time"] = now;
    for (Link const& link : links) {
        report["connections"].append(connection(link));
    }
    return report;
}

Json::Value Traffic::benefit(double Link::*mbps) const {
    double combined = 0;
    double fastest = 0;
    int connections = 0;
    for (Link const& link : links) {
        combined += link.*mbps * link.quality;
        fastest = std::max(fastest, link.*mbps * link.quality);
        connections += link.quality > 0 ? 1 : 0;
    }
    Json::Value report;
    report["num_connections"] = connections;
    report["combined_mbps"] = combined;
    report["fastest_conn_mbps"] = fastest;
    return report;
}

// The counters of a longer period are this session's plus a fixed amount for each hour, for a year at most.
Json::Value Traffic::period(Period hours) const {
    std::int64_t const earlier = std::min<Period>(hours, 8760);
    std::int64_t const received = counters.received + earlier * 180'000'000;
    std::int64_t const sent = counters.sent + earlier * 40'000'000;
    Json::Value report;
    report["bytes_recv"] = received;
    report["bytes_sent"] = sent;
    report["encrypted_bytes_recv"] = received / 10 * 9;
    report["encrypted_bytes_sent"] = sent / 10 * 9;
    report["max_download_mbps"] = counters.maxDownMbps;
    report["max_upload_mbps"] = counters.maxUpMbps;
    report["days_since_first"] = static_cast<int>(earlier / 24);
    report["num_failovers"] = counters.failovers + earlier / 12;
    report["num_sessions"] = 1 + earlier / 8;
    report["retrans_bytes"] = counters.resent + earlier * 900'000;
    report["session_start_time"] = start - earlier * 3'600'000;
    report["total_connected_minutes"] = (now - start) / 60'000 + earlier * 20;
    report["down_benefit"] = benefit(&Link::downMbps);
    report["up_benefit"] = benefit(&Link::upMbps);

    Json::Value& tun = report["tun"] = packetCounts(received, sent);
    tun["buffer_waits"] = earlier * 3;
    tun["packet_waits"] = earlier * 11;
    tun["read_queue"] = 2;
    tun["dropped_incoming"] = counters.failovers * 4;
    report["packet_handler"] = packetCounts(received + received / 20, sent + sent / 20);
    report["packet_handler"]["retries"] = counters.resent / packetBytes;
    report["cp_benefit"]["cp_detect"] = earlier / 168;
    report["cp_benefit"]["cp_success"] = earlier / 168;

    Json::Value& streaming = report["streaming"];
    streaming["total_failover_saves"] = counters.failovers + earlier / 24;
    streaming["total_speed_saves"] = step / 20 + earlier / 6;
    streaming["total_redundant_saves"] = earlier / 48;
    streaming["total_streams"] = 1 + earlier / 4;
    streaming["unique_saves"] = counters.failovers + earlier / 5;
    return report;
}

Json::Value Traffic::sessionReport(std::set<Period> const& periods) const {
    Json::Value report(Json::objectValue);
    for (Period const hours : periods) {
        report[std::to_string(hours)] = period(hours);
    }
    return report;
}

Json::Value Traffic::streamingReport() const {
    double const quality = links[0].quality;
    double const down = quality == 0 ? 2.5 : 4.5;
    Json::Value report;
    report["bonding_mode"] = "STR";
    report["badLoss"] = links[0].loss > 0.02 && quality > 0;
    report["badLatency"] = quality == 0;
    report["badCpu"] = false;
    report["badMemory"] = false;

    Json::Value& stream = report["streams"].append(Json::Value());
    stream["active"] = true;
    stream["id"] = 7;
    stream["group_id"] = 1;
    stream["name"] = "Video call";
    stream["start_time"] = start;
    stream["duration"] = now - start;
    stream["download_speed"] = down;
    stream["upload_speed"] = down / 2;
    stream["average_download_speed"] = 4.2;
    stream["average_upload_speed"] = 2.1;
    stream["redundant_saves"] = 0;
    stream["speed_saves"] = step / 20;
    stream["failover_saves"] = counters.failovers;
    stream["health"] = quality < 0.5 ? 1 : 2;
    return report;
}

} // namespace kelvarissim
