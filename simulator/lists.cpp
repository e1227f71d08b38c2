#include "families.h"
#include "registry.h"

#include <memory>
#include <stdexcept>

namespace kelvarissim {

namespace {

// A family whose settings are four lists and a few more keys; the settings are what its report holds.
struct ListFamily {
    ListFamily(const std::string& word, Json::Value otherSettings)
        : requestPrefix("set_" + word + '_'),
          readRequest("request_" + word + "_settings"),
          report("report_" + word + "_settings"),
          settings(std::move(otherSettings)) {
        for (const char* kind : kinds) {
            settings[kind] = Json::Value(Json::arrayValue);
        }
    }

    static constexpr const char* kinds[] = {"domains", "ipv4", "ipv6", "ports"};
    const std::string requestPrefix;
    const std::string readRequest;
    const std::string report;
    Json::Value settings;
};

using SharedFamily = std::shared_ptr<ListFamily>;

void tellEveryone(const ListFamily& family, const Request& request) {
    request.daemon.broadcast(family.report, family.settings);
}

// The client checks neither domains nor addresses, and nor does the daemon.
void setList(ListFamily& family, const std::string& kind, const Request& request) {
    const Json::Value& list = request.payload[kind];
    if (!list.isArray()) {
        throw std::runtime_error("no list of " + kind);
    }
    family.settings[kind] = list;
    tellEveryone(family, request);
}

void switchService(ListFamily& proxy, const Request& request) {
    for (Json::Value& service : proxy.settings["domain_watchlist"]) {
        if (service["title"] == request.payload["title"]) {
            service["enabled"] = request.payload["enabled"].asBool();
        }
    }
    tellEveryone(proxy, request);
}

// The requests that all three have: the read, and one for each list.
SharedFamily registerLists(Registry& registry, const std::string& word, Json::Value otherSettings) {
    auto family = std::make_shared<ListFamily>(word, std::move(otherSettings));
    registry.on(family->readRequest,
                [family](const Request& request) { request.answer(family->report, family->settings); });
    for (const std::string kind : ListFamily::kinds) {
        registry.on(family->requestPrefix + kind,
                    [family, kind](const Request& request) { setList(*family, kind, request); });
    }
    return family;
}

Json::Value service(const std::string& title, bool enabled, const std::string& domain) {
    Json::Value service;
    service["title"] = title;
    service["enabled"] = enabled;
    service["watchedDomains"].append(domain);
    service["watchedDomains"].append("www." + domain);
    service["proxiedDomains"].append("cdn." + domain);
    return service;
}

Json::Value proxySettings() {
    Json::Value settings;
    settings["enabled"] = true;
    settings["matchMode"] = "allowlist";
    settings["domain_watchlist"].append(service("video", true, "video.example"));
    settings["domain_watchlist"].append(service("music", false, "music.example"));
    settings["domain_watchlist"].append(service("sports", false, "sports.example"));
    return settings;
}

void registerFirewall(Registry& registry) {
    Json::Value settings;
    settings["mode"] = "off";
    const SharedFamily firewall = registerLists(registry, "firewall", settings);
    registry.on("set_firewall_mode", [firewall](const Request& request) {
        firewall->settings["mode"] = request.payload["mode"].asString();
        tellEveryone(*firewall, request);
    });
}

void registerLocalProxy(Registry& registry) {
    const SharedFamily proxy = registerLists(registry, "localproxy", proxySettings());
    registry.on("set_localproxy_enabled", [proxy](const Request& request) {
        proxy->settings["enabled"] = request.payload["enabled"].asBool();
        tellEveryone(*proxy, request);
    });
    registry.on("set_localproxy_domainwatchlist_enable",
                [proxy](const Request& request) { switchService(*proxy, request); });
    registry.alsoLockedBy("set_localproxy_ports", "set_firewall_ports");
}

} // namespace

void registerTrafficLists(Registry& registry) {
    registerFirewall(registry);
    registerLocalProxy(registry);
    registerLists(registry, "streaming", Json::Value());
}

} // namespace kelvarissim
