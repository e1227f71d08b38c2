#include "keyword.h"

#include "readers.h"

Keyword const* findKeyword(Keywords keywords, char const* word) {
    for (Keyword const& keyword : keywords) {
        if (equals(word, keyword.word)) {
            return &keyword;
        }
    }
    return nullptr;
}

int runKeyword(int argc, char* argv[], int place, Keywords keywords, char const* line) {
    if (argc == place) {
        return missing(line);
    }
    Keyword const* const keyword = findKeyword(keywords, argv[place]);
    return keyword == nullptr ? invalid(line) : keyword->action(argc, argv);
}
