// What the elementary functions share: two grades of precision, polynomials, whole parts.
//
// All of them work on lanes of doubles, or on one double. Their polynomials are minimax fits of our own (the exchange
// of E. Remez, in 50 digits, coefficients then rounded to double); beside each stands the error of the fit.
#pragma once

#include "frame/simd.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kels {

/// What becomes of a result.
enum class Grade {
    /// It is rounded to single: its error is about 2^-35 of it, and one single in some thousands is not the nearest.
    /// Nothing is fused that is not exact, so that every level gives the same bits.
    for_single,
    /// It stays a double, less than 1 ulp from the exact value.
    for_double,
    /// It becomes an integer, or meets other doubles before it is rounded to single: as good as a double, but for the
    /// last places, and nothing is fused.
    same_everywhere,
};

template <class V>
using Bits = Vec<std::int64_t, lanes<V>>;

/// a b + c, for singles rounded twice at every level.
template <Grade G, class V>
[[gnu::always_inline]] inline V multiply_add(V a, V b, V c) {
    if constexpr (G == Grade::for_double)
        return fma(a, b, c);
    else
        return a * b + c;
}

/// The polynomial of the coefficients, from the constant one up, by Horner's rule.
template <Grade G, class V, std::size_t N>
[[gnu::always_inline]] inline V polynomial(V x, const double (&coefficients)[N]) {
    V sum = splat<V>(coefficients[N - 1]);
    unrolled<static_cast<int>(N) - 1>([&](auto i) KELS_INLINE {
        sum = multiply_add<G>(sum, x, splat<V>(coefficients[N - 2 - static_cast<std::size_t>(i)]));
    });
    return sum;
}

/// A whole number in two forms: as a double, and as an integer in the low half of the lane's bits.
template <class V>
struct Whole {
    V real;
    Bits<V> low_bits;
};

/// The integer nearest to x, of less than 2^51, when the unit rounds to nearest.
template <class V>
[[gnu::always_inline]] inline Whole<V> nearest_whole(V x) {
    const V shifter = splat<V>(0x1.8p52); // its last place is 1
    const V shifted = x + shifter;
    return {shifted - shifter, bits_as<Bits<V>>(shifted)};
}

inline constexpr int fraction_bits = 52;

/// x 2^n, for normal results. Lanes that are none wrap: others take their place.
template <class V>
[[gnu::always_inline]] inline V scaled_by_power(V x, Bits<V> n) {
    using Words = Vec<std::uint64_t, lanes<V>>;
    return bits_as<V>(bits_as<Words>(x) + (bits_as<Words>(n) << splat<Words>(fraction_bits)));
}

/// The sign of `from` flipped into x, or put on an x without one.
template <class V>
[[gnu::always_inline]] inline V with_sign_of(V x, V from) {
    const Bits<V> sign = bits_as<Bits<V>>(from) & splat<Bits<V>>(INT64_MIN);
    return bits_as<V>(bits_as<Bits<V>>(x) ^ sign);
}

template <class V>
[[gnu::always_inline]] inline V smaller(V a, V b) {
    return a < b ? a : b;
}

/// f of one register of lanes at a time.
template <class F, class V, class... More>
[[gnu::always_inline]] inline auto by_registers(const F& f, V x, More... more) {
    if constexpr (sizeof(V) > vector_bytes)
        return both(by_registers(f, half<0>(x), half<0>(more)...), by_registers(f, half<1>(x), half<1>(more)...));
    else
        return f(x, more...);
}

/// f of lanes converted to double, one register at a time.
template <class F, class V, class... More>
[[gnu::always_inline]] inline auto in_doubles(const F& f, V x, More... more) {
    if constexpr (lanes < V >> max_lanes<double>)
        return both(in_doubles(f, half<0>(x), half<0>(more)...), in_doubles(f, half<1>(x), half<1>(more)...));
    else
        return f(convert<double>(x), convert<double>(more)...);
}

} // namespace kels
