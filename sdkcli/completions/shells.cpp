#include "shells.h"

#include <algorithm>
#include <sstream>
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
    std::ostringstream text;
    if (!rule.offers.empty()) {
        std::string words;
        for (Offer const& offer : rule.offers) {
            words += words.empty() ? "" : " ";
            words += offer.word;
        }
        text << "        offer=" << quoted(words) << '\n';
    }
    if (!rule.source.empty()) {
        text << "        _sdkcli_offer_lines < <(_sdkcli_" << rule.source << ")\n";
    }
    return text.str();
}

std::string bashRules(std::vector<Rule> const& rules) {
    std::ostringstream text;
    for (auto const& [label, body] : branches(rules, quotedButStars, " | \\\n        ", bashBody)) {
        text << "    " << label << ")\n" << body << "        ;;\n";
    }
    return text.str();
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
    std::ostringstream text;
    text << "    " << withValue << ") ;;\n";
    text << "    *) mapfile -t COMPREPLY < <(compgen -W " << quoted(names) << " -- \"$2\") ;;\n";
    return text.str();
}

// zsh

std::string zshBody(Rule const& rule) {
    std::ostringstream text;
    if (!rule.offers.empty()) {
        text << "        offers=(\n";
        for (Offer const& offer : rule.offers) {
            std::string const summary =
                offer.summary.empty() ? "" : ':' + replaced(offer.summary, ':', "\\:");
            text << "            " << quoted(offer.word + summary) << '\n';
        }
        text << "        )\n";
    }
    if (!rule.source.empty()) {
        text << "        what=" << quoted(rule.placeholder);
        text << " values=(${(f)\"$(_sdkcli_" << rule.source << ")\"})\n";
    }
    return text.str();
}

std::string zshRules(std::vector<Rule> const& rules) {
    std::ostringstream text;
    for (auto const& [label, body] : branches(rules, quotedButStars, "| \\\n        ", zshBody)) {
        text << "    (" << label << ")\n" << body << "        ;;\n";
    }
    return text.str();
}

std::string zshOptions(std::vector<Option> const& options) {
    std::ostringstream text;
    for (Option const& option : options) {
        std::string const summary = replaced(replaced(option.summary, '[', "\\["), ']', "\\]");
        text << "    '" << (summary.find("repeatable") != summary.npos ? "*" : "") << option.name;
        text << '[' << summary << ']' << (option.value.empty() ? "" : ':' + option.value + ':') << "' \\\n";
    }
    return text.str();
}

// fish

std::string fishBody(Rule const& rule) {
    std::ostringstream text;
    for (Offer const& offer : rule.offers) {
        text << "            echo " << offer.word;
        text << (offer.summary.empty() ? "" : "\\t" + quoted(offer.summary)) << '\n';
    }
    if (!rule.source.empty()) {
        text << "            __sdkcli_" << rule.source;
        text << " | string replace -r '$' \\t" << quoted(rule.placeholder) << '\n';
    }
    return text.str();
}

std::string fishRules(std::vector<Rule> const& rules) {
    std::ostringstream text;
    for (auto const& [label, body] : branches(rules, quoted, " \\\n            ", fishBody)) {
        text << "        case " << label << '\n' << body;
    }
    return text.str();
}

std::string fishOptions(std::vector<Option> const& options) {
    std::ostringstream text;
    for (Option const& option : options) {
        text << "complete -c kelvarissim -l " << option.name.substr(2) << (option.value.empty() ? "" : " -x");
        text << " -d " << quoted(option.summary) << '\n';
    }
    return text.str();
}

} // namespace

Shell const shells[] = {
    {"bash", bashRules, bashOptions},
    {"zsh", zshRules, zshOptions},
    {"fish", fishRules, fishOptions},
};
