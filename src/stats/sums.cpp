// Sums and means.
//
//   integers: exact in 64 bits;
//   singles:  in double arithmetic;
//   doubles:  sums that keep their rounding errors; in extended precision where they leave the range of doubles.
//
// Every part of a complex vector has its own sum.

#include "kels/statistics.h"

#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/reduction.h"
#include "frame/scale.h"
#include "frame/two_doubles.h"
#include "stats/integer_sums.h"
#include "stats/rounding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kels {
namespace {

// Totals of the parts

template <int Parts, int Elements>
struct IntegerTotals {
    SmallTerms<Elements * Parts / 2> sum[Parts];

    template <class V>
    [[gnu::always_inline]] void add(auto keep, V x) {
        const V fresh = keep(x);
        if constexpr (Parts == 1) {
            sum[0].add(add_products(fresh, splat<V>(1)));
        } else {
            sum[0].add(add_products(fresh, alternate<V>(1, 0)));
            sum[1].add(add_products(fresh, alternate<V>(0, 1)));
        }
    }
    [[gnu::always_inline]] void settle() {
        for (auto& part : sum) part.settle();
    }
    [[gnu::always_inline]] std::array<Kel64s, Parts> result() {
        std::array<Kel64s, Parts> totals;
        for (int part = 0; part < Parts; ++part) totals[part] = sum[part].result();
        return totals;
    }
};

template <int Parts, int Elements>
struct SingleTotals {
    DoubleSums<Vec<Kel64f, Elements * Parts>> sums;

    [[gnu::always_inline]] void add(auto keep, auto x) { sums.add(convert<Kel64f>(keep(x))); }
    [[gnu::always_inline]] std::array<Kel64f, Parts> result() const { return sums_of_lanes<Parts>(sums.sums); }
};

template <int Elements>
struct DoubleTotal {
    LaneSums<Vec<Kel64f, Elements>> sum;

    [[gnu::always_inline]] void add(auto keep, auto x) { sum.add(keep(x)); }
    [[gnu::always_inline]] TwoDoubles result() const { return sum.totals()[0]; }
};

template <class T>
using TotalOfParts = std::array<std::conditional_t<std::is_integral_v<Part<T>>, Kel64s, Kel64f>, parts<T>>;

template <class T>
TotalOfParts<T> totals(const T* src, Index n) {
    return reduce<64 / parts<T>>(
        n,
        [](auto width) KELS_INLINE {
            if constexpr (std::is_integral_v<Part<T>>)
                return IntegerTotals<parts<T>, width>{};
            else
                return SingleTotals<parts<T>, width>{};
        },
        src);
}

[[gnu::noinline]] Kel64f extended_quotient(const Kel64f* src, Index n, long double divisor) {
    const ExtendedPrecision modes;
    long double sum = 0;
    for (Index i = 0; i < n; ++i) sum += src[i];
    return settled(static_cast<Kel64f>(sum / divisor));
}

// Sums

/// Rounded and saturated to 32 bits, then to R.
template <class R>
R scaled_sum(Kel64s total, int scaleFactor) {
    constexpr int longest_shift = 48; // no vector sums up to what a longer one leaves
    Kel32s result;
    with_scale<Kel32s, longest_shift>(scaleFactor, [&](auto scale) { result = scale(total); });
    return saturate<R>(result);
}

template <class T, class R>
KelStatus sum(const T* src, int len, R* result, int scaleFactor) {
    return vector_call({src, result}, len, [=] {
        const auto total = totals(src, len);
        for (int part = 0; part < parts<T>; ++part) reals(result)[part] = scaled_sum<Part<R>>(total[part], scaleFactor);
    });
}

template <class T>
KelStatus sum(const T* src, int len, T* result) {
    return vector_call({src, result}, len, [=] {
        const auto total = totals(src, len);
        for (int part = 0; part < parts<T>; ++part) reals(result)[part] = static_cast<Kel32f>(total[part]);
    });
}

KelStatus sum(const Kel64f* src, int len, Kel64f* result) {
    return vector_call({src, result}, len, [=] {
        const RoundedToNearest modes;
        const TwoDoubles total = reduce<16, DoubleTotal>(len, src);
        *result = total.in_range() ? total.rounded() : extended_quotient(src, len, 1);
    });
}

// Means

KelStatus mean(const Kel32f* src, int len, Kel32f* result) {
    return vector_call({src, result}, len, [=] { *result = static_cast<Kel32f>(totals(src, len)[0] / len); });
}

KelStatus mean(const Kel32fc* src, int len, Kel32fc* result) {
    return vector_call({src, result}, len, [=] {
        const auto total = totals(src, len);
        const Kel64f reciprocal = 1.0 / len;
        *result = {static_cast<Kel32f>(total[0] * reciprocal), static_cast<Kel32f>(total[1] * reciprocal)};
    });
}

/// A quotient that vanishes has the sign of the sum.
Kel64f quotient(TwoDoubles total, int len) { return std::copysign((total / len).rounded(), total.high); }

KelStatus mean(const Kel64f* src, int len, Kel64f* result) {
    return vector_call({src, result}, len, [=] {
        const RoundedToNearest modes;
        const TwoDoubles total = reduce<16, DoubleTotal>(len, src);
        *result = total.in_range() ? quotient(total, len) : extended_quotient(src, len, len);
    });
}

/// total / divisor 2^-scaleFactor before it is rounded.
using MeanRule = long double (*)(Kel64s total, int len, int scaleFactor);

long double by_quotient(Kel64s total, int len, int scaleFactor) {
    const Kel64s dividend = total * (Kel64s{1} << std::max(-scaleFactor, 0));
    const Kel64s divisor = Kel64s{len} << std::max(scaleFactor, 0);
    return static_cast<long double>(dividend) / static_cast<long double>(divisor);
}

/// By the reciprocal of the length: where the mean lies halfway between integers, not always what a quotient gives.
long double by_reciprocal(Kel64s total, int len, int scaleFactor) {
    constexpr long double power_of_two = 0x1p-16L; // the least
    const long double scaled_len = len * power_of_two * static_cast<long double>(Kel64s{1} << (16 + scaleFactor));
    return static_cast<long double>(total) * (1 / scaled_len);
}

template <class T>
KelStatus scaled_mean(const T* src, int len, T* result, int scaleFactor, MeanRule mean_before_rounding) {
    return vector_call({src, result}, len, [=] {
        std::array<Kel64s, parts<T>> mean{};
        if (scaleFactor < 16) mean = totals(src, len);
        const ExtendedPrecisionRoundedByCaller modes;
        for (Kel64s& part : mean)
            if (scaleFactor > -15)
                part = scaleFactor < 16 ? rounded(mean_before_rounding(settled(part), len, scaleFactor)) : 0;
            else // only the sign counts
                part = part > 0 ? 32767 : part < 0 ? -32768 : 0;
        for (int part = 0; part < parts<T>; ++part) reals(result)[part] = saturate<Kel16s>(mean[part]);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsSum_16s32s_Sfs  (const Kel16s*  a, int n, Kel32s*  r, int s) { return sum(a, n, r, s); }
KelStatus kelsSum_16s_Sfs     (const Kel16s*  a, int n, Kel16s*  r, int s) { return sum(a, n, r, s); }
KelStatus kelsSum_16sc32sc_Sfs(const Kel16sc* a, int n, Kel32sc* r, int s) { return sum(a, n, r, s); }
KelStatus kelsSum_16sc_Sfs    (const Kel16sc* a, int n, Kel16sc* r, int s) { return sum(a, n, r, s); }
KelStatus kelsSum_32f         (const Kel32f*  a, int n, Kel32f*  r, int)   { return sum(a, n, r); }
KelStatus kelsSum_32fc        (const Kel32fc* a, int n, Kel32fc* r, int)   { return sum(a, n, r); }
KelStatus kelsSum_64f         (const Kel64f*  a, int n, Kel64f*  r)        { return sum(a, n, r); }

KelStatus kelsMean_16s_Sfs (const Kel16s*  a, int n, Kel16s*  r, int s) { return scaled_mean(a, n, r, s, by_quotient); }
KelStatus kelsMean_16sc_Sfs(const Kel16sc* a, int n, Kel16sc* r, int s) { return scaled_mean(a, n, r, s, by_reciprocal); }
KelStatus kelsMean_32f     (const Kel32f*  a, int n, Kel32f*  r, int)   { return mean(a, n, r); }
KelStatus kelsMean_32fc    (const Kel32fc* a, int n, Kel32fc* r, int)   { return mean(a, n, r); }
KelStatus kelsMean_64f     (const Kel64f*  a, int n, Kel64f*  r)        { return mean(a, n, r); }
}
// clang-format on
