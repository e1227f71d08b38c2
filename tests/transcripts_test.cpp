// The tool's runs as golden/transcripts/ has them, a file for each family, are repeated.

#include "support/transcripts.h"

#include <cstdlib>
#include <future>
#include <gtest/gtest.h>

using namespace harness;

namespace {

void repeat(Row const& row) {
    SCOPED_TRACE(row.words);
    ScriptedDaemon daemon(row.exchange, {.listen = row.isHeard});
    // The port is read as a decimal number and taken modulo 65536.
    Command command = tool({"--ip", "localhost", "--port", '0' + std::to_string(daemon.port() + 65536)});
    command.argv.insert(command.argv.end(), row.argv.begin(), row.argv.end());
    if (!row.shell.empty()) {
        Words before = split("sh -c '' sh " EMULATOR);
        before[2] = "exec \"$@\"" + row.shell;
        command.argv.insert(command.argv.begin(), before.begin(), before.end());
        command.path = "/bin/sh";
    }
    command.input = row.input;
    command.clock = row.clock;
    Outcome const outcome = runProcess(command);
    EXPECT_EQ(daemon.finish(), "");
    EXPECT_EQ(outcome.out, row.out);
    EXPECT_EQ(outcome.err, row.err);
    EXPECT_EQ(outcome.status, row.status);
}

// The daemon's test times are local: two hours east of Greenwich, for the tool too.
bool const eastOfGreenwich = setenv("TZ", "EST-2", 1) == 0;

} // namespace

class Transcripts : public testing::TestWithParam<char const*> {};

TEST_P(Transcripts, AreRepeated) {
    std::string const family = GetParam();
    bool const takesSeconds = family == "telemetry" || family == "timeouts";
    // An emulated program needs a processor for itself.
    bool const isFast = std::string_view(EMULATOR).empty();
    std::vector<Row> const rows = rowsOf(family);
    std::vector<std::future<void>> repeated;
    for (Row const& row : rows) {
        auto const policy = takesSeconds && isFast ? std::launch::async : std::launch::deferred;
        repeated.push_back(std::async(policy, repeat, std::cref(row)));
    }
    for (auto& each : repeated) {
        each.get();
    }
}

INSTANTIATE_TEST_SUITE_P(Family, Transcripts,
                         testing::Values("refusals", "session", "settings", "adapters", "safebrowsing",
                                         "lists", "limits", "telemetry", "timeouts"),
                         [](auto const& family) { return std::string(family.param); });
