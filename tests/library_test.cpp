// These tests reach what no command line does and no document shows.

#include "jsonprinter.h"
#include "support/sdk.h"

#include <cstring>

using namespace harness;

namespace {

// A record has nothing left of a report with these members when one comes that leaves them out.
template <class T>
void checkLeftovers(T (*get)(KelvarisSDK_Handle*, bool (*)(T, void*), void*), auto print,
                    std::string const& what, std::string const& members, std::string const& none = "{}") {
    SCOPED_TRACE(what);
    InboxOf<T> results;
    ScriptedDaemon daemon(
        {{"request_" + what, "null", {report(what, none), report(what, members), report(what, none)}}},
        noName);
    Handle const handle(daemon.port());
    get(handle.sdk, InboxOf<T>::keep, &results);
    std::string printed[3];
    for (std::string& document : printed) {
        testing::internal::CaptureStdout();
        print(results.take());
        document = testing::internal::GetCapturedStdout();
    }
    EXPECT_NE(printed[1], printed[0]);
    EXPECT_EQ(printed[2], printed[0]);
}

} // namespace

TEST(Library, LaterReportsLeaveNothingOfEarlierOnes) {
    std::string const settings[] = {
        R"({"forward_ports":[{"port":1}]})", R"({"parallel_sockets":{"i":1}})",
        R"({"perconn_encryption":true,"perconn_encryption_settings":{"i":true}})"};
    for (std::string const& members : settings) {
        checkLeftovers(KelvarisSDK_GetSettings, printSettingsResult, "connection_settings", members);
    }
    std::string const lists[] = {R"({"domains":["a"]})", R"({"ipv4":["1.2.3.4"]})", R"({"ipv6":["::1"]})",
                                 R"({"ports":[{"port":1}]})", R"({"domain_watchlist":[{}]})"};
    for (std::string const& members : lists) {
        checkLeftovers(KelvarisSDK_GetLocalProxySettings, printStreamingBypass, "localproxy_settings",
                       members);
    }
    checkLeftovers(KelvarisSDK_GetPrivacySettings, printPrivacySettingsResult, "privacy_settings",
                   R"({"dns_addresses":["a"]})");
    checkLeftovers(KelvarisSDK_GetStreamingStats, printStreamingStatsResult, "streaming_stats",
                   R"({"streams":[{}]})");
    checkLeftovers(
        KelvarisSDK_GetConnectionStats, [](auto const& result) { printConnectionStatsResult(result, false); },
        "connection_stats", R"({"time":1,"connections":[{}]})");
    checkLeftovers(KelvarisSDK_GetSessionStats, printSessionStatsResult, "session_stats", R"({"0":{}})");
    checkLeftovers(KelvarisSDK_GetConnectedServer, printConnectResult, "connected_server",
                   R"({"publicIP":["a"]})");
    checkLeftovers(KelvarisSDK_GetServerSettings, printServerSettingsResult, "server_settings",
                   R"({"connect_to_best_method":"country","connect_country":"us|nyc|1"})",
                   R"({"connect_to_best_method":"country"})");
}

// Some calls are refused before they look for the link, and one not even without it.
TEST(Library, RefusedArguments) {
    ScriptedDaemon daemon({}, noName);
    Sdk sdk(daemon);
    auto const noPriority = static_cast<KelvarisSDK_ConnectionPriority>(4);
    EXPECT_EQ(sdk.setConnectionPriorities("i", noPriority, nullptr, nullptr).base.errorCode, 3842);
    EXPECT_EQ(sdk.connectAuto(KelvarisSDK_AutoConnectMethod_COUNTRY, nullptr, nullptr).base.errorCode, 3840);
    for (unsigned const method : {3U, 5U, 6U, 8U}) {
        auto const chosen = static_cast<KelvarisSDK_AutoConnectMethod>(method);
        EXPECT_EQ(sdk.setConnectMethodAuto(chosen, nullptr, nullptr).base.errorCode, 3842);
    }
    sdk.unlink();
    sdk.unregisterCallback(0);
    EXPECT_EQ(sdk.daemonExit().errorCode, 3840);
    EXPECT_EQ(sdk.enableStatUpdates(true, 0, nullptr).errorCode, 3840);
    EXPECT_EQ(sdk.getState(nullptr, nullptr).base.errorCode, 3840);
    EXPECT_EQ(sdk.setConnectionPriorities("i", noPriority, nullptr, nullptr).base.errorCode, 3840);
    EXPECT_EQ(sdk.setCaptivePortalLoginMode(true, nullptr, nullptr, nullptr).base.errorCode, 3842);
    EXPECT_EQ(sdk.listenForSafeBrowsingError(nullptr, nullptr).base.errorCode, 3843);
    EXPECT_EQ(sdk.listenForSafeBrowsingBlock(nullptr, nullptr).base.errorCode, 3843);
}

// The tool's words can't say these numbers.
TEST(Library, NumbersWithoutAWord) {
    Step const connected{"server_auto_connect", R"({"server":"auto"})", {state(6)}};
    std::string const answer = report("connection_settings", R"({"language":"eng"})");
    std::string const ports = series(10, 29, R"({"port":#})");
    ScriptedDaemon daemon(
        {{"set_connection_algorithm", R"({"algorithm":"SP"})", {answer}},
         {"set_connection_transport", R"({"transport_mode":"auto"})", {answer}},
         {"set_connection_forward_ports", R"({"forward_ports":[)" + ports + "]}", {answer}},
         {"set_cplogin_enable", R"({"enable":false,"network":"i"})", {report("cplogin_network", "{}")}},
         connected,
         connected,
         {"set_streaming_ports",
          R"({"ports":[{"port":7},{"proto":"udp","port":8}]})",
          {report("streaming_settings", "{}")}},
         {"set_firewall_mode", R"({"mode":"Unknown mode"})", {report("firewall_settings", "{}")}}},
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
    for (unsigned const number : {7U, 8U}) {
        auto const method = static_cast<KelvarisSDK_AutoConnectMethod>(number);
        EXPECT_FALSE(sdk.connectAuto(method, nullptr, nullptr).base.error);
    }
    pairs[0].port = 7;
    pairs[1] = {KelvarisSDK_PortProtocol_UDP, 8};
    EXPECT_FALSE(sdk.setStreamingPorts(2, pairs, nullptr, nullptr).base.error);
    auto const mode = static_cast<KelvarisSDK_FirewallMode>(3);
    EXPECT_EQ(sdk.setFirewallMode(mode, nullptr, nullptr).mode, KelvarisSDK_FirewallMode_OFF);
}

TEST(Library, PrivacyFlags) {
    for (std::string const flag : {"killswitch", "dnsleak", "ipleak", "do_not_store_credentials"}) {
        ScriptedDaemon daemon({asked("privacy_settings", "{\"" + flag + "\":true}")}, noName);
        auto const result = Sdk(daemon).getPrivacySettings(nullptr, nullptr);
        EXPECT_EQ(result.killswitch, flag == "killswitch");
        EXPECT_EQ(result.dnsleak, flag == "dnsleak");
        EXPECT_EQ(result.ipleak, flag == "ipleak");
        EXPECT_EQ(result.doNotStoreCredentials, flag == "do_not_store_credentials");
    }
}

TEST(Library, NamesOfServers) {
    std::pair<KelvarisSDK_ServerInformation, std::string> const servers[] = {
        {{"us", "", 0, false}, "United States"},
        {{"US", "", -1, false}, "{{LOCATION.COUNTRY.US}}"},
        {{"proxy", "", 0, false}, "proxy"},
        {{"", "oslo", 1, false}, " - Oslo #1"},
    };
    for (auto const& [info, name] : servers) {
        EXPECT_EQ(KelvarisSDK_ServerInformation_toString(info), name);
    }

    // The country runs on through the city; the name is cut after 100 bytes.
    KelvarisSDK_ServerInformationDetailed full{};
    std::memset(full.country, 'c', sizeof(full.country));
    std::memset(full.city, 'y', sizeof(full.city));
    full.num = 0x61616161;
    full.torrentAllowed = true;
    std::string const city(20, 'y');
    std::string const name =
        "{{LOCATION.COUNTRY." + std::string(10, 'c') + city + "}} - {{LOCATION.CITY." + city + "}} #";
    EXPECT_EQ(KelvarisSDK_ServerInformationDetailed_toString(full), (name + "1633771873").substr(0, 100));
}

TEST(Library, LocalProxy) {
    std::string const proxy =
        R"({"enabled":true,"matchMode":"denylist","domain_watchlist":[{"watchedDomains":[)" +
        series(0, 12, "\"d#\"") + R"(],"proxiedDomains":[)" + series(0, 13, "\"p#\"") + "]}]}";
    ScriptedDaemon daemon(
        {asked("localproxy_settings", proxy), asked("localproxy_settings", R"({"matchMode":"Denylist"})")},
        noName);
    Sdk sdk(daemon);
    KelvarisSDK_LocalProxySettingsResult const result = sdk.getLocalProxySettings(nullptr, nullptr);
    EXPECT_TRUE(result.enabled);
    EXPECT_EQ(result.matchMode, KelvarisSDK_LocalProxyMatchMode_DENYLIST);
    EXPECT_EQ(result.watchlist[0].watchedDomainCount, 12);
    EXPECT_STREQ(result.watchlist[0].watchedDomains[11], "d11");
    EXPECT_EQ(result.watchlist[0].proxiedDomainCount, 12);
    EXPECT_STREQ(result.watchlist[0].proxiedDomains[11], "p11");
    EXPECT_EQ(sdk.getLocalProxySettings(nullptr, nullptr).matchMode,
              KelvarisSDK_LocalProxyMatchMode_ALLOWLIST);
}
