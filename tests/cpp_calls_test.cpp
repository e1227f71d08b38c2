// What the C++ layer makes of arguments and of records. That each call reaches the function of its name, and each field
// of a longer value the record's field of its name, is the matter of cpp_headers_test.sh.

#include "support/scripteddaemon.h"
#include "support/texts.h"

#include <kelvarissdk/kelvarissdk.hpp>

#include <arpa/inet.h>
#include <gtest/gtest.h>

using namespace harness;
using namespace kelvaris;

namespace {

struct Row {
    void (*begin)(Client const&);
    std::vector<Step> steps;
};

#define ROW(call, ...)                                                                                       \
    {                                                                                                        \
        [](Client const& client) { static_cast<void>(client.call.future()); }, {                             \
            __VA_ARGS__                                                                                      \
        }                                                                                                    \
    }

template <class Address> Address address(int family, char const* text) {
    Address binary{};
    inet_pton(family, text, &binary);
    return binary;
}
std::vector<in_addr> const v4{address<in_addr>(AF_INET, "1.2.3.4")};
std::vector<in6_addr> const v6{address<in6_addr>(AF_INET6, "::1")};
std::vector<ProtocolPortPair> const ports{{PortProtocol::UDP, 53}, {PortProtocol::TCP, 80}};
std::string const portsText = R"(ports":[{"port":53,"proto":"udp"},{"port":80,"proto":"tcp"}]})";
std::vector<std::string> const many(130, std::string(60, 'd'));

Row const rows[] = {
    ROW(login("u", "p"), {"login", R"({"password":"p","username":"u"})"}),
    ROW(connectAuto(AutoConnectMethod::P2P), {"server_auto_connect", R"({"server":"p2p"})"}),
    ROW(connectServer("us", "nyc", 3), {"server_auto_connect", R"({"server":"us|nyc|3"})"}),
    ROW(setConnectMethodCity("us", "nyc"),
        {"set_server_connectbest", R"({"connect_to_best_method":"country","countryCode":"us|nyc"})"}),
    ROW(setDirectoryDomain("d"), {"set_directory_domain", R"({"domain":"d"})"}),
    ROW(setDirectoryDomain(std::nullopt), {"set_directory_domain"}),
    ROW(resetDirectoryGatewayURI(), {"set_directory_gateway_uri"}),
    ROW(setMode(BondingMode::STREAMING), {"set_connection_algorithm", R"({"algorithm":"STR"})"}),
    ROW(setConnectionEncryption("a", true), {"set_encryption_enabled", R"({"enable":true,"guid":"a"})"}),
    ROW(setForwardPorts(ports), {"set_connection_forward_ports", "{\"forward_" + portsText}),
    ROW(setDNSServers({"1.1.1.1", "2"}), {"set_dns_servers", R"({"dns_addresses":["1.1.1.1","2"]})"}),
    ROW(setCaptivePortalLoginMode(false, std::nullopt), {"set_cplogin_enable", R"({"enable":false})"}),
    ROW(setConnectionPriorities("a", ConnectionPriority::BACKUP),
        {"set_network_priority", R"({"network":"a","priority":2})"}),
    ROW(setAdapterMonthlyDataLimit("a", 7, 4),
        {"set_network_limit", R"({"max":7,"network":"a","resetDay":4})"}),
    ROW(setFirewallDomains(many),
        {"set_firewall_domains", "{\"domains\":[" + series(1, 100, '"' + std::string(50, 'd') + '"') + "]}"}),
    ROW(setFirewallIPv6(v6), {"set_firewall_ipv6", R"({"ipv6":["::1"]})"}),
    ROW(setLocalProxyIPv4(v4), {"set_localproxy_ipv4", R"({"ipv4":["1.2.3.4"]})"}),
    ROW(setStreamingPorts({}), {"set_streaming_ports", R"({"ports":[]})"}),
    ROW(stopSafeBrowsing(), {"enable_safe_browsing", R"({"enable":false})"},
        {"initialize_safe_browsing", R"({"config":""})"}),
    ROW(setSafeBrowsingLogLevel(SafeBrowsingLogLevel::TRACE),
        {"set_safe_browsing_log_level", R"({"log_level":"trace"})"}),
    ROW(reportSafeBrowsingHomeNetworkWithParameters(1, 2, 3),
        {"safe_browsing_report_home_network", R"({"delay":2,"retries":1,"timeout":3})"}),
};

template <std::size_t size> void put(char (&field)[size], std::string const& text) {
    text.copy(field, size);
}

} // namespace

// The client's name fills its field and is sent without what stands behind it.
TEST(CppCalls, SendTheirArguments) {
    std::vector<Step> script;
    for (Row const& row : rows) {
        script.insert(script.end(), row.steps.begin(), row.steps.end());
    }
    std::string const name(32, 'n');
    ScriptedDaemon daemon(script, {.appName = name});
    Client const client(CreateSettings{.appName = name, .port = daemon.port(), .probing = false});
    for (Row const& row : rows) {
        row.begin(client);
    }
    daemon.waitForRequest("safe_browsing_report_home_network");
}

// Both steps of the start end with one report; the callback of a reset has no user data; statistics are enabled without
// an answer, and repeated.
TEST(CppCalls, IrregularOnesEnd) {
    ScriptedDaemon daemon(
        {{"enable_safe_browsing", R"({"enable":true})"},
         {"initialize_safe_browsing",
          R"({"config":"c"})",
          {report("safe_browsing_connect_error", R"({"error":7,"msg":"m"})"),
           report("safe_browsing_settings", R"({"enabled":true})")}},
         {"set_directory_domain", "null", {report("directory_settings", R"({"domain":"d"})")}},
         {"stat_subscribe", R"({"enable":true,"periods":[0,4294967295]})"},
         {"stat_subscribe", R"({"enable":true})"}},
        {.appName = std::nullopt});
    Client const client(CreateSettings{.port = daemon.port(), .probing = false});
    auto const started = client.startSafeBrowsing("c").within(patience()).get();
    ASSERT_TRUE(started && started->connectError);
    EXPECT_EQ(started->connectError->code, 7);
    EXPECT_EQ(client.resetDirectoryDomain().get().value().domain, "d");
    EXPECT_TRUE(client.enableStatUpdates(true, {currentSession, allTime}).get());
    daemon.waitForRequest("stat_subscribe");
    daemon.waitForRequest("stat_subscribe");
}

TEST(CppCalls, RecordsBecomeValues) {
    KelvarisSDK_VersionResult version{};
    version.maj = 1, version.min = 2, version.bug = 3, version.build = 4;
    auto const v = VersionResult::from(version);
    EXPECT_TRUE(v.maj == 1 && v.min == 2 && v.bug == 3 && v.build == 4);

    KelvarisSDK_ConnectResult connected{};
    put(connected.server.country, "us");
    put(connected.server.city, "nyc");
    connected.server.publicIPCount = 99; // of 12
    put(connected.server.publicIP[11], "1.2.3.4");
    auto server = ConnectResult::from(connected).server;
    EXPECT_EQ(server.publicIP.size(), 12U);
    EXPECT_EQ(server.publicIP[11], "1.2.3.4");
    EXPECT_FALSE(server.num);
    server.num = 12;
    EXPECT_EQ(toString(server), "United States - New York City #12");
    EXPECT_EQ(getCountryName(server) + getCityName(server), "United StatesNew York City");

    KelvarisSDK_PrivacySettingsResult privacy{};
    privacy.dnsleak = privacy.doNotStoreCredentials = true;
    auto const p = PrivacySettingsResult::from(privacy);
    EXPECT_TRUE(!p.killswitch && p.dnsleak && !p.ipleak && p.doNotStoreCredentials);

    KelvarisSDK_StreamingStatsResult streaming{};
    streaming.badLatency = streaming.badMemory = true;
    auto const s = StreamingStatsResult::from(streaming);
    EXPECT_TRUE(!s.badLoss && s.badLatency && !s.badCpu && s.badMemory);

    KelvarisSDK_DisconnectEventResult event{};
    event.disconnectReason = static_cast<KelvarisSDK_DisconnectReason>(17);
    event.sessionEnd = 1, event.sessionLength = 2;
    auto const e = DisconnectEventResult::from(event);
    EXPECT_TRUE(e.disconnectReason == DisconnectReason::UNKNOWN && e.sessionEnd == 1 && e.sessionLength == 2);

    KelvarisSDK_SafeBrowsingErrorResult lookUp{};
    lookUp.error = 5;
    put(lookUp.message, "m");
    put(lookUp.host, std::string(300, 'h'));
    auto const l = SafeBrowsingErrorResult::from(lookUp);
    EXPECT_TRUE(l.error == 5 && l.message == "m" && l.host == std::string(253, 'h'));

    KelvarisSDK_ServerSettingsResult settings{};
    settings.connectMethod = KelvarisSDK_AutoConnectMethod_COUNTRY;
    put(settings.country, "us");
    put(settings.city, "nyc");
    auto const m = ServerSettingsResult::from(settings);
    EXPECT_TRUE(m.connectMethod == AutoConnectMethod::COUNTRY && m.country == "us" && m.city == "nyc" &&
                !m.num);

    auto const service = std::make_unique<KelvarisSDK_LocalProxySettingsResult>();
    service->watchlistCount = service->watchlist[0].watchedDomainCount = service->lists.domainCount = 1;
    service->watchlist[0].proxiedDomainCount = 2;
    put(service->watchlist[0].title, "t");
    put(service->watchlist[0].watchedDomains[0], "w");
    put(service->watchlist[0].proxiedDomains[1], "x");
    put(service->lists.domains[0], "l");
    auto const proxy = LocalProxySettingsResult::from(*service);
    LocalProxyService const& first = proxy.watchlist.at(0);
    EXPECT_TRUE(first.title == "t" && first.watchedDomains.at(0) == "w" && first.proxiedDomains.at(1) == "x");
    EXPECT_EQ(proxy.lists.domains.at(0), "l");

    KelvarisSDK_AdapterUsageData usage{};
    usage.max = usage.maxDaily = -1;
    auto const u = AdapterUsageData::from(usage);
    EXPECT_TRUE(!u.max && !u.maxDaily && !u.resetDay && u.overlimitRate == 0);

    KelvarisSDK_AccountingResult account{};
    EXPECT_FALSE(AccountingResult::from(account).periodEndDate);
    account.periodEndDate.tm_year = 70, account.periodEndDate.tm_mday = 2;
    EXPECT_EQ(AccountingResult::from(account).periodEndDate->time_since_epoch(), std::chrono::hours(24));
}
