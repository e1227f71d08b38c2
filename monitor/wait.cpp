#include "command.h"

namespace monitor {

namespace {

constexpr int signalledStatus = 128; // plus the signal's number, as shells have it

// Ends as soon as the goal is reached, or with its time-out.
class Wait final : public Command {
public:
    explicit Wait(Context const& context) : loop(context.loop), wait(context.options.wait) {
        if (wait.timeout) {
            loop.setTimer(std::chrono::duration_cast<Clock::duration>(*wait.timeout),
                          [this] { loop.end(timedOutStatus); });
        }
    }

    Topics topics() const override {
        if (wait.goal == Goal::network) {
            return {Topic::state, Topic::connections};
        }
        return {Topic::state}; // reading it also shows at once that the daemon is there
    }

    // A state that is left again at once has been reached, too.
    void opened(Snapshot const& snapshot) override {
        settled(snapshot);
    }
    void changed(Snapshot const& snapshot, Change const&) override {
        settled(snapshot);
    }
    void settled(Snapshot const& snapshot) override {
        if (isReached(snapshot)) {
            loop.end(0);
        }
    }

    int interrupted(int signal) override {
        return signalledStatus + signal;
    }

private:
    // What was reported over a link that is gone doesn't count.
    bool isReached(Snapshot const& snapshot) const {
        switch (wait.goal) {
        case Goal::state:
            return snapshot.isUp() && snapshot.state.current && *snapshot.state == wait.state;
        case Goal::network:
            return snapshot.hasNetwork();
        case Goal::daemon:
            break;
        }
        return snapshot.isUp();
    }

    Loop& loop;
    WaitOptions const wait;
};

} // namespace

std::unique_ptr<Command> makeWait(Context const& context) {
    return std::make_unique<Wait>(context);
}

} // namespace monitor
