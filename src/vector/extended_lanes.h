// Elements that the quick way of a kernel does not do, evaluated one by one in extended precision.
#pragma once

#include "frame/complex_vector.h"
#include "frame/modes.h"
#include "frame/simd.h"
#include "kels/types.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <type_traits>

namespace kels {

/// Which lanes a comparison marks.
template <int Lanes, class Mask>
std::array<bool, Lanes> marked_lanes(Mask mask) {
    std::array<bool, Lanes> marked;
    if constexpr (std::is_arithmetic_v<Mask>) {
        marked[0] = mask != 0;
    } else {
        std::array<Element<Mask>, Lanes> lane;
        store(lane.data(), mask);
        for (int i = 0; i < Lanes; ++i) marked[i] = lane[i] != 0;
    }
    return marked;
}

template <class V>
struct LanesInMemory {
    std::array<Element<V>, lanes<V>> re, im;

    explicit LanesInMemory(Complex<V> z) {
        store(re.data(), z.re);
        store(im.data(), z.im);
    }
    Complex<Element<V>> operator[](int i) const { return {re[i], im[i]}; }
    Complex<V> vector() const { return {load<V>(re.data()), load<V>(im.data())}; }
};

/// The quick results, but in the doubtful lanes what `one` makes of the operands. No lane depends on another.
template <class V, class Mask, class One, class... Operands>
[[gnu::noinline]] Complex<V> with_extended_lanes(Complex<V> quick, Mask doubtful, One one, Operands... operands) {
    const auto marked = marked_lanes<lanes<V>>(doubtful);
    LanesInMemory<V> result(quick);
    const auto replace = [&](const auto&... in_memory) {
        const ExtendedPrecision modes;
        for (int i = 0; i < lanes<V>; ++i) {
            if (!marked[i]) continue;
            const Complex<Element<V>> value = settled(one(settled(in_memory[i])...));
            result.re[i] = value.re;
            result.im[i] = value.im;
        }
    };
    replace(LanesInMemory<V>(operands)...);
    return result.vector();
}

/// The leading half of a double: products of halves are exact in extended precision.
inline long double leading_half(Kel64f x) { return std::bit_cast<Kel64f>(std::bit_cast<std::uint64_t>(x) >> 27 << 27); }

/// a b - product, without error, where product is a b rounded to extended precision.
inline long double extended_error(Kel64f a, Kel64f b, long double product) {
    const long double ah = leading_half(a), bh = leading_half(b), al = a - ah, bl = b - bh;
    return al * bl - (((product - ah * bh) - al * bh) - ah * bl);
}

/// a b + c d, cancellation included; nothing is too large or too small.
inline long double extended_products(Kel64f a, Kel64f b, Kel64f c, Kel64f d) {
    const long double p = static_cast<long double>(a) * b, q = static_cast<long double>(c) * d, sum = p + q;
    const long double errors = std::isfinite(sum) ? extended_error(a, b, p) + extended_error(c, d, q) : 0;
    return errors == 0 ? sum : sum + errors;
}

} // namespace kels
