// This is the grammar of the setting that says how the daemon picks a server.

#include "actions.h"
#include "calls.h"
#include "readers.h"

int connectMethodAction(int argc, char* argv[]) {
    if (argc == 2) {
        return missing(usage::connectMethod);
    }
    if (argc > 5) {
        return invalid(usage::connectMethod);
    }
    char const* const country = argv[2];
    if (argc == 3) {
        auto const method = readMethod(country);
        if (method && *method != KelvarisSDK_AutoConnectMethod_LAST) {
            return setConnectMethodAuto(*method);
        }
    }

    if (!isCountry(country)) {
        return invalid(usage::connectMethod);
    }
    if (argc == 3) {
        return setConnectMethodCountry(country);
    }
    char const* const city = argv[3];
    if (!isCity(city)) {
        return invalid(usage::connect); // a bad city shows the usage of connect, not this action's own
    }
    if (argc == 4) {
        return setConnectMethodCity(country, city);
    }
    std::optional<int> const number = readInt(argv[4], 1);
    return number ? setConnectMethodServer(country, city, *number) : invalid(usage::connectMethod);
}
