// The square root of 64-bit integers, exact to the last bit at every scale factor: a root in floating point, made whole
// and held against the integer itself. Elements are not negative; the default modes are set.
#pragma once

#include "frame/expanded.h"
#include "frame/numeric.h"
#include "frame/simd.h"
#include "kels/types.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace kels {

template <class V>
using DoublesLike = Vec<double, lanes<V>>;
template <class V>
using UnsignedLike = Vec<std::uint64_t, lanes<V>>;

inline constexpr double two_to_32 = 0x1p32, two_to_52 = 0x1p52, signed_52 = 0x1.8p52;

/// The integer as a sum of two doubles, without error.
template <class V>
[[gnu::always_inline]] inline Expanded<DoublesLike<V>> expanded(V x) {
    using D = DoublesLike<V>;
    const V bits = (x & splat<V>(0xFFFFFFFF)) | bits_as<V>(splat<D>(two_to_52)); // 2^52 and the lower half
    const D high = convert<double>(convert<int>(x >> splat<V>(32))) * two_to_32, low = bits_as<D>(bits) - two_to_52;
    const D sum = high + low;
    return {sum, low - (sum - high)};
}

/// A number of at most 2^50 in magnitude, rounded to an integer.
template <class V, class D>
[[gnu::always_inline]] inline V rounded_whole(D a) {
    return bits_as<V>(a + signed_52) - bits_as<V>(splat<D>(signed_52));
}

/// x^(1/2) 2^-shift. The whole root is exact; what it lacks only has to be known to be there.
template <class V>
[[gnu::always_inline]] inline V long_root_down(V x, int shift) {
    using U = UnsignedLike<V>;
    const U near = rounded_whole<U>(square_root(expanded(x).high)) & splat<U>(0xFFFFFFFF); // as it is: a short product
    const V root = (V)(near * near > (U)x ? near - 1 : near);
    const V rest = x - root * root;
    if (shift == 0) return rest > root ? root + 1 : root;
    constexpr int all = 40; // nothing is left
    const V count = splat<V>(std::min(shift, all)), one = splat<V>(1);
    const V odd = (root >> count) & one, more = rest == 0 ? odd : one;
    return (root + (one << (count - one)) - one + more) >> count;
}

/// x^(1/2) 2^shift, from a root of more than 100 bits. Where that is so close to a half that it does not tell, the
/// square of the half is held against x 4^shift: they differ by less than 64 bits hold, so that the bits above can be
/// left out.
template <class V>
[[gnu::always_inline]] inline V long_root_up(V x, int shift) {
    using D = DoublesLike<V>;
    using U = UnsignedLike<V>;
    const V some = x == 0 ? splat<V>(1) : x;
    constexpr int all = 63; // 1 saturates
    const int up = std::min(shift, all);
    const double power = power_of_two<double>(up);
    const Expanded<D> exact = root(expanded(some));
    const D whole = exact.high * power;
    // The integers nearest to both halves and to what is left beside them. The upper one goes up to 2^31, the lower one
    // down to -2^32.
    const auto upper = to_integer<true>(whole * (1 / two_to_32) - 0x1p31);
    const D upper_half = convert<double>(upper) + 0x1p31, lower = whole - upper_half * two_to_32;
    const D left = (lower - ((lower + signed_52) - signed_52)) + exact.low * power;
    const D fraction = left - ((left + signed_52) - signed_52);
    const U nearest = (rounded_whole<U>(upper_half) << splat<U>(32)) + rounded_whole<U>(lower) + rounded_whole<U>(left);
    const U count = splat<U>(static_cast<unsigned>(up)), difference = (((U)some << count) << count) - nearest * nearest;
    const U next = (V)difference > (V)nearest ? splat<U>(1) : U{};
    const U last = (V)difference <= (V)(U{} - nearest) ? splat<U>(~0ULL) : U{};
    const V result = (V)(nearest + (fraction < 0 ? last : next));
    const V not_wrapped = result < 0 ? splat<V>(std::numeric_limits<Kel64s>::max()) : result;
    const V limited = whole <= 0x1p63 ? not_wrapped : splat<V>(std::numeric_limits<Kel64s>::max());
    return x == 0 ? x : limited;
}

} // namespace kels
