// The adapters: grammar, requests, report, document, locks.

#include "support/rows.h"

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
        shown(R"({"type":"Ethernet"})", R"({"type":"Ethernet"})"),
        shown(R"({"type":"VPN"})", R"({"type":"VPN"})"),
        shown(R"({"type":"Loopback"})", R"({"type":"Loopback"})"),
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
            {"adapter datalimit monthly i 5000000000 040", monthly,
             R"({"network":"i","max":5000000000,"resetDay":40})"},
            {"adapter datalimit monthly i unlimited x", monthly, R"({"network":"i","max":0,"resetDay":0})"},
            {"adapter datalimit daily i 7", daily, R"({"network":"i","max":7})"},
            {"adapter datalimit daily i unlimited", daily, R"({"network":"i","max":0})"},
            {"adapter datalimit dailyboost i 8", "add_net_daily_limit_boost", R"({"network":"i","value":8})"},
            {"adapter resetusage i", "reset_network_usage", R"({"guid":"i"})"},
        });
    runRows(rows);
}
