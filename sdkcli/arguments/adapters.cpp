// The grammar of "adapter". Each form has its own idea of which number of words is missing and which invalid.

#include "../calls.h"
#include "actions.h"
#include "readers.h"

namespace {

constexpr char unlimited[] = "unlimited";

std::optional<KelvarisSDK_ConnectionPriority> readPriority(char const* word) {
    if (is(word, "always")) {
        return KelvarisSDK_ConnectionPriority_ALWAYS;
    }
    if (is(word, "secondary")) {
        return KelvarisSDK_ConnectionPriority_SECONDARY;
    }
    if (is(word, "backup")) {
        return KelvarisSDK_ConnectionPriority_BACKUP;
    }
    if (is(word, "never")) {
        return KelvarisSDK_ConnectionPriority_NEVER;
    }
    return std::nullopt;
}

int priorityAction(int argc, char* argv[]) {
    char const* const usage = "adapter priority <adapter id> <always|secondary|backup|never>";
    if (argc != 5) { // too many words as well
        return missing(usage);
    }
    auto const priority = readPriority(argv[4]);
    return priority ? setAdapterPriority(argv[3], *priority) : invalid(usage);
}

int rateLimitAction(int argc, char* argv[]) {
    char const* const usage = "adapter ratelimit <adapter id> <speed in bits per second|unlimited>";
    if (argc != 5) { // too few words as well
        return invalid(usage);
    }
    if (is(argv[4], unlimited)) {
        return resetConnectionRateLimit(argv[3]);
    }
    auto const bitsPerSecond = readNumber(argv[4]);
    return bitsPerSecond ? setAdapterRateLimit(argv[3], *bitsPerSecond) : invalid(usage);
}

int overlimitRateLimitAction(int argc, char* argv[]) {
    char const* const usage =
        "adapter overlimitratelimit <adapter id> <speed in bits per second|0 to stop using>";
    if (argc < 5) {
        return missing(usage);
    }
    if (argc > 5) {
        return invalid(usage);
    }
    auto const bitsPerSecond = readNumber(argv[4]);
    return bitsPerSecond ? setAdapterOverlimitRatelimit(argv[3], *bitsPerSecond) : invalid(usage);
}

int resetUsageAction(int argc, char* argv[]) {
    char const* const usage = "adapter resetusage <adapter id>";
    if (argc < 4) {
        return missing(usage);
    }
    return argc == 4 ? resetAdapterUsage(argv[3]) : invalid(usage);
}

int monthlyLimitAction(int argc, char* argv[]) {
    char const* const usage = "adapter datalimit monthly <adapter id> <data usage in bytes|unlimited> "
                              "<day of the month to reset on|0 for last 30 days>";
    if (argc < 7) {
        return missing(usage);
    }
    if (argc > 7) {
        return invalid(usage);
    }
    if (is(argv[5], unlimited)) { // the day has to be there, whatever it is
        return disableAdapterMonthlyDataLimit(argv[4]);
    }
    auto const bytes = readNumber(argv[5]);
    auto const resetDay = readNumber(argv[6]);
    if (!bytes || !resetDay) {
        return invalid(usage);
    }
    return setAdapterMonthlyDataLimit(argv[4], *bytes, *resetDay);
}

int dailyLimitAction(int argc, char* argv[]) {
    char const* const usage = "adapter datalimit daily <adapter id> <data usage in bytes|unlimited>";
    if (argc < 6) {
        return missing(usage);
    }
    if (argc > 6) {
        return invalid(usage);
    }
    if (is(argv[5], unlimited)) {
        return disableAdapterDailyDataLimit(argv[4]);
    }
    auto const bytes = readNumber(argv[5]);
    return bytes ? setAdapterDailyDataLimit(argv[4], *bytes) : invalid(usage);
}

int dailyBoostAction(int argc, char* argv[]) {
    char const* const usage = "adapter datalimit dailyboost <adapter id> <additional bytes>";
    if (argc < 6) {
        return missing(usage);
    }
    if (argc > 6) {
        return invalid(usage);
    }
    auto const bytes = readNumber(argv[5]);
    return bytes ? addAdapterDailyDataLimitBoost(argv[4], *bytes) : invalid(usage);
}

int dataLimitAction(int argc, char* argv[]) {
    if (argc == 3) {
        // Not this form's own: it shows the usage of adapter encryption.
        return missing("adapter encryption <adapter id> <on|off>");
    }
    char const* const period = argv[3];
    if (is(period, "monthly")) {
        return monthlyLimitAction(argc, argv);
    }
    if (is(period, "daily")) {
        return dailyLimitAction(argc, argv);
    }
    if (is(period, "dailyboost")) {
        return dailyBoostAction(argc, argv);
    }
    // This message alone has the capital L.
    return invalid("adapter dataLimit <monthly|daily|dailyboost>");
}

} // namespace

int adapterAction(int argc, char* argv[]) {
    char const* const usage =
        "adapter <datalimit|priority|ratelimit|overlimitratelimit|encryption|resetusage>";
    if (argc == 2) {
        return missing(usage);
    }
    char const* const word = argv[2];

    // clang-format off
    if (is(word, "datalimit")) return dataLimitAction(argc, argv);
    if (is(word, "priority")) return priorityAction(argc, argv);
    if (is(word, "ratelimit")) return rateLimitAction(argc, argv);
    if (is(word, "overlimitratelimit")) return overlimitRateLimitAction(argc, argv);
    if (is(word, "encryption")) return adapterEncryptionAction(argc, argv);
    if (is(word, "resetusage")) return resetUsageAction(argc, argv);
    // clang-format on

    return invalid(usage);
}
