// Templates for the translator, with and without arguments.

#include "translator.h"

#include <cstdint>

using namespace kelvaris::localization;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static std::map<std::string, std::map<std::string, std::string>> table = {
        {"en", {{"", "empty"}, {"K", "{a}, {b} and {a}"}, {"L", "plain"}}}};
    registerTranslationTable(&table);
    std::string const input(reinterpret_cast<char const*>(data), size);
    translate(input);
    translate("{{K}}|" + input);
    return 0;
}
