// The commands of kelvaris-monitor as programs, against the simulated daemon, which comes and goes, and against daemons
// that misbehave.

#include "support/monitors.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace harness;
using namespace std::chrono_literals;

namespace {

Outcome runMonitor(std::uint16_t port, std::vector<std::string> const& words) {
    return runProcess(monitorCommand(port, words));
}

void tool(std::uint16_t port, std::vector<std::string> const& words) {
    Command command{.path = SDKCLI_PATH, .argv = {"sdkcli", "-p", std::to_string(port)}};
    command.argv.insert(command.argv.end(), words.begin(), words.end());
    EXPECT_EQ(runProcess(command).status, 0);
}

double secondsOf(std::function<void()> const& action) {
    auto const start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class MonitorRun : public testing::Test {
protected:
    void awaitContent(std::string const& name, std::string const& text) const {
        EXPECT_TRUE(comesTrue([&] { return folder.contentOf(name).find(text) != std::string::npos; }))
            << text << " isn't in:\n"
            << folder.contentOf(name);
    }
    Folder const folder;
};
TEST_F(MonitorRun, WrongWordsEndWithStatus2) {
    std::vector<std::vector<std::string>> const rows = {
        {},
        {"stare"},
        {"watch", "weather"},
        {"wait"},
        {"wait", "--for", "state:connected"},
        {"wait", "--for", "daemon", "--timeout", "-1"},
        {"wait", "--for", "daemon", "--timeout", "1s"},
        {"wait", "--for", "daemon", "--timeout", "nan"},
        {"--port", "0x2452", "wait", "--for", "daemon"},
        {"record", "--interval", "0"},
        {"record", "--count", "0"},
        {"record", "--count", "18446744073709551616"},
        {"record", ""},
        {"record", "a", "b"},
        {"watch", "--exec"},
        {"watch", "--exec", ""},
        {"watch", "--address", "::1"},
        {"--address", std::string(46, 'a'), "watch"},
    };
    for (auto const& words : rows) {
        Outcome const outcome = runMonitor(1, words);
        EXPECT_EQ(outcome.status, 2) << testing::PrintToString(words);
        EXPECT_NE(outcome.err, "");
        EXPECT_EQ(outcome.out, "");
    }
    for (auto const& [variable, value] : {std::pair("KELVARIS_PORT", std::string("none")),
                                          std::pair("KELVARIS_ADDRESS", std::string(46, 'a'))}) {
        setenv(variable, value.c_str(), 1);
        Outcome const outcome = runProcess({.path = MONITOR_PATH, .argv = {"kelvaris-monitor", "watch"}});
        EXPECT_EQ(outcome.status, 2) << variable;
        EXPECT_NE(outcome.err, "");
        unsetenv(variable);
    }
    EXPECT_NE(runMonitor(1, {"stare"}).err.find("stare"), std::string::npos);
    Outcome const full =
        runProcess({.path = "/bin/sh", .argv = {"sh", "-c", "exec \"$0\" --help >/dev/full", MONITOR_PATH}});
    EXPECT_EQ(full.status, 1);
    Outcome const help = runMonitor(1, {"wait", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--timeout"), std::string::npos);
}

TEST_F(MonitorRun, WaitEndsWithItsGoalItsTimeOutOrASignal) {
    std::uint16_t const port = freePort();
    EXPECT_EQ(runMonitor(port, {"wait", "--for", "daemon", "--timeout", "0.3"}).status, 124);
    Process daemon(monitorCommand(port, {"wait", "--for", "daemon"}));
    Process network(monitorCommand(port, {"wait", "--for", "network"}));
    Process connected(monitorCommand(port, {"wait", "--for", "state:CONNECTED"}));
    Process endless(monitorCommand(port, {"wait", "--for", "state:OVERLIMIT"}));
    Process interrupted(monitorCommand(port, {"wait", "--for", "state:OVERLIMIT"}));
    Process ignoring(
        {.path = "/bin/sh",
         .argv = {"sh", "-c", "trap '' HUP; exec \"$0\" --port \"$1\" wait --for state:CONNECTED",
                  MONITOR_PATH, std::to_string(port)}});

    // The daemon comes later than those who wait for it, and is killed before it is what they wait for.
    std::optional<Simulator> simulator(std::in_place, std::vector<std::string>{}, port);
    EXPECT_EQ(daemon.wait().status, 0);
    EXPECT_EQ(runMonitor(port, {"wait", "--for", "network", "--timeout", "0.5"}).status, 124);
    ignoring.signal(SIGHUP);
    simulator.reset();
    simulator.emplace(std::vector<std::string>{}, port);
    tool(port, {"connect", "us", "nyc"});
    EXPECT_EQ(connected.wait().status, 0);
    EXPECT_EQ(ignoring.wait().status, 0) << "a hang-up that nohup had it ignore ended it";
    EXPECT_EQ(network.wait().status, 0);
    EXPECT_EQ(network.out(), "");
    endless.signal(SIGTERM);
    EXPECT_EQ(endless.wait().status, 128 + SIGTERM);
    interrupted.signal(SIGINT);
    EXPECT_EQ(interrupted.wait().status, 128 + SIGINT);
}

TEST_F(MonitorRun, ADaemonThatNeverCompletesTheUpgradeHoldsNothingUp) {
    ScriptedDaemon const daemon({}, {.upgrades = std::vector<Upgrade>(20, Upgrade{.bytes = "HTTP/1.1 101"})});
    EXPECT_EQ(runMonitor(daemon.port(), {"wait", "--for", "daemon", "--timeout", "0.5"}).status, 124);
    Process watch(monitorCommand(daemon.port(), {"watch"}));
    watch.waitForOutput("\"event\":\"snapshot\"");
    Process record(monitorCommand(daemon.port(), {"record"}));
    record.waitForOutput("down");
    for (Process* const each : {&watch, &record}) {
        EXPECT_LT(secondsOf([each] {
                      each->signal(SIGTERM);
                      EXPECT_EQ(each->wait().status, 0);
                  }),
                  5);
    }
}

TEST_F(MonitorRun, WatchTellsOfEachChangeAndOfADaemonThatGoesAndComes) {
    std::uint16_t const port = freePort();
    std::optional<Simulator> simulator(std::in_place, std::vector<std::string>{}, port);
    Process watch(monitorCommand(port, {"watch", "link", "state", "server"}));
    watch.waitForOutput("\n");
    tool(port, {"connect", "us", "nyc"});
    watch.waitForOutput("\"CONNECTED\"");
    simulator.reset();
    watch.waitForOutput("\"lost\"");
    simulator.emplace(std::vector<std::string>{}, port);
    watch.waitForOutput(R"("event":"state","data":{"state":"LOGGED_IN"})");
    watch.signal(SIGINT);
    Outcome const& outcome = watch.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");

    std::istringstream lines(outcome.out);
    std::vector<std::string> told;
    for (std::string line; std::getline(lines, line);) {
        Json::Value const object = parsed(line);
        EXPECT_EQ(object["seq"].asUInt64(), told.size());
        EXPECT_EQ(object.size(), 4U);
        std::string const event = object["event"].asString();
        told.push_back(
            event + (event == "snapshot" || event == "server" ? "" : " " + object["data"][event].asString()));
    }
    // On a busy machine the link may be lost more than once, and then more is told.
    auto next = told.begin();
    for (char const* const each : {"snapshot", "state AUTO_CONNECTING", "state CONNECTING", "server",
                                   "state CONNECTED", "link lost", "link up", "state LOGGED_IN"}) {
        next = std::find(next, told.end(), each);
        ASSERT_NE(next, told.end()) << each << " isn't told, or not in its turn:\n" << outcome.out;
    }
}

TEST_F(MonitorRun, WatchTellsWhenAReadFailsAndWhenNoneDoesAnyMore) {
    ScriptedDaemon daemon({}, {.appName = std::nullopt});
    Process watch(monitorCommand(daemon.port(), {"watch", "error", "state"}));
    daemon.waitForRequest("request_current_state");
    daemon.send(state(6));
    watch.waitForOutput("CONNECTED");
    daemon.send(report("current_state", R"({"state":[]})"));
    watch.waitForOutput(R"("topic":"state")");
    daemon.send(state(5));
    watch.waitForOutput(R"("event":"error","data":[]})");
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait().status, 0);
    static_cast<void>(daemon.finish()); // it says which requests it didn't expect
}

TEST_F(MonitorRun, WatchDependsOnNoReader) {
    Simulator const simulator({"--interval", "5"});
    std::string const pipe = folder.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Command const command{.path = "/bin/sh",
                          .argv = {"sh", "-c", "exec \"$0\" --port \"$1\" watch >\"$2\"", MONITOR_PATH,
                                   std::to_string(simulator.port), pipe}};
    for (bool const isStalled : {true, false}) {
        int const reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        Process watch(command);
        pollfd writer{open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC), POLLOUT, 0};
        EXPECT_TRUE(comesTrue([&writer] { return poll(&writer, 1, 0) == 0; }));
        close(writer.fd);
        if (isStalled) {
            watch.signal(SIGTERM);
            EXPECT_EQ(watch.wait().status, 0) << "a full pipe mustn't hold up a signal";
        }
        close(reader);
        if (!isStalled) {
            EXPECT_EQ(watch.wait().status, 0) << "a reader that has gone is the end, and no error";
        }
    }
}

TEST_F(MonitorRun, HookGetsTheObjectAndNoShell) {
    Simulator const simulator;
    std::string const script =
        "cat >\"$1\"; printf '%s|%s|%s' \"$2\" \"$KELVARIS_EVENT\" \"$KELVARIS_DATA\" >\"$1.var\"; "
        "mv \"$1.var\" \"$1.done\"; exit 3";
    Process watch(monitorCommand(simulator.port, {"watch", "state", "--exec=sh", "-c", script, "--help",
                                                  folder.file("object"), "$(id) ; --port"}));
    watch.waitForOutput("sh ended with status 3");
    Json::Value const object = parsed(folder.contentOf("object"));
    EXPECT_EQ(object["event"], "snapshot");
    EXPECT_EQ(folder.contentOf("object.done"),
              "$(id) ; --port|snapshot|{\"state\":{\"state\":\"LOGGED_IN\"}}");
    watch.signal(SIGTERM);
    EXPECT_EQ(watch.wait().status, 0);
    EXPECT_EQ(watch.out(), "") << "the hook takes the place of the lines";

    Process missing(monitorCommand(simulator.port, {"watch", "--exec", "/nowhere/hook"}));
    missing.waitForOutput("/nowhere/hook can't be started: No such file or directory");
}

TEST_F(MonitorRun, HookThatHangsIsKilledWithItsChildrenAndTheNewestEventIsNext) {
    Simulator const simulator({"--interval", "20"});
    // It ignores the request to end, and so does its child, which holds a lock for as long as it lives.
    std::string const script = "trap '' TERM; echo $KELVARIS_SEQ >>\"$1/seen\"; mkfifo \"$1/$KELVARIS_SEQ\"; "
                               "exec 9<>\"$1/$KELVARIS_SEQ\"; (sleep 100; true) & wait";
    Process watch(monitorCommand(
        simulator.port, {"watch", "--exec-timeout", "0.3", "--exec", "sh", "-c", script, "sh", folder.path}));
    watch.waitForOutput("sh took longer than 0.3 s and was killed");
    int first = -1;
    int second = -1;
    EXPECT_TRUE(
        comesTrue([&] { return !!(std::istringstream(folder.contentOf("seen")) >> first >> second); }));
    EXPECT_EQ(first, 0);
    EXPECT_GT(second, 20) << "1.3 s of reports came meanwhile, and the oldest of them must not be next";
    EXPECT_TRUE(comesTrue([&] {
        int const held = open(folder.file("0").c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        close(held);
        return held < 0;
    })) << "the child of the first hook still lives";
    EXPECT_LT(secondsOf([&] {
                  watch.signal(SIGTERM);
                  EXPECT_EQ(watch.wait().status, 0);
              }),
              4);
}

TEST_F(MonitorRun, RecordAddsToItsFileReopensItAndSeesADaemonGo) {
    std::uint16_t const port = freePort();
    std::optional<Simulator> simulator(std::in_place, std::vector<std::string>{}, port);
    std::string const file = folder.file("r.csv");
    EXPECT_EQ(runMonitor(port, {"record", file, "--count", "2", "--interval", "0.05"}).status, 0);
    std::string const before = folder.contentOf("r.csv");
    EXPECT_EQ(before.find("time,"), 0U);
    EXPECT_EQ(std::count(before.begin(), before.end(), '\n'), 1 + 2 * 4); // adapters

    Process record(monitorCommand(port, {"record", file, "--interval", "0.05"}));
    EXPECT_TRUE(comesTrue([&] { return folder.contentOf("r.csv").size() > before.size(); }));
    std::filesystem::rename(file, folder.file("old.csv"));
    record.signal(SIGHUP);
    awaitContent("r.csv", "Wired");
    EXPECT_EQ(folder.contentOf("r.csv").find("time,"), 0U) << "a new file has a header";
    EXPECT_EQ(folder.contentOf("old.csv").find("time,", 1), std::string::npos) << "an old one has one";
    simulator.reset();
    awaitContent("r.csv", "Z,down,,,,");
    simulator.emplace(std::vector<std::string>{}, port);
    std::filesystem::rename(file, folder.file("older.csv"));
    std::ofstream(file) << "half a line";
    record.signal(SIGHUP);
    awaitContent("r.csv", "Wired");
    EXPECT_EQ(folder.contentOf("r.csv").find("half a line\n2"), 0U);
    record.signal(SIGTERM);
    Outcome const& outcome = record.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(MonitorRun, RecordOnAFullDiskIsAnError) {
    Simulator const simulator;
    Outcome const closed = runProcess({.path = "/bin/sh",
                                       .argv = {"sh", "-c", "exec \"$0\" --port \"$1\" record >&-",
                                                MONITOR_PATH, std::to_string(simulator.port)}});
    EXPECT_EQ(closed.status, 1);
    EXPECT_EQ(closed.err, "kelvaris-monitor: standard output: Bad file descriptor\n");
    for (std::string const file : {"/dev/full", "/nowhere/r.csv"}) {
        Outcome const outcome = runMonitor(simulator.port, {"record", file});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.err.find(file), std::string::npos) << outcome.err;
    }
    // A file that must not grow: the rows before the limit stay whole.
    Outcome const outcome = runProcess(
        {.path = "/bin/sh",
         .argv = {"sh", "-c", "ulimit -f 2; exec \"$0\" --port \"$1\" record \"$2\" --interval 0.01",
                  MONITOR_PATH, std::to_string(simulator.port), folder.file("small.csv")}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("File too large"), std::string::npos) << outcome.err;
    EXPECT_TRUE(folder.contentOf("small.csv").ends_with('\n'));
}

} // namespace
