#include "locationnames.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace kelvaris::localization {

namespace {
NeverDestroyed<TranslationTable> table;
} // namespace

TranslationTable& sdklibraryTranslationTable = table.object;

void load_sdklibraryTranslationTable() {
    registerTranslationTable(&sdklibraryTranslationTable);
}

} // namespace kelvaris::localization

namespace kelvarissdk {

namespace {

void fillTable() {
    // The table may be registered already, and another thread may be looking something up in it.
    std::lock_guard const lock(kelvaris::localization::translationTablesMutex);
    for (std::size_t column = 0; column < locationLanguages.size(); ++column) {
        auto& texts =
            kelvaris::localization::sdklibraryTranslationTable[std::string(locationLanguages[column])];
        for (LocationRow const& row : locationRows) {
            texts.emplace(row.key, row.names[column]);
        }
    }
}

std::string translateLocation(char const* prefix, std::string code) {
    if (code.empty()) {
        return code;
    }
    // The names need no library object, so the first look-up registers the table. Several may do so at once, of which one
    // changes something. Nobody waits for the first one by anything but the mutex, which a forked child finds free.
    static std::atomic<bool> isFilled = false;
    if (!isFilled) {
        fillTable();
        kelvaris::localization::load_sdklibraryTranslationTable();
        isFilled = true;
    }
    return kelvaris::localization::translate(prefix + std::move(code) + "}}");
}

} // namespace

std::string getCountry(std::string code) {
    if (code == "proxy") {
        return code;
    }
    return translateLocation("{{LOCATION.COUNTRY.", std::move(code));
}

std::string getCity(std::string code) {
    return translateLocation("{{LOCATION.CITY.", std::move(code));
}

} // namespace kelvarissdk
