#pragma once

#include "view.h"

namespace monitor {

// An adapter as it is shown. One that only its connections name has nothing but its id.
struct ShownAdapter {
    kelvaris::AdapterData data;
    std::string name;                             // with nothing in it that a terminal obeys
    Traffic const* traffic = nullptr;             // now; nothing: no connection over it is reported
    std::deque<Traffic> const* samples = nullptr; // never nothing
};

// What the parts of a picture are drawn with.
struct Scene {
    Grid& grid;
    Snapshot const& snapshot;
    ViewState const& view;
    std::vector<ShownAdapter> adapters;

    int columns() const {
        return grid.size().columns;
    }
};

// Statistics that haven't come for this long aren't up to date.
constexpr std::chrono::seconds freshFor{5};

bool areStatisticsStale(Snapshot const& snapshot, ViewState const& view);
std::vector<ShownAdapter> adaptersOf(Snapshot const& snapshot, ViewState const& view);

// As many of the words as fit, the first ones first.
std::string joinFitting(std::vector<std::string> const& words, std::string const& separator, int columns);

// The head line and what belongs to it.
int headRows(Scene const& scene, int height);
void drawHead(Scene const& scene, int rows);

// ---- Graphs ----

struct GraphPlace {
    int row;
    int column;
    int rows;
    int columns;
};
GraphStep stepFor(ViewState const& view, int columns);
// Draws one direction of an adapter; returns the scale.
double drawTraffic(Scene const& scene, ShownAdapter const& adapter, double Traffic::*member,
                   GraphPlace place);

// ---- Adapters ----

constexpr int narrowestCard = 56;

int gaugeRows(ShownAdapter const& adapter, int columns);
// In rows of their own, at most as many as there are.
void drawGauges(Scene const& scene, ShownAdapter const& adapter, int row, int margin);
void drawCardHead(Scene const& scene, ShownAdapter const& adapter, int row);
// Its head, its graphs, and its gauges if they are wanted.
void drawCard(Scene const& scene, ShownAdapter const& adapter, int row, int graphRows, bool hasGauges);
void drawLine(Scene const& scene, ShownAdapter const& adapter, int row);

// ---- The rest ----

int streamRows(Scene const& scene); // all of them
void drawStreams(Scene const& scene, int row, int rows);
void drawFull(Scene const& scene, ShownAdapter const& adapter, int row, int rows);
void drawHelp(Scene const& scene, int row, int rows);
void drawKeys(Scene const& scene, int row);

} // namespace monitor
