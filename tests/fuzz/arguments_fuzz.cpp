// Command lines, words separated by zero bytes, without a daemon: the library object has no link, so that
// every call fails at once.

#include "arguments.h"
#include "calls.h"
#include "kelvarissdk.h"
#include "websockets.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace {

class Unlinked : public kelvarissdk::KelvarisSDK {
public:
    Unlinked() : KelvarisSDK({.appName = "", .address = "127.0.0.1", .port = 0}) {
        websocket.reset();
    }
};

// A standard output in error ends the streams, which would have no end. The fuzzer keeps its own standard
// error.
void makeOutputFail() {
    stderr = std::fopen("/dev/null", "w");
    if (std::freopen("/dev/full", "w", stdout) == nullptr ||
        std::freopen("/dev/null", "r", stdin) == nullptr) {
        std::abort();
    }
    std::fputs("x", stdout);
    std::fflush(stdout);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static Unlinked library;
    makeOutputFail();
    sdk = reinterpret_cast<KelvarisSDK_Handle*>(static_cast<kelvarissdk::KelvarisSDK*>(&library));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::vector<std::string> words = {"sdkcli"};
    std::istringstream input(std::string(reinterpret_cast<char const*>(data), size));
    for (std::string word; std::getline(input, word, '\0');) {
        words.push_back(word);
    }
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    int const status = processArgs(static_cast<int>(words.size()), argv.data());
    if (status < 0 || status > 4) {
        std::abort();
    }
    return 0;
}
