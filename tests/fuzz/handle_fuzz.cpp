// A handle on a daemon that both do what the input says: calls of any function with any arguments, callbacks that
// unregister themselves and call the library again, reports and other bytes in between. All calls are asynchronous, as
// a daemon that may not answer would hold synchronous ones until their time-outs. What was delivered before a call or
// an end of one is settled by a message of its own, so that an input does the same each time.

#include "reports.h"
#include "support/calls.h"
#include "support/sdk.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <list>
#include <memory>
#include <type_traits>

using namespace harness;

namespace {

// Zeros behind its end.
class Input {
public:
    Input(std::uint8_t const* data, std::size_t size) : next(data), end(data + size) {}

    bool isEmpty() const {
        return next == end;
    }
    std::uint8_t byte() {
        return isEmpty() ? 0 : *next++;
    }
    std::string bytes() {
        std::size_t const length = std::min<std::size_t>(byte(), static_cast<std::size_t>(end - next));
        next += length;
        return {reinterpret_cast<char const*>(next - length), length};
    }

private:
    std::uint8_t const* next;
    std::uint8_t const* end;
};

// A call's user data, freed as soon as no callback may use them any more.
struct Waiting {
    KelvarisSDK_Handle* sdk;
    std::uint8_t manner; // of its callback
    std::uint64_t id = 0;
};

template <class Result> bool deliver(Result result, void* userData) {
    if (userData == nullptr) { // as the calls that reset something have it
        return true;
    }
    auto const& waiting = *static_cast<Waiting*>(userData);
    if (waiting.manner & 1) {
        KelvarisSDK_UnregisterCallback(waiting.sdk, result.base.callbackId);
    }
    if ((waiting.manner & 2) && KelvarisSDK_GetState(waiting.sdk, nullptr, nullptr).base.errorCode !=
                                    KelvarisSDK_ErrorType_SYNCHRONOUS_IN_CALLBACK) {
        std::abort();
    }
    return waiting.manner & 4;
}

// Texts and arrays live as long as this, because the library copies them.
constexpr unsigned longestArray = 130;
struct Arguments {
    Input& input;
    Waiting* waiting;
    std::list<std::string> texts = {};
    alignas(8) char array[longestArray * 50] = {};

    template <class Result, class T> T give() {
        if constexpr (std::is_same_v<T, bool (*)(Result, void*)>) {
            return deliver<Result>;
        } else if constexpr (std::is_same_v<T, void*>) {
            return waiting;
        } else if constexpr (std::is_same_v<T, char const*>) {
            texts.push_back(input.bytes());
            return texts.back() == "null" ? nullptr : texts.back().c_str();
        } else if constexpr (std::is_pointer_v<T>) {
            std::string const bytes = input.bytes();
            for (std::size_t i = 0; i < sizeof array && !bytes.empty(); ++i) {
                array[i] = bytes[i % bytes.size()];
            }
            return bytes == "null" ? nullptr : reinterpret_cast<T>(array);
        } else if constexpr (std::is_same_v<T, unsigned short>) {
            return static_cast<T>(input.byte() % longestArray);
        } else if constexpr (std::is_same_v<T, bool>) {
            return input.byte() % 2 != 0;
        } else {
            long long const number = static_cast<std::int8_t>(input.byte());
            return static_cast<T>(number == 127 ? INT64_MAX : number == -128 ? INT64_MIN : number);
        }
    }
};

// Returns when the callbacks for all that was sent have run. After bytes that make no sense that may never be.
void settle(ScriptedDaemon& daemon, Sdk& library, bool isIntact) {
    auto const settled = std::make_shared<std::promise<void>>();
    auto description = awaiting("settled");
    library.link().getResult(description, [settled](auto&&...) {
        settled->set_value();
        return true;
    });
    daemon.send(R"(["settled",{}])");
    auto const limit = std::chrono::milliseconds(isIntact ? 10'000 : 2);
    if (settled->get_future().wait_for(limit) == std::future_status::timeout && isIntact) {
        std::abort();
    }
}

void perform(Input& input, ScriptedDaemon& daemon, std::size_t connection) {
    std::vector<std::unique_ptr<Waiting>> waiting;
    Sdk library(daemon);
    KelvarisSDK_Handle* const sdk = library.handle();
    daemon.waitForConnections(connection);
    for (bool isIntact = true; !input.isEmpty();) {
        std::uint8_t const what = input.byte();
        if (what < 128) {
            waiting.push_back(std::make_unique<Waiting>(Waiting{sdk, input.byte()}));
            Arguments given{input, waiting.back().get()};
            auto const& call = callsWith<Arguments>[what % std::size(callsWith<Arguments>)];
            waiting.back()->id = call.start(sdk, given).callbackId;
        } else if (what < 128 + std::size(reports)) {
            daemon.send(std::string("[\"report_") + reports[what - 128] + "\"," + input.bytes() + ']');
            settle(daemon, library, isIntact);
        } else if (what < 192) {
            KelvarisSDK_EnableStatUpdates(sdk, what % 2 != 0, 0, nullptr);
        } else if (what < 224 && !waiting.empty()) {
            auto const which = waiting.begin() + what % static_cast<std::ptrdiff_t>(waiting.size());
            KelvarisSDK_UnregisterCallback(sdk, (*which)->id);
            waiting.erase(which);
        } else {
            daemon.send(raw(input.bytes()));
            isIntact = false;
            settle(daemon, library, isIntact);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    stderr = std::fopen("/dev/null", "w");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    // The daemon only listens to itself. It keeps what its connections were, and is made anew for that now and then.
    constexpr std::size_t inputsPerDaemon = 100;
    static std::optional<ScriptedDaemon> daemon;
    static std::size_t inputs = 0;
    if (inputs++ % inputsPerDaemon == 0) {
        Upgrade const unheard{.bytes = "HTTP/1.1 101\r\n\r\n"};
        daemon.emplace(std::vector<Step>(),
                       Options{.upgrades = std::vector<Upgrade>(inputsPerDaemon, unheard)});
    }
    Input input(data, size);
    perform(input, *daemon, (inputs - 1) % inputsPerDaemon + 1);
    return 0;
}
