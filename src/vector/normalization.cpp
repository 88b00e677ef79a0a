// A constant subtracted, and the difference divided by another: (x - vSub) / vDiv, by one reciprocal a call.
//
//   singles:  in double arithmetic;
//   doubles:  difference, reciprocal and product carry their rounding errors along; where that leaves the range of
//             doubles, in extended precision;
//   integers: the exact difference times a double factor, rounded by the sum with a number whose last bit is 1, in the
//             mode that the caller has set.

#include "kels/conversion.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/complex_vector.h"
#include "frame/error_free.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "kels/services.h"
#include "vector/extended_lanes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace kels {
namespace {

void normalize_parts(const Kel32f* src, Kel32f* dst, Index n, auto sub, Kel32f divisor) {
    const Kel64f reciprocal = 1 / Kel64f{divisor};
    map_blocks(
        dst, n,
        [=](auto x, auto s)
            KELS_INLINE { return convert<Kel32f>((convert<Kel64f>(x) - convert<Kel64f>(s)) * reciprocal); },
        src, sub);
}

/// A divisor's reciprocal as the sum of two doubles; NaNs for one whose reciprocal is too small to have a second.
struct Reciprocal {
    Kel64f divisor, high, low;

    explicit Reciprocal(Kel64f d) : divisor(d), high(std::fabs(d) > 0x1p900 ? kelConstantOfNAN_64f : 1 / d) {
        const Kel64f one = high * d;
        low = ((1 - one) - product_error(high, d, one)) / d;
    }
};

/// (minuend - subtrahend) / divisor in extended precision, the first two in one pair.
struct ExtendedQuotient {
    Kel64f divisor;

    Complex<Kel64f> operator()(Complex<Kel64f> pair) const {
        const long double difference = static_cast<long double>(pair.re) - pair.im;
        return {static_cast<Kel64f>(difference * (1.0L / settled(divisor))), 0};
    }
};

template <class V>
[[gnu::always_inline]] inline V normalize_lanes(V x, V s, const Reciprocal& reciprocal) {
    const V high = splat<V>(reciprocal.high), low = splat<V>(reciprocal.low);
    const V d = x - s, quotient = d * high;
    const V error = product_error(d, high, quotient) + (d * low + sum_error(x, -s, d) * high);
    const V result = error == 0 ? quotient : quotient + error; // so written, a negative zero stays one
    const V size = result < 0 ? -result : result;
    const V most = splat<V>(std::numeric_limits<Kel64f>::max()), tiny = splat<V>(0x1p-900);
    // An error may have been out of range: beside a small result that is not just a zero, or after an overflow.
    const auto outside = ((size < tiny) & (d != 0)) | (size > most) | (size != size);
    if (any_lane(outside)) [[unlikely]]
        return with_extended_lanes(Complex<V>{result, V{}}, outside, ExtendedQuotient{reciprocal.divisor},
                                   Complex<V>{x, s})
            .re;
    return result;
}

void normalize_parts(const Kel64f* src, Kel64f* dst, Index n, auto sub, Kel64f divisor) {
    const RoundedToNearest modes;
    const Reciprocal reciprocal(divisor);
    map_blocks(
        dst, n, [=](auto x, auto s) KELS_INLINE { return normalize_lanes(x, s, reciprocal); }, src, sub);
}

template <class T>
KelStatus normalize(const T* src, T* dst, int len, T sub, Part<T> divisor) {
    return vector_call({src, dst}, len, [=] {
        if (std::fabs(divisor) < std::numeric_limits<Part<T>>::min()) return kelStatusDivByZero;
        normalize_parts(reals(src), reals(dst), Index{len} * parts<T>, constant(sub), divisor);
        return kelStatusOk;
    });
}

/// 2^-scaleFactor / divisor, by way of the power: with an infinite one the factor is infinite.
Kel64f factor_of(int divisor, int scaleFactor) {
    constexpr int most = std::numeric_limits<Kel64f>::max_exponent, all_vanishes = 1000; // but for a sign
    const Kel64f power = scaleFactor <= -most ? std::numeric_limits<Kel64f>::infinity()
                                              : std::ldexp(1.0, -std::min(scaleFactor, all_vanishes));
    return power * (1 / Kel64f(divisor));
}

/// A NaN, which is nothing times infinity, becomes the largest value. The first sum takes away what rounding has added
/// to an integer or a half: no other quotient comes so near to one. The second one rounds.
template <class V>
[[gnu::always_inline]] inline auto rounded_in_mode(V v) {
    const V largest = splat<V>(32767), lowest = splat<V>(-32768);
    const V below = v < largest ? v : largest, limited = below > lowest ? below : lowest;
    const V grid = splat<V>(0x1.8p18), ones = splat<V>(0x1.8p52);
    const V sum = ((limited + grid) - grid) + ones;
    return convert<Kel16s>(bits_as<Vec<Kel64s, lanes<V>>>(sum));
}

template <class T>
KelStatus normalize_scaled(const T* src, T* dst, int len, T sub, int divisor, int scaleFactor) {
    return vector_call({src, dst}, len, [=] {
        if (divisor == 0) return kelStatusDivByZero;
        const RoundedByCaller modes;
        const Kel64f factor = factor_of(settled(divisor), scaleFactor);
        map_blocks(
            reals(dst), Index{len} * parts<T>,
            [=](auto x, auto s) KELS_INLINE {
                return rounded_in_mode(convert<Kel64f>(convert<Kel32s>(x) - convert<Kel32s>(s)) * factor);
            },
            reals(src), constant(sub));
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsNormalize_32f (const Kel32f*  a, Kel32f*  d, int n, Kel32f  sub, Kel32f div) { return normalize(a, d, n, sub, div); }
KelStatus kelsNormalize_64f (const Kel64f*  a, Kel64f*  d, int n, Kel64f  sub, Kel64f div) { return normalize(a, d, n, sub, div); }
KelStatus kelsNormalize_32fc(const Kel32fc* a, Kel32fc* d, int n, Kel32fc sub, Kel32f div) { return normalize(a, d, n, sub, div); }
KelStatus kelsNormalize_64fc(const Kel64fc* a, Kel64fc* d, int n, Kel64fc sub, Kel64f div) { return normalize(a, d, n, sub, div); }

KelStatus kelsNormalize_16s_Sfs (const Kel16s*  a, Kel16s*  d, int n, Kel16s  sub, int div, int s) { return normalize_scaled(a, d, n, sub, div, s); }
KelStatus kelsNormalize_16sc_Sfs(const Kel16sc* a, Kel16sc* d, int n, Kel16sc sub, int div, int s) { return normalize_scaled(a, d, n, sub, div, s); }
}
// clang-format on
