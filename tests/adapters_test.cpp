// The adapters: grammar, requests, report, document, locks.

#include "support/rows.h"
#include "support/sdk.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

// What `show adapters` prints of an adapter that is reported as {}, with some members replaced.
std::string documentOf(std::string const& members) {
    return changed(R"({"adapterID":"","name":"","description":"","state":"disconnected",
        "type":"Unknown","priority":"always","connectedNetworkName":"","connectedNetworkBSSID":"",
        "rateLimit":-1,"dataUsage":{"usageMonthly":0,"usageDaily":0,"usageMonthlyLimit":-1,
        "usageMonthlyResetDay":0,"usageDailyLimit":-1,"usageDailyBoost":0,"overlimitRatelimit":-1}})",
                   members);
}

Row listed(std::string const& adapters, std::string const& documents) {
    return row("show adapters", {asked("networks", '[' + adapters + ']')}, styled('[' + documents + ']'));
}

Row shown(std::string const& adapter, std::string const& members) {
    return listed(adapter, documentOf(members));
}

} // namespace

TEST(Adapters, AreShown) {
    std::string const wide(101, 'w');
    runRows({
        shown(R"({"guid":"g","name":"n","description":"d","connectionState":2,"type":"Cellular","priority":2,
                  "ssid":"s","bssid":"b","rateLimit":2147483647,"limits":{"usage":5000000001,
                  "usageDaily":5000000002,"max":5000000003,"resetDay":5000000004,"maxDaily":5000000005,
                  "boostDaily":5000000006,"overlimitRate":5000000007}})",
              R"({"adapterID":"g","name":"n","description":"d","state":"connected","type":"Cellular",
                  "priority":"backup","connectedNetworkName":"s","connectedNetworkBSSID":"b",
                  "rateLimit":2147483647,"dataUsage":{"usageMonthly":5000000001,"usageDaily":5000000002,
                  "usageMonthlyLimit":5000000003,"usageMonthlyResetDay":5000000004,
                  "usageDailyLimit":5000000005,"usageDailyBoost":5000000006,
                  "overlimitRatelimit":5000000007}})"),
        shown("{}", "{}"),
        shown(R"({"connectionState":1,"type":"Wi-Fi","priority":1})",
              R"({"state":"connecting","type":"Wi-Fi","priority":"secondary"})"),
        shown(R"({"connectionState":3,"type":"Bluetooth","priority":100})",
              R"({"type":"Bluetooth","priority":"never"})"),
        shown(R"({"type":"wi-fi","priority":3,"rateLimit":null})", R"({"rateLimit":0})"),
        shown(R"({"guid":")" + wide + R"(","name":"n"})",
              R"({"name":"n","adapterID":")" + wide.substr(1) + "n\"}"),
        listed("", ""),
        listed(series(26, "{}"), series(25, documentOf("{}"))),
        failing("show adapters", {asked("networks", R"([{"rateLimit":2147483648}])")}, unreadable),
    });
}

TEST(Adapters, AreChanged) {
    std::string const priority = "set_network_priority";
    std::string const rate = "set_network_ratelimit";
    std::string const monthly = "set_network_limit";
    std::string const daily = "set_network_daily_limit";
    std::vector<Row> rows;
    addChanges(
        rows, report("networks", "[]"), styled("[]"),
        {
            {"adapter priority i always", priority, R"({"network":"i","priority":0})"},
            {"adapter priority i secondary", priority, R"({"network":"i","priority":1})"},
            {"adapter priority i backup", priority, R"({"network":"i","priority":2})"},
            {"adapter priority i never", priority, R"({"network":"i","priority":100})"},
            {"adapter ratelimit i -5", rate, R"({"network":"i","bps":-5})"},
            {"adapter ratelimit i 99999999999999999999", rate,
             R"({"network":"i","bps":9223372036854775807})"},
            {"adapter ratelimit '' unlimited", rate, R"({"network":"","bps":0})"},
            {"adapter overlimitratelimit i 0", "set_network_overlimit_rate", R"({"network":"i","bps":0})"},
            {"adapter datalimit monthly i 5000000000 40", monthly,
             R"({"network":"i","max":5000000000,"resetDay":40})"},
            {"adapter datalimit monthly i unlimited x", monthly, R"({"network":"i","max":0,"resetDay":0})"},
            {"adapter datalimit daily i 7", daily, R"({"network":"i","max":7})"},
            {"adapter datalimit daily i unlimited", daily, R"({"network":"i","max":0})"},
            {"adapter datalimit dailyboost i 8", "add_net_daily_limit_boost", R"({"network":"i","value":8})",
             false},
            {"adapter resetusage i", "reset_network_usage", R"({"guid":"i"})", false},
        });
    runRows(rows);
}

// Every form has its own idea of what is missing and what is invalid.
TEST(Adapters, AreRefused) {
    std::vector<Row> rows;
    addRefusals(
        rows,
        {{"adapter <datalimit|priority|ratelimit|overlimitratelimit|encryption|resetusage>",
          {"adapter"},
          {"adapter Priority i always"}},
         {"adapter priority <adapter id> <always|secondary|backup|never>",
          {"adapter priority i", "adapter priority i always x"},
          {"adapter priority i Always"}},
         {"adapter ratelimit <adapter id> <speed in bits per second|unlimited>",
          {},
          {"adapter ratelimit i", "adapter ratelimit i 5 x", "adapter ratelimit i 5k",
           "adapter ratelimit i 0x10"}},
         {"adapter overlimitratelimit <adapter id> <speed in bits per second|0 to stop using>",
          {"adapter overlimitratelimit i"},
          {"adapter overlimitratelimit i 5 x", "adapter overlimitratelimit i unlimited"}},
         {"adapter resetusage <adapter id>", {"adapter resetusage"}, {"adapter resetusage i x"}},
         {"adapter dataLimit <monthly|daily|dailyboost>", {}, {"adapter datalimit yearly"}},
         {"adapter datalimit monthly <adapter id> <data usage in bytes|unlimited> <day of the month to reset "
          "on|0 for last 30 days>",
          {"adapter datalimit monthly i unlimited"},
          {"adapter datalimit monthly i 1 2 x", "adapter datalimit monthly i x 1",
           "adapter datalimit monthly i 1 x"}},
         {"adapter datalimit daily <adapter id> <data usage in bytes|unlimited>",
          {"adapter datalimit daily i"},
          {"adapter datalimit daily i 1 x", "adapter datalimit daily i ''"}},
         {"adapter datalimit dailyboost <adapter id> <additional bytes>",
          {"adapter datalimit dailyboost i"},
          {"adapter datalimit dailyboost i 1 x", "adapter datalimit dailyboost i unlimited"}},
         {"adapter encryption <adapter id> <on|off>",
          {"adapter datalimit", "adapter encryption i"},
          {"adapter encryption i on x", "adapter encryption i yes"}}});
    runRows(rows);
}

TEST(Adapters, NumbersWithoutAName) {
    auto const priority = static_cast<KelvarisSDK_ConnectionPriority>(4);
    ScriptedDaemon daemon({}, noName);
    Sdk sdk(daemon);
    EXPECT_EQ(sdk.setConnectionPriorities("i", priority, nullptr, nullptr).base.errorCode, 3842);
    sdk.unlink();
    EXPECT_EQ(sdk.setConnectionPriorities("i", priority, nullptr, nullptr).base.errorCode, 3840);
    EXPECT_STREQ(KelvarisSDK_ConnectionPriority_toString(priority), "always");
    EXPECT_STREQ(KelvarisSDK_NetworkType_toString(static_cast<KelvarisSDK_NetworkType>(7)), "Wi-Fi");
}
