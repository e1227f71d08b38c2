#include "parsejson.h"

#include <cstdio>

namespace kelvarissdk {

// This reader of jsoncpp refuses what strict JSON refuses, a trailing comma for example; its successor doesn't.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void parseJson(Json::Value& value, std::string const& text) {
    // Making a reader costs more than parsing a small report, so each thread keeps one.
    thread_local Json::Reader reader;
    std::string problem;
    try {
        if (reader.parse(text.data(), text.data() + text.size(), value, false)) {
            return;
        }
        problem = reader.getFormattedErrorMessages();
    } catch (Json::Exception const& tooDeep) {
        problem = tooDeep.what();
        value = Json::Value();
    }
    std::fprintf(stderr, "Failed to parse JSON: %s\n", problem.c_str());
    std::fprintf(stderr, "JSON was: %s\n", text.c_str());
}
#pragma GCC diagnostic pop

Json::Value const& payloadOf(Json::Value const& message) {
    return message.isArray() ? message[1U] : Json::Value::nullSingleton();
}

} // namespace kelvarissdk
