// Exponentials.
//
//   singles:   a power from a table and a short series, in pairs of singles, where that is enough for the nearest
//   single;
//              otherwise 2^f for the fraction f of x / ln 2, in double arithmetic, rounded once;
//   doubles:   the same with the terms that rounding would lose;
//   integers:  few elements give anything between 0 and the largest integer: 12, 23 or 45 consecutive ones, whatever
//   the
//              scale factor. A table has them, with zeros in front and largest integers behind.

#include "kels/exponential.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/math/exponential.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "vector/powers_of_e.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

// Real numbers

/// Beyond the range: told by the bits, NaNs among them.
template <class V>
[[gnu::noinline]] V beyond_single(V x, V inside) {
    using W = Vec<std::int32_t, lanes<V>>;
    const W bits = bits_as<W>(x), size = bits & splat<W>(INT32_MAX), sign = bits & splat<W>(INT32_MIN);
    constexpr std::int32_t top = 0x42AE3333, bottom = 0x42AEAC4A, quiet = 0x7FC00000; // 87.1, -87.336502
    const W infinity = splat<W>(0x7F800000), above = (bits >= top) ? infinity : bits_as<W>(inside);
    const W beyond = ((size >= bottom) & (bits < 0)) ? W{} : above;
    return bits_as<V>((size >= quiet) ? (sign | splat<W>(quiet)) : beyond);
}

/// By way of doubles.
template <class V>
[[gnu::always_inline]] inline V wide_exponentials(V x) {
    using W = Vec<std::int32_t, lanes<V>>;
    const V inside =
        in_doubles([](auto wide) KELS_INLINE { return convert<Kel32f>(exponential<Grade::for_single>(wide)); }, x);
    constexpr std::int32_t top = 0x42AE3333;
    if (any_lane((bits_as<W>(x) & splat<W>(INT32_MAX)) >= top)) [[unlikely]]
        return beyond_single(x, inside);
    return inside;
}

template <class V>
[[gnu::always_inline]] inline V exponentials_for_singles(V x) {
    const auto wide = [](V all) KELS_INLINE { return wide_exponentials(all); };
    if constexpr (has_quick_functions<V>)
        return known(quick_exponential(x), wide, x);
    else
        return wide(x);
}

constexpr double bottom = -708.3935546875;
constexpr double top = 709.436139303104; // its multiple 1 / ln 2 is nearest to 1024

template <class V>
[[gnu::noinline]] V beyond_double(V x, V inside) {
    const V above = x >= top ? splat<V>(HUGE_VAL) : inside, beyond = x <= bottom ? V{} : above;
    using W = Bits<V>;
    const W quiet = splat<W>(0x7FF8000000000000), sign = bits_as<W>(x) & splat<W>(INT64_MIN);
    return x != x ? bits_as<V>(quiet | sign) : beyond;
}

template <class V>
[[gnu::always_inline]] inline V exponentials_for_doubles(V x) {
    const V inside = exponential<Grade::for_double>(x), size = magnitude(x);
    if (any_lane((size >= -bottom) | (size != size))) [[unlikely]]
        return beyond_double(x, inside);
    return inside;
}

template <class T>
KelStatus exponentials(const T* src, Kel64f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        map_blocks(
            dst, len,
            [](auto x) KELS_INLINE {
                return in_doubles([](auto wide) KELS_INLINE { return exponentials_for_doubles(wide); }, x);
            },
            src);
    });
}

KelStatus exponentials(const Kel32f* src, Kel32f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        map_blocks(
            dst, len, [](auto x) KELS_INLINE { return exponentials_for_singles(x); }, src);
    });
}

// Integers

/// Sums of two doubles from 0 on, rounded to nearest, halves up; what is beyond T becomes its largest.
template <class T, class V>
[[gnu::always_inline]] inline Vec<int, lanes<V>> nearest_integers(V high, V low) {
    constexpr double most = std::numeric_limits<T>::max();
    const V limited = high > most + 1 ? splat<V>(most + 1) : high;
    const V whole = nearest_whole(limited).real, rest = (limited - whole) + low;
    const V up = rest >= 0.5 ? whole + 1 : whole, rounded = rest < -0.5 ? whole - 1 : up;
    return to_integer<true>(rounded > most ? splat<V>(most) : rounded);
}

/// The same for 64 bits; there are no halves.
Kel64s nearest_long(double high, double low) {
    if (high >= 0x1p63) return std::numeric_limits<Kel64s>::max();
    const double whole = high < 0x1p52 ? (high + 0x1p52) - 0x1p52 : high;
    return static_cast<Kel64s>(whole) + static_cast<Kel64s>(nearest_whole((high - whole) + low).real);
}

/// e^x 2^-factor as an integer, for x from some first one on.
template <class T>
struct Results {
    static constexpr int count = table_entries<T>;

    alignas(64) TableEntry<T> entry[count];

    void round(const double* high, const double* low, double power) {
        if constexpr (sizeof(T) == 8) {
            for (int i = 0; i < count; ++i) entry[i] = nearest_long(high[i] * power, low[i] * power);
        } else {
            using V = Vec<double>;
            for (int i = 0; i < count; i += lanes<V>) {
                const auto rounded = nearest_integers<T>(load<V>(high + i) * power, load<V>(low + i) * power);
                store(entry + i, convert<TableEntry<T>>(rounded));
            }
        }
    }

    /// With all powers in the table, and a factor of their size.
    void from_table(int first, int factor) {
        constexpr int zero = -PowersOfE::first;
        round(powers_of_e.high + zero + first, powers_of_e.low + zero + first, power_of_two<double>(-factor));
    }

    void from_powers(std::int64_t first, std::int64_t factor) {
        const ScaledTwoDoubles start = power_of_e(first);
        double high[count], low[count];
        for (int i = 0; i < count; ++i) {
            const int at = i - PowersOfE::first;
            const ScaledTwoDoubles power = start * ScaledTwoDoubles{{powers_of_e.high[at], powers_of_e.low[at]}, 0};
            const auto e = static_cast<int>(std::clamp<std::int64_t>(power.exponent - factor, -200, 200));
            high[i] = std::ldexp(power.value.high, e);
            low[i] = std::ldexp(power.value.low, e);
        }
        round(high, low, 1);
    }
};

/// Looks elements up, those outside the table as its ends.
template <class T>
void look_up(const T* src, T* dst, Index n, const Results<T>& results, T first) {
    const auto found = [&results, first](auto x) KELS_INLINE {
        using V = decltype(x);
        const V low = splat<V>(first), high = splat<V>(static_cast<T>(first + (Results<T>::count - 1)));
        const V above = x < low ? low : x;
        return lookup(results.entry, static_cast<V>((above > high ? high : above) - low));
    };
    map_blocks(dst, n, found, src);
}

/// An element below which all results are 0: e^x 2^-factor is less than a half.
std::int64_t last_zero(int factor) {
    constexpr double ln2 = 0.69314718055994531;
    return static_cast<std::int64_t>(std::floor((static_cast<double>(factor) - 1) * ln2)) - 1;
}

/// What a factor does to the integers nearest to e^x, and to elements for which the exponent of e^x leaves the range of
/// doubles.
void follow_long_rules(Results<Kel64s>& results, std::int64_t first, int factor) {
    constexpr Kel64s most = std::numeric_limits<Kel64s>::max();
    for (int i = 0; i < Results<Kel64s>::count; ++i) {
        const std::int64_t x = first + i;
        Kel64s& entry = results.entry[i];
        const int at = static_cast<int>(std::clamp<std::int64_t>(x, 0, 44)) - PowersOfE::first;
        const Kel64s nearest = nearest_long(powers_of_e.high[at], powers_of_e.low[at]);
        if (factor == 1 && x >= 0 && x < 44)
            entry = static_cast<Kel64s>((static_cast<std::uint64_t>(nearest) + 1) >> 1);
        if (factor == -1 && x >= 0) entry = nearest > most / 2 ? most : 2 * nearest;
        if (factor == 1 && x > 44) entry = most;
        if (x >= 710) entry = most;
        if (x <= -709) entry = 0;
    }
}

template <class T>
KelStatus exponentials(const T* src, T* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        constexpr std::int64_t lowest = sizeof(T) == 8 ? -709 : std::numeric_limits<T>::min();
        constexpr std::int64_t highest =
            sizeof(T) == 8 ? 709 : std::int64_t{std::numeric_limits<T>::max()} - (Results<T>::count - 1);
        const std::int64_t first = std::clamp(last_zero(factor), lowest, highest);
        Results<T> results;
        if (first >= PowersOfE::first && first + Results<T>::count - 1 <= PowersOfE::last && std::abs(factor) < 500)
            results.from_table(static_cast<int>(first), factor);
        else
            results.from_powers(first, factor);
        if constexpr (sizeof(T) == 8) follow_long_rules(results, first, factor);
        look_up(src, dst, len, results, static_cast<T>(first));
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsExp_32f     (const Kel32f* a, Kel32f* d, int n)        { return exponentials(a, d, n); }
KelStatus kelsExp_32f_I   (Kel32f* d, int n)                         { return exponentials(d, d, n); }
KelStatus kelsExp_64f     (const Kel64f* a, Kel64f* d, int n)        { return exponentials(a, d, n); }
KelStatus kelsExp_64f_I   (Kel64f* d, int n)                         { return exponentials(d, d, n); }
KelStatus kelsExp_32f64f  (const Kel32f* a, Kel64f* d, int n)        { return exponentials(a, d, n); }
KelStatus kelsExp_16s_Sfs (const Kel16s* a, Kel16s* d, int n, int s) { return exponentials(a, d, n, s); }
KelStatus kelsExp_16s_ISfs(Kel16s* d, int n, int s)                  { return exponentials(d, d, n, s); }
KelStatus kelsExp_32s_Sfs (const Kel32s* a, Kel32s* d, int n, int s) { return exponentials(a, d, n, s); }
KelStatus kelsExp_32s_ISfs(Kel32s* d, int n, int s)                  { return exponentials(d, d, n, s); }
KelStatus kelsExp_64s_Sfs (const Kel64s* a, Kel64s* d, int n, int s) { return exponentials(a, d, n, s); }
KelStatus kelsExp_64s_ISfs(Kel64s* d, int n, int s)                  { return exponentials(d, d, n, s); }
}
// clang-format on
