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
    std::FILE* const stream = failed == 0 ? stdout : stderr;
    std::fprintf(stream, "%s v%s.%s\n", binName, KELVARIS_VERSION, KELVARIS_BUILD);
    std::fprintf(stream, "Usage : %s action\n", binName);
    std::string text = "Actions:\n";
    for (char const* const line : helpLines) {
        text += "   ";
        text += line;
        text += '\n';
    }
    std::fputs(text.c_str(), stream);
}
