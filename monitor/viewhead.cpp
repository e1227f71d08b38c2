#include "viewparts.h"

#include "text.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace monitor {

namespace {

constexpr int wideHead = 90;
constexpr int narrowHead = 50;

// Where columns are few none is left empty.
int marginOf(Scene const& scene) {
    return scene.columns() < narrowHead ? 0 : 1;
}

// "Auto connecting"
std::string stateText(kelvaris::State state) {
    std::string text = toString(state);
    for (std::size_t i = 1; i < text.size(); ++i) {
        text[i] = text[i] == '_' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    }
    return text;
}

Ink inkOf(kelvaris::State state) {
    switch (state) {
    case kelvaris::State::CONNECTED:
        return Ink::good;
    case kelvaris::State::OVERLIMIT:
        return Ink::bad;
    case kelvaris::State::LOGGING_IN:
    case kelvaris::State::AUTO_CONNECTING:
    case kelvaris::State::CONNECTING:
    case kelvaris::State::DISCONNECTING:
        return Ink::warning;
    default:
        return Ink::plain;
    }
}

char const* dotOf(Ink ink) {
    return ink == Ink::good ? "●" : ink == Ink::plain ? "○" : "◐";
}

std::string agoOf(Clock::time_point time, Clock::time_point now) {
    return durationText(std::max<Seconds>(now - time, Seconds(0)));
}

// When the newest report came that is still shown.
std::optional<Clock::time_point> lastReport(Snapshot const& snapshot) {
    std::optional<Clock::time_point> newest;
    auto const look = [&newest](auto const& part) {
        if (part) {
            newest = std::max(newest.value_or(part.time), part.time);
        }
    };
    look(snapshot.state);
    look(snapshot.adapters);
    look(snapshot.connections);
    look(snapshot.session);
    return newest;
}

std::string linkText(Scene const& scene) {
    Snapshot const& snapshot = scene.snapshot;
    if (!snapshot.link && !scene.view.isPrinted) {
        return "Looking for the daemon";
    }
    if (!snapshot.state) {
        return "No daemon";
    }
    return *snapshot.link == kelvaris::Link::LOST ? "Daemon lost" : "Daemon ended";
}

// The state in the first row, then the server; the age of all when nothing of it is up to date.
void drawState(Scene const& scene, int columns) {
    Snapshot const& snapshot = scene.snapshot;
    Grid& grid = scene.grid;
    int const dot = marginOf(scene);
    int const text = dot + 2;
    if (!snapshot.isUp()) {
        Style const style{.ink = snapshot.link ? Ink::bad : Ink::plain, .bold = true};
        grid.put(0, dot, "○", style);
        int const column = grid.put(0, text, linkText(scene), style, columns - text) + 2;
        std::string const where = "on " + scene.view.daemon;
        std::string const since = ", " + agoOf(snapshot.linkSince, scene.view.now);
        grid.put(0, column, snapshot.link ? "waiting for it " + where + since : where, dimStyle,
                 columns - column);
        return;
    }
    if (!snapshot.state) {
        grid.put(0, dot, "○");
        grid.put(0, text, "The daemon hasn't told its state", dimStyle, columns - text);
        return;
    }
    bool const isCurrent = snapshot.state.current;
    Ink const ink = inkOf(*snapshot.state);
    Style const style{.ink = isCurrent ? ink : Ink::plain, .bold = isCurrent, .dim = !isCurrent};
    grid.put(0, dot, dotOf(ink), style);
    int const column = grid.put(0, text, stateText(*snapshot.state), style, columns - text) + 2;
    if (!isCurrent) {
        grid.put(0, column, agoOf(snapshot.state.time, scene.view.now) + " ago", dimStyle, columns - column);
    } else {
        grid.put(0, column, snapshot.serverName(), snapshot.server.current ? plainStyle : dimStyle,
                 columns - column);
    }
}

std::vector<std::string> sessionWords(Scene const& scene) {
    Snapshot const& snapshot = scene.snapshot;
    std::vector<std::string> words;
    if (auto const since = snapshot.connectedSince()) {
        // While the daemon is away nobody knows whether the session goes on.
        words.push_back(
            durationText((snapshot.isUp() ? scene.view.wallNow : snapshot.session.wallTime) - *since));
    }
    if (snapshot.settings) {
        words.emplace_back(toString(snapshot.settings->bondingMode));
        words.emplace_back(toString(snapshot.settings->transportMode));
        words.emplace_back(snapshot.settings->encrypted ? "encrypted" : "not encrypted");
    }
    return words;
}

// The sum of what all adapters do, with a dash where nothing is known.
void drawRates(Scene const& scene, int row, int columns) {
    Snapshot const& snapshot = scene.snapshot;
    Grid& grid = scene.grid;
    double receive = std::nan("");
    double send = std::nan("");
    if (snapshot.connections) {
        receive = send = 0;
        for (ShownAdapter const& each : scene.adapters) {
            receive += each.traffic ? each.traffic->receiveBitsPerSecond : 0;
            send += each.traffic ? each.traffic->sendBitsPerSecond : 0;
        }
    }
    bool const isShort = columns < narrowHead;
    auto const text = [&](double rate) {
        std::string const shown =
            isShort ? shortRate(rate, scene.view.unit) : rateText(rate, scene.view.unit);
        return std::string(static_cast<std::size_t>(std::max(0, (isShort ? 5 : 11) - widthOf(shown))), ' ') +
               shown;
    };
    int column = grid.put(row, marginOf(scene), "↓ ", {.ink = Ink::receive});
    column = grid.put(row, column, text(receive), boldStyle) + (isShort ? 1 : 3);
    column = grid.put(row, column, "↑ ", {.ink = Ink::send});
    column = grid.put(row, column, text(send), boldStyle) + (isShort ? 2 : 4);
    if (areStatisticsStale(snapshot, scene.view)) {
        grid.dimRows(row, 1);
    }
    if (!snapshot.session) {
        return;
    }
    std::vector<std::string> words = {"session ↓ " +
                                      bytesText(static_cast<double>(snapshot.session->bytesReceived)) +
                                      "  ↑ " + bytesText(static_cast<double>(snapshot.session->bytesSent))};
    if (columns < 70) {
        words.front().erase(0, sizeof "session");
    }
    if (snapshot.session->numFailovers > 0) {
        bool const isOne = snapshot.session->numFailovers == 1;
        words.push_back(std::to_string(snapshot.session->numFailovers) +
                        (isOne ? " failover" : " failovers"));
    }
    if (snapshot.session->retransBytes > 0) {
        words.push_back(bytesText(static_cast<double>(snapshot.session->retransBytes)) + " resent");
    }
    std::string const totals = joinFitting(words, "   ", columns - column - 1);
    grid.put(row, column, totals, snapshot.session.current ? plainStyle : dimStyle);
}

// What is right of the rates or below: that this isn't now.
std::string noteText(Scene const& scene) {
    if (scene.view.pausedSince) {
        return "paused " + agoOf(*scene.view.pausedSince, Clock::now());
    }
    auto const last = lastReport(scene.snapshot);
    if (!scene.snapshot.isUp()) {
        return last ? "as of " + agoOf(*last, scene.view.now) + " ago" : "";
    }
    auto const& connections = scene.snapshot.connections;
    if (connections && areStatisticsStale(scene.snapshot, scene.view)) {
        return "statistics " + agoOf(connections.time, scene.view.now) + " old";
    }
    return "";
}

} // namespace

int headRows(Scene const& scene, int height) {
    int const whole = scene.columns() >= wideHead ? 2 : 3;
    return height >= 8 ? whole : height >= 4 ? 2 : std::min(height, 1);
}

// Wide: state, server and session in one row. Otherwise the session has one to itself.
void drawHead(Scene const& scene, int rows) {
    int const columns = scene.columns();
    Grid& grid = scene.grid;
    std::string const note = noteText(scene);
    Style const noteStyle{.ink = Ink::warning};
    Style const wordsStyle = scene.snapshot.isUp() ? plainStyle : dimStyle;
    if (rows < 1) {
        return;
    }
    if (columns >= wideHead) {
        std::string const words = joinFitting(sessionWords(scene), " · ", columns / 2);
        int const begin = scene.snapshot.isUp() ? grid.putBefore(0, columns - 1, words, wordsStyle) : columns;
        drawState(scene, begin - 2);
    } else {
        drawState(scene, columns - 1);
    }
    if (rows < 2) {
        return;
    }
    drawRates(scene, rows - 1, columns - (columns >= wideHead && !note.empty() ? widthOf(note) + 2 : 0));
    if (columns >= wideHead) {
        grid.putBefore(1, columns - 1, note, noteStyle);
    } else if (rows >= 3) {
        int const begin = note.empty() ? columns : grid.putBefore(1, columns - 1, note, noteStyle);
        grid.put(1, marginOf(scene), joinFitting(sessionWords(scene), " · ", begin - 2), wordsStyle);
    }
}

} // namespace monitor
