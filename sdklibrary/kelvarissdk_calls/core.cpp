#include "core.h"

#include <algorithm>
#include <string>
#include <utility>

#include "kelvarissdk.h"
#include "keys.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

void setVersionResult(KelvarisSDK_VersionResult& result, Json::Value const& version) {
    result.maj = static_cast<uint16_t>(version[Keys::_maj].asInt());
    result.min = static_cast<uint16_t>(version[Keys::_min].asInt());
    result.bug = static_cast<uint16_t>(version[Keys::_bug].asInt());
    result.build = static_cast<uint16_t>(version[Keys::_build].asInt());
}

// Sends a request that nobody answers.
KelvarisSDK_BaseResult notify(std::unique_ptr<WebsocketImpl> const& websocket, char const* request,
                              Json::Value const& payload = {}) {
    KelvarisSDK_BaseResult result{};
    if (!websocket) {
        noWebsocketImplementation(&result);
        return result;
    }
    websocket->sendRequest(request, payload);
    return result;
}

} // namespace

void setStateResult(KelvarisSDK_StateResult& result, Json::Value const& payload) {
    auto const number = static_cast<uint32_t>(payload[Keys::_state].asInt());
    result.state = static_cast<KelvarisSDK_State>(std::min<uint32_t>(number, KelvarisSDK_State_UNKNOWN));
}

Json::Value with(Json::StaticString const& key, Json::Value value) {
    Json::Value payload;
    payload[key] = std::move(value);
    return payload;
}

char const* bondingModeWord(KelvarisSDK_BondingMode mode) {
    switch (mode) {
    case KelvarisSDK_BondingMode_SPEED:
        break;
    case KelvarisSDK_BondingMode_REDUNDANT:
        return "RD";
    case KelvarisSDK_BondingMode_STREAMING:
        return "STR";
    }
    return "SP";
}

KelvarisSDK_BondingMode bondingModeFrom(Json::Value const& text) {
    return enumFrom(text, KelvarisSDK_BondingMode_STREAMING, bondingModeWord)
        .value_or(KelvarisSDK_BondingMode_SPEED);
}

void setPortPair(KelvarisSDK_ProtocolPortPair& pair, Json::Value const& object) {
    pair.protocol =
        enumFrom(object[Keys::_proto], KelvarisSDK_PortProtocol_UDP, KelvarisSDK_PortProtocol_toString)
            .value_or(pair.protocol);
    pair.port = static_cast<uint16_t>(object[Keys::_port].asInt());
}

Json::Value portPairs(KelvarisSDK_ProtocolPortPair const* pairs, std::size_t count) {
    Json::Value list(Json::arrayValue);
    for (std::size_t i = 0; i < count; ++i) {
        Json::Value& object = list.append(Json::Value(Json::objectValue));
        if (pairs[i].protocol <= KelvarisSDK_PortProtocol_UDP) {
            object[Keys::_proto] = KelvarisSDK_PortProtocol_toString(pairs[i].protocol);
        }
        object[Keys::_port] = pairs[i].port;
    }
    return list;
}

KelvarisSDK_BaseResult KelvarisSDK::setAppName(char const* name) {
    return notify(websocket, "set_app_name", with(Keys::_app_name, name));
}

void KelvarisSDK::unregisterCallback(unsigned long long callbackId) {
    if (websocket) {
        websocket->removeCallback(callbackId);
    }
}

KelvarisSDK_StateResult KelvarisSDK::getState(KelvarisSDK_StateCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_current_state", "report_current_state"), setStateResult);
}

KelvarisSDK_VersionResult KelvarisSDK::getVersion(KelvarisSDK_VersionCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    query("request_version_data", "report_version_data"), setVersionResult);
}

KelvarisSDK_BaseResult KelvarisSDK::daemonExit() {
    return notify(websocket, "exit");
}

} // namespace kelvarissdk
