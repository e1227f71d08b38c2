// The grammar of the actions that belong to no family, and of "show", which reaches into all of them.

#include "../calls.h"
#include "actions.h"
#include "readers.h"

int stateAction(int argc) {
    return argc == 2 ? requestState() : invalid("state");
}

int versionAction(int argc) {
    return argc == 2 ? requestVersion() : invalid("version");
}

int daemonAction(int argc, char* argv[]) {
    char const* const usage = "daemon exit";
    if (argc == 2) {
        return missing(usage);
    }
    if (argc != 3 || !is(argv[2], "exit")) {
        return invalid(usage);
    }
    return requestExit();
}

int showAction(int argc, char* argv[]) {
    char const* const usage =
        "show < servers | settings | privacy | adapters | currentserver | user | directory | "
        "connectmethod | streamingbypass | disconnect | streaming | speedtest>";
    if (argc == 2) {
        return missing(usage);
    }
    if (argc != 3) {
        return invalid(usage);
    }
    char const* const word = argv[2];

    // clang-format off
    if (is(word, "settings")) return requestConnectionSettings();
    if (is(word, "privacy")) return requestPrivacySettings();
    if (is(word, "adapters")) return requestAdapters();
    if (is(word, "countries")) return requestServers();
    if (is(word, "cities")) return requestServers();
    if (is(word, "servers")) return requestServers();
    if (is(word, "currentserver")) return requestCurrentServer();
    if (is(word, "user")) return requestUserData();
    if (is(word, "directory")) return requestDirectory();
    if (is(word, "connectmethod")) return requestServerSettings();
    if (is(word, "disconnect")) return requestLastDisconnectEvent();
    if (is(word, "speedtest")) return requestSpeedTestResults();
    // clang-format on

    return invalid(usage);
}
