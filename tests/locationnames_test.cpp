#include "locationnames.h"
#include "support/source.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <map>
#include <thread>
#include <vector>

namespace kelvarissdk {
namespace {

using kelvaris::localization::sdklibraryTranslationTable;

// A place's names by their languages, by the place's key.
std::map<std::string, std::map<std::string, std::string>> places() {
    getCountry("us"); // fills the table
    std::map<std::string, std::map<std::string, std::string>> places;
    for (auto const& [language, texts] : sdklibraryTranslationTable) {
        for (auto const& [key, text] : texts) {
            places[key][language] = text;
        }
    }
    return places;
}

// The first test: nothing has filled the table before.
TEST(LocationNames, ManyThreadsMayAskAtOnce) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            kelvaris::localization::load_sdklibraryTranslationTable();
            kelvaris::localization::translate("{{LOCATION.CITY.oslo}}");
            EXPECT_EQ(getCity("oslo"), "Oslo");
            EXPECT_EQ(getCountry("no"), "Norway");
        });
    }
    threads.clear();
    EXPECT_EQ(kelvaris::localization::translationTables.size(), 1U);
}

TEST(LocationNames, EveryNameIsListed) {
    std::string listing;
    for (auto const& [key, names] : places()) {
        listing += key + '\n';
        for (auto const& [language, name] : names) {
            listing += "    " + language + " \"" + name + "\"\n";
        }
    }
    EXPECT_EQ(listing, harness::golden("places.txt"));
}

// A new place needs a key of its own and a name in every language.
TEST(LocationNames, EveryPlaceIsWhole) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(places().size(), locationRows.size());
    for (auto const& [key, names] : places()) {
        EXPECT_EQ(names.size(), 10U) << key;
        for (auto const& [language, name] : names) {
            EXPECT_NE(name, "") << key << ' ' << language;
            EXPECT_NE(std::mbstowcs(nullptr, name.c_str(), 0), std::size_t(-1)) << key << ' ' << language;
        }
    }
}

} // namespace
} // namespace kelvarissdk
