#pragma once

#include <json/value.h>
#include <string>

namespace kelvarissim {

// The request as it came: [name, payload or null, "kelvaris_sdk"]. Throws std::exception with the reason when
// the text is no such thing.
Json::Value parseRequest(const std::string& text);

// The text of a report. Clients take the name from the raw text, right behind `["`, so nothing may stand
// before it.
std::string reportText(const std::string& name, const Json::Value& payload);

// One line, without white space between the tokens.
std::string compactText(const Json::Value& value);

} // namespace kelvarissim
