#include "locationnames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <iconv.h>
#include <set>
#include <thread>
#include <vector>

namespace kelvarissdk {
namespace {

using kelvaris::localization::sdklibraryTranslationTable;

// The code points of a text; empty when the text is no valid UTF-8.
std::u32string decode(std::string text) {
    std::u32string points(text.size(), U'\0');
    char* from = text.data();
    std::size_t left = text.size();
    auto* to = reinterpret_cast<char*>(points.data());
    std::size_t room = 4 * left;
    iconv_t const converter = iconv_open("UCS-4LE", "UTF-8");
    bool const isValid = iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
    iconv_close(converter);
    points.resize(isValid ? points.size() - room / 4 : 0);
    return points;
}

bool isOfLanguage(char32_t c, std::string const& language) {
    if (language == "ar") {
        return (c >= 0x621 && c <= 0x64A) || c == ' ';
    }
    if (language == "ru") {
        return (c >= 0x410 && c <= 0x451) || c == 0x301 || c == ' ' || c == '-';
    }
    if (language == "zh") {
        return c >= 0x4E00 && c <= 0x9FFF;
    }
    return (c < 0x80 && std::isalpha(static_cast<int>(c)) != 0) || (c >= 0xC0 && c < 0x250) || c == ' ' ||
           c == '-' || c == '.' || c == '\'';
}

class LocationNames : public testing::Test {
protected:
    static void SetUpTestSuite() {
        kelvaris::localization::load_sdklibraryTranslationTable();
        getCountry("us"); // fills the table
    }
    static std::string const& name(std::string const& language, std::string const& place) {
        return sdklibraryTranslationTable.at(language).at("LOCATION." + place);
    }
};

// The first test: nothing has filled the table before.
TEST(LocationNamesFirst, ManyThreadsMayAskAtOnce) {
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

TEST_F(LocationNames, EveryLanguageHasEveryPlace) {
    ASSERT_EQ(sdklibraryTranslationTable.size(), 10U);
    EXPECT_EQ(locationRows.size(), 135U);
    for (auto const& [language, texts] : sdklibraryTranslationTable) {
        EXPECT_EQ(texts.size(), 135U) << language; // a repeated key would make it fewer
        EXPECT_EQ(std::count_if(texts.begin(), texts.end(),
                                [](auto const& text) { return text.first.starts_with("LOCATION.COUNTRY."); }),
                  55)
            << language;
    }
}

TEST_F(LocationNames, TextsAreInTheScriptOfTheirLanguage) {
    std::set<std::string> odd;
    int stressMarks = 0;
    for (auto const& [language, texts] : sdklibraryTranslationTable) {
        for (auto const& [key, text] : texts) {
            std::u32string const points = decode(text);
            ASSERT_FALSE(points.empty()) << language << ' ' << key;
            bool const isPlain = std::all_of(points.begin(), points.end(), [&name = language](char32_t c) {
                return isOfLanguage(c, name);
            });
            if (!isPlain || text.front() == ' ' || text.back() == ' ' ||
                text.find("  ") != std::string::npos) {
                odd.insert(language + ' ' + key);
            }
            stressMarks += static_cast<int>(std::count(points.begin(), points.end(), U'\u0301'));
        }
    }
    EXPECT_EQ(stressMarks, 18);
    EXPECT_EQ(odd, (std::set<std::string>{"ar LOCATION.CITY.philadelphia", "ar LOCATION.CITY.test",
                                          "tr LOCATION.COUNTRY.ly"}));
}

TEST_F(LocationNames, TextsThatLookLikeSlips) {
    for (auto const& entry : sdklibraryTranslationTable) {
        EXPECT_EQ(name(entry.first, "COUNTRY.hk"), name(entry.first, "CITY.kowloon"));
        EXPECT_EQ(name(entry.first, "COUNTRY.sg"), name(entry.first, "CITY.singapore"));
    }
    EXPECT_EQ(name("zh", "CITY.tallinn"), name("zh", "COUNTRY.ee"));
    const struct {
        char const *language, *place, *text;
    } cases[] = {
        {"ar", "CITY.philadelphia", "\uFED2\uFEF3\uFEFB\uFEAA\uFEE0\uFED4\uFEF3\uFE8D"},
        {"es", "COUNTRY.tw", "República de China"},
        {"pt", "CITY.chisinau", "Chi\u015Fin\u0103u"},
        {"ro", "CITY.chisinau", "Chi\u0219in\u0103u"},
        {"ru", "COUNTRY.tw", "Тайва\u0301нь"},
        {"tr", "COUNTRY.ly", "Libya "},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(name(c.language, c.place), c.text);
    }
}

TEST_F(LocationNames, LookUps) {
    const struct {
        char const *code, *country, *city;
    } cases[] = {
        {"", "", ""},
        {"proxy", "proxy", "{{LOCATION.CITY.proxy}}"},
        {"cn", "People's Republic of China", "{{LOCATION.CITY.cn}}"},
        {"US", "{{LOCATION.COUNTRY.US}}", "{{LOCATION.CITY.US}}"},
        {"izmir", "{{LOCATION.COUNTRY.izmir}}", "İzmir"},
        {"nova", "{{LOCATION.COUNTRY.nova}}", "Northern Virginia"},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(getCountry(c.code), c.country);
        EXPECT_EQ(getCity(c.code), c.city);
    }
}

} // namespace
} // namespace kelvarissdk
