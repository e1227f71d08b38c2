// The settings of these families, the firewall, the local proxy and streaming, are lists of traffic.

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <iterator>
#include <string>

#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr char firewallReport[] = "report_firewall_settings";
constexpr char localProxyReport[] = "report_localproxy_settings";
constexpr char streamingReport[] = "report_streaming_settings";

// A list has the same capacity in a request as in the record.
constexpr std::size_t maxItems = std::size(KelvarisSDK_ListBlock{}.domains);

// A text that isn't an address of that family leaves zeroes, and still counts as an item.
template <int family, class Address> void setAddress(Address& address, Json::Value const& text) {
    address = {};
    inet_pton(family, text.asString().c_str(), &address);
}

void setListBlock(KelvarisSDK_ListBlock& lists, Json::Value const& report) {
    fillTexts(lists.domainCount, lists.domains, report[Keys::_domains]);
    fillSlots(lists.ipv4Count, lists.ipv4, report[Keys::_ipv4], setAddress<AF_INET, in_addr>);
    fillSlots(lists.ipv6Count, lists.ipv6, report[Keys::_ipv6], setAddress<AF_INET6, in6_addr>);
    fillSlots(lists.portCount, lists.ports, report[Keys::_ports], setPortPair);
}

KelvarisSDK_FirewallMode firewallModeFrom(Json::Value const& text) {
    return enumFrom(text, KelvarisSDK_FirewallMode_DENYLIST, KelvarisSDK_FirewallMode_toString)
        .value_or(KelvarisSDK_FirewallMode_OFF);
}

void setFirewallResult(KelvarisSDK_FirewallSettingsResult& result, Json::Value const& report) {
    result.mode = firewallModeFrom(report[Keys::_mode]);
    setListBlock(result.lists, report);
}

void setService(KelvarisSDK_LocalProxyService& service, Json::Value const& object) {
    copyText(service.title, object[Keys::_title]);
    service.enabled = object[Keys::_enabled].asBool();
    fillTexts(service.watchedDomainCount, service.watchedDomains, object[Keys::_watchedDomains]);
    fillTexts(service.proxiedDomainCount, service.proxiedDomains, object[Keys::_proxiedDomains]);
}

void setLocalProxyResult(KelvarisSDK_LocalProxySettingsResult& result, Json::Value const& report) {
    result.enabled = report[Keys::_enabled].asBool();
    result.matchMode = report[Keys::_matchMode].asString() == "denylist"
                           ? KelvarisSDK_LocalProxyMatchMode_DENYLIST
                           : KelvarisSDK_LocalProxyMatchMode_ALLOWLIST;
    setListBlock(result.lists, report);
    fillSlots(result.watchlistCount, result.watchlist, report[Keys::_domain_watchlist], setService);
}

void setStreamingResult(KelvarisSDK_StreamingSettingsResult& result, Json::Value const& report) {
    setListBlock(result.lists, report);
}

std::size_t sentCount(unsigned short count) {
    return std::min<std::size_t>(count, maxItems);
}

Json::Value domainsPayload(unsigned short count, char (*domains)[50]) {
    Json::Value payload;
    Json::Value& list = payload[Keys::_domains] = Json::Value(Json::arrayValue);
    for (std::size_t i = 0; i < sentCount(count); ++i) {
        list.append(textIn(domains[i]));
    }
    return payload;
}

template <int family, class Address>
Json::Value addressesPayload(Json::StaticString const& key, unsigned short count, Address const* addresses) {
    Json::Value payload;
    Json::Value& list = payload[key] = Json::Value(Json::arrayValue);
    for (std::size_t i = 0; i < sentCount(count); ++i) {
        char text[INET6_ADDRSTRLEN];
        list.append(inet_ntop(family, &addresses[i], text, sizeof(text)));
    }
    return payload;
}

Json::Value ipv4Payload(unsigned short count, in_addr const* addresses) {
    return addressesPayload<AF_INET>(Keys::_ipv4, count, addresses);
}

Json::Value ipv6Payload(unsigned short count, in6_addr const* addresses) {
    return addressesPayload<AF_INET6>(Keys::_ipv6, count, addresses);
}

Json::Value portsPayload(unsigned short count, KelvarisSDK_ProtocolPortPair const* ports) {
    return with(Keys::_ports, portPairs(ports, sentCount(count)));
}

} // namespace

KelvarisSDK_FirewallSettingsResult
KelvarisSDK::getFirewallSettings(KelvarisSDK_FirewallSettingsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_firewall_settings", firewallReport), setFirewallResult);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK::setFirewallMode(KelvarisSDK_FirewallMode mode,
                                                                KelvarisSDK_FirewallSettingsCallback callback,
                                                                void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    change("set_firewall_mode",
                                           with(Keys::_mode, KelvarisSDK_FirewallMode_toString(mode)),
                                           firewallReport),
                                    setFirewallResult);
}

KelvarisSDK_FirewallSettingsResult
KelvarisSDK::setFirewallDomains(unsigned short count, char (*domains)[50],
                                KelvarisSDK_FirewallSettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_firewall_domains", domainsPayload(count, domains), firewallReport), setFirewallResult);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK::setFirewallIPv4(unsigned short count, in_addr* addresses,
                                                                KelvarisSDK_FirewallSettingsCallback callback,
                                                                void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_firewall_ipv4", ipv4Payload(count, addresses), firewallReport), setFirewallResult);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK::setFirewallIPv6(unsigned short count, in6_addr* addresses,
                                                                KelvarisSDK_FirewallSettingsCallback callback,
                                                                void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_firewall_ipv6", ipv6Payload(count, addresses), firewallReport), setFirewallResult);
}

KelvarisSDK_FirewallSettingsResult
KelvarisSDK::setFirewallPorts(unsigned short count, KelvarisSDK_ProtocolPortPair* ports,
                              KelvarisSDK_FirewallSettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    change("set_firewall_ports", portsPayload(count, ports), firewallReport),
                                    setFirewallResult);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK::getLocalProxySettings(KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_localproxy_settings", localProxyReport), setLocalProxyResult);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK::setLocalProxyEnabled(bool enabled, KelvarisSDK_LocalProxySettingsCallback callback,
                                  void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_localproxy_enabled", with(Keys::_enabled, enabled), localProxyReport),
        setLocalProxyResult);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK::setLocalProxyDomains(unsigned short count, char (*domains)[50],
                                  KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_localproxy_domains", domainsPayload(count, domains), localProxyReport),
        setLocalProxyResult);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK::setLocalProxyIPv4(unsigned short count, in_addr* addresses,
                               KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_localproxy_ipv4", ipv4Payload(count, addresses), localProxyReport), setLocalProxyResult);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK::setLocalProxyIPv6(unsigned short count, in6_addr* addresses,
                               KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_localproxy_ipv6", ipv6Payload(count, addresses), localProxyReport), setLocalProxyResult);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK::setLocalProxyPorts(unsigned short count, KelvarisSDK_ProtocolPortPair* ports,
                                KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    // This call takes a lock of the firewall's ports for its own.
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    {.requests = {{"set_localproxy_ports", portsPayload(count, ports)}},
                                     .awaited = {{localProxyReport}},
                                     .settingName = "set_firewall_ports"},
                                    setLocalProxyResult);
}

KelvarisSDK_LocalProxySettingsResult KelvarisSDK::setLocalProxyDomainWatchlistEnable(
    char const* title, bool enabled, KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    Json::Value payload;
    payload[Keys::_title] = title;
    payload[Keys::_enabled] = enabled;
    // This call awaits no lock report.
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        command("set_localproxy_domainwatchlist_enable", payload, localProxyReport), setLocalProxyResult);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK::getStreamingSettings(KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_streaming_settings", streamingReport), setStreamingResult);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK::setStreamingDomains(unsigned short count, char (*domains)[50],
                                 KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_streaming_domains", domainsPayload(count, domains), streamingReport), setStreamingResult);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK::setStreamingIPv4(unsigned short count, in_addr* addresses,
                              KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_streaming_ipv4", ipv4Payload(count, addresses), streamingReport), setStreamingResult);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK::setStreamingIPv6(unsigned short count, in6_addr* addresses,
                              KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_streaming_ipv6", ipv6Payload(count, addresses), streamingReport), setStreamingResult);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK::setStreamingPorts(unsigned short count, KelvarisSDK_ProtocolPortPair* ports,
                               KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_streaming_ports", portsPayload(count, ports), streamingReport), setStreamingResult);
}

} // namespace kelvarissdk
