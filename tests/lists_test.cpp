// Firewall, local proxy, streaming and streaming bypass: the words, the requests they make, the documents,
// and the editing of lists as a read and a write.

#include "support/rows.h"
#include "support/sdk.h"

#include <gtest/gtest.h>
#include <regex>

using namespace harness;

namespace {

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
                    R"(,"domain_watchlist":[{"title":"video","enabled":true},{"title":"music"}])",
                    R"("services":[{"title":"video","enabled":true},{"title":"music","enabled":false}],)"};
std::vector<Family> const families{firewall, streaming, bypass};

std::vector<std::string> const kinds{"domains", "ipv4", "ipv6", "ports"};

std::string domains(int size) {
    return '[' + series(size, "\"d#\"") + ']';
}

std::string reportOf(Family const& family, std::string const& lists) {
    return report(family.wire + "_settings", '{' + lists + family.rest + '}');
}

// The family's document; lists that are left out are empty.
std::string document(Family const& family, std::string const& lists) {
    return changed(R"({"domains":[],"ipv4":[],"ipv6":[],"ports":[]})", '{' + family.head + lists + '}');
}

Step reading(Family const& family, std::string const& lists) {
    return {.request = "request_" + family.wire + "_settings", .answers = {reportOf(family, lists)}};
}

// A write of these items, answered with the family's report of just these.
Step writing(Family const& family, std::string const& kind, std::string const& items) {
    std::string const list = '"' + kind + "\":" + items;
    return {"set_" + family.wire + '_' + kind, '{' + list + '}', {reportOf(family, list)}};
}

// A row in which the tool writes `sent` and prints what the daemon made of that.
Row set(std::string const& words, Family const& family, std::string const& sent) {
    std::string const kind = split(words)[1];
    std::string const printed = std::regex_replace(sent, std::regex("proto\""), "protocol\"");
    return row(words, {writing(family, kind, sent)}, document(family, '"' + kind + "\":" + printed));
}

// The same behind a read that gives `held`.
Row edit(std::string const& words, Family const& family, std::string const& held, std::string const& sent) {
    Row edited = set(words, family, sent);
    edited.exchange.insert(edited.exchange.begin(), reading(family, '"' + edited.argv[1] + "\":" + held));
    return edited;
}

std::string with(std::string words, int size, std::string const& word) {
    for (int i = 0; i < size; ++i) {
        words += ' ' + word + std::to_string(i);
    }
    return words;
}

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
            std::string const words = family.word + ' ' + kind.word;
            rows.push_back(set(words + " set " + kind.typed, family, '[' + kind.added + ']'));
            rows.push_back(edit(words + " add " + kind.typed, family, '[' + kind.kept + ']', both));
            rows.push_back(edit(words + " rem " + kind.typed, family, both, '[' + kind.kept + ']'));
        }
    }
    runRows(rows);
}

// Which items are the same, and what becomes of order, copies and words that are no items.
TEST(Lists, Items) {
    std::string const wide(60, 'w');
    std::string const cut = "[\"" + wide.substr(0, 50) + "\"]";
    std::string const tcpAndUdp = R"([{"proto":"tcp","port":80},{"proto":"udp","port":80}])";
    runRows({
        set("firewall domains set", firewall, "[]"),
        edit("firewall domains add", firewall, R"(["a"])", R"(["a"])"),
        edit("firewall domains rem", firewall, R"(["a"])", R"(["a"])"),
        edit("firewall domains add a no/domain", firewall, R"(["b","a"])", R"(["b","a","a","no/domain"])"),
        edit("firewall domains rem a none c", firewall, R"(["a","A","b","a","ab","c"])", R"(["A","b","ab"])"),
        set("firewall domains set " + wide, firewall, cut),
        edit("firewall domains rem " + wide, firewall, "[\"" + wide + "\",\"x\"]", R"(["x"])"),
        edit("firewall ipv4 add 999.1.1.1 1.1.1.1 ::1", firewall, R"(["9.9.9.9"])",
             R"(["9.9.9.9","0.0.0.0","1.1.1.1","0.0.0.0"])"),
        edit("firewall ipv6 rem ::1", firewall, R"(["0:0:0:0:0:0:0:1","::2"])", R"(["::2"])"),
        edit("firewall ports rem 80", firewall, tcpAndUdp, R"([{"proto":"udp","port":80}])"),
        edit("firewall ports rem 80/udp", firewall, tcpAndUdp, R"([{"proto":"tcp","port":80}])"),
        // What the daemon reports and is no address counts as an item of zeroes; other protocols are tcp.
        row("firewall ipv6 add ::2",
            {reading(firewall, R"("ipv6":["1.2.3.4"])"),
             {"set_firewall_ipv6",
              R"({"ipv6":["::","::2"]})",
              {reportOf(firewall, R"("ipv6":["nonsense","::2"],"ipv4":["1.2.3"])")}}},
            document(firewall, R"("ipv6":["::","::2"],"ipv4":["0.0.0.0"])")),
        row("show streaming", {reading(streaming, R"("ports":[{"proto":"TCP","port":65537},{"port":2}])")},
            document(streaming, R"("ports":[{"protocol":"tcp","port":1},{"protocol":"tcp","port":2}])")),
    });
}

TEST(Lists, AHundredItemsAtMost) {
    auto const all = [](int size, std::string const& protocolKey) {
        return R"("domains":)" + domains(size) + R"(,"ipv4":[)" + series(size, "\"1.2.3.#\"") +
               R"(],"ipv6":[)" + series(size, "\"1::a#\"") + R"(],"ports":[)" +
               series(size, "{\"" + protocolKey + R"(":"udp","port":#})") + ']';
    };
    std::vector<Row> rows = {
        row("show streaming", {reading(streaming, all(130, "proto"))},
            document(streaming, all(100, "protocol"))),
        edit("firewall domains add a b c", firewall, domains(99), '[' + series(99, "\"d#\"") + R"(,"a"])"),
        edit("firewall domains add a", firewall, domains(100), domains(100)),
        set(with("firewall domains set", 130, "d"), firewall, domains(100)),
        edit(with("firewall domains add", 130, "d"), firewall, "[]", domains(100)),
        edit(with("firewall domains rem", 130, "d"), firewall, R"(["x","d99","d100"])", R"(["x","d100"])"),
        // The count of the write has 16 bits.
        set(with("firewall domains set", 65538, "d"), firewall, domains(2)),
        edit(with("firewall domains add", 65535, "d"), firewall, R"(["x","y"])", R"(["x"])"),
    };
    std::string const badBehindTheHundredth = with("firewall ports set", 100, "1") + " 0";
    addRefusals(rows, {{"firewall ports set [port/proto] ...", {}, {badBehindTheHundredth}}});
    runRows(rows);
}

TEST(Lists, RefusedWords) {
    std::vector<Row> rows;
    addRefusals(rows, {{"firewall <mode|domains|ipv4|ipv6|ports>", {"firewall"}, {"firewall Domains"}},
                       {"firewall mode <off|allowlist|denylist>", {"firewall mode"}, {"firewall mode deny"}},
                       {"streaming <domains|ipv4|ipv6|ports>", {"streaming"}, {"streaming service"}},
                       {"streamingbypass <domains|ipv4|ipv6|ports|service>",
                        {"streamingbypass"},
                        {"streamingbypass mode off"}},
                       {"streamingbypass service <service name> <on|off>",
                        {"streamingbypass service", "streamingbypass service video"},
                        {"streamingbypass service video maybe"}},
                       {"localproxy <on|off>", {"localproxy"}, {"localproxy ON"}}});
    for (Family const& family : families) {
        std::string const ports = family.word == "streamingbypass" ? "<port/proto>" : "[port/proto]";
        for (std::string const& kind : kinds) {
            std::string const words = family.word + ' ' + kind;
            std::string const item = kind == "domains" ? "<domain>"
                                     : kind == "ports" ? ports
                                                       : "<ip address>";
            addRefusals(rows, {{words + " <add|rem|set> " + item + " ...", {words}, {words + " clear"}}});
        }
        for (std::string const operation : {"set", "add", "rem"}) {
            std::string const words = family.word + " ports " + operation + ' ';
            addRefusals(rows, {{words + ports + " ...", {}, {words + "80 0/tcp", words + "80/sctp 80"}}});
        }
    }
    runRows(rows);
}

TEST(Lists, Switches) {
    std::string const on = reportOf(bypass, R"("enabled":true,"domains":["a"])");
    auto const mode = [](std::string const& argument, std::string const& reported) {
        Step const write{
            "set_firewall_mode", "{\"mode\":\"" + argument + "\"}", {report("firewall_settings", reported)}};
        return row("firewall mode " + argument + " extra", {write},
                   changed(document(firewall, ""), "{\"mode\":\"" + argument + "\"}"));
    };
    std::vector<Row> rows = {
        mode("allowlist", R"({"mode":"allowlist"})"),
        mode("denylist", R"({"mode":"denylist"})"),
        mode("off", R"({"mode":"Allowlist"})"),
        mode("off", "{}"),
        row("show localproxy", {reading(bypass, R"("enabled":1)")}, styled(R"({"enabled":true})")),
        row("show streamingbypass", {asked("localproxy_settings", "{}")},
            styled(R"({"domains":[],"ipv4":[],"ipv6":[],"ports":[],"services":[]})")),
        row("show firewall", {reading(firewall, R"("ipv4":["1.2.3.4"])")},
            document(firewall, R"("ipv4":["1.2.3.4"])")),
    };
    for (auto const& [word, value] : {std::pair<std::string, std::string>("on", "true"), {"off", "false"}}) {
        rows.push_back(row("localproxy " + word + " extra",
                           {{"set_localproxy_enabled", "{\"enabled\":" + value + '}', {on}}},
                           styled(R"({"enabled":true})")));
        // Not even a lock under its own name ends it.
        std::string const watch = "set_localproxy_domainwatchlist_enable";
        rows.push_back(row("streamingbypass service '' " + word + " extra",
                           {{watch, R"({"title":"","enabled":)" + value + '}', {lock(watch, 1), on}}},
                           document(bypass, R"("domains":["a"])")));
    }
    runRows(rows);
}

TEST(Lists, LocksAndFailedReads) {
    auto const lockedWrite = [](std::string const& request, std::string const& payload, int reason) {
        return Step{request, payload, {lock(request, reason)}};
    };
    // The proxy's ports end with the lock of the firewall's, and one under their own name ends nothing.
    Step ports = writing(bypass, "ports", "[]");
    ports.answers.insert(ports.answers.begin(), lock("set_localproxy_ports", 1));
    Step const portsLocked{ports.request, ports.payload, {lock("set_firewall_ports", 2)}};
    std::vector<Row> rows{
        failing("firewall mode off", {lockedWrite("set_firewall_mode", R"({"mode":"off"})", 2)},
                lockedByAccount),
        failing("localproxy on", {lockedWrite("set_localproxy_enabled", R"({"enabled":true})", 1)},
                lockedByServer),
        failing("firewall domains rem a",
                {reading(firewall, R"("domains":["a"])"),
                 lockedWrite("set_firewall_domains", R"({"domains":[]})", 1)},
                lockedByServer),
        row("streamingbypass ports set", {ports}, document(bypass, "")),
        failing("streamingbypass ports set", {portsLocked}, lockedByAccount),
        // A failed read sends nothing.
        failing("firewall domains add a", {reading(firewall, R"("domains":[[]])")}, unreadable),
        failing("streaming ports rem 1", {reading(streaming, R"("ports":[{"port":99999999999}])")},
                unreadable),
    };
    for (Family const& family : families) {
        for (std::string const& kind : kinds) {
            std::string const request = "set_" + family.wire + '_' + kind;
            if (request != ports.request) {
                rows.push_back(failing(family.word + ' ' + kind + " set",
                                       {lockedWrite(request, "{\"" + kind + "\":[]}", 1)}, lockedByServer));
            }
        }
    }
    runRows(rows);
}

// What no document shows, and what no word can send.
TEST(Lists, Library) {
    std::string const proxy =
        R"({"enabled":true,"matchMode":"denylist","domain_watchlist":[)" + series(24, R"({"title":"#"})") +
        R"(,{"title":"service of thirty bytes or more","enabled":true,)" + R"("watchedDomains":)" +
        domains(13) + R"(,"proxiedDomains":[)" + series(14, "\"p#\"") + "]},{}]}";
    ScriptedDaemon daemon(
        {asked("localproxy_settings", proxy),
         asked("localproxy_settings", R"({"matchMode":"Denylist"})"),
         {"set_streaming_ports",
          R"({"ports":[{"port":7},{"proto":"udp","port":8}]})",
          {report("streaming_settings", "{}")}},
         {"set_firewall_mode", R"({"mode":"Unknown mode"})", {report("firewall_settings", "{}")}}},
        noName);
    Sdk sdk(daemon);
    KelvarisSDK_LocalProxySettingsResult result = sdk.getLocalProxySettings(nullptr, nullptr);
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
    result = sdk.getLocalProxySettings(nullptr, nullptr);
    EXPECT_EQ(result.matchMode, KelvarisSDK_LocalProxyMatchMode_ALLOWLIST);
    EXPECT_EQ(result.watchlistCount, 0);

    KelvarisSDK_ProtocolPortPair ports[] = {{static_cast<KelvarisSDK_PortProtocol>(2), 7},
                                            {KelvarisSDK_PortProtocol_UDP, 8}};
    EXPECT_FALSE(sdk.setStreamingPorts(2, ports, nullptr, nullptr).base.error);
    auto const mode = static_cast<KelvarisSDK_FirewallMode>(3);
    EXPECT_EQ(sdk.setFirewallMode(mode, nullptr, nullptr).mode, KelvarisSDK_FirewallMode_OFF);
}
