#pragma once

#include <json/value.h>
#include <string>

namespace kelvarissim {

// The request as it came: [name, payload or null, "kelvaris_sdk"]. Throws std::exception with the reason when
// the text is no such thing.
Json::Value parseRequest(std::string const& text);

// The text of a report. Clients take the name from the raw text, right behind `["`, so nothing may stand
// before it.
std::string reportText(std::string const& name, Json::Value const& payload);

// One line, without white space between the tokens.
std::string compactText(Json::Value const& value);

} // namespace kelvarissim
