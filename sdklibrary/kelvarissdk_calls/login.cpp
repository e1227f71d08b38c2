#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "session.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr uint64_t loginTimeoutMs = 60000;

// A login ends with the first report of a state in which the user is logged in, or with an error.
Exchange loginExchange(std::vector<Request> requests) {
    return {.requests = std::move(requests),
            .awaited = {stateReached(KelvarisSDK_State_LOGGED_IN),
                        stateReached(KelvarisSDK_State_CONNECTED),
                        stateReached(KelvarisSDK_State_OVERLIMIT),
                        {"report_login_error"}},
            .timeoutMs = loginTimeoutMs};
}

bool loginCallback(KelvarisSDK_StateResult& result, std::string const& event, Json::Value const& report) {
    if (event == "report_current_state") {
        result.base.error = false;
        setStateResult(result, report);
        return true;
    }
    if (event == "report_login_error") {
        setReportedError(result.base, report);
        return true;
    }
    return false;
}

// Tiers other than 1 and 3 count as free ones.
KelvarisSDK_AccountPaymentType paymentTypeFrom(int payTier) {
    if (payTier == 1) {
        return KelvarisSDK_AccountPaymentType_MONTHLY;
    }
    return payTier == 3 ? KelvarisSDK_AccountPaymentType_YEARLY : KelvarisSDK_AccountPaymentType_FREE;
}

// Reads the date in front of the text. Parts of it that can't be read stay zero.
std::tm dateFrom(std::string const& text) {
    std::tm date{};
    strptime(text.substr(0, 10).c_str(), "%Y-%m-%d", &date);
    return date;
}

void setAccountingResult(KelvarisSDK_AccountingResult& result, Json::Value const& account) {
    copyText(result.email, account[Keys::_email]);
    result.isAutoAccount = account[Keys::_isAutoAccount].asBool();
    result.bytesAvail = account[Keys::_bytesAvail].asInt64();
    result.bytesUsed = account[Keys::_bytesUsed].asInt64();
    result.isTeam = account[Keys::_isTeam].asBool();
    result.minutesAvail = account[Keys::_minutesAvail].asInt();
    result.minutesUsed = account[Keys::_minutesUsed].asInt();
    result.paymentType = paymentTypeFrom(account[Keys::_payTier].asInt());
    result.periodEndDate = dateFrom(account[Keys::_periodEndDate].asString());
}

} // namespace

AwaitedReport stateReached(KelvarisSDK_State state) {
    return {"report_current_state", with(Keys::_state, static_cast<int>(state))};
}

void setReportedError(KelvarisSDK_BaseResult& result, Json::Value const& report) {
    result.error = true;
    result.errorCode = report[Keys::_type].asInt();
    copyText(result.errorMessage, report[Keys::_msg]);
}

KelvarisSDK_StateResult KelvarisSDK::login(char const* username, char const* password,
                                           KelvarisSDK_StateCallback callback, void* userData) {
    Request request("login");
    request.payload[Keys::_username] = username;
    request.payload[Keys::_password] = password;
    return wsNonSubscriptionWrapper(callback, userData, websocket, loginExchange({request}), loginCallback);
}

KelvarisSDK_StateResult KelvarisSDK::loginOAuth(char const* token, KelvarisSDK_StateCallback callback,
                                                void* userData) {
    Request request("login_oauth");
    request.payload[Keys::_oauth] = token;
    return wsNonSubscriptionWrapper(callback, userData, websocket, loginExchange({request}), loginCallback);
}

KelvarisSDK_StateResult KelvarisSDK::loginAutoAccount(KelvarisSDK_StateCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    loginExchange({{"allow_auto_account"}, {"login_auto"}}), loginCallback);
}

// The request for the state makes a session answer that is logged out already and has no change to report.
KelvarisSDK_StateResult KelvarisSDK::logout(KelvarisSDK_StateCallback callback, void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket,
                                    {.requests = {{"logout"}, {"request_current_state"}},
                                     .awaited = {stateReached(KelvarisSDK_State_LOGGED_OUT)}},
                                    loginCallback);
}

KelvarisSDK_AccountingResult KelvarisSDK::getAccountingData(KelvarisSDK_AccountingCallback callback,
                                                            void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_accounting_data", "report_accounting_data"),
                                 setAccountingResult);
}

} // namespace kelvarissdk
