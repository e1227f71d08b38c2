/*
 * Safe browsing: a filter in the daemon that looks hosts up at a service and blocks or redirects them.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_SAFEBROWSING_HPP
#define KELVARISSDK_CPP_SAFEBROWSING_HPP

#include <kelvarissdk/cpp/telemetry.hpp>

/* Programs are often compiled with -DDEBUG. */
#pragma push_macro("DEBUG")
#undef DEBUG

namespace kelvaris {

/** What the service writes into its log. The numbers are not in the order of severity. */
enum class SafeBrowsingLogLevel : std::uint32_t { DEBUG, INFO, ERROR, TRACE, WARNING, UNKNOWN = 0xFFFFFFFF };

/** The override of the service's own decision whether the network is safe. */
enum class SafeBrowsingSafeNetworkOverride : std::uint32_t { NONE, UNSAFE, SAFE, UNKNOWN = 0xFFFFFFFF };

inline char const* toString(SafeBrowsingLogLevel value) {
    return KelvarisSDK_SafeBrowsing_LogLevel_toString(detail::passed(value));
}
inline char const* toString(SafeBrowsingSafeNetworkOverride value) {
    return KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString(detail::passed(value));
}

/** Why the service couldn't be reached. */
struct SafeBrowsingConnectError {
    std::int32_t code = 0; /**< the service's own number */
    std::string message;
};

/** The filter's state, or a connect error, which is a result too. */
struct SafeBrowsingResult {
    using Record = KelvarisSDK_SafeBrowsingResult;
    std::optional<SafeBrowsingConnectError> connectError;
    bool initialized = false;
    bool configSet = false;
    bool enabled = false;
    SafeBrowsingLogLevel logLevel{};
    SafeBrowsingSafeNetworkOverride networkOverride{};

    static SafeBrowsingResult from(Record const& record) {
        SafeBrowsingResult value;
        if (record.connectErrorSet) {
            value.connectError = {record.connectErrorCode, detail::text(record.connectErrorMessage)};
        }
        value.initialized = record.initialized;
        value.configSet = record.configSet;
        value.enabled = record.enabled;
        value.logLevel = detail::known(record.logLevel, SafeBrowsingLogLevel::WARNING);
        value.networkOverride = detail::known(record.networkOverride, SafeBrowsingSafeNetworkOverride::SAFE);
        return value;
    }
};

/** A failed look-up. */
struct SafeBrowsingErrorResult {
    using Record = KelvarisSDK_SafeBrowsingErrorResult;
    std::int32_t error = 0; /**< the service's own number */
    std::string message;
    std::string host;

    static SafeBrowsingErrorResult from(Record const& record) {
        return {record.error, detail::text(record.message), detail::text(record.host)};
    }
};

/** A blocked host. */
struct SafeBrowsingBlockResult {
    using Record = KelvarisSDK_SafeBrowsingBlockResult;
    bool redirected = false;
    std::string host;

    static SafeBrowsingBlockResult from(Record const& record) {
        return {record.redirected, detail::text(record.host)};
    }
};

/** The filter's counters. */
struct SafeBrowsingStatsResult {
    using Record = KelvarisSDK_SafeBrowsingStatsResult;
    std::uint32_t min = 0;
    std::uint32_t max = 0;
    std::uint32_t average = 0;
    std::uint32_t num_errors = 0;
    std::uint32_t num_blocks = 0;
    double failure_rate = 0;
    std::uint32_t num_block_responses = 0;
    std::uint64_t num_lookups = 0;
    std::uint64_t num_packets_filtered = 0;

    static SafeBrowsingStatsResult from(Record const& record) {
        SafeBrowsingStatsResult value;
        value.min = record.min;
        value.max = record.max;
        value.average = record.average;
        value.num_errors = record.num_errors;
        value.num_blocks = record.num_blocks;
        value.failure_rate = record.failure_rate;
        value.num_block_responses = record.num_block_responses;
        value.num_lookups = record.num_lookups;
        value.num_packets_filtered = record.num_packets_filtered;
        return value;
    }
};

/** The family's calls. */
class SafeBrowsingCalls : public TelemetryCalls {
public:
    /** Ends with the result of its second step. Both steps are sent at once, in all forms. */
    Call<SafeBrowsingResult> startSafeBrowsing(std::string config) const {
        return {core, twoSteps,
                starterOf<SafeBrowsingResult, KelvarisSDK_StartSafeBrowsing>(std::move(config))};
    }
    Call<SafeBrowsingResult> stopSafeBrowsing() const {
        return {core, twoSteps, starterOf<SafeBrowsingResult, KelvarisSDK_StopSafeBrowsing>()};
    }
    Call<SafeBrowsingResult> initSafeBrowsing(std::string config) const {
        return call<SafeBrowsingResult, KelvarisSDK_InitSafeBrowsing>(std::move(config));
    }
    Call<SafeBrowsingResult> setSafeBrowsingConfig(std::string config) const {
        return call<SafeBrowsingResult, KelvarisSDK_SetSafeBrowsingConfig>(std::move(config));
    }
    Call<SafeBrowsingResult> setSafeBrowsingEnabled(bool enable) const {
        return call<SafeBrowsingResult, KelvarisSDK_SetSafeBrowsingEnabled>(enable);
    }
    Call<SafeBrowsingResult> setSafeBrowsingLogLevel(SafeBrowsingLogLevel level) const {
        return call<SafeBrowsingResult, KelvarisSDK_SetSafeBrowsingLogLevel>(level);
    }
    Call<SafeBrowsingResult> setSafeBrowsingSafeNetworkOverride(SafeBrowsingSafeNetworkOverride value) const {
        return call<SafeBrowsingResult, KelvarisSDK_SetSafeBrowsingSafeNetworkOverride>(value);
    }
    Call<SafeBrowsingResult> refreshSafeBrowsingToken(std::string token) const {
        return call<SafeBrowsingResult, KelvarisSDK_RefreshSafeBrowsingToken>(std::move(token));
    }
    Call<SafeBrowsingResult> reportSafeBrowsingHomeNetworkWithParameters(unsigned retries,
                                                                         std::uint64_t delay,
                                                                         std::uint64_t timeout) const {
        return call<SafeBrowsingResult, KelvarisSDK_ReportSafeBrowsingHomeNetworkWithParameters>(
            retries, delay, timeout);
    }
    Call<SafeBrowsingResult> updateSafeBrowsingExtraInfo(std::string info) const {
        return call<SafeBrowsingResult, KelvarisSDK_UpdateSafeBrowsingExtraInfo>(std::move(info));
    }
    StreamCall<SafeBrowsingResult> getSafeBrowsing() const {
        return stream<SafeBrowsingResult, KelvarisSDK_GetSafeBrowsing>();
    }
    /** Sends nothing and has no time-out: with get() it waits for the first look-up that fails. */
    StreamCall<SafeBrowsingErrorResult> listenForSafeBrowsingError() const {
        return stream<SafeBrowsingErrorResult, KelvarisSDK_ListenForSafeBrowsingError>(listens);
    }
    /** Sends nothing and has no time-out: with get() it waits for the first host that is blocked. */
    StreamCall<SafeBrowsingBlockResult> listenForSafeBrowsingBlock() const {
        return stream<SafeBrowsingBlockResult, KelvarisSDK_ListenForSafeBrowsingBlock>(listens);
    }
    StreamCall<SafeBrowsingStatsResult> getSafeBrowsingStats() const {
        return stream<SafeBrowsingStatsResult, KelvarisSDK_GetSafeBrowsingStats>();
    }

protected:
    using TelemetryCalls::TelemetryCalls;

private:
    static constexpr detail::Traits twoSteps{false, true, 2};
    static constexpr detail::Traits listens{false, false, 1};
};

} // namespace kelvaris

#pragma pop_macro("DEBUG")

#endif
