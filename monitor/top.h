#pragma once

#include "options.h"
#include "view.h"

namespace monitor {

// What a key does to a view.
enum class Effect { nothing, changed, pause, redraw, quit };
Effect applyKey(ViewState& view, int key, Snapshot const& snapshot);

// What the locale and the terminal can show; the locale is set.
void adaptTo(ViewState& view, GraphChoice graph, bool isDumb);

} // namespace monitor
