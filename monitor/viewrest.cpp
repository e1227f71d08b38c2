#include "viewparts.h"

#include "text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace monitor {

namespace {

constexpr int axisColumns = 7;

std::string rightAligned(std::string const& text, int columns) {
    return std::string(static_cast<std::size_t>(std::max(columns - widthOf(text), 0)), ' ') + text;
}

Style healthStyle(kelvaris::StreamStats const& stream) {
    switch (stream.health) {
    case kelvaris::StreamHealth::GOOD:
        return {.ink = Ink::good};
    case kelvaris::StreamHealth::POOR:
        return {.ink = Ink::warning};
    default:
        return dimStyle;
    }
}

void drawStream(Scene const& scene, kelvaris::StreamStats const& stream, int row) {
    constexpr double mega = 1e6;
    Grid& grid = scene.grid;
    Style const style = healthStyle(stream);
    grid.put(row, 1, stream.active ? "●" : "○", style);
    int const names = std::clamp(scene.columns() / 4, 10, 24);
    grid.put(row, 3, printable(stream.name), stream.active ? plainStyle : dimStyle, names);
    std::uint64_t const saves = stream.redundantModeSaves + stream.speedModeSaves + stream.failoverSaves;
    std::vector<std::string> const words = {
        "↓ " + rightAligned(rateText(stream.downloadSpeed * mega, scene.view.unit), 11),
        "↑ " + rightAligned(rateText(stream.uploadSpeed * mega, scene.view.unit), 11),
        rightAligned(durationText(std::chrono::milliseconds(stream.duration)), 12),
        saves == 0 ? "" : std::to_string(saves) + (saves == 1 ? " save" : " saves")};
    int const column = 3 + names + 2;
    grid.put(row, column, joinFitting(words, "  ", scene.columns() - column - 1),
             stream.active ? plainStyle : dimStyle);
}

// A graph of one direction with its scale on the left and its figures above it.
void drawDirection(Scene const& scene, ShownAdapter const& adapter, double Traffic::*member, int row,
                   int rows) {
    bool const isReceive = member == &Traffic::receiveBitsPerSecond;
    Grid& grid = scene.grid;
    int const axis = scene.columns() >= narrowestCard ? axisColumns : 0;
    int const columns = scene.columns() - axis - 2;
    if (rows < 1 || columns < 1) {
        return;
    }
    Style const style{.ink = isReceive ? Ink::receive : Ink::send};
    double const rate = adapter.traffic ? adapter.traffic->*member : std::nan("");
    int column = grid.put(row, 1, isReceive ? "↓ " : "↑ ", style);
    column = grid.put(row, column, rightAligned(rateText(rate, scene.view.unit), 11), boldStyle) + 3;
    int const count = columns * valuesPerCell(scene.view.graph);
    auto const step = stepFor(scene.view, columns);
    auto const values = graphValues(*adapter.samples, member, scene.view.now, step, count);
    double sum = 0;
    int known = 0;
    for (double const each : values) {
        sum += std::isnan(each) ? 0 : each;
        known += std::isnan(each) ? 0 : 1;
    }
    std::string const figures =
        joinFitting({"highest " + rateText(largest(values), scene.view.unit),
                     "mean " + rateText(known > 0 ? sum / known : std::nan(""), scene.view.unit)},
                    "   ", scene.columns() - column - 1);
    grid.put(row, column, figures, dimStyle);
    double const top = drawTraffic(scene, adapter, member, {row + 1, axis + 1, rows - 1, columns});
    if (axis > 0 && rows > 1) {
        grid.put(row + 1, 0, rightAligned(scaleText(top, scene.view.unit), axis), dimStyle);
        if (rows >= 6) {
            grid.put(row + 1 + (rows - 1) / 2, 0, rightAligned(scaleText(top / 2, scene.view.unit), axis),
                     dimStyle);
        }
        grid.put(row + rows - 1, 0, rightAligned("0", axis), dimStyle);
    }
}

// Marks of time below the graphs: their beginning, their middle, now.
void drawTimes(Scene const& scene, int row) {
    int const axis = scene.columns() >= narrowestCard ? axisColumns : 0;
    int const columns = scene.columns() - axis - 2;
    auto const whole = stepFor(scene.view, columns) * columns * valuesPerCell(scene.view.graph);
    scene.grid.put(row, axis + 1, "-" + durationText(whole), dimStyle);
    if (columns >= 40) {
        scene.grid.put(row, axis + 1 + columns / 2, "-" + durationText(whole / 2), dimStyle);
    }
    scene.grid.putBefore(row, axis + 1 + columns, "now", dimStyle);
}

// What is told of the adapter besides its card.
std::string detailsOf(Scene const& scene, ShownAdapter const& adapter, int columns) {
    std::vector<std::string> words = {printable(adapter.data.adapterID)};
    if (!adapter.data.description.empty() && adapter.data.description != adapter.data.name) {
        words.push_back(printable(adapter.data.description));
    }
    if (adapter.traffic) {
        words.push_back("loss ↓ " + percentText(adapter.traffic->lossReceive) + " ↑ " +
                        percentText(adapter.traffic->lossSend));
    }
    if (scene.snapshot.connections) {
        for (kelvaris::ConnectionStats const& each : scene.snapshot.connections->connections) {
            if (each.adapterID == adapter.data.adapterID && each.connected) {
                words.push_back(std::string(toString(each.protocol)) + " " + printable(each.localIp));
            }
        }
    }
    if (adapter.data.rateLimit.value_or(0) > 0) {
        words.push_back("limited to " +
                        rateText(static_cast<double>(*adapter.data.rateLimit), scene.view.unit));
    }
    return joinFitting(words, " · ", columns);
}

constexpr std::array<std::array<char const*, 2>, 13> helpRows = {{
    {"q, Ctrl-C", "quit"},
    {"?, h", "this page"},
    {"p, Space", "pause, and go on"},
    {"b", "bits or bytes"},
    {"g", "scale of the graphs: each its own, or one for all"},
    {"+ -", "change the scale for all"},
    {"s", "sort: as reported, by name, by rate, by latency"},
    {"Up, Down, k, j", "choose an adapter"},
    {"Enter", "its graphs over the full width, and back"},
    {"Esc", "back"},
    {"Ctrl-L", "draw anew"},
    {"Ctrl-Z", "suspend"},
    {"● ◐ ○", "connected, connecting, disconnected"},
}};

} // namespace

int streamRows(Scene const& scene) {
    auto const& streams = scene.snapshot.streams;
    return streams ? static_cast<int>(streams->streams.size()) : 0;
}

void drawStreams(Scene const& scene, int row, int rows) {
    kelvaris::StreamingStatsResult const& report = *scene.snapshot.streams;
    int const column = scene.grid.put(row, 1, "Streams", boldStyle) + 2;
    std::vector<std::string> bad;
    for (auto const& [isBad, what] : {std::pair(report.badLoss, "loss"),
                                      {report.badLatency, "latency"},
                                      {report.badCpu, "processor"},
                                      {report.badMemory, "memory"}}) {
        if (isBad) {
            bad.emplace_back(what);
        }
    }
    if (!bad.empty()) {
        scene.grid.put(row, column, "troubled by " + joinFitting(bad, ", ", 60), {.ink = Ink::warning});
    }
    int const count = static_cast<int>(report.streams.size());
    for (int i = 0; i < std::min(count, rows - 1); ++i) {
        drawStream(scene, report.streams[static_cast<std::size_t>(i)], row + 1 + i);
    }
    if (!scene.snapshot.streams.current || scene.view.now - scene.snapshot.streams.time > freshFor) {
        scene.grid.dimRows(row, rows);
    }
}

void drawFull(Scene const& scene, ShownAdapter const& adapter, int row, int rows) {
    int const begin = row;
    int const end = row + rows;
    row += rows >= 12 ? 1 : 0;
    drawCardHead(scene, adapter, row++);
    if (rows >= 8) {
        scene.grid.put(row++, 3, detailsOf(scene, adapter, scene.columns() - 4), dimStyle);
    }
    int const gauges = rows >= 10 ? gaugeRows(adapter, scene.columns()) : 0;
    if (gauges > 0) {
        drawGauges(scene, adapter, row, 3);
        row += gauges;
    }
    row += rows >= 16 ? 1 : 0;
    int const times = rows >= 6 ? 1 : 0;
    int const room = end - row - times;
    int const between = room >= 14 ? 1 : 0;
    int const first = (room - between + 1) / 2;
    drawDirection(scene, adapter, &Traffic::receiveBitsPerSecond, row, first);
    drawDirection(scene, adapter, &Traffic::sendBitsPerSecond, row + first + between, room - between - first);
    if (times > 0) {
        drawTimes(scene, end - 1);
    }
    if (areStatisticsStale(scene.snapshot, scene.view)) {
        scene.grid.dimRows(begin, rows);
    }
}

void drawHelp(Scene const& scene, int row, int rows) {
    int const lead = rows > static_cast<int>(helpRows.size()) + 1 ? 1 : 0;
    for (int i = 0; i < std::min(rows - lead, static_cast<int>(helpRows.size())); ++i) {
        auto const& [key, text] = helpRows[static_cast<std::size_t>(i)];
        int const column = scene.grid.put(row + lead + i, 1, key, boldStyle);
        scene.grid.put(row + lead + i, std::max(column + 2, 18), text);
    }
}

// The most useful keys stand first, because the others go where there is no room.
void drawKeys(Scene const& scene, int row) {
    constexpr std::array<char const*, sortCount> orders = {"as reported", "name", "rate", "latency"};
    ViewState const& view = scene.view;
    std::vector<std::array<std::string, 2>> const keys = {
        {"q", "quit"},
        {"?", view.isHelp ? "back" : "help"},
        {"p", view.pausedSince ? "go on" : "pause"},
        {"b", view.unit == Unit::bits ? "bytes" : "bits"},
        {"g", view.scale ? "scale: " + rateText(*view.scale, view.unit) : "scale: automatic"},
        {"s", std::string("sort: ") + orders.at(static_cast<unsigned>(view.sort))},
        {"↑↓", "choose"},
        {"Enter", view.isFull ? "back" : "graph"},
    };
    int column = 1;
    for (auto const& [key, text] : keys) {
        int const width = widthOf(key) + 1 + widthOf(text);
        if (column + width >= scene.columns()) {
            return;
        }
        column = scene.grid.put(row, column, key, {.bold = true, .dim = true}) + 1;
        column = scene.grid.put(row, column, text, dimStyle) + 2;
    }
}

} // namespace monitor
