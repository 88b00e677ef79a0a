// The product of complex vectors, each part evaluated without loss and rounded once: near-cancelling parts stay right.
//
//   integers: in an integer wide enough for a part;
//   singles:  the rounding errors of the products and of their sum are recovered and added back; where that leaves the
//             range of singles, in double arithmetic, which holds products of singles exactly;
//   doubles:  the rounding errors of the products are recovered and added back (W. Kahan's difference of products, and
//             T. J. Dekker's exact product where the level has no fused multiply-add); where that leaves the range of
//             doubles, in extended precision, and the elements around with it.
//
// The second factor may be a constant, or taken conjugated.
#pragma once

#include "frame/blocks.h"
#include "frame/complex_vector.h"
#include "frame/error_free.h"
#include "frame/numeric.h"
#include "kels/types.h"

#include <limits>
#include <type_traits>

namespace kels {

// Complex numbers in pairs of lanes: x y = (x_re y_re - x_im y_im, x_im y_re + x_re y_im), the factors of the second
// products being `swapped(x)` and `imaginary(y)`.

template <class V>
[[gnu::always_inline]] inline V real(V x) {
    return shuffle<[](int i) { return i & ~1; }>(x, x);
}
template <class V>
[[gnu::always_inline]] inline V imaginary(V x) {
    return shuffle<[](int i) { return i | 1; }>(x, x);
}

/// In integers that hold a part of the product, all but one: the imaginary part of four extremes is too large by one.
/// It wraps to what no product is, and becomes the largest value.
template <class V>
requires std::is_integral_v<Element<V>>
[[gnu::always_inline]] inline V multiply_pairs(V x, V y) {
    using Limits = std::numeric_limits<Element<V>>;
    using UV = Vec<std::make_unsigned_t<Element<V>>, lanes<V>>;
    const V t = (V)add_alternating((UV)x * (UV)real(y), (UV)swapped(x) * (UV)imaginary(y));
    return t == splat<V>(Limits::min()) ? splat<V>(Limits::max()) : t;
}

/// In double arithmetic, which holds products of singles exactly: one rounding.
template <class V>
requires std::is_same_v<Element<V>, Kel64f>
[[gnu::always_inline]] inline V multiply_pairs(V x, V y) {
    return fma_alternating(x, real(y), swapped(x) * imaginary(y));
}

// Singles. The sum of the rounded products p and q falls apart into of_p + of_q without error (D. E. Knuth's two-sum).
// What each exact product has beyond its share is far below the sum, and is rounded once and added back. The result is
// within a unit in the last place down to the smallest number; what the mechanism loses is the sign of a zero, and the
// value where something overflows.

/// The lanes of the quick product that can be trusted, the others evaluated in double arithmetic.
template <class V>
[[gnu::noinline]] V multiply_pairs_carefully(V x, V y, V quick) {
    const V careful = convert<Kel32f>(multiply_pairs(convert<Kel64f>(x), convert<Kel64f>(y)));
    const auto lost = (quick + quick == quick) | (quick != quick); // zeros, infinities, NaNs
    return lost ? careful : quick;
}

/// What exact products have beyond their shares of the sum, added up.
template <class V>
[[gnu::always_inline]] inline V beyond_shares(V x, V y, V of_p, V of_q) {
    if constexpr (fuses<V>) {
        return add_alternating(fma(x, real(y), -of_p), fma_alternating(swapped(x), imaginary(y), -of_q));
    } else {
        // Differences of exact products and shares fit doubles: they cancel, or one is nothing beside the other.
        const auto a = convert<Kel64f>(x), b = convert<Kel64f>(y);
        const auto p = a * real(b), q = swapped(a) * imaginary(b);
        return convert<Kel32f>(p - convert<Kel64f>(of_p)) + convert<Kel32f>(add_alternating(-convert<Kel64f>(of_q), q));
    }
}

template <class V>
requires std::is_same_v<Element<V>, Kel32f>
[[gnu::always_inline]] inline V multiply_pairs(V x, V y) {
    const V p = x * real(y), q = swapped(x) * imaginary(y);
    const V sum = add_alternating(p, q);
    const V of_q = sum - p, of_p = sum - of_q;
    const V product = sum + beyond_shares(x, y, of_p, of_q);
    if (any_lane(zero_or_not_finite(product))) [[unlikely]]
        return multiply_pairs_carefully(x, y, product);
    return product;
}

/// The second factor as an array of parts or a Constant of two.
template <class B>
void multiply_complex_by(const Kel32fc* a, B b, Kel32fc* d, int len) {
    map_blocks<2>(
        reals(d), Index{len} * 2, [](auto x, auto y) KELS_INLINE { return multiply_pairs(x, y); }, reals(a), b);
}

/// a b + c d, to two units in the last place. Lanes are marked `outside` where recovered errors may have been out of
/// range: after an overflow on the way, or where result and products are so small that the errors underflow.
template <class V, class Mask>
[[gnu::always_inline]] inline V sum_of_products(V a, V b, V c, V d, Mask& outside) {
    const V q = c * d;
#if defined(__FMA__)
    const V sum = fma(a, b, q) - fma(-c, d, q); // so written, a sum of negative zeros stays one
#else
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

/// A vector whose elements are taken conjugated.
struct Conjugated {
    const Kel64f* of;
};

/// Elements i, i + 1, ... of a factor: an array of parts, taken conjugated or not, or a constant.
template <class V>
[[gnu::always_inline]] inline Complex<V> elements(const Element<V>* b, Index i) {
    return load_interleaved<V>(b + 2 * i);
}
template <class V>
[[gnu::always_inline]] inline Complex<V> elements(Conjugated b, Index i) {
    const Complex<V> z = load_interleaved<V>(b.of + 2 * i);
    return {z.re, -z.im};
}
template <class V>
[[gnu::always_inline]] inline Complex<V> elements(const Constant<Element<V>, 2>& b, Index) {
    return {splat<V>(b.value[0]), splat<V>(b.value[1])};
}

template <class B>
[[gnu::noinline]] void multiply_extended(const Kel64fc* a, B b, Kel64fc* d, int from, int to) {
    for (int i = from; i < to; ++i) {
        const Complex<Kel64f> y = elements<Kel64f>(b, i);
        d[i] = multiply_extended(a[i], {y.re, y.im});
    }
}

/// `Vectors` vectors of products from element i on; one look at the range serves them all.
template <class V, int Vectors, class B>
[[gnu::always_inline]] inline void multiply_block(const Kel64fc* a, const B& b, Kel64fc* d, int i) {
    Complex<V> product[Vectors];
    decltype(V{} < V{}) none{};
    auto outside = none | none;
    unrolled<Vectors>([&](auto v) KELS_INLINE {
        const int at = i + v * lanes<V>;
        const Complex<V> x = load_interleaved<V>(&a[at].re), y = elements<V>(b, at);
        product[v] = {sum_of_products(x.re, y.re, -x.im, y.im, outside),
                      sum_of_products(x.re, y.im, x.im, y.re, outside)};
    });
    if (any_lane(outside)) [[unlikely]]
        multiply_extended(a, b, d, i, i + Vectors * lanes<V>);
    else
        unrolled<Vectors>([&](auto v) KELS_INLINE { store_interleaved<V>(&d[i + v * lanes<V>].re, product[v]); });
}

template <class B>
void multiply_complex_by(const Kel64fc* a, B b, Kel64fc* d, int len) {
    using V = Vec<Kel64f>;
    int i = 0;
    for (; i + 4 * lanes<V> <= len; i += 4 * lanes<V>) multiply_block<V, 4>(a, b, d, i);
    for (; i + lanes<V> <= len; i += lanes<V>) multiply_block<V, 1>(a, b, d, i);
    for (; i < len; ++i) multiply_block<Kel64f, 1>(a, b, d, i);
}

inline void multiply_complex(const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int len) {
    multiply_complex_by(a, reals(b), d, len);
}
inline void multiply_complex(const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int len) {
    multiply_complex_by(a, reals(b), d, len);
}

/// d = a conj(b).
inline void multiply_by_conjugate(const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int len) {
    map_blocks<2>(
        reals(d), Index{len} * 2,
        [](auto x, auto y) KELS_INLINE {
            const auto conjugate = shuffle<[](int i) { return i % 2 == 0 ? i : lanes<decltype(y)> + i; }>(y, -y);
            return multiply_pairs(x, conjugate);
        },
        reals(a), reals(b));
}
inline void multiply_by_conjugate(const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int len) {
    multiply_complex_by(a, Conjugated{reals(b)}, d, len);
}

} // namespace kels
