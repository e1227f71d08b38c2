#include "viewparts.h"

#include "text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace monitor {

namespace {

constexpr int wideCard = 90;
constexpr int labelColumns = 14; // of a graph: arrow, rate, and a blank
constexpr double muchLoss = 0.01;
constexpr double tooMuchLoss = 0.05;
constexpr double nearlyUsed = 0.8;
constexpr std::chrono::seconds shortestGraph{110};

// ---- Words ----

Ink inkOf(ShownAdapter const& adapter) {
    switch (adapter.data.state) {
    case kelvaris::ConnectionState::CONNECTED:
        return adapter.data.priority == kelvaris::ConnectionPriority::NEVER ? Ink::plain : Ink::good;
    case kelvaris::ConnectionState::CONNECTING:
        return Ink::warning;
    default:
        return Ink::plain;
    }
}

void drawDot(Scene const& scene, ShownAdapter const& adapter, int row, int column) {
    Ink const ink = inkOf(adapter);
    bool const isOff = adapter.data.state == kelvaris::ConnectionState::DISCONNECTED;
    scene.grid.put(row, column, isOff ? "○" : ink == Ink::warning ? "◐" : "●", {.ink = ink, .dim = isOff});
}

Style nameStyle(Scene const& scene, ShownAdapter const& adapter) {
    bool const isChosen = adapter.data.adapterID == scene.view.chosen && !scene.view.isPrinted;
    return {.bold = true, .reverse = isChosen};
}

double lossOf(Traffic const& traffic) {
    return std::max(traffic.lossReceive, traffic.lossSend);
}

Style lossStyle(double loss) {
    return {.ink = loss >= tooMuchLoss ? Ink::bad : loss >= muchLoss ? Ink::warning : Ink::plain};
}

std::string rateOf(Scene const& scene, ShownAdapter const& adapter, double Traffic::*member, bool isShort) {
    double const rate = adapter.traffic ? adapter.traffic->*member : std::nan("");
    return isShort ? shortRate(rate, scene.view.unit) : rateText(rate, scene.view.unit);
}

void putRight(Scene const& scene, int row, int column, int columns, std::string const& text, Style style) {
    scene.grid.put(row, column + std::max(columns - widthOf(text), 0), text, style, columns);
}

// ---- Data limits ----

struct Gauge {
    char const* period;
    double used;
    double limit;
    std::string rest; // what follows the figures
};

// The gauges of a card; a limit of 0 is none.
std::vector<Gauge> gaugesOf(ShownAdapter const& adapter, ViewState const& view) {
    kelvaris::AdapterUsageData const& usage = adapter.data.dataUsage;
    std::vector<Gauge> gauges;
    if (usage.max.value_or(0) > 0) {
        std::string rest = "last 30 days";
        if (usage.resetDay) {
            int const days = daysUntil(*usage.resetDay, view.wallNow);
            rest = std::to_string(days) + (days == 1 ? " day left" : " days left");
        }
        gauges.push_back({"month", static_cast<double>(usage.usage), static_cast<double>(*usage.max), rest});
    }
    if (usage.maxDaily.value_or(0) > 0) {
        double const limit = static_cast<double>(*usage.maxDaily) +
                             static_cast<double>(std::max<std::int64_t>(usage.boostDaily, 0));
        gauges.push_back({"today", static_cast<double>(usage.usageDaily), limit, ""});
    }
    for (Gauge& gauge : gauges) {
        if (gauge.used >= gauge.limit && usage.overlimitRate) {
            gauge.rest = *usage.overlimitRate > 0
                             ? "now " + rateText(static_cast<double>(*usage.overlimitRate), view.unit)
                             : "not used now";
        }
    }
    return gauges;
}

Ink inkOf(Gauge const& gauge) {
    double const part = gauge.used / gauge.limit;
    return part >= 1 ? Ink::bad : part >= nearlyUsed ? Ink::warning : Ink::good;
}

void drawBar(Scene const& scene, int row, int column, int columns, double part, Ink ink) {
    int const halves = static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * columns * 2));
    scene.grid.fill(row, column, columns, U'─', dimStyle);
    scene.grid.fill(row, column, halves / 2, U'━', {.ink = ink});
    if (halves % 2 == 1) {
        scene.grid.fill(row, column + halves / 2, 1, U'╸', {.ink = ink});
    }
}

// "month ━━━━━━━━──── 16.2 GB of 20.0 GB · 22 days left"
void drawGauge(Scene const& scene, Gauge const& gauge, int row, int column, int columns) {
    constexpr int periodColumns = 6;
    constexpr int shortestBar = 3;
    constexpr int mostTextColumns = 32;
    Ink const ink = inkOf(gauge);
    scene.grid.put(row, column, gauge.period, dimStyle, columns);
    std::string const limit = bytesText(gauge.limit);
    std::string used = bytesText(gauge.used);
    std::size_t const unit = used.find(' ');
    if (limit.ends_with(used.substr(unit))) {
        used.resize(unit);
    }
    std::string const figures = used + " of " + limit;
    std::string const text =
        joinFitting({figures, gauge.rest}, " · ", columns - periodColumns - shortestBar - 1);
    // Where there is room all bars are of the same length.
    int const texts = std::max(widthOf(text), columns >= narrowestCard ? mostTextColumns : 0);
    int const bar = std::max(columns - periodColumns - texts - 1, 0);
    drawBar(scene, row, column + periodColumns, bar, gauge.used / gauge.limit, ink);
    scene.grid.put(row, column + periodColumns + bar + 1, text, {.ink = ink == Ink::bad ? ink : Ink::plain});
}

// ---- Places ----

struct Halves {
    int left;
    int right;
    int columns; // of each
};

Halves halvesOf(int columns, int margin) {
    int const each = (columns - margin - 1 - 2) / 2;
    return {margin, columns - 1 - each, each};
}

int marginOf(int columns) {
    return columns >= wideCard ? 3 : 1;
}

} // namespace

GraphStep stepFor(ViewState const& view, int columns) {
    GraphStep step = std::chrono::seconds(valuesPerCell(view.graph) == 2 ? 2 : 4);
    while (step * columns * valuesPerCell(view.graph) < shortestGraph && step < historyLimit / 4) {
        step *= 2;
    }
    return step;
}

double drawTraffic(Scene const& scene, ShownAdapter const& adapter, double Traffic::*member,
                   GraphPlace place) {
    if (place.columns <= 0 || place.rows <= 0) {
        return 1;
    }
    auto const values =
        graphValues(*adapter.samples, member, scene.view.now, stepFor(scene.view, place.columns),
                    place.columns * valuesPerCell(scene.view.graph));
    double const top = scene.view.scale.value_or(scaleFor(largest(values), scene.view.unit));
    Ink const ink = member == &Traffic::receiveBitsPerSecond ? Ink::receive : Ink::send;
    auto const rows = drawGraph(values, top, place.rows, scene.view.graph);
    for (int i = 0; i < place.rows; ++i) {
        scene.grid.putCharacters(place.row + i, place.column, rows[static_cast<std::size_t>(i)],
                                 {.ink = ink});
    }
    return top;
}

int gaugeRows(ShownAdapter const& adapter, int columns) {
    kelvaris::AdapterUsageData const& usage = adapter.data.dataUsage;
    int const gauges = (usage.max.value_or(0) > 0 ? 1 : 0) + (usage.maxDaily.value_or(0) > 0 ? 1 : 0);
    return columns >= wideCard ? std::min(gauges, 1) : gauges;
}

void drawGauges(Scene const& scene, ShownAdapter const& adapter, int row, int margin) {
    auto const gauges = gaugesOf(adapter, scene.view);
    int const columns = scene.columns();
    Halves const halves = halvesOf(columns, margin);
    for (std::size_t i = 0; i < gauges.size(); ++i) {
        if (columns < wideCard) {
            drawGauge(scene, gauges[i], row + static_cast<int>(i), margin, columns - margin - 1);
        } else {
            drawGauge(scene, gauges[i], row, i == 0 ? halves.left : halves.right, halves.columns);
        }
    }
}

// Name and what it is on the left, how it does on the right.
void drawCardHead(Scene const& scene, ShownAdapter const& adapter, int row) {
    Grid& grid = scene.grid;
    int const columns = scene.columns();
    bool const isWide = columns >= wideCard;
    kelvaris::AdapterData const& data = adapter.data;
    int right = columns - 1;
    if (adapter.traffic && adapter.traffic->connected > 0) {
        Traffic const& traffic = *adapter.traffic;
        auto const put = [&](char const* label, std::string const& text, Style style, int width) {
            putRight(scene, row, right - width, width, text, style);
            right -= width;
            right = isWide ? grid.putBefore(row, right, label, dimStyle) - 2 : right - 1;
        };
        put("loss", percentText(lossOf(traffic)), lossStyle(lossOf(traffic)), isWide ? 7 : 6);
        put("jitter", (isWide ? "" : "±") + latencyText(traffic.jitterSeconds), plainStyle, isWide ? 7 : 6);
        put("latency", latencyText(traffic.latencySeconds), plainStyle, isWide ? 7 : 6);
    } else if (scene.snapshot.connections && data.state == kelvaris::ConnectionState::CONNECTED) {
        right = grid.putBefore(row, right, "not in use", dimStyle) - 2;
    }
    drawDot(scene, adapter, row, 1);
    int column = grid.put(row, 3, adapter.name, nameStyle(scene, adapter), std::min(24, right - 3)) + 2;
    std::vector<std::string> words;
    if (data.state != kelvaris::ConnectionState::CONNECTED) {
        words.emplace_back(toString(data.state));
    }
    if (data.type != kelvaris::NetworkType::UNKNOWN) {
        words.emplace_back(toString(data.type));
    }
    if (!data.ssid.empty()) {
        words.push_back(printable(data.ssid));
    }
    if (scene.snapshot.adapters) {
        words.emplace_back(toString(data.priority));
    }
    grid.put(row, column, joinFitting(words, " · ", std::max(right - column, 0)), dimStyle);
}

void drawCard(Scene const& scene, ShownAdapter const& adapter, int row, int graphRows, bool hasGauges) {
    Grid& grid = scene.grid;
    int const margin = marginOf(scene.columns());
    Halves const halves = halvesOf(scene.columns(), margin);
    drawCardHead(scene, adapter, row++);
    auto const half = [&](int column, double Traffic::*member, char const* arrow, Ink ink) {
        GraphPlace const place{row, column + labelColumns, graphRows, halves.columns - labelColumns};
        double const top = drawTraffic(scene, adapter, member, place);
        grid.put(row, column, arrow, {.ink = ink});
        putRight(scene, row, column + 2, labelColumns - 3, rateOf(scene, adapter, member, false), plainStyle);
        if (graphRows >= 2) {
            putRight(scene, row + 1, column, labelColumns - 1, "scale " + scaleText(top, scene.view.unit),
                     dimStyle);
        }
    };
    half(halves.left, &Traffic::receiveBitsPerSecond, "↓", Ink::receive);
    half(halves.right, &Traffic::sendBitsPerSecond, "↑", Ink::send);
    if (hasGauges) {
        drawGauges(scene, adapter, row + graphRows, margin);
    }
}

namespace {

// A line's columns with the blank in front of each; those that have to go first stand first.
struct LineColumns {
    int type = 10;
    int priority = 10;
    int jitter = 8;
    int limit = 6;
    int sendGraph = 7;
    int loss = 7;
    int receiveGraph = 6;
    int latency = 7;
    int send = 8;
    int receive = 8;
    int name = 9;
};

LineColumns fitLine(int columns) {
    LineColumns line;
    int LineColumns::*const order[] = {
        &LineColumns::type,      &LineColumns::priority, &LineColumns::jitter,       &LineColumns::limit,
        &LineColumns::sendGraph, &LineColumns::loss,     &LineColumns::receiveGraph, &LineColumns::latency,
        &LineColumns::send,      &LineColumns::receive};
    constexpr int dot = 2;
    int left = columns - dot - line.name;
    for (auto const each : order) {
        left -= line.*each;
    }
    for (auto const each : order) {
        if (left < 0) {
            left += line.*each;
            line.*each = 0;
        }
    }
    // What is left makes the name and the graphs wider.
    int const forName = std::clamp(left / 3, 0, 12);
    line.name += std::max(forName, line.receiveGraph == 0 ? left : 0);
    left -= line.receiveGraph == 0 ? left : forName;
    int const graphs = (line.receiveGraph > 0 ? 1 : 0) + (line.sendGraph > 0 ? 1 : 0);
    if (graphs > 0) {
        line.receiveGraph += left - (graphs - 1) * (left / 2);
        line.sendGraph += (graphs - 1) * (left / 2);
    }
    return line;
}

} // namespace

void drawLine(Scene const& scene, ShownAdapter const& adapter, int row) {
    int const margin = scene.columns() >= narrowestCard ? 1 : 0; // where columns are few none is left empty
    LineColumns const line = fitLine(scene.columns() - 2 * margin);
    Grid& grid = scene.grid;
    int column = margin;
    drawDot(scene, adapter, row, column);
    column += 2;
    grid.put(row, column, adapter.name, nameStyle(scene, adapter), line.name);
    column += line.name;
    auto const right = [&](int width, std::string const& text, Style style) {
        if (width > 0) {
            putRight(scene, row, column + 1, width - 1, text, style);
        }
        column += width;
    };
    auto const left = [&](int width, std::string const& text) {
        grid.put(row, column + 1, text, dimStyle, std::max(width - 1, 0));
        column += width;
    };
    auto const direction = [&](int width, int graph, double Traffic::*member, char const* arrow, Ink ink) {
        if (width > 0) {
            grid.put(row, column + 1, arrow, {.ink = ink});
        }
        right(width, rateOf(scene, adapter, member, true), plainStyle);
        drawTraffic(scene, adapter, member, {row, column + 1, 1, graph - 1});
        column += graph;
    };
    left(line.type, toString(adapter.data.type));
    left(line.priority, toString(adapter.data.priority));
    direction(line.receive, line.receiveGraph, &Traffic::receiveBitsPerSecond, "↓", Ink::receive);
    direction(line.send, line.sendGraph, &Traffic::sendBitsPerSecond, "↑", Ink::send);
    bool const isUp = adapter.traffic && adapter.traffic->connected > 0;
    right(line.latency, isUp ? latencyText(adapter.traffic->latencySeconds) : unknown, plainStyle);
    right(line.jitter, isUp ? "±" + latencyText(adapter.traffic->jitterSeconds) : "", plainStyle);
    right(line.loss, isUp ? percentText(lossOf(*adapter.traffic)) : "",
          isUp ? lossStyle(lossOf(*adapter.traffic)) : plainStyle);
    auto const gauges = gaugesOf(adapter, scene.view);
    auto const fullest =
        std::max_element(gauges.begin(), gauges.end(), [](Gauge const& one, Gauge const& other) {
            return one.used / one.limit < other.used / other.limit;
        });
    if (fullest != gauges.end()) {
        int const percent = static_cast<int>(std::min(fullest->used / fullest->limit * 100, 999.0));
        right(line.limit, std::to_string(percent) + " %", {.ink = inkOf(*fullest)});
    }
}

} // namespace monitor
