#include "calls.h"

#include "finish.h"

int requestLogin(char const* username, char const* password) {
    return finish(KelvarisSDK_Login(sdk, username, password, nullptr, nullptr), printStateResult);
}

int loginOAuth(char const* token) {
    return finish(KelvarisSDK_LoginOAuth(sdk, token, nullptr, nullptr), printStateResult);
}

int loginAutoAccount() {
    return finish(KelvarisSDK_LoginAutoAccount(sdk, nullptr, nullptr), printStateResult);
}

int requestLogout() {
    return finish(KelvarisSDK_Logout(sdk, nullptr, nullptr), printStateResult);
}

int requestUserData() {
    return finish(KelvarisSDK_GetAccountingData(sdk, nullptr, nullptr), printAccountingResult);
}
