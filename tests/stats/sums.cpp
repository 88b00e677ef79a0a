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

/// What `of` makes of the total of each part.
template <class T, class Of>
auto of_totals(const T* x, int len, Of of) {
    ExtendedSum re, im;
    for (int i = 0; i < len; ++i) {
        if constexpr (ComplexSample<T>) {
            re.add(x[i].re);
            im.add(x[i].im);
        } else {
            re.add(x[i]);
        }
    }
    return of_parts<ComplexSample<T>>(re, im, of);
}

template <class R>
struct Sum {
    auto operator()(const auto* x, int len, int = 0) const {
        return of_totals(x, len, [](const ExtendedSum& s) { return s.result<R>(); });
    }
};

/// Saturated to 32 bits before a shift to the left, and then to the result's parts.
template <class P>
struct ScaledSum {
    auto operator()(const auto* x, int len, int factor) const {
        return of_totals(x, len, [=](const ExtendedSum& s) {
            const Kel32s unscaled = scaled<Kel32s>(s.value(), factor > 0 ? factor : 0);
            return scaled<P>(scaled<Kel32s>(unscaled, factor < 0 ? factor : 0));
        });
    }
};

template <class R>
struct Mean {
    auto operator()(const auto* x, int len, int = 0) const {
        return of_totals(x, len, [=](const ExtendedSum& s) { return s.result<R>(s.value() / len, 1.0L / len); });
    }
};

constexpr auto scaled_mean = reduced([]<class T>(const T* x, int len, int factor) {
    return of_totals(x, len, [=](const ExtendedSum& s) -> Kel16s {
        if (factor >= 16) return 0;
        const long double sum = s.value();
        if (factor <= -15) return sum > 0 ? 32767 : sum < 0 ? -32768 : 0;
        if constexpr (ComplexSample<T>)
            return scaled<Kel16s>(sum * (1.0L / std::ldexp(static_cast<long double>(len), factor)));
        else
            return scaled<Kel16s>(std::ldexp(sum, -std::min(factor, 0)) / std::ldexp(1.0L * len, std::max(factor, 0)));
    });
});

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
        const long double n = len, total = static_cast<long double>(sum);
        const long double numerator = n * static_cast<long double>(squares) - total * total;
        return scaled<R>(scaled<Kel32s>(std::sqrt(numerator / (n * (n - 1))), factor));
    }
};

Rows about_the_limits(const Rows& rows) { return rows.values(0, {0, 1, -1, 3, 14, 15, 16, -14, -15, 48, 49, INT_MAX}); }

const Rows table = {
    reductions(reduced(ScaledSum<Kel32s>{}), kelsSum_16s32s_Sfs, kelsSum_16sc32sc_Sfs),
    reductions(reduced(ScaledSum<Kel16s>{}), kelsSum_16s_Sfs, kelsSum_16sc_Sfs),
    reductions(reduced(Sum<Kel32f>{}), kelsSum_32f, kelsSum_32fc).ulps(1),
    reductions(reduced(Sum<Kel64f>{}), kelsSum_64f).every_size().ulps(1),
    about_the_limits(reductions(scaled_mean, kelsMean_16s_Sfs, kelsMean_16sc_Sfs)).follows_rounding(),
    reductions(reduced(Mean<Kel32f>{}), kelsMean_32f, kelsMean_32fc).ulps(1),
    reductions(reduced(Mean<Kel64f>{}), kelsMean_64f).every_size().ulps(1),
    reductions(reduced(ScaledDeviation<Kel32s>{}), kelsStdDev_16s32s_Sfs).shortest(2).follows_rounding(),
    reductions(reduced(ScaledDeviation<Kel16s>{}), kelsStdDev_16s_Sfs).shortest(2).follows_rounding(),
    reductions(reduced(Deviation{}), kelsStdDev_32f, kelsStdDev_64f).shortest(2).every_size().ulps(1),
};

const bool registered = add_rows("Sums", table);

// Sums

TEST(Sum, SaturatesBeforeItIsShiftedToTheLeft) {
    EXPECT_EQ(reduce_with(kelsSum_16s_Sfs, {32767, 1}, 0), 32767);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {-1}, -32), INT_MIN);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {1}, -31), INT_MAX);
    EXPECT_EQ(reduce_with(kelsSum_16s32s_Sfs, {0}, INT_MIN), 0);
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
}

// Means

TEST(Mean, ThatVanishesHasTheSignOfTheSum) {
    std::vector<Kel64f> x(10);
    x[3] = -2 * std::numeric_limits<Kel64f>::denorm_min();
    EXPECT_EQ(1 / reduce_with(kelsMean_64f, x), -std::numeric_limits<Kel64f>::infinity());
    x[3] = -x[3];
    EXPECT_EQ(1 / reduce_with(kelsMean_64f, x), std::numeric_limits<Kel64f>::infinity());
}

TEST(Mean, SmallSumsOfLargeFactors) {
    std::vector<Kel16s> x(1000);
    x[500] = 1;
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, -15), 32767);
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, -14), 16);
    x[500] = 0;
    EXPECT_EQ(reduce_with(kelsMean_16s_Sfs, x, -15), 0);
}

// Standard deviations

TEST(StdDev, ConstantVectorHasNone) {
    for (const int len : {2, 7, 100, 5000}) {
        EXPECT_EQ(reduce_with(kelsStdDev_32f, std::vector<Kel32f>(len, 0.1F), 0), 0);
        EXPECT_EQ(reduce_with(kelsStdDev_64f, std::vector<Kel64f>(len, 0.1)), 0);
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

} // namespace
