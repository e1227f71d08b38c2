// The tool's tables, its usage lines, the man pages, the completion scripts and the simulator know the same words.

#include "actions.h"
#include "grammar.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <json/json.h>
#include <map>
#include <regex>
#include <set>

using namespace harness;

namespace {

Words matches(std::string const& text, std::string const& pattern) {
    std::regex const expression(pattern);
    return {std::sregex_token_iterator(text.begin(), text.end(), expression), std::sregex_token_iterator()};
}

Words words(std::string const& text) {
    return matches(text, "[\\w-]+");
}

bool has(Words const& words, std::string const& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::string manPage(std::string const& program) {
    return std::regex_replace(source("docs/" + program + ".1"), std::regex(R"(\\-)"), "-");
}

// Returns what the usage lines say may stand behind the words typed; "*" is any word.
std::map<std::string, Words> behindTyped() {
    std::map<std::string, Words> behind;
    for (Rule const& rule : rules()) {
        std::string const& pattern = rule.patterns.front();
        for (Offer const& offer : rule.offers) {
            behind[pattern.substr(0, pattern.rfind(' '))].push_back(offer.word);
        }
    }
    return behind;
}

// Returns the keywords of the tables, by those that lead to them.
void addKeywords(std::map<std::string, Words>& found, std::string const& typed, Keywords rows) {
    for (Keyword const& row : rows) {
        found[typed].push_back(row.word);
        if (row.following != nullptr) {
            addKeywords(found, typed + (typed.empty() ? "" : " ") + row.word, *row.following);
        }
    }
}

std::map<std::string, Words> allKeywords() {
    std::map<std::string, Words> found;
    addKeywords(found, "", keywords);
    return found;
}

TEST(Grammar, EveryKeywordHasAUsageLineAndTheOtherWayRound) {
    std::map<std::string, Words> behind = behindTyped();
    for (auto const& [typed, known] : allKeywords()) {
        for (std::string const& word : known) {
            EXPECT_TRUE(has(behind[typed], word)) << "no usage line: " << typed << ' ' << word;
        }
        for (std::string const& word : behind[typed]) {
            EXPECT_TRUE(has(known, word)) << "no action: " << typed << ' ' << word;
        }
    }
}

// Returns the entries of the man page's actions with the words of their first line, and of all of them.
std::vector<std::pair<Words, Words>> manEntries() {
    std::string const page = std::regex_replace(manPage("sdkcli"), std::regex(R"(\\f.|"|\\ )"), "");
    std::vector<std::pair<Words, Words>> found;
    for (std::string const& text : matches(page, R"(\n\.T[PQ]\n\.B[^\n]*(\n(?!\.T[PQ]|\.S[HS])[^\n]*)*)")) {
        std::string const plain = std::regex_replace(text.substr(4), std::regex(R"(\n\.[A-Z]+ ?)"), "\n");
        for (std::string const& head : matches(plain.substr(1, plain.find('\n', 1)), "[^,]+")) {
            found.emplace_back(words(head), words(plain));
        }
    }
    return found;
}

// A keyword stands in the first line of its entry, any other word somewhere in the entry of its action. The kinds of
// lists have entries of their own.
TEST(Grammar, EveryWordIsInTheManPage) {
    auto const entries = manEntries();
    auto known = allKeywords();
    auto const isHead = [&](std::string const& word) {
        return std::any_of(entries.begin(), entries.end(),
                           [&](auto const& entry) { return entry.first[0] == word; });
    };
    for (auto const& [typed, offers] : behindTyped()) {
        for (std::string const& offer : offers) {
            bool const isKeyword = typed.empty() || has(known[typed], offer);
            Words const action = words(isKeyword ? typed + ' ' + offer : typed);
            auto const isItsEntry = [&](auto const& entry) {
                auto const fits = [&](std::string const& word) {
                    return has(entry.first, word) || (has(entry.first, "KIND") && isHead(word));
                };
                return entry.first[0] == action[0] && std::all_of(action.begin(), action.end(), fits) &&
                       (isKeyword || has(entry.second, offer));
            };
            EXPECT_TRUE(std::any_of(entries.begin(), entries.end(), isItsEntry))
                << "man page: " << typed << ' ' << offer;
        }
    }
}

// Returns what the tool prints of this simulated daemon.
Json::Value shown(Simulator const& daemon, std::string const& line) {
    std::string const words = "-p " + std::to_string(daemon.port) + ' ' + line;
    Outcome const outcome = runProcess(tool(split(words)));
    EXPECT_EQ(outcome.status, 0) << "with the simulated daemon: " << line << '\n' << outcome.err;
    Json::Value document;
    EXPECT_TRUE(Json::Reader().parse(outcome.out, document)) << line;
    return document;
}

// Bash asks the script what may stand behind words, which are the keys, and it asks the tool what its daemon holds.
TEST(Grammar, CompletionOffersWhatTheDaemonHolds) {
    Simulator const daemon;
    shown(daemon, "firewall domains set a.example b.example");
    shown(daemon, "firewall ports set 443 53/udp");
    shown(daemon, "streamingbypass ipv6 set fe80::1");
    std::map<std::string, std::string> const offers = {
        {"adapter encryption", " eth0 wlan0 wwan0 usb0 "},
        {"firewall domains rem", " a.example b.example "},
        {"firewall ports rem 1", " 443/tcp 53/udp "},
        {"streamingbypass ipv6 set", " fe80::1 "},
        {"streamingbypass service", " video music sports "},
        {"connect us nyc", " 1 2 3 4 5 "},
        {"captiveportal login off", "  "},
    };
    std::string script = "COMP_WORDBREAKS=:\nsource " COMPLETIONS "sdkcli.bash\n"
                         "offer() { COMP_WORDS=(\"$@\" '') COMP_CWORD=$# COMP_LINE=\"$* \"\n"
                         "_sdkcli " SDKCLI_PATH "\necho \" ${COMPREPLY[*]} \"; }\n";
    std::string expected;
    for (auto const& [typed, offered] : offers) {
        script += "offer sdkcli -i 127.0.0.1 -p " + std::to_string(daemon.port) + ' ' + typed + '\n';
        expected += offered + '\n';
    }
    Outcome const outcome = runProcess({"/bin/bash", {"bash", "--norc", "-c", script}});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, expected);
}

// Each choice of a setting shows in one printed key, which is no other setting's. Other words are refused.
TEST(Grammar, EverySettingShowsInItsKey) {
    Simulator const daemon;
    Words lines(std::begin(helpLines), std::end(helpLines));
    lines.insert(lines.end(), std::begin(unlistedLines), std::end(unlistedLines));
    std::string const refusals = golden("transcripts/refusals.txt");
    std::map<std::string, std::string> settings;
    for (auto const& [typed, offers] : behindTyped()) {
        std::string line = typed + " <";
        for (std::string const& offer : offers) {
            line += offer + (offer == offers.back() ? '>' : '|');
        }
        if (!has(lines, line)) {
            continue; // takes more words
        }
        EXPECT_NE(refusals.find("! Invalid parameters: sdkcli " + line + '\n'), refusals.npos)
            << "refusals.txt: " << line;
        std::map<std::string, std::set<Json::Value>>
            values; // of each key, which the document's first key tells apart
        for (std::string const& offer : offers) {
            Json::Value const document = shown(daemon, typed + ' ' + offer);
            for (std::string const& key : document.getMemberNames()) {
                values[document.getMemberNames()[0] + "... " + key].insert(document[key]);
            }
        }
        std::erase_if(values, [](auto const& each) { return each.second.size() == 1; });
        ASSERT_EQ(values.size(), 1U) << line
                                     << ": parser, printer and simulated daemon don't agree on its key";
        EXPECT_EQ(values.begin()->second.size(), offers.size())
            << line << " changes " << values.begin()->first;
        EXPECT_TRUE(settings.emplace(values.begin()->first, line).second)
            << line << " changes the key of " << settings[values.begin()->first];
    }
    EXPECT_GT(settings.size(), 12U);
}

TEST(Grammar, EveryShownKeyIsInTheManPage) {
    Simulator const daemon;
    std::string const page = manPage("sdkcli");
    for (Keyword const& keyword : showKeywords) {
        std::string const text = shown(daemon, std::string("show ") + keyword.word).toStyledString();
        for (std::string const& key : matches(text, "\\w+(?=\" :)")) {
            EXPECT_TRUE(std::regex_search(page, std::regex("\n *(\\w+, )*" + key + "(,| )")))
                << "show " << keyword.word << " prints " << key;
        }
    }
}

TEST(Grammar, EveryOptionOfTheSimulatorIsDocumentedAndCompleted) {
    Words const options =
        matches(runProcess({SIMULATOR_PATH, {"kelvarissim", "--help"}}).out, "\n  --[a-z-]+");
    EXPECT_GT(options.size(), 5U);
    for (std::string const& option : options) {
        std::string const name = option.substr(3);
        EXPECT_TRUE(std::regex_search(manPage("kelvarissim"), std::regex("\n\\.B[IR]* " + name + "[ \n]")))
            << name;
        EXPECT_TRUE(has(words(contents(COMPLETIONS "kelvarissim.bash")), name)) << "bash: " << name;
    }
}

} // namespace
