#pragma once

#include "support/process.h"
#include "support/scripteddaemon.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

// kelvaris-monitor as a program, and what surrounds it.
namespace harness {

inline Command monitorCommand(std::uint16_t port, std::vector<std::string> const& words) {
    Command command{.path = MONITOR_PATH, .argv = {"kelvaris-monitor", "--port", std::to_string(port)}};
    command.argv.insert(command.argv.end(), words.begin(), words.end());
    return command;
}

// Nobody listens there.
inline std::uint16_t freePort() {
    return ScriptedDaemon({}, {.listen = false}).port();
}

// A new folder, which is gone with the object.
class Folder {
public:
    Folder() {
        char name[] = "/tmp/monitor_test.XXXXXX";
        path = mkdtemp(name);
    }
    ~Folder() {
        std::filesystem::remove_all(path);
    }
    std::string file(std::string const& name) const {
        return path + "/" + name;
    }
    // Of a file that may not be there yet.
    std::string contentOf(std::string const& name) const {
        return (std::ostringstream() << std::ifstream(file(name)).rdbuf()).str();
    }
    std::string path;
};

// False: in vain.
template <class Condition> bool comesTrue(Condition condition) {
    auto const limit = std::chrono::steady_clock::now() + patience();
    bool isTrue = condition();
    while (!isTrue && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        isTrue = condition();
    }
    return isTrue;
}

} // namespace harness
