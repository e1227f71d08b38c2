// A handle on a daemon that both do what the input says: calls of any function with any arguments, callbacks that
// unregister themselves and call the library again, reports and other bytes in between. All calls are asynchronous, as
// a daemon that may not answer would hold synchronous ones until their time-outs. What was delivered before a call or
// an end of one is settled by a ping, so that an input does the same each time.

#include "kelvarissdk.h"
#include "reports.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <kelvarissdk/csdkinterface.h>
#include <list>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <tuple>
#include <type_traits>
#include <unistd.h>
#include <vector>

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

// Texts and arrays of a call, which the library copies.
constexpr unsigned longestArray = 130;
struct Arguments {
    std::list<std::string> texts;
    alignas(8) char array[longestArray * 50];
};

template <class Result, class T> T argument(Input& input, Arguments& given, Waiting* waiting) {
    if constexpr (std::is_same_v<T, bool (*)(Result, void*)>) {
        return deliver<Result>;
    } else if constexpr (std::is_same_v<T, void*>) {
        return waiting;
    } else if constexpr (std::is_same_v<T, char const*>) {
        given.texts.push_back(input.bytes());
        return given.texts.back() == "null" ? nullptr : given.texts.back().c_str();
    } else if constexpr (std::is_pointer_v<T>) {
        std::string const bytes = input.bytes();
        for (std::size_t i = 0; i < sizeof given.array; ++i) {
            given.array[i] = bytes.empty() ? '\0' : bytes[i % bytes.size()];
        }
        return bytes == "null" ? nullptr : reinterpret_cast<T>(given.array);
    } else if constexpr (std::is_same_v<T, unsigned short>) {
        return static_cast<T>(input.byte() % longestArray);
    } else if constexpr (std::is_same_v<T, bool>) {
        return input.byte() % 2 != 0;
    } else {
        long long number = static_cast<std::int8_t>(input.byte());
        return static_cast<T>(number == 127 ? INT64_MAX : number == -128 ? INT64_MIN : number);
    }
}

using Call = KelvarisSDK_BaseResult (*)(KelvarisSDK_Handle*, Input&, Waiting*);

template <auto function> struct Caller;
template <class Result, class... Parameters, Result (*function)(KelvarisSDK_Handle*, Parameters...)>
struct Caller<function> {
    static KelvarisSDK_BaseResult call(KelvarisSDK_Handle* sdk, Input& input, Waiting* waiting) {
        Arguments given;
        std::tuple<Parameters...> const values{argument<Result, Parameters>(input, given, waiting)...};
        return std::apply([&](auto... each) { return function(sdk, each...); }, values).base;
    }
};

#define ROW(name) Caller<KelvarisSDK_##name>::call,
constexpr Call calls[] = {
#include "calls.inc"
};
#undef ROW

// The one connection of a handle at a time.
class Daemon {
public:
    Daemon() {
        listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        socklen_t size = sizeof address;
        if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 8) != 0 ||
            getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            std::abort();
        }
    }

    std::uint16_t port() const {
        return ntohs(address.sin_port);
    }

    void upgrade() {
        waitForInput(listener, 10'000);
        connection = accept(listener, nullptr, nullptr);
        isIntact = connection >= 0 && readUpTo("\r\n\r\n", 10'000);
        if (!isIntact) {
            std::abort();
        }
        int const on = 1;
        setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        send("HTTP/1.1 101\r\n\r\n");
    }

    void send(std::string const& bytes) const {
        ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
    void sendBroken(std::string const& bytes) {
        isIntact = false;
        send(bytes);
    }
    void report(std::string const& text) const {
        std::string const length = {static_cast<char>(text.size() >> 8), static_cast<char>(text.size())};
        send("\x81" + (text.size() < 126 ? length.substr(1) : '\x7E' + length) + text);
    }

    // Returns when the callbacks for all that was sent have run. After bytes that make no sense nobody may answer.
    void settle() {
        send("\x89\x04\x6B\x6B\x6B\x6B");
        bool const answered = readUpTo("\x8A\x84\xA7\x1C\x5E\x39\xCC\x77\x35\x52", isIntact ? 10'000 : 2);
        if (isIntact && !answered) {
            std::abort();
        }
    }

    // A reset leaves no connection behind that waits for the last bytes of this one.
    void hangUp() {
        linger const reset{1, 0};
        for (; connection >= 0; connection = accept(listener, nullptr, nullptr)) {
            setsockopt(connection, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
            close(connection);
        }
    }

private:
    // The fuzzer's alarm interrupts it.
    static bool waitForInput(int descriptor, int milliseconds) {
        pollfd pending{descriptor, POLLIN, 0};
        int ready = -1;
        while ((ready = poll(&pending, 1, milliseconds)) < 0 && errno == EINTR) {
        }
        return ready > 0;
    }

    bool readUpTo(std::string const& mark, int milliseconds) const {
        std::string received;
        char piece[4096];
        while (received.find(mark) == std::string::npos) {
            if (!waitForInput(connection, milliseconds)) {
                return false;
            }
            ssize_t const size = recv(connection, piece, sizeof piece, 0);
            if (size <= 0) {
                return false;
            }
            received.append(piece, static_cast<std::size_t>(size));
        }
        return true;
    }

    sockaddr_in address{
        .sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
    int listener;
    int connection = -1;
    bool isIntact = true;
};

void perform(Input& input, Daemon& daemon, KelvarisSDK_Handle* sdk) {
    std::vector<std::unique_ptr<Waiting>> waiting;
    while (!input.isEmpty()) {
        std::uint8_t const what = input.byte();
        if (what < 128) {
            waiting.push_back(std::make_unique<Waiting>(Waiting{sdk, input.byte()}));
            waiting.back()->id = calls[what % std::size(calls)](sdk, input, waiting.back().get()).callbackId;
        } else if (what < 128 + std::size(reports)) {
            daemon.report(std::string("[\"report_") + reports[what - 128] + "\"," + input.bytes() + ']');
            daemon.settle();
        } else if (what < 192) {
            KelvarisSDK_EnableStatUpdates(sdk, what % 2 != 0, 0, nullptr);
        } else if (what < 224 && !waiting.empty()) {
            auto const which = waiting.begin() + what % static_cast<std::ptrdiff_t>(waiting.size());
            KelvarisSDK_UnregisterCallback(sdk, (*which)->id);
            waiting.erase(which);
        } else {
            daemon.sendBroken(input.bytes());
            daemon.settle();
        }
    }
    KelvarisSDK_Destroy(sdk);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    stderr = std::fopen("/dev/null", "w");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Daemon daemon;
    KelvarisSDK_Handle* const sdk =
        KelvarisSDK_CreateWithSettings({.appName = "fuzz", .address = "127.0.0.1", .port = daemon.port()});
    daemon.upgrade();
    Input input(data, size);
    perform(input, daemon, sdk);
    daemon.hangUp();
    return 0;
}
