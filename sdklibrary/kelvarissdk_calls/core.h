// Several families read these from reports and write them into requests.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include <json/json.h>
#include <kelvarissdk/types.h>

namespace kelvarissdk {

// Reads "state" of report_current_state; a number other than 0 to 7 is read as unknown.
void setStateResult(KelvarisSDK_StateResult& result, Json::Value const& payload);

// Bonding modes have words on the wire. A word or a mode that isn't known counts as speed.
KelvarisSDK_BondingMode bondingModeFrom(Json::Value const& text);
char const* bondingModeWord(KelvarisSDK_BondingMode mode);

// Reads an object with "proto" and "port". A protocol other than "tcp" and "udp" leaves the pair's as it was.
void setPortPair(KelvarisSDK_ProtocolPortPair& pair, Json::Value const& object);
// Makes the array of such objects; one whose protocol has no name goes without "proto".
Json::Value portPairs(KelvarisSDK_ProtocolPortPair const* pairs, std::size_t count);

// Makes a payload of one member.
Json::Value with(Json::StaticString const& key, Json::Value value);

// Finds the enumerator from 0 to `last` that has this text, and nothing for any other text.
template <class Enum>
std::optional<Enum> enumFrom(Json::Value const& text, Enum last, char const* (*textOf)(Enum)) {
    std::string const name = text.asString();
    for (uint32_t number = 0; number <= last; ++number) {
        if (name == textOf(static_cast<Enum>(number))) {
            return static_cast<Enum>(number);
        }
    }
    return std::nullopt;
}

} // namespace kelvarissdk
