// Runs of the tool in which the n-th allocation fails, alone or with all behind it. A run ends as it does
// with memory, or says that it failed; neither documents nor requests are cut. script/test tries some allocations of
// each run, script/stress all. Prints the number of outcomes of each kind.

#include "support/transcripts.h"

#include <algorithm>
#include <atomic>
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

// Failures on the reader's thread are waited out, so the clock is a faster one then. A daemon may miss requests, but gets
// no others than with memory, nor half of one. After a read that was missed nothing is set.
Outcome run(Row const& row, long failing, bool lasting) {
    ScriptedDaemon daemon(row.exchange, {.mayMiss = failing > 0});
    Command command{.path = "/usr/bin/env",
                    .argv = {"env",
                             "ASAN_OPTIONS=verify_asan_link_order=0:alloc_dealloc_mismatch=0:"
                             "allocator_may_return_null=1:exitcode=99",
                             "UBSAN_OPTIONS=exitcode=99"},
                    .input = row.input};
    Words const tool = split(EMULATOR SDKCLI_PATH " -p " + std::to_string(daemon.port()));
    auto& argv = command.argv;
    argv.emplace_back(failing == 0 ? "LD_PRELOAD=" FAILALLOC : "LD_PRELOAD=" FAILALLOC ":" FAST_CLOCK);
    if (failing > 0) {
        argv.insert(argv.end(), {"FAKETIME=+0 x50", "KELVARIS_FAIL_AT=" + std::to_string(failing)});
    }
    if (lasting) {
        argv.emplace_back("KELVARIS_FAIL_ALL=1");
    }
    for (Words const& words : {tool, row.argv}) {
        argv.insert(argv.end(), words.begin(), words.end());
    }
    Outcome outcome = runProcess(command);
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
std::string kindOf(Outcome const& intact, Outcome const& outcome) {
    if (outcome.status == 127 && outcome.err == "cannot allocate memory for thread-local data: ABORT\n") {
        return "glibc";
    }
    // It asks for a thread's stack when that begins, which takes memory.
    if (outcome.err.find("Sanitizer: CHECK failed: sanitizer_linux") != std::string::npos) {
        return "sanitizer";
    }
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

} // namespace

class Memory : public testing::TestWithParam<char const*> {};

// The failures are spread over a run, and from run to run elsewhere in it.
TEST_P(Memory, RunsOutInTheTool) {
    char const* const failures = std::getenv("KELVARIS_FAILURES"); // of each kind that a run is tried with
    std::mutex mutex;
    std::map<std::string, long> outcomes;
    std::vector<std::function<void()>> attempts;
    std::vector<Row> const rows = actionsOf(GetParam());
    for (Row const& row : rows) {
        auto const intact = std::make_shared<Outcome>(run(row, 0, false));
        std::smatch counted;
        ASSERT_TRUE(std::regex_search(intact->err, counted, std::regex("(\\d+) allocations\n$")))
            << intact->err;
        long const count = std::stol(counted[1]);
        intact->err.erase(static_cast<std::size_t>(counted.position()));
        long const step = std::max(count / (failures == nullptr ? 2 : std::atol(failures)), 1L);
        auto const first =
            static_cast<long>(std::hash<std::string>()(row.words) % static_cast<unsigned long>(step));
        for (long at = 2 * (1 + first); at <= 2 * count + 1; at += at % 2 == 0 ? 1 : 2 * step - 1) {
            attempts.emplace_back([&, intact, failing = at / 2, lasting = at % 2 != 0] {
                Outcome const outcome = run(row, failing, lasting);
                std::string const kind = kindOf(*intact, outcome);
                std::lock_guard const lock(mutex);
                ++outcomes[kind];
                EXPECT_NE(kind, "wrong") << row.words << ", allocation " << failing
                                         << (lasting ? " and later" : "") << ": " << outcome.status << '\n'
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
    std::cout << "| " << GetParam() << " | " << rows.size();
    for (auto const& [kind, count] : outcomes) {
        std::cout << " | " << kind << ": " << count;
    }
    std::cout << " |\n";
}

INSTANTIATE_TEST_SUITE_P(Family, Memory,
                         testing::Values("refusals", "session", "settings", "adapters", "safebrowsing",
                                         "lists", "telemetry"),
                         [](auto const& family) { return std::string(family.param); });
