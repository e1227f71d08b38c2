/*
 * From a record's fields to plain values, and from arguments back to what the C interface takes.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_FIELDS_HPP
#define KELVARISSDK_CPP_FIELDS_HPP

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace kelvaris {

/** Days without a calendar, which C++17 has no name for. */
using Days = std::chrono::duration<std::int32_t, std::ratio<86400>>;

namespace detail {

// How many of the bytes are left when a character that the end cuts is taken away.
inline std::size_t wholeCharacters(char const* bytes, std::size_t length) {
    for (std::size_t back = 1; back <= 3 && back <= length; ++back) {
        auto const byte = static_cast<unsigned char>(bytes[length - back]);
        if (byte < 0x80) {
            break;
        }
        if (byte >= 0xC0) {
            std::size_t const wanted = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            return wanted > back ? length - back : length;
        }
    }
    return length;
}

// A field ends at its first zero byte or with its width. Only a full one can end within a character.
template <std::size_t size> std::string text(char const (&field)[size]) {
    std::size_t const length = strnlen(field, size);
    return {field, length < size ? length : wholeCharacters(field, size)};
}

template <std::size_t count, std::size_t size>
std::vector<std::string> texts(char const (&fields)[count][size], std::size_t used) {
    std::vector<std::string> all;
    all.reserve(std::min(used, count));
    for (std::size_t i = 0; i < std::min(used, count); ++i) {
        all.push_back(text(fields[i]));
    }
    return all;
}

template <class T, std::size_t count> std::vector<T> items(T const (&fields)[count], std::size_t used) {
    return {fields, fields + std::min(used, count)};
}

template <class T, class Field, std::size_t count>
std::vector<T> values(Field const (&fields)[count], std::size_t used) {
    std::vector<T> all;
    all.reserve(std::min(used, count));
    for (std::size_t i = 0; i < std::min(used, count); ++i) {
        all.push_back(T::from(fields[i]));
    }
    return all;
}

template <class T> std::optional<T> unless(T sentinel, T value) {
    return value == sentinel ? std::nullopt : std::optional<T>(value);
}

// The numbers up to `last` have names, UNKNOWN stands for all others.
template <class Enum, class Number> Enum known(Number number, Enum last) {
    return static_cast<std::uint32_t>(number) <= static_cast<std::uint32_t>(last) ? static_cast<Enum>(number)
                                                                                  : Enum::UNKNOWN;
}

// Converts to the C interface's enumeration of the same numbers.
template <class Enum> struct AnyEnum {
    Enum value;
    template <class To> operator To() const {
        return static_cast<To>(value);
    }
};

// What the C interface takes for an argument.
template <class T> auto passed(T const& value) {
    if constexpr (std::is_enum_v<T>) {
        return AnyEnum<T>{value};
    } else {
        return value;
    }
}
inline char const* passed(std::string const& text) {
    return text.c_str();
}
inline char const* passed(std::optional<std::string> const& text) {
    return text ? text->c_str() : nullptr;
}

template <std::size_t size> void fill(char (&field)[size], std::string const& text) {
    std::memset(field, 0, size);
    std::memcpy(field, text.data(), std::min(text.size(), size));
}

// Texts in the slots of an array that the C interface takes.
template <std::size_t size> std::vector<std::array<char, size>> slots(std::vector<std::string> const& all) {
    std::vector<std::array<char, size>> filled(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::memcpy(filled[i].data(), all[i].data(), std::min(all[i].size(), size));
    }
    return filled;
}

template <class Item> Item* itemsOf(std::vector<Item>& list) {
    return list.data();
}
template <std::size_t size> auto itemsOf(std::vector<std::array<char, size>>& list) {
    return reinterpret_cast<char(*)[size]>(list.data());
}

} // namespace detail
} // namespace kelvaris

#endif
