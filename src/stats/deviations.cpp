// The standard deviation of a sample: sqrt((n Q - S^2) / (n (n - 1))), from the sum S and the sum of squares Q.
//
// Both sums shrink together when a centre is subtracted from every element, and the difference loses less to
// cancellation; the result is the same.
//
//   integers: S and Q exact, then moved to the integer nearest to the mean, still exactly;
//   singles:  about a centre taken from the first elements, in double arithmetic;
//   doubles:  sums and difference keep their rounding errors.
//
// What leaves the range of doubles or does not keep enough is evaluated in extended precision by the formula, whose
// NaNs have the signs that count.

#include "kels/statistics.h"

#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/reduction.h"
#include "frame/two_doubles.h"
#include "stats/integer_sums.h"
#include "stats/rounding.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace kels {
namespace {

constexpr int shortest = 2;

template <class Number>
struct Moments {
    Number sum, squares;
};

template <class Number>
Number numerator(Moments<Number> m, Index n) {
    const auto count = static_cast<Kel64f>(n);
    return Number{count} * m.squares - m.sum * m.sum;
}

Kel64f denominator(Index n) { return static_cast<Kel64f>(n) * static_cast<Kel64f>(n - 1); }

/// Sums of even and of odd elements, added in the end. Silence comes back for a quotient whose sign is set.
template <class T>
[[gnu::noinline]] T extended_deviation(const T* src, Index n, T centre) {
    const ExtendedPrecision modes;
    long double sum[2] = {}, squares[2] = {};
    for (Index i = 0; i < n; ++i) {
        const long double d = static_cast<long double>(src[i]) - centre;
        sum[i % 2] += d;
        squares[i % 2] += d * d;
    }
    const long double s = sum[0] + sum[1], q = squares[0] + squares[1], count = n;
    const long double quotient = (count * q - s * s) / (count * (count - 1));
    return settled(std::signbit(static_cast<Kel64f>(quotient)) ? T{0} : static_cast<T>(std::sqrt(quotient)));
}

// Singles

/// Nothing is fused here: a square of a difference is not exact, and levels would differ.
template <int Elements>
struct SingleMoments {
    DoubleSums<Vec<Kel64f, Elements>> sum, squares;
    Kel64f centre;

    explicit SingleMoments(Kel64f c) : centre(c) {}
    [[gnu::always_inline]] void add(auto keep, auto x) {
        const auto d = keep(convert<Kel64f>(x) - splat<Vec<Kel64f, Elements>>(centre));
        sum.add(d);
        squares.add(d * d);
    }
    [[gnu::always_inline]] Moments<Kel64f> result() const { return {sum.total(), squares.total()}; }
};

/// The mean of a few elements, exactly theirs if they are equal.
Kel32f centre_of(const Kel32f* src, Index n) {
    constexpr int few = 4;
    if (n < few) return src[0];
    return static_cast<Kel32f>(sum_of_lanes(convert<Kel64f>(load<Vec<Kel32f, few>>(src))) / few);
}

Kel32f deviation(const Kel32f* src, Index n) {
    const Kel64f centre = centre_of(src, n);
    const auto moments = reduce<64>(
        n, [=](auto width) KELS_INLINE { return SingleMoments<width>(centre); }, src);
    const Kel64f quotient = numerator(moments, n) / denominator(n);
    if (!(std::fabs(quotient) <= std::numeric_limits<Kel64f>::max())) return extended_deviation(src, n, 0.0F);
    return quotient > 0 ? static_cast<Kel32f>(std::sqrt(quotient)) : 0.0F;
}

// Doubles

template <int Elements>
struct DoubleMoments {
    LaneSums<Vec<Kel64f, Elements>> sum, squares;

    [[gnu::always_inline]] void add(auto keep, auto x) {
        const auto fresh = keep(x);
        sum.add(fresh);
        squares.add_product(fresh, fresh);
    }
    [[gnu::always_inline]] Moments<TwoDoubles> result() const { return {sum.totals()[0], squares.totals()[0]}; }
};

Kel64f deviation(const Kel64f* src, Index n) {
    const RoundedToNearest modes;
    constexpr Kel64f tiny = 0x1p-900; // below it squares may have lost their errors
    const auto moments = reduce<16, DoubleMoments>(n, src);
    const TwoDoubles difference = numerator(moments, n);
    if (!difference.in_range()) return extended_deviation(src, n, 0.0);
    // Elements so close to each other that not even two doubles tell them apart from their mean.
    if (difference.rounded() < std::max(tiny, moments.squares.high * static_cast<Kel64f>(n) * 0x1p-80))
        return extended_deviation(src, n, src[0]);
    return root(difference / static_cast<Kel64f>(n) / static_cast<Kel64f>(n - 1));
}

// Integers

template <int Elements>
struct IntegerMoments {
    SmallTerms<Elements / 2> sum;
    LargeTerms<Elements / 2> squares;

    template <class V>
    [[gnu::always_inline]] void add(auto keep, V x) {
        const V fresh = keep(x);
        sum.add(add_products(fresh, splat<V>(1)));
        squares.add(bits_as<Vec<Kel32u, Elements / 2>>(add_products(fresh, fresh)));
    }
    [[gnu::always_inline]] void settle() { sum.settle(); }
    [[gnu::always_inline]] Moments<Kel64s> result() { return {sum.result(), static_cast<Kel64s>(squares.result())}; }
};

/// About the integer below the mean: sums of what is left are small, and nothing cancels.
Moments<Kel64s> centred(Moments<Kel64s> m, Kel64s n) {
    const Kel64s mean = m.sum / n;
    return {m.sum - n * mean, m.squares - mean * (2 * m.sum - n * mean)};
}

long double deviation(Moments<Kel64s> moments, Index n) {
    const auto sum = static_cast<long double>(moments.sum), squares = static_cast<long double>(moments.squares);
    const long double count = n;
    return std::sqrt((count * squares - sum * sum) / (count * (count - 1)));
}

// Calls

template <class Kernel>
KelStatus deviation_call(Pointers arguments, int len, const Kernel& kernel) {
    return vector_call(arguments, len < shortest ? 0 : len, kernel);
}

template <class T>
KelStatus standard_deviation(const T* src, int len, T* result) {
    return deviation_call({src, result}, len, [=] { *result = deviation(src, len); });
}

template <class R>
KelStatus standard_deviation(const Kel16s* src, int len, R* result, int scaleFactor) {
    return deviation_call({src, result}, len, [=] {
        constexpr int far = 200;
        constexpr long double most = std::numeric_limits<Kel32s>::max();
        const auto moments = centred(reduce<64, IntegerMoments>(len, src), len);
        const ExtendedPrecisionRoundedByCaller modes;
        const long double scaled = std::ldexp(deviation(settled(moments), len), -std::clamp(scaleFactor, -far, far));
        *result = saturate<R>(rounded(std::min(scaled, most)));
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsStdDev_16s32s_Sfs(const Kel16s* a, int n, Kel32s* r, int s) { return standard_deviation(a, n, r, s); }
KelStatus kelsStdDev_16s_Sfs   (const Kel16s* a, int n, Kel16s* r, int s) { return standard_deviation(a, n, r, s); }
KelStatus kelsStdDev_32f       (const Kel32f* a, int n, Kel32f* r, int)   { return standard_deviation(a, n, r); }
KelStatus kelsStdDev_64f       (const Kel64f* a, int n, Kel64f* r)        { return standard_deviation(a, n, r); }
}
// clang-format on
