#pragma once

#include "loop.h"
#include "options.h"

#include <json/value.h>
#include <sys/types.h>

namespace monitor {

// Runs a program for each object that it is given, one at a time: what comes meanwhile waits, and of several the newest
// alone. The program has the object on its standard input and in KELVARIS_TIME, KELVARIS_SEQ, KELVARIS_EVENT and
// KELVARIS_DATA. What goes wrong with it is told on standard error.
class Hook {
public:
    Hook(Loop& loop, Options const& options);
    ~Hook(); // what still runs is ended
    Hook(Hook const&) = delete;
    Hook& operator=(Hook const&) = delete;

    void run(Json::Value&& object);

private:
    void start(Json::Value const& object);
    void stop();
    void reap();
    void tell(std::string const& what) const;

    Loop& loop;
    Options const& options;
    pid_t child = 0; // 0: none runs
    bool stopped = false;
    Loop::Id timer = 0;
    std::optional<Json::Value> pending;
};

} // namespace monitor
