#pragma once

#include "support/texts.h"

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
namespace harness {

struct Row {
    std::string words;
    Words argv; // the words, unrolled
    std::vector<Step> exchange = {};
    std::string out = {};
    std::string err = {};
    int status = 0;
    std::string input = {};
    std::string shell = {};
    int clock = 1;
    bool isHeard = true;
};

std::vector<Row> rowsOf(std::string const& family);

} // namespace harness
