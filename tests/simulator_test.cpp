// The simulated daemon's reports as golden/simulator.txt has them, byte for byte. There stand
//     #    a remark
//     $    the options of a new daemon, and a new link to it
//     >    a request and its payload, which may be missing
//     <    the report that comes next, broken behind its objects
//     ~    a number of reports that are passed over
//     .    how the link ends
// Times of the day are starred out.

#include "easywsclient.h"
#include "support/simulator.h"
#include "support/texts.h"

#include <algorithm>
#include <deque>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <regex>
#include <sstream>

using namespace harness;
using easywsclient::WebSocket;

namespace {

class Link {
public:
    explicit Link(std::uint16_t port)
        : socket(WebSocket::from_url("ws://127.0.0.1:" + std::to_string(port) + "/")) {}

    void send(std::string const& request) const {
        std::string const name = request.substr(0, request.find(' '));
        std::string const payload = name == request ? "null" : request.substr(name.size() + 1);
        socket->send("[\"" + name + "\"," + payload + ",\"kelvaris_sdk\"]");
    }

    // The next report, or why there is none.
    std::string next() {
        bool isClosing = false;
        while (reports.empty() && socket->getReadyState() != WebSocket::CLOSED && --patienceLeft > 0) {
            isClosing = socket->getReadyState() == WebSocket::CLOSING;
            socket->poll(20);
            socket->dispatch([this](std::string const& report) { reports.push_back(report); });
        }
        if (reports.empty()) {
            return patienceLeft <= 0 ? "nothing" : isClosing ? "close frame" : "dropped";
        }
        std::string const report = reports.front();
        reports.pop_front();
        return report;
    }

private:
    std::unique_ptr<WebSocket> socket;
    std::deque<std::string> reports;
    int patienceLeft = 1000; // in waits of at most 20 ms
};

// Made before the threads: making an expression fills a cache of the locale that no lock guards.
std::regex const times(R"re("((session_|start_)*time|duration|sessionEnd)":("[^"]*"|\d+))re");
std::regex const objectEnds("\\},");

std::string shown(std::string const& report) {
    return std::regex_replace(std::regex_replace(report, times, "\"$1\":*"), objectEnds, "},\n");
}

// What becomes of a piece of the file, from a "$" on, when it is played.
std::string played(std::string const& piece) {
    std::istringstream lines(piece);
    std::string line;
    std::getline(lines, line);
    std::string seen = line + '\n';
    Simulator const daemon(split(line.substr(1)));
    Link link(daemon.port);
    while (std::getline(lines, line)) {
        char const kind = line.empty() ? '#' : line[0];
        std::string const rest = line.substr(std::min<std::size_t>(line.size(), 2));
        if (kind == '>') {
            link.send(rest);
        } else if (kind == '~') {
            for (int i = std::stoi(rest); i > 0; --i) {
                link.next();
            }
        } else if (kind == '<' || kind == '.') {
            line = line.substr(0, 2) + link.next();
        } else if (kind != '#') {
            continue; // the report goes on
        }
        seen += line + '\n';
    }
    return seen;
}

} // namespace

TEST(Simulator, LogHidesSecrets) {
    Simulator daemon({"--verbose"});
    Link link(daemon.port);
    link.send(R"(login {"username":"me","password":"hidden"})");
    link.send(R"(login_oauth {"oauth":"hidden"})");
    link.send(R"(safe_browsing_token_refresh [{"token":{"a":"hidden"}}])");
    link.send(R"(login_oauth "hidden")");
    link.send(R"(login ["hidden",{"firewall":{"config":["hidden"]}}])");
    link.send(R"(login {"password":"hidden","username":"cut)");
    link.send(R"(login ["hidden")");
    link.send(R"(safe_browsing_token_refresh {"token":"hidden")");
    link.send("exit");
    while (link.next().starts_with('[')) {
    }
    std::string const& log = daemon.process.wait().err;
    EXPECT_NE(log.find(R"(<- ["login",{"password":"***","username":"me"},)"), std::string::npos) << log;
    EXPECT_NE(log.find(R"(bad request '["login***')"), std::string::npos) << log;
    EXPECT_NE(log.find(R"(<- ["exit")"), std::string::npos) << log;
    EXPECT_EQ(log.find("hidden"), std::string::npos) << log;
}

// All pieces at once, because some wait for what takes a second or two.
TEST(Simulator, ReportsAreRepeated) {
    std::string const text = golden("simulator.txt");
    std::vector<std::pair<std::string, std::future<std::string>>> runs;
    for (std::size_t start = 0, end = 0; start < text.size(); start = end) {
        end = std::min(text.find("\n$", start), text.size() - 1) + 1;
        std::string const piece = text.substr(start, end - start);
        runs.emplace_back(piece, std::async(std::launch::async, played, piece));
    }
    for (auto& [expected, seen] : runs) {
        EXPECT_EQ(shown(seen.get()), expected);
    }
}
