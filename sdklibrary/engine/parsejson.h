// The messages of the daemon as JSON.

#pragma once

#include <string>

#include <json/json.h>

namespace kelvarissdk {

// Parses a daemon message. A text that isn't valid JSON prints two lines on standard error; the value keeps
// what the reader left in it.
void parseJson(Json::Value& value, std::string const& text);

// Element 1 of a message, null where there is none.
Json::Value const& payloadOf(Json::Value const& message);

} // namespace kelvarissdk
