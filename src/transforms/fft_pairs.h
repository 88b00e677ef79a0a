// Transforms of 2 V points in registers: a vector of the first half and one of the second.
//
// With the point n = V h + l and the result k = j + 2 (ka + G kb), the lane w of part p of a vector holding point
// l = P w + p:
//
//   sums and differences over h give j, turned by exp(-2 pi i l j / (2 V));
//   the real and imaginary parts of both, four vectors, are transposed against w: a vector for every w, which holds
//   complex numbers j = 0 and 1 side by side in each part;
//   butterflies over w give ka, turned by exp(-2 pi i p ka / V);
//   ka changes places with p, and butterflies over p give kb.
//
// The results lie in the vectors in the order of memory.
#pragma once

#include "transforms/butterflies.h"
#include "transforms/fft_lanes.h"

#include <array>
#include <type_traits>

namespace kels {

/// Calls f with the number of lanes, as a constant, where a complex transform of this order is one of 2 V points; false
/// where it is not.
template <class T, class F>
bool with_pair_lanes(int order, F&& f) {
    switch (order) {
    case 3:
        f(std::integral_constant<int, 4>{});
        return true;
    case 4:
        if constexpr (max_lanes<T> >= 8) f(std::integral_constant<int, 8>{});
        return max_lanes<T> >= 8;
    case 5:
        if constexpr (max_lanes<T> >= 16) f(std::integral_constant<int, 16>{});
        return max_lanes<T> >= 16;
    default:
        return false;
    }
}

/// exp(-2 pi i f(lane) / points): a vector of real and one of imaginary parts.
template <class V, class F>
constexpr auto constant_roots(int points, F f) {
    std::array<Element<V>, 2 * lanes<V>> roots{};
    for (int lane = 0; lane < lanes<V>; ++lane) {
        roots[lane] = static_cast<Element<V>>(cosine_32(32 / points * f(lane)));
        roots[lanes<V> + lane] = static_cast<Element<V>>(cosine_32(32 / points * f(lane) + 8)); // -sin
    }
    return roots;
}

template <class V>
inline constexpr auto pair_roots = constant_roots<V>(2 * lanes<V>, lane_point<V>);

template <class V, int ka>
inline constexpr auto pair_lane_roots = constant_roots<V>(lanes<V>,
                                                          [](int lane) { return lane / LaneDigits<V>::G * ka; });

/// -i z, the parts of z side by side.
template <class V>
[[gnu::always_inline]] inline V pair_times_minus_i(V z) {
    return shuffle<[](int i) { return i % 2 == 0 ? i + 1 : lanes<V> + i - 1; }>(z, -z);
}

/// z w, the parts of z side by side, those of w in two vectors.
template <class V>
[[gnu::always_inline]] inline V pair_product(V z, const Element<V>* w) {
    return fma_alternating(z, load<V>(w), swapped(z) * load<V>(w + lanes<V>));
}

/// The transform of R points, one in each vector.
template <int R, class V>
[[gnu::always_inline]] inline void pair_butterfly(V* x) {
    if constexpr (R == 2) {
        const V a = x[0], b = x[1];
        x[0] = a + b;
        x[1] = a - b;
    } else if constexpr (R == 4) {
        const V sum02 = x[0] + x[2], dif02 = x[0] - x[2], sum13 = x[1] + x[3];
        const V turned = pair_times_minus_i(x[1] - x[3]);
        x[0] = sum02 + sum13;
        x[1] = dif02 + turned;
        x[2] = sum02 - sum13;
        x[3] = dif02 - turned;
    }
}

/// The results as four vectors of complex numbers in the order of memory.
template <class V>
[[gnu::always_inline]] inline void transform_pairs(Complex<V> a, Complex<V> b, V* result) {
    constexpr int G = LaneDigits<V>::G, P = LaneDigits<V>::P;
    const Element<V>* root = pair_roots<V>.data();
    const Complex<V> sum = a + b, turned = (a - b) * Complex<V>{load<V>(root), load<V>(root + lanes<V>)};
    V x[4] = {sum.re, sum.im, turned.re, turned.im};
    if constexpr (P == 1) {
        transpose<V>(x);
        unrolled<4>([&](auto lane) KELS_INLINE { result[lane_point<V>(lane)] = x[lane]; });
        pair_butterfly<4>(result);
    } else {
        // With two elements a part holds one number, and the vectors are w = 0 and 1 of j = 0, then of j = 1.
        constexpr int sets = 4 / G;
        unrolled<sets>([&](auto j) KELS_INLINE {
            V* w = x + j * G;
            transpose_inside_parts<V>(w);
            pair_butterfly<G>(w);
            unrolled<G - 1>([&](auto i)
                                KELS_INLINE { w[i + 1] = pair_product(w[i + 1], pair_lane_roots<V, i + 1>.data()); });
        });
        V y[4]; // number ka sets + j
        unrolled<4>([&](auto i) KELS_INLINE { y[i % G * sets + i / G] = x[i]; });
        unrolled<4 / P>([&](auto h) KELS_INLINE {
            transpose_parts<V>(y + h * P);
            pair_butterfly<P>(y + h * P);
            unrolled<P>([&](auto kb) KELS_INLINE { result[kb * (4 / P) + h] = y[h * P + kb]; });
        });
    }
}

/// Bins 1 to n - 1 of the real transform from the n points of the complex one in four vectors, as `recombine` does it
/// (real_recombination.h); the roots v come as two vectors of their real and imaginary parts, twice each, for each of
/// two vectors of bins.
template <class V>
[[gnu::always_inline]] inline void recombine_pairs(const V* z, const Element<V>* roots, Element<V>* bins) {
    constexpr int V2 = lanes<V>; // values of V / 2 bins
    unrolled<2>([&](auto i) KELS_INLINE {
        const V a = shuffle<[](int lane) { return lane + 2; }>(z[i], z[i + 1]), b = mirrored(z[3 - i]);
        const V s = a + b, t = pair_product(a - b, roots + 2 * V2 * i), half = splat<V>(Element<V>(0.5));
        store(bins + 2 + V2 * i, (s + t) * half);
        store(bins + 4 * V2 - V2 * (i + 1), mirrored((s - t) * half));
    });
}

} // namespace kels
