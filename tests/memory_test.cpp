// Runs of the tool and of a host in which the n-th allocation fails, alone or with all behind it. A run ends as it does
// with memory, or says that it failed; neither documents nor requests are cut. script/test tries some allocations of
// each run, script/stress all. Prints the number of outcomes of each kind.

#include "support/process.h"
#include "support/scripteddaemon.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <mutex>
#include <regex>
#include <set>
#include <thread>

using namespace harness;

namespace {

// How many failures each run is tried with, alone and lasting.
long failuresPerRun() {
    char const* const number = std::getenv("KELVARIS_FAILURES");
    return number == nullptr ? 2 : std::atol(number);
}

// A run with these words. Failures on the reader's thread are waited out, so the clock is a faster one then.
Outcome run(std::vector<std::string> const& words, long failing, bool lasting,
            std::string const& input = "") {
    std::vector<std::string> argv = {"env",
                                     "ASAN_OPTIONS=verify_asan_link_order=0:alloc_dealloc_mismatch=0:"
                                     "allocator_may_return_null=1:exitcode=99",
                                     "UBSAN_OPTIONS=exitcode=99"};
    argv.emplace_back(failing == 0 ? "LD_PRELOAD=" FAILALLOC : "LD_PRELOAD=" FAILALLOC ":" FAST_CLOCK);
    if (failing > 0) {
        argv.insert(argv.end(), {"FAKETIME=+0 x50", "KELVARIS_FAIL_AT=" + std::to_string(failing)});
    }
    if (lasting) {
        argv.emplace_back("KELVARIS_FAIL_ALL=1");
    }
    argv.insert(argv.end(), words.begin(), words.end());
    return runProcess({.path = "/usr/bin/env", .argv = argv, .input = input});
}

// Takes the number of allocations off the end.
long countOf(Outcome& outcome) {
    std::smatch match;
    if (!std::regex_search(outcome.err, match, std::regex("(\\d+) allocations\n$"))) {
        ADD_FAILURE() << "nothing was counted: " << outcome.status << outcome.err;
        return 0;
    }
    long const count = std::stol(match[1]);
    outcome.err = match.prefix();
    return count;
}

struct Case {
    std::string name;
    std::function<Outcome(long failing, bool lasting, std::string& problems)> run;
    std::function<std::string(Outcome const& intact, Outcome const& outcome)> judge; // empty: wrong
};

struct Attempt {
    Case const* tried;
    Outcome const* intact;
    long failing;
    bool lasting;
};

class Table {
public:
    void note(Attempt const& attempt, std::string const& kind, std::string const& what) {
        std::lock_guard const lock(mutex);
        ++outcomes[kind.empty() ? "wrong" : kind];
        if (kind.empty()) {
            wrong += attempt.tried->name + ", allocation " + std::to_string(attempt.failing) +
                     (attempt.lasting ? " and later" : "") + ": " + what + '\n';
        }
    }
    void print(std::size_t cases) const {
        std::cout << "| " << testing::UnitTest::GetInstance()->current_test_info()->name() << " | " << cases;
        for (auto const& [kind, count] : outcomes) {
            std::cout << " | " << kind << ": " << count;
        }
        std::cout << " |\n";
        EXPECT_EQ(wrong, "");
    }

private:
    std::mutex mutex;
    std::map<std::string, long> outcomes;
    std::string wrong;
};

void attempt(Attempt const& attempt, Table& table) {
    std::string problems;
    Outcome const outcome = attempt.tried->run(attempt.failing, attempt.lasting, problems);
    bool const glibcGaveUp =
        outcome.status == 127 && outcome.err == "cannot allocate memory for thread-local data: ABORT\n";
    // It asks for a thread's stack when that begins, which takes memory.
    bool const sanitizerGaveUp =
        outcome.err.find("Sanitizer: CHECK failed: sanitizer_linux") != std::string::npos;
    std::string const kind = !problems.empty() ? ""
                             : glibcGaveUp     ? "glibc"
                             : sanitizerGaveUp ? "sanitizer"
                                               : attempt.tried->judge(*attempt.intact, outcome);
    table.note(attempt, kind,
               "status " + std::to_string(outcome.status) + '\n' + problems + outcome.out + outcome.err);
}

// Spread over a run, and from case to case elsewhere in it.
void tryAll(std::vector<Case> const& cases) {
    std::vector<Outcome> intact;
    intact.reserve(cases.size());
    std::vector<Attempt> attempts;
    for (Case const& each : cases) {
        std::string problems;
        intact.push_back(each.run(0, false, problems));
        EXPECT_EQ(problems, "") << each.name;
        long const count = countOf(intact.back());
        long const step = std::max(count / failuresPerRun(), 1L);
        auto const first =
            static_cast<long>(std::hash<std::string>()(each.name) % static_cast<unsigned long>(step));
        for (long n = 1 + first; n <= count; n += step) {
            attempts.push_back({&each, &intact.back(), n, false});
            attempts.push_back({&each, &intact.back(), n, true});
        }
    }
    Table table;
    std::atomic<std::size_t> next = 0;
    auto const work = [&] {
        for (std::size_t i = next++; i < attempts.size(); i = next++) {
            attempt(attempts[i], table);
        }
    };
    // Most of a run that waits out a time-out is waiting.
    std::vector<std::thread> workers;
    for (int i = 0; i < 8; ++i) {
        workers.emplace_back(work);
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    table.print(cases.size());
}

// What a run of the tool is given, and what it asks the daemon.
struct ToolRun {
    std::string words;
    std::string input = {};
    std::vector<Step> exchange = {};
};

// Of the runs of a transcript one for each action. The clock of a run is this test's matter; other runs that are
// special and those with long lists are left to the transcripts' own test.
std::vector<ToolRun> actionsOf(std::string const& transcript) {
    std::vector<ToolRun> runs;
    bool goesOn = false;
    std::istringstream lines(transcript);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string kind, name, payload;
        words >> kind >> name >> std::ws;
        std::getline(words, payload);
        if (kind == "$" && goesOn) { // these go the same way
            runs.back().words = line.substr(2);
        } else if (kind == "$") {
            runs.push_back({.words = line.substr(2)});
        } else if (kind == ">") {
            runs.back().exchange.push_back({name, payload.empty() ? "null" : payload});
        } else if (kind == "<") {
            runs.back().exchange.back().answers.emplace_back("[\"report_" + name + "\"," + payload + ']');
        } else if (kind == "*" && name == "input") {
            runs.back().input = parsed(line.substr(line.find('"'))).asString();
        }
        if ((kind == "*" && name != "input" && name != "clock") || line.find("..") != std::string::npos) {
            runs.back().exchange = {{"special"}};
        }
        goesOn = kind == "$";
    }
    std::set<std::string> kinds = {"special"};
    std::erase_if(runs, [&](ToolRun const& run) {
        std::string kind = run.words.substr(0, run.exchange.empty() ? run.words.find(' ') : 0);
        kind += run.words.find(" rem") != std::string::npos ? " rem" : "";
        for (Step const& step : run.exchange) {
            kind = step.request == "special" || kind == "special" ? "special" : kind + ' ' + step.request;
        }
        return !kinds.insert(kind).second;
    });
    return runs;
}

std::string without(std::string text, std::string const& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) {
        text.erase(at, part.size());
    }
    return text;
}

std::string textOf(Step const& step) {
    return styled("[\"" + step.request + "\"," + step.payload + ",\"kelvaris_sdk\"]");
}

// A daemon may miss requests, but gets no others than with memory, nor half of one. After a read that was missed
// nothing is set.
Outcome runTool(ToolRun const& tool, long failing, bool lasting, std::string& problems) {
    std::vector<Step> const& exchange = tool.exchange;
    ScriptedDaemon daemon(exchange, {.appName = std::nullopt});
    std::istringstream stream(tool.words);
    std::vector<std::string> argv = {SDKCLI_PATH, "-p", std::to_string(daemon.port())};
    for (std::string word; stream >> word;) {
        argv.push_back(word == "''" ? "" : word);
    }
    Outcome outcome = run(argv, failing, lasting, tool.input);
    problems = daemon.finish();
    problems = without(problems, "unexpected request " + textOf({"set_app_name", R"({"name":"Kelvaris"})"}));
    for (std::size_t i = 0; i < exchange.size() && failing > 0; ++i) {
        problems = without(problems, "unused step \"" + exchange[i].request + "\"\n");
        bool const afterRead = i > 0 && exchange[i].request.starts_with("set_") &&
                               exchange[i - 1].request.starts_with("request_");
        problems = afterRead ? problems : without(problems, "unexpected request " + textOf(exchange[i]));
        for (std::size_t before = 0; before < i && !afterRead; ++before) {
            problems = without(problems, "expected the request " + textOf(exchange[before]) + "but got " +
                                             textOf(exchange[i]));
        }
    }
    return outcome;
}

// The documents of a stream, or the only one.
std::set<std::string> documents(std::string const& out) {
    std::set<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = out.find("]\n\n"); end != std::string::npos; end = out.find("]\n\n", begin)) {
        parts.insert(out.substr(begin, end + 3 - begin));
        begin = end + 3;
    }
    parts.insert(out.substr(begin));
    return parts;
}

// Whole documents, and where one is missing status 1 and the reason; a stream may go on without some.
std::string judgeTool(Outcome const& intact, Outcome const& outcome) {
    if (outcome.status == intact.status && outcome.out == intact.out) {
        return intact.err.empty() || !outcome.err.empty() ? "whole" : "";
    }
    std::set<std::string> const all = documents(intact.out);
    std::set<std::string> some = documents(outcome.out);
    some.erase("");
    bool const isWhole = std::includes(all.begin(), all.end(), some.begin(), some.end());
    bool const ends =
        (outcome.status == 1 && !outcome.err.empty()) || (outcome.status == 0 && all.size() > 1);
    return isWhole && ends ? "failed" : "";
}

// The host's lines: the handle, the record, the record of a call with memory, what is left.
std::string judgeHost(Outcome const& intact, Outcome const& outcome) {
    static std::regex const none(
        "no handle\nrecord error 3840 \\w+\nthen error 3840 \\w+\n0 left, no call\n");
    static std::regex const failed("handle\nrecord error 38(40|41|45) \\w+\n");
    if (outcome.status != 0) {
        return "";
    }
    std::size_t const then = outcome.out.find("then ");
    if (outcome.out == intact.out) {
        return "right";
    }
    if (outcome.out == "no thread, 11\n" || outcome.out == "no thread, 12\n") {
        return "no thread";
    }
    if (std::regex_match(outcome.out, none)) {
        return "no handle";
    }
    return then != std::string::npos && std::regex_match(outcome.out.substr(0, then), failed) &&
                   intact.out.ends_with('\n' + outcome.out.substr(then))
               ? "failed"
               : "";
}

} // namespace

class Memory : public testing::TestWithParam<char const*> {};

TEST_P(Memory, RunsOutInTheTool) {
    std::vector<Case> cases;
    for (ToolRun const& tool : actionsOf(golden("transcripts/" + std::string(GetParam()) + ".txt"))) {
        cases.push_back({tool.words,
                         [tool](long failing, bool lasting, std::string& problems) {
                             return runTool(tool, failing, lasting, problems);
                         },
                         judgeTool});
    }
    tryAll(cases);
}

INSTANTIATE_TEST_SUITE_P(Family, Memory,
                         testing::Values("refusals", "session", "settings", "adapters", "safebrowsing",
                                         "lists", "telemetry"),
                         [](auto const& family) { return std::string(family.param); });

class MemoryOfAHost : public testing::TestWithParam<char const*> {};

TEST_P(MemoryOfAHost, RunsOut) {
    Simulator simulator;
    std::vector<Case> cases;
    for (std::string const how : {"", " async"}) {
        cases.push_back({GetParam() + how,
                         [&simulator, how](long failing, bool lasting, std::string&) {
                             return run({MEMORY_HOST, std::to_string(simulator.port), GetParam() + how},
                                        failing, lasting);
                         },
                         judgeHost});
    }
    tryAll(cases);
    simulator.process.signal(SIGTERM);
    EXPECT_EQ(simulator.process.wait().err, "");
}

// One call of each family.
INSTANTIATE_TEST_SUITE_P(Call, MemoryOfAHost,
                         testing::Values("state", "directory", "jumbo", "adapters", "firewall", "disconnects",
                                         "safebrowsing"),
                         [](auto const& call) { return std::string(call.param); });
