#pragma once

#include "snapshot.h"

#include <string>
#include <vector>

namespace monitor {

enum class GraphKind { braille, block, ascii };

// How many values stand side by side in a cell.
constexpr int valuesPerCell(GraphKind kind) {
    return kind == GraphKind::braille ? 2 : 1;
}

// The time that a value stands for. Values keep to the times that this divides, so that a graph moves but doesn't change.
using GraphStep = Clock::duration;

// The values of a graph that ends now, oldest first: of each step the mean of its samples. A step without a sample has the
// value of the one before it, for as long as reports may take; then nothing is known, which is NaN.
std::vector<double> graphValues(std::deque<Traffic> const& samples, double Traffic::*member,
                                Clock::time_point now, GraphStep step, int count);

// The next number from 1, 2, 5, 10, 20 and so on of a unit that isn't below this one.
double roundScale(double number, double unit = 1);
// The largest of the values, 0 when there is none.
double largest(std::vector<double> const& values);

// Rows of a filled graph, the uppermost first, in which `top` is as high as all of them. What is known stands on a base
// line, so that no traffic differs from nothing known.
std::vector<std::u32string> drawGraph(std::vector<double> const& values, double top, int rows,
                                      GraphKind kind);

} // namespace monitor
