// This is the grammar of "adapter". The forms differ in which wrong number of words they call missing and which
// invalid.

#include "actions.h"
#include "calls.h"
#include "readers.h"

namespace {

constexpr char unlimited[] = "unlimited";

constexpr auto readPriority =
    readEnumeration<KelvarisSDK_ConnectionPriority_toString, KelvarisSDK_ConnectionPriority_NEVER>;

int priorityAction(int argc, char* argv[]) {
    if (argc != 5) { // too many words count as missing as well
        return missing(usage::priority);
    }
    auto const priority = readPriority(argv[4]);
    return priority ? setAdapterPriority(argv[3], *priority) : invalid(usage::priority);
}

int rateLimitAction(int argc, char* argv[]) {
    if (argc != 5) { // too few words count as invalid as well
        return invalid(usage::rateLimit);
    }
    if (equals(argv[4], unlimited)) {
        return resetConnectionRateLimit(argv[3]);
    }
    auto const bitsPerSecond = readNumber(argv[4]);
    return bitsPerSecond ? setAdapterRateLimit(argv[3], *bitsPerSecond) : invalid(usage::rateLimit);
}

int overlimitRateLimitAction(int argc, char* argv[]) {
    char const* const line = usage::overlimitRateLimit;
    if (argc < 5) {
        return missing(line);
    }
    if (argc > 5) {
        return invalid(line);
    }
    auto const bitsPerSecond = readNumber(argv[4]);
    return bitsPerSecond ? setAdapterOverlimitRatelimit(argv[3], *bitsPerSecond) : invalid(line);
}

int resetUsageAction(int argc, char* argv[]) {
    if (argc < 4) {
        return missing(usage::resetUsage);
    }
    return argc == 4 ? resetAdapterUsage(argv[3]) : invalid(usage::resetUsage);
}

int monthlyLimitAction(int argc, char* argv[]) {
    if (argc < 7) {
        return missing(usage::monthlyLimit);
    }
    if (argc > 7) {
        return invalid(usage::monthlyLimit);
    }
    if (equals(argv[5], unlimited)) { // the count asks for a day, which isn't read here
        return disableAdapterMonthlyDataLimit(argv[4]);
    }
    auto const bytes = readNumber(argv[5]);
    auto const resetDay = readNumber(argv[6]);
    if (!bytes || !resetDay) {
        return invalid(usage::monthlyLimit);
    }
    return setAdapterMonthlyDataLimit(argv[4], *bytes, *resetDay);
}

int dailyLimitAction(int argc, char* argv[]) {
    if (argc < 6) {
        return missing(usage::dailyLimit);
    }
    if (argc > 6) {
        return invalid(usage::dailyLimit);
    }
    if (equals(argv[5], unlimited)) {
        return disableAdapterDailyDataLimit(argv[4]);
    }
    auto const bytes = readNumber(argv[5]);
    return bytes ? setAdapterDailyDataLimit(argv[4], *bytes) : invalid(usage::dailyLimit);
}

int dailyBoostAction(int argc, char* argv[]) {
    if (argc < 6) {
        return missing(usage::dailyBoost);
    }
    if (argc > 6) {
        return invalid(usage::dailyBoost);
    }
    auto const bytes = readNumber(argv[5]);
    return bytes ? addAdapterDailyDataLimitBoost(argv[4], *bytes) : invalid(usage::dailyBoost);
}

constexpr Keyword dataLimitWords[] = {
    {"monthly", monthlyLimitAction},
    {"daily", dailyLimitAction},
    {"dailyboost", dailyBoostAction},
};

constinit Keywords const dataLimitKeywords = dataLimitWords;

int dataLimitAction(int argc, char* argv[]) {
    if (argc == 3) {
        return missing(usage::adapterEncryption); // a data limit alone shows this usage, not its own
    }
    return runKeyword(argc, argv, 3, dataLimitKeywords, usage::dataLimit);
}

constexpr Keyword adapterWords[] = {
    {"datalimit", dataLimitAction, &dataLimitKeywords},
    {"priority", priorityAction},
    {"ratelimit", rateLimitAction},
    {"overlimitratelimit", overlimitRateLimitAction},
    {"encryption", adapterEncryptionAction},
    {"resetusage", resetUsageAction},
};

} // namespace

constinit Keywords const adapterKeywords = adapterWords;

int adapterAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, adapterKeywords, usage::adapter);
}
