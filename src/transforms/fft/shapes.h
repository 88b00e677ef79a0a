// What an in-cache transform of each order is made of: measured choices, by the numbers in a vector and the registers.
#pragma once

#include "transforms/fft/pair_passes.h"

namespace kels {

using Whole = Exchanges<Exchange::shuffles, Exchange::shuffles>;
using Mixed = Exchanges<Exchange::stores, Exchange::blends>;
using Halved = Exchanges<Exchange::stores, Exchange::stores>;

/// No transform beyond this order is done in registers.
inline constexpr int top_register_order = 7;

/// Calls f with the shape of a transform of order 3 to 12.
template <class T, class F>
auto with_shape(int order, F&& f) {
    constexpr int L = max_lanes<T>;
    constexpr int c = L / 2;
    constexpr bool roomy = vector_registers >= 32; // for codelets of 16 points and more
    switch (order) {
    case 3:
        if constexpr (c == 1)
            return f(Shape<2, Codelet<8>, Codelet<1>>{});
        else
            return f(Shape<4, Codelet<4>, Codelet<2>>{});
    case 4:
        if constexpr (c == 1)
            return f(Shape<2, Codelet<16>, Codelet<1>>{});
        else if constexpr (c == 2)
            return f(Shape<4, Codelet<8>, Codelet<2>>{});
        else
            return f(Shape<8, Codelet<4>, Codelet<4>>{});
    case 5:
        if constexpr (c == 1)
            return f(Shape<2, Codelet<8>, Codelet<4>>{});
        else if constexpr (c == 2)
            return f(Shape<4, Codelet<16>, Codelet<2>>{});
        else
            return f(Shape<8, Codelet<8>, Codelet<4>>{});
    case 6:
        if constexpr (c <= 2)
            return f(Shape<L, Codelet<8>, Codelet<8>>{});
        else if constexpr (c == 4)
            return f(Shape<8, Codelet<16>, Codelet<4>>{});
        else
            return f(Shape<16, Codelet<8>, Codelet<8>>{});
    case 7:
        if constexpr (c <= 2)
            return f(Shape<L, Codelet<16>, Codelet<8>>{});
        else if constexpr (c == 4)
            return f(Shape<8, Codelet<8, 4>, Codelet<4>, RootForm::spread, Mixed>{});
        else
            return f(Shape<16, Codelet<16>, Codelet<8>>{});
    case 8:
        if constexpr (c <= 2)
            return f(Shape<L, Codelet<16>, Codelet<16>>{});
        else if constexpr (c == 4 && roomy)
            return f(Shape<8, Codelet<16>, Codelet<16>>{});
        else if constexpr (c == 4)
            return f(Shape<8, Codelet<8>, Codelet<8, 4>, RootForm::spread, Mixed>{});
        else
            return f(Shape<16, Codelet<8, 4>, Codelet<8>>{});
    case 9:
        if constexpr (c <= 2)
            return f(Shape<L, Codelet<16>, Codelet<8, 4>>{});
        else if constexpr (roomy)
            return f(Shape<L, Codelet<16>, Codelet<8, 4>>{});
        else
            return f(Shape<8, Codelet<8>, Codelet<8, 8>, RootForm::spread, Mixed>{});
    case 10:
        if constexpr (c <= 2)
            return f(Shape<L, Codelet<8, 4>, Codelet<8, 4>>{});
        else if constexpr (roomy)
            return f(Shape<L, Codelet<8, 4>, Codelet<8, 4>>{});
        else
            return f(Shape<8, Codelet<16>, Codelet<8, 8>, RootForm::spread, Mixed>{});
    case 11:
        if constexpr (c <= 2)
            return f(Shape<L, Codelet<8, 4>, Codelet<8, 8>>{});
        else if constexpr (c == 4)
            return f(Shape<8, Codelet<8, 4>, Codelet<8, 8>, RootForm::once, Mixed>{});
        else
            return f(Shape<16, Codelet<16, 4>, Codelet<8, 4>, RootForm::once, Halved>{});
    default:
        if constexpr (c <= 2)
            return f(Shape<L, Codelet<16, 4>, Codelet<8, 8>>{});
        else if constexpr (c == 4)
            return f(Shape<8, Codelet<16, 4>, Codelet<8, 8>, RootForm::once, Mixed>{});
        else
            return f(Shape<16, Codelet<16, 4>, Codelet<8, 8>, RootForm::once, Halved>{});
    }
}

} // namespace kels
