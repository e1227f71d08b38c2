#include "options.h"

#include <regex>

std::vector<Option> readOptions(std::istream& help) {
    static std::regex const form("  (--[a-z-]+)(?: (\\S+))?  +(\\S.*)");
    std::vector<Option> found;
    std::string line;
    std::smatch match;
    while (std::getline(help, line)) {
        if (std::regex_match(line, match, form)) {
            found.push_back({match[1], match[2], match[3]});
        }
    }
    return found;
}
