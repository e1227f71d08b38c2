#pragma once

#include "support/process.h"
#include "support/scripteddaemon.h"

// The tool's command line, the messages of the daemon by their names behind "report_", and files.
namespace harness {

using Words = std::vector<std::string>;

// Words are written as one text with blanks between them, and an empty one as ''.
Words split(std::string const& text);

// The built tool with these words and nothing else.
Command tool(Words const& words);

std::string report(std::string const& name, std::string const& payload);
std::string state(int number);
std::string lock(std::string const& setting, int reason);        // 1 is the server's, 2 the account's
Step asked(std::string const& what, std::string const& payload); // "request_", answered by "report_"

// Elements with something between them; each "#" in an element is its number.
std::string series(int first, int last, std::string const& element, std::string const& between = ",");

std::string contents(std::string const& path);
std::string source(std::string const& path); // of a file of the source tree
std::string
golden(std::string const& name); // a difference that is wanted is a change of the file in the same commit

} // namespace harness
