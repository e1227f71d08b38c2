#include "families.h"
#include "registry.h"

#include <memory>
#include <stdexcept>

namespace kelvarissim {

namespace {

// Describes a family whose settings are four lists and a few more keys. `settings` is the payload of its
// report.
struct ListFamily {
    ListFamily(std::string const& word, Json::Value otherSettings)
        : requestPrefix("set_" + word + '_'),
          queryRequest("request_" + word + "_settings"),
          report("report_" + word + "_settings"),
          settings(std::move(otherSettings)) {
        for (char const* kind : kinds) {
            settings[kind] = Json::Value(Json::arrayValue);
        }
    }

    static constexpr char const* kinds[] = {"domains", "ipv4", "ipv6", "ports"};
    std::string const requestPrefix;
    std::string const queryRequest;
    std::string const report;
    Json::Value settings;
};

using SharedFamily = std::shared_ptr<ListFamily>;

void broadcastSettings(ListFamily const& family, Request const& request) {
    request.daemon.broadcast(family.report, family.settings);
}

// The items are stored unchecked, because the client library checks neither domains nor addresses.
void setList(ListFamily& family, std::string const& kind, Request const& request) {
    Json::Value const& list = request.payload[kind];
    if (!list.isArray()) {
        throw std::runtime_error("no list of " + kind);
    }
    family.settings[kind] = list;
    broadcastSettings(family, request);
}

void switchService(ListFamily& proxy, Request const& request) {
    for (Json::Value& service : proxy.settings["domain_watchlist"]) {
        if (service["title"] == request.payload["title"]) {
            service["enabled"] = request.payload["enabled"].asBool();
        }
    }
    broadcastSettings(proxy, request);
}

// Registers the requests that all three families have: the query, and one request for each list.
SharedFamily registerLists(Registry& registry, std::string const& word, Json::Value otherSettings) {
    auto family = std::make_shared<ListFamily>(word, std::move(otherSettings));
    registry.on(family->queryRequest,
                [family](Request const& request) { request.answer(family->report, family->settings); });
    for (std::string const kind : ListFamily::kinds) {
        registry.on(family->requestPrefix + kind,
                    [family, kind](Request const& request) { setList(*family, kind, request); });
    }
    return family;
}

Json::Value service(std::string const& title, bool enabled, std::string const& domain) {
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
    SharedFamily const firewall = registerLists(registry, "firewall", settings);
    registry.on("set_firewall_mode", [firewall](Request const& request) {
        firewall->settings["mode"] = request.payload["mode"].asString();
        broadcastSettings(*firewall, request);
    });
}

void registerLocalProxy(Registry& registry) {
    SharedFamily const proxy = registerLists(registry, "localproxy", proxySettings());
    registry.on("set_localproxy_enabled", [proxy](Request const& request) {
        proxy->settings["enabled"] = request.payload["enabled"].asBool();
        broadcastSettings(*proxy, request);
    });
    registry.on("set_localproxy_domainwatchlist_enable",
                [proxy](Request const& request) { switchService(*proxy, request); });
    registry.alsoLockedBy("set_localproxy_ports", "set_firewall_ports");
}

} // namespace

void registerTrafficLists(Registry& registry) {
    registerFirewall(registry);
    registerLocalProxy(registry);
    registerLists(registry, "streaming", Json::Value());
}

} // namespace kelvarissim
