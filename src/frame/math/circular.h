// Sine and cosine: x = n pi / 2 + r, and both functions of r, exchanged and with other signs by the last bits of n.
//
// r is x - n pi / 2 in pieces of pi / 2 of 33 bits (W. J. Cody and W. Waite), as the sum of two doubles where the
// result is a double; beyond 2^20, from the bits of 2 / pi that matter (large_angle.h).
#pragma once

#include "frame/error_free.h"
#include "frame/math/large_angle.h"
#include "frame/math/quick.h"

#include <cstdint>
#include <numbers>

namespace kels {

/// An angle less than a multiple of a quarter turn, from -pi / 4 to pi / 4.
template <class V>
struct FoldedAngle {
    V high, low;
    Bits<V> quarters; ///< their number, in its last two bits
};

/// For angles from 0 to 2^20.
template <Grade G, class V>
[[gnu::always_inline]] inline FoldedAngle<V> folded_small_angle(V x) {
    const Whole<V> n = nearest_whole(x * (2 / std::numbers::pi));
    const V first = fma(n.real, splat<V>(-0x1.921fb544p+0), x); // exact
    if constexpr (G == Grade::for_single) {
        return {first - n.real * 0x1.0b4611a626331p-34, V{}, n.low_bits};
    } else {
        const V second = n.real * 0x1.0b4611a6p-34, third = n.real * 0x1.3198a2ep-69; // exact products
        const V a = first - second, b = a - third;
        const V low = (sum_error(first, -second, a) + sum_error(a, -third, b)) - n.real * 0x1.b839a252049c1p-104;
        const V high = b + low;
        return {high, (b - high) + low, n.low_bits};
    }
}

/// The lanes that are large, one by one.
template <class V>
[[gnu::noinline]] FoldedAngle<V> fold_large_lanes(V x, FoldedAngle<V> folded) {
    double angle[lanes<V>], high[lanes<V>], low[lanes<V>];
    std::int64_t quarters[lanes<V>];
    store(angle, x);
    store(high, folded.high);
    store(low, folded.low);
    store(quarters, folded.quarters);
    for (int i = 0; i < lanes<V>; ++i) {
        if (!(angle[i] > largest_small_angle)) continue;
        const LargeAngle large = folded_large_angle(angle[i]);
        high[i] = large.high;
        low[i] = large.low;
        quarters[i] = large.quarters;
    }
    return {load<V>(high), load<V>(low), load<Bits<V>>(quarters)};
}

/// For angles that are not negative.
template <Grade G, class V>
[[gnu::always_inline]] inline FoldedAngle<V> folded_angle(V x) {
    const FoldedAngle<V> folded = folded_small_angle<G>(x);
    if (any_lane(x > largest_small_angle)) [[unlikely]]
        return fold_large_lanes(x, folded);
    return folded;
}

/// A result before its last addition, so that a product with it need not round twice; its sign comes last.
template <class V>
struct Unrounded {
    V head, tail;
    V sign{}; ///< 0 or -0
    [[gnu::always_inline]] V rounded() const { return with_sign_of(head + tail, sign); }
};

/// (sin(r) / r - 1) / r^2: 2^-37.5 of sin r; (cos(r) - 1) / r^2: 2^-43.6 of cos r.
inline constexpr double sine_for_single[] = {-0x1.5555554c71cefp-3, 0x1.1111086a5fbb5p-7, -0x1.a00f7f276c400p-13,
                                             0x1.6cd1f25d88480p-19};
inline constexpr double cosine_for_single[] = {-0x1.ffffffffe98afp-2, 0x1.55555545c510ep-5, -0x1.6c16b348b97ffp-10,
                                               0x1.a00eb9add5971p-16, -0x1.23c97e213460ap-22};

template <Grade G, class V>
[[gnu::always_inline]] inline Unrounded<V> sine_of_folded(V r, [[maybe_unused]] V low) {
    const V z = r * r;
    if constexpr (G == Grade::for_single) {
        return {r, r * z * polynomial<G>(z, sine_for_single)};
    } else {
        constexpr double beyond_linear[] = {// the function above: 2^-57.9 of sin r
                                            -0x1.5555555555548p-3, 0x1.111111110f7d0p-7,   -0x1.a01a019bfdef2p-13,
                                            0x1.71de3567d397ap-19, -0x1.ae5e5a91cbe0dp-26, 0x1.5d8fd1c19ae09p-33};
        // The sine of the low part is that part times cos r.
        return {r, multiply_add<G>(r * z, polynomial<G>(z, beyond_linear),
                                   low * multiply_add<G>(z, splat<V>(-0.5), splat<V>(1)))};
    }
}

template <Grade G, class V>
[[gnu::always_inline]] inline Unrounded<V> cosine_of_folded(V r, [[maybe_unused]] V low) {
    const V z = r * r;
    if constexpr (G == Grade::for_single) {
        return {splat<V>(1), z * polynomial<G>(z, cosine_for_single)};
    } else {
        constexpr double beyond_square[] = {// (cos(r) - 1 + r^2 / 2) / r^4: 2^-64.0 of cos r
                                            0x1.555555555554bp-5,   -0x1.6c16c16c14f91p-10, 0x1.a01a019c844e7p-16,
                                            -0x1.27e4f7eac417dp-22, 0x1.1ee9d7b471250p-29,  -0x1.8fa499cb7d1bap-37};
        // What 1 - r^2 / 2 rounds away is kept.
        const V half = 0.5 * z, head = 1 - half, lost = (1 - head) - half;
        return {head, multiply_add<G>(z * z, polynomial<G>(z, beyond_square), lost - r * low)};
    }
}

template <class T>
struct SineCosine {
    T sine, cosine;
};

template <Grade G, class V>
[[gnu::always_inline]] inline SineCosine<Unrounded<V>> unrounded_sine_cosine(V x) {
    using B = Bits<V>;
    const FoldedAngle<V> a = folded_angle<G>(magnitude(x)); // so that a negative zero stays one
    const Unrounded<V> s = sine_of_folded<G>(a.high, a.low), c = cosine_of_folded<G>(a.high, a.low);
    const auto odd = (a.quarters & splat<B>(1)) != 0;
    const auto signs = [](B quarters)
                           KELS_INLINE { return bits_as<V>((quarters << splat<B>(62)) & splat<B>(INT64_MIN)); };
    // That of a cosine is bit 1 of quarters + 1, and of -quarters, which does not overflow from any NaN's bits.
    return {{odd ? c.head : s.head, odd ? c.tail : s.tail, with_sign_of(signs(a.quarters), x)},
            {odd ? s.head : c.head, odd ? s.tail : c.tail, signs(-a.quarters)}};
}

/// Sine and cosine of angles in radians. An infinite angle has NaNs.
template <Grade G, class V>
[[gnu::always_inline]] inline SineCosine<V> sine_cosine(V x) {
    const SineCosine<Unrounded<V>> parts = unrounded_sine_cosine<G>(x);
    return {parts.sine.rounded(), parts.cosine.rounded()};
}

template <Grade G, class V>
[[gnu::always_inline]] inline V sine(V x) {
    return sine_cosine<G>(x).sine;
}

template <Grade G, class V>
[[gnu::always_inline]] inline V cosine(V x) {
    return sine_cosine<G>(x).cosine;
}

/// radius sin(r) and radius cos(r) for the folded angle r, fused.
template <class V>
struct FusedProducts {
    V of_sine, of_cosine;
    Bits<V> quarters;
};

/// For angles up to 2^20. As far as r is the same as above, what is rounded away makes the only difference.
template <class V>
[[gnu::always_inline]] inline FusedProducts<V> fused_products(V radius, V angle) {
    const V shifter = splat<V>(0x1.8p52), shifted = fma(angle, splat<V>(2 / std::numbers::pi), shifter);
    const V n = shifted - shifter, first = fma(n, splat<V>(-0x1.921fb544p+0), angle); // exact
    const V r = fma(n, splat<V>(-0x1.0b4611a626331p-34), first), z = r * r, one = splat<V>(1);
    const V sine_by_r = fma(polynomial<Grade::for_double>(z, sine_for_single), z, one);
    const V cosine = fma(polynomial<Grade::for_double>(z, cosine_for_single), z, one);
    return {radius * r * sine_by_r, radius * cosine, bits_as<Bits<V>>(shifted)};
}

template <class V>
struct QuickProducts {
    V of_sine, of_cosine;
    SingleBits<V> doubtful, small;
};

/// radius sin(angle) and radius cos(angle), in doubt where a double comes within 2^-37 of the middle of two singles.
/// Where a product is small, there may be fewer singles than that test expects; r is less than its cosine, so that the
/// first product tells.
template <class V>
[[gnu::always_inline]] inline QuickProducts<V> quick_products(const float* radius, const float* angle) {
    using W = SingleBits<V>;
    using H = Vec<float, lanes<V> / 2>;
    const auto products = [=](int from) KELS_INLINE {
        return fused_products(convert<double>(load<H>(radius + from)), convert<double>(load<H>(angle + from)));
    };
    const auto a = products(0), b = products(lanes<H>);
    const auto in_middle = [](auto x, auto y) KELS_INLINE {
        constexpr std::int32_t middle = 1 << 28, width = 1 << 16;
        // Low words, in an order for which the groups of four lanes need not be crossed.
        const W low =
            shuffle<[](int i) { return i / 4 * 4 + i % 2 * 2 + i / 2 % 2 * lanes<W>; }>(bits_as<W>(x), bits_as<W>(y));
        return ((low + splat<W>(middle + width)) & splat<W>(2 * middle - 2 * width)) == 0;
    };
    const V sine = both(convert<float>(a.of_sine), convert<float>(b.of_sine));
    const V cosine = both(convert<float>(a.of_cosine), convert<float>(b.of_cosine));
    const W quarters = shuffle<[](int i) { return 2 * i; }>(bits_as<W>(a.quarters), bits_as<W>(b.quarters));
    const auto with_sign = [](V v, W turns) KELS_INLINE {
        return bits_as<V>(bits_as<W>(v) ^ ((turns << splat<W>(30)) & splat<W>(INT32_MIN)));
    };
    const auto odd = (quarters & splat<W>(1)) != 0;
    return {with_sign(odd ? cosine : sine, quarters), with_sign(odd ? sine : cosine, quarters + splat<W>(1)),
            in_middle(a.of_sine, b.of_sine) | in_middle(a.of_cosine, b.of_cosine) |
                !(magnitude(load<V>(angle)) <= static_cast<float>(largest_small_angle)),
            !(magnitude(sine) >= 0x1p-100F)};
}

} // namespace kels
