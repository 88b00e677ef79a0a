// Conversions between sample types and normalisation.

#include "kels/conversion.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/literals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

// References

constexpr auto same = each([](auto x) { return x; });
/// Rounded by the x87 unit: the compiler may not take the short way.
constexpr auto extended = [](auto x) -> long double {
    const volatile long double v = x;
    return v;
};
constexpr auto limited = each([](Kel64f x) {
    const Kel64f most = std::numeric_limits<Kel32f>::max();
    if (x < most && x > -most) return extended(x);
    return extended(x <= -most ? -most : most); // a NaN, too, whatever kind it is
});

template <int Least, int Most>
struct TimesPower {
    long double operator()(long double x, int factor) const { return std::ldexp(x, -std::clamp(factor, Least, Most)); }
};

template <class R>
struct ToInteger {
    template <class T>
    R operator()(T x, int mode, int factor) const {
        using Limits = std::numeric_limits<R>;
        if (std::isnan(x)) return sizeof(R) == 4 || std::signbit(x) ? Limits::min() : Limits::max();
        if (std::isinf(x)) return x < 0 ? Limits::min() : Limits::max();
        constexpr int far = 3000;
        const long double exact = std::ldexp(static_cast<long double>(x), -std::clamp(factor, -far, far));
        return scaled<R>(mode == 1 ? exact : std::trunc(exact));
    }
};

/// part(x, sub), or that of both parts.
template <class R, class T, class Part>
auto by_parts(T x, T sub, Part part) {
    if constexpr (ComplexSample<T>)
        return R{part(x.re, sub.re), part(x.im, sub.im)};
    else
        return part(x, sub);
}

constexpr auto normalized = each([](auto x, auto sub, auto divisor) {
    const long double reciprocal = 1.0L / divisor;
    return by_parts<ExactComplex>(x, sub, [=](long double a, long double b) { return (a - b) * reciprocal; });
});

constexpr auto normalized_integer = each([]<class T>(T x, T sub, int divisor, int factor) {
    constexpr int far = 3000, all_vanishes = 1000;
    const double power = std::pow(2.0, -static_cast<double>(std::clamp(factor, -far, all_vanishes)));
    const long double multiplier = power * (1.0L / divisor);
    return by_parts<T>(x, sub, [=](int a, int b) -> Kel16s {
        const long double v = (a - b) * multiplier;
        if (!(v <= 32767)) return 32767;
        if (v < -32768) return -32768;
        const auto shifted = static_cast<float>(v + 12582912);
        std::int32_t bits;
        std::memcpy(&bits, &shifted, 4);
        return static_cast<Kel16s>(bits);
    });
});

template <class R>
constexpr auto to_integer = each(ToInteger<R>{});

Rows in_each_mode(const Rows& rows) { return rows.values(0, {0, 1, 1, -1, 2, INT_MIN}); }

const double nan = std::numeric_limits<double>::quiet_NaN();

const Rows table = {
    rows(same, kelsConvert_8s16s, kelsConvert_16s32s, kelsConvert_8s32f, kelsConvert_8u32f, kelsConvert_16s32f,
         kelsConvert_16u32f, kelsConvert_32s64f),
    rows(same, kelsConvert_32f64f).ulps(0),
    rows(each(extended), kelsConvert_32s32f).follows_rounding(),
    rows(each([](Kel32s x) { return scaled<Kel16s>(x); }), kelsConvert_32s16s),
    rows(limited, kelsConvert_64f32f).follows_rounding(),
    rows(each(TimesPower<-112, 126>{}), kelsConvert_16s32f_Sfs),
    rows(each(TimesPower<-96, 126>{}), kelsConvert_32s32f_Sfs).follows_rounding(),
    rows(each(TimesPower<-1008, 1022>{}), kelsConvert_16s64f_Sfs),
    rows(each(TimesPower<-992, 1022>{}), kelsConvert_32s64f_Sfs),
    in_each_mode({rows(to_integer<Kel8s>, kelsConvert_32f8s_Sfs), rows(to_integer<Kel8u>, kelsConvert_32f8u_Sfs),
                  rows(to_integer<Kel16s>, kelsConvert_32f16s_Sfs), rows(to_integer<Kel16u>, kelsConvert_32f16u_Sfs),
                  rows(to_integer<Kel32s>, kelsConvert_32f32s_Sfs, kelsConvert_64f32s_Sfs)}),
    rows(normalized, kelsNormalize_32f, kelsNormalize_32fc)
        .values(1, {1, -1, 3, 0.1, -7.3e-5, 1e30, 1e-30, 1.18e-38, -3e38, HUGE_VAL, nan, 123457})
        .refuses(1, {0, -0.0, 1e-39, -1e-39}, kelStatusDivByZero)
        .ulps(1),
    rows(normalized, kelsNormalize_64f, kelsNormalize_64fc)
        .values(1, {1, -1, 3, 0.1, -7.3e-5, 1e300, 1e-300, 2.3e-308, -1.7e308, HUGE_VAL, nan, 1e-39})
        .refuses(1, {0, -0.0, 1e-309}, kelStatusDivByZero)
        .ulps(1),
    rows(normalized_integer, kelsNormalize_16s_Sfs, kelsNormalize_16sc_Sfs)
        .values(1, {1, 2, -1, 3, -7, 1000, INT_MAX, INT_MIN, 10, 5, 6, 4})
        .refuses(1, {0}, kelStatusDivByZero)
        .follows_rounding(),
};

const bool registered = add_rows("Conversion", table);

// Every number that lies on, or beside, an integer, a half or a limit, at every scale factor that leaves something.

template <class T>
void add_with_neighbours(std::vector<T>& v, double x) {
    const T y = static_cast<T>(x), far = std::numeric_limits<T>::infinity();
    for (T z : {std::nextafter(y, -far), y, std::nextafter(y, far)}) {
        v.push_back(z);
        v.push_back(-z);
    }
}

template <class T>
std::vector<T> beside_boundaries(int factor) {
    std::vector<T> v;
    for (double x = 0; x <= 10; x += 0.5) add_with_neighbours<T>(v, std::ldexp(x, factor));
    for (int digits : {7, 8, 15, 16, 31, 32})
        for (double delta : {-2.0, -1.5, -1.0, -0.5, 0.0, 0.5, 1.0})
            add_with_neighbours<T>(v, std::ldexp(std::ldexp(1.0, digits) + delta, factor));
    return v;
}

template <class T, class R>
void expect_right_at_boundaries(KelStatus (*function)(const T*, R*, int, int, int)) {
    constexpr int least = sizeof(T) == 4 ? -190 : -1120, most = sizeof(T) == 4 ? 160 : 1040;
    for (int factor = least; factor <= most; ++factor) {
        const std::vector<T> x = beside_boundaries<T>(factor);
        std::vector<R> d(x.size());
        for (int mode : {0, 1}) {
            ASSERT_EQ(function(x.data(), d.data(), static_cast<int>(x.size()), mode, factor), kelStatusOk);
            for (std::size_t i = 0; i < x.size(); ++i)
                ASSERT_EQ(d[i], ToInteger<R>{}(x[i], mode, factor)) << x[i] << " at " << factor << ", mode " << mode;
        }
    }
}

TEST(RealToInteger, BoundariesAtEveryScaleFactor) {
    expect_right_at_boundaries(kelsConvert_32f8s_Sfs);
    expect_right_at_boundaries(kelsConvert_32f8u_Sfs);
    expect_right_at_boundaries(kelsConvert_32f16s_Sfs);
    expect_right_at_boundaries(kelsConvert_32f16u_Sfs);
    expect_right_at_boundaries(kelsConvert_32f32s_Sfs);
    expect_right_at_boundaries(kelsConvert_64f32s_Sfs);
}

// A caller that rounds up and takes denormals for zeros: neither shows.
TEST(RealToInteger, CallersModesDoNotMatter) {
    under({0x0B7F, 0x5FC0}, [] {
        expect_results(kelsConvert_32f16s_Sfs, {2.5F, 3.5F, -2.5F}, {2, 4, -2}, 1, 0);
        expect_results(kelsConvert_32f16s_Sfs, {0x1p-149F}, {2}, 0, -150);
    });
}

// In any mode.
TEST(Normalize, NothingTimesAnInfiniteFactorIsMost) {
    const auto expect_most = [] {
        expect_results(kelsNormalize_16s_Sfs, {32767}, {32767}, 32767, 1, -1024);
        expect_results(kelsNormalize_16s_Sfs, {32767}, {32767}, 32767, 100, -2000);
    };
    expect_most();
    in_odd_modes(expect_most);
}

// Quotients as close to a half as a divisor of 31 bits lets them come, and halves themselves.
TEST(Normalize, RoundsOnce) {
    const Kel16s x = 32767;
    Kel16s d;
    const auto rounded = [&](int sub, int divisor, int factor) {
        const Kel16sc z = {x, -x};
        Kel16sc w;
        EXPECT_EQ(kelsNormalize_16s_Sfs(&x, &d, 1, static_cast<Kel16s>(sub), divisor, factor), kelStatusOk);
        EXPECT_EQ(
            kelsNormalize_16sc_Sfs(&z, &w, 1, {static_cast<Kel16s>(sub), static_cast<Kel16s>(-sub)}, divisor, factor),
            kelStatusOk);
        EXPECT_EQ(w.re, d);
        EXPECT_EQ(w.im, -d);
        return d;
    };
    EXPECT_EQ(rounded(-1, 2147483647, -15), 1); // 1/2 + 2^-32
    EXPECT_EQ(rounded(-1, -2147483647, -15), -1);
    EXPECT_EQ(rounded(32766, 2147483647, -31), 1); // 1 + 2^-31
    for (int divisor = 1; divisor < 2000; ++divisor)
        for (int twice : {1, 3, 5, 11, 127}) { // twice / 2 is the quotient, or beside it
            const int difference = divisor * twice;
            for (int beside : {-1, 0, 1}) {
                if (difference + beside < 0 || difference + beside > 65535) continue;
                const std::int64_t n = difference + beside, quotient = n / (2 * divisor), rest = n % (2 * divisor);
                const bool up = rest > divisor || (rest == divisor && quotient % 2 == 1);
                EXPECT_EQ(rounded(32767 - static_cast<int>(n), 2 * divisor, 0), quotient + up)
                    << n << " / " << 2 * divisor;
            }
        }
}

// The difference is beyond the range of doubles, the result is not.
TEST(Normalize, DifferenceMayOverflow) {
    expect_results(kelsNormalize_64f, std::vector<Kel64f>(20, 1.5e308), std::vector<Kel64f>(20, 0.75e308), -1.5e308, 4);
}

} // namespace
