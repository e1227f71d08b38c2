#include "text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <locale>
#include <sstream>

namespace monitor {

namespace {

struct Character {
    char32_t code = 0;
    std::size_t length = 1; // bytes, of what isn't a character too
    bool isValid = false;
};

// The first character of a text that isn't empty. Bytes that begin a character but don't finish it are one bad one.
Character firstOf(std::string_view text) {
    auto const byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned const head = byte(0);
    if (head < 0x80) {
        return {head, 1, true};
    }
    if (head < 0xC2 || head > 0xF4) {
        return {};
    }
    std::size_t const wanted = head >= 0xF0 ? 4 : head >= 0xE0 ? 3 : 2;
    char32_t code = head & (0x7FU >> wanted);
    // The second byte's range leaves out forms that are too long, surrogates, and what lies beyond U+10FFFF.
    unsigned const lowest = head == 0xE0 ? 0xA0 : head == 0xF0 ? 0x90 : 0x80;
    unsigned const highest = head == 0xED ? 0x9F : head == 0xF4 ? 0x8F : 0xBF;
    for (std::size_t i = 1; i < wanted; ++i) {
        bool const fits =
            i < text.size() && byte(i) >= (i == 1 ? lowest : 0x80) && byte(i) <= (i == 1 ? highest : 0xBF);
        if (!fits) {
            return {0, i, false};
        }
        code = code << 6 | (byte(i) & 0x3FU);
    }
    return {code, wanted, true};
}

bool isObeyed(char32_t code) {
    bool const controls = code < 0x20 || (code >= 0x7F && code < 0xA0);
    bool const separates = code == 0x2028 || code == 0x2029;
    bool const turns = code == 0x061C || code == 0x200E || code == 0x200F ||
                       (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return controls || separates || turns;
}

std::string escape(char32_t code) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), code < 0x100 ? "\\x%02x" : "\\u{%x}",
                  static_cast<unsigned>(code));
    return text.data();
}

std::string clean(std::string_view text, bool escapes) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        Character const next = firstOf(text);
        if (!next.isValid) {
            result += "\xEF\xBF\xBD";
        } else if (escapes && isObeyed(next.code)) {
            result += escape(next.code);
        } else {
            result += text.substr(0, next.length);
        }
        text.remove_prefix(next.length);
    }
    return result;
}

} // namespace

std::string repaired(std::string_view text) {
    return clean(text, false);
}

std::string printable(std::string_view text) {
    return clean(text, true);
}

std::u32string characters(std::string_view text) {
    std::u32string result;
    result.reserve(text.size());
    while (!text.empty()) {
        Character const next = firstOf(text);
        result += next.isValid ? next.code : U'\uFFFD';
        text.remove_prefix(next.length);
    }
    return result;
}

std::string rfc3339(std::chrono::system_clock::time_point time) {
    auto const whole = std::chrono::floor<std::chrono::seconds>(time);
    auto const rest = std::chrono::duration_cast<std::chrono::milliseconds>(time - whole).count();
    std::time_t const seconds = std::chrono::system_clock::to_time_t(whole);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(rest));
    return text.data();
}

std::string plain(double number) {
    std::array<char, 40> text{};
    char* const limit = text.data() + text.size();
    bool const isShort = number == 0 || (std::abs(number) >= 1e-6 && std::abs(number) < 1e21);
    auto const [end, error] = isShort ? std::to_chars(text.data(), limit, number, std::chars_format::fixed)
                                      : std::to_chars(text.data(), limit, number);
    return {text.data(), end};
}

// Not every C++ library has std::from_chars for fractions, and some streams read "0x10" as well.
std::optional<double> decimal(std::string_view text) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    double number = 0;
    bool const isWhole = stream >> number && stream.peek() == std::istringstream::traits_type::eof();
    if (!isWhole || text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) {
        return std::nullopt;
    }
    return number;
}

} // namespace monitor
