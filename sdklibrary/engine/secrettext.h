// The text of requests that may hold a secret. jsoncpp's writer leaves pieces of what it writes in memory that it gives
// back; what is written here stands in the result alone.

#pragma once

#include <string>

#include <json/json.h>

namespace kelvarissdk {

// True for an object of texts alone, which is what a login's payload is.
bool holdsTextsOnly(Json::Value const& payload);

// What jsoncpp's styled writer makes of [name, payload, sender], without a line end. The payload holds texts only.
std::string secretText(std::string const& name, Json::Value const& payload, char const* sender);

} // namespace kelvarissdk
