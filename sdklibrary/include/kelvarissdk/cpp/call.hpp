/*
 * A call and its four forms, subscriptions, and what cancels a call.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_CALL_HPP
#define KELVARISSDK_CPP_CALL_HPP

#include <kelvarissdk/cpp/operation.hpp>

namespace kelvaris {

/**
 * Cancels the calls that were given it, whatever their form; they end with CANCELLED. Copies are one and the same. A
 * request that has left isn't taken back: the daemon may still do what it asks for.
 */
class Canceller {
public:
    Canceller() : shared(std::make_shared<Shared>()) {}

    /** Cancels all of them, and those that will be given it. From any thread, also in a callable. */
    void cancel() const {
        std::vector<std::weak_ptr<detail::Operation>> own;
        {
            std::lock_guard const lock(shared->mutex);
            shared->cancelled = true;
            own.swap(shared->operations);
        }
        for (auto const& each : own) {
            if (auto const operation = each.lock()) {
                operation->core->cancel(operation);
            }
        }
    }

private:
    template <class T> friend class Call;

    struct Shared {
        bool take(detail::OperationPtr const& operation) {
            std::lock_guard const lock(mutex);
            operations.erase(std::remove_if(operations.begin(), operations.end(),
                                            [](auto const& each) { return each.expired(); }),
                             operations.end());
            operations.push_back(operation);
            return !cancelled;
        }

        std::mutex mutex;
        bool cancelled = false;
        std::vector<std::weak_ptr<detail::Operation>> operations;
    };
    std::shared_ptr<Shared> shared;
};

/**
 * Keeps a callable subscribed. When the destructor has returned, the callable isn't running and never runs again; in
 * the callable itself it returns at once. It waits for its own callable alone. It may outlive its client.
 */
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    /** @cond */
    explicit Subscription(detail::OperationPtr of) : operation(std::move(of)) {}
    /** @endcond */
    Subscription(Subscription&& other) noexcept = default;
    Subscription& operator=(Subscription&& other) noexcept {
        Subscription moved(std::move(other));
        moved.operation.swap(operation);
        return *this;
    }
    ~Subscription() {
        end();
    }

    /** Ends it, as the destructor does. */
    void end() {
        if (auto const own = std::move(operation); own && own->core) {
            own->core->end(*own);
        }
    }

    /** How many reports were dropped because the callable didn't keep up. */
    std::size_t dropped() const {
        if (!operation || !operation->core || operation->core->isInherited()) {
            return 0;
        }
        std::lock_guard const lock(operation->core->mutex);
        return operation->dropped;
    }

private:
    detail::OperationPtr operation;
};

/**
 * A call with its arguments, which nothing has been sent of yet. Choose its form:
 *
 *     Result<StateResult> state = client.getState().get();                   // waits
 *     client.getState().then([](Result<StateResult> const& state) { ... });  // calls back once
 *     std::future<Result<StateResult>> state = client.getState().future();
 *     Result<StateResult> state = co_await client.getState();                // where coroutines are there
 *
 * Each may be made of it any number of times.
 */
template <class T> class [[nodiscard]] Call {
public:
    /** @cond */
    using Operation = detail::TypedOperation<T>;

    Call(std::shared_ptr<detail::Core> ofCore, detail::Traits with, typename Operation::Starter by)
        : core(std::move(ofCore)), traits(with), starter(std::move(by)) {}
    /** @endcond */

    /** With a time-out of one's own: it ends the call with TIMEOUT, unless the library's own ended it before. */
    Call within(std::chrono::nanoseconds limit) const {
        Call call = *this;
        call.timeLimit = std::min<std::chrono::nanoseconds>(limit, std::chrono::hours(24 * 365));
        return call;
    }

    /** To be cancelled by this. */
    Call cancelledBy(Canceller const& by) const {
        Call call = *this;
        call.canceller = by.shared;
        return call;
    }

    /** Waits for the result. SYNCHRONOUS_IN_CALLBACK, and nothing is sent, where waiting would block the reader thread. */
    Result<T> get() const {
        if (detail::mustNotWait) {
            return detail::errorOf(ErrorType::SYNCHRONOUS_IN_CALLBACK);
        }
        auto const operation = make<detail::Waiting<T>>();
        launch(operation);
        return operation->wait();
    }

    /**
     * Calls `callable` with a Result<T> const& once, where the client delivers. A call that is refused calls it before
     * then() returns where the client delivers on the reader thread.
     */
    template <class Callable> void then(Callable&& callable) const {
        launch(deliver(std::forward<Callable>(callable)));
    }

    /** A future of the result. It needs no delivery, and no program that dispatches. */
    std::future<Result<T>> future() const {
        auto const operation = make<detail::Promised<T>>();
        auto result = operation->future();
        launch(operation);
        return result;
    }

    /** @cond */
    // What awaiting and subscribing are made of.
    template <class Callable> auto deliver(Callable&& callable) const {
        return make<detail::Delivered<T, std::decay_t<Callable>>>(std::forward<Callable>(callable));
    }
    void launch(std::shared_ptr<Operation> const& operation) const {
        core ? core->start(operation) : operation->endAtOnce(ErrorType::CANCELLED);
    }
    /** @endcond */

private:
    template <class Kind, class... Arguments> std::shared_ptr<Kind> make(Arguments&&... arguments) const {
        auto operation = std::make_shared<Kind>(core, starter, std::forward<Arguments>(arguments)...);
        operation->traits = traits;
        operation->timeLimit = timeLimit;
        if (canceller) {
            operation->attach = [by = canceller](detail::OperationPtr const& own) { return by->take(own); };
        }
        return operation;
    }

    std::shared_ptr<detail::Core> core;
    detail::Traits traits;
    typename Operation::Starter starter;
    std::optional<std::chrono::nanoseconds> timeLimit;
    std::shared_ptr<Canceller::Shared> canceller;
};

/** A call that can also be subscribed to. */
template <class T> class [[nodiscard]] StreamCall : public Call<T> {
public:
    /** @cond */
    StreamCall(std::shared_ptr<detail::Core> ofCore, detail::Traits with,
               typename Call<T>::Operation::Starter by)
        : Call<T>(std::move(ofCore), with, std::move(by)), keep(with.statistics ? keepLatest : keepAll) {}
    /** @endcond */

    /**
     * Calls `callable` with a Result<T> const& for the report that is read and each later one of its kind. An error, such
     * as a time-out, doesn't end the subscription; CANCELLED does, when the client ends.
     */
    template <class Callable> Subscription subscribe(Callable&& callable) const {
        return subscribe(keep, std::forward<Callable>(callable));
    }
    /** The same with another bound of what waits. */
    template <class Callable> Subscription subscribe(Keep bound, Callable&& callable) const {
        auto const operation = this->deliver(std::forward<Callable>(callable));
        operation->stream = true;
        operation->limit = std::max<std::size_t>(bound.count, 1);
        operation->timeLimit.reset();
        this->launch(operation);
        return Subscription(operation);
    }

private:
    Keep keep;
};

namespace detail {

// What the families' calls are made of.
class Caller {
protected:
    explicit Caller(std::shared_ptr<Core> ofCore) : core(std::move(ofCore)) {}

    template <class T, auto function, class... Arguments> Call<T> call(Arguments... arguments) const {
        return {core, {}, starterOf<T, function>(std::move(arguments)...)};
    }
    template <class T, auto function> StreamCall<T> stream(Traits traits = {}) const {
        return {core, traits, starterOf<T, function>()};
    }
    template <class T, auto function, class Item> Call<T> callWithList(std::vector<Item> list) const {
        auto const by = [list = std::move(list)](KelvarisSDK_Handle* handle, auto callback, void* userData) {
            auto own = list; // the C interface takes it without const
            auto const count = static_cast<unsigned short>(std::min<std::size_t>(own.size(), 0xFFFF));
            return function(handle, count, itemsOf(own), callback, userData);
        };
        return {core, {}, by};
    }

    template <class T, auto function, class... Arguments> static auto starterOf(Arguments... arguments) {
        return [arguments...](KelvarisSDK_Handle* handle, typename TypedOperation<T>::Callback callback,
                              void* userData) {
            return function(handle, passed(arguments)..., callback, userData);
        };
    }

    std::shared_ptr<Core> core; // null once the client was moved from
};

} // namespace detail
} // namespace kelvaris

#endif
