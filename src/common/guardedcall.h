#pragma once

#include <cstdint>
#include <type_traits>

// structuredException_t stands for a structured exception of the platform, such as an access
// violation, that a call ended in.
struct structuredException_t {};

// vlCallGuarded is the call itself. A structured exception sets raised, and the result is 0.
extern "C" uintptr_t vlCallGuarded(uintptr_t function, uintptr_t first, uintptr_t second,
                                   uintptr_t third, bool* raised);

// callGuarded calls a function of somebody else's library, so that a fault in it ends neither the
// operation nor the host. The compiler's own catch (...) sees C++ exceptions only.
//
// Errors: raises structuredException_t. C++ exceptions pass as they are.
template <class Result, class... Parameters>
Result callGuarded(Result (*function)(Parameters...), std::type_identity_t<Parameters>... arguments)
{
    static_assert(sizeof...(Parameters) <= 3 && std::is_integral_v<Result>);
    const auto word = [](auto value) {
        if constexpr (std::is_pointer_v<decltype(value)>)
            return reinterpret_cast<uintptr_t>(value);
        else
            return static_cast<uintptr_t>(value);
    };
    const uintptr_t words[3] = {word(arguments)...};
    bool raised = false;
    const uintptr_t result =
        vlCallGuarded(reinterpret_cast<uintptr_t>(function), words[0], words[1], words[2], &raised);
    if (raised)
        throw structuredException_t();
    return static_cast<Result>(result);
}
