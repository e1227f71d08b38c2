// The live view in a real terminal emulator, which tmux is, against the simulated daemon.

#include "support/monitors.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <unistd.h>

using namespace harness;
using namespace std::chrono_literals;

namespace {

std::vector<std::string> const traffic = {"--traffic", "--seed", "7", "--interval", "200"};

// A terminal with a shell in it.
class Terminal {
public:
    Terminal(std::string const& environment, int columns, int rows)
        : socket("kelvaris" + std::to_string(getpid()) + "." + std::to_string(++count)) {
        tmux({"-f", "/dev/null", "new-session", "-d", "-x", std::to_string(columns), "-y",
              std::to_string(rows),
              "env -u TMUX -u COLUMNS -u LINES -u NO_COLOR PS1='ready$ ' " + environment +
                  " bash --norc --noprofile"});
        tmux({"set", "-g", "status", "off"});
        resize(columns, rows);
        await([](std::string const& shown) { return !shown.empty() && shown[0] == 'r'; }, "the prompt");
    }
    ~Terminal() {
        tmux({"kill-server"});
    }
    void resize(int columns, int rows) const {
        tmux({"resize-window", "-x", std::to_string(columns), "-y", std::to_string(rows)});
    }
    void keys(std::vector<std::string> keys) const {
        keys.insert(keys.begin(), "send-keys");
        tmux(keys);
    }
    void line(std::string const& text) const {
        keys({text, "Enter"});
    }
    std::string capture(std::vector<std::string> const& options = {}) const {
        std::vector<std::string> words = {"capture-pane", "-p"};
        words.insert(words.end(), options.begin(), options.end());
        return tmux(words);
    }
    std::string value(std::string const& format) const {
        return tmux({"display-message", "-p", format});
    }
    // What the shell runs.
    pid_t child() const {
        std::string const shell = std::to_string(std::stol(value("#{pane_pid}")));
        pid_t process = 0;
        std::ifstream("/proc/" + shell + "/task/" + shell + "/children") >> process;
        if (process <= 0) {
            throw std::runtime_error("the shell runs nothing");
        }
        return process;
    }
    template <class Predicate> std::string await(Predicate predicate, std::string const& what) const {
        std::string shown;
        EXPECT_TRUE(comesTrue([&] { return predicate(shown = capture()); }))
            << "in vain for " << what << ":\n"
            << shown;
        return shown;
    }
    std::string awaitText(std::string const& text) const {
        return await([&text](std::string const& shown) { return shown.find(text) != std::string::npos; },
                     text);
    }

private:
    std::string tmux(std::vector<std::string> words) const {
        words.insert(words.begin(), {"tmux", "-L", socket});
        return runProcess({.path = "/usr/bin/tmux", .argv = words}).out;
    }
    inline static int count = 0; // a server that ends would take a new one of its name along
    std::string const socket;
};

class MonitorTop : public testing::Test {
protected:
    std::string top(std::string const& words = "") const {
        return std::string(MONITOR_PATH) + " --port " + std::to_string(simulator->port) + " top " + words;
    }
    Folder const folder;
    std::optional<Simulator> simulator{traffic};
};

std::string const utf8 = "LANG=C.UTF-8 LC_ALL=C.UTF-8 TERM=screen-256color";

bool isAscii(std::string const& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char each) { return static_cast<unsigned char>(each) < 0x80; });
}

} // namespace

TEST_F(MonitorTop, FillsEachSizeAlsoWhenItChanges) {
    Terminal const terminal(utf8, 200, 50);
    terminal.line(top());
    std::string shown = terminal.awaitText("Mobile");
    shown = terminal.awaitText("of 20.0 GB");
    EXPECT_NE(shown.find("Connected  United States - New York City #1"), std::string::npos) << shown;
    terminal.resize(100, 30);
    // The terminal may show a picture that isn't whole yet.
    terminal.await(
        [](std::string const& now) {
            auto const keys = now.find("as reported");
            return keys != std::string::npos && keys == now.rfind("as reported") &&
                   now.find("latency") != std::string::npos && now.find("month") != std::string::npos;
        },
        "a card");
    EXPECT_NE(terminal.capture({"-e"}).find("\x1b[38;5;37m"), std::string::npos); // the graphs' colour
    terminal.resize(60, 20);
    terminal.await(
        [](std::string const& now) {
            return now.find("±") != std::string::npos && now.find("latency") == std::string::npos;
        },
        "narrow cards");
    terminal.resize(40, 10);
    terminal.await([](std::string const& now) { return now.find("\n● Satellite") != std::string::npos; },
                   "lines");
    terminal.resize(1, 1);
    terminal.await([](std::string const& now) { return now == "●\n"; }, "a dot");
    terminal.resize(100, 30);
    terminal.awaitText("of 20.0 GB");
    terminal.keys({"q"});
    terminal.awaitText("ready$");
}

TEST_F(MonitorTop, GivesTheTerminalBackAndTakesItAgain) {
    Terminal const terminal(utf8, 100, 30);
    terminal.line("cd " + folder.path + "; modes() { stty -a | sed 1d; }; modes >before; echo kept");
    terminal.awaitText("\nkept");
    terminal.line(top());
    terminal.awaitText("Mobile");
    EXPECT_EQ(terminal.value("#{alternate_on} #{cursor_flag}"), "1 0\n");
    terminal.keys({"C-z"});
    terminal.awaitText("Stopped");
    EXPECT_EQ(terminal.value("#{alternate_on} #{cursor_flag}"), "0 1\n");
    terminal.resize(60, 20); // which it learns of when it is back
    pid_t const process = terminal.child();
    terminal.line("fg");
    terminal.await([](std::string const& now) { return now.find("±") != std::string::npos; }, "narrow cards");
    kill(process, SIGTERM);
    terminal.awaitText("ready$");
    terminal.resize(100, 30);
    terminal.line("modes >after; clear; echo done");
    terminal.await([](std::string const& now) { return now.starts_with("done"); }, "the end");
    EXPECT_EQ(folder.contentOf("before"), folder.contentOf("after"));
    EXPECT_NE(folder.contentOf("before"), "");
    // The key that stops output elsewhere doesn't keep it from drawing.
    terminal.line("clear; " + top());
    terminal.awaitText("Mobile");
    terminal.keys({"C-s", "?"});
    terminal.awaitText("choose an adapter");
    kill(terminal.child(), SIGTERM);
    terminal.awaitText("ready$");
    // The other ends, by keys, of which the terminal makes signals of two, and by signals that nobody expects.
    auto const expectEnd = [&](std::string const& name, std::function<void()> const& end) {
        terminal.line("clear; " + top());
        terminal.awaitText("Mobile");
        end();
        terminal.awaitText("ready$");
        EXPECT_EQ(terminal.value("#{alternate_on} #{cursor_flag}"), "0 1\n") << name;
    };
    for (char const* const key : {"C-c", "C-\\", "q"}) {
        expectEnd(key, [&] { terminal.keys({key}); });
    }
    for (int const signal : {SIGUSR1, SIGSEGV}) {
        expectEnd(std::to_string(signal), [&] { kill(terminal.child(), signal); });
    }
    terminal.line("modes >after; clear; echo finished");
    terminal.await([](std::string const& now) { return now.starts_with("finished"); }, "the end");
    EXPECT_EQ(folder.contentOf("before"), folder.contentOf("after"));
}

TEST_F(MonitorTop, ShowsALostDaemonAndPicksItUpAgain) {
    Terminal const terminal(utf8, 100, 30);
    terminal.line(top());
    terminal.awaitText("Mobile");
    std::uint16_t const port = simulator->port;
    simulator->process.signal(SIGKILL);
    terminal.awaitText("Daemon lost");
    std::string const shown = terminal.awaitText("as of ");
    EXPECT_NE(shown.find("Mobile"), std::string::npos); // what was known stays
    simulator.emplace(traffic, port);
    terminal.awaitText("● Connected");
    terminal.await([](std::string const& now) { return now.find("as of") == std::string::npos; },
                   "fresh figures");
}

TEST_F(MonitorTop, ObeysItsKeys) {
    Terminal const terminal(utf8, 100, 30);
    terminal.line(top());
    terminal.awaitText("Mobile");
    terminal.keys({"?"});
    terminal.awaitText("choose an adapter");
    terminal.keys({"Escape"});
    terminal.awaitText("Mobile");
    terminal.keys({"b"});
    terminal.awaitText("B/s");
    terminal.keys({"Down", "Down", "Enter"});
    terminal.awaitText("Harbour Cafe");
    terminal.awaitText("highest");
    terminal.keys({"p"});
    terminal.awaitText("paused 2 s"); // it goes on counting
    terminal.keys({"p"});
    terminal.await([](std::string const& now) { return now.find("paused") == std::string::npos; }, "its end");
}

TEST_F(MonitorTop, ADaemonThatNeverCompletesTheUpgradeLeavesTheKeysAtWork) {
    ScriptedDaemon const daemon({}, {.upgrades = std::vector<Upgrade>(20, Upgrade{.bytes = "HTTP/1.1 101"})});
    Terminal const terminal(utf8, 100, 30);
    terminal.line(std::string(MONITOR_PATH) + " --port " + std::to_string(daemon.port()) +
                  " top; echo $((3 * 5))");
    terminal.awaitText("Looking for the daemon");
    terminal.keys({"?"});
    terminal.awaitText("choose an adapter");
    terminal.keys({"q"});
    terminal.awaitText("15");
}

// The library tells of them on the standard error output, which is the same terminal.
TEST_F(MonitorTop, ReportsThatCantBeReadLeaveThePictureAlone) {
    ScriptedDaemon daemon({}, {.appName = std::nullopt});
    Terminal const terminal(utf8, 100, 30);
    terminal.line(std::string(MONITOR_PATH) + " --port " + std::to_string(daemon.port()) + " top");
    daemon.waitForRequest("request_current_state");
    daemon.send(state(6));
    terminal.awaitText("Connected");
    daemon.send(R"(["report_current_state",{"state":)");
    daemon.send(state(5));
    std::string const shown = terminal.awaitText("Disconnecting");
    EXPECT_EQ(shown.find("JSON"), std::string::npos) << shown;
    terminal.keys({"q"});
    terminal.awaitText("ready$");
    static_cast<void>(daemon.finish()); // it says which requests it didn't expect
}

TEST_F(MonitorTop, EndsWithItsTerminal) {
    std::string const run = "echo $$ >" + folder.file("shell") + "; exec " + top();
    // The second one gets no signal, and its standard input doesn't end.
    for (std::string const& line : {run, "setsid sh -c '" + run + " </dev/null'"}) {
        std::optional<Terminal> terminal(std::in_place, utf8, 100, 30);
        terminal->line(line);
        terminal->awaitText("Mobile");
        auto const process = static_cast<pid_t>(std::stol(folder.contentOf("shell")));
        EXPECT_EQ(kill(process, 0), 0);
        terminal.reset();
        EXPECT_TRUE(comesTrue([process] { return kill(process, 0) != 0; })) << line;
    }
}

TEST_F(MonitorTop, IsAsciiWhereTheLocaleOrTheTerminalIs) {
    {
        Terminal const terminal("LANG=C LC_ALL=C TERM=screen", 60, 20);
        terminal.line(top());
        std::string const shown = terminal.awaitText("Mobile");
        EXPECT_TRUE(isAscii(shown)) << shown;
    }
    Terminal const terminal("LANG=C.UTF-8 LC_ALL=C.UTF-8 TERM=dumb", 100, 40);
    terminal.line("clear; " + top() + "; echo");
    std::string const shown = terminal.awaitText("Mobile");
    EXPECT_TRUE(isAscii(shown)) << shown;
    EXPECT_EQ(terminal.value("#{alternate_on}"), "0\n");
    terminal.keys({"C-c"});
}

TEST_F(MonitorTop, PrintsOnceAsText) {
    auto const shell = [this](std::string const& environment, std::string const& words) {
        return runProcess(
            {.path = "/bin/sh",
             .argv = {"sh", "-c", "env -u COLUMNS -u NO_COLOR " + environment + " " + top(words)}});
    };
    Outcome const plain = shell("LC_ALL=C.UTF-8", "");
    EXPECT_EQ(plain.status, 0) << plain.err;
    EXPECT_NE(plain.out.find("16.2 of 20.0 GB"), std::string::npos) << plain.out;
    EXPECT_EQ(plain.out.find('\x1b'), std::string::npos);
    EXPECT_EQ(plain.out.find("quit"), std::string::npos);
    Outcome const narrow = shell("LC_ALL=C COLUMNS=40", "--once");
    EXPECT_TRUE(isAscii(narrow.out));
    std::stringstream lines(narrow.out);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 40U) << line;
    }
    EXPECT_NE(narrow.out.find("* Mobile"), std::string::npos) << narrow.out;
    EXPECT_NE(shell("LC_ALL=C.UTF-8", "--once --color always").out.find("\x1b[0;36m"), std::string::npos);
    // Without a daemon it says so, as soon as that is known.
    simulator->process.signal(SIGKILL);
    simulator->process.wait();
    Outcome const lost = shell("LC_ALL=C.UTF-8", "--once");
    EXPECT_EQ(lost.status, 0);
    EXPECT_NE(lost.out.find("on 127.0.0.1:"), std::string::npos) << lost.out;
}
