#include "monitor.h"

#include <utility>

namespace monitor {

namespace {

constexpr std::chrono::seconds openingLimit{1};
// The link may be gone and be back before anybody takes it for lost, and what was reported meanwhile was missed.
constexpr std::chrono::seconds refreshPeriod{3};
// Reports and results that are dispatched before other descriptors have their turn.
constexpr std::size_t dispatchCount = 64;

kelvaris::CreateSettings settingsOf(Options const& options, std::exception_ptr& thrown) {
    kelvaris::CreateSettings settings;
    settings.appName = "kelvaris-monitor";
    settings.address = options.address;
    settings.port = options.port;
    settings.delivery = kelvaris::Delivery::byQueue();
    settings.onException = [&thrown](std::exception_ptr what) { thrown = std::move(what); };
    return settings;
}

} // namespace

Monitor::Monitor(Loop& ofLoop, Options const& with) : loop(ofLoop), options(with) {}

// Link first: what else is reported is judged by it.
void Monitor::start(Command& ofCommand) {
    command = &ofCommand;
    client.emplace(settingsOf(options, thrown));
    wanted = unanswered = command->topics();
    unanswered.remove(Topic::link);
    unanswered.remove(Topic::error);
    loop.addDescriptor(client->fd(), POLLIN, [this](short) { dispatch(); });
    loop.setTimer(openingLimit, [this] { open(); });
    loop.setTimer(refreshPeriod, [this] { refresh(); });
    subscriptions.push_back(client->onLink([this](kelvaris::Link link) {
        bool const hadErrors = !known.errors.empty();
        if (setLink(known, link)) {
            announce(Topic::link);
        }
        if (hadErrors && known.errors.empty()) {
            announce(Topic::error);
        }
        answered(Topic::link);
    }));
    subscribe(Topic::state, client->getState(),
              [](Snapshot& into, auto const& report) { return setState(into, report.state); });
    subscribe(Topic::server, client->getConnectedServer(),
              [](Snapshot& into, auto const& report) { return setServer(into, report.server); });
    subscribe(Topic::settings, client->getSettings(), setSettings);
    subscribe(Topic::adapters, client->getAdapters(),
              [](Snapshot& into, auto const& report) { return setAdapters(into, report.adapters); });
    subscribe(Topic::connections, client->getConnectionStats(), setConnections);
    subscribe(Topic::session, client->getSessionStats(), setSession);
    subscribe(Topic::streams, client->getStreamingStats(), setStreams);
    if (wanted.haveStatistics()) {
        client->enableStatUpdates(true, {kelvaris::currentSession}).then([](auto const&) {});
    }
}

template <class T, class Put>
void Monitor::subscribe(Topic topic, kelvaris::StreamCall<T> const& call, Put put) {
    if (!wanted.has(topic)) {
        return;
    }
    subscriptions.push_back(call.subscribe([this, topic, put](kelvaris::Result<T> const& report) {
        if (report) {
            bool const hadFailed = known.errors.erase(topic) > 0;
            if (put(known, *report)) {
                announce(topic);
            }
            if (hadFailed) {
                announce(Topic::error);
            }
        } else if (setError(known, topic, report.error())) {
            announce(Topic::error);
        }
        answered(topic);
    }));
}

// The answers reach the subscriptions.
void Monitor::refresh() {
    auto const read = [this](Topic topic, auto const& call) {
        if (known.isUp() && wanted.has(topic)) {
            call.then([](auto const&) {});
        }
    };
    read(Topic::state, client->getState());
    read(Topic::server, client->getConnectedServer());
    read(Topic::settings, client->getSettings());
    read(Topic::adapters, client->getAdapters());
    loop.setTimer(refreshPeriod, [this] { refresh(); });
}

// A daemon that is away answers nothing, so its absence answers all.
void Monitor::answered(Topic topic) {
    unanswered.remove(topic);
    if (unanswered.empty() || (known.link && !known.isUp())) {
        open();
    }
}

void Monitor::open() {
    if (!std::exchange(isOpen, true)) {
        command->opened(known);
    }
}

void Monitor::announce(Topic topic) {
    if (isOpen && wanted.has(topic) && !loop.hasEnded()) {
        command->changed(known, {topic, WallClock::now()});
    }
}

void Monitor::dispatch() {
    client->dispatch(dispatchCount);
    if (thrown) {
        std::rethrow_exception(std::exchange(thrown, nullptr));
    }
    if (!loop.hasEnded()) {
        command->settled(known);
    }
}

} // namespace monitor
