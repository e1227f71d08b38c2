#include "support/rows.h"

#include <algorithm>
#include <future>
#include <gtest/gtest.h>
#include <iterator>
#include <json/value.h>
#include <regex>
#include <sstream>

namespace harness {

namespace {

void runRow(Row const& row) {
    SCOPED_TRACE(row.name + ' ' + testing::PrintToString(row.argv));
    ScriptedDaemon daemon(row.exchange, row.daemon);
    Words words = {"-i", "127.0.0.1", "-p", std::to_string(daemon.port())};
    words.insert(words.end(), row.argv.begin(), row.argv.end());
    Command command = tool(words);
    command.input = row.input;
    command.clock = row.clock;
    Outcome const outcome = runProcess(command);
    EXPECT_EQ(daemon.finish(), "");
    EXPECT_EQ(outcome.out, row.out);
    EXPECT_EQ(outcome.err, row.err);
    EXPECT_EQ(outcome.status, row.status);
}

} // namespace

Words split(std::string const& text) {
    std::istringstream stream(text);
    Words words{std::istream_iterator<std::string>(stream), {}};
    std::replace(words.begin(), words.end(), std::string("''"), std::string());
    return words;
}

Row row(std::string const& words, std::vector<Step> const& exchange, std::string const& out) {
    return {.name = {}, .argv = split(words), .exchange = exchange, .out = out};
}

Row failing(std::string const& words, std::vector<Step> const& exchange, std::string const& err) {
    return {.name = {}, .argv = split(words), .exchange = exchange, .err = err, .status = 1};
}

void runRows(std::vector<Row> const& rows) {
    std::for_each(rows.begin(), rows.end(), runRow);
}

void runRowsInParallel(std::vector<Row> const& rows) {
    std::vector<std::future<void>> runs;
    for (Row const& row : rows) {
        runs.push_back(std::async(std::launch::async, runRow, std::cref(row)));
    }
}

Command tool(Words const& words) {
    Command command{.path = SDKCLI_PATH, .argv = {SDKCLI_PATH}};
    command.argv.insert(command.argv.end(), words.begin(), words.end());
    return command;
}

std::string report(std::string const& name, std::string const& payload) {
    return "[\"report_" + name + "\"," + payload + "]";
}

std::string state(int number) {
    return report("current_state", "{\"state\":" + std::to_string(number) + "}");
}

std::string lock(std::string const& setting, int reason) {
    return report("setting_locked",
                  R"({"setting":")" + setting + R"(","reason":)" + std::to_string(reason) + "}");
}

Step asked(std::string const& what, std::string const& payload) {
    return {.request = "request_" + what, .answers = {report(what, payload)}};
}

std::string series(int count, std::string const& element, int first) {
    std::string text;
    for (int i = first; i < first + count; ++i) {
        text += (text.empty() ? "" : ",") + std::regex_replace(element, std::regex("#"), std::to_string(i));
    }
    return text;
}

std::string errorDocument(int code, std::string const& type, std::string const& message) {
    Json::Value document;
    document["errorCode"] = code;
    document["errorType"] = type;
    document["errorMessage"] = message;
    return document.toStyledString();
}

} // namespace harness
