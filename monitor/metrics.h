#pragma once

#include "exposition.h"
#include "snapshot.h"

namespace monitor {

// What metricsOf() reads of the snapshot.
constexpr Topics metricsTopics = Topics::all();

// The snapshot as metrics, in base units. What isn't known now is no series; while the daemon is away nothing is but that it
// is.
std::string metricsOf(Snapshot const& snapshot, Format format);

} // namespace monitor
