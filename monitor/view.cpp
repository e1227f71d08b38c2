#include "viewparts.h"

#include "text.h"

#include <algorithm>
#include <numeric>

namespace monitor {

namespace {

constexpr int mostGraphRows = 7;
constexpr int printedGraphRows = 2;
constexpr int printedRows = 200;
// Streams come and go. Where there is room it is kept for them, so that nothing moves then.
constexpr int keptStreamRows = 4;
constexpr int roomyRows = 28;
constexpr double leastScale = 100e3;
constexpr auto sortedOver = std::chrono::seconds(20); // or lines would change places with each report

std::string nameOf(kelvaris::AdapterData const& data) {
    return printable(!data.name.empty()          ? data.name
                     : !data.description.empty() ? data.description
                                                 : data.adapterID);
}

double meanRate(ShownAdapter const& adapter, Clock::time_point now) {
    double sum = 0;
    for (auto each = adapter.samples->rbegin();
         each != adapter.samples->rend() && each->time > now - sortedOver; ++each) {
        sum += each->receiveBitsPerSecond + each->sendBitsPerSecond;
    }
    return sum;
}

void sortAdapters(std::vector<ShownAdapter>& adapters, ViewState const& view) {
    auto const by = [&adapters](auto const& isBefore) {
        std::stable_sort(adapters.begin(), adapters.end(), isBefore);
    };
    switch (view.sort) {
    case Sort::reported:
        return;
    case Sort::name:
        return by([](auto const& one, auto const& other) { return one.name < other.name; });
    case Sort::rate:
        return by([now = view.now](auto const& one, auto const& other) {
            return meanRate(one, now) > meanRate(other, now);
        });
    case Sort::latency:
        return by([](auto const& one, auto const& other) {
            auto const latency = [](ShownAdapter const& adapter) {
                return adapter.traffic ? adapter.traffic->latencySeconds.value_or(1e9) : 1e9;
            };
            return latency(one) < latency(other);
        });
    }
}

// How the rows below the head are used.
struct Plan {
    bool hasCards = false;
    bool hasGauges = true;
    int graphRows = 0;
    int spacing = 1; // empty rows in front of each card
    int rows = 0;    // of all adapters
};

Plan planCards(Scene const& scene, int room, int keptForStreams) {
    int const count = static_cast<int>(scene.adapters.size());
    int const gauges = std::accumulate(
        scene.adapters.begin(), scene.adapters.end(), 0,
        [&scene](int sum, ShownAdapter const& each) { return sum + gaugeRows(each, scene.columns()); });
    int const most = scene.view.isPrinted ? printedGraphRows : mostGraphRows;
    auto const rows = [=](int graphRows, int spacing, bool hasGauges) {
        return count * (1 + graphRows + spacing) + (hasGauges ? gauges : 0);
    };
    for (int const kept : {keptForStreams, 0}) {
        for (int graphRows = most; graphRows >= (kept > 0 ? 2 : 1); --graphRows) {
            if (int const all = rows(graphRows, 1, true); all + kept <= room) {
                return {true, true, graphRows, 1, all};
            }
        }
    }
    for (bool const hasGauges : {true, false}) {
        if (int const all = rows(1, 0, hasGauges); all <= room) {
            return {true, hasGauges, 1, 0, all};
        }
    }
    return {};
}

// The first adapter that is shown when not all can be: the chosen one is among them.
std::size_t firstShown(Scene const& scene, std::size_t rows) {
    auto const& adapters = scene.adapters;
    auto const chosen = static_cast<std::size_t>(
        std::find_if(adapters.begin(), adapters.end(),
                     [&](ShownAdapter const& each) { return each.data.adapterID == scene.view.chosen; }) -
        adapters.begin());
    if (chosen == adapters.size() || chosen < rows) {
        return 0;
    }
    return std::min(chosen - rows + 1, adapters.size() - rows);
}

// A line for each adapter, as many as there is room for; the last row tells how many there are besides.
void drawLines(Scene const& scene, int row, int room) {
    auto const count = static_cast<int>(scene.adapters.size());
    int const shown = count <= room ? count : std::max(room - (room > 2 ? 1 : 0), 0);
    if (shown == 0) {
        return;
    }
    std::size_t const first = firstShown(scene, static_cast<std::size_t>(shown));
    for (int i = 0; i < shown; ++i) {
        drawLine(scene, scene.adapters[first + static_cast<std::size_t>(i)], row + i);
    }
    if (shown < room && shown < count) {
        scene.grid.put(row + shown, 2, "… " + std::to_string(count - shown) + " more", dimStyle);
    }
}

void drawErrors(Scene const& scene, int row) {
    auto const& errors = scene.snapshot.errors;
    std::string topics;
    for (auto const& [topic, failure] : errors) {
        topics += (topics.empty() ? "" : ", ") + std::string(toString(topic));
    }
    scene.grid.put(row, 1, topics + " can't be read: " + printable(errors.begin()->second.error.message),
                   {.ink = Ink::warning});
}

void drawOverview(Scene const& scene, int row, int room) {
    bool const isKept = scene.grid.size().rows >= roomyRows && !scene.view.isPrinted;
    int const streams = streamRows(scene);
    Plan plan;
    if (scene.columns() >= narrowestCard) {
        plan =
            planCards(scene, room, isKept ? std::max(keptStreamRows, std::min(streams + 1, 6)) : streams + 1);
    }
    int const begin = row;
    if (plan.hasCards) {
        for (ShownAdapter const& each : scene.adapters) {
            row += plan.spacing;
            drawCard(scene, each, row, plan.graphRows, plan.hasGauges);
            row += 1 + plan.graphRows + (plan.hasGauges ? gaugeRows(each, scene.columns()) : 0);
        }
    } else {
        int const count = static_cast<int>(scene.adapters.size());
        row += count < room ? 1 : 0;
        drawLines(scene, row, room - (row - begin));
        row += std::min(count, room);
    }
    if (areStatisticsStale(scene.snapshot, scene.view)) {
        scene.grid.dimRows(begin, row - begin);
    }
    if (int const left = room - (row - begin); streams > 0 && left >= 3) {
        drawStreams(scene, row + 1, left - 1);
    }
}

} // namespace

bool areStatisticsStale(Snapshot const& snapshot, ViewState const& view) {
    auto const& connections = snapshot.connections;
    return !snapshot.isUp() || !connections || !connections.current || view.now - connections.time > freshFor;
}

std::vector<ShownAdapter> adaptersOf(Snapshot const& snapshot, ViewState const& view) {
    static std::deque<Traffic> const none;
    std::vector<ShownAdapter> shown;
    auto const add = [&](kelvaris::AdapterData const& data) {
        auto const samples = snapshot.history.find(data.adapterID);
        shown.push_back({data, nameOf(data), snapshot.trafficOf(data.adapterID),
                         samples == snapshot.history.end() ? &none : &samples->second});
    };
    if (snapshot.adapters) {
        std::for_each(snapshot.adapters->begin(), snapshot.adapters->end(), add);
    }
    if (snapshot.connections) {
        for (kelvaris::ConnectionStats const& each : snapshot.connections->connections) {
            bool const isKnown =
                std::any_of(shown.begin(), shown.end(), [&each](ShownAdapter const& adapter) {
                    return adapter.data.adapterID == each.adapterID;
                });
            if (!isKnown) {
                kelvaris::AdapterData data;
                data.adapterID = each.adapterID;
                data.state = each.connected ? kelvaris::ConnectionState::CONNECTED
                                            : kelvaris::ConnectionState::CONNECTING;
                add(data);
            }
        }
    }
    sortAdapters(shown, view);
    return shown;
}

std::string joinFitting(std::vector<std::string> const& words, std::string const& separator, int columns) {
    std::string joined;
    for (std::string const& each : words) {
        std::string longer = joined;
        longer += joined.empty() || each.empty() ? "" : separator;
        longer += each;
        if (widthOf(longer) > columns) {
            break;
        }
        joined = longer;
    }
    return joined;
}

std::vector<std::string> shownAdapters(Snapshot const& snapshot, ViewState const& view) {
    std::vector<std::string> ids;
    for (ShownAdapter const& each : adaptersOf(snapshot, view)) {
        ids.push_back(each.data.adapterID);
    }
    return ids;
}

// Next to nothing doesn't fill a graph.
double scaleFor(double bitsPerSecond, Unit unit) {
    return roundScale(std::max(bitsPerSecond, leastScale), unit == Unit::bits ? 1 : 8);
}

double commonScale(Snapshot const& snapshot, ViewState const& view) {
    double most = 0;
    for (ShownAdapter const& each : adaptersOf(snapshot, view)) {
        for (Traffic const& sample : *each.samples) {
            most = std::max({most, sample.receiveBitsPerSecond, sample.sendBitsPerSecond});
        }
    }
    return scaleFor(most, view.unit);
}

Grid drawView(Snapshot const& snapshot, ViewState const& view, Size size) {
    Grid grid({view.isPrinted ? printedRows : size.rows, size.columns}, view.isAscii);
    Scene const scene{grid, snapshot, view, adaptersOf(snapshot, view)};
    int const height = grid.size().rows;
    int const head = headRows(scene, height);
    int const keys = view.isPrinted || height < 6 ? 0 : 1;
    drawHead(scene, head);
    int row = head;
    if (!snapshot.errors.empty() && height >= 8) {
        drawErrors(scene, row++);
    }
    int const room = height - row - keys;
    auto const chosen =
        std::find_if(scene.adapters.begin(), scene.adapters.end(),
                     [&view](ShownAdapter const& each) { return each.data.adapterID == view.chosen; });
    if (view.isHelp) {
        drawHelp(scene, row, room);
    } else if (view.isFull && chosen != scene.adapters.end() && room > 0) {
        drawFull(scene, *chosen, row, room);
    } else {
        drawOverview(scene, row, room);
    }
    if (keys > 0) {
        drawKeys(scene, height - 1);
    }
    if (view.isPrinted) {
        grid.trim();
    }
    return grid;
}

} // namespace monitor
