// This is the grammar of "safebrowsing". An action without the word that it needs is invalid here, not missing, with
// its own usage line; one with more words than it takes is invalid with the line of them all.

#include "actions.h"
#include "calls.h"
#include "readers.h"

namespace {

template <int (*call)()> int noWord(int argc, char* /*argv*/[]) {
    return argc == 3 ? call() : invalid(usage::safeBrowsing);
}

template <auto call, auto read, char const* line> int oneWord(int argc, char* argv[]) {
    if (argc > 4) {
        return invalid(usage::safeBrowsing);
    }
    auto const value = argc == 4 ? read(argv[3]) : std::nullopt;
    return value ? call(*value) : invalid(line);
}

std::optional<char const*> readText(char const* word) {
    return word;
}

constexpr auto readLogLevel =
    readEnumeration<KelvarisSDK_SafeBrowsing_LogLevel_toString, KelvarisSDK_SafeBrowsingLogLevel_WARNING>;

constexpr auto readOverride = readEnumeration<KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString,
                                              KelvarisSDK_SafeBrowsingSafeNetworkOverride_SAFE>;

// A bad duration of the redirects shows the usage line of the errors, since they have none of their own.
template <int (*listen)(int)> int listenAction(int argc, char* argv[]) {
    if (argc > 4) {
        return invalid(usage::safeBrowsing);
    }
    std::optional<int> const duration = argc == 4 ? readInt(argv[3], -1) : 0;
    return duration ? listen(*duration) : invalid(usage::safeBrowsingErrors);
}

int homeNetworkAction(int argc, char* argv[]) {
    if (argc == 3) {
        return reportSafeBrowsingHomeNetwork(0, 0, 0);
    }
    if (argc != 6) {
        return invalid(usage::safeBrowsing);
    }
    std::optional<uint32_t> const retries = readCount(argv[3]);
    std::optional<unsigned long long> const delay = readUnsigned(argv[4]);
    std::optional<unsigned long long> const timeout = readUnsigned(argv[5]);
    if (!retries || !delay || !timeout) {
        return invalid(usage::safeBrowsingHomeNetwork);
    }
    return reportSafeBrowsingHomeNetwork(*retries, *delay, *timeout);
}

constexpr Keyword safeBrowsingWords[] = {
    {"settings", noWord<getSafeBrowsingSettings>},
    {"stop", noWord<stopSafeBrowsing>},
    {"homenetwork", homeNetworkAction},
    {"errors", listenAction<listenForSafeBrowsingErrors>},
    {"redirects", listenAction<listenForSafeBrowsingBlocks>},
    {"stats", noWord<getSafeBrowsingStats>},
    {"initialize", oneWord<initSafeBrowsing, readText, usage::safeBrowsingInitialize>},
    {"config", oneWord<setSafeBrowsingConfig, readText, usage::safeBrowsingConfig>},
    {"enable", oneWord<setSafeBrowsingEnabled, readOnOff, usage::safeBrowsingEnable>},
    {"loglevel", oneWord<setSafeBrowsingLogLevel, readLogLevel, usage::safeBrowsingLogLevel>},
    {"token", oneWord<refreshSafeBrowsingToken, readText, usage::safeBrowsingToken>},
    {"override", oneWord<setSafeBrowsingSafeNetworkOverride, readOverride, usage::safeBrowsingOverride>},
    {"start", oneWord<startSafeBrowsing, readText, usage::safeBrowsingStart>},
    {"update", oneWord<updateSafeBrowsingExtraInfo, readText, usage::safeBrowsingUpdate>},
};

} // namespace

constinit Keywords const safeBrowsingKeywords = safeBrowsingWords;

int safeBrowsingAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, safeBrowsingKeywords, usage::safeBrowsing);
}
