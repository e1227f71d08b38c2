// Each shell has its own way to write the rules of completion and a program's options.

#pragma once

#include <string>
#include <vector>

#include "grammar.h"
#include "options.h"

struct Shell {
    char const* name;
    std::string (*rules)(std::vector<Rule> const& rules);
    std::string (*options)(std::vector<Option> const& options);
};

extern Shell const shells[3];
