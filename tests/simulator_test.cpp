// The simulated daemon's reports as golden/simulator.txt has them, byte for byte. There stand
//     #    a remark
//     $    the options of a new daemon, and a new link to it
//     >    a request and its payload, which may be missing
//     <    the report that comes next, broken behind its objects
//     ~    a number of reports that are passed over
//     .    how the link ends
// Times of the day are starred out.
// Then the traffic that the option of this name makes, whose model is linked where days would take too long.

#include "day.h"
#include "easywsclient.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <regex>
#include <sstream>

using namespace harness;
using easywsclient::WebSocket;

namespace {

class Link {
public:
    explicit Link(std::uint16_t port)
        : socket(WebSocket::from_url("ws://127.0.0.1:" + std::to_string(port) + "/")) {}

    void send(std::string const& request) const {
        std::string const name = request.substr(0, request.find(' '));
        std::string const payload = name == request ? "null" : request.substr(name.size() + 1);
        socket->send("[\"" + name + "\"," + payload + ",\"kelvaris_sdk\"]");
    }

    // The next report, or why there is none.
    std::string next() {
        bool isClosing = false;
        int patienceLeft = 1000; // in waits of at most 20 ms
        while (reports.empty() && socket->getReadyState() != WebSocket::CLOSED && --patienceLeft > 0) {
            isClosing = socket->getReadyState() == WebSocket::CLOSING;
            socket->poll(20);
            socket->dispatch([this](std::string const& report) { reports.push_back(report); });
        }
        if (reports.empty()) {
            return patienceLeft <= 0 ? "nothing" : isClosing ? "close frame" : "dropped";
        }
        std::string const report = reports.front();
        reports.pop_front();
        return report;
    }

private:
    std::unique_ptr<WebSocket> socket;
    std::deque<std::string> reports;
};

// Made before the threads: making an expression fills a cache of the locale that no lock guards.
std::regex const times(R"re("((session_|start_)*time|duration|sessionEnd)":("[^"]*"|\d+))re");
std::regex const objectEnds("\\},");

std::string shown(std::string const& report) {
    return std::regex_replace(std::regex_replace(report, times, "\"$1\":*"), objectEnds, "},\n");
}

// What becomes of a piece of the file, from a "$" on, when it is played.
std::string played(std::string const& piece) {
    std::istringstream lines(piece);
    std::string line;
    std::getline(lines, line);
    std::string seen = line + '\n';
    Simulator const daemon(split(line.substr(1)));
    Link link(daemon.port);
    while (std::getline(lines, line)) {
        char const kind = line.empty() ? '#' : line[0];
        std::string const rest = line.substr(std::min<std::size_t>(line.size(), 2));
        if (kind == '>') {
            link.send(rest);
        } else if (kind == '~') {
            for (int i = std::stoi(rest); i > 0; --i) {
                link.next();
            }
        } else if (kind == '<' || kind == '.') {
            line = line.substr(0, 2) + link.next();
        } else if (kind != '#') {
            continue; // the report goes on
        }
        seen += line + '\n';
    }
    return seen;
}

// The four reports of an interval, as texts and as values, and the states reported before them.
struct Tick {
    std::string text;
    std::string streamText;
    Json::Value networks, connections, session, streams;
    std::string states;

    Json::Value const& connection(char const* adapter) const {
        for (Json::Value const& each : connections["connections"]) {
            if (each["guid"] == adapter) {
                return each;
            }
        }
        return Json::Value::nullSingleton();
    }
    Json::Int64 bytes() const {
        return session["0"]["bytes_recv"].asInt64() + session["0"]["bytes_sent"].asInt64();
    }
    Json::Int64 usage(Json::ArrayIndex adapter, char const* key = "usage") const {
        return networks[adapter]["limits"][key].asInt64();
    }
    Json::Int64 usageOfAll() const {
        return usage(0) + usage(1) + usage(2) + usage(3);
    }
};

// A simulated daemon with traffic, of which four seconds pass from one report to the next, and a client that gets
// its statistics.
class Traffic {
public:
    explicit Traffic(std::string const& options = "")
        : daemon(split("--traffic --interval 4 --speed 1000 " + options)), link(daemon.port) {
        link.send(R"(stat_subscribe {"enable":true,"periods":[0,24,4294967295]})");
    }

    Tick tick() {
        Tick tick;
        while (tick.streams.isNull()) {
            std::string const text = link.next();
            Json::Value const report = parsed(text);
            std::string const name = report[0].asString();
            if (name == "report_networks") {
                tick.networks = report[1];
            } else if (name == "report_connection_stats") {
                tick.connections = report[1];
            } else if (name == "report_session_stats") {
                tick.session = report[1];
            } else if (name == "report_streaming_stats") {
                tick.streams = report[1];
                tick.streamText = text;
            } else if (name == "report_current_state") {
                tick.states += report[1]["state"].asString();
            }
            tick.text += text + '\n';
        }
        return tick;
    }
    std::vector<Tick> ticks(int count) {
        std::vector<Tick> all;
        std::generate_n(std::back_inserter(all), count, [this] { return tick(); });
        return all;
    }

    Simulator daemon;
    Link link;
};

Json::Int64 millisecondsSinceEpoch() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

std::string texts(std::string const& options, int ticks) {
    std::string all;
    for (Tick const& tick : Traffic(options).ticks(ticks)) {
        all += shown(tick.text);
    }
    return all;
}

} // namespace

TEST(Simulator, LogHidesSecrets) {
    Simulator daemon({"--verbose"});
    Link link(daemon.port);
    link.send(R"(login {"username":"me","password":"hidden"})");
    link.send(R"(login_oauth {"oauth":"hidden"})");
    link.send(R"(safe_browsing_token_refresh [{"token":{"a":"hidden"}}])");
    link.send(R"(login_oauth "hidden")");
    link.send(R"(login ["hidden",{"firewall":{"config":["hidden"]}}])");
    link.send(R"(login {"password":"hidden","username":"cut)");
    link.send(R"(login ["hidden")");
    link.send(R"(safe_browsing_token_refresh {"token":"hidden")");
    link.send("exit");
    while (link.next().starts_with('[')) {
    }
    std::string const& log = daemon.process.wait().err;
    EXPECT_NE(log.find(R"(<- ["login",{"password":"***","username":"me"},)"), std::string::npos) << log;
    EXPECT_NE(log.find(R"(bad request '["login***')"), std::string::npos) << log;
    EXPECT_NE(log.find(R"(<- ["exit")"), std::string::npos) << log;
    EXPECT_EQ(log.find("hidden"), std::string::npos) << log;
}

// All pieces at once, because some wait for what takes a second or two.
TEST(Simulator, ReportsAreRepeated) {
    std::string const text = golden("simulator.txt");
    std::vector<std::pair<std::string, std::future<std::string>>> runs;
    for (std::size_t start = 0, end = 0; start < text.size(); start = end) {
        end = std::min(text.find("\n$", start), text.size() - 1) + 1;
        std::string const piece = text.substr(start, end - start);
        runs.emplace_back(piece, std::async(std::launch::async, played, piece));
    }
    for (auto& [expected, seen] : runs) {
        EXPECT_EQ(shown(seen.get()), expected);
    }
}

TEST(SimulatedTraffic, SeedDecides) {
    std::string const seven = texts("--seed 7", 40);
    EXPECT_EQ(texts("--seed 7", 40), seven);
    EXPECT_NE(texts("--seed 8", 40), seven);
    EXPECT_EQ(texts("--seed 7 --speed 400 --interval 10", 40), seven) << "speed";
}

// Counters and states don't depend on how often they are reported, although rates are those since the last report.
TEST(SimulatedTraffic, IntervalDecidesNothing) {
    std::vector<Tick> const seldom = Traffic("--interval 8 --speed 1125").ticks(40);
    std::vector<Tick> const often = Traffic("--interval 2 --speed 1125").ticks(160);
    for (std::size_t i = 0; i < seldom.size(); ++i) {
        EXPECT_EQ(often[4 * i + 3].networks, seldom[i].networks);
        EXPECT_EQ(often[4 * i + 3].bytes(), seldom[i].bytes());
        EXPECT_EQ(shown(often[4 * i + 3].streamText), shown(seldom[i].streamText));
    }
}

TEST(SimulatedTraffic, FiguresAndAgesAgree) {
    Traffic traffic;
    Tick last = traffic.tick();
    std::size_t streams = 0;
    for (int i = 0; i < 150; ++i) {
        Tick const tick = traffic.tick();
        Json::Int64 const bits = (tick.bytes() - last.bytes()) * 8;
        Json::Int64 const ms = tick.connections["time"].asInt64() - last.connections["time"].asInt64();
        EXPECT_EQ(ms, 4000);
        Json::Int64 rates = 0;
        for (Json::Value const& each : tick.connections["connections"]) {
            rates += each["totBps"].asInt64();
            EXPECT_EQ(each["rcvBps"].asInt64() + each["sndBps"].asInt64(), each["totBps"].asInt64());
            if (!each["cnnct"].asBool()) {
                continue;
            }
            EXPECT_GE(each["lsR"].asDouble(), 0);
            EXPECT_LT(each["lsR"].asDouble(), 0.2);
            EXPECT_GT(each["ltMs"].asInt(), each["jtMs"].asInt());
            EXPECT_LT(each["ltMs"].asInt(), 300);
        }
        EXPECT_NEAR(static_cast<double>(rates * ms / 1000), static_cast<double>(bits), 8.0 * 4);
        EXPECT_EQ(tick.usageOfAll() - last.usageOfAll(), tick.bytes() - last.bytes());
        EXPECT_GE(tick.session["4294967295"]["bytes_recv"], last.session["4294967295"]["bytes_recv"]);
        // Who takes an age from a start has the real clock for it.
        Json::Int64 const now = millisecondsSinceEpoch();
        Json::Int64 const start = tick.session["0"]["session_start_time"].asInt64();
        Json::Int64 const minutes = tick.session["0"]["total_connected_minutes"].asInt64();
        EXPECT_LE(start + minutes * 60'000, now);
        for (Json::Value const& each : tick.streams["streams"]) {
            ++streams;
            Json::Int64 const end = each["start_time"].asInt64() + each["duration"].asInt64();
            EXPECT_GE(each["start_time"].asInt64(), start);
            EXPECT_LE(end, now);
            EXPECT_TRUE(!each["active"].asBool() || (end - start) / 60'000 == minutes) << tick.text;
        }
        last = tick;
    }
    EXPECT_GT(last.bytes(), 0);
    EXPECT_GT(streams, 0U);
}

TEST(SimulatedTraffic, CharactersDiffer) {
    double spread[2][2] = {{1e9, 0}, {1e9, 0}};
    bool hasRaised = false;
    for (Tick const& tick : Traffic("--interval 2 --speed 500").ticks(200)) {
        char const* const adapters[] = {"eth0", "wwan0"};
        for (int i = 0; i < 2; ++i) {
            double const rate = tick.connection(adapters[i])["rcvEstMbps"].asDouble();
            spread[i][0] = std::min(spread[i][0], rate);
            spread[i][1] = std::max(spread[i][1], rate);
        }
        hasRaised = hasRaised || tick.connection("wwan0")["lsR"].asDouble() > 0.05;
    }
    EXPECT_LT(spread[0][1], spread[0][0] * 1.1) << "steady";
    EXPECT_GT(spread[1][1], spread[1][0] * 3) << "bursts";
    EXPECT_TRUE(hasRaised) << "loss";
}

TEST(SimulatedTraffic, AdapterDropsOutAndStreamsEnd) {
    Traffic traffic;
    Link bystander(traffic.daemon.port);
    int previous = 2;
    std::string states;
    std::string healths;
    for (Tick const& tick : traffic.ticks(200)) {
        int const state = tick.networks[3]["connectionState"].asInt();
        bool const isUp = tick.connection("eth1")["cnnct"].asBool();
        EXPECT_EQ(isUp, state == 2);
        EXPECT_TRUE(isUp || previous == 2 || tick.connection("eth1")["totBps"] == 0);
        if (state != previous) {
            states += std::to_string(state);
            EXPECT_EQ(parsed(bystander.next())[1], tick.networks) << "everybody is told";
        }
        previous = state;
        EXPECT_EQ(tick.states, "");
        std::string const health =
            tick.streams["streams"].empty() ? "-" : tick.streams["streams"][0]["health"].asString();
        healths += health == healths.substr(healths.empty() ? 0 : healths.size() - 1) ? "" : health;
    }
    EXPECT_TRUE(std::regex_search(states, std::regex("^0.*2"))) << states;
    EXPECT_TRUE(std::regex_search(healths, std::regex("-.*2.*0.*-"))) << healths;
    bystander.send("request_current_state");
    Json::Value report = parsed(bystander.next());
    while (report[0] != "report_current_state") {
        report = parsed(bystander.next());
    }
    EXPECT_EQ(report[1]["state"], 6);
}

TEST(SimulatedTraffic, LimitsFill) {
    Traffic traffic;
    traffic.link.send(R"(set_network_daily_limit {"network":"eth0","max":30000000})");
    traffic.link.send(R"(set_network_limit {"network":"wwan0","max":16210000000,"resetDay":15})");
    traffic.link.send(R"(set_network_priority {"network":"wlan0","priority":2})");
    traffic.link.send(R"(set_network_priority {"network":"eth1","priority":2})");
    Tick tick = traffic.tick();
    while (tick.networks[3]["priority"] != 2) { // time passes meanwhile
        tick = traffic.tick();
    }
    Json::Int64 const before = tick.usage(1);
    for (int i = 0; i < 500 && (tick.usage(0, "usageDaily") < 30'000'000 || tick.usage(2) < 16'210'000'000);
         ++i) {
        EXPECT_EQ(tick.usage(1), before) << "a backup carried something before the others were full";
        tick = traffic.tick();
    }
    tick = traffic.ticks(2).back();
    EXPECT_EQ(tick.usage(0, "usageDaily"), 30'000'000);
    EXPECT_EQ(tick.connection("eth0")["totBps"], 0);
    EXPECT_EQ(tick.connection("eth0")["zzz"], 1);
    EXPECT_GT(tick.connection("wwan0")["totBps"].asInt(), 0);
    EXPECT_LE(tick.connection("wwan0")["rcvBps"].asInt(), 128'000) << "the rate over a limit";

    traffic.link.send(R"(add_net_daily_limit_boost {"network":"eth0","value":1000000})");
    EXPECT_EQ(traffic.ticks(30).back().usage(0, "usageDaily"), 31'000'000);
}

TEST(SimulatedTraffic, UsageBeginsAnewAtMidnight) {
    kelvarissim::Character const idle{1, 1, 10, 0, 0, 0, 1, 0, 0, 0};
    kelvarissim::Day day({idle, idle, idle}, 1);
    for (kelvarissim::Line& line : day.lines) {
        line.usage.month = 3000;
        line.usage.day = 500;
        line.usage.boostDaily = 10;
    }
    day.lines[1].usage.resetDay = 7;
    day.lines[2].usage.resetDay = 8;
    day.advance(std::chrono::hours(16) - std::chrono::milliseconds(100));
    EXPECT_EQ(day.lines[0].usage.day, 500);
    day.advance(std::chrono::milliseconds(50));
    EXPECT_EQ(day.lines[0].usage.day, 500);
    day.advance(std::chrono::milliseconds(50));
    EXPECT_EQ(day.lines[0].usage.day, 0);
    EXPECT_EQ(day.lines[0].usage.boostDaily, 0);
    EXPECT_EQ(day.lines[0].usage.month, 2900);
    EXPECT_EQ(day.lines[1].usage.month, 0);
    EXPECT_EQ(day.lines[2].usage.month, 3000);
}

// No report of an interval comes here, with which the time would pass in any case.
TEST(SimulatedTraffic, SessionBeginsAndEndsBetweenReports) {
    Simulator const daemon(split("--traffic --interval 3600000 --speed 1440"));
    Link link(daemon.port);
    auto const await = [&link](std::string const& report, auto isWanted) {
        Json::Value seen = parsed(link.next());
        while (seen[0] != report || !isWanted(seen[1])) {
            seen = parsed(link.next());
        }
        return seen[1];
    };
    auto const awaitState = [&](int wanted) {
        await("report_current_state",
              [wanted](Json::Value const& report) { return report["state"] == wanted; });
    };
    auto const asked = [&](std::string const& statistics) {
        link.send("request_" + statistics);
        return await("report_" + statistics, [](auto const&) { return true; });
    };
    auto const session = [&] { return asked("session_stats")["0"]; };

    for (bool const isDayBegun : {false, true}) {
        if (isDayBegun) {
            link.send(R"(stat_subscribe {"enable":true})");
        }
        link.send("server_disconnect");
        awaitState(2);
        Json::Int64 const before = millisecondsSinceEpoch();
        link.send(R"(server_auto_connect {"server":"auto"})");
        awaitState(6);
        Json::Value const begun = session();
        EXPECT_GE(begun["session_start_time"].asInt64(), before) << isDayBegun;
        EXPECT_LE(begun["session_start_time"].asInt64(), millisecondsSinceEpoch()) << isDayBegun;
        EXPECT_EQ(begun["bytes_recv"], 0);
        EXPECT_EQ(asked("connection_stats")["connections"].size(), 4U);
    }
    link.send("server_disconnect");
    awaitState(5);
    Json::Value const ended = session();
    EXPECT_GT(ended["bytes_recv"].asInt64(), 0);
    awaitState(2);
    for (char const* const key : {"bytes_recv", "session_start_time", "total_connected_minutes"}) {
        EXPECT_EQ(session()[key], ended[key]) << "minutes of the day later";
    }
    EXPECT_EQ(asked("connection_stats")["connections"], Json::arrayValue);
    EXPECT_EQ(asked("streaming_stats")["streams"], Json::arrayValue);
}

TEST(SimulatedTraffic, BondingModeIsThatOfTheSettings) {
    Simulator const daemon({"--traffic"});
    Link link(daemon.port);
    link.send("request_connection_settings");
    link.send("request_streaming_stats");
    EXPECT_EQ(parsed(link.next())[1]["algorithm"], parsed(link.next())[1]["bonding_mode"]);
    link.send(R"(set_connection_algorithm {"algorithm":"RD"})");
    link.send("request_streaming_stats");
    EXPECT_EQ(parsed(link.next())[1]["algorithm"], "RD");
    EXPECT_EQ(parsed(link.next())[1]["bonding_mode"], "RD");
}
