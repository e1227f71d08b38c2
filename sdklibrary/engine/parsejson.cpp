#include "parsejson.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <optional>

namespace kelvarissdk {

namespace {

// What jsoncpp throws for a text that is nested too deeply.
bool isTooDeep(std::exception const& failure) {
    return std::strstr(failure.what(), "stackLimit") != nullptr;
}

// Returns what is wrong with the text, or nothing.
std::optional<std::string> problemOf(JsonReader& reader, Json::Value& value, std::string const& text) {
    char const* const end = text.data() + text.size();
    if (reader.parse(text.data(), end, value, false)) {
        return std::nullopt;
    }
    std::string const problem = reader.getFormattedErrorMessages();
    // A number is read through a stream, which takes memory that runs out for a number that isn't one. What is wrong
    // with the text itself shows again.
    if (reader.parse(text.data(), end, value, false)) {
        return std::nullopt;
    }
    if (reader.getFormattedErrorMessages() != problem) {
        throw std::bad_alloc();
    }
    return problem;
}

} // namespace

void parseJson(JsonReader& reader, Json::Value& value, std::string const& text) {
    std::optional<std::string> problem;
    try {
        problem = problemOf(reader, value, text);
        if (!problem) {
            return;
        }
    } catch (Json::Exception const& failure) {
        if (!isTooDeep(failure)) {
            throw std::bad_alloc();
        }
        problem = failure.what();
        value = Json::Value();
    }
    std::fprintf(stderr, "Failed to parse JSON: %s\n", problem->c_str());
    std::fprintf(stderr, "JSON was: %s\n", text.c_str());
}

bool isOutOfMemory(std::exception const& failure) {
    return dynamic_cast<std::bad_alloc const*>(&failure) != nullptr ||
           dynamic_cast<Json::RuntimeError const*>(&failure) != nullptr;
}

Json::Value const& payloadOf(Json::Value const& message) {
    return message.isArray() ? message[1U] : Json::Value::nullSingleton();
}

} // namespace kelvarissdk
