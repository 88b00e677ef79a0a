// Logarithms, and sums of logarithms.
//
//   singles:   in pairs of singles, where that is enough for the nearest single and registers are wide enough;
//   otherwise
//              in double arithmetic, rounded once;
//   doubles:   with the terms that rounding would lose;
//   integers:  by the thresholds of the few results there are, or by a logarithm that is too fine to miss a half: those
//   of
//              integers of 32 bits come no closer to one than 2^-47;
//   sums:      a product of mantissas beside a sum of exponents, lane by lane: a double holds the product of singles,
//   two
//              doubles that of doubles.

#include "frame/math/logarithm.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/two_doubles.h"
#include "kels/exponential.h"
#include "kels/services.h"
#include "vector/integers_by_reals.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <type_traits>

namespace kels {
namespace {

// Elements without a logarithm

/// Samples as signed integers of their size: what is 0 or negative there has no logarithm, -0 and negative NaNs too.
template <class T>
using SignedWord = std::make_signed_t<Word<T>>;

template <class T>
KelStatus offence(T x) {
    const auto word = std::bit_cast<SignedWord<T>>(x);
    return word > 0 ? kelStatusOk : word == 0 ? kelStatusLnZeroArg : kelStatusLnNegArg;
}

/// What the first offender gives.
template <class T>
KelStatus first_offence(const T* x, Index n) {
    const Word<T>* word = words(x);
    Word<T> signs = 0; // of the words, and of those below them
    for (Index i = 0; i < n; ++i) signs = static_cast<Word<T>>(signs | word[i] | (word[i] - 1));
    if (static_cast<SignedWord<T>>(signs) < 0) [[unlikely]]
        for (Index i = 0; i < n; ++i)
            if (const KelStatus status = offence(x[i]); status != kelStatusOk) return status;
    return kelStatusOk;
}

/// dst[i] = f(src[i]) over lanes, and the first offence. Pieces are looked at before they are overwritten.
template <class T, class R, class F>
KelStatus map_logarithms(const T* src, R* dst, Index n, const F& f) {
    constexpr Index piece = 1024;
    KelStatus status = kelStatusOk;
    for (Index i = 0; i < n; i += piece) {
        const Index m = std::min(piece, n - i);
        if (status == kelStatusOk) status = first_offence(src + i, m);
        map_blocks(dst + i, m, f, src + i);
    }
    return status;
}

// Real numbers

/// Lanes among which are some without a logarithm, NaNs, infinities or subnormal numbers.
template <Grade G, class V>
[[gnu::noinline]] V special_logarithms(V x) {
    const V infinity = splat<V>(HUGE_VAL), nan = splat<V>(std::bit_cast<double>(0x7FF8000000000000));
    const auto ordinary = (x > 0) & (x < infinity);
    const V finite = logarithm<G>(ordinary ? x : splat<V>(1)), beyond = x == infinity ? x : nan;
    const V not_zero = ordinary ? finite : beyond, not_negative = x == 0 ? -infinity : not_zero;
    return bits_as<Bits<V>>(x) < 0 ? -nan : not_negative;
}

template <Grade G, class V>
[[gnu::always_inline]] inline V logarithms(V x) {
    if (any_lane((x < 0x1p-1022) | (x >= HUGE_VAL) | (x != x))) [[unlikely]]
        return special_logarithms<G>(x);
    return with_parts(x, [](V m, V k) KELS_INLINE { return logarithm_of_parts<G>(m, k); });
}

/// By way of doubles: taken apart as singles, of which a register holds twice as many.
template <class V>
[[gnu::always_inline]] inline V wide_logarithms(V x) {
    using W = Vec<std::int32_t, lanes<V>>;
    using U = Vec<std::uint32_t, lanes<V>>;
    const W word = bits_as<W>(x), above = bits_as<W>(bits_as<U>(x) - splat<U>(root_half_of_single));
    if (any_lane((word < 0x00800000) | (word >= 0x7F800000))) [[unlikely]]
        return in_doubles([](auto wide) KELS_INLINE { return convert<Kel32f>(logarithms<Grade::for_single>(wide)); },
                          x);
    const V m = bits_as<V>(word - (above & splat<W>(static_cast<std::int32_t>(0xFF800000))));
    return in_doubles([](auto wide, auto k)
                          KELS_INLINE { return convert<Kel32f>(logarithm_of_parts<Grade::for_single>(wide, k)); },
                      m, above >> splat<W>(23));
}

template <class V>
[[gnu::always_inline]] inline V logarithms_for_singles(V x) {
    const auto wide = [](V all) KELS_INLINE { return wide_logarithms(all); };
    if constexpr (has_quick_logarithm<V>)
        return known(quick_logarithm(x), wide, x);
    else
        return wide(x);
}

KelStatus logarithms(const Kel32f* src, Kel32f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        return map_logarithms(src, dst, len, [](auto x) KELS_INLINE { return logarithms_for_singles(x); });
    });
}
KelStatus logarithms(const Kel64f* src, Kel64f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        return map_logarithms(src, dst, len, [](auto x) KELS_INLINE { return logarithms<Grade::for_double>(x); });
    });
}
KelStatus logarithms(const Kel64f* src, Kel32f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        return map_logarithms(src, dst, len, [](auto x) KELS_INLINE {
            return in_doubles(
                [](auto part) KELS_INLINE { return convert<Kel32f>(logarithms<Grade::for_single>(part)); }, x);
        });
    });
}

// Integers

/// The first x whose rounded logarithm is 0, 1, 2 ...
constexpr Kel32s rounded_from[] = {1,       2,        5,        13,        34,        91,       245,    666,
                                   1809,    4915,     13360,    36316,     98716,     268338,   729417, 1982760,
                                   5389699, 14650720, 39824785, 108254988, 294267567, 799902178};

/// How many of the thresholds x has reached. Registers of 64 bytes are compared into masks, from which lanes take a
/// while; so they are counted by halves, which are not.
template <class V, std::size_t N>
[[gnu::always_inline]] inline V steps_reached(V x, const Kel16s (&thresholds)[N]) {
    if constexpr (sizeof(V) == 64) {
        return both(steps_reached(half<0>(x), thresholds), steps_reached(half<1>(x), thresholds));
    } else {
        V steps{};
        for (const Kel16s threshold : thresholds) steps += x >= threshold ? splat<V>(1) : V{};
        return steps;
    }
}

/// Of 16-bit elements, the results for a factor of -1, 0 ... 4: all that there are.
constexpr Kel16s doubled[] = {2,   3,   4,   6,    10,   16,   26,   43,    71,    116,  232,
                              364, 464, 928, 1456, 1856, 3712, 7424, 11648, 14848, 29696};
constexpr Kel16s whole[] = {2, 5, 13, 34, 91, 245, 666, 1809, 4915, 13360};
constexpr Kel16s halved[] = {3, 21, 149, 1097, 8104};
constexpr Kel16s quarter[] = {8, 404, 22027};
constexpr Kel16s eighth[] = {55};
constexpr Kel16s sixteenth[] = {2981};

template <std::size_t N>
KelStatus map_steps(const Kel16s* src, Kel16s* dst, int len, const Kel16s (&thresholds)[N]) {
    return map_logarithms(src, dst, len, [&](auto x) KELS_INLINE { return steps_reached(x, thresholds); });
}

/// ln x 2^shift, rounded to nearest and limited; 0 for what has no logarithm.
template <Grade G, class V>
[[gnu::always_inline]] inline Vec<Kel16s, lanes<V>> enlarged_logarithm(V x, double power) {
    const auto rounded = in_doubles(
        [=](auto part) KELS_INLINE {
            using D = decltype(part);
            const D positive = part < 1 ? splat<D>(1) : part;
            const D exact = with_parts(positive, [](D m, D k) KELS_INLINE { return logarithm_of_parts<G>(m, k); });
            return to_integer<false>(smaller(exact * power, splat<D>(32767)));
        },
        x);
    return convert<Kel16s>(rounded);
}

KelStatus integer_logarithms(const Kel16s* src, Kel16s* dst, int len, int factor) {
    switch (factor) {
    case -1:
        return map_steps(src, dst, len, doubled);
    case 0:
        return map_steps(src, dst, len, whole);
    case 1:
        return map_steps(src, dst, len, halved);
    case 2:
        return map_steps(src, dst, len, quarter);
    case 3:
        return map_steps(src, dst, len, eighth);
    case 4:
        return map_steps(src, dst, len, sixteenth);
    default:
        break;
    }
    if (factor > 4) return map_logarithms(src, dst, len, [](auto x) KELS_INLINE { return decltype(x){}; });
    const double power = std::ldexp(1.0, -std::max(factor, -16)); // by which all but ln 1 is beyond the range
    return map_logarithms(src, dst, len, [=](auto x) KELS_INLINE {
        return enlarged_logarithm<Grade::for_single>(convert<int>(x), power);
    });
}

/// By the power of two below x, what is to be passed in its binade for the next result.
struct Thresholds {
    alignas(64) Kel32s last_below[table_entries<Kel32s>];

    constexpr Thresholds() {
        for (int e = 0; e < table_entries<Kel32s>; ++e) {
            last_below[e] = std::numeric_limits<Kel32s>::max();
            for (const Kel32s from : rounded_from)
                if (from > std::int64_t{1} << e && from < std::int64_t{2} << e) last_below[e] = from - 1;
        }
    }
};
constexpr Thresholds thresholds_of_binades;

/// The integer nearest to ln x; 0 for what has no logarithm.
template <class V>
[[gnu::always_inline]] inline V rounded_logarithm(V x) {
    const V positive = x > 1 ? x : splat<V>(1);
    // The conversion cannot round up to the next power of two without the bit below the first.
    const auto leading = convert<Kel32f>(positive & ~(positive >> splat<V>(1)));
    const V e = (bits_as<V>(leading) >> splat<V>(23)) - 127;
    const V of_power = (e * 177 + 128) >> splat<V>(8); // e ln 2, rounded
    return of_power + (positive > lookup(thresholds_of_binades.last_below, e) ? splat<V>(1) : V{});
}

KelStatus integer_logarithms(const Kel32s* src, Kel16s* dst, int len, int factor) {
    if (factor >= 0) {
        const int shift = std::min(factor, 31);
        return map_logarithms(src, dst, len, [=](auto x) KELS_INLINE {
            return by_registers(
                [=](auto part)
                    KELS_INLINE { return convert<Kel16s>(rounded_logarithm(part) >> splat<decltype(part)>(shift)); },
                x);
        });
    }
    const double power = std::ldexp(1.0, -std::max(factor, -16));
    return map_logarithms(src, dst, len,
                          [=](auto x) KELS_INLINE { return enlarged_logarithm<Grade::for_double>(x, power); });
}

template <class T>
KelStatus logarithms(const T* src, Kel16s* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(true);
        return integer_logarithms(src, dst, len, factor);
    });
}

// Sums

/// A product of numbers, its exponent apart.
struct Product {
    TwoDoubles value{1, 0};
    std::int64_t exponent = 0;

    /// The value from 2^(-1/2) to 2^(1/2), so that what is close to 1 is seen to be.
    void normalise() {
        int e = 0;
        if (std::frexp(value.high, &e) < std::numbers::sqrt2 / 2) --e;
        value = {std::ldexp(value.high, -e), std::ldexp(value.low, -e)};
        exponent += e;
    }
    void multiply(const Product& other) {
        value = value * other.value;
        exponent += other.exponent;
        normalise();
    }
};

/// Lanes of products; Exact keeps the rounding errors of every step.
template <bool Exact>
struct LaneProducts {
    static constexpr int count = 16;
    using V = Vec<double, count>;

    V high = splat<V>(1), low{};
    Vec<std::uint64_t, count> exponents{}; // biased

    /// Positive normal numbers.
    [[gnu::always_inline]] void multiply(V x) {
        using B = Vec<std::uint64_t, count>;
        const B bits = bits_as<B>(x), fraction = splat<B>((std::uint64_t{1} << fraction_bits) - 1);
        const V m = bits_as<V>((bits & fraction) | splat<B>(0x3FF0000000000000));
        exponents += bits >> splat<B>(fraction_bits);
        const V product = high * m;
        if constexpr (Exact) low = low * m + product_error(high, m, product);
        high = product;
    }
    void multiply_into(Product& total, Index steps) const {
        double highs[count], lows[count];
        std::uint64_t exponent[count];
        store(highs, high);
        store(lows, low);
        store(exponent, exponents);
        for (int lane = 0; lane < count; ++lane)
            total.multiply({{highs[lane], lows[lane]}, static_cast<std::int64_t>(exponent[lane]) - 1023 * steps});
    }
};

/// The product of positive, finite and normal elements.
template <bool Exact, class T>
void multiply_regular(Product& total, const T* x, Index n) {
    using Lanes = LaneProducts<Exact>;
    constexpr Index count = Lanes::count;
    Lanes products;
    Index i = 0;
    for (; i + count <= n; i += count) products.multiply(convert<double>(load<Vec<T, count>>(x + i)));
    if (i < n) {
        T rest[count];
        std::fill_n(rest, count, T{1});
        std::copy(x + i, x + n, rest);
        products.multiply(convert<double>(load<Vec<T, count>>(rest)));
    }
    products.multiply_into(total, (n + count - 1) / count);
}

/// Positive, finite and normal, all of them.
template <class T>
bool all_regular(const T* x, Index n) {
    const Word<T>* word = words(x);
    if constexpr (std::is_integral_v<T>) {
        return first_offence(x, n) == kelStatusOk;
    } else {
        constexpr auto least = std::bit_cast<Word<T>>(std::numeric_limits<T>::min());
        constexpr auto count = std::bit_cast<Word<T>>(std::numeric_limits<T>::infinity()) - least;
        bool all = true;
        for (Index i = 0; i < n; ++i) all &= static_cast<Word<T>>(word[i] - least) < count;
        return all;
    }
}

/// What a sum comes to besides its product.
struct Ending {
    KelStatus status = kelStatusOk;
    bool ended = false;
    Kel64f value = 0; ///< of a sum that has ended; an infinity or a NaN to be added to another one
};

/// Element by element, up to the first one that ends the sum.
template <class T>
Ending multiply_special(Product& total, const T* x, Index n) {
    Ending ending;
    for (Index i = 0; i < n; ++i) {
        const KelStatus status = offence(x[i]);
        const bool integer = std::is_integral_v<T>;
        if (status == kelStatusLnZeroArg) return {status, true, integer ? 0 : -HUGE_VAL};
        if (status == kelStatusLnNegArg) return {status, true, integer ? 0 : kelConstantOfNAN_64f};
        if constexpr (!std::is_integral_v<T>) {
            constexpr auto quiet = std::bit_cast<Word<T>>(std::numeric_limits<T>::quiet_NaN());
            if (std::bit_cast<Word<T>>(x[i]) >= quiet) return {kelStatusOk, true, -kelConstantOfNAN_64f};
            if (!std::isfinite(x[i])) {
                ending.value += x[i];
                continue;
            }
        }
        Product element{{static_cast<double>(x[i]), 0}, 0};
        element.normalise();
        total.multiply(element);
    }
    return ending;
}

/// The logarithm of the product, in extended precision.
template <class R>
R sum_of(const Product& total, Kel64f beyond) {
    const ExtendedPrecision modes;
    if (beyond != 0) return static_cast<R>(beyond);
    const long double high = total.value.high, exponent = static_cast<long double>(total.exponent);
    const long double sum = exponent * std::numbers::ln2_v<long double> + (std::log(high) + total.value.low / high);
    return settled(static_cast<R>(sum));
}

template <class T, class R>
KelStatus sum_logarithms(const T* src, int len, R* sum) {
    return vector_call({src, sum}, len, [=] {
        const DefaultModes modes(true);
        constexpr bool exact = std::is_same_v<R, Kel64f>;
        constexpr Index piece = 4096; // the products of its lanes stay in range
        Product total;
        Kel64f beyond = 0;
        for (Index i = 0; i < len; i += piece) {
            const Index n = std::min(piece, len - i);
            if (all_regular(src + i, n)) {
                multiply_regular<exact>(total, src + i, n);
                continue;
            }
            const Ending ending = multiply_special(total, src + i, n);
            if (ending.ended) {
                *sum = static_cast<R>(ending.value);
                return ending.status;
            }
            beyond += ending.value;
        }
        *sum = sum_of<R>(total, beyond);
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsLn_32f       (const Kel32f* a, Kel32f* d, int n)        { return logarithms(a, d, n); }
KelStatus kelsLn_32f_I     (Kel32f* d, int n)                         { return logarithms(d, d, n); }
KelStatus kelsLn_64f       (const Kel64f* a, Kel64f* d, int n)        { return logarithms(a, d, n); }
KelStatus kelsLn_64f_I     (Kel64f* d, int n)                         { return logarithms(d, d, n); }
KelStatus kelsLn_64f32f    (const Kel64f* a, Kel32f* d, int n)        { return logarithms(a, d, n); }
KelStatus kelsLn_16s_Sfs   (const Kel16s* a, Kel16s* d, int n, int s) { return logarithms(a, d, n, s); }
KelStatus kelsLn_16s_ISfs  (Kel16s* d, int n, int s)                  { return logarithms(d, d, n, s); }
KelStatus kelsLn_32s16s_Sfs(const Kel32s* a, Kel16s* d, int n, int s) { return logarithms(a, d, n, s); }

KelStatus kelsSumLn_32f    (const Kel32f* a, int n, Kel32f* sum)      { return sum_logarithms(a, n, sum); }
KelStatus kelsSumLn_64f    (const Kel64f* a, int n, Kel64f* sum)      { return sum_logarithms(a, n, sum); }
KelStatus kelsSumLn_32f64f (const Kel32f* a, int n, Kel64f* sum)      { return sum_logarithms(a, n, sum); }
KelStatus kelsSumLn_16s32f (const Kel16s* a, int n, Kel32f* sum)      { return sum_logarithms(a, n, sum); }
}
// clang-format on
