// Arithmetic for which the languages of the compilers have no words: fused and alternating sums, roots, products in
// pairs.
#pragma once

#include "frame/simd/shuffle.h"
#include "frame/simd/vector.h"

#include <cstdint>
#include <limits>
#include <type_traits>

#include <immintrin.h>

namespace kels {

/// a b + c, fused where the level has the instruction. The C library's function is never called: without the
/// instruction it is slow, and with singles in double arithmetic the product is exact either way.
template <class V>
[[gnu::always_inline]] inline V fma(V a, V b, V c) {
#if defined(__FMA__)
    if constexpr (std::is_same_v<V, float>)
        return __builtin_fmaf(a, b, c);
    else if constexpr (std::is_same_v<V, double>)
        return __builtin_fma(a, b, c);
    else if constexpr (std::is_same_v<V, Vec<float, 4>>)
        return _mm_fmadd_ps(a, b, c);
    else if constexpr (std::is_same_v<V, Vec<double, 2>>)
        return _mm_fmadd_pd(a, b, c);
    else if constexpr (std::is_same_v<V, Vec<float, 8>>)
        return _mm256_fmadd_ps(a, b, c);
    else if constexpr (std::is_same_v<V, Vec<double, 4>>)
        return _mm256_fmadd_pd(a, b, c);
#if defined(__AVX512F__)
    else if constexpr (std::is_same_v<V, Vec<float, 16>>)
        return _mm512_fmadd_ps(a, b, c);
    else if constexpr (std::is_same_v<V, Vec<double, 8>>)
        return _mm512_fmadd_pd(a, b, c);
#endif
    else if constexpr (sizeof(V) > vector_bytes)
        return both(fma(half<0>(a), half<0>(b), half<0>(c)), fma(half<1>(a), half<1>(b), half<1>(c)));
    else
        return a * b + c;
#else
    return a * b + c;
#endif
}

/// Whether `fma` is one rounding: the level has the instruction, for vectors of whole registers.
template <class V>
inline constexpr bool fuses =
#if defined(__FMA__)
    std::is_floating_point_v<Element<V>> && (lanes<V> == 1 || sizeof(V) >= 16);
#else
    false;
#endif

/// a + factor b, factor being 1 or -1. The compiler does not know that, and multiplies: a processor whose adders are
/// busy with conversions or other sums does this beside them.
template <class V>
[[gnu::always_inline]] inline V add_times(V a, Element<V> factor, V b) {
    if constexpr (fuses<V>) {
        asm("" : "+x"(factor));
        return fma(b, splat<V>(factor), a);
    } else {
        return factor > 0 ? a + b : a - b;
    }
}

/// a + b by the multipliers, where they can.
template <class V>
[[gnu::always_inline]] inline V add_by_fma(V a, V b) {
    return add_times(a, 1, b);
}

/// a - b by the multipliers, where they can.
template <class V>
[[gnu::always_inline]] inline V subtract_by_fma(V a, V b) {
    return add_times(a, -1, b);
}

/// c - a b, fused where `fma` is.
template <class V>
[[gnu::always_inline]] inline V fma_negated(V a, V b, V c) {
    return fma(a, -b, c);
}

/// a with the signs of its even (First = 0) or odd lanes turned.
template <int First, class V>
[[gnu::always_inline]] inline V negated_every_other(V a) {
    if constexpr (std::is_floating_point_v<Element<V>>) {
        using Bits = Vec<std::conditional_t<sizeof(Element<V>) == 4, std::int32_t, std::int64_t>, lanes<V>>;
        constexpr auto sign = std::numeric_limits<Element<Bits>>::min();
        return bits_as<V>(bits_as<Bits>(a) ^ alternate<Bits>(First == 0 ? sign : 0, First == 0 ? 0 : sign));
    } else {
        return shuffle<[](int i) { return i % 2 == First ? lanes<V> + i : i; }>(a, -a);
    }
}

/// a b - c in even lanes, a b + c in odd ones, fused as `fma` is.
template <class V>
[[gnu::always_inline]] inline V fma_alternating(V a, V b, V c) {
#if defined(__FMA__)
    if constexpr (std::is_same_v<V, Vec<float, 4>>) return _mm_fmaddsub_ps(a, b, c);
    if constexpr (std::is_same_v<V, Vec<double, 2>>) return _mm_fmaddsub_pd(a, b, c);
    if constexpr (std::is_same_v<V, Vec<float, 8>>) return _mm256_fmaddsub_ps(a, b, c);
    if constexpr (std::is_same_v<V, Vec<double, 4>>) return _mm256_fmaddsub_pd(a, b, c);
#if defined(__AVX512F__)
    if constexpr (std::is_same_v<V, Vec<float, 16>>) return _mm512_fmaddsub_ps(a, b, c);
    if constexpr (std::is_same_v<V, Vec<double, 8>>) return _mm512_fmaddsub_pd(a, b, c);
#endif
#endif
    return a * b + negated_every_other<0>(c);
}

/// a b + c in even lanes, a b - c in odd ones, fused as `fma` is.
template <class V>
[[gnu::always_inline]] inline V fma_alternating_back(V a, V b, V c) {
#if defined(__FMA__)
    if constexpr (std::is_same_v<V, Vec<float, 4>>) return _mm_fmsubadd_ps(a, b, c);
    if constexpr (std::is_same_v<V, Vec<double, 2>>) return _mm_fmsubadd_pd(a, b, c);
    if constexpr (std::is_same_v<V, Vec<float, 8>>) return _mm256_fmsubadd_ps(a, b, c);
    if constexpr (std::is_same_v<V, Vec<double, 4>>) return _mm256_fmsubadd_pd(a, b, c);
#if defined(__AVX512F__)
    if constexpr (std::is_same_v<V, Vec<float, 16>>) return _mm512_fmsubadd_ps(a, b, c);
    if constexpr (std::is_same_v<V, Vec<double, 8>>) return _mm512_fmsubadd_pd(a, b, c);
#endif
#endif
    return a * b + negated_every_other<1>(c);
}

/// a - b in even lanes, a + b in odd ones.
template <class V>
[[gnu::always_inline]] inline V add_alternating(V a, V b) {
#if defined(__AVX__)
    if constexpr (std::is_same_v<V, Vec<float, 4>>) return _mm_addsub_ps(a, b);
    if constexpr (std::is_same_v<V, Vec<double, 2>>) return _mm_addsub_pd(a, b);
    if constexpr (std::is_same_v<V, Vec<float, 8>>) return _mm256_addsub_ps(a, b);
    if constexpr (std::is_same_v<V, Vec<double, 4>>) return _mm256_addsub_pd(a, b);
#endif
    if constexpr (fuses<V>)
        return fma_alternating(a, splat<V>(1), b);
    else
        return a + negated_every_other<0>(b);
}

/// a + b in even lanes, a - b in odd ones.
template <class V>
[[gnu::always_inline]] inline V add_alternating_back(V a, V b) {
    if constexpr (fuses<V>)
        return fma_alternating_back(a, splat<V>(1), b);
    else
        return a + negated_every_other<1>(b);
}

/// Square roots, rounded once. A negative number gives a NaN with the sign bit set.
template <class V>
[[gnu::always_inline]] inline V square_root(V a) {
    [[maybe_unused]] constexpr int all = (1 << lanes<V> % 32) - 1;
    if constexpr (std::is_same_v<V, float>)
        return __builtin_sqrtf(a);
    else if constexpr (std::is_same_v<V, double>)
        return __builtin_sqrt(a);
    else if constexpr (sizeof(V) > vector_bytes)
        return both(square_root(half<0>(a)), square_root(half<1>(a)));
#if defined(__AVX512F__)
    else if constexpr (std::is_same_v<V, Vec<float, 16>>)
        return _mm512_maskz_sqrt_ps(all, a);
    else if constexpr (std::is_same_v<V, Vec<double, 8>>)
        return _mm512_maskz_sqrt_pd(all, a);
#endif
#if defined(__AVX2__)
    else if constexpr (std::is_same_v<V, Vec<float, 8>>)
        return _mm256_sqrt_ps(a);
    else if constexpr (std::is_same_v<V, Vec<double, 4>>)
        return _mm256_sqrt_pd(a);
#endif
    else if constexpr (std::is_same_v<V, Vec<float, 4>>)
        return _mm_sqrt_ps(a);
    else if constexpr (std::is_same_v<V, Vec<double, 2>>)
        return _mm_sqrt_pd(a);
    else
        return half<0>(square_root(both(a, V{})));
}

/// Real lanes without their signs.
template <class V>
[[gnu::always_inline]] inline V magnitude(V a) {
    using Bits = Vec<std::conditional_t<sizeof(Element<V>) == 4, std::int32_t, std::int64_t>, lanes<V>>;
    return bits_as<V>(bits_as<Bits>(a) & splat<Bits>(std::numeric_limits<Element<Bits>>::max()));
}

/// a + b or a - b of signed 8- or 16-bit lanes, limited to their type.
template <bool Minus, class V>
[[gnu::always_inline]] inline V limited(V a, V b) {
    constexpr bool bytes = sizeof(Element<V>) == 1;
    static_assert(std::is_signed_v<Element<V>> && sizeof(Element<V>) <= 2);
    if constexpr (lanes<V> == 1) {
        using Limits = std::numeric_limits<V>;
        const int sum = Minus ? a - b : a + b;
        return static_cast<V>(sum > Limits::max() ? Limits::max() : sum < Limits::min() ? Limits::min() : sum);
    } else if constexpr (sizeof(V) > vector_bytes) {
        return both(limited<Minus>(half<0>(a), half<0>(b)), limited<Minus>(half<1>(a), half<1>(b)));
    }
#if defined(__AVX512BW__)
    else if constexpr (sizeof(V) == 64) {
        const auto x = (__m512i)a, y = (__m512i)b;
        if constexpr (Minus)
            return (V)(bytes ? _mm512_subs_epi8(x, y) : _mm512_subs_epi16(x, y));
        else
            return (V)(bytes ? _mm512_adds_epi8(x, y) : _mm512_adds_epi16(x, y));
    }
#endif
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32) {
        const auto x = (__m256i)a, y = (__m256i)b;
        if constexpr (Minus)
            return (V)(bytes ? _mm256_subs_epi8(x, y) : _mm256_subs_epi16(x, y));
        else
            return (V)(bytes ? _mm256_adds_epi8(x, y) : _mm256_adds_epi16(x, y));
    }
#endif
    else if constexpr (sizeof(V) == 16) {
        const auto x = (__m128i)a, y = (__m128i)b;
        if constexpr (Minus)
            return (V)(bytes ? _mm_subs_epi8(x, y) : _mm_subs_epi16(x, y));
        else
            return (V)(bytes ? _mm_adds_epi8(x, y) : _mm_adds_epi16(x, y));
    } else { // a part of one register: the rest is zeros
        return half<0>(limited<Minus>(both(a, V{}), both(b, V{})));
    }
}

template <class V>
[[gnu::always_inline]] inline V add_limited(V a, V b) {
    return limited<false>(a, b);
}
template <class V>
[[gnu::always_inline]] inline V subtract_limited(V a, V b) {
    return limited<true>(a, b);
}

/// Products of 16-bit lanes, added up in pairs. Only the sum 2^31 of four lowest values wraps.
template <class V>
[[gnu::always_inline]] inline Vec<int, lanes<V> / 2> add_products(V a, V b) {
    static_assert(std::is_same_v<Element<V>, std::int16_t>);
    using R = Vec<int, lanes<V> / 2>;
    if constexpr (sizeof(V) > vector_bytes)
        return both(add_products(half<0>(a), half<0>(b)), add_products(half<1>(a), half<1>(b)));
#if defined(__AVX512BW__)
    else if constexpr (sizeof(V) == 64)
        return (R)_mm512_madd_epi16((__m512i)a, (__m512i)b);
#endif
#if defined(__AVX2__)
    else if constexpr (sizeof(V) == 32)
        return (R)_mm256_madd_epi16((__m256i)a, (__m256i)b);
#endif
    else if constexpr (sizeof(V) == 16)
        return (R)_mm_madd_epi16((__m128i)a, (__m128i)b);
    else // a part of one register: the rest is zeros
        return half<0>(add_products(both(a, V{}), both(b, V{})));
}

} // namespace kels
