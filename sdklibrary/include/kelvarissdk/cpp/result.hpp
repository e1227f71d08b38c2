/*
 * What a call brings: a value or an error.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_RESULT_HPP
#define KELVARISSDK_CPP_RESULT_HPP

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

#include <kelvarissdk/csdkinterface.h>

/* Templates that throw or catch carry this as an argument, so that units with and without exceptions may be linked
 * together. */
#if defined(__cpp_exceptions)
#define KELVARIS_EXCEPTIONS true
#else
#define KELVARIS_EXCEPTIONS false
#endif

namespace kelvaris {

/** Why a call failed. 0 to 8 come from the daemon, CANCELLED from this layer, the others from the library. */
enum class ErrorType : std::uint32_t {
    NO_ERROR = KelvarisSDK_ErrorType_NO_ERROR,
    NETWORK = KelvarisSDK_ErrorType_NETWORK,
    SERVER = KelvarisSDK_ErrorType_SERVER,
    CREDENTIALS = KelvarisSDK_ErrorType_CREDENTIALS,
    DIRECTORY = KelvarisSDK_ErrorType_DIRECTORY,
    ACCOUNT = KelvarisSDK_ErrorType_ACCOUNT,
    TOO_MANY_REQUESTS = KelvarisSDK_ErrorType_TOO_MANY_REQUESTS,
    OAUTH_TOKEN_EXPIRED = KelvarisSDK_ErrorType_OAUTH_TOKEN_EXPIRED,
    VPN_ADAPTER = KelvarisSDK_ErrorType_VPN_ADAPTER,
    ASYNC_CALL = KelvarisSDK_ErrorType_ASYNC_CALL,
    SDK = KelvarisSDK_ErrorType_SDK,
    TIMEOUT = KelvarisSDK_ErrorType_TIMEOUT,
    INVALID_ARGUMENT = KelvarisSDK_ErrorType_INVALID_ARGUMENT,
    CALLBACK_REQUIRED = KelvarisSDK_ErrorType_CALLBACK_REQUIRED,
    PLATFORM_UNSUPPORTED = KelvarisSDK_ErrorType_PLATFORM_UNSUPPORTED,
    NOT_CONNECTED = KelvarisSDK_ErrorType_NOT_CONNECTED,
    LOCKED_BY_SERVER = KelvarisSDK_ErrorType_LOCKED_BY_SERVER,
    SYNCHRONOUS_IN_CALLBACK = KelvarisSDK_ErrorType_SYNCHRONOUS_IN_CALLBACK,
    LOCKED_BY_ACCOUNT = KelvarisSDK_ErrorType_LOCKED_BY_ACCOUNT,
    CANCELLED = 4096,     /**< the call was cancelled, or its client has ended */
    UNKNOWN = 0xFFFFFFFF, /**< any other number, which stands in Error::number */
};

/** The text of an error type; "Unknown error" where there is none. A constant; never freed. */
inline char const* toString(ErrorType type) {
    return type == ErrorType::CANCELLED
               ? "Cancelled"
               : KelvarisSDK_ErrorType_toString(static_cast<KelvarisSDK_ErrorType>(type));
}

/** Why a call failed: look at `code`; `message` is a text for people, the daemon's or the library's. */
struct Error {
    ErrorType code = ErrorType::NO_ERROR;
    std::string message;
    std::int32_t number = static_cast<std::int32_t>(code); /**< the code as it came */
};

/** What Result::value() throws. */
class Exception : public std::runtime_error {
public:
    explicit Exception(Error const& error)
        : std::runtime_error(error.message.empty() ? toString(error.code) : error.message), why(error) {}

    Error const& error() const noexcept {
        return why;
    }

private:
    Error why;
};

namespace detail {

template <bool exceptions> [[noreturn]] void raise(Error const& error) {
    if constexpr (exceptions) {
#if defined(__cpp_exceptions)
        throw Exception(error);
#endif
    }
    static_cast<void>(error);
    std::abort();
}

inline Error errorOf(ErrorType type) {
    return {type, toString(type)};
}

} // namespace detail

/** A value, or the error that came instead. */
template <class T> class [[nodiscard]] Result {
public:
    using value_type = T;

    Result(T value) : content(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : content(std::in_place_index<1>, std::move(error)) {}

    /** True when there is a value. */
    explicit operator bool() const noexcept {
        return content.index() == 0;
    }

    /** The value. Throws Exception where there is none; without exceptions it ends the process by std::abort. */
    template <bool exceptions = KELVARIS_EXCEPTIONS> T const& value() const& {
        if (!*this) {
            detail::raise<exceptions>(error());
        }
        return **this;
    }
    template <bool exceptions = KELVARIS_EXCEPTIONS> T value() && {
        if (!*this) {
            detail::raise<exceptions>(error());
        }
        return std::move(**this);
    }

    /** The value, which must be there. */
    T const& operator*() const noexcept {
        return *std::get_if<0>(&content);
    }
    T& operator*() noexcept {
        return *std::get_if<0>(&content);
    }
    T const* operator->() const noexcept {
        return std::get_if<0>(&content);
    }

    /** The error; beside a value it is NO_ERROR without a message. */
    Error const& error() const noexcept {
        static Error const none{};
        auto const* const own = std::get_if<1>(&content);
        return own != nullptr ? *own : none;
    }

private:
    std::variant<T, Error> content;
};

/** The value of a call that brings nothing but its success. */
struct Done {
    using Record = KelvarisSDK_BaseResult;
    static Done from(Record const& /*record*/) {
        return {};
    }
};

} // namespace kelvaris

#endif
