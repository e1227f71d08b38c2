#pragma once

#include "support/process.h"
#include "support/scripteddaemon.h"

#include <cstdint>
#include <string>
#include <vector>

// The built tool, run by rows: one row is one run against a daemon of its own. What a row leaves out means: nothing
// is sent, nothing is printed on either stream, the status is 0. Outputs are compared whole, requests by their text.
// A request without an answer is a step too. The greeting "set_app_name" needs no step; a refused command line has
// no exchange, and whether the greeting has left by then is a matter of luck.
namespace harness {

using Words = std::vector<std::string>;

struct Row {
    std::string name; // beside the words, for rows whose words don't tell them apart
    Words argv;       // behind the options that lead to the daemon
    std::vector<Step> exchange = {};
    std::string out = {};
    std::string err = {};
    int status = 0;
    std::string input = {};
    Options daemon = {};
    int clock = 1; // times as fast, for a run that waits long; the daemon's own delays stay as they are
};

// Words are written as one text with blanks between them, and an empty one as ''.
Words split(std::string const& text);
Row row(std::string const& words, std::vector<Step> const& exchange, std::string const& out);
Row failing(std::string const& words, std::vector<Step> const& exchange, std::string const& err);

void runRows(std::vector<Row> const& rows);
void runRowsInParallel(std::vector<Row> const& rows); // all at once, for rows that wait for a time-out

// The tool's command line with these words and nothing else.
Command tool(Words const& words);

// Messages of the daemon, by their names behind "report_".
std::string report(std::string const& name, std::string const& payload);
std::string state(int number);
std::string lock(std::string const& setting, int reason);        // 1 is the server's, 2 the account's
Step asked(std::string const& what, std::string const& payload); // "request_", answered by "report_"

// `count` elements with commas between them; each "#" in an element is its number.
std::string series(int count, std::string const& element, int first = 0);

std::string errorDocument(int code, std::string const& type, std::string const& message);

inline std::string const unreadable = errorDocument(3840, "An error in the SDK", "Error from SDK");
inline std::string const timedOut = errorDocument(3841, "Timeout waiting for result", "Timeout");
inline std::string const lockedByServer =
    errorDocument(3846, "Setting locked by server configuration", "Setting locked by server configuration");
inline std::string const lockedByAccount =
    errorDocument(3848, "Setting locked by account configuration", "Setting locked by account configuration");

} // namespace harness
