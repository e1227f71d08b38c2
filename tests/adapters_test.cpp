// The adapters: grammar, requests, report, document, locks.

#include "kelvarissdk.h"
#include "support/rows.h"
#include "websockets.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

constexpr char noAdapters[] = R"(["report_networks",[]])";

std::vector<Step> networks(std::string const& list) {
    return {{.request = "request_networks", .answers = {"[\"report_networks\"," + list + "]"}}};
}

// What `show adapters` prints of an adapter that is reported as {}, with some members replaced.
std::string documentOf(std::string const& members) {
    Json::Value adapter = parsed(R"({"adapterID":"","name":"","description":"","state":"disconnected",
        "type":"Unknown","priority":"always","connectedNetworkName":"","connectedNetworkBSSID":"",
        "rateLimit":-1,"dataUsage":{"usageMonthly":0,"usageDaily":0,"usageMonthlyLimit":-1,
        "usageMonthlyResetDay":0,"usageDailyLimit":-1,"usageDailyBoost":0,"overlimitRatelimit":-1}})");
    Json::Value const replaced = parsed(members);
    for (std::string const& name : replaced.getMemberNames()) {
        adapter[name] = replaced[name];
    }
    Json::Value list;
    list.append(adapter);
    return list.toStyledString();
}

Row shown(std::string const& adapter, std::string const& members) {
    return {.name = adapter,
            .argv = {"show", "adapters"},
            .exchange = networks("[" + adapter + "]"),
            .out = documentOf(members)};
}

std::string repeated(std::string const& text, int times) {
    std::string list;
    for (int i = 0; i < times; ++i) {
        list += (i == 0 ? "" : ",") + text;
    }
    return "[" + list + "]";
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
    });
    runRows({
        {.name = "none", .argv = {"show", "adapters"}, .exchange = networks("[]"), .out = styled("[]")},
        {.name = "26",
         .argv = {"show", "adapters"},
         .exchange = networks(repeated("{}", 26)),
         .out = styled(repeated(documentOf("{}").substr(1, documentOf("{}").rfind(']') - 1), 25))},
        {.name = "a rate beyond 32 bits",
         .argv = {"show", "adapters"},
         .exchange = networks(R"([{"rateLimit":2147483648}])"),
         .err = errorDocument(3840, "An error in the SDK", "Error from SDK"),
         .status = 1},
    });
}

// Each change, and the same with a lock instead of the list. Where no lock holds, the call goes on waiting.
TEST(Adapters, AreChanged) {
    struct Change {
        std::vector<std::string> words;
        std::string request;
        std::string payload;
        bool locks = true;
    };
    std::string const lockText = "Setting locked by account configuration";
    std::vector<Row> rows;
    for (Change const& c : std::vector<Change>{
             {{"priority", "i", "always"}, "set_network_priority", R"({"network":"i","priority":0})"},
             {{"priority", "i", "secondary"}, "set_network_priority", R"({"network":"i","priority":1})"},
             {{"priority", "i", "backup"}, "set_network_priority", R"({"network":"i","priority":2})"},
             {{"priority", "i", "never"}, "set_network_priority", R"({"network":"i","priority":100})"},
             {{"ratelimit", "i", "-5"}, "set_network_ratelimit", R"({"network":"i","bps":-5})"},
             {{"ratelimit", "i", "99999999999999999999"},
              "set_network_ratelimit",
              R"({"network":"i","bps":9223372036854775807})"},
             {{"ratelimit", "", "unlimited"}, "set_network_ratelimit", R"({"network":"","bps":0})"},
             {{"overlimitratelimit", "i", "0"}, "set_network_overlimit_rate", R"({"network":"i","bps":0})"},
             {{"datalimit", "monthly", "i", "5000000000", "40"},
              "set_network_limit",
              R"({"network":"i","max":5000000000,"resetDay":40})"},
             {{"datalimit", "monthly", "i", "unlimited", "x"},
              "set_network_limit",
              R"({"network":"i","max":0,"resetDay":0})"},
             {{"datalimit", "daily", "i", "7"}, "set_network_daily_limit", R"({"network":"i","max":7})"},
             {{"datalimit", "daily", "i", "unlimited"},
              "set_network_daily_limit",
              R"({"network":"i","max":0})"},
             {{"datalimit", "dailyboost", "i", "8"},
              "add_net_daily_limit_boost",
              R"({"network":"i","value":8})",
              false},
             {{"resetusage", "i"}, "reset_network_usage", R"({"guid":"i"})", false},
         }) {
        std::string const locked =
            R"(["report_setting_locked",{"setting":")" + c.request + R"(","reason":2}])";
        Row row{.name = testing::PrintToString(c.words),
                .argv = {"adapter"},
                .exchange = {{.request = c.request, .payload = c.payload, .answers = {noAdapters}}},
                .out = styled("[]")};
        row.argv.insert(row.argv.end(), c.words.begin(), c.words.end());
        rows.push_back(row);
        row.name += " and a lock";
        row.exchange[0].answers = {locked, noAdapters};
        if (c.locks) {
            row.out = "";
            row.err = errorDocument(3848, lockText, lockText);
            row.status = 1;
        }
        rows.push_back(row);
    }
    runRows(rows);
}

// Every form has its own idea of what is missing and what is invalid.
TEST(Adapters, AreRefused) {
    std::string const adapter =
        "adapter <datalimit|priority|ratelimit|overlimitratelimit|encryption|resetusage>";
    std::string const priority = "adapter priority <adapter id> <always|secondary|backup|never>";
    std::string const rate = "adapter ratelimit <adapter id> <speed in bits per second|unlimited>";
    std::string const overlimit =
        "adapter overlimitratelimit <adapter id> <speed in bits per second|0 to stop using>";
    std::string const reset = "adapter resetusage <adapter id>";
    std::string const limit = "adapter dataLimit <monthly|daily|dailyboost>";
    std::string const monthly = "adapter datalimit monthly <adapter id> <data usage in bytes|unlimited> <day "
                                "of the month to reset on|0 for last 30 days>";
    std::string const daily = "adapter datalimit daily <adapter id> <data usage in bytes|unlimited>";
    std::string const boost = "adapter datalimit dailyboost <adapter id> <additional bytes>";
    std::string const encryption = "adapter encryption <adapter id> <on|off>";
    struct Refusal {
        std::vector<std::string> words;
        int status;
        std::string usage;
    };
    std::vector<Row> rows;
    for (Refusal const& r : std::vector<Refusal>{
             {{}, 3, adapter},
             {{"Priority", "i", "always"}, 2, adapter},
             {{"priority", "i"}, 3, priority},
             {{"priority", "i", "always", "x"}, 3, priority},
             {{"priority", "i", "Always"}, 2, priority},
             {{"ratelimit", "i"}, 2, rate},
             {{"ratelimit", "i", "5", "x"}, 2, rate},
             {{"ratelimit", "i", "5k"}, 2, rate},
             {{"overlimitratelimit", "i"}, 3, overlimit},
             {{"overlimitratelimit", "i", "5", "x"}, 2, overlimit},
             {{"overlimitratelimit", "i", "unlimited"}, 2, overlimit},
             {{"resetusage"}, 3, reset},
             {{"resetusage", "i", "x"}, 2, reset},
             {{"datalimit"}, 3, encryption},
             {{"datalimit", "yearly"}, 2, limit},
             {{"datalimit", "monthly", "i", "unlimited"}, 3, monthly},
             {{"datalimit", "monthly", "i", "1", "2", "x"}, 2, monthly},
             {{"datalimit", "monthly", "i", "x", "1"}, 2, monthly},
             {{"datalimit", "monthly", "i", "1", "x"}, 2, monthly},
             {{"datalimit", "daily", "i"}, 3, daily},
             {{"datalimit", "daily", "i", "1", "x"}, 2, daily},
             {{"datalimit", "daily", "i", ""}, 2, daily},
             {{"datalimit", "dailyboost", "i"}, 3, boost},
             {{"datalimit", "dailyboost", "i", "1", "x"}, 2, boost},
             {{"datalimit", "dailyboost", "i", "unlimited"}, 2, boost},
             {{"encryption", "i"}, 3, encryption},
             {{"encryption", "i", "on", "x"}, 2, encryption},
             {{"encryption", "i", "yes"}, 2, encryption},
         }) {
        Row row{.name = testing::PrintToString(r.words),
                .argv = {"adapter"},
                .err = r.status == 3 ? missing(r.usage) : invalid(r.usage),
                .status = r.status};
        row.argv.insert(row.argv.end(), r.words.begin(), r.words.end());
        rows.push_back(row);
    }
    runRows(rows);
}

TEST(Adapters, PriorityWithoutANumberIsRefusedBehindTheLink) {
    class Sdk : public kelvarissdk::KelvarisSDK {
    public:
        using KelvarisSDK::KelvarisSDK;
        void unlink() {
            websocket.reset();
        }
    };
    ScriptedDaemon daemon({}, {.appName = std::nullopt});
    KelvarisSDK_CreateSettings settings{.appName = "", .address = "127.0.0.1", .port = daemon.port()};
    Sdk sdk(settings);
    auto const code = [&] {
        KelvarisSDK_BaseResult const base =
            sdk.setConnectionPriorities("i", static_cast<KelvarisSDK_ConnectionPriority>(4), nullptr, nullptr)
                .base;
        EXPECT_TRUE(base.error);
        return base.errorCode;
    };
    EXPECT_EQ(code(), 3842);
    sdk.unlink();
    EXPECT_EQ(code(), 3840);
}

TEST(Adapters, EnumerationsHaveAFallback) {
    EXPECT_STREQ(KelvarisSDK_ConnectionState_toString(static_cast<KelvarisSDK_ConnectionState>(3)),
                 "disconnected");
    EXPECT_STREQ(KelvarisSDK_NetworkType_toString(static_cast<KelvarisSDK_NetworkType>(7)), "Wi-Fi");
    EXPECT_STREQ(KelvarisSDK_ConnectionPriority_toString(static_cast<KelvarisSDK_ConnectionPriority>(4)),
                 "always");
}
