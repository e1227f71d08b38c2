// Servers, connecting, the connect method.

#include "support/rows.h"
#include "support/sdk.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

std::string quoted(std::string const& text) {
    return '"' + text + '"';
}

Step connecting(std::string const& server, std::vector<Answer> const& answers) {
    return {"server_auto_connect", R"({"server":)" + quoted(server) + "}", answers};
}

Row current(std::string const& server, std::string const& document) {
    return row("show currentserver", {asked("connected_server", server)}, document);
}

// The document of a connection that no server was reported of.
std::string const noServer = styled(R"({"city":"","country":"","friendlyName":"","isPrivate":false,"num":0,)"
                                    R"("publicIP":[],"tag":"--0","torrentAllowed":false})");

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

// Every form of the words and the text that names a server by it; the texts of the setting differ.
TEST(Connecting, FormsOfTheWords) {
    struct Form {
        std::string words, server, method, countryCode; // without a method it is none of connectmethod
    };
    std::vector<Row> rows;
    for (auto const& [words, server, method, countryCode] : {
             Form{"", "auto", "", ""},
             Form{" closest", "user", "user", ""},
             Form{" private", "userprivate", "userprivate", ""},
             Form{" public", "userpublic", "userpublic", ""},
             Form{" last", "last", "", ""},
             Form{" p2p", "p2p", "p2p", ""},
             Form{" proxy", "proxy", "proxy", ""},
             Form{" US", "US", "country", "US"},
             Form{" us nyc", "us|nyc", "country", "us|nyc"},
             Form{" us nyc 1", "us|nyc|1", "country", "us|nyc|1"},
             Form{" us ''", "us|", "country", "us|"},
             Form{" privateus nyc 2147483647", "privateus|nyc|2147483647", "country",
                  "privateus|nyc|2147483647"},
         }) {
        rows.push_back(
            row("connect" + words, {connecting(server, {state(3), state(4), state(6)})}, noServer));
        std::string const payload = R"({"connect_to_best_method":)" + quoted(method) + R"(,"countryCode":)" +
                                    quoted(countryCode) + "}";
        if (!method.empty()) {
            rows.push_back(row("connectmethod" + words,
                               {{"set_server_connectbest", payload, {report("server_settings", "null")}}},
                               styled(R"({"city":"","connectMethod":"closest","country":"","num":0})")));
        }
    }
    runRows(rows);
}

TEST(Connecting, RefusedWords) {
    Refusals connect{"connect [ closest | public | private | p2p | <country> [<city> [<number>]] | last ]",
                     {},
                     {"connectmethod us new-york", "connectmethod us nyc2 0", "connect us new-york"}};
    Refusals method{"connectmethod < closest | public | private | p2p | <country> [<city> [<number>]] >",
                    {"connectmethod"},
                    {"connectmethod last"}};
    for (std::string const words :
         {"USA", "u1", "''", "privateu1", "privateu", "privateuss", "private1x", "Privateus", "public nyc",
          "u1 nyc2 0", "us nyc 0", "us nyc 3x", "us nyc 2147483648", "us nyc 3 4"}) {
        connect.invalid.push_back("connect " + words);
        method.invalid.push_back("connectmethod " + words);
    }
    std::vector<Row> rows;
    addRefusals(rows, {connect,
                       method,
                       {"disconnect", {}, {"disconnect x"}},
                       {"show < servers | settings | privacy | adapters | currentserver | user | directory | "
                        "connectmethod | streamingbypass | disconnect | streaming | speedtest>",
                        {"show"},
                        {"show servers user", "show Servers"}}});
    runRows(rows);
}

TEST(Connecting, ReportsTheServer) {
    std::string const server = R"({"country":"us","city":"nyc","num":12,"private":"no","torrent":"no",)"
                               R"("publicIP":["192.0.2.1","2001:db8::1"]})";
    std::string const document =
        styled(R"({"city":"nyc","country":"us","friendlyName":"United States - New York City #12",)"
               R"("isPrivate":false,"num":12,"publicIP":["192.0.2.1","2001:db8::1"],"tag":"us-nyc-12",)"
               R"("torrentAllowed":false})");
    std::string const other =
        R"({"country":"privatede","city":"berlin","num":"7","private":"yes","publicIP":["192.0.2.2",1,2]})";
    std::string const berlin = report("connected_server", other);
    std::string const thirteen =
        R"({"country":"uncountable","city":"c","publicIP":[0,1,2,3,4,5,6,7,8,9,10,")" + std::string(50, 'a') +
        R"(",12]})";
    runRows({
        // The last one before the state.
        row("connect", {connecting("auto", {berlin, report("connected_server", server), state(6), berlin})},
            document),
        current(server, document),
        current(
            other,
            styled(
                R"({"city":"berlin","country":"de","friendlyName":"Germany - {{LOCATION.CITY.berlin}} #7",)"
                R"("isPrivate":true,"num":7,"publicIP":["192.0.2.2","1","2"],"tag":"privatede-berlin-7",)"
                R"("torrentAllowed":true})")),
        // Full fields run on: the country into the city, the twelfth address to the record's end.
        current(thirteen, styled(R"({"city":"c","country":"uncountablc","friendlyName":)"
                                 R"("{{LOCATION.COUNTRY.uncountablc}} - {{LOCATION.CITY.c}}",)"
                                 R"("isPrivate":false,"num":0,"publicIP":[)" +
                                 series(11, "\"#\"") + R"(,")" + std::string(46, 'a') +
                                 R"("],"tag":"uncountablc-c-0","torrentAllowed":true})")),
        current(R"({"torrent":"no"})", noServer),
        failing("connect", {connecting("auto", {report("connected_server", "1"), state(6)})}, unreadable),
    });
}

TEST(Connecting, OtherEnds) {
    std::string const error = R"({"type":8,"msg":"no tun"})";
    std::string const adapter = errorDocument(8, "Error opening or configuring the VPN adapter", "no tun");
    std::string const connectLock = lock("server_auto_connect", 1);
    runRows({
        failing("connect", {connecting("auto", {report("connect_error", error)})}, adapter),
        failing("connect", {connecting("auto", {report("login_error", error)})}, adapter),
        failing("connect", {connecting("auto", {lock("connect", 1), connectLock})}, lockedByServer),
        failing("connectmethod p2p",
                {{"set_server_connectbest",
                  R"({"connect_to_best_method":"p2p","countryCode":""})",
                  {connectLock, lock("set_server_connectbest", 1)}}},
                lockedByServer),
        row("disconnect", {{"server_disconnect", "null", {state(6), state(5), state(2)}}},
            styled(R"({"state":"LOGGED_IN"})")),
        row("disconnect", {{"server_disconnect", "null", {state(0)}}}, styled(R"({"state":"LOGGED_OUT"})")),
    });
}

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

TEST(Servers, ConnectMethod) {
    struct Method {
        std::string method, place, printed, country, city;
        int num;
    };
    std::vector<Row> rows;
    for (auto const& [method, place, printed, country, city, num] : {
             Method{"user", "us|nyc|3", "closest", "", "", 0},
             Method{"userprivate", "", "private", "", "", 0},
             Method{"userpublic", "", "public", "", "", 0},
             Method{"p2p", "", "p2p", "", "", 0},
             Method{"proxy", "", "proxy", "", "", 0},
             Method{"last", "us", "closest", "", "", 0},
             Method{"country", "", "country", "", "", 0},
             Method{"country", "us|nyc|3x|4", "country", "us", "nyc", 3},
             Method{"country", "us||3", "country", "us", "", 3},
             Method{"country", "privateuszz|nyc", "country", "privateusznyc", "nyc", 0},
         }) {
        rows.push_back(
            row("show connectmethod",
                {asked("server_settings", R"({"connect_to_best_method":)" + quoted(method) +
                                              R"(,"connect_country":)" + quoted(place) + "}")},
                styled(R"({"connectMethod":)" + quoted(printed) + R"(,"country":)" + quoted(country) +
                       R"(,"city":)" + quoted(city) + R"(,"num":)" + std::to_string(num) + "}")));
    }
    runRows(rows);
}

// A login and a connection may take a minute, other calls five seconds.
TEST(Connecting, TimeOuts) {
    Step login{"login_oauth", R"({"oauth":"t"})", {state(2)}};
    Step connect = connecting("auto", {state(6)});
    login.delayMs = connect.delayMs = 6000;
    runRowsInParallel({
        row("login oauth t", {login}, styled(R"({"state":"LOGGED_IN"})")),
        row("connect", {connect}, noServer),
        failing("disconnect", {{"server_disconnect"}}, timedOut),
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
             Case{{"zz", "", -1, false}, "{{LOCATION.COUNTRY.zz}}"},
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
    Step const connected = connecting("auto", {state(6)});
    ScriptedDaemon daemon({connected, connected}, noName);
    Sdk sdk(daemon);
    auto const connect = [&](unsigned method) {
        return sdk.connectAuto(static_cast<KelvarisSDK_AutoConnectMethod>(method), nullptr, nullptr).base;
    };
    EXPECT_FALSE(connect(7).error);
    EXPECT_FALSE(connect(8).error);
    EXPECT_EQ(connect(6).errorCode, 3840);
    for (unsigned const method : {3U, 5U, 6U, 8U}) {
        auto const chosen = static_cast<KelvarisSDK_AutoConnectMethod>(method);
        EXPECT_EQ(sdk.setConnectMethodAuto(chosen, nullptr, nullptr).base.errorCode, 3842);
    }
}

// Those that no report leads to.
TEST(Servers, TextsOfEnumerations) {
    auto const textOf = [](unsigned method) {
        return std::string(
            KelvarisSDK_AutoConnectMethod_toString(static_cast<KelvarisSDK_AutoConnectMethod>(method)));
    };
    EXPECT_EQ(textOf(3) + textOf(5) + textOf(8), "lastautoclosest");
    EXPECT_STREQ(KelvarisSDK_AccountPaymentType_toString(static_cast<KelvarisSDK_AccountPaymentType>(3)),
                 "Unknown payment type");
}
