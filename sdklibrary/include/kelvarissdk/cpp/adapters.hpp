/*
 * The network adapters that the daemon bonds: what they are, when they are used, how much they may carry.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_ADAPTERS_HPP
#define KELVARISSDK_CPP_ADAPTERS_HPP

#include <kelvarissdk/cpp/settings.hpp>

namespace kelvaris {

/** State of the connection over an adapter. */
enum class ConnectionState : std::uint32_t { DISCONNECTED, CONNECTING, CONNECTED, UNKNOWN = 0xFFFFFFFF };

/** The kind of network that an adapter is in. */
enum class NetworkType : std::uint32_t { WIFI, ETHERNET, CELLULAR, VPN, LOOPBACK, BLUETOOTH, UNKNOWN };

/** When an adapter is used. */
enum class ConnectionPriority : std::uint32_t { ALWAYS, SECONDARY, BACKUP, NEVER, UNKNOWN = 0xFFFFFFFF };

inline char const* toString(ConnectionState value) {
    return KelvarisSDK_ConnectionState_toString(detail::passed(value));
}
inline char const* toString(NetworkType value) {
    return KelvarisSDK_NetworkType_toString(detail::passed(value));
}
inline char const* toString(ConnectionPriority value) {
    return KelvarisSDK_ConnectionPriority_toString(detail::passed(value));
}

/** What an adapter has carried and may carry; no value: none reported. */
struct AdapterUsageData {
    std::int64_t usage = 0;          /**< bytes in the month */
    std::int64_t usageDaily = 0;     /**< bytes in the day */
    std::optional<std::int64_t> max; /**< bytes per month */
    std::optional<std::int64_t>
        resetDay; /**< day of the month; no value: usage is that of the last 30 days */
    std::optional<std::int64_t> maxDaily;      /**< bytes per day */
    std::int64_t boostDaily = 0;               /**< bytes added to the daily limit */
    std::optional<std::int64_t> overlimitRate; /**< bits per second once over a limit */

    static AdapterUsageData from(KelvarisSDK_AdapterUsageData const& record) {
        constexpr std::int64_t none = -1;
        AdapterUsageData value;
        value.usage = record.usage;
        value.usageDaily = record.usageDaily;
        value.max = detail::unless(none, record.max);
        value.resetDay = detail::unless(std::int64_t{0}, record.resetDay);
        value.maxDaily = detail::unless(none, record.maxDaily);
        value.boostDaily = record.boostDaily;
        value.overlimitRate = detail::unless(none, record.overlimitRate);
        return value;
    }
};

/** One network adapter with its limits and its usage. */
struct AdapterData {
    std::string adapterID; /**< names the adapter in calls */
    std::string name;
    std::string description;
    ConnectionState state = ConnectionState::DISCONNECTED;
    NetworkType type = NetworkType::UNKNOWN;
    ConnectionPriority priority = ConnectionPriority::ALWAYS;
    std::string ssid;
    std::string bssid;
    std::optional<std::int64_t> rateLimit; /**< bits per second */
    AdapterUsageData dataUsage;

    static AdapterData from(KelvarisSDK_AdapterData const& record) {
        AdapterData value;
        value.adapterID = detail::text(record.adapterID);
        value.name = detail::text(record.name);
        value.description = detail::text(record.description);
        value.state = detail::known(record.state, ConnectionState::CONNECTED);
        value.type = detail::known(record.type, NetworkType::UNKNOWN);
        value.priority = detail::known(record.priority, ConnectionPriority::NEVER);
        value.ssid = detail::text(record.ssid);
        value.bssid = detail::text(record.bssid);
        value.rateLimit = detail::unless(std::int64_t{-1}, record.rateLimit);
        value.dataUsage = AdapterUsageData::from(record.dataUsage);
        return value;
    }
};

/** The adapters. */
struct AdaptersResult {
    using Record = KelvarisSDK_AdaptersResult;
    std::vector<AdapterData> adapters;

    static AdaptersResult from(Record const& record) {
        return {detail::values<AdapterData>(record.adapters, record.adapterCount)};
    }
};

/** The family's calls. */
class AdaptersCalls : public SettingsCalls {
public:
    StreamCall<AdaptersResult> getAdapters() const {
        return stream<AdaptersResult, KelvarisSDK_GetAdapters>();
    }
    Call<AdaptersResult> setConnectionPriorities(std::string adapterID, ConnectionPriority priority) const {
        return call<AdaptersResult, KelvarisSDK_SetConnectionPriorities>(std::move(adapterID), priority);
    }
    Call<AdaptersResult> setConnectionRateLimit(std::string adapterID, std::int64_t bitsPerSecond) const {
        return call<AdaptersResult, KelvarisSDK_SetConnectionRateLimit>(std::move(adapterID), bitsPerSecond);
    }
    Call<AdaptersResult> resetConnectionRateLimit(std::string adapterID) const {
        return call<AdaptersResult, KelvarisSDK_ResetConnectionRateLimit>(std::move(adapterID));
    }
    Call<AdaptersResult> setAdapterMonthlyDataLimit(std::string adapterID, std::int64_t bytes,
                                                    std::int64_t resetDay) const {
        return call<AdaptersResult, KelvarisSDK_SetAdapterMonthlyDataLimit>(std::move(adapterID), bytes,
                                                                            resetDay);
    }
    Call<AdaptersResult> disableAdapterMonthlyDataLimit(std::string adapterID) const {
        return call<AdaptersResult, KelvarisSDK_DisableAdapterMonthlyDataLimit>(std::move(adapterID));
    }
    Call<AdaptersResult> setAdapterDailyDataLimit(std::string adapterID, std::int64_t bytes) const {
        return call<AdaptersResult, KelvarisSDK_SetAdapterDailyDataLimit>(std::move(adapterID), bytes);
    }
    Call<AdaptersResult> disableAdapterDailyDataLimit(std::string adapterID) const {
        return call<AdaptersResult, KelvarisSDK_DisableAdapterDailyDataLimit>(std::move(adapterID));
    }
    Call<AdaptersResult> addAdapterDailyDataLimitBoost(std::string adapterID, std::int64_t bytes) const {
        return call<AdaptersResult, KelvarisSDK_AddAdapterDailyDataLimitBoost>(std::move(adapterID), bytes);
    }
    Call<AdaptersResult> setAdapterOverlimitRateLimit(std::string adapterID,
                                                      std::int64_t bitsPerSecond) const {
        return call<AdaptersResult, KelvarisSDK_SetAdapterOverlimitRateLimit>(std::move(adapterID),
                                                                              bitsPerSecond);
    }
    Call<AdaptersResult> resetAdapterUsage(std::string adapterID) const {
        return call<AdaptersResult, KelvarisSDK_ResetAdapterUsage>(std::move(adapterID));
    }

protected:
    using SettingsCalls::SettingsCalls;
};

} // namespace kelvaris

#endif
