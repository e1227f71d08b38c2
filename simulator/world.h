#pragma once

#include <json/value.h>
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

// The adapters at the start, each as it is reported; a limit that isn't there has no key.
std::vector<Json::Value> startingAdapters();

// What more than one family reads or changes; what only one family needs lives in that family's file.
struct World {
    SessionState state = SessionState::loggedIn;
    std::vector<Json::Value> adapters = startingAdapters();
};

// Changes the state and tells every client with "report_current_state", even when it was that state already.
void enterState(Daemon& daemon, SessionState state);

// The adapters' "report_networks".
Json::Value networksReport(World& world);

} // namespace kelvarissim
