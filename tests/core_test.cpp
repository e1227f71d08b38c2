// The frame of the tool: options, dispatch, usage text, the actions of no family, the error document, the
// prompt.

#include "support/rows.h"

#include <gtest/gtest.h>

using namespace harness;

namespace {

std::vector<Step> state(std::string const& payload) {
    return {{.request = "request_current_state", .answers = {"[\"report_current_state\"," + payload + "]"}}};
}

std::string stateDocument(std::string const& name) {
    return styled(R"({"state":")" + name + "\"}");
}

std::string usageText() {
    return runProcess(tool({})).out;
}

// FNV-1a: the usage text is long and never changes.
uint64_t hash(std::string const& text) {
    uint64_t value = 14695981039346656037U;
    for (char const byte : text) {
        value = (value ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    }
    return value;
}

} // namespace

TEST(Frame, Actions) {
    std::string const version = R"(["report_version_data",{"maj":12,"min":1,"bug":2,"build":9063}])";
    runRows({
        {.name = "state",
         .argv = {"state"},
         .exchange = state(R"({"state":6})"),
         .out = stateDocument("CONNECTED")},
        {.name = "unknown",
         .argv = {"state"},
         .exchange = state(R"({"state":8})"),
         .out = stateDocument("UNKNOWN")},
        {.name = "negative",
         .argv = {"state"},
         .exchange = state(R"({"state":-1})"),
         .out = stateDocument("UNKNOWN")},
        {.name = "no payload",
         .argv = {"state"},
         .exchange = state("null"),
         .out = stateDocument("LOGGED_OUT")},
        {.name = "unreadable",
         .argv = {"state"},
         .exchange = state(R"({"state":[]})"),
         .err = errorDocument(3840, "An error in the SDK", "Error from SDK"),
         .status = 1},
        {.name = "version",
         .argv = {"version"},
         .exchange = {{.request = "request_version_data", .answers = {version}}},
         .out = styled(R"({"maj":12,"min":1,"bug":2,"build":9063})")},
        {.name = "daemon exit", .argv = {"daemon", "exit"}, .exchange = {{.request = "exit"}}},
        {.name = "state extra", .argv = {"state", "extra"}, .err = invalid("state"), .status = 2},
        {.name = "version extra", .argv = {"version", "extra"}, .err = invalid("version"), .status = 2},
        {.name = "daemon", .argv = {"daemon"}, .err = missing("daemon exit"), .status = 3},
        {.name = "daemon end", .argv = {"daemon", "end"}, .err = invalid("daemon exit"), .status = 2},
        {.name = "daemon exit now",
         .argv = {"daemon", "exit", "now"},
         .err = invalid("daemon exit"),
         .status = 2},
    });
}

TEST(Frame, UsageText) {
    std::string const usage = usageText();
    EXPECT_EQ(usage.find("sdkcli v12.1.1.9063\nUsage : sdkcli action\nActions:\n"
                         "   adapter datalimit daily <adapter id> <data usage in bytes|unlimited>\n"),
              0U);
    EXPECT_EQ(hash(usage), 7325934687997085060U);
    for (std::vector<std::string> const& words :
         {std::vector<std::string>{"-h"}, {"--help"}, {"-h", "state"}}) {
        Outcome const outcome = runProcess(tool(words));
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out, usage);
        EXPECT_EQ(outcome.err, "");
    }
    // The program's name is what stands behind the last slash, or else behind the last backslash.
    for (std::string const name : {"/a/b\\c/tool", "x\\tool"}) {
        Command command = tool({"-h"});
        command.argv[0] = name;
        EXPECT_EQ(runProcess(command).out.find("tool v"), 0U);
    }
}

// Whatever isn't an action shows the usage text as an error, and so do options without an action.
TEST(Frame, UnknownActions) {
    std::string const usage = usageText();
    for (std::vector<std::string> const& words : {std::vector<std::string>{"State"},
                                                  {""},
                                                  {"-i"},
                                                  {"-p"},
                                                  {"-i", "127.0.0.1"},
                                                  {"-p", "9"},
                                                  {"-p", "9", "-h"},
                                                  {"-i", "127.0.0.1", "-p"},
                                                  {"-i", "127.0.0.1", "-p", "9"},
                                                  {"-p", "9", "-i", "127.0.0.1", "state"}}) {
        SCOPED_TRACE(testing::PrintToString(words));
        Outcome const outcome = runProcess(tool(words));
        EXPECT_EQ(outcome.status, 4);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, usage);
    }
}

TEST(Frame, Options) {
    struct Case {
        std::vector<std::string> options; // "PORT" stands for the daemon's port
        bool reaches;
    };
    for (Case const& c : {Case{{"-p", "PORT"}, true},
                          {{"--port", "PORT"}, true},
                          {{"--ip", "localhost", "--port", "PORT"}, true},
                          {{"-p", "WRAPPED"}, true}}) {
        SCOPED_TRACE(testing::PrintToString(c.options));
        ScriptedDaemon daemon(state(R"({"state":2})"));
        std::vector<std::string> words = c.options;
        words.back() = std::to_string(daemon.port() + (words.back() == "WRAPPED" ? 65536 : 0));
        words.emplace_back("state");
        EXPECT_EQ(runProcess(tool(words)).out, stateDocument("LOGGED_IN"));
    }
}

// The library's time-outs as the tool shows them; each takes its five seconds.
TEST(Frame, WithoutAnAnswer) {
    std::string const notConnected =
        errorDocument(3845, "Not able to establish connection to daemon", "Unable to connect");
    runRowsInParallel({
        {.name = "nobody listens",
         .argv = {"state"},
         .err = notConnected,
         .status = 1,
         .daemon = {.listen = false}},
        {.name = "silent",
         .argv = {"state"},
         .exchange = {{.request = "request_current_state"}},
         .err = errorDocument(3841, "Timeout waiting for result", "Timeout"),
         .status = 1},
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
