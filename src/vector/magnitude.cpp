// Magnitudes and power spectra.
//
//   singles:   every step of a magnitude rounds to 24 bits, as single arithmetic does; where that overflows or
//   underflows,
//              the parts are scaled by a power of two. Squares are summed in double arithmetic for a power spectrum;
//   doubles:   sums of squares and roots as sums of two doubles;
//   integers:  by a root in double arithmetic, which is too fine to miss a half or a whole; of 32 bits, as the sum of
//   two
//              doubles.

#include "kels/polar.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/expanded.h"
#include "frame/math/evaluation.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "vector/extended_lanes.h"
#include "vector/integers_by_reals.h"
#include "vector/points.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

// Single precision

/// Root of the sum of two squares, where nothing leaves the range.
template <class V>
[[gnu::always_inline]] inline V plain_magnitude(Complex<V> z) {
    return square_root(z.re * z.re + z.im * z.im);
}

/// The same steps on parts scaled by a power of two.
template <class V>
[[gnu::noinline]] V scaled_magnitude(Complex<V> z) {
    using W = Vec<std::int32_t, lanes<V>>;
    const V a = magnitude(z.re), b = magnitude(z.im), larger = a > b ? a : b;
    const auto scaled = [&](V power, V back) { return plain_magnitude(Complex<V>{z.re * power, z.im * power}) * back; };
    // Two powers are enough: subnormal numbers come up to 2^-49, the largest ones down to 2^28.
    const V up = scaled(splat<V>(0x1p100F), splat<V>(0x1p-100F)),
            down = scaled(splat<V>(0x1p-100F), splat<V>(0x1p100F));
    const V inside = plain_magnitude(z), by_size = larger < 0x1p-40F ? up : (larger > 0x1p60F ? down : inside);
    const W finite = (W)(a < HUGE_VALF) & (W)(b < HUGE_VALF);
    return finite != 0 ? by_size : a + b;
}

template <class V>
[[gnu::always_inline]] inline V magnitudes(Complex<V> z) {
    const V sum = z.re * z.re + z.im * z.im;
    // What underflows in a sum from 2^-80 on, does not count.
    if (any_lane((sum < 0x1p-80F) | (sum >= HUGE_VALF) | (sum != sum))) [[unlikely]]
        return scaled_magnitude(z);
    return square_root(sum);
}

// Double precision

Complex<Kel64f> extended_magnitude(Complex<Kel64f> z) {
    const long double a = z.re, b = z.im;
    return {static_cast<Kel64f>(std::sqrt(a * a + b * b)), 0};
}

template <class V>
[[gnu::always_inline]] inline V long_magnitudes(Complex<V> z) {
    const Expanded<V> r = root(two_squares(z.re, z.im));
    const V sum = r.high + r.low;
    const auto doubtful = is_small(z.re) | is_small(z.im) | (sum - sum != 0);
    if (any_lane(doubtful)) [[unlikely]]
        return with_extended_lanes(Complex<V>{sum, V{}}, doubtful, extended_magnitude, z).re;
    return sum;
}

template <class Points, class R>
KelStatus magnitudes(Points p, R* dst, int len) {
    return points_call(p, dst, len, [=] {
        const RoundedToNearest modes;
        map_points(p, dst, len, [=](auto width, Index i) KELS_INLINE {
            const auto z = parts_at<width>(p, i);
            if constexpr (std::is_same_v<R, Kel64f>)
                return long_magnitudes(z);
            else if constexpr (std::is_same_v<typename Points::Element, Kel16s>)
                return plain_magnitude(Complex<Vec<R, width>>{convert<R>(z.re), convert<R>(z.im)});
            else
                return magnitudes(z);
        });
    });
}

// Integers

/// How the caller rounds a number that is not negative in the x87 unit.
enum class Rounding { nearest, down, up };

Rounding rounding_of_caller() {
    constexpr std::uint16_t down = 0x400, up = 0x800;
    switch (X87Modes::current() & X87Modes::rounding) {
    case 0:
        return Rounding::nearest;
    case up:
        return Rounding::up;
    case down:
    default:
        return Rounding::down;
    }
}

/// Calls body with the rounding as a type.
template <class Body>
void with_rounding(Rounding rounding, const Body& body) {
    if (rounding == Rounding::nearest)
        body(std::integral_constant<Rounding, Rounding::nearest>{});
    else if (rounding == Rounding::up)
        body(std::integral_constant<Rounding, Rounding::up>{});
    else
        body(std::integral_constant<Rounding, Rounding::down>{});
}

/// A sum of two doubles from 0 on, rounded and limited to T.
template <class T, Rounding R, class V>
[[gnu::always_inline]] inline auto rounded_integers(Expanded<V> v) {
    const V limit = splat<V>(std::numeric_limits<T>::max());
    const auto beyond = v.high >= limit;
    const V high = beyond ? limit : v.high, low = beyond ? V{} : v.low;
    const V whole = nearest_whole(high).real, rest = (high - whole) + low;
    V rounded = whole;
    if constexpr (R == Rounding::nearest)
        rounded = rest > 0.5 ? whole + 1 : (rest < -0.5 ? whole - 1 : whole);
    else if constexpr (R == Rounding::up)
        rounded = rest > 0 ? whole + 1 : whole;
    else
        rounded = rest < 0 ? whole - 1 : whole;
    return convert<T>(to_integer<true>(rounded));
}

template <class Points>
KelStatus magnitudes(Points p, Kel16s* dst, int len, int factor) {
    return points_call(p, dst, len, [=] {
        const DefaultModes modes(true);
        const double power = power_of_two<double>(-std::clamp(factor, -15, 40)); // beyond, nothing changes any more
        with_rounding(factor < 0 ? rounding_of_caller() : Rounding::nearest, [=](auto rounding) {
            map_points(p, dst, len, [=](auto width, Index i) KELS_INLINE {
                return in_doubles(
                    [=](auto square) KELS_INLINE {
                        using V = decltype(square);
                        const V size = magnitude(square); // 2^31 has wrapped
                        return rounded_integers<Kel16s, rounding>(Expanded<V>{square_root(size) * power, V{}});
                    },
                    squared_moduli_at<width>(p, i));
            });
        });
    });
}

KelStatus magnitudes(JoinedPoints<Kel32s> p, Kel32s* dst, int len, int factor) {
    return points_call(p, dst, len, [=] {
        const DefaultModes modes(true);
        const double power = factor > 32 ? 0 : power_of_two<double>(-std::max(factor, -31));
        with_rounding(rounding_of_caller(), [=](auto rounding) {
            map_points(p, dst, len, [=](auto width, Index i) KELS_INLINE {
                const auto z = parts_at<width>(p, i);
                return in_doubles(
                    [=](auto re, auto im) KELS_INLINE {
                        const auto r = root(two_squares(re, im));
                        using V = decltype(re);
                        return rounded_integers<Kel32s, rounding>(Expanded<V>{r.high * power, r.low * power});
                    },
                    z.re, z.im);
            });
        });
    });
}

// Power spectra

/// Whole registers of singles. Conversions that take their operands from memory need no shuffles of their own, so that
/// separated parts go there first.
template <class V>
inline constexpr bool converts_from_memory = std::is_same_v<V, Vec<Kel32f, max_lanes<Kel32f>>>&& vector_bytes >= 32;

template <class V>
[[gnu::always_inline]] inline V powers_of_singles(const Kel32f* re, const Kel32f* im) {
    using H = Vec<Kel32f, lanes<V> / 2>;
    const auto powers = [=](int from) KELS_INLINE {
        const auto x = convert<double>(load<H>(re + from)), y = convert<double>(load<H>(im + from));
        return convert<Kel32f>(fma(x, x, y * y));
    };
    return both(powers(0), powers(lanes<H>));
}

template <class V>
[[gnu::always_inline]] inline V powers_of_singles(SplitPoints<Kel32f> p, Index i) {
    return powers_of_singles<V>(p.re + i, p.im + i);
}
template <class V>
[[gnu::always_inline]] inline V powers_of_singles(JoinedPoints<Kel32f> p, Index i) {
    alignas(sizeof(V)) Kel32f parts[2][lanes<V>];
    const auto z = load_even_and_odd<V>(p.parts + 2 * i);
    store(parts[0], z.even);
    store(parts[1], z.odd);
    settle(parts);
    return powers_of_singles<V>(parts[0], parts[1]);
}

template <class Points, class R>
KelStatus powers(Points p, R* dst, int len) {
    return points_call(p, dst, len, [=] {
        map_points(p, dst, len, [=](auto width, Index i) KELS_INLINE {
            if constexpr (std::is_same_v<typename Points::Element, Kel16s>) {
                return magnitude(convert<Kel32f>(squared_moduli_at<width>(p, i))); // 2^31 has wrapped
            } else if constexpr (converts_from_memory<Vec<typename Points::Element, width>>) {
                return powers_of_singles<Vec<Kel32f, width>>(p, i);
            } else {
                const auto z = parts_at<width>(p, i);
                return in_doubles([](auto re, auto im) KELS_INLINE { return convert<R>(fma(re, re, im * im)); }, z.re,
                                  z.im);
            }
        });
    });
}

template <class Points>
KelStatus powers(Points p, Kel16s* dst, int len, int factor) {
    return points_call(p, dst, len, [=] {
        const auto map = [=](const auto& scaled) {
            map_points(p, dst, len, [=](auto width, Index i) KELS_INLINE {
                using U = Vec<std::uint32_t, width>;
                return convert<Kel16s>(scaled((U)squared_moduli_at<width>(p, i)));
            });
        };
        const auto limited = [](auto v) KELS_INLINE { return smaller(v, splat<decltype(v)>(32767)); };
        if (factor > 31)
            map([](auto v) KELS_INLINE { return decltype(v){}; });
        else if (factor >= 0)
            map([=](auto v)
                    KELS_INLINE { return limited(v >> splat<decltype(v)>(static_cast<std::uint32_t>(factor))); });
        else
            map([=, up = std::min(-std::max(factor, -15), 15)](auto v)
                    KELS_INLINE { return limited(limited(v) << splat<decltype(v)>(static_cast<std::uint32_t>(up))); });
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsMagnitude_32fc    (const Kel32fc* a, Kel32f* d, int n)                        { return magnitudes(points(a), d, n); }
KelStatus kelsMagnitude_64fc    (const Kel64fc* a, Kel64f* d, int n)                        { return magnitudes(points(a), d, n); }
KelStatus kelsMagnitude_16sc32f (const Kel16sc* a, Kel32f* d, int n)                        { return magnitudes(points(a), d, n); }
KelStatus kelsMagnitude_32f     (const Kel32f* a, const Kel32f* b, Kel32f* d, int n)        { return magnitudes(points(a, b), d, n); }
KelStatus kelsMagnitude_64f     (const Kel64f* a, const Kel64f* b, Kel64f* d, int n)        { return magnitudes(points(a, b), d, n); }
KelStatus kelsMagnitude_16sc_Sfs(const Kel16sc* a, Kel16s* d, int n, int s)                 { return magnitudes(points(a), d, n, s); }
KelStatus kelsMagnitude_32sc_Sfs(const Kel32sc* a, Kel32s* d, int n, int s)                 { return magnitudes(points(a), d, n, s); }
KelStatus kelsMagnitude_16s_Sfs (const Kel16s* a, const Kel16s* b, Kel16s* d, int n, int s) { return magnitudes(points(a, b), d, n, s); }

KelStatus kelsPowerSpectr_64fc    (const Kel64fc* a, Kel64f* d, int n)                        { return powers(points(a), d, n); }
KelStatus kelsPowerSpectr_32fc    (const Kel32fc* a, Kel32f* d, int n)                        { return powers(points(a), d, n); }
KelStatus kelsPowerSpectr_16sc32f (const Kel16sc* a, Kel32f* d, int n)                        { return powers(points(a), d, n); }
KelStatus kelsPowerSpectr_64f     (const Kel64f* a, const Kel64f* b, Kel64f* d, int n)        { return powers(points(a, b), d, n); }
KelStatus kelsPowerSpectr_32f     (const Kel32f* a, const Kel32f* b, Kel32f* d, int n)        { return powers(points(a, b), d, n); }
KelStatus kelsPowerSpectr_16s32f  (const Kel16s* a, const Kel16s* b, Kel32f* d, int n)        { return powers(points(a, b), d, n); }
KelStatus kelsPowerSpectr_16sc_Sfs(const Kel16sc* a, Kel16s* d, int n, int s)                 { return powers(points(a), d, n, s); }
KelStatus kelsPowerSpectr_16s_Sfs (const Kel16s* a, const Kel16s* b, Kel16s* d, int n, int s) { return powers(points(a, b), d, n, s); }
}
// clang-format on
