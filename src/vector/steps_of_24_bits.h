// The arithmetic of singles whose exponents have no limits: doubles rounded to 24 bits after every step. A product,
// sum, quotient or root of numbers of 24 bits, rounded to 53 and then to 24, is rounded as if at once (S. A. Figueroa).
// So singles give the same, and faster, where nothing comes near the ends of their range.
#pragma once

#include "frame/complex_vector.h"
#include "frame/simd.h"
#include "kels/types.h"

#include <type_traits>

namespace kels {

/// The result of a step: doubles rounded to 24 bits, to nearest with ties to even; singles are.
template <class V>
[[gnu::always_inline]] inline V step(V x) {
    if constexpr (std::is_same_v<Element<V>, Kel64f>) {
        using Bits = Vec<Kel64s, lanes<V>>;
        constexpr int dropped = 53 - 24;
        constexpr Kel64s below_half = (Kel64s{1} << (dropped - 1)) - 1, kept = -(Kel64s{1} << dropped);
        const Bits bits = bits_as<Bits>(x), odd = (bits >> splat<Bits>(dropped)) & 1;
        return bits_as<V>((bits + odd + below_half) & kept);
    } else {
        return x;
    }
}

template <class V>
[[gnu::always_inline]] inline V squared_modulus_in_steps(Complex<V> z) {
    return step(step(z.re * z.re) + step(z.im * z.im));
}

/// Squared moduli between these have quotients, roots and reciprocals in the range of singles, and so has a level.
inline constexpr Kel32f least_plain_square = 0x1p-62F, largest_plain_square = 0x1p62F;

inline bool is_plain_level(Kel32f level) { return level >= 0x1p-31F && level <= 0x1p31F; }

/// Whether singles do for all the elements: zeros, or of squared moduli m in range.
template <class V>
[[gnu::always_inline]] inline bool all_plain(Complex<V> z, V m) {
    const auto zero = (z.re == 0) & (z.im == 0), in_range = (m >= least_plain_square) & (m <= largest_plain_square);
    return !any_lane((zero | in_range) == 0);
}

} // namespace kels
