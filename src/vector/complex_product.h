// The product of complex vectors, each part evaluated without loss and rounded once: near-cancelling parts stay right.
//
//   integers: in an integer wide enough for a part;
//   singles:  the rounding errors of the products and of their sum are recovered and added back; where that leaves the
//             range of singles, in double arithmetic, which holds products of singles exactly;
//   doubles:  the rounding errors of the products are recovered and added back (W. Kahan's difference of products, and
//             T. J. Dekker's exact product where the level has no fused multiply-add); the elements for which that
//             leaves the range of doubles, and only they, in extended precision.
//
// Rounding errors are recovered by rounding to nearest, whatever mode the caller has set. The second factor may be a
// constant, or taken conjugated.
#pragma once

#include "frame/blocks.h"
#include "frame/complex_vector.h"
#include "frame/error_free.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "kels/types.h"
#include "vector/extended_lanes.h"

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
    const RoundedToNearest modes;
    map_blocks<2>(
        reals(d), Index{len} * 2, [](auto x, auto y) KELS_INLINE { return multiply_pairs(x, y); }, reals(a), b);
}

// Doubles. Errors of products are recovered exactly, or as exactly as the smallest numbers allow, unless something
// overflows; Dekker's products must not come near to the smallest numbers either. The quick result is checked as a
// whole, by a test that some good results fail too; then each element by itself.

/// a b + c d, to two units in the last place where nothing is doubtful.
template <class V>
[[gnu::always_inline]] inline V sum_of_products(V a, V b, V c, V d) {
    const V q = c * d;
    if constexpr (fuses<V>) {
        return fma(a, b, q) - fma(-c, d, q); // so written, a sum of negative zeros stays one
    } else {
        const V p = a * b, rounded = p + q, error = product_error(a, b, p) + product_error(c, d, q);
        return error == 0 ? rounded : rounded + error; // a sum of negative zeros stays one
    }
}

/// Lanes whose result may lack recovered errors or a sign, if its products are as small.
template <class V>
[[gnu::always_inline]] inline auto is_unsure(V sum) {
    if constexpr (fuses<V>)
        return as_mask(sum == 0);
    else
        return as_mask(magnitude(sum) < splat<V>(0x1p-900));
}

template <class V>
[[gnu::always_inline]] inline auto is_not_finite(Complex<V> z) {
    return as_mask((z.re - z.re) + (z.im - z.im) != 0);
}

/// Lanes in which a part may be doubtful, as something for `any_lane`.
template <class V>
[[gnu::always_inline]] inline auto suspicious(Complex<V> product) {
    if constexpr (fuses<V>)
        return zero_or_not_finite(product.re * product.im);
    else
        return is_unsure(product.re) | is_unsure(product.im) | is_not_finite(product);
}

/// Lanes in which a part of x y is doubtful. What is the sum of zeros is not, nor what cancels.
template <class V>
[[gnu::always_inline]] inline auto doubtful(Complex<V> x, Complex<V> y, Complex<V> product) {
    const V tiny = splat<V>(0x1p-900);
    const auto xr = as_mask(x.re == 0), xi = as_mask(x.im == 0), yr = as_mask(y.re == 0), yi = as_mask(y.im == 0);
    const auto small_re = as_mask(magnitude(x.im * y.im) < tiny), small_im = as_mask(magnitude(x.im * y.re) < tiny);
    const auto re = is_unsure(product.re) & small_re & ~((xr | yr) & (xi | yi));
    const auto im = is_unsure(product.im) & small_im & ~((xr | yi) & (xi | yr));
    return re | im | is_not_finite(product);
}

inline Complex<Kel64f> multiply_extended(Complex<Kel64f> a, Complex<Kel64f> b) {
    return {static_cast<Kel64f>(extended_products(a.re, b.re, -a.im, b.im)),
            static_cast<Kel64f>(extended_products(a.re, b.im, a.im, b.re))};
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

template <class V>
[[gnu::always_inline]] inline Complex<V> quick_product(Complex<V> x, Complex<V> y) {
    return {sum_of_products(x.re, y.re, -x.im, y.im), sum_of_products(x.re, y.im, x.im, y.re)};
}

/// A vector of products from element i on, the doubtful ones in extended precision.
template <class V, class B>
[[gnu::noinline]] void multiply_carefully(const Kel64fc* a, B b, Kel64fc* d, int i) {
    const Complex<V> x = load_interleaved<V>(&a[i].re), y = elements<V>(b, i), product = quick_product(x, y);
    store_interleaved<V>(&d[i].re, with_extended_lanes(product, doubtful(x, y, product), multiply_extended, x, y));
}

/// `Vectors` vectors of products from element i on; one look serves them all.
template <class V, int Vectors, class B>
[[gnu::always_inline]] inline void multiply_block(const Kel64fc* a, const B& b, Kel64fc* d, int i) {
    const auto first = [&](int v) KELS_INLINE { return load_interleaved<V>(&a[i + v * lanes<V>].re); };
    const auto second = [&](int v) KELS_INLINE { return elements<V>(b, i + v * lanes<V>); };
    Complex<V> product[Vectors];
    decltype(suspicious(product[0])) suspects{};
    unrolled<Vectors>([&](auto v) KELS_INLINE {
        product[v] = quick_product(first(v), second(v));
        suspects = suspects | suspicious(product[v]);
    });
    if (any_lane(suspects)) [[unlikely]] {
        decltype(doubtful(product[0], product[0], product[0])) doubts{};
        unrolled<Vectors>([&](auto v) KELS_INLINE { doubts = doubts | doubtful(first(v), second(v), product[v]); });
        if (any_lane(doubts)) {
            for (int v = 0; v < Vectors; ++v) multiply_carefully<V>(a, b, d, i + v * lanes<V>);
            return;
        }
    }
    unrolled<Vectors>([&](auto v) KELS_INLINE { store_interleaved<V>(&d[i + v * lanes<V>].re, product[v]); });
}

template <class B>
void multiply_complex_by(const Kel64fc* a, B b, Kel64fc* d, int len) {
    using V = Vec<Kel64f>;
    const RoundedToNearest modes;
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
    const RoundedToNearest modes;
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
