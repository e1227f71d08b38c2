// The live view's pictures, cell by cell, without a terminal.

#include "screen.h"
#include "top.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <cwchar>
#include <gtest/gtest.h>

using namespace monitor;
using namespace std::chrono_literals;

namespace {

constexpr char hostile[] =
    "Caf\xC3\xA9 "
    "\xE6\xBC\xA2\xE5\xAD\x97\x1b[2J\xE2\x80\xAE\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB\xE2\x82";

kelvaris::AdapterData adapter(std::string const& id, std::string const& name) {
    kelvaris::AdapterData value;
    value.adapterID = id;
    value.name = name;
    value.state = kelvaris::ConnectionState::CONNECTED;
    value.type = kelvaris::NetworkType::CELLULAR;
    return value;
}

kelvaris::ConnectionStats connection(std::string const& adapterID, std::int64_t receive, int latencyMs) {
    kelvaris::ConnectionStats value;
    value.adapterID = adapterID;
    value.connected = true;
    value.receiveBps = receive;
    value.sendBps = receive / 10;
    value.latencyMs = std::chrono::milliseconds(latencyMs);
    value.jitterMs = 3ms;
    value.lossSend = 0.06;
    return value;
}

class View : public testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
        ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
        setLink(snapshot, kelvaris::Link::UP);
        setState(snapshot, kelvaris::State::CONNECTED);
        kelvaris::ServerInformationDetailed server;
        server.country = "us";
        setServer(snapshot, server);
        auto limited = adapter("b", "Mobile");
        limited.dataUsage = {.usage = 9'000'000'000,
                             .usageDaily = 1'500'000'000,
                             .max = 12'000'000'000,
                             .resetDay = 15,
                             .maxDaily = 1'000'000'000,
                             .boostDaily = 500'000'000,
                             .overlimitRate = 128'000};
        setAdapters(snapshot, {adapter("a", hostile), limited});
        setConnections(snapshot, {1, {connection("a", 42'100'000, 40), connection("b", 8'000'000, 20)}});
        view.now = snapshot.connections.time;
        view.wallNow = WallClock::time_point(1'795'449'600s); // 2026-11-23 16:00 UTC
    }

    // The picture's rows; in each, every cell is one that a terminal shows as planned.
    std::vector<std::string> rowsOf(Size size) const {
        Grid const grid = drawView(snapshot, view, size);
        std::vector<std::string> rows;
        for (int row = 0; row < grid.size().rows; ++row) {
            rows.push_back(grid.rowText(row));
            for (int column = 0; column < grid.size().columns; ++column) {
                auto const code = static_cast<wchar_t>(grid.at(row, column).text[0]);
                int const width = code == 0 ? 1 : wcwidth(code);
                bool const isRightHalf =
                    column > 0 && wcwidth(static_cast<wchar_t>(grid.at(row, column - 1).text[0])) == 2;
                bool const isWhole =
                    width != 2 || (column + 1 < grid.size().columns && grid.at(row, column + 1).text[0] == 0);
                EXPECT_TRUE(width >= 1 && isWhole && (code == 0) == isRightHalf) << rows.back();
                EXPECT_TRUE(!view.isAscii || code < 0x7F) << rows.back();
            }
        }
        return rows;
    }
    std::string pictureOf(Size size) const {
        std::string picture;
        for (std::string const& row : rowsOf(size)) {
            picture += row + '\n';
        }
        return picture;
    }
    bool isDim(std::string const& text, Size size) const {
        Grid const grid = drawView(snapshot, view, size);
        for (int row = 0; row < size.rows; ++row) {
            if (auto const at = grid.rowText(row).find(text); at != std::string::npos) {
                return grid.at(row, widthOf(grid.rowText(row).substr(0, at))).style.dim;
            }
        }
        ADD_FAILURE() << text << " isn't in:\n" << pictureOf(size);
        return false;
    }
    bool has(std::string const& text, Size size) const {
        return pictureOf(size).find(text) != std::string::npos;
    }

    Snapshot snapshot;
    ViewState view;
};

} // namespace

TEST(Format, RoundsBeforeItChoosesTheUnit) {
    EXPECT_EQ(rateText(999.4, Unit::bits), "999 bit/s");
    EXPECT_EQ(rateText(999'600, Unit::bits), "1.00 Mbit/s");
    EXPECT_EQ(rateText(99'960'000, Unit::bits), "100 Mbit/s");
    EXPECT_EQ(rateText(42'100'000, Unit::bytes), "5.26 MB/s");
    EXPECT_EQ(rateText(-5, Unit::bits), "0 bit/s");
    EXPECT_EQ(rateText(std::nan(""), Unit::bits), "–");
    EXPECT_EQ(shortRate(9.3e19, Unit::bits), "93.0E");
    EXPECT_EQ(bytesText(1e300), "999 ZB");
    EXPECT_EQ(durationText(3599.9s), "59 min 59 s");
    EXPECT_EQ(durationText(2h), "2 h");
    EXPECT_EQ(durationText(50h), "2 d 2 h");
    EXPECT_EQ(durationText(-3s), "0 s");
    EXPECT_EQ(latencyText(0.9996), "1.0 s");
    EXPECT_EQ(latencyText(std::nullopt), "–");
    EXPECT_EQ(percentText(0.0004), "<0.1 %");
    EXPECT_EQ(percentText(0.0996), "10 %");
    EXPECT_EQ(percentText(7), "100 %");
}

TEST_F(View, DaysEndOnTheMonthsLastDayAtTheLatest) {
    EXPECT_EQ(daysUntil(24, view.wallNow), 1);
    EXPECT_EQ(daysUntil(23, view.wallNow), 30); // today's period has begun
    EXPECT_EQ(daysUntil(31, view.wallNow), 7);
    EXPECT_EQ(daysUntil(5, view.wallNow), 12);
    EXPECT_EQ(daysUntil(99, WallClock::time_point(1'798'156'800s)), 6); // 2026-12-25
}

TEST(Graph, TakesMeansAndHoldsThemForAsLongAsReportsMayTake) {
    Clock::time_point const now{1000s};
    std::deque<Traffic> samples;
    for (auto const& [age, rate] : {std::pair(30, 7.0), {12, 2.0}, {11, 4.0}, {1, 8.0}}) {
        samples.emplace_back().time = now - std::chrono::seconds(age);
        samples.back().receiveBitsPerSecond = rate;
    }
    auto const values = graphValues(samples, &Traffic::receiveBitsPerSecond, now, 2s, 8);
    std::vector<double> const wanted = {std::nan(""), 3, 4, 4, std::nan(""), std::nan(""), 8, 8};
    ASSERT_EQ(values.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_TRUE(values[i] == wanted[i] || (std::isnan(values[i]) && std::isnan(wanted[i])))
            << i << ": " << values[i];
    }
    EXPECT_EQ(roundScale(2.1), 5);
    EXPECT_EQ(roundScale(50), 50);
    EXPECT_EQ(roundScale(81, 8), 160);
}

TEST(Graph, IsFilledFromTheBottomAndTellsNothingFromNothingKnown) {
    std::vector<double> const values = {std::nan(""), std::nan(""), 0, 1, 4, 8, 99, 8};
    using Rows = std::vector<std::u32string>;
    EXPECT_EQ(drawGraph(values, 8, 2, GraphKind::braille), (Rows{U"  ⢸⣿", U" ⣀⣿⣿"}));
    EXPECT_EQ(drawGraph(values, 8, 1, GraphKind::block), (Rows{U"  ▁▁▄███"}));
    EXPECT_EQ(drawGraph(values, 8, 2, GraphKind::ascii), (Rows{U"     ###", U"  ..####"}));
    EXPECT_EQ(drawGraph({3, std::nan("")}, 8, 1, GraphKind::braille), (Rows{U"⡄"}));
}

TEST_F(View, WideCharactersAreWholeOrNotThere) {
    Grid grid({1, 6}, false);
    EXPECT_EQ(grid.put(0, 0, "漢字漢字"),
              5); // there is no room for half a character in front of the ellipsis
    EXPECT_EQ(grid.rowText(0), "漢字…");
    grid.put(0, 1, "x");
    EXPECT_EQ(grid.rowText(0), " x字…");
    EXPECT_EQ(grid.put(0, 4, "e\xCC\x81\xCC\x80\xCC\x81\xCC\x80z"), 6); // at most two marks
    EXPECT_EQ(grid.rowText(0), " x字e\xCC\x81\xCC\x80z");
    Grid ascii({1, 9}, true);
    ascii.put(0, 0, "● Café ↓漢");
    EXPECT_EQ(ascii.rowText(0), "* Caf? v?");
}

TEST_F(View, ACardHasAllOfAnAdapter) {
    std::string const wide = pictureOf({30, 100});
    for (char const* const each :
         {"● Connected  United States", "Café 漢字\\x1b[2J\\u{202e…", "42.1 Mbit/s", "4.21 Mbit/s",
          "latency  40 ms", "jitter   3 ms", "loss  6.0 %", "Cellular · always",
          "9.00 of 12.0 GB · 22 days left", "1.50 of 1.50 GB · now 128 kbit/s"}) {
        EXPECT_NE(wide.find(each), std::string::npos) << each << " isn't in:\n" << wide;
    }
    view.unit = Unit::bytes;
    EXPECT_TRUE(has("5.26 MB/s", {20, 60}));
    EXPECT_TRUE(has("9.00 of 12.0 GB · 22 days left", {20, 60}));
    // Without room for cards there is a line for each, and without room for those the chosen one is among them.
    EXPECT_TRUE(has("↓ 1.00M", {10, 40}));
    EXPECT_FALSE(has("of 12.0 GB", {10, 40}));
    view.chosen = "b";
    auto const rows = rowsOf({2, 40});
    EXPECT_NE(rows[1].find("Mobile"), std::string::npos) << rows[1];
    EXPECT_EQ(rowsOf({1, 1})[0], "●");
}

TEST_F(View, NoSizeIsRefused) {
    snapshot.streams.value.emplace().streams.resize(10);
    setError(snapshot, Topic::server, {});
    for (auto const& [isFull, isHelp] : {std::pair(false, false), {true, false}, {false, true}}) {
        view.isFull = isFull;
        view.isHelp = isHelp;
        view.chosen = "a";
        for (int columns : {0, 1, 2, 3, 5, 9, 14, 20, 33, 40, 55, 56, 57, 60, 89, 90, 100, 300}) {
            for (int rows : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 16, 20, 30, 80}) {
                rowsOf({rows, columns});
            }
        }
    }
    view.isAscii = true;
    view.graph = GraphKind::ascii;
    view.isHelp = false;
    rowsOf({30, 100});
    view.isPrinted = true;
    EXPECT_NE(rowsOf({0, 60}).size(), 0U);
}

TEST_F(View, WhatIsNotUpToDateIsDimAndTellsItsAge) {
    EXPECT_FALSE(isDim("42.1 Mbit/s", {30, 100}));
    view.now += 8s;
    EXPECT_TRUE(isDim("42.1 Mbit/s", {30, 100}));
    EXPECT_TRUE(has("statistics 8 s old", {30, 100}));
    setLink(snapshot, kelvaris::Link::LOST);
    kelvaris::SessionStats session;
    session.periodHours = kelvaris::currentSession;
    session.periodStartTime = 1;
    setSession(snapshot, {{session}});
    snapshot.session.time = snapshot.connections.time;
    snapshot.session.wallTime = WallClock::time_point(7min);
    for (Size const size : {Size{30, 100}, Size{20, 60}, Size{10, 40}}) {
        EXPECT_TRUE(has("Daemon lost", size));
        EXPECT_TRUE(size.columns > 60 || has("6 min 59 s", size))
            << "the session's time goes on without a daemon";
        EXPECT_TRUE(has("as of 8 s ago", size));
        EXPECT_TRUE(isDim("Mobile", size));
    }
    snapshot = {};
    setLink(snapshot, kelvaris::Link::LOST);
    EXPECT_TRUE(has("No daemon  waiting", {30, 100}));
}

TEST_F(View, KeysChooseScaleAndSort) {
    auto const press = [this](int key) { return applyKey(view, key, snapshot); };
    EXPECT_EQ(press('q'), Effect::quit);
    EXPECT_EQ(press('x'), Effect::nothing);
    EXPECT_EQ(press('g'), Effect::changed);
    EXPECT_EQ(view.scale, 50e6); // of all adapters
    press('+');
    EXPECT_EQ(view.scale, 100e6);
    press('-');
    press('-');
    EXPECT_EQ(view.scale, 20e6);
    press('b');
    EXPECT_EQ(view.scale, 20e6); // a fixed one stays, in whatever unit it is shown
    press('g');
    EXPECT_EQ(view.scale, std::nullopt);
    press(static_cast<int>(Key::down));
    press(static_cast<int>(Key::down));
    press(static_cast<int>(Key::down));
    EXPECT_EQ(view.chosen, "b");
    press(static_cast<int>(Key::enter));
    EXPECT_TRUE(has("highest", {30, 100}));
    press(static_cast<int>(Key::escape));
    EXPECT_FALSE(view.isFull);
    for (unsigned i = 0; i < 3; ++i) {
        press('s');
    }
    EXPECT_EQ(shownAdapters(snapshot, view), (std::vector<std::string>{"b", "a"})); // by latency
    // An adapter that vanishes takes its full-width graph with it.
    view.isFull = true;
    setAdapters(snapshot, {adapter("a", "Wired")});
    setConnections(snapshot, {2, {connection("a", 1, 40)}});
    EXPECT_TRUE(has("Wired", {30, 100}));
}
