// Connection settings, DNS servers and captive portals: grammar, requests, reports, documents, locks.

#include "support/rows.h"
#include "support/sdk.h"

#include <array>
#include <gtest/gtest.h>

using namespace harness;

namespace {

// What is printed of settings that are reported as {}, with some members replaced.
std::string settingsDocument(std::string const& members) {
    return changed(R"({"jumboPackets":false,"encrypted":false,"allowChaChaEncryption":false,
        "bondingMode":"speed","startupConnect":false,"transportMode":"auto","packetAggregation":false,
        "headerCompression":false,"forwardedPorts":[],"perConnectionEncryptionEnabled":false,
        "perConnectionEncryptionSettings":[],"perConnectionParallelSockets":[],"overflowThreshold":0.0,
        "priorityOverflowThreshold":0.0,"enableDefaultRoute":false})",
                   members);
}

Row shown(std::string const& settings, std::string const& members) {
    return row("show settings", {asked("connection_settings", settings)}, settingsDocument(members));
}

std::string repeated(std::string const& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

} // namespace

TEST(Settings, AreShown) {
    std::string const wide(101, 'w');
    std::string const tooMany = R"({"perconn_encryption":true,"forward_ports":[)" +
                                series(30, R"({"proto":"udp","port":#})", 10) +
                                R"(],"perconn_encryption_settings":{)" + series(30, R"("#":true)", 10) +
                                R"(},"parallel_sockets":{)" + series(30, R"("#":#)", 10) + "}}";
    std::string const kept =
        R"({"perConnectionEncryptionEnabled":true,"forwardedPorts":[)" +
        series(20, R"({"protocol":"udp","port":#})", 10) + R"(],"perConnectionEncryptionSettings":[)" +
        series(25, R"({"adapterID":"#","encrypted":true})", 10) + R"(],"perConnectionParallelSockets":[)" +
        series(25, R"({"adapterID":"#","sockets":#})", 10) + "]}";
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
        shown(tooMany, kept),
    });
}

TEST(Settings, AreChanged) {
    std::string const mode = "set_connection_algorithm";
    std::string const transport = "set_connection_transport";
    std::string const ports = "set_connection_forward_ports";
    std::string const route = "set_connection_enable_default_route";
    std::vector<Row> rows;
    addChanges(rows, report("connection_settings", R"({"jumbo_packets":true})"),
               settingsDocument(R"({"jumboPackets":true})"),
               {
                   {"mode redundant", mode, R"({"algorithm":"RD"})"},
                   {"mode speed", mode, R"({"algorithm":"SP"})"},
                   {"mode streaming", mode, R"({"algorithm":"STR"})"},
                   {"transport auto", transport, R"({"transport_mode":"auto"})"},
                   {"transport tcp", transport, R"({"transport_mode":"tcp"})"},
                   {"transport udp", transport, R"({"transport_mode":"udp"})"},
                   {"transport https", transport, R"({"transport_mode":"https"})"},
                   {"transport tcp-multi", transport, R"({"transport_mode":"tcp-multi"})"},
                   {"encryption on", "set_encryption_enabled", R"({"enable":true})"},
                   {"adapter encryption i off", "set_encryption_enabled", R"({"guid":"i","enable":false})"},
                   {"jumbo off", "set_dev_jumbo_packets", R"({"enable":false})"},
                   {"packetaggr on", "set_packet_aggregation", R"({"enable":true})"},
                   {"headercompression off", "set_header_compression", R"({"enable":false})"},
                   {"startupconnect on", "set_startup_connect", R"({"connect":true})"},
                   {"overflow 0", "set_overflow_threshold", R"({"speed":0.0})"},
                   {"overflow 0x10", "set_overflow_threshold", R"({"speed":16.0})"},
                   {"overflow 4294967295", "set_overflow_threshold", R"({"speed":4294967295.0})"},
                   {"route default off", route, R"({"enabled":false})"},
                   {"route default on extra", route, R"({"enabled":true})"},
                   {"ports", ports, R"({"forward_ports":[]})"},
                   {"ports 80/tcpx 443 53/udp/tcp", ports,
                    R"({"forward_ports":[{"proto":"tcp","port":80},{"proto":"tcp","port":443},
                                         {"proto":"udp","port":53}]})"},
                   {"ports" + repeated(" 9", 20), ports,
                    R"({"forward_ports":[)" + series(20, R"({"proto":"tcp","port":9})") + "]}"},
               });
    runRows(rows);
}

TEST(Settings, AreRefused) {
    std::vector<Row> rows;
    for (auto const& [keyword, forms, word] : {std::array{"mode", "<redundant|speed|streaming>", "speed"},
                                               {"transport", "<auto|tcp|tcp-multi|udp|https>", "udp"},
                                               {"encryption", "<on|off>", "on"},
                                               {"jumbo", "<on|off>", "on"},
                                               {"packetaggr", "<on|off>", "on"},
                                               {"headercompression", "<on|off>", "on"},
                                               {"startupconnect", "<on|off>", "on"},
                                               {"overflow", "<speed in mbps>", "1"}}) {
        std::string const name = std::string(keyword) + ' ';
        addRefusals(rows, {{name + forms, {name}, {name + "On", name + word + ' ' + word}}});
    }
    addRefusals(rows,
                {{"overflow <speed in mbps>",
                  {},
                  {"overflow -1", "overflow 1e10", "overflow nan", "overflow 12abc", "overflow ''"}},
                 {"route default <on|off>", {"route", "route default"}, {"route on", "route default yes"}},
                 {"ports [port/proto] ...",
                  {},
                  {"ports 80 0", "ports 65536", "ports -1", "ports 80x", "ports /tcp", "ports 80/",
                   "ports 80/TCP", "ports ''"}},
                 {"only 20 ports may be requested\n", {}, {"ports" + repeated(" 0", 21)}}});
    runRows(rows);
}

TEST(Settings, LibraryTakesWhatNoCommandLineSends) {
    std::string const answer = report("connection_settings", R"({"language":"eng"})");
    std::string const ports = series(20, R"({"port":#})", 10);
    ScriptedDaemon daemon(
        {{"set_connection_algorithm", R"({"algorithm":"SP"})", {answer}},
         {"set_connection_transport", R"({"transport_mode":"auto"})", {answer}},
         {"set_connection_forward_ports", R"({"forward_ports":[)" + ports + "]}", {answer}}},
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
    std::string const wide(47, '1');
    std::string const full(46, '1');
    std::string const request = "set_dns_servers";
    std::vector<Row> rows;
    for (auto const& [reported, printed] : {std::pair("{}", "[]"),
                                            {R"({"dns_addresses":[],"killswitch":true})", "[]"},
                                            {R"({"dns_addresses":["a","b","c","d"]})", R"(["a","b","c"])"}}) {
        rows.push_back(row("show privacy", {asked("privacy_settings", reported)},
                           styled(R"({"dnsAddresses":)" + std::string(printed) + "}")));
    }
    addChanges(
        rows, report("privacy_settings", R"({"dns_addresses":["7.7.7.7"]})"),
        styled(R"({"dnsAddresses":["7.7.7.7"]})"),
        {{"dns", request, R"({"dns_addresses":[]})"},
         {"dns not-an-address", request, R"({"dns_addresses":["not-an-address"]})"},
         {"dns 1.1.1.1 8.8.8.8 9.9.9.9 8.8.4.4", request,
          R"({"dns_addresses":["1.1.1.1","8.8.8.8","9.9.9.9"]})"},
         // A text is cut to its slot and never runs on into the next one.
         {"dns " + wide + ' ' + wide, request, R"({"dns_addresses":[")" + full + R"(",")" + full + "\"]}"},
         // Far more words than an array of fixed size would hold; the call's count has 16 bits.
         {"dns" + repeated(" 1", 65536), request, R"({"dns_addresses":["1","1","1"]})"}});
    addRefusals(rows, {{"privacy", {"privacy"}, {"privacy on"}}});
    runRows(rows);
}

TEST(Privacy, FlagsReachTheRecord) {
    std::vector<std::string> const flags = {"killswitch", "dnsleak", "ipleak", "do_not_store_credentials"};
    for (std::string const& flag : flags) {
        SCOPED_TRACE(flag);
        ScriptedDaemon daemon({asked("privacy_settings", "{\"" + flag + "\":true}")}, noName);
        KelvarisSDK_PrivacySettingsResult const result = Sdk(daemon).getPrivacySettings(nullptr, nullptr);
        EXPECT_EQ(result.killswitch, flag == flags[0]);
        EXPECT_EQ(result.dnsleak, flag == flags[1]);
        EXPECT_EQ(result.ipleak, flag == flags[2]);
        EXPECT_EQ(result.doNotStoreCredentials, flag == flags[3]);
    }
}

TEST(CaptivePortal, CheckAndLogin) {
    auto const check = [](std::string const& payload, std::string const& out) {
        std::string const answer = report("captive_networks", payload);
        return row("captiveportal check", {{.request = "check_captive_networks", .answers = {answer}}},
                   styled(out));
    };
    std::string const login = "set_cplogin_enable";
    std::vector<Row> rows = {
        check("{}", "[]"),
        check(R"({"networks":{"a":"b"}})", "[]"),
        check(R"({"networks":[)" + series(30, "\"#\"") + "]}", '[' + series(25, "\"#\"") + ']'),
        // A lock doesn't matter.
        row("captiveportal login on i",
            {{login,
              R"({"enable":true,"network":"i"})",
              {lock(login, 1), report("cplogin_network", R"({"enabled":true,"network":"j"})")}}},
            styled(R"({"enabled":true,"adapterID":"j"})")),
        row("captiveportal login off", {{login, R"({"enable":false})", {report("cplogin_network", "{}")}}},
            styled(R"({"enabled":false,"adapterID":""})")),
    };
    rows[0].exchange[0].delayMs = 6000; // beyond the time-out of other calls
    addRefusals(rows,
                {{"captiveportal check|login", {"captiveportal"}, {"captiveportal test"}},
                 {"captiveportal check", {}, {"captiveportal check x"}},
                 {"captiveportal login <on|off> <adapter id>",
                  {"captiveportal login", "captiveportal login on"},
                  {"captiveportal login on i x", "captiveportal login off i", "captiveportal login maybe"}}});
    runRowsInParallel(rows);
}

// On needs an adapter, link or no link; off may name one.
TEST(CaptivePortal, LibraryJudgesTheAdapter) {
    ScriptedDaemon daemon(
        {{"set_cplogin_enable", R"({"enable":false,"network":"i"})", {report("cplogin_network", "{}")}}},
        noName);
    Sdk sdk(daemon);
    EXPECT_EQ(sdk.setCaptivePortalLoginMode(true, nullptr, nullptr, nullptr).base.errorCode, 3842);
    EXPECT_FALSE(sdk.setCaptivePortalLoginMode(false, "i", nullptr, nullptr).base.error);
    sdk.unlink();
    EXPECT_EQ(sdk.setCaptivePortalLoginMode(true, nullptr, nullptr, nullptr).base.errorCode, 3842);
    EXPECT_EQ(sdk.setCaptivePortalLoginMode(false, nullptr, nullptr, nullptr).base.errorCode, 3840);
}
