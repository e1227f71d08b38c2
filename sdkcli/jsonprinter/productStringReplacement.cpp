#include "productStringReplacement.h"

#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view placeholder = "{kelvarisProductName}";
constexpr std::string_view productName = "Kelvaris";
constexpr std::size_t width = 200;

char buffer[width + 1]; // the last byte is never written

} // namespace

char const* replaceProductString(char const* text) {
    std::string replaced = text;
    std::size_t position = replaced.find(placeholder);
    if (position == std::string::npos) {
        return text;
    }
    while (position != std::string::npos) {
        replaced.replace(position, placeholder.size(), productName);
        position = replaced.find(placeholder, position + productName.size());
    }
    std::strncpy(buffer, replaced.c_str(), width);
    return buffer;
}
