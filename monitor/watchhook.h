#pragma once

#include "loop.h"
#include "options.h"

#include <string>
#include <sys/types.h>

namespace monitor {

// What a line or a hook tells: texts that need no escaping, and the data as compact JSON.
struct Event {
    std::string time;
    std::string seq;
    std::string name;
    std::string data;

    std::string line() const; // with its end
};

// Runs a program for each event that it is given, one at a time: what comes meanwhile waits, and of several the newest
// alone. The program has the line on its standard input and in KELVARIS_TIME, KELVARIS_SEQ, KELVARIS_EVENT and
// KELVARIS_DATA. What goes wrong with it is told on standard error.
class Hook {
public:
    Hook(Loop& loop, Options const& options);
    ~Hook(); // what still runs is ended
    Hook(Hook const&) = delete;
    Hook& operator=(Hook const&) = delete;

    void run(Event&& event);

private:
    void start(Event const& event);
    void stop();
    void reap();
    void tell(std::string const& what) const;

    Loop& loop;
    Options const& options;
    pid_t child = 0; // 0: none runs
    bool stopped = false;
    Loop::Id timer = 0;
    std::optional<Event> pending;
};

} // namespace monitor
