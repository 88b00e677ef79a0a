// Between the spectrum X of N real samples and the spectrum Z of the n = N/2 complex ones that their pairs form.
//
// With s = Z[k] + conj Z[n - k], d = Z[k] - conj Z[n - k] and v = -i exp(-2 pi i k / N):
//
//   forward   X[k] = (s + v d) / 2         X[n - k] = conj(s - v d) / 2
//   inverse   2 Z[k] = s + conj(v) d       2 Z[n - k] = conj(s - conj(v) d)      with s, d of X
//
// Bins k and n - k are handled together, a vector of each at a time; the last vector meets bin n/2, its own partner.
#pragma once

#include "transforms/fft/pair_roots.h"
#include "transforms/fft/plan.h"

#include <algorithm>

namespace kels {

/// Roots in the table of one block; longer transforms turn by one more root a block.
inline constexpr std::ptrdiff_t recombination_block = 1024;

/// v / 2 for k = 1, 2, ..., at most one block, and the roots between blocks.
template <class T>
void lay_recombination(FftPlan<T>& plan, TableSpace& space) {
    const std::size_t points = std::size_t{1} << plan.order, bins = points / 4;
    const std::size_t quarter = points / 4; // v is a root, a quarter turn on
    const std::size_t entries = std::min(bins, static_cast<std::size_t>(recombination_block));
    const Circle circle(points);
    T* table = space.take<T>(2 * entries);
    plan.recombination = table;
    if (table) {
        circle.write(table, entries, quarter + 1, 1);
        std::for_each_n(table, 2 * entries, [](T& part) { part /= 2; });
    }
    if (bins > entries) {
        T* blocks = space.take<T>(2 * (bins / entries));
        plan.recombination_blocks = blocks;
        if (blocks) circle.write(blocks, bins / entries, 0, entries);
    }
}

/// The numbers of a vector of pairs in the other order.
template <class V>
[[gnu::always_inline]] inline V reversed_pairs(V z) {
    return shuffle<[](int i) { return lanes<V> - 2 - i / 2 * 2 + i % 2; }>(z, z);
}

/// What becomes of bins k, in `low`, and n - k, in `high`, both in the order of memory; `turned(d)` is v d / 2 or
/// conj(v) d / 2.
template <bool inverse, class V, class Turned>
[[gnu::always_inline]] inline void recombine(V& low, V& high, Turned&& turned) {
    using T = Element<V>;
    const V partner = reversed_pairs(high);
    const V s = add_alternating_back(low, partner), t = turned(add_alternating(low, partner));
    if constexpr (inverse) {
        low = fma(t, splat<V>(2), s);
        high = reversed_pairs(fma_alternating_back(t, alternate<V>(-2, 2), s));
    } else {
        low = fma(s, splat<V>(T(0.5)), t);
        high = reversed_pairs(fma_alternating(s, alternate<V>(T(0.5), T(-0.5)), t));
    }
}

/// All bin pairs, bin k from src[2k] to dst[2k]. The arrays may be shifted against each other by one value in place, so
/// the next vectors are read before the present ones are written.
template <bool inverse, int L, class T>
void recombine(const T* src, T* dst, std::ptrdiff_t n, const T* table, const T* blocks) {
    using V = Vec<T, L>;
    const T *low_end = src + 2, *high_end = src + 2 * n - L;
    V low = load<V>(low_end), high = load<V>(high_end);
    for (std::ptrdiff_t k = 0; k < n; k += L) { // twice the bins done
        V a = low, b = high;
        if (k + L < n) {
            low = load<V>(low_end + k + L);
            high = load<V>(high_end - k - L);
        }
        const std::ptrdiff_t in_block = k % (2 * recombination_block);
        recombine<inverse>(a, b, [&](V d) KELS_INLINE {
            if (blocks) {
                const T *root = blocks + k / recombination_block / 2 * 2, im = inverse ? -root[1] : root[1];
                d = fma(d, splat<V>(root[0]), swapped(d) * alternate<V>(-im, im));
            }
            return times_once<inverse>(d, table + in_block);
        });
        store(dst + 2 + k, a);
        store(dst + 2 * n - L - k, b);
    }
}

/// The same between registers and memory: the n bins of Z in vectors, those of X from `bins` on.
template <int count, class V>
[[gnu::always_inline]] inline void recombine_from_registers(const V* z, Element<V>* bins, const Element<V>* table) {
    constexpr int L = lanes<V>;
    unrolled<count / 2>([&](auto i) KELS_INLINE {
        V a = shuffle<[](int lane) { return lane + 2; }>(z[i], z[i + 1]), b = z[count - 1 - i];
        recombine<false>(a, b, [&](V d) KELS_INLINE { return times_once<false>(d, table + L * i); });
        store(bins + 2 + L * i, a);
        store(bins + L * (count - 1 - i), b);
    });
}

/// 2 or 4 bins, number by number, as they have just been stored.
template <bool inverse, class T>
void recombine_few(const T* src, T* dst, std::ptrdiff_t n) {
    constexpr T h = T(0.70710678118654752440L);
    constexpr T roots[] = {-h, inverse ? h : -h, -1, 0}; // v of N = 8 for k = 1, 2; N = 4 has the second only
    const T scale = inverse ? T(1) : T(0.5);
    T z[8];
    for (std::ptrdiff_t i = 2; i < 2 * n; ++i) z[i] = src[i];
    for (std::ptrdiff_t k = 1; k <= n / 2; ++k) {
        const T* v = roots + 2 * (k - n / 2 + 1);
        const Complex<T> a = {z[2 * k], z[2 * k + 1]}, b = {z[2 * (n - k)], -z[2 * (n - k) + 1]};
        const Complex<T> s = a + b, t = Complex<T>{v[0], v[1]} * (a - b), p = s + t, q = s - t;
        dst[2 * k] = p.re * scale;
        dst[2 * k + 1] = p.im * scale;
        dst[2 * (n - k)] = q.re * scale;
        dst[2 * (n - k) + 1] = -q.im * scale;
    }
}

/// All bin pairs of a plan.
template <bool inverse, class T>
void recombine(const FftPlan<T>& plan, const T* src, T* dst) {
    const std::ptrdiff_t n = std::ptrdiff_t{1} << plan.complex_order;
    if (plan.complex_order >= first_table_order) {
        if (n >= max_lanes<T>)
            recombine<inverse, max_lanes<T>>(src, dst, n, plan.recombination, plan.recombination_blocks);
        else
            recombine<inverse, 8>(src, dst, n, plan.recombination, plan.recombination_blocks);
    } else if (n > 1) {
        recombine_few<inverse>(src, dst, n);
    }
}

} // namespace kels
