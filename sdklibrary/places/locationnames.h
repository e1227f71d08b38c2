// Readable names for the codes of countries and cities.

#pragma once

#include "translator.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace kelvaris::localization {

// The built-in table. It is filled from the location rows at the first getCountry or getCity, so that a
// program that shows no location doesn't pay for it.
extern TranslationTable& sdklibraryTranslationTable;

// Registers the built-in table with the translator. Only the first call has an effect.
void load_sdklibraryTranslationTable();

} // namespace kelvaris::localization

namespace kelvarissdk {

// The columns of the location rows.
constexpr std::array<std::string_view, 10> locationLanguages{"ar", "de", "en", "es", "fr",
                                                             "pt", "ro", "ru", "tr", "zh"};

// A place: its key in the table and its name in each language. Texts in place instead of pointers to them:
// the dynamic linker would have to relocate each pointer at every start of the program.
struct LocationRow {
    char key[28];
    char names[locationLanguages.size()][60];
};

// All places. Constant data: having it costs nothing at the start of the program.
extern std::span<LocationRow const> const locationRows;

// The name for a code as the servers have it, in lower case. An unknown code comes back as the translator's
// template, "{{LOCATION.CITY.code}}"; an empty code has an empty name. The country of a connection through a
// proxy is "proxy", in every language.
std::string getCountry(std::string code);
std::string getCity(std::string code);

} // namespace kelvarissdk
