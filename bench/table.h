// The table has a line for each figure, with its ratio to each yardstick and whether it keeps its limits.

#pragma once

#include <limits>
#include <string>
#include <vector>

using Samples = std::vector<double>; // one a round

double median(Samples values);

enum class Unit { seconds, bytes, bytesPerSecond, perSecond, count };

struct Limit {
    double min = -std::numeric_limits<double>::infinity();
    double max = std::numeric_limits<double>::infinity();
};

// Measured in the same rounds; a yardstick that takes long may have fewer of them.
struct Yardstick {
    std::string name;
    Samples samples;
    Limit ratio = {}; // of the figure to the yardstick, round by round
};

class Table {
public:
    void add(std::string what, Unit unit, Samples const& samples,
             std::vector<Yardstick> const& yardsticks = {}, Limit limit = {});
    void addFailure(std::string what, std::string const& why);

    // False when a figure is over its limit or couldn't be had.
    bool print() const;

private:
    std::vector<std::vector<std::string>> rows{{"what", "median", "times the yardstick", "limit", ""},
                                               {"---", "---", "---", "---", "---"}};
    bool good = true;
};
