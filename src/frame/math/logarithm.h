// ln x = k ln 2 + ln m for x = m 2^k with m from 2^(-1/2) to 2^(1/2), and ln m = 2 atanh s with s = (m - 1) / (m + 1)
// (K. C. Ng's method, as in J.-M. Muller, Elementary Functions, chapter 11).
#pragma once

#include "frame/math/evaluation.h"

#include <cstdint>
#include <numbers>

namespace kels {

/// Bits of a double, and of the same single, of about 2^(-1/2).
inline constexpr std::int64_t root_half = 0x3FE6A09E60000000;
inline constexpr std::int32_t root_half_of_single = 0x3F3504F3;

/// ln (m 2^k), for m from 2^(-1/2) to 2^(1/2) and whole k.
template <Grade G, class V>
[[gnu::always_inline]] inline V logarithm_of_parts(V m, V k) {
    const V f = m - 1, s = f / (m + 1), z = s * s;
    if constexpr (G == Grade::for_single) {
        constexpr double series[] = {// 2 atanh(s) / s: 2^-37.8
                                     0x1.0000000004a19p+1, 0x1.555554dad2ba2p-1, 0x1.999a9c8d481fbp-2,
                                     0x1.2432c0e8c37cdp-2, 0x1.e3af8a088e160p-3};
        return k * std::numbers::ln2 + s * polynomial<G>(z, series);
    } else {
        // ln m = f - f^2 / 2 + s (f^2 / 2 + z q(z)). What f rounds away when k ln 2 comes to it is kept.
        constexpr double ln2_high = 0x1.62e42feep-1, ln2_low = 0x1.a39ef35793c76p-33; // 32 bits, the rest
        constexpr double beyond_linear[] = {// (2 atanh(s) / s - 2) / z: 2^-59.5 of ln m
                                            0x1.5555555555592p-1, 0x1.999999997fee9p-2, 0x1.24924941e0c14p-2,
                                            0x1.c71c52164d220p-3, 0x1.74663c53701c5p-3, 0x1.39a1fb9ccce87p-3,
                                            0x1.2f02e5b74af15p-3};
        const V half_square = 0.5 * f * f;
        const V high = k * ln2_high, sum = high + f, lost = (high - sum) + f;
        const V near = multiply_add<G>(z, polynomial<G>(z, beyond_linear), half_square);
        const V inner = multiply_add<G>(s, near, k * ln2_low);
        return sum + (lost - (half_square - inner));
    }
}

/// Calls f with x = m 2^k taken apart, for positive normal x: f(m, k).
template <class V, class F>
[[gnu::always_inline]] inline auto with_parts(V x, const F& f) {
    using B = Bits<V>;
    using Unsigned = Vec<std::uint64_t, lanes<V>>;
    constexpr std::int64_t exponent = std::int64_t{0xFFF} << fraction_bits, bias = std::int64_t{1024} << fraction_bits;
    const B above = bits_as<B>(x) - splat<B>(root_half);
    const V m = bits_as<V>(bits_as<B>(x) - (above & splat<B>(exponent)));
    // k + 1024 becomes the last bits of 2^52: there is no conversion of 64-bit integers at most levels.
    const Unsigned biased = (Unsigned)(above + splat<B>(bias)) >> splat<Unsigned>(fraction_bits);
    const V k = bits_as<V>((B)biased | splat<B>(0x4330000000000000)) - (0x1p52 + 1024);
    return f(m, k);
}

/// ln x of positive finite x.
template <Grade G, class V>
[[gnu::always_inline]] inline V logarithm(V x) {
    const auto take = [](V normal, V shift) KELS_INLINE {
        return with_parts(normal, [=](V m, V k) KELS_INLINE { return logarithm_of_parts<G>(m, k - shift); });
    };
    const auto subnormal = x < splat<V>(0x1p-1022);
    if (any_lane(subnormal)) [[unlikely]]
        return take(subnormal ? x * 0x1p54 : x, subnormal ? splat<V>(54) : V{});
    return take(x, V{});
}

} // namespace kels
