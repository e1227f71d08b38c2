#include "families.h"
#include "registry.h"

#include <memory>
#include <vector>

namespace kelvarissim {

namespace {

constexpr Json::ArrayIndex maxDnsServers = 3;

// Holds the settings in the form in which they are reported.
struct Tunnel {
    Json::Value connection;
    Json::Value privacy;
};

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

// Returns the settings that no plain request replaces; registerSettings() adds the plain ones.
Json::Value initialConnectionSettings() {
    Json::Value settings;
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

Json::Value initialPrivacySettings() {
    Json::Value settings;
    settings["killswitch"] = false;
    settings["dnsleak"] = true;
    settings["ipleak"] = true;
    settings["dns_addresses"] = Json::Value(Json::arrayValue);
    settings["do_not_store_credentials"] = false;
    return settings;
}

void reportConnection(Tunnel const& tunnel, Daemon& daemon) {
    daemon.broadcast("report_connection_settings", tunnel.connection);
}

// A request that names an adapter sets that adapter's encryption. A request without one sets the whole
// tunnel's and ends the adapters' own settings.
void setEncryption(Tunnel& tunnel, Request const& request) {
    bool const enable = request.payload["enable"].asBool();
    Json::Value& settings = tunnel.connection;
    if (request.payload.isMember("guid")) {
        settings["perconn_encryption"] = true;
        settings["perconn_encryption_settings"][request.payload["guid"].asString()] = enable;
    } else {
        settings["encrypted"] = enable;
        settings["perconn_encryption"] = false;
        settings["perconn_encryption_settings"].clear();
    }
    reportConnection(tunnel, request.daemon);
}

void setDnsServers(Tunnel& tunnel, Request const& request) {
    Json::Value& addresses = tunnel.privacy["dns_addresses"];
    addresses = request.payload["dns_addresses"];
    if (addresses.size() > maxDnsServers) {
        addresses.resize(maxDnsServers);
    }
    request.daemon.broadcast("report_privacy_settings", tunnel.privacy);
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

void registerSettings(Registry& registry) {
    auto tunnel = std::make_shared<Tunnel>();
    tunnel->connection = initialConnectionSettings();
    tunnel->privacy = initialPrivacySettings();

    registry.on("request_connection_settings", [tunnel](Request const& request) {
        request.answer("report_connection_settings", tunnel->connection);
    });
    for (PlainSetting const& setting : plainSettings()) {
        tunnel->connection[setting.reportedKey] = setting.initial;
        registry.on(setting.request, [tunnel, setting](Request const& request) {
            tunnel->connection[setting.reportedKey] = request.payload[setting.sentKey];
            reportConnection(*tunnel, request.daemon);
        });
    }
    registry.on("set_encryption_enabled",
                [tunnel](Request const& request) { setEncryption(*tunnel, request); });

    registry.on("request_privacy_settings", [tunnel](Request const& request) {
        request.answer("report_privacy_settings", tunnel->privacy);
    });
    registry.on("set_dns_servers", [tunnel](Request const& request) { setDnsServers(*tunnel, request); });

    registry.on("check_captive_networks",
                [](Request const& request) { request.answer("report_captive_networks", captiveNetworks()); });
    registry.on("set_cplogin_enable", setPortalLogin);
}

} // namespace kelvarissim
