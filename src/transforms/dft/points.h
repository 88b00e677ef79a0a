// Vectors of complex points, real and imaginary parts side by side: as many as there are pairs of lanes. Columns of any
// number are cut into such vectors with little left over, and interleaved data are read and written without shuffles.
#pragma once

#include "frame/complex_vector.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace kels {

/// The most points of a vector.
template <class T>
inline constexpr int max_points = max_lanes<T> / 2;

template <class T, int P = max_points<T>>
using PointVec = Vec<T, 2 * P>;

template <class V>
inline constexpr int points_in = lanes<V> / 2;

/// z w.
template <class V>
[[gnu::always_inline]] inline V point_product(V z, V w) {
    const V re = shuffle<[](int i) { return i & ~1; }>(w, w), im = shuffle<[](int i) { return i | 1; }>(w, w);
    return fma_alternating(z, re, swapped(z) * im);
}

/// z conj(w).
template <class V>
[[gnu::always_inline]] inline V conjugate_product(V z, V w) {
    const V re = shuffle<[](int i) { return i & ~1; }>(w, w), im = shuffle<[](int i) { return i | 1; }>(w, w);
    return fma_alternating(z, re, -(swapped(z) * im));
}

/// z times the number at w, for every point.
template <class V>
[[gnu::always_inline]] inline V times_scalar(V z, const Element<V>* w) {
    return fma_alternating(z, splat<V>(w[0]), swapped(z) * splat<V>(w[1]));
}

/// Real and imaginary parts of half as many lanes each, side by side.
template <class H>
[[gnu::always_inline]] inline auto joined_parts(H re, H im) {
    return zip(re, im);
}

template <class V>
[[gnu::always_inline]] inline auto real_parts(V z) {
    return half<0>(shuffle<[](int i) { return 2 * i % lanes<V>; }>(z, z));
}

template <class V>
[[gnu::always_inline]] inline auto imaginary_parts(V z) {
    return half<0>(shuffle<[](int i) { return (2 * i + 1) % lanes<V>; }>(z, z));
}

/// Transposes the square matrix of points whose rows are the vectors.
template <class V>
[[gnu::always_inline]] inline void transpose_points(V (&row)[points_in<V>]) {
    constexpr int P = points_in<V>;
    if constexpr (P == 1) {
        return;
    } else if constexpr (sizeof(Element<V>) == 8) {
        transpose_parts<V>(row);
    } else { // a point of singles moves as one double
        using W = Vec<double, P>;
        W wide[P];
        unrolled<P>([&](auto i) KELS_INLINE { wide[i] = bits_as<W>(row[i]); });
        transpose<W>(wide);
        unrolled<P>([&](auto i) KELS_INLINE { row[i] = bits_as<V>(wide[i]); });
    }
}

/// Calls f(first, count, points) for pieces that cover n columns, each a whole number of vectors of `points` points:
/// pieces of at most `widest` columns in the widest vectors, at most `top` points, then what is left in one that
/// reaches back over columns done before, or in narrower ones.
template <class F>
void each_piece(std::ptrdiff_t n, std::ptrdiff_t widest, int top, F&& f) {
    std::ptrdiff_t first = 0;
    for (; n - first >= top; first += std::min(widest, (n - first) / top * top))
        f(first, std::min(widest, (n - first) / top * top), top);
    while (first < n) {
        int points = top;
        while (points / 2 >= n - first) points /= 2;
        while (points > n) points /= 2;
        const std::ptrdiff_t start = std::min(first, n - points);
        f(start, std::ptrdiff_t{points}, points);
        first = start + points;
    }
}

/// The same, where what is left goes in narrower vectors, so that no column is met twice.
template <class F>
void each_disjoint_piece(std::ptrdiff_t n, std::ptrdiff_t widest, int top, F&& f) {
    std::ptrdiff_t first = 0;
    for (int points = top; first < n; points /= 2)
        for (std::ptrdiff_t columns; (columns = std::min(widest, (n - first) / points * points)) > 0; first += columns)
            f(first, columns, points);
}

/// Calls f with the number of points of a vector as a constant.
template <class T, int P = max_points<T>, class F>
[[gnu::always_inline]] inline void with_points(int points, F&& f) {
    if constexpr (P == 1)
        f(std::integral_constant<int, 1>{});
    else if (points == P)
        f(std::integral_constant<int, P>{});
    else
        with_points<T, P / 2>(points, f);
}

/// Calls f<P>(i) for vectors that cover n points, P of them from i on; the last may reach back.
template <class T, class F>
[[gnu::always_inline]] inline void each_vector(std::ptrdiff_t n, F&& f) {
    constexpr int P = max_points<T>;
    if (n >= P) {
        for (std::ptrdiff_t i = 0; i <= n - P; i += P) f(std::integral_constant<int, P>{}, i);
        if (n % P != 0) f(std::integral_constant<int, P>{}, n - P);
    } else {
        for (std::ptrdiff_t i = 0; i < n; ++i) f(std::integral_constant<int, 1>{}, i);
    }
}

} // namespace kels
