#include "daystatistics.h"
#include "families.h"
#include "registry.h"

#include <algorithm>
#include <limits>

namespace kelvarissim {

namespace {

constexpr Json::Int64 bytesPerReport = 4096;
constexpr Json::Int64 maxBoost = 1'000'000'000'000;
constexpr int priorityNever = 100;

enum ConnectionState { disconnected, connecting, connected };

Json::Value adapter(std::string const& id, std::string const& name, std::string const& type,
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

Json::Value ethernet(std::string const& id) {
    Json::Value value = adapter(id, "Wired", "Ethernet", connected);
    value["limits"]["usage"] = 7'340'032'000;
    value["limits"]["usageDaily"] = 52'428'800;
    return value;
}

Json::Value wifi(std::string const& id) {
    Json::Value value = adapter(id, "Wireless", "Wi-Fi", connected);
    value["ssid"] = "Harbour Cafe";
    value["bssid"] = "02:00:5e:10:20:30";
    value["rateLimit"] = 20'000'000;
    return value;
}

Json::Value cellular(std::string const& id) {
    Json::Value value = adapter(id, "Mobile", "Cellular", connecting);
    value["priority"] = 2;
    value["limits"]["usage"] = 1'288'490'188;
    value["limits"]["max"] = 5'000'000'000;
    value["limits"]["resetDay"] = 15;
    value["limits"]["maxDaily"] = 500'000'000;
    value["limits"]["overlimitRate"] = 128'000;
    return value;
}

// This adapter's report lacks every optional key, so that clients meet their defaults.
Json::Value unnamed(std::string const& id) {
    Json::Value value;
    value["guid"] = id;
    value["type"] = "Modem";
    value["connectionState"] = disconnected;
    return value;
}

using Change = void (*)(Json::Value& adapter, Json::Value const& payload);

// A request with an unknown id changes nothing and gets no report, so its client runs into the time-out.
void changeAdapter(Request const& request, char const* idKey, Change change) {
    World& world = request.daemon.world();
    Json::Value const& id = request.payload[idKey];
    for (Json::Value& each : world.adapters) {
        if (each["guid"] == id) {
            change(each, request.payload);
            request.daemon.broadcast("report_networks", networksReport(world));
            return;
        }
    }
    request.daemon.log("no such adapter");
}

// A limit of 0 or less removes the key, because a report without the key means that there is no limit.
void setLimit(Json::Value& object, char const* key, Json::Int64 limit) {
    if (limit > 0) {
        object[key] = limit;
    } else {
        object.removeMember(key);
    }
}

void setPriority(Json::Value& adapter, Json::Value const& payload) {
    adapter["priority"] = payload["priority"].asInt();
}

void setRateLimit(Json::Value& adapter, Json::Value const& payload) {
    // Clients read this field with 32 bits, so a larger limit would make the whole report unreadable.
    Json::Int64 const max = std::numeric_limits<int>::max();
    setLimit(adapter, "rateLimit", std::min(payload["bps"].asInt64(), max));
}

void setMonthlyLimit(Json::Value& adapter, Json::Value const& payload) {
    setLimit(adapter["limits"], "max", payload["max"].asInt64());
    adapter["limits"]["resetDay"] = payload["resetDay"].asInt64();
}

void setDailyLimit(Json::Value& adapter, Json::Value const& payload) {
    setLimit(adapter["limits"], "maxDaily", payload["max"].asInt64());
}

void addDailyBoost(Json::Value& adapter, Json::Value const& payload) {
    Json::Value& boost = adapter["limits"]["boostDaily"];
    Json::Int64 const more = std::clamp<Json::Int64>(payload["value"].asInt64(), 0, maxBoost);
    boost = std::min(boost.asInt64() + more, maxBoost);
}

void setOverlimitRate(Json::Value& adapter, Json::Value const& payload) {
    adapter["limits"]["overlimitRate"] = std::max<Json::Int64>(payload["bps"].asInt64(), 0);
}

void resetUsage(Json::Value& adapter, Json::Value const&) {
    adapter["limits"]["usage"] = 0;
    adapter["limits"]["usageDaily"] = 0;
}

} // namespace

std::vector<Json::Value> initialAdapters() {
    return {ethernet("eth0"), wifi("wlan0"), cellular("wwan0"), unnamed("usb0")};
}

// Without --traffic, each report adds some traffic to the adapters in use, so that their usage grows visibly.
Json::Value networksReport(World& world) {
    Json::Value report(Json::arrayValue);
    for (Json::Value& each : world.adapters) {
        if (!world.trafficSeed && each["connectionState"] == connected && each["priority"] != priorityNever) {
            for (char const* usage : {"usage", "usageDaily"}) {
                each["limits"][usage] = each["limits"][usage].asInt64() + bytesPerReport;
            }
        }
        report.append(each);
    }
    return report;
}

void registerAdapters(Registry& registry) {
    registry.onStart([](Daemon& daemon) {
        if (daemon.world().trafficSeed) {
            daemon.world().adapters = dayAdapters();
        }
    });
    registry.on("request_networks", [](Request const& request) {
        request.answer("report_networks", networksReport(request.daemon.world()));
    });
    auto const onChange = [&](char const* name, Change change, char const* idKey = "network") {
        registry.on(name, [idKey, change](Request const& request) { changeAdapter(request, idKey, change); });
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
