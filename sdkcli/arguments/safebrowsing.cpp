// The grammar of "safebrowsing". The number of words behind it decides which of its actions there are.

#include "../calls.h"
#include "actions.h"
#include "readers.h"

namespace {

char const* const usage = "safebrowsing <initialize|config|enable|errors|stats|redirects|loglevel|token|"
                          "homenetwork|override|settings|start|stop|update>";
char const* const initializeUsage = "safebrowsing initialize <string>";
char const* const configUsage = "safebrowsing config <string>";
char const* const enableUsage = "safebrowsing enable <on|off>";
char const* const logLevelUsage = "safebrowsing loglevel <trace|debug|info|warning|error>";
char const* const tokenUsage = "safebrowsing token <string>";
char const* const overrideUsage = "safebrowsing override <none|unsafe|safe>";
char const* const startUsage = "safebrowsing start <string>";
char const* const updateUsage = "safebrowsing update <string>";
char const* const homeNetworkUsage = "safebrowsing homenetwork [retries delay timeout]";
char const* const durationUsage = "safebrowsing errors [duration in seconds]";

int enableAction(char const* word) {
    std::optional<bool> const enable = readOnOff(word);
    return enable ? setSafeBrowsingEnabled(*enable) : invalid(enableUsage);
}

int logLevelAction(char const* word) {
    // clang-format off
    if (is(word, "trace")) return setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel_TRACE);
    if (is(word, "debug")) return setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel_DEBUG);
    if (is(word, "info")) return setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel_INFO);
    if (is(word, "warning")) return setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel_WARNING);
    if (is(word, "error")) return setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel_ERROR);
    // clang-format on

    return invalid(logLevelUsage);
}

int overrideAction(char const* word) {
    if (is(word, "none")) {
        return setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride_NONE);
    }
    if (is(word, "unsafe")) {
        return setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride_UNSAFE);
    }
    if (is(word, "safe")) {
        return setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride_SAFE);
    }
    return invalid(overrideUsage);
}

// Both listeners; their message names the first.
int listenAction(char const* word, int (*listen)(int)) {
    std::optional<int> const duration = readInt(word, -1);
    return duration ? listen(*duration) : invalid(durationUsage);
}

// An action without the word that it needs is invalid here, not missing.
int oneWord(char const* action) {
    // clang-format off
    if (is(action, "settings")) return getSafeBrowsingSettings();
    if (is(action, "stop")) return stopSafeBrowsing();
    if (is(action, "homenetwork")) return reportSafeBrowsingHomeNetwork(0, 0, 0);
    if (is(action, "errors")) return listenForSafeBrowsingErrors(0);
    if (is(action, "redirects")) return listenForSafeBrowsingBlocks(0);
    if (is(action, "stats")) return getSafeBrowsingStats();
    if (is(action, "initialize")) return invalid(initializeUsage);
    if (is(action, "config")) return invalid(configUsage);
    if (is(action, "enable")) return invalid(enableUsage);
    if (is(action, "loglevel")) return invalid(logLevelUsage);
    if (is(action, "token")) return invalid(tokenUsage);
    if (is(action, "override")) return invalid(overrideUsage);
    if (is(action, "start")) return invalid(startUsage);
    if (is(action, "update")) return invalid(updateUsage);
    // clang-format on

    return invalid(usage);
}

int twoWords(char const* action, char const* word) {
    // clang-format off
    if (is(action, "initialize")) return initSafeBrowsing(word);
    if (is(action, "config")) return setSafeBrowsingConfig(word);
    if (is(action, "enable")) return enableAction(word);
    if (is(action, "loglevel")) return logLevelAction(word);
    if (is(action, "token")) return refreshSafeBrowsingToken(word);
    if (is(action, "override")) return overrideAction(word);
    if (is(action, "start")) return startSafeBrowsing(word);
    if (is(action, "update")) return updateSafeBrowsingExtraInfo(word);
    if (is(action, "errors")) return listenAction(word, listenForSafeBrowsingErrors);
    if (is(action, "redirects")) return listenAction(word, listenForSafeBrowsingBlocks);
    // clang-format on

    return invalid(usage);
}

int fourWords(char* words[]) {
    if (!is(words[0], "homenetwork")) {
        return invalid(usage);
    }
    std::optional<uint32_t> const retries = readCount(words[1]);
    std::optional<unsigned long long> const delay = readUnsigned(words[2]);
    std::optional<unsigned long long> const timeout = readUnsigned(words[3]);
    if (!retries || !delay || !timeout) {
        return invalid(homeNetworkUsage);
    }
    return reportSafeBrowsingHomeNetwork(*retries, *delay, *timeout);
}

} // namespace

int safeBrowsingAction(int argc, char* argv[]) {
    char** const words = argv + 2;
    switch (argc - 2) {
    case 0:
        return missing(usage);
    case 1:
        return oneWord(words[0]);
    case 2:
        return twoWords(words[0], words[1]);
    case 4:
        return fourWords(words);
    default:
        return invalid(usage);
    }
}
