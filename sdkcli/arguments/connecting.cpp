// The grammar of connecting, and of the words that name a place.

#include <cctype>
#include <cstring>

#include "../arguments.h"
#include "../calls.h"
#include "actions.h"
#include "place.h"
#include "readers.h"

bool isCity(char const* word) {
    while (std::isalpha(static_cast<unsigned char>(*word)) != 0) {
        ++word;
    }
    return *word == '\0';
}

bool isCountry(char const* word) {
    return (std::strlen(word) == 2 && isCity(word)) || isPrivate(word);
}

int connectAction(int argc, char* argv[]) {
    if (argc == 2) {
        return requestConnectAuto(KelvarisSDK_AutoConnectMethod_AUTO);
    }
    if (argc > 5) {
        return invalid(connectUsage);
    }
    char const* const country = argv[2];
    if (argc == 3) {
        // clang-format off
        if (is(country, "closest")) return requestConnectAuto(KelvarisSDK_AutoConnectMethod_CLOSEST);
        if (is(country, "private")) return requestConnectAuto(KelvarisSDK_AutoConnectMethod_PRIVATE);
        if (is(country, "public")) return requestConnectAuto(KelvarisSDK_AutoConnectMethod_PUBLIC);
        if (is(country, "last")) return requestConnectAuto(KelvarisSDK_AutoConnectMethod_LAST);
        if (is(country, "p2p")) return requestConnectAuto(KelvarisSDK_AutoConnectMethod_P2P);
        if (is(country, "proxy")) return requestConnectProxy();
        // clang-format on
    }

    if (!isCountry(country)) {
        return invalid(connectUsage);
    }
    if (argc == 3) {
        return requestConnectCountry(country);
    }
    char const* const city = argv[3];
    if (!isCity(city)) {
        return invalid(connectUsage);
    }
    if (argc == 4) {
        return requestConnectCity(country, city);
    }
    std::optional<int> const number = readInt(argv[4], 1);
    return number ? requestConnectServer(country, city, *number) : invalid(connectUsage);
}

int disconnectAction(int argc) {
    return argc == 2 ? requestDisconnect() : invalid("disconnect");
}
