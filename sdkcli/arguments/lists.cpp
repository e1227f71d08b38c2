// This is the grammar of the firewall, the local proxy, streaming and streaming bypass. Three of them edit lists, with
// the same words behind the family's.

#include <algorithm>
#include <arpa/inet.h>
#include <string>

#include "actions.h"
#include "calls.h"
#include "readers.h"

namespace {

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

template <class Item> using Edit = int (*)(int count, Item* items);

template <class Item> struct List {
    char const* line;
    bool (*read)(char const* word, Item& slot);
    Edit<Item> set;
    Edit<Item> add;
    Edit<Item> rem;

    // This is null for a word that is no operation.
    Edit<Item> edit(char const* operation) const {
        if (equals(operation, "set")) {
            return set;
        }
        if (equals(operation, "add")) {
            return add;
        }
        return equals(operation, "rem") ? rem : nullptr;
    }

    // The usage line of one operation has its word in the place of all three.
    std::string lineOf(char const* operation) const {
        std::string text = line;
        std::size_t const choice = text.find('<');
        return text.replace(choice, text.find('>') + 1 - choice, operation);
    }
};

template <class Item> int editList(int argc, char* argv[], List<Item> const& list) {
    if (argc == 3) {
        return missing(list.line);
    }
    Edit<Item> const edit = list.edit(argv[3]);
    if (edit == nullptr) {
        return invalid(list.line);
    }

    int const count = argc - 4;
    Item items[maxListItems] = {};
    for (int i = 0; i < count; ++i) {
        // A word beyond the array is judged and counted; the library wouldn't send its item. The count leaves
        // here whole and is cut to the 16 bits that the library takes.
        Item surplus = {};
        if (!list.read(argv[4 + i], i < maxListItems ? items[i] : surplus)) {
            return invalid(list.lineOf(argv[3]).c_str());
        }
    }
    return edit(count, items);
}

constexpr List<DomainText> firewallDomains{usage::firewallDomains, readDomain, setFirewallDomains,
                                           addFirewallDomains, remFirewallDomains};
constexpr List<in_addr> firewallIPv4{usage::firewallIPv4, readAddress<AF_INET>, setFirewallIPv4,
                                     addFirewallIPv4, remFirewallIPv4};
constexpr List<in6_addr> firewallIPv6{usage::firewallIPv6, readAddress<AF_INET6>, setFirewallIPv6,
                                      addFirewallIPv6, remFirewallIPv6};
constexpr List<KelvarisSDK_ProtocolPortPair> firewallPorts{usage::firewallPorts, readPort, setFirewallPorts,
                                                           addFirewallPorts, remFirewallPorts};

constexpr List<DomainText> streamingDomains{usage::streamingDomains, readDomain, setStreamingDomains,
                                            addStreamingDomains, remStreamingDomains};
constexpr List<in_addr> streamingIPv4{usage::streamingIPv4, readAddress<AF_INET>, setStreamingIPv4,
                                      addStreamingIPv4, remStreamingIPv4};
constexpr List<in6_addr> streamingIPv6{usage::streamingIPv6, readAddress<AF_INET6>, setStreamingIPv6,
                                       addStreamingIPv6, remStreamingIPv6};
constexpr List<KelvarisSDK_ProtocolPortPair> streamingPorts{
    usage::streamingPorts, readPort, setStreamingPorts, addStreamingPorts, remStreamingPorts};

constexpr List<DomainText> bypassDomains{usage::bypassDomains, readDomain, setLocalProxyDomains,
                                         addLocalProxyDomains, remLocalProxyDomains};
constexpr List<in_addr> bypassIPv4{usage::bypassIPv4, readAddress<AF_INET>, setLocalProxyIPv4,
                                   addLocalProxyIPv4, remLocalProxyIPv4};
constexpr List<in6_addr> bypassIPv6{usage::bypassIPv6, readAddress<AF_INET6>, setLocalProxyIPv6,
                                    addLocalProxyIPv6, remLocalProxyIPv6};
constexpr List<KelvarisSDK_ProtocolPortPair> bypassPorts{usage::bypassPorts, readPort, setLocalProxyPorts,
                                                         addLocalProxyPorts, remLocalProxyPorts};

template <auto& list> int listAction(int argc, char* argv[]) {
    return editList(argc, argv, list);
}

int firewallModeAction(int argc, char* argv[]) {
    if (argc == 3) {
        return missing(usage::firewallMode);
    }
    // Words behind the mode are accepted and ignored, as they are in the next two actions.
    auto const mode =
        readEnumeration<KelvarisSDK_FirewallMode_toString, KelvarisSDK_FirewallMode_DENYLIST>(argv[3]);
    return mode ? setFirewallMode(*mode) : invalid(usage::firewallMode);
}

int bypassServiceAction(int argc, char* argv[]) {
    if (argc < 5) {
        return missing(usage::bypassService);
    }
    std::optional<bool> const enable = readOnOff(argv[4]);
    return enable ? setStreamingBypass(argv[3], *enable) : invalid(usage::bypassService);
}

constexpr Keyword firewallWords[] = {
    {"mode", firewallModeAction},         {"domains", listAction<firewallDomains>},
    {"ipv4", listAction<firewallIPv4>},   {"ipv6", listAction<firewallIPv6>},
    {"ports", listAction<firewallPorts>},
};

constexpr Keyword streamingWords[] = {
    {"domains", listAction<streamingDomains>},
    {"ipv4", listAction<streamingIPv4>},
    {"ipv6", listAction<streamingIPv6>},
    {"ports", listAction<streamingPorts>},
};

constexpr Keyword streamingbypassWords[] = {
    {"service", bypassServiceAction},   {"domains", listAction<bypassDomains>},
    {"ipv4", listAction<bypassIPv4>},   {"ipv6", listAction<bypassIPv6>},
    {"ports", listAction<bypassPorts>},
};

} // namespace

constinit Keywords const firewallKeywords = firewallWords;
constinit Keywords const streamingKeywords = streamingWords;
constinit Keywords const streamingbypassKeywords = streamingbypassWords;

int localproxyAction(int argc, char* argv[]) {
    if (argc == 2) {
        return missing(usage::localProxy);
    }
    std::optional<bool> const enabled = readOnOff(argv[2]);
    return enabled ? setLocalProxyEnabled(*enabled) : invalid(usage::localProxy);
}

int firewallAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, firewallKeywords, usage::firewall);
}

int streamingAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, streamingKeywords, usage::streaming);
}

int streamingbypassAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, streamingbypassKeywords, usage::bypass);
}
