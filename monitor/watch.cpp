#include "command.h"
#include "document.h"
#include "output.h"
#include "text.h"
#include "watchhook.h"

namespace monitor {

namespace {

// Writes an object a line for each change, or runs a hook for it. The first one is the whole snapshot.
class Watch final : public Command {
public:
    explicit Watch(Context const& context) : wanted(topicsOf(context.options.watch)) {
        if (context.options.watch.hook.empty()) {
            output.emplace(context.loop);
        } else {
            hook.emplace(context.loop, context.options);
        }
    }

    Topics topics() const override {
        return wanted;
    }
    void opened(Snapshot const& snapshot) override {
        tell(WallClock::now(), "snapshot", documentOf(snapshot, wanted));
    }
    void changed(Snapshot const& snapshot, Change const& change) override {
        tell(change.time, toString(change.topic), documentOf(snapshot, change.topic));
    }

private:
    static Topics topicsOf(WatchOptions const& options) {
        Topics topics = options.topics.empty() ? Topics::all() : Topics();
        for (Topic const each : options.topics) {
            topics.add(each);
        }
        return topics;
    }

    // An event that is left out, because its reader or the hook is behind, leaves a gap in the numbers.
    void tell(WallClock::time_point time, char const* name, Json::Value const& data) {
        Event event{rfc3339(time), std::to_string(seq++), name, compact(data)};
        if (hook) {
            hook->run(std::move(event));
        } else {
            output->write(event.line());
        }
    }

    Topics const wanted;
    std::uint64_t seq = 0;
    std::optional<Output> output;
    std::optional<Hook> hook;
};

} // namespace

std::unique_ptr<Command> makeWatch(Context const& context) {
    return std::make_unique<Watch>(context);
}

} // namespace monitor
