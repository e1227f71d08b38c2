// The C++ layer: the forms of a call, subscriptions and their ends, delivery.

#include "support/child.h"
#include "support/nothreads.h"
#include "support/simulator.h"

#include <kelvarissdk/kelvarissdk.hpp>

#include <atomic>
#include <ctime>
#include <poll.h>
#include <thread>

using namespace harness;
using namespace kelvaris;
using namespace std::chrono_literals;

bool servesIn17(Client& client);
bool servesWithoutExceptions(Client& client);

namespace {

Step const version{"request_version_data", "null", {report("version_data", R"({"maj":7})")}};

Client clientOf(std::uint16_t port, Delivery delivery = Delivery::onReaderThread()) {
    return Client(CreateSettings{.port = port, .delivery = std::move(delivery), .probing = false});
}

// One thread for each task, so that two may run at once.
Delivery threads() {
    return Delivery::byExecutor([](Delivery::Task task) { std::thread(std::move(task)).detach(); });
}

struct Coroutine {
    struct promise_type {
        Coroutine get_return_object() {
            return {};
        }
        std::suspend_never initial_suspend() noexcept {
            return {};
        }
        std::suspend_never final_suspend() noexcept {
            return {};
        }
        void return_void() {}
        void unhandled_exception() {
            std::terminate();
        }
    };
};

using Arrival = std::promise<Result<VersionResult>>;

Coroutine await(Call<VersionResult> call, Arrival& outcome) {
    outcome.set_value(co_await call);
}

// Each form begins a call and leaves its result in the promise.
using Form = std::function<std::jthread(Call<VersionResult>, Arrival&)>;
std::vector<Form> const forms{
    [](auto call, Arrival& outcome) {
        return std::jthread([call, &outcome] { outcome.set_value(call.get()); });
    },
    [](auto call, Arrival& outcome) {
        call.then([&outcome](Result<VersionResult> const& result) { outcome.set_value(result); });
        return std::jthread();
    },
    [](auto call, Arrival& outcome) {
        return std::jthread(
            [future = call.future(), &outcome]() mutable { outcome.set_value(future.get()); });
    },
    [](auto call, Arrival& outcome) {
        await(call, outcome);
        return std::jthread();
    },
};

// Waits on the queue's descriptor and dispatches one at a time.
template <class Done> void dispatchUntil(Client const& client, Done done) {
    for (auto const end = std::chrono::steady_clock::now() + patience(); !done();) {
        ASSERT_LT(std::chrono::steady_clock::now(), end);
        pollfd readable{client.fd(), POLLIN, 0};
        if (poll(&readable, 1, 10) == 1) {
            EXPECT_EQ(client.dispatch(1), 1U);
        }
    }
}

} // namespace

TEST(CppClient, EachFormHasEachOutcome) {
    for (Form const& form : forms) {
        for (auto const& delivery : {Delivery::onReaderThread(), threads()}) {
            // What ends early may leave nothing.
            ScriptedDaemon daemon(
                {version, {"request_version_data"}, {"request_version_data"}, {"request_version_data"}},
                {.appName = std::nullopt, .mayMiss = true});
            std::optional<Client> client = clientOf(daemon.port(), delivery);
            auto const result = [&](Call<VersionResult> const& call, std::function<void()> const& meanwhile) {
                Arrival outcome;
                auto const thread = form(call, outcome);
                meanwhile();
                return outcome.get_future().get();
            };
            auto const none = [] {};
            auto const sent = [&] { daemon.waitForRequest("request_version_data"); };
            EXPECT_EQ(result(client->getVersion(), none).value().maj, 7);
            EXPECT_EQ(result(client->getVersion().within(20ms), none).error().code, ErrorType::TIMEOUT);
            Canceller canceller;
            auto const call = client->getVersion().within(1h).cancelledBy(canceller);
            auto const cancel = [&] {
                sent();
                canceller.cancel();
            };
            sent();
            EXPECT_EQ(result(call, cancel).error().code, ErrorType::CANCELLED);
            EXPECT_EQ(result(call, none).error().code, ErrorType::CANCELLED);
            auto const end = [&] {
                sent();
                client.reset();
            };
            auto const again = client->getVersion();
            EXPECT_EQ(result(again, end).error().code, ErrorType::CANCELLED);
            EXPECT_EQ(result(again, none).error().code, ErrorType::CANCELLED);
        }
    }
}

TEST(CppClient, ArgumentsAndErrors) {
    ScriptedDaemon daemon({{"exit"}, {"set_directory_domain"}}, noName);
    Client client = clientOf(daemon.port());
    EXPECT_TRUE(client.daemonExit().get());
    auto const refused = client.setConnectionPriorities("a", ConnectionPriority::UNKNOWN);
    Error const error = refused.get().error();
    EXPECT_EQ(error.code, ErrorType::INVALID_ARGUMENT);
    EXPECT_EQ(error.number, 3842);
    try {
        refused.future().get().value();
        ADD_FAILURE() << "no exception";
    } catch (Exception const& exception) {
        EXPECT_EQ(exception.error().code, ErrorType::INVALID_ARGUMENT);
        EXPECT_EQ(exception.what(), error.message);
    }
    auto const reset = client.resetDirectoryDomain().future();
    daemon.waitForRequest("set_directory_domain");
    Client moved = std::move(client);
    EXPECT_EQ(client.getState().get().error().code, ErrorType::CANCELLED);
    moved.closeLater();
    reset.wait();
    Client const nowhere(CreateSettings{.address = std::string(46, '1'), .delivery = Delivery::byQueue()});
    EXPECT_EQ(nowhere.getState().get().error().code, ErrorType::SDK);
    auto const link = nowhere.onLink([](Link to) { EXPECT_EQ(to, Link::LOST); });
    std::clock_t const before = std::clock();
    dispatchUntil(nowhere, [done = 0]() mutable { return done++ == 150; }); // over a second
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 2);
}

// The reader thread must not wait; the thread that dispatches may.
TEST(CppClient, WaitingInACallable) {
    for (auto const& [delivery, code] :
         {std::pair(Delivery::onReaderThread(), ErrorType::SYNCHRONOUS_IN_CALLBACK),
          std::pair(Delivery::byQueue(), ErrorType::NO_ERROR)}) {
        Simulator const simulator;
        Client const client = clientOf(simulator.port, delivery);
        std::atomic<bool> told = false;
        client.getVersion().then([&, expected = code](auto const& result) {
            EXPECT_TRUE(result);
            EXPECT_EQ(client.getState().get().error().code, expected);
            told = true;
        });
        while (!told) {
            client.dispatch();
        }
    }
}

TEST(CppClient, UnitsInOtherModes) {
    ScriptedDaemon daemon({{"request_current_state", "null", {state(6)}},
                           version,
                           {"request_current_state", "null", {state(6)}},
                           version},
                          noName);
    Client client = clientOf(daemon.port());
    EXPECT_TRUE(servesIn17(client));
    EXPECT_TRUE(servesWithoutExceptions(client));
}

// The destructor waits for a callable that runs elsewhere, returns at once inside it, and none follows.
TEST(CppSubscription, EndsWhileItsCallableRuns) {
    for (auto const& delivery : {Delivery::onReaderThread(), threads()}) {
        ScriptedDaemon daemon({{"request_current_state"}, {"request_current_state"}, version}, noName);
        Client const client = clientOf(daemon.port(), delivery);
        std::promise<void> entered;
        std::atomic<bool> left = false;
        std::atomic<int> calls = 0;
        std::optional<Subscription> inside;
        Subscription outside = client.getState().subscribe([&](auto const&) {
            if (calls++ == 0) {
                entered.set_value();
                std::this_thread::sleep_for(20ms);
                left = true;
            }
        });
        daemon.waitForRequest("request_current_state");
        daemon.send(state(6));
        entered.get_future().wait();
        outside.end();
        EXPECT_TRUE(left);
        std::promise<void> ended;
        inside = client.getState().subscribe([&, owned = std::make_unique<int>(1)](auto const&) {
            inside.reset();
            calls += *owned; // which lives until this returns
            ended.set_value();
        });
        daemon.waitForRequest("request_current_state");
        daemon.send(state(6));
        ended.get_future().wait();
        daemon.send(state(6));
        EXPECT_TRUE(client.getVersion().get());
        EXPECT_EQ(calls, 2);
    }
}

// Several threads end subscriptions while reports arrive, and then the client while others still do.
TEST(CppSubscription, EndsRaceWithReportsAndTheClient) {
    Simulator const simulator({"--interval", "1"});
    for (auto const& delivery : {Delivery::onReaderThread(), threads(), Delivery::byQueue()}) {
        for (int round = 0; round < 5; ++round) {
            std::optional<Client> client = clientOf(simulator.port, delivery);
            std::atomic<int> reports = 0;
            EXPECT_TRUE(client->enableStatUpdates(true, {currentSession}).get());
            std::vector<std::jthread> workers;
            for (int worker = 0; worker < 3; ++worker) {
                workers.emplace_back([&, call = client->getConnectionStats(), states = client->getState()] {
                    for (int i = 0; i < 40; ++i) {
                        auto alive = std::make_shared<std::atomic<bool>>(true);
                        auto const use = [&reports, alive](auto const&) {
                            EXPECT_TRUE(*alive);
                            ++reports;
                        };
                        {
                            Subscription const one = call.subscribe(use);
                            Subscription const two = states.subscribe(keepAll, use);
                            std::this_thread::sleep_for(500us);
                        }
                        *alive = false;
                    }
                });
            }
            for (int i = 0; i < 20; ++i) {
                client->dispatch();
                std::this_thread::sleep_for(500us);
            }
            client.reset();
            workers.clear();
        }
    }
}

// In a callable the client's end is left to another thread, which tells the others.
TEST(CppClient, EndsInItsOwnCallable) {
    for (auto const& delivery : {Delivery::onReaderThread(), threads(), Delivery::byQueue()}) {
        ScriptedDaemon daemon({{"request_current_state"}, {"request_current_state"}, version}, noName);
        auto client = std::make_unique<Client>(clientOf(daemon.port(), delivery));
        std::promise<ErrorType> last;
        std::promise<void> destroyed;
        Subscription const states =
            client->getState().subscribe([&](auto const& state) { last.set_value(state.error().code); });
        auto future = client->getState().future();
        pollfd readable{client->fd(), POLLIN, 0};
        client->getVersion().then([&](auto const&) {
            client.reset();
            destroyed.set_value();
        });
        if (readable.fd >= 0) {
            poll(&readable, 1, -1);
            client->dispatch();
        }
        destroyed.get_future().wait();
        EXPECT_EQ(last.get_future().get(), ErrorType::CANCELLED);
        EXPECT_EQ(future.get().error().code, ErrorType::CANCELLED);
    }
}

TEST(CppQueue, DispatchingOneByOneLosesNothing) {
    constexpr int count = 200;
    ScriptedDaemon daemon({{"request_current_state"}, version}, noName);
    Client const client = clientOf(daemon.port(), Delivery::byQueue());
    int seen = 0;
    std::size_t latest = 0;
    Subscription const all = client.getState().subscribe(
        [&](auto const& result) { EXPECT_EQ(static_cast<int>(result.value().state), seen++ % 8); });
    Subscription const last = client.getState().subscribe(keepLatest, [&](auto const& result) {
        ++latest;
        EXPECT_EQ(static_cast<int>(result.value().state), (count - 1) % 8);
    });
    Subscription few = client.getState().subscribe(Keep{3}, [](auto const&) {});
    for (int i = 0; i < 3; ++i) {
        daemon.waitForRequest("request_current_state");
    }
    for (int i = 0; i < count; ++i) {
        daemon.send(state(i % 8));
    }
    EXPECT_TRUE(client.getVersion().get()); // everything is in the queues
    EXPECT_EQ(last.dropped(), count - 1U);
    EXPECT_EQ(few.dropped(), count - 3U);
    few.end();
    dispatchUntil(client, [&] { return seen == count && latest == 1; });
    EXPECT_EQ(all.dropped(), 0U);
    EXPECT_EQ(client.dispatch(), 0U);
    pollfd readable{client.fd(), POLLIN, 0};
    EXPECT_EQ(poll(&readable, 1, 0), 0);
}

// What a callable or an executor throws goes to the hook, and the subscription goes on.
TEST(CppClient, ExceptionsGoToTheHook) {
    ScriptedDaemon daemon({{"request_current_state"}}, noName);
    std::atomic<int> hooked = 0;
    std::atomic<int> posts = 0;
    CreateSettings settings{
        .port = daemon.port(), .probing = false, .onException = [&](auto const&) { ++hooked; }};
    settings.delivery = Delivery::byExecutor([&](Delivery::Task task) {
        if (posts++ == 0) {
            throw std::bad_alloc();
        }
        std::thread(std::move(task)).detach();
    });
    std::promise<void> done;
    int calls = 0;
    {
        Client const client(std::move(settings));
        Subscription const states = client.getState().subscribe([&](auto const&) {
            if (++calls == 3) {
                done.set_value();
            }
            throw calls;
        });
        daemon.waitForRequest("request_current_state");
        for (int i = 0; i < 3; ++i) {
            daemon.send(state(i));
        }
        done.get_future().wait();
    }
    EXPECT_GE(hooked, 3);
}

// ---- Bad input ----

TEST(CppBadInput, UpgradeThatIsNeverCompleted) {
    ScriptedDaemon daemon({}, {.appName = std::nullopt, .upgrades = {{.bytes = "HTTP/1.1 101"}}});
    std::promise<Link> link;
    Client const client(CreateSettings{.port = daemon.port()});
    Subscription const watch = client.onLink([&](Link to) { link.set_value(to); });
    auto const waits = client.getState().future();
    EXPECT_EQ(client.getState().within(10ms).get().error().code, ErrorType::TIMEOUT);
    EXPECT_EQ(link.get_future().get(), Link::LOST);
    client.closeLater();
    waits.wait();
    daemon.dropConnection();
}

TEST(CppBadInput, TextsAndNumbersOfOthers) {
    EXPECT_EQ(StateResult::from({{}, static_cast<KelvarisSDK_State>(77)}).state, State::UNKNOWN);
    EXPECT_EQ(ProtocolPortPair::from({static_cast<KelvarisSDK_PortProtocol>(2), 1}).protocol,
              PortProtocol::UNKNOWN);
    KelvarisSDK_BaseResult head{};
    head.errorCode = 9;
    EXPECT_EQ(detail::errorOf(head).code, ErrorType::UNKNOWN);
    EXPECT_EQ(detail::errorOf(head).number, 9);
    // Full fields, of which the last two end within a character.
    using Row = std::pair<std::string, std::string>;
    for (auto const& [given, read] :
         {Row("abx", "abx"), {"aé", "aé"}, {"€", "€"}, {"abé", "ab"}, {"d€", "d"}}) {
        char field[3];
        given.copy(field, sizeof field);
        EXPECT_EQ(detail::text(field), read);
    }
}

// A callable that blocks holds up the reader thread, but neither the time-outs nor the ends of other subscriptions.
TEST(CppBadInput, CallableThatBlocks) {
    ScriptedDaemon daemon({{"request_current_state"}, {"request_current_state"}}, noName);
    Client const client = clientOf(daemon.port());
    std::promise<void> entered;
    std::promise<void> released;
    Subscription other = client.getState().subscribe([](auto const&) {});
    Subscription const blocks = client.getState().subscribe([&, once = true](auto const&) mutable {
        if (std::exchange(once, false)) {
            entered.set_value();
            released.get_future().wait();
        }
    });
    daemon.waitForRequest("request_current_state");
    daemon.waitForRequest("request_current_state");
    daemon.send(state(6));
    entered.get_future().wait();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(client.getVersion().within(10ms).get().error().code, ErrorType::TIMEOUT);
        other.end();
    }
    released.set_value();
    daemon.waitForRequest("request_version_data");
    daemon.waitForRequest("request_version_data");
}

// A client that is left in its callable ends when the callable has returned, or with the next report.
TEST(CppBadInput, NoThreadCanBeStarted) {
    for (auto const& delivery : {Delivery::byQueue(), Delivery::onReaderThread()}) {
        ScriptedDaemon daemon({{"request_current_state"}, {"request_version_data"}}, noName);
        auto client = std::make_unique<Client>(clientOf(daemon.port(), delivery));
        std::promise<ErrorType> last;
        Subscription const states = client->getState().subscribe([&](auto const& state) {
            if (!state) {
                last.set_value(state.error().code);
            }
        });
        daemon.waitForRequest("request_current_state");
        std::promise<void> left;
        bool const dispatches = client->fd() >= 0;
        std::optional<NoThreads> none(std::in_place);
        EXPECT_THROW(clientOf(daemon.port()), std::system_error);
        client->getVersion().then([&](auto const&) {
            client.reset();
            left.set_value();
        });
        daemon.waitForRequest("request_version_data");
        daemon.send(version.answers[0]);
        if (dispatches) {
            dispatchUntil(*client, [&] { return !client; });
        } else {
            left.get_future().wait();
            none.reset();
            daemon.send(state(6));
        }
        EXPECT_EQ(last.get_future().get(), ErrorType::CANCELLED);
    }
}

TEST(CppBadInput, Fork) {
    ScriptedDaemon daemon({version}, noName);
    std::optional<Client> client = clientOf(daemon.port());
    EXPECT_TRUE(client->getVersion().get());
    Subscription const link = client->onLink([](Link) {});
    std::jthread const holdsTheMutex([&link](std::stop_token const& stop) {
        while (!stop.stop_requested()) {
            link.dropped();
        }
    });
    int const status = inChild([&] {
        bool const ends = client->getVersion().get().error().code == ErrorType::SDK &&
                          client->getState().future().get().error().code == ErrorType::SDK &&
                          client->onLink([](Link) {}).dropped() == link.dropped();
        client.reset();
        return ends ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}
