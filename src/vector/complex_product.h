// The product of complex vectors, each part evaluated without loss and rounded once: near-cancelling parts stay right.
//
//   singles: products of two singles are exact in double arithmetic, and one rounding of the difference is far below a
//            single's last bit;
//   doubles: the rounding errors of the products are recovered and added back (W. Kahan's difference of products; T. J.
//            Dekker's exact product where the level has no fused multiply-add). Where that leaves the range of doubles
//            the elements around are evaluated again in extended precision.
#pragma once

#include "frame/complex_vector.h"
#include "frame/loop.h"
#include "kels/types.h"

namespace kels {

inline void multiply_complex(const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int len) {
    each(len, [=](auto i) {
        const Kel64f ar = a[i].re, ai = a[i].im, br = b[i].re, bi = b[i].im;
        d[i] = {static_cast<Kel32f>(ar * br - ai * bi), static_cast<Kel32f>(ar * bi + ai * br)};
    });
}

/// a b + c d, to two units in the last place unless a product leaves the range.
template <class V>
[[gnu::always_inline]] inline V sum_of_products(V a, V b, V c, V d) {
#if defined(__FMA__)
    const V w = c * d;
    return fma(a, b, w) + fma(c, d, -w);
#else
    const auto product_error = [](V x, V y, V p) KELS_INLINE {
        const V half_width = splat<V>(134217729); // 2^27 + 1: splits a double into two halves
        const V s = half_width * x, t = half_width * y;
        const V xh = s - (s - x), yh = t - (t - y), xl = x - xh, yl = y - yh;
        return xl * yl - (((p - xh * yh) - xl * yh) - xh * yl);
    };
    const V p = a * b, q = c * d;
    return (p + q) + (product_error(a, b, p) + product_error(c, d, q));
#endif
}

/// Lanes whose recovered errors may have been out of range: overflow on the way, or products so small that their halves
/// underflow.
template <class V>
[[gnu::always_inline]] inline auto out_of_range(V x) {
    const V size = x < 0 ? -x : x;
    const V most = splat<V>(0x1.fffffffffffffp1023), tiny = splat<V>(0x1p-900);
    return (size > most) | (size != size) | ((size < tiny) & (size != 0));
}

[[gnu::noinline]] inline Kel64fc multiply_extended(Kel64fc a, Kel64fc b) {
    const long double ar = a.re, ai = a.im, br = b.re, bi = b.im;
    return {static_cast<Kel64f>(ar * br - ai * bi), static_cast<Kel64f>(ar * bi + ai * br)};
}

/// `Vectors` vectors of products; one look at the range serves them all.
template <class V, int Vectors>
[[gnu::always_inline]] inline void multiply_block(const Kel64fc* a, const Kel64fc* b, Kel64fc* d) {
    Complex<V> product[Vectors];
    decltype(out_of_range(V{})) outside{};
    unrolled<Vectors>([&](auto v) KELS_INLINE {
        const Complex<V> x = load_interleaved<V>(&a[v * lanes<V>].re), y = load_interleaved<V>(&b[v * lanes<V>].re);
        product[v] = {sum_of_products(x.re, y.re, -x.im, y.im), sum_of_products(x.re, y.im, x.im, y.re)};
        outside = outside | out_of_range(product[v].re) | out_of_range(product[v].im);
    });
    if (any_lane(outside)) [[unlikely]] {
        for (int i = 0; i < Vectors * lanes<V>; ++i) d[i] = multiply_extended(a[i], b[i]);
        return;
    }
    unrolled<Vectors>([&](auto v) KELS_INLINE { store_interleaved<V>(&d[v * lanes<V>].re, product[v]); });
}

inline void multiply_complex(const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int len) {
    using V = Vec<Kel64f>;
    int i = 0;
    for (; i + 4 * lanes<V> <= len; i += 4 * lanes<V>) multiply_block<V, 4>(a + i, b + i, d + i);
    for (; i + lanes<V> <= len; i += lanes<V>) multiply_block<V, 1>(a + i, b + i, d + i);
    for (; i < len; ++i) multiply_block<Kel64f, 1>(a + i, b + i, d + i);
}

} // namespace kels
