#pragma once

#include "format.h"
#include "graph.h"
#include "grid.h"
#include "snapshot.h"

namespace monitor {

enum class Sort { reported, name, rate, latency };
constexpr unsigned sortCount = 4;

// What has been chosen with keys and options, and the moment for which a picture is drawn.
struct ViewState {
    std::string daemon; // its address and port
    bool isAscii = false;
    GraphKind graph = GraphKind::braille;
    Unit unit = Unit::bits;
    Sort sort = Sort::reported;
    std::optional<double> scale; // bits per second at the top of all graphs; nothing: each has its own
    std::string chosen;          // the id of an adapter
    bool isFull = false;         // the chosen one's graphs fill the width
    bool isHelp = false;
    bool isPrinted = false; // as text: without keys, and with as many rows as it takes
    std::optional<Clock::time_point> pausedSince;
    Clock::time_point now;
    WallClock::time_point wallNow;
};

// Every size is drawn, with less in it as it shrinks. A printed picture is as high as it has to be.
Grid drawView(Snapshot const& snapshot, ViewState const& view, Size size);

// The ids of the adapters in the order in which they are shown.
std::vector<std::string> shownAdapters(Snapshot const& snapshot, ViewState const& view);
// The scale that suits this rate, and one that suits all graphs that are shown now. In bits per second, and round in the
// unit that is shown.
double scaleFor(double bitsPerSecond, Unit unit);
double commonScale(Snapshot const& snapshot, ViewState const& view);

} // namespace monitor
