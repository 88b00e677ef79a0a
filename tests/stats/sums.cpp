// Sums, means and standard deviations.

#include "kels/conversion.h"
#include "kels/services.h"
#include "kels/statistics.h"
#include "stats/reference.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace {

using namespace kels_test;

// References

template <class T>
ExtendedSum total_of(const T* x, int len) {
    ExtendedSum sum;
    for (int i = 0; i < len; ++i) sum.add(x[i]);
    return sum;
}

/// Applies a function of one part's total to each part.
template <class Of, class T>
auto of_parts(const T* x, int len, Of of) {
    if constexpr (ComplexSample<T>) {
        using P = decltype(T::re);
        std::vector<P> re, im;
        for (int i = 0; i < len; ++i) {
            re.push_back(x[i].re);
            im.push_back(x[i].im);
        }
        return std::pair(of(total_of(re.data(), len)), of(total_of(im.data(), len)));
    } else {
        return of(total_of(x, len));
    }
}

template <class R>
struct Sum {
    template <class T>
    auto operator()(const T* x, int len, int = 0) const {
        const auto sums = of_parts(x, len, [](const ExtendedSum& s) { return s.result<R>(); });
        if constexpr (ComplexSample<T>)
            return ComplexWithin{sums.first, sums.second};
        else
            return sums;
    }
};

/// Saturated to 32 bits before a shift to the left, and then to the result.
template <class R>
struct ScaledSum {
    template <class T>
    R operator()(const T* x, int len, int factor) const {
        const auto part = [=](const ExtendedSum& s) {
            const Kel32s unscaled = scaled<Kel32s>(s.value(), factor > 0 ? factor : 0);
            return scaled<Kel32s>(unscaled, factor < 0 ? factor : 0);
        };
        const auto sums = of_parts(x, len, part);
        if constexpr (ComplexSample<T>)
            return {scaled<decltype(R::re)>(sums.first), scaled<decltype(R::re)>(sums.second)};
        else
            return scaled<R>(sums);
    }
};

template <class R>
struct Mean {
    template <class T>
    auto operator()(const T* x, int len, int = 0) const {
        const auto means =
            of_parts(x, len, [=](const ExtendedSum& s) { return s.result<R>(s.value() / len, 1.0L / len); });
        if constexpr (ComplexSample<T>)
            return ComplexWithin{means.first, means.second};
        else
            return means;
    }
};

struct ScaledMean {
    static Kel16s saturated(long double mean) { return scaled<Kel16s>(mean); }

    template <class T>
    T operator()(const T* x, int len, int factor) const {
        const auto part = [=](const ExtendedSum& s) -> Kel16s {
            if (factor >= 16) return 0;
            const long double sum = s.value();
            if (factor <= -15) return sum > 0 ? 32767 : sum < 0 ? -32768 : 0;
            if constexpr (ComplexSample<T>)
                return saturated(sum * (1.0L / std::ldexp(static_cast<long double>(len), factor)));
            else
                return saturated(std::ldexp(sum, -std::min(factor, 0)) / std::ldexp(1.0L * len, std::max(factor, 0)));
        };
        const auto means = of_parts(x, len, part);
        if constexpr (ComplexSample<T>)
            return {means.first, means.second};
        else
            return means;
    }
};

/// By the formula, in extended precision: what counts is the sign of its NaNs.
template <class T>
long double deviation_of_anything(const T* x, int len) {
    long double sum[2] = {}, squares[2] = {};
    for (int i = 0; i < len; ++i) {
        const long double v = x[i];
        sum[i % 2] += v;
        squares[i % 2] += v * v;
    }
    const long double s = sum[0] + sum[1], q = squares[0] + squares[1], n = len;
    const long double quotient = (n * q - s * s) / (n * (n - 1));
    return std::signbit(quotient) ? 0 : std::sqrt(quotient);
}

/// About the mean, where nothing cancels.
template <class T>
long double exact_deviation(const T* x, int len) {
    const long double mean = total_of(x, len).value() / len;
    ExtendedSum sum, squares;
    for (int i = 0; i < len; ++i) {
        const long double d = x[i] - mean;
        sum.add(d);
        squares.add_product(d, d);
    }
    return std::sqrt((squares.value() - sum.value() * sum.value() / len) / (len - 1));
}

struct Deviation {
    template <class T>
    Within operator()(const T* x, int len, int = 0) const {
        if (!std::all_of(x, x + len, [](T v) { return std::isfinite(v); })) return {deviation_of_anything(x, len), 0};
        const long double deviation = exact_deviation(x, len);
        // Where elements are so large that squares leave the range of doubles, the formula's own cancellation counts.
        ExtendedSum squares;
        for (int i = 0; i < len; ++i) squares.add_product(x[i], x[i]);
        const bool large = squares.value() > std::numeric_limits<Kel64f>::max();
        return {deviation, large ? squares.slack<Kel64f>() / (len - 1) / deviation : 0};
    }
};

/// By the formula, which has no error before the quotient.
template <class R>
struct ScaledDeviation {
    R operator()(const Kel16s* x, int len, int factor) const {
        std::int64_t sum = 0, squares = 0;
        for (int i = 0; i < len; ++i) {
            sum += x[i];
            squares += x[i] * x[i];
        }
        const long double n = len, numerator = static_cast<long double>(len * squares - sum * sum);
        return scaled<R>(scaled<Kel32s>(std::sqrt(numerator / (n * (n - 1))), factor));
    }
};

Rows about_the_limits(const Rows& rows) { return rows.values(0, {0, 1, -1, 3, 14, 15, 16, -14, -15, 48, 49, INT_MAX}); }

const Rows table = {
    reductions(reduced(ScaledSum<Kel32s>{}), kelsSum_16s32s_Sfs),
    reductions(reduced(ScaledSum<Kel16s>{}), kelsSum_16s_Sfs),
    reductions(reduced(ScaledSum<Kel32sc>{}), kelsSum_16sc32sc_Sfs),
    reductions(reduced(ScaledSum<Kel16sc>{}), kelsSum_16sc_Sfs),
    reductions(reduced(Sum<Kel32f>{}), kelsSum_32f, kelsSum_32fc).ulps(1),
    reductions(reduced(Sum<Kel64f>{}), kelsSum_64f).ulps(1),
    about_the_limits(reductions(reduced(ScaledMean{}), kelsMean_16s_Sfs, kelsMean_16sc_Sfs)).follows_rounding(),
    reductions(reduced(Mean<Kel32f>{}), kelsMean_32f, kelsMean_32fc).ulps(1),
    reductions(reduced(Mean<Kel64f>{}), kelsMean_64f).ulps(1),
    reductions(reduced(ScaledDeviation<Kel32s>{}), kelsStdDev_16s32s_Sfs).shortest(2).follows_rounding(),
    reductions(reduced(ScaledDeviation<Kel16s>{}), kelsStdDev_16s_Sfs).shortest(2).follows_rounding(),
    reductions(reduced(Deviation{}), kelsStdDev_32f, kelsStdDev_64f).shortest(2).ulps(1),
};

const bool registered = add_rows("Sums", table);

// Sums

TEST(Sum, LiteralValues) {
    EXPECT_EQ(reduce_with(kelsSum_16s_Sfs, {32767, 1}, 0), 32767);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {32767, 1}, 0), 32768);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {1}, 1), 0);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {1, 2}, 1), 2);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {5}, 1), 2);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {-1}, -32), INT_MIN);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {1}, -31), INT_MAX);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {0}, INT_MIN), 0);
}

// Lanes hold a limited number of steps: every length about a multiple of any such number, with the largest elements.
TEST(Sum, IsExactAtAnyLength) {
    for (const int len : {16383, 16384, 16385, 65535, 65536, 65537, 70000, 131072, 1000003}) {
        for (const int value : {-32768, 32767, 1}) {
            const std::vector<Kel16s> x(len, static_cast<Kel16s>(value));
            const Kel64s sum = Kel64s{len} * value;
            EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, x, 5), (scaled<Kel32s>(sum, 5)));
            EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, x, 48), (scaled<Kel32s>(sum, 48)));
            EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, x, 49), 0);
            EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, 0), value);
            const std::vector<Kel16sc> z(len, Kel16sc{static_cast<Kel16s>(value), 3});
            const Kel32sc parts = reduce_with(kelsSum_16sc32sc_Sfs, z, 5);
            EXPECT_EQ(parts.re, (scaled<Kel32s>(sum, 5)));
            EXPECT_EQ(parts.im, (scaled<Kel32s>(Kel64s{len} * 3, 5)));
        }
    }
}

// A million terms that all but cancel: what a sum in double precision leaves is noise.
TEST(Sum, CancellationInDoubles) {
    Random random("cancellation");
    std::vector<Kel64f> x;
    for (int i = 0; i < 500000; ++i) {
        x.push_back(random.uniform(-1, 1) * std::exp2(random.below(40)));
        x.push_back(-x.back());
    }
    for (std::size_t i = x.size() - 1; i > 0; --i) std::swap(x[i], x[random.below(static_cast<int>(i + 1))]);
    x.push_back(0x1p-30);
    const ExtendedSum sum = total_of(x.data(), static_cast<int>(x.size()));
    EXPECT_NEAR(reduce_with(kelsSum_64f, x), 0x1p-30, static_cast<double>(sum.slack<Kel64f>()));
    EXPECT_NEAR(reduce_with(kelsSum_64f, x), 0x1p-30, 0x1p-60) << "far better than the bound";
    EXPECT_NEAR(reduce_with(kelsMean_64f, x), 0x1p-30 / static_cast<double>(x.size()), 0x1p-95);
}

TEST(Sum, DoublesMayLeaveTheirRangeOnTheWay) {
    const Kel64f most = std::numeric_limits<Kel64f>::max(), far = std::numeric_limits<Kel64f>::infinity();
    EXPECT_EQ(reduce_with(kelsSum_64f, {most, most, -most}), most);
    EXPECT_EQ(reduce_with(kelsMean_64f, std::vector<Kel64f>(100, most)), most);
    EXPECT_EQ(reduce_with(kelsSum_64f, {most, most}), far);
    EXPECT_EQ(reduce_with(kelsSum_64f, {1, -far}), -far);
    EXPECT_TRUE(std::isnan(reduce_with(kelsSum_64f, {far, -far})));
}

// Means

TEST(Mean, LiteralValues) {
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, {1, 2}, 0), 2);
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, {2, 3}, 0), 2);
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, {32767, 32767}, 16), 0);
    std::vector<Kel16s> x(1000);
    x[500] = 1;
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, -15), 32767);
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, -14), 16);
    x[500] = -1;
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, INT_MIN), -32768);
    x[500] = 0;
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, -15), 0);
}

// Standard deviations

TEST(StdDev, LiteralValues) {
    EXPECT_EQ(reduce_with(kelsStdDev_16s_Sfs, {1, 2}, -20), 32767);
    EXPECT_EQ(reduce_with(kelsStdDev_16s_Sfs, {7, 7, 7}, -20), 0);
    EXPECT_EQ(reduce_with(kelsStdDev_16s32s_Sfs, {1, 2, 3, 4, 5, 6}, -10), 1916);
    EXPECT_EQ(reduce_with(kelsStdDev_32f, {1, 2, 3, 4, 5}, 0), static_cast<Kel32f>(std::sqrt(2.5)));
    EXPECT_EQ(reduce_with(kelsStdDev_64f, {1, 2, 3, 4, 5}), std::sqrt(2.5));
}

TEST(StdDev, ConstantVectorHasNone) {
    for (const int len : {2, 7, 100, 5000}) {
        EXPECT_EQ(reduce_with(kelsStdDev_32f, std::vector<Kel32f>(len, 0.1F), 0), 0);
        EXPECT_EQ(reduce_with(kelsStdDev_64f, std::vector<Kel64f>(len, 0.1)), 0);
        EXPECT_EQ(reduce_with(kelsStdDev_16s32s_Sfs, std::vector<Kel16s>(len, -32768), -30), 0);
    }
}

// Elements of which the mean is far larger than the deviation: the plain formula leaves little.
TEST(StdDev, FarFromZero) {
    Random random("deviation");
    std::vector<Kel32f> singles;
    std::vector<Kel64f> doubles;
    std::vector<Kel16s> integers;
    for (int i = 0; i < 100000; ++i) {
        singles.push_back(static_cast<Kel32f>(4e6 + random.uniform(-1, 1)));
        doubles.push_back(1e12 + random.uniform(-1, 1));
        integers.push_back(static_cast<Kel16s>(32000 + random.below(3)));
    }
    const int len = static_cast<int>(singles.size());
    EXPECT_EQ(reduce_with(kelsStdDev_32f, singles, 0), static_cast<Kel32f>(exact_deviation(singles.data(), len)));
    EXPECT_DOUBLE_EQ(reduce_with(kelsStdDev_64f, doubles), static_cast<Kel64f>(exact_deviation(doubles.data(), len)));
    EXPECT_EQ(reduce_with(kelsStdDev_16s32s_Sfs, integers, -30),
              scaled<Kel32s>(exact_deviation(integers.data(), len), -30));
}

TEST(StdDev, SignsOfNaNsCount) {
    const Kel32f far = std::numeric_limits<Kel32f>::infinity(), nan = std::nanf("");
    EXPECT_EQ(reduce_with(kelsStdDev_32f, {1, far, 2}, 0), 0);
    EXPECT_TRUE(std::isnan(reduce_with(kelsStdDev_32f, {1, nan, 2}, 0)));
    EXPECT_EQ(reduce_with(kelsStdDev_32f, {1, -nan, 2}, 0), 0);
    EXPECT_EQ(reduce_with(kelsStdDev_64f, {1, far, 2}), 0);
    EXPECT_TRUE(std::isnan(reduce_with(kelsStdDev_64f, {1, nan, 2})));
    EXPECT_EQ(reduce_with(kelsStdDev_64f, {-nan, -nan, 1}), 0);
}

TEST(StdDev, SquaresMayLeaveTheRangeOfDoubles) {
    EXPECT_DOUBLE_EQ(reduce_with(kelsStdDev_64f, {1e300, -1e300}), std::sqrt(2) * 1e300);
    EXPECT_DOUBLE_EQ(reduce_with(kelsStdDev_64f, {1e-200, -1e-200}), std::sqrt(2) * 1e-200);
}

// A quotient that is rounded before its root is off by more than a unit.
TEST(StdDev, IsRoundedOnce) {
    Random random("rounded once");
    std::vector<Kel64f> x = {-23.2, -38.2, -31.5, 9.5, 32.0};
    for (int i = 0; i < 20000; ++i) {
        const int len = static_cast<int>(x.size());
        const auto wanted = static_cast<Kel64f>(exact_deviation(x.data(), len));
        const Kel64f got = reduce_with(kelsStdDev_64f, x);
        ASSERT_LE(std::fabs(got - exact_deviation(x.data(), len)), 0.51L * (std::nextafter(wanted, HUGE_VAL) - wanted));
        x.resize(static_cast<std::size_t>(2 + random.below(9)));
        for (Kel64f& v : x) v = random.uniform(-50, 50);
    }
}

// One meaning of the caller's rounding mode: what `fegetround` tells, and the library's own service sets.
TEST(CallersRounding, IsThatOfTheX87Unit) {
    const KeepControlState keep;
    constexpr Kel32u mask = 0x0C00;
    struct {
        Kel32u mode;
        Kel16s mean, part, normalized;
        Kel32s deviation;
        Kel32f converted;
    } const cases[] = {{0x0000, 2, -2, 2, 1, 16777216},
                       {0x0400, 1, -2, 2, 0, 16777216},
                       {0x0800, 2, -1, 3, 1, 16777218},
                       {0x0C00, 1, -1, 2, 0, 16777216}};
    const std::vector<Kel16s> x = {1, 2};
    const std::vector<Kel16sc> z = {{1, -1}, {2, -2}};
    const Kel16s five = 5;
    const Kel32s odd = 16777217;
    for (const auto& row : cases) {
        Kel16s normalized = 0;
        Kel32f converted = 0;
        ks_set_cw_fpu(row.mode, mask);
        const Kel16s mean = reduce_with(kelsMean_16s_Sfs, x, 0);
        const Kel16sc means = reduce_with(kelsMean_16sc_Sfs, z, 0);
        const Kel32s deviation = reduce_with(kelsStdDev_16s32s_Sfs, x, 0);
        kelsNormalize_16s_Sfs(&five, &normalized, 1, 0, 2, 0);
        kelsConvert_32s32f(&odd, &converted, 1);
        ks_set_cw_fpu(0, mask);
        EXPECT_EQ(mean, row.mean) << row.mode;
        EXPECT_EQ(means.im, row.part) << row.mode;
        EXPECT_EQ(deviation, row.deviation) << row.mode;
        EXPECT_EQ(normalized, row.normalized) << row.mode;
        EXPECT_EQ(converted, row.converted) << row.mode;
    }
}

} // namespace
