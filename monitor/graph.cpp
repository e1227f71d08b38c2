#include "graph.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace monitor {

namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
constexpr std::chrono::seconds longestBetweenReports{5};

// Dots of a cell's two columns, from the lowest one up.
constexpr std::array<std::array<unsigned, 4>, 2> dots = {
    {{0x40, 0x04, 0x02, 0x01}, {0x80, 0x20, 0x10, 0x08}}};
constexpr std::u32string_view blocks = U" ▁▂▃▄▅▆▇█";
constexpr std::u32string_view letters = U" .:|#";

int stepsPerRow(GraphKind kind) {
    return kind == GraphKind::braille
               ? 4
               : static_cast<int>(kind == GraphKind::block ? blocks.size() : letters.size()) - 1;
}

// How high a value stands, in the steps of a row.
int heightOf(double value, double top, int most) {
    if (std::isnan(value)) {
        return 0;
    }
    double const part = top > 0 ? std::clamp(value / top, 0.0, 1.0) : 0;
    return std::max(static_cast<int>(std::lround(part * most)), 1);
}

char32_t brailleCell(int left, int right) {
    unsigned bits = 0;
    for (int i = 0; i < 4; ++i) {
        bits |= (i < left ? dots[0][static_cast<unsigned>(i)] : 0) |
                (i < right ? dots[1][static_cast<unsigned>(i)] : 0);
    }
    return bits == 0 ? U' ' : U'\u2800' + bits;
}

} // namespace

std::vector<double> graphValues(std::deque<Traffic> const& samples, double Traffic::*member,
                                Clock::time_point now, GraphStep step, int count) {
    auto const stepOf = [step](Clock::time_point time) { return time.time_since_epoch() / step; };
    auto const first = stepOf(now) - count + 1;
    auto const size = static_cast<std::size_t>(std::max(count, 0));
    std::vector<double> values(size, nothing);
    std::vector<int> counts(size);
    double held = nothing; // of the newest sample before the first step
    Clock::time_point heldSince;
    auto sample = samples.end();
    while (sample != samples.begin() && stepOf(std::prev(sample)->time) >= first) {
        --sample;
    }
    if (sample != samples.begin()) {
        held = *std::prev(sample).*member;
        heldSince = std::prev(sample)->time;
    }
    for (std::size_t i = 0; i < size; ++i) {
        auto const here = first + static_cast<Clock::rep>(i);
        double sum = 0;
        int many = 0;
        for (; sample != samples.end() && stepOf(sample->time) == here; ++sample, ++many) {
            sum += *sample.*member;
            held = *sample.*member;
            heldSince = sample->time;
        }
        if (many > 0) {
            values[i] = sum / many;
        } else if (here - stepOf(heldSince) <= std::max<Clock::rep>(longestBetweenReports / step, 1)) {
            values[i] = held;
        }
    }
    return values;
}

double roundScale(double number, double unit) {
    number /= unit;
    if (!(number > 1)) {
        return unit;
    }
    double const power = std::pow(10, std::floor(std::log10(number)));
    for (double const factor : {1.0, 2.0, 5.0}) {
        if (number <= factor * power * (1 + 1e-9)) {
            return factor * power * unit;
        }
    }
    return 10 * power * unit;
}

double largest(std::vector<double> const& values) {
    double most = 0;
    for (double const each : values) {
        most = std::max(most, std::isnan(each) ? 0 : each);
    }
    return most;
}

std::vector<std::u32string> drawGraph(std::vector<double> const& values, double top, int rows,
                                      GraphKind kind) {
    int const perRow = stepsPerRow(kind);
    std::vector<int> heights;
    heights.reserve(values.size() + 1);
    for (double const each : values) {
        heights.push_back(heightOf(each, top, perRow * rows));
    }
    std::vector<std::u32string> drawn(static_cast<std::size_t>(std::max(rows, 0)));
    for (int row = 0; row < rows; ++row) {
        std::u32string& text = drawn[static_cast<std::size_t>(row)];
        auto const here = [below = perRow * (rows - 1 - row), perRow](int height) {
            return std::clamp(height - below, 0, perRow);
        };
        for (std::size_t i = 0; i < heights.size(); i += static_cast<std::size_t>(valuesPerCell(kind))) {
            if (kind == GraphKind::braille) {
                text += brailleCell(here(heights[i]), i + 1 < heights.size() ? here(heights[i + 1]) : 0);
            } else {
                text +=
                    (kind == GraphKind::block ? blocks : letters)[static_cast<std::size_t>(here(heights[i]))];
            }
        }
    }
    return drawn;
}

} // namespace monitor
