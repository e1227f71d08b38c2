// The man pages and completions know what the programs know.

#include "support/process.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string source(std::string const& path) {
    std::ifstream file(SOURCE_DIR "/" + path);
    EXPECT_TRUE(file) << path;
    return (std::ostringstream() << file.rdbuf()).str();
}

// The words that a pattern captures.
std::vector<std::string> words(std::string const& text, std::string const& pattern) {
    std::regex const expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        found.push_back((*match)[1]);
    }
    return found;
}

// A text with one pattern for each place where a word has to stand; WORD is the word.
struct Place {
    char const* what;
    std::string text;
    char const* pattern;
};

void expectEverywhere(std::vector<std::string> const& expected, std::vector<Place> const& places) {
    EXPECT_FALSE(expected.empty());
    for (std::string const& word : expected) {
        for (Place const& place : places) {
            std::string const pattern = std::regex_replace(place.pattern, std::regex("WORD"), word);
            EXPECT_TRUE(std::regex_search(place.text, std::regex(pattern)))
                << place.what << " lacks " << word;
        }
    }
}

// What bash offers behind these words, each on a line of its own.
std::string offeredByBash(std::string const& typed) {
    std::string const script = "source " SOURCE_DIR "/docs/completions/sdkcli.bash; COMP_WORDS=(sdkcli " +
                               typed +
                               " '') COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _sdkcli sdkcli; "
                               "printf '%s\\n' \"${COMPREPLY[@]}\"";
    harness::Outcome const outcome = harness::runProcess({"/bin/bash", {"bash", "--norc", "-c", script}});
    EXPECT_EQ(outcome.err, "");
    return '\n' + outcome.out;
}

TEST(Docs, EveryKeywordIsDocumentedAndCompleted) {
    expectEverywhere(words(source("sdkcli/arguments.cpp"), R"re(is\(keyword, "(\w+)"\))re"),
                     {{"man page", source("docs/sdkcli.1"), R"(\n\.B[IR]* "?WORD[ "\n])"},
                      {"bash completion", offeredByBash(""), R"(\nWORD\n)"},
                      {"zsh completion", source("docs/completions/_sdkcli"), R"(actions=\([^)]*\n *'WORD:)"},
                      {"fish completion", source("docs/completions/sdkcli.fish"), "__sdkcli_at -a WORD -d"}});
}

TEST(Docs, EveryWordOfShowIsDocumentedAndCompleted) {
    std::string const core = source("sdkcli/arguments/core.cpp");
    std::vector<std::string> shown = words(core, R"re(is\(word, "(\w+)"\))re");
    for (std::string const& word : words(core, R"((\w+) \| )")) { // its usage line names most of them
        shown.push_back(word);
    }
    expectEverywhere(
        shown, {{"man page", source("docs/sdkcli.1"), R"(\n\.B.*"?show WORD["\n])"},
                {"bash completion", offeredByBash("show"), R"(\nWORD\n)"},
                {"zsh completion", source("docs/completions/_sdkcli"), R"(show=\([^)]*\n *'WORD:)"},
                {"fish completion", source("docs/completions/sdkcli.fish"), "'__sdkcli_at show' -a WORD "}});
}

TEST(Docs, EveryOptionOfTheSimulatorIsDocumented) {
    std::string const page = std::regex_replace(source("docs/kelvarissim.1"), std::regex(R"(\\-)"), "-");
    for (auto const& file : std::filesystem::directory_iterator(SOURCE_DIR "/simulator")) {
        if (file.path().extension() == ".cpp") {
            for (std::string const& option :
                 words(source("simulator/" + file.path().filename().string()), R"re("(--[a-z-]+)")re")) {
                expectEverywhere({option}, {{"man page", page, R"(\n\.B[IR]* WORD[ \n])"}});
            }
        }
    }
}

} // namespace
