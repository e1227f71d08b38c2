#include "secrettext.h"

#include <algorithm>
#include <string_view>

namespace kelvarissdk {

namespace {

constexpr std::size_t maxEscapedSize = 6; // of a byte
constexpr std::size_t maxFrame = 64;      // what stands around the texts of a member, or of the request

std::string_view textOf(Json::Value const& value) {
    char const* begin = nullptr;
    char const* end = nullptr;
    value.getString(&begin, &end);
    return {begin, end};
}

// A key needn't be copied for this.
std::string_view keyOf(Json::Value::const_iterator const& member) {
    char const* end = nullptr;
    char const* const begin = member.memberName(&end);
    return {begin, end};
}

bool isPlain(char c) {
    auto const byte = static_cast<unsigned char>(c);
    return byte >= ' ' && byte < 0x80 && byte != '"' && byte != '\\';
}

// How many bytes of the text jsoncpp takes for the character with which it begins, whatever they are.
std::size_t sizeOfCharacter(std::string_view text) {
    auto const first = static_cast<unsigned char>(text.front());
    std::size_t const size = first < 0x80 || first >= 0xF8 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    return std::min(size, text.size());
}

// jsoncpp escapes one character at a time, which is too little to tell anything.
void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    while (!text.empty()) {
        auto const plain =
            static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (!text.empty()) {
            std::string const character(text.substr(0, sizeOfCharacter(text)));
            std::string const quoted = Json::valueToQuotedString(character.c_str());
            out.append(quoted, 1, quoted.size() - 2);
            text.remove_prefix(character.size());
        }
    }
    out += '"';
}

} // namespace

bool holdsTextsOnly(Json::Value const& payload) {
    return payload.isObject() && !payload.empty() &&
           std::all_of(payload.begin(), payload.end(),
                       [](Json::Value const& member) { return member.isString(); });
}

std::string secretText(std::string const& name, Json::Value const& payload, char const* sender) {
    std::size_t bytes = name.size() + std::char_traits<char>::length(sender);
    for (auto member = payload.begin(); member != payload.end(); ++member) {
        bytes += keyOf(member).size() + textOf(*member).size() + maxFrame;
    }
    std::string text;
    text.reserve(maxEscapedSize * bytes + maxFrame); // growing would leave copies behind
    text += "[\n\t";
    appendQuoted(text, name);
    text += ",\n\t{";
    for (auto member = payload.begin(); member != payload.end(); ++member) {
        text += member == payload.begin() ? "\n\t\t" : ",\n\t\t";
        appendQuoted(text, keyOf(member));
        text += " : ";
        appendQuoted(text, textOf(*member));
    }
    text += "\n\t},\n\t";
    appendQuoted(text, sender);
    text += "\n]";
    return text;
}

} // namespace kelvarissdk
