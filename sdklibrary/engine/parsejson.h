// The messages of the daemon are read as JSON here.

#pragma once

#include <exception>
#include <string>

#include <json/json.h>

namespace kelvarissdk {

// This reader of jsoncpp refuses what strict JSON refuses, a trailing comma for example; its successor doesn't.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
using JsonReader = Json::Reader;
#pragma GCC diagnostic pop

// Parses a daemon message. A text that isn't valid JSON prints two lines on standard error; the value keeps
// what the reader left in it, and is null where the text is nested too deeply. Memory that runs out throws
// std::bad_alloc. Making a reader costs more than parsing a small report, so the caller keeps one.
void parseJson(JsonReader& reader, Json::Value& value, std::string const& text);

// Returns element 1 of a message, or null where there is none.
Json::Value const& payloadOf(Json::Value const& message);

// Tells memory that ran out, for which jsoncpp has an exception of its own, from other failures.
bool isOutOfMemory(std::exception const& failure);

} // namespace kelvarissdk
