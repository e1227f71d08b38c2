// The contenders are what is measured and what it is compared with: programs, the daemons that serve them, and the
// measurements inside one process.

#pragma once

#include "process.h"
#include "table.h"

#include <functional>
#include <json/json.h>
#include <string>
#include <utility>
#include <vector>

template <class T> using Rounds = std::vector<std::function<T()>>;

// Result by contender, then by round. Each round begins with another contender; the first round warms up and doesn't
// count.
template <class T> std::vector<std::vector<T>> interleave(int rounds, Rounds<T> const& contenders) {
    std::vector<std::vector<T>> results(contenders.size());
    for (int round = -1; round < rounds; ++round) {
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            std::size_t const which = (static_cast<std::size_t>(round + 1) + i) % contenders.size();
            T result = contenders[which]();
            if (round >= 0) {
                results[which].push_back(std::move(result));
            }
        }
    }
    return results;
}

Samples pick(std::vector<Run> const& runs, double Run::*member);

class Contenders {
public:
    explicit Contenders(std::string binaries);

    std::string program(std::string const& name) const;
    // The tool; its words are separated by spaces.
    std::vector<std::string> toolCommand(std::string const& path, Daemon const& daemon,
                                         std::string const& words) const;
    std::function<Run()> sdkcli(Daemon const& daemon, std::string const& words) const;
    std::function<Run()> yardstick(std::string const& name, Daemon const& daemon,
                                   std::string const& action) const;
    double minimal(std::string const& port, std::string const& mode, int count, int last) const;
    // Returns the peak of resident memory, in bytes.
    double peakMemory(std::vector<std::string> argv) const;

    Json::Value inProcess(std::string const& benchmark) const;
    std::function<double()> inProcess(std::string const& benchmark, std::string const& counter) const;

    // Returns the one number that a program prints.
    static double numberOf(std::vector<std::string> const& argv);

private:
    std::string const bin;
};
