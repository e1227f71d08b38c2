// Firewall, local proxy, streaming and streaming bypass: the words, the requests they make, the documents,
// and the editing of lists as a read and a write.

#include "support/rows.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <kelvarissdk/csdkinterface.h>
#include <regex>

using namespace harness;

namespace {

using Words = std::vector<std::string>;

// A family's wire names behind "request_", "set_" and "report_".
struct Family {
    std::string word;
    std::string wire;
    std::string rest; // keys of its report beside the lists
    std::string head; // keys of its document before the lists
};

Family const firewall{"firewall", "firewall", R"(,"mode":"denylist")", R"("mode":"denylist",)"};
Family const streaming{"streaming", "streaming", "", ""};
Family const bypass{"streamingbypass", "localproxy",
                    R"(,"domain_watchlist":[{"title":"video","enabled":true}])",
                    R"("services":[{"title":"video","enabled":true}],)"};
std::vector<Family> const families{firewall, streaming, bypass};

// A JSON list of that size: each element is the text before, its number and the text behind.
std::string series(unsigned size, std::string const& before, std::string const& behind = "\"") {
    std::string text;
    for (unsigned i = 0; i < size; ++i) {
        text += (i == 0 ? "" : ",") + before + std::to_string(i) + behind;
    }
    return '[' + text + ']';
}

std::string domains(unsigned size) {
    return series(size, "\"d");
}

std::string report(Family const& family, std::string const& lists) {
    return "[\"report_" + family.wire + "_settings\",{" + lists + family.rest + "}]";
}

// The family's document; lists that are left out are empty.
std::string document(Family const& family, std::string const& lists) {
    Json::Value whole = parsed('{' + family.head + lists + '}');
    for (char const* kind : {"domains", "ipv4", "ipv6", "ports"}) {
        if (!whole.isMember(kind)) {
            whole[kind] = Json::Value(Json::arrayValue);
        }
    }
    return whole.toStyledString();
}

Step reading(Family const& family, std::string const& lists) {
    return {.request = "request_" + family.wire + "_settings", .answers = {report(family, lists)}};
}

// A write of these items, answered with the family's report of just these.
Step writing(Family const& family, std::string const& kind, std::string const& items) {
    std::string const payload = '"' + kind + "\":" + items;
    return {.request = "set_" + family.wire + '_' + kind,
            .payload = '{' + payload + '}',
            .answers = {report(family, payload)}};
}

// A row in which the tool reads `held`, writes `sent` and prints what the daemon made of that.
Row edit(Words const& argv, Family const& family, std::string const& held, std::string const& sent) {
    std::string const& kind = argv[1];
    std::string const printed = std::regex_replace(sent, std::regex("proto\""), "protocol\"");
    return {.name = testing::PrintToString(argv),
            .argv = argv,
            .exchange = {reading(family, '"' + kind + "\":" + held), writing(family, kind, sent)},
            .out = document(family, '"' + kind + "\":" + printed)};
}

Row set(Words const& argv, Family const& family, std::string const& sent) {
    Row row = edit(argv, family, "[]", sent);
    row.exchange.erase(row.exchange.begin());
    return row;
}

Words with(Words words, unsigned size, std::string const& word) {
    for (unsigned i = 0; i < size; ++i) {
        words.push_back(word + std::to_string(i));
    }
    return words;
}

std::string locked(std::string const& setting, int reason) {
    return R"(["report_setting_locked",{"setting":")" + setting + R"(","reason":)" + std::to_string(reason) +
           "}]";
}

std::string const lockedByServer =
    errorDocument(3846, "Setting locked by server configuration", "Setting locked by server configuration");
std::string const lockedByAccount =
    errorDocument(3848, "Setting locked by account configuration", "Setting locked by account configuration");

} // namespace

// Every family and kind once through each operation: the right export, request and printer.
TEST(Lists, EachFamilyAndKind) {
    struct Kind {
        std::string word, kept, added, typed; // as JSON, as JSON, as typed
    };
    std::vector<Row> rows;
    for (Family const& family : families) {
        for (Kind const& kind : {Kind{"domains", R"("a.x")", R"("b.x")", "b.x"},
                                 Kind{"ipv4", R"("1.2.3.4")", R"("5.6.7.8")", "5.6.7.8"},
                                 Kind{"ipv6", R"("fe80::1")", R"("2001:db8::2")", "2001:db8::2"},
                                 Kind{"ports", R"({"proto":"tcp","port":80})",
                                      R"({"proto":"udp","port":65535})", "65535/udp2"}}) {
            std::string const both = '[' + kind.kept + ',' + kind.added + ']';
            rows.push_back(set({family.word, kind.word, "set", kind.typed}, family, '[' + kind.added + ']'));
            rows.push_back(
                edit({family.word, kind.word, "add", kind.typed}, family, '[' + kind.kept + ']', both));
            rows.push_back(
                edit({family.word, kind.word, "rem", kind.typed}, family, both, '[' + kind.kept + ']'));
        }
    }
    runRows(rows);
}

// Which items are the same, and what becomes of order, copies and words that are no items.
TEST(Lists, Items) {
    std::string const wide(60, 'w');
    std::string const cut = "[\"" + wide.substr(0, 50) + "\"]";
    std::string const tcpAndUdp = R"([{"proto":"tcp","port":80},{"proto":"udp","port":80}])";
    Step const strange{.request = "set_firewall_ipv6",
                       .payload = R"({"ipv6":["::","::2"]})",
                       .answers = {report(firewall, R"("ipv6":["nonsense","::2"],"ipv4":["1.2.3"])")}};
    runRows({
        set({"firewall", "domains", "set"}, firewall, "[]"),
        edit({"firewall", "domains", "add"}, firewall, R"(["a"])", R"(["a"])"),
        edit({"firewall", "domains", "rem"}, firewall, R"(["a"])", R"(["a"])"),
        edit({"firewall", "domains", "add", "a", "not a domain"}, firewall, R"(["b","a"])",
             R"(["b","a","a","not a domain"])"),
        edit({"firewall", "domains", "rem", "a", "none", "c"}, firewall, R"(["a","A","b","a","ab","c"])",
             R"(["A","b","ab"])"),
        set({"firewall", "domains", "set", wide}, firewall, cut),
        edit({"firewall", "domains", "rem", wide}, firewall, "[\"" + wide + "\",\"x\"]", R"(["x"])"),
        edit({"firewall", "ipv4", "add", "999.1.1.1", "1.1.1.1", "::1"}, firewall, R"(["9.9.9.9"])",
             R"(["9.9.9.9","0.0.0.0","1.1.1.1","0.0.0.0"])"),
        edit({"firewall", "ipv6", "rem", "::1"}, firewall, R"(["0:0:0:0:0:0:0:1","::2"])", R"(["::2"])"),
        edit({"firewall", "ports", "rem", "80"}, firewall, tcpAndUdp, R"([{"proto":"udp","port":80}])"),
        edit({"firewall", "ports", "rem", "80/udp"}, firewall, tcpAndUdp, R"([{"proto":"tcp","port":80}])"),
        // What the daemon reports and is no address counts as an item of zeroes; other protocols are tcp.
        {.name = "no addresses",
         .argv = {"firewall", "ipv6", "add", "::2"},
         .exchange = {reading(firewall, R"("ipv6":["1.2.3.4"])"), strange},
         .out = document(firewall, R"("ipv6":["::","::2"],"ipv4":["0.0.0.0"])")},
        {.name = "protocols and wide ports",
         .argv = {"show", "streaming"},
         .exchange = {reading(streaming, R"("ports":[{"proto":"TCP","port":65537},{"port":2}])")},
         .out = document(streaming, R"("ports":[{"protocol":"tcp","port":1},{"protocol":"tcp","port":2}])")},
    });
}

TEST(Lists, AHundredItemsAtMost) {
    auto const all = [](unsigned size, std::string const& protocolKey) {
        return R"("domains":)" + domains(size) + R"(,"ipv4":)" + series(size, "\"1.2.3.") + R"(,"ipv6":)" +
               series(size, "\"1::a") + R"(,"ports":)" +
               series(size, "{\"" + protocolKey + R"(":"udp","port":)", "}");
    };
    std::string with99 = domains(99);
    with99.replace(with99.size() - 1, 1, R"(,"a"])");
    Words tooManyPorts = with({"firewall", "ports", "set"}, 100, "1");
    tooManyPorts.emplace_back("0");
    runRows({
        {.name = "a long report",
         .argv = {"show", "streaming"},
         .exchange = {reading(streaming, all(130, "proto"))},
         .out = document(streaming, all(100, "protocol"))},
        edit({"firewall", "domains", "add", "a", "b", "c"}, firewall, domains(99), with99),
        edit({"firewall", "domains", "add", "a"}, firewall, domains(100), domains(100)),
        set(with({"firewall", "domains", "set"}, 130, "d"), firewall, domains(100)),
        edit(with({"firewall", "domains", "add"}, 130, "d"), firewall, "[]", domains(100)),
        edit(with({"firewall", "domains", "rem"}, 130, "d"), firewall, R"(["x","d99","d100"])",
             R"(["x","d100"])"),
        // The count of the write has 16 bits.
        set(with({"firewall", "domains", "set"}, 65538, "d"), firewall, domains(2)),
        edit(with({"firewall", "domains", "add"}, 65535, "d"), firewall, R"(["x","y"])", R"(["x"])"),
        {.name = "a bad port behind the hundredth",
         .argv = tooManyPorts,
         .err = invalid("firewall ports set [port/proto] ..."),
         .status = 2},
    });
}

TEST(Lists, RefusedWords) {
    struct Case {
        Words argv;
        std::string usage;
        int status;
    };
    std::string const firewallUsage = "firewall <mode|domains|ipv4|ipv6|ports>";
    std::string const modeUsage = "firewall mode <off|allowlist|denylist>";
    std::string const streamingUsage = "streaming <domains|ipv4|ipv6|ports>";
    std::string const bypassUsage = "streamingbypass <domains|ipv4|ipv6|ports|service>";
    std::string const serviceUsage = "streamingbypass service <service name> <on|off>";
    std::string const proxyUsage = "localproxy <on|off>";
    std::vector<Case> cases{
        {{"firewall"}, firewallUsage, 3},
        {{"firewall", "Domains"}, firewallUsage, 2},
        {{"firewall", "mode"}, modeUsage, 3},
        {{"firewall", "mode", "deny"}, modeUsage, 2},
        {{"streaming"}, streamingUsage, 3},
        {{"streaming", "service"}, streamingUsage, 2},
        {{"streamingbypass"}, bypassUsage, 3},
        {{"streamingbypass", "mode", "off"}, bypassUsage, 2},
        {{"streamingbypass", "service"}, serviceUsage, 3},
        {{"streamingbypass", "service", "video"}, serviceUsage, 3},
        {{"streamingbypass", "service", "video", "maybe"}, serviceUsage, 2},
        {{"localproxy"}, proxyUsage, 3},
        {{"localproxy", "ON"}, proxyUsage, 2},
    };
    for (Family const& family : families) {
        std::string const portForm = family.word == "streamingbypass" ? "<port/proto>" : "[port/proto]";
        for (auto const& [kind, item] :
             std::vector<std::pair<std::string, std::string>>{{"domains", "<domain>"},
                                                              {"ipv4", "<ip address>"},
                                                              {"ipv6", "<ip address>"},
                                                              {"ports", portForm}}) {
            std::string const usage = family.word + ' ' + kind + " <add|rem|set> " + item + " ...";
            cases.push_back({{family.word, kind}, usage, 3});
            cases.push_back({{family.word, kind, "clear"}, usage, 2});
        }
        for (std::string const operation : {"set", "add", "rem"}) {
            std::string const usage = family.word + " ports " + operation + ' ' + portForm + " ...";
            cases.push_back({{family.word, "ports", operation, "80", "0/tcp"}, usage, 2});
            cases.push_back({{family.word, "ports", operation, "80/sctp", "80"}, usage, 2});
        }
    }
    std::vector<Row> rows;
    for (Case const& c : cases) {
        rows.push_back({.name = testing::PrintToString(c.argv),
                        .argv = c.argv,
                        .err = c.status == 3 ? missing(c.usage) : invalid(c.usage),
                        .status = c.status});
    }
    runRows(rows);
}

TEST(Lists, Switches) {
    std::string const on = report(bypass, R"("enabled":true,"domains":["a"])");
    auto const mode = [](std::string const& argument, std::string const& sent, std::string const& reported) {
        return Row{.name = argument,
                   .argv = {"firewall", "mode", argument, "extra"},
                   .exchange = {{.request = "set_firewall_mode",
                                 .payload = "{\"mode\":\"" + sent + "\"}",
                                 .answers = {"[\"report_firewall_settings\"," + reported + "]"}}},
                   .out =
                       styled(R"({"domains":[],"ipv4":[],"ipv6":[],"mode":")" + sent + R"(","ports":[]})")};
    };
    auto const proxy = [&](std::string const& argument, std::string const& sent) {
        return Row{.name = argument,
                   .argv = {"localproxy", argument, "extra"},
                   .exchange = {{.request = "set_localproxy_enabled",
                                 .payload = "{\"enabled\":" + sent + '}',
                                 .answers = {on}}},
                   .out = styled(R"({"enabled":true})")};
    };
    auto const service = [&](std::string const& argument, std::string const& sent) {
        // Not even a lock under its own name ends it.
        return Row{.name = "service " + argument,
                   .argv = {"streamingbypass", "service", "", argument, "extra"},
                   .exchange = {{.request = "set_localproxy_domainwatchlist_enable",
                                 .payload = R"({"title":"","enabled":)" + sent + '}',
                                 .answers = {locked("set_localproxy_domainwatchlist_enable", 1), on}}},
                   .out = document(bypass, R"("domains":["a"])")};
    };
    runRows({
        mode("allowlist", "allowlist", R"({"mode":"allowlist"})"),
        mode("denylist", "denylist", R"({"mode":"denylist"})"),
        mode("off", "off", R"({"mode":"Allowlist"})"),
        mode("off", "off", "{}"),
        proxy("on", "true"),
        proxy("off", "false"),
        service("on", "true"),
        service("off", "false"),
        {.name = "show localproxy",
         .argv = {"show", "localproxy"},
         .exchange = {reading(bypass, R"("enabled":1)")},
         .out = styled(R"({"enabled":true})")},
        {.name = "show streamingbypass",
         .argv = {"show", "streamingbypass"},
         .exchange = {{.request = "request_localproxy_settings",
                       .answers = {R"(["report_localproxy_settings",{}])"}}},
         .out = styled(R"({"domains":[],"ipv4":[],"ipv6":[],"ports":[],"services":[]})")},
        {.name = "show firewall",
         .argv = {"show", "firewall"},
         .exchange = {reading(firewall, R"("ipv4":["1.2.3.4"])")},
         .out = document(firewall, R"("ipv4":["1.2.3.4"])")},
    });
}

TEST(Lists, LocksAndFailedReads) {
    auto const refused = [](Words const& argv, std::vector<Step> const& exchange, std::string const& error) {
        return Row{.name = testing::PrintToString(argv),
                   .argv = argv,
                   .exchange = exchange,
                   .err = error,
                   .status = 1};
    };
    auto const lockedWrite = [](std::string const& request, std::string const& payload, int reason) {
        return Step{.request = request, .payload = payload, .answers = {locked(request, reason)}};
    };
    std::string const unreadable = errorDocument(3840, "An error in the SDK", "Error from SDK");
    std::vector<Row> rows{
        refused({"firewall", "mode", "off"}, {lockedWrite("set_firewall_mode", R"({"mode":"off"})", 2)},
                lockedByAccount),
        refused({"localproxy", "on"}, {lockedWrite("set_localproxy_enabled", R"({"enabled":true})", 1)},
                lockedByServer),
        refused({"firewall", "domains", "rem", "a"},
                {reading(firewall, R"("domains":["a"])"),
                 lockedWrite("set_firewall_domains", R"({"domains":[]})", 1)},
                lockedByServer),
        // A failed read sends nothing.
        refused({"firewall", "domains", "add", "a"}, {reading(firewall, R"("domains":[[]])")}, unreadable),
        refused({"streaming", "ports", "rem", "1"}, {reading(streaming, R"("ports":[{"port":99999999999}])")},
                unreadable),
    };
    for (Family const& family : families) {
        for (std::string const kind : {"domains", "ipv4", "ipv6", "ports"}) {
            std::string const request = "set_" + family.wire + '_' + kind;
            if (request != "set_localproxy_ports") {
                rows.push_back(refused({family.word, kind, "set"},
                                       {lockedWrite(request, "{\"" + kind + "\":[]}", 1)}, lockedByServer));
            }
        }
    }
    // The proxy's ports end with the lock of the firewall's, and one under their own name ends nothing.
    Step ports = writing(bypass, "ports", "[]");
    ports.answers.insert(ports.answers.begin(), locked("set_localproxy_ports", 1));
    Row ignored = set({"streamingbypass", "ports", "set"}, bypass, "[]");
    ignored.exchange = {ports};
    rows.push_back(ignored);
    ports.answers = {locked("set_firewall_ports", 2)};
    rows.push_back(refused({"streamingbypass", "ports", "set"}, {ports}, lockedByAccount));
    runRows(rows);
}

// What no document shows, and what no word can send.
TEST(Lists, CInterface) {
    std::string proxy =
        R"(["report_localproxy_settings",{"enabled":true,"matchMode":"denylist","domain_watchlist":)" +
        series(24, "{\"title\":\"", "\"}");
    proxy.replace(proxy.size() - 1, 1,
                  R"(,{"title":"service of thirty bytes or more","enabled":true,"watchedDomains":)" +
                      domains(13) + R"(,"proxiedDomains":)" + series(14, "\"p") + "},{}]}]");
    ScriptedDaemon daemon(
        {
            {.request = "request_localproxy_settings", .answers = {proxy}},
            {.request = "request_localproxy_settings",
             .answers = {R"(["report_localproxy_settings",{"matchMode":"Denylist"}])"}},
            {.request = "set_streaming_ports",
             .payload = R"({"ports":[{"port":7},{"proto":"udp","port":8}]})",
             .answers = {report(streaming, "\"ports\":[]")}},
            {.request = "set_firewall_mode",
             .payload = R"({"mode":"Unknown mode"})",
             .answers = {R"(["report_firewall_settings",{}])"}},
        },
        {.appName = std::nullopt});
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    settings.port = daemon.port();
    KelvarisSDK_Handle* const sdk = KelvarisSDK_CreateWithSettings(settings);

    KelvarisSDK_LocalProxySettingsResult result = KelvarisSDK_GetLocalProxySettings(sdk, nullptr, nullptr);
    EXPECT_TRUE(result.enabled);
    EXPECT_EQ(result.matchMode, KelvarisSDK_LocalProxyMatchMode_DENYLIST);
    ASSERT_EQ(result.watchlistCount, 25);
    EXPECT_STREQ(result.watchlist[23].title, "23");
    KelvarisSDK_LocalProxyService const& last = result.watchlist[24];
    EXPECT_EQ(std::string(last.title, sizeof(last.title)), "service of thirty bytes or mor");
    EXPECT_TRUE(last.enabled);
    EXPECT_EQ(last.watchedDomainCount, 12);
    EXPECT_STREQ(last.watchedDomains[11], "d11");
    EXPECT_EQ(last.proxiedDomainCount, 12);
    EXPECT_STREQ(last.proxiedDomains[11], "p11");
    result = KelvarisSDK_GetLocalProxySettings(sdk, nullptr, nullptr);
    EXPECT_EQ(result.matchMode, KelvarisSDK_LocalProxyMatchMode_ALLOWLIST);
    EXPECT_EQ(result.watchlistCount, 0);

    KelvarisSDK_ProtocolPortPair ports[] = {{static_cast<KelvarisSDK_PortProtocol>(2), 7},
                                            {KelvarisSDK_PortProtocol_UDP, 8}};
    EXPECT_FALSE(KelvarisSDK_SetStreamingPorts(sdk, 2, ports, nullptr, nullptr).base.error);
    auto const mode = static_cast<KelvarisSDK_FirewallMode>(3);
    EXPECT_EQ(KelvarisSDK_SetFirewallMode(sdk, mode, nullptr, nullptr).mode, KelvarisSDK_FirewallMode_OFF);
    KelvarisSDK_Destroy(sdk);
}

// Callers in other languages copy the layout.
TEST(Lists, RecordLayout) {
    EXPECT_EQ(offsetof(KelvarisSDK_ListBlock, ipv4Count), 5002U);
    EXPECT_EQ(offsetof(KelvarisSDK_ListBlock, ipv4), 5004U);
    EXPECT_EQ(offsetof(KelvarisSDK_ListBlock, ports), 7012U);
    EXPECT_EQ(offsetof(KelvarisSDK_FirewallSettingsResult, lists), 220U);
    EXPECT_EQ(offsetof(KelvarisSDK_StreamingSettingsResult, lists), 216U);
    EXPECT_EQ(offsetof(KelvarisSDK_LocalProxySettingsResult, lists), 224U);
    EXPECT_EQ(offsetof(KelvarisSDK_LocalProxySettingsResult, watchlistCount), 8036U);
    EXPECT_EQ(sizeof(KelvarisSDK_LocalProxyService), 1236U);
}
