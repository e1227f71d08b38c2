#include "families.h"
#include "registry.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <set>

namespace kelvarissim {

namespace {

constexpr Json::Int64 bytesPerReport = 4096;
constexpr Json::Int64 mostBoost = 1'000'000'000'000;
constexpr int priorityNever = 100;

enum ConnectionState { disconnected, connecting, connected };

// The adapters as they are reported; a limit that isn't there has no key.
struct Adapters {
    std::array<Json::Value, 4> list;
    std::set<ClientId> listeners;
    bool isReporting = false;
};

Json::Value adapter(const std::string& id, const std::string& name, const std::string& type,
                    ConnectionState state) {
    Json::Value value;
    value["guid"] = id;
    value["name"] = name;
    value["description"] = name + " adapter";
    value["type"] = type;
    value["connectionState"] = state;
    value["priority"] = 0;
    value["limits"]["usage"] = 0;
    value["limits"]["usageDaily"] = 0;
    value["limits"]["resetDay"] = 0;
    value["limits"]["boostDaily"] = 0;
    return value;
}

Json::Value ethernet(const std::string& id) {
    Json::Value value = adapter(id, "Wired", "Ethernet", connected);
    value["limits"]["usage"] = 7'340'032'000;
    value["limits"]["usageDaily"] = 52'428'800;
    return value;
}

Json::Value wifi(const std::string& id) {
    Json::Value value = adapter(id, "Wireless", "Wi-Fi", connected);
    value["ssid"] = "Harbour Cafe";
    value["bssid"] = "02:00:5e:10:20:30";
    value["rateLimit"] = 20'000'000;
    return value;
}

Json::Value cellular(const std::string& id) {
    Json::Value value = adapter(id, "Mobile", "Cellular", connecting);
    value["priority"] = 2;
    value["limits"]["usage"] = 1'288'490'188;
    value["limits"]["max"] = 5'000'000'000;
    value["limits"]["resetDay"] = 15;
    value["limits"]["maxDaily"] = 500'000'000;
    value["limits"]["overlimitRate"] = 128'000;
    return value;
}

// Just plugged in: the daemon knows nothing of it but what it is.
Json::Value nameless(const std::string& id) {
    Json::Value value;
    value["guid"] = id;
    value["type"] = "Modem";
    value["connectionState"] = disconnected;
    return value;
}

// What is in use has carried a little more with every report.
Json::Value networksReport(Adapters& adapters) {
    Json::Value report(Json::arrayValue);
    for (Json::Value& each : adapters.list) {
        if (each["connectionState"] == connected && each["priority"] != priorityNever) {
            for (const char* usage : {"usage", "usageDaily"}) {
                each["limits"][usage] = each["limits"][usage].asInt64() + bytesPerReport;
            }
        }
        report.append(each);
    }
    return report;
}

bool reportToListeners(Adapters& adapters, Daemon& daemon) {
    if (!adapters.listeners.empty()) {
        const Json::Value report = networksReport(adapters);
        for (ClientId client : adapters.listeners) {
            daemon.send(client, "report_networks", report);
        }
    }
    return adapters.isReporting = !adapters.listeners.empty();
}

// Who has asked once hears of the usage from then on.
void requestNetworks(const std::shared_ptr<Adapters>& adapters, const Request& request) {
    Daemon& daemon = request.daemon;
    request.answer("report_networks", networksReport(*adapters));
    adapters->listeners.insert(request.client);
    if (!adapters->isReporting) {
        adapters->isReporting = true;
        daemon.every(daemon.interval(), [adapters, &daemon] { return reportToListeners(*adapters, daemon); });
    }
}

using Change = void (*)(Json::Value& adapter, const Json::Value& payload);

// Nothing happens, and nothing is reported, when no adapter has that id.
void changeAdapter(Adapters& adapters, const Request& request, const char* idKey, Change change) {
    const Json::Value& id = request.payload[idKey];
    const auto found = std::find_if(adapters.list.begin(), adapters.list.end(),
                                    [&](const Json::Value& each) { return each["guid"] == id; });
    if (found == adapters.list.end()) {
        request.daemon.log("no such adapter");
        return;
    }
    change(*found, request.payload);
    request.daemon.broadcast("report_networks", networksReport(adapters));
}

// 0 and less lift a limit.
void setLimit(Json::Value& object, const char* key, Json::Int64 limit) {
    if (limit > 0) {
        object[key] = limit;
    } else {
        object.removeMember(key);
    }
}

void setPriority(Json::Value& adapter, const Json::Value& payload) {
    adapter["priority"] = payload["priority"].asInt();
}

void setRateLimit(Json::Value& adapter, const Json::Value& payload) {
    // The report has 32 bits for it.
    const Json::Int64 most = std::numeric_limits<int>::max();
    setLimit(adapter, "rateLimit", std::min(payload["bps"].asInt64(), most));
}

void setMonthlyLimit(Json::Value& adapter, const Json::Value& payload) {
    setLimit(adapter["limits"], "max", payload["max"].asInt64());
    adapter["limits"]["resetDay"] = payload["resetDay"].asInt64();
}

void setDailyLimit(Json::Value& adapter, const Json::Value& payload) {
    setLimit(adapter["limits"], "maxDaily", payload["max"].asInt64());
}

void addDailyBoost(Json::Value& adapter, const Json::Value& payload) {
    Json::Value& boost = adapter["limits"]["boostDaily"];
    const Json::Int64 more = std::clamp<Json::Int64>(payload["value"].asInt64(), 0, mostBoost);
    boost = std::min(boost.asInt64() + more, mostBoost);
}

void setOverlimitRate(Json::Value& adapter, const Json::Value& payload) {
    adapter["limits"]["overlimitRate"] = std::max<Json::Int64>(payload["bps"].asInt64(), 0);
}

void resetUsage(Json::Value& adapter, const Json::Value&) {
    adapter["limits"]["usage"] = 0;
    adapter["limits"]["usageDaily"] = 0;
}

} // namespace

void registerAdapters(Registry& registry) {
    auto adapters = std::make_shared<Adapters>();
    adapters->list = {ethernet("eth0"), wifi("wlan0"), cellular("wwan0"), nameless("usb0")};
    registry.on("request_networks",
                [adapters](const Request& request) { requestNetworks(adapters, request); });
    registry.onClientGone([adapters](Daemon&, ClientId client) { adapters->listeners.erase(client); });

    const auto onChange = [&](const char* name, Change change, const char* idKey = "network") {
        registry.on(name, [adapters, idKey, change](const Request& request) {
            changeAdapter(*adapters, request, idKey, change);
        });
    };
    onChange("set_network_priority", setPriority);
    onChange("set_network_ratelimit", setRateLimit);
    onChange("set_network_limit", setMonthlyLimit);
    onChange("set_network_daily_limit", setDailyLimit);
    onChange("add_net_daily_limit_boost", addDailyBoost);
    onChange("set_network_overlimit_rate", setOverlimitRate);
    onChange("reset_network_usage", resetUsage, "guid");
}

} // namespace kelvarissim
