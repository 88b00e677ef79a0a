// The numbers of fixed-point transforms: words of 32 bits, whose sums wrap, and roots of unity in Q14.
#pragma once

#include "frame/complex_vector.h"
#include "frame/scale.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kels {

/// Words wrap as unsigned integers do; where they are shifted down they have a sign.
template <int Lanes>
using Words = Vec<Kel32u, Lanes>;

template <class V>
using SignedWords = Vec<Kel32s, lanes<V>>;

/// words 2^-shift, rounded down.
template <class V>
[[gnu::always_inline]] inline V shifted_down(V words, int shift) {
    using S = SignedWords<V>;
    return (V)((S)words >> splat<S>(shift));
}

// Roots

inline constexpr int top_fixed_order = 10;

/// c - i s in Q14 as factors of two products each: what `turned_part` takes for the real and for the imaginary part.
struct RootQ14 {
    Kel32u re, im;
};

constexpr RootQ14 root_q14(int c, int s) {
    const auto factors = [](int of_re, int of_im) {
        return static_cast<Kel16u>(of_re) | static_cast<Kel32u>(of_im) << 16;
    };
    return {factors(c, s), factors(-s, c)};
}

/// exp(-2 pi i k / 2^top_fixed_order). Shorter transforms step through it.
inline constexpr auto circle_q14 = [] {
    constexpr int points = 1 << top_fixed_order, quarter = points / 4;
    std::array<int, quarter + 1> sine{};
    for (int k = 0; k <= quarter; ++k) {
        const long double x = 6.283185307179586476925286766559L * k / points;
        long double sum = x, term = x;
        for (int i = 1; i < 14; ++i) sum += term *= -x * x / ((2 * i) * (2 * i + 1));
        sine[k] = static_cast<int>(sum * 16384 + 0.5L);
    }
    std::array<RootQ14, points> circle{};
    for (int k = 0; k < points; ++k) {
        int c = sine[quarter - k % quarter], s = sine[k % quarter];
        for (int turn = 0; turn < k / quarter; ++turn) { // by a quarter
            const int was = c;
            c = -s;
            s = was;
        }
        circle[k] = root_q14(c, s);
    }
    return circle;
}();

/// exp(-2 pi i k / 2^order).
constexpr RootQ14 root_q14_of_order(int order, int k) { return circle_q14[k << (top_fixed_order - order)]; }

// Products

/// Complex words cut where two products fit 32 bits: the upper 16 bits, which have the sign, and of the lower ones the
/// upper 15. The parts of a number stand side by side.
template <class V>
struct CutWords {
    using Halves = Vec<std::int16_t, 2 * lanes<V>>;
    Halves upper, lower;

    [[gnu::always_inline]] explicit CutWords(Complex<V> z) {
        using UnsignedHalves = Vec<std::uint16_t, 2 * lanes<V>>;
        const V low_half = splat<V>(0xFFFFU), sixteen = splat<V>(16U);
        upper = bits_as<Halves>((z.re >> sixteen) | (z.im & ~low_half));
        const auto low = bits_as<UnsignedHalves>((z.re & low_half) | (z.im << sixteen));
        lower = bits_as<Halves>(low >> splat<UnsignedHalves>(1));
    }
};

/// One part of the product with a root: the sum of both products, each of a word without its last bit, in Q14. What is
/// dropped below the point is counted by `Rounding` first, in units of 2^-13.
template <int Rounding, class V>
[[gnu::always_inline]] inline V turned_part(const CutWords<V>& z, V root) {
    using S = SignedWords<V>;
    const auto factors = bits_as<typename CutWords<V>::Halves>(root);
    S lower = add_products(z.lower, factors);
    if constexpr (Rounding != 0) lower += splat<S>(Rounding);
    return shifted_down((V)lower, 13) + ((V)add_products(z.upper, factors) << splat<V>(2U));
}

template <int Rounding = 0, class V>
[[gnu::always_inline]] inline Complex<V> turned_q14(Complex<V> z, V root_re, V root_im) {
    const CutWords<V> cut(z);
    return {turned_part<Rounding>(cut, root_re), turned_part<Rounding>(cut, root_im)};
}

template <class V>
[[gnu::always_inline]] inline Complex<V> turned_q14(Complex<V> z, RootQ14 root) {
    return turned_q14(z, splat<V>(root.re), splat<V>(root.im));
}

/// words / sqrt(2), rounded down: the factor is 23170 / 2^15.
template <class V>
[[gnu::always_inline]] inline V over_root_of_two(V words) {
    const V of_upper = shifted_down(words, 16) * splat<V>(2 * 23170U);
    return of_upper + (((words & splat<V>(0xFFFFU)) * splat<V>(23170U)) >> splat<V>(15U));
}

// From words to samples

/// To nearest, ties upward; the shift is from 1 to 31.
struct ShiftedDown {
    int shift;

    template <class V>
    [[gnu::always_inline]] Vec<Kel16s, lanes<V>> operator()(V t) const {
        const V carry = (t >> splat<V>(shift - 1)) & splat<V>(1);
        return saturate<Kel16s>((t >> splat<V>(shift)) + carry);
    }
};

/// Calls body with what makes samples of words: times 2^-shift, saturated; over the root of two before if so wanted.
template <class Body>
void with_samples(std::int64_t shift, bool over_root, const Body& body) {
    const auto with = [&](auto convert) {
        if (over_root)
            body([=](auto words)
                     KELS_INLINE { return convert((SignedWords<decltype(words)>)over_root_of_two(words)); });
        else
            body([=](auto words) KELS_INLINE { return convert((SignedWords<decltype(words)>)words); });
    };
    if (shift > 31)
        with(Vanishing<Kel16s>{});
    else if (shift > 0)
        with(ShiftedDown{static_cast<int>(shift)});
    else if (shift == 0)
        with(Unscaled<Kel16s>{});
    else
        with(ScaledUp<Kel16s>{static_cast<int>(-std::max<std::int64_t>(shift, -digits<Kel16s>))});
}

} // namespace kels
