// Division, element by element: vector by vector, vector by constant, constant by vector.
//
// A zero among the divisors stops nothing: the element gets the value that is stated for it, and the call warns when it
// is done.
//
//   real numbers:    the quotient, correctly rounded; a constant divisor is a factor, its rounded reciprocal;
//   complex numbers: see complex_quotient.h;
//   integers:        the exact quotient times 2^-scaleFactor, rounded to nearest with ties to even, saturated.
//
// Quotients of integers are made in real arithmetic that is too fine to miss a tie or to make one: an exact quotient
// lies on a tie or is further from it, relative to its size, than one over twice the dividend. With factors that
// multiply, that takes doubles.

#include "kels/division.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "kels/arithmetic.h"
#include "kels/movement.h"
#include "kels/services.h"
#include "vector/complex_product.h"
#include "vector/complex_quotient.h"
#include "vector/division_groups.h"
#include "vector/integers_by_reals.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

KelStatus warning_if(bool zero_met) { return zero_met ? kelStatusDivByZeroValues : kelStatusOk; }

// Real numbers

Kel32f undefined(Kel32f) { return kelConstantOfNAN_32f; }
Kel64f undefined(Kel64f) { return kelConstantOfNAN_64f; }

/// Quotients of whole groups with a zero, an infinity or a NaN among the divisors.
template <int Group, class V>
[[gnu::noinline]] V divide_specially(V a, V b, V quotients, bool& zero_met) {
    using T = Element<V>;
    T divisor[lanes<V>], dividend[lanes<V>], result[lanes<V>];
    store(divisor, a);
    store(dividend, b);
    store(result, quotients);
    for (int i = 0; i < lanes<V>; ++i) {
        const Outcome what = outcome<Group>(divisor, i);
        if (what == Outcome::quotient) continue;
        result[i] = undefined(T{});
        if (what == Outcome::lost) continue;
        zero_met = true;
        if (dividend[i] < 0 || dividend[i] > 0)
            result[i] = std::copysign(std::numeric_limits<T>::infinity(), dividend[i]);
    }
    return load<V>(result);
}

template <int Group, class T>
void divide_reals(const T* a, const T* b, T* d, Index n, bool& zero_met) {
    const auto quotients = [&zero_met](auto x, auto y) KELS_INLINE {
        const auto quotient = y / x;
        if (any_lane(zero_or_not_finite(x))) [[unlikely]]
            return divide_specially<Group>(x, y, quotient, zero_met);
        return quotient;
    };
    map_blocks<Group>(d, n, quotients, a, b);
}

template <class T>
KelStatus divide(const T* a, const T* b, T* d, int len) {
    return vector_call({a, b, d}, len, [=] {
        constexpr int group = 4;
        constexpr Begin begin = std::is_same_v<T, Kel32f> ? Begin::at_first : Begin::at_boundary_or_first;
        const Stretch s = grouped_stretch<T>(begin, len, a, b, d);
        const Index behind = s.ahead + s.grouped;
        bool zero_met = false;
        divide_reals<1>(a, b, d, s.ahead, zero_met);
        divide_reals<group>(a + s.ahead, b + s.ahead, d + s.ahead, s.grouped, zero_met);
        divide_reals<1>(a + behind, b + behind, d + behind, len - behind, zero_met);
        return warning_if(zero_met);
    });
}

/// Not below nor above zero: a NaN counts.
template <class T>
bool counts_as_zero(T val) {
    if constexpr (parts<T> == 2)
        return counts_as_zero(val.re) && counts_as_zero(val.im);
    else
        return !(val < 0 || val > 0);
}

template <class T>
T reciprocal(T val) {
    const ExtendedPrecision modes;
    return settled(static_cast<T>(settled(1.0L / settled(val))));
}

/// Multiplies by the reciprocal in the way of `multiply`, which has the checks that remain.
template <class T, class Multiply>
KelStatus divide_by(T val, Multiply multiply) {
    if (counts_as_zero(val)) return kelStatusDivByZero;
    return multiply(reciprocal(val));
}

// Complex numbers

KelStatus divide_vectors(const auto* a, const auto* b, auto* d, int len) {
    return vector_call({a, b, d}, len, [=] {
        using T = std::remove_cvref_t<decltype(*d)>;
        constexpr int group = sizeof(T) == sizeof(Kel32fc) ? 4 : 2;
        const Stretch s = grouped_stretch<T>(Begin::at_boundary_or_first, len, a, b, d);
        const Index behind = s.ahead + s.grouped;
        bool zero_met = divide_complex<1>(reals(a), reals(b), reals(d), 0, s.ahead);
        zero_met |= divide_complex<group>(reals(a), reals(b), reals(d), s.ahead, behind);
        zero_met |= divide_complex<1>(reals(a), reals(b), reals(d), behind, len);
        return warning_if(zero_met);
    });
}
KelStatus divide(const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int len) { return divide_vectors(a, b, d, len); }
KelStatus divide(const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int len) { return divide_vectors(a, b, d, len); }

template <class T>
KelStatus divide_by_constant(const T* src, T val, T* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        if (counts_as_zero(val)) return kelStatusDivByZero;
        divide_complex<1>(constant(val), reals(src), reals(dst), 0, len);
        return kelStatusOk;
    });
}

// Integers

/// d[i] = b[i] / a[i], each an array or a constant. Gives whether a divisor was zero. Then the quotient is infinite and
/// saturates, but for a dividend of zero, which stays one.
template <class Work, class A, class B, class R>
bool divide_integers(A a, B b, R* d, Index n, int factor) {
    const DefaultModes modes(!nearest_in_any_mode);
    bool zero_met = false;
    const auto quotients = [&zero_met, power = real_scale<Work>(factor)](auto x, auto y) KELS_INLINE {
        zero_met |= any_lane(x == 0);
        const auto quotient = convert<Work>(convert<int>(y)) * power / convert<Work>(convert<int>(x));
        return y == 0 ? y : to_nearest<R>(quotient);
    };
    map_blocks(d, n, quotients, a, b);
    return zero_met;
}

/// Doubles only where singles would be too coarse.
template <class A, class B>
bool divide_integers(A a, B b, Kel8u* d, Index n, int factor) {
    return divide_integers<Kel32f>(a, b, d, n, factor);
}
template <class A, class B>
bool divide_integers(A a, B b, Kel16s* d, Index n, int factor) {
    return factor < 0 ? divide_integers<Kel64f>(a, b, d, n, factor) : divide_integers<Kel32f>(a, b, d, n, factor);
}

template <class T>
KelStatus divide(const T* a, const T* b, T* d, int len, int factor) {
    return vector_call({a, b, d}, len, [=] { return warning_if(divide_integers(a, b, d, len, factor)); });
}

KelStatus divide_constant(const Kel16u* src, Kel16u val, Kel16u* dst, int len) {
    if (val == 0) return kelsZero_16s(reinterpret_cast<Kel16s*>(dst), len);
    return vector_call({src, dst}, len,
                       [=] { return warning_if(divide_integers<Kel32f>(src, constant(val), dst, len, 0)); });
}

/// Grouped bytes are multiplied by a whole reciprocal with some bits behind the point, so that halves go up.
void divide_grouped(Kel8u val, const Kel8u* src, Kel8u* dst, Index n, int factor) {
    constexpr int most = 30; // beyond it nothing changes any more
    const int up = -std::clamp(factor, -most, 0), down = std::clamp(factor, 0, most), bits = up > 0 ? 9 : 16;
    const Kel64s reciprocal = (Kel64s{1} << (bits + up)) / val, half = (Kel64s{1} << down) / 2;
    constexpr Kel64s saturating = 1 << 17; // 1 becomes more than any byte
    const int factor_of_each = static_cast<int>(std::min((reciprocal + half) >> down, saturating));
    const auto quotients = [=](auto x) KELS_INLINE {
        using V = Vec<int, lanes<decltype(x)>>;
        return saturate<Kel8u>((convert<int>(x) * factor_of_each + splat<V>(1 << (bits - 1))) >> splat<V>(bits));
    };
    map_blocks(dst, n, quotients, src);
}

/// Grouped 16-bit integers are all zero when the constant's reciprocal is below that of the largest one.
void divide_grouped(Kel16s val, const Kel16s* src, Kel16s* dst, Index n, int factor) {
    if (real_scale<Kel64f>(factor) / std::abs(val) < 1.0 / std::numeric_limits<Kel16s>::max())
        std::fill_n(dst, n, Kel16s{0});
    else
        divide_integers(constant(val), src, dst, n, factor);
}

template <class T>
KelStatus divide_by_constant(const T* src, T val, T* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        if (val == 0) return kelStatusDivByZero;
        const Stretch s = grouped_stretch<T>(Begin::at_boundary, len, src, dst);
        const auto divide_alone = [=](Index from, Index to) {
            if (from < to) divide_integers(constant(val), src + from, dst + from, to - from, factor);
        };
        const Index behind = s.ahead + s.grouped;
        divide_alone(0, s.ahead);
        divide_grouped(val, src + s.ahead, dst + s.ahead, s.grouped, factor);
        divide_alone(behind, len);
        return kelStatusOk;
    });
}

// Complex integers: parts of b conj(a) over |a|^2, each sum in 32 bits. The largest sum is 2^31, of four extremes.

/// Parts of products with the conjugate of a.
template <class V>
[[gnu::always_inline]] inline auto real_of_conjugate_product(V b, V a) {
    const auto sum = add_products(b, a);
    using R = std::remove_const_t<decltype(sum)>;
    using Limits = std::numeric_limits<int>;
    return sum == splat<R>(Limits::min()) ? splat<R>(Limits::max()) : sum;
}
template <class V>
[[gnu::always_inline]] inline auto imaginary_of_conjugate_product(V b, V a) {
    // The lowest number has no negative in 16 bits: with the complement in its place, one real part is missing.
    const V other = shuffle<[](int i) { return i % 2 == 0 ? i + 1 : lanes<V> + i - 1; }>(~a, a);
    return add_products(b, other) + convert<int>(even_lanes(b));
}

template <class V, class Size>
[[gnu::always_inline]] inline auto complex_quotients(V b, V a, Size divisor) {
    const auto re = convert<Kel64f>(real_of_conjugate_product(b, a)) / divisor;
    const auto im = convert<Kel64f>(imaginary_of_conjugate_product(b, a)) / divisor;
    return zip(to_nearest<Kel16s>(re), to_nearest<Kel16s>(im));
}

KelStatus divide(const Kel16sc* a, const Kel16sc* b, Kel16sc* d, int len, int factor) {
    return vector_call({a, b, d}, len, [=] {
        const DefaultModes modes(!nearest_in_any_mode);
        bool zero_met = false;
        const auto quotients = [&zero_met, power = 1 / real_scale<Kel64f>(factor)](auto x, auto y) KELS_INLINE {
            const auto size = squared_modulus(x);
            using R = std::remove_const_t<decltype(size)>;
            zero_met |= any_lane(size == 0);
            return complex_quotients(y, x, (size == 0 ? splat<R>(1) : size) * power);
        };
        map_blocks<2>(reals(d), Index{len} * 2, quotients, reals(a), reals(b));
        return warning_if(zero_met);
    });
}

KelStatus divide_by_constant(const Kel16sc* src, Kel16sc val, Kel16sc* dst, int len, int factor) {
    return vector_call({src, dst}, len, [=] {
        if (val.re == 0 && val.im == 0) return kelStatusDivByZero;
        const DefaultModes modes(!nearest_in_any_mode);
        const Kel64f re = val.re, im = val.im, divisor = (re * re + im * im) / real_scale<Kel64f>(factor);
        const auto quotients = [=](auto x) KELS_INLINE {
            using R = Vec<Kel64f, lanes<decltype(x)> / 2>;
            return complex_quotients(x, alternate<decltype(x)>(val.re, val.im), splat<R>(divisor));
        };
        map_blocks<2>(reals(dst), Index{len} * 2, quotients, reals(src));
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsDiv_32f      (const Kel32f* a, const Kel32f* b, Kel32f* d, int n)           { return divide(a, b, d, n); }
KelStatus kelsDiv_32f_I    (const Kel32f* a, Kel32f* d, int n)                            { return divide(a, d, d, n); }
KelStatus kelsDiv_64f      (const Kel64f* a, const Kel64f* b, Kel64f* d, int n)           { return divide(a, b, d, n); }
KelStatus kelsDiv_64f_I    (const Kel64f* a, Kel64f* d, int n)                            { return divide(a, d, d, n); }
KelStatus kelsDiv_32fc     (const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int n)        { return divide(a, b, d, n); }
KelStatus kelsDiv_32fc_I   (const Kel32fc* a, Kel32fc* d, int n)                          { return divide(a, d, d, n); }
KelStatus kelsDiv_64fc     (const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int n)        { return divide(a, b, d, n); }
KelStatus kelsDiv_64fc_I   (const Kel64fc* a, Kel64fc* d, int n)                          { return divide(a, d, d, n); }
KelStatus kelsDiv_8u_Sfs   (const Kel8u* a, const Kel8u* b, Kel8u* d, int n, int s)       { return divide(a, b, d, n, s); }
KelStatus kelsDiv_8u_ISfs  (const Kel8u* a, Kel8u* d, int n, int s)                       { return divide(a, d, d, n, s); }
KelStatus kelsDiv_16s_Sfs  (const Kel16s* a, const Kel16s* b, Kel16s* d, int n, int s)    { return divide(a, b, d, n, s); }
KelStatus kelsDiv_16s_ISfs (const Kel16s* a, Kel16s* d, int n, int s)                     { return divide(a, d, d, n, s); }
KelStatus kelsDiv_16sc_Sfs (const Kel16sc* a, const Kel16sc* b, Kel16sc* d, int n, int s) { return divide(a, b, d, n, s); }
KelStatus kelsDiv_16sc_ISfs(const Kel16sc* a, Kel16sc* d, int n, int s)                   { return divide(a, d, d, n, s); }

KelStatus kelsDivC_32f      (const Kel32f* a, Kel32f val, Kel32f* d, int n)           { return divide_by(val, [=](Kel32f factor) { return kelsMulC_32f(a, factor, d, n); }); }
KelStatus kelsDivC_32f_I    (Kel32f val, Kel32f* d, int n)                            { return divide_by(val, [=](Kel32f factor) { return kelsMulC_32f_I(factor, d, n); }); }
KelStatus kelsDivC_64f      (const Kel64f* a, Kel64f val, Kel64f* d, int n)           { return divide_by(val, [=](Kel64f factor) { return kelsMulC_64f(a, factor, d, n); }); }
KelStatus kelsDivC_64f_I    (Kel64f val, Kel64f* d, int n)                            { return divide_by(val, [=](Kel64f factor) { return kelsMulC_64f_I(factor, d, n); }); }
KelStatus kelsDivC_32fc     (const Kel32fc* a, Kel32fc val, Kel32fc* d, int n)        { return divide_by_constant(a, val, d, n); }
KelStatus kelsDivC_32fc_I   (Kel32fc val, Kel32fc* d, int n)                          { return divide_by_constant(d, val, d, n); }
KelStatus kelsDivC_64fc     (const Kel64fc* a, Kel64fc val, Kel64fc* d, int n)        { return divide_by_constant(a, val, d, n); }
KelStatus kelsDivC_64fc_I   (Kel64fc val, Kel64fc* d, int n)                          { return divide_by_constant(d, val, d, n); }
KelStatus kelsDivC_8u_Sfs   (const Kel8u* a, Kel8u val, Kel8u* d, int n, int s)       { return divide_by_constant(a, val, d, n, s); }
KelStatus kelsDivC_8u_ISfs  (Kel8u val, Kel8u* d, int n, int s)                       { return divide_by_constant(d, val, d, n, s); }
KelStatus kelsDivC_16s_Sfs  (const Kel16s* a, Kel16s val, Kel16s* d, int n, int s)    { return divide_by_constant(a, val, d, n, s); }
KelStatus kelsDivC_16s_ISfs (Kel16s val, Kel16s* d, int n, int s)                     { return divide_by_constant(d, val, d, n, s); }
KelStatus kelsDivC_16sc_Sfs (const Kel16sc* a, Kel16sc val, Kel16sc* d, int n, int s) { return divide_by_constant(a, val, d, n, s); }
KelStatus kelsDivC_16sc_ISfs(Kel16sc val, Kel16sc* d, int n, int s)                   { return divide_by_constant(d, val, d, n, s); }

KelStatus kelsDivCRev_16u  (const Kel16u* a, Kel16u val, Kel16u* d, int n) { return divide_constant(a, val, d, n); }
KelStatus kelsDivCRev_16u_I(Kel16u val, Kel16u* d, int n)                  { return divide_constant(d, val, d, n); }
}
// clang-format on
