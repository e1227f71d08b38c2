/*
 * Account and session: logging in, connecting, the servers, how a server is chosen, the directory service.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_SESSION_HPP
#define KELVARISSDK_CPP_SESSION_HPP

#include <ctime>

#include <kelvarissdk/cpp/types.hpp>

namespace kelvaris {

/** How often the account is paid for. */
enum class AccountPaymentType : std::uint32_t { FREE, MONTHLY, YEARLY, UNKNOWN = 0xFFFFFFFF };

/** How the daemon picks a server. */
enum class AutoConnectMethod : std::uint32_t {
    CLOSEST,
    PRIVATE,
    PUBLIC,
    LAST,
    P2P,
    AUTO,
    COUNTRY,
    PROXY,
    UNKNOWN = 0xFFFFFFFF,
};

inline char const* toString(AccountPaymentType value) {
    return KelvarisSDK_AccountPaymentType_toString(detail::passed(value));
}
inline char const* toString(AutoConnectMethod value) {
    return KelvarisSDK_AutoConnectMethod_toString(detail::passed(value));
}

/** The account and what it has used in its data period. */
struct AccountingResult {
    using Record = KelvarisSDK_AccountingResult;
    std::string email;
    bool isAutoAccount = false;
    std::int64_t bytesAvail = 0;
    std::int64_t bytesUsed = 0;
    bool isTeam = false;
    std::chrono::minutes minutesAvail{};
    std::chrono::minutes minutesUsed{};
    AccountPaymentType paymentType = AccountPaymentType::FREE;
    /** 0 o'clock UTC of that day. A program whose time_t has 32 bits can't have one after January 2038. */
    std::optional<std::chrono::system_clock::time_point> periodEndDate;

    static AccountingResult from(Record const& record) {
        AccountingResult value;
        value.email = detail::text(record.email);
        value.isAutoAccount = record.isAutoAccount;
        value.bytesAvail = record.bytesAvail;
        value.bytesUsed = record.bytesUsed;
        value.isTeam = record.isTeam;
        value.minutesAvail = std::chrono::minutes(record.minutesAvail);
        value.minutesUsed = std::chrono::minutes(record.minutesUsed);
        value.paymentType = detail::known(record.paymentType, AccountPaymentType::YEARLY);
        if (std::tm date = record.periodEndDate; date.tm_mday != 0) {
            value.periodEndDate = std::chrono::system_clock::from_time_t(timegm(&date));
        }
        return value;
    }
};

/** A server of the directory. */
struct ServerInformation {
    std::string country; /**< code */
    std::string city;    /**< code */
    std::optional<std::int32_t> num;
    bool isPrivate = false;

    template <class Record> static ServerInformation from(Record const& record) {
        return {detail::text(record.country), detail::text(record.city), detail::unless(0, record.num),
                record.isPrivate};
    }
};

/** A server in use. */
struct ServerInformationDetailed : ServerInformation {
    bool torrentAllowed = false;
    std::vector<std::string> publicIP;

    static ServerInformationDetailed from(KelvarisSDK_ServerInformationDetailed const& record) {
        ServerInformationDetailed value;
        static_cast<ServerInformation&>(value) = ServerInformation::from(record);
        value.torrentAllowed = record.torrentAllowed;
        value.publicIP = detail::texts(record.publicIP, record.publicIPCount);
        return value;
    }
};

namespace detail {

// The library's names stand in static buffers, which one thread at a time may use.
template <class Record, class Server, class Function>
std::string nameOf(Server const& server, Function function) {
    static std::mutex mutex;
    Record record{};
    fill(record.country, server.country);
    fill(record.city, server.city);
    record.num = server.num.value_or(0);
    record.isPrivate = server.isPrivate;
    std::lock_guard const lock(mutex);
    char const* const name = function(record);
    return name != nullptr ? name : "";
}

} // namespace detail

/** The English name of the server's country: "United States". */
inline std::string getCountryName(ServerInformation const& server) {
    return detail::nameOf<KelvarisSDK_ServerInformation>(server,
                                                         KelvarisSDK_ServerInformation_GetCountryName);
}
/** The English name of the server's city: "New York City". */
inline std::string getCityName(ServerInformation const& server) {
    return detail::nameOf<KelvarisSDK_ServerInformation>(server, KelvarisSDK_ServerInformation_GetCityName);
}
/** A name for people: "United States - New York City #12". */
inline std::string toString(ServerInformation const& server) {
    return detail::nameOf<KelvarisSDK_ServerInformation>(server, KelvarisSDK_ServerInformation_toString);
}
inline std::string toString(ServerInformationDetailed const& server) {
    return detail::nameOf<KelvarisSDK_ServerInformationDetailed>(
        server, KelvarisSDK_ServerInformationDetailed_toString);
}

/** The servers that the account may use. */
struct DirectoryResult {
    using Record = KelvarisSDK_DirectoryResult;
    std::vector<ServerInformation> servers;

    static DirectoryResult from(Record const& record) {
        return {detail::values<ServerInformation>(record.servers, record.serverCount)};
    }
};

/** The server of the connection. */
struct ConnectResult {
    using Record = KelvarisSDK_ConnectResult;
    ServerInformationDetailed server;

    static ConnectResult from(Record const& record) {
        return {ServerInformationDetailed::from(record.server)};
    }
};

/** The daemon's setting of how it picks a server. */
struct ServerSettingsResult {
    using Record = KelvarisSDK_ServerSettingsResult;
    AutoConnectMethod connectMethod = AutoConnectMethod::CLOSEST; /**< COUNTRY: the place below */
    std::string country;
    std::string city;
    std::optional<std::int32_t> num;

    static ServerSettingsResult from(Record const& record) {
        return {detail::known(record.connectMethod, AutoConnectMethod::PROXY), detail::text(record.country),
                detail::text(record.city), detail::unless(0, record.num)};
    }
};

/** How the daemon reaches its directory service. */
struct DirectorySettingsResult {
    using Record = KelvarisSDK_DirectorySettingsResult;
    std::string domain;
    bool enableEsni = false;
    std::string gatewayUri;

    static DirectorySettingsResult from(Record const& record) {
        return {detail::text(record.domain), record.enableEsni, detail::text(record.gatewayUri)};
    }
};

namespace detail {

// The C interface hands null to the callbacks of its two resets, and the record's id leads back to the operation.
class Resets {
    using Operation = TypedOperation<DirectorySettingsResult>;

public:
    template <auto function>
    static Operation::Record begin(KelvarisSDK_Handle* handle, Operation::Callback /*callback*/,
                                   void* userData) {
        std::lock_guard const lock(mutex);
        for (auto each = waiting.begin(); each != waiting.end();) {
            each = each->second.expired() ? waiting.erase(each) : std::next(each);
        }
        Operation::Record const record = function(handle, onRecord, nullptr);
        if (!record.base.error) {
            waiting[record.base.callbackId] = static_cast<Operation*>(userData)->weak_from_this();
        }
        return record;
    }

private:
    static bool onRecord(Operation::Record record, void* /*userData*/) {
        OperationPtr operation;
        {
            std::lock_guard const lock(mutex);
            auto const entry = waiting.find(record.base.callbackId);
            if (entry != waiting.end()) {
                operation = entry->second.lock();
                waiting.erase(entry);
            }
        }
        return operation && Operation::onRecord(record, static_cast<Operation*>(operation.get()));
    }

    static inline std::mutex mutex;
    static inline std::map<std::uint64_t, std::weak_ptr<detail::Operation>> waiting;
};

} // namespace detail

/** The family's calls. */
class SessionCalls : public FirstCalls {
public:
    Call<StateResult> login(std::string username, std::string password) const {
        return call<StateResult, KelvarisSDK_Login>(std::move(username), std::move(password));
    }
    Call<StateResult> loginOAuth(std::string token) const {
        return call<StateResult, KelvarisSDK_LoginOAuth>(std::move(token));
    }
    Call<StateResult> loginAutoAccount() const {
        return call<StateResult, KelvarisSDK_LoginAutoAccount>();
    }
    Call<StateResult> logout() const {
        return call<StateResult, KelvarisSDK_Logout>();
    }
    StreamCall<AccountingResult> getAccountingData() const {
        return stream<AccountingResult, KelvarisSDK_GetAccountingData>();
    }

    StreamCall<DirectoryResult> getDirectory() const {
        return stream<DirectoryResult, KelvarisSDK_GetDirectory>();
    }

    Call<ConnectResult> connectAuto(AutoConnectMethod method) const {
        return call<ConnectResult, KelvarisSDK_ConnectAuto>(method);
    }
    Call<ConnectResult> connectCountry(std::string country) const {
        return call<ConnectResult, KelvarisSDK_ConnectCountry>(std::move(country));
    }
    Call<ConnectResult> connectCity(std::string country, std::string city) const {
        return call<ConnectResult, KelvarisSDK_ConnectCity>(std::move(country), std::move(city));
    }
    Call<ConnectResult> connectServer(std::string country, std::string city, int num) const {
        return call<ConnectResult, KelvarisSDK_ConnectServer>(std::move(country), std::move(city), num);
    }
    Call<ConnectResult> connectProxy() const {
        return call<ConnectResult, KelvarisSDK_ConnectProxy>();
    }
    Call<StateResult> disconnect() const {
        return call<StateResult, KelvarisSDK_Disconnect>();
    }
    StreamCall<ConnectResult> getConnectedServer() const {
        return stream<ConnectResult, KelvarisSDK_GetConnectedServer>();
    }

    StreamCall<ServerSettingsResult> getServerSettings() const {
        return stream<ServerSettingsResult, KelvarisSDK_GetServerSettings>();
    }
    Call<ServerSettingsResult> setConnectMethodAuto(AutoConnectMethod method) const {
        return call<ServerSettingsResult, KelvarisSDK_SetConnectMethodAuto>(method);
    }
    Call<ServerSettingsResult> setConnectMethodCountry(std::string country) const {
        return call<ServerSettingsResult, KelvarisSDK_SetConnectMethodCountry>(std::move(country));
    }
    Call<ServerSettingsResult> setConnectMethodCity(std::string country, std::string city) const {
        return call<ServerSettingsResult, KelvarisSDK_SetConnectMethodCity>(std::move(country),
                                                                            std::move(city));
    }
    Call<ServerSettingsResult> setConnectMethodServer(std::string country, std::string city, int num) const {
        return call<ServerSettingsResult, KelvarisSDK_SetConnectMethodServer>(std::move(country),
                                                                              std::move(city), num);
    }

    StreamCall<DirectorySettingsResult> getDirectorySettings() const {
        return stream<DirectorySettingsResult, KelvarisSDK_GetDirectorySettings>();
    }
    Call<DirectorySettingsResult> setESNIEnabled(bool enabled) const {
        return call<DirectorySettingsResult, KelvarisSDK_SetESNIEnabled>(enabled);
    }
    Call<DirectorySettingsResult> setDirectoryDomain(std::optional<std::string> domain) const {
        return call<DirectorySettingsResult, KelvarisSDK_SetDirectoryDomain>(std::move(domain));
    }
    Call<DirectorySettingsResult> resetDirectoryDomain() const {
        return {core, {}, detail::Resets::begin<KelvarisSDK_ResetDirectoryDomain>};
    }
    Call<DirectorySettingsResult> setDirectoryGatewayURI(std::optional<std::string> uri) const {
        return call<DirectorySettingsResult, KelvarisSDK_SetDirectoryGatewayURI>(std::move(uri));
    }
    Call<DirectorySettingsResult> resetDirectoryGatewayURI() const {
        return {core, {}, detail::Resets::begin<KelvarisSDK_ResetDirectoryGatewayURI>};
    }

protected:
    using FirstCalls::FirstCalls;
};

} // namespace kelvaris

#endif
