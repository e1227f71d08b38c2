// The grammar of the setting that says how the daemon picks a server.

#include "../calls.h"
#include "actions.h"
#include "place.h"
#include "readers.h"

int connectMethodAction(int argc, char* argv[]) {
    char const* const usage =
        "connectmethod < closest | public | private | p2p | <country> [<city> [<number>]] >";
    if (argc == 2) {
        return missing(usage);
    }
    if (argc > 5) {
        return invalid(usage);
    }
    char const* const country = argv[2];
    if (argc == 3) {
        // clang-format off
        if (is(country, "closest")) return setConnectMethodAuto(KelvarisSDK_AutoConnectMethod_CLOSEST);
        if (is(country, "private")) return setConnectMethodAuto(KelvarisSDK_AutoConnectMethod_PRIVATE);
        if (is(country, "public")) return setConnectMethodAuto(KelvarisSDK_AutoConnectMethod_PUBLIC);
        if (is(country, "p2p")) return setConnectMethodAuto(KelvarisSDK_AutoConnectMethod_P2P);
        if (is(country, "proxy")) return setConnectMethodAuto(KelvarisSDK_AutoConnectMethod_PROXY);
        // clang-format on
    }

    if (!isCountry(country)) {
        return invalid(usage);
    }
    if (argc == 3) {
        return setConnectMethodCountry(country);
    }
    char const* const city = argv[3];
    if (!isCity(city)) {
        return invalid(connectUsage); // not this action's own: the message for a bad city is that of connect
    }
    if (argc == 4) {
        return setConnectMethodCity(country, city);
    }
    std::optional<int> const number = readInt(argv[4], 1);
    return number ? setConnectMethodServer(country, city, *number) : invalid(usage);
}
