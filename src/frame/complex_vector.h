// Complex vectors in split form: real parts in one register, imaginary parts in another, so that butterflies need no
// shuffle. This file moves them between registers and interleaved memory, and transposes them.
#pragma once

#include "frame/simd.h"

#include <limits>

namespace kels {

/// Complex numbers, one per lane.
template <class V>
struct Complex {
    V re, im;
};

template <class V>
[[gnu::always_inline]] inline Complex<V> operator+(Complex<V> a, Complex<V> b) {
    return {a.re + b.re, a.im + b.im};
}

template <class V>
[[gnu::always_inline]] inline Complex<V> operator-(Complex<V> a, Complex<V> b) {
    return {a.re - b.re, a.im - b.im};
}

template <class V>
[[gnu::always_inline]] inline Complex<V> operator*(Complex<V> a, Complex<V> b) {
    return {fma(a.re, b.re, -(a.im * b.im)), fma(a.re, b.im, a.im * b.re)};
}

/// z times a real factor.
template <class V>
[[gnu::always_inline]] inline Complex<V> operator*(Complex<V> z, Element<V> factor) {
    return {z.re * splat<V>(factor), z.im * splat<V>(factor)};
}

// Complex numbers with their parts side by side, in pairs of lanes of one vector.

/// Real and imaginary parts exchanged.
template <class V>
[[gnu::always_inline]] inline V swapped(V pairs) {
    return shuffle<[](int i) { return i ^ 1; }>(pairs, pairs);
}

/// The numbers in the other order, conjugated; the negative of the lowest integer is the highest.
template <class V>
[[gnu::always_inline]] inline V mirrored(V pairs) {
    using Limits = std::numeric_limits<Element<V>>;
    V negative = -pairs;
    if constexpr (Limits::is_integer) negative = pairs == Limits::min() ? splat<V>(Limits::max()) : negative;
    return shuffle<[](int i) { return i % 2 == 0 ? lanes<V> - 2 - i : 2 * lanes<V> - i; }>(pairs, negative);
}

/// Elements in one 128-bit part of a vector: what the cheap shuffles stay inside.
template <class V>
inline constexpr int part = lanes<V> == 1 ? 1 : 16 / static_cast<int>(sizeof(Element<V>));

/// The order in which `load_interleaved` leaves consecutive complex numbers in the lanes: lane p holds number
/// lane_order(p). The instructions that separate and join parts work inside 128 bits; tables made in this order spare
/// the shuffles that would restore the natural one.
template <class V>
constexpr int lane_order(int p) {
    if constexpr (lanes<V> == 1) {
        return 0;
    } else {
        constexpr int half = part<V> / 2;
        const int j = p / part<V>, c = p % part<V>;
        return c < half ? half * j + c : lanes<V> / 2 + half * j + (c - half);
    }
}

// Lane indices of the two-operand shuffles below, each inside 128-bit parts or of whole parts.

/// Every other element: the real (odd 0) or imaginary (odd 1) parts of two interleaved vectors.
template <class V>
constexpr int separate(int i, int odd) {
    constexpr int half = part<V> / 2;
    const int j = i / part<V>, c = i % part<V>;
    return (c < half ? 0 : lanes<V>)+j * part<V> + 2 * (c % half) + odd;
}

/// Runs of `width` elements of one half of each part, taken from both operands by turns.
template <class V>
constexpr int join(int i, int width, int upper) {
    const int j = i / part<V>, c = i % part<V>;
    return ((c / width) % 2) * lanes<V> + j * part<V> + upper * part<V> / 2 + (c / (2 * width)) * width + c % width;
}

/// Every other part of the first operand, then of the second.
template <class V>
constexpr int every_other_part(int i, int odd) {
    constexpr int half = lanes<V> / part<V> / 2;
    const int j = i / part<V>;
    return (j < half ? 0 : lanes<V>)+(2 * (j % half) + odd) * part<V> + i % part<V>;
}

/// Reads consecutive interleaved complex numbers, leaving them in `lane_order`.
template <class V>
[[gnu::always_inline]] inline Complex<V> load_interleaved(const Element<V>* p) {
    if constexpr (lanes<V> == 1) {
        return {p[0], p[1]};
    } else {
        const V lo = load<V>(p), hi = load<V>(p + lanes<V>);
        return {shuffle<[](int i) { return separate<V>(i, 0); }>(lo, hi),
                shuffle<[](int i) { return separate<V>(i, 1); }>(lo, hi)};
    }
}

/// Writes what `load_interleaved` reads.
template <class V>
[[gnu::always_inline]] inline void store_interleaved(Element<V>* p, Complex<V> z) {
    if constexpr (lanes<V> == 1) {
        p[0] = z.re;
        p[1] = z.im;
    } else {
        store(p, shuffle<[](int i) { return join<V>(i, 1, 0); }>(z.re, z.im));
        store(p + lanes<V>, shuffle<[](int i) { return join<V>(i, 1, 1); }>(z.re, z.im));
    }
}

template <class V, int Width>
[[gnu::always_inline]] inline V join_lower(V a, V b) {
    return shuffle<[](int i) { return join<V>(i, Width, 0); }>(a, b);
}

template <class V, int Width>
[[gnu::always_inline]] inline V join_upper(V a, V b) {
    return shuffle<[](int i) { return join<V>(i, Width, 1); }>(a, b);
}

template <class V>
[[gnu::always_inline]] inline V even_parts(V a, V b) {
    return shuffle<[](int i) { return every_other_part<V>(i, 0); }>(a, b);
}

template <class V>
[[gnu::always_inline]] inline V odd_parts(V a, V b) {
    return shuffle<[](int i) { return every_other_part<V>(i, 1); }>(a, b);
}

/// Vectors 0 to G - 1 against the elements of each 128-bit part.
template <class V>
[[gnu::always_inline]] inline void transpose_inside_parts(V* row) {
    if constexpr (part<V> == 2) {
        const V a = row[0], b = row[1];
        row[0] = join_lower<V, 1>(a, b);
        row[1] = join_upper<V, 1>(a, b);
    } else if constexpr (part<V> == 4) {
        const V a = join_lower<V, 1>(row[0], row[1]), b = join_upper<V, 1>(row[0], row[1]);
        const V c = join_lower<V, 1>(row[2], row[3]), d = join_upper<V, 1>(row[2], row[3]);
        row[0] = join_lower<V, 2>(a, c);
        row[1] = join_upper<V, 2>(a, c);
        row[2] = join_lower<V, 2>(b, d);
        row[3] = join_upper<V, 2>(b, d);
    }
}

/// As many vectors, `Stride` apart, as there are 128-bit parts in one, against the parts.
template <class V, int Stride = 1>
[[gnu::always_inline]] inline void transpose_parts(V* row) {
    constexpr int parts = lanes<V> / part<V>;
    if constexpr (parts == 2) {
        const V a = row[0], b = row[Stride];
        row[0] = even_parts(a, b);
        row[Stride] = odd_parts(a, b);
    } else if constexpr (parts == 4) {
        const V e01 = even_parts(row[0], row[Stride]), o01 = odd_parts(row[0], row[Stride]);
        const V e23 = even_parts(row[2 * Stride], row[3 * Stride]), o23 = odd_parts(row[2 * Stride], row[3 * Stride]);
        row[0] = even_parts(e01, e23);
        row[Stride] = even_parts(o01, o23);
        row[2 * Stride] = odd_parts(e01, e23);
        row[3 * Stride] = odd_parts(o01, o23);
    }
}

/// Transposes the square matrix whose rows are the vectors: elements inside 128-bit parts first, then whole parts.
template <class V>
[[gnu::always_inline]] inline void transpose(V (&row)[lanes<V>]) {
    constexpr int g = part<V>;
    unrolled<lanes<V> / g>([&](auto q) KELS_INLINE { transpose_inside_parts(row + q * g); });
    unrolled<g>([&](auto c) KELS_INLINE { transpose_parts<V, g>(row + c); });
}

} // namespace kels
