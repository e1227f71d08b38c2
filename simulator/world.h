#pragma once

#include <cstdint>
#include <functional>
#include <json/value.h>
#include <optional>
#include <vector>

namespace kelvarissim {

class Daemon;

enum class SessionState {
    loggedOut,
    loggingIn,
    loggedIn,
    autoConnecting,
    connecting,
    disconnecting,
    connected,
    overLimit,
};

// Returns the initial adapters in the form of their report; an absent limit has no key.
std::vector<Json::Value> initialAdapters();
// Returns the initial settings of the tunnel in the form of their report.
Json::Value initialConnectionSettings();

// The state that several families share. The state of a single family is in that family's file.
struct World {
    SessionState state = SessionState::loggedIn;
    std::function<void()> onState = [] {}; // called after each change of the state
    std::vector<Json::Value> adapters = initialAdapters();
    Json::Value connectionSettings = initialConnectionSettings();
    std::optional<std::uint64_t> trafficSeed; // from --traffic; without it the traffic is always the same
};

// Changes the state and broadcasts "report_current_state", even when the state stays the same.
void enterState(Daemon& daemon, SessionState state);

// Returns the payload of "report_networks".
Json::Value networksReport(World& world);

} // namespace kelvarissim
