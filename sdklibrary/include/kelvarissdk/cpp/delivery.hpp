/*
 * Where callables run, and what a client is made with.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_DELIVERY_HPP
#define KELVARISSDK_CPP_DELIVERY_HPP

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <utility>

#include <kelvarissdk/cpp/result.hpp>

namespace kelvaris {

/** Where a client's callables and coroutines run; see 5 in kelvarissdk.hpp. */
class Delivery {
public:
    enum class Kind : std::uint32_t { readerThread, executor, queue };
    using Task = std::function<void()>;
    using ExceptionHook = std::function<void(std::exception_ptr)>;

    /**
     * On the library's reader thread; a time-out on a thread of the client, and where a call is refused or cancelled, or the
     * client ended, on the thread that does so, which must hold no lock that the callable takes.
     */
    static Delivery onReaderThread() {
        return {Kind::readerThread, {}};
    }
    /** By `post`, which takes a task from any thread and runs it later. It must not run it at once. */
    template <bool exceptions = KELVARIS_EXCEPTIONS>
    static Delivery byExecutor(std::function<void(Task)> post) {
        return {Kind::executor,
                [post = std::move(post)](Task const& task, [[maybe_unused]] ExceptionHook const& hook) {
#if defined(__cpp_exceptions)
                    if constexpr (exceptions) {
                        try {
                            post(task);
                        } catch (...) {
                            if (hook) {
                                hook(std::current_exception());
                            }
                            return false;
                        }
                        return true;
                    }
#endif
                    post(task);
                    return true;
                }};
    }
    /** In Client::dispatch(), which is due while Client::fd() is readable. */
    static Delivery byQueue() {
        return {Kind::queue, {}};
    }

    Kind kind;
    std::function<bool(Task const&, ExceptionHook const&)> give; // false: the executor threw

private:
    Delivery(Kind ofKind, std::function<bool(Task const&, ExceptionHook const&)> by)
        : kind(ofKind), give(std::move(by)) {}
};

/** How many reports wait for a subscription's callable; a report that finds no place drops the oldest. */
struct Keep {
    std::size_t count;
};
/** The latest report alone: what statistics have where nothing else is said. */
inline constexpr Keep keepLatest{1};
/** All of up to 256 reports: what the other subscriptions have. */
inline constexpr Keep keepAll{256};

/** The link to the daemon, see 6 in kelvarissdk.hpp. */
enum class Link : std::uint32_t {
    UP,    /**< the daemon answers */
    LOST,  /**< it doesn't answer; the library tries to connect again */
    ENDED, /**< it has closed the link properly; the client makes a new one */
};

/** What a client is made with. */
struct CreateSettings {
    std::string appName = {}; /**< at most 32 bytes, by which the daemon knows the program */
    std::string address =
        defaults().address; /**< IPv4 or a host name; with more than 45 bytes each call ends with SDK */
    std::uint16_t port = defaults().port; /**< the daemon's TCP port */
    Delivery delivery = Delivery::onReaderThread();
    bool probing = true; /**< whether the link is watched, see 6 in kelvarissdk.hpp */
    /** Gets what a callable or an executor throws, where that was thrown; it must not throw. Without it that is lost. */
    Delivery::ExceptionHook onException = {};

private:
    static KelvarisSDK_CreateSettings const& defaults() {
        static KelvarisSDK_CreateSettings const values = [] {
            KelvarisSDK_CreateSettings settings;
            KelvarisSDK_InitializeCreateSettings(&settings);
            return settings;
        }();
        return values;
    }
};

} // namespace kelvaris

#endif
