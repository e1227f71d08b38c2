// Connection settings, DNS servers and captive portals: grammar, requests, reports, documents, locks.

#include "support/rows.h"
#include "support/sdk.h"

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
                   {"ports 010/tcpx 443 53/udp/tcp", ports,
                    R"({"forward_ports":[{"proto":"tcp","port":10},{"proto":"tcp","port":443},
                                         {"proto":"udp","port":53}]})"},
                   {"ports" + repeated(" 9", 20), ports,
                    R"({"forward_ports":[)" + series(20, R"({"proto":"tcp","port":9})") + "]}"},
               });
    runRows(rows);
}

TEST(Settings, LibraryTakesWhatNoCommandLineSends) {
    std::string const answer = report("connection_settings", R"({"language":"eng"})");
    std::string const ports = series(20, R"({"port":#})", 10);
    ScriptedDaemon daemon(
        {{"set_connection_algorithm", R"({"algorithm":"SP"})", {answer}},
         {"set_connection_transport", R"({"transport_mode":"auto"})", {answer}},
         {"set_connection_forward_ports", R"({"forward_ports":[)" + ports + "]}", {answer}},
         {"set_cplogin_enable", R"({"enable":false,"network":"i"})", {report("cplogin_network", "{}")}}},
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
    EXPECT_FALSE(sdk.setCaptivePortalLoginMode(false, "i", nullptr, nullptr).base.error);
}

// Far more words than an array of fixed size would hold; the call's count has 16 bits.
TEST(Privacy, ManyDnsServers) {
    runRows(
        {row("dns" + repeated(" 1", 65536),
             {{"set_dns_servers", R"({"dns_addresses":["1","1","1"]})", {report("privacy_settings", "{}")}}},
             styled(R"({"dnsAddresses":[]})"))});
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
