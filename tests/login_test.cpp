// The prompt of a login.

#include "support/rows.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace harness;

namespace {

std::string const loggedIn = styled(R"({"state":"LOGGED_IN"})");

Step loggingIn(std::string const& password) {
    return {"login", R"({"password":")" + password + R"(","username":"me"})", {state(2)}};
}

} // namespace

TEST(Login, PromptReadsALine) {
    auto const typed = [](std::string const& input, std::string const& words, Step const& step,
                          std::string const& what) {
        Row prompted = row(words, {step}, "Enter " + what + " : " + loggedIn);
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
        typed(std::string(600, 't') + "\n", "login oauth",
              {"login_oauth", R"({"oauth":")" + std::string(511, 't') + "\"}", {state(2)}}, "oauth token"),
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
        EXPECT_EQ(outcome.out, "Enter password : " + (interrupted ? "" : loggedIn));
        EXPECT_EQ(outcome.terminal, "");
    }
}
