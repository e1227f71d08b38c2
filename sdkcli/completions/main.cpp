// Writes a completion script from its template. A run has the arguments SHELL TEMPLATE VALUES OUTPUT. In the template
// @RULES@ stands for the tool's words, @VALUES@ for the awk program that reads values from a document, and @OPTIONS@
// for the options in the help text on standard input.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

#include "grammar.h"
#include "options.h"
#include "shells.h"

namespace {

std::string readFile(char const* path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("can't read " + std::string(path));
    }
    return (std::ostringstream() << file.rdbuf()).str();
}

// Puts a text in the place of a mark, which stands in a line of its own. The text is made only if the mark is there.
template <class Make> void fill(std::string& script, std::string const& mark, Make make) {
    std::size_t const position = script.find(mark + '\n');
    if (position != script.npos) {
        script.replace(position, mark.size() + 1, make());
    }
}

void write(char const* shellName, char const* templatePath, char const* valuesPath, char const* outputPath) {
    auto const* const shell = std::find_if(std::begin(shells), std::end(shells), [&](Shell const& each) {
        return each.name == std::string(shellName);
    });
    if (shell == std::end(shells)) {
        throw std::runtime_error("no such shell: " + std::string(shellName));
    }
    std::string script = readFile(templatePath);
    fill(script, "@RULES@", [&] { return shell->rules(rules()); });
    fill(script, "@VALUES@", [&] { return readFile(valuesPath); });
    fill(script, "@OPTIONS@", [&] { return shell->options(readOptions(std::cin)); });

    std::ofstream output(outputPath);
    output << script << std::flush;
    if (!output) {
        throw std::runtime_error("can't write " + std::string(outputPath));
    }
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 5) {
        std::fputs("completions SHELL TEMPLATE VALUES OUTPUT\n", stderr);
        return 2;
    }
    try {
        write(argv[1], argv[2], argv[3], argv[4]);
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "completions: %s\n", failure.what());
        return 1;
    }
    return 0;
}
