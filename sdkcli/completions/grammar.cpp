// A usage line has words, groups of alternatives in angle or square brackets, and "..." behind a group that may
// stand again. An alternative is a word, a placeholder, or a line of its own:
//
//     adapter ratelimit <adapter id> <speed in bits per second|unlimited>
//     connectmethod < closest | p2p | <country> [<city> [<number>]] >

#include "grammar.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "actions.h"
#include "hints.h"

namespace {

// A place on the command line, and what may stand there.
struct Place {
    std::vector<std::pair<std::string, std::unique_ptr<Place>>> words;
    std::string placeholder;
    std::unique_ptr<Place> behindPlaceholder;
    bool repeats = false; // what stands here may stand again behind itself

    Place& behind(std::string const& word) {
        auto const found =
            std::find_if(words.begin(), words.end(), [&](auto const& each) { return each.first == word; });
        return found != words.end() ? *found->second
                                    : *words.emplace_back(word, std::make_unique<Place>()).second;
    }

    Place& behindAny(std::string const& name) {
        if (!behindPlaceholder) {
            placeholder = name;
            behindPlaceholder = std::make_unique<Place>();
        }
        return *behindPlaceholder;
    }
};

using Places = std::vector<Place*>;

std::string trimmed(std::string_view text) {
    std::size_t const first = text.find_first_not_of(' ');
    return first == text.npos ? "" : std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
}

// Takes a group off the front of the text and returns what stands between its brackets.
std::string_view takeGroup(std::string_view& text) {
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        depth += text[i] == '<' || text[i] == '[' ? 1 : 0;
        depth -= text[i] == '>' || text[i] == ']' ? 1 : 0;
        if (depth == 0) {
            std::string_view const inside = text.substr(1, i - 1);
            text.remove_prefix(i + 1);
            return inside;
        }
    }
    throw std::invalid_argument("a bracket stays open: " + std::string(text));
}

std::vector<std::string> alternatives(std::string_view text) {
    std::vector<std::string> found;
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || (text[i] == '|' && depth == 0)) {
            found.push_back(trimmed(text.substr(start, i - start)));
            start = i + 1;
        } else {
            depth += text[i] == '<' || text[i] == '[' ? 1 : 0;
            depth -= text[i] == '>' || text[i] == ']' ? 1 : 0;
        }
    }
    return found;
}

Places addLine(Places const& places, std::string_view text);

// Adds what a group may be to each of the places, and returns the places behind it.
Places addGroup(Places const& places, std::string_view inside) {
    std::vector<std::string> const texts = alternatives(inside);
    Places behind;
    for (std::string const& text : texts) {
        if (text.find_first_of("<[") != text.npos) {
            Places const more = addLine(places, text);
            behind.insert(behind.end(), more.begin(), more.end());
            continue;
        }
        bool const isWord = texts.size() > 1 && text.find(' ') == text.npos;
        for (Place* const place : places) {
            behind.push_back(isWord ? &place->behind(text) : &place->behindAny(text));
        }
    }
    return behind;
}

Places addLine(Places const& places, std::string_view text) {
    Places here = places;
    while (!text.empty()) {
        if (text.front() == ' ') {
            text.remove_prefix(1);
        } else if (text.front() == '<' || text.front() == '[') {
            Places const behind = addGroup(here, takeGroup(text));
            if (text.starts_with(" ...")) {
                std::for_each(here.begin(), here.end(), [](Place* place) { place->repeats = true; });
                text.remove_prefix(4);
            }
            here = behind;
        } else {
            std::string const word(text.substr(0, text.find(' ')));
            for (Place*& place : here) {
                place = &place->behind(word);
            }
            text.remove_prefix(word.size());
        }
    }
    return here;
}

std::vector<std::string> patterns(std::vector<std::string> const& typed, bool repeats) {
    std::string const text = joined(typed);
    if (!repeats) {
        return {text + ' ' + std::to_string(typed.size())};
    }
    std::size_t const maxWords = maxRepetitions(typed.front());
    if (maxWords == 0) {
        return {text + " *"};
    }
    std::vector<std::string> found;
    for (std::size_t more = 0; more < maxWords; ++more) {
        found.push_back(text + (more > 0 ? " * " : " ") + std::to_string(typed.size() + more));
    }
    return found;
}

void addRules(std::vector<Rule>& found, Place const& place, std::vector<std::string> const& typed) {
    Rule rule{.patterns = patterns(typed, place.repeats), .offers = {}, .placeholder = {}, .source = {}};
    for (auto const& [word, behind] : place.words) {
        rule.offers.push_back({word, summary(typed, word)});
    }
    if (place.behindPlaceholder) {
        rule.placeholder = place.placeholder;
        rule.source = source(typed, place.placeholder);
    }
    if (!rule.offers.empty() || !rule.source.empty()) {
        found.push_back(rule);
    }

    auto const descend = [&](std::string const& word, Place const& behind) {
        std::vector<std::string> longer = typed;
        longer.push_back(word);
        addRules(found, behind, longer);
    };
    for (auto const& [word, behind] : place.words) {
        descend(word, *behind);
    }
    if (place.behindPlaceholder) {
        descend("*", *place.behindPlaceholder);
    }
}

} // namespace

std::vector<Rule> rules() {
    Place root;
    for (char const* const line : helpLines) {
        addLine({&root}, line);
    }
    for (char const* const line : unlistedLines) {
        addLine({&root}, line);
    }
    std::vector<Rule> found;
    addRules(found, root, {});
    return found;
}
