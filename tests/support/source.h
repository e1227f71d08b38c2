#pragma once

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace harness {

inline std::string contents(std::string const& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    return (std::ostringstream() << file.rdbuf()).str();
}

// A file of the source tree as it stands.
inline std::string source(std::string const& path) {
    return contents(SOURCE_DIR "/" + path);
}

// Expected output. A difference that is wanted is a change of the file in the same commit.
inline std::string golden(std::string const& name) {
    return source("tests/golden/" + name);
}

} // namespace harness
