#include <string>
#include <utility>

#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr char settingsReport[] = "report_safe_browsing_settings";
constexpr char connectErrorReport[] = "report_safe_browsing_connect_error";

void setSafeBrowsingResult(KelvarisSDK_SafeBrowsingResult& result, Json::Value const& settings) {
    result.initialized = settings[Keys::_initialized].asBool();
    result.enabled = settings[Keys::_enabled].asBool();
    result.configSet = settings[Keys::_config_set].asBool();
    // A text without a number leaves the field as it was.
    result.logLevel = enumFrom(settings[Keys::_log_level], KelvarisSDK_SafeBrowsingLogLevel_WARNING,
                               KelvarisSDK_SafeBrowsing_LogLevel_toString)
                          .value_or(result.logLevel);
    result.networkOverride =
        enumFrom(settings[Keys::_network_override], KelvarisSDK_SafeBrowsingSafeNetworkOverride_SAFE,
                 KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString)
            .value_or(result.networkOverride);
}

// The service itself can refuse these calls. Its connect error finishes the record without failing the call.
bool settingsOrConnectError(KelvarisSDK_SafeBrowsingResult& result, std::string const& event,
                            Json::Value const& payload) {
    if (event == connectErrorReport) {
        result.connectErrorSet = true;
        result.connectErrorCode = payload[Keys::_error].asInt();
        copyText(result.connectErrorMessage, payload[Keys::_safebro_msg]);
        return true;
    }
    result.base.error = false;
    setSafeBrowsingResult(result, payload);
    return true;
}

void setSafeBrowsingErrorResult(KelvarisSDK_SafeBrowsingErrorResult& result, Json::Value const& event) {
    copyText(result.host, event[Keys::_host]);
    result.error = event[Keys::_error].asInt();
    copyText(result.message, event[Keys::_safebro_msg]);
}

void setSafeBrowsingBlockResult(KelvarisSDK_SafeBrowsingBlockResult& result, Json::Value const& event) {
    copyText(result.host, event[Keys::_host]);
    result.redirected = event[Keys::_redirected].asBool();
}

void setSafeBrowsingStatsResult(KelvarisSDK_SafeBrowsingStatsResult& result, Json::Value const& stats) {
    result.min = stats[Keys::_min].asUInt();
    result.max = stats[Keys::_max].asUInt();
    result.average = stats[Keys::_average].asUInt();
    result.num_errors = stats[Keys::_num_errors].asUInt();
    result.num_blocks = stats[Keys::_num_blocks].asUInt();
    result.failure_rate = stats[Keys::_failure_rate].asDouble();
    result.num_block_responses = stats[Keys::_num_block_responses].asUInt();
    result.num_lookups = stats[Keys::_num_safe_browsing_lookups].asUInt64();
    result.num_packets_filtered = stats[Keys::_num_safe_browsing_packets_filtered].asUInt64();
}

// Only settings that are initialized, or a connect error, end these calls.
Exchange untilInitialized(char const* request, Json::Value payload, char const* settingName) {
    return {.requests = {{request, std::move(payload)}},
            .awaited = {{settingsReport, with(Keys::_initialized, true)}, {connectErrorReport}},
            .settingName = settingName};
}

} // namespace

KelvarisSDK_SafeBrowsingResult
KelvarisSDK::initSafeBrowsing(char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    {.requests = {{"initialize_safe_browsing", with(Keys::_config, config)}},
                                     .awaited = {{settingsReport}, {connectErrorReport}},
                                     .settingName = "initialize_safe_browsing"},
                                    settingsOrConnectError);
}

// This call takes a lock of the initialization, which sets the configuration too, for its own.
KelvarisSDK_SafeBrowsingResult KelvarisSDK::setSafeBrowsingConfig(char const* config,
                                                                  KelvarisSDK_SafeBrowsingCallback callback,
                                                                  void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    {.requests = {{"set_safe_browsing_config", with(Keys::_config, config)}},
                                     .awaited = {{settingsReport}},
                                     .settingName = "initialize_safe_browsing"},
                                    setSafeBrowsingResult);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK::setSafeBrowsingEnabled(bool enable, KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        change("enable_safe_browsing", with(Keys::_enable, enable), settingsReport), setSafeBrowsingResult);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK::setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel level,
                                                                    KelvarisSDK_SafeBrowsingCallback callback,
                                                                    void* userData) {
    char const* const text = KelvarisSDK_SafeBrowsing_LogLevel_toString(level);
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        command("set_safe_browsing_log_level", with(Keys::_log_level, text), settingsReport),
        setSafeBrowsingResult);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK::setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride value,
                                                KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    char const* const text = KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString(value);
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    command("set_safe_browsing_safe_network_override",
                                            with(Keys::_network_override, text), settingsReport),
                                    setSafeBrowsingResult);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK::refreshSafeBrowsingToken(char const* token, KelvarisSDK_SafeBrowsingCallback callback,
                                      void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    untilInitialized("safe_browsing_token_refresh", with(Keys::_token, token),
                                                     "safe_browsing_token_refresh"),
                                    settingsOrConnectError);
}

// This call takes a lock of the token's refresh for its own.
KelvarisSDK_SafeBrowsingResult
KelvarisSDK::reportSafeBrowsingHomeNetwork(KelvarisSDK_SafeBrowsingCallback callback, void* userData,
                                           unsigned int retries, unsigned long long delay,
                                           unsigned long long timeout) {
    Json::Value payload;
    payload[Keys::_retries] = retries;
    payload[Keys::_delay] = static_cast<Json::UInt64>(delay);
    payload[Keys::_timeout] = static_cast<Json::UInt64>(timeout);
    return wsNonSubscriptionWrapper(
        callback, userData, websocket,
        untilInitialized("safe_browsing_report_home_network", payload, "safe_browsing_token_refresh"),
        settingsOrConnectError);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK::updateSafeBrowsingExtraInfo(char const* info, KelvarisSDK_SafeBrowsingCallback callback,
                                         void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    untilInitialized("set_safe_browsing_extra_info", with(Keys::_info, info),
                                                     "set_safe_browsing_extra_info"),
                                    settingsOrConnectError);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK::getSafeBrowsing(KelvarisSDK_SafeBrowsingCallback callback,
                                                            void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_safe_browsing_settings", settingsReport),
                                 setSafeBrowsingResult);
}

// The two listeners send no request and have no time-out, so they need a callback: a caller might wait for ever.
KelvarisSDK_SafeBrowsingErrorResult
KelvarisSDK::listenForSafeBrowsingError(KelvarisSDK_SafeBrowsingErrorCallback callback, void* userData) {
    if (callback == nullptr) {
        return refused<KelvarisSDK_SafeBrowsingErrorResult>(callbackRequired);
    }
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 {.subscribed = {"report_safe_browsing_lookup_error"}, .timeoutMs = 0},
                                 setSafeBrowsingErrorResult);
}

KelvarisSDK_SafeBrowsingBlockResult
KelvarisSDK::listenForSafeBrowsingBlock(KelvarisSDK_SafeBrowsingBlockCallback callback, void* userData) {
    if (callback == nullptr) {
        return refused<KelvarisSDK_SafeBrowsingBlockResult>(callbackRequired);
    }
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 {.subscribed = {"report_safe_browsing_block"}, .timeoutMs = 0},
                                 setSafeBrowsingBlockResult);
}

KelvarisSDK_SafeBrowsingStatsResult
KelvarisSDK::getSafeBrowsingStats(KelvarisSDK_SafeBrowsingStatsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_safe_browsing_stats", "report_safe_browsing_stats"),
                                 setSafeBrowsingStatsResult);
}

} // namespace kelvarissdk
