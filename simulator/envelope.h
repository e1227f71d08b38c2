#pragma once

#include <json/value.h>
#include <string>

namespace kelvarissim {

// Returns the parsed request, [name, payload or null, "kelvaris_sdk"]. A text of any other form throws
// std::exception with the reason.
Json::Value parseRequest(std::string const& text);

// Returns the text of a report. Clients take the name from the raw text, so it must follow `["` directly.
std::string reportText(std::string const& name, Json::Value const& payload);

// Returns the value as one line without white space between the tokens.
std::string compactText(Json::Value const& value);

// Logs show requests without passwords, access tokens and the configuration of safe browsing, which may hold some too.
// Returns a request with "***" in their places.
Json::Value withoutSecrets(Json::Value request);
// Returns a text that is no request, up to the first word that may introduce a secret.
std::string withoutSecrets(std::string const& text);

} // namespace kelvarissim
