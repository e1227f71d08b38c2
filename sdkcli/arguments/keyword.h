// A keyword is a word of the command line that leads to an action, or to further keywords.

#pragma once

#include <span>

struct Keyword;
using Keywords = std::span<Keyword const>;

struct Keyword {
    char const* word;
    // The action judges the words behind its keyword, the count first, then the values from left to right, and
    // makes its call when all of them pass. It returns the exit status.
    int (*action)(int argc, char* argv[]);
    // These keywords may follow; null says that none does.
    Keywords const* following = nullptr;
};

// This is null for a word that isn't among the keywords.
Keyword const* findKeyword(Keywords keywords, char const* word);

// Runs the action of the keyword at this place, one of those that may stand there. A place without a word is
// missing and any other word invalid, both with this usage line.
int runKeyword(int argc, char* argv[], int place, Keywords keywords, char const* line);
