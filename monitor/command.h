#pragma once

#include "loop.h"
#include "options.h"
#include "snapshot.h"

#include <memory>

namespace monitor {

// What a command is made with; all of it outlives the command.
struct Context {
    Loop& loop;
    Snapshot const& snapshot;
    Options const& options;
};

// A command is a function of snapshot and change. It ends the program with loop.end(STATUS). What it throws ends it with
// status 1 and the message on standard error.
class Command {
public:
    Command() = default;
    virtual ~Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;

    // What it wants to be kept up to date. The link always is. Asked once.
    virtual Topics topics() const = 0;

    // Once, before any change: what was wanted has been read or can't be, or a second has passed.
    virtual void opened(Snapshot const& /*snapshot*/) {}
    // After opened(), for each change of a wanted topic, in the order in which they came.
    virtual void changed(Snapshot const& /*snapshot*/, Change const& /*change*/) {}
    // Whenever all that had come is in the snapshot, also before opened(), and when nothing but the times of its parts is
    // new. What draws, draws here.
    virtual void settled(Snapshot const& /*snapshot*/) {}

    // The status when SIGINT, SIGTERM or SIGHUP ends it. A command that wants one of them for itself takes it with
    // loop.onSignal().
    virtual int interrupted(int /*signal*/) {
        return 0;
    }
};

std::unique_ptr<Command> makeTop(Context const& context);
std::unique_ptr<Command> makeWatch(Context const& context);
std::unique_ptr<Command> makeWait(Context const& context);
std::unique_ptr<Command> makeRecord(Context const& context);
std::unique_ptr<Command> makeExport(Context const& context);

} // namespace monitor
