// What no command line sends of the settings, and no document shows.

#include "support/rows.h"
#include "support/sdk.h"

#include <gtest/gtest.h>

using namespace harness;

TEST(Settings, LibraryTakesWhatNoCommandLineSends) {
    std::string const answer = report("connection_settings", R"({"language":"eng"})");
    std::string const ports = series(20, R"({"port":#})", 10);
    ScriptedDaemon daemon(
        {{"set_connection_algorithm", R"({"algorithm":"SP"})", {answer}},
         {"set_connection_transport", R"({"transport_mode":"auto"})", {answer}},
         {"set_connection_forward_ports", R"({"forward_ports":[)" + ports + "]}", {answer}},
         {"set_cplogin_enable", R"({"enable":false,"network":"i"})", {report("cplogin_network", "{}")}}},
        noName);
    Sdk sdk(daemon);
    EXPECT_FALSE(sdk.setMode(static_cast<KelvarisSDK_BondingMode>(3), nullptr, nullptr).base.error);
    EXPECT_FALSE(sdk.setConnectionTransportMode(static_cast<KelvarisSDK_TransportMode>(5), nullptr, nullptr)
                     .base.error);
    KelvarisSDK_ProtocolPortPair pairs[21];
    for (uint16_t i = 0; i < 21; ++i) {
        pairs[i] = {static_cast<KelvarisSDK_PortProtocol>(2), static_cast<uint16_t>(10 + i)};
    }
    KelvarisSDK_SettingsResult const result = sdk.setForwardPorts(21, pairs, nullptr, nullptr);
    EXPECT_EQ(std::string(result.language, 3), "eng");
    EXPECT_FALSE(sdk.setCaptivePortalLoginMode(false, "i", nullptr, nullptr).base.error);
}

TEST(Privacy, FlagsReachTheRecord) {
    std::vector<std::string> const flags = {"killswitch", "dnsleak", "ipleak", "do_not_store_credentials"};
    for (std::string const& flag : flags) {
        SCOPED_TRACE(flag);
        ScriptedDaemon daemon({asked("privacy_settings", "{\"" + flag + "\":true}")}, noName);
        KelvarisSDK_PrivacySettingsResult const result = Sdk(daemon).getPrivacySettings(nullptr, nullptr);
        EXPECT_EQ(result.killswitch, flag == flags[0]);
        EXPECT_EQ(result.dnsleak, flag == flags[1]);
        EXPECT_EQ(result.ipleak, flag == flags[2]);
        EXPECT_EQ(result.doNotStoreCredentials, flag == flags[3]);
    }
}
