#include "families.h"
#include "registry.h"
#include "serverlist.h"

#include <functional>
#include <memory>

namespace kelvarissim {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds transitionTime{100}; // between two states

struct Account {
    std::string email;
    bool isAuto = false;
};

struct Session {
    std::optional<Account> account = Account{"demo@example.com"};
    bool autoAccountAllowed = false;
    std::optional<ListedServer> server; // empty while disconnected
    std::optional<ListedServer> lastServer;
    std::string connectMethod = "user";
    std::string connectCountry;
    std::optional<int> connectError; // from --connect-error
    TimerId transition = 0;
};

using SessionPtr = std::shared_ptr<Session>;

Json::Value errorReport(int type, std::string const& message) {
    Json::Value report;
    report["type"] = type;
    report["msg"] = message;
    return report;
}

// Schedules the next transition and replaces a pending one, because the latest request decides.
void scheduleTransition(SessionPtr const& session, Daemon& daemon, std::function<void()> action) {
    daemon.cancel(session->transition);
    session->transition = daemon.after(transitionTime, std::move(action));
}

SessionState idleState(Session const& session) {
    return session.account ? SessionState::loggedIn : SessionState::loggedOut;
}

// A login ends any connection. A missing account means that the login fails with this error.
void logIn(SessionPtr const& session, Request const& request, std::optional<Account> const& account,
           Json::Value const& error = {}) {
    Daemon& daemon = request.daemon;
    session->account.reset();
    session->server.reset();
    enterState(daemon, SessionState::loggingIn);
    scheduleTransition(session, daemon, [session, &daemon, client = request.client, account, error] {
        session->account = account;
        enterState(daemon, idleState(*session));
        if (!account) {
            daemon.send(client, "report_login_error", error);
        }
    });
}

void logInWithPassword(SessionPtr const& session, Request const& request) {
    if (request.payload["username"] == "demo" && request.payload["password"] == "demo") {
        logIn(session, request, Account{"demo@example.com"});
    } else {
        logIn(session, request, std::nullopt, errorReport(3, "Invalid credentials"));
    }
}

void logInWithToken(SessionPtr const& session, Request const& request) {
    if (request.payload["oauth"] == "expired") {
        logIn(session, request, std::nullopt, errorReport(7, "The provided OAUTH token is expired"));
    } else {
        logIn(session, request, Account{"oauth@example.com"});
    }
}

void logInAutomatically(SessionPtr const& session, Request const& request) {
    if (session->autoAccountAllowed) {
        logIn(session, request, Account{"", true});
    } else {
        logIn(session, request, std::nullopt, errorReport(5, "Automatic accounts are not allowed"));
    }
}

void logOut(Session& session, Daemon& daemon) {
    daemon.cancel(session.transition);
    session.account.reset();
    session.server.reset();
    enterState(daemon, SessionState::loggedOut);
}

Json::Value accountingReport(Account const& account) {
    Json::Value report;
    report["email"] = account.email;
    report["isAutoAccount"] = account.isAuto;
    report["isTeam"] = false;
    report["bytesAvail"] = account.isAuto ? Json::Int64(2'147'483'648) : Json::Int64(322'122'547'200);
    report["bytesUsed"] = account.isAuto ? Json::Int64(104'857'600) : Json::Int64(48'318'382'080);
    report["minutesAvail"] = 44640;
    report["minutesUsed"] = account.isAuto ? 95 : 6120;
    report["payTier"] = account.isAuto ? 0 : 3;
    report["periodEndDate"] = "2030-01-31 23:59:59";
    return report;
}

// "auto" uses the stored connect method.
std::optional<ListedServer> serverFor(Session const& session, std::string const& text) {
    if (text == "last") {
        return session.lastServer ? session.lastServer : findServer("user");
    }
    if (text != "auto") {
        return findServer(text);
    }
    return findServer(session.connectMethod == "country" ? session.connectCountry : session.connectMethod);
}

void failToConnect(Session const& session, Daemon& daemon, Json::Value const& error) {
    daemon.broadcast("report_connect_error", error);
    enterState(daemon, idleState(session));
}

void finishConnecting(Session& session, Daemon& daemon, ListedServer const& server) {
    session.server = session.lastServer = server;
    daemon.broadcast("report_connected_server", connectedServerReport(server));
    enterState(daemon, SessionState::connected);
}

void connect(SessionPtr const& session, Request const& request) {
    Daemon& daemon = request.daemon;
    if (!session->account) {
        request.answer("report_login_error", errorReport(3, "Not logged in"));
        return;
    }
    session->server.reset();
    enterState(daemon, SessionState::autoConnecting);
    scheduleTransition(session, daemon, [session, &daemon, text = request.payload["server"].asString()] {
        std::optional<ListedServer> const server = serverFor(*session, text);
        if (session->connectError) {
            failToConnect(*session, daemon, errorReport(*session->connectError, "Unable to connect"));
        } else if (!server) {
            failToConnect(*session, daemon, errorReport(4, "No server matches " + text));
        } else {
            enterState(daemon, SessionState::connecting);
            scheduleTransition(session, daemon, [session, &daemon, server = *server] {
                finishConnecting(*session, daemon, server);
            });
        }
    });
}

void disconnect(SessionPtr const& session, Daemon& daemon) {
    session->server.reset();
    enterState(daemon, SessionState::disconnecting);
    scheduleTransition(session, daemon, [session, &daemon] { enterState(daemon, idleState(*session)); });
}

Json::Value serverSettingsReport(Session const& session) {
    Json::Value report;
    report["connect_to_best_method"] = session.connectMethod;
    report["connect_country"] = session.connectCountry;
    return report;
}

// A request without a method resets it to the default.
void setConnectMethod(Session& session, Request const& request) {
    Json::Value const& method = request.payload["connect_to_best_method"];
    session.connectMethod = method.isNull() ? "user" : method.asString();
    session.connectCountry = request.payload["countryCode"].asString();
    request.daemon.broadcast("report_server_settings", serverSettingsReport(session));
}

void registerAccount(Registry& registry, SessionPtr const& session) {
    registry.on("login", [session](Request const& request) { logInWithPassword(session, request); });
    registry.on("login_oauth", [session](Request const& request) { logInWithToken(session, request); });
    registry.on("allow_auto_account", [session](Request const&) { session->autoAccountAllowed = true; });
    registry.on("login_auto", [session](Request const& request) { logInAutomatically(session, request); });
    registry.on("logout", [session](Request const& request) { logOut(*session, request.daemon); });
    registry.on("request_accounting_data", [session](Request const& request) {
        request.answer("report_accounting_data",
                       session->account ? accountingReport(*session->account) : Json::Value());
    });
}

} // namespace

void registerSession(Registry& registry) {
    auto session = std::make_shared<Session>();
    registry.options.number("--connect-error", "TYPE", "makes every connect fail with this error type", 1, 8,
                            session->connectError);
    registry.onStart([session](Daemon& daemon) {
        if (daemon.world().trafficSeed) {
            finishConnecting(*session, daemon, *findServer("user"));
        }
    });
    registerAccount(registry, session);
    registry.on("request_directory",
                [](Request const& request) { request.answer("report_directory", directoryReport()); });
    registry.on("server_auto_connect", [session](Request const& request) { connect(session, request); });
    registry.on("server_disconnect",
                [session](Request const& request) { disconnect(session, request.daemon); });
    registry.on("request_connected_server", [session](Request const& request) {
        request.answer("report_connected_server",
                       session->server ? connectedServerReport(*session->server) : Json::Value());
    });
    registry.on("set_server_connectbest",
                [session](Request const& request) { setConnectMethod(*session, request); });
    registry.on("request_server_settings", [session](Request const& request) {
        request.answer("report_server_settings", serverSettingsReport(*session));
    });
}

} // namespace kelvarissim
