// How the daemon reaches its directory service.

#include "support/rows.h"
#include "support/sdk.h"

#include <future>
#include <gtest/gtest.h>

using namespace harness;

namespace {

Row exchange(std::string const& words, std::string const& request, std::string const& payload,
             std::string const& reported, std::string const& out) {
    return row(words, {{request, payload, {report("directory_settings", reported)}}}, out);
}

std::string const settings = R"({"domain":"d.example","enableEsni":true,"gatewayUri":"g"})";
std::string const printed = styled(settings);
std::string const nothing = styled(R"({"domain":"","enableEsni":false,"gatewayUri":""})");

} // namespace

TEST(DirectorySettings, Exchanges) {
    std::string const wide =
        R"({"domain":")" + std::string(101, 'd') + R"(","gatewayUri":")" + std::string(101, 'g') + "\"}";
    std::string const cut = R"({"domain":")" + std::string(100, 'd') +
                            R"(","enableEsni":false,"gatewayUri":")" + std::string(100, 'g') + "\"}";
    runRows({
        exchange("show directory", "request_directory_url", "null", settings, printed),
        exchange("show directory", "request_directory_url", "null", wide, styled(cut)),
        exchange("directory a.b", "set_directory_domain", R"({"domain":"a.b"})", settings, printed),
        exchange("directory ''", "set_directory_domain", R"({"domain":""})", "{}", nothing),
        exchange("directory", "set_directory_domain", "null", "null", nothing),
        exchange("gateway u", "set_directory_gateway_uri", R"({"url":"u"})", settings, printed),
        exchange("gateway", "set_directory_gateway_uri", "null", "{}", nothing),
        exchange("esni on", "set_esni_enabled", R"({"enableEsni":true})", settings, printed),
        exchange("esni off", "set_esni_enabled", R"({"enableEsni":false})", "{}", nothing),
    });
}

TEST(DirectorySettings, RefusedWords) {
    std::vector<Row> rows;
    addRefusals(rows, {{"directory [directory server domain]", {}, {"directory a b"}},
                       {"gateway [directory gateway uri]", {}, {"gateway a b"}},
                       {"esni <on|off>", {"esni"}, {"esni maybe", "esni on off"}}});
    runRows(rows);
}

// Only the switch can be locked. A lock without a reason leaves it failed, with nothing to say why.
TEST(DirectorySettings, Locks) {
    std::string const lockedDomain = lock("set_directory_domain", 1);
    auto const switching = [&](int reason) {
        return Step{
            "set_esni_enabled", R"({"enableEsni":true})", {lockedDomain, lock("set_esni_enabled", reason)}};
    };
    Row ignored = exchange("directory a", "set_directory_domain", R"({"domain":"a"})", settings, printed);
    ignored.exchange[0].answers.insert(ignored.exchange[0].answers.begin(), lockedDomain);
    runRows({failing("esni on", {switching(2)}, lockedByAccount),
             failing("esni on", {switching(0)}, errorDocument(0, "No error", "")), ignored});
}

// A reset's callback has no user data, that of a setter has the caller's.
TEST(DirectorySettings, UserDataOfResets) {
    ScriptedDaemon daemon({}, noName);
    Sdk sdk(daemon);
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
        daemon.send(report("directory_settings", "{}"));
        return future.get();
    };
    void* const mine = &sdk;
    EXPECT_EQ(userDataOf([&] { sdk.resetDirectoryDomain(callback, mine); }, "set_directory_domain"), nullptr);
    EXPECT_EQ(userDataOf([&] { sdk.resetDirectoryGatewayURI(callback, mine); }, "set_directory_gateway_uri"),
              nullptr);
    EXPECT_EQ(userDataOf([&] { sdk.setDirectoryDomain("a", callback, mine); }, "set_directory_domain"), mine);
}
