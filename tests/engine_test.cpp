// The request engine: event table, filters, time-outs, reconnecting, the end.

#include "secrettext.h"
#include "support/sdk.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>
#include <string_view>

using namespace harness;
using namespace kelvarissdk;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// GetState sends this request.
Step asked(std::vector<Answer> const& answers = {}, Then then = Then::carryOn) {
    return {"request_current_state", "null", answers, then};
}

std::string textOf(KelvarisSDK_BaseResult const& base) {
    std::string const message(base.errorMessage, strnlen(base.errorMessage, sizeof(base.errorMessage)));
    return (base.error ? "error " : "") + std::to_string(base.errorCode) + ' ' + message;
}

Options const absent{.appName = std::nullopt, .listen = false};

class Unlinked : public testing::Test {
protected:
    ScriptedDaemon const nobody{{}, absent};
    WebsocketImpl link{"127.0.0.1", nobody.port()};
    std::string log;
};

} // namespace

// Texts are escaped here and by jsoncpp alike, also where they are no UTF-8.
TEST(Engine, SecretsAreWrittenAsJsoncppWritesThem) {
    constexpr std::string_view bytes =
        "a ~\x7f/\"\\\b\f\n\r\t\x01\x1f\x80\xbf\xc3\xa9\xc0\xe2\x82\xac\xed\xa0\xf0\x9f\x98\x80\xf8\xff";
    std::minstd_rand random;
    for (int round = 0; round < 20000; ++round) {
        Json::Value request(Json::arrayValue);
        request.append("login");
        for (char const* const key : {"username", "password", "\xe9\"", ""}) {
            std::string text(random() % 12, '\0');
            std::generate(text.begin(), text.end(), [&] { return bytes[random() % bytes.size()]; });
            request[1][key] = text;
        }
        request.append("kelvaris_sdk");
        ASSERT_TRUE(holdsTextsOnly(request[1]));
        ASSERT_EQ(secretText("login", request[1], "kelvaris_sdk") + '\n', request.toStyledString());
    }
}

TEST(Engine, BrokenJsonPrintsTwoLinesAndReadsAsNull) {
    std::string const deep = report("current_state", std::string(1100, '[') + std::string(1100, ']'));
    ScriptedDaemon daemon({asked({R"(["report_current_state",{"state":6},])"}), asked({deep})}, noName);
    Handle handle(daemon.port());
    for (int i = 0; i < 2; ++i) {
        testing::internal::CaptureStderr();
        EXPECT_FALSE(KelvarisSDK_GetState(handle.sdk, nullptr, nullptr).base.error);
        std::string const printed = testing::internal::GetCapturedStderr();
        EXPECT_EQ(printed.find("Failed to parse JSON: "), 0U) << printed;
        EXPECT_NE(printed.find("\nJSON was: [\"report_current_state\""), std::string::npos) << printed;
    }
}

// The others live on, a subscription itself too: a later good report clears the flag and nothing else.
TEST(Engine, ReportThatCantBeReadEndsItsCallOnly) {
    std::vector<Answer> answers;
    for (char const* payload : {R"({"state":"x"})", "[1]", R"({"state":3000000000})", R"({"state":6})"}) {
        answers.emplace_back(report("current_state", payload));
    }
    answers.emplace_back(R"(["report_version_data",{"maj":70000,"min":2,"bug":3,"build":4}])");
    ScriptedDaemon daemon({asked(), {"request_version_data", "null", answers}}, noName);
    Handle handle(daemon.port());
    Inbox inbox;
    KelvarisSDK_GetState(handle.sdk, Inbox::keep, &inbox);
    KelvarisSDK_VersionResult const result = KelvarisSDK_GetVersion(handle.sdk, nullptr, nullptr);
    EXPECT_FALSE(result.base.error);
    EXPECT_EQ(result.maj, 70000 - 65536);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(textOf(inbox.take().base), "error 3840 Error from SDK") << i;
    }
    EXPECT_EQ(textOf(inbox.take().base), "3840 Error from SDK");
}

// A filter tests every key, and null asks for presence. A name in both lists is delivered twice, in one list
// once, and either delivery may end the entry.
TEST_F(Unlinked, FiltersAndLists) {
    Json::Value filter;
    filter["kind"] = 2;
    filter["state"] = Json::Value();
    std::vector<std::string> passed;
    int deliveries = 0;
    EventDescription filtered;
    WebsocketImpl::waitForEventWithMember(filtered, "e", filter);
    EventDescription both = awaiting("e");
    WebsocketImpl::waitForEvent(both, "e");
    WebsocketImpl::subscribeToEvent(both, "e");
    link.getResult(filtered, [&](std::string const&, std::string const& text, Json::Value const&) {
        passed.push_back(text);
        return false;
    });
    link.getResult(both, [&](auto&&...) { return ++deliveries == 3; });
    for (char const* text :
         {R"(["e",{"kind":2}])", R"(["e",{"kind":3,"state":1}])", R"(["e",{"kind":"2","state":2}])",
          R"(["e",{"state":3}])", R"(["e",[2]])", R"(["e"])", R"(["e",{"kind":2,"state":6}])"}) {
        link.handle_message(text);
    }
    EXPECT_EQ(passed, std::vector<std::string>{R"(["e",{"kind":2,"state":6}])"});
    EXPECT_EQ(deliveries, 4);
}

// The entry stands between two others, one of which waits less and the other more. One pass of the reader takes them in
// their order.
TEST(Engine, DefaultTimeOut) {
    if (ranOnClock(20)) {
        return;
    }
    ScriptedDaemon silent({asked()}, noName);
    ScriptedDaemon nobody({}, absent);
    ScriptedDaemon closing({asked({}, Then::closeFrame)}, noName);
    auto const timeOut = [](ScriptedDaemon const& daemon) {
        std::string log;
        Sdk sdk(daemon);
        auto const logged = [](KelvarisSDK_StateResult result, void* userData) {
            *static_cast<std::string*>(userData) += textOf(result.base) + ' ';
            return true; // it is a subscription, and gets no second time-out
        };
        Entry shorter(sdk.link(), "4999", log, awaiting("never", 4999));
        sdk.getState(logged, &log);
        Entry longer(sdk.link(), "5001", log, awaiting("never", 5001));
        longer.wait();
        return log;
    };
    auto first = std::async(std::launch::async, timeOut, std::cref(silent));
    auto second = std::async(std::launch::async, timeOut, std::cref(nobody));
    std::string const silence = "4999:sdk_error error 3841 Timeout 5001:sdk_error ";
    EXPECT_EQ(timeOut(closing), silence);
    EXPECT_EQ(closing.connections(), 1U) << "a link that the daemon has closed is made again";
    EXPECT_EQ(first.get(), silence);
    EXPECT_EQ(second.get(), "4999:sdk_error error 3845 Unable to connect 5001:sdk_error ");
}

// A time-out comes at most 100 ms late where there is a link, and 250 ms where there is none. A busy machine may take
// longer, but not each time.
TEST(Engine, TimeOutsAreNotLate) {
    ScriptedDaemon const nobody({}, absent);
    ScriptedDaemon silent({}, noName);
    for (std::uint16_t const port : {silent.port(), nobody.port()}) {
        milliseconds shortest = milliseconds::max();
        WebsocketImpl link("127.0.0.1", port);
        for (int i = 0; i < 5 && shortest > milliseconds(450); ++i) {
            std::string log;
            auto const start = steady_clock::now();
            Entry(link, "", log, awaiting("never", 100)).wait();
            shortest = std::min(shortest, std::chrono::ceil<milliseconds>(steady_clock::now() - start));
        }
        EXPECT_GT(shortest, milliseconds(100));
        EXPECT_LE(shortest, milliseconds(450));
    }
}

// An entry gets one time-out, and none when it awaits nothing or something was delivered, even when that finished
// nothing.
TEST_F(Unlinked, TimeOutsThatDontCome) {
    EventDescription listening;
    listening.timeoutMs = 10;
    WebsocketImpl::subscribeToEvent(listening, "never");
    Entry listener(link, "listener", log, listening);
    Entry delivered(link, "delivered", log, awaiting("e", 10), false);
    link.handle_message(R"(["e",{}])");
    Entry(link, "last", log, awaiting("never", 300)).wait();
    EXPECT_EQ(log, "delivered:e last:sdk_error ");
}

// A request can't leave while a callback runs, so its time-out begins when the callback has returned: the later of
// two calls waits less and ends first.
TEST_F(Unlinked, TimeOutCountsFromTheEndOfCallbacks) {
    std::optional<Entry> inside;
    EventDescription slow = awaiting("slow");
    link.getResult(slow, [&](auto&&...) {
        inside.emplace(link, "inside", log, awaiting("never", 400));
        std::this_thread::sleep_for(milliseconds(500));
        return true;
    });
    link.handle_message(R"(["slow",{}])");
    Entry behind(link, "behind", log, awaiting("never", 100));
    inside->wait();
    EXPECT_EQ(log, "behind:sdk_error inside:sdk_error ");
}

// The quickest attempt follows at once when its time has come; all of them together show that none came early.
TEST(Engine, AttemptsEvery250Ms) {
    if (ranOnClock(5)) {
        return;
    }
    std::size_t const attempts = 10;
    ScriptedDaemon daemon({}, {.upgrades = std::vector<Upgrade>(attempts + 1, {.then = Then::reset})});
    Handle handle(daemon.port());
    daemon.waitForConnections(1);
    auto const start = steady_clock::now();
    auto quickest = steady_clock::duration::max();
    auto last = start;
    for (std::size_t i = 2; i <= attempts + 1; ++i) {
        daemon.waitForConnections(i);
        quickest = std::min(quickest, steady_clock::now() - last);
        last = steady_clock::now();
    }
    EXPECT_LE(quickest, milliseconds(290));
    EXPECT_GE((last - start) / attempts, milliseconds(245));
}
