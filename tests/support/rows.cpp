#include "support/rows.h"

#include <future>
#include <gtest/gtest.h>
#include <json/value.h>

namespace harness {

namespace {

struct Run {
    Outcome outcome;
    std::string deviations;
};

Run run(Row const& row) {
    SCOPED_TRACE(row.name);
    ScriptedDaemon daemon(row.exchange, row.daemon);
    std::vector<std::string> words = {"-i", "127.0.0.1", "-p", std::to_string(daemon.port())};
    words.insert(words.end(), row.argv.begin(), row.argv.end());
    Command command = tool(words);
    command.input = row.input;
    Outcome const outcome = runProcess(command);
    return {outcome, daemon.finish()};
}

void compare(Row const& row, Run const& run) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(run.deviations, "");
    EXPECT_EQ(run.outcome.out, row.out);
    EXPECT_EQ(run.outcome.err, row.err);
    EXPECT_EQ(run.outcome.status, row.status);
}

} // namespace

void runRows(std::vector<Row> const& rows) {
    for (Row const& row : rows) {
        compare(row, run(row));
    }
}

void runRowsInParallel(std::vector<Row> const& rows) {
    std::vector<std::future<Run>> runs;
    runs.reserve(rows.size());
    for (Row const& row : rows) {
        runs.push_back(std::async(std::launch::async, run, std::cref(row)));
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        compare(rows[i], runs[i].get());
    }
}

Command tool(std::vector<std::string> const& words) {
    Command command{.path = SDKCLI_PATH, .argv = {SDKCLI_PATH}};
    command.argv.insert(command.argv.end(), words.begin(), words.end());
    return command;
}

std::string errorDocument(int code, std::string const& type, std::string const& message) {
    Json::Value document;
    document["errorCode"] = code;
    document["errorType"] = type;
    document["errorMessage"] = message;
    return document.toStyledString();
}

std::string invalid(std::string const& usage) {
    return "Invalid parameters: sdkcli " + usage + "\n";
}

std::string missing(std::string const& usage) {
    return "Missing parameters: sdkcli " + usage + "\n";
}

} // namespace harness
