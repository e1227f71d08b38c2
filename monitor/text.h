#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace monitor {

// Texts of the daemon come from networks and people: they may hold control characters, and bytes that are no UTF-8.

// The text as UTF-8: what isn't becomes U+FFFD.
std::string repaired(std::string_view text);

// The same on one line, with nothing in it that a terminal obeys or that turns the direction of writing: "\x1b" stands for
// such a character, and "\u{202e}" beyond the first 256.
std::string printable(std::string_view text);

// The characters of such a text, each by its number.
std::u32string characters(std::string_view text);

// "2026-11-23T15:24:29.123Z"
std::string rfc3339(std::chrono::system_clock::time_point time);

// A decimal number that reads back as the same one: "0.25", "1000000", "1e+21". Shells count with those that have no
// exponent.
std::string plain(double number);

// The number that is the whole text: "0.25", "1e3".
std::optional<double> decimal(std::string_view text);

} // namespace monitor
