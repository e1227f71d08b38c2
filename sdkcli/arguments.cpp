#include "arguments.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "arguments/actions.h"
#include "arguments/readers.h"

KelvarisSDK_Handle* sdk = nullptr;
char binName[512 + 1];

// One comparison and one call per keyword, in the order in which they are tried.
// NOLINTNEXTLINE(readability-function-size)
int processArgs(int argc, char* argv[]) {
    // Options without an action behind them leave no keyword.
    char const* const keyword = argc >= 2 ? argv[1] : "";

    // clang-format off
    if (is(keyword, "state")) return stateAction(argc);
    if (is(keyword, "headercompression")) return headerCompressionAction(argc, argv);
    if (is(keyword, "connect")) return connectAction(argc, argv);
    if (is(keyword, "connectmethod")) return connectMethodAction(argc, argv);
    if (is(keyword, "disconnect")) return disconnectAction(argc);
    if (is(keyword, "encryption")) return encryptionAction(argc, argv);
    if (is(keyword, "jumbo")) return jumboAction(argc, argv);
    if (is(keyword, "login")) return loginAction(argc, argv);
    if (is(keyword, "directory")) return directoryAction(argc, argv);
    if (is(keyword, "gateway")) return gatewayAction(argc, argv);
    if (is(keyword, "esni")) return esniAction(argc, argv);
    if (is(keyword, "logout")) return logoutAction(argc);
    if (is(keyword, "mode")) return modeAction(argc, argv);
    if (is(keyword, "overflow")) return overflowAction(argc, argv);
    if (is(keyword, "packetaggr")) return packetAggregationAction(argc, argv);
    if (is(keyword, "ports")) return portsAction(argc, argv);
    if (is(keyword, "show")) return showAction(argc, argv);
    if (is(keyword, "safebrowsing")) return safeBrowsingAction(argc, argv);
    if (is(keyword, "startupconnect")) return startupConnectAction(argc, argv);
    if (is(keyword, "stats")) return statsAction(argc, argv);
    if (is(keyword, "adapter")) return adapterAction(argc, argv);
    if (is(keyword, "transport")) return transportAction(argc, argv);
    if (is(keyword, "privacy")) return privacyAction(argc);
    if (is(keyword, "version")) return versionAction(argc);
    if (is(keyword, "daemon")) return daemonAction(argc, argv);
    if (is(keyword, "dns")) return dnsAction(argc, argv);
    if (is(keyword, "captiveportal")) return captivePortalAction(argc, argv);
    if (is(keyword, "localproxy")) return localproxyAction(argc, argv);
    if (is(keyword, "firewall")) return firewallAction(argc, argv);
    if (is(keyword, "route")) return routeAction(argc, argv);
    if (is(keyword, "streamingbypass")) return streamingbypassAction(argc, argv);
    if (is(keyword, "streaming")) return streamingAction(argc, argv);
    if (is(keyword, "speedtest")) return speedtestAction();
    if (is(keyword, "streamtest")) return streamtestAction();
    // clang-format on

    showUsage(1);
    return 4;
}

void showUsage(int failed) {
    std::FILE* const stream = failed == 0 ? stdout : stderr;
    std::fprintf(stream, "%s v%s.%s\n", binName, KELVARIS_VERSION, KELVARIS_BUILD);
    std::fprintf(stream, "Usage : %s action\n", binName);
    std::fputs("Actions:\n"
               "   adapter datalimit daily <adapter id> <data usage in bytes|unlimited>\n"
               "   adapter datalimit dailyboost <adapter id> <additional bytes>\n"
               "   adapter datalimit monthly <adapter id> <data usage in bytes|unlimited> <day of the month "
               "to reset on|0 for last 30 days>\n"
               "   adapter encryption <adapter id> <on|off>\n"
               "   adapter overlimitratelimit <adapter id> <speed in bits per second|0 to stop using>\n"
               "   adapter priority <adapter id> <always|secondary|backup|never>\n"
               "   adapter ratelimit <adapter id> <speed in bits per second|unlimited>\n"
               "   adapter resetusage <adapter id>\n"
               "   captiveportal check\n"
               "   captiveportal login <on|off> <adapter id>\n"
               "   headercompression <on|off>\n"
               "   connect [ closest | public | private | p2p | <country> [<city> [<number>]] | last ]\n"
               "   connectmethod < closest | public | private | p2p | <country> [<city> [<number>]] >\n"
               "   daemon exit\n"
               "   directory [directory server domain]\n"
               "   dns <ip address> ...\n"
               "   disconnect\n"
               "   encryption <on|off>\n"
               "   esni <on|off>\n"
               "   gateway [directory gateway uri]\n"
               "   jumbo <on|off>\n"
               "   login <username> [password]\n"
               "   login auto\n"
               "   login oauth [access token]\n"
               "   logout\n"
               "   mode <redundant|speed|streaming>\n"
               "   overflow <speed in mbps>\n"
               "   packetaggr <on|off>\n"
               "   ports [port/proto] ...\n"
               "   route default <on|off>\n"
               "   show < servers | settings | privacy | adapters | currentserver | user | directory | "
               "connectmethod | streamingbypass | disconnect | streaming | speedtest>\n"
               "   speedtest\n"
               "   streamtest\n"
               "   startupconnect <on|off>\n"
               "   state\n"
               "   stats [duration in seconds] [current|day|week|month|total|<period in hours>] ...\n"
               "   streaming domains <add|rem|set> <domain> ...\n"
               "   streaming ipv4 <add|rem|set> <ip address> ...\n"
               "   streaming ipv6 <add|rem|set> <ip address> ...\n"
               "   streaming ports <add|rem|set> [port/proto] ...\n"
               "   streamingbypass domains <add|rem|set> <domain> ...\n"
               "   streamingbypass ipv4 <add|rem|set> <ip address> ...\n"
               "   streamingbypass ipv6 <add|rem|set> <ip address> ...\n"
               "   streamingbypass ports <add|rem|set> <port/proto> ...\n"
               "   streamingbypass service <service name> <on|off>\n"
               "   transport <auto|tcp|tcp-multi|udp|https>\n"
               "   version\n",
               stream);
}

bool isPrivate(char const* word) {
    if (std::strlen(word) != 9 || std::strncmp(word, "private", 7) != 0) {
        return false;
    }
    return std::isalpha(static_cast<unsigned char>(word[7])) != 0 &&
           std::isalpha(static_cast<unsigned char>(word[8])) != 0;
}
