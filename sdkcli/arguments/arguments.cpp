#include "arguments.h"

#include <cstdio>
#include <string>

#include "actions.h"
#include "readers.h"

int processArgs(int argc, char* argv[]) {
    // Options without an action behind them leave no keyword.
    Keyword const* const keyword = argc >= 2 ? findKeyword(keywords, argv[1]) : nullptr;
    if (keyword == nullptr) {
        showUsage(1);
        return 4;
    }
    return keyword->action(argc, argv);
}

void showUsage(int failed) {
    std::string text = std::string(binName) + " v" KELVARIS_VERSION "." KELVARIS_BUILD "\n";
    text += std::string("Usage : ") + binName + " action\nActions:\n";
    for (char const* const line : helpLines) {
        text += "   ";
        text += line;
        text += '\n';
    }
    std::fputs(text.c_str(), failed == 0 ? stdout : stderr);
}
