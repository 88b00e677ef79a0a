// Lanes moved about.
#pragma once

#include "frame/simd/vector.h"

#include <cstdint>
#include <type_traits>
#include <utility>

#include <immintrin.h>

namespace kels {

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

/// Lanes of a and b by turns, `Run` of each at a time, from the first or the second half of both.
template <int Half, int Run = 1, class V>
[[gnu::always_inline]] inline V interleave(V a, V b) {
    constexpr int n = lanes<V>;
    if constexpr (n == 1)
        return Half == 0 ? a : b;
    else
        return shuffle<[](int i) { return Half * n / 2 + i / (2 * Run) * Run + i % Run + i / Run % 2 * n; }>(a, b);
}

/// a, b, a, b ...
template <class V>
[[gnu::always_inline]] inline V alternate(Element<V> a, Element<V> b) {
    return interleave<0>(splat<V>(a), splat<V>(b));
}

template <class V>
[[gnu::always_inline]] inline V reverse(V a) {
    if constexpr (lanes<V> == 1)
        return a;
    else
        return shuffle<[](int i) { return lanes<V> - 1 - i; }>(a, a);
}

/// Every other lane, from the first on.
template <class V>
[[gnu::always_inline]] inline auto even_lanes(V a) {
    return half<0>(shuffle<[](int i) { return 2 * i % lanes<V>; }>(a, a));
}

/// Every other lane, from the second on.
template <class V>
[[gnu::always_inline]] inline auto odd_lanes(V a) {
    return half<0>(shuffle<[](int i) { return (2 * i + 1) % lanes<V>; }>(a, a));
}

/// The halves of every 16 bytes, of which the first belong to one vector and the second to another, brought together.
template <class V>
[[gnu::always_inline]] inline V in_order(V groups) {
    using Halves = Vec<std::int64_t, 8>;
    const auto x = bits_as<Halves>(groups);
    return bits_as<V>(shuffle<[](int i) { return i % 4 * 2 + i / 4; }>(x, x));
}

/// Every other one of 8- or 16-bit lanes of registers or of their halves, from the first on. Where registers have 64
/// bytes, they are packed as they are.
template <class V>
[[gnu::always_inline]] inline V pack_low_halves(V a, V b) {
    constexpr bool bytes = sizeof(Element<V>) == 1;
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64) {
        const __m512i mask = bytes ? _mm512_set1_epi16(0xFF) : _mm512_set1_epi32(0xFFFF);
        const __m512i x = (__m512i)a & mask, y = (__m512i)b & mask;
        return in_order((V)(bytes ? _mm512_packus_epi16(x, y) : _mm512_packus_epi32(x, y)));
    } else
#endif
#if defined(__AVX2__)
        if constexpr (sizeof(V) == 32) {
        const __m256i mask = bytes ? _mm256_set1_epi16(0xFF) : _mm256_set1_epi32(0xFFFF);
        const __m256i x = (__m256i)a & mask, y = (__m256i)b & mask;
        return (V)(bytes ? _mm256_packus_epi16(x, y) : _mm256_packus_epi32(x, y));
    } else
#endif
    {
        if constexpr (bytes) {
            const __m128i mask = _mm_set1_epi16(0xFF);
            return (V)_mm_packus_epi16((__m128i)a & mask, (__m128i)b & mask);
        } else {
            const auto low = [](V x) KELS_INLINE { return _mm_srai_epi32(_mm_slli_epi32((__m128i)x, 16), 16); };
            return (V)_mm_packs_epi32(low(a), low(b));
        }
    }
}

/// The same, from the second on.
template <class V>
[[gnu::always_inline]] inline V pack_high_halves(V a, V b) {
    constexpr bool bytes = sizeof(Element<V>) == 1;
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64) {
        const auto high = [](V x) KELS_INLINE {
            return bytes ? _mm512_srai_epi16((__m512i)x, 8) : _mm512_srai_epi32((__m512i)x, 16);
        };
        return in_order((V)(bytes ? _mm512_packs_epi16(high(a), high(b)) : _mm512_packs_epi32(high(a), high(b))));
    } else
#endif
#if defined(__AVX2__)
        if constexpr (sizeof(V) == 32) {
        const auto high = [](V x) KELS_INLINE {
            return bytes ? _mm256_srai_epi16((__m256i)x, 8) : _mm256_srai_epi32((__m256i)x, 16);
        };
        return (V)(bytes ? _mm256_packs_epi16(high(a), high(b)) : _mm256_packs_epi32(high(a), high(b)));
    } else
#endif
    {
        const auto high = [](V x) KELS_INLINE {
            return bytes ? _mm_srai_epi16((__m128i)x, 8) : _mm_srai_epi32((__m128i)x, 16);
        };
        return (V)(bytes ? _mm_packs_epi16(high(a), high(b)) : _mm_packs_epi32(high(a), high(b)));
    }
}

/// Lanes of a and b by turns, from the first or the second half of every 16 bytes.
template <int Half, class V>
[[gnu::always_inline]] inline V interleave_groups(V a, V b) {
    constexpr int n = 16 / static_cast<int>(sizeof(Element<V>));
    return shuffle<[](int i) { return i / n * n + Half * n / 2 + i % n / 2 + i % 2 * lanes<V>; }>(a, b);
}

template <class V>
struct EvenAndOdd {
    V even, odd;
};

/// Twice as many elements as V has lanes: every other one from the first and from the second on. Registers of two
/// halves that shuffles do not cross are loaded so that they need not.
template <class V>
[[gnu::always_inline]] inline EvenAndOdd<V> load_even_and_odd(const Element<V>* p) {
    if constexpr (sizeof(V) == vector_bytes && vector_bytes <= 32) {
        constexpr int bytes = sizeof(Element<V>);
        V a, b;
        if constexpr (sizeof(V) == 32) {
            using H = Vec<Element<V>, lanes<V> / 2>;
            constexpr int n = lanes<H>;
            a = both(load<H>(p), load<H>(p + 2 * n));
            b = both(load<H>(p + n), load<H>(p + 3 * n));
        } else {
            a = load<V>(p);
            b = load<V>(p + lanes<V>);
        }
        if constexpr (bytes >= 4) {
            constexpr int group = 16 / bytes;
            const auto picked = [=](auto odd) KELS_INLINE {
                return shuffle<[](int i) {
                    const int j = i % group * 2 + decltype(odd)::value;
                    return i / group * group + j % group + j / group * lanes<V>;
                }>(a, b);
            };
            return {picked(std::integral_constant<int, 0>{}), picked(std::integral_constant<int, 1>{})};
        } else {
            return {pack_low_halves(a, b), pack_high_halves(a, b)};
        }
    } else if constexpr (sizeof(V) == 64 && sizeof(Element<V>) == 1) {
        const V a = load<V>(p), b = load<V>(p + lanes<V>);
        return {pack_low_halves(a, b), pack_high_halves(a, b)};
    } else {
        const auto x = load<Vec<Element<V>, 2 * lanes<V>>>(p);
        return {even_lanes(x), odd_lanes(x)};
    }
}

/// Lanes of both by turns.
template <class V>
[[gnu::always_inline]] inline auto zip(V a, V b) {
    if constexpr (sizeof(V) == 64 && sizeof(Element<V>) == 1) { // groups of 16 bytes, which are put in order as words
        using Words = Vec<std::int64_t, 8>;
        const auto low = bits_as<Words>(interleave_groups<0>(a, b)), high = bits_as<Words>(interleave_groups<1>(a, b));
        const auto first = shuffle<[](int i) { return i / 4 * 2 + i % 2 + i / 2 % 2 * 8; }>(low, high);
        const auto second = shuffle<[](int i) { return 4 + i / 4 * 2 + i % 2 + i / 2 % 2 * 8; }>(low, high);
        return both(bits_as<V>(first), bits_as<V>(second));
    }
    const auto v = both(a, b);
    return shuffle<[](int i) { return i / 2 + i % 2 * lanes<V>; }>(v, v);
}

/// Bytes in the order in which `widened` takes them: shuffles of bytes do not cross the groups of 16.
template <class V>
[[gnu::always_inline]] inline V dealt(V a) {
    static_assert(sizeof(Element<V>) == 1);
    return shuffle<[](int i) { return i / 16 * 8 + i / 8 % 2 * (lanes<V> / 2) + i % 8; }>(a, a);
}

/// 16-bit lanes of low and high bytes that have been dealt, in the natural order.
template <class V>
[[gnu::always_inline]] inline auto widened(V low, V high) {
    using H = Vec<std::int16_t, lanes<V> / 2>;
    return both(bits_as<H>(interleave_groups<0>(low, high)), bits_as<H>(interleave_groups<1>(low, high)));
}

} // namespace kels
