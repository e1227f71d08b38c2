// The words that name a place, for the actions that take <country> [<city> [<number>]].

#pragma once

// Two letters, or a private server's name. Case isn't changed.
bool isCountry(char const* word);
// Letters only; an empty word will do.
bool isCity(char const* word);

inline constexpr char connectUsage[] =
    "connect [ closest | public | private | p2p | <country> [<city> [<number>]] | last ]";
