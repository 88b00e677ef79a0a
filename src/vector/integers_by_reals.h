// Integer results by way of real arithmetic that is fine enough to round them right: they take their scale factor as a
// real number, and are rounded to nearest, ties to even, whatever mode is set (with `nearest_in_any_mode`, or in the
// default modes).
#pragma once

#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <limits>

namespace kels {

/// 2^-factor, or what does the same to results of at most 2^32.
template <class Work>
Work real_scale(int factor) {
    constexpr int limit = 60; // beyond it nothing changes any more
    return power_of_two<Work>(-std::clamp(factor, -limit, limit));
}

/// What lies beyond the range becomes its ends, a NaN the lower one.
template <class R, class V>
[[gnu::always_inline]] inline auto to_nearest(V x) {
    const V limit = splat<V>(std::numeric_limits<R>::max());
    return saturate<R>(to_integer<false>(x > limit ? limit : x));
}

/// a^2 + b^2 of each pair of 16-bit lanes.
template <class V>
[[gnu::always_inline]] inline auto squared_modulus(V a) {
    const auto size = convert<Kel64f>(add_products(a, a));
    return size < 0 ? -size : size; // 2^31 has wrapped
}

} // namespace kels
