// Numbers as the sum of two doubles, lane by lane, for quotients and roots that are right to their last place.
//
// All of it is for numbers whose products keep their errors in range: neither so large that they overflow, which shows
// as an infinity or a NaN in the result, nor small, which is for the caller to look at.
#pragma once

#include "frame/error_free.h"
#include "frame/simd.h"

#include <cstdint>

namespace kels {

/// The sum of two doubles, the second small beside the first.
template <class V>
struct Expanded {
    V high, low;
};

/// a b + c d, cancellation included: the errors of the products may be all that is left, and cancel in turn.
template <class V>
[[gnu::always_inline]] inline Expanded<V> two_products(V a, V b, V c, V d) {
    const V p = a * b, q = c * d, sum = p + q;
    const V of_p = product_error(a, b, p), of_q = product_error(c, d, q), errors = of_p + of_q;
    const V high = errors == 0 ? sum : sum + errors; // so written, a negative zero stays one
    return {high, sum_error(sum, errors, high) + (sum_error(of_p, of_q, errors) + sum_error(p, q, sum))};
}

/// a^2 + b^2, where nothing cancels.
template <class V>
[[gnu::always_inline]] inline Expanded<V> two_squares(V a, V b) {
    const V p = a * a, q = b * b, sum = p + q;
    return {sum, product_error(a, a, p) + product_error(b, b, q) + sum_error(p, q, sum)};
}

/// The division's remainder is divided as well.
template <class V>
[[gnu::always_inline]] inline V divide(Expanded<V> numerator, Expanded<V> divisor, V reciprocal) {
    const V quotient = numerator.high * reciprocal, back = quotient * divisor.high;
    const V remainder = (numerator.high - back) - product_error(quotient, divisor.high, back) +
                        (numerator.low - quotient * divisor.low);
    return remainder == 0 ? quotient : quotient + remainder * reciprocal;
}

/// The square root, as the sum of two doubles.
template <class V>
[[gnu::always_inline]] inline Expanded<V> root(Expanded<V> a) {
    const V high = square_root(a.high), back = high * high;
    const V remainder = (a.high - back) - product_error(high, high, back) + a.low;
    return {high, high == 0 ? high : remainder / (high + high)};
}

/// x rounded to the 64 bits of extended precision.
template <class V>
[[gnu::always_inline]] inline Expanded<V> extended(Expanded<V> x) {
    using Bits = Vec<std::int64_t, lanes<V>>;
    const V high = x.high + x.low, low = (x.high - high) + x.low;
    const V binade = bits_as<V>(bits_as<Bits>(high) & splat<Bits>(0x7FF0000000000000));
    const V rounder = binade * (1.5 * 0x1p-11); // its last place is that of 64 bits
    return {high, (low + rounder) - rounder};
}

/// Not zero, but so small that errors of its products may underflow.
template <class V>
[[gnu::always_inline]] inline auto is_small(V x) {
    const V size = x < 0 ? -x : x;
    return (size < splat<V>(0x1p-400)) & (x != 0);
}

} // namespace kels
