// The tool's runs as golden/transcripts/ has them, a file for each family. In a transcript stand
//     #    a remark on the run behind it
//     $    the words; several such lines are runs that go the same way
//     >    a request and its payload, which may be missing
//     <    a report that answers it, and its payload
//     !    a line on standard error
//     ?    the status, if it isn't 0
//     |    an empty line on standard output
// and any other line is one on standard output. Empty lines count for nothing.

#include "support/rows.h"
#include "support/source.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>

using namespace harness;

namespace {

void addLine(Row& row, char kind, std::string const& rest) {
    std::string const name = rest.substr(0, rest.find(' '));
    std::string const payload = name == rest ? "null" : rest.substr(name.size() + 1);
    switch (kind) {
    case '>':
        row.exchange.push_back({name, payload});
        break;
    case '<':
        row.exchange.back().answers.emplace_back(report(name, payload));
        break;
    case '!':
        row.err += rest + '\n';
        break;
    default:
        row.status = std::stoi(rest);
    }
}

std::vector<Row> rowsOf(std::string const& transcript) {
    std::vector<Row> rows;
    std::size_t first = 0; // of the runs that go the same way
    bool wordsGoOn = false;
    std::istringstream lines(transcript);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (line[0] == '$') {
            first = wordsGoOn ? first : rows.size();
            rows.push_back(row(line.substr(1), {}, ""));
        }
        wordsGoOn = line[0] == '$';
        for (std::size_t i = first; i < rows.size() && !wordsGoOn; ++i) {
            if (std::string("><!?").find(line[0]) == std::string::npos) {
                rows[i].out += line == "|" ? "\n" : line + '\n';
            } else {
                addLine(rows[i], line[0], line.substr(std::min<std::size_t>(line.size(), 2)));
            }
        }
    }
    return rows;
}

// The daemon's test times are local: two hours east of Greenwich, for the tool too.
bool const eastOfGreenwich = setenv("TZ", "EST-2", 1) == 0;

} // namespace

class Transcripts : public testing::TestWithParam<char const*> {};

TEST_P(Transcripts, AreRepeated) {
    std::string const family = GetParam();
    std::vector<Row> const rows = rowsOf(golden("transcripts/" + family + ".txt"));
    if (family == "telemetry") { // some take a second
        runRowsInParallel(rows);
    } else {
        runRows(rows);
    }
}

INSTANTIATE_TEST_SUITE_P(Family, Transcripts,
                         testing::Values("refusals", "session", "settings", "adapters", "safebrowsing",
                                         "lists", "telemetry"),
                         [](auto const& family) { return std::string(family.param); });
