#pragma once

#include "daemon.h"
#include "options.h"

#include <functional>
#include <json/value.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kelvarissim {

struct Request {
    Daemon& daemon;
    ClientId client;
    Json::Value const& payload; // null when the request has none; destroyed when the handler returns

    // Sends a report to the requesting client alone.
    void answer(std::string const& report, Json::Value const& reportPayload) const {
        daemon.send(client, report, reportPayload);
    }
};

using Handler = std::function<void(Request const&)>;
using StartHandler = std::function<void(Daemon&)>;
using DisconnectHandler = std::function<void(Daemon&, ClientId)>;

// The families register their request handlers, options and disconnect handlers here. The server deals with
// the faults of the command line (locks, delays and so on) before a handler runs, so the families needn't.
class Registry {
public:
    explicit Registry(OptionTable& optionTable) : options(optionTable) {}

    OptionTable& options;

    // A second handler for the same request throws std::logic_error.
    void on(std::string const& requestName, Handler handler);
    // The handler runs before the first link. What --traffic changes at the start is changed here.
    void onStart(StartHandler handler) {
        startHandlerList.push_back(std::move(handler));
    }
    // The handler runs for each client whose link has ended, whatever ended it.
    void onDisconnect(DisconnectHandler handler) {
        disconnectHandlerList.push_back(std::move(handler));
    }

    // A lock of that setting locks this request too, and the lock report then names that setting.
    void alsoLockedBy(std::string const& requestName, std::string const& settingName) {
        additionalLocks[requestName] = settingName;
    }

    // Returns the other setting that locks the request, or an empty text.
    std::string additionalLock(std::string const& requestName) const;
    // Returns null when no family handles the request.
    Handler const* find(std::string const& requestName) const;
    std::vector<StartHandler> const& startHandlers() const {
        return startHandlerList;
    }
    std::vector<DisconnectHandler> const& disconnectHandlers() const {
        return disconnectHandlerList;
    }

private:
    std::map<std::string, Handler> handlers;
    std::map<std::string, std::string> additionalLocks; // request name -> setting name
    std::vector<StartHandler> startHandlerList;
    std::vector<DisconnectHandler> disconnectHandlerList;
};

} // namespace kelvarissim
