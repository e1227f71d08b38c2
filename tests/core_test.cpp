// The frame of the tool: dispatch, usage text, the prompt at a terminal, the product's name in messages.

#include "productStringReplacement.h"
#include "support/texts.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <regex>

using namespace harness;

namespace {

std::string usageOf(std::string const& program) {
    return std::regex_replace(golden("usage.txt"), std::regex("PROGRAM"), program);
}

} // namespace

// Help prints it; whatever isn't an action shows it as an error, and so do options without an action.
TEST(Frame, UsageText) {
    std::string const usage = usageOf("sdkcli");
    for (std::string const words : {"", "-h", "--help state", "State", "''", "-p", "-p 9 -h",
                                    "-i 127.0.0.1 -p", "-p 9 -i 127.0.0.1 state"}) {
        bool const isHelp = words.empty() || words == "-h" || words == "--help state";
        Outcome const outcome = runProcess(tool(split(words)));
        EXPECT_EQ(outcome.status, isHelp ? 0 : 4) << words;
        EXPECT_EQ(outcome.out, isHelp ? usage : "") << words;
        EXPECT_EQ(outcome.err, isHelp ? "" : usage) << words;
    }
    // An address and a port count without an action too.
    ScriptedDaemon daemon;
    Outcome const outcome = runProcess(tool({"-i", "127.0.0.1", "-p", std::to_string(daemon.port())}));
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(outcome.err, usage);
    daemon.waitForConnections(1);
    // The program's name is what stands behind the last slash, or else behind the last backslash.
    for (std::string const name : {"/a/b\\c/tool", "x\\tool"}) {
        Command command = tool({"-h"});
        command.argv[0] = name;
        EXPECT_EQ(runProcess(command).out, usageOf("tool"));
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
        EXPECT_EQ(outcome.out, "Enter password : " + (interrupted ? "" : styled(R"({"state":"LOGGED_IN"})")));
        EXPECT_EQ(outcome.terminal, "");
    }
}
