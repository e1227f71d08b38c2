// kelvaris-monitor's metrics: their text, and the command that hands them out, asked by clients of all kinds and by
// Prometheus.

#include "metrics.h"

#include "support/http.h"
#include "support/monitors.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iomanip>
#include <regex>
#include <set>
#include <sstream>
#include <unistd.h>

using namespace harness;
using namespace monitor;
using namespace std::chrono_literals;

namespace {

// ---- The text ----

std::string const awayText =
    "# HELP kelvaris_up Whether the daemon answers.\n# TYPE kelvaris_up gauge\nkelvaris_up 0\n";

kelvaris::AdapterData adapter(std::string const& id, std::string const& name) {
    kelvaris::AdapterData value;
    value.adapterID = id;
    value.name = name;
    return value;
}

// Each metric has a series, and each number a value of its own.
Snapshot fullSnapshot() {
    Snapshot snapshot;
    setLink(snapshot, kelvaris::Link::UP);
    setState(snapshot, kelvaris::State::CONNECTED);
    kelvaris::ServerInformationDetailed server;
    server.country = "us";
    setServer(snapshot, server);
    setSettings(snapshot, {});
    kelvaris::AdapterData limited = adapter("a", "A");
    limited.rateLimit = 8000;
    limited.dataUsage = {1, 2, 3, 4, 5, 6, 0};
    setAdapters(snapshot, {limited});
    kelvaris::ConnectionStats connection;
    connection.adapterID = "a";
    connection.connectionID = "c";
    connection.connected = true;
    connection.receiveBps = 12;
    connection.sendEstimateMbps = 2;
    connection.latencyMs = 45ms;
    connection.lossSend = 0.25;
    connection.mos = 4.5F;
    setConnections(snapshot, {1, {connection}});
    kelvaris::SessionStats session;
    session.bytesReceived = 9'007'199'254'740'991;
    session.periodStartTime = 1'500;
    session.totalConnectedMinutes = 3min;
    session.mbpsUpBenefit = -8;
    setSession(snapshot, {{session}});
    kelvaris::StreamStats stream;
    stream.active = true;
    stream.id = 7;
    stream.name = "call";
    stream.downloadSpeed = 0.5;
    stream.health = kelvaris::StreamHealth::POOR;
    setStreams(snapshot, {.streams = {stream}});
    setError(snapshot, Topic::settings, {.message = "no"});
    return snapshot;
}

std::set<std::string> linesOf(std::string const& text) {
    std::set<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        EXPECT_TRUE(lines.insert(line).second) << line << " is there twice";
    }
    return lines;
}

void expectLines(std::string const& text, std::vector<std::string> const& expected) {
    auto const lines = linesOf(text);
    for (std::string const& line : expected) {
        EXPECT_EQ(lines.count(line), 1U) << line << "\nisn't in:\n" << text;
    }
}

TEST(Metrics, AreInBaseUnits) {
    expectLines(
        metricsOf(fullSnapshot(), Format::text),
        {"kelvaris_up 1", "kelvaris_state{state=\"CONNECTED\"} 1", "kelvaris_state{state=\"OVERLIMIT\"} 0",
         "kelvaris_adapter_usage_bytes{adapter=\"a\",window=\"month\"} 1",
         "kelvaris_adapter_limit_bytes{adapter=\"a\",window=\"day\"} 5",
         "kelvaris_adapter_rate_limit_bytes_per_second{adapter=\"a\"} 1000",
         "kelvaris_adapter_overlimit_rate_bytes_per_second{adapter=\"a\"} 0",
         "kelvaris_connection_receive_bytes_per_second{adapter=\"a\",connection=\"c\"} 1.5",
         "kelvaris_connection_send_estimate_bytes_per_second{adapter=\"a\",connection=\"c\"} 250000",
         "kelvaris_connection_latency_seconds{adapter=\"a\",connection=\"c\"} 0.045",
         "kelvaris_connection_loss_ratio{adapter=\"a\",connection=\"c\",direction=\"send\"} 0.25",
         "kelvaris_received_bytes_total 9007199254740991", "kelvaris_session_start_timestamp_seconds 1.5",
         "kelvaris_session_connected_seconds 180", "kelvaris_session_send_benefit_bytes_per_second -1000000",
         "kelvaris_active_streams{health=\"poor\"} 1",
         "kelvaris_stream_receive_bytes_per_second{stream=\"7\",name=\"call\"} 62500",
         "kelvaris_read_failed{topic=\"settings\"} 1", "# TYPE kelvaris_received_bytes_total counter"});
    std::string const openMetrics = metricsOf(fullSnapshot(), Format::openMetrics);
    expectLines(openMetrics,
                {"# TYPE kelvaris_received_bytes counter", "# UNIT kelvaris_received_bytes bytes",
                 "kelvaris_received_bytes_total 9007199254740991", "# TYPE kelvaris_adapter info",
                 "# UNIT kelvaris_connection_loss_ratio ratio"});
    EXPECT_TRUE(openMetrics.ends_with("\n# EOF\n"));
}

TEST(Metrics, WhatIsNotKnownIsNoSeries) {
    Snapshot snapshot = fullSnapshot();
    kelvaris::AdapterData lifted = adapter("b", "");
    lifted.rateLimit = 0;
    lifted.dataUsage.max = 0;
    lifted.dataUsage.usage = -1;
    kelvaris::ConnectionStats gone;
    gone.adapterID = "b";
    gone.receiveBps = -8;
    setAdapters(snapshot, {lifted});
    setConnections(snapshot, {1, {gone}});
    setState(snapshot, kelvaris::State::UNKNOWN);
    std::string const text = metricsOf(snapshot, Format::text);
    for (char const* const name :
         {"kelvaris_state", "kelvaris_server", "adapter_limit", "rate_limit", "reset_day", "overlimit",
          "window=\"month\"", "connection_receive_bytes", "latency_s", "loss_ratio", "opinion"}) {
        EXPECT_EQ(text.find(name), std::string::npos) << name;
    }
    EXPECT_NE(text.find("kelvaris_connection_connected{adapter=\"b\",connection=\"\"} 0"), std::string::npos);

    setLink(snapshot, kelvaris::Link::LOST);
    EXPECT_EQ(metricsOf(snapshot, Format::text), awayText);
    setLink(snapshot, kelvaris::Link::UP);
    EXPECT_EQ(linesOf(metricsOf(snapshot, Format::text)).size(), 3U)
        << "what was reported before counts no more";
}

TEST(Metrics, LabelsAreEscapedAndNoSeriesIsThereTwice) {
    Snapshot snapshot;
    setLink(snapshot, kelvaris::Link::UP);
    setAdapters(snapshot,
                {adapter("\xFF", "a\"b\\c\nd\x1b[2J\xE2\x82"), adapter("\xFE", "a\"b\\c\nd\x1b[2J\xE2\x82")});
    std::string const text = metricsOf(snapshot, Format::text);
    expectLines(
        text,
        {"kelvaris_adapter_info{adapter=\"\xEF\xBF\xBD\",name=\"a\\\"b\\\\c\\\\x0ad\\\\x1b[2J\xEF\xBF\xBD\","
         "description=\"\",type=\"Unknown\",priority=\"always\",ssid=\"\"} 1"});
}

TEST(Metrics, FormatIsTheOneThatIsAskedFor) {
    struct {
        char const* accept;
        Format format;
    } const rows[] = {
        {"", Format::text},
        {"*/*", Format::text},
        {"text/html, text/plain;q=0.9", Format::text},
        {"application/openmetrics-text", Format::openMetrics},
        {"application/openmetrics-text;version=1.0.0,application/openmetrics-text;version=0.0.1;q=0.75,"
         "text/plain;version=0.0.4;q=0.5,*/*;q=0.1",
         Format::openMetrics},
        {"text/plain, Application/OpenMetrics-Text; Q=0.3", Format::text},
        {"application/openmetrics-text;q=0", Format::text},
        {";;q=,,=;q", Format::text},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(formatFor(row.accept), row.format) << row.accept;
    }
}

// ---- The command ----

Command exportCommand(std::uint16_t port, std::vector<std::string> const& words) {
    Command command = monitorCommand(port, {"export"});
    command.argv.insert(command.argv.end(), words.begin(), words.end());
    return command;
}

// The command as an HTTP server.
struct Exporter {
    explicit Exporter(std::uint16_t daemon) : process(exportCommand(daemon, {"--listen", "127.0.0.1:0"})) {
        process.waitForOutput("/metrics\n");
        port = static_cast<std::uint16_t>(std::stoi(process.out().substr(process.out().rfind(':') + 1)));
    }
    Process process;
    std::uint16_t port = 0;
};

class MonitorExport : public testing::Test {
protected:
    Folder const folder;
};

TEST_F(MonitorExport, AnswersInBothFormatsAndKnowsItsPaths) {
    Simulator const simulator({"--traffic"});
    Exporter const exporter(simulator.port);
    std::string const text = get(exporter.port);
    EXPECT_EQ(text.find("HTTP/1.1 200"), 0U);
    EXPECT_NE(text.find("Content-Type: text/plain; version=0.0.4"), std::string::npos);
    std::string const openMetrics = get(exporter.port, "/metrics", "GET", "application/openmetrics-text");
    EXPECT_NE(openMetrics.find("Content-Type: application/openmetrics-text; version=1.0.0"),
              std::string::npos);
    EXPECT_TRUE(openMetrics.ends_with("\n# EOF\n"));
    EXPECT_TRUE(get(exporter.port, "/metrics", "HEAD").ends_with("\r\n\r\n"));
    EXPECT_EQ(get(exporter.port, "/metrics", "DELETE").find("HTTP/1.1 405"), 0U);
    EXPECT_EQ(get(exporter.port, "/../etc/passwd").find("HTTP/1.1 404"), 0U);
}

TEST_F(MonitorExport, ADaemonThatGoesIsNoErrorAndIsPickedUpAgain) {
    std::uint16_t const port = freePort();
    Exporter exporter(port);
    std::string const away = get(exporter.port);
    EXPECT_EQ(away.find("HTTP/1.1 200"), 0U);
    EXPECT_EQ(away.substr(away.find("\r\n\r\n") + 4), awayText);
    for (int i = 0; i < 2; ++i) {
        Simulator const simulator({"--traffic"}, port);
        awaitAnswer(exporter.port, "/metrics", "kelvaris_received_bytes_total");
    }
    awaitAnswer(exporter.port, "/metrics", "kelvaris_up 0");
    exporter.process.signal(SIGTERM);
    EXPECT_EQ(exporter.process.wait().status, 0);
}

TEST_F(MonitorExport, SilentClientsKeepNobodyWaiting) {
    Exporter const exporter(1);
    std::array<int, 300> silent{};
    std::generate(silent.begin(), silent.end(), [&] { return connectTo(exporter.port); });
    auto const start = std::chrono::steady_clock::now();
    EXPECT_NE(get(exporter.port).find("kelvaris_up 0"), std::string::npos);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 15s) << "an idle connection has 30 s";
    EXPECT_EQ(readAll(silent.front()), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 15s) << "the oldest is cut off at once";
    std::for_each(silent.begin() + 1, silent.end(), close);
}

TEST_F(MonitorExport, ListensWhereItIsToldOrSaysWhyItCannot) {
    Exporter const exporter(1);
    std::string const taken = "127.0.0.1:" + std::to_string(exporter.port);
    Outcome const outcome = runProcess(exportCommand(1, {"--listen", taken}));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "kelvaris-monitor: can't listen on " + taken + ": Address already in use\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(runProcess(exportCommand(1, {"--listen", "nowhere.invalid:9339"})).status, 1);
    if (std::filesystem::exists("/proc/net/if_inet6")) {
        Process(exportCommand(1, {"--listen", "[::1]:0"})).waitForOutput("http://[::1]:");
    }
    for (char const* const place : {"9339", "::1:9339", ":9339", "a:65536", "a:", "a:0x1", "[]:1"}) {
        EXPECT_EQ(runProcess(exportCommand(1, {"--listen", place})).status, 2) << place;
    }
    EXPECT_EQ(runProcess(exportCommand(1, {"--once", "--listen", "127.0.0.1:0"})).status, 2);
    EXPECT_EQ(runProcess(exportCommand(1, {"--textfile", ""})).status, 2);
}

TEST_F(MonitorExport, FileIsReplacedAsAWholeAndGoneAtTheEnd) {
    std::uint16_t const port = freePort();
    std::string const file = folder.file("kelvaris.prom");
    // No more than the metrics of a daemon that is away fit into this file.
    Process process(
        {.path = "/bin/sh",
         .argv = {"sh", "-c",
                  "ulimit -f 1; exec \"$0\" --port \"$1\" export --textfile \"$2\" --interval 0.05",
                  MONITOR_PATH, std::to_string(port), file}});
    EXPECT_TRUE(comesTrue([&] { return std::filesystem::exists(file); }));
    EXPECT_EQ(contents(file), awayText);
    Simulator const simulator({"--traffic"}, port);
    process.waitForOutput("kelvaris.prom: File too large\n");
    EXPECT_LT(contents(file).size(), 512U) << "a failure leaves the file as it was";
    EXPECT_FALSE(std::filesystem::exists(file + ".new"));
    process.signal(SIGTERM);
    Outcome const& outcome = process.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err.find("large"), outcome.err.rfind("large")) << "it is said once";
    EXPECT_FALSE(std::filesystem::exists(file)) << "nobody shall take old numbers for new ones";

    EXPECT_EQ(runProcess(exportCommand(port, {"--once", "--textfile", file})).status, 0);
    EXPECT_EQ(runProcess(exportCommand(port, {"--once"})).out.find("# HELP kelvaris_up"), 0U);
    EXPECT_NE(contents(file).find("kelvaris_up 1\n"), std::string::npos);
    for (std::string const name : {"/nowhere/k.prom", "/dev/null", folder.path.c_str()}) {
        Outcome const refused = runProcess(exportCommand(port, {"--textfile", name}));
        EXPECT_EQ(refused.status, 1);
        EXPECT_NE(refused.err.find(name), std::string::npos) << refused.err;
    }
}

// ---- Prometheus, and what is written for it ----

// What the dashboard asks for, with its variables filled in.
std::vector<std::string> queriesOfDashboard() {
    Json::Value const dashboard = parsed(source("docs/monitoring/grafana.json"));
    std::vector<std::string> queries;
    for (Json::Value const& panel : dashboard["panels"]) {
        for (Json::Value const& target : panel["targets"]) {
            std::string const query =
                std::regex_replace(target["expr"].asString(), std::regex("\\$[a-z]+"), ".*");
            queries.push_back(std::regex_replace(query, std::regex("\\$__rate_interval"), "30s"));
        }
    }
    EXPECT_GT(queries.size(), 10U);
    return queries;
}

TEST_F(MonitorExport, DocumentsNameTheMetricsThatThereAre) {
    auto const namesIn = [](std::string const& text) {
        static std::regex const name("kelvaris_[a-z_]*[a-z]");
        return std::set<std::string>(std::sregex_token_iterator(text.begin(), text.end(), name), {});
    };
    auto const there = namesIn(metricsOf(fullSnapshot(), Format::text));
    std::string const manual = source("docs/kelvaris-monitor.1");
    EXPECT_EQ(namesIn(manual), there);
    for (std::string const file : {"monitoring/grafana.json", "monitoring/alerts.yml", "monitor.md"}) {
        auto const named = namesIn(source("docs/" + file));
        EXPECT_GT(named.size(), 2U) << file;
        EXPECT_TRUE(std::includes(there.begin(), there.end(), named.begin(), named.end()))
            << file << " names of " << testing::PrintToString(named) << " one that isn't there";
    }
}

TEST_F(MonitorExport, PrometheusTakesItAllAndAnswersTheDashboard) {
    if (!std::filesystem::exists("/usr/bin/prometheus")) {
        GTEST_SKIP() << "prometheus is missing: script/bootstrap monitor installs it";
    }
    auto const promtool = [](std::vector<std::string> words, std::string const& input) {
        words.insert(words.begin(), "promtool");
        return runProcess({.path = "/usr/bin/promtool", .argv = words, .input = input});
    };
    Outcome const metrics = promtool({"check", "metrics"}, metricsOf(fullSnapshot(), Format::text));
    EXPECT_EQ(metrics.status, 0) << metrics.err;
    EXPECT_EQ(metrics.out + metrics.err, "");
    Outcome const rules = promtool({"test", "rules", SOURCE_DIR "/tests/golden/alerts.yml"}, "");
    EXPECT_EQ(rules.status, 0) << rules.out << rules.err;

    Simulator const simulator({"--traffic", "--speed", "60", "--interval", "100"});
    Exporter const exporter(simulator.port);
    std::uint16_t const port = freePort();
    std::ofstream(folder.file("prometheus.yml"))
        << "global: {scrape_interval: 200ms, scrape_timeout: 200ms}\n"
           "scrape_configs: [{job_name: kelvaris, static_configs: [{targets: ['127.0.0.1:"
        << exporter.port << "']}]}]\n";
    Process prometheus({.path = "/usr/bin/prometheus",
                        .argv = {"prometheus", "--config.file=" + folder.file("prometheus.yml"),
                                 "--storage.tsdb.path=" + folder.file("data"),
                                 "--web.listen-address=127.0.0.1:" + std::to_string(port)}});
    prometheus.waitForOutput("Server is ready");
    auto queries = queriesOfDashboard();
    queries.push_back("rate(kelvaris_received_bytes_total[30s]) > 0");
    for (std::string const& query : queries) {
        std::ostringstream path;
        path << "/api/v1/query?query=" << std::hex << std::uppercase;
        for (char const each : query) {
            path << '%' << std::setw(2) << std::setfill('0')
                 << static_cast<int>(static_cast<unsigned char>(each));
        }
        awaitAnswer(port, path.str(), "\"value\":[");
    }
}

} // namespace
