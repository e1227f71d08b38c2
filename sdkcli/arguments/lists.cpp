// The grammar of firewall, local proxy, streaming and streaming bypass. Three of them edit lists, with the
// same words behind the family's.

#include <arpa/inet.h>
#include <string>

#include "../calls.h"
#include "actions.h"
#include "readers.h"

namespace {

template <class Item> using Edit = int (*)(int count, Item* items);

template <class Item> struct Edits {
    Edit<Item> set;
    Edit<Item> add;
    Edit<Item> rem;

    // Null for a word that is no operation.
    Edit<Item> named(char const* operation) const {
        if (is(operation, "set")) {
            return set;
        }
        if (is(operation, "add")) {
            return add;
        }
        return is(operation, "rem") ? rem : nullptr;
    }
};

struct ListFamily {
    char const* word;
    char const* usage;
    char const* portForm;
    Edits<DomainText> domains;
    Edits<in_addr> ipv4;
    Edits<in6_addr> ipv6;
    Edits<KelvarisSDK_ProtocolPortPair> ports;
};

constexpr ListFamily firewallLists{
    .word = "firewall",
    .usage = "firewall <mode|domains|ipv4|ipv6|ports>",
    .portForm = "[port/proto]",
    .domains = {setFirewallDomains, addFirewallDomains, remFirewallDomains},
    .ipv4 = {setFirewallIPv4, addFirewallIPv4, remFirewallIPv4},
    .ipv6 = {setFirewallIPv6, addFirewallIPv6, remFirewallIPv6},
    .ports = {setFirewallPorts, addFirewallPorts, remFirewallPorts},
};

constexpr ListFamily streamingLists{
    .word = "streaming",
    .usage = "streaming <domains|ipv4|ipv6|ports>",
    .portForm = "[port/proto]",
    .domains = {setStreamingDomains, addStreamingDomains, remStreamingDomains},
    .ipv4 = {setStreamingIPv4, addStreamingIPv4, remStreamingIPv4},
    .ipv6 = {setStreamingIPv6, addStreamingIPv6, remStreamingIPv6},
    .ports = {setStreamingPorts, addStreamingPorts, remStreamingPorts},
};

constexpr ListFamily streamingbypassLists{
    .word = "streamingbypass",
    .usage = "streamingbypass <domains|ipv4|ipv6|ports|service>",
    .portForm = "<port/proto>",
    .domains = {setLocalProxyDomains, addLocalProxyDomains, remLocalProxyDomains},
    .ipv4 = {setLocalProxyIPv4, addLocalProxyIPv4, remLocalProxyIPv4},
    .ipv6 = {setLocalProxyIPv6, addLocalProxyIPv6, remLocalProxyIPv6},
    .ports = {setLocalProxyPorts, addLocalProxyPorts, remLocalProxyPorts},
};

// "<family> <kind> <operation> <item> ..."
std::string listUsage(ListFamily const& family, char const* kind, char const* operation, char const* item) {
    return std::string(family.word) + ' ' + kind + ' ' + operation + ' ' + item + " ...";
}

// The readers fill a zeroed slot with a word; false refuses the word.

// Any word is a domain.
bool readDomain(char const* word, DomainText& domain) {
    copyWord(domain, word);
    return true;
}

// A word that is no address isn't refused and leaves the slot zeroed.
template <int family, class Address> bool readAddress(char const* word, Address& address) {
    inet_pton(family, word, &address);
    return true;
}

bool readPort(char const* word, KelvarisSDK_ProtocolPortPair& pair) {
    std::optional<KelvarisSDK_ProtocolPortPair> const read = readPortPair(word);
    pair = read.value_or(pair);
    return read.has_value();
}

template <class Item> struct ListKind {
    char const* word;
    char const* item; // its form in usage texts
    bool (*read)(char const* word, Item& slot);
};

template <class Item>
int editList(int argc, char* argv[], ListFamily const& family, ListKind<Item> const& kind,
             Edits<Item> const& edits) {
    std::string const usage = listUsage(family, kind.word, "<add|rem|set>", kind.item);
    if (argc == 3) {
        return missing(usage.c_str());
    }
    char const* const operation = argv[3];
    Edit<Item> const edit = edits.named(operation);
    if (edit == nullptr) {
        return invalid(usage.c_str());
    }

    int const count = argc - 4;
    Item items[mostListItems] = {};
    for (int i = 0; i < count; ++i) {
        // A word beyond the buffer is judged and counted; the library wouldn't send its item. The count leaves
        // here whole and is cut to the 16 bits that the library takes.
        Item surplus = {};
        if (!kind.read(argv[4 + i], i < mostListItems ? items[i] : surplus)) {
            return invalid(listUsage(family, kind.word, operation, kind.item).c_str());
        }
    }
    return edit(count, items);
}

// The words behind the family's.
int listAction(int argc, char* argv[], ListFamily const& family) {
    if (argc == 2) {
        return missing(family.usage);
    }
    char const* const kind = argv[2];
    if (is(kind, "domains")) {
        return editList(argc, argv, family, {kind, "<domain>", readDomain}, family.domains);
    }
    if (is(kind, "ipv4")) {
        return editList(argc, argv, family, {kind, "<ip address>", readAddress<AF_INET>}, family.ipv4);
    }
    if (is(kind, "ipv6")) {
        return editList(argc, argv, family, {kind, "<ip address>", readAddress<AF_INET6>}, family.ipv6);
    }
    if (is(kind, "ports")) {
        return editList(argc, argv, family, {kind, family.portForm, readPort}, family.ports);
    }
    return invalid(family.usage);
}

int firewallModeAction(int argc, char* argv[]) {
    char const* const usage = "firewall mode <off|allowlist|denylist>";
    if (argc == 3) {
        return missing(usage);
    }
    // Words behind the mode don't matter, nor behind those of the next two actions.
    char const* const mode = argv[3];
    if (is(mode, "off")) {
        return setFirewallMode(KelvarisSDK_FirewallMode_OFF);
    }
    if (is(mode, "allowlist")) {
        return setFirewallMode(KelvarisSDK_FirewallMode_ALLOWLIST);
    }
    if (is(mode, "denylist")) {
        return setFirewallMode(KelvarisSDK_FirewallMode_DENYLIST);
    }
    return invalid(usage);
}

int streamingbypassServiceAction(int argc, char* argv[]) {
    char const* const usage = "streamingbypass service <service name> <on|off>";
    if (argc < 5) {
        return missing(usage);
    }
    std::optional<bool> const enable = readOnOff(argv[4]);
    return enable ? setStreamingBypass(argv[3], *enable) : invalid(usage);
}

} // namespace

int localproxyAction(int argc, char* argv[]) {
    char const* const usage = "localproxy <on|off>";
    if (argc == 2) {
        return missing(usage);
    }
    std::optional<bool> const enabled = readOnOff(argv[2]);
    return enabled ? setLocalProxyEnabled(*enabled) : invalid(usage);
}

int firewallAction(int argc, char* argv[]) {
    if (argc > 2 && is(argv[2], "mode")) {
        return firewallModeAction(argc, argv);
    }
    return listAction(argc, argv, firewallLists);
}

int streamingbypassAction(int argc, char* argv[]) {
    if (argc > 2 && is(argv[2], "service")) {
        return streamingbypassServiceAction(argc, argv);
    }
    return listAction(argc, argv, streamingbypassLists);
}

int streamingAction(int argc, char* argv[]) {
    return listAction(argc, argv, streamingLists);
}
