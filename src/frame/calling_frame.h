// The frame of a vector call: null pointers in the order of the arguments, then the length, then the kernel.
// A family with another order of checks writes it out where it differs.
#pragma once

#include "kels/status.h"

#include <type_traits>
#include <utility>

namespace kels {

/// The pointer arguments of a call. `{pSrc, pDst}` converts to it.
struct Pointers {
    bool any_null;
    template <class... T>
    constexpr Pointers(T*... p) : any_null((!p || ...)) {}
};

/// Runs a kernel and gives its status; a kernel without one succeeds.
template <class Kernel>
constexpr KelStatus run(Kernel&& kernel) {
    if constexpr (std::is_void_v<decltype(kernel())>) {
        kernel();
        return kelStatusOk;
    } else {
        return kernel();
    }
}

/// Checks pointers, then the length, then runs the kernel over the vector.
template <class Kernel>
constexpr KelStatus vector_call(Pointers arguments, int len, Kernel&& kernel) {
    if (arguments.any_null) [[unlikely]]
        return kelStatusNullPtr;
    if (len < 1) [[unlikely]]
        return kelStatusBadSize;
    return run(std::forward<Kernel>(kernel));
}

} // namespace kels
