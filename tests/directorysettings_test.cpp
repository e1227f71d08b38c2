// How the daemon reaches its directory service.

#include "kelvarissdk.h"
#include "support/rows.h"

#include <future>
#include <gtest/gtest.h>

using namespace harness;

namespace {

std::vector<Step> exchange(std::string const& request, std::string const& payload,
                           std::string const& settings) {
    return {{.request = request,
             .payload = payload,
             .answers = {"[\"report_directory_settings\"," + settings + "]"}}};
}

std::string const settings = R"({"domain":"d.example","enableEsni":true,"gatewayUri":"g"})";
std::string const nothing = styled(R"({"domain":"","enableEsni":false,"gatewayUri":""})");

} // namespace

TEST(DirectorySettings, Exchanges) {
    std::string const wide =
        R"({"domain":")" + std::string(101, 'd') + R"(","gatewayUri":")" + std::string(101, 'g') + "\"}";
    std::string const cut = R"({"domain":")" + std::string(100, 'd') +
                            R"(","enableEsni":false,"gatewayUri":")" + std::string(100, 'g') + "\"}";
    runRows({
        {"show",
         {"show", "directory"},
         exchange("request_directory_url", "null", settings),
         styled(settings)},
        {"domain",
         {"directory", "a.b"},
         exchange("set_directory_domain", R"({"domain":"a.b"})", settings),
         styled(settings)},
        {"empty domain",
         {"directory", ""},
         exchange("set_directory_domain", R"({"domain":""})", "{}"),
         nothing},
        {"domain reset", {"directory"}, exchange("set_directory_domain", "null", "null"), nothing},
        {"gateway",
         {"gateway", "u"},
         exchange("set_directory_gateway_uri", R"({"url":"u"})", settings),
         styled(settings)},
        {"gateway reset", {"gateway"}, exchange("set_directory_gateway_uri", "null", "{}"), nothing},
        {"on",
         {"esni", "on"},
         exchange("set_esni_enabled", R"({"enableEsni":true})", settings),
         styled(settings)},
        {"off", {"esni", "off"}, exchange("set_esni_enabled", R"({"enableEsni":false})", "{}"), nothing},
        {"full fields", {"show", "directory"}, exchange("request_directory_url", "null", wide), styled(cut)},
    });
}

TEST(DirectorySettings, RefusedWords) {
    runRows({
        {"directory", {"directory", "a", "b"}, {}, "", invalid("directory [directory server domain]"), 2},
        {"gateway", {"gateway", "a", "b"}, {}, "", invalid("gateway [directory gateway uri]"), 2},
        {"esni", {"esni"}, {}, "", missing("esni <on|off>"), 3},
        {"neither", {"esni", "maybe"}, {}, "", invalid("esni <on|off>"), 2},
        {"both", {"esni", "on", "off"}, {}, "", invalid("esni <on|off>"), 2},
    });
}

// Only the switch can be locked. A lock without a reason leaves it failed, with nothing to say why.
TEST(DirectorySettings, Locks) {
    auto const lock = [](std::string const& setting, int reason) {
        return R"(["report_setting_locked",{"setting":")" + setting + R"(","reason":)" +
               std::to_string(reason) + "}]";
    };
    auto const locked = [&](int reason) {
        return std::vector<Step>{
            {.request = "set_esni_enabled",
             .payload = R"({"enableEsni":true})",
             .answers = {lock("set_directory_domain", 1), lock("set_esni_enabled", reason)}}};
    };
    std::vector<Step> ignored = exchange("set_directory_domain", R"({"domain":"a"})", settings);
    ignored[0].answers.insert(ignored[0].answers.begin(), lock("set_directory_domain", 1));
    std::string const byAccount = "Setting locked by account configuration";
    runRows({
        {"account", {"esni", "on"}, locked(2), "", errorDocument(3848, byAccount, byAccount), 1},
        {"no reason", {"esni", "on"}, locked(0), "", errorDocument(0, "No error", ""), 1},
        {"domain", {"directory", "a"}, ignored, styled(settings)},
    });
}

// A reset's callback has no user data, that of a setter has the caller's.
TEST(DirectorySettings, UserDataOfResets) {
    ScriptedDaemon daemon({}, {.appName = std::nullopt});
    KelvarisSDK_CreateSettings create;
    KelvarisSDK_InitializeCreateSettings(&create);
    create.port = daemon.port();
    kelvarissdk::KelvarisSDK sdk(create);

    static std::promise<void*> received;
    KelvarisSDK_DirectorySettingsCallback const callback = [](KelvarisSDK_DirectorySettingsResult,
                                                              void* userData) {
        received.set_value(userData);
        return true;
    };
    auto const userDataOf = [&](auto call, char const* request) {
        received = {};
        auto future = received.get_future();
        call();
        daemon.waitForRequest(request);
        daemon.send("[\"report_directory_settings\",{}]");
        return future.get();
    };
    void* const mine = &sdk;
    EXPECT_EQ(userDataOf([&] { sdk.resetDirectoryDomain(callback, mine); }, "set_directory_domain"), nullptr);
    EXPECT_EQ(userDataOf([&] { sdk.resetDirectoryGatewayURI(callback, mine); }, "set_directory_gateway_uri"),
              nullptr);
    EXPECT_EQ(userDataOf([&] { sdk.setDirectoryDomain("a", callback, mine); }, "set_directory_domain"), mine);
}
