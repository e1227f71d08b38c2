#include "envelope.h"

#include <algorithm>
#include <array>
#include <json/reader.h>
#include <json/writer.h>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace kelvarissim {

namespace {

constexpr char const* senderName = "kelvaris_sdk";

constexpr std::array secretKeys = {"password", "oauth", "token", "config"};
constexpr char const* mask = "***";

std::unique_ptr<Json::CharReader> makeReader() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

std::unique_ptr<Json::StreamWriter> makeWriter() {
    Json::StreamWriterBuilder builder;
    builder["commentStyle"] = "None";
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    builder["precision"] = 15; // so that 4.2 is written as 4.2
    return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

// A text that no key introduces may be anything.
Json::Value masked(Json::Value value, bool hasKey) {
    if (value.isString() && !hasKey) {
        return mask;
    }
    hasKey = hasKey || value.isObject();
    for (auto member = value.begin(); member != value.end(); ++member) {
        bool const isSecret = std::count(secretKeys.begin(), secretKeys.end(), member.name()) != 0;
        *member = isSecret ? Json::Value(mask) : masked(*member, hasKey);
    }
    return value;
}

} // namespace

Json::Value parseRequest(std::string const& text) {
    static std::unique_ptr<Json::CharReader> const reader = makeReader();
    Json::Value request;
    std::string errors;
    if (!reader->parse(text.data(), text.data() + text.size(), &request, &errors)) {
        throw std::runtime_error("not valid JSON");
    }
    if (!request.isArray() || request.size() != 3 || !request[0].isString() || request[2] != senderName) {
        throw std::runtime_error(std::string("not [name, payload, \"") + senderName + "\"]");
    }
    return request;
}

std::string reportText(std::string const& name, Json::Value const& payload) {
    return '[' + compactText(name) + ',' + compactText(payload) + ']';
}

std::string compactText(Json::Value const& value) {
    static std::unique_ptr<Json::StreamWriter> const writer = makeWriter();
    std::ostringstream text;
    writer->write(value, &text);
    return std::move(text).str();
}

Json::Value withoutSecrets(Json::Value request) {
    request[1] = masked(request[1], false);
    return request;
}

std::string withoutSecrets(std::string const& text) {
    std::size_t end = text.size();
    auto const endBehind = [&](std::string const& word) {
        std::size_t const found = text.find(word);
        end = found < end ? found + word.size() : end;
    };
    endBehind("login"); // what follows may be a secret without a key
    std::for_each(secretKeys.begin(), secretKeys.end(), endBehind);
    return end == text.size() ? text : text.substr(0, end) + mask;
}

} // namespace kelvarissim
