// This is the grammar of connecting and disconnecting.

#include "actions.h"
#include "calls.h"
#include "readers.h"

int connectAction(int argc, char* argv[]) {
    if (argc == 2) {
        return requestConnectAuto(KelvarisSDK_AutoConnectMethod_AUTO);
    }
    if (argc > 5) {
        return invalid(usage::connect);
    }
    char const* const country = argv[2];
    if (argc == 3) {
        if (auto const method = readMethod(country)) {
            bool const isProxy = *method == KelvarisSDK_AutoConnectMethod_PROXY;
            return isProxy ? requestConnectProxy() : requestConnectAuto(*method);
        }
    }

    if (!isCountry(country)) {
        return invalid(usage::connect);
    }
    if (argc == 3) {
        return requestConnectCountry(country);
    }
    char const* const city = argv[3];
    if (!isCity(city)) {
        return invalid(usage::connect);
    }
    if (argc == 4) {
        return requestConnectCity(country, city);
    }
    std::optional<int> const number = readInt(argv[4], 1);
    return number ? requestConnectServer(country, city, *number) : invalid(usage::connect);
}

int disconnectAction(int argc, char* /*argv*/[]) {
    return noWordAction(argc, usage::disconnect, requestDisconnect);
}
