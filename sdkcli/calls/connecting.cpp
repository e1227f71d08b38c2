#include "calls.h"

#include "finish.h"

int requestConnectAuto(KelvarisSDK_AutoConnectMethod method) {
    return finish(KelvarisSDK_ConnectAuto(sdk, method, nullptr, nullptr), printConnectResult);
}

int requestConnectCountry(char const* country) {
    return finish(KelvarisSDK_ConnectCountry(sdk, country, nullptr, nullptr), printConnectResult);
}

int requestConnectCity(char const* country, char const* city) {
    return finish(KelvarisSDK_ConnectCity(sdk, country, city, nullptr, nullptr), printConnectResult);
}

int requestConnectServer(char const* country, char const* city, int num) {
    return finish(KelvarisSDK_ConnectServer(sdk, country, city, num, nullptr, nullptr), printConnectResult);
}

int requestConnectProxy() {
    return finish(KelvarisSDK_ConnectProxy(sdk, nullptr, nullptr), printConnectResult);
}

int requestDisconnect() {
    return finish(KelvarisSDK_Disconnect(sdk, nullptr, nullptr), printStateResult);
}

int requestCurrentServer() {
    return finish(KelvarisSDK_GetConnectedServer(sdk, nullptr, nullptr), printConnectResult);
}
