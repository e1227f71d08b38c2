#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr char connectionReport[] = "report_connection_settings";
constexpr char privacyReport[] = "report_privacy_settings";

constexpr std::size_t maxForwardedPorts = std::size(KelvarisSDK_SettingsResult{}.forwardedPorts);
constexpr std::size_t maxDnsServers = std::size(KelvarisSDK_PrivacySettingsResult{}.dnsAddresses);

// Fills slots with the members of an object whose names are ids of adapters.
template <class Slot, std::size_t N, class Fill>
void fillByAdapter(uint16_t& count, Slot (&slots)[N], Json::Value const& object, Fill fill) {
    std::vector<std::string> const names = object.getMemberNames();
    std::size_t const used = std::min(names.size(), N);
    for (std::size_t i = 0; i < used; ++i) {
        setText(slots[i].adapterID, names[i]);
        fill(slots[i], object[names[i]]);
    }
    count = static_cast<uint16_t>(used);
}

void setEncryption(KelvarisSDK_ConnectionEncryption& slot, Json::Value const& encrypted) {
    slot.encrypted = encrypted.asBool();
}

void setSockets(KelvarisSDK_ConnectionParallelSockets& slot, Json::Value const& sockets) {
    slot.sockets = static_cast<uint16_t>(sockets.asUInt());
}

void setConnectionSettings(KelvarisSDK_SettingsResult& result, Json::Value const& settings) {
    result.jumboPackets = settings[Keys::_jumbo_packets].asBool();
    result.encrypted = settings[Keys::_encrypted].asBool();
    result.allowChaChaEncryption = settings[Keys::_allow_chacha_encryption].asBool();
    result.bondingMode = bondingModeFrom(settings[Keys::_algorithm]);
    result.startupConnect = settings[Keys::_startup_connect].asBool();
    result.transportMode = enumFrom(settings[Keys::_transport_mode], KelvarisSDK_TransportMode_TCP_MULTI,
                                    KelvarisSDK_TransportMode_toString)
                               .value_or(KelvarisSDK_TransportMode_AUTO);
    fillSlots(result.forwardedPortCount, result.forwardedPorts, settings[Keys::_forward_ports], setPortPair);
    result.perConnectionEncryptionEnabled = settings[Keys::_perconn_encryption].asBool();
    // The adapters' own encryption is read only where the report enables it, their sockets always.
    fillByAdapter(result.perConnectionEncryptionCount, result.perConnectionEncryptionSettings,
                  result.perConnectionEncryptionEnabled ? settings[Keys::_perconn_encryption_settings]
                                                        : Json::Value::nullSingleton(),
                  setEncryption);
    fillByAdapter(result.perConnectionParallelSocketsCount, result.perConnectionParallelSockets,
                  settings[Keys::_perconn_parallel_sockets_settings], setSockets);
    result.overflowThreshold = settings[Keys::_connection_overflow_threshold].asDouble();
    result.priorityOverflowThreshold = settings[Keys::_connection_priority_overflow_threshold].asDouble();
    result.packetAggregation = settings[Keys::_packet_aggregation].asBool();
    result.enableDefaultRoute = settings[Keys::_enable_default_route].asBool();
    result.headerCompression = settings[Keys::_header_compression].asBool();
    copyText(result.language, settings[Keys::_language]);
}

void setPrivacySettings(KelvarisSDK_PrivacySettingsResult& result, Json::Value const& settings) {
    result.killswitch = settings[Keys::_killswitch].asBool();
    result.dnsleak = settings[Keys::_dnsleak].asBool();
    result.ipleak = settings[Keys::_ipleak].asBool();
    fillTexts(result.dnsAddressCount, result.dnsAddresses, settings[Keys::_dns_addresses]);
    result.doNotStoreCredentials = settings[Keys::_do_not_store_credentials].asBool();
}

void setCaptiveNetworksResult(KelvarisSDK_CaptivePortalCheckResult& result, Json::Value const& payload) {
    // Only a list counts; fillTexts() would take the members of an object as well.
    Json::Value const& networks = payload[Keys::_networks];
    fillTexts(result.networkCount, result.networks,
              networks.isArray() ? networks : Json::Value::nullSingleton());
}

void setCaptiveLoginResult(KelvarisSDK_CaptivePortalLoginResult& result, Json::Value const& payload) {
    result.enabled = payload[Keys::_enabled].asBool();
    copyText(result.adapterID, payload[Keys::_network]);
}

} // namespace

// Connection settings

KelvarisSDK_SettingsResult KelvarisSDK::getSettings(KelvarisSDK_SettingsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_connection_settings", connectionReport),
                                 setConnectionSettings);
}

KelvarisSDK_SettingsResult KelvarisSDK::setMode(KelvarisSDK_BondingMode mode,
                                                KelvarisSDK_SettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_connection_algorithm", with(Keys::_algorithm, bondingModeWord(mode)), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult KelvarisSDK::setConnectionTransportMode(KelvarisSDK_TransportMode mode,
                                                                   KelvarisSDK_SettingsCallback callback,
                                                                   void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_connection_transport",
               with(Keys::_transport_mode, KelvarisSDK_TransportMode_toString(mode)), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult KelvarisSDK::setTunnelEncrypted(bool enable, KelvarisSDK_SettingsCallback callback,
                                                           void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_encryption_enabled", with(Keys::_enable, enable), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult KelvarisSDK::setJumboPackets(bool enable, KelvarisSDK_SettingsCallback callback,
                                                        void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_dev_jumbo_packets", with(Keys::_enable, enable), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult
KelvarisSDK::setPacketAggregation(bool enable, KelvarisSDK_SettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_packet_aggregation", with(Keys::_enable, enable), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult
KelvarisSDK::setHeaderCompression(bool enable, KelvarisSDK_SettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_header_compression", with(Keys::_enable, enable), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult KelvarisSDK::setStartupConnect(bool connect, KelvarisSDK_SettingsCallback callback,
                                                          void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_startup_connect", with(Keys::_connect, connect), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult
KelvarisSDK::setOverflowThreshold(double speed, KelvarisSDK_SettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_overflow_threshold", with(Keys::_speed, speed), connectionReport), setConnectionSettings);
}

KelvarisSDK_SettingsResult
KelvarisSDK::setEnableDefaultRoute(bool enable, KelvarisSDK_SettingsCallback callback, void* userData) {
    // This request calls the key "enabled", where its neighbours say "enable".
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_connection_enable_default_route", with(Keys::_enabled, enable), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult KelvarisSDK::setForwardPorts(unsigned short count,
                                                        KelvarisSDK_ProtocolPortPair* ports,
                                                        KelvarisSDK_SettingsCallback callback,
                                                        void* userData) {
    Json::Value const pairs = portPairs(ports, std::min<std::size_t>(count, maxForwardedPorts));
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_connection_forward_ports", with(Keys::_forward_ports, pairs), connectionReport),
        setConnectionSettings);
}

KelvarisSDK_SettingsResult KelvarisSDK::setConnectionEncryption(char const* adapterID, bool enable,
                                                                KelvarisSDK_SettingsCallback callback,
                                                                void* userData) {
    // This is the tunnel's request too; the id makes it one for the adapter.
    Json::Value payload = with(Keys::_guid, adapterID);
    payload[Keys::_enable] = enable;
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    change("set_encryption_enabled", payload, connectionReport),
                                    setConnectionSettings);
}

// Privacy and DNS

KelvarisSDK_PrivacySettingsResult
KelvarisSDK::getPrivacySettings(KelvarisSDK_PrivacySettingsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_privacy_settings", privacyReport), setPrivacySettings);
}

KelvarisSDK_PrivacySettingsResult KelvarisSDK::setDNSServers(unsigned short count, char (*addresses)[46],
                                                             KelvarisSDK_PrivacySettingsCallback callback,
                                                             void* userData) {
    Json::Value list(Json::arrayValue);
    for (std::size_t i = 0; i < std::min<std::size_t>(count, maxDnsServers); ++i) {
        list.append(textIn(addresses[i]));
    }
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_dns_servers", with(Keys::_dns_addresses, list), privacyReport), setPrivacySettings);
}

// Captive portals

KelvarisSDK_CaptivePortalCheckResult
KelvarisSDK::checkForCaptivePortals(KelvarisSDK_CaptivePortalCheckCallback callback, void* userData) {
    // This check is given more time than the other calls.
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    {.requests = {{"check_captive_networks"}},
                                     .awaited = {{"report_captive_networks"}},
                                     .timeoutMs = 30000},
                                    setCaptiveNetworksResult);
}

KelvarisSDK_CaptivePortalLoginResult
KelvarisSDK::setCaptivePortalLoginMode(bool enable, char const* adapterID,
                                       KelvarisSDK_CaptivePortalLoginCallback callback, void* userData) {
    // This refusal comes even before that of a missing link.
    if (enable && adapterID == nullptr) {
        return refused<KelvarisSDK_CaptivePortalLoginResult>(invalidArgument);
    }
    Json::Value payload = with(Keys::_enable, enable);
    if (adapterID != nullptr) {
        payload[Keys::_network] = adapterID;
    }
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    command("set_cplogin_enable", payload, "report_cplogin_network"),
                                    setCaptiveLoginResult);
}

} // namespace kelvarissdk
