#include <string>

#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr char report[] = "report_networks";
constexpr int neverOnTheWire = 100; // the other priorities have the same number in the record

KelvarisSDK_ConnectionState connectionStateFrom(Json::Value const& number) {
    switch (number.asInt()) {
    case 1:
        return KelvarisSDK_ConnectionState_CONNECTING;
    case 2:
        return KelvarisSDK_ConnectionState_CONNECTED;
    default:
        return KelvarisSDK_ConnectionState_DISCONNECTED;
    }
}

KelvarisSDK_ConnectionPriority priorityFrom(Json::Value const& number) {
    switch (number.asInt()) {
    case 1:
        return KelvarisSDK_ConnectionPriority_SECONDARY;
    case 2:
        return KelvarisSDK_ConnectionPriority_BACKUP;
    case neverOnTheWire:
        return KelvarisSDK_ConnectionPriority_NEVER;
    default:
        return KelvarisSDK_ConnectionPriority_ALWAYS;
    }
}

// A text without a number counts as a network of an unknown kind.
KelvarisSDK_NetworkType stringToNetworkType(Json::Value const& text) {
    return enumFrom(text, KelvarisSDK_NetworkType_UNKNOWN, KelvarisSDK_NetworkType_toString)
        .value_or(KelvarisSDK_NetworkType_UNKNOWN);
}

void setDataUsage(KelvarisSDK_AdapterUsageData& usage, Json::Value const& limits) {
    usage.usage = limits.get(Keys::_usage, 0).asInt64();
    usage.usageDaily = limits.get(Keys::_usageDaily, 0).asInt64();
    usage.max = limits.get(Keys::_max, -1).asInt64();
    usage.resetDay = limits.get(Keys::_resetDay, 0).asInt64();
    usage.maxDaily = limits.get(Keys::_maxDaily, -1).asInt64();
    usage.boostDaily = limits.get(Keys::_boostDaily, 0).asInt64();
    usage.overlimitRate = limits.get(Keys::_overlimitRate, -1).asInt64();
}

void setAdapterData(KelvarisSDK_AdapterData& data, Json::Value const& adapter) {
    copyText(data.adapterID, adapter[Keys::_guid]);
    copyText(data.name, adapter[Keys::_name]);
    copyText(data.description, adapter[Keys::_description]);
    data.state = connectionStateFrom(adapter[Keys::_connectionState]);
    data.type = stringToNetworkType(adapter[Keys::_type]);
    data.priority = priorityFrom(adapter[Keys::_priority]);
    copyText(data.ssid, adapter[Keys::_ssid]);
    copyText(data.bssid, adapter[Keys::_bssid]);
    data.rateLimit =
        adapter.get(Keys::_rateLimit, -1).asInt(); // a limit that needs more than 32 bits can't be read
    setDataUsage(data.dataUsage, adapter[Keys::_limits]);
}

void setAdaptersResult(KelvarisSDK_AdaptersResult& result, Json::Value const& payload) {
    fillSlots(result.adapterCount, result.adapters, payload, setAdapterData);
}

Json::Value network(char const* adapterID) {
    return with(Keys::_network, adapterID);
}

// Makes the payload of requests that set one number of an adapter.
Json::Value network(char const* adapterID, Json::StaticString const& key, long long number) {
    Json::Value payload = network(adapterID);
    payload[key] = static_cast<Json::Int64>(number);
    return payload;
}

} // namespace

KelvarisSDK_AdaptersResult KelvarisSDK::getAdapters(KelvarisSDK_AdaptersCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket, query("request_networks", report),
                                 setAdaptersResult);
}

KelvarisSDK_AdaptersResult KelvarisSDK::setConnectionPriorities(char const* adapterID,
                                                                KelvarisSDK_ConnectionPriority priority,
                                                                KelvarisSDK_AdaptersCallback callback,
                                                                void* userData) {
    // A priority that has no number on the wire is refused, but a missing link is the first thing to report.
    if (websocket != nullptr && priority > KelvarisSDK_ConnectionPriority_NEVER) {
        return refused<KelvarisSDK_AdaptersResult>(invalidArgument);
    }
    auto const number =
        priority == KelvarisSDK_ConnectionPriority_NEVER ? neverOnTheWire : static_cast<int>(priority);
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_network_priority", network(adapterID, Keys::_priority, number), report),
        setAdaptersResult);
}

KelvarisSDK_AdaptersResult KelvarisSDK::setConnectionRateLimit(char const* adapterID, long long bitsPerSecond,
                                                               KelvarisSDK_AdaptersCallback callback,
                                                               void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_network_ratelimit", network(adapterID, Keys::_bps, bitsPerSecond), report),
        setAdaptersResult);
}

KelvarisSDK_AdaptersResult KelvarisSDK::resetConnectionRateLimit(char const* adapterID,
                                                                 KelvarisSDK_AdaptersCallback callback,
                                                                 void* userData) {
    return setConnectionRateLimit(adapterID, 0, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK::setAdapterMonthlyDataLimit(char const* adapterID, long long bytes,
                                                                   long long resetDay,
                                                                   KelvarisSDK_AdaptersCallback callback,
                                                                   void* userData) {
    Json::Value payload = network(adapterID, Keys::_max, bytes);
    payload[Keys::_resetDay] = static_cast<Json::Int64>(resetDay);
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    change("set_network_limit", payload, report), setAdaptersResult);
}

KelvarisSDK_AdaptersResult KelvarisSDK::disableAdapterMonthlyDataLimit(char const* adapterID,
                                                                       KelvarisSDK_AdaptersCallback callback,
                                                                       void* userData) {
    return setAdapterMonthlyDataLimit(adapterID, 0, 0, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK::setAdapterDailyDataLimit(char const* adapterID, long long bytes,
                                                                 KelvarisSDK_AdaptersCallback callback,
                                                                 void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_network_daily_limit", network(adapterID, Keys::_max, bytes), report), setAdaptersResult);
}

KelvarisSDK_AdaptersResult KelvarisSDK::disableAdapterDailyDataLimit(char const* adapterID,
                                                                     KelvarisSDK_AdaptersCallback callback,
                                                                     void* userData) {
    return setAdapterDailyDataLimit(adapterID, 0, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK::addAdapterDailyDataLimitBoost(char const* adapterID, long long bytes,
                                                                      KelvarisSDK_AdaptersCallback callback,
                                                                      void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        command("add_net_daily_limit_boost", network(adapterID, Keys::_value, bytes), report),
        setAdaptersResult);
}

KelvarisSDK_AdaptersResult KelvarisSDK::setAdapterOverlimitRatelimit(char const* adapterID,
                                                                     long long bitsPerSecond,
                                                                     KelvarisSDK_AdaptersCallback callback,
                                                                     void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("set_network_overlimit_rate", network(adapterID, Keys::_bps, bitsPerSecond), report),
        setAdaptersResult);
}

KelvarisSDK_AdaptersResult
KelvarisSDK::resetAdapterUsage(char const* adapterID, KelvarisSDK_AdaptersCallback callback, void* userData) {
    // This request alone calls the adapter's id "guid".
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    command("reset_network_usage", with(Keys::_guid, adapterID), report),
                                    setAdaptersResult);
}

} // namespace kelvarissdk
