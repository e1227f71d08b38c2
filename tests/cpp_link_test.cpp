// How the C++ layer sees the link: the simulator killed and started again, a daemon that closes.

#include "support/nothreads.h"
#include "support/sdk.h"
#include "support/simulator.h"

#include <kelvarissdk/kelvarissdk.hpp>

#include <csignal>
#include <thread>

using namespace harness;
using namespace kelvaris;
using namespace std::chrono_literals;

namespace {

template <class T> void clear(InboxOf<T>& inbox) {
    while (!inbox.empty()) {
        inbox.take();
    }
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// A client that is subscribed to what the simulator reports, and the simulator, which comes and goes.
struct World {
    World() {
        EXPECT_EQ(links.take(), Link::UP);
        EXPECT_TRUE(states.take());
        statistics.take(); // of the session, because no period was named
        EXPECT_TRUE(client.enableStatUpdates(true, {24h}).get());
        awaitStatistics();
    }
    // The next statistics are those of the period that the program has asked for.
    void awaitStatistics() {
        auto const periods = statistics.take();
        EXPECT_EQ(periods.size(), 1U);
        EXPECT_TRUE(!periods.empty() && periods[0].periodHours == 24h);
    }
    void kill() {
        simulator->process.signal(SIGKILL);
        simulator.reset();
        clear(statistics);
        clear(states);
    }

    std::optional<Simulator> simulator{std::in_place, std::vector<std::string>{"--interval", "200"}};
    std::uint16_t const port = simulator->port;
    InboxOf<Link> links;
    InboxOf<bool> states;
    InboxOf<std::vector<SessionStats>> statistics;
    Client const client{CreateSettings{.port = port}};
    Subscription const link = client.onLink([this](Link to) { links.put(to); });
    Subscription const state = client.getState().subscribe([this](auto const& report) {
        if (report) {
            states.put(true);
        }
    });
    Subscription const stats = client.getSessionStats().subscribe([this](auto const& report) {
        if (report) {
            statistics.put(report->periods);
        }
    });
};

} // namespace

TEST(CppLink, IsLostAndUpAgain) {
    World world;
    auto const killed = std::chrono::steady_clock::now();
    world.kill();
    EXPECT_EQ(world.links.take(), Link::LOST);
    EXPECT_LT(secondsSince(killed), 2.5);
    std::this_thread::sleep_for(killed + 2200ms - std::chrono::steady_clock::now());
    world.simulator.emplace(std::vector<std::string>{"--interval", "200"}, world.port);
    auto const back = std::chrono::steady_clock::now();
    EXPECT_EQ(world.links.take(), Link::UP);
    EXPECT_LT(secondsSince(back), 1);
    EXPECT_TRUE(world.states.take());
    world.awaitStatistics();
    EXPECT_LT(secondsSince(back), 1.5);
}

TEST(CppLink, StatisticsComeBackAfterAShortOutage) {
    World world;
    world.kill();
    world.simulator.emplace(std::vector<std::string>{"--interval", "200"}, world.port);
    auto const back = std::chrono::steady_clock::now();
    world.awaitStatistics();
    EXPECT_LT(secondsSince(back), 4);
}

// Nobody probes while something comes, no two probes stand at once, and what returns finds few requests.
TEST(CppLink, EndsAndIsMadeAnew) {
    ScriptedDaemon daemon({{"request_current_state", "null", {state(6)}},
                           {"check_captive_networks"},
                           {"request_version_data", "null", {}, Then::closeFrame},
                           {"request_current_state", "null", {state(2)}},
                           {"request_directory_url"}},
                          noName);
    InboxOf<Link> links;
    InboxOf<State> states;
    Client const client(CreateSettings{.port = daemon.port(), .delivery = Delivery::byQueue()});
    std::jthread const dispatches([&client](std::stop_token const& stop) {
        while (!stop.stop_requested()) {
            client.dispatch();
            std::this_thread::sleep_for(1ms);
        }
    });
    Subscription const link = client.onLink([&](Link to) { links.put(to); });
    Subscription const state = client.getState().subscribe([&](auto const& report) {
        if (report) {
            states.put(report->state);
        }
    });
    EXPECT_EQ(states.take(), State::CONNECTED);
    auto pending = client.checkForCaptivePortals().future(); // its own time-out is 30 seconds
    daemon.waitForRequest("check_captive_networks");
    EXPECT_EQ(links.take(), Link::UP);
    // This call is prepared before the handle is replaced and reaches the new one, once.
    std::promise<void> replaced;
    InboxOf<bool> outcome;
    auto const slow = client.getDirectorySettings();
    auto const operation = slow.deliver([&](auto const& result) { outcome.put(static_cast<bool>(result)); });
    operation->attach = [&](auto const&) {
        replaced.get_future().wait();
        return true;
    };
    std::jthread const starter([&] { slow.launch(operation); });
    std::optional<NoThreads> none(std::in_place); // so the new handle takes two attempts
    EXPECT_EQ(links.take(), Link::LOST);
    EXPECT_EQ(links.take(), Link::ENDED);
    EXPECT_EQ(pending.get().error().code, ErrorType::TIMEOUT);
    none.reset();
    EXPECT_EQ(states.take(), State::LOGGED_IN);
    EXPECT_EQ(links.take(), Link::UP);
    replaced.set_value();
    daemon.waitForRequest("request_directory_url");
    daemon.send(report("directory_settings", "{}"));
    EXPECT_TRUE(outcome.take());
    EXPECT_EQ(daemon.connections(), 2U);
}

// The requests that wait for a daemon are few after whatever time.
TEST(CppLink, DoesNotFloodADaemonThatReturns) {
    ScriptedDaemon daemon({}, {.appName = std::nullopt,
                               .upgrades = std::vector<Upgrade>(40, {.bytes = "no", .then = Then::reset})});
    InboxOf<Link> links;
    Client const client(CreateSettings{.port = daemon.port()});
    Subscription const link = client.onLink([&](Link to) { links.put(to); });
    EXPECT_EQ(links.take(), Link::LOST);
    daemon.waitForConnections(41);
    daemon.waitForRequest("request_version_data");
    daemon.waitForRequest("request_current_state");
    daemon.waitForRequest("request_current_state");
    daemon.send(state(6));
    EXPECT_EQ(links.take(), Link::UP);
}
