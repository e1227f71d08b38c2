// The monitor's snapshot, its texts, and what its commands make of both, without a daemon.

#include "command.h"
#include "document.h"
#include "text.h"

#include "support/monitors.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sstream>

using namespace monitor;
using namespace std::chrono_literals;

namespace {

constexpr char hostile[] = "Caf\xC3\xA9, \"x\"\n\x1b[2J\x7f\xC2\x9b\xE2\x80\xAE\xE2\x82";

kelvaris::AdapterData adapter(std::string const& id, std::string const& name = "") {
    kelvaris::AdapterData value;
    value.adapterID = id;
    value.name = name;
    return value;
}

kelvaris::ConnectionStats connection(std::string const& adapterID, std::int64_t receive, int latencyMs,
                                     double loss, bool connected = true) {
    kelvaris::ConnectionStats value;
    value.adapterID = adapterID;
    value.connected = connected;
    value.receiveBps = receive;
    value.latencyMs = std::chrono::milliseconds(latencyMs);
    value.lossReceive = loss;
    value.localIp = connected ? "192.0.2.1" : "";
    return value;
}

Snapshot connectedSnapshot() {
    Snapshot snapshot;
    setLink(snapshot, kelvaris::Link::UP);
    setState(snapshot, kelvaris::State::CONNECTED);
    kelvaris::AdapterData unlimited = adapter("b");
    unlimited.dataUsage.max = 0;
    setAdapters(snapshot, {adapter("a", hostile), unlimited});
    setConnections(snapshot, {1, {connection("a", 1000, 40, 0.1), connection("a", 500, 20, 0.3)}});
    return snapshot;
}

TEST(MonitorText, IsUtf8AndNothingATerminalObeys) {
    struct {
        char const* text;
        char const* repaired;
        char const* printable;
    } const rows[] = {
        {"", "", ""},
        {"Gr\xC3\xBC\xC3\x9F \xF0\x9F\x9A\x80", "Gr\xC3\xBC\xC3\x9F \xF0\x9F\x9A\x80",
         "Gr\xC3\xBC\xC3\x9F \xF0\x9F\x9A\x80"},
        {"a\tb\x1b[0m", "a\tb\x1b[0m", "a\\x09b\\x1b[0m"},
        {"\xC2\x9bm", "\xC2\x9bm", "\\x9bm"},                                 // CSI as one character
        {"\xE2\x80\xAEx", "\xE2\x80\xAEx", "\\u{202e}x"},                     // right to left from here
        {"cut \xE2\x82", "cut \xEF\xBF\xBD", "cut \xEF\xBF\xBD"},             // within a character
        {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD", "\xEF\xBF\xBD\xEF\xBF\xBD"}, // a form that is too long
        {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD",
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}, // a surrogate
        {"\xF4\x90\x80\x80z", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDz",
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDz"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(repaired(row.text), row.repaired);
        EXPECT_EQ(printable(row.text), row.printable);
    }
    EXPECT_EQ(rfc3339(WallClock::time_point(-1ms)), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(plain(0.25), "0.25");
    EXPECT_EQ(plain(20e6), "20000000");
    EXPECT_EQ(plain(1e21), "1e+21");
}

TEST(MonitorSnapshot, TellsWhatIsCurrentFromWhatIsNot) {
    Snapshot snapshot = connectedSnapshot();
    EXPECT_TRUE(snapshot.isConnected() && snapshot.hasNetwork());
    EXPECT_FALSE(setState(snapshot, kelvaris::State::CONNECTED)) << "the same again is no change";
    EXPECT_FALSE(setAdapters(snapshot, std::vector(*snapshot.adapters)));
    EXPECT_TRUE(setAdapters(snapshot, {adapter("a", hostile)}));

    EXPECT_TRUE(setLink(snapshot, kelvaris::Link::LOST));
    EXPECT_FALSE(setLink(snapshot, kelvaris::Link::LOST));
    EXPECT_FALSE(setLink(snapshot, kelvaris::Link::ENDED)) << "it is still away, since then";
    setLink(snapshot, kelvaris::Link::UP);
    EXPECT_FALSE(snapshot.isConnected()) << "the state is from before the loss";
    EXPECT_TRUE(setState(snapshot, kelvaris::State::CONNECTED)) << "it is news over a new link";
    EXPECT_TRUE(snapshot.isConnected());
    EXPECT_FALSE(snapshot.hasNetwork()) << "the connections are from before the loss";
    setConnections(snapshot, {2, {connection("a", 0, 20, 0, false)}});
    EXPECT_FALSE(snapshot.hasNetwork()) << "no connection has an address";

    kelvaris::Error const error{kelvaris::ErrorType::SDK, "can't be read"};
    EXPECT_TRUE(setError(snapshot, Topic::adapters, error));
    EXPECT_FALSE(setError(snapshot, Topic::adapters, error)) << "the same again is no change";
    setLink(snapshot, kelvaris::Link::ENDED);
    EXPECT_FALSE(setError(snapshot, Topic::state, error)) << "a daemon that is away answers no read";
}

TEST(MonitorSnapshot, KeepsABoundedHistoryOfEachAdapter) {
    Snapshot snapshot = connectedSnapshot();
    Traffic const* const traffic = snapshot.trafficOf("a");
    ASSERT_NE(traffic, nullptr);
    EXPECT_EQ(traffic->receiveBitsPerSecond, 1500);
    EXPECT_EQ(traffic->latencySeconds, 0.02); // the fastest one's
    EXPECT_EQ(traffic->lossReceive, 0.3);     // the worst one's
    EXPECT_EQ(traffic->connected, 2U);
    EXPECT_EQ(snapshot.trafficOf("b"), nullptr);

    setConnections(snapshot, {2, {connection("b", 1, 0, 0, false)}});
    EXPECT_EQ(snapshot.trafficOf("a"), nullptr) << "it has vanished";
    EXPECT_EQ(snapshot.history.at("a").size(), 1U);
    EXPECT_EQ(snapshot.trafficOf("b")->latencySeconds, std::nullopt);
    snapshot.history.at("a").front().time -= historyLimit;
    for (std::size_t i = 0; i < historyCount + 5; ++i) {
        setConnections(snapshot, {3, {connection("b", 1, 0, 0)}});
    }
    EXPECT_FALSE(snapshot.history.contains("a")) << "its samples are too old";
    EXPECT_EQ(snapshot.history.at("b").size(), historyCount);
    for (std::size_t i = 0; i < 2 * historyAdapters; ++i) {
        setConnections(snapshot, {4, {connection(std::to_string(i), 1, 0, 0)}});
    }
    EXPECT_EQ(snapshot.history.size(), historyAdapters);
}

TEST(MonitorCommand, WatchWritesJsonThatIsAsciiWhateverTheNames) {
    Loop loop;
    Snapshot snapshot;
    Options const options;
    testing::internal::CaptureStdout();
    {
        auto const watch = makeWatch({loop, snapshot, options});
        watch->opened(snapshot);
        snapshot = connectedSnapshot();
        watch->changed(snapshot, {Topic::adapters, WallClock::time_point()});
    }
    std::istringstream lines(testing::internal::GetCapturedStdout());
    std::string first;
    std::string second;
    std::string third;
    std::getline(lines, first);
    std::getline(lines, second);
    std::getline(lines, third);
    Json::Value const opening = harness::parsed(first);
    EXPECT_EQ(opening["event"], "snapshot");
    EXPECT_EQ(opening["seq"], 0);
    EXPECT_EQ(opening["data"]["link"]["link"], "unknown");
    EXPECT_TRUE(opening["data"].isMember("adapters") && opening["data"]["adapters"].isNull());
    Json::Value const change = harness::parsed(second);
    EXPECT_EQ(change["seq"], 1);
    EXPECT_EQ(change["time"], "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(change["data"][0]["name"], repaired(hostile));
    EXPECT_FALSE(change["data"][0]["dataUsage"].isMember("usageMonthlyLimit")) << "nobody has reported one";
    EXPECT_TRUE(
        std::all_of(second.begin(), second.end(), [](char each) { return each >= ' ' && each < 0x7F; }));
    EXPECT_EQ(third, "");
}

// Both reports may be there before anything is settled.
TEST(MonitorCommand, WaitIsContentWithAStateThatIsLeftAtOnce) {
    Loop loop;
    Snapshot snapshot;
    Options options;
    options.wait = {Goal::state, kelvaris::State::CONNECTING, std::nullopt};
    auto const wait = makeWait({loop, snapshot, options});
    setLink(snapshot, kelvaris::Link::UP);
    setState(snapshot, kelvaris::State::CONNECTING);
    wait->changed(snapshot, {});
    setState(snapshot, kelvaris::State::CONNECTED);
    wait->settled(snapshot);
    EXPECT_TRUE(loop.hasEnded());
}

TEST(MonitorCommand, RecordWritesARowForEachAdapterWithoutBreakingTheTable) {
    harness::Folder const folder;
    Snapshot snapshot = connectedSnapshot();
    Options options;
    options.record.file = folder.file("record.csv");
    options.record.count = 1;
    for (int run = 0; run < 2; ++run) {
        Loop loop;
        auto const record = makeRecord({loop, snapshot, options});
        raise(SIGHUP); // before anything is known
        loop.setTimer(10ms, [&] { record->opened(snapshot); });
        EXPECT_EQ(loop.run(), 0);
        setLink(snapshot, kelvaris::Link::LOST);
    }
    std::istringstream lines(folder.contentOf("record.csv"));
    std::vector<std::string> rows;
    for (std::string line; std::getline(lines, line);) {
        rows.push_back(line.substr(line.find(',') + 1)); // without the time
    }
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_TRUE(rows[0].starts_with("link,state,server,adapter_id,name,"));
    EXPECT_EQ(
        rows[1],
        "up,CONNECTED,,a,\"Caf\xC3\xA9, \"\"x\"\"\\x0a\\x1b[2J\\x7f\\x9b\\u{202e}\xEF\xBF\xBD\",Unknown,"
        "disconnected,always,1500,0,0.02,0,0.3,0,2,0,,0,");
    EXPECT_EQ(rows[2], "up,CONNECTED,,b,,Unknown,disconnected,always,,,,,,,,0,,0,");
    EXPECT_EQ(rows[3], "down,,,,,,,,,,,,,,,,,,")
        << "the header isn't repeated, and old adapters aren't shown";
    EXPECT_EQ(std::count(rows[0].begin(), rows[0].end(), ','),
              std::count(rows[3].begin(), rows[3].end(), ','));
}

} // namespace
