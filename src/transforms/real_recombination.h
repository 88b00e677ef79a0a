// Between the spectrum X of N real samples and the spectrum Z of the n = N/2 complex ones that their pairs form.
//
// With s = Z[k] + conj Z[n - k], d = Z[k] - conj Z[n - k] and v = -i exp(-2 pi i k / N):
//
//   forward   X[k] = (s + v d) / 2         X[n - k] = conj(s - v d) / 2
//   inverse   2 Z[k] = s + conj(v) d       2 Z[n - k] = conj(s - conj(v) d)      with s, d of X
//
// Bins k and n - k are handled together, a vector of each at a time; the last vector meets bin n/2, its own partner.
#pragma once

#include "frame/complex_vector.h"
#include "transforms/fft_pairs.h"
#include "transforms/fft_plan.h"
#include "transforms/roots.h"

namespace kels {

/// Roots in the table of one block; longer transforms multiply it by one more root a block.
inline constexpr std::ptrdiff_t recombination_block = 1024;

/// Calls f with the number of lanes, which n/2 bin pairs fill, as a constant.
template <class T, int V = max_lanes<T>, class F>
void with_recombination_lanes(std::ptrdiff_t n, F&& f) {
    if constexpr (V * static_cast<int>(sizeof(T)) == 16) {
        f(std::integral_constant<int, V>{});
    } else {
        if (n / 2 >= V)
            f(std::integral_constant<int, V>{});
        else
            with_recombination_lanes<T, V / 2>(n, f);
    }
}

/// v for k = 1, 2, ... in vectors of `lanes` in lane order, at most one block, and the roots between blocks.
template <class T>
void lay_recombination(FftPlan<T>& plan, TableSpace& space) {
    const std::size_t points = std::size_t{1} << plan.order, pairs = points / 4;
    const std::size_t quarter = points / 4; // v is a root, a quarter turn on
    const std::size_t entries = std::min(pairs, static_cast<std::size_t>(recombination_block));
    const auto make = [&]<int V>(std::integral_constant<int, V>) {
        T* table = space.take<T>(2 * entries);
        plan.recombination = table;
        for (std::size_t k = 0; table && k < entries; k += V)
            table = write_root_vectors<V>(table, points, [=](std::size_t lane) {
                return quarter + k + 1 + static_cast<std::size_t>(lane_order<Vec<T, V>>(static_cast<int>(lane)));
            });
    };
    with_recombination_lanes<T>(static_cast<std::ptrdiff_t>(points / 2), make);
    with_pair_lanes<T>(plan.complex_order, [&]<int V>(std::integral_constant<int, V>) {
        T* twice = space.take<T>(4 * V);
        plan.recombination_pairs = twice;
        for (std::size_t first = 0; twice && first < 2 * V; first += V)
            twice = write_root_vectors<V>(twice, points,
                                          [=](std::size_t lane) { return quarter + 1 + (first + lane) / 2; });
    });
    if (pairs > entries) {
        T* blocks = space.take<T>(2 * (pairs / entries));
        plan.recombination_blocks = blocks;
        for (std::size_t b = 0; blocks && b < pairs / entries; ++b) write_root(blocks + 2 * b, b * entries, points);
    }
}

/// One pass over all bin pairs. Bin k stands at src[2k] and dst[2k]; the arrays may be shifted against each other by
/// one value in place, so the next vectors are read before the present ones are written.
template <bool inverse, int V, class T>
void recombine(const T* src, T* dst, std::ptrdiff_t n, const T* table, const T* blocks) {
    using Vector = Vec<T, V>;
    const std::ptrdiff_t count = n / 2 / V;
    Complex<Vector> low = load_interleaved<Vector>(src + 2), high = load_interleaved<Vector>(src + 2 * (n - V));
    Complex<Vector> turn = {splat<Vector>(1), splat<Vector>(0)};
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const Complex<Vector> a = low, b = {reverse(high.re), -reverse(high.im)};
        const std::ptrdiff_t next = (i + 1) * V;
        if (i + 1 < count) {
            low = load_interleaved<Vector>(src + 2 * (1 + next));
            high = load_interleaved<Vector>(src + 2 * (n - V - next));
        }
        const std::ptrdiff_t k = i * V % recombination_block;
        Complex<Vector> v = {load<Vector>(table + 2 * k), load<Vector>(table + 2 * k + V)};
        if (blocks) {
            if (k == 0) {
                const T* root = blocks + 2 * (i * V / recombination_block);
                turn = {splat<Vector>(root[0]), splat<Vector>(root[1])};
            }
            v = v * turn;
        }
        if (inverse) v.im = -v.im;
        const Complex<Vector> s = a + b, t = v * (a - b);
        const Vector scale = splat<Vector>(inverse ? T(1) : T(0.5));
        const Complex<Vector> p = s + t, q = s - t;
        store_interleaved<Vector>(dst + 2 * (1 + i * V), {p.re * scale, p.im * scale});
        store_interleaved<Vector>(dst + 2 * (n - next), {reverse(q.re) * scale, -reverse(q.im) * scale});
    }
}

/// The pass for the real transform of a plan with tables (order 4 and above) or for a shorter one.
template <bool inverse, class T>
void recombine(const FftPlan<T>& plan, const T* src, T* dst) {
    const std::ptrdiff_t n = std::ptrdiff_t{1} << plan.complex_order;
    if (plan.order >= first_pass_order) {
        with_recombination_lanes<T>(n, [&]<int V>(std::integral_constant<int, V>) {
            recombine<inverse, V>(src, dst, n, plan.recombination, plan.recombination_blocks);
        });
    } else if (n > 1) {
        constexpr T h = T(0.70710678118654752440L);
        static constexpr T roots[] = {-h, -h, -1, 0}; // v of N = 8 for k = 1, 2; N = 4 has the second only
        recombine<inverse, 1>(src, dst, n, roots + 2 * (2 - n / 2), static_cast<const T*>(nullptr));
    }
}

} // namespace kels
