// The head of a frame and its mask.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace easywsclient {

using MaskKey = std::array<std::uint8_t, 4>;
inline constexpr MaskKey masking_key{0xA7, 0x1C, 0x5E, 0x39}; // the same on every frame: the link is local

struct wsheader_type {
    enum class opcode_type : std::uint8_t {
        continuation = 0,
        text = 1,
        binary = 2,
        close = 8,
        ping = 9,
        pong = 10
    };

    bool fin;
    opcode_type opcode;
    bool mask;
    unsigned shortLength; // the 7 bits: the length, or which longer form it has
    std::size_t headerSize;
    std::uint64_t length;
    MaskKey key;
};
using opcode_type = wsheader_type::opcode_type;

// Returns nothing while the header isn't complete.
std::optional<wsheader_type> parseHeader(std::span<std::uint8_t const> bytes);

// Masks a payload, or unmasks it: twice is nothing.
void applyMask(std::span<std::uint8_t> payload, MaskKey const& key);

} // namespace easywsclient
