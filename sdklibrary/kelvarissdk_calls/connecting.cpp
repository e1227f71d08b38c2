#include <string>

#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "session.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr char serverReport[] = "report_connected_server";
constexpr uint64_t connectTimeoutMs = 60000;

// The record keeps the server that was reported last before the session was connected.
bool connectCallback(KelvarisSDK_ConnectResult& result, std::string const& event, Json::Value const& report) {
    if (event == serverReport) {
        setServerDetailedData(result.server, report);
        return false;
    }
    if (event == "report_current_state") {
        result.base.error = false;
        return true;
    }
    if (event == "report_connect_error" || event == "report_login_error") {
        setReportedError(result.base, report);
        return true;
    }
    return false;
}

void setConnectResult(KelvarisSDK_ConnectResult& result, Json::Value const& server) {
    setServerDetailedData(result.server, server);
}

} // namespace

KelvarisSDK_ConnectResult KelvarisSDK::connectAuto(KelvarisSDK_AutoConnectMethod method,
                                                   KelvarisSDK_ConnectCallback callback, void* userData) {
    switch (method) {
    case KelvarisSDK_AutoConnectMethod_CLOSEST:
    case KelvarisSDK_AutoConnectMethod_PRIVATE:
    case KelvarisSDK_AutoConnectMethod_PUBLIC:
    case KelvarisSDK_AutoConnectMethod_P2P:
        return connectCombined(methodWord(method), callback, userData);
    case KelvarisSDK_AutoConnectMethod_LAST:
        return connectCombined("last", callback, userData);
    case KelvarisSDK_AutoConnectMethod_COUNTRY:
        // The method comes without its country. The refusal is SDK (3840) and not INVALID_ARGUMENT.
        return refused<KelvarisSDK_ConnectResult>(noWebsocketImplementation);
    case KelvarisSDK_AutoConnectMethod_AUTO:
    case KelvarisSDK_AutoConnectMethod_PROXY: // connectProxy() asks for the proxy
        break;
    }
    return connectCombined("auto", callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK::connectCountry(char const* country,
                                                      KelvarisSDK_ConnectCallback callback, void* userData) {
    return connectCombined(country, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK::connectCity(char const* country, char const* city,
                                                   KelvarisSDK_ConnectCallback callback, void* userData) {
    return connectCombined(placeText(country, city), callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK::connectServer(char const* country, char const* city, int num,
                                                     KelvarisSDK_ConnectCallback callback, void* userData) {
    return connectCombined(placeText(country, city, num), callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK::connectProxy(KelvarisSDK_ConnectCallback callback, void* userData) {
    return connectCombined("proxy", callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK::connectCombined(std::string const& server,
                                                       KelvarisSDK_ConnectCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    {.requests = {{"server_auto_connect", with(Keys::_server, server)}},
                                     .awaited = {stateReached(KelvarisSDK_State_CONNECTED),
                                                 {"report_connect_error"},
                                                 {"report_login_error"}},
                                     .subscribed = {serverReport},
                                     .timeoutMs = connectTimeoutMs,
                                     .settingName = "server_auto_connect"},
                                    connectCallback);
}

// A session that is logged out meanwhile is disconnected as well.
KelvarisSDK_StateResult KelvarisSDK::disconnect(KelvarisSDK_StateCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        {.requests = {{"server_disconnect"}},
         .awaited = {stateReached(KelvarisSDK_State_LOGGED_IN), stateReached(KelvarisSDK_State_LOGGED_OUT)}},
        setStateResult);
}

KelvarisSDK_ConnectResult KelvarisSDK::getConnectedServer(KelvarisSDK_ConnectCallback callback,
                                                          void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_connected_server", serverReport), setConnectResult);
}

} // namespace kelvarissdk
