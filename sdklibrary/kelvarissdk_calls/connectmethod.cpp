#include <cstdlib>
#include <sstream>
#include <string>

#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "session.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

struct WireMethod {
    KelvarisSDK_AutoConnectMethod method;
    char const* text;
};

constexpr WireMethod wireMethods[] = {
    {KelvarisSDK_AutoConnectMethod_CLOSEST, "user"},
    {KelvarisSDK_AutoConnectMethod_PUBLIC, "userpublic"},
    {KelvarisSDK_AutoConnectMethod_PRIVATE, "userprivate"},
    {KelvarisSDK_AutoConnectMethod_P2P, "p2p"},
    {KelvarisSDK_AutoConnectMethod_PROXY, "proxy"},
    {KelvarisSDK_AutoConnectMethod_COUNTRY, "country"},
};

// Splits "country|city|num", of which the later pieces may be missing.
void setConnectPlace(KelvarisSDK_ServerSettingsResult& result, std::string const& place) {
    std::istringstream pieces(place);
    std::string piece;
    if (std::getline(pieces, piece, '|')) {
        setText(result.country, piece);
    }
    if (std::getline(pieces, piece, '|')) {
        setText(result.city, piece);
    }
    if (std::getline(pieces, piece, '|')) {
        result.num = std::atoi(piece.c_str());
    }
}

// A method that isn't in the table leaves the record's as it was.
void setServerSettingsData(KelvarisSDK_ServerSettingsResult& result, Json::Value const& settings) {
    setText(result.country, "");
    setText(result.city, "");
    result.num = 0;
    std::string const text = settings[Keys::_connect_to_best_method].asString();
    for (WireMethod const& wire : wireMethods) {
        if (text == wire.text) {
            result.connectMethod = wire.method;
        }
    }
    if (text == "country") {
        // The request spells this key differently.
        setConnectPlace(result, settings[Keys::_connect_country].asString());
    }
}

} // namespace

std::string placeText(char const* country, char const* city) {
    return std::string(country) + "|" + city;
}

std::string placeText(char const* country, char const* city, int num) {
    return placeText(country, city) + "|" + std::to_string(num);
}

KelvarisSDK_ServerSettingsResult KelvarisSDK::getServerSettings(KelvarisSDK_ServerSettingsCallback callback,
                                                                void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_server_settings", "report_server_settings"),
                                 setServerSettingsData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK::setConnectMethodAuto(KelvarisSDK_AutoConnectMethod method,
                                  KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    for (WireMethod const& wire : wireMethods) {
        if (method == wire.method && method != KelvarisSDK_AutoConnectMethod_COUNTRY) {
            return setConnectMethodCombined(wire.text, "", callback, userData);
        }
    }
    return refused<KelvarisSDK_ServerSettingsResult>(invalidArgument);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK::setConnectMethodCountry(char const* country, KelvarisSDK_ServerSettingsCallback callback,
                                     void* userData) {
    return setConnectMethodCombined("country", country, callback, userData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK::setConnectMethodCity(char const* country, char const* city,
                                  KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    return setConnectMethodCombined("country", placeText(country, city), callback, userData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK::setConnectMethodServer(char const* country, char const* city, int num,
                                    KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    return setConnectMethodCombined("country", placeText(country, city, num), callback, userData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK::setConnectMethodCombined(std::string const& method, std::string const& countryCode,
                                      KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    Json::Value payload;
    payload[Keys::_connect_to_best_method] = method;
    payload[Keys::_countryCode] = countryCode;
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    change("set_server_connectbest", payload, "report_server_settings"),
                                    setServerSettingsData);
}

} // namespace kelvarissdk
