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

/// a b + c d, to two units in the last place. Lanes are marked `outside` where recovered errors may have been out of
/// range: after an overflow on the way, or where result and products are so small that the errors underflow.
template <class V, class Mask>
[[gnu::always_inline]] inline V sum_of_products(V a, V b, V c, V d, Mask& outside) {
    const V q = c * d;
#if defined(__FMA__)
    const V sum = fma(a, b, q) - fma(-c, d, q); // so written, a sum of negative zeros stays one
#else
    const auto product_error = [](V x, V y, V p) KELS_INLINE {
        const V half_width = splat<V>(134217729); // 2^27 + 1: splits a double into two halves
        const V s = half_width * x, t = half_width * y;
        const V xh = s - (s - x), yh = t - (t - y), xl = x - xh, yl = y - yh;
        return xl * yl - (((p - xh * yh) - xl * yh) - xh * yl);
    };
    const V p = a * b, rounded = p + q, error = product_error(a, b, p) + product_error(c, d, q);
    const V sum = error == 0 ? rounded : rounded + error; // a sum of negative zeros stays one
#endif
    const V most = splat<V>(0x1.fffffffffffffp1023), tiny = splat<V>(0x1p-900);
    const V size = sum < 0 ? -sum : sum, product_size = q < 0 ? -q : q;
    outside = outside | (size > most) | (size != size) | ((size < tiny) & (product_size < tiny));
    return sum;
}

/// One element in extended precision; silence needs none.
inline Kel64fc multiply_extended(Kel64fc a, Kel64fc b) {
    if ((a.re == 0 && a.im == 0) || (b.re == 0 && b.im == 0))
        return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    const long double ar = a.re, ai = a.im, br = b.re, bi = b.im;
    return {static_cast<Kel64f>(ar * br - ai * bi), static_cast<Kel64f>(ar * bi + ai * br)};
}

[[gnu::noinline]] inline void multiply_extended(const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int len) {
    for (int i = 0; i < len; ++i) d[i] = multiply_extended(a[i], b[i]);
}

/// `Vectors` vectors of products; one look at the range serves them all.
template <class V, int Vectors>
[[gnu::always_inline]] inline void multiply_block(const Kel64fc* a, const Kel64fc* b, Kel64fc* d) {
    Complex<V> product[Vectors];
    decltype(V{} < V{}) none{};
    auto outside = none | none;
    unrolled<Vectors>([&](auto v) KELS_INLINE {
        const Complex<V> x = load_interleaved<V>(&a[v * lanes<V>].re), y = load_interleaved<V>(&b[v * lanes<V>].re);
        product[v] = {sum_of_products(x.re, y.re, -x.im, y.im, outside),
                      sum_of_products(x.re, y.im, x.im, y.re, outside)};
    });
    if (any_lane(outside)) [[unlikely]]
        multiply_extended(a, b, d, Vectors * lanes<V>);
    else
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
