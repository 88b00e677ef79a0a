// The quotient of complex vectors, b / a = b conj(a) / |a|^2, by one reciprocal an element.
//
//   singles: in double arithmetic, which holds products of singles exactly;
//   doubles: the parts of b conj(a) and |a|^2 are sums of two doubles, and the remainder of the division is added back;
//            where that leaves the range of doubles, in extended precision.
//
// The divisor may be a constant.
#pragma once

#include "frame/blocks.h"
#include "frame/complex_vector.h"
#include "frame/expanded.h"
#include "kels/services.h"
#include "vector/complex_product.h"
#include "vector/division_groups.h"
#include "vector/extended_lanes.h"

#include <algorithm>
#include <type_traits>

namespace kels {

/// Quotients, and whether one of them needs another look.
template <class V>
struct Quotients {
    Complex<V> value;
    bool doubtful;
};

template <class V>
requires std::is_same_v<Element<V>, Kel32f>
[[gnu::always_inline]] inline Quotients<V> divide_lanes(Complex<V> b, Complex<V> a) {
    const auto ar = convert<Kel64f>(a.re), ai = convert<Kel64f>(a.im);
    const auto br = convert<Kel64f>(b.re), bi = convert<Kel64f>(b.im);
    const auto size = fma(ar, ar, ai * ai), reciprocal = 1 / size;
    const auto re = fma(br, ar, bi * ai) * reciprocal, im = fma(bi, ar, -(ai * br)) * reciprocal;
    return {{convert<Kel32f>(re), convert<Kel32f>(im)}, any_lane(zero_or_not_finite(size))};
}

// Doubles

template <class V>
requires std::is_same_v<Element<V>, Kel64f>
[[gnu::always_inline]] inline Quotients<V> divide_lanes(Complex<V> b, Complex<V> a) {
    const Expanded<V> size = two_squares(a.re, a.im);
    const V reciprocal = 1 / size.high;
    const V re = divide(two_products(b.re, a.re, b.im, a.im), size, reciprocal);
    const V im = divide(two_products(b.im, a.re, -a.im, b.re), size, reciprocal);
    const auto small = is_small(a.re) | is_small(a.im) | is_small(b.re) | is_small(b.im);
    const auto not_finite = (re - re) + (im - im) != 0;
    return {{re, im}, any_lane(small | not_finite)};
}

// What needs another look

/// One quotient in extended precision.
inline Complex<Kel64f> divide_extended(Complex<Kel64f> b, Complex<Kel64f> a) {
    const long double reciprocal = 1 / extended_products(a.re, a.re, a.im, a.im);
    return {static_cast<Kel64f>(extended_products(b.re, a.re, b.im, a.im) * reciprocal),
            static_cast<Kel64f>(extended_products(b.im, a.re, -a.im, b.re) * reciprocal)};
}

/// One quotient by a divisor that is not zero.
inline Complex<Kel64f> divide_one(Complex<Kel64f> b, Complex<Kel64f> a) {
    const auto quotient = divide_lanes(b, a);
    return quotient.doubtful ? with_extended_lanes(quotient.value, true, divide_extended, b, a) : quotient.value;
}
inline Complex<Kel32f> divide_one(Complex<Kel32f> b, Complex<Kel32f> a) { return divide_lanes(b, a).value; }

/// Divides `Count` elements, whole groups, one by one. Gives whether a divisor counted as zero.
template <int Group, int Count, class A, class T>
[[gnu::noinline]] bool divide_one_by_one(A a, const T* b, T* d, Index from) {
    const T nan =
        std::is_same_v<T, Kel32f> ? static_cast<T>(kelConstantOfNAN_32f) : static_cast<T>(kelConstantOfNAN_64f);
    long double size[Count];
    for (int i = 0; i < Count; ++i) {
        const Complex<T> x = elements<T>(a, from + i);
        size[i] = static_cast<long double>(x.re) * x.re + static_cast<long double>(x.im) * x.im;
    }
    bool zero_met = false;
    Complex<T> result[Count];
    for (int i = 0; i < Count; ++i) {
        const Outcome what = outcome<Group>(size, i);
        zero_met |= what == Outcome::divided_by_zero;
        result[i] = {nan, nan};
        if (what == Outcome::quotient) result[i] = divide_one(elements<T>(b, from + i), elements<T>(a, from + i));
    }
    for (int i = 0; i < Count; ++i) store_interleaved(d + 2 * (from + i), result[i]);
    return zero_met;
}

/// Divides elements from to to - 1, in vectors of Lanes elements as far as they go.
template <int Group, int Lanes, class A, class T>
[[gnu::always_inline]] inline Index divide_vectors(const A& a, const T* b, T* d, Index from, Index to, bool& zero_met) {
    using V = Vec<T, Lanes>;
    for (; from + Lanes <= to; from += Lanes) {
        const Quotients<V> quotients = divide_lanes(elements<V>(b, from), elements<V>(a, from));
        if (quotients.doubtful) [[unlikely]]
            zero_met |= divide_one_by_one<Group, Lanes>(a, b, d, from);
        else
            store_interleaved(d + 2 * from, quotients.value);
    }
    return from;
}

/// Divides parts of b by those of a, an array or a constant, in groups. Gives whether a divisor counted as zero.
template <int Group, class A, class T>
bool divide_complex(A a, const T* b, T* d, Index from, Index to) {
    const RoundedToNearest modes;
    constexpr int most = std::max({max_lanes<Kel64f>, part<Vec<T>>, Group});
    bool zero_met = false;
    from = divide_vectors<Group, most>(a, b, d, from, to, zero_met);
    if constexpr (most > Group) divide_vectors<Group, Group>(a, b, d, from, to, zero_met);
    return zero_met;
}

} // namespace kels
