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

// Where to listen; port 0 lets the system choose.
struct Endpoint {
    std::string address; // or a host name
    std::uint16_t port = 0;
};

struct ExportOptions {
    std::optional<Endpoint> listen;
    std::string textFile; // empty: none
    Seconds interval{5};  // between two writes of the file
    bool once = false;
};

enum class Colour { automatic, always, never };
enum class GraphChoice { automatic, braille, block, ascii };

struct TopOptions {
    bool once = false;
    bool bytes = false;
    Colour colour = Colour::automatic;
    GraphChoice graph = GraphChoice::automatic;
};

struct Options {
    std::string address;
    std::uint16_t port = 0;
    std::unique_ptr<Command> (*make)(Context const&) = nullptr; // the chosen command
    TopOptions top;
    WatchOptions watch;
    WaitOptions wait;
    RecordOptions record;
    ExportOptions exporting;
};

constexpr int wrongWordsStatus = 2;
constexpr int timedOutStatus = 124;

// Reads the words. With a value the program ends with that status: help has been printed, or what is wrong with them.
std::optional<int> readWords(int argc, char const* const* argv, Options& options);

} // namespace monitor
