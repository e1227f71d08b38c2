// The usage lines become rules for completion, which say what may follow the words that are typed.

#pragma once

#include <string>
#include <vector>

struct Offer {
    std::string word;
    std::string summary; // what the shells that can do so show beside the word
};

struct Rule {
    // The words typed so far, with their count behind them: "adapter encryption 2". A "*" stands for any text.
    std::vector<std::string> patterns;
    std::vector<Offer> offers;
    std::string placeholder; // what else may stand here, "adapter id"; empty for nothing else
    std::string source;      // the helper of the scripts that prints its values; empty if nobody knows them
};

std::vector<Rule> rules();
