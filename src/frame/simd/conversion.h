// Lanes of one type to lanes of another.
#pragma once

#include "frame/simd/shuffle.h"
#include "frame/simd/vector.h"

#include <cstdint>
#include <type_traits>

#include <immintrin.h>

namespace kels {

/// Lanes converted to another element type, rounded in the caller's mode.
template <class To, class V>
[[gnu::always_inline]] inline Vec<To, lanes<V>> convert(V a) {
    if constexpr (lanes<V> == 1)
        return static_cast<To>(a);
    else
        return __builtin_convertvector(a, Vec<To, lanes<V>>);
}

/// Doubles rounded to singles, as doubles. g++ 12 takes the two conversions of a vector, or of scalars that it makes
/// one of, for none; it does not look through an assembly statement.
template <class V>
[[gnu::always_inline]] inline V rounded_to_single(V x) {
    if constexpr (sizeof(V) > vector_bytes) {
        return both(rounded_to_single(half<0>(x)), rounded_to_single(half<1>(x)));
    } else {
        auto single = convert<float>(x);
#if !defined(__clang__)
        asm("" : "+x"(single));
#endif
        return convert<double>(single);
    }
}

/// Whether `to_integer` rounds to nearest by itself; otherwise it does in the default modes only.
#if defined(__SSE4_1__)
inline constexpr bool nearest_in_any_mode = true;
#else
inline constexpr bool nearest_in_any_mode = false;
#endif

/// Real lanes converted to 32-bit integers, toward zero or to nearest. What does not fit, NaNs too, becomes the lowest
/// integer.
template <bool TowardZero, class V>
[[gnu::always_inline]] inline Vec<int, lanes<V>> to_integer(V a) {
    using R = Vec<int, lanes<V>>;
    // The masks are there because g++ 12 warns of the forms without.
    [[maybe_unused]] constexpr int all = (1 << lanes<V> % 32) - 1, nearest = 0, quiet = 8;
    if constexpr (sizeof(V) > vector_bytes)
        return both(to_integer<TowardZero>(half<0>(a)), to_integer<TowardZero>(half<1>(a)));
#if defined(__AVX512F__)
    else if constexpr (std::is_same_v<V, Vec<float, 16>>)
        return (R)(TowardZero ? _mm512_maskz_cvttps_epi32(all, a)
                              : _mm512_maskz_cvt_roundps_epi32(all, a, nearest | quiet));
    else if constexpr (std::is_same_v<V, Vec<double, 8>>)
        return (R)(TowardZero ? _mm512_maskz_cvttpd_epi32(all, a)
                              : _mm512_maskz_cvt_roundpd_epi32(all, a, nearest | quiet));
#endif
#if defined(__AVX2__)
    else if constexpr (std::is_same_v<V, Vec<float, 8>>)
        return (R)_mm256_cvttps_epi32(TowardZero ? a : (V)_mm256_round_ps(a, nearest | quiet));
    else if constexpr (std::is_same_v<V, Vec<double, 4>>)
        return (R)_mm256_cvttpd_epi32(TowardZero ? a : (V)_mm256_round_pd(a, nearest | quiet));
#endif
#if defined(__SSE4_1__)
    else if constexpr (std::is_same_v<V, Vec<float, 4>>)
        return (R)_mm_cvttps_epi32(TowardZero ? a : (V)_mm_round_ps(a, nearest | quiet));
    else if constexpr (std::is_same_v<V, Vec<double, 2>>)
        return half<0>((Vec<int, 4>)_mm_cvttpd_epi32(TowardZero ? a : (V)_mm_round_pd(a, nearest | quiet)));
#else
    else if constexpr (std::is_same_v<V, Vec<float, 4>>)
        return (R)(TowardZero ? _mm_cvttps_epi32(a) : _mm_cvtps_epi32(a));
    else if constexpr (std::is_same_v<V, Vec<double, 2>>)
        return half<0>((Vec<int, 4>)(TowardZero ? _mm_cvttpd_epi32(a) : _mm_cvtpd_epi32(a)));
#endif
    else // a part of one register: the rest is zeros
        return half<0>(to_integer<TowardZero>(both(a, V{})));
}

/// Whether `pack_limited` makes one register of R of two registers of V.
template <class R, class V>
inline constexpr bool packs =
#if defined(__AVX512BW__)
    sizeof(V) == 64 && sizeof(R) <= 2 && 2 * sizeof(R) == sizeof(Element<V>) && std::is_signed_v<Element<V>>;
#else
    false; // compilers do it by themselves
#endif

/// Lanes of a, then of b, limited to R.
template <class R, class V>
[[gnu::always_inline]] inline Vec<R, 2 * lanes<V>> pack_limited([[maybe_unused]] V a, [[maybe_unused]] V b) {
    static_assert(packs<R, V>);
    using P = Vec<R, 2 * lanes<V>>;
    P packed{};
#if defined(__AVX512BW__)
    const auto x = (__m512i)a, y = (__m512i)b;
    if constexpr (sizeof(R) == 2)
        packed = (P)(std::is_signed_v<R> ? _mm512_packs_epi32(x, y) : _mm512_packus_epi32(x, y));
    else
        packed = (P)(std::is_signed_v<R> ? _mm512_packs_epi16(x, y) : _mm512_packus_epi16(x, y));
#endif
    return in_order(packed);
}

/// 32-bit lanes limited to 16 bits, those of a and b by turns.
template <class V>
[[gnu::always_inline]] inline Vec<std::int16_t, 2 * lanes<V>> saturated_pairs(V a, V b) {
    static_assert(std::is_same_v<Element<V>, std::int32_t> && sizeof(V) >= 16);
    using R = Vec<std::int16_t, 2 * lanes<V>>;
    if constexpr (sizeof(V) > vector_bytes)
        return both(saturated_pairs(half<0>(a), half<0>(b)), saturated_pairs(half<1>(a), half<1>(b)));
#if defined(__AVX512BW__)
    else if constexpr (sizeof(V) == 64)
        return (R)_mm512_unpacklo_epi16(_mm512_packs_epi32((__m512i)a, (__m512i)a),
                                        _mm512_packs_epi32((__m512i)b, (__m512i)b));
#endif
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return (R)_mm256_unpacklo_epi16(_mm256_packs_epi32((__m256i)a, (__m256i)a),
                                        _mm256_packs_epi32((__m256i)b, (__m256i)b));
#endif
    else
        return (R)_mm_unpacklo_epi16(_mm_packs_epi32((__m128i)a, (__m128i)a), _mm_packs_epi32((__m128i)b, (__m128i)b));
}

} // namespace kels
