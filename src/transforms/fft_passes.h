// The passes of an in-cache transform of N = R1 R2 ... RL points.
//
// With the input index n = (n1, n2, ... nL), n1 most significant, and the output index k = k1 + R1 (k2 + R2 (k3 +
// ...)):
//
//   first pass    transforms over n1 for `V` neighbouring columns (n2 ... nL) at a time, turns the results, and stores
//                 them transposed: the R1 values k1 of a column lie side by side in the scratch;
//   middle passes transform over n2, n3, ... in place in the scratch, whole vectors of k1 at a time;
//   last pass     transforms over nL and writes to natural order, the digits k2, k3, ... reversed on the way.
//
// Only the first pass shuffles, and it reads all of the source before the last pass writes, so a call in place costs
// what any other costs. The scratch holds split complex vectors: `V` real parts, then `V` imaginary parts.
//
#pragma once

#include "transforms/butterflies.h"
#include "transforms/fft_layouts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kels {

/// One root of unity exp(-2 pi i k / n), rounded once. The angle is folded into the first octant, where sine and cosine
/// of extended precision lose nothing.
template <class T>
void write_root(T* out, std::size_t k, std::size_t n) {
    const std::size_t octant = 8 * (k % n) / n; // n is a power of two below 2^31
    long double numerator = static_cast<long double>(k % n);
    const long double quarter = static_cast<long double>(n) / 4;
    const int turns = static_cast<int>((octant + 1) / 2); // nearest multiple of a quarter turn
    numerator -= turns * quarter;
    const long double angle = 2 * std::numbers::pi_v<long double> * (numerator / static_cast<long double>(n));
    const long double c = std::cos(angle), s = -std::sin(angle);
    const long double re[4] = {c, s, -c, -s}, im[4] = {s, -c, -s, c};
    out[0] = static_cast<T>(re[turns % 4]);
    out[1] = static_cast<T>(im[turns % 4]);
}

/// Values of type T in the twiddle table of a transform with these radices; `radices` ends with the last one.
inline std::size_t pass_table_size(std::initializer_list<int> radices) {
    std::size_t points = 1, size = 0;
    for (int r : radices) points *= static_cast<std::size_t>(r);
    for (auto r = radices.begin(); r + 1 != radices.end(); ++r) {
        points /= static_cast<std::size_t>(*r);
        size += 2 * points * static_cast<std::size_t>(*r - 1);
    }
    return size;
}

/// Fills the twiddle table in the order in which the passes read it: for the first pass per block of V columns and per
/// k1 from 1 a vector of real and one of imaginary parts, for every middle pass per column and k one complex number.
/// `Data` is the layout, whose lane order the vectors take.
template <class Data, int V, class T>
void make_pass_table(T* table, std::initializer_list<int> radices) {
    std::size_t points = 1;
    for (int r : radices) points *= static_cast<std::size_t>(r);
    std::size_t columns = points / static_cast<std::size_t>(*radices.begin());
    for (std::size_t column = 0; column < columns; column += V)
        for (int k = 1; k < *radices.begin(); ++k, table += 2 * V)
            for (int lane = 0; lane < V; ++lane) {
                T root[2];
                const auto n = column + static_cast<std::size_t>(Data::order(lane));
                write_root(root, n * static_cast<std::size_t>(k), points);
                table[lane] = root[0];
                table[V + lane] = root[1];
            }
    for (auto r = radices.begin() + 1; r + 1 != radices.end(); ++r) {
        points = columns;
        columns /= static_cast<std::size_t>(*r);
        for (std::size_t column = 0; column < columns; ++column)
            for (int k = 1; k < *r; ++k, table += 2) write_root(table, column * static_cast<std::size_t>(k), points);
    }
}

/// Columns `column` to `column + V - 1` of the first pass, from the source to registers.
template <class In, int R, int V, class T>
[[gnu::always_inline]] inline void first_butterfly(Complex<Vec<T, V>>* x, Points<const T> src, std::ptrdiff_t columns,
                                                   std::ptrdiff_t column, const T* table) {
    using Vector = Vec<T, V>;
    unrolled<R>([&](auto u) KELS_INLINE { x[u] = In::read(src, u * columns + column); });
    butterfly<R>(x);
    unrolled<R - 1>([&](auto i) KELS_INLINE {
        const T* w = table + 2 * V * i;
        x[i + 1] = x[i + 1] * Complex<Vector>{load<Vector>(w), load<Vector>(w + V)};
    });
}

/// Transposes V values k1 of V columns; row i of the result holds column order(i), its lanes in the order of `Data`.
template <class Data, int V, class T>
[[gnu::always_inline]] inline void transpose_tile(Complex<Vec<T, V>>* x) {
    using Vector = Vec<T, V>;
    Vector re[V], im[V];
    unrolled<V>([&](auto i) KELS_INLINE {
        re[i] = x[Data::order(i)].re;
        im[i] = x[Data::order(i)].im;
    });
    transpose<Vector>(re);
    transpose<Vector>(im);
    unrolled<V>([&](auto i) KELS_INLINE { x[i] = {re[i], im[i]}; });
}

template <class In, int R, int V, class T>
inline void first_pass(Points<const T> src, T* scratch, std::ptrdiff_t columns, const T* table) {
    using Vector = Vec<T, V>;
    for (std::ptrdiff_t column = 0; column < columns; column += V) {
        Complex<Vector> x[R];
        first_butterfly<In, R, V>(x, src, columns, column, table);
        table += 2 * V * (R - 1);
        unrolled<R / V>([&](auto group) KELS_INLINE {
            transpose_tile<In, V, T>(x + group * V);
            unrolled<V>([&](auto i) KELS_INLINE {
                T* row = scratch + 2 * ((column + In::order(i)) * R + group * V);
                store(row, x[group * V + i].re);
                store(row + V, x[group * V + i].im);
            });
        });
    }
}

/// One middle pass over `blocks` transforms of `R columns` entries; an entry is `groups` vectors.
template <int R, int V, class T>
inline void middle_pass(T* scratch, std::ptrdiff_t blocks, std::ptrdiff_t columns, std::ptrdiff_t groups,
                        const T* table) {
    using Vector = Vec<T, V>;
    const std::ptrdiff_t stride = 2 * V * groups * columns;
    for (std::ptrdiff_t block = 0; block < blocks; ++block, scratch += R * stride)
        for (std::ptrdiff_t column = 0; column < columns; ++column) {
            const T* w = table + 2 * (R - 1) * column;
            for (std::ptrdiff_t group = 0; group < groups; ++group) {
                T* p = scratch + 2 * V * (column * groups + group);
                Complex<Vector> x[R];
                unrolled<R>([&](auto u) KELS_INLINE {
                    x[u] = {load<Vector>(p + u * stride), load<Vector>(p + u * stride + V)};
                });
                butterfly<R>(x);
                unrolled<R - 1>([&](auto i) KELS_INLINE {
                    x[i + 1] = x[i + 1] * Complex<Vector>{splat<Vector>(w[2 * i]), splat<Vector>(w[2 * i + 1])};
                });
                unrolled<R>([&](auto u) KELS_INLINE {
                    store(p + u * stride, x[u].re);
                    store(p + u * stride + V, x[u].im);
                });
            }
        }
}

/// The last pass: R neighbouring entries of `groups` vectors to outputs `spacing` apart, the first at `position`.
template <class Out, int R, int V, class T>
[[gnu::always_inline]] inline void last_butterflies(const T* scratch, Points<T> dst, std::ptrdiff_t position,
                                                    std::ptrdiff_t spacing, std::ptrdiff_t groups, T factor) {
    using Vector = Vec<T, V>;
    for (std::ptrdiff_t group = 0; group < groups; ++group) {
        const T* p = scratch + 2 * V * group;
        Complex<Vector> x[R];
        unrolled<R>([&](auto u) KELS_INLINE {
            x[u] = {load<Vector>(p + 2 * V * groups * u), load<Vector>(p + 2 * V * groups * u + V)};
        });
        butterfly<R>(x);
        unrolled<R>([&](auto k) KELS_INLINE { Out::write(dst, position + group * V + k * spacing, x[k] * factor); });
    }
}

/// A whole transform: two passes with one tile in registers when V columns are all there are, else through the scratch.
template <class Layout, class T, int V, int R1, int... Rest>
struct Passes {
    static_assert(R1 % V == 0);
    using Vector = Vec<T, V>;
    using Data = typename Layout::template Of<Vector>;

    static constexpr int columns = (Rest * ...);
    static constexpr int points = R1 * columns;
    static constexpr int groups = R1 / V;
    static_assert(columns % V == 0);

    static void run(Points<const T> src, Points<T> dst, const T* table, T factor) {
        if constexpr (sizeof...(Rest) == 1 && columns == V)
            in_registers(src, dst, table, factor);
        else
            through_scratch(src, dst, table, factor);
    }

private:
    [[gnu::always_inline]] static void in_registers(Points<const T> src, Points<T> dst, const T* table, T factor) {
        Complex<Vector> x[R1];
        first_butterfly<Data, R1, V>(x, src, columns, 0, table);
        unrolled<groups>([&](auto group) KELS_INLINE {
            transpose_tile<Data, V, T>(x + group * V);
            Complex<Vector> y[V];
            unrolled<V>([&](auto i) KELS_INLINE { y[Data::order(i)] = x[group * V + i]; });
            butterfly<V>(y);
            unrolled<V>([&](auto k) KELS_INLINE { x[group * V + k] = y[k]; });
        });
        unrolled<groups>([&](auto group) KELS_INLINE {
            unrolled<V>([&](auto k) KELS_INLINE { Data::write(dst, group * V + k * R1, x[group * V + k] * factor); });
        });
    }

    static void through_scratch(Points<const T> src, Points<T> dst, const T* table, T factor) {
        alignas(64) T scratch[2 * points];
        first_pass<Data, R1, V>(src, scratch, columns, table);
        later_passes<columns, 1, Rest...>(scratch, dst, table + 2 * columns * (R1 - 1), factor);
    }

    /// `Left` points remain to transform in each of `Done` blocks.
    template <int Left, int Done, int R, int... More>
    [[gnu::always_inline]] static void later_passes(T* scratch, Points<T> dst, const T* table, T factor) {
        if constexpr (sizeof...(More) > 0) {
            constexpr int next = Left / R;
            middle_pass<R, V>(scratch, Done, next, groups, table);
            later_passes<next, Done * R, More...>(scratch, dst, table + 2 * next * (R - 1), factor);
        } else {
            for (int block = 0; block < Done; ++block)
                last_butterflies<Data, R, V>(scratch + 2 * R1 * R * block, dst, R1 * reversed<Rest...>(block, Done),
                                             points / R, groups, factor);
        }
    }

    /// The digits of a block index, k2 most significant, read the other way round.
    template <int R, int... More>
    static constexpr int reversed(int block, int blocks) {
        if constexpr (sizeof...(More) == 0)
            return 0;
        else
            return block / (blocks / R) + R * reversed<More...>(block % (blocks / R), blocks / R);
    }
};

} // namespace kels
