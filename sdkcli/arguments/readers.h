// The readers give the value of a word, and nothing for a word that doesn't pass. Two more functions refuse an
// action's words.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include <kelvarissdk/session.h>

// The program's own name in messages has at most 512 bytes, and a terminator.
extern char binName[512 + 1];

// Says "Missing parameters" on standard error and returns the status of that, 3.
int missing(char const* line);
// Says "Invalid parameters" on standard error and returns the status of that, 2.
int invalid(char const* line);

bool equals(char const* word, char const* other);

// A private server's name, which stands in the place of a country, is "private" and two letters.
bool isPrivate(char const* word);
// A country is two letters, or a private server's name. Case isn't changed.
bool isCountry(char const* word);
// A city has letters only; an empty word will do.
bool isCity(char const* word);

std::optional<bool> readOnOff(char const* word);

// Reads a way to choose a server. Those that are told by a place or by no word at all have no word here.
std::optional<KelvarisSDK_AutoConnectMethod> readMethod(char const* word);

// Reads a decimal number that is the whole word. Beyond 64 bits it is the nearest that they hold.
std::optional<long long> readNumber(char const* word);
// Reads a number from 0 to 4294967295.
std::optional<uint32_t> readCount(char const* word);
// Reads a number that a signed 32-bit integer holds and that isn't below `min`.
std::optional<int> readInt(char const* word, int min);
// Reads a number of 64 bits; a minus sign wraps it around.
std::optional<unsigned long long> readUnsigned(char const* word);
// Reads a port, 1 to 65535, with "/tcp" or "/udp" behind it; without them it is tcp. What follows those three
// letters isn't looked at.
std::optional<KelvarisSDK_ProtocolPortPair> readPortPair(char const* word);

// Reads a value of an enumeration by its text. The values run from 0 to `last`; numbers above it aren't asked for
// their text, because toString() gives them one too.
template <auto toString, auto last> std::optional<decltype(last)> readEnumeration(char const* word) {
    for (uint32_t number = 0; number <= last; ++number) {
        auto const value = static_cast<decltype(last)>(number);
        if (equals(word, toString(value))) {
            return value;
        }
    }
    return std::nullopt;
}

// Fills a field with a word over its full width; a word as long as the field leaves no terminator.
template <std::size_t N> void copyWord(char (&field)[N], char const* word) {
    std::memset(field, 0, N);
    memccpy(field, word, '\0', N);
}

// Makes the call for an action without words.
inline int noWordAction(int argc, char const* line, int (*call)()) {
    return argc == 2 ? call() : invalid(line);
}

// Makes the call with the one word behind the keyword, which `read` takes.
template <class Value>
int oneWordAction(int argc, char* argv[], char const* line, std::optional<Value> (*read)(char const*),
                  int (*call)(Value)) {
    if (argc == 2) {
        return missing(line);
    }
    std::optional<Value> const value = argc == 3 ? read(argv[2]) : std::nullopt;
    return value ? call(*value) : invalid(line);
}
