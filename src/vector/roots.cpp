// Squares, square roots and cube roots, element by element.
//
//   squares:        products of an element with itself, where the product of two vectors says it all;
//   integer roots:  by a root in real arithmetic that is too fine to miss a tie or to make one: the square of a half is
//                   an integer and a quarter, so that a root lies no closer to a half than an eighth of its reciprocal;
//                   64 bits need more (long_root.h);
//   complex roots:  complex_root.h;
//   cube roots:     a rational function, in double arithmetic.

#include "kels/roots.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/expanded.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/scale.h"
#include "kels/arithmetic.h"
#include "vector/complex_lanes.h"
#include "vector/complex_product.h"
#include "vector/complex_root.h"
#include "vector/extended_lanes.h"
#include "vector/integers_by_reals.h"
#include "vector/long_root.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

KelStatus warning_if(bool negative_met) { return negative_met ? kelStatusSqrtNegArg : kelStatusOk; }

// Squares

KelStatus square(const Kel16u* src, Kel16u* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        constexpr int bits = 32;
        const auto squares = [](auto x) KELS_INLINE {
            const auto wide = convert<Kel32u>(x);
            return wide * wide;
        };
        if (factor == bits) // one shift too far: no square is a half, and the upper ones come to 1
            map_blocks(
                dst, len, [=](auto x) KELS_INLINE { return convert<Kel16u>(squares(x) >> (bits - 1)); }, src);
        else
            with_scale<Kel16u, bits>(factor, [=](auto scale) {
                map_blocks(
                    dst, len, [=](auto x) KELS_INLINE { return scale(squares(x)); }, src);
            });
    });
}

template <class V>
[[gnu::always_inline]] inline Complex<V> plain_square(Complex<V> z) {
    return {(z.re + z.im) * (z.re - z.im), (z.re + z.re) * z.im};
}

/// One square in extended precision.
Complex<Kel64f> extended_square(Complex<Kel64f> z) {
    const long double a = z.re, b = z.im;
    return {static_cast<Kel64f>((a + b) * (a - b)), static_cast<Kel64f>(2 * a * b)};
}

/// The rounding errors of sum, difference and product are added back, where they are in range.
template <class V>
[[gnu::always_inline]] inline Complex<V> corrected_square(Complex<V> z) {
    const V sum = z.re + z.im, difference = z.re - z.im, product = sum * difference;
    const V error = product_error(sum, difference, product) +
                    (sum * sum_error(z.re, -z.im, difference) + sum_error(z.re, z.im, sum) * difference);
    const V re = error == 0 ? product : product + error, im = (z.re + z.re) * z.im;
    const auto not_finite = (re - re) + (im - im) != 0;
    const auto doubtful = is_small(z.re) | is_small(z.im) | not_finite;
    if (any_lane(doubtful)) [[unlikely]]
        return with_extended_lanes(Complex<V>{re, im}, doubtful, extended_square, z);
    return {re, im};
}

KelStatus square(const Kel32fc* src, Kel32fc* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        map_complex(src, dst, len, [](auto z) KELS_INLINE { return to_parts<Kel32f>(plain_square(to_doubles(z))); });
    });
}
KelStatus square(const Kel64fc* src, Kel64fc* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const RoundedToNearest modes;
        map_complex(src, dst, len, [](auto z) KELS_INLINE { return corrected_square(z); });
    });
}

// Square roots of real and complex numbers

template <class T>
KelStatus root(const T* src, T* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        bool negative_met = false;
        const auto roots = [&negative_met](auto x) KELS_INLINE {
            negative_met |= any_lane(x < 0);
            return square_root(x);
        };
        map_blocks(dst, len, roots, src);
        return warning_if(negative_met);
    });
}

KelStatus root(const Kel32fc* src, Kel32fc* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        map_complex(src, dst, len, [](auto z) KELS_INLINE { return to_parts<Kel32f>(plain_root(to_doubles(z))); });
    });
}

KelStatus root(const Kel64fc* src, Kel64fc* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const RoundedToNearest modes;
        map_complex(src, dst, len, [](auto z) KELS_INLINE { return expanded_root(z); });
    });
}

// Square roots of integers

/// Of numbers that are not negative, by the root in Work: singles will do for factors that divide, and for bytes.
template <class T, class Work, class V>
[[gnu::always_inline]] inline V root_by(V x, Work power) {
    return to_nearest<T>(square_root(convert<Work>(convert<int>(x))) * power);
}

/// The same for a power that multiplies, in singles. The root of a large number may be on the wrong side of a half: the
/// number, itself times the power's square and still exact, is held against the square of the half.
template <class T, class V>
[[gnu::always_inline]] inline V enlarged_root(V x, Kel32f power) {
    const auto number = convert<Kel32f>(convert<int>(x)) * (power * power), root = square_root(number);
    using R = std::remove_const_t<decltype(root)>;
    const R limit = splat<R>(std::numeric_limits<T>::max());
    const auto whole = to_integer<true>(root < limit ? root : limit);
    const R below = convert<Kel32f>(whole), rest = fma(-below, below, number);
    return saturate<T>(rest > below ? whole + 1 : whole);
}

/// f gives the roots of a vector without negative numbers, which become 0. Gives whether there were any.
template <class T, class F>
bool map_roots(const T* src, T* dst, Index n, const F& f) {
    bool negative_met = false;
    const auto roots = [&negative_met, f](auto x) KELS_INLINE {
        negative_met |= any_lane(x < 0);
        return f(x < 0 ? decltype(x){} : x);
    };
    map_blocks(dst, n, roots, src);
    return negative_met;
}

template <class T>
KelStatus root(const T* src, T* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(!nearest_in_any_mode);
        const Kel32f power = real_scale<Kel32f>(std::max(factor, -digits<T>)); // by which all but 0 saturates
        if (sizeof(T) == 1 || factor >= 0)
            return warning_if(map_roots(src, dst, len, [=](auto x) KELS_INLINE { return root_by<T>(x, power); }));
        return warning_if(map_roots(src, dst, len, [=](auto x) KELS_INLINE {
            if constexpr (fuses<Vec<Kel32f, lanes<decltype(x)>>>)
                return enlarged_root<T>(x, power);
            else
                return root_by<T>(x, Kel64f{power});
        }));
    });
}

KelStatus root(const Kel64s* src, Kel64s* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        return warning_if(map_roots(src, dst, len, [=](auto x) KELS_INLINE {
            return factor < 0 ? long_root_up(x, -std::max(factor, -INT_MAX)) : long_root_down(x, factor);
        }));
    });
}

/// The integer roots of (m + a) / 2 and (m - a) / 2, m being the modulus as an integer.
template <bool Truncated, class V>
[[gnu::always_inline]] inline V root_by_modulus(V z, Kel32f power) {
    const auto modulus = to_integer<Truncated>(square_root(squared_modulus(z)));
    const auto a = convert<int>(even_lanes(z)), b = convert<int>(even_lanes(swapped(z)));
    const auto part = [=](auto twice) KELS_INLINE {
        return convert<int>(to_nearest<Kel16s>(square_root(convert<Kel32f>(twice) * 0.5F) * power));
    };
    const auto im = part(modulus - a);
    return zip(convert<Kel16s>(part(modulus + a)), convert<Kel16s>(b < 0 ? -im : im));
}

template <class V>
[[gnu::always_inline]] inline V root_by_formula(V z, Kel64f power) {
    const auto a = convert<int>(even_lanes(z)), b = convert<int>(even_lanes(swapped(z)));
    const auto w = plain_root(to_doubles(Complex<decltype(a + a)>{a, b}));
    return zip(to_nearest<Kel16s>(w.re * power), to_nearest<Kel16s>(w.im * power));
}

KelStatus root(const Kel16sc* src, Kel16sc* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(!nearest_in_any_mode);
        const auto each_root = [=](const auto& root_of) {
            map_blocks<2>(reals(dst), Index{len} * 2, root_of, reals(src));
        };
        const Kel32f power = real_scale<Kel32f>(factor);
        if (factor < 0)
            each_root([=](auto z) KELS_INLINE { return root_by_formula(z, Kel64f{power}); });
        else if (factor == 0)
            each_root([=](auto z) KELS_INLINE { return root_by_modulus<false>(z, power); });
        else
            each_root([=](auto z) KELS_INLINE { return root_by_modulus<true>(z, power); });
    });
}

// Cube roots

/// The cube root of a magnitude, not 0: it is scaled by a power of 8 into the range of the rational function, and the
/// root back. Products and sums are rounded apart, at every level.
template <class V>
[[gnu::always_inline]] inline V cube_root(V magnitude) {
    using Bits = Vec<Kel64s, lanes<V>>;
    constexpr int fraction = 52, half = 1022; // the exponent of numbers from 1/2 on
    const Bits bits = bits_as<Bits>(magnitude);
    const auto exponent = convert<int>(bits >> splat<Bits>(fraction)) - half;
    constexpr int offset = 64, third = 683, third_shift = 11; // 683 / 2048 is near enough
    const auto thirds = (((exponent + (2 + 3 * offset)) * third) >> third_shift) - offset;
    const Bits power = convert<Kel64s>(thirds) << splat<Bits>(fraction);
    const V m = bits_as<V>(bits - (power + power + power));
    const V n = m * (((45.2548339756803 * m + 192.2798368355061) * m + 119.16548242855816) * m + 13.432501390862399) +
                0.16361612265857542;
    const V d =
        (((14.808840932191346 * m + 151.97140510444356) * m + 168.52544141015682) * m + 33.99059413502156) * m + 1;
    return bits_as<V>(bits_as<Bits>(n / d) + power);
}

KelStatus cube_root(const Kel32f* src, Kel32f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const auto roots = [](auto x) KELS_INLINE {
            using V = decltype(x);
            const V size = magnitude(x);
            const V root = convert<Kel32f>(cube_root(convert<Kel64f>(size)));
            const V normal = size > std::numeric_limits<Kel32f>::min() ? (x < 0 ? -root : root) : V{};
            return (x - x == 0) ? normal : x; // infinities and NaNs
        };
        map_blocks(dst, len, roots, src);
    });
}

KelStatus cube_root(const Kel32s* src, Kel16s* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        const auto roots = [power = real_scale<Kel64f>(factor)](auto x) KELS_INLINE {
            const auto real = convert<Kel64f>(x);
            using V = std::remove_const_t<decltype(real)>;
            const V size = real < 0 ? -real : real;
            const V rounded = cube_root(size) * power + 0.5, limit = splat<V>(32768);
            const V limited = rounded < limit ? rounded : limit;
            const auto root = to_integer<true>(limited);
            const auto signed_root = x < 0 ? -root : root;
            return saturate<Kel16s>(x == 0 ? x : signed_root);
        };
        map_blocks(dst, len, roots, src);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsSqr_8u_Sfs   (const Kel8u* a, Kel8u* d, int n, int s)     { return kelsMul_8u_Sfs(a, a, d, n, s); }
KelStatus kelsSqr_8u_ISfs  (Kel8u* d, int n, int s)                     { return kelsMul_8u_Sfs(d, d, d, n, s); }
KelStatus kelsSqr_16u_Sfs  (const Kel16u* a, Kel16u* d, int n, int s)   { return square(a, d, n, s); }
KelStatus kelsSqr_16u_ISfs (Kel16u* d, int n, int s)                    { return square(d, d, n, s); }
KelStatus kelsSqr_16s_Sfs  (const Kel16s* a, Kel16s* d, int n, int s)   { return kelsMul_16s_Sfs(a, a, d, n, s); }
KelStatus kelsSqr_16s_ISfs (Kel16s* d, int n, int s)                    { return kelsMul_16s_Sfs(d, d, d, n, s); }
KelStatus kelsSqr_16sc_Sfs (const Kel16sc* a, Kel16sc* d, int n, int s) { return kelsMul_16sc_Sfs(a, a, d, n, s); }
KelStatus kelsSqr_16sc_ISfs(Kel16sc* d, int n, int s)                   { return kelsMul_16sc_Sfs(d, d, d, n, s); }
KelStatus kelsSqr_32f      (const Kel32f* a, Kel32f* d, int n)          { return kelsMul_32f(a, a, d, n); }
KelStatus kelsSqr_32f_I    (Kel32f* d, int n)                           { return kelsMul_32f(d, d, d, n); }
KelStatus kelsSqr_32fc     (const Kel32fc* a, Kel32fc* d, int n)        { return square(a, d, n); }
KelStatus kelsSqr_32fc_I   (Kel32fc* d, int n)                          { return square(d, d, n); }
KelStatus kelsSqr_64f      (const Kel64f* a, Kel64f* d, int n)          { return kelsMul_64f(a, a, d, n); }
KelStatus kelsSqr_64f_I    (Kel64f* d, int n)                           { return kelsMul_64f(d, d, d, n); }
KelStatus kelsSqr_64fc     (const Kel64fc* a, Kel64fc* d, int n)        { return square(a, d, n); }
KelStatus kelsSqr_64fc_I   (Kel64fc* d, int n)                          { return square(d, d, n); }

KelStatus kelsSqrt_8u_Sfs   (const Kel8u* a, Kel8u* d, int n, int s)     { return root(a, d, n, s); }
KelStatus kelsSqrt_8u_ISfs  (Kel8u* d, int n, int s)                     { return root(d, d, n, s); }
KelStatus kelsSqrt_16u_Sfs  (const Kel16u* a, Kel16u* d, int n, int s)   { return root(a, d, n, s); }
KelStatus kelsSqrt_16u_ISfs (Kel16u* d, int n, int s)                    { return root(d, d, n, s); }
KelStatus kelsSqrt_16s_Sfs  (const Kel16s* a, Kel16s* d, int n, int s)   { return root(a, d, n, s); }
KelStatus kelsSqrt_16s_ISfs (Kel16s* d, int n, int s)                    { return root(d, d, n, s); }
KelStatus kelsSqrt_16sc_Sfs (const Kel16sc* a, Kel16sc* d, int n, int s) { return root(a, d, n, s); }
KelStatus kelsSqrt_16sc_ISfs(Kel16sc* d, int n, int s)                   { return root(d, d, n, s); }
KelStatus kelsSqrt_64s_Sfs  (const Kel64s* a, Kel64s* d, int n, int s)   { return root(a, d, n, s); }
KelStatus kelsSqrt_64s_ISfs (Kel64s* d, int n, int s)                    { return root(d, d, n, s); }
KelStatus kelsSqrt_32f      (const Kel32f* a, Kel32f* d, int n)          { return root(a, d, n); }
KelStatus kelsSqrt_32f_I    (Kel32f* d, int n)                           { return root(d, d, n); }
KelStatus kelsSqrt_32fc     (const Kel32fc* a, Kel32fc* d, int n)        { return root(a, d, n); }
KelStatus kelsSqrt_32fc_I   (Kel32fc* d, int n)                          { return root(d, d, n); }
KelStatus kelsSqrt_64f      (const Kel64f* a, Kel64f* d, int n)          { return root(a, d, n); }
KelStatus kelsSqrt_64f_I    (Kel64f* d, int n)                           { return root(d, d, n); }
KelStatus kelsSqrt_64fc     (const Kel64fc* a, Kel64fc* d, int n)        { return root(a, d, n); }
KelStatus kelsSqrt_64fc_I   (Kel64fc* d, int n)                          { return root(d, d, n); }

KelStatus kelsCubrt_32f       (const Kel32f* a, Kel32f* d, int n)        { return cube_root(a, d, n); }
KelStatus kelsCubrt_32s16s_Sfs(const Kel32s* a, Kel16s* d, int n, int s) { return cube_root(a, d, n, s); }
}
// clang-format on
