#include "locationnames.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace kelvarissdk {
namespace {

using kelvaris::localization::sdklibraryTranslationTable;

class LocationNames : public testing::Test {
protected:
    static void SetUpTestSuite() {
        kelvaris::localization::load_sdklibraryTranslationTable();
        getCountry("us"); // fills the table
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

// Every key and text of the table, though some of its texts look like slips.
TEST_F(LocationNames, Table) {
    EXPECT_EQ(sdklibraryTranslationTable.size(), 10U);
    std::string all;
    for (auto const& [language, texts] : sdklibraryTranslationTable) {
        EXPECT_EQ(texts.size(), 135U) << language; // a repeated key would make it fewer
        for (auto const& [key, text] : texts) {
            all += language + ' ' + key + ' ' + text + '\n';
        }
    }
    EXPECT_EQ(harness::hash(all), 8677022140261605115U);
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
