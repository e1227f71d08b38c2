// The frame of the tool: options, dispatch, usage text, the prompt at a terminal, the product's name in messages.

#include "productStringReplacement.h"
#include "support/messages.h"
#include "support/source.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <regex>

using namespace harness;

namespace {

std::string const loggedIn = styled(R"({"state":"LOGGED_IN"})");

std::string usageOf(std::string const& program) {
    return std::regex_replace(golden("usage.txt"), std::regex("PROGRAM"), program);
}

} // namespace

// Help prints it; whatever isn't an action shows it as an error, and so do options without an action.
TEST(Frame, UsageText) {
    std::string const usage = usageOf("sdkcli");
    for (char const* const words : {"", "-h", "--help state"}) {
        Outcome const outcome = runProcess(tool(split(words)));
        EXPECT_EQ(outcome.status, 0) << words;
        EXPECT_EQ(outcome.out, usage) << words;
        EXPECT_EQ(outcome.err, "") << words;
    }
    for (char const* const words : {"State", "''", "-p", "-p 9 -h", "-i 127.0.0.1 -p", "-i 127.0.0.1 -p 9",
                                    "-p 9 -i 127.0.0.1 state"}) {
        Outcome const outcome = runProcess(tool(split(words)));
        EXPECT_EQ(outcome.status, 4) << words;
        EXPECT_EQ(outcome.out, "") << words;
        EXPECT_EQ(outcome.err, usage) << words;
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

TEST(Product, PlaceholderIsReplaced) {
    char const* const plain = "kelvarisProductName {kelvarisProductname}";
    EXPECT_EQ(replaceProductString(plain), plain);
    EXPECT_STREQ(replaceProductString("{kelvarisProductName} & {kelvarisProductName}{"),
                 "Kelvaris & Kelvaris{");
    std::string const full = replaceProductString(("{kelvarisProductName}" + std::string(300, 'x')).c_str());
    EXPECT_EQ(full, "Kelvaris" + std::string(192, 'x'));
    EXPECT_STREQ(replaceProductString("{kelvarisProductName}"), "Kelvaris");
}

// At a terminal nothing shows of the secret, and the terminal echoes again whatever the end. Behind the prompt the
// signals that end a process have their own effect again.
TEST(Login, PromptIsSilent) {
    for (bool const interrupted : {false, true}) {
        SCOPED_TRACE(interrupted);
        std::vector<Step> script = {{"login", R"({"password":"secret","username":"me"})"}};
        ScriptedDaemon daemon(interrupted ? std::vector<Step>() : script);
        Command command = tool({"-p", std::to_string(daemon.port()), "login", "me"});
        command.input.reset();
        Process process(command);
        process.waitForOutput("Enter password : ");
        process.waitForEcho(false);
        int const ending[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};
        auto const areCaught = [&](int signal) { return process.catches(signal); };
        EXPECT_TRUE(std::all_of(std::begin(ending), std::end(ending), areCaught));
        if (interrupted) {
            process.signal(SIGINT);
        } else {
            process.type("secret\n");
            daemon.waitForRequest("login");
            EXPECT_TRUE(std::none_of(std::begin(ending), std::end(ending), areCaught));
            daemon.send(state(2));
        }
        Outcome const& outcome = process.wait();
        process.waitForEcho(true);
        EXPECT_EQ(outcome.status, interrupted ? -SIGINT : 0);
        EXPECT_EQ(outcome.out, "Enter password : " + (interrupted ? "" : loggedIn));
        EXPECT_EQ(outcome.terminal, "");
    }
}
