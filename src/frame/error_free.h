// Sums and products of doubles together with their rounding errors.
#pragma once

#include "frame/simd.h"

namespace kels {

/// a + b - sum, without error, where sum is a + b rounded (D. E. Knuth).
template <class V>
[[gnu::always_inline]] inline V sum_error(V a, V b, V sum) {
    const V of_b = sum - a, of_a = sum - of_b;
    return (a - of_a) + (b - of_b);
}

/// a b - product, without error, where product is a b rounded: fused, or by halves of the factors (T. J. Dekker).
template <class V>
[[gnu::always_inline]] inline V product_error(V a, V b, V product) {
    if constexpr (fuses<V>) {
        return fma(a, b, -product);
    } else {
        const V half_width = splat<V>(134217729); // 2^27 + 1: splits a double into two halves
        const V s = half_width * a, t = half_width * b;
        const V ah = s - (s - a), bh = t - (t - b), al = a - ah, bl = b - bh;
        return al * bl - (((product - ah * bh) - al * bh) - ah * bl);
    }
}

} // namespace kels
