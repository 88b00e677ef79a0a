// e^x = 2^n e^r, with n the integer nearest to x / ln 2 (J.-M. Muller et al., Handbook of Floating-Point Arithmetic,
// chapter 10).
#pragma once

#include "frame/math/evaluation.h"

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

} // namespace kels
