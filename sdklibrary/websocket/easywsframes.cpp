#include "easywsframes.h"

#include <algorithm>
#include <cstring>

namespace easywsclient {

namespace {

std::uint64_t readBigEndian(std::span<std::uint8_t const> bytes) {
    std::uint64_t value = 0;
    for (std::uint8_t const byte : bytes) {
        value = value << 8 | byte;
    }
    return value;
}

} // namespace

std::optional<wsheader_type> parseHeader(std::span<std::uint8_t const> bytes) {
    if (bytes.size() < 2) {
        return std::nullopt;
    }
    wsheader_type header{};
    header.fin = (bytes[0] & 0x80) != 0;
    header.opcode = static_cast<opcode_type>(bytes[0] & 0x0F);
    header.mask = (bytes[1] & 0x80) != 0;
    header.shortLength = bytes[1] & 0x7FU;
    std::size_t const extended = header.shortLength == 126 ? 2 : header.shortLength == 127 ? 8 : 0;
    header.headerSize = 2 + extended + (header.mask ? header.key.size() : 0);
    if (bytes.size() < header.headerSize) {
        return std::nullopt;
    }
    header.length = extended == 0 ? header.shortLength : readBigEndian(bytes.subspan(2, extended));
    if (header.mask) {
        std::copy_n(&bytes[2 + extended], header.key.size(), header.key.begin());
    }
    return header;
}

void applyMask(std::span<std::uint8_t> payload, MaskKey const& key) {
    std::uint64_t wideKey = 0;
    std::memcpy(&wideKey, key.data(), 4);
    std::memcpy(reinterpret_cast<char*>(&wideKey) + 4, key.data(), 4);
    std::size_t i = 0;
    for (; i + 8 <= payload.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, &payload[i], 8);
        word ^= wideKey;
        std::memcpy(&payload[i], &word, 8);
    }
    for (; i < payload.size(); ++i) {
        payload[i] ^= key[i & 3];
    }
}

} // namespace easywsclient
