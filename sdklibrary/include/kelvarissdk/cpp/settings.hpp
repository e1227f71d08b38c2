/*
 * How the daemon's tunnel is set up: connection settings, privacy and DNS, captive portals.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_SETTINGS_HPP
#define KELVARISSDK_CPP_SETTINGS_HPP

#include <kelvarissdk/cpp/session.hpp>

namespace kelvaris {

/** Whether an adapter's part of the tunnel is encrypted. */
struct ConnectionEncryption {
    std::string adapterID;
    bool encrypted = false;

    static ConnectionEncryption from(KelvarisSDK_ConnectionEncryption const& record) {
        return {detail::text(record.adapterID), record.encrypted};
    }
};

/** How many sockets an adapter's part of the tunnel uses. */
struct ConnectionParallelSockets {
    std::string adapterID;
    std::uint16_t sockets = 0;

    static ConnectionParallelSockets from(KelvarisSDK_ConnectionParallelSockets const& record) {
        return {detail::text(record.adapterID), record.sockets};
    }
};

/** The connection settings. */
struct SettingsResult {
    using Record = KelvarisSDK_SettingsResult;
    bool jumboPackets = false;
    bool encrypted = false;
    bool allowChaChaEncryption = false;
    BondingMode bondingMode = BondingMode::SPEED;
    bool startupConnect = false;
    TransportMode transportMode = TransportMode::AUTO;
    std::vector<ProtocolPortPair> forwardedPorts;
    bool perConnectionEncryptionEnabled = false;
    std::vector<ConnectionEncryption> perConnectionEncryptionSettings;
    std::vector<ConnectionParallelSockets> perConnectionParallelSockets;
    double overflowThreshold = 0; /**< Mbps */
    double priorityOverflowThreshold = 0;
    bool packetAggregation = false;
    bool enableDefaultRoute = false;
    bool headerCompression = false;
    std::string language;

    static SettingsResult from(Record const& record) {
        SettingsResult value;
        value.jumboPackets = record.jumboPackets;
        value.encrypted = record.encrypted;
        value.allowChaChaEncryption = record.allowChaChaEncryption;
        value.bondingMode = detail::known(record.bondingMode, BondingMode::STREAMING);
        value.startupConnect = record.startupConnect;
        value.transportMode = detail::known(record.transportMode, TransportMode::TCP_MULTI);
        value.forwardedPorts =
            detail::values<ProtocolPortPair>(record.forwardedPorts, record.forwardedPortCount);
        value.perConnectionEncryptionEnabled = record.perConnectionEncryptionEnabled;
        value.perConnectionEncryptionSettings = detail::values<ConnectionEncryption>(
            record.perConnectionEncryptionSettings, record.perConnectionEncryptionCount);
        value.perConnectionParallelSockets = detail::values<ConnectionParallelSockets>(
            record.perConnectionParallelSockets, record.perConnectionParallelSocketsCount);
        value.overflowThreshold = record.overflowThreshold;
        value.priorityOverflowThreshold = record.priorityOverflowThreshold;
        value.packetAggregation = record.packetAggregation;
        value.enableDefaultRoute = record.enableDefaultRoute;
        value.headerCompression = record.headerCompression;
        value.language = detail::text(record.language);
        return value;
    }
};

/** The privacy settings. */
struct PrivacySettingsResult {
    using Record = KelvarisSDK_PrivacySettingsResult;
    bool killswitch = false;
    bool dnsleak = false;
    bool ipleak = false;
    std::vector<std::string> dnsAddresses;
    bool doNotStoreCredentials = false;

    static PrivacySettingsResult from(Record const& record) {
        return {record.killswitch, record.dnsleak, record.ipleak,
                detail::texts(record.dnsAddresses, record.dnsAddressCount), record.doNotStoreCredentials};
    }
};

/** The networks behind a captive portal. */
struct CaptivePortalCheckResult {
    using Record = KelvarisSDK_CaptivePortalCheckResult;
    std::vector<std::string> networks;

    static CaptivePortalCheckResult from(Record const& record) {
        return {detail::texts(record.networks, record.networkCount)};
    }
};

/** The adapter that is left out of the tunnel for a portal's login. */
struct CaptivePortalLoginResult {
    using Record = KelvarisSDK_CaptivePortalLoginResult;
    bool enabled = false;
    std::string adapterID;

    static CaptivePortalLoginResult from(Record const& record) {
        return {record.enabled, detail::text(record.adapterID)};
    }
};

/** The family's calls. */
class SettingsCalls : public SessionCalls {
public:
    StreamCall<SettingsResult> getSettings() const {
        return stream<SettingsResult, KelvarisSDK_GetSettings>();
    }
    Call<SettingsResult> setMode(BondingMode mode) const {
        return call<SettingsResult, KelvarisSDK_SetMode>(mode);
    }
    Call<SettingsResult> setConnectionTransportMode(TransportMode mode) const {
        return call<SettingsResult, KelvarisSDK_SetConnectionTransportMode>(mode);
    }
    Call<SettingsResult> setTunnelEncrypted(bool enable) const {
        return call<SettingsResult, KelvarisSDK_SetTunnelEncrypted>(enable);
    }
    Call<SettingsResult> setJumboPackets(bool enable) const {
        return call<SettingsResult, KelvarisSDK_SetJumboPackets>(enable);
    }
    Call<SettingsResult> setPacketAggregation(bool enable) const {
        return call<SettingsResult, KelvarisSDK_SetPacketAggregation>(enable);
    }
    Call<SettingsResult> setHeaderCompression(bool enable) const {
        return call<SettingsResult, KelvarisSDK_SetHeaderCompression>(enable);
    }
    Call<SettingsResult> setStartupConnect(bool connect) const {
        return call<SettingsResult, KelvarisSDK_SetStartupConnect>(connect);
    }
    Call<SettingsResult> setOverflowThreshold(double speed) const {
        return call<SettingsResult, KelvarisSDK_SetOverflowThreshold>(speed);
    }
    Call<SettingsResult> setEnableDefaultRoute(bool enable) const {
        return call<SettingsResult, KelvarisSDK_SetEnableDefaultRoute>(enable);
    }
    Call<SettingsResult> setForwardPorts(std::vector<ProtocolPortPair> const& ports) const {
        return callWithList<SettingsResult, KelvarisSDK_SetForwardPorts>(detail::plainPorts(ports));
    }
    Call<SettingsResult> setConnectionEncryption(std::string adapterID, bool enable) const {
        return call<SettingsResult, KelvarisSDK_SetConnectionEncryption>(std::move(adapterID), enable);
    }

    StreamCall<PrivacySettingsResult> getPrivacySettings() const {
        return stream<PrivacySettingsResult, KelvarisSDK_GetPrivacySettings>();
    }
    Call<PrivacySettingsResult> setDNSServers(std::vector<std::string> const& addresses) const {
        return callWithList<PrivacySettingsResult, KelvarisSDK_SetDNSServers>(detail::slots<46>(addresses));
    }

    Call<CaptivePortalCheckResult> checkForCaptivePortals() const {
        return call<CaptivePortalCheckResult, KelvarisSDK_CheckForCaptivePortals>();
    }
    Call<CaptivePortalLoginResult> setCaptivePortalLoginMode(bool enable,
                                                             std::optional<std::string> adapterID) const {
        return call<CaptivePortalLoginResult, KelvarisSDK_SetCaptivePortalLoginMode>(enable,
                                                                                     std::move(adapterID));
    }

protected:
    using SessionCalls::SessionCalls;
};

} // namespace kelvaris

#endif
