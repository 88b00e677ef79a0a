// Limited reciprocals: no larger in magnitude than that of the level.
//
//   32f, 64f:  a quotient, or the level's;
//   32fc:      in steps of 24 bits (steps_of_24_bits.h);
//   64fc:      with sums of two doubles (expanded.h), in extended precision where those leave their range.

#include "kels/thresholds.h"

#include "frame/blocks.h"
#include "frame/complex_vector.h"
#include "frame/expanded.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "vector/complex_lanes.h"
#include "vector/extended_lanes.h"
#include "vector/steps_of_24_bits.h"
#include "vector/thresholds.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

template <class T>
inline constexpr T infinity = std::numeric_limits<T>::infinity();

KelStatus warning_if(bool zero_met) { return zero_met ? kelStatusInvThreshZeroLevel : kelStatusOk; }

// Real elements

template <class T>
KelStatus reciprocals(const T* src, T* dst, Index n) {
    bool zero_met = false;
    const auto reciprocal = [&zero_met](auto x) KELS_INLINE {
        using V = decltype(x);
        zero_met |= any_lane(x == 0);
        return x == 0 ? splat<V>(infinity<T>) : 1 / x;
    };
    map_blocks(dst, n, reciprocal, src);
    return warning_if(zero_met);
}

/// Singles are held against the level by their bits, doubles as numbers.
[[gnu::always_inline]] inline auto reaches(auto x, Kel32f level) {
    using Bits = Vec<Kel32s, lanes<decltype(x)>>;
    return bits_as<Bits>(magnitude(x)) >= (std::bit_cast<Kel32s>(level) & std::numeric_limits<Kel32s>::max());
}
[[gnu::always_inline]] inline auto reaches(auto x, Kel64f level) { return magnitude(x) >= level; }

bool is_zero(Kel32f level) { return std::bit_cast<Kel32s>(level) == 0; }
bool is_zero(Kel64f level) { return level == 0; }

template <class T>
KelStatus limited_reciprocal(const T* src, T* dst, int len, T level) {
    return level_call(src, dst, len, level, [=] {
        if (is_zero(level)) return reciprocals(src, dst, len);
        const auto reciprocal = [=, most = 1 / level](auto x) KELS_INLINE {
            using V = decltype(x);
            const V limit = x < 0 ? splat<V>(-most) : splat<V>(most);
            return reaches(x, level) ? 1 / x : limit;
        };
        map_blocks(dst, len, reciprocal, src);
        return kelStatusOk;
    });
}

// Complex elements

/// The reciprocal of a zero: with a level of zero, an infinity.
template <class T>
T largest(T level) {
    return level == 0 ? infinity<T> : 1 / level;
}

template <class V>
[[gnu::always_inline]] inline Complex<V> limited_in_steps(Complex<V> z, V m, Kel32f level) {
    const V limit = step(splat<V>(level) * splat<V>(level));
    const V factor = step(1 / step(step(square_root(m)) * level)), most = splat<V>(largest(level));
    const V re = m >= limit ? z.re / m : z.re * factor, im = m >= limit ? z.im / m : z.im * factor;
    return {m > 0 ? re : most, m > 0 ? -im : V{}};
}

KelStatus limited_reciprocal(const Kel32fc* src, Kel32fc* dst, int len, Kel32f level) {
    return level_call(src, dst, len, level, [=] {
        const bool plain_level = level == 0 || is_plain_level(level);
        bool zero_met = false;
        const auto reciprocal = [=, &zero_met](auto z) KELS_INLINE {
            const auto m = squared_modulus_in_steps(z);
            if (plain_level && all_plain(z, m)) [[likely]] {
                zero_met |= any_lane(m == 0);
                return limited_in_steps(z, m, level);
            }
            const auto wide = to_doubles(z);
            const auto wide_m = squared_modulus_in_steps(wide);
            zero_met |= any_lane(!(wide_m > 0));
            return to_parts<Kel32f>(limited_in_steps(wide, wide_m, level));
        };
        const RoundedToNearest modes;
        map_complex(src, dst, len, reciprocal);
        return warning_if(level == 0 && zero_met);
    });
}

/// A double counts as zero if its upper 32 bits are.
bool counts_as_zero(Kel64f x) { return std::bit_cast<std::uint64_t>(x) >> 32 == 0; }

template <class V>
[[gnu::always_inline]] inline auto count_as_zero(Complex<V> z) {
    using Bits = Vec<std::uint64_t, lanes<V>>;
    return ((bits_as<Bits>(z.re) | bits_as<Bits>(z.im)) >> splat<Bits>(32)) == 0;
}

Complex<Kel64f> limited_one(Complex<Kel64f> z, Kel64f level) {
    if (counts_as_zero(z.re) && counts_as_zero(z.im)) return {counts_as_zero(level) ? infinity<Kel64f> : 1 / level, 0};
    const long double re = z.re, im = z.im, m = re * re + im * im, limit = static_cast<long double>(level) * level;
    const long double factor = counts_as_zero(level) || m >= limit ? 1 / m : 1 / (std::sqrt(m) * level);
    return {static_cast<Kel64f>(re * factor), static_cast<Kel64f>(-(im * factor))};
}

/// For elements and levels in range; zeros have no result.
template <class V>
[[gnu::always_inline]] inline Complex<V> limited(Complex<V> z, V level) {
    const Expanded<V> m = two_squares(z.re, z.im), modulus = root(m);
    const V product = modulus.high * level;
    const V rest = product_error(modulus.high, level, product) + modulus.low * level;
    const auto large = m.high >= level * level;
    const Expanded<V> divisor = {large ? m.high : product, large ? m.low : rest};
    const V reciprocal = 1 / divisor.high;
    return {divide(Expanded<V>{z.re, V{}}, divisor, reciprocal), divide(Expanded<V>{-z.im, V{}}, divisor, reciprocal)};
}

KelStatus limited_reciprocal(const Kel64fc* src, Kel64fc* dst, int len, Kel64f level) {
    return level_call(src, dst, len, level, [=] {
        const bool safe_level = counts_as_zero(level) || (level >= 0x1p-400 && level <= 0x1p400);
        const Kel64f used = counts_as_zero(level) ? 0 : level;
        bool zero_met = false;
        const auto reciprocal = [=, &zero_met](auto z) KELS_INLINE {
            using V = decltype(z.re);
            const auto zero = count_as_zero(z);
            zero_met |= any_lane(zero);
            const Complex<V> result = limited(z, splat<V>(used));
            const Complex<V> all = {zero ? splat<V>(largest(used)) : result.re, zero ? V{} : result.im};
            const auto not_finite = (all.re - all.re) + (all.im - all.im) != 0;
            const auto doubtful = is_small(z.re) | is_small(z.im) | not_finite | (splat<V>(safe_level ? 0 : 1) != 0);
            if (any_lane(doubtful)) [[unlikely]]
                return with_extended_lanes(
                    all, doubtful, [=](Complex<Kel64f> one) { return limited_one(one, level); }, z);
            return all;
        };
        const RoundedToNearest modes;
        map_complex(src, dst, len, reciprocal);
        return warning_if(counts_as_zero(level) && zero_met);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsThreshold_LTInv_32f   (const Kel32f* a, Kel32f* d, int n, Kel32f level)   { return limited_reciprocal(a, d, n, level); }
KelStatus kelsThreshold_LTInv_32f_I (Kel32f* d, int n, Kel32f level)                    { return limited_reciprocal(d, d, n, level); }
KelStatus kelsThreshold_LTInv_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f level) { return limited_reciprocal(a, d, n, level); }
KelStatus kelsThreshold_LTInv_32fc_I(Kel32fc* d, int n, Kel32f level)                   { return limited_reciprocal(d, d, n, level); }
KelStatus kelsThreshold_LTInv_64f   (const Kel64f* a, Kel64f* d, int n, Kel64f level)   { return limited_reciprocal(a, d, n, level); }
KelStatus kelsThreshold_LTInv_64f_I (Kel64f* d, int n, Kel64f level)                    { return limited_reciprocal(d, d, n, level); }
KelStatus kelsThreshold_LTInv_64fc  (const Kel64fc* a, Kel64fc* d, int n, Kel64f level) { return limited_reciprocal(a, d, n, level); }
KelStatus kelsThreshold_LTInv_64fc_I(Kel64fc* d, int n, Kel64f level)                   { return limited_reciprocal(d, d, n, level); }
}
// clang-format on
