// Square tiles of complex numbers, a row to a vector, stored transposed: row l of memory gets number l of every vector.
//
// The last exchange of a transposition is that of halves of vectors. Many processors send all shuffles of wide vectors
// through one port, so that exchange is done beside it where it can be: halves are stored by themselves, or one shuffle
// and two blends take the place of two shuffles.
#pragma once

#include "frame/complex_vector.h"

namespace kels {

/// Complex numbers in a vector of pairs.
template <class V>
inline constexpr int pairs = lanes<V> / 2;

/// How halves are exchanged.
enum class Exchange { shuffles, stores, blends };

/// How those of a tile's even and odd rows are.
template <Exchange even, Exchange odd>
struct Exchanges {};

/// The lower halves of u and v to one row, the upper ones to another.
template <Exchange how, class V>
[[gnu::always_inline]] inline void store_halves(V u, V v, Element<V>* lower, Element<V>* upper) {
    constexpr int h = lanes<V> / 2;
    if constexpr (how == Exchange::stores && can_store_halves<V>) {
        store_half<0>(lower, u);
        store_half<0>(lower + h, v);
        store_half<1>(upper, u);
        store_half<1>(upper + h, v);
    } else if constexpr (how == Exchange::blends) {
        const V middle = opaque(shuffle<[](int i) { return h + i; }>(u, v)); // upper half of u, lower one of v
        store(lower, shuffle<[](int i) { return i < h ? i : lanes<V> + i; }>(u, middle));
        store(upper, shuffle<[](int i) { return i < h ? i : lanes<V> + i; }>(middle, v));
    } else {
        store(lower, shuffle<[](int i) { return i < h ? i : lanes<V> + i - h; }>(u, v));
        store(upper, shuffle<[](int i) { return i < h ? i + h : lanes<V> + i; }>(u, v));
    }
}

/// As many vectors as there are 128-bit parts in one: part p of all of them to the row p `stride` from `row` on.
template <Exchange how, class V>
[[gnu::always_inline]] inline void store_parts(const V* x, Element<V>* row, std::ptrdiff_t stride) {
    constexpr int parts = lanes<V> / part<V>;
    if constexpr (parts == 1) {
        store(row, x[0]);
    } else if constexpr (parts == 2) {
        store_halves<how>(x[0], x[1], row, row + stride);
    } else {
        // Parts of two vectors by turns, those that belong into the same row side by side.
        constexpr auto even = [](int i) { return i / part<V> % 2 * (lanes<V> - part<V>)+i; };
        constexpr auto odd = [](int i) { return i / part<V> % 2 == 0 ? i + part<V> : lanes<V> + i; };
        store_halves<how>(shuffle<even>(x[0], x[1]), shuffle<even>(x[2], x[3]), row, row + 2 * stride);
        store_halves<how>(shuffle<odd>(x[0], x[1]), shuffle<odd>(x[2], x[3]), row + stride, row + 3 * stride);
    }
}

/// A tile: number l of each vector to the row l `stride` from `row` on.
template <Exchange even, Exchange odd, class V>
[[gnu::always_inline]] inline void store_transposed(Exchanges<even, odd>, const V* x, Element<V>* row,
                                                    std::ptrdiff_t stride) {
    constexpr int parts = lanes<V> / part<V>;
    if constexpr (part<V> == 2) {
        store_parts<even>(x, row, stride);
    } else {
        V first[parts], second[parts]; // of the two numbers in a part
        unrolled<parts>([&](auto i) KELS_INLINE {
            first[i] = join_lower<V, 2>(x[2 * i], x[2 * i + 1]);
            second[i] = join_upper<V, 2>(x[2 * i], x[2 * i + 1]);
        });
        store_parts<even>(first, row, 2 * stride);
        store_parts<odd>(second, row + stride, 2 * stride);
    }
}

/// The same inside registers.
template <class V>
[[gnu::always_inline]] inline void transpose_pairs(V* x) {
    constexpr int parts = lanes<V> / part<V>;
    if constexpr (part<V> == 4)
        unrolled<parts>([&](auto i) KELS_INLINE {
            const V a = x[2 * i], b = x[2 * i + 1];
            x[2 * i] = join_lower<V, 2>(a, b);
            x[2 * i + 1] = join_upper<V, 2>(a, b);
        });
    constexpr int numbers = part<V> / 2; // in a part
    unrolled<numbers>([&](auto i) KELS_INLINE { transpose_parts<V, numbers>(x + i); });
}

} // namespace kels
