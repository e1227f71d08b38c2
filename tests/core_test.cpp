// The frame of the tool: dispatch, usage text, the prompt at a terminal, the product's name in messages.

#include "productStringReplacement.h"
#include "prompt.h"
#include "support/texts.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <unistd.h>

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

// At a terminal nothing shows of the secret, and the terminal echoes again whatever the end. Behind the prompt signals
// have their own effect again; an ignored one stays ignored.
TEST(Login, PromptIsSilent) {
    int const caught[] = {SIGHUP,  SIGINT, SIGQUIT, SIGABRT, SIGPIPE, SIGTERM,
                          SIGUSR2, SIGIO,  SIGXCPU, SIGTSTP, SIGCONT, SIGRTMAX};
    for (int const interrupted : {0, SIGINT, SIGALRM, SIGRTMIN}) {
        SCOPED_TRACE(interrupted);
        std::vector<Step> script = {{"login", R"({"password":"secret","username":"me"})"}};
        ScriptedDaemon daemon(interrupted != 0 ? std::vector<Step>() : script);
        std::string const run =
            "trap '' USR1; exec " EMULATOR SDKCLI_PATH " -p " + std::to_string(daemon.port());
        Process process({.path = "/bin/sh", .argv = {"sh", "-c", run + " login me"}, .input = std::nullopt});
        process.waitForOutput("Enter password : ");
        process.waitForEcho(false);
        auto const areCaught = [&](int signal) { return process.catches(signal); };
        EXPECT_TRUE(std::all_of(std::begin(caught), std::end(caught), areCaught));
        process.signal(SIGUSR1);
        if (interrupted != 0) {
            process.signal(interrupted);
        } else {
            process.type("secret\n");
            daemon.waitForRequest("login");
            EXPECT_TRUE(std::none_of(std::begin(caught), std::end(caught), areCaught));
            daemon.send(state(2));
        }
        Outcome const& outcome = process.wait();
        process.waitForEcho(true);
        EXPECT_EQ(outcome.status, -interrupted);
        EXPECT_EQ(outcome.out, "Enter password : " + (interrupted != 0 ? "" : loggedIn));
        EXPECT_EQ(outcome.terminal, "");
    }
}

// A shell's job is stopped by a key, continued in the background, where its reading stops it, and in the foreground.
TEST(Login, PromptEchoesWhileItIsStopped) {
    ScriptedDaemon daemon({{"login", R"({"password":"secret","username":"me"})", {state(2)}}});
    std::string const run =
        "set -m; " EMULATOR SDKCLI_PATH " -p " + std::to_string(daemon.port()) +
        " login me; echo one; read key; bg; wait %1; echo two; read key; fg; echo three; read key; fg";
    Process process(
        {.path = "/usr/bin/setsid", .argv = {"setsid", "--ctty", "sh", "-c", run}, .input = std::nullopt});
    process.waitForOutput("Enter password : ");
    for (std::string const stop : {"one\n", "two\n", "three\n"}) {
        if (stop != "two\n") {
            process.waitForEcho(false);
            process.type("\x1a");
        }
        process.waitForOutput(stop);
        process.waitForEcho(true);
        process.type("\n");
    }
    process.waitForEcho(false);
    process.type("secret\n");
    Outcome const& outcome = process.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out.substr(outcome.out.size() - loggedIn.size()), loggedIn);
    EXPECT_EQ(outcome.terminal.find("secret"), std::string::npos);
}

// SIGSTOP leaves no time to let the terminal echo. What it goes back to isn't forgotten in the background.
TEST(Login, PromptEchoesAfterAStopThatCantBeCaught) {
    ScriptedDaemon daemon({{"login", R"({"password":"secret","username":"me"})", {state(2)}}});
    std::string const run =
        "set -m; " EMULATOR SDKCLI_PATH " -p " + std::to_string(daemon.port()) +
        " login me; echo one; read key; bg; wait %1; echo two; read key; fg; echo three; read key";
    Process process(
        {.path = "/usr/bin/setsid", .argv = {"setsid", "--ctty", "sh", "-c", run}, .input = std::nullopt});
    process.waitForOutput("Enter password : ");
    process.waitForEcho(false);
    std::string const shell = std::to_string(process.id());
    kill(std::stoi(contents("/proc/" + shell + "/task/" + shell + "/children")), SIGSTOP);
    for (std::string const stop : {"one\n", "two\n"}) {
        process.waitForOutput(stop);
        process.type("\n");
    }
    process.type("secret\n");
    process.waitForOutput(loggedIn + "three\n");
    process.waitForEcho(true);
    process.type("\n");
    EXPECT_EQ(process.wait().status, 0);
}
