// This is the grammar of the actions that belong to no family, and of "show", which reaches into all of them.

#include "actions.h"
#include "calls.h"
#include "readers.h"

namespace {

int exitAction(int argc, char* /*argv*/[]) {
    return argc == 3 ? requestExit() : invalid(usage::daemon);
}

constexpr Keyword daemonWords[] = {
    {"exit", exitAction},
};

template <int (*request)()> int show(int /*argc*/, char* /*argv*/[]) {
    return request();
}

constexpr Keyword showWords[] = {
    {"countries", show<requestServers>},
    {"cities", show<requestServers>},
    {"servers", show<requestServers>},
    {"settings", show<requestConnectionSettings>},
    {"privacy", show<requestPrivacySettings>},
    {"adapters", show<requestAdapters>},
    {"currentserver", show<requestCurrentServer>},
    {"user", show<requestUserData>},
    {"directory", show<requestDirectory>},
    {"connectmethod", show<requestServerSettings>},
    {"localproxy", show<requestLocalProxySettings>},
    {"firewall", show<requestFirewallSettings>},
    {"streamingbypass", show<requestStreamingBypass>},
    {"disconnect", show<requestLastDisconnectEvent>},
    {"streaming", show<requestStreamingSettings>},
    {"speedtest", show<requestSpeedTestResults>},
};

} // namespace

constinit Keywords const daemonKeywords = daemonWords;
constinit Keywords const showKeywords = showWords;

int stateAction(int argc, char* /*argv*/[]) {
    return noWordAction(argc, usage::state, requestState);
}

int versionAction(int argc, char* /*argv*/[]) {
    return noWordAction(argc, usage::version, requestVersion);
}

int daemonAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, daemonKeywords, usage::daemon);
}

int showAction(int argc, char* argv[]) {
    return argc > 3 ? invalid(usage::show) : runKeyword(argc, argv, 2, showKeywords, usage::show);
}
