// Everything that the command line knows stands here once: the usage lines, the actions, and the keywords that
// lead to them.

#pragma once

#include "keyword.h"

// A usage line is what a refusal shows, and most of them are lines of the help text.
namespace usage {

// core
inline constexpr char daemon[] = "daemon exit";
inline constexpr char show[] =
    "show < servers | settings | privacy | adapters | currentserver | user | directory | "
    "connectmethod | streamingbypass | disconnect | streaming | speedtest>";
inline constexpr char state[] = "state";
inline constexpr char version[] = "version";

// session
inline constexpr char connect[] =
    "connect [ closest | public | private | p2p | <country> [<city> [<number>]] | last ]";
inline constexpr char connectMethod[] =
    "connectmethod < closest | public | private | p2p | <country> [<city> [<number>]] >";
inline constexpr char directory[] = "directory [directory server domain]";
inline constexpr char disconnect[] = "disconnect";
inline constexpr char esni[] = "esni <on|off>";
inline constexpr char gateway[] = "gateway [directory gateway uri]";
inline constexpr char login[] = "login <username> [password]";
inline constexpr char loginAuto[] = "login auto";
inline constexpr char loginOAuth[] = "login oauth [access token]";
inline constexpr char logout[] = "logout";

// settings
inline constexpr char adapterEncryption[] = "adapter encryption <adapter id> <on|off>";
inline constexpr char captivePortal[] = "captiveportal check|login";
inline constexpr char captivePortalCheck[] = "captiveportal check";
inline constexpr char captivePortalLogin[] = "captiveportal login <on|off> <adapter id>";
inline constexpr char dns[] = "dns <ip address> ...";
inline constexpr char encryption[] = "encryption <on|off>";
inline constexpr char headerCompression[] = "headercompression <on|off>";
inline constexpr char jumbo[] = "jumbo <on|off>";
inline constexpr char mode[] = "mode <redundant|speed|streaming>";
inline constexpr char overflow[] = "overflow <speed in mbps>";
inline constexpr char packetAggregation[] = "packetaggr <on|off>";
inline constexpr char ports[] = "ports [port/proto] ...";
inline constexpr char privacy[] = "privacy";
inline constexpr char routeDefault[] = "route default <on|off>";
inline constexpr char startupConnect[] = "startupconnect <on|off>";
inline constexpr char transport[] = "transport <auto|tcp|tcp-multi|udp|https>";

// adapters
inline constexpr char adapter[] =
    "adapter <datalimit|priority|ratelimit|overlimitratelimit|encryption|resetusage>";
inline constexpr char dataLimit[] =
    "adapter dataLimit <monthly|daily|dailyboost>"; // this line alone has the capital L
inline constexpr char dailyBoost[] = "adapter datalimit dailyboost <adapter id> <additional bytes>";
inline constexpr char dailyLimit[] = "adapter datalimit daily <adapter id> <data usage in bytes|unlimited>";
inline constexpr char monthlyLimit[] =
    "adapter datalimit monthly <adapter id> <data usage in bytes|unlimited> "
    "<day of the month to reset on|0 for last 30 days>";
inline constexpr char overlimitRateLimit[] =
    "adapter overlimitratelimit <adapter id> <speed in bits per second|0 to stop using>";
inline constexpr char priority[] = "adapter priority <adapter id> <always|secondary|backup|never>";
inline constexpr char rateLimit[] = "adapter ratelimit <adapter id> <speed in bits per second|unlimited>";
inline constexpr char resetUsage[] = "adapter resetusage <adapter id>";

// lists
inline constexpr char firewall[] = "firewall <mode|domains|ipv4|ipv6|ports>";
inline constexpr char firewallDomains[] = "firewall domains <add|rem|set> <domain> ...";
inline constexpr char firewallIPv4[] = "firewall ipv4 <add|rem|set> <ip address> ...";
inline constexpr char firewallIPv6[] = "firewall ipv6 <add|rem|set> <ip address> ...";
inline constexpr char firewallMode[] = "firewall mode <off|allowlist|denylist>";
inline constexpr char firewallPorts[] = "firewall ports <add|rem|set> [port/proto] ...";
inline constexpr char localProxy[] = "localproxy <on|off>";
inline constexpr char streaming[] = "streaming <domains|ipv4|ipv6|ports>";
inline constexpr char streamingDomains[] = "streaming domains <add|rem|set> <domain> ...";
inline constexpr char streamingIPv4[] = "streaming ipv4 <add|rem|set> <ip address> ...";
inline constexpr char streamingIPv6[] = "streaming ipv6 <add|rem|set> <ip address> ...";
inline constexpr char streamingPorts[] = "streaming ports <add|rem|set> [port/proto] ...";
inline constexpr char bypass[] = "streamingbypass <domains|ipv4|ipv6|ports|service>";
inline constexpr char bypassDomains[] = "streamingbypass domains <add|rem|set> <domain> ...";
inline constexpr char bypassIPv4[] = "streamingbypass ipv4 <add|rem|set> <ip address> ...";
inline constexpr char bypassIPv6[] = "streamingbypass ipv6 <add|rem|set> <ip address> ...";
inline constexpr char bypassPorts[] = "streamingbypass ports <add|rem|set> <port/proto> ...";
inline constexpr char bypassService[] = "streamingbypass service <service name> <on|off>";

// telemetry
inline constexpr char speedtest[] = "speedtest";
inline constexpr char stats[] =
    "stats [duration in seconds] [current|day|week|month|total|<period in hours>] ...";
inline constexpr char streamtest[] = "streamtest";

// safebrowsing
inline constexpr char safeBrowsing[] =
    "safebrowsing <initialize|config|enable|errors|stats|redirects|loglevel|token|"
    "homenetwork|override|settings|start|stop|update>";
inline constexpr char safeBrowsingConfig[] = "safebrowsing config <string>";
inline constexpr char safeBrowsingEnable[] = "safebrowsing enable <on|off>";
inline constexpr char safeBrowsingErrors[] = "safebrowsing errors [duration in seconds]";
inline constexpr char safeBrowsingHomeNetwork[] = "safebrowsing homenetwork [retries delay timeout]";
inline constexpr char safeBrowsingInitialize[] = "safebrowsing initialize <string>";
inline constexpr char safeBrowsingLogLevel[] = "safebrowsing loglevel <trace|debug|info|warning|error>";
inline constexpr char safeBrowsingOverride[] = "safebrowsing override <none|unsafe|safe>";
inline constexpr char safeBrowsingStart[] = "safebrowsing start <string>";
inline constexpr char safeBrowsingToken[] = "safebrowsing token <string>";
inline constexpr char safeBrowsingUpdate[] = "safebrowsing update <string>";

} // namespace usage

// The help text shows these lines in this order, which isn't quite that of the alphabet.
inline constexpr char const* helpLines[] = {
    usage::dailyLimit,
    usage::dailyBoost,
    usage::monthlyLimit,
    usage::adapterEncryption,
    usage::overlimitRateLimit,
    usage::priority,
    usage::rateLimit,
    usage::resetUsage,
    usage::captivePortalCheck,
    usage::captivePortalLogin,
    usage::headerCompression,
    usage::connect,
    usage::connectMethod,
    usage::daemon,
    usage::directory,
    usage::dns,
    usage::disconnect,
    usage::encryption,
    usage::esni,
    usage::gateway,
    usage::jumbo,
    usage::login,
    usage::loginAuto,
    usage::loginOAuth,
    usage::logout,
    usage::mode,
    usage::overflow,
    usage::packetAggregation,
    usage::ports,
    usage::routeDefault,
    usage::show,
    usage::speedtest,
    usage::streamtest,
    usage::startupConnect,
    usage::state,
    usage::stats,
    usage::streamingDomains,
    usage::streamingIPv4,
    usage::streamingIPv6,
    usage::streamingPorts,
    usage::bypassDomains,
    usage::bypassIPv4,
    usage::bypassIPv6,
    usage::bypassPorts,
    usage::bypassService,
    usage::transport,
    usage::version,
};

// The help text leaves these out, though their words are accepted. Whoever completes or documents the command line
// needs them too.
inline constexpr char const* unlistedLines[] = {
    "connect proxy",
    "connectmethod proxy",
    usage::firewallDomains,
    usage::firewallIPv4,
    usage::firewallIPv6,
    usage::firewallMode,
    usage::firewallPorts,
    usage::localProxy,
    usage::privacy,
    usage::safeBrowsingConfig,
    usage::safeBrowsingEnable,
    usage::safeBrowsingErrors,
    usage::safeBrowsingHomeNetwork,
    usage::safeBrowsingInitialize,
    usage::safeBrowsingLogLevel,
    usage::safeBrowsingOverride,
    "safebrowsing redirects [duration in seconds]",
    "safebrowsing settings",
    usage::safeBrowsingStart,
    "safebrowsing stats",
    "safebrowsing stop",
    usage::safeBrowsingToken,
    usage::safeBrowsingUpdate,
    "show < countries | cities | localproxy | firewall >",
};

// core
int stateAction(int argc, char* argv[]);
int versionAction(int argc, char* argv[]);
int daemonAction(int argc, char* argv[]);
int showAction(int argc, char* argv[]);

// session
int loginAction(int argc, char* argv[]);
int logoutAction(int argc, char* argv[]);
int connectAction(int argc, char* argv[]);
int disconnectAction(int argc, char* argv[]);
int connectMethodAction(int argc, char* argv[]);
int directoryAction(int argc, char* argv[]);
int gatewayAction(int argc, char* argv[]);
int esniAction(int argc, char* argv[]);

// settings
int modeAction(int argc, char* argv[]);
int transportAction(int argc, char* argv[]);
int encryptionAction(int argc, char* argv[]);
int jumboAction(int argc, char* argv[]);
int packetAggregationAction(int argc, char* argv[]);
int headerCompressionAction(int argc, char* argv[]);
int startupConnectAction(int argc, char* argv[]);
int overflowAction(int argc, char* argv[]);
int routeAction(int argc, char* argv[]);
int portsAction(int argc, char* argv[]);
int adapterEncryptionAction(int argc, char* argv[]);
int privacyAction(int argc, char* argv[]);
int dnsAction(int argc, char* argv[]);
int captivePortalAction(int argc, char* argv[]);

// adapters
int adapterAction(int argc, char* argv[]);

// lists
int localproxyAction(int argc, char* argv[]);
int firewallAction(int argc, char* argv[]);
int streamingbypassAction(int argc, char* argv[]);
int streamingAction(int argc, char* argv[]);

// telemetry
int statsAction(int argc, char* argv[]);
int speedtestAction(int argc, char* argv[]);
int streamtestAction(int argc, char* argv[]);

// safebrowsing
int safeBrowsingAction(int argc, char* argv[]);

// The keywords that follow a keyword are defined beside its action.
extern Keywords const showKeywords;
extern Keywords const daemonKeywords;
extern Keywords const loginKeywords;
extern Keywords const routeKeywords;
extern Keywords const captivePortalKeywords;
extern Keywords const adapterKeywords;
extern Keywords const firewallKeywords;
extern Keywords const streamingbypassKeywords;
extern Keywords const streamingKeywords;
extern Keywords const safeBrowsingKeywords;

inline constexpr Keyword keywords[] = {
    {"state", stateAction},
    {"headercompression", headerCompressionAction},
    {"connect", connectAction},
    {"connectmethod", connectMethodAction},
    {"disconnect", disconnectAction},
    {"encryption", encryptionAction},
    {"jumbo", jumboAction},
    {"login", loginAction, &loginKeywords},
    {"directory", directoryAction},
    {"gateway", gatewayAction},
    {"esni", esniAction},
    {"logout", logoutAction},
    {"mode", modeAction},
    {"overflow", overflowAction},
    {"packetaggr", packetAggregationAction},
    {"ports", portsAction},
    {"show", showAction, &showKeywords},
    {"safebrowsing", safeBrowsingAction, &safeBrowsingKeywords},
    {"startupconnect", startupConnectAction},
    {"stats", statsAction},
    {"adapter", adapterAction, &adapterKeywords},
    {"transport", transportAction},
    {"privacy", privacyAction},
    {"version", versionAction},
    {"daemon", daemonAction, &daemonKeywords},
    {"dns", dnsAction},
    {"captiveportal", captivePortalAction, &captivePortalKeywords},
    {"localproxy", localproxyAction},
    {"firewall", firewallAction, &firewallKeywords},
    {"route", routeAction, &routeKeywords},
    {"streamingbypass", streamingbypassAction, &streamingbypassKeywords},
    {"streaming", streamingAction, &streamingKeywords},
    {"speedtest", speedtestAction},
    {"streamtest", streamtestAction},
};
