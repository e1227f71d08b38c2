// Countries and cities have readable names for their codes.

#pragma once

#include "translator.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace kelvaris::localization {

// This is the built-in table. It is filled from the location rows at the first getCountry or getCity, so that a
// program that shows no location doesn't pay for it.
extern TranslationTable& sdklibraryTranslationTable;

// Registers the built-in table with the translator. Only the first call has an effect.
void load_sdklibraryTranslationTable();

} // namespace kelvaris::localization

namespace kelvarissdk {

// The location rows have a column for each of these languages.
constexpr std::array<std::string_view, 10> locationLanguages{"ar", "de", "en", "es", "fr",
                                                             "pt", "ro", "ru", "tr", "zh"};

// A place has a key in the table and a name in each language. The texts stand in the row itself, because the dynamic
// linker would have to relocate a pointer to each of them at every start of the program.
struct LocationRow {
    char key[28];
    char names[locationLanguages.size()][60];
};

// These are all places. They are constant data, which costs nothing at the start of the program.
extern std::span<LocationRow const> const locationRows;

// Both return the name for a code as the servers have it, in lower case. An unknown code comes back as the translator's
// template, "{{LOCATION.CITY.code}}", and an empty code has an empty name. The country of a connection through a proxy
// is "proxy" in every language.
std::string getCountry(std::string code);
std::string getCity(std::string code);

} // namespace kelvarissdk
