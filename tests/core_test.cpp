// The frame of the tool: options, dispatch, usage text, the actions of no family, the error document, the
// prompt, the product's name in messages.

#include "productStringReplacement.h"
#include "prompt.h"
#include "stream.h"
#include "support/rows.h"
#include "support/source.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <regex>
#include <unistd.h>

using namespace harness;

namespace {

int allocationsToFailure = 0; // 0: none fails

std::string const loggedIn = styled(R"({"state":"LOGGED_IN"})");

Step loggingIn(std::string const& password) {
    return {"login", R"({"password":")" + password + R"(","username":"me"})", {state(2)}};
}

std::string usageOf(std::string const& program) {
    return std::regex_replace(golden("usage.txt"), std::regex("PROGRAM"), program);
}

} // namespace

void* operator new(std::size_t size) {
    if (allocationsToFailure > 0 && --allocationsToFailure == 0) {
        throw std::bad_alloc();
    }
    return std::malloc(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

// Help prints it; whatever isn't an action shows it as an error, and so do options without an action.
TEST(Frame, UsageText) {
    std::string const usage = usageOf("sdkcli");
    struct Case {
        std::vector<std::string> words;
        bool help;
    };
    for (Case const& c : {Case{{}, true},
                          {{"-h"}, true},
                          {{"--help", "state"}, true},
                          {{"State"}, false},
                          {{""}, false},
                          {{"-p"}, false},
                          {{"-p", "9", "-h"}, false},
                          {{"-i", "127.0.0.1", "-p"}, false},
                          {{"-i", "127.0.0.1", "-p", "9"}, false},
                          {{"-p", "9", "-i", "127.0.0.1", "state"}, false}}) {
        SCOPED_TRACE(testing::PrintToString(c.words));
        Outcome const outcome = runProcess(tool(c.words));
        EXPECT_EQ(outcome.status, c.help ? 0 : 4);
        EXPECT_EQ(outcome.out, c.help ? usage : "");
        EXPECT_EQ(outcome.err, c.help ? "" : usage);
    }
    // The program's name is what stands behind the last slash, or else behind the last backslash.
    for (std::string const name : {"/a/b\\c/tool", "x\\tool"}) {
        Command command = tool({"-h"});
        command.argv[0] = name;
        EXPECT_EQ(runProcess(command).out, usageOf("tool"));
    }
}

// The port is read as a decimal number and taken modulo 65536.
TEST(Frame, Options) {
    std::vector<std::string> words = {"--ip", "localhost", "--port", "", "state"};
    for (int const beyond : {0, 65536}) {
        ScriptedDaemon daemon({asked("current_state", R"({"state":2})")});
        words[3] = '0' + std::to_string(daemon.port() + beyond);
        EXPECT_EQ(runProcess(tool(words)).out, loggedIn);
    }
}

// Each call's time-out in seconds: an answer after three fifths of it comes in time, one after three halves
// comes too late. On these clocks every time-out takes a second.
TEST(Frame, TimeOuts) {
    std::vector<Row> rows;
    struct Case {
        std::string words, request, payload, answer, out;
        int seconds;
    };
    for (auto const& [words, request, payload, answer, out, seconds] : {
             Case{"state", "request_current_state", "null", state(2), loggedIn, 5},
             Case{"disconnect", "server_disconnect", "null", state(2), loggedIn, 5},
             Case{"login oauth t", "login_oauth", R"({"oauth":"t"})", state(2), loggedIn, 60},
             Case{"login me s", "login", R"({"password":"s","username":"me"})", state(2), loggedIn, 60},
             Case{"connect proxy", "server_auto_connect", R"({"server":"proxy"})",
                  lock("server_auto_connect", 2), "", 60},
             Case{"captiveportal check", "check_captive_networks", "null", report("captive_networks", "{}"),
                  "[]\n", 30},
             Case{"speedtest", "speedtest", "null", report("speedtest_results", "[]"), "[]\n", 60},
             Case{"streamtest", "streamtest", "null", report("speedtest_results", "[]"), "[]\n", 200},
         }) {
        Row inTime = row(words, {{request, payload, {answer}, Then::carryOn, 600}}, out);
        if (out.empty()) {
            inTime.err = lockedByAccount;
            inTime.status = 1;
        }
        Row tooLate = failing(words, {{request, payload, {answer}, Then::carryOn, 1500}}, timedOut);
        inTime.clock = tooLate.clock = seconds;
        rows.push_back(inTime);
        rows.push_back(tooLate);
    }
    std::string const unreachable =
        errorDocument(3845, "Not able to establish connection to daemon", "Unable to connect");
    rows.push_back({"nobody listens", {"state"}, {}, "", unreachable, 1, "", {.listen = false}, 5});
    runRowsInParallel(rows);
}

TEST(Product, PlaceholderIsReplaced) {
    char const* const plain = "kelvarisProductName {kelvarisProductname}";
    EXPECT_EQ(replaceProductString(plain), plain);
    EXPECT_STREQ(replaceProductString("{kelvarisProductName} & {kelvarisProductName}{"),
                 "Kelvaris & Kelvaris{");
    std::string const full = replaceProductString(("{kelvarisProductName}" + std::string(300, 'x')).c_str());
    EXPECT_EQ(full, "Kelvaris" + std::string(192, 'x'));
    EXPECT_STREQ(replaceProductString("{kelvarisProductName}"), "Kelvaris");
}

// Whichever allocation of a report fails, nothing of the report is written, and the stream ends.
TEST(Product, ReportsAreWrittenWholeOrNotAtAll) {
    auto const record = std::make_unique<KelvarisSDK_AdaptersResult>();
    record->adapterCount = 8;
    bool failed = true;
    for (int failing = 1; failed; ++failing) {
        Stream stream;
        testing::internal::CaptureStdout();
        allocationsToFailure = failing;
        bool const goesOn = printReport("adapters", *record, &stream, printAdaptersResult);
        failed = std::exchange(allocationsToFailure, 0) == 0;
        EXPECT_EQ(testing::internal::GetCapturedStdout().empty(), failed) << failing;
        EXPECT_EQ(goesOn, !failed);
        EXPECT_EQ(stream.lacksMemory, failed);
    }
}

TEST(Login, PromptReadsALine) {
    auto const typed = [](std::string const& input, std::string const& words, Step const& step,
                          std::string const& what) {
        Row prompted = row(words, {step}, "Enter " + what + " : " + loggedIn);
        prompted.input = input;
        return prompted;
    };
    runRows({
        typed("secret word\nmore\n", "login me", loggingIn("secret word"), "password"),
        // Without a line end the last byte is lost.
        typed("secret", "login me", loggingIn("secre"), "password"),
        typed("", "login me", loggingIn(""), "password"),
        // What is longer than its room is cut.
        typed(std::string(40, 'x') + "\n", "login me", loggingIn(std::string(31, 'x')), "password"),
        typed(std::string(600, 't') + "\n", "login oauth",
              {"login_oauth", R"({"oauth":")" + std::string(511, 't') + "\"}", {state(2)}}, "oauth token"),
    });
}

// This process has the secret in two pieces, so that whoever has both in a row has a copy of the prompt's.
TEST(Login, PromptLeavesNoCopy) {
    std::string_view const pieces[] = {"nothing is", " left of it", "\n"};
    int const keyboard = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_EQ(unlockpt(keyboard), 0);
    dup2(open(ptsname(keyboard), O_RDWR | O_NOCTTY), STDIN_FILENO);
    for (std::string_view const piece : pieces) {
        ASSERT_EQ(write(keyboard, piece.data(), piece.size()), static_cast<ssize_t>(piece.size()));
    }
    char secret[32];
    readPrivate("", secret, sizeof(secret));
    EXPECT_EQ(std::string_view(secret).find(pieces[1]), pieces[0].size());
    explicit_bzero(secret, sizeof(secret));

    std::ifstream maps("/proc/self/maps");
    std::ifstream memory("/proc/self/mem");
    for (std::string line; std::getline(maps, line);) {
        std::size_t start = 0, end = 0;
        // What is larger belongs to a sanitizer.
        if (std::sscanf(line.c_str(), "%zx-%zx rw", &start, &end) == 2 && end - start < 1 << 28) {
            std::string part(end - start, '\0');
            memory.seekg(static_cast<std::streamoff>(start));
            memory.read(part.data(), static_cast<std::streamsize>(part.size()));
            memory.clear();
            for (std::size_t at = 0; (at = part.find(pieces[0], at)) != std::string::npos; ++at) {
                EXPECT_NE(part.compare(at + pieces[0].size(), pieces[1].size(), pieces[1]), 0) << line;
            }
        }
    }
}

// At a terminal nothing shows of the secret, and the terminal echoes again whatever the end. An ignored signal is none.
TEST(Login, PromptIsSilent) {
    for (int const interrupted : {0, SIGINT, SIGALRM, SIGABRT, SIGRTMAX}) {
        SCOPED_TRACE(interrupted);
        std::vector<Step> const script =
            interrupted != 0 ? std::vector<Step>() : std::vector{loggingIn("secret")};
        ScriptedDaemon daemon(script);
        std::string const run = "trap '' USR1; exec " SDKCLI_PATH " -p " + std::to_string(daemon.port());
        Process process(
            {.path = "/bin/sh", .argv = {"sh", "-c", run + " login me"}, .kind = Input::terminal});
        process.waitForOutput("Enter password : ");
        process.waitForEcho(false);
        process.signal(SIGUSR1);
        if (interrupted != 0) {
            process.signal(interrupted);
        } else {
            process.type("secret\n");
        }
        Outcome const& outcome = process.wait();
        process.waitForEcho(true);
        EXPECT_EQ(outcome.status, -interrupted);
        EXPECT_EQ(outcome.out, "Enter password : " + (interrupted != 0 ? "" : loggedIn));
        EXPECT_EQ(outcome.terminal, "");
    }
}

// A shell's job is stopped by a key, continued in the background, where its reading stops it, and in the foreground.
TEST(Login, PromptEchoesWhileItIsStopped) {
    ScriptedDaemon daemon({loggingIn("secret")});
    std::string const run =
        "set -m; " SDKCLI_PATH " -p " + std::to_string(daemon.port()) +
        " login me; echo one; read key; bg; wait %1; echo two; read key; fg; echo three; read key; fg";
    Process process(
        {.path = "/usr/bin/setsid", .argv = {"setsid", "--ctty", "sh", "-c", run}, .kind = Input::terminal});
    process.waitForOutput("Enter password : ");
    for (std::string const stop : {"one\n", "two\n", "three\n"}) {
        if (stop != "two\n") {
            process.waitForEcho(false);
            process.type("\x1a");
        }
        process.waitForOutput(stop);
        process.waitForEcho(true);
        process.type("\n");
    }
    process.waitForEcho(false);
    process.type("secret\n");
    Outcome const& outcome = process.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out.substr(outcome.out.size() - loggedIn.size()), loggedIn);
    EXPECT_EQ(outcome.terminal.find("secret"), std::string::npos);
    EXPECT_EQ(daemon.finish(), "");
}
