// Sample types as numbers: their parts, their bits, and intermediates that hold an exact result.
#pragma once

#include "frame/simd.h"
#include "kels/types.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {

// Complex samples as two parts, so that a vector of them is a real one of twice the length.

template <class T>
struct PartOf {
    using type = T;
};
template <class T>
requires requires { &T::im; }
struct PartOf<T> {
    using type = decltype(T::im);
};

template <class T>
using Part = typename PartOf<T>::type;

template <class T>
inline constexpr int parts = static_cast<int>(sizeof(T) / sizeof(Part<T>));

template <class T>
auto reals(T* p) {
    using Real = Part<std::remove_const_t<T>>;
    return reinterpret_cast<std::conditional_t<std::is_const_v<T>, const Real, Real>*>(p);
}

// Words: the bits of a sample, or of one part of a complex sample.

template <std::size_t Bytes>
struct WordOf {
    using type = std::uint64_t;
};
template <>
struct WordOf<1> {
    using type = std::uint8_t;
};
template <>
struct WordOf<2> {
    using type = std::uint16_t;
};
template <>
struct WordOf<4> {
    using type = std::uint32_t;
};

template <class T>
using Word = typename WordOf<sizeof(Part<T>)>::type;

template <class T>
Word<T>* words(T* p) {
    return reinterpret_cast<Word<T>*>(p);
}

template <class T>
const Word<T>* words(const T* p) {
    return reinterpret_cast<const Word<T>*>(p);
}

// Wide results as real samples

/// Rounded once, as the SIMD unit rounds. Where that has no conversion from 64 bits, the compiler's goes through the
/// x87 unit, and follows the modes of that one.
template <class R, class T>
R rounded_to(T x) {
    constexpr bool wide = sizeof(T) == 8 && std::is_integral_v<T>;
    if constexpr (sizeof(R) != 4 || !wide || sizeof(void*) == 8)
        return static_cast<R>(x);
    else {
        // Bits below a double's go into its last one, which is below a single's: they still tell the sides of a tie.
        constexpr int beyond = 64 - std::numeric_limits<double>::digits;
        const bool large = (x + (T{1} << 53)) >> 54 != 0;
        if (large) x = x >> beyond | static_cast<T>((x & ((T{1} << beyond) - 1)) != 0);
        const auto high = static_cast<std::int32_t>(x >> 32), low = static_cast<std::int32_t>(x ^ 0x80000000);
        const double value = high * 0x1p32 + (low + 0x1p31);
        return static_cast<R>(large ? value * (1 << beyond) : value);
    }
}

// Intermediates

/// Bits of the magnitude: values of T lie in [-2^digits, 2^digits).
template <class T>
inline constexpr int digits = std::numeric_limits<T>::digits;

/// The narrowest signed integer with at least that many digits.
template <int Digits>
using Signed =
    std::conditional_t<Digits <= 15, std::int16_t, std::conditional_t<Digits <= 31, std::int32_t, std::int64_t>>;

/// 2^exponent, a normal number.
template <class T>
constexpr T power_of_two(int exponent) {
    constexpr int fraction = std::numeric_limits<T>::digits - 1, bias = std::numeric_limits<T>::max_exponent - 1;
    return std::bit_cast<T>(static_cast<Word<T>>(exponent + bias) << fraction);
}

/// Integer lanes converted to R; what R cannot hold becomes its nearest value.
template <class R, class V>
[[gnu::always_inline]] inline Vec<R, lanes<V>> saturate(V t) {
    using From = std::numeric_limits<Element<V>>;
    using To = std::numeric_limits<R>;
    if constexpr (lanes<V> >= 2 * max_lanes<Element<V>>) {
        using Half = Vec<Element<V>, lanes<V> / 2>;
        if constexpr (packs<R, Half>) return pack_limited<R>(half<0>(t), half<1>(t));
        if constexpr (packs<std::int16_t, Half> && sizeof(R) == 1) return saturate<R>(saturate<std::int16_t>(t));
        if constexpr (sizeof(Half) > vector_bytes) return both(saturate<R>(half<0>(t)), saturate<R>(half<1>(t)));
    }
    if constexpr (To::digits < From::digits) t = t > To::max() ? splat<V>(To::max()) : t;
    if constexpr (To::min() > From::min()) t = t < To::min() ? splat<V>(To::min()) : t;
    return convert<R>(t);
}

} // namespace kels
