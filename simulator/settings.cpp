#include "families.h"
#include "registry.h"

#include <memory>
#include <vector>

namespace kelvarissim {

namespace {

constexpr Json::ArrayIndex maxDnsServers = 3;

// Describes a setting that one request replaces. The request and the report often spell its key differently.
struct PlainSetting {
    char const* request;
    char const* sentKey;
    char const* reportedKey;
    Json::Value initial;
};

std::vector<PlainSetting> plainSettings() {
    return {
        {"set_connection_algorithm", "algorithm", "algorithm", "SP"},
        {"set_connection_transport", "transport_mode", "transport_mode", "auto"},
        {"set_dev_jumbo_packets", "enable", "jumbo_packets", false},
        {"set_packet_aggregation", "enable", "packet_aggregation", true},
        {"set_header_compression", "enable", "header_compress", true},
        {"set_startup_connect", "connect", "startup_connect", false},
        {"set_overflow_threshold", "speed", "connection_secondary_speed_activation", 2.5},
        {"set_connection_enable_default_route", "enabled", "enable_default_route", true},
        {"set_connection_forward_ports", "forward_ports", "forward_ports", Json::Value(Json::arrayValue)},
    };
}

Json::Value initialPrivacySettings() {
    Json::Value settings;
    settings["killswitch"] = false;
    settings["dnsleak"] = true;
    settings["ipleak"] = true;
    settings["dns_addresses"] = Json::Value(Json::arrayValue);
    settings["do_not_store_credentials"] = false;
    return settings;
}

void reportConnection(Daemon& daemon) {
    daemon.broadcast("report_connection_settings", daemon.world().connectionSettings);
}

// A request that names an adapter sets that adapter's encryption. A request without one sets the whole
// tunnel's and ends the adapters' own settings.
void setEncryption(Request const& request) {
    bool const enable = request.payload["enable"].asBool();
    Json::Value& settings = request.daemon.world().connectionSettings;
    if (request.payload.isMember("guid")) {
        settings["perconn_encryption"] = true;
        settings["perconn_encryption_settings"][request.payload["guid"].asString()] = enable;
    } else {
        settings["encrypted"] = enable;
        settings["perconn_encryption"] = false;
        settings["perconn_encryption_settings"].clear();
    }
    reportConnection(request.daemon);
}

void setDnsServers(Json::Value& privacy, Request const& request) {
    Json::Value& addresses = privacy["dns_addresses"];
    addresses = request.payload["dns_addresses"];
    if (addresses.size() > maxDnsServers) {
        addresses.resize(maxDnsServers);
    }
    request.daemon.broadcast("report_privacy_settings", privacy);
}

// The simulated wireless network always has a captive portal, so that every check finds something.
Json::Value captiveNetworks() {
    Json::Value report;
    report["networks"].append("wlan0");
    return report;
}

void setPortalLogin(Request const& request) {
    bool const enable = request.payload["enable"].asBool();
    Json::Value report;
    report["enabled"] = enable;
    report["network"] = enable ? request.payload["network"] : Json::Value("");
    request.daemon.broadcast("report_cplogin_network", report);
}

} // namespace

Json::Value initialConnectionSettings() {
    Json::Value settings;
    for (PlainSetting const& setting : plainSettings()) {
        settings[setting.reportedKey] = setting.initial;
    }
    settings["encrypted"] = true;
    settings["allow_chacha_encryption"] = true;
    settings["connection_priority_overflow_treshold"] = 0.5;
    settings["perconn_encryption"] = false;
    settings["perconn_encryption_settings"] = Json::Value(Json::objectValue);
    settings["parallel_sockets"]["eth0"] = 4;
    settings["parallel_sockets"]["wlan0"] = 2;
    settings["language"] = "en";
    return settings;
}

void registerSettings(Registry& registry) {
    registry.on("request_connection_settings", [](Request const& request) {
        request.answer("report_connection_settings", request.daemon.world().connectionSettings);
    });
    for (PlainSetting const& setting : plainSettings()) {
        registry.on(setting.request, [setting](Request const& request) {
            request.daemon.world().connectionSettings[setting.reportedKey] = request.payload[setting.sentKey];
            reportConnection(request.daemon);
        });
    }
    registry.on("set_encryption_enabled", setEncryption);

    auto privacy = std::make_shared<Json::Value>(initialPrivacySettings());
    registry.on("request_privacy_settings",
                [privacy](Request const& request) { request.answer("report_privacy_settings", *privacy); });
    registry.on("set_dns_servers", [privacy](Request const& request) { setDnsServers(*privacy, request); });

    registry.on("check_captive_networks",
                [](Request const& request) { request.answer("report_captive_networks", captiveNetworks()); });
    registry.on("set_cplogin_enable", setPortalLogin);
}

} // namespace kelvarissim
