// Exponentials, logarithms and their sums, against extended precision and, for integer results, against exact rounding
// at every element where a result changes.

#include "kels/exponential.h"
#include "support/exact.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

// Real numbers

constexpr auto singles = each([](Kel32f x) -> long double {
    if (std::isnan(x)) return is_quiet_nan(x) ? x : std::signbit(x) ? 0 : HUGE_VALL;
    if (x <= -87.33650207519531) return 0;
    return x >= 87.0999984741211 ? HUGE_VALL : std::exp(static_cast<long double>(x));
});
constexpr auto doubles = each([](Kel64f x) -> long double {
    if (x <= -708.3935546875) return 0;
    return x * 1.4426950408889634L >= 1023.5L ? HUGE_VALL : std::exp(static_cast<long double>(x));
});

template <class T>
KelStatus offence(T x) {
    if (std::is_floating_point_v<T> ? std::signbit(static_cast<double>(x)) : x < 0) return kelStatusLnNegArg;
    return x == 0 ? kelStatusLnZeroArg : kelStatusOk;
}

/// Every element by a reference of its own, the status by the first one without a logarithm.
template <class F>
struct Logarithms {
    template <class T, class R, class... Scale>
    KelStatus operator()(const T* x, R* d, int len, Scale... scale) const {
        KelStatus status = kelStatusOk;
        for (int i = 0; i < len; ++i) {
            if (status == kelStatusOk) status = offence(x[i]);
            d[i] = F{}.template operator()<R>(x[i], scale...);
        }
        return status;
    }
};

struct RealLogarithm {
    template <class R, class T>
    R operator()(T x) const {
        return std::signbit(x) ? static_cast<R>(NAN) : static_cast<R>(std::log(static_cast<long double>(x)));
    }
};

// Integers

/// e^x for integers x: the sum of two extended numbers, 128 bits in all, by repeated multiplication.
struct Pair {
    long double high, low;
};

Pair product(Pair a, Pair b) {
    const long double p = a.high * b.high;
    const long double rest = std::fma(a.high, b.high, -p) + (a.high * b.low + a.low * b.high), sum = p + rest;
    return {sum, (p - sum) + rest};
}

Pair power_of_e(int x) {
    static const std::vector<Pair> powers = [] {
        constexpr int most = 800;
        const Pair e = {2.71828182845904523542816810799L, -6.78806366412778411699004680165e-20L};
        const Pair inverse = {0.367879441171442321583057513679L, 1.24662564828002125133326469466e-20L};
        std::vector<Pair> table(2 * most + 1);
        table[most] = {1, 0};
        for (int k = 1; k <= most; ++k) {
            table[most + k] = product(table[most + k - 1], e);
            table[most - k] = product(table[most - k + 1], inverse);
        }
        return table;
    }();
    return powers[800 + x];
}

/// e^x 2^-factor, rounded to nearest, halves up, limited.
template <class T>
T exp_integer(std::int64_t x, std::int64_t factor) {
    const long double exponent =
        static_cast<long double>(x) * std::numbers::log2e_v<long double> - static_cast<long double>(factor);
    if (exponent > 64) return std::numeric_limits<T>::max();
    if (exponent < -2) return 0;
    EXPECT_LE(std::abs(x), 800) << "no reference";
    const Pair power = power_of_e(static_cast<int>(x));
    const long double high = std::ldexp(power.high, static_cast<int>(-factor));
    const long double low = std::ldexp(power.low, static_cast<int>(-factor));
    const long double whole = std::floor(high), rest = (high - whole) + low;
    const long double rounded = whole + std::floor(rest + 0.5L);
    constexpr T most = std::numeric_limits<T>::max();
    return rounded >= static_cast<long double>(most) ? most : static_cast<T>(rounded);
}

constexpr auto integers = each([]<class T>(T x, int factor) { return exp_integer<T>(x, factor); });

constexpr Kel64s most_long = std::numeric_limits<Kel64s>::max();

constexpr auto longs = each([](Kel64s x, int factor) -> Kel64s {
    if (factor == 0) return x < 0 ? 0 : exp_integer<Kel64s>(x, 0);
    if (factor == 1 && x == 44) return 0x592D071B4DE0C7FA;
    if (factor == 1) return x < 0 ? 0 : x > 44 ? most_long : (exp_integer<Kel64s>(x, 0) + 1) >> 1;
    if (factor == -1) return x < -1 ? 0 : x == -1 ? 1 : x > 42 ? most_long : 2 * exp_integer<Kel64s>(x, 0);
    if (x >= 710) return most_long;
    return x <= -709 ? 0 : exp_integer<Kel64s>(x, factor);
});

/// The integer nearest to ln x.
int rounded_logarithm(std::int64_t x) { return static_cast<int>(std::lrint(std::log(static_cast<long double>(x)))); }

/// As it is stated: of halves of x, so often that their squares fit in 16 bits.
int doubled_logarithm(int x) {
    const auto square = [](int v) { return rounded_logarithm(static_cast<std::int64_t>(v) * v); };
    if (x <= 181) return square(x);
    int n = 0, v = x;
    for (; v > 181; v >>= 1) ++n;
    int sum = square(v), w = 0;
    do {
        w = 1 << n;
        int u = w, m = 0;
        for (; u > 181; u >>= 1) ++m;
        sum += square(u);
        n = m;
    } while (w > 181);
    return sum;
}

Kel16s enlarged_logarithm(std::int64_t x, int factor) {
    const long double exact = std::ldexp(std::log(static_cast<long double>(x)), -std::clamp(factor, -40, 40));
    return exact >= 32767 ? Kel16s{32767} : static_cast<Kel16s>(std::floor(exact + 0.5L));
}

struct IntegerLogarithm {
    template <class R>
    R operator()(Kel16s x, int factor) const {
        if (x <= 0) return 0;
        return factor == -1 ? static_cast<R>(doubled_logarithm(x)) : enlarged_logarithm(x, factor);
    }
    template <class R>
    R operator()(Kel32s x, int factor) const {
        if (x <= 0) return 0;
        if (factor >= 0) return static_cast<R>(rounded_logarithm(x) >> std::min(factor, 31));
        return enlarged_logarithm(x, factor);
    }
};

// Sums

/// Ended by the first element without a logarithm, or by a quiet NaN.
template <class R>
struct Sum {
    template <class T>
    KelStatus operator()(const T* x, R* sum, int len) const {
        long double total = 0;
        for (int i = 0; i < len; ++i) {
            const KelStatus status = offence(x[i]);
            const auto logarithm = status == kelStatusLnNegArg ? NAN : std::log(static_cast<long double>(x[i]));
            bool ends = status != kelStatusOk;
            if constexpr (std::is_floating_point_v<T>) ends |= is_quiet_nan(x[i]);
            if (ends) {
                *sum = std::is_integral_v<T> ? 0 : static_cast<R>(logarithm);
                return status;
            }
            total += logarithm;
        }
        *sum = static_cast<R>(total);
        return kelStatusOk;
    }
};

constexpr auto logarithms = whole(Logarithms<RealLogarithm>{});
constexpr auto integer_logarithms = whole(Logarithms<IntegerLogarithm>{});

const Rows table = {
    rows(singles, kelsExp_32f).range(-90, 90).ulps(1),
    in_place(singles, kelsExp_32f_I).ulps(1),
    rows(doubles, kelsExp_64f, kelsExp_32f64f).range(-712, 712).ulps(1),
    in_place(doubles, kelsExp_64f_I).ulps(1),
    rows(integers, kelsExp_16s_Sfs).in_place(kelsExp_16s_ISfs, kelsExp_32s_ISfs),
    rows(integers, kelsExp_32s_Sfs).range(-60, 60),
    rows(longs, kelsExp_64s_Sfs).range(-80, 80),
    in_place(longs, kelsExp_64s_ISfs),
    rows(logarithms, kelsLn_32f, kelsLn_64f, kelsLn_64f32f).in_place(kelsLn_32f_I, kelsLn_64f_I).ulps(1),
    rows(integer_logarithms, kelsLn_16s_Sfs, kelsLn_32s16s_Sfs).in_place(kelsLn_16s_ISfs),
    reductions(whole(Sum<Kel32f>{}), kelsSumLn_32f).range(0.01, 100).ulps(1),
    reductions(whole(Sum<Kel64f>{}), kelsSumLn_64f, kelsSumLn_32f64f).range(0.01, 100).ulps(1),
    reductions(whole(Sum<Kel32f>{}), kelsSumLn_16s32f).range(-3, 32767).ulps(1),
};
const bool registered = add_rows("Exponential", table);

// Literal values

template <class R, class T, class... Scale>
R one(KelStatus (*function)(const T*, R*, int, Scale...), T x, Scale... scale) {
    R result{};
    EXPECT_GE(function(&x, &result, 1, scale...), kelStatusOk);
    return result;
}

TEST(Exponential, EndsWhereItIsStated) {
    const auto expect = []<class T>(auto function, T low, T high) {
        EXPECT_EQ(one(function, low), 0);
        EXPECT_GE(one(function, std::nextafter(low, T{0})), std::numeric_limits<T>::min());
        EXPECT_TRUE(std::isfinite(one(function, std::nextafter(high, T{0}))));
        EXPECT_EQ(one(function, high), std::numeric_limits<T>::infinity());
    };
    expect(kelsExp_32f, -0x1.5d5894p6F, 0x1.5c6666p6F);
    expect(kelsExp_64f, -708.3935546875, 709.436139303104);
}

TEST(Exponential, LiteralIntegers) {
    const auto expect = [](auto function, auto x, int factor, auto want) {
        EXPECT_EQ(one(function, x, factor), want) << x << " by " << factor;
    };
    expect(kelsExp_64s_Sfs, Kel64s{709}, 2000, 0);
    expect(kelsExp_64s_Sfs, Kel64s{710}, INT_MAX, most_long);
    expect(kelsExp_64s_Sfs, Kel64s{-708}, INT_MIN, most_long);
    expect(kelsExp_64s_Sfs, Kel64s{-709}, INT_MIN, 0);
    expect(kelsExp_64s_Sfs, Kel64s{-708}, -1023, 3);
}

// Factors that tables do not reach: e^x 2^-factor is about 2^20 for every x.
TEST(Exponential, FollowsFactorsOfAnySize) {
    for (int x = -790; x <= 790; ++x) {
        const int factor = static_cast<int>(std::lround(x * 1.4426950408889634)) - 20;
        ASSERT_EQ(one(kelsExp_32s_Sfs, x, factor), exp_integer<Kel32s>(x, factor)) << x;
        ASSERT_EQ(one(kelsExp_16s_Sfs, static_cast<Kel16s>(x), factor + 8), exp_integer<Kel16s>(x, factor + 8)) << x;
    }
}

// The integers on both sides of every place where a logarithm rounds to another integer.
TEST(Logarithm, EveryStep) {
    for (int factor = -17; factor <= 0; ++factor)
        for (int result = 1; result <= 32767; ++result) {
            const long double at = std::exp(std::ldexp(result - 0.5L, factor));
            if (at >= 2147483646) break;
            const auto below = static_cast<Kel32s>(at);
            const Kel32s pair[] = {below, below + 1};
            Kel16s got[2];
            ASSERT_EQ(kelsLn_32s16s_Sfs(pair, got, 2, factor), kelStatusOk);
            for (int i : {0, 1})
                ASSERT_EQ(got[i], IntegerLogarithm{}.operator()<Kel16s>(pair[i], factor))
                    << pair[i] << " by " << factor;
        }
}

// Its exponent, rounded up, is the first that fills the bits of one.
TEST(Logarithm, OfTheLargestNumberAlone) {
    Kel64f x = std::numeric_limits<Kel64f>::max();
    ASSERT_EQ(kelsLn_64f_I(&x, 1), kelStatusOk);
    EXPECT_NEAR(x, 0x1.62e42fefa39efp+9, 0x1p-43);
}

TEST(Logarithm, FirstOffenderDecides) {
    std::vector<Kel32f> far(5000, 2.0F), logarithms(5000);
    far[4999] = 0;
    EXPECT_EQ(kelsLn_32f(far.data(), logarithms.data(), 5000), kelStatusLnZeroArg);
    far[1500] = -1;
    EXPECT_EQ(kelsLn_32f(far.data(), logarithms.data(), 5000), kelStatusLnNegArg);
}

TEST(SumOfLogarithms, NeitherOverflowsNorCancels) {
    std::vector<Kel32f> large(20000, 1e30F);
    Kel32f sum = 0;
    ASSERT_EQ(kelsSumLn_32f(large.data(), 20000, &sum), kelStatusOk);
    EXPECT_EQ(sum, static_cast<Kel32f>(20000 * std::log(static_cast<long double>(1e30F))));
    // Close to 1 from both sides, so that the sum is small beside the exponents' share.
    Random random("close to 1");
    std::vector<Kel64f> close(10001);
    long double want = 0, size = 0;
    for (Kel64f& x : close) {
        x = 1 + random.uniform(-1e-6, 1e-6);
        want += std::log1p(static_cast<long double>(x) - 1);
        size += std::fabs(static_cast<long double>(x) - 1);
    }
    Kel64f got = 0;
    ASSERT_EQ(kelsSumLn_64f(close.data(), 10001, &got), kelStatusOk);
    EXPECT_NEAR(got, static_cast<double>(want),
                static_cast<double>(std::fabs(want) * 0x1p-52L + 10001 * 0x1p-64L * size));
}

} // namespace
