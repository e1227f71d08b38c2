// The names of servers, connecting by numbers that no word says.

#include "support/handle.h"
#include "support/rows.h"

#include <cstring>
#include <gtest/gtest.h>

using namespace harness;

TEST(Servers, Names) {
    struct Case {
        KelvarisSDK_ServerInformation info;
        std::string name;
    };
    for (Case const& c : {
             Case{{"us", "nyc", 12, true}, "United States - New York City #12"},
             Case{{"us", "", 0, false}, "United States"},
             Case{{"US", "", -1, false}, "{{LOCATION.COUNTRY.US}}"},
             Case{{"proxy", "", 0, false}, "proxy"},
             Case{{"", "oslo", 1, false}, " - Oslo #1"},
         }) {
        EXPECT_EQ(KelvarisSDK_ServerInformation_toString(c.info), c.name);
    }
    EXPECT_STREQ(KelvarisSDK_ServerInformation_GetCountryName({"us", "nyc", 12, false}), "United States");
    EXPECT_STREQ(KelvarisSDK_ServerInformation_GetCityName({"us", "nyc", 12, false}), "New York City");

    // The country runs on through the city; the name is cut after 100 bytes.
    KelvarisSDK_ServerInformationDetailed full{};
    std::memset(full.country, 'c', sizeof(full.country));
    std::memset(full.city, 'y', sizeof(full.city));
    full.num = 0x61616161;
    full.torrentAllowed = true;
    std::string const city(20, 'y');
    std::string const name =
        "{{LOCATION.COUNTRY." + std::string(10, 'c') + city + "}} - {{LOCATION.CITY." + city + "}} #";
    EXPECT_EQ(KelvarisSDK_ServerInformationDetailed_toString(full), (name + "1633771873").substr(0, 100));
}

// Numbers that the tool's words can't say.
TEST(Connecting, MethodsOfOtherCallers) {
    Step const connected{"server_auto_connect", R"({"server":"auto"})", {state(6)}};
    ScriptedDaemon daemon({connected, connected}, {.appName = std::nullopt});
    Handle const handle(daemon.port());
    for (unsigned const number : {7U, 8U}) {
        auto const method = static_cast<KelvarisSDK_AutoConnectMethod>(number);
        EXPECT_FALSE(KelvarisSDK_ConnectAuto(handle.sdk, method, nullptr, nullptr).base.error);
    }
}
