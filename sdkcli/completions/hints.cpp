#include "hints.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <type_traits>

#include <kelvarissdk/csdkinterface.h>

#include "actions.h"

namespace {

// A placeholder's values are the texts under a key of what "show" prints.
struct Held {
    std::string_view typed; // the action with this placeholder; empty for every one
    std::string_view placeholder;
    char const* command;
};

constexpr Held heldValues[] = {
    {"captiveportal login off", "adapter id", ""}, // is refused with one
    {"", "adapter id", "ask adapters adapterID"},
    {"", "service name", "ask streamingbypass title"},
    {"", "country", "places"},
    {"", "city", "places"},
    {"", "number", "places"},
    {"dns", "ip address", "ask privacy dnsAddresses"},
    {"ports", "port/proto", "ask settings protocol"},
};

std::map<std::string, char const*> const summaries = {
    {"adapter", "set what belongs to one adapter"},
    {"captiveportal", "find captive portals and log in there"},
    {"connect", "connect to a server"},
    {"connectmethod", "store how to choose a server"},
    {"daemon", "end the daemon"},
    {"directory", "set or reset the domain of the directory server"},
    {"disconnect", "disconnect"},
    {"dns", "set the DNS servers"},
    {"encryption", "switch encryption of the tunnel"},
    {"esni", "switch encrypted server name indication"},
    {"firewall", "set the firewall"},
    {"gateway", "set or reset the URI of the directory gateway"},
    {"headercompression", "switch header compression"},
    {"jumbo", "switch jumbo packets"},
    {"localproxy", "switch the local proxy"},
    {"login", "log in"},
    {"logout", "log out"},
    {"mode", "set the bonding mode"},
    {"overflow", "set the overflow threshold"},
    {"packetaggr", "switch packet aggregation"},
    {"ports", "set the forwarded ports"},
    {"privacy", "no action"},
    {"route", "switch the default route"},
    {"safebrowsing", "control safe browsing"},
    {"show", "show settings and lists"},
    {"show adapters", "adapters with their limits and usage"},
    {"show cities", "servers that the account may use"},
    {"show connectmethod", "how a server is chosen"},
    {"show countries", "servers that the account may use"},
    {"show currentserver", "the server in use"},
    {"show directory", "directory settings"},
    {"show disconnect", "why the last session ended"},
    {"show firewall", "mode and lists of the firewall"},
    {"show localproxy", "whether the local proxy is on"},
    {"show privacy", "DNS servers"},
    {"show servers", "servers that the account may use"},
    {"show settings", "settings of the tunnel"},
    {"show speedtest", "results of speed and stream tests"},
    {"show streaming", "what counts as streaming"},
    {"show streamingbypass", "what bypasses the tunnel"},
    {"show user", "data of the account"},
    {"speedtest", "run a speed test"},
    {"startupconnect", "connect when the daemon starts"},
    {"state", "show the state of the session"},
    {"stats", "print statistics as they come"},
    {"streaming", "edit what counts as streaming"},
    {"streamingbypass", "edit what bypasses the tunnel"},
    {"streamtest", "run a stream test"},
    {"transport", "set the transport of the tunnel"},
    {"version", "show the version of the daemon"},
};

} // namespace

std::string joined(std::vector<std::string> const& words) {
    std::string text;
    for (std::string const& word : words) {
        text += text.empty() ? word : ' ' + word;
    }
    return text;
}

std::string source(std::vector<std::string> const& typed, std::string const& placeholder) {
    std::string const text = joined(typed);
    for (Held const& held : heldValues) {
        if (held.placeholder == placeholder && (held.typed.empty() || held.typed == text)) {
            return held.command;
        }
    }
    // "<family> <list> <operation>": a list is shown by its family, under its own name. Nobody adds what it holds.
    if (typed.size() == 3 && (typed[2] == "rem" || typed[2] == "set")) {
        return "ask " + typed[0] + ' ' + (typed[1] == "ports" ? "protocol" : typed[1]);
    }
    return "";
}

std::string summary(std::vector<std::string> const& typed, std::string const& word) {
    std::string const text = typed.empty() ? word : joined(typed) + ' ' + word;
    if (auto const known = summaries.find(text); known != summaries.end()) {
        return known->second;
    }
    std::vector<std::string> found;
    auto const look = [&](std::string const& line) {
        if (line.starts_with(text + ' ')) {
            found.push_back(line.substr(text.size() + 1));
        }
    };
    std::for_each(std::begin(helpLines), std::end(helpLines), look);
    std::for_each(std::begin(unlistedLines), std::end(unlistedLines), look);
    return found.size() == 1 ? found.front() : "";
}

std::size_t maxRepetitions(std::string const& keyword) {
    if (keyword == "stats") {
        return std::extent_v<decltype(KelvarisSDK_SessionStatsResult::periods)>;
    }
    return keyword == "dns" ? std::extent_v<decltype(KelvarisSDK_PrivacySettingsResult::dnsAddresses)> : 0;
}
