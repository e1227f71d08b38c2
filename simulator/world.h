#pragma once

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

// What more than one family reads or changes; what only one family needs lives in that family's file.
struct World {
    SessionState state = SessionState::loggedIn;
};

// Changes the state and tells every client with "report_current_state", even when it was that state already.
void enterState(Daemon& daemon, SessionState state);

} // namespace kelvarissim
