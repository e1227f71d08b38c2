/*
 * Awaiting a call, where coroutines are there. Nothing else depends on the language's mode.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_AWAIT_HPP
#define KELVARISSDK_CPP_AWAIT_HPP

#include <kelvarissdk/cpp/call.hpp>

#if defined(__cpp_impl_coroutine)
#include <coroutine>

namespace kelvaris {
namespace detail {

template <class T> class Awaiter {
public:
    explicit Awaiter(Call<T> of) : call(std::move(of)) {}
    ~Awaiter() { // also of a coroutine that is destroyed while it waits
        if (operation && operation->core) {
            operation->core->end(*operation);
        }
    }
    Awaiter(Awaiter const&) = delete;
    Awaiter& operator=(Awaiter const&) = delete;

    bool await_ready() const noexcept {
        return false;
    }
    void await_suspend(std::coroutine_handle<> waiting) {
        auto const own = call.deliver([this, waiting](Result<T> const& arrived) {
            result.emplace(arrived);
            waiting.resume();
        });
        auto const made = call; // the coroutine may be gone before the launch returns
        operation = own;
        made.launch(own);
    }
    Result<T> await_resume() {
        return std::move(*result);
    }

private:
    Call<T> call;
    std::shared_ptr<Operation> operation;
    std::optional<Result<T>> result;
};

} // namespace detail

/** Awaits a call. The coroutine goes on where the client delivers; destroyed before that, it cancels the call. */
template <class T> detail::Awaiter<T> operator co_await(Call<T> call) {
    return detail::Awaiter<T>(std::move(call));
}

} // namespace kelvaris
#endif

#endif
