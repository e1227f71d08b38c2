// Logging in and out, the account's data, the prompt.

#include "support/rows.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace harness;

namespace {

std::string report(std::string const& name, std::string const& payload) {
    return "[\"" + name + "\"," + payload + "]";
}

std::string state(int number) {
    return report("report_current_state", "{\"state\":" + std::to_string(number) + "}");
}

std::string stateDocument(std::string const& name) {
    return styled(R"({"state":")" + name + "\"}");
}

std::string credentials(std::string const& username, std::string const& password) {
    return R"({"password":")" + password + R"(","username":")" + username + "\"}";
}

std::vector<Step> loggingIn(std::string const& username, std::string const& password) {
    return {{.request = "login", .payload = credentials(username, password), .answers = {state(2)}}};
}

std::vector<Step> account(std::string const& payload) {
    return {{.request = "request_accounting_data", .answers = {report("report_accounting_data", payload)}}};
}

// What is printed of an account with this one value, the others being what an empty report gives.
std::string accountDocument(std::string const& key, Json::Value const& value) {
    Json::Value document = parsed(
        R"({"bytesAvailable":0,"bytesUsed":0,"dataPeriodEnd":"1900-01-00","email":"","isAutoAccount":false,)"
        R"("isTeam":false,"minutesAvailable":0,"minutesUsed":0,"paymentType":"free"})");
    document[key] = value;
    return document.toStyledString();
}

} // namespace

TEST(Login, EndsInASettledStateOrAnError) {
    std::string const error = report("report_login_error", R"({"type":7,"msg":"expired"})");
    std::string const loginLock = report("report_setting_locked", R"({"setting":"login","reason":1})");
    runRows({
        {"password",
         {"login", "me", "s"},
         {{.request = "login",
           .payload = credentials("me", "s"),
           .answers = {loginLock, state(1), state(0), state(2)}}},
         stateDocument("LOGGED_IN")},
        {"empty password", {"login", "me", ""}, loggingIn("me", ""), stateDocument("LOGGED_IN")},
        {"connected",
         {"login", "oauth", "t"},
         {{.request = "login_oauth", .payload = R"({"oauth":"t"})", .answers = {state(6)}}},
         stateDocument("CONNECTED")},
        {"automatic",
         {"login", "auto"},
         {{.request = "allow_auto_account"}, {.request = "login_auto", .answers = {state(7)}}},
         stateDocument("OVERLIMIT")},
        {"error",
         {"login", "oauth", "t"},
         {{.request = "login_oauth", .payload = R"({"oauth":"t"})", .answers = {error}}},
         "",
         errorDocument(7, "The provided OAUTH token is expired", "expired"),
         1},
        {"error without a reason",
         {"login", "auto"},
         {{.request = "allow_auto_account"},
          {.request = "login_auto", .answers = {report("report_login_error", "null")}}},
         "",
         errorDocument(0, "No error", ""),
         1},
        {"logout",
         {"logout"},
         {{.request = "logout", .answers = {state(2)}},
          {.request = "request_current_state", .answers = {state(0)}}},
         stateDocument("LOGGED_OUT")},
    });
}

TEST(Login, RefusedWords) {
    runRows({
        {"nothing", {"login"}, {}, "", missing("login <username> [password]"), 3},
        {"too many", {"login", "a", "b", "c"}, {}, "", invalid("login <username> [password]"), 2},
        {"auto", {"login", "auto", "b"}, {}, "", invalid("login auto"), 2},
        {"oauth", {"login", "oauth", "a", "b"}, {}, "", invalid("login oauth [access token]"), 2},
        {"logout", {"logout", "now"}, {}, "", invalid("logout"), 2},
    });
}

TEST(Login, Account) {
    std::vector<Row> rows = {
        {"every value its own",
         {"show", "user"},
         account(R"({"email":"a@b.c","isAutoAccount":true,"isTeam":false,)"
                 R"("bytesAvail":9007199254740993,"bytesUsed":-2,"minutesAvail":2147483647,)"
                 R"("minutesUsed":-4,"payTier":3,"periodEndDate":"2031-02-13T10:11:12"})"),
         styled(R"({"email":"a@b.c","isAutoAccount":true,"isTeam":false,)"
                R"("bytesAvailable":9007199254740993,"bytesUsed":-2,"minutesAvailable":2147483647,)"
                R"("minutesUsed":-4,"paymentType":"yearly","dataPeriodEnd":"2031-02-13"})")},
        {"a number too wide",
         {"show", "user"},
         account(R"({"minutesUsed":2147483648})"),
         "",
         errorDocument(3840, "An error in the SDK", "Error from SDK"),
         1},
    };
    struct Case {
        std::string payload;
        std::string key;
        Json::Value value;
    };
    for (Case const& c : {
             Case{"{}", "isTeam", false},
             Case{R"({"isTeam":true})", "isTeam", true},
             Case{R"({"payTier":1})", "paymentType", "monthly"},
             Case{R"({"payTier":2})", "paymentType", "free"},
             Case{R"({"periodEndDate":"2031-02"})", "dataPeriodEnd", "2031-02-00"},
             Case{R"({"periodEndDate":"soon"})", "dataPeriodEnd", "1900-01-00"},
             Case{R"({"email":")" + std::string(251, 'e') + "\"}", "email", std::string(250, 'e')},
         }) {
        rows.push_back({c.payload, {"show", "user"}, account(c.payload), accountDocument(c.key, c.value)});
    }
    runRows(rows);
}

TEST(Login, PromptReadsALine) {
    std::string const prompted = "Enter password : " + stateDocument("LOGGED_IN");
    runRows({
        {"a pipe", {"login", "me"}, loggingIn("me", "secret word"), prompted, "", 0, "secret word\nmore\n"},
        {"no line end", {"login", "me"}, loggingIn("me", "secre"), prompted, "", 0, "secret"},
        {"end of input", {"login", "me"}, loggingIn("me", ""), prompted},
        {"longer than its room",
         {"login", "me"},
         loggingIn("me", std::string(31, 'x')),
         prompted,
         "",
         0,
         std::string(40, 'x') + "\n"},
        {"a long token",
         {"login", "oauth"},
         {{.request = "login_oauth",
           .payload = R"({"oauth":")" + std::string(511, 't') + "\"}",
           .answers = {state(2)}}},
         "Enter oauth token : " + stateDocument("LOGGED_IN"),
         "",
         0,
         std::string(600, 't') + "\n"},
    });
}

// At a terminal nothing shows of the secret, and the terminal echoes again whatever the end.
TEST(Login, PromptIsSilent) {
    for (bool const interrupted : {false, true}) {
        SCOPED_TRACE(interrupted);
        std::vector<Step> const script = interrupted ? std::vector<Step>() : loggingIn("me", "secret");
        ScriptedDaemon daemon(script);
        Command command = tool({"-p", std::to_string(daemon.port()), "login", "me"});
        command.kind = Input::terminal;
        Process process(command);
        process.waitForOutput("Enter password : ");
        process.waitForEcho(false);
        if (interrupted) {
            process.signal(SIGINT);
        } else {
            process.type("secret\n");
        }
        Outcome const& outcome = process.wait();
        process.waitForEcho(true);
        EXPECT_EQ(outcome.status, interrupted ? -SIGINT : 0);
        EXPECT_EQ(outcome.out, "Enter password : " + (interrupted ? "" : stateDocument("LOGGED_IN")));
        EXPECT_EQ(outcome.terminal, "");
    }
}
