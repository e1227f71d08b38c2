#include "envelope.h"
#include "families.h"
#include "registry.h"

#include <map>
#include <memory>

namespace kelvarissim {

namespace {

using AppNames = std::map<ClientId, std::string>;

void setAppName(AppNames& names, Request const& request) {
    std::string const name = request.payload["name"].asString();
    names[request.client] = name;
    request.daemon.log(clientText(request.client) + " is " + compactText(name));
}

void forgetAppName(AppNames& names, Daemon& daemon, ClientId client) {
    auto const name = names.find(client);
    if (name != names.end()) {
        daemon.log(clientText(client) + " was " + compactText(name->second));
        names.erase(name);
    }
}

Json::Value stateReport(SessionState state) {
    Json::Value report;
    report["state"] = static_cast<int>(state);
    return report;
}

Json::Value versionReport() {
    Json::Value report;
    report["maj"] = 12;
    report["min"] = 1;
    report["bug"] = 1;
    report["build"] = 9063;
    return report;
}

} // namespace

void enterState(Daemon& daemon, SessionState state) {
    daemon.world().state = state;
    daemon.world().onState();
    daemon.broadcast("report_current_state", stateReport(state));
}

void registerCore(Registry& registry) {
    auto names = std::make_shared<AppNames>();
    registry.on("set_app_name", [names](Request const& request) { setAppName(*names, request); });
    registry.onDisconnect(
        [names](Daemon& daemon, ClientId client) { forgetAppName(*names, daemon, client); });
    registry.on("request_current_state", [](Request const& request) {
        request.answer("report_current_state", stateReport(request.daemon.world().state));
    });
    registry.on("request_version_data",
                [](Request const& request) { request.answer("report_version_data", versionReport()); });
    registry.on("exit", [](Request const& request) { request.daemon.stop(); });
}

} // namespace kelvarissim
