#pragma once

#include <kelvarissdk/csdkinterface.h>
#include <string_view>
#include <tuple>
#include <type_traits>

// Every call of the C interface that takes a callback. A Giver has something for each parameter of a call:
// give<Result, Parameter>(), the callback and its user data included. Its see(), if it has one, is shown the record returned.
namespace harness {

template <class Giver, class Result, class... Parameters>
KelvarisSDK_BaseResult start(Result (*call)(KelvarisSDK_Handle*, Parameters...), KelvarisSDK_Handle* sdk,
                             Giver& giver) {
    std::tuple<Parameters...> const given{giver.template give<Result, Parameters>()...};
    Result const returned = std::apply([&](auto... each) { return call(sdk, each...); }, given);
    if constexpr (requires { giver.see(returned); }) {
        giver.see(returned);
    }
    return returned.base;
}

template <class Result, class... Parameters>
constexpr bool takesTexts(Result (* /*call*/)(KelvarisSDK_Handle*, Parameters...)) {
    return ((std::is_pointer_v<Parameters> && !std::is_same_v<Parameters, void*> &&
             !std::is_function_v<std::remove_pointer_t<Parameters>>) ||
            ...);
}

template <class Giver> struct CallWith {
    std::string_view name;
    bool takesTexts; // or arrays
    KelvarisSDK_BaseResult (*start)(KelvarisSDK_Handle*, Giver&);
};

#define ROW(name)                                                                                            \
    {#name, takesTexts(KelvarisSDK_##name),                                                                  \
     [](KelvarisSDK_Handle* sdk, Giver& giver) { return start(KelvarisSDK_##name, sdk, giver); }},
template <class Giver>
inline constexpr CallWith<Giver> callsWith[] = {
#include "calls.inc"
};
#undef ROW

} // namespace harness
