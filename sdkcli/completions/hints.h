// Completion should know some things that the usage lines don't say.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

std::string joined(std::vector<std::string> const& words);

// Returns the command of the scripts that prints the values of a placeholder, or an empty text.
std::string source(std::vector<std::string> const& typed, std::string const& placeholder);

// Returns what is shown beside a word: a text of ours, or else what its only usage line has behind it.
std::string summary(std::vector<std::string> const& typed, std::string const& word);

// Returns how often the words that may repeat behind a keyword do so; 0 has no limit.
std::size_t maxRepetitions(std::string const& keyword);
