#include "options.h"
#include "command.h"
#include "text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <iostream>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace monitor {

namespace {

// The field of the address holds 45 bytes.
constexpr std::size_t longestAddress = 45;
// A year. Longer times make the clock overflow somewhere.
constexpr double longestTime = 366.0 * 86400;
constexpr char exportAddress[] = "127.0.0.1";
constexpr std::uint16_t exportPort = 9339;

std::optional<double> numberIn(std::string const& word, double) {
    return decimal(word);
}

template <class Whole> std::optional<Whole> numberIn(std::string const& word, Whole number) {
    char const* const end = word.data() + word.size();
    auto const [read, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && read == end ? std::optional(number) : std::nullopt;
}

// What the whole word says in decimal digits. CLI11 by itself would also take "0x10", "010" and "nan".
template <class Number>
CLI::Option* addNumber(CLI::App& to, std::string const& name, Number least, Number most,
                       std::string const& help, std::function<void(Number)> const& take) {
    return to.add_option_function<std::string>(
        name,
        [name, least, most, take](std::string const& word) {
            auto const number = numberIn(word, Number{});
            if (!number || !(*number >= least && *number <= most)) {
                std::ostringstream what;
                what.precision(15);
                what << '"' << word << "\" is no number from " << least << " to " << most;
                throw CLI::ValidationError(name, what.str());
            }
            take(*number);
        },
        help);
}

void addSeconds(CLI::App& to, std::string const& name, Seconds shortest, std::string const& help,
                std::function<void(Seconds)> const& take) {
    addNumber<double>(to, name, shortest.count(), longestTime, help, [take](double value) {
        take(Seconds(value));
    })->type_name("SECONDS");
}

// An empty name is that of a variable that nobody has set.
void addFile(CLI::App& to, std::string const& name, std::string& file, std::string const& help,
             std::string const& typeName) {
    to.add_option(name, file, help)
        ->check([](std::string const& word) { return word.empty() ? "is no name" : ""; })
        ->type_name(typeName);
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
    addFile(command, "FILE", options.record.file, "add to this file (the standard output)", "");
    addSeconds(command, "--interval", Seconds(0.01), "time between two records (1)",
               [&options](Seconds value) { options.record.interval = value; });
    addNumber<std::uint64_t>(command, "--count", 1, std::numeric_limits<std::uint64_t>::max(),
                             "end after so many records (never)",
                             [&options](std::uint64_t value) { options.record.count = value; })
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
    addFile(command, "--textfile", options.exporting.textFile,
            "keep the metrics in this file; without --listen nothing is answered", "FILE");
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

// What follows "--exec" is the hook's, whatever it looks like. Without anything behind it the words stay as they are, and
// are wrong.
std::vector<std::string> takeHook(std::vector<std::string>& words) {
    constexpr std::string_view joined = "--exec=";
    auto const exec = std::find_if(words.begin(), words.end(), [joined](std::string const& word) {
        return word == "--exec" || word.starts_with(joined);
    });
    bool const isWatch = std::find(words.begin(), exec, "watch") != exec;
    if (!isWatch || exec == words.end()) {
        return {};
    }
    std::vector<std::string> hook(exec, words.end());
    if (hook.front() == "--exec") {
        hook.erase(hook.begin());
    } else {
        hook.front().erase(0, joined.size());
    }
    if (!hook.empty()) {
        words.erase(exec, words.end());
    }
    return hook;
}

// Help and versions are printed to the standard output, what is wrong to the standard error output.
int endWith(CLI::App const& app, CLI::Error const& error) {
    int const status = app.exit(error) == 0 ? 0 : wrongWordsStatus;
    if (!std::cout.flush()) {
        throw std::runtime_error("the standard output can't be written");
    }
    return status;
}

} // namespace

std::optional<int> readWords(int argc, char const* const* argv, Options& options) {
    kelvaris::CreateSettings const defaults;
    options.address = defaults.address;
    options.port = defaults.port;

    CLI::App app("Shows what the bonded lines of the Kelvaris daemon do, and hands it to other programs.",
                 "kelvaris-monitor");
    app.require_subcommand(1);
    app.fallthrough(); // address and port may also stand behind a command
    app.set_version_flag("--version", "kelvaris-monitor " KELVARIS_VERSION);
    // CLI11's newer versions pass over a variable that a check refuses, but not over one that can't be taken.
    app.add_option_function<std::string>(
           "--address",
           [&options](std::string const& word) {
               if (word.empty() || word.size() > longestAddress) {
                   throw CLI::ValidationError("--address", "is no address of 1 to 45 bytes: " + word);
               }
               if (word.find(':') != std::string::npos) {
                   throw CLI::ValidationError("--address", "is no IPv4 address or host name: " + word);
               }
               options.address = word;
           },
           "the daemon's IPv4 address or host name (" + options.address + ")")
        ->envname("KELVARIS_ADDRESS")
        ->type_name("ADDRESS");
    addNumber<std::uint16_t>(app, "--port", 1, 65535,
                             "the daemon's TCP port (" + std::to_string(options.port) + ")",
                             [&options](std::uint16_t value) { options.port = value; })
        ->envname("KELVARIS_PORT")
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
    } catch (CLI::RequiredError const& error) {
        // A word that is no command is what is wrong then, rather than that there is none.
        auto const unknown = app.remaining();
        return unknown.empty() ? endWith(app, error) : endWith(app, CLI::ExtrasError(unknown));
    } catch (CLI::ParseError const& error) {
        return endWith(app, error);
    }
    if (!hook.empty() && hook.front().empty()) {
        return endWith(app, CLI::ValidationError("--exec", "names no program"));
    }
    options.watch.hook = std::move(hook);
    return std::nullopt;
}

} // namespace monitor
