// ln x = k ln 2 + ln m for x = m 2^k with m from 2^(-1/2) to 2^(1/2), and ln m = 2 atanh s with s = (m - 1) / (m + 1)
// (K. C. Ng's method, as in J.-M. Muller, Elementary Functions, chapter 11).
#pragma once

#include "frame/math/quick.h"

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
    constexpr std::int64_t exponent = std::int64_t{0xFFF} << fraction_bits;
    constexpr std::uint64_t bias = std::uint64_t{1024} << fraction_bits;
    const B above = bits_as<B>(x) - splat<B>(root_half);
    const V m = bits_as<V>(bits_as<B>(x) - (above & splat<B>(exponent)));
    // k + 1024, which may be 2048, becomes the last bits of 2^52: most levels convert no 64-bit integers.
    const Unsigned biased = (bits_as<Unsigned>(above) + splat<Unsigned>(bias)) >> splat<Unsigned>(fraction_bits);
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

/// Numbers c of so few bits that m c - 1 is exact, one for each 32nd of the binade of m from `start` on, and less than
/// 2^-5.5; -ln c in two singles, of which the first has room for a multiple of ln 2.
struct Reciprocals {
    static constexpr std::int32_t start = 0x3F282000; // as a single: 0.657
    static constexpr int bits_below = 18;             // an index

    alignas(64) float number[32], log_high[32], log_low[32];

    constexpr Reciprocals() : number(), log_high(), log_low() {
        constexpr int in_64ths[] = {96, 94, 92, 90, 88, 86, 84, 82, 82, 80, 78, 76, 76, 74, 72, 72,
                                    70, 68, 68, 66, 66, 64, 63, 61, 59, 58, 56, 55, 53, 52, 51, 49};
        constexpr double last_place = 0x1.8p35; // is 2^-17
        for (int i = 0; i < 32; ++i) {
            const double c = in_64ths[i] / 64.0, s = (1 - c) / (1 + c);
            double log = 0; // 2 atanh s
            for (int k = 27; k > 0; k -= 2) log = log * (s * s) + 2.0 / k;
            log *= s;
            number[i] = static_cast<float>(c);
            const double high = (log + last_place) - last_place;
            log_high[i] = static_cast<float>(high);
            log_low[i] = static_cast<float>(log - high);
        }
    }
};

/// Where two registers hold a table of 32: looked up in narrower ones, it takes longer than doubles do.
template <class V>
inline constexpr bool has_quick_logarithm = has_quick_functions<V>&& lanes<V> >= 16;

/// ln x = k ln 2 - ln c + ln(1 + r) for x = m 2^k and r = m c - 1.
template <class V>
[[gnu::always_inline]] inline Quick<V> quick_logarithm(V x) {
    using W = SingleBits<V>;
    using U = Vec<std::uint32_t, lanes<V>>;
    static constexpr Reciprocals table;
    constexpr float error = 0x1p-34F; // with those of the doubles
    const W above = bits_as<W>(bits_as<U>(x) - splat<U>(Reciprocals::start));
    const W exponent = above & splat<W>(static_cast<std::int32_t>(0xFF800000));
    const V m = bits_as<V>(bits_as<U>(x) - bits_as<U>(exponent)), k = convert<float>(above >> splat<W>(23));
    const W index = (above >> splat<W>(Reciprocals::bits_below)) & splat<W>(31);
    const V c = look_up<V>(table.number, index);
    const V log_high = look_up<V>(table.log_high, index), log_low = look_up<V>(table.log_low, index);
    const V r = fma(m, c, splat<V>(-1)); // exact
    const V base = fma(k, splat<V>(0x1.62e4p-1F), log_high), below_base = fma(k, splat<V>(0x1.7f7d1cp-20F), log_low);
    const V minus_half = r * -0.5F, square = fma(minus_half, r, r); // r - r^2 / 2
    const V below_square = fma(minus_half, r, r - square);
    constexpr float beyond_square[] = {// (ln(1 + r) - r + r^2 / 2) / r^3: 2^-38.0 of ln
                                       0x1.555554p-2F, -0x1.fffffep-3F, 0x1.99cafep-3F, -0x1.558b0cp-3F};
    const V upper = fma(splat<V>(beyond_square[3]), r, splat<V>(beyond_square[2]));
    const V sum = fma(fma(upper, r, splat<V>(beyond_square[1])), r, splat<V>(beyond_square[0]));
    const V tail = fma(r * (r * r), sum, below_base);
    const V high = base + square, low = ((base - high) + square) + below_square;
    Quick<V> result = rounded_quickly(high, fma(high, splat<V>(-error), low + tail), high, 2 * error);
    constexpr std::int32_t least = 0x00800000, infinity = 0x7F800000, lowest = INT32_MIN; // normal numbers are between
    const W moved = bits_as<W>(bits_as<U>(x) - splat<U>(least) + splat<U>(static_cast<std::uint32_t>(lowest)));
    result.doubtful |= moved >= lowest + (infinity - least);
    return result;
}

} // namespace kels
