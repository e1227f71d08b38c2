#include "options.h"
#include "command.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <iterator>

namespace monitor {

namespace {

// The field of the address holds 45 bytes.
constexpr std::size_t longestAddress = 45;
// A year. Longer times make the clock overflow somewhere.
constexpr double longestTime = 366.0 * 86400;
constexpr char exportAddress[] = "127.0.0.1";
constexpr std::uint16_t exportPort = 9339;
constexpr char duration[] = "SECONDS";

CLI::Option* addSeconds(CLI::App& to, std::string const& name, Seconds shortest, std::string const& help,
                        std::function<void(Seconds)> const& take) {
    return to
        .add_option_function<double>(
            name, [take](double const& value) { take(Seconds(value)); }, help)
        ->check(CLI::Range(shortest.count(), longestTime).description(""))
        ->type_name(duration);
}

std::string topicHelp() {
    std::string names;
    for (unsigned i = 0; i < topicCount; ++i) {
        names += (i == 0 ? "" : ", ") + std::string(toString(static_cast<Topic>(i)));
    }
    return "what to watch, of " + names + " (all)";
}

void addTop(CLI::App& app, Options& options) {
    CLI::App& command = *app.add_subcommand("top", "Show the lines and what they do in the terminal");
    command.add_flag("--once", options.top.once, "print one picture as plain text, and end");
    command.add_flag("--bytes", options.top.bytes, "begin with bytes a second instead of bits");
    command.add_option("--color", options.top.colour, "when to use colours: auto, always or never (auto)")
        ->transform(CLI::Transformer(std::map<std::string, Colour>{{"auto", Colour::automatic},
                                                                   {"always", Colour::always},
                                                                   {"never", Colour::never}})
                        .description(""))
        ->type_name("WHEN");
    command
        .add_option("--graph", options.top.graph,
                    "what graphs are made of: auto, braille, block or ascii (auto)")
        ->transform(CLI::Transformer(std::map<std::string, GraphChoice>{{"auto", GraphChoice::automatic},
                                                                        {"braille", GraphChoice::braille},
                                                                        {"block", GraphChoice::block},
                                                                        {"ascii", GraphChoice::ascii}})
                        .description(""))
        ->type_name("KIND");
    command.callback([&options] { options.make = makeTop; });
}

void addWatch(CLI::App& app, Options& options) {
    CLI::App& command = *app.add_subcommand("watch", "Print a JSON object a line for each change");
    command
        .add_option_function<std::vector<std::string>>(
            "TOPIC",
            [&options](std::vector<std::string> const& names) {
                for (std::string const& name : names) {
                    auto const topic = topicNamed(name);
                    if (!topic) {
                        throw CLI::ValidationError("there is no topic \"" + name + "\"");
                    }
                    options.watch.topics.push_back(*topic);
                }
            },
            topicHelp())
        ->type_name("");
    command
        .add_option("--exec", options.watch.hook,
                    "run this for each change, instead of printing it; takes all the words that follow")
        ->type_name("PROGRAM ARG");
    addSeconds(command, "--exec-timeout", Seconds(0.001), "kill the program after this time (10)",
               [&options](Seconds value) { options.watch.hookTimeout = value; });
    command.callback([&options] { options.make = makeWatch; });
}

// Sets the goal; false: there is none of this name.
bool readGoal(std::string const& word, WaitOptions& wait) {
    if (word == "network" || word == "daemon") {
        wait.goal = word == "network" ? Goal::network : Goal::daemon;
        return true;
    }
    wait.goal = Goal::state;
    for (auto state = kelvaris::State::LOGGED_OUT; state != kelvaris::State::UNKNOWN;
         state = static_cast<kelvaris::State>(static_cast<unsigned>(state) + 1)) {
        if (word == std::string("state:") + kelvaris::toString(state)) {
            wait.state = state;
            return true;
        }
    }
    return false;
}

void addWait(CLI::App& app, Options& options) {
    CLI::App& command =
        *app.add_subcommand("wait", "Wait until the daemon or its session is as it should be");
    command
        .add_option_function<std::string>(
            "--for",
            [&options](std::string const& word) {
                if (!readGoal(word, options.wait)) {
                    throw CLI::ValidationError("--for can't be \"" + word + "\"");
                }
            },
            "state:CONNECTED or another state; network: connected, and a connection has an address; daemon: "
            "it "
            "answers")
        ->required()
        ->type_name("GOAL");
    addSeconds(command, "--timeout", Seconds(0.001), "give up after this time, with status 124 (never)",
               [&options](Seconds value) { options.wait.timeout = value; });
    command.callback([&options] { options.make = makeWait; });
}

void addRecord(CLI::App& app, Options& options) {
    CLI::App& command = *app.add_subcommand("record", "Write what each adapter does as CSV");
    command.add_option("FILE", options.record.file, "add to this file (the standard output)")->type_name("");
    addSeconds(command, "--interval", Seconds(0.01), "time between two records (1)",
               [&options](Seconds value) { options.record.interval = value; });
    command
        .add_option_function<std::uint64_t>(
            "--count", [&options](std::uint64_t const& value) { options.record.count = value; },
            "end after so many records (never)")
        ->check(CLI::PositiveNumber.description(""))
        ->type_name("N");
    command.callback([&options] { options.make = makeRecord; });
}

// "127.0.0.1:9339", "[::1]:9339", "localhost:0"; nothing when it is none.
std::optional<Endpoint> endpointOf(std::string const& word) {
    auto const colon = word.rfind(':');
    if (colon == std::string::npos) {
        return std::nullopt;
    }
    std::string address = word.substr(0, colon);
    bool const isBracketed = address.size() > 2 && address.front() == '[' && address.back() == ']';
    if (isBracketed) {
        address = address.substr(1, address.size() - 2);
    } else if (address.empty() || address.find_first_of(":[]") != std::string::npos) {
        return std::nullopt;
    }
    Endpoint endpoint{address, 0};
    char const* const end = word.data() + word.size();
    auto const [read, error] = std::from_chars(word.data() + colon + 1, end, endpoint.port);
    return error == std::errc() && read == end ? std::optional(endpoint) : std::nullopt;
}

void addExport(CLI::App& app, Options& options) {
    CLI::App& command = *app.add_subcommand("export", "Hand metrics to Prometheus");
    CLI::Option* const listen =
        command
            .add_option_function<std::string>(
                "--listen",
                [&options](std::string const& word) {
                    options.exporting.listen = endpointOf(word);
                    if (!options.exporting.listen) {
                        throw CLI::ValidationError("--listen can't be \"" + word + "\"");
                    }
                },
                std::string("answer GET /metrics there; IPv6 addresses in brackets (") + exportAddress + ":" +
                    std::to_string(exportPort) + ")")
            ->type_name("ADDRESS:PORT");
    command
        .add_option("--textfile", options.exporting.textFile,
                    "keep the metrics in this file; without --listen nothing is answered")
        ->check([](std::string const& word) { return word.empty() ? "is no name" : ""; })
        ->type_name("FILE");
    addSeconds(command, "--interval", Seconds(0.01), "shortest time between two versions of the file (5)",
               [&options](Seconds value) { options.exporting.interval = value; });
    command.add_flag("--once", options.exporting.once, "print the metrics, or write the file, and end")
        ->excludes(listen);
    command.callback([&options] {
        ExportOptions& exporting = options.exporting;
        if (!exporting.listen && !exporting.once && exporting.textFile.empty()) {
            exporting.listen = Endpoint{exportAddress, exportPort};
        }
        options.make = makeExport;
    });
}

// What follows "--exec" is the hook's, whatever it looks like.
std::vector<std::string> takeHook(std::vector<std::string>& words) {
    auto const exec = std::find(words.begin(), words.end(), "--exec");
    auto const isWatch = std::find(words.begin(), exec, "watch") != exec;
    if (!isWatch || exec == words.end() || exec + 1 == words.end()) {
        return {};
    }
    auto const kept = static_cast<std::size_t>(exec + 2 - words.begin());
    std::vector<std::string> hook;
    std::copy(exec + 1, words.end(), std::back_inserter(hook));
    words.resize(kept);
    return hook;
}

// From version 2.4 on CLI11 passes over a variable that its own check refuses, and the command would ask another daemon
// than the one that is meant.
void refuseDropped(CLI::Option& option) {
    char const* const value = std::getenv(option.get_envname().c_str());
    if (option.count() == 0 && value != nullptr && *value != '\0') {
        std::string word = value;
        throw CLI::ValidationError(option.get_name(), (*option.get_validator())(word));
    }
}

} // namespace

std::optional<int> readWords(int argc, char const* const* argv, Options& options) {
    kelvaris::CreateSettings const defaults;
    options.address = defaults.address;
    options.port = defaults.port;

    CLI::App app("Shows what the bonded lines of the Kelvaris daemon do, and hands it to other programs.",
                 "kelvaris-monitor");
    app.require_subcommand(1);
    app.set_version_flag("--version", "kelvaris-monitor " KELVARIS_VERSION);
    app.add_option("--address", options.address,
                   "the daemon's IPv4 address or host name (" + options.address + ")")
        ->envname("KELVARIS_ADDRESS")
        ->check([](std::string const& word) {
            return word.empty() || word.size() > longestAddress ? "is no address of 1 to 45 bytes" : "";
        })
        ->type_name("ADDRESS");
    app.add_option("--port", options.port, "the daemon's TCP port (" + std::to_string(options.port) + ")")
        ->envname("KELVARIS_PORT")
        ->check(CLI::Range(1, 65535).description(""))
        ->type_name("PORT");
    // A command is added here: its words, and its function that makes it.
    addTop(app, options);
    addWatch(app, options);
    addWait(app, options);
    addRecord(app, options);
    addExport(app, options);

    std::vector<std::string> words(argv + 1, argv + argc);
    auto hook = takeHook(words);
    std::reverse(words.begin(), words.end()); // as CLI11 takes them
    try {
        app.parse(std::move(words));
        refuseDropped(*app.get_option("--address"));
        refuseDropped(*app.get_option("--port"));
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : wrongWordsStatus;
    }
    if (!hook.empty()) {
        options.watch.hook = std::move(hook);
    }
    return std::nullopt;
}

} // namespace monitor
