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

// How to add a family, say "radio":
//
// 1. Write radio.cpp. Its world is a structure in the unnamed namespace, shared by its handlers:
//
//        struct Radio {
//            int volume = 5;
//            bool isReporting = false;
//            std::set<ClientId> listeners;
//        };
//
//        void setVolume(Radio& radio, Request const& request) {
//            radio.volume = request.payload["volume"].asInt();
//            request.answer("report_volume", radio.volume); // or request.daemon.broadcast(), to all clients
//        }
//
//        bool reportVolume(Radio& radio, Daemon& daemon) {
//            for (ClientId client : radio.listeners) {
//                daemon.send(client, "report_volume", radio.volume);
//            }
//            return radio.isReporting = !radio.listeners.empty();
//        }
//
//        void listen(std::shared_ptr<Radio> const& radio, Request const& request) {
//            Daemon& daemon = request.daemon;
//            radio->listeners.insert(request.client);
//            if (!radio->isReporting) {
//                radio->isReporting = true;
//                daemon.every(daemon.interval(), [radio, &daemon] { return reportVolume(*radio, daemon); });
//            }
//        }
//
//        void registerRadio(Registry& registry) {
//            auto radio = std::make_shared<Radio>();
//            registry.options.number("--volume", "N", "starts with this volume (5)", 0, 10, radio->volume);
//            registry.on("set_volume", [radio](Request const& request) { setVolume(*radio, request); });
//            registry.on("listen", [radio](Request const& request) { listen(radio, request); });
//            registry.onClientGone([radio](Daemon&, ClientId client) { radio->listeners.erase(client); });
//        }
//
// 2. Declare registerRadio in families.h and call it in registerFamilies() in main.cpp.
//
// What another family needs too goes into World. A timer keeps the daemon and client ids, never the Request.
// Options are read after the families have registered and before the first request. Locks, delays and the
// other faults of the command line are dealt with before a handler runs: no family thinks of them, but for
// a request that another one's lock locks too, see alsoLockedBy().

struct Request {
    Daemon& daemon;
    ClientId client;
    Json::Value const& payload; // null when the request has none; gone when the handler has returned

    // To the client that asks.
    void answer(std::string const& report, Json::Value const& reportPayload) const {
        daemon.send(client, report, reportPayload);
    }
};

using Handler = std::function<void(Request const&)>;
using ClientGoneHook = std::function<void(Daemon&, ClientId)>;

class Registry {
public:
    explicit Registry(OptionTable& optionTable) : options(optionTable) {}

    OptionTable& options;

    // Each request name has one handler.
    void on(std::string const& requestName, Handler handler);
    // Runs for each client whose link has ended, for whatever reason.
    void onClientGone(ClientGoneHook hook) {
        goneHooks.push_back(std::move(hook));
    }

    // The request is locked with that setting too, and then answered under that setting's name.
    void alsoLockedBy(std::string const& requestName, std::string const& settingName) {
        foreignLocks[requestName] = settingName;
    }

    // The other setting that locks the request; empty when there is none.
    std::string foreignLock(std::string const& requestName) const;
    // Null when no family knows the request.
    Handler const* find(std::string const& requestName) const;
    std::vector<ClientGoneHook> const& clientGoneHooks() const {
        return goneHooks;
    }

private:
    std::map<std::string, Handler> handlers;
    std::map<std::string, std::string> foreignLocks; // request name -> setting name
    std::vector<ClientGoneHook> goneHooks;
};

} // namespace kelvarissim
