#include "support/texts.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace harness {

Words split(std::string const& text) {
    std::istringstream stream(text);
    Words words{std::istream_iterator<std::string>(stream), {}};
    std::replace(words.begin(), words.end(), std::string("''"), std::string());
    return words;
}

Command tool(Words const& words) {
    Command command{.path = SDKCLI_PATH, .argv = {SDKCLI_PATH}};
    command.argv.insert(command.argv.end(), words.begin(), words.end());
    return command;
}

std::string report(std::string const& name, std::string const& payload) {
    return "[\"report_" + name + "\"," + payload + "]";
}

std::string state(int number) {
    return report("current_state", "{\"state\":" + std::to_string(number) + "}");
}

std::string lock(std::string const& setting, int reason) {
    return report("setting_locked",
                  R"({"setting":")" + setting + R"(","reason":)" + std::to_string(reason) + "}");
}

Step asked(std::string const& what, std::string const& payload) {
    return {.request = "request_" + what, .answers = {report(what, payload)}};
}

std::string series(int first, int last, std::string const& element, std::string const& between) {
    std::string text;
    for (int i = first; i <= last; ++i) {
        text += i == first ? "" : between;
        for (char const sign : element) {
            text += sign == '#' ? std::to_string(i) : std::string(1, sign);
        }
    }
    return text;
}

std::string contents(std::string const& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    return (std::ostringstream() << file.rdbuf()).str();
}

std::string source(std::string const& path) {
    return contents(SOURCE_DIR "/" + path);
}

std::string golden(std::string const& name) {
    return source("tests/golden/" + name);
}

} // namespace harness
