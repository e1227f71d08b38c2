// The server directory, the names of servers, connecting by numbers that no word says.

#include "support/handle.h"
#include "support/rows.h"

#include <cstring>
#include <gtest/gtest.h>

using namespace harness;

namespace {

std::string quoted(std::string const& text) {
    return '"' + text + '"';
}

// An entry of the list in a document.
std::string listed(std::string const& country, std::string const& city, int num, bool isPrivate) {
    std::string const number = std::to_string(num);
    return R"({"city":)" + quoted(city) + R"(,"country":)" + quoted(country) + R"(,"isPrivate":)" +
           (isPrivate ? "true" : "false") + R"(,"num":)" + number + R"(,"tag":)" +
           quoted((isPrivate ? "private" : "") + country + "-" + city + "-" + number) + "}";
}

Row directory(std::string const& list, std::string const& publicServers, std::string const& privateServers) {
    return row("show servers", {asked("directory", list)},
               styled(R"({"public":[)" + publicServers + R"(],"private":[)" + privateServers + "]}"));
}

} // namespace

TEST(Servers, List) {
    std::string const mixed =
        R"([{"private":"yes","country":"privateus","city":"nyc","num":3},)"
        R"({"private":"no","country":"privateus","num":"7"},{"private":"yes","country":"us","num":"x"},)"
        R"({"private":"YES","country":"usprivate","city":"abcdefghijklmnopqrstuvw","num":65},)"
        R"({"private":"yes","country":"privateprivatefr"},null,{"country":"\\\"\u0007","city":"ö/<\u0001"}])";
    std::string first400;
    for (int i = 1; i <= 400; ++i) {
        first400 += (i > 1 ? "," : "") + listed("us", "la", i, false);
    }
    runRows({
        directory('[' + series(401, R"({"country":"us","city":"la","num":#})", 1) + ']', first400, ""),
        row("show countries", {asked("directory", "[]")}, styled(R"({"public":[],"private":[]})")),
        row("show cities", {asked("directory", "[]")}, styled(R"({"public":[],"private":[]})")),
        directory(mixed,
                  listed("privateus", "", 7, false) + "," +
                      listed("usprivate", "abcdefghijklmnopqrst", 65, false) + "," +
                      listed("", "", 0, false) + "," + listed(R"(\\\"\u0007)", R"(ö/<\u0001)", 0, false),
                  listed("us", "nyc", 3, true) + "," + listed("us", "", 0, true) + "," +
                      listed("privatefr", "", 0, true)),
        // An object is a list of its members' values.
        directory(R"({"b":{"country":"us"},"a":{"country":"de"}})",
                  listed("de", "", 0, false) + "," + listed("us", "", 0, false), ""),
        failing("show servers", {asked("directory", "[1]")}, unreadable),
    });
}

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
