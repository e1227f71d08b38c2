// Some periods of session statistics have a name, which documents and the command line share.

#pragma once

#include <cstdint>

struct NamedPeriod {
    uint32_t hours;
    char const* name;
};

inline constexpr NamedPeriod namedPeriods[] = {
    {0, "current"}, {UINT32_MAX, "total"}, {24, "day"}, {168, "week"}, {720, "month"},
};
