// The text service, and the names of places in it.

#include "locationnames.h"
#include "support/texts.h"
#include "translator.h"

#include <clocale>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <thread>

using namespace kelvaris::localization;
using namespace kelvarissdk;

namespace {

// Returns a place's names by their languages, by the place's key.
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

// This is the first test, because nothing may have filled the table before.
TEST(LocationNames, ManyThreadsMayAskAtOnce) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            load_sdklibraryTranslationTable();
            translate("{{LOCATION.CITY.oslo}}");
            EXPECT_EQ(getCity("oslo"), "Oslo");
            EXPECT_EQ(getCountry("no"), "Norway");
        });
    }
    threads.clear();
    EXPECT_EQ(translationTables.size(), 1U);
}

// A new place needs a key of its own and a name in every language.
TEST(LocationNames, EveryPlaceIsWhole) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    std::string listing;
    for (auto const& [key, names] : places()) {
        EXPECT_EQ(names.size(), 10U) << key;
        listing += key + '\n';
        for (auto const& [language, name] : names) {
            listing += "    " + language + " \"" + name + "\"\n";
            EXPECT_NE(name, "") << key << ' ' << language;
            EXPECT_NE(std::mbstowcs(nullptr, name.c_str(), 0), std::size_t(-1)) << key << ' ' << language;
        }
    }
    EXPECT_EQ(places().size(), locationRows.size());
    EXPECT_EQ(listing, harness::golden("places.txt"));
}

TranslationTable const firstTable{{"en",
                                   {{"GREET", "Hello {who}, {who} of {town}."},
                                    {"PLAIN", "plain"},
                                    {"", "empty key"},
                                    {"both", "first en"}}},
                                  {"de", {{"PLAIN", "schlicht"}}}};
TranslationTable const secondTable{{"en", {{"second", "second en"}}}, {"de", {{"both", "second de"}}}};

class Translator : public testing::Test {
protected:
    void SetUp() override {
        registerTranslationTable(&firstTable);
        registerTranslationTable(&secondTable);
    }
    void TearDown() override {
        translationTables.clear();
        usedLanguage = "en";
    }
};

// The golden file has templates with their arguments, and below each what becomes of it. Arguments are replaced in the
// order of their names: town before who.
TEST_F(Translator, TemplatesAndArguments) {
    std::istringstream lines(harness::golden("translations.txt"));
    for (std::string given, expected; std::getline(lines, given) && std::getline(lines, expected);) {
        EXPECT_EQ("= " + translate(given), expected) << given;
    }
    EXPECT_EQ(translate(""), "");
    EXPECT_EQ(translate("{{GREET}}|" + std::string(5000, '[')), "Hello {who}, {who} of {town}.");
    EXPECT_EQ(variableReplacements(R"(x|{"who":"Ann"})", "{who}"), "{who}");
}

// Each table is asked for the used language and then for English before the next one. Registering again changes
// nothing.
TEST_F(Translator, LanguagesAreAskedTableByTable) {
    registerTranslationTable(&firstTable);
    EXPECT_EQ(translationTables, (std::vector<TranslationTable const*>{&firstTable, &secondTable}));
    usedLanguage = "de";
    EXPECT_EQ(translate("{{PLAIN}}"), "schlicht");
    EXPECT_EQ(translate("{{second}}"), "second en");
    EXPECT_EQ(translate("{{both}}"), "first en");
    usedLanguage = "xx";
    EXPECT_EQ(translate("{{PLAIN}}"), "plain");
}

TEST(ReplaceAll, EveryOccurrenceOnce) {
    std::string const cases[][4] = {
        {"aXbX", "X", "XX", "aXXbXX"}, {"XX", "X", "y", "yy"},   {"aaa", "aa", "a", "aa"},
        {"abc", "abc", "", ""},        {"abc", "x", "y", "abc"}, {"ab", "", "-", "-a-b-"},
        {"ab", "", "", "ab"},
    };
    for (auto const& [given, from, to, expected] : cases) {
        std::string text = given;
        ReplaceAll(text, from, to);
        EXPECT_EQ(text, expected) << given << ' ' << from;
    }
}

} // namespace
