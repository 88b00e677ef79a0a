// The square root of complex vectors. With the halves a and b of the parts, and r = (a^2 + b^2)^(1/2), both parts of
// the root come from w = (|a| + r)^(1/2): they are w and b / w, changed over and with other signs where a is below 0.
//
//   singles: in double arithmetic, which holds the squares exactly and whose range nothing leaves;
//   doubles: r and w are sums of two doubles; where that leaves the range of doubles, in extended precision.
#pragma once

#include "frame/complex_vector.h"
#include "frame/expanded.h"
#include "frame/simd.h"
#include "kels/types.h"
#include "vector/extended_lanes.h"

#include <cmath>

namespace kels {

/// The parts of the root put together; w is (|b|)^(1/2) and the quotient of no use where a is 0.
template <class V>
[[gnu::always_inline]] inline Complex<V> assembled_root(V a, V b, V w, V quotient) {
    const V turned = b < 0 ? -quotient : quotient, signed_w = b < 0 ? -w : w;
    const V re = a < 0 ? turned : w, im = a < 0 ? signed_w : quotient;
    const V diagonal = b == 0 ? b : w; // a negative zero is its own root
    return {a == 0 ? diagonal : re, a == 0 ? (b < 0 ? -w : diagonal) : im};
}

template <class V>
[[gnu::always_inline]] inline V magnitude_of(V x) {
    return x < 0 ? -x : x;
}

/// For parts whose squares are exact and in range.
template <class V>
[[gnu::always_inline]] inline Complex<V> plain_root(Complex<V> z) {
    const V a = z.re * 0.5, b = z.im * 0.5;
    const V w = square_root(magnitude_of(a) + square_root(fma(a, a, b * b)));
    return assembled_root(a, b, w, b / w);
}

/// One root in extended precision.
inline Complex<Kel64f> extended_root(Complex<Kel64f> z) {
    const long double a = z.re / 2.0L, b = z.im / 2.0L;
    const long double w = std::sqrt(std::fabs(a) + std::sqrt(a * a + b * b));
    const Complex<long double> result = assembled_root(a, b, w, b / w);
    return {static_cast<Kel64f>(result.re), static_cast<Kel64f>(result.im)};
}

/// For any doubles.
template <class V>
[[gnu::always_inline]] inline Complex<V> expanded_root(Complex<V> z) {
    const V a = z.re * 0.5, b = z.im * 0.5, size = magnitude_of(a);
    const Expanded<V> r = root(two_squares(a, b));
    const V sum = size + r.high;
    const Expanded<V> w = root(Expanded<V>{sum, sum_error(size, r.high, sum) + r.low});
    const V quotient = b / w.high, back = quotient * w.high;
    const V remainder = (b - back) - product_error(quotient, w.high, back) - quotient * w.low;
    const V corrected = remainder == 0 ? quotient : quotient + remainder / w.high;
    const Complex<V> result = assembled_root(a, b, w.high + w.low, corrected);
    const auto not_finite = (result.re - result.re) + (result.im - result.im) != 0;
    const auto doubtful = is_small(z.re) | is_small(z.im) | not_finite;
    if (any_lane(doubtful)) [[unlikely]]
        return with_extended_lanes(result, doubtful, extended_root, z);
    return result;
}

} // namespace kels
