#include "support/transcripts.h"

#include <gtest/gtest.h>
#include <regex>
#include <sstream>

namespace harness {

namespace {

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

} // namespace

std::vector<Row> rowsOf(std::string const& family) {
    std::vector<Row> rows;
    std::size_t first = 0; // of those that go the same way
    bool wordsGoOn = false;
    std::istringstream lines(golden("transcripts/" + family + ".txt"));
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (line[0] == '$') {
            first = wordsGoOn ? first : rows.size();
            rows.push_back({line.substr(1), split(unrolled(line.substr(1), " "))});
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

} // namespace harness
