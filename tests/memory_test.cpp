// Runs of the tool and of a host in which the n-th allocation fails, alone or with all behind it. A run ends as it does
// with memory, or says that it failed; neither documents nor requests are cut. script/test tries some allocations of
// each run, script/stress all. Prints the number of outcomes of each kind.

#include "support/simulator.h"
#include "support/transcripts.h"

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
        argv.insert(argv.end(), {"FAKETIME=+0 x50", "FAKETIME_DONT_FAKE_MONOTONIC=0",
                                 "KELVARIS_FAIL_AT=" + std::to_string(failing)});
    }
    if (lasting) {
        argv.emplace_back("KELVARIS_FAIL_ALL=1");
    }
    argv.insert(argv.end(), words.begin(), words.end());
    return runProcess({.path = "/usr/bin/env", .argv = argv, .input = input});
}

// A run that may lack memory, and the kind of its outcome next to one with memory.
struct Case {
    std::string name;
    std::function<Outcome(long failing, bool lasting)> run;
    std::function<std::string(Outcome const& intact, Outcome const& outcome)> kind;
};

std::string kindOf(Case const& tried, Outcome const& intact, Outcome const& outcome) {
    if (outcome.status == 127 && outcome.err == "cannot allocate memory for thread-local data: ABORT\n") {
        return "glibc";
    }
    // It asks for a thread's stack when that begins, which takes memory.
    if (outcome.err.find("sanitizer_linux_libcdep") != std::string::npos) {
        return "sanitizer";
    }
    return tried.kind(intact, outcome);
}

// Spread over a run, and from case to case elsewhere in it.
void tryAll(std::vector<Case> const& cases) {
    std::mutex mutex; // also guards the cache of the locale that making an expression fills
    std::map<std::string, long> outcomes;
    std::vector<std::function<void()>> attempts;
    for (Case const& each : cases) {
        auto const intact = std::make_shared<Outcome>(each.run(0, false));
        std::smatch counted;
        ASSERT_TRUE(std::regex_search(intact->err, counted, std::regex("(\\d+) allocations\n$")))
            << intact->err;
        long const count = std::stol(counted[1]);
        intact->err.erase(static_cast<std::size_t>(counted.position()));
        long const step = std::max(count / failuresPerRun(), 1L);
        auto const first =
            static_cast<long>(std::hash<std::string>()(each.name) % static_cast<unsigned long>(step));
        for (long at = 2 * (1 + first); at <= 2 * count + 1; at += at % 2 == 0 ? 1 : 2 * step - 1) {
            attempts.emplace_back([&, intact, failing = at / 2, lasting = at % 2 != 0] {
                Outcome const outcome = each.run(failing, lasting);
                std::lock_guard const lock(mutex);
                std::string const kind = kindOf(each, *intact, outcome);
                ++outcomes[kind];
                EXPECT_NE(kind, "wrong")
                    << each.name << ", allocation " << failing << (lasting ? " and later" : "") << ": status "
                    << outcome.status << '\n'
                    << outcome.out << outcome.err;
            });
        }
    }
    // Most of a run that waits out a time-out is waiting.
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> workers;
    for (int i = 0; i < 8; ++i) {
        workers.emplace_back([&] {
            for (std::size_t attempt = next++; attempt < attempts.size(); attempt = next++) {
                attempts[attempt]();
            }
        });
    }
    workers.clear();
    std::cout << "| " << testing::UnitTest::GetInstance()->current_test_info()->name() << " | "
              << cases.size();
    for (auto const& [kind, count] : outcomes) {
        std::cout << " | " << kind << ": " << count;
    }
    std::cout << " |\n";
}

// Of the runs of a transcript one for each action. The clock of a run is this test's matter; runs with a shell of their
// own or without a daemon are left to the transcripts' own test.
std::vector<Row> actionsOf(std::string const& family) {
    std::vector<Row> rows = rowsOf(family);
    std::set<std::string> kinds;
    std::erase_if(rows, [&](Row const& row) {
        std::string kind = row.exchange.empty() ? row.argv[0] : "";
        kind += row.words.find(" rem") != std::string::npos ? " rem" : "";
        for (Step const& step : row.exchange) {
            kind += ' ' + step.request;
        }
        return !row.shell.empty() || !row.isHeard || !kinds.insert(kind).second;
    });
    return rows;
}

// A daemon may miss requests, but gets no others than with memory, nor half of one. After a read that was missed
// nothing is set.
Outcome runTool(Row const& row, long failing, bool lasting) {
    ScriptedDaemon daemon(row.exchange, {.mayMiss = failing > 0});
    Words words = split(EMULATOR SDKCLI_PATH " -p " + std::to_string(daemon.port()));
    words.insert(words.end(), row.argv.begin(), row.argv.end());
    Outcome outcome = run(words, failing, lasting, row.input);
    if (std::string const problems = daemon.finish(); !problems.empty()) {
        outcome = {.status = 100, .err = problems};
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
std::string kindOfTool(Outcome const& intact, Outcome const& outcome) {
    if (outcome.status == intact.status && outcome.out == intact.out) {
        return intact.err.empty() || !outcome.err.empty() ? "whole" : "wrong";
    }
    std::set<std::string> const all = documents(intact.out);
    std::set<std::string> some = documents(outcome.out);
    some.erase("");
    bool const isWhole = std::includes(all.begin(), all.end(), some.begin(), some.end());
    bool const ends =
        (outcome.status == 1 && !outcome.err.empty()) || (outcome.status == 0 && all.size() > 1);
    return isWhole && ends ? "failed" : "wrong";
}

// The host's lines: the handle, the record, the record of a call with memory, what is left.
std::string kindOfHost(Outcome const& intact, Outcome const& outcome) {
    std::pair<std::string, std::string> const kinds[] = {
        {"right", intact.out},
        {"no thread", "no thread, 1[12]\n"},
        {"no handle", "no handle\nrecord error 3840 \\w+\nthen error 3840 \\w+\n0 left, no call\n"},
        {"failed", "handle\nrecord error 38(40|41|45) \\w+\n" + intact.out.substr(intact.out.find("then "))}};
    for (auto const& [kind, lines] : kinds) {
        if (outcome.status == 0 && std::regex_match(outcome.out, std::regex(lines))) {
            return kind;
        }
    }
    return "wrong";
}

} // namespace

class Memory : public testing::TestWithParam<char const*> {};

TEST_P(Memory, RunsOutInTheTool) {
    std::vector<Case> cases;
    for (Row const& row : actionsOf(GetParam())) {
        auto const attempt = [row](long failing, bool lasting) { return runTool(row, failing, lasting); };
        cases.push_back({row.words, attempt, kindOfTool});
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
        Words const words =
            split(EMULATOR MEMORY_HOST " " + std::to_string(simulator.port) + ' ' + GetParam() + how);
        auto const attempt = [words](long failing, bool lasting) { return run(words, failing, lasting); };
        cases.push_back({GetParam() + how, attempt, kindOfHost});
    }
    tryAll(cases);
    simulator.process.signal(SIGTERM);
    EXPECT_EQ(simulator.process.wait().err, "");
}

// One call of each family.
INSTANTIATE_TEST_SUITE_P(Call, MemoryOfAHost,
                         testing::Values("GetState", "GetDirectory", "SetJumboPackets", "GetAdapters",
                                         "SetFirewallDomains", "GetLastDisconnectEvent", "InitSafeBrowsing"),
                         [](auto const& call) { return std::string(call.param); });
