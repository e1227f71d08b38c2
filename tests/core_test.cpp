// The frame of the tool: options, dispatch, usage text, the actions of no family, the error document, the
// prompt, the product's name in messages.

#include "productStringReplacement.h"
#include "support/rows.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

std::vector<Step> state(std::string const& payload) {
    return {asked("current_state", payload)};
}

std::string stateDocument(std::string const& name) {
    return styled(R"({"state":")" + name + "\"}");
}

} // namespace

TEST(Frame, Actions) {
    std::string const version = R"({"maj":12,"min":1,"bug":2,"build":9063})";
    runRows({
        {"connected", {"state"}, state(R"({"state":6})"), stateDocument("CONNECTED")},
        {"unknown", {"state"}, state(R"({"state":8})"), stateDocument("UNKNOWN")},
        {"negative", {"state"}, state(R"({"state":-1})"), stateDocument("UNKNOWN")},
        {"no payload", {"state"}, state("null"), stateDocument("LOGGED_OUT")},
        {"version",
         {"version"},
         {{"request_version_data", "null", {"[\"report_version_data\"," + version + "]"}}},
         styled(version)},
        {"exit", {"daemon", "exit"}, {{"exit"}}},
        {"state extra", {"state", "extra"}, {}, "", invalid("state"), 2},
        {"version extra", {"version", "extra"}, {}, "", invalid("version"), 2},
        {"daemon", {"daemon"}, {}, "", missing("daemon exit"), 3},
        {"daemon end", {"daemon", "end"}, {}, "", invalid("daemon exit"), 2},
        {"daemon exit now", {"daemon", "exit", "now"}, {}, "", invalid("daemon exit"), 2},
    });
}

// Help prints it; whatever isn't an action shows it as an error, and so do options without an action.
TEST(Frame, UsageText) {
    std::string const usage = runProcess(tool({})).out;
    EXPECT_EQ(usage.find("sdkcli v12.1.1.9063\nUsage : sdkcli action\nActions:\n"
                         "   adapter datalimit daily <adapter id> <data usage in bytes|unlimited>\n"),
              0U);
    EXPECT_EQ(hash(usage), 7325934687997085060U);
    struct Case {
        std::vector<std::string> words;
        bool help;
    };
    for (Case const& c : {Case{{"-h"}, true},
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
        EXPECT_EQ(runProcess(command).out.find("tool v"), 0U);
    }
}

// The port is taken modulo 65536.
TEST(Frame, Options) {
    std::vector<std::string> words = {"--ip", "localhost", "--port", "", "state"};
    for (int const beyond : {0, 65536}) {
        ScriptedDaemon daemon(state(R"({"state":2})"));
        words[3] = std::to_string(daemon.port() + beyond);
        EXPECT_EQ(runProcess(tool(words)).out, stateDocument("LOGGED_IN"));
    }
}

// The library's time-outs as the tool shows them; each takes its five seconds.
TEST(Frame, WithoutAnAnswer) {
    std::string const notConnected =
        errorDocument(3845, "Not able to establish connection to daemon", "Unable to connect");
    std::string const timeOut = errorDocument(3841, "Timeout waiting for result", "Timeout");
    runRowsInParallel({
        {"nobody listens", {"state"}, {}, "", notConnected, 1, "", {.listen = false}},
        {"silent", {"state"}, {{"request_current_state"}}, "", timeOut, 1},
    });
}

TEST(Frame, OutputThatCantBeWritten) {
    for (std::string const redirection : {">/dev/full", ">&-"}) {
        SCOPED_TRACE(redirection);
        ScriptedDaemon daemon(state(R"({"state":2})"));
        std::string const run = SDKCLI_PATH " -p " + std::to_string(daemon.port()) + " state " + redirection;
        Outcome const outcome = runProcess({.path = "/bin/sh", .argv = {"sh", "-c", run}});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, "sdkcli: can't write to standard output\n");
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
