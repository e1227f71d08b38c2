// kelvaris-monitor's metrics: their text, and the command that hands them out, asked by clients of all kinds and by
// Prometheus.

#include "metrics.h"

#include "support/process.h"
#include "support/scripteddaemon.h"
#include "support/simulator.h"

#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <json/reader.h>
#include <regex>
#include <set>
#include <sstream>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace harness;
using namespace monitor;
using namespace std::chrono_literals;

namespace {

// ---- The text ----

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
    limited.dataUsage = {.usage = 1,
                         .usageDaily = 2,
                         .max = 3,
                         .resetDay = 4,
                         .maxDaily = 5,
                         .boostDaily = 6,
                         .overlimitRate = 0};
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
         "kelvaris_session_connected_seconds 180", "kelvaris_active_streams{health=\"poor\"} 1",
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
          "window=\"month\"", "connection_receive_bytes", "latency", "jitter", "loss_ratio", "opinion"}) {
        EXPECT_EQ(text.find(name), std::string::npos) << name;
    }
    EXPECT_NE(text.find("kelvaris_connection_connected{adapter=\"b\",connection=\"\"} 0"), std::string::npos);

    setLink(snapshot, kelvaris::Link::LOST);
    EXPECT_EQ(metricsOf(snapshot, Format::text),
              "# HELP kelvaris_up Whether the daemon answers.\n# TYPE kelvaris_up gauge\nkelvaris_up 0\n");
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

// A connection to this machine.
class Connection {
public:
    explicit Connection(std::uint16_t port) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        isThere = connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        timeval const limit{patience().count(), 0};
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }
    Connection(Connection&& other) noexcept
        : descriptor(std::exchange(other.descriptor, -1)), isThere(other.isThere) {}
    ~Connection() {
        close(descriptor);
    }
    // The whole answer, until the other side closes.
    std::string ask(std::string const& request) const {
        send(descriptor, request.data(), request.size(), MSG_NOSIGNAL);
        std::string answer;
        char piece[4096];
        for (ssize_t count = 0; isThere && (count = recv(descriptor, piece, sizeof piece, 0)) > 0;) {
            answer.append(piece, static_cast<std::size_t>(count));
        }
        return answer;
    }

private:
    int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bool isThere = false;
};

std::string get(std::uint16_t port, std::string const& path = "/metrics", std::string const& method = "GET") {
    return Connection(port).ask(method + " " + path + " HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n");
}

// Asks until the answer has the text in it.
std::string awaitAnswer(std::uint16_t port, std::string const& path, std::string const& text) {
    auto const limit = std::chrono::steady_clock::now() + patience();
    std::string answer;
    do {
        answer = get(port, path);
        if (answer.find(text) != std::string::npos) {
            return answer;
        }
        std::this_thread::sleep_for(20ms);
    } while (std::chrono::steady_clock::now() < limit);
    ADD_FAILURE() << text << " isn't in:\n" << answer;
    return answer;
}

Command exportCommand(std::uint16_t port, std::vector<std::string> const& words) {
    Command command{.path = MONITOR_PATH,
                    .argv = {"kelvaris-monitor", "--port", std::to_string(port), "export"}};
    command.argv.insert(command.argv.end(), words.begin(), words.end());
    return command;
}

std::uint16_t freePort() {
    return ScriptedDaemon({}, {.listen = false}).port();
}

// The command as an HTTP server.
struct Exporter {
    explicit Exporter(std::uint16_t daemon, std::vector<std::string> words = {})
        : process(exportCommand(daemon, (words.insert(words.begin(), {"--listen", "127.0.0.1:0"}), words))) {
        process.waitForOutput("/metrics\n");
        port = static_cast<std::uint16_t>(std::stoi(process.out().substr(process.out().rfind(':') + 1)));
    }
    Process process;
    std::uint16_t port = 0;
};

bool hasPrometheus() {
    return std::filesystem::exists("/usr/bin/prometheus") && std::filesystem::exists("/usr/bin/promtool");
}

std::string contentOf(std::string const& file) {
    std::stringstream content;
    content << std::ifstream(file).rdbuf();
    return content.str();
}

class MonitorExport : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/monitor_export.XXXXXX";
        folder = mkdtemp(name);
    }
    void TearDown() override {
        std::filesystem::remove_all(folder);
    }
    std::string folder;
};

TEST_F(MonitorExport, AnswersInBothFormatsAndKnowsItsPaths) {
    Simulator const simulator({"--traffic"});
    Exporter const exporter(simulator.port);
    std::string const text = get(exporter.port);
    EXPECT_EQ(text.find("HTTP/1.1 200"), 0U);
    EXPECT_NE(text.find("Content-Type: text/plain; version=0.0.4"), std::string::npos);
    EXPECT_NE(text.find("kelvaris_up 1\n"), std::string::npos);
    std::string const openMetrics = Connection(exporter.port)
                                        .ask("GET /metrics HTTP/1.1\r\nHost: a\r\nConnection: close\r\n"
                                             "Accept: application/openmetrics-text\r\n\r\n");
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
    EXPECT_TRUE(away.ends_with(
        "\r\n\r\n# HELP kelvaris_up Whether the daemon answers.\n# TYPE kelvaris_up gauge\nkelvaris_up 0\n"));
    for (int i = 0; i < 2; ++i) {
        Simulator const simulator({"--traffic"}, port);
        awaitAnswer(exporter.port, "/metrics", "kelvaris_received_bytes_total");
        EXPECT_NE(get(exporter.port).find("kelvaris_state{state=\"CONNECTED\"} 1"), std::string::npos);
    }
    awaitAnswer(exporter.port, "/metrics", "kelvaris_up 0");
    exporter.process.signal(SIGTERM);
    EXPECT_EQ(exporter.process.wait().status, 0);
}

TEST_F(MonitorExport, SilentClientsKeepNobodyWaiting) {
    Simulator const simulator;
    Exporter const exporter(simulator.port);
    std::vector<Connection> silent;
    for (int i = 0; i < 300; ++i) {
        silent.emplace_back(exporter.port);
    }
    auto const start = std::chrono::steady_clock::now();
    EXPECT_NE(get(exporter.port).find("kelvaris_up 1"), std::string::npos);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << "an idle connection has 30 s";
    EXPECT_EQ(silent.front().ask(""), "") << "the oldest was cut off";
}

TEST_F(MonitorExport, ListensWhereItIsToldOrSaysWhyItCannot) {
    Exporter const exporter(1);
    std::string const taken = "127.0.0.1:" + std::to_string(exporter.port);
    Outcome const outcome = runProcess(exportCommand(1, {"--listen", taken}));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "kelvaris-monitor: can't listen on " + taken + ": Address already in use\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(runProcess(exportCommand(1, {"--listen", "192.0.2.1:9339"})).status, 1);
    EXPECT_EQ(runProcess(exportCommand(1, {"--listen", "nowhere.invalid:9339"})).status, 1);
    if (std::filesystem::exists("/proc/net/if_inet6")) {
        Process(exportCommand(1, {"--listen", "[::1]:0"})).waitForOutput("http://[::1]:");
    }
    for (std::vector<std::string> const& words :
         std::vector<std::vector<std::string>>{{"--listen", "9339"},
                                               {"--listen", "::1:9339"},
                                               {"--listen", ":9339"},
                                               {"--listen", "127.0.0.1:65536"},
                                               {"--listen", "127.0.0.1:"},
                                               {"--listen", "127.0.0.1:0x1"},
                                               {"--once", "--listen", "127.0.0.1:0"},
                                               {"--textfile", ""},
                                               {"--interval", "0"},
                                               {"more"}}) {
        EXPECT_EQ(runProcess(exportCommand(1, words)).status, 2) << testing::PrintToString(words);
    }
}

TEST_F(MonitorExport, FileIsReplacedAsAWholeAndGoneAtTheEnd) {
    std::uint16_t const port = freePort();
    std::string const file = folder + "/kelvaris.prom";
    // No more than the metrics of a daemon that is away fit into this file.
    Process process(
        {.path = "/bin/sh",
         .argv = {"sh", "-c",
                  "ulimit -f 1; exec \"$0\" --port \"$1\" export --textfile \"$2\" --interval 0.05",
                  MONITOR_PATH, std::to_string(port), file}});
    while (!std::filesystem::exists(file)) {
        std::this_thread::sleep_for(5ms);
    }
    EXPECT_TRUE(contentOf(file).ends_with("kelvaris_up 0\n"));
    Simulator const simulator({"--traffic"}, port);
    process.waitForOutput("kelvaris.prom: File too large\n");
    EXPECT_TRUE(contentOf(file).ends_with("kelvaris_up 0\n")) << "a failure leaves the file as it was";
    EXPECT_FALSE(std::filesystem::exists(file + ".new"));
    process.signal(SIGTERM);
    Outcome const& outcome = process.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err.find("File too large"), outcome.err.rfind("File too large")) << "once is enough";
    EXPECT_FALSE(std::filesystem::exists(file)) << "nobody shall take old numbers for new ones";

    EXPECT_EQ(runProcess(exportCommand(port, {"--once", "--textfile", file})).status, 0);
    EXPECT_NE(contentOf(file).find("kelvaris_up 1\n"), std::string::npos);
    for (std::string const name : {"/nowhere/k.prom", "/dev/null", folder.c_str()}) {
        Outcome const refused = runProcess(exportCommand(port, {"--textfile", name}));
        EXPECT_EQ(refused.status, 1);
        EXPECT_NE(refused.err.find(name), std::string::npos) << refused.err;
    }
}

TEST_F(MonitorExport, PrometheusScrapesItAndIsAskedForARate) {
    if (!hasPrometheus()) {
        GTEST_SKIP() << "prometheus is missing: script/bootstrap monitor installs it";
    }
    Simulator const simulator({"--traffic", "--speed", "60", "--interval", "100"});
    Exporter const exporter(simulator.port);
    std::uint16_t const port = freePort();
    std::ofstream(folder + "/prometheus.yml")
        << "global: {scrape_interval: 200ms, scrape_timeout: 200ms}\n"
           "scrape_configs: [{job_name: kelvaris, static_configs: [{targets: ['127.0.0.1:"
        << exporter.port << "']}]}]\n";
    Process prometheus({.path = "/usr/bin/prometheus",
                        .argv = {"prometheus", "--config.file=" + folder + "/prometheus.yml",
                                 "--storage.tsdb.path=" + folder + "/data",
                                 "--web.listen-address=127.0.0.1:" + std::to_string(port)}});
    prometheus.waitForOutput("Server is ready");
    std::string const query = "/api/v1/query?query=";
    awaitAnswer(port, query + "rate(kelvaris_received_bytes_total[30s])>0", "\"value\":[");
    std::string const info = get(port, query + "kelvaris_adapter_info");
    EXPECT_NE(info.find("\"name\":\"Wired\""), std::string::npos) << info;
    EXPECT_EQ(get(port, query + "up==0").find("\"value\":["), std::string::npos);
}

// ---- What is written of the metrics ----

std::set<std::string> namesIn(std::string const& text) {
    static std::regex const name("kelvaris_[a-z_]*[a-z]");
    return {std::sregex_token_iterator(text.begin(), text.end(), name), std::sregex_token_iterator()};
}

TEST_F(MonitorExport, DocumentsNameTheMetricsThatThereAre) {
    std::set<std::string> there;
    for (std::string const& line : linesOf(metricsOf(fullSnapshot(), Format::text))) {
        if (line.front() != '#') {
            there.insert(line.substr(0, line.find_first_of("{ ")));
        }
    }
    std::string const docs = SOURCE_DIR "/docs/";
    for (std::string const file : {"monitoring/grafana.json", "monitoring/alerts.yml", "monitor.md"}) {
        auto const named = namesIn(contentOf(docs + file));
        EXPECT_FALSE(named.empty()) << file;
        for (std::string const& name : named) {
            EXPECT_EQ(there.count(name), 1U) << file << " names " << name;
        }
    }
    std::string const manual =
        std::regex_replace(contentOf(docs + "kelvaris-monitor.1"), std::regex("\\\\-"), "-");
    EXPECT_EQ(namesIn(manual), there);
    Json::Value dashboard;
    std::ifstream(docs + "monitoring/grafana.json") >> dashboard;
    EXPECT_GT(dashboard["panels"].size(), 5U);
}

TEST_F(MonitorExport, PromtoolFindsNothingWrong) {
    if (!hasPrometheus()) {
        GTEST_SKIP() << "promtool is missing: script/bootstrap monitor installs it";
    }
    Outcome const metrics = runProcess({.path = "/usr/bin/promtool",
                                        .argv = {"promtool", "check", "metrics"},
                                        .input = metricsOf(fullSnapshot(), Format::text)});
    EXPECT_EQ(metrics.status, 0) << metrics.err;
    EXPECT_EQ(metrics.out + metrics.err, "");
    Outcome const rules =
        runProcess({.path = "/usr/bin/promtool",
                    .argv = {"promtool", "check", "rules", SOURCE_DIR "/docs/monitoring/alerts.yml"}});
    EXPECT_EQ(rules.status, 0) << rules.out << rules.err;
}

} // namespace
