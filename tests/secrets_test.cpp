// What a login leaves in the memory of the process that makes it, searched from outside: in all memory that can be
// written, what was given back included, no piece of eight bytes may be found. The pieces are counted from the secret's
// start, so whatever fifteen bytes of it stand in a row are found. The processes bind what they call when they start: the
// dynamic linker would save the processor's registers, and with them what was copied last, on the stack of the thread
// that calls a function first.

#include "support/process.h"
#include "support/scripteddaemon.h"
#include "support/texts.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <utility>
#include <vector>

using namespace harness;

namespace {

constexpr std::size_t pieceSize = 8;
Options const noName{.appName = std::nullopt};

struct SecretCall {
    std::string name; // of the host's
    std::string request;
    std::string before; // the secret in the payload
    std::string answer;
};

std::string const initialized = report("safe_browsing_settings", R"({"initialized":true})");
SecretCall const secretCalls[] = {
    {"password", "login", R"({"username":"me","password":")", state(2)},
    {"token", "login_oauth", R"({"oauth":")", state(2)},
    {"config", "initialize_safe_browsing", R"({"config":")", initialized},
    {"refresh", "safe_browsing_token_refresh", R"({"token":")", initialized},
};

// No piece of it comes twice, and none is anything but a piece of it.
std::string secretOf(std::size_t size) {
    std::minstd_rand random(static_cast<unsigned>(size));
    std::string secret;
    while (secret.size() < size) {
        secret += static_cast<char>('a' + random() % 26);
    }
    return secret;
}

// The command with everything bound at its start, and without the leak sanitizer, which can't work on a process that
// is traced. Without an input it has a terminal.
Command bound(std::vector<std::string> words, std::optional<std::string> const& input = std::nullopt) {
    Words const before = split("env LD_BIND_NOW=1 ASAN_OPTIONS=detect_leaks=0 " EMULATOR);
    words.insert(words.begin(), before.begin(), before.end());
    return {.path = "/usr/bin/env", .argv = std::move(words), .input = input};
}

// A line for each place in the process's memory that holds a piece of the secret.
std::string findings(pid_t process, std::string const& secret) {
    std::string const folder = "/proc/" + std::to_string(process);
    std::ifstream maps(folder + "/maps");
    std::ifstream memory(folder + "/mem");
    std::string found;
    std::size_t searched = 0;
    for (std::string line; std::getline(maps, line);) {
        std::size_t start = 0, end = 0;
        // What is larger belongs to a sanitizer.
        if (std::sscanf(line.c_str(), "%zx-%zx rw", &start, &end) != 2 || end - start >= 1 << 28) {
            continue;
        }
        std::string part(end - start, '\0');
        memory.seekg(static_cast<std::streamoff>(start));
        memory.read(part.data(), static_cast<std::streamsize>(part.size()));
        searched += static_cast<std::size_t>(memory.gcount());
        memory.clear();
        for (std::size_t piece = 0; piece + pieceSize <= secret.size(); piece += pieceSize) {
            std::string_view const wanted = std::string_view(secret).substr(piece, pieceSize);
            for (std::size_t at = 0; (at = part.find(wanted, at)) != std::string::npos; ++at) {
                found += "byte " + std::to_string(piece) + " in " + line + '\n';
            }
        }
    }
    EXPECT_GT(searched, 100'000U) << "the memory can't be read";
    return found;
}

} // namespace

class Secrets : public testing::Test {
protected:
    void SetUp() override {
#ifdef __SANITIZE_THREAD__
        GTEST_SKIP() << "the thread sanitizer's own memory takes minutes to search";
#endif
    }
};

TEST_F(Secrets, LibraryLeavesNone) {
    for (SecretCall const& call : secretCalls) {
        for (std::size_t const size : {31U, 100U, 500U}) {
            SCOPED_TRACE(call.name + ' ' + std::to_string(size));
            std::string const secret = secretOf(size);
            ScriptedDaemon daemon({{call.request, call.before + secret + "\"}", {call.answer}}}, noName);
            Process host(bound({SECRETS_HOST, std::to_string(daemon.port()), call.name}, secret));
            host.waitForOutput("returned");
            EXPECT_EQ(findings(host.id(), secret), "");
        }
    }
}

// Nobody listens, so the request is queued until the handle's end drops it.
TEST_F(Secrets, DroppedRequestsLeaveNone) {
    ScriptedDaemon const daemon({}, {.listen = false});
    for (std::string const call : {"password", "token"}) {
        std::string const secret = secretOf(100);
        Process host(bound({SECRETS_HOST, std::to_string(daemon.port()), call, "dropped"}, secret));
        host.waitForOutput("returned");
        EXPECT_EQ(findings(host.id(), secret), "") << call;
    }
}

// The tool is stopped on its way out, when all of its memory is still there.
TEST_F(Secrets, PromptLeavesNone) {
    for (bool const isToken : {false, true}) {
        SCOPED_TRACE(isToken);
        SecretCall const& call = secretCalls[isToken ? 1 : 0];
        std::string const secret = secretOf(isToken ? 500 : 31);
        ScriptedDaemon daemon({{call.request, call.before + secret + "\"}", {call.answer}}});
        Process tool(
            bound({SDKCLI_PATH, "-p", std::to_string(daemon.port()), "login", isToken ? "oauth" : "me"}));
        tool.waitForOutput(" : ");
        tool.waitForEcho(false);
        ASSERT_EQ(ptrace(PTRACE_SEIZE, tool.id(), nullptr, PTRACE_O_TRACEEXIT), 0);
        tool.type(secret + '\n');
        int status = 0;
        ASSERT_EQ(waitpid(tool.id(), &status, __WALL), tool.id());
        EXPECT_EQ(status >> 8, SIGTRAP | PTRACE_EVENT_EXIT << 8);
        EXPECT_EQ(findings(tool.id(), secret), "");
        ptrace(PTRACE_DETACH, tool.id(), nullptr, nullptr);
        EXPECT_EQ(tool.wait().status, 0);
    }
}
