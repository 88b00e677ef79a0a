// Arctangents, by one division and one polynomial. With n / d between 0 and 1, atan(n / d) is atan(t), t = n / d, up to
// tan(pi / 8), and pi / 4 + atan(t), t = (n - d) / (n + d), beyond. So every angle is a multiple of pi / 4 and, with
// one sign or the other, atan t for |t| <= tan(pi / 8).
#pragma once

#include "frame/error_free.h"
#include "frame/math/quick.h"

#include <limits>
#include <numbers>

namespace kels {

/// An angle: eighths pi / 4 + atan(n / d), the last term of the other sign if `turned`.
template <class V>
struct Octant {
    V eighths, turned; ///< `turned` has the sign bit set, or is 0
};

/// The angle of an octant. For doubles, pi / 4 and the quotient are sums of two, and what the sum of their high parts
/// rounds away is kept.
template <Grade G, class V>
[[gnu::always_inline]] inline V angle_in(Octant<V> octant, V n, V d) {
    const auto beyond = n > d * 0.41421356237309503; // tan(pi / 8)
    const V minus = beyond ? -d : V{}, plus = beyond ? n : V{};
    const V numerator = n + minus, denominator = d + plus;
    const V eighths = octant.eighths + with_sign_of(beyond ? splat<V>(1) : V{}, octant.turned);
    const V pi_4_high = splat<V>(0x1.921fb544p-1), pi_4_low = splat<V>(0x1.0b4611a626331p-35); // 33 bits, the rest
    if constexpr (G == Grade::for_single) {
        constexpr double beyond_linear[] = {// (atan(t) / t - 1) / t^2: 2^-40.2 of atan t
                                            -0x1.5555554edf7f5p-2, 0x1.999991fc4c54ap-3,  -0x1.2490c30c640bap-3,
                                            0x1.c6d1ec996b4cap-4,  -0x1.7082c0f9235e8p-4, 0x1.1e5c76b9b3fe6p-4,
                                            -0x1.36adf365be93fp-5};
        const V t = numerator / denominator, z = t * t;
        const V angle = t + t * z * polynomial<G>(z, beyond_linear);
        return eighths * (std::numbers::pi / 4) + with_sign_of(angle, octant.turned);
    } else {
        constexpr double beyond_linear[] = {// the same: 2^-59.4 of atan t
                                            -0x1.555555555553dp-2, 0x1.99999999957cdp-3,  -0x1.24924922aa4e4p-3,
                                            0x1.c71c70e50e23ap-4,  -0x1.745cf8c36d0c5p-4, 0x1.3b11179483ccap-4,
                                            -0x1.10eba8c06f0b1p-4, 0x1.df0e7fb2e8745p-5,  -0x1.9ccf7cd88d405p-5,
                                            0x1.37ce1ad8c6415p-5,  -0x1.255b345f7d62fp-6};
        const V of_numerator = n - (numerator - minus), of_denominator = plus - (denominator - d);
        const V reciprocal = 1 / denominator, t = numerator * reciprocal, z = t * t;
        const V product = t * denominator, remainder = (numerator - product) - product_error(t, denominator, product);
        const V low = (remainder + (of_numerator - t * of_denominator)) * reciprocal;
        const V rest = fma(t * z, polynomial<G>(z, beyond_linear), low);
        const V high = eighths * pi_4_high, signed_t = with_sign_of(t, octant.turned);
        const V sum = high + signed_t, lost = (high - sum) + signed_t;
        return sum + (lost + fma(eighths, pi_4_low, with_sign_of(rest, octant.turned)));
    }
}

/// The arctangent of any number that is no NaN.
template <Grade G, class V>
[[gnu::always_inline]] inline V arctangent(V x) {
    const V size = smaller(magnitude(x), splat<V>(0x1p200)); // beyond, nothing changes any more
    const auto steep = size > 1;
    const Octant<V> octant = {steep ? splat<V>(2) : V{}, steep ? splat<V>(-0.0) : V{}};
    const V angle = angle_in<G>(octant, steep ? splat<V>(1) : size, steep ? size : splat<V>(1));
    return with_sign_of(angle, x);
}

/// A coordinate with which the steps between doubles might overflow or underflow: extended precision has more room.
template <class V>
[[gnu::always_inline]] inline auto is_out_of_range(V coordinate) {
    const V size = magnitude(coordinate);
    return (size > 0x1p500) | ((size < 0x1p-300) & (coordinate != 0));
}

/// The angle of the point (x, y), with the signs of the C library's `atan2`. For doubles, neither is out of range; for
/// results in single precision any singles will do.
template <Grade G, class V>
[[gnu::always_inline]] inline V arctangent_in_range(V y, V x) {
    const V height = smaller(magnitude(y), splat<V>(0x1p600)), width = smaller(magnitude(x), splat<V>(0x1p600));
    const auto steep = height > width;
    const V n = steep ? width : height, d = steep ? height : width;
    // Eighths of half a turn: from the right, from the top and from the left.
    const V from_top = steep ? splat<V>(-0.0) : V{};
    const V from_left = with_sign_of(V{}, x);
    const V left = bits_as<Bits<V>>(x) < 0 ? splat<V>(4) : V{};
    const Octant<V> octant = {steep ? splat<V>(2) : left, with_sign_of(from_top, from_left)};
    const V angle = with_sign_of(angle_in<G>(octant, n, d == 0 ? splat<V>(1) : d), y);
    return ((x != x) | (y != y)) ? x + y : angle;
}

/// Tangents c of so few bits that n - c d is exact, one for each quarter of the binades of d / n or n / d from 2^-4 to
/// 12; their angles in two singles, from a right angle downwards where the quotient is turned over.
struct Tangents {
    static constexpr std::int32_t start = 0x3D600000; // as a single: all that is less has the first tangent
    static constexpr int bits_below = 21;             // an index

    alignas(64) float tangent[32], angle_high[32], angle_low[32];

    constexpr Tangents() : tangent(), angle_high(), angle_low() {
        constexpr int in_256ths[] = {0,   18,  22,  26,  30,  36,  44, 52, 60, 72, 88, 104, 120, 144, 176, 208,
                                     240, 224, 192, 160, 144, 112, 96, 80, 72, 56, 48, 40,  36,  28,  24,  0};
        for (int i = 0; i < 32; ++i) {
            const double c = in_256ths[i] / 256.0;
            // By half the angle's tangent: t = c / (1 + root(1 + c^2)).
            double root = 1 + c * c / 2;
            for (int step = 0; step < 6; ++step) root = 0.5 * (root + (1 + c * c) / root);
            const double t = c / (1 + root);
            double sum = 0; // 2 atan t
            for (int k = 51; k > 0; k -= 2) sum = 2.0 / k - sum * (t * t);
            sum *= t;
            const bool steep = i > 16;
            const double high = static_cast<float>(steep ? 0x1.921fb54442d18p+0 - sum : sum);
            angle_high[i] = static_cast<float>(high);
            angle_low[i] = static_cast<float>(steep ? (0x1.921fb54442d18p+0 - high) - sum : sum - high);
            tangent[i] = static_cast<float>(c);
        }
    }
};

/// atan of n / d is atan c and atan of t = (n - c d) / (d + c n).
template <class V>
[[gnu::always_inline]] inline Quick<V> quick_arctangent(V x) {
    using W = SingleBits<V>;
    static constexpr Tangents table;
    constexpr float error = 0x1.4p-32F; // with those of the doubles
    const V size = magnitude(x), one = splat<V>(1);
    const W place = (bits_as<W>(size) - splat<W>(Tangents::start)) >> splat<W>(Tangents::bits_below);
    const W from_first = place > 0 ? place : W{}, index = from_first < 31 ? from_first : splat<W>(31);
    const V c = look_up<V>(table.tangent, index);
    const V base = look_up<V>(table.angle_high, index), below_base = look_up<V>(table.angle_low, index);
    const V n = one < size ? one : size, d = one < size ? size : one; // a NaN stays
    const V exact = fma(-c, d, n), numerator = one <= size ? -exact : exact;
    const V denominator = fma(c, n, d), below_denominator = fma(c, n, d - denominator);
    const V reciprocal = 1 / denominator, t = numerator * reciprocal, z = t * t;
    const V remainder = fma(-t, below_denominator, fma(-t, denominator, numerator));
    constexpr float beyond_linear[] = {// (atan(t) / t - 1) / t^2: 2^-34.4 of atan t
                                       -0x1.555556p-2F, 0x1.99989ep-3F, -0x1.22df22p-3F};
    const V sum = fma(fma(splat<V>(beyond_linear[2]), z, splat<V>(beyond_linear[1])), z, splat<V>(beyond_linear[0]));
    const V tail = fma(t * z, sum, fma(remainder, reciprocal, below_base));
    const V high = base + t, low = ((base - high) + t) + tail;
    Quick<V> result = rounded_quickly(high, fma(high, splat<V>(-error), low), high, 2 * error);
    // A negative zero becomes a positive one.
    result.value = bits_as<V>(bits_as<W>(result.value) | (bits_as<W>(x) & splat<W>(INT32_MIN))) + 0.0F;
    return result;
}

} // namespace kels
