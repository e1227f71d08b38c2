#pragma once

#include <cstddef>
#include <cstdint>
#include <json/value.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The scripted daemon plays the far end of the link inside the test process, on a free loopback port. It checks every request to be
// the styled text of [name, payload, "kelvaris_sdk"], answers by a script, and at the end tells what didn't fit.
namespace harness {

Json::Value parsed(std::string const& json); // throws on bad JSON
std::string styled(std::string const& json); // the document as the tool prints it, from its compact text

// One frame as a server sends it, unmasked. `first` is FIN, reserved bits and opcode: 0x81 is a whole text.
std::string frame(unsigned char first, std::string_view payload);
// Returns the frame as a client sends it, masked.
std::string maskedFrame(unsigned char first, std::string_view payload,
                        std::string const& key = "\xA7\x1C\x5E\x39");

// What one answer puts on the wire: a text becomes a text frame, raw() leaves the bytes alone.
struct Answer {
    Answer(char const* text) : bytes(frame(0x81, text)) {}
    Answer(std::string const& text) : bytes(frame(0x81, text)) {}
    std::string bytes;
};
Answer raw(std::string bytes);

// What the daemon does to the connection once the answers are out.
enum class Then {
    carryOn,
    reset,       // TCP reset
    closeFrame,  // WebSocket close frame, TCP stays open
    stopReading, // the connection stays open, unread
};

// A step waits for the next request, which has to be this one, with this payload.
struct Step {
    std::string request = {};
    std::string payload = "null"; // compact JSON
    std::vector<Answer> answers = {};
    Then then = Then::carryOn;
    int delayMs = 0; // before the answers; nothing is read meanwhile
};

// How one connection's upgrade is answered. Default: properly. Otherwise with these bytes alone, and what the
// client sends from then on is ignored.
struct Upgrade {
    std::string bytes = {};
    Then then = Then::carryOn;
};

struct Options {
    // The name that "set_app_name" must give as the very first request, once, without a step of its own. A
    // client that never sends a request is fine. Without a value that request is like any other.
    std::optional<std::string> appName = "Kelvaris";
    std::vector<Upgrade> upgrades = {}; // the first connections'; the later ones are upgraded properly
    bool listen = true;                 // false: the port is taken, but nobody listens there
    // The client may leave requests out. A "set_" behind a read has to follow it.
    bool mayMiss = false;
};

// A test may drive the daemon by a script, by hand with the calls below, or by both. All of them are for the
// test's thread; those that wait give up after the harness's patience and fail the test.
class ScriptedDaemon {
public:
    explicit ScriptedDaemon(std::vector<Step> script = {}, Options options = {});
    ~ScriptedDaemon(); // fails the test over what finish() reports, unless that was called
    ScriptedDaemon(ScriptedDaemon const&) = delete;
    ScriptedDaemon& operator=(ScriptedDaemon const&) = delete;

    std::uint16_t port() const;

    // On the newest connection, in the order of the calls.
    void send(Answer const& answer);
    void dropConnection(Then how = Then::reset);

    void waitForRequest(std::string const& name); // one more of this name; it needs no step
    void waitForConnections(std::size_t count);   // whose upgrades have been answered since the start
    std::size_t connections() const;              // the same, so far

    // To be called once, when the client is gone: reads what it left in the sockets, and returns one text per
    // line for each unexpected request, wrong payload, bad frame and unused step. Empty when all went by the
    // script.
    std::string finish();

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace harness
