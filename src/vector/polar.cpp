// Arctangents and phases, and the conversions between Cartesian and polar coordinates. Magnitudes: magnitude.cpp.

#include "kels/polar.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/expanded.h"
#include "frame/math/arctangent.h"
#include "frame/math/circular.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "vector/points.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <type_traits>

namespace kels {
namespace {

template <class T>
inline constexpr Grade grade_of = sizeof(T) == sizeof(Kel64f) ? Grade::for_double : Grade::for_single;

// Arctangents of numbers

/// A quiet NaN gives the one of its sign; a signalling one is an angle by now, and stays that.
template <class V>
[[gnu::always_inline]] inline V with_quiet_nans(V angle, V x) {
    using W = Vec<std::make_signed_t<Word<Element<V>>>, lanes<V>>;
    constexpr auto quiet = std::bit_cast<Element<W>>(std::numeric_limits<Element<V>>::quiet_NaN());
    const W bits = bits_as<W>(x), sign = bits & splat<W>(std::numeric_limits<Element<W>>::min());
    return (bits & splat<W>(quiet)) == quiet ? bits_as<V>(sign | splat<W>(quiet)) : angle;
}

template <class V>
[[gnu::always_inline]] inline V arctangents(V x) {
    using T = Element<V>;
    const auto wide = [](V all) KELS_INLINE {
        const V angle =
            in_doubles([](auto part) KELS_INLINE { return convert<T>(arctangent<grade_of<T>>(part) + 0.0); }, all);
        return with_quiet_nans(angle, all);
    };
    if constexpr (has_quick_functions<V>)
        return known(quick_arctangent(x), wide, x);
    else
        return wide(x);
}

template <class T>
KelStatus arctangents(const T* src, T* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        map_blocks(
            dst, len, [](auto x) KELS_INLINE { return arctangents(x); }, src);
    });
}

// Angles of points

/// Those that are out of range, one by one.
template <class V>
[[gnu::noinline]] V angles_of_far_points(V y, V x, V near) {
    const ExtendedPrecision modes;
    double height[lanes<V>], width[lanes<V>], angle[lanes<V>];
    store(height, y);
    store(width, x);
    store(angle, near);
    for (int i = 0; i < lanes<V>; ++i)
        if (is_out_of_range(height[i]) || is_out_of_range(width[i]))
            angle[i] = settled(static_cast<double>(
                std::atan2(static_cast<long double>(height[i]), static_cast<long double>(width[i]))));
    return load<V>(angle);
}

template <Grade G, class V>
[[gnu::always_inline]] inline V angles_of_points(V y, V x) {
    const V near = arctangent_in_range<G>(y, x);
    if constexpr (G == Grade::for_double)
        if (any_lane(is_out_of_range(y) | is_out_of_range(x))) [[unlikely]]
            return angles_of_far_points(y, x, near);
    return near;
}

template <class Points, class R>
KelStatus phases(Points p, R* dst, int len) {
    return points_call(p, dst, len, [=] {
        const DefaultModes modes(true);
        map_points(p, dst, len, [=](auto width, Index i) KELS_INLINE {
            const auto z = parts_at<width>(p, i);
            return in_doubles(
                [](auto y, auto x) KELS_INLINE { return convert<R>(angles_of_points<grade_of<R>>(y, x)); }, z.im, z.re);
        });
    });
}

/// Rounded to nearest, halves away from zero, within 16 bits.
template <class V>
[[gnu::always_inline]] inline auto short_integers(V v) {
    const V half = splat<V>(0.5), away = v < 0 ? v - half : v + half;
    const V low = splat<V>(-32768), high = splat<V>(32767), above = away > low ? away : low;
    return to_integer<true>(above < high ? above : high);
}

/// A straight line for an eighth of a turn, exact at its ends.
template <class V>
[[gnu::always_inline]] inline V first_order_angle(V y, V x) {
    const V r = magnitude(y) + 1e-10, sum = x + r, difference = x - r;
    const V quotient = (x < 0 ? sum : difference) / (x < 0 ? -difference : sum);
    const V middle = x < 0 ? splat<V>(2.356194490192345) : splat<V>(0.7853981633974483);
    const V angle = quotient * -0.7853981633974483 + middle, signed_angle = y < 0 ? -angle : angle;
    return ((x == 0) & (y == 0)) ? V{} : signed_angle;
}

template <class Points>
KelStatus phases(Points p, Kel16s* dst, int len, int factor) {
    return points_call(p, dst, len, [=] {
        const DefaultModes modes(true);
        const auto map = [=](const auto& angle) {
            map_points(p, dst, len, [=](auto width, Index i) KELS_INLINE {
                const auto z = parts_at<width>(p, i);
                return convert<Kel16s>(
                    in_doubles([=](auto y, auto x) KELS_INLINE { return short_integers(angle(y, x)); }, z.im, z.re));
            });
        };
        const double power = power_of_two<double>(-std::clamp(factor, -32, 32)); // beyond, nothing changes any more
        if (factor == 0)
            map([](auto y, auto x) KELS_INLINE { return first_order_angle(y, x); });
        else
            map([=](auto y, auto x) KELS_INLINE { return arctangent_in_range<Grade::for_double>(y, x) * power; });
    });
}

// To polar coordinates

/// The first status that tells something.
KelStatus first_of(KelStatus a, KelStatus b) { return a != kelStatusOk ? a : b; }

// From polar coordinates

/// radius (head + tail), rounded once.
template <class V>
[[gnu::always_inline]] inline V product(V radius, Unrounded<V> factor) {
    const V main = radius * factor.head;
    const V exact = main + (product_error(radius, factor.head, main) + radius * factor.tail);
    const V plain = radius * (factor.head + factor.tail); // for zeros, infinities, and products beyond splitting
    return with_sign_of(((exact - exact == 0) & (exact != 0)) ? exact : plain, factor.sign);
}

/// The same of a radius scaled by a power of two, where the steps, or the bits below the product, leave the range.
template <class V>
[[gnu::noinline]] V scaled_product(V radius, Unrounded<V> factor) {
    const V size = magnitude(radius * (factor.head + factor.tail)), up = splat<V>(0x1p600), down = splat<V>(0x1p-600);
    const auto large = magnitude(radius) > 0x1p900, small = size < 0x1p-900;
    const V there = large ? down : (small ? up : splat<V>(1)), back = large ? up : (small ? down : splat<V>(1));
    return product(radius * there, factor) * back;
}

template <class V>
[[gnu::always_inline]] inline Complex<V> products(V radius, SineCosine<Unrounded<V>> factors) {
    const Complex<V> z = {product(radius, factors.cosine), product(radius, factors.sine)};
    const auto small = [](V part) KELS_INLINE { return (magnitude(part) < 0x1p-900) & (part != 0); };
    if (any_lane(small(z.re) | small(z.im) | (magnitude(radius) > 0x1p900))) [[unlikely]]
        return {scaled_product(radius, factors.cosine), scaled_product(radius, factors.sine)};
    return z;
}

template <class V>
[[gnu::always_inline]] inline Complex<V> cartesian(V radius, V angle) {
    if constexpr (lanes < V >> max_lanes<double>) {
        const auto low = cartesian(half<0>(radius), half<0>(angle)), high = cartesian(half<1>(radius), half<1>(angle));
        return {both(low.re, high.re), both(low.im, high.im)};
    } else if constexpr (sizeof(Element<V>) == sizeof(Kel32f)) {
        const auto r = convert<double>(radius);
        const auto f = sine_cosine<Grade::for_single>(convert<double>(angle));
        return {convert<Kel32f>(r * f.cosine), convert<Kel32f>(r * f.sine)};
    } else {
        return products(radius, unrounded_sine_cosine<Grade::for_double>(angle));
    }
}

template <class V>
[[gnu::always_inline]] inline Complex<V> cartesian_at(const Element<V>* radius, const Element<V>* angle) {
    if constexpr (has_quick_functions<V>) {
        const auto quick = quick_products<V>(radius, angle);
        if (any_lane(quick.doubtful | quick.small)) [[unlikely]] {
            const V r = load<V>(radius), a = load<V>(angle);
            if (any_lane(quick.doubtful | (quick.small & (r != 0) & (a != 0)))) // zeros are no matter of rounding
                return out_of_line([](V x, V y) KELS_INLINE { return cartesian(x, y); }, r, a);
        }
        return {quick.of_cosine, quick.of_sine};
    } else {
        return cartesian(load<V>(radius), load<V>(angle));
    }
}

/// write(i, points) takes lanes of results.
template <class T, class Write>
void map_cartesian(const T* radius, const T* angle, int len, const Write& write) {
    const DefaultModes modes(true);
    each_block<Word<T>>(
        len, [=](auto width, Index i) KELS_INLINE { return cartesian_at<Vec<T, width>>(radius + i, angle + i); },
        [&](auto, Index i, auto z) KELS_INLINE { write(i, z); });
}

template <class T>
KelStatus to_cartesian(const T* radius, const T* angle, T* re, T* im, int len) {
    return vector_call({radius, angle, re, im}, len, [=] {
        map_cartesian(radius, angle, len, [=](Index i, auto z) KELS_INLINE {
            store(re + i, z.re);
            store(im + i, z.im);
        });
    });
}
template <class T, class C>
KelStatus to_cartesian(const T* radius, const T* angle, C* dst, int len) {
    return vector_call({radius, angle, dst}, len, [=] {
        map_cartesian(radius, angle, len, [=](Index i, auto z) KELS_INLINE {
            store(reals(dst + i), interleave<0>(z.re, z.im));
            store(reals(dst + i) + lanes<decltype(z.re)>, interleave<1>(z.re, z.im));
        });
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsArctan_32f  (const Kel32f* a, Kel32f* d, int n)                            { return arctangents(a, d, n); }
KelStatus kelsArctan_64f  (const Kel64f* a, Kel64f* d, int n)                            { return arctangents(a, d, n); }
KelStatus kelsArctan_32f_I(Kel32f* d, int n)                                             { return arctangents(d, d, n); }
KelStatus kelsArctan_64f_I(Kel64f* d, int n)                                             { return arctangents(d, d, n); }

KelStatus kelsPhase_64fc    (const Kel64fc* a, Kel64f* d, int n)                         { return phases(points(a), d, n); }
KelStatus kelsPhase_32fc    (const Kel32fc* a, Kel32f* d, int n)                         { return phases(points(a), d, n); }
KelStatus kelsPhase_16sc32f (const Kel16sc* a, Kel32f* d, int n)                         { return phases(points(a), d, n); }
KelStatus kelsPhase_64f     (const Kel64f* a, const Kel64f* b, Kel64f* d, int n)         { return phases(points(a, b), d, n); }
KelStatus kelsPhase_32f     (const Kel32f* a, const Kel32f* b, Kel32f* d, int n)         { return phases(points(a, b), d, n); }
KelStatus kelsPhase_16s32f  (const Kel16s* a, const Kel16s* b, Kel32f* d, int n)         { return phases(points(a, b), d, n); }
KelStatus kelsPhase_16sc_Sfs(const Kel16sc* a, Kel16s* d, int n, int s)                  { return phases(points(a), d, n, s); }
KelStatus kelsPhase_16s_Sfs (const Kel16s* a, const Kel16s* b, Kel16s* d, int n, int s)  { return phases(points(a, b), d, n, s); }

KelStatus kelsCartToPolar_32fc(const Kel32fc* a, Kel32f* m, Kel32f* p, int n)                  { const KelStatus first = kelsMagnitude_32fc(a, m, n); return first_of(first, kelsPhase_32fc(a, p, n)); }
KelStatus kelsCartToPolar_64fc(const Kel64fc* a, Kel64f* m, Kel64f* p, int n)                  { const KelStatus first = kelsMagnitude_64fc(a, m, n); return first_of(first, kelsPhase_64fc(a, p, n)); }
KelStatus kelsCartToPolar_32f (const Kel32f* a, const Kel32f* b, Kel32f* m, Kel32f* p, int n)  { const KelStatus first = kelsMagnitude_32f(a, b, m, n); return first_of(first, kelsPhase_32f(a, b, p, n)); }
KelStatus kelsCartToPolar_64f (const Kel64f* a, const Kel64f* b, Kel64f* m, Kel64f* p, int n)  { const KelStatus first = kelsMagnitude_64f(a, b, m, n); return first_of(first, kelsPhase_64f(a, b, p, n)); }

KelStatus kelsPolarToCart_32fc(const Kel32f* m, const Kel32f* p, Kel32fc* d, int n)            { return to_cartesian(m, p, d, n); }
KelStatus kelsPolarToCart_64fc(const Kel64f* m, const Kel64f* p, Kel64fc* d, int n)            { return to_cartesian(m, p, d, n); }
KelStatus kelsPolarToCart_32f (const Kel32f* m, const Kel32f* p, Kel32f* a, Kel32f* b, int n)  { return to_cartesian(m, p, a, b, n); }
KelStatus kelsPolarToCart_64f (const Kel64f* m, const Kel64f* p, Kel64f* a, Kel64f* b, int n)  { return to_cartesian(m, p, a, b, n); }
}
// clang-format on
