// The upgrade makes a connection that carries frames from a URL.

#pragma once

#include <optional>
#include <string>

#include "easywssocket.h"

namespace easywsclient {

struct Upgraded {
    Descriptor socket;      // it doesn't block
    ReceiveBuffer received; // the frames that came with the answer
};

// Connects and upgrades. Blocks until the peer has answered, without a time limit. Returns nothing on any failure.
std::optional<Upgraded> upgrade(std::string const& url, std::string const& origin);

} // namespace easywsclient
