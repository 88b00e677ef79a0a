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

/// Every other one of 8- or 16-bit lanes of registers or of their halves, from the first on.
template <class V>
[[gnu::always_inline]] inline V pack_low_halves(V a, V b) {
    constexpr bool bytes = sizeof(Element<V>) == 1;
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
    } else {
        const auto x = load<Vec<Element<V>, 2 * lanes<V>>>(p);
        return {even_lanes(x), odd_lanes(x)};
    }
}

/// Lanes of both by turns.
template <class V>
[[gnu::always_inline]] inline auto zip(V a, V b) {
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
    const auto joined = [=](auto second) KELS_INLINE {
        return shuffle<[](int i) { return i / 16 * 16 + i % 16 / 2 + decltype(second)::value * 8 + i % 2 * lanes<V>; }>(
            low, high);
    };
    using H = Vec<std::int16_t, lanes<V> / 2>;
    return both(bits_as<H>(joined(std::integral_constant<int, 0>{})),
                bits_as<H>(joined(std::integral_constant<int, 1>{})));
}

} // namespace kels
