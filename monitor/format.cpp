#include "format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace monitor {

namespace {

template <class... Values> std::string print(char const* format, Values... values) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

struct Scaled {
    std::string number; // three digits
    char const* prefix;
};

// The digits are judged after rounding, so that 999.9 is "1.00 k" rather than "1000".
Scaled scaled(double number) {
    constexpr std::array<char const*, 8> prefixes = {"", "k", "M", "G", "T", "P", "E", "Z"};
    std::size_t prefix = 0;
    number = std::min(std::max(number, 0.0), 999e21);
    while (number >= 999.5 && prefix + 1 < prefixes.size()) {
        number /= 1000;
        ++prefix;
    }
    int const digits = prefix == 0 || number >= 99.95 ? 0 : number >= 9.995 ? 1 : 2;
    return {print("%.*f", digits, number), prefixes[prefix]};
}

std::string twoParts(long long large, char const* largeUnit, long long small, char const* smallUnit) {
    return small == 0 ? print("%lld %s", large, largeUnit)
                      : print("%lld %s %lld %s", large, largeUnit, small, smallUnit);
}

} // namespace

std::string rateText(double bitsPerSecond, Unit unit) {
    if (!std::isfinite(bitsPerSecond)) {
        return unknown;
    }
    auto const [number, prefix] = scaled(unit == Unit::bits ? bitsPerSecond : bitsPerSecond / 8);
    return number + " " + prefix + (unit == Unit::bits ? "bit/s" : "B/s");
}

std::string shortRate(double bitsPerSecond, Unit unit) {
    if (!std::isfinite(bitsPerSecond)) {
        return unknown;
    }
    auto const [number, prefix] = scaled(unit == Unit::bits ? bitsPerSecond : bitsPerSecond / 8);
    return number + prefix;
}

std::string scaleText(double bitsPerSecond, Unit unit) {
    auto [number, prefix] = scaled(unit == Unit::bits ? bitsPerSecond : bitsPerSecond / 8);
    if (number.find('.') != std::string::npos) {
        number.erase(number.find_last_not_of('0') + 1);
        number.erase(number.find_last_not_of('.') + 1);
    }
    return number + prefix;
}

std::string bytesText(double bytes) {
    auto const [number, prefix] = scaled(bytes);
    return number + " " + prefix + "B";
}

std::string durationText(Seconds time) {
    auto const seconds = static_cast<long long>(std::clamp(time.count(), 0.0, 1e12));
    if (seconds >= 86400) {
        return twoParts(seconds / 86400, "d", seconds / 3600 % 24, "h");
    }
    if (seconds >= 3600) {
        return twoParts(seconds / 3600, "h", seconds / 60 % 60, "min");
    }
    return seconds >= 60 ? twoParts(seconds / 60, "min", seconds % 60, "s") : print("%lld s", seconds);
}

std::string latencyText(std::optional<double> seconds) {
    if (!seconds || !std::isfinite(*seconds) || *seconds < 0) {
        return unknown;
    }
    if (*seconds < 0.9995) {
        return print("%.0f ms", *seconds * 1000);
    }
    return *seconds < 9.95 ? print("%.1f s", *seconds) : print("%.0f s", std::min(*seconds, 9999.0));
}

std::string percentText(double ratio) {
    if (!std::isfinite(ratio)) {
        return unknown;
    }
    double const percent = std::clamp(ratio, 0.0, 1.0) * 100;
    if (percent == 0) {
        return "0 %";
    }
    if (percent < 0.095) {
        return "<0.1 %";
    }
    return percent < 9.95 ? print("%.1f %%", percent) : print("%.0f %%", percent);
}

// The hours are those of noon, which every day has.
int daysUntil(std::int64_t dayOfMonth, std::chrono::system_clock::time_point now) {
    using namespace std::chrono;
    std::time_t const time = system_clock::to_time_t(now);
    std::tm parts{};
    localtime_r(&time, &parts);
    year_month_day const today(year(parts.tm_year + 1900), month(static_cast<unsigned>(parts.tm_mon) + 1),
                               day(static_cast<unsigned>(parts.tm_mday)));
    auto const wanted = day(static_cast<unsigned>(std::clamp<std::int64_t>(dayOfMonth, 1, 31)));
    for (year_month month = today.year() / today.month();; month += months(1)) {
        auto const last = (month / std::chrono::last).day();
        sys_days const begin = month / std::min(wanted, last);
        if (begin > sys_days(today)) {
            return static_cast<int>((begin - sys_days(today)).count());
        }
    }
}

} // namespace monitor
