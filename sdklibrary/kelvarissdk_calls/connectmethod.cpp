#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "session.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

// Splits "country|city|num", of which the later pieces may be missing.
void setConnectPlace(KelvarisSDK_ServerSettingsResult& result, std::string const& text) {
    std::string_view const place = text;
    std::size_t const city = std::min(place.find('|'), place.size());
    std::size_t const num = std::min(place.find('|', city + 1), place.size());
    setText(result.country, place.substr(0, city));
    if (city < place.size()) {
        setText(result.city, place.substr(city + 1, num - city - 1));
    }
    if (num < place.size()) {
        result.num = std::atoi(text.c_str() + num + 1);
    }
}

// A method that isn't in the table leaves the record's as it was.
void setServerSettingsData(KelvarisSDK_ServerSettingsResult& result, Json::Value const& settings) {
    setText(result.country, "");
    setText(result.city, "");
    result.num = 0;
    std::string const text = settings[Keys::_connect_to_best_method].asString();
    for (uint32_t number = 0; number <= KelvarisSDK_AutoConnectMethod_PROXY; ++number) {
        auto const method = static_cast<KelvarisSDK_AutoConnectMethod>(number);
        char const* const word = methodWord(method);
        if (word != nullptr && text == word) {
            result.connectMethod = method;
        }
    }
    if (text == "country") {
        // The request spells this key differently.
        setConnectPlace(result, settings[Keys::_connect_country].asString());
    }
}

} // namespace

char const* methodWord(KelvarisSDK_AutoConnectMethod method) {
    switch (method) {
    case KelvarisSDK_AutoConnectMethod_CLOSEST:
        return "user";
    case KelvarisSDK_AutoConnectMethod_PUBLIC:
        return "userpublic";
    case KelvarisSDK_AutoConnectMethod_PRIVATE:
        return "userprivate";
    case KelvarisSDK_AutoConnectMethod_P2P:
        return "p2p";
    case KelvarisSDK_AutoConnectMethod_PROXY:
        return "proxy";
    case KelvarisSDK_AutoConnectMethod_COUNTRY:
        return "country";
    case KelvarisSDK_AutoConnectMethod_LAST:
    case KelvarisSDK_AutoConnectMethod_AUTO:
        break;
    }
    return nullptr;
}

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
    char const* const word = methodWord(method);
    if (word == nullptr || method == KelvarisSDK_AutoConnectMethod_COUNTRY) {
        return refused<KelvarisSDK_ServerSettingsResult>(invalidArgument);
    }
    return setConnectMethodCombined(word, "", callback, userData);
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
