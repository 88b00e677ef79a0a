// The short transforms that every length is built from, forward, natural order in and out, over one vector of points
// for every index.
//
// A prime number of points R goes by pairs: with s_j = x_j + x_(R-j) and d_j = x_j - x_(R-j), X_k and X_(R-k) are the
// sum and the difference of x_0 + sum_j s_j cos(2 pi jk/R) and -i sum_j d_j sin(2 pi jk/R). A product of coprime
// factors is numbered so that no turns are needed between its two steps (I. J. Good); any other has constant ones.
#pragma once

#include "transforms/circle_point.h"
#include "transforms/dft/points.h"

#include <iterator>

namespace kels {

/// z exp(-2 pi i k / n).
template <int k, int n, class V>
[[gnu::always_inline]] inline V turned_by(V z) {
    using T = Element<V>;
    if constexpr (k % n == 0) {
        return z;
    } else if constexpr (2 * k % n == 0) {
        return -z;
    } else if constexpr (4 * k % n == 0) {
        constexpr T sine = 4 * k / n % 4 == 1 ? 1 : -1;
        return swapped(z) * alternate<V>(sine, -sine);
    } else {
        constexpr CirclePoint root = circle_point(k, n);
        constexpr T c = static_cast<T>(root.cosine), s = static_cast<T>(root.sine);
        return fma(splat<V>(c), z, swapped(z) * alternate<V>(s, -s));
    }
}

constexpr int inverse_modulo(int a, int n) {
    int b = 1;
    while (a * b % n != 1 % n) ++b;
    return b;
}

/// The factor P of R = P Q that is done first; 1 where the transform is one step.
constexpr int first_factor(int R) {
    return R == 6 || R == 10 || R == 14 ? 2 : R == 9 || R == 15 ? 3 : R == 8 || R == 12 || R == 16 ? 4 : 1;
}

/// The transform of R points, one in each vector, in place.
template <int R, class V>
[[gnu::always_inline]] inline void point_transform(V* x) {
    using T = Element<V>;
    constexpr int P = first_factor(R);
    if constexpr (R == 1) {
        return;
    } else if constexpr (R == 2) {
        const V a = x[0], b = x[1];
        x[0] = a + b;
        x[1] = a - b;
    } else if constexpr (R == 4) {
        const V sum02 = x[0] + x[2], dif02 = x[0] - x[2], sum13 = x[1] + x[3], dif13 = swapped(x[1] - x[3]);
        const V i = alternate<V>(1, -1);
        x[0] = sum02 + sum13;
        x[1] = fma(i, dif13, dif02);
        x[2] = sum02 - sum13;
        x[3] = fma(-i, dif13, dif02);
    } else if constexpr (P == 1) {
        constexpr int h = R / 2;
        V sum[h], dif[h], all = x[0];
        unrolled<h>([&](auto j) KELS_INLINE {
            sum[j] = x[j + 1] + x[R - 1 - j];
            dif[j] = swapped(x[j + 1] - x[R - 1 - j]);
            all = all + sum[j];
        });
        unrolled<h>([&](auto k) KELS_INLINE {
            V even = x[0], odd{};
            unrolled<h>([&](auto j) KELS_INLINE {
                constexpr CirclePoint root = circle_point((j + 1) * (k + 1), R);
                constexpr T c = static_cast<T>(root.cosine), s = static_cast<T>(root.sine);
                even = fma(splat<V>(c), sum[j], even);
                if constexpr (j == 0)
                    odd = alternate<V>(s, -s) * dif[j];
                else
                    odd = fma(alternate<V>(s, -s), dif[j], odd);
            });
            x[k + 1] = even + odd;
            x[R - 1 - k] = even - odd;
        });
        x[0] = all;
    } else {
        constexpr int Q = R / P;
        constexpr bool coprime = P % 2 != Q % 2 || R == 15;
        V y[R];
        unrolled<Q>([&](auto n2) KELS_INLINE {
            V z[P];
            unrolled<P>([&](auto n1) KELS_INLINE { z[n1] = x[(Q * n1 + (coprime ? P : 1) * n2) % R]; });
            point_transform<P>(z);
            unrolled<P>([&](auto k1) KELS_INLINE { y[k1 * Q + n2] = coprime ? z[k1] : turned_by<k1 * n2, R>(z[k1]); });
        });
        unrolled<P>([&](auto k1) KELS_INLINE {
            point_transform<Q>(y + k1 * Q);
            unrolled<Q>([&](auto k2) KELS_INLINE {
                constexpr int k = coprime ? Q * inverse_modulo(Q, P) * k1 + P * inverse_modulo(P, Q) * k2 : k1 + P * k2;
                x[k % R] = y[k1 * Q + k2];
            });
        });
    }
}

/// The radices of passes, and instructions that their transforms take, loads and stores with them.
struct PassRadix {
    int radix, instructions;
};
inline constexpr PassRadix radices[] = {{16, 168}, {15, 153}, {13, 131}, {12, 102}, {11, 101}, {10, 81}, {9, 78},
                                        {8, 60},   {7, 49},   {6, 38},   {5, 30},   {4, 19},   {3, 14},  {2, 7}};
inline constexpr int radix_count = std::size(radices);

/// Calls f with a radix as a constant.
template <class F>
void with_radix(std::ptrdiff_t n, F f) {
    unrolled<radix_count>([&](auto i) {
        if (radices[i].radix == n) f(std::integral_constant<int, radices[i].radix>{});
    });
}

} // namespace kels
