/*
 * The kinds of operations: who waits for the result of a call.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_OPERATION_HPP
#define KELVARISSDK_CPP_OPERATION_HPP

#include <cerrno>
#include <future>
#include <list>
#include <semaphore.h>
#include <type_traits>

#include <kelvarissdk/cpp/link.hpp>

namespace kelvaris {
namespace detail {

template <class Record> KelvarisSDK_BaseResult const& headOf(Record const& record) {
    if constexpr (std::is_same_v<Record, KelvarisSDK_BaseResult>) {
        return record;
    } else {
        return record.base;
    }
}

inline Error errorOf(KelvarisSDK_BaseResult const& head) {
    auto const number = static_cast<std::uint32_t>(head.errorCode);
    bool const named =
        number <= KelvarisSDK_ErrorType_VPN_ADAPTER || number == KelvarisSDK_ErrorType_ASYNC_CALL ||
        (number >= KelvarisSDK_ErrorType_SDK && number <= KelvarisSDK_ErrorType_LOCKED_BY_ACCOUNT);
    return {named ? static_cast<ErrorType>(number) : ErrorType::UNKNOWN, text(head.errorMessage),
            head.errorCode};
}

// A call of the C interface whose record becomes a T.
template <class T> class TypedOperation : public Operation {
public:
    using Record = typename T::Record;
    using Callback = bool (*)(Record, void*);
    using Starter = std::function<Record(KelvarisSDK_Handle*, Callback, void*)>;

    TypedOperation(std::shared_ptr<Core> ofCore, Starter by)
        : Operation(std::move(ofCore)), starter(std::move(by)) {}

    // The library's callback.
    static bool onRecord(Record record, void* userData) {
        auto& own = *static_cast<TypedOperation*>(userData);
        OperationPtr const stay = own.shared_from_this();
        ReaderScope const here(own.core.get());
        KelvarisSDK_BaseResult const& head = headOf(record);
        std::list<Result<T>> arrived;
        arrived.push_back(head.error ? Result<T>(errorOf(head)) : Result<T>(T::from(record)));
        Lock lock(own.core->mutex);
        own.core->heard(own, head);
        bool const goesOn = own.take(arrived, head.callbackId);
        own.core->leaveCallback(lock);
        return goesOn;
    }

    // With the mutex held: an item of a stream. What finds no place takes that of the oldest.
    void offer(std::list<Result<T>>& arrived) {
        bool const replaces = items.size() >= limit;
        items.splice(items.end(), arrived);
        if (replaces) {
            arrived.splice(arrived.end(), items, items.begin()); // to be freed without the mutex
            ++dropped;
        } else {
            core->push(*this);
        }
    }

    bool hasCall() const override {
        return static_cast<bool>(starter);
    }
    Begun begin(KelvarisSDK_Handle* handle) override {
        Record const record = starter(handle, onRecord, this);
        KelvarisSDK_BaseResult const& head = headOf(record);
        if (head.error) {
            return {errorOf(head), 0};
        }
        return {std::nullopt, head.callbackId};
    }
    void readAnew(KelvarisSDK_Handle* handle) override {
        starter(
            handle, [](Record, void*) { return false; }, nullptr);
    }
    void putError(Error error) override {
        items.emplace_back(std::move(error));
    }
    void putDone() override {
        items.emplace_back(T::from(Record{}));
    }
    void dropItems() override {
        dropped += items.size();
        items.clear();
    }
    void runFirst(Lock& lock) override {
        if (items.empty()) {
            return;
        }
        std::list<Result<T>> item;
        item.splice(item.begin(), items, items.begin());
        lock.unlock();
        call(item.front());
        item.clear();
        lock.lock();
    }

private:
    virtual void call(Result<T>& result) = 0;

    // With the mutex held. False: no callback comes any more.
    bool take(std::list<Result<T>>& arrived, std::uint64_t callbackId) {
        if (!stream && ++called < traits.callbacks) {
            first.swap(arrived);
            firstId = callbackId;
            return false;
        }
        if (!stream || settled) {
            registered = false;
            core->live.erase(this);
        }
        if (settled) {
            return false;
        }
        if (stream) {
            offer(arrived);
            return true;
        }
        settled = true;
        core->disarm(*this);
        // Of two steps the second has the result, whichever ended first.
        items.splice(items.end(), traits.callbacks == 1 || firstId < callbackId ? arrived : first);
        core->push(*this);
        return false;
    }

    Starter const starter;
    std::list<Result<T>> items; // guarded by the core's mutex, as are the next three
    int called = 0;
    std::list<Result<T>> first;
    std::uint64_t firstId = 0;
};

// A thread waits for it. It may be cancelled there (pthread_cancel), which waiting for a condition isn't made for.
template <class T> class Waiting final : public TypedOperation<T> {
public:
    Waiting(std::shared_ptr<Core> ofCore, typename TypedOperation<T>::Starter by)
        : TypedOperation<T>(std::move(ofCore), std::move(by)) {
        this->direct = true;
        sem_init(&done, 0, 0);
    }
    ~Waiting() override {
        sem_destroy(&done);
    }
    Result<T> wait() {
        while (sem_wait(&done) != 0 && errno == EINTR) {
        }
        return std::move(*result);
    }

    void forgetCallable() override {}

private:
    void call(Result<T>& arrived) override {
        result.emplace(std::move(arrived));
        sem_post(&done);
    }

    sem_t done;
    std::optional<Result<T>> result;
};

template <class T> class Promised final : public TypedOperation<T> {
public:
    Promised(std::shared_ptr<Core> ofCore, typename TypedOperation<T>::Starter by)
        : TypedOperation<T>(std::move(ofCore), std::move(by)) {
        this->direct = true;
    }
    std::future<Result<T>> future() {
        return promise.get_future();
    }

    void forgetCallable() override {}

private:
    void call(Result<T>& arrived) override {
        promise.set_value(std::move(arrived));
    }

    std::promise<Result<T>> promise;
};

template <class T, class Callable, bool exceptions = KELVARIS_EXCEPTIONS>
class Delivered final : public TypedOperation<T> {
public:
    template <class Given>
    Delivered(std::shared_ptr<Core> ofCore, typename TypedOperation<T>::Starter by, Given&& given)
        : TypedOperation<T>(std::move(ofCore), std::move(by)), callable(std::forward<Given>(given)) {}

    void forgetCallable() override {
        callable.reset();
    }

private:
    void call(Result<T>& arrived) override {
#if defined(__cpp_exceptions)
        if constexpr (exceptions) {
            try {
                (*callable)(std::as_const(arrived));
            } catch (...) {
                if (this->core && this->core->settings.onException) {
                    this->core->settings.onException(std::current_exception());
                }
            }
            return;
        }
#endif
        (*callable)(std::as_const(arrived));
    }

    std::optional<Callable> callable;
};

} // namespace detail
} // namespace kelvaris

#endif
