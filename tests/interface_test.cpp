// The C interface as a whole: how each call delivers and which lock ends it, the texts of the enumerations.

#include "support/calls.h"
#include "support/sdk.h"

#include <atomic>
#include <set>
#include <sstream>
#include <type_traits>

using namespace harness;

namespace {

struct Delivery {
    KelvarisSDK_BaseResult head;
    void* userData;
};
InboxOf<Delivery> inbox;
std::atomic<bool> wantsMore = true;

template <class T> bool keep(T result, void* userData) {
    inbox.put({result.base, userData});
    return wantsMore;
}

enum class Given { all, noTexts, nothing };

// The handle stands in for the user data.
struct Arguments {
    KelvarisSDK_Handle* sdk;
    Given given;

    template <class Result, class T> T give() {
        bool const texts = given == Given::all;
        if constexpr (std::is_same_v<T, bool (*)(Result, void*)>) {
            return given == Given::nothing ? nullptr : keep<Result>;
        } else if constexpr (std::is_same_v<T, void*>) {
            return sdk;
        } else if constexpr (std::is_same_v<T, char const*>) {
            return texts ? "text" : nullptr;
        } else if constexpr (std::is_pointer_v<T>) {
            return nullptr;
        } else {
            return static_cast<T>(!texts);
        }
    }
};

// Returns every report that finishes a call, each of them twice.
std::string allReports() {
    std::string frames;
    std::istringstream lines(golden("reports.txt"));
    for (std::string name, payload; lines >> name >> payload;) {
        frames += frame(0x81, report(name, payload));
    }
    return frames + frames;
}

using AnyCall = CallWith<Arguments>;

KelvarisSDK_BaseResult start(AnyCall const& call, KelvarisSDK_Handle* sdk, Given given) {
    Arguments arguments{sdk, given};
    return call.start(sdk, arguments);
}

// Holds a line of the catalogue of calls.
struct Line {
    AnyCall call;
    std::string delivery, lock;
    Words requests;
};

std::vector<Line> catalogue() {
    std::vector<Line> lines;
    std::istringstream text(golden("calls.txt"));
    std::string line;
    std::getline(text, line); // names the columns
    for (AnyCall const& call : callsWith<Arguments>) {
        std::getline(text, line);
        Words const words = split(line);
        EXPECT_EQ(words[0], call.name);
        lines.push_back({call, words[1], words[2], {words.begin() + 3, words.end()}});
    }
    return lines;
}

// Appends the text of each number that has one of its own, and that of all others.
template <class Enum> void append(std::string& all, char const* name, char const* (*textOf)(Enum)) {
    std::string const otherText = textOf(static_cast<Enum>(UINT32_MAX));
    for (uint32_t number = 0; number < 4000; ++number) {
        std::string const text = textOf(static_cast<Enum>(number));
        all += text == otherText ? "" : name + (' ' + std::to_string(number)) + ' ' + text + '\n';
    }
    all += name + (" - " + otherText) + '\n';
}

} // namespace

// A subscription's callback runs for every report until it returns false, another one's for the first. A setting ends with its own
// lock, and nothing ends with another's. A reset's callback has no user data.
TEST(Interface, CallsDeliverAsCatalogued) {
    ScriptedDaemon daemon({}, noName);
    Handle const handle(daemon.port());
    InboxOf<KelvarisSDK_SafeBrowsingBlockResult> marks;
    KelvarisSDK_ListenForSafeBrowsingBlock(handle.sdk, decltype(marks)::keep, &marks);
    daemon.waitForConnections(1);
    auto const deliveries = [&](Line const& call, std::string const& locks) {
        uint64_t const id = start(call.call, handle.sdk, Given::all).callbackId;
        for (std::string const& request : call.requests) {
            daemon.waitForRequest(request);
        }
        daemon.send(raw(locks + allReports() + frame(0x81, report("safe_browsing_block", "{}"))));
        for (int blocks = 3; blocks > 0; --blocks) { // the two of all reports, and the last
            marks.take();
        }
        KelvarisSDK_UnregisterCallback(handle.sdk, id);
        std::vector<Delivery> delivered;
        while (!inbox.empty()) {
            delivered.push_back(inbox.take());
        }
        return delivered;
    };
    auto const lines = catalogue();
    for (Line const& call : lines) {
        SCOPED_TRACE(call.call.name);
        std::string otherLocks;
        for (Line const& other : lines) {
            for (std::string const& setting : other.requests) {
                otherLocks += setting == call.lock ? "" : frame(0x81, lock(setting, 1));
            }
        }
        std::vector<Delivery> const unlocked = deliveries(call, otherLocks);
        EXPECT_EQ(unlocked.size() == 1, call.delivery == "once") << unlocked.size();
        wantsMore = false;
        EXPECT_EQ(deliveries(call, "").size(), 1U);
        wantsMore = true;
        for (Delivery const& delivery : unlocked) {
            EXPECT_FALSE(delivery.head.error);
            EXPECT_EQ(delivery.userData == nullptr, call.call.name.starts_with("ResetDirectory"));
        }
        for (int reason = 1; reason <= 2 && call.lock != "-"; ++reason) {
            std::vector<Delivery> const locked = deliveries(call, frame(0x81, lock(call.lock, reason)));
            EXPECT_EQ(locked.size(), 1U);
            for (Delivery const& delivery : locked) {
                EXPECT_TRUE(delivery.head.error);
                EXPECT_EQ(delivery.head.errorCode, reason == 1 ? 3846 : 3848);
            }
        }
    }
}

// Nothing is sent, and a refusal for the arguments comes before that of a synchronous call in a callback.
TEST(Interface, NullIsRefused) {
    std::set<std::string_view> const mayBeNull = {"SetDirectoryDomain", "SetDirectoryGatewayURI"};
    ScriptedDaemon daemon({asked("version_data", "{}")}, noName);
    Handle const handle(daemon.port());
    auto const refuseAll = [&] {
        EXPECT_EQ(KelvarisSDK_EnableStatUpdates(handle.sdk, true, 1, nullptr).errorCode, 3842);
        EXPECT_EQ(KelvarisSDK_StartSafeBrowsing(handle.sdk, nullptr, nullptr, nullptr).base.errorCode, 3842);
        for (AnyCall const& call : callsWith<Arguments>) {
            for (Given const given : {Given::noTexts, Given::nothing}) {
                if (call.takesTexts && !mayBeNull.contains(call.name)) {
                    KelvarisSDK_BaseResult const head = start(call, handle.sdk, given);
                    EXPECT_TRUE(head.error && head.errorCode == 3842) << call.name << ' ' << head.errorCode;
                }
            }
        }
    };
    refuseAll();
    inCallback(handle.sdk, refuseAll);
}

TEST(Interface, NoHandleIsAMissingLink) {
    EXPECT_EQ(KelvarisSDK_EnableStatUpdates(nullptr, true, 1, nullptr).errorCode, 3840);
    EXPECT_EQ(KelvarisSDK_DaemonExit(nullptr).errorCode, 3840);
    EXPECT_EQ(KelvarisSDK_StartSafeBrowsing(nullptr, nullptr, nullptr, nullptr).base.errorCode, 3840);
    KelvarisSDK_UnregisterCallback(nullptr, 1);
    KelvarisSDK_Destroy(nullptr);
    for (AnyCall const& call : callsWith<Arguments>) {
        for (Given const given : {Given::all, Given::nothing}) {
            KelvarisSDK_BaseResult const head = start(call, nullptr, given);
            EXPECT_TRUE(head.error && head.errorCode == 3840) << call.name << ' ' << head.errorCode;
        }
    }
}

TEST(Interface, TextsOfEnumerations) {
    std::string all;
#define ROW(name) append(all, #name, KelvarisSDK_##name##_toString);
#include "enumerations.inc"
#undef ROW
    EXPECT_EQ(all, golden("enumerations.txt"));
}
