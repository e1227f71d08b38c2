#pragma once

#include "snapshot.h"

#include <json/value.h>

namespace monitor {

// A topic of the snapshot as JSON; null while nothing is known of it. Its keys are those that sdkcli prints, with times
// in RFC 3339 and without what nobody has reported.
Json::Value documentOf(Snapshot const& snapshot, Topic topic);

// All of these topics, each under its name.
Json::Value documentOf(Snapshot const& snapshot, Topics topics);

// On one line, without its end, in UTF-8.
std::string compact(Json::Value const& document);

} // namespace monitor
