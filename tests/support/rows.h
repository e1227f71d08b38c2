#pragma once

#include "support/process.h"
#include "support/scripteddaemon.h"

#include <string>
#include <vector>

// The built tool, run by rows: one row is one run against a daemon of its own.
//
//     TEST(State, isPrinted)
//     {
//         std::vector<Step> const connected = {
//             {.request = "request_current_state", .answers = {R"(["report_current_state",{"state":6}])"}}};
//         runRows({
//             {.name = "connected", .argv = {"state"}, .exchange = connected, .out =
//             styled(R"({"state":"CONNECTED"})")},
//             {.name = "a word too many", .argv = {"state", "now"}, .err = invalid("state"), .status = 2},
//         });
//     }
//
// A row gives what it is about. What it leaves out means: nothing is sent, nothing is printed on either
// stream, the status is 0. Outputs are compared whole, requests by their text. The exchange lists the
// requests in their order, each with its payload (null if left out) and what the daemon answers; a request
// without an answer is a step too. The greeting "set_app_name" is checked by itself and needs no step. A
// refused command line has no exchange: whether the greeting has left by then is a matter of luck, and both
// will do.
//
// For a daemon that nobody can connect to, or that fails in the upgrade, see Options; for one that hangs up,
// that answers late or with wrong bytes, see Step.
namespace harness {

struct Row {
    std::string name;
    std::vector<std::string> argv; // behind the options that lead to the daemon
    std::vector<Step> exchange = {};
    std::string out = {};
    std::string err = {};
    int status = 0;
    std::string input = {};
    Options daemon = {};
};

void runRows(std::vector<Row> const& rows);
void runRowsInParallel(std::vector<Row> const& rows); // all at once, for rows that wait for a time-out

// The tool's command line with these words and nothing else.
Command tool(std::vector<std::string> const& words);

std::string errorDocument(int code, std::string const& type, std::string const& message);
std::string invalid(std::string const& usage);
std::string missing(std::string const& usage);

} // namespace harness
