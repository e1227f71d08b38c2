// Connection settings, DNS servers and captive portals: grammar, requests, reports, documents, locks.

#include "kelvarissdk.h"
#include "support/rows.h"
#include "websockets.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

using Words = std::vector<std::string>;

constexpr char connection[] = "report_connection_settings";
constexpr char privacy[] = "report_privacy_settings";

std::string report(std::string const& name, std::string const& payload) {
    return "[\"" + name + "\"," + payload + "]";
}

// What is printed of settings that are reported as {}, with some members replaced.
std::string settingsDocument(std::string const& members = "{}") {
    Json::Value settings = parsed(R"({"jumboPackets":false,"encrypted":false,"allowChaChaEncryption":false,
        "bondingMode":"speed","startupConnect":false,"transportMode":"auto","packetAggregation":false,
        "headerCompression":false,"forwardedPorts":[],"perConnectionEncryptionEnabled":false,
        "perConnectionEncryptionSettings":[],"perConnectionParallelSockets":[],"overflowThreshold":0.0,
        "priorityOverflowThreshold":0.0,"enableDefaultRoute":false})");
    Json::Value const replaced = parsed(members);
    for (std::string const& name : replaced.getMemberNames()) {
        settings[name] = replaced[name];
    }
    return settings.toStyledString();
}

Row shown(std::string const& settings, std::string const& members) {
    return {
        .name = settings,
        .argv = {"show", "settings"},
        .exchange = {{.request = "request_connection_settings", .answers = {report(connection, settings)}}},
        .out = settingsDocument(members)};
}

// 30 members of an object, or elements of a list; `text` has two %d, or one, for the index.
std::string numbered(char const* text, int count, char open, char close) {
    std::string list(1, open);
    for (int i = 10; i < 10 + count; ++i) {
        char element[200];
        std::snprintf(element, sizeof(element), text, i, i);
        list += (i == 10 ? "" : ",") + std::string(element);
    }
    return list + close;
}

// A change of a setting that can be locked: once with its report, once with a lock.
struct Change {
    Words argv;
    std::string request;
    std::string payload;
};

void runChanges(std::vector<Change> const& changes, std::string const& answer, std::string const& out) {
    std::string const lockText = "Setting locked by server configuration";
    std::vector<Row> rows;
    for (Change const& c : changes) {
        std::string const locked =
            report("report_setting_locked", R"({"setting":")" + c.request + R"(","reason":1})");
        Row row{.name = testing::PrintToString(c.argv),
                .argv = c.argv,
                .exchange = {{.request = c.request, .payload = c.payload, .answers = {answer}}},
                .out = out};
        rows.push_back(row);
        row.name += " and a lock";
        row.exchange[0].answers = {locked, answer};
        row.out = "";
        row.err = errorDocument(3846, lockText, lockText);
        row.status = 1;
        rows.push_back(row);
    }
    runRows(rows);
}

struct Refusal {
    Words argv;
    int status;
    std::string usage;
};

void runRefusals(std::vector<Refusal> const& refusals) {
    std::vector<Row> rows;
    for (Refusal const& r : refusals) {
        rows.push_back({.name = testing::PrintToString(r.argv),
                        .argv = r.argv,
                        .err = r.status == 3 ? missing(r.usage) : invalid(r.usage),
                        .status = r.status});
    }
    runRows(rows);
}

Words followed(std::string const& keyword, Words const& words) {
    Words all = {keyword};
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

// The library's class, to reach what no command line does.
class Sdk : public kelvarissdk::KelvarisSDK {
public:
    explicit Sdk(ScriptedDaemon const& daemon)
        : KelvarisSDK({.appName = "", .address = "127.0.0.1", .port = daemon.port()}) {}
    void unlink() {
        websocket.reset();
    }
};

Options const noName{.appName = std::nullopt};

} // namespace

TEST(Settings, AreShown) {
    std::string const wide(101, 'w');
    runRows({
        shown("{}", "{}"),
        shown("null", "{}"),
        shown(R"({"jumbo_packets":true})", R"({"jumboPackets":true})"),
        shown(R"({"encrypted":true})", R"({"encrypted":true})"),
        shown(R"({"allow_chacha_encryption":true})", R"({"allowChaChaEncryption":true})"),
        shown(R"({"startup_connect":true})", R"({"startupConnect":true})"),
        shown(R"({"packet_aggregation":true})", R"({"packetAggregation":true})"),
        shown(R"({"header_compress":true})", R"({"headerCompression":true})"),
        shown(R"({"enable_default_route":true})", R"({"enableDefaultRoute":true})"),
        shown(R"({"connection_secondary_speed_activation":1.5,"connection_priority_overflow_treshold":7})",
              R"({"overflowThreshold":1.5,"priorityOverflowThreshold":7.0})"),
        shown(R"({"algorithm":"RD","transport_mode":"tcp"})",
              R"({"bondingMode":"redundant","transportMode":"tcp"})"),
        shown(R"({"algorithm":"STR","transport_mode":"tcp-multi"})",
              R"({"bondingMode":"streaming","transportMode":"tcp-multi"})"),
        shown(R"({"algorithm":"XX","transport_mode":"XX"})", "{}"),
        shown(R"({"forward_ports":[{"proto":"udp","port":53},{"proto":"sctp","port":65537}]})",
              R"({"forwardedPorts":[{"protocol":"udp","port":53},{"protocol":"tcp","port":1}]})"),
        // The adapters' encryption only while it is in force, their sockets always.
        shown(R"({"perconn_encryption":true,"perconn_encryption_settings":{"b":true,"a":false}})",
              R"({"perConnectionEncryptionEnabled":true,"perConnectionEncryptionSettings":
                 [{"adapterID":"a","encrypted":false},{"adapterID":"b","encrypted":true}]})"),
        shown(R"({"perconn_encryption":false,"perconn_encryption_settings":{"a":true},
                  "parallel_sockets":{"b":65539,"a":2}})",
              R"({"perConnectionParallelSockets":
                 [{"adapterID":"a","sockets":2},{"adapterID":"b","sockets":3}]})"),
        shown(R"({"parallel_sockets":{")" + wide + R"(":65}})",
              R"({"perConnectionParallelSockets":[{"adapterID":")" + wide.substr(1) +
                  R"(A","sockets":65}]})"),
    });
    std::string const bounds = R"({"perconn_encryption":true,"forward_ports":)" +
                               numbered(R"({"proto":"udp","port":%d})", 30, '[', ']') +
                               R"(,"perconn_encryption_settings":)" + numbered(R"("%d":true)", 30, '{', '}') +
                               R"(,"parallel_sockets":)" + numbered(R"("%d":%d)", 30, '{', '}') + "}";
    std::string const kept = R"({"perConnectionEncryptionEnabled":true,"forwardedPorts":)" +
                             numbered(R"({"protocol":"udp","port":%d})", 20, '[', ']') +
                             R"(,"perConnectionEncryptionSettings":)" +
                             numbered(R"({"adapterID":"%d","encrypted":true})", 25, '[', ']') +
                             R"(,"perConnectionParallelSockets":)" +
                             numbered(R"({"adapterID":"%d","sockets":%d})", 25, '[', ']') + "}";
    runRows({shown(bounds, kept)});
}

TEST(Settings, AreChanged) {
    std::string const twentyPorts = numbered(R"({"proto":"tcp","port":%d})", 20, '[', ']');
    Words twenty = {"ports"};
    for (int port = 10; port < 30; ++port) {
        twenty.push_back(std::to_string(port));
    }
    std::string const ports = "set_connection_forward_ports";
    runChanges(
        {
            {{"mode", "redundant"}, "set_connection_algorithm", R"({"algorithm":"RD"})"},
            {{"mode", "speed"}, "set_connection_algorithm", R"({"algorithm":"SP"})"},
            {{"mode", "streaming"}, "set_connection_algorithm", R"({"algorithm":"STR"})"},
            {{"transport", "auto"}, "set_connection_transport", R"({"transport_mode":"auto"})"},
            {{"transport", "tcp"}, "set_connection_transport", R"({"transport_mode":"tcp"})"},
            {{"transport", "udp"}, "set_connection_transport", R"({"transport_mode":"udp"})"},
            {{"transport", "https"}, "set_connection_transport", R"({"transport_mode":"https"})"},
            {{"transport", "tcp-multi"}, "set_connection_transport", R"({"transport_mode":"tcp-multi"})"},
            {{"encryption", "on"}, "set_encryption_enabled", R"({"enable":true})"},
            {{"jumbo", "off"}, "set_dev_jumbo_packets", R"({"enable":false})"},
            {{"packetaggr", "on"}, "set_packet_aggregation", R"({"enable":true})"},
            {{"headercompression", "off"}, "set_header_compression", R"({"enable":false})"},
            {{"startupconnect", "on"}, "set_startup_connect", R"({"connect":true})"},
            {{"overflow", "0"}, "set_overflow_threshold", R"({"speed":0.0})"},
            {{"overflow", "0x10"}, "set_overflow_threshold", R"({"speed":16.0})"},
            {{"overflow", "4294967295"}, "set_overflow_threshold", R"({"speed":4294967295.0})"},
            {{"route", "default", "off"}, "set_connection_enable_default_route", R"({"enabled":false})"},
            {{"route", "default", "on", "extra"},
             "set_connection_enable_default_route",
             R"({"enabled":true})"},
            {{"ports"}, ports, R"({"forward_ports":[]})"},
            {{"ports", "80/tcpx", "443", "53/udp"},
             ports,
             R"({"forward_ports":[{"proto":"tcp","port":80},{"proto":"tcp","port":443},
                                  {"proto":"udp","port":53}]})"},
            {twenty, ports, R"({"forward_ports":)" + twentyPorts + "}"},
            {{"adapter", "encryption", "i", "off"},
             "set_encryption_enabled",
             R"({"guid":"i","enable":false})"},
        },
        report(connection, R"({"jumbo_packets":true})"), settingsDocument(R"({"jumboPackets":true})"));
}

TEST(Settings, AreRefused) {
    struct OneWord {
        std::string keyword;
        std::string usage;
        std::string word;
    };
    std::vector<Refusal> refusals;
    for (OneWord const& c : {OneWord{"mode", "<redundant|speed|streaming>", "speed"},
                             {"transport", "<auto|tcp|tcp-multi|udp|https>", "udp"},
                             {"encryption", "<on|off>", "on"},
                             {"jumbo", "<on|off>", "on"},
                             {"packetaggr", "<on|off>", "on"},
                             {"headercompression", "<on|off>", "on"},
                             {"startupconnect", "<on|off>", "on"},
                             {"overflow", "<speed in mbps>", "1"}}) {
        std::string const usage = c.keyword + " " + c.usage;
        refusals.push_back({{c.keyword}, 3, usage});
        refusals.push_back({{c.keyword, "On"}, 2, usage});
        refusals.push_back({{c.keyword, c.word, c.word}, 2, usage});
    }
    for (char const* speed : {"-1", "1e10", "nan", "inf", "12abc", ""}) {
        refusals.push_back({{"overflow", speed}, 2, "overflow <speed in mbps>"});
    }
    std::string const route = "route default <on|off>";
    refusals.push_back({{"route"}, 3, route});
    refusals.push_back({{"route", "on"}, 2, route});
    refusals.push_back({{"route", "default"}, 3, route});
    refusals.push_back({{"route", "default", "yes"}, 2, route});
    refusals.push_back({{"ports", "80", "0"}, 2, "ports [port/proto] ..."});
    refusals.push_back({followed("ports", Words(21, "0")), 2, "only 20 ports may be requested\n"});
    runRefusals(refusals);
}

TEST(Settings, LibraryTakesWhatNoCommandLineSends) {
    std::string const answer = report(connection, R"({"language":"eng"})");
    std::string const ports = numbered(R"({"port":%d})", 20, '[', ']');
    ScriptedDaemon daemon({{"set_connection_algorithm", R"({"algorithm":"SP"})", {answer}},
                           {"set_connection_transport", R"({"transport_mode":"auto"})", {answer}},
                           {"set_connection_forward_ports", R"({"forward_ports":)" + ports + "}", {answer}}},
                          noName);
    Sdk sdk(daemon);
    EXPECT_FALSE(sdk.setMode(static_cast<KelvarisSDK_BondingMode>(3), nullptr, nullptr).base.error);
    EXPECT_FALSE(sdk.setConnectionTransportMode(static_cast<KelvarisSDK_TransportMode>(5), nullptr, nullptr)
                     .base.error);
    KelvarisSDK_ProtocolPortPair pairs[21];
    for (uint16_t i = 0; i < 21; ++i) {
        pairs[i] = {static_cast<KelvarisSDK_PortProtocol>(2), static_cast<uint16_t>(10 + i)};
    }
    KelvarisSDK_SettingsResult const result = sdk.setForwardPorts(21, pairs, nullptr, nullptr);
    EXPECT_EQ(std::string(result.language, 3), "eng");
}

TEST(Privacy, DnsServers) {
    auto const document = [](std::string const& addresses) {
        return styled(R"({"dnsAddresses":)" + addresses + "}");
    };
    std::vector<Row> rows;
    for (auto const& [reported, printed] : {std::pair("{}", "[]"),
                                            {R"({"dns_addresses":[],"killswitch":true})", "[]"},
                                            {R"({"dns_addresses":["a","b","c","d"]})", R"(["a","b","c"])"}}) {
        rows.push_back(
            {.name = reported,
             .argv = {"show", "privacy"},
             .exchange = {{.request = "request_privacy_settings", .answers = {report(privacy, reported)}}},
             .out = document(printed)});
    }
    runRows(rows);

    std::string const wide(47, '1');
    std::string const full(46, '1');
    runChanges(
        {{{"dns"}, "set_dns_servers", R"({"dns_addresses":[]})"},
         {{"dns", "not-an-address"}, "set_dns_servers", R"({"dns_addresses":["not-an-address"]})"},
         {{"dns", "1.1.1.1", "8.8.8.8", "9.9.9.9", "8.8.4.4"},
          "set_dns_servers",
          R"({"dns_addresses":["1.1.1.1","8.8.8.8","9.9.9.9"]})"},
         // A full text runs on into the next one, and ends with the last.
         {{"dns", wide, wide},
          "set_dns_servers",
          R"({"dns_addresses":[")" + full + full + R"(",")" + full + "\"]}"},
         // Far more words than an array of fixed size would hold; the call's count has 16 bits.
         {followed("dns", Words(65536, "1")), "set_dns_servers", R"({"dns_addresses":["1","1","1"]})"}},
        report(privacy, R"({"dns_addresses":["7.7.7.7"]})"), document(R"(["7.7.7.7"])"));
    runRefusals({{{"privacy"}, 3, "privacy"}, {{"privacy", "on"}, 2, "privacy"}});
}

TEST(Privacy, FlagsReachTheRecord) {
    std::vector<std::string> const flags = {"killswitch", "dnsleak", "ipleak", "do_not_store_credentials"};
    for (std::string const& flag : flags) {
        SCOPED_TRACE(flag);
        ScriptedDaemon daemon({{.request = "request_privacy_settings",
                                .answers = {report(privacy, "{\"" + flag + "\":true}")}}},
                              noName);
        KelvarisSDK_PrivacySettingsResult const result = Sdk(daemon).getPrivacySettings(nullptr, nullptr);
        EXPECT_EQ(result.killswitch, flag == flags[0]);
        EXPECT_EQ(result.dnsleak, flag == flags[1]);
        EXPECT_EQ(result.ipleak, flag == flags[2]);
        EXPECT_EQ(result.doNotStoreCredentials, flag == flags[3]);
    }
}

TEST(CaptivePortal, CheckAndLogin) {
    std::string const login = "captiveportal login <on|off> <adapter id>";
    auto const check = [](std::string const& payload, std::string const& out, int delayMs = 0) {
        return Row{.name = payload,
                   .argv = {"captiveportal", "check"},
                   .exchange = {{.request = "check_captive_networks",
                                 .answers = {report("report_captive_networks", payload)},
                                 .delayMs = delayMs}},
                   .out = styled(out)};
    };
    Row const on = {
        .name = "on, and a lock that doesn't matter",
        .argv = {"captiveportal", "login", "on", "i"},
        .exchange = {{.request = "set_cplogin_enable",
                      .payload = R"({"enable":true,"network":"i"})",
                      .answers = {report("report_setting_locked",
                                         R"({"setting":"set_cplogin_enable","reason":1})"),
                                  report("report_cplogin_network", R"({"enabled":true,"network":"j"})")}}},
        .out = styled(R"({"enabled":true,"adapterID":"j"})")};
    Row const off = {.name = "off",
                     .argv = {"captiveportal", "login", "off"},
                     .exchange = {{.request = "set_cplogin_enable",
                                   .payload = R"({"enable":false})",
                                   .answers = {report("report_cplogin_network", "{}")}}},
                     .out = styled(R"({"enabled":false,"adapterID":""})")};
    runRowsInParallel(
        {check("{}", "[]", 6000), // beyond the time-out of other calls
         check(R"({"networks":{"a":"b"}})", "[]"),
         check(R"({"networks":)" + numbered("\"%d\"", 30, '[', ']') + "}", numbered("\"%d\"", 25, '[', ']')),
         on, off});
    runRefusals({{{"captiveportal"}, 3, "captiveportal check|login"},
                 {{"captiveportal", "test"}, 2, "captiveportal check|login"},
                 {{"captiveportal", "check", "x"}, 2, "captiveportal check"},
                 {{"captiveportal", "login"}, 3, login},
                 {{"captiveportal", "login", "on"}, 3, login},
                 {{"captiveportal", "login", "on", "i", "x"}, 2, login},
                 {{"captiveportal", "login", "off", "i"}, 2, login},
                 {{"captiveportal", "login", "maybe"}, 2, login}});
}

// On needs an adapter, link or no link; off may name one.
TEST(CaptivePortal, LibraryJudgesTheAdapter) {
    ScriptedDaemon daemon({{"set_cplogin_enable",
                            R"({"enable":false,"network":"i"})",
                            {report("report_cplogin_network", "{}")}}},
                          noName);
    Sdk sdk(daemon);
    EXPECT_EQ(sdk.setCaptivePortalLoginMode(true, nullptr, nullptr, nullptr).base.errorCode, 3842);
    EXPECT_FALSE(sdk.setCaptivePortalLoginMode(false, "i", nullptr, nullptr).base.error);
    sdk.unlink();
    EXPECT_EQ(sdk.setCaptivePortalLoginMode(true, nullptr, nullptr, nullptr).base.errorCode, 3842);
    EXPECT_EQ(sdk.setCaptivePortalLoginMode(false, nullptr, nullptr, nullptr).base.errorCode, 3840);
}
