// Measures the tool and the library against their yardsticks and prints the table. What is compared runs in
// interleaved rounds, each round beginning with another contender, so that a slow minute of the machine hits
// all alike.
//
//   driver BINARIES LIBRARY SHARED_TOOL [NODE_FOLDER]
//
// SHARED_TOOL is the tool built with the shared jsoncpp. NODE_FOLDER holds state.mjs and the package it needs; without
// it those columns stay out.

#include "contenders.h"
#include "process.h"
#include "table.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <json/json.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr double mebi = 1 << 20;

class Bench : Contenders {
public:
    Bench(std::string const& binaries, std::string theLibrary, std::string theSharedTool,
          std::string nodeFolder)
        : Contenders(binaries),
          library(std::move(theLibrary)),
          sharedTool(std::move(theSharedTool)),
          node(std::move(nodeFolder)) {
        setenv("SIMULATOR_PORT", simulator.port().c_str(), 1);
        setenv("CLOSING_PORT", closing.port().c_str(), 1);
        setenv("LOAD_PORT", load.port().c_str(), 1);
        setenv("KELVARISSDK_LIBRARY", library.c_str(), 1);
    }

    bool measureAll() {
        section("sdkcli state", [this] { stateRuns(); });
        section("sdkcli firewall domains add x", [this] { firewallRuns(); });
        section("sdkcli show servers, 400 servers", [this] { directoryRuns(); });
        section("report of 400 servers, handled", [this] { directoryReports(); });
        section("no daemon", [this] { noDaemon(); });
        section("call on an idle link", [this] { idleCalls(); });
        section("calls one at a time, pinned", [this] { pinnedCalls(); });
        section("reads at once", [this] { readsAtOnce(); });
        section("destroying an idle handle", [this] { destroying(); });
        section("bursts", [this] { bursts(); });
        section("messages", [this] { messages(); });
        section("an idle handle", [this] { idleHandles(); });
        section("in a host", [this] { inAHost(); });
        section("growth", [this] { growth(); });
        section("the C++ layer", [this] { cppLayer(); });
        section("the Python layer", [this] { pythonLayer(); });
        section("kelvaris-monitor", [this] { monitor(); });
        return table.print();
    }

private:
    // What fails is a row of the table; the others are measured all the same.
    void section(std::string const& what, std::function<void()> const& measure) {
        std::fprintf(stderr, "measuring: %s\n", what.c_str());
        try {
            measure();
        } catch (std::exception const& failure) {
            table.addFailure(what, failure.what());
        }
    }

    std::vector<std::string> nodeCommand(std::string const& port) const {
        return {"node", node + "/state.mjs", port};
    }

    void stateRuns() {
        std::vector<std::string> const shared = toolCommand(sharedTool, simulator, "state");
        auto const runs =
            interleave<Run>(201, {sdkcli(simulator, "state"), yardstick("minimal", simulator, "run"),
                                  yardstick("minimal_cpp", simulator, "state"),
                                  yardstick("beast", simulator, "run"), [&shared] { return run(shared); }});
        auto const row = [&](std::string const& what, double Run::*member, Limit c, Limit cpp) {
            table.add("sdkcli state, " + what, Unit::seconds, pick(runs[0], member),
                      {{"C", pick(runs[1], member), c},
                       {"C++", pick(runs[2], member), cpp},
                       {"Beast", pick(runs[3], member)}});
        };
        row("wall", &Run::wall, {.max = 1.7}, {.max = 0.85});
        row("user and system time", &Run::cpu, {}, {.max = 1.5});
        table.add("the same with the shared jsoncpp, wall", Unit::seconds, pick(runs[4], &Run::wall),
                  {{"C++", pick(runs[2], &Run::wall), {.max = 1.2}}});
        addPeakMemory("sdkcli state, peak memory", simulator, "state", 4.5 * mebi);
        if (!node.empty()) {
            addStateBesideNode();
        }
    }

    void addPeakMemory(std::string const& what, Daemon const& daemon, std::string const& words,
                       double limit) {
        auto const tool = toolCommand(program("sdkcli"), daemon, words);
        auto const peaks = interleave<double>(11, {[&] { return peakMemory(tool); }});
        table.add(what, Unit::bytes, peaks[0], {}, {.max = limit});
    }

    void addStateBesideNode() {
        auto const runs = interleave<Run>(15, {sdkcli(simulator, "state"), [this] {
                                                   auto argv = nodeCommand(simulator.port());
                                                   argv.emplace_back("run");
                                                   return run(argv);
                                               }});
        table.add("the same beside Node, wall", Unit::seconds, pick(runs[0], &Run::wall),
                  {{"Node ws", pick(runs[1], &Run::wall)}});
    }

    void firewallRuns() {
        auto const clear = sdkcli(simulator, "firewall domains set");
        auto const add = sdkcli(simulator, "firewall domains add x");
        auto const runs = interleave<Run>(101, {[&] {
                                                    clear();
                                                    return add();
                                                },
                                                sdkcli(simulator, "state")});
        table.add("sdkcli firewall domains add x, wall", Unit::seconds, pick(runs[0], &Run::wall),
                  {{"state", pick(runs[1], &Run::wall), {.max = 1.15}}});
    }

    void directoryRuns() {
        auto const tool = sdkcli(load, "show servers");
        auto const yardstickCpp = yardstick("minimal_cpp", load, "servers");
        if (tool().output != yardstickCpp().output) {
            throw std::runtime_error("the documents differ");
        }
        auto const runs = interleave<Run>(101, {tool, yardstickCpp, sdkcli(load, "state")});
        table.add("sdkcli show servers, 400 servers, wall", Unit::seconds, pick(runs[0], &Run::wall),
                  {{"C++", pick(runs[1], &Run::wall), {.max = 1.0}}, {"state", pick(runs[2], &Run::wall)}});
        addPeakMemory("sdkcli show servers, peak memory", load, "show servers", 8 * mebi);
    }

    void directoryReports() {
        auto const times = interleave<double>(
            5, {inProcess("deliveredDirectory/200", "median"), inProcess("parse/directory", "median")});
        table.add("report of 400 servers, handled", Unit::seconds, times[0],
                  {{"jsoncpp's parse", times[1], {.max = 1.3}}});
    }

    void noDaemon() {
        ClosedPort const nobody;
        std::vector<Run> runs;
        for (int i = 0; i < 3; ++i) {
            runs.push_back(run({program("sdkcli"), "-p", nobody.port(), "state"}, 1));
        }
        table.add("sdkcli state, no daemon, wall", Unit::seconds, pick(runs, &Run::wall), {},
                  {.min = 5.0, .max = 5.4});
        table.add("the same, user and system time", Unit::seconds, pick(runs, &Run::cpu), {}, {.max = 0.02});
    }

    void idleCalls() {
        addIdleCalls("call on an idle link", simulator, {}, {.max = 0.3e-3});
    }

    void addIdleCalls(std::string const& what, Daemon const& daemon, Limit c, Limit absolute) {
        auto const times = interleave<double>(5, {inProcess("idleCall", "median"), [&] {
                                                      return minimal(daemon.port(), "loop", 300, 2000) / 1e6;
                                                  }});
        table.add(what, Unit::seconds, times[0], {{"C", times[1], c}}, absolute);
    }

    // A daemon of its own, on the processor that its clients run on.
    void pinnedCalls() {
        Pinned const pinned;
        Daemon const daemon({program("kelvarissim"), "--port", "0"});
        setenv("SIMULATOR_PORT", daemon.port().c_str(), 1);
        constexpr int count = 5000;
        Rounds<double> contenders{
            inProcess("calls", "items_per_second"), [&] { return minimal(daemon.port(), "loop", count, 0); },
            [&] {
                return numberOf({program("beast"), daemon.port(), "loop", std::to_string(count)});
            }};
        if (!node.empty()) {
            contenders.push_back([&] {
                auto argv = nodeCommand(daemon.port());
                argv.insert(argv.end(), {"loop", std::to_string(count)});
                return numberOf(argv);
            });
        }
        auto const rates = interleave(15, contenders);
        std::vector<Yardstick> yardsticks{{"C", rates[1], {.min = 0.48}}, {"Beast", rates[2]}};
        if (!node.empty()) {
            yardsticks.push_back({"Node ws", rates[3]});
        }
        table.add("calls one at a time, pinned", Unit::perSecond, rates[0], yardsticks);
        addIdleCalls("call on an idle link, pinned", daemon, {.max = 3}, {});
        addReadsAtOnce("reads at once on one handle, pinned", {});
        setenv("SIMULATOR_PORT", simulator.port().c_str(), 1);
    }

    // On one processor there is little to gain: most of a call is parsing and writing JSON, here and in the daemon.
    void readsAtOnce() {
        addReadsAtOnce("reads at once on one handle, not pinned", {.min = 1.5});
    }

    void addReadsAtOnce(std::string const& what, Limit limit) {
        auto const rates = interleave<double>(
            7, {inProcess("readsAtOnce", "items_per_second"), inProcess("readsInTurn", "items_per_second")});
        table.add(what, Unit::perSecond, rates[0], {{"one thread", rates[1], limit}});
    }

    void destroying() {
        auto const times = interleave<double>(5, {inProcess("destroyIdle", "median")});
        table.add("destroying an idle handle", Unit::seconds, times[0], {}, {.max = 2e-3});
    }

    void bursts() {
        auto const times = interleave<double>(15, {inProcess("framed/10000", "median"), [this] {
                                                       return minimal(load.port(), "receive", 10000, 0);
                                                   }});
        table.add("10,000 reports, framed", Unit::seconds, times[0], {{"C", times[1]}}, {.max = 3e-3});
        auto const framed = interleave<double>(
            7, {inProcess("framed/100000", "cpuPerReport"), inProcess("framed/1000", "cpuPerReport")});
        table.add("a report of 100,000, framed, processor time", Unit::seconds, framed[0],
                  {{"one of 1,000", framed[1], {.max = 1.2}}});
        auto const delivered = interleave<double>(7, {inProcess("delivered/100000", "median"),
                                                      inProcess("delivered/1000", "median"),
                                                      inProcess("parse/state", "median")});
        table.add("a report of 100,000, delivered", Unit::seconds, delivered[0],
                  {{"one of 1,000", delivered[1], {.max = 1.2}}, {"jsoncpp's parse", delivered[2]}});
        auto const costs = interleave<double>(
            7, {inProcess("delivered/100000", "cpuPerReport"), inProcess("delivered/1000", "cpuPerReport")});
        table.add("the same, processor time of the reader", Unit::seconds, costs[0],
                  {{"one of 1,000", costs[1]}});
    }

    void messages() {
        addMessages("messages of 64 KiB", 1000, 64 << 10);
        addMessages("messages of 1 MiB", 64, 1 << 20);
    }

    void addMessages(std::string const& what, int count, int size) {
        std::string const name = "message/" + std::to_string(count) + '/' + std::to_string(size);
        auto const rates = interleave<double>(21, {inProcess(name, "bytes_per_second"), [&] {
                                                       return count * double(size) /
                                                              minimal(load.port(), "receive", count, size);
                                                   }});
        table.add(what, Unit::bytesPerSecond, rates[0], {{"C", rates[1], {.min = 0.8}}});
    }

    // Nothing but the attempts to connect has ticks, and nothing but the repeats of a subscription a clock.
    void idleHandles() {
        constexpr double noTicks = 0.1;
        constexpr double attempts = 4.5;
        constexpr double asleep = 0.05e-3;
        table.add("threads of a handle without statistics", Unit::count,
                  {addIdleHandle("linked", "idleLinked", noTicks, asleep)}, {}, {.max = 1});
        addIdleHandle("linked, statistics on", "idleSubscribed", noTicks, asleep);
        addIdleHandle("link closing", "idleClosing", noTicks, asleep);
        addIdleHandle("no daemon", "idleWithoutDaemon", attempts, 0.01);
        addIdleHandle("upgrade unanswered", "idleUnanswered", noTicks, asleep);
    }

    // Returns the number of its threads.
    double addIdleHandle(std::string const& what, std::string const& benchmark, double wakeUps,
                         double seconds) {
        Json::Value const figures = inProcess(benchmark);
        table.add("an idle handle, " + what + ", wake-ups", Unit::perSecond, {figures["wakeUps"].asDouble()},
                  {}, {.max = wakeUps});
        table.add("the same, processor time of a second", Unit::seconds, {figures["cpu"].asDouble()}, {},
                  {.max = seconds});
        return figures["threads"].asDouble();
    }

    void inAHost() {
        std::string const host = program("host");
        table.add("stack of the largest call, over its record", Unit::bytes,
                  {numberOf({host, library, "stack", simulator.port()})}, {}, {.max = 8192});
        table.add("growth of a host, loaded and unloaded 200 times", Unit::bytes,
                  {numberOf({host, library, "reload", simulator.port(), "200"})}, {}, {.max = 2 * mebi});
    }

    // Less than three bytes a report is what the buffers' sizes may differ by.
    void growth() {
        table.add("growth of a handle over 100,000 reports", Unit::bytes,
                  {inProcess("growth")["KiB"].asDouble() * 1024}, {}, {.max = mebi / 4});
    }

    void cppLayer() {
        Samples layered;
        Samples plain;
        for (int round = 0; round < 7; ++round) {
            Json::Value const figures = inProcess("cppCall");
            layered.push_back(figures["cpp"].asDouble());
            plain.push_back(figures["c"].asDouble());
        }
        table.add("a blocking call through C++", Unit::seconds, layered, {{"C's", plain, {.max = 1.1}}});
        addQueuedReports("a report delivered by the C++ queue", "median");
        addQueuedReports("the same, processor time of both threads", "cpuPerReport");
        table.add("growth over 100,000 reports and a slow consumer", Unit::bytes,
                  {inProcess("cppGrowth")["KiB"].asDouble() * 1024}, {}, {.max = mebi / 4});
    }

    // Of a burst of 1,000, beside a callback's.
    void addQueuedReports(std::string const& what, std::string const& counter) {
        auto const times = interleave<double>(
            7, {inProcess("cppDelivered/1000", counter), inProcess("delivered/1000", counter)});
        Samples more;
        for (std::size_t round = 0; round < times[0].size(); ++round) {
            more.push_back(times[0][round] - times[1][round]);
        }
        table.add(what, Unit::seconds, times[0], {{"C's", times[1]}});
        table.add("the same, more than C's", Unit::seconds, more, {}, {.max = 3e-6});
    }

    void pythonLayer() {
        auto const python = [](Daemon const& daemon, std::string const& what) {
            return [argv = std::vector<std::string>{"python3", PYTHON_BENCH, daemon.port(), what}] {
                return numberOf(argv);
            };
        };
        {
            Pinned const pinned;
            Daemon const daemon({program("kelvarissim"), "--port", "0"});
            auto const rates = interleave<double>(7, {python(daemon, "calls"), python(daemon, "ctypes")});
            table.add("blocking calls by Python, pinned", Unit::perSecond, rates[0],
                      {{"ctypes alone", rates[1]}}, {.min = 5000});
        }
        table.add("reports through Python's asyncio", Unit::perSecond,
                  interleave<double>(7, {python(load, "reports")})[0], {}, {.min = 2000});
    }

    void monitor() {
        Daemon const traffic({program("kelvarissim"), "--port", "0", "--traffic"});
        auto const measure = [&](std::string const& what) {
            return numberOf({"python3", MONITOR_BENCH, program("kelvaris-monitor"), traffic.port(), what});
        };
        auto const add = [&](std::string const& name, Unit unit, int rounds, std::string const& what,
                             double limit) {
            Samples samples;
            for (int round = 0; round < rounds; ++round) {
                samples.push_back(measure(what));
            }
            table.add("kelvaris-monitor " + name, unit, samples, {}, {.max = limit});
        };
        add("top, start to the first picture", Unit::seconds, 21, "picture", 0.05);
        add("top, processor time of a second", Unit::seconds, 1, "top", 0.01);
        add("top, memory", Unit::bytes, 1, "memory", 10 * mebi);
        add("watch, processor time of a report", Unit::seconds, 1, "watch", 1e-3);
        add("export, a scrape", Unit::seconds, 3, "scrape", 2e-3);
    }

    std::string const library;
    std::string const sharedTool;
    std::string const node; // empty: no Node
    Daemon const simulator{{program("kelvarissim"), "--port", "0"}};
    Daemon const closing{{program("kelvarissim"), "--port", "0", "--close-frame-after", "1"}};
    Daemon const load{{program("loaddaemon")}};
    Table table;
};

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 4) {
        std::fputs("usage: driver BINARIES LIBRARY SHARED_TOOL [NODE_FOLDER]\n", stderr);
        return 2;
    }
    try {
        return Bench(argv[1], argv[2], argv[3], argc > 4 ? argv[4] : "").measureAll() ? 0 : 1;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "driver: %s\n", failure.what());
        return 2;
    }
}
