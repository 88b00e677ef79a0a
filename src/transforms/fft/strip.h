// Transforms of neighbouring columns, in passes through scratch on the stack: what longer transforms are made of.
#pragma once

#include "transforms/fft/butterflies.h"
#include "transforms/fft/plan.h"
#include "transforms/fft/radices.h"
#include "transforms/roots.h"

#include <algorithm>

namespace kels {

/// Columns of a strip: 128 bytes of a row.
template <class T>
inline constexpr int strip_lanes = 64 / static_cast<int>(sizeof(T));

/// The longest transform of a strip's columns: 64 KiB of scratch.
inline constexpr int top_column_order = 9;

/// Calls f with the radices of a column transform of order 1 to 9: short ones, which leave registers free.
template <class F>
auto with_column_radices(int order, F&& f) {
    switch (order) {
    case 1:
        return f(Radices<2>{});
    case 2:
        return f(Radices<4>{});
    case 3:
        return f(Radices<8>{});
    case 4:
        return f(Radices<16>{});
    case 5:
        return f(Radices<4, 8>{});
    case 6:
        return f(Radices<8, 8>{});
    case 7:
        return f(Radices<4, 4, 8>{});
    case 8:
        return f(Radices<4, 8, 8>{});
    default:
        return f(Radices<8, 8, 8>{});
    }
}

/// Values in the twiddle tables of a column transform's passes; the last pass has none.
template <int... R>
std::size_t column_table_size(Radices<R...>) {
    std::size_t points = (std::size_t{1} * ... * R), size = 0;
    for (int r : {R...}) {
        points /= static_cast<std::size_t>(r);
        if (points > 1) size += 2 * points * static_cast<std::size_t>(r - 1);
    }
    return size;
}

template <class T, int... R>
void make_column_table(T* table, Radices<R...>) {
    std::size_t points = (std::size_t{1} * ... * R);
    for (int r : {R...}) {
        const std::size_t columns = points / static_cast<std::size_t>(r);
        const Circle circle(points);
        for (std::size_t column = 0; columns > 1 && column < columns; ++column, table += 2 * (r - 1))
            circle.write(table, static_cast<std::size_t>(r - 1), column, column);
        points = columns;
    }
}

/// z times the k-th of a column's roots, of which the 0th, 1, is not stored.
template <int k, class V>
[[gnu::always_inline]] inline Complex<V> times_root(Complex<V> z, const Element<V>* roots) {
    if constexpr (k == 0)
        return z;
    else
        return z * Complex<V>{splat<V>(roots[2 * k - 2]), splat<V>(roots[2 * k - 1])};
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
                each_result<R>([&](auto k) KELS_INLINE {
                    const Complex<Vector> z = times_root<k>(x[k], w);
                    store(p + k * stride, z.re);
                    store(p + k * stride + V, z.im);
                });
            }
        }
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

/// A strip's columns in scratch, a group of lanes to a vector.
template <class T>
class Strip {
public:
    static constexpr int V = std::min(max_lanes<T>, strip_lanes<T>);
    static constexpr int groups = strip_lanes<T> / V;
    using Vector = Vec<T, V>;

    /// Scratch for columns of an order, for as long as one transform.
    template <int order>
    struct Scratch {
        alignas(64) T values[(2 * strip_lanes<T>) << order];
    };
    template <int order>
    explicit Strip(Scratch<order>& scratch) : scratch_(scratch.values) {}

    Complex<Vector> get(std::ptrdiff_t row, std::ptrdiff_t group) const { return get_vector(row * groups + group); }
    void put(std::ptrdiff_t row, std::ptrdiff_t group, Complex<Vector> z) { put_vector(row * groups + group, z); }

    // Scratch as vectors of no row in particular.
    Complex<Vector> get_vector(std::ptrdiff_t i) const {
        const T* p = scratch_ + 2 * V * i;
        return {load<Vector>(p), load<Vector>(p + V)};
    }
    void put_vector(std::ptrdiff_t i, Complex<Vector> z) {
        T* p = scratch_ + 2 * V * i;
        store(p, z.re);
        store(p + V, z.im);
    }

    /// Transforms every column: row n comes from in(n, group), row k goes to out(k, group, value, place); `place` is a
    /// row of scratch that is free by then.
    template <int R, int... More, class In, class Out>
    void transform(Radices<R, More...>, const T* table, In&& in, Out&& out) {
        constexpr int columns = (1 * ... * More);
        for (std::ptrdiff_t column = 0; column < columns; ++column)
            for (std::ptrdiff_t group = 0; group < groups; ++group) {
                Complex<Vector> x[R];
                unrolled<R>([&](auto u) KELS_INLINE { x[u] = in(u * columns + column, group); });
                butterfly<R>(x);
                const T* w = table + 2 * (R - 1) * column;
                each_result<R>([&](auto k) KELS_INLINE {
                    if constexpr (columns == 1)
                        out(k, group, x[k], k);
                    else
                        put(k * columns + column, group, times_root<k>(x[k], w));
                });
            }
        if constexpr (columns > 1) later_passes<R, columns, R, More...>(table + 2 * columns * (R - 1), out);
    }

private:
    T* const scratch_;

    /// `Done` blocks of `Left` rows remain; `First` and the radices behind it are those already taken, then those to
    /// come.
    template <int Done, int Left, int First, int R, int... More, class Out>
    void later_passes(const T* table, Out&& out) {
        if constexpr (sizeof...(More) > 0) {
            constexpr int next = Left / R;
            middle_pass<R, V>(scratch_, Done, next, groups, table);
            last_pass<Done * R, next, First, R>(out);
            static_assert(sizeof...(More) == 1, "columns take three passes at most");
        } else {
            last_pass<Done, R, First, 1>(out);
        }
    }

    /// Blocks (k1, k2) of R rows, k1 < First, k2 < Second.
    template <int Blocks, int R, int First, int Second, class Out>
    void last_pass(Out&& out) {
        static_assert(Blocks == First * Second);
        for (std::ptrdiff_t block = 0; block < Blocks; ++block)
            for (std::ptrdiff_t group = 0; group < groups; ++group) {
                Complex<Vector> x[R];
                unrolled<R>([&](auto u) KELS_INLINE { x[u] = get(block * R + u, group); });
                butterfly<R>(x);
                const std::ptrdiff_t first = block / Second + First * (block % Second);
                each_result<R>([&](auto k) KELS_INLINE { out(first + k * Blocks, group, x[k], block * R + k); });
            }
    }
};

template <class T, int... R>
const T* lay_column_table(TableSpace& space, Radices<R...> radices) {
    T* table = space.take<T>(column_table_size(radices));
    if (table) make_column_table(table, radices);
    return table;
}

} // namespace kels
