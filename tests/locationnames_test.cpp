#include "locationnames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <thread>
#include <vector>

namespace kelvarissdk {
namespace {

using kelvaris::localization::sdklibraryTranslationTable;

// The code points of a text; empty when the text is no valid UTF-8.
std::u32string decode(const std::string& text) {
    std::u32string points;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead >> 5 == 6 ? 2 : lead >> 4 == 14 ? 3 : 0;
        if (length == 0 || i + length > text.size()) {
            return {};
        }
        char32_t point = length == 1 ? lead : lead & (0xFFU >> (length + 1));
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if (next >> 6 != 2) {
                return {};
            }
            point = point << 6 | (next & 0x3FU);
        }
        points += point;
        i += length;
    }
    return points;
}

bool isOfLanguage(char32_t c, const std::string& language) {
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
    static const std::string& name(const std::string& language, const std::string& place) {
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
    std::size_t longest = 0;
    for (const auto& [language, texts] : sdklibraryTranslationTable) {
        EXPECT_EQ(texts.size(), 135U) << language; // a repeated key would make it fewer
        const auto countries = std::count_if(texts.begin(), texts.end(), [](const auto& text) {
            return text.first.starts_with("LOCATION.COUNTRY.");
        });
        EXPECT_EQ(countries, 55) << language;
        for (const auto& [key, text] : texts) {
            longest = std::max(longest, text.size());
        }
    }
    EXPECT_EQ(locationRows.size(), 135U);
    EXPECT_EQ(longest, 56U);
    EXPECT_EQ(name("ru", "COUNTRY.cn").size(), 56U);
}

TEST_F(LocationNames, TextsAreInTheScriptOfTheirLanguage) {
    std::set<std::string> odd;
    int stressMarks = 0;
    for (const auto& [language, texts] : sdklibraryTranslationTable) {
        for (const auto& [key, text] : texts) {
            const std::u32string points = decode(text);
            ASSERT_FALSE(points.empty()) << language << ' ' << key;
            const bool plain = std::all_of(points.begin(), points.end(),
                                           [&name = language](char32_t c) { return isOfLanguage(c, name); });
            const bool blanks =
                text.front() == ' ' || text.back() == ' ' || text.find("  ") != std::string::npos;
            if (!plain || blanks) {
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
    for (const auto& entry : sdklibraryTranslationTable) {
        EXPECT_EQ(name(entry.first, "COUNTRY.hk"), name(entry.first, "CITY.kowloon"));
        EXPECT_EQ(name(entry.first, "COUNTRY.sg"), name(entry.first, "CITY.singapore"));
    }
    EXPECT_EQ(name("zh", "CITY.tallinn"), name("zh", "COUNTRY.ee"));
    const struct {
        const char *language, *place, *text;
    } cases[] = {
        {"ar", "CITY.philadelphia",
         "\xEF\xBB\x92\xEF\xBB\xB3\xEF\xBB\xBB\xEF\xBA\xAA"
         "\xEF\xBB\xA0\xEF\xBB\x94\xEF\xBB\xB3\xEF\xBA\x8D"},
        {"es", "COUNTRY.tw", "República de China"},
        {"pt", "CITY.chisinau", "Chi\xC5\x9Fin\xC4\x83u"},
        {"ro", "CITY.chisinau", "Chi\xC8\x99in\xC4\x83u"},
        {"ru", "COUNTRY.tw", "Тайва\xCC\x81нь"},
        {"tr", "COUNTRY.ly", "Libya "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(name(c.language, c.place), c.text);
    }
}

TEST_F(LocationNames, LookUps) {
    const struct {
        const char *code, *country, *city;
    } cases[] = {
        {"", "", ""},
        {"proxy", "proxy", "{{LOCATION.CITY.proxy}}"},
        {"cn", "People's Republic of China", "{{LOCATION.CITY.cn}}"},
        {"US", "{{LOCATION.COUNTRY.US}}", "{{LOCATION.CITY.US}}"},
        {"izmir", "{{LOCATION.COUNTRY.izmir}}", "İzmir"},
        {"nova", "{{LOCATION.COUNTRY.nova}}", "Northern Virginia"},
        {"nyc", "{{LOCATION.COUNTRY.nyc}}", "New York City"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(getCountry(c.code), c.country);
        EXPECT_EQ(getCity(c.code), c.city);
    }
}

} // namespace
} // namespace kelvarissdk
