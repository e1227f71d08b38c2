#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace monitor {

using Seconds = std::chrono::duration<double>;

enum class Unit { bits, bytes };

// What isn't known, or can't be.
constexpr char unknown[] = "–";

// A rate that comes in bits per second: "42.1 Mbit/s", "5.26 MB/s". At most 11 columns.
std::string rateText(double bitsPerSecond, Unit unit);
// "42.1M", at most 5 columns.
std::string shortRate(double bitsPerSecond, Unit unit);
// The same of a round number: "50M".
std::string scaleText(double bitsPerSecond, Unit unit);
// "12.4 GB", at most 7 columns.
std::string bytesText(double bytes);
// "3 d 4 h", "2 h 14 min", "14 min 3 s", "8 s".
std::string durationText(Seconds time);
// "12 ms", "1.2 s"; without a value unknown.
std::string latencyText(std::optional<double> seconds);
// "0 %", "<0.1 %", "0.4 %", "12 %" of a ratio.
std::string percentText(double ratio);

// Days from a moment to the next one in local time that has this day of the month and has not begun yet. A month that is
// shorter ends the period on its last day.
int daysUntil(std::int64_t dayOfMonth, std::chrono::system_clock::time_point now);

} // namespace monitor
