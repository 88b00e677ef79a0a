// Tables that registers hold: every lane picks an entry by its index.
#pragma once

#include "frame/simd/conversion.h"
#include "frame/simd/shuffle.h"
#include "frame/simd/vector.h"

#include <cstdint>
#include <type_traits>

#include <immintrin.h>

namespace kels {

/// Entries of a table: 32 of 16 or 32 bits, 64 of 64 bits.
template <class T>
inline constexpr int table_entries = sizeof(T) == 8 ? 64 : 32;

/// What they are kept as: without a shuffle of 16-bit lanes, 32 bits wide.
template <class T>
#if defined(__AVX512BW__)
using TableEntry = T;
#else
using TableEntry = std::conditional_t<sizeof(T) == 2, std::int32_t, T>;
#endif

/// table[index], lane by lane; the indices are in range.
template <class V>
[[gnu::always_inline]] inline V lookup(const TableEntry<Element<V>>* table, V index) {
    using T = Element<V>;
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64 && sizeof(T) == 2) {
        return (V)_mm512_permutexvar_epi16((__m512i)index, load<__m512i>(table));
    } else if constexpr (sizeof(V) == 64 && sizeof(T) == 4) {
        return (V)_mm512_permutex2var_epi32(load<__m512i>(table), (__m512i)index, load<__m512i>(table + 16));
    } else if constexpr (sizeof(V) == 64 && sizeof(T) == 8) {
        const auto of_sixteen = [=](int from) KELS_INLINE {
            return (V)_mm512_permutex2var_epi64(load<__m512i>(table + from), (__m512i)index,
                                                load<__m512i>(table + from + 8));
        };
        const auto odd = (index & splat<V>(16)) != 0, upper = (index & splat<V>(32)) != 0;
        const V below = odd ? of_sixteen(16) : of_sixteen(0), above = odd ? of_sixteen(48) : of_sixteen(32);
        return upper ? above : below;
    } else
#endif
#if defined(__AVX2__)
        if constexpr (sizeof(V) == 32 && sizeof(T) == 4) {
        const auto of_eight = [=](int from) KELS_INLINE {
            return (__m256)_mm256_permutevar8x32_epi32(load<__m256i>(table + from), (__m256i)index);
        };
        // A blend looks at the sign.
        const auto odd = (__m256)(index << splat<V>(28)), upper = (__m256)(index << splat<V>(27));
        const __m256 below = _mm256_blendv_ps(of_eight(0), of_eight(8), odd);
        const __m256 above = _mm256_blendv_ps(of_eight(16), of_eight(24), odd);
        return (V)_mm256_blendv_ps(below, above, upper);
    } else if constexpr (sizeof(V) == 32 && sizeof(TableEntry<T>) > sizeof(T)) {
        const auto indices = convert<std::int32_t>(index);
        return convert<T>(both(lookup(table, half<0>(indices)), lookup(table, half<1>(indices))));
    } else
#endif
    {
        T lane[lanes<V>];
        store(lane, index);
        for (T& x : lane) x = static_cast<T>(table[x]);
        return load<V>(lane);
    }
}

/// table[index modulo the lanes], lane by lane: a table of singles that one register holds.
template <class V>
[[gnu::always_inline]] inline V pick(V table, Vec<std::int32_t, lanes<V>> index) {
#if defined(__AVX512F__)
    if constexpr (std::is_same_v<V, Vec<float, 16>>)
        return (V)_mm512_maskz_permutexvar_ps(0xFFFF, (__m512i)index, table);
#endif
#if defined(__AVX2__)
    if constexpr (std::is_same_v<V, Vec<float, 8>>) return (V)_mm256_permutevar8x32_ps(table, (__m256i)index);
#endif
    V picked;
    for (int i = 0; i < lanes<V>; ++i) picked[i] = table[index[i] % lanes<V>];
    return picked;
}

/// Whether a table of 16 bytes is looked up by one shuffle.
template <class V>
inline constexpr bool looks_up_bytes =
#if defined(__AVX512BW__)
    sizeof(Element<V>) == 1 && (sizeof(V) == 32 || sizeof(V) == 64);
#elif defined(__AVX2__)
    sizeof(Element<V>) == 1 && sizeof(V) == 32;
#else
    false;
#endif

/// table[index], lane by lane; the indices are less than 16.
template <class V>
[[gnu::always_inline]] inline V lookup_byte([[maybe_unused]] const Element<V>* table, [[maybe_unused]] V index) {
    static_assert(looks_up_bytes<V>);
#if defined(__AVX2__)
    const __m128i entries = load<__m128i>(table);
    if constexpr (sizeof(V) == 32) return (V)_mm256_shuffle_epi8(_mm256_broadcastsi128_si256(entries), (__m256i)index);
#endif
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64)
        return (V)_mm512_shuffle_epi8(_mm512_maskz_broadcast_i32x4(0xFFFF, entries), (__m512i)index);
#endif
}

} // namespace kels
