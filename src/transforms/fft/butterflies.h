// The short transforms that every length is built from: 2, 4, 8 and 16 points, forward, natural order in and out, over
// one complex vector per point.
#pragma once

#include "frame/complex_vector.h"

namespace kels {

/// -i z.
template <class V>
[[gnu::always_inline]] inline Complex<V> times_minus_i(Complex<V> z) {
    return {z.im, -z.re};
}

/// z exp(-i a), with c and s the cosine and sine of a.
template <class V>
[[gnu::always_inline]] inline Complex<V> turned(Complex<V> z, V c, V s) {
    return {fma(s, z.im, c * z.re), fma(-s, z.re, c * z.im)};
}

/// Calls f(k) for every result of a butterfly, those that it finishes together one behind the other, so that few are on
/// the way at a time: what else is done to a result and its store belong into one such call.
template <int R, class F>
[[gnu::always_inline]] inline void each_result(F&& f) {
    unrolled<R>([&](auto i) KELS_INLINE {
        constexpr int k = R == 16 ? i / 4 + 4 * (i % 4) : i;
        f(std::integral_constant<int, k>{});
    });
}

/// z exp(-2 pi i m / 16), for the products m of two digits.
template <int m, class V>
[[gnu::always_inline]] inline Complex<V> turned_16(Complex<V> z) {
    using T = Element<V>;
    const V c = splat<V>(T(0.92387953251128675613L)), s = splat<V>(T(0.38268343236508977173L)); // of pi / 8
    const V h = splat<V>(T(0.70710678118654752440L));
    if constexpr (m == 1)
        return turned(z, c, s);
    else if constexpr (m == 2)
        return {h * (z.re + z.im), h * (z.im - z.re)};
    else if constexpr (m == 3)
        return turned(z, s, c);
    else if constexpr (m == 9)
        return turned(z, -c, -s);
    else if constexpr (m >= 4)
        return times_minus_i(turned_16<m - 4>(z));
    else
        return z;
}

/// The transform of R points, in place.
template <int R, class V>
[[gnu::always_inline]] inline void butterfly(Complex<V>* x) {
    using T = Element<V>;
    if constexpr (R == 2) {
        const Complex<V> a = x[0], b = x[1];
        x[0] = a + b;
        x[1] = a - b;
    } else if constexpr (R == 4) {
        const Complex<V> sum02 = x[0] + x[2], dif02 = x[0] - x[2], sum13 = x[1] + x[3], dif13 = x[1] - x[3];
        x[0] = sum02 + sum13;
        x[1] = {dif02.re + dif13.im, dif02.im - dif13.re};
        x[2] = sum02 - sum13;
        x[3] = {dif02.re - dif13.im, dif02.im + dif13.re};
    } else if constexpr (R == 8) {
        Complex<V> even[4] = {x[0], x[2], x[4], x[6]}, odd[4] = {x[1], x[3], x[5], x[7]};
        butterfly<4>(even);
        butterfly<4>(odd);
        const V h = splat<V>(T(0.70710678118654752440L)); // cos(pi / 4)
        // odd[1] exp(-i pi / 4) and odd[3] exp(-3 i pi / 4), with the factor h left to the sums
        const Complex<V> p = {odd[1].re + odd[1].im, odd[1].im - odd[1].re};
        const Complex<V> q = {odd[3].im - odd[3].re, -(odd[3].re + odd[3].im)};
        x[0] = even[0] + odd[0];
        x[4] = even[0] - odd[0];
        x[1] = {fma(h, p.re, even[1].re), fma(h, p.im, even[1].im)};
        x[5] = {fma(-h, p.re, even[1].re), fma(-h, p.im, even[1].im)};
        x[2] = {even[2].re + odd[2].im, even[2].im - odd[2].re};
        x[6] = {even[2].re - odd[2].im, even[2].im + odd[2].re};
        x[3] = {fma(h, q.re, even[3].re), fma(h, q.im, even[3].im)};
        x[7] = {fma(-h, q.re, even[3].re), fma(-h, q.im, even[3].im)};
    } else if constexpr (R == 16) {
        // Four transforms of four, a turn by exp(-2 pi i j k / 16), and four transforms of four across.
        unrolled<4>([&](auto j) KELS_INLINE {
            Complex<V> y[4] = {x[j], x[j + 4], x[j + 8], x[j + 12]};
            butterfly<4>(y);
            unrolled<4>([&](auto k) KELS_INLINE { x[j + 4 * k] = turned_16<j * k>(y[k]); });
        });
        Complex<V> z[16];
        unrolled<4>([&](auto k) KELS_INLINE {
            Complex<V> y[4] = {x[4 * k], x[4 * k + 1], x[4 * k + 2], x[4 * k + 3]};
            butterfly<4>(y);
            unrolled<4>([&](auto i) KELS_INLINE { z[k + 4 * i] = y[i]; });
        });
        unrolled<16>([&](auto k) KELS_INLINE { x[k] = z[k]; });
    } else {
        static_assert(R == 1);
    }
}

} // namespace kels
