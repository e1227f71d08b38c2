/*
 * Lists of traffic: the firewall, the local proxy and its streaming services, and what counts as streaming.
 *
 * Of a list of more than 100 items the first 100 are sent, and of a domain the first 50 bytes; an empty list clears.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_LISTS_HPP
#define KELVARISSDK_CPP_LISTS_HPP

#include <kelvarissdk/cpp/adapters.hpp>

namespace kelvaris {

/** What the firewall's lists mean. */
enum class FirewallMode : std::uint32_t { OFF, ALLOWLIST, DENYLIST, UNKNOWN = 0xFFFFFFFF };

/** What the local proxy's lists mean. */
enum class LocalProxyMatchMode : std::uint32_t { ALLOWLIST, DENYLIST, UNKNOWN = 0xFFFFFFFF };

inline char const* toString(FirewallMode value) {
    return KelvarisSDK_FirewallMode_toString(detail::passed(value));
}

/** The four lists that each of the three results holds. */
struct ListBlock {
    std::vector<std::string> domains; /**< a domain that is set ends with its 50 bytes */
    std::vector<in_addr> ipv4;        /**< all zero: the report's text is no such address */
    std::vector<in6_addr> ipv6;       /**< likewise */
    std::vector<ProtocolPortPair> ports;

    static ListBlock from(KelvarisSDK_ListBlock const& record) {
        return {detail::texts(record.domains, record.domainCount),
                detail::items(record.ipv4, record.ipv4Count), detail::items(record.ipv6, record.ipv6Count),
                detail::values<ProtocolPortPair>(record.ports, record.portCount)};
    }
};

/** The firewall's mode and lists. */
struct FirewallSettingsResult {
    using Record = KelvarisSDK_FirewallSettingsResult;
    FirewallMode mode = FirewallMode::OFF;
    ListBlock lists;

    static FirewallSettingsResult from(Record const& record) {
        return {detail::known(record.mode, FirewallMode::DENYLIST), ListBlock::from(record.lists)};
    }
};

/** A service with the domains of it that the local proxy watches, and those that it proxies. */
struct LocalProxyService {
    std::string title;
    bool enabled = false;
    std::vector<std::string> watchedDomains;
    std::vector<std::string> proxiedDomains;

    static LocalProxyService from(KelvarisSDK_LocalProxyService const& record) {
        return {detail::text(record.title), record.enabled,
                detail::texts(record.watchedDomains, record.watchedDomainCount),
                detail::texts(record.proxiedDomains, record.proxiedDomainCount)};
    }
};

/** The local proxy's switch, lists and services. */
struct LocalProxySettingsResult {
    using Record = KelvarisSDK_LocalProxySettingsResult;
    bool enabled = false;
    LocalProxyMatchMode matchMode = LocalProxyMatchMode::ALLOWLIST;
    ListBlock lists;
    std::vector<LocalProxyService> watchlist;

    static LocalProxySettingsResult from(Record const& record) {
        return {record.enabled, detail::known(record.matchMode, LocalProxyMatchMode::DENYLIST),
                ListBlock::from(record.lists),
                detail::values<LocalProxyService>(record.watchlist, record.watchlistCount)};
    }
};

/** The lists of what counts as streaming. */
struct StreamingSettingsResult {
    using Record = KelvarisSDK_StreamingSettingsResult;
    ListBlock lists;

    static StreamingSettingsResult from(Record const& record) {
        return {ListBlock::from(record.lists)};
    }
};

/** The family's calls. */
class ListsCalls : public AdaptersCalls {
public:
    StreamCall<FirewallSettingsResult> getFirewallSettings() const {
        return stream<FirewallSettingsResult, KelvarisSDK_GetFirewallSettings>();
    }
    Call<FirewallSettingsResult> setFirewallMode(FirewallMode mode) const {
        return call<FirewallSettingsResult, KelvarisSDK_SetFirewallMode>(mode);
    }
    Call<FirewallSettingsResult> setFirewallDomains(std::vector<std::string> const& domains) const {
        return callWithList<FirewallSettingsResult, KelvarisSDK_SetFirewallDomains>(
            detail::slots<50>(domains));
    }
    Call<FirewallSettingsResult> setFirewallIPv4(std::vector<in_addr> addresses) const {
        return callWithList<FirewallSettingsResult, KelvarisSDK_SetFirewallIPv4>(std::move(addresses));
    }
    Call<FirewallSettingsResult> setFirewallIPv6(std::vector<in6_addr> addresses) const {
        return callWithList<FirewallSettingsResult, KelvarisSDK_SetFirewallIPv6>(std::move(addresses));
    }
    Call<FirewallSettingsResult> setFirewallPorts(std::vector<ProtocolPortPair> const& ports) const {
        return callWithList<FirewallSettingsResult, KelvarisSDK_SetFirewallPorts>(detail::plainPorts(ports));
    }

    StreamCall<LocalProxySettingsResult> getLocalProxySettings() const {
        return stream<LocalProxySettingsResult, KelvarisSDK_GetLocalProxySettings>();
    }
    Call<LocalProxySettingsResult> setLocalProxyEnabled(bool enabled) const {
        return call<LocalProxySettingsResult, KelvarisSDK_SetLocalProxyEnabled>(enabled);
    }
    Call<LocalProxySettingsResult> setLocalProxyDomains(std::vector<std::string> const& domains) const {
        return callWithList<LocalProxySettingsResult, KelvarisSDK_SetLocalProxyDomains>(
            detail::slots<50>(domains));
    }
    Call<LocalProxySettingsResult> setLocalProxyIPv4(std::vector<in_addr> addresses) const {
        return callWithList<LocalProxySettingsResult, KelvarisSDK_SetLocalProxyIPv4>(std::move(addresses));
    }
    Call<LocalProxySettingsResult> setLocalProxyIPv6(std::vector<in6_addr> addresses) const {
        return callWithList<LocalProxySettingsResult, KelvarisSDK_SetLocalProxyIPv6>(std::move(addresses));
    }
    Call<LocalProxySettingsResult> setLocalProxyPorts(std::vector<ProtocolPortPair> const& ports) const {
        return callWithList<LocalProxySettingsResult, KelvarisSDK_SetLocalProxyPorts>(
            detail::plainPorts(ports));
    }
    Call<LocalProxySettingsResult> setLocalProxyDomainWatchlistEnable(std::string title, bool enabled) const {
        return call<LocalProxySettingsResult, KelvarisSDK_SetLocalProxyDomainWatchlistEnable>(
            std::move(title), enabled);
    }

    StreamCall<StreamingSettingsResult> getStreamingSettings() const {
        return stream<StreamingSettingsResult, KelvarisSDK_GetStreamingSettings>();
    }
    Call<StreamingSettingsResult> setStreamingDomains(std::vector<std::string> const& domains) const {
        return callWithList<StreamingSettingsResult, KelvarisSDK_SetStreamingDomains>(
            detail::slots<50>(domains));
    }
    Call<StreamingSettingsResult> setStreamingIPv4(std::vector<in_addr> addresses) const {
        return callWithList<StreamingSettingsResult, KelvarisSDK_SetStreamingIPv4>(std::move(addresses));
    }
    Call<StreamingSettingsResult> setStreamingIPv6(std::vector<in6_addr> addresses) const {
        return callWithList<StreamingSettingsResult, KelvarisSDK_SetStreamingIPv6>(std::move(addresses));
    }
    Call<StreamingSettingsResult> setStreamingPorts(std::vector<ProtocolPortPair> const& ports) const {
        return callWithList<StreamingSettingsResult, KelvarisSDK_SetStreamingPorts>(
            detail::plainPorts(ports));
    }

protected:
    using AdaptersCalls::AdaptersCalls;
};

} // namespace kelvaris

#endif
