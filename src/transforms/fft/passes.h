// The passes of an in-cache transform of N = R1 R2 ... RL V points, V of them in the lanes of a vector.
//
// With the input index n = (n1, n2, ... nL, lane), n1 most significant, and the output index k = k1 + R1 (k2 + R2 (...
// + RL klane)):
//
//   first pass    transforms over n1, from the source to the scratch;
//   middle passes transform over n2, ... nL, in place in the scratch;
//   last pass     transforms along the lanes, and writes to natural order, the digits k1, k2, ... reversed on the way.
//
// All but the last go over whole vectors, without shuffles. The first pass reads all of the source before the last one
// writes, so a call in place costs what any other costs. The scratch holds complex vectors: V real parts, then V
// imaginary ones. With one radix all is done in registers.
#pragma once

#include "transforms/fft/butterflies.h"
#include "transforms/fft/lanes.h"
#include "transforms/fft/layouts.h"
#include "transforms/roots.h"

#include <algorithm>
#include <initializer_list>

namespace kels {

/// Values in the twiddle table of a transform with these radices and V points in the lanes.
inline std::size_t pass_table_size(std::initializer_list<int> radices, int V) {
    std::size_t points = static_cast<std::size_t>(V), size = 0;
    for (int r : radices) points *= static_cast<std::size_t>(r);
    for (int r : radices) {
        points /= static_cast<std::size_t>(r);
        size += 2 * points * static_cast<std::size_t>(r - 1);
    }
    return size;
}

/// Fills the table in the order in which the passes read it: for every pass, per vector of columns and per k from 1, a
/// vector of real and one of imaginary parts of exp(-2 pi i k column / points).
template <class V, class T>
void make_pass_table(T* table, std::initializer_list<int> radices) {
    std::size_t points = lanes<V>;
    for (int r : radices) points *= static_cast<std::size_t>(r);
    for (int r : radices) {
        const std::size_t columns = points / static_cast<std::size_t>(r);
        const Circle circle(points);
        for (std::size_t column = 0; column < columns; column += lanes<V>)
            for (std::size_t k = 1; k < static_cast<std::size_t>(r); ++k)
                table = write_root_vectors<lanes<V>>(table, circle, [=](std::size_t lane) {
                    return k * (column + static_cast<std::size_t>(lane_point<V>(static_cast<int>(lane))));
                });
        points = columns;
    }
}

/// A whole transform.
template <class Layout, class T, int Lanes, int R1, int... Rest>
class Passes {
    using V = Vec<T, Lanes>;
    using Data = typename Layout::template Of<V>;

    static constexpr int rest = (1 * ... * Rest);
    static constexpr int points = R1 * rest * Lanes;

    /// Vectors that are transformed along the lanes together.
    static constexpr int S = std::min(LaneDigits<V>::S, R1* rest);
    static_assert(R1 * rest % S == 0);

public:
    static void run(Points<const T> src, Points<T> dst, const T* table, T factor) {
        if constexpr (sizeof...(Rest) == 0) {
            Complex<V> x[R1];
            unrolled<R1>([&](auto u) KELS_INLINE { x[u] = Data::read_across(src, u * Lanes); });
            turned_butterfly<R1>(x, table, [&](auto k, Complex<V> z) KELS_INLINE { x[k] = z; });
            unrolled<R1 / S>([&](auto q) KELS_INLINE { last_set(x + q * S, dst, q * S, factor); });
        } else {
            alignas(64) T scratch[2 * points];
            first_pass(src, scratch, table);
            later_passes<R1, rest, Rest...>(scratch, table + 2 * rest * Lanes * (R1 - 1));
            last_pass(scratch, dst, factor);
        }
    }

private:
    /// The butterfly over x, its results turned by the roots of one vector of columns and given to out(k, z).
    template <int R, class Out>
    [[gnu::always_inline]] static void turned_butterfly(Complex<V>* x, const T* roots, Out&& out) {
        butterfly<R>(x);
        each_result<R>([&](auto k) KELS_INLINE {
            const T* root = roots + 2 * Lanes * (k - 1);
            if constexpr (k == 0)
                out(k, x[k]);
            else
                out(k, x[k] * Complex<V>{load<V>(root), load<V>(root + Lanes)});
        });
    }

    [[gnu::always_inline]] static Complex<V> get(const T* scratch, std::ptrdiff_t i) {
        return {load<V>(scratch + 2 * Lanes * i), load<V>(scratch + 2 * Lanes * i + Lanes)};
    }
    [[gnu::always_inline]] static void put(T* scratch, std::ptrdiff_t i, Complex<V> z) {
        store(scratch + 2 * Lanes * i, z.re);
        store(scratch + 2 * Lanes * i + Lanes, z.im);
    }

    static void first_pass(Points<const T> src, T* scratch, const T* table) {
        for (std::ptrdiff_t column = 0; column < rest; ++column, table += 2 * Lanes * (R1 - 1)) {
            Complex<V> x[R1];
            unrolled<R1>([&](auto u) KELS_INLINE { x[u] = Data::read_across(src, (u * rest + column) * Lanes); });
            turned_butterfly<R1>(x, table,
                                 [&](auto k, Complex<V> z) KELS_INLINE { put(scratch, k * rest + column, z); });
        }
    }

    /// `Blocks` transforms of `Left` vectors remain.
    template <int Blocks, int Left, int R, int... More>
    [[gnu::always_inline]] static void later_passes(T* scratch, const T* table) {
        constexpr int columns = Left / R;
        for (std::ptrdiff_t block = 0; block < Blocks * Left; block += Left)
            for (std::ptrdiff_t column = 0; column < columns; ++column) {
                Complex<V> x[R];
                unrolled<R>([&](auto u) KELS_INLINE { x[u] = get(scratch, block + u * columns + column); });
                turned_butterfly<R>(x, table + 2 * Lanes * (R - 1) * column, [&](auto k, Complex<V> z) KELS_INLINE {
                    put(scratch, block + k * columns + column, z);
                });
            }
        if constexpr (sizeof...(More) > 0)
            later_passes<Blocks * R, columns, More...>(scratch, table + 2 * columns * Lanes * (R - 1));
    }

    static void last_pass(const T* scratch, Points<T> dst, T factor) {
        constexpr int run = std::min(S, R1);     // vectors of neighbouring k1
        for (int k = 0; k < R1 * rest; k += S) { // k1 + R1 (k2 + ...)
            Complex<V> x[S];
            unrolled<S / run>([&](auto i) KELS_INLINE {
                const int first = k + i * run;
                const std::ptrdiff_t at = first % R1 * rest + reversed<Rest...>(first / R1);
                unrolled<run>([&](auto j) KELS_INLINE { x[i * run + j] = get(scratch, at + j * rest); });
            });
            last_set(x, dst, k, factor);
        }
    }

    /// Along the lanes of one set, to the results from `position` on.
    [[gnu::always_inline]] static void last_set(Complex<V>* x, Points<T> dst, std::ptrdiff_t position, T factor) {
        constexpr std::ptrdiff_t spacing = points / Lanes;
        constexpr int P = LaneDigits<V>::P;
        lane_transform<S>(x);
        unrolled<S / P>([&](auto h) KELS_INLINE {
            unrolled<P>([&](auto kb) KELS_INLINE {
                const std::ptrdiff_t row = lane_result<S, V>(h, kb) * spacing;
                Data::template write_pieces<S>(dst, position + row, spacing, x[h * P + kb] * factor);
            });
        });
    }

    /// Where in a block of scratch results k2 + R2 (k3 + ...) stand: the digits the other way round.
    template <int R, int... More>
    static constexpr int reversed(int k) {
        if constexpr (sizeof...(More) == 0)
            return k;
        else
            return k % R * (More * ...) + reversed<More...>(k / R);
    }
};

} // namespace kels
