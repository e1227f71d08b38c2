// Servers, connecting, the connect method.

#include "kelvarissdk.h"
#include "support/rows.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

constexpr char connectUsage[] =
    "connect [ closest | public | private | p2p | <country> [<city> [<number>]] | last ]";
constexpr char methodUsage[] =
    "connectmethod < closest | public | private | p2p | <country> [<city> [<number>]] >";
constexpr char showUsage[] =
    "show < servers | settings | privacy | adapters | currentserver | user | directory | connectmethod | "
    "streamingbypass | disconnect | streaming | speedtest>";

std::string const unreadable = errorDocument(3840, "An error in the SDK", "Error from SDK");
std::string const timeout = errorDocument(3841, "Timeout waiting for result", "Timeout");

std::string report(std::string const& name, std::string const& payload) {
    return "[\"" + name + "\"," + payload + "]";
}

std::string state(int number) {
    return report("report_current_state", "{\"state\":" + std::to_string(number) + "}");
}

std::string quoted(std::string const& text) {
    return '"' + text + '"';
}

std::vector<Step> connecting(std::string const& server, std::vector<Answer> const& answers) {
    return {{.request = "server_auto_connect",
             .payload = R"({"server":)" + quoted(server) + "}",
             .answers = answers}};
}

std::vector<Step> asked(std::string const& what, std::string const& payload) {
    return {{.request = "request_" + what, .answers = {report("report_" + what, payload)}}};
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

std::string directory(std::string const& publicServers, std::string const& privateServers) {
    return styled(R"({"public":[)" + publicServers + R"(],"private":[)" + privateServers + "]}");
}

} // namespace

// Every form of the words and the text that names a server by it; the texts of the setting differ.
TEST(Connecting, FormsOfTheWords) {
    struct Case {
        std::vector<std::string> words;
        std::string server;
        std::string method = {}; // empty: no connect method
        std::string countryCode = {};
    };
    std::vector<Row> rows;
    for (Case const& c : {
             Case{{}, "auto"},
             Case{{"closest"}, "user", "user"},
             Case{{"private"}, "userprivate", "userprivate"},
             Case{{"public"}, "userpublic", "userpublic"},
             Case{{"last"}, "last"},
             Case{{"p2p"}, "p2p", "p2p"},
             Case{{"proxy"}, "proxy", "proxy"},
             Case{{"US"}, "US", "country", "US"},
             Case{{"us", "nyc"}, "us|nyc", "country", "us|nyc"},
             Case{{"us", ""}, "us|", "country", "us|"},
             Case{{"privateus", "nyc", "2147483647"},
                  "privateus|nyc|2147483647",
                  "country",
                  "privateus|nyc|2147483647"},
         }) {
        std::vector<std::string> argv = {"connect"};
        argv.insert(argv.end(), c.words.begin(), c.words.end());
        rows.push_back({testing::PrintToString(argv), argv,
                        connecting(c.server, {state(3), state(4), state(6)}), noServer});
        if (c.method.empty()) {
            continue;
        }
        argv[0] = "connectmethod";
        rows.push_back({testing::PrintToString(argv),
                        argv,
                        {{.request = "set_server_connectbest",
                          .payload = R"({"connect_to_best_method":)" + quoted(c.method) +
                                     R"(,"countryCode":)" + quoted(c.countryCode) + "}",
                          .answers = {report("report_server_settings", "null")}}},
                        styled(R"({"city":"","connectMethod":"closest","country":"","num":0})")});
    }
    runRows(rows);
}

TEST(Connecting, RefusedWords) {
    std::vector<Row> rows = {
        {"no method", {"connectmethod"}, {}, "", missing(methodUsage), 3},
        {"last", {"connectmethod", "last"}, {}, "", invalid(methodUsage), 2},
        {"disconnect", {"disconnect", "x"}, {}, "", invalid("disconnect"), 2},
        {"show nothing", {"show"}, {}, "", missing(showUsage), 3},
        {"show two", {"show", "servers", "user"}, {}, "", invalid(showUsage), 2},
        {"show unknown", {"show", "Servers"}, {}, "", invalid(showUsage), 2},
    };
    struct Case {
        std::vector<std::string> words;
        bool badCity = false;
    };
    for (Case const& c : {
             Case{{"USA"}},
             Case{{"u1"}},
             Case{{""}},
             Case{{"privateu1"}},
             Case{{"public", "nyc"}},
             Case{{"us", "new-york"}, true},
             Case{{"us", "nyc2", "0"}, true},
             Case{{"u1", "nyc2", "0"}},
             Case{{"us", "nyc", "0"}},
             Case{{"us", "nyc", "3x"}},
             Case{{"us", "nyc", "2147483648"}},
             Case{{"us", "nyc", "3", "4"}},
         }) {
        for (std::string const action : {"connect", "connectmethod"}) {
            std::vector<std::string> argv = {action};
            argv.insert(argv.end(), c.words.begin(), c.words.end());
            char const* const usage = action == "connect" || c.badCity ? connectUsage : methodUsage;
            rows.push_back({testing::PrintToString(argv), argv, {}, "", invalid(usage), 2});
        }
    }
    runRows(rows);
}

TEST(Connecting, ReportsTheServer) {
    std::string const server = R"({"country":"us","city":"nyc","num":12,"private":"no","torrent":"no",)"
                               R"("publicIP":["192.0.2.1","2001:db8::1"]})";
    std::string const document =
        styled(R"({"city":"nyc","country":"us","friendlyName":"United States - New York City #12",)"
               R"("isPrivate":false,"num":12,"publicIP":["192.0.2.1","2001:db8::1"],"tag":"us-nyc-12",)"
               R"("torrentAllowed":false})");
    std::string const other = report(
        "report_connected_server",
        R"({"country":"privatede","city":"berlin","num":"7","private":"yes","publicIP":["192.0.2.2",1,2]})");
    std::string const thirteen =
        R"({"country":"uncountable","city":"c","publicIP":[0,1,2,3,4,5,6,7,8,9,10,")" + std::string(50, 'a') +
        R"(",12]})";
    runRows({
        {"the last one before the state",
         {"connect"},
         connecting("auto", {other, report("report_connected_server", server), state(6), other}),
         document},
        {"current", {"show", "currentserver"}, asked("connected_server", server), document},
        {"private",
         {"show", "currentserver"},
         {{.request = "request_connected_server", .answers = {other}}},
         styled(R"({"city":"berlin","country":"de","friendlyName":"Germany - {{LOCATION.CITY.berlin}} #7",)"
                R"("isPrivate":true,"num":7,"publicIP":["192.0.2.2","1","2"],"tag":"privatede-berlin-7",)"
                R"("torrentAllowed":true})")},
        // Full fields run on: the country into the city, the twelfth address to the record's end.
        {"full fields",
         {"show", "currentserver"},
         asked("connected_server", thirteen),
         styled(R"({"city":"c","country":"uncountablc","friendlyName":)"
                R"("{{LOCATION.COUNTRY.uncountablc}} - {{LOCATION.CITY.c}}","isPrivate":false,"num":0,)"
                R"("publicIP":["0","1","2","3","4","5","6","7","8","9","10",")" +
                std::string(46, 'a') + R"("],"tag":"uncountablc-c-0","torrentAllowed":true})")},
        {"not connected",
         {"show", "currentserver"},
         asked("connected_server", R"({"torrent":"no"})"),
         noServer},
        {"unreadable",
         {"connect"},
         connecting("auto", {report("report_connected_server", "1"), state(6)}),
         "",
         unreadable,
         1},
    });
}

TEST(Connecting, OtherEnds) {
    auto const lock = [](std::string const& setting, int reason) {
        return report("report_setting_locked",
                      R"({"setting":)" + quoted(setting) + R"(,"reason":)" + std::to_string(reason) + "}");
    };
    auto const error = [](std::string const& kind) {
        return report("report_" + kind + "_error", R"({"type":8,"msg":"no tun"})");
    };
    std::string const adapter = errorDocument(8, "Error opening or configuring the VPN adapter", "no tun");
    std::string const locked = errorDocument(3846, "Setting locked by server configuration",
                                             "Setting locked by server configuration");
    std::vector<Step> const changing = {
        {.request = "set_server_connectbest",
         .payload = R"({"connect_to_best_method":"p2p","countryCode":""})",
         .answers = {lock("server_auto_connect", 1), lock("set_server_connectbest", 1)}}};
    auto const disconnecting = [](int last) {
        return std::vector<Step>{
            {.request = "server_disconnect", .answers = {state(6), state(5), state(last)}}};
    };
    runRows({
        {"connect error", {"connect"}, connecting("auto", {error("connect")}), "", adapter, 1},
        {"login error", {"connect"}, connecting("auto", {error("login")}), "", adapter, 1},
        {"locked",
         {"connect"},
         connecting("auto", {lock("connect", 1), lock("server_auto_connect", 1)}),
         "",
         locked,
         1},
        {"method locked", {"connectmethod", "p2p"}, changing, "", locked, 1},
        {"disconnected", {"disconnect"}, disconnecting(2), styled(R"({"state":"LOGGED_IN"})")},
        {"logged out", {"disconnect"}, disconnecting(0), styled(R"({"state":"LOGGED_OUT"})")},
    });
}

TEST(Servers, List) {
    std::string many = "[";
    std::string first400;
    for (int i = 1; i <= 401; ++i) {
        many += R"({"country":"us","city":"la","num":)" + std::to_string(i) + (i < 401 ? "}," : "}]");
        first400 += i > 400 ? "" : (i > 1 ? "," : "") + listed("us", "la", i, false);
    }
    std::string const mixed =
        R"([{"private":"yes","country":"privateus","city":"nyc","num":3},)"
        R"({"private":"no","country":"privateus","num":"7"},{"private":"yes","country":"us","num":"x"},)"
        R"({"private":"YES","country":"usprivate","city":"abcdefghijklmnopqrstuvw","num":65},)"
        R"({"private":"yes","country":"privateprivatefr"},null,{"country":"\\\"\u0007","city":"ö/<\u0001"}])";
    runRows({
        {"too many", {"show", "servers"}, asked("directory", many), directory(first400, "")},
        {"empty", {"show", "countries"}, asked("directory", "[]"), directory("", "")},
        {"mixed",
         {"show", "cities"},
         asked("directory", mixed),
         directory(listed("privateus", "", 7, false) + "," +
                       listed("usprivate", "abcdefghijklmnopqrst", 65, false) + "," +
                       listed("", "", 0, false) + "," + listed(R"(\\\"\u0007)", R"(ö/<\u0001)", 0, false),
                   listed("us", "nyc", 3, true) + "," + listed("us", "", 0, true) + "," +
                       listed("privatefr", "", 0, true))},
        // An object is a list of its members' values.
        {"object",
         {"show", "servers"},
         asked("directory", R"({"b":{"country":"us"},"a":{"country":"de"}})"),
         directory(listed("de", "", 0, false) + "," + listed("us", "", 0, false), "")},
        {"no server", {"show", "servers"}, asked("directory", "[1]"), "", unreadable, 1},
    });
}

TEST(Servers, ConnectMethod) {
    struct Case {
        std::string method, place, printedMethod, country, city;
        int num;
    };
    std::vector<Row> rows;
    for (Case const& c : {
             Case{"user", "us|nyc|3", "closest", "", "", 0},
             Case{"userprivate", "", "private", "", "", 0},
             Case{"userpublic", "", "public", "", "", 0},
             Case{"p2p", "", "p2p", "", "", 0},
             Case{"proxy", "", "proxy", "", "", 0},
             Case{"last", "us", "closest", "", "", 0},
             Case{"country", "", "country", "", "", 0},
             Case{"country", "us", "country", "us", "", 0},
             Case{"country", "us|nyc|3x|4", "country", "us", "nyc", 3},
             Case{"country", "us||3", "country", "us", "", 3},
             Case{"country", "privateuszz|nyc", "country", "privateusznyc", "nyc", 0},
         }) {
        Json::Value payload;
        payload["connect_to_best_method"] = c.method;
        payload["connect_country"] = c.place;
        Json::Value document;
        document["connectMethod"] = c.printedMethod;
        document["country"] = c.country;
        document["city"] = c.city;
        document["num"] = c.num;
        rows.push_back({c.method + " " + c.place,
                        {"show", "connectmethod"},
                        asked("server_settings", payload.toStyledString()),
                        document.toStyledString()});
    }
    runRows(rows);
}

// A login and a connection may take a minute, other calls five seconds.
TEST(Connecting, TimeOuts) {
    auto const late = [](std::vector<Step> steps) {
        steps.back().delayMs = 6000;
        return steps;
    };
    runRowsInParallel({
        {"login",
         {"login", "oauth", "t"},
         late({{.request = "login_oauth", .payload = R"({"oauth":"t"})", .answers = {state(2)}}}),
         styled(R"({"state":"LOGGED_IN"})")},
        {"connect", {"connect"}, late(connecting("auto", {state(6)})), noServer},
        {"disconnect", {"disconnect"}, {{.request = "server_disconnect"}}, "", timeout, 1},
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
    Step const connected = connecting("auto", {state(6)})[0];
    ScriptedDaemon daemon({connected, connected}, {.appName = std::nullopt});
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    settings.port = daemon.port();
    kelvarissdk::KelvarisSDK sdk(settings);
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
