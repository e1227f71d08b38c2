// The frame of the tool: options, dispatch, usage text, the actions of no family, the error document, the
// prompt, the product's name in messages.

#include "productStringReplacement.h"
#include "support/rows.h"
#include "support/source.h"

#include <csignal>
#include <gtest/gtest.h>
#include <regex>

using namespace harness;

namespace {

std::string const loggedIn = styled(R"({"state":"LOGGED_IN"})");

Step loggingIn(std::string const& password) {
    return {"login", R"({"password":")" + password + R"(","username":"me"})", {state(2)}};
}

std::string usageOf(std::string const& program) {
    return std::regex_replace(golden("usage.txt"), std::regex("PROGRAM"), program);
}

} // namespace

// Help prints it; whatever isn't an action shows it as an error, and so do options without an action.
TEST(Frame, UsageText) {
    std::string const usage = usageOf("sdkcli");
    struct Case {
        std::vector<std::string> words;
        bool help;
    };
    for (Case const& c : {Case{{}, true},
                          {{"-h"}, true},
                          {{"--help", "state"}, true},
                          {{"State"}, false},
                          {{""}, false},
                          {{"-p"}, false},
                          {{"-p", "9", "-h"}, false},
                          {{"-i", "127.0.0.1", "-p"}, false},
                          {{"-i", "127.0.0.1", "-p", "9"}, false},
                          {{"-p", "9", "-i", "127.0.0.1", "state"}, false}}) {
        SCOPED_TRACE(testing::PrintToString(c.words));
        Outcome const outcome = runProcess(tool(c.words));
        EXPECT_EQ(outcome.status, c.help ? 0 : 4);
        EXPECT_EQ(outcome.out, c.help ? usage : "");
        EXPECT_EQ(outcome.err, c.help ? "" : usage);
    }
    // The program's name is what stands behind the last slash, or else behind the last backslash.
    for (std::string const name : {"/a/b\\c/tool", "x\\tool"}) {
        Command command = tool({"-h"});
        command.argv[0] = name;
        EXPECT_EQ(runProcess(command).out, usageOf("tool"));
    }
}

// The port is read as a decimal number and taken modulo 65536.
TEST(Frame, Options) {
    std::vector<std::string> words = {"--ip", "localhost", "--port", "", "state"};
    for (int const beyond : {0, 65536}) {
        ScriptedDaemon daemon({asked("current_state", R"({"state":2})")});
        words[3] = '0' + std::to_string(daemon.port() + beyond);
        EXPECT_EQ(runProcess(tool(words)).out, loggedIn);
    }
}

// Each call's time-out in seconds: an answer after three fifths of it comes in time, one after three halves
// comes too late. On these clocks every time-out takes a second.
TEST(Frame, TimeOuts) {
    std::vector<Row> rows;
    struct Case {
        std::string words, request, payload, answer, out;
        int seconds;
    };
    for (auto const& [words, request, payload, answer, out, seconds] : {
             Case{"state", "request_current_state", "null", state(2), loggedIn, 5},
             Case{"disconnect", "server_disconnect", "null", state(2), loggedIn, 5},
             Case{"login oauth t", "login_oauth", R"({"oauth":"t"})", state(2), loggedIn, 60},
             Case{"login me s", "login", R"({"password":"s","username":"me"})", state(2), loggedIn, 60},
             Case{"connect proxy", "server_auto_connect", R"({"server":"proxy"})",
                  lock("server_auto_connect", 2), "", 60},
             Case{"captiveportal check", "check_captive_networks", "null", report("captive_networks", "{}"),
                  "[]\n", 30},
             Case{"speedtest", "speedtest", "null", report("speedtest_results", "[]"), "[]\n", 60},
             Case{"streamtest", "streamtest", "null", report("speedtest_results", "[]"), "[]\n", 200},
         }) {
        Row inTime = row(words, {{request, payload, {answer}, Then::carryOn, 600}}, out);
        if (out.empty()) {
            inTime.err = lockedByAccount;
            inTime.status = 1;
        }
        Row tooLate = failing(words, {{request, payload, {answer}, Then::carryOn, 1500}}, timedOut);
        inTime.clock = tooLate.clock = seconds;
        rows.push_back(inTime);
        rows.push_back(tooLate);
    }
    std::string const unreachable =
        errorDocument(3845, "Not able to establish connection to daemon", "Unable to connect");
    rows.push_back({"nobody listens", {"state"}, {}, "", unreachable, 1, "", {.listen = false}, 5});
    runRowsInParallel(rows);
}

TEST(Product, PlaceholderIsReplaced) {
    char const* const plain = "kelvarisProductName {kelvarisProductname}";
    EXPECT_EQ(replaceProductString(plain), plain);
    EXPECT_STREQ(replaceProductString("{kelvarisProductName} & {kelvarisProductName}{"),
                 "Kelvaris & Kelvaris{");
    std::string const full = replaceProductString(("{kelvarisProductName}" + std::string(300, 'x')).c_str());
    EXPECT_EQ(full, "Kelvaris" + std::string(192, 'x'));
    EXPECT_STREQ(replaceProductString("{kelvarisProductName}"), "Kelvaris");
}

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
