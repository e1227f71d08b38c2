#pragma once

#include "kelvarissdk.h"
#include "support/scripteddaemon.h"
#include "websockets.h"

// The library's class on a scripted daemon, to reach what no command line does.
namespace harness {

inline Options const noName{.appName = std::nullopt};

class Sdk : public kelvarissdk::KelvarisSDK {
public:
    explicit Sdk(ScriptedDaemon const& daemon)
        : KelvarisSDK({.appName = "", .address = "127.0.0.1", .port = daemon.port()}) {}
    kelvarissdk::WebsocketImpl& link() {
        return *websocket;
    }
    void unlink() {
        websocket.reset();
    }
};

} // namespace harness
