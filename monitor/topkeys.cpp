#include "screen.h"
#include "top.h"

#include <algorithm>
#include <cstdlib>
#include <langinfo.h>
#include <string_view>

namespace monitor {

namespace {

constexpr double largestScale = 1e15;

// The adapter before or behind the chosen one; the first or the last one when none is.
void choose(ViewState& view, bool isNext, Snapshot const& snapshot) {
    auto const ids = shownAdapters(snapshot, view);
    if (ids.empty()) {
        return;
    }
    auto const chosen =
        static_cast<std::size_t>(std::find(ids.begin(), ids.end(), view.chosen) - ids.begin());
    if (chosen == ids.size()) {
        view.chosen = isNext ? ids.front() : ids.back();
    } else if (isNext && chosen + 1 < ids.size()) {
        view.chosen = ids[chosen + 1];
    } else if (!isNext && chosen > 0) {
        view.chosen = ids[chosen - 1];
    }
}

void stepBack(ViewState& view) {
    if (view.isHelp) {
        view.isHelp = false;
    } else if (view.isFull) {
        view.isFull = false;
    } else {
        view.chosen.clear();
    }
}

void switchGraph(ViewState& view, Snapshot const& snapshot) {
    if (view.chosen.empty()) {
        choose(view, true, snapshot);
    }
    view.isFull = !view.isFull && !view.chosen.empty();
    view.isHelp = false;
}

} // namespace

Effect applyKey(ViewState& view, int key, Snapshot const& snapshot) {
    constexpr double toNext = 1.1; // the scale in between is rounded up
    constexpr double toPrevious = 1 / 2.6;
    auto const scale = [&] { return view.scale.value_or(commonScale(snapshot, view)); };
    switch (key) {
    case 'q':
        return Effect::quit;
    case 'p':
    case ' ':
        return Effect::pause;
    case static_cast<int>(Key::redraw):
        return Effect::redraw;
    case '?':
    case 'h':
        view.isHelp = !view.isHelp;
        break;
    case 'b':
        view.unit = view.unit == Unit::bits ? Unit::bytes : Unit::bits;
        break;
    case 'g':
        view.scale = view.scale ? std::nullopt : std::optional(commonScale(snapshot, view));
        break;
    case '+':
    case '-':
        view.scale =
            std::min(scaleFor(scale() * (key == '+' ? toNext : toPrevious), view.unit), largestScale);
        break;
    case 's':
        view.sort = static_cast<Sort>((static_cast<unsigned>(view.sort) + 1) % sortCount);
        break;
    case 'j':
    case static_cast<int>(Key::down):
        choose(view, true, snapshot);
        break;
    case 'k':
    case static_cast<int>(Key::up):
        choose(view, false, snapshot);
        break;
    case static_cast<int>(Key::enter):
        switchGraph(view, snapshot);
        break;
    case static_cast<int>(Key::escape):
        stepBack(view);
        break;
    default:
        return Effect::nothing;
    }
    return Effect::changed;
}

// The Linux console has no braille in its font.
void adaptTo(ViewState& view, GraphChoice graph, bool isDumb) {
    char const* const terminal = std::getenv("TERM");
    bool const isConsole = terminal != nullptr && std::string_view(terminal) == "linux";
    view.isAscii = isDumb || std::string_view(nl_langinfo(CODESET)) != "UTF-8";
    if (view.isAscii || graph == GraphChoice::ascii) {
        view.graph = GraphKind::ascii;
    } else if (graph == GraphChoice::block || (graph == GraphChoice::automatic && isConsole)) {
        view.graph = GraphKind::block;
    } else {
        view.graph = GraphKind::braille;
    }
}

} // namespace monitor
