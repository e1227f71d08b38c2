// These are the actions of the firewall, the local proxy and streaming. The requests replace whole lists only, so
// adding and removing read a list, change it and set it.

#include "calls.h"

#include <algorithm>
#include <cstring>

#include "finish.h"

namespace {

// A kind says where the record holds its items and when two of them are the same.

struct Domains {
    using Item = DomainText;
    static constexpr auto count = &KelvarisSDK_ListBlock::domainCount;
    static constexpr auto items = &KelvarisSDK_ListBlock::domains;
    static bool equals(Item const& a, Item const& b) {
        return std::strncmp(a, b, sizeof(Item)) == 0;
    }
};

struct IPv4 {
    using Item = in_addr;
    static constexpr auto count = &KelvarisSDK_ListBlock::ipv4Count;
    static constexpr auto items = &KelvarisSDK_ListBlock::ipv4;
    static bool equals(Item const& a, Item const& b) {
        return a.s_addr == b.s_addr;
    }
};

struct IPv6 {
    using Item = in6_addr;
    static constexpr auto count = &KelvarisSDK_ListBlock::ipv6Count;
    static constexpr auto items = &KelvarisSDK_ListBlock::ipv6;
    static bool equals(Item const& a, Item const& b) {
        return IN6_ARE_ADDR_EQUAL(&a, &b);
    }
};

struct Ports {
    using Item = KelvarisSDK_ProtocolPortPair;
    static constexpr auto count = &KelvarisSDK_ListBlock::portCount;
    static constexpr auto items = &KelvarisSDK_ListBlock::ports;
    static bool equals(Item const& a, Item const& b) {
        return a.port == b.port && a.protocol == b.protocol;
    }
};

// A family says how its record is read, set and shown.

// clang-format off
struct Firewall {
    static constexpr auto read = KelvarisSDK_GetFirewallSettings;
    static constexpr auto print = printFirewallResult;
    static constexpr auto set(Domains) { return KelvarisSDK_SetFirewallDomains; }
    static constexpr auto set(IPv4) { return KelvarisSDK_SetFirewallIPv4; }
    static constexpr auto set(IPv6) { return KelvarisSDK_SetFirewallIPv6; }
    static constexpr auto set(Ports) { return KelvarisSDK_SetFirewallPorts; }
};

struct Streaming {
    static constexpr auto read = KelvarisSDK_GetStreamingSettings;
    static constexpr auto print = printStreamingResult;
    static constexpr auto set(Domains) { return KelvarisSDK_SetStreamingDomains; }
    static constexpr auto set(IPv4) { return KelvarisSDK_SetStreamingIPv4; }
    static constexpr auto set(IPv6) { return KelvarisSDK_SetStreamingIPv6; }
    static constexpr auto set(Ports) { return KelvarisSDK_SetStreamingPorts; }
};

struct LocalProxy {
    static constexpr auto read = KelvarisSDK_GetLocalProxySettings;
    static constexpr auto print = printStreamingBypass;
    static constexpr auto set(Domains) { return KelvarisSDK_SetLocalProxyDomains; }
    static constexpr auto set(IPv4) { return KelvarisSDK_SetLocalProxyIPv4; }
    static constexpr auto set(IPv6) { return KelvarisSDK_SetLocalProxyIPv6; }
    static constexpr auto set(Ports) { return KelvarisSDK_SetLocalProxyPorts; }
};
// clang-format on

template <class Item> void copyItem(Item& to, Item const& from) {
    std::memcpy(&to, &from, sizeof(Item));
}

template <class Family, class Kind> int set(int count, typename Kind::Item* items) {
    auto const setExport = Family::set(Kind{});
    return finish(setExport(sdk, static_cast<unsigned short>(count), items, nullptr, nullptr), Family::print);
}

template <class Family, class Kind> int add(int count, typename Kind::Item* items) {
    auto result = Family::read(sdk, nullptr, nullptr);
    if (result.base.error) {
        return finish(result, Family::print);
    }
    auto& held = result.lists.*Kind::items;
    int const heldCount = result.lists.*Kind::count;
    for (int i = 0; i < count && heldCount + i < maxListItems; ++i) {
        copyItem(held[heldCount + i], items[i]);
    }
    return set<Family, Kind>(heldCount + count, held);
}

template <class Family, class Kind> int rem(int count, typename Kind::Item* items) {
    auto const result = Family::read(sdk, nullptr, nullptr);
    if (result.base.error) {
        return finish(result, Family::print);
    }
    auto* const itemsEnd = items + std::min(count, maxListItems);
    typename Kind::Item kept[maxListItems] = {};
    int keptCount = 0;
    for (int i = 0; i < result.lists.*Kind::count; ++i) {
        auto const& item = (result.lists.*Kind::items)[i];
        if (std::none_of(items, itemsEnd, [&](auto const& given) { return Kind::equals(item, given); })) {
            copyItem(kept[keptCount++], item);
        }
    }
    return set<Family, Kind>(keptCount, kept);
}

} // namespace

int requestFirewallSettings() {
    return finish(KelvarisSDK_GetFirewallSettings(sdk, nullptr, nullptr), printFirewallResult);
}

int setFirewallMode(KelvarisSDK_FirewallMode mode) {
    return finish(KelvarisSDK_SetFirewallMode(sdk, mode, nullptr, nullptr), printFirewallResult);
}

int requestLocalProxySettings() {
    return finish(KelvarisSDK_GetLocalProxySettings(sdk, nullptr, nullptr), printLocalProxyResult);
}

int setLocalProxyEnabled(bool enabled) {
    return finish(KelvarisSDK_SetLocalProxyEnabled(sdk, enabled, nullptr, nullptr), printLocalProxyResult);
}

int requestStreamingSettings() {
    return finish(KelvarisSDK_GetStreamingSettings(sdk, nullptr, nullptr), printStreamingResult);
}

int requestStreamingBypass() {
    return finish(KelvarisSDK_GetLocalProxySettings(sdk, nullptr, nullptr), printStreamingBypass);
}

int setStreamingBypass(char const* name, bool enable) {
    return finish(KelvarisSDK_SetLocalProxyDomainWatchlistEnable(sdk, name, enable, nullptr, nullptr),
                  printStreamingBypass);
}

// clang-format off
int setFirewallDomains(int count, Domains::Item* items) { return set<Firewall, Domains>(count, items); }
int addFirewallDomains(int count, Domains::Item* items) { return add<Firewall, Domains>(count, items); }
int remFirewallDomains(int count, Domains::Item* items) { return rem<Firewall, Domains>(count, items); }
int setFirewallIPv4(int count, IPv4::Item* items) { return set<Firewall, IPv4>(count, items); }
int addFirewallIPv4(int count, IPv4::Item* items) { return add<Firewall, IPv4>(count, items); }
int remFirewallIPv4(int count, IPv4::Item* items) { return rem<Firewall, IPv4>(count, items); }
int setFirewallIPv6(int count, IPv6::Item* items) { return set<Firewall, IPv6>(count, items); }
int addFirewallIPv6(int count, IPv6::Item* items) { return add<Firewall, IPv6>(count, items); }
int remFirewallIPv6(int count, IPv6::Item* items) { return rem<Firewall, IPv6>(count, items); }
int setFirewallPorts(int count, Ports::Item* items) { return set<Firewall, Ports>(count, items); }
int addFirewallPorts(int count, Ports::Item* items) { return add<Firewall, Ports>(count, items); }
int remFirewallPorts(int count, Ports::Item* items) { return rem<Firewall, Ports>(count, items); }

int setStreamingDomains(int count, Domains::Item* items) { return set<Streaming, Domains>(count, items); }
int addStreamingDomains(int count, Domains::Item* items) { return add<Streaming, Domains>(count, items); }
int remStreamingDomains(int count, Domains::Item* items) { return rem<Streaming, Domains>(count, items); }
int setStreamingIPv4(int count, IPv4::Item* items) { return set<Streaming, IPv4>(count, items); }
int addStreamingIPv4(int count, IPv4::Item* items) { return add<Streaming, IPv4>(count, items); }
int remStreamingIPv4(int count, IPv4::Item* items) { return rem<Streaming, IPv4>(count, items); }
int setStreamingIPv6(int count, IPv6::Item* items) { return set<Streaming, IPv6>(count, items); }
int addStreamingIPv6(int count, IPv6::Item* items) { return add<Streaming, IPv6>(count, items); }
int remStreamingIPv6(int count, IPv6::Item* items) { return rem<Streaming, IPv6>(count, items); }
int setStreamingPorts(int count, Ports::Item* items) { return set<Streaming, Ports>(count, items); }
int addStreamingPorts(int count, Ports::Item* items) { return add<Streaming, Ports>(count, items); }
int remStreamingPorts(int count, Ports::Item* items) { return rem<Streaming, Ports>(count, items); }

int setLocalProxyDomains(int count, Domains::Item* items) { return set<LocalProxy, Domains>(count, items); }
int addLocalProxyDomains(int count, Domains::Item* items) { return add<LocalProxy, Domains>(count, items); }
int remLocalProxyDomains(int count, Domains::Item* items) { return rem<LocalProxy, Domains>(count, items); }
int setLocalProxyIPv4(int count, IPv4::Item* items) { return set<LocalProxy, IPv4>(count, items); }
int addLocalProxyIPv4(int count, IPv4::Item* items) { return add<LocalProxy, IPv4>(count, items); }
int remLocalProxyIPv4(int count, IPv4::Item* items) { return rem<LocalProxy, IPv4>(count, items); }
int setLocalProxyIPv6(int count, IPv6::Item* items) { return set<LocalProxy, IPv6>(count, items); }
int addLocalProxyIPv6(int count, IPv6::Item* items) { return add<LocalProxy, IPv6>(count, items); }
int remLocalProxyIPv6(int count, IPv6::Item* items) { return rem<LocalProxy, IPv6>(count, items); }
int setLocalProxyPorts(int count, Ports::Item* items) { return set<LocalProxy, Ports>(count, items); }
int addLocalProxyPorts(int count, Ports::Item* items) { return add<LocalProxy, Ports>(count, items); }
int remLocalProxyPorts(int count, Ports::Item* items) { return rem<LocalProxy, Ports>(count, items); }
// clang-format on
