#include "shells.h"

#include <algorithm>
#include <utility>

namespace {

// Rules that lead to the same are one branch of a script's "case", with what leads there first.
using Branches = std::vector<std::pair<std::string, std::string>>;

Branches branches(std::vector<Rule> const& rules, std::string (*pattern)(std::string const&),
                  std::string const& separator, std::string (*body)(Rule const&)) {
    Branches found;
    for (Rule const& rule : rules) {
        std::string label;
        for (std::string const& text : rule.patterns) {
            label += (label.empty() ? "" : separator) + pattern(text);
        }
        std::string const text = body(rule);
        auto const same = std::find_if(found.begin(), found.end(),
                                       [&](auto const& branch) { return branch.second == text; });
        if (same == found.end()) {
            found.emplace_back(label, text);
        } else {
            same->first += separator + label;
        }
    }
    return found;
}

std::string quoted(std::string const& text) {
    return '\'' + text + '\'';
}

// "adapter priority * 3" becomes 'adapter priority '*' 3'.
std::string quotedButStars(std::string const& pattern) {
    std::string text;
    std::string plain;
    for (char const sign : pattern + '*') {
        if (sign != '*') {
            plain += sign;
            continue;
        }
        text += plain.empty() ? "*" : quoted(plain) + '*';
        plain.clear();
    }
    text.pop_back(); // the star at the end isn't the pattern's own
    return text;
}

std::string replaced(std::string text, char sign, std::string const& by) {
    for (std::size_t at = text.find(sign); at != text.npos; at = text.find(sign, at + by.size())) {
        text.replace(at, 1, by);
    }
    return text;
}

// bash

std::string bashBody(Rule const& rule) {
    std::string text;
    if (!rule.offers.empty()) {
        std::string words;
        for (Offer const& offer : rule.offers) {
            words += words.empty() ? offer.word : ' ' + offer.word;
        }
        text += "        offer=" + quoted(words) + '\n';
    }
    if (!rule.source.empty()) {
        text += "        _sdkcli_offer_lines < <(_sdkcli_" + rule.source + ")\n";
    }
    return text;
}

std::string bashRules(std::vector<Rule> const& rules) {
    std::string text;
    for (auto const& [label, body] : branches(rules, quotedButStars, " | \\\n        ", bashBody)) {
        text += "    " + label + ")\n" + body + "        ;;\n";
    }
    return text;
}

std::string bashOptions(std::vector<Option> const& options) {
    std::string names;
    std::string withValue;
    for (Option const& option : options) {
        names += (names.empty() ? "" : " ") + option.name;
        if (!option.value.empty()) {
            withValue += (withValue.empty() ? "" : " | ") + option.name;
        }
    }
    return "    " + withValue + ") ;;\n    *) mapfile -t COMPREPLY < <(compgen -W " + quoted(names) +
           " -- \"$2\") ;;\n";
}

// zsh

std::string zshBody(Rule const& rule) {
    std::string text;
    if (!rule.offers.empty()) {
        text += "        offers=(\n";
        for (Offer const& offer : rule.offers) {
            std::string const summary =
                offer.summary.empty() ? "" : ':' + replaced(offer.summary, ':', "\\:");
            text += "            " + quoted(offer.word + summary) + '\n';
        }
        text += "        )\n";
    }
    if (!rule.source.empty()) {
        text += "        what=" + quoted(rule.placeholder) + " values=(${(f)\"$(_sdkcli_" + rule.source +
                ")\"})\n";
    }
    return text;
}

std::string zshRules(std::vector<Rule> const& rules) {
    std::string text;
    for (auto const& [label, body] : branches(rules, quotedButStars, "| \\\n        ", zshBody)) {
        text += "    (" + label + ")\n" + body + "        ;;\n";
    }
    return text;
}

std::string zshOptions(std::vector<Option> const& options) {
    std::string text;
    for (Option const& option : options) {
        std::string summary = replaced(replaced(option.summary, '[', "\\["), ']', "\\]");
        bool const isRepeatable = summary.find("repeatable") != summary.npos;
        std::string const value = option.value.empty() ? "" : ':' + option.value + ':';
        text +=
            "    " + quoted((isRepeatable ? "*" : "") + option.name + '[' + summary + ']' + value) + " \\\n";
    }
    return text;
}

// fish

std::string fishBody(Rule const& rule) {
    std::string text;
    for (Offer const& offer : rule.offers) {
        text += "            echo " + offer.word;
        text += offer.summary.empty() ? "\n" : "\\t" + quoted(offer.summary) + '\n';
    }
    if (!rule.source.empty()) {
        text += "            __sdkcli_" + rule.source + " | string replace -r '$' \\t" +
                quoted(rule.placeholder) + '\n';
    }
    return text;
}

std::string fishRules(std::vector<Rule> const& rules) {
    std::string text;
    for (auto const& [label, body] : branches(rules, quoted, " \\\n            ", fishBody)) {
        text += "        case " + label + '\n' + body;
    }
    return text;
}

std::string fishOptions(std::vector<Option> const& options) {
    std::string text;
    for (Option const& option : options) {
        text += "complete -c kelvarissim -l " + option.name.substr(2) + (option.value.empty() ? "" : " -x") +
                " -d " + quoted(option.summary) + '\n';
    }
    return text;
}

} // namespace

Shell const shells[] = {
    {"bash", bashRules, bashOptions},
    {"zsh", zshRules, zshOptions},
    {"fish", fishRules, fishOptions},
};
