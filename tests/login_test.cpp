// Logging in and out, the account's data, the prompt.

#include "support/rows.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace harness;

namespace {

std::string stateDocument(std::string const& name) {
    return styled(R"({"state":")" + name + "\"}");
}

Step loggingIn(std::string const& password, std::vector<Answer> const& answers = {state(2)}) {
    return {"login", R"({"password":")" + password + R"(","username":"me"})", answers};
}

Step byToken(std::string const& token, std::string const& answer) {
    return {"login_oauth", R"({"oauth":")" + token + "\"}", {answer}};
}

Row shown(std::string const& account, std::string const& document) {
    return row("show user", {asked("accounting_data", account)}, document);
}

// What is printed of an account that is reported as {}, with some members replaced.
std::string accountDocument(std::string const& members) {
    return changed(R"({"bytesAvailable":0,"bytesUsed":0,"dataPeriodEnd":"1900-01-00","email":"",
        "isAutoAccount":false,"isTeam":false,"minutesAvailable":0,"minutesUsed":0,"paymentType":"free"})",
                   members);
}

} // namespace

TEST(Login, EndsInASettledStateOrAnError) {
    std::string const expired = report("login_error", R"({"type":7,"msg":"expired"})");
    runRows({
        row("login me s", {loggingIn("s", {lock("login", 1), state(1), state(0), state(2)})},
            stateDocument("LOGGED_IN")),
        row("login me ''", {loggingIn("")}, stateDocument("LOGGED_IN")),
        row("login oauth t", {byToken("t", state(6))}, stateDocument("CONNECTED")),
        row("login auto", {{"allow_auto_account"}, {"login_auto", "null", {state(7)}}},
            stateDocument("OVERLIMIT")),
        failing("login me s", {loggingIn("s", {report("login_error", R"({"type":3,"msg":"no"})")})},
                errorDocument(3, "Invalid credentials", "no")),
        failing("login me s", {loggingIn("s", {report("login_error", R"({"type":[]})")})}, unreadable),
        failing("login oauth t", {byToken("t", expired)},
                errorDocument(7, "The provided OAUTH token is expired", "expired")),
        failing("login auto",
                {{"allow_auto_account"}, {"login_auto", "null", {report("login_error", "null")}}},
                errorDocument(0, "No error", "")),
        row("logout", {{"logout", "null", {state(2)}}, asked("current_state", R"({"state":0})")},
            stateDocument("LOGGED_OUT")),
    });
}

TEST(Login, RefusedWords) {
    std::vector<Row> rows;
    addRefusals(rows, {{"login <username> [password]", {"login"}, {"login a b c"}},
                       {"login auto", {}, {"login auto b"}},
                       {"login oauth [access token]", {}, {"login oauth a b"}},
                       {"logout", {}, {"logout now"}}});
    runRows(rows);
}

TEST(Login, Account) {
    runRows({
        shown(R"({"email":"a@b.c","isAutoAccount":true,"bytesAvail":9007199254740993,"bytesUsed":-2,
                  "minutesAvail":2147483647,"minutesUsed":-4,"payTier":3,
                  "periodEndDate":"2031-02-13T10:11:12"})",
              accountDocument(R"({"email":"a@b.c","isAutoAccount":true,"bytesAvailable":9007199254740993,
                  "bytesUsed":-2,"minutesAvailable":2147483647,"minutesUsed":-4,"paymentType":"yearly",
                  "dataPeriodEnd":"2031-02-13"})")),
        shown("{}", accountDocument("{}")),
        shown(R"({"isTeam":true,"payTier":1})",
              accountDocument(R"({"isTeam":true,"paymentType":"monthly"})")),
        shown(R"({"payTier":2,"periodEndDate":"2031-02"})",
              accountDocument(R"({"dataPeriodEnd":"2031-02-00"})")),
        shown(R"({"email":")" + std::string(251, 'e') + R"(","periodEndDate":"soon"})",
              accountDocument(R"({"email":")" + std::string(250, 'e') + "\"}")),
        failing("show user", {asked("accounting_data", R"({"minutesUsed":2147483648})")}, unreadable),
    });
}

TEST(Login, PromptReadsALine) {
    auto const typed = [](std::string const& input, std::string const& words, Step const& step,
                          std::string const& what) {
        Row prompted = row(words, {step}, "Enter " + what + " : " + stateDocument("LOGGED_IN"));
        prompted.input = input;
        return prompted;
    };
    runRows({
        typed("secret word\nmore\n", "login me", loggingIn("secret word"), "password"),
        // Without a line end the last byte is lost.
        typed("secret", "login me", loggingIn("secre"), "password"),
        typed("", "login me", loggingIn(""), "password"),
        // What is longer than its room is cut.
        typed(std::string(40, 'x') + "\n", "login me", loggingIn(std::string(31, 'x')), "password"),
        typed(std::string(600, 't') + "\n", "login oauth", byToken(std::string(511, 't'), state(2)),
              "oauth token"),
    });
}

// At a terminal nothing shows of the secret, and the terminal echoes again whatever the end.
TEST(Login, PromptIsSilent) {
    for (bool const interrupted : {false, true}) {
        SCOPED_TRACE(interrupted);
        std::vector<Step> const script = interrupted ? std::vector<Step>() : std::vector{loggingIn("secret")};
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
