// e^x = 2^n e^r, with n the integer nearest to x / ln 2 (J.-M. Muller et al., Handbook of Floating-Point Arithmetic,
// chapter 10).
#pragma once

#include "frame/math/quick.h"

#include <bit>
#include <cstdint>
#include <numbers>

namespace kels {

/// For singles, with x / ln 2 = n + f: the square of 2^(f / 2), whose polynomial needs two terms less.
template <class V>
[[gnu::always_inline]] inline V exponential_for_single(V x) {
    constexpr double half_power[] = {// 2^-35.0, of the square
                                     0x1.000000000269fp+0, 0x1.62e42ff31b95fp-2,  0x1.ebfbdfe39b2eep-5,
                                     0x1.c6b0718fa2eb1p-8, 0x1.3b2ae76ef27fbp-11, 0x1.5df7cca43f669p-15,
                                     0x1.42bb816c637f3p-19};
    const V power = x * std::numbers::log2e;
    const Whole<V> n = nearest_whole(power);
    const V root = polynomial<Grade::for_single>(power - n.real, half_power);
    return scaled_by_power(root * root, n.low_bits);
}

/// For doubles: r = x - n ln 2 in two parts (W. J. Cody and W. Waite), of which the second meets the other small terms.
template <Grade G, class V>
[[gnu::always_inline]] inline V exponential_for_double(V x) {
    constexpr double ln2_high = 0x1.62e42feep-1, ln2_low = 0x1.a39ef35793c76p-33; // 32 bits, the rest
    constexpr double beyond_linear[] = {                                          // (e^r - 1 - r) / r^2: 2^-57.8 of e^r
                                        0x1.0000000000008p-1,  0x1.55555555554fep-3,  0x1.5555555550e75p-5,
                                        0x1.111111112756ep-7,  0x1.6c16c183154cep-10, 0x1.a01a012a82dbap-13,
                                        0x1.a0199c947fc27p-16, 0x1.71df28385e9b0p-19, 0x1.28ab5fab18bdfp-22,
                                        0x1.ad76e92e90760p-26};
    const Whole<V> n = nearest_whole(x * std::numbers::log2e);
    const V high = fma(n.real, splat<V>(-ln2_high), x); // exact
    const V low = n.real * ln2_low, r = high - low;
    const V tail = multiply_add<G>(r * r, polynomial<G>(r, beyond_linear), -low);
    return scaled_by_power(1 + (high + tail), n.low_bits);
}

/// e^x, where it is a normal number and does not come within half of the largest one.
template <Grade G, class V>
[[gnu::always_inline]] inline V exponential(V x) {
    if constexpr (G == Grade::for_single)
        return exponential_for_single(x);
    else
        return exponential_for_double<G>(x);
}

/// The powers 2^(i / Entries) as singles, less i steps in their exponents, and what they lack, relative to them.
template <int Entries>
struct PowersOfTwo {
    alignas(64) float high[Entries], low[Entries];

    constexpr explicit PowersOfTwo(float below) : high(), low() {
        constexpr double power[] = {
            0x1.0000000000000p+0, 0x1.0b5586cf9890fp+0, 0x1.172b83c7d517bp+0, 0x1.2387a6e756238p+0,
            0x1.306fe0a31b715p+0, 0x1.3dea64c123422p+0, 0x1.4bfdad5362a27p+0, 0x1.5ab07dd485429p+0,
            0x1.6a09e667f3bcdp+0, 0x1.7a11473eb0187p+0, 0x1.8ace5422aa0dbp+0, 0x1.9c49182a3f090p+0,
            0x1.ae89f995ad3adp+0, 0x1.c199bdd85529cp+0, 0x1.d5818dcfba487p+0, 0x1.ea4afa2a490dap+0};
        constexpr int binade = 1 << 23;
        for (int i = 0; i < Entries; ++i) {
            const double exact = power[i * 16 / Entries];
            const auto nearest = static_cast<float>(exact);
            high[i] = std::bit_cast<float>(std::bit_cast<std::int32_t>(nearest) - i * (binade / Entries));
            low[i] = static_cast<float>((exact - nearest) / nearest) - below;
        }
    }
};

/// e^x = 2^(n / N) e^r for a table of as many powers N as a register has lanes.
template <class V>
[[gnu::always_inline]] inline Quick<V> quick_exponential(V x) {
    using W = SingleBits<V>;
    constexpr int entries = lanes<V>, bits_below = entries == 16 ? 19 : 20;
    constexpr float error = entries == 16 ? 0x1.8p-34F : 0x1.2p-32F;                     // with those of the doubles
    constexpr float step = 0x1.62e43p-1F / entries, of_step = -0x1.05c61p-29F / entries; // ln 2
    static constexpr PowersOfTwo<entries> table(error);
    const V shifter = splat<V>(0x1.8p23F), shifted = fma(x, splat<V>(0x1.715476p+0F * entries), shifter);
    const V n = shifted - shifter, from_step = fma(n, splat<V>(-step), x); // exact
    const V rest = fma(n, splat<V>(-of_step), pick(load<V>(table.low), bits_as<W>(shifted))), r = from_step + rest;
    const W exponent = bits_as<W>(shifted) << splat<W>(bits_below);
    const V power = bits_as<V>(bits_as<W>(pick(load<V>(table.high), bits_as<W>(shifted))) + exponent);
    V beyond_linear; // (e^r - 1 - r) / r^2: 2^-37.4 of e^r, or 2^-38.0
    if constexpr (entries == 16)
        beyond_linear = fma(r, splat<V>(0x1.555212p-5F), splat<V>(0x1.55571ep-3F));
    else
        beyond_linear = fma(fma(r, splat<V>(0x1.110f06p-7F), splat<V>(0x1.555cecp-5F)), r, splat<V>(0x1.555556p-3F));
    beyond_linear = fma(beyond_linear, r, splat<V>(0.5F));
    const V tail = fma(r * r, beyond_linear, rest);
    const V high = fma(power, from_step, power), low = fma(power, from_step, power - high);
    Quick<V> result = rounded_quickly(high, fma(power, tail, low), power, 2 * error);
    result.doubtful |= magnitude(x) >= 64;
    return result;
}

} // namespace kels
