#include "daystatistics.h"
#include "families.h"
#include "registry.h"
#include "traffic.h"

#include <array>
#include <ctime>
#include <map>
#include <memory>
#include <utility>

namespace kelvarissim {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds subscriptionLifetime(60); // a repeat prolongs it
constexpr std::chrono::seconds testDuration(2);
constexpr unsigned maxTests = 8;

struct Subscription {
    Clock::time_point end;
    std::set<Period> periods;
};

struct Telemetry {
    std::unique_ptr<Statistics> statistics;
    std::map<ClientId, Subscription> subscriptions;
    bool isReporting = false;
    Clock::time_point reported;          // the last time
    std::chrono::milliseconds ahead{0};  // how much of the time up to the next report has passed already
    Json::Value tests{Json::arrayValue}; // sorted by time, newest first
    std::string disconnectReason = "USERINITIATED";
    std::time_t sessionEnd = std::time(nullptr) - 3600;
};

// A client that has named no period gets the current session's statistics.
std::set<Period> periodsOf(Telemetry const& telemetry, ClientId client) {
    auto const subscription = telemetry.subscriptions.find(client);
    if (subscription == telemetry.subscriptions.end() || subscription->second.periods.empty()) {
        return {0};
    }
    return subscription->second.periods;
}

// A session begins and ends between two reports, and time has to pass up to then first. What is left of it passes with
// the next report, so that the reports come after the same times whatever clients do.
void catchUp(Telemetry& telemetry, Daemon& daemon) {
    std::chrono::milliseconds due = telemetry.ahead;
    if (telemetry.isReporting) {
        auto const passed = std::min<Clock::duration>(Clock::now() - telemetry.reported, daemon.interval());
        due = std::chrono::duration_cast<std::chrono::milliseconds>(passed * daemon.trafficSpeed());
    }
    std::chrono::milliseconds const time = due - std::exchange(telemetry.ahead, due);
    if (telemetry.statistics->advance(time)) {
        daemon.broadcast("report_networks", networksReport(daemon.world()));
    }
}

bool reportStatistics(Telemetry& telemetry, Daemon& daemon) {
    std::erase_if(telemetry.subscriptions, [&daemon](auto const& entry) {
        bool const expired = entry.second.end <= Clock::now();
        if (expired) {
            daemon.log(clientText(entry.first) + " has not repeated its subscription");
        }
        return expired;
    });
    Statistics& statistics = *telemetry.statistics;
    bool const adaptersChanged =
        statistics.advance(daemon.interval() * daemon.trafficSpeed() - telemetry.ahead);
    telemetry.ahead = std::chrono::milliseconds(0);
    telemetry.reported = Clock::now();
    if (adaptersChanged) {
        daemon.broadcast("report_networks", networksReport(daemon.world()));
    }
    for (auto const& [client, subscription] : telemetry.subscriptions) {
        if (!adaptersChanged) {
            daemon.send(client, "report_networks", networksReport(daemon.world()));
        }
        daemon.send(client, "report_connection_stats", statistics.connectionReport());
        daemon.send(client, "report_session_stats", statistics.sessionReport(periodsOf(telemetry, client)));
        daemon.send(client, "report_streaming_stats", statistics.streamingReport());
    }
    statistics.endReport();
    return telemetry.isReporting = statistics.goesOnUnheard() || !telemetry.subscriptions.empty();
}

// A repeat without periods keeps the subscription's earlier periods.
void subscribe(std::shared_ptr<Telemetry> const& telemetry, Request const& request) {
    if (!request.payload["enable"].asBool()) {
        telemetry->subscriptions.erase(request.client);
        return;
    }
    Subscription& subscription = telemetry->subscriptions[request.client];
    subscription.end = Clock::now() + subscriptionLifetime;
    if (request.payload.isMember("periods")) {
        subscription.periods.clear();
        for (Json::Value const& hours : request.payload["periods"]) {
            subscription.periods.insert(hours.asUInt());
        }
    }
    if (!telemetry->isReporting) {
        telemetry->isReporting = true;
        telemetry->reported = Clock::now();
        telemetry->statistics->begin();
        Daemon& daemon = request.daemon;
        daemon.every(daemon.interval(),
                     [telemetry, &daemon] { return reportStatistics(*telemetry, daemon); });
    }
}

std::string localTime() {
    std::time_t const now = std::time(nullptr);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", std::localtime(&now));
    return text.data();
}

// Each test's figures differ a little from those of the test before, so that a new result can be told from
// it.
Json::Value finishedTest(bool isStreamTest, unsigned earlier) {
    double const variation = 1 + 0.05 * (earlier % 5);
    Json::Value test;
    test["time"] = localTime();
    test["country"] = "us";
    test["city"] = "nyc";
    test["num_connections"] = 2;
    test["download"] = 74.5 * variation;
    test["upload"] = 24.25 * variation;
    test["error"] = false;
    test["msg"] = "";
    test["latency"] = 19 + earlier % 5;
    test["type"] = isStreamTest ? 2 : 1;
    if (isStreamTest) {
        test["resolution"] = "1080p";
        test["fps"] = 60;
        test["jitter"] = 2 + earlier % 3;
        test["loss"] = 0.001 * variation;
    }
    return test;
}

void finishTest(Telemetry& telemetry, Daemon& daemon, bool isStreamTest) {
    telemetry.tests.insert(0, finishedTest(isStreamTest, telemetry.tests.size()));
    if (telemetry.tests.size() > maxTests) {
        telemetry.tests.resize(maxTests);
    }
    daemon.broadcast("report_speedtest_results", telemetry.tests);
}

Json::Value disconnectReport(Telemetry const& telemetry) {
    Json::Value report;
    report["disconnectReason"] = telemetry.disconnectReason;
    report["sessionEnd"] = Json::Int64(telemetry.sessionEnd);
    report["sessionLength"] = 5400;
    return report;
}

} // namespace

void registerTelemetry(Registry& registry) {
    auto telemetry = std::make_shared<Telemetry>();
    registry.onStart([telemetry](Daemon& daemon) {
        if (daemon.world().trafficSeed) {
            telemetry->statistics = std::make_unique<DayStatistics>(daemon.world(), daemon.trafficSpeed());
            daemon.world().onState = [telemetry, &daemon] { catchUp(*telemetry, daemon); };
        } else {
            telemetry->statistics = std::make_unique<Traffic>();
        }
    });
    registry.options.text("--disconnect-reason", "REASON", "why the last session ended (USERINITIATED)",
                          [telemetry](std::string const& word) {
                              telemetry->disconnectReason = word;
                              return true;
                          });
    registry.on("stat_subscribe", [telemetry](Request const& request) { subscribe(telemetry, request); });
    registry.onDisconnect([telemetry](Daemon&, ClientId client) { telemetry->subscriptions.erase(client); });
    registry.on("request_connection_stats", [telemetry](Request const& request) {
        request.answer("report_connection_stats", telemetry->statistics->connectionReport());
    });
    registry.on("request_session_stats", [telemetry](Request const& request) {
        request.answer("report_session_stats",
                       telemetry->statistics->sessionReport(periodsOf(*telemetry, request.client)));
    });
    registry.on("request_streaming_stats", [telemetry](Request const& request) {
        request.answer("report_streaming_stats", telemetry->statistics->streamingReport());
    });
    registry.on("request_disconnect_reason", [telemetry](Request const& request) {
        request.answer("report_disconnect_reason", disconnectReport(*telemetry));
    });
    registry.on("request_speedtest_results", [telemetry](Request const& request) {
        request.answer("report_speedtest_results", telemetry->tests);
    });
    for (bool const isStreamTest : {false, true}) {
        registry.on(isStreamTest ? "streamtest" : "speedtest",
                    [telemetry, isStreamTest](Request const& request) {
                        Daemon& daemon = request.daemon;
                        daemon.after(testDuration, [telemetry, &daemon, isStreamTest] {
                            finishTest(*telemetry, daemon, isStreamTest);
                        });
                    });
    }
}

} // namespace kelvarissim
