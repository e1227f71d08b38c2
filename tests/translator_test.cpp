#include "translator.h"

#include <gtest/gtest.h>

namespace kelvaris::localization {
namespace {

TranslationTable const firstTable{{"en",
                                   {{"GREET", "Hello {who}, {who} of {town}"},
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

// Arguments are replaced in the order of their names: town before who.
TEST_F(Translator, TemplatesAndArguments) {
    std::string const untouched = "Hello {who}, {who} of {town}";
    const struct {
        std::string given, expected;
    } cases[] = {
        {"", ""},
        {"{{", "{{"},
        {"x{{PLAIN}}", "x{{PLAIN}}"},
        {"{{}}", "empty key"},
        {"{{PLAIN}} and more", "plain"},
        {"{{GREET}}", untouched},
        {R"({{GREET}}|{"who":"Ann","other":[]})", "Hello Ann, Ann of {town}"},
        {R"({{GREET}}|{"who":3,"town":null})", "Hello 3, 3 of "},
        {R"({{GREET}}|{"who":"{town}","town":"{who}"})", "Hello {town}, {town} of {town}"},
        {R"({{GREET}}|{"town":"{who}","who":"Ann|}}"})", "Hello Ann|}}, Ann|}} of Ann|}}"},
        {R"({{GREET}} |{"who":"Ann"})", untouched},
        {R"({{GREET}}|{"who":)", untouched},
        {R"({{GREET}}|["who"])", untouched},
        {R"({{GREET}}|{"town":"Oslo","who":{}})", untouched},
        {"{{GREET}}|" + std::string(5000, '['), untouched},
        {R"({{missing}}|{"who":"Ann"})", R"({{missing}}|{"who":"Ann"})"},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(translate(c.given), c.expected) << c.given.substr(0, 60);
    }
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
    const struct {
        std::string text, from, to, expected;
    } cases[] = {
        {"aXbX", "X", "XX", "aXXbXX"}, {"XX", "X", "y", "yy"},   {"aaa", "aa", "a", "aa"},
        {"abc", "abc", "", ""},        {"abc", "x", "y", "abc"}, {"ab", "", "-", "-a-b-"},
        {"ab", "", "", "ab"},
    };
    for (auto const& c : cases) {
        std::string text = c.text;
        ReplaceAll(text, c.from, c.to);
        EXPECT_EQ(text, c.expected) << c.text << ' ' << c.from;
    }
}

} // namespace
} // namespace kelvaris::localization
