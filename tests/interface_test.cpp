// The C interface as a whole: how each call delivers and which lock ends it, the texts of the enumerations.

#include "support/calls.h"
#include "support/sdk.h"
#include "support/texts.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <regex>
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

enum class Given { all, noCallback, noTexts, nothing };

// The handle stands in for the user data.
struct Arguments {
    KelvarisSDK_Handle* sdk;
    Given given;

    template <class Result, class T> T give() {
        bool const texts = given == Given::all || given == Given::noCallback;
        if constexpr (std::is_same_v<T, bool (*)(Result, void*)>) {
            return given == Given::all || given == Given::noTexts ? keep<Result> : nullptr;
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

// Holds a line of the catalogue of calls.
struct Call {
    std::string delivery, lock;
    Words requests;
    KelvarisSDK_BaseResult (*call)(KelvarisSDK_Handle*, Arguments&) = nullptr;

    KelvarisSDK_BaseResult start(KelvarisSDK_Handle* sdk, Given given) const {
        Arguments arguments{sdk, given};
        return call(sdk, arguments);
    }
};

std::map<std::string, Call> catalogue() {
    std::map<std::string, Call> calls;
    std::istringstream lines(golden("calls.txt"));
    for (std::string line; std::getline(lines, line);) {
        Words const words = split(line);
        calls[words[0]] = {words[1], words[2], {words.begin() + 3, words.end()}};
    }
    calls.erase("call"); // names the columns
    for (auto const& [name, call] : callsWith<Arguments>) {
        calls[std::string(name)].call = call;
    }
    return calls;
}

// Returns the files of a folder, but not those of the folders in it.
std::string sources(std::string const& folder) {
    std::string texts;
    for (auto const& file : std::filesystem::directory_iterator(SOURCE_DIR "/" + folder)) {
        texts += file.is_regular_file() ? source(folder + '/' + file.path().filename().string()) : "";
    }
    return texts;
}

// Returns what the pattern's group captures.
std::set<std::string> found(std::string const& pattern, std::string const& text) {
    std::set<std::string> captures;
    std::regex const expression(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        captures.insert((*match)[1]);
    }
    return captures;
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
    auto const deliveries = [&](Call const& call, std::string const& locks) {
        uint64_t const id = call.start(handle.sdk, Given::all).callbackId;
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
    auto const calls = catalogue();
    for (auto const& [name, call] : calls) {
        SCOPED_TRACE(name);
        std::string otherLocks;
        for (auto const& [otherName, other] : calls) {
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
            EXPECT_EQ(delivery.userData == nullptr, name.starts_with("ResetDirectory"));
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
    std::set<std::string> const wanted =
        found(R"(KelvarisSDK_(\w+)\([^;]*(?:char const\*|unsigned short count)[^;]*\bcallback\b)",
              sources("sdklibrary/include/kelvarissdk"));
    std::set<std::string> const mayBeNull = {"SetDirectoryDomain", "SetDirectoryGatewayURI"};
    ScriptedDaemon daemon({{"request_current_state", "null", {state(6)}}}, noName);
    Handle const handle(daemon.port());
    auto const refuseAll = [&] {
        EXPECT_EQ(KelvarisSDK_EnableStatUpdates(handle.sdk, true, 1, nullptr).errorCode, 3842);
        EXPECT_EQ(KelvarisSDK_StartSafeBrowsing(handle.sdk, nullptr, nullptr, nullptr).base.errorCode, 3842);
        for (auto const& [name, call] : catalogue()) {
            for (Given const given : {Given::noTexts, Given::nothing}) {
                if (wanted.contains(name) && !mayBeNull.contains(name)) {
                    KelvarisSDK_BaseResult const head = call.start(handle.sdk, given);
                    EXPECT_TRUE(head.error && head.errorCode == 3842) << name << ' ' << head.errorCode;
                }
            }
        }
    };
    refuseAll();
    std::promise<void> refused;
    auto const inCallback = [&] {
        refuseAll();
        refused.set_value();
    };
    auto const callback = [](KelvarisSDK_StateResult, void* userData) {
        (*static_cast<decltype(&inCallback)>(userData))();
        return false;
    };
    KelvarisSDK_GetState(handle.sdk, callback, const_cast<void*>(static_cast<void const*>(&inCallback)));
    refused.get_future().wait();
}

TEST(Interface, NoHandleIsAMissingLink) {
    EXPECT_EQ(KelvarisSDK_EnableStatUpdates(nullptr, true, 1, nullptr).errorCode, 3840);
    EXPECT_EQ(KelvarisSDK_DaemonExit(nullptr).errorCode, 3840);
    EXPECT_EQ(KelvarisSDK_StartSafeBrowsing(nullptr, nullptr, nullptr, nullptr).base.errorCode, 3840);
    KelvarisSDK_UnregisterCallback(nullptr, 1);
    KelvarisSDK_Destroy(nullptr);
    for (auto const& [name, call] : catalogue()) {
        for (Given const given : {Given::all, Given::noCallback, Given::nothing}) {
            KelvarisSDK_BaseResult const head = call.start(nullptr, given);
            EXPECT_TRUE(head.error && head.errorCode == 3840) << name << ' ' << head.errorCode;
        }
    }
}

// A call that is declared and forgotten in the catalogue is named by the difference.
TEST(Interface, EveryCallIsCatalogued) {
    std::set<std::string> declared = found(R"(KelvarisSDK_(\w+)\(\s*KelvarisSDK_Handle\*[^;]*\bcallback\b)",
                                           sources("sdklibrary/include/kelvarissdk"));
    declared.erase("StartSafeBrowsing"); // two calls each, which their own test looks at
    declared.erase("StopSafeBrowsing");
    std::set<std::string> catalogued;
    for (auto const& [name, call] : catalogue()) {
        catalogued.insert(name);
    }
    EXPECT_EQ(catalogued, declared);
}

// The simulated daemon may share a mistake of the library, so a test has to spell each key and each request too.
TEST(Interface, EveryWordOnTheWireIsTested) {
    std::string const tests = sources("tests");
    std::string const transcripts = sources("tests/golden/transcripts");
    for (std::string const& key :
         found(R"re(StaticString const _\w+\{"(\w+)"\})re", source("sdklibrary/engine/keys.h"))) {
        EXPECT_NE((tests + transcripts).find('"' + key + '"'), std::string::npos)
            << "no test has the key " << key;
    }
    for (auto const& [name, call] : catalogue()) {
        for (std::string const& request : call.requests) {
            EXPECT_TRUE(tests.find('"' + request + '"') != std::string::npos ||
                        transcripts.find("> " + request) != std::string::npos)
                << "no test awaits the request " << request;
        }
    }
}

// A field that may hide in a record's padding too, and the size in the table of records.
TEST(Interface, EveryFieldHasItsPlace) {
    std::string const records = '\n' + golden("records.txt") + "\n";
    for (std::string const& record :
         found(R"(struct KelvarisSDK_(\w+ \{[^}]*)\})", sources("sdklibrary/include/kelvarissdk"))) {
        std::string const name = record.substr(0, record.find(' '));
        std::size_t const begin = records.find('\n' + name + ' ');
        ASSERT_NE(begin, std::string::npos) << name;
        std::string const places = records.substr(begin, records.find("\n\n", begin) - begin);
        for (std::string const& field : found(R"(\n    \w[\w ]* (\w+)[\[\]\w]*;)", record)) {
            EXPECT_NE(places.find("\n    " + field + ' '), std::string::npos) << name << ' ' << field;
        }
    }
    auto const sizes = found(R"(\bKelvarisSDK_(\w+ +\d+)\b)", sources("sdklibrary/include/kelvarissdk"));
    EXPECT_GT(sizes.size(), 20U);
    for (std::string const& size : sizes) {
        EXPECT_NE(records.find('\n' + std::regex_replace(size, std::regex(" +"), " ") + '\n'),
                  std::string::npos)
            << "the table of sizes says " << size;
    }
}

TEST(Interface, TextsOfEnumerations) {
    std::string all;
#define ROW(name) append(all, #name, KelvarisSDK_##name##_toString);
#include "enumerations.inc"
#undef ROW
    EXPECT_EQ(all, golden("enumerations.txt"));
}
