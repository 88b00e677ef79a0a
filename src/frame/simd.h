// Vector types for the kernels that earn more than a plain loop: compiler vector extensions of a width that the level
// chooses, with loads, stores, shuffles and the fused multiply-add. Intrinsics stand in this file only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include <immintrin.h>

/// For the bodies of lambdas inside kernels: a call left standing would send a register file through memory.
#define KELS_INLINE __attribute__((always_inline))

/// Before a loop that shall stay one: unrolled, it would keep more values than there are registers.
#if defined(__clang__)
#define KELS_ROLLED _Pragma("clang loop unroll(disable)")
#else
#define KELS_ROLLED _Pragma("GCC unroll 1")
#endif

namespace kels {

/// Bytes of the widest vector of this level.
#if defined(__AVX512F__)
inline constexpr int vector_bytes = 64;
#elif defined(__AVX2__)
inline constexpr int vector_bytes = 32;
#else
inline constexpr int vector_bytes = 16;
#endif

template <class T>
inline constexpr int max_lanes = vector_bytes / static_cast<int>(sizeof(T));

template <class T, int Lanes>
struct VectorOf {
    typedef T type __attribute__((vector_size(Lanes * sizeof(T))));
};
template <class T>
struct VectorOf<T, 1> {
    using type = T;
};

/// `Lanes` elements side by side; one lane is the plain scalar, so that a kernel's template serves both.
template <class T, int Lanes = max_lanes<T>>
using Vec = typename VectorOf<T, Lanes>::type;

template <class V>
struct ElementOf {
    using type = std::remove_cvref_t<decltype(std::declval<V&>()[0])>;
};
template <class V>
requires std::is_arithmetic_v<V>
struct ElementOf<V> {
    using type = V;
};

template <class V>
using Element = typename ElementOf<V>::type;

template <class V>
inline constexpr int lanes = static_cast<int>(sizeof(V) / sizeof(Element<V>));

template <class V>
[[gnu::always_inline]] inline V load(const void* p) {
    V v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <class V>
[[gnu::always_inline]] inline void store(void* p, V v) {
    std::memcpy(p, &v, sizeof v);
}

/// The bits of a, as other lanes of the same size in all.
template <class To, class V>
[[gnu::always_inline]] inline To bits_as(V a) {
    static_assert(sizeof(To) == sizeof(V));
    return load<To>(&a);
}

/// Half 0 or 1 of the lanes.
template <int Half, class V>
[[gnu::always_inline]] inline auto half(V a) {
    using H = Vec<Element<V>, lanes<V> / 2>;
    return load<H>(reinterpret_cast<const char*>(&a) + Half * sizeof(H));
}

/// All lanes of a, then those of b.
template <class V>
[[gnu::always_inline]] inline auto both(V a, V b) {
    Vec<Element<V>, 2 * lanes<V>> v;
    std::memcpy(&v, &a, sizeof a);
    std::memcpy(reinterpret_cast<char*>(&v) + sizeof a, &b, sizeof b);
    return v;
}

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

/// Calls f(0), f(1), ... f(N - 1) with the index as a constant, so that arrays of vectors stay in registers.
template <int N, class F>
[[gnu::always_inline]] inline void unrolled(F&& f) {
    [&]<int... I>(std::integer_sequence<int, I...>) KELS_INLINE { (f(std::integral_constant<int, I>{}), ...); }
    (std::make_integer_sequence<int, N>{});
}

/// Lane i of the result is lane Index(i) of a, or of b from `lanes` on.
template <auto Index, class V>
[[gnu::always_inline]] inline V shuffle(V a, V b) {
    return [&]<int... I>(std::integer_sequence<int, I...>) KELS_INLINE {
        return __builtin_shufflevector(a, b, Index(I)...);
    }
    (std::make_integer_sequence<int, lanes<V>>{});
}

/// The value in every lane, to the bit: a sum with zeros would lose the sign of another.
template <class V>
[[gnu::always_inline]] inline V splat(Element<V> x) {
    if constexpr (lanes<V> == 1) {
        return x;
    } else {
        const V first = {x};
        return shuffle<[](int) { return 0; }>(first, first);
    }
}

/// Lanes of a and b by turns, from the first or the second half of both.
template <int Half, class V>
[[gnu::always_inline]] inline V interleave(V a, V b) {
    constexpr int n = lanes<V>;
    if constexpr (n == 1)
        return Half == 0 ? a : b;
    else
        return shuffle<[](int i) { return Half * n / 2 + i / 2 + i % 2 * n; }>(a, b);
}

/// a, b, a, b ...
template <class V>
[[gnu::always_inline]] inline V alternate(Element<V> a, Element<V> b) {
    return interleave<0>(splat<V>(a), splat<V>(b));
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
    const V p = a * b;
    return shuffle<[](int i) { return i % 2 * lanes<V> + i; }>(p - c, p + c);
}

/// a - b in even lanes, a + b in odd ones.
template <class V>
[[gnu::always_inline]] inline V add_alternating(V a, V b) {
    if constexpr (fuses<V>)
        return fma_alternating(a, splat<V>(1), b);
    else
        return shuffle<[](int i) { return i % 2 * lanes<V> + i; }>(a - b, a + b);
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

/// Lanes converted to another element type, rounded in the caller's mode.
template <class To, class V>
[[gnu::always_inline]] inline Vec<To, lanes<V>> convert(V a) {
    if constexpr (lanes<V> == 1)
        return static_cast<To>(a);
    else
        return __builtin_convertvector(a, Vec<To, lanes<V>>);
}

/// Whether `to_integer` rounds to nearest by itself; otherwise it does in the default modes only.
#if defined(__SSE4_1__)
inline constexpr bool nearest_in_any_mode = true;
#else
inline constexpr bool nearest_in_any_mode = false;
#endif

/// Lanes Index * S to Index * S + S - 1.
template <int S, int Index, class V>
[[gnu::always_inline]] inline Vec<Element<V>, S> slice(V a) {
    return load<Vec<Element<V>, S>>(reinterpret_cast<const char*>(&a) + Index * S * sizeof(Element<V>));
}

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

/// Every other lane, from the first on.
template <class V>
[[gnu::always_inline]] inline auto even_lanes(V a) {
    return half<0>(shuffle<[](int i) { return 2 * i % lanes<V>; }>(a, a));
}

/// Lanes of both by turns.
template <class V>
[[gnu::always_inline]] inline auto zip(V a, V b) {
    const auto v = both(a, b);
    return shuffle<[](int i) { return i / 2 + i % 2 * lanes<V>; }>(v, v);
}

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

/// Real lanes without their signs.
template <class V>
[[gnu::always_inline]] inline V magnitude(V a) {
    using Bits = Vec<std::conditional_t<sizeof(Element<V>) == 4, std::int32_t, std::int64_t>, lanes<V>>;
    return bits_as<V>(bits_as<Bits>(a) & splat<Bits>(std::numeric_limits<Element<Bits>>::max()));
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

/// Halves onto halves, until `Lanes` are left.
template <int Lanes, class V>
[[gnu::always_inline]] inline Vec<Element<V>, Lanes> fold(V a) {
    if constexpr (lanes<V> == Lanes)
        return a;
    else
        return fold<Lanes>(half<0>(a) + half<1>(a));
}

/// a b + c d for neighbouring pairs of 16-bit lanes, in 32 bits that wrap.
template <class V>
[[gnu::always_inline]] inline auto add_products_of_pairs(V a, V b) {
    using R = Vec<int, lanes<V> / 2>;
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64) return (R)_mm512_madd_epi16((__m512i)a, (__m512i)b);
#endif
#if defined(__AVX2__)
    if constexpr (sizeof(V) == 32) return (R)_mm256_madd_epi16((__m256i)a, (__m256i)b);
#endif
    if constexpr (sizeof(V) == 16) return (R)_mm_madd_epi16((__m128i)a, (__m128i)b);
}

/// An integer in a register of its own: its load is not joined with others to a wide one, which would wait for narrow
/// stores just before.
template <class T>
[[gnu::always_inline]] inline int loaded_alone(const T& x) {
    int value = x;
    asm("" : "+r"(value));
    return value;
}

template <class V>
[[gnu::always_inline]] inline V reverse(V a) {
    if constexpr (lanes<V> == 1)
        return a;
    else
        return shuffle<[](int i) { return lanes<V> - 1 - i; }>(a, a);
}

} // namespace kels
