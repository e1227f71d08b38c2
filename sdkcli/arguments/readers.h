// Reading the words of an action, and the two ways to refuse them. The readers give nothing for a word that
// doesn't pass.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include <kelvarissdk/types.h>

// Whether a word is exactly this keyword.
bool is(char const* word, char const* keyword);

// "Missing parameters" on standard error; returns its status, 3.
int missing(char const* usage);
// "Invalid parameters" on standard error; returns its status, 2.
int invalid(char const* usage);

std::optional<bool> readOnOff(char const* word);

// A decimal number, the whole word of it. Beyond 64 bits it is the nearest that they hold.
std::optional<long long> readNumber(char const* word);
// A number from 0 to 4294967295.
std::optional<uint32_t> readCount(char const* word);
// A number that a signed 32-bit integer holds, not below `least`.
std::optional<int> readInt(char const* word, int least);
// A number of 64 bits; a minus sign wraps it around.
std::optional<unsigned long long> readUnsigned(char const* word);
// A port, 1 to 65535, with "/tcp" or "/udp" behind it; tcp without. What follows those three letters isn't
// looked at.
std::optional<KelvarisSDK_ProtocolPortPair> readPortPair(char const* word);

// Fills a field with a word over its full width; a word as long as the field leaves no terminator.
template <std::size_t N> void copyWord(char (&field)[N], char const* word) {
    std::size_t const length = strnlen(word, N);
    std::memcpy(field, word, length);
    std::memset(field + length, 0, N - length);
}

// Exactly one word behind the keyword, which `read` takes.
template <class Value>
int oneWordAction(int argc, char* argv[], char const* usage, std::optional<Value> (*read)(char const*),
                  int (*set)(Value)) {
    if (argc == 2) {
        return missing(usage);
    }
    std::optional<Value> const value = argc == 3 ? read(argv[2]) : std::nullopt;
    return value ? set(*value) : invalid(usage);
}
