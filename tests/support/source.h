#pragma once

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace harness {

// A file of the source tree as it stands.
inline std::string source(std::string const& path) {
    std::ifstream file(SOURCE_DIR "/" + path);
    EXPECT_TRUE(file) << path;
    return (std::ostringstream() << file.rdbuf()).str();
}

// Expected output. A difference that is wanted is a change of the file in the same commit.
inline std::string golden(std::string const& name) {
    return source("tests/golden/" + name);
}

} // namespace harness
