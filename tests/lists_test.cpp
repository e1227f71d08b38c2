// How much fits into the lists.

#include "support/rows.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

std::string domains(int size) {
    return '[' + series(size, "\"d#\"") + ']';
}

// The tool writes these domains, and prints them.
Row set(std::string const& words, std::string const& sent) {
    std::string const list = "{\"domains\":" + sent + '}';
    return row(words, {{"set_firewall_domains", list, {report("firewall_settings", list)}}},
               styled(R"({"ipv4":[],"ipv6":[],"mode":"off","ports":[],"domains":)" + sent + '}'));
}

// The same behind a read that gives `held`.
Row edit(std::string const& words, std::string const& held, std::string const& sent) {
    Row edited = set(words, sent);
    edited.exchange.insert(edited.exchange.begin(), asked("firewall_settings", "{\"domains\":" + held + '}'));
    return edited;
}

std::string with(std::string words, int size, std::string const& word) {
    for (int i = 0; i < size; ++i) {
        words += ' ' + word + std::to_string(i);
    }
    return words;
}

} // namespace

TEST(Lists, AHundredItemsAtMost) {
    auto const all = [](int size, std::string const& protocolKey) {
        return R"({"domains":)" + domains(size) + R"(,"ipv4":[)" + series(size, "\"1.2.3.#\"") +
               R"(],"ipv6":[)" + series(size, "\"1::a#\"") + R"(],"ports":[)" +
               series(size, "{\"" + protocolKey + R"(":"udp","port":#})") + "]}";
    };
    runRows({
        row("show streaming", {asked("streaming_settings", all(130, "proto"))}, styled(all(100, "protocol"))),
        edit("firewall domains add a b c", domains(99), '[' + series(99, "\"d#\"") + R"(,"a"])"),
        edit("firewall domains add a", domains(100), domains(100)),
        set(with("firewall domains set", 130, "d"), domains(100)),
        edit(with("firewall domains add", 130, "d"), "[]", domains(100)),
        edit(with("firewall domains rem", 130, "d"), R"(["x","d99","d100"])", R"(["x","d100"])"),
        row(with("dns", 65538, "d"),
            {{"set_dns_servers",
              R"({"dns_addresses":)" + domains(3) + '}',
              {report("privacy_settings", "{}")}}},
            styled(R"({"dnsAddresses":[]})")),
        // The count of a list's write has 16 bits.
        set(with("firewall domains set", 65538, "d"), domains(2)),
        edit(with("firewall domains add", 65535, "d"), R"(["x","y"])", R"(["x"])"),
    });
}
