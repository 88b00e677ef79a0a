// One value from all lanes: sums, and where a comparison holds.
#pragma once

#include "frame/simd/vector.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include <immintrin.h>

namespace kels {

/// One value from all lanes: `combine` joins two vectors of lanes, halves onto halves.
template <class V, class Combine>
[[gnu::always_inline]] inline Element<V> fold_lanes(V a, const Combine& combine) {
    if constexpr (lanes<V> == 1)
        return a;
    else
        return fold_lanes(combine(half<0>(a), half<1>(a)), combine);
}

template <class V>
[[gnu::always_inline]] inline Element<V> sum_of_lanes(V a) {
    return fold_lanes(a, [](auto x, auto y) KELS_INLINE { return static_cast<decltype(x)>(x + y); });
}

/// Halves onto halves, until `Lanes` are left.
template <int Lanes, class V>
[[gnu::always_inline]] inline Vec<Element<V>, Lanes> fold(V a) {
    if constexpr (lanes<V> == Lanes)
        return a;
    else
        return fold<Lanes>(half<0>(a) + half<1>(a));
}

/// Lanes that are a zero, an infinity or a NaN, as something for `any_lane`.
template <class V>
[[gnu::always_inline]] inline auto zero_or_not_finite(V a) {
    [[maybe_unused]] constexpr int zero_infinite_nan = 0x9F;
#if defined(__AVX512DQ__)
    if constexpr (std::is_same_v<V, Vec<float, 16>>) {
        return _mm512_fpclass_ps_mask(a, zero_infinite_nan);
    } else if constexpr (std::is_same_v<V, Vec<double, 8>>) {
        return _mm512_fpclass_pd_mask(a, zero_infinite_nan);
    } else
#endif
    {
        const V twice = a + a;
        return (twice == a) | (a != a);
    }
}

/// A comparison for the bitwise operators: lanes are ones or zeros throughout, that of a scalar too.
template <class M>
[[gnu::always_inline]] inline auto as_mask(M comparison) {
    if constexpr (std::is_same_v<M, bool>)
        return -static_cast<int>(comparison);
    else
        return comparison;
}

/// Whether any lane of a comparison holds.
template <class M>
[[gnu::always_inline]] inline bool any_lane(M mask) {
    if constexpr (std::is_arithmetic_v<M>) {
        return mask != 0;
    } else {
        Element<M> lane[lanes<M>], all = 0;
        std::memcpy(lane, &mask, sizeof mask);
        for (Element<M> one : lane) all |= one;
        return all != 0;
    }
}

/// The first of some 16-bit lanes for which a comparison holds; there is one.
template <class M>
[[gnu::always_inline]] inline int first_lane(M mask) {
    static_assert(sizeof(Element<M>) == 2);
#if defined(__AVX512BW__)
    if constexpr (sizeof(M) == 64) return std::countr_zero(_mm512_movepi16_mask((__m512i)mask));
#endif
#if defined(__AVX2__)
    if constexpr (sizeof(M) == 32)
        return std::countr_zero(static_cast<std::uint32_t>(_mm256_movemask_epi8((__m256i)mask))) / 2;
#endif
    if constexpr (sizeof(M) == 32 && vector_bytes == 16) {
        const int bits = _mm_movemask_epi8(_mm_packs_epi16((__m128i)half<0>(mask), (__m128i)half<1>(mask)));
        return std::countr_zero(static_cast<std::uint32_t>(bits));
    }
}

} // namespace kels
