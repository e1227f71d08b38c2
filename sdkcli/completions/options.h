// A program's help text lists its options.

#pragma once

#include <istream>
#include <string>
#include <vector>

struct Option {
    std::string name;  // with its dashes
    std::string value; // the name of its value; empty for an option without one
    std::string summary;
};

// Reads lines of the form "  --name VALUE   summary" and skips all others.
std::vector<Option> readOptions(std::istream& help);
