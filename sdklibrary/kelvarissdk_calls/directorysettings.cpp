#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr char report[] = "report_directory_settings";

// The records of this family count as failed until a report has reached them.
Exchange countAsFailed(Exchange exchange) {
    exchange.failedUntilReported = true;
    return exchange;
}

void setDirectoryResult(KelvarisSDK_DirectorySettingsResult& result, Json::Value const& settings) {
    copyText(result.domain, settings[Keys::_domain]);
    result.enableEsni = settings[Keys::_enableEsni].asBool();
    copyText(result.gatewayUri, settings[Keys::_gatewayUri]);
}

} // namespace

// The request names the URL alone, and the report has all three settings.
KelvarisSDK_DirectorySettingsResult
KelvarisSDK::getDirectorySettings(KelvarisSDK_DirectorySettingsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 countAsFailed(query("request_directory_url", report)), setDirectoryResult);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK::setESNIEnabled(bool enabled, KelvarisSDK_DirectorySettingsCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        countAsFailed(change("set_esni_enabled", with(Keys::_enableEsni, enabled), report)),
        setDirectoryResult);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK::setDirectoryDomain(char const* domain, KelvarisSDK_DirectorySettingsCallback callback,
                                void* userData) {
    Json::Value payload; // stays null to reset the domain
    if (domain != nullptr) {
        payload[Keys::_domain] = domain;
    }
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    countAsFailed(command("set_directory_domain", payload, report)),
                                    setDirectoryResult);
}

// The resets hand no user data on: their callback gets a null pointer.
KelvarisSDK_DirectorySettingsResult
KelvarisSDK::resetDirectoryDomain(KelvarisSDK_DirectorySettingsCallback callback, void* /*userData*/) {
    return setDirectoryDomain(nullptr, callback, nullptr);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK::setDirectoryGatewayURI(char const* uri, KelvarisSDK_DirectorySettingsCallback callback,
                                    void* userData) {
    Json::Value payload; // stays null to reset the URI
    if (uri != nullptr) {
        payload[Keys::_url] = uri; // the report spells this key differently
    }
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    countAsFailed(command("set_directory_gateway_uri", payload, report)),
                                    setDirectoryResult);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK::resetDirectoryGatewayURI(KelvarisSDK_DirectorySettingsCallback callback, void* /*userData*/) {
    return setDirectoryGatewayURI(nullptr, callback, nullptr);
}

} // namespace kelvarissdk
