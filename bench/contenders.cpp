#include "contenders.h"

#include <sstream>
#include <stdexcept>

Samples pick(std::vector<Run> const& runs, double Run::*member) {
    Samples samples;
    for (Run const& each : runs) {
        samples.push_back(each.*member);
    }
    return samples;
}

Contenders::Contenders(std::string binaries) : bin(std::move(binaries)) {}

std::string Contenders::program(std::string const& name) const {
    return bin + '/' + name;
}

std::vector<std::string> Contenders::toolCommand(std::string const& path, Daemon const& daemon,
                                                 std::string const& words) const {
    std::vector<std::string> argv{path, "-p", daemon.port()};
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        argv.push_back(word);
    }
    return argv;
}

std::function<Run()> Contenders::sdkcli(Daemon const& daemon, std::string const& words) const {
    return [argv = toolCommand(program("sdkcli"), daemon, words)] { return run(argv); };
}

std::function<Run()> Contenders::yardstick(std::string const& name, Daemon const& daemon,
                                           std::string const& action) const {
    return [argv = std::vector{program(name), daemon.port(), action}] { return run(argv); };
}

double Contenders::minimal(std::string const& port, std::string const& mode, int count, int last) const {
    return numberOf({program("minimal"), port, mode, std::to_string(count), std::to_string(last)});
}

double Contenders::peakMemory(std::vector<std::string> argv) const {
    argv.insert(argv.begin(), program("peak"));
    return numberOf(argv);
}

Json::Value Contenders::inProcess(std::string const& benchmark) const {
    Run const measured =
        run({program("engine_bench"), "--benchmark_filter=^" + benchmark + "/", "--benchmark_format=json"});
    if (measured.output.empty()) {
        throw std::runtime_error("no benchmark " + benchmark);
    }
    std::istringstream output(measured.output);
    Json::Value document;
    output >> document;
    return document["benchmarks"][0];
}

std::function<double()> Contenders::inProcess(std::string const& benchmark,
                                              std::string const& counter) const {
    return [=, this] { return inProcess(benchmark)[counter].asDouble(); };
}

double Contenders::numberOf(std::vector<std::string> const& argv) {
    return std::stod(run(argv).output);
}
