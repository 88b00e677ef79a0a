// Arctangents, by one division and one polynomial. With n / d between 0 and 1, atan(n / d) is atan(t), t = n / d, up to
// tan(pi / 8), and pi / 4 + atan(t), t = (n - d) / (n + d), beyond. So every angle is a multiple of pi / 4 and, with
// one sign or the other, atan t for |t| <= tan(pi / 8).
#pragma once

#include "frame/error_free.h"
#include "frame/math/evaluation.h"

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

} // namespace kels
