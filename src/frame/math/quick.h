// Elementary functions of singles without doubles, for levels that fuse: the value as a sum of two singles, and whether
// rounding it gives the nearest single for sure (A. Ziv's test). Where it might not, the functions on doubles decide.
// Those come within 2^-35 of the exact value, which counts as an error of ours too: so a result never depends on which
// of the two ways it took, and levels that cannot fuse have doubles only.
#pragma once

#include "frame/math/evaluation.h"

#include <cstdint>
#include <type_traits>

namespace kels {

/// Whole registers of singles.
template <class V>
inline constexpr bool has_quick_functions =
    std::is_same_v<Element<V>, float>&& lanes<V> == max_lanes<float>&& vector_bytes >= 32 && fuses<V>;

template <class V>
using SingleBits = Vec<std::int32_t, lanes<V>>;

/// Results, and in which lanes they are not known to be the nearest singles.
template <class V>
struct Quick {
    V value;
    SingleBits<V> doubtful;
};

/// Entries of a table of 32 singles.
template <class V>
[[gnu::always_inline]] inline V look_up(const float* table, SingleBits<V> index) {
    return bits_as<V>(lookup(reinterpret_cast<const std::int32_t*>(table), index));
}

/// The single nearest to all numbers from high + low to high + low + width size, if it is but one. NaNs are doubtful.
template <class V>
[[gnu::always_inline]] inline Quick<V> rounded_quickly(V high, V low, V size, float width) {
    const V value = high + low;
    return {value, value != high + fma(size, splat<V>(width), low)};
}

template <class F, class... V>
[[gnu::noinline]] auto out_of_line(const F& f, V... x) {
    return f(x...);
}

/// What is known quickly; with a doubt about any lane, careful(x...).
template <class V, class F, class... X>
[[gnu::always_inline]] inline V known(Quick<V> quick, const F& careful, X... x) {
    if (any_lane(quick.doubtful)) [[unlikely]]
        return out_of_line(careful, x...);
    return quick.value;
}

} // namespace kels
