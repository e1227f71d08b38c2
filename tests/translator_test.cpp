#include "localization/translator.h"

#include <gtest/gtest.h>

namespace kelvaris::localization {
namespace {

// Both tables know "both"; "late" is missing in the used language of the first one only.
const TranslationTable firstTable{{"en",
                                   {{"GREET", "Hello {who}, {who} of {town}"},
                                    {"PLAIN", "plain"},
                                    {"", "empty key"},
                                    {"both", "first en"}}},
                                  {"de", {{"PLAIN", "schlicht"}}}};
const TranslationTable secondTable{{"en", {{"second", "second en"}}}, {"de", {{"both", "second de"}}}};

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

struct Case {
    std::string given;
    std::string expected;
};

TEST_F(Translator, TemplatesAndOtherTexts) {
    const Case cases[] = {
        {"", ""},
        {"{{", "{{"},
        {"x{{PLAIN}}", "x{{PLAIN}}"},
        {"{{PLAIN}}", "plain"},
        {"{{}}", "empty key"},
        {"{{PLAIN}} and more", "plain"},
        {"{{missing}} and more", "{{missing}} and more"},
        {"{{GREET}}", "Hello {who}, {who} of {town}"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(translate(c.given), c.expected) << c.given;
    }
}

TEST_F(Translator, Arguments) {
    const std::string untouched = "Hello {who}, {who} of {town}";
    const Case cases[] = {
        {R"({{GREET}}|{"who":"Ann","other":[]})", "Hello Ann, Ann of {town}"},
        {R"({{GREET}}|{"who":3,"town":null})", "Hello 3, 3 of "},
        {R"({{GREET}}|{"who":"{town}","town":"{who}"})", "Hello {town}, {town} of {town}"},
        {R"({{GREET}}|{"town":"{who}","who":"Ann|}}"})", "Hello Ann|}}, Ann|}} of Ann|}}"},
        {R"({{GREET}} |{"who":"Ann"})", untouched},
        {R"({{GREET}}|{"who":)", untouched},
        {"{{GREET}}|null", untouched},
        {R"({{GREET}}|["who"])", untouched},
        {R"({{GREET}}|{"town":"Oslo","who":{}})", untouched},
        {"{{GREET}}|" + std::string(5000, '['), untouched},
        {R"({{missing}}|{"who":"Ann"})", R"({{missing}}|{"who":"Ann"})"},
    };
    for (const Case& c : cases) {
        // Arguments are replaced in the order of their names: town before who.
        EXPECT_EQ(translate(c.given), c.expected) << c.given.substr(0, 60);
    }
    EXPECT_EQ(variableReplacements(R"(x|{"who":"Ann"})", "{who}"), "{who}");
}

TEST_F(Translator, LanguagesAreAskedTableByTable) {
    usedLanguage = "de";
    EXPECT_EQ(translate("{{PLAIN}}"), "schlicht");
    EXPECT_EQ(translate("{{second}}"), "second en");
    EXPECT_EQ(translate("{{both}}"), "first en");
    usedLanguage = "xx";
    EXPECT_EQ(translate("{{PLAIN}}"), "plain");
}

TEST_F(Translator, RegisteringAgainChangesNothing) {
    registerTranslationTable(&firstTable);
    EXPECT_EQ(translationTables, (std::vector<const TranslationTable*>{&firstTable, &secondTable}));
}

TEST(ReplaceAll, EveryOccurrenceOnce) {
    const struct {
        std::string text, from, to, expected;
    } cases[] = {
        {"aXbX", "X", "XX", "aXXbXX"}, {"aaa", "aa", "a", "aa"}, {"abc", "abc", "", ""},
        {"abc", "x", "y", "abc"},      {"ab", "", "-", "-a-b-"}, {"ab", "", "", "ab"},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        ReplaceAll(text, c.from, c.to);
        EXPECT_EQ(text, c.expected) << c.text << ' ' << c.from;
    }
}

} // namespace
} // namespace kelvaris::localization
