// The tool's runs as golden/transcripts/ has them, a file for each family. In a transcript stand
//     #    a remark on the run behind it
//     $    the words; several such lines are runs that go the same way
//     *    what is special: "clock" and how many times as fast the run's clock goes, "delay" and how many milliseconds
//          the daemon lets pass before it answers the last request, "input" and a JSON text, "shell" and what a shell
//          reads behind the words, "message" and a report's bare text, "nobody" when there is no daemon
//     >    a request and its payload, which may be missing
//     <    a report that answers it, and its payload
//     !    a line on standard error
//     ?    the status, if it isn't 0
//     |    an empty line on standard output
//     =    a document on standard output, without its line breaks
// and any other line is one on standard output. Empty lines count for nothing. In words, payloads and documents
// <0..2 d#> is d0 d1 d2, with commas between JSON. Both outputs are compared whole, requests by their text. The greeting
// "set_app_name" needs no line; whether it has left before a command line is refused is a matter of luck.

#include "support/texts.h"

#include <cstdlib>
#include <future>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

using namespace harness;

namespace {

struct Row {
    std::string words;
    std::vector<Step> exchange = {};
    std::string out = {};
    std::string err = {};
    int status = 0;
    std::string input = {};
    std::string shell = {};
    int clock = 1;
    bool isHeard = true;
};

std::string unrolled(std::string const& text, std::string const& between = ",") {
    std::regex const expression(R"(<(\d+)\.\.(\d+) ([^>]*)>)");
    std::smatch match;
    if (!std::regex_search(text, match, expression)) {
        return text;
    }
    return match.prefix().str() + series(std::stoi(match[1]), std::stoi(match[2]), match[3], between) +
           unrolled(match.suffix(), between);
}

void addLine(Row& row, char kind, std::string const& rest) {
    std::string const name = rest.substr(0, rest.find(' '));
    std::string const value = name == rest ? "null" : unrolled(rest.substr(name.size() + 1));
    if (kind == '>') {
        row.exchange.push_back({name, value});
    } else if (kind == '<') {
        row.exchange.back().answers.emplace_back(report(name, value));
    } else if (kind == '=') {
        row.out += styled(unrolled(rest));
    } else if (kind == '!') {
        row.err += rest + '\n';
    } else if (kind == '?') {
        row.status = std::stoi(rest);
    } else if (name == "clock") {
        row.clock = std::stoi(value);
    } else if (name == "delay") {
        row.exchange.back().delayMs = std::stoi(value);
    } else if (name == "input") {
        row.input = parsed(value).asString();
    } else if (name == "shell") {
        row.shell = rest.substr(name.size());
    } else if (name == "message") {
        row.exchange.back().answers.emplace_back(rest.substr(std::min(rest.size(), name.size() + 1)));
    } else if (name == "nobody") {
        row.isHeard = false;
    } else {
        ADD_FAILURE() << "not understood: " << kind << ' ' << rest;
    }
}

std::vector<Row> rowsOf(std::string const& transcript) {
    std::vector<Row> rows;
    std::size_t first = 0; // of those that go the same way
    bool wordsGoOn = false;
    std::istringstream lines(transcript);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (line[0] == '$') {
            first = wordsGoOn ? first : rows.size();
            rows.push_back({line.substr(1)});
        }
        wordsGoOn = line[0] == '$';
        for (std::size_t i = first; i < rows.size() && !wordsGoOn; ++i) {
            if (std::string("*><=!?").find(line[0]) == std::string::npos) {
                rows[i].out += line == "|" ? "\n" : line + '\n';
            } else {
                addLine(rows[i], line[0], line.substr(std::min<std::size_t>(line.size(), 2)));
            }
        }
    }
    return rows;
}

void repeat(Row const& row) {
    SCOPED_TRACE(row.words);
    ScriptedDaemon daemon(row.exchange, {.listen = row.isHeard});
    // The port is read as a decimal number and taken modulo 65536.
    std::string const options = "--ip localhost --port 0" + std::to_string(daemon.port() + 65536);
    Command command = tool(split(options + unrolled(row.words, " ")));
    if (!row.shell.empty()) {
        Words const before = {"sh", "-c", "exec \"$@\"" + row.shell, "sh"};
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
    std::vector<Row> const rows = rowsOf(golden("transcripts/" + family + ".txt"));
    std::vector<std::future<void>> repeated;
    for (Row const& row : rows) {
        auto const policy = takesSeconds ? std::launch::async : std::launch::deferred;
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
