#pragma once

#include "snapshot.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace monitor {

struct Context;
class Command;

using Seconds = std::chrono::duration<double>;

struct WatchOptions {
    std::vector<Topic> topics;     // empty: all
    std::vector<std::string> hook; // PROGRAM ARG ...; empty: none
    Seconds hookTimeout{10};
};

// What is waited for.
enum class Goal { state, network, daemon };

struct WaitOptions {
    Goal goal = Goal::daemon;
    kelvaris::State state = kelvaris::State::CONNECTED; // of Goal::state
    std::optional<Seconds> timeout;
};

struct RecordOptions {
    std::string file; // empty: the standard output
    Seconds interval{1};
    std::optional<std::uint64_t> count; // how many times something is recorded; nothing: until a signal
};

struct Options {
    std::string address;
    std::uint16_t port = 0;
    std::unique_ptr<Command> (*make)(Context const&) = nullptr; // the chosen command
    WatchOptions watch;
    WaitOptions wait;
    RecordOptions record;
};

constexpr int wrongWordsStatus = 2;
constexpr int timedOutStatus = 124;

// Reads the words. With a value the program ends with that status: help has been printed, or what is wrong with them.
std::optional<int> readWords(int argc, char const* const* argv, Options& options);

} // namespace monitor
