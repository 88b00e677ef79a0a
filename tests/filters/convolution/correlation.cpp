// Auto- and cross-correlations against their definition in extended precision: the direct sums within the rounding of
// their terms, transforms within that of the vectors' norms.

#include "filters/convolution/definitions.h"

#include <array>

namespace {

using namespace kels_test;
using namespace filter_test;

template <class T, auto plain_, auto biased_, auto unbiased_, auto cross_, int lags_ = 0, int cost_ = 0>
struct Functions {
    using Sample = T;
    static constexpr auto plain = plain_;
    static constexpr auto cross = cross_;
    static constexpr std::array of_itself = {plain_, biased_, unbiased_};
    static constexpr int least_lags = lags_; ///< that may be transformed
    static constexpr int most_cost = cost_;  ///< of direct sums
};
enum Norm { plain, biased, unbiased };

using Of16s = Functions<Kel16s, kelsAutoCorr_16s_Sfs, kelsAutoCorr_NormA_16s_Sfs, kelsAutoCorr_NormB_16s_Sfs,
                        kelsCrossCorr_16s_Sfs>;
using Families = testing::Types<
    Functions<Kel32f, kelsAutoCorr_32f, kelsAutoCorr_NormA_32f, kelsAutoCorr_NormB_32f, kelsCrossCorr_32f, 600, 383>,
    Functions<Kel64f, kelsAutoCorr_64f, kelsAutoCorr_NormA_64f, kelsAutoCorr_NormB_64f, kelsCrossCorr_64f, 600, 511>,
    Functions<Kel32fc, kelsAutoCorr_32fc, kelsAutoCorr_NormA_32fc, kelsAutoCorr_NormB_32fc, kelsCrossCorr_32fc, 96,
              255>,
    Functions<Kel64fc, kelsAutoCorr_64fc, kelsAutoCorr_NormA_64fc, kelsAutoCorr_NormB_64fc, kelsCrossCorr_64fc, 96,
              511>>;

struct Lag {
    Number sum = 0;
    long double magnitudes = 0;
};

/// One lag of two vectors.
template <class T>
Lag lag_of(const std::vector<T>& a, const std::vector<T>& b, std::int64_t lag) {
    Lag result;
    const auto an = static_cast<std::int64_t>(a.size()), bn = static_cast<std::int64_t>(b.size());
    for (std::int64_t n = std::max<std::int64_t>(0, -lag); n < std::min(an, bn - lag); ++n) {
        const Number x = number(a[static_cast<std::size_t>(n)]), y = number(b[static_cast<std::size_t>(n + lag)]);
        result.sum += std::conj(x) * y;
        result.magnitudes += std::sqrt(std::norm(x) * std::norm(y));
    }
    return result;
}

template <class T>
constexpr long double eps = std::numeric_limits<Part<T>>::epsilon();

/// Within one unit of the last place, and the rounding of doubles or of transforms.
template <class T>
testing::AssertionResult near(const T& got, const Lag& want, bool direct, long double norms) {
    const long double slack = direct ? 0x1p-51L * want.magnitudes : 4 * eps<T> * norms;
    const Number error = number(got) - want.sum;
    if (std::fabs(error.real()) <= slack + eps<T> * std::fabs(want.sum.real()) &&
        std::fabs(error.imag()) <= slack + eps<T> * std::fabs(want.sum.imag()))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "off by " << error << " from " << want.sum << ", slack " << slack;
}

template <class F>
struct Correlation : testing::Test {
    using Sample = typename F::Sample;

    template <class Call>
    static std::vector<Sample> at_edges(const std::vector<Sample>& a, const std::vector<Sample>& b, int lags,
                                        Call correlate) {
        std::vector<Sample> results[2];
        for (const Edge edge : edges) {
            GuardedArray<Sample> x(a, edge), y(b, edge), dst(static_cast<std::size_t>(lags), edge);
            EXPECT_EQ(
                correlate(x.data(), static_cast<int>(a.size()), y.data(), static_cast<int>(b.size()), dst.data(), lags),
                kelStatusOk);
            results[edge == Edge::back] = dst.values();
        }
        EXPECT_TRUE(same(results[0], results[1]));
        return results[0];
    }

    static std::vector<Sample> itself(const std::vector<Sample>& x, int lags, Norm norm_of = plain) {
        return at_edges(x, x, lags, [=](const Sample* a, int n, const Sample*, int, Sample* dst, int count) {
            return F::of_itself[norm_of](a, n, dst, count);
        });
    }
    static std::vector<Sample> cross(const std::vector<Sample>& a, const std::vector<Sample>& b, int lags, int low) {
        return at_edges(a, b, lags, [=](const Sample* x, int m, const Sample* y, int n, Sample* dst, int count) {
            return F::cross(x, m, y, n, dst, count, low);
        });
    }

    static void expect_cross(const std::vector<Sample>& a, const std::vector<Sample>& b, int lags, int low) {
        const auto r = cross(a, b, lags, low);
        const auto an = static_cast<std::int64_t>(a.size()), bn = static_cast<std::int64_t>(b.size());
        const std::int64_t from = std::max<std::int64_t>(low, 1 - an),
                           to = std::min<std::int64_t>(std::int64_t{low} + lags, bn);
        const double cost =
            double(std::max<std::int64_t>(to - from, 0)) * double(std::min(an, bn)) / double(std::max(an, bn));
        const bool direct = static_cast<std::int64_t>(cost) <= F::most_cost;
        const long double norms = norm(a) * norm(b);
        for (int k = 0; k < lags; k += 1 + lags / 100)
            ASSERT_TRUE(near(r[static_cast<std::size_t>(k)], lag_of(a, b, std::int64_t{low} + k), direct, norms))
                << an << " and " << bn << ", lag " << std::int64_t{low} + k << " of " << lags << " from " << low;
    }
};
TYPED_TEST_SUITE(Correlation, Families);

TYPED_TEST(Correlation, WithItself) {
    using T = typename TypeParam::Sample;
    Random random("autocorrelations");
    constexpr int switched = TypeParam::least_lags;
    const int sizes[][2] = {{1, 1},     {1, 5},       {2, 2},           {7, 3},
                            {8, 20},    {33, 33},     {95, 95},         {96, 96},
                            {97, 96},   {1000, 10},   {700, switched},  {700, switched - 1},
                            {1500, 30}, {1000, 1100}, {2500, switched}, {1100, 1100},
                            {599, 700}, {600, 600},   {601, 599}};
    for (const auto& [n, lags] : sizes) {
        const auto x = noise<T>(random, n);
        const auto r = this->itself(x, lags);
        const bool direct = std::min(n, lags) < switched;
        const long double norms = norm(x) * norm(x);
        for (int k = 0; k < lags; k += 1 + lags / 100)
            ASSERT_TRUE(near(r[static_cast<std::size_t>(k)], lag_of(x, x, k), direct, norms))
                << n << " samples, lag " << k << " of " << lags;
        for (std::size_t k = static_cast<std::size_t>(n); k < r.size(); ++k) EXPECT_EQ(number(r[k]), Number(0));
        EXPECT_EQ(number(r[0]).imag(), 0);
    }
}

TYPED_TEST(Correlation, NormsActOnRoundedLags) {
    using T = typename TypeParam::Sample;
    using P = Part<T>;
    Random random("norms");
    for (const int n : {1, 3, 50, 95, 700}) {
        const auto x = noise<T>(random, n);
        const int lags = n + 5;
        const auto sums = this->itself(x, lags);
        auto by_length = sums, by_terms = sums;
        for (int k = 0; k < lags * parts<T>; ++k) {
            values(by_length)[k] *= static_cast<P>(1.0L / n);
            if (k < n * parts<T>) values(by_terms)[k] /= static_cast<P>(n - k / parts<T>);
        }
        EXPECT_TRUE(same(this->itself(x, lags, biased), by_length)) << n;
        EXPECT_TRUE(same(this->itself(x, lags, unbiased), by_terms)) << n;
    }
}

TYPED_TEST(Correlation, EveryLagOfShortVectors) {
    using T = typename TypeParam::Sample;
    Random random("short correlations");
    for (int m = 1; m < 12; ++m)
        for (int n = 1; n < 12; ++n) {
            const auto a = noise<T>(random, m), b = noise<T>(random, n);
            this->expect_cross(a, b, m + n + 3, -m - 1);
            for (int low = -m - 2; low < n + 2; low += 3) this->expect_cross(a, b, 4, low);
        }
}

// Around the switch to transforms; every way of these, at once, in blocks, in halves; and many tiles of strips.
TYPED_TEST(Correlation, LongVectors) {
    using T = typename TypeParam::Sample;
    Random random("long correlations");
    constexpr int cost = TypeParam::most_cost;
    const int sizes[][4] = {
        {700, 700, cost, -100},          {700, 700, cost + 1, -100},      {700, 700, cost + 2, -100},
        {500, 1000, 2 * cost + 1, -400}, {1000, 500, 2 * cost + 2, -900}, {1500, 1500, 2999, -1499},
        {3000, 900, 1000, -2500},        {900, 3000, 3899, -899},         {20, 3000, 3019, -19},
        {3000, 20, 3100, -3050},         {4000, 4000, 700, -300},         {4000, 4000, 520, 3000},
        {4000, 4000, 520, -3900},        {2500, 2600, 200, 2450}};
    for (const auto& [m, n, lags, low] : sizes) this->expect_cross(noise<T>(random, m), noise<T>(random, n), lags, low);
}

// Equal terms, whose partial sums err the same way.
TEST(Correlations, EqualTermsOfLongVectors) {
    constexpr int n = 100000;
    for (const Kel64f level : {28.7, 10.3}) {
        const std::vector<Kel64f> x(n, level), ones(n, 1.0);
        Kel64f r[2];
        ASSERT_EQ(kelsAutoCorr_64f(x.data(), n, r, 2), kelStatusOk);
        for (const int lag : {0, 1}) {
            const long double exact = static_cast<long double>(level) * level * (n - lag);
            EXPECT_LE(std::fabs(r[lag] - exact), std::ldexp(exact, -51)) << level << " at " << lag;
        }
        ASSERT_EQ(kelsCrossCorr_64f(x.data(), n, ones.data(), n, r, 1, 0), kelStatusOk);
        const long double exact = static_cast<long double>(level) * n;
        EXPECT_LE(std::fabs(r[0] - exact), std::ldexp(exact, -51)) << level;
    }
}

TYPED_TEST(Correlation, ExtremeLags) {
    using T = typename TypeParam::Sample;
    Random random("extreme lags");
    const auto a = noise<T>(random, 5), b = noise<T>(random, 7);
    for (const int low : {INT_MIN, INT_MIN + 1, -6, 7, INT_MAX - 1, INT_MAX}) {
        const auto r = this->cross(a, b, 1, low);
        EXPECT_EQ(number(r[0]), Number(0)) << low;
    }
    const auto r = this->cross(a, b, 2, -5);
    EXPECT_EQ(number(r[0]), Number(0));
    EXPECT_TRUE(near(r[1], lag_of(a, b, -4), true, 0));
    EXPECT_EQ(number(this->cross(a, a, 1, 0)[0]), number(this->itself(a, 1)[0]));
}

// The value of a lag is its own, whatever others are asked for.
TYPED_TEST(Correlation, LagsAloneAndAmongOthers) {
    using T = typename TypeParam::Sample;
    Random random("lags alone");
    const auto a = noise<T>(random, 2100), b = noise<T>(random, 2100);
    const auto some = this->cross(a, b, 250, 1900), all = this->itself(a, 90);
    for (int k = 0; k < 250; k += 31) {
        const auto one = this->cross(a, b, 1, 1900 + k);
        EXPECT_EQ(number(one[0]), number(some[static_cast<std::size_t>(k)]));
    }
    EXPECT_TRUE(same(this->itself(a, 17), std::vector<T>(all.begin(), all.begin() + 17)));
}

TYPED_TEST(Correlation, NotANumberReachesItsTermsOnly) {
    using T = typename TypeParam::Sample;
    Random random("correlations of NaNs");
    for (const auto& [m, n] : {std::pair{60, 60}, std::pair{20, 90}, std::pair{90, 20}}) {
        auto a = noise<T>(random, m), b = noise<T>(random, n);
        const auto clean = this->cross(a, b, m + n - 1, 1 - m);
        values(a)[(m - 3) * parts<T>] = std::numeric_limits<Part<T>>::quiet_NaN();
        values(b)[parts<T>] = std::numeric_limits<Part<T>>::infinity();
        const auto r = this->cross(a, b, m + n - 1, 1 - m);
        for (int k = 0; k < m + n - 1; ++k) {
            const int lag = k + 1 - m;
            const bool reached = (m - 3 + lag >= 0 && m - 3 + lag < n) || (1 - lag >= 0 && 1 - lag < m);
            const Number got = number(r[static_cast<std::size_t>(k)]),
                         want = number(clean[static_cast<std::size_t>(k)]);
            EXPECT_EQ(std::isfinite(got.real()) && std::isfinite(got.imag()), !reached) << lag;
            if (!reached) {
                EXPECT_EQ(got, want) << lag;
            }
        }
    }
}

template <class F>
void expect_frame() {
    using T = typename F::Sample;
    Untouched memory;
    T *const x = memory.array<T>(3), *const y = memory.array<T>(3), *const r = memory.array<T>(3);
    Random random("correlations without memory");
    const auto a = noise<T>(random, 3000);
    std::vector<T> sums(3000);
    for (const auto f : F::of_itself) {
        memory.expect_checks(f, std::tuple(x, 3, r, 3), {null(0), null(2), size(1), size(3)});
        for_each_allocation_failure([&] { return call(f, 20, a.data(), 3000, sums.data(), 3000); });
    }
    memory.expect_checks(F::cross, std::tuple(x, 3, y, 3, r, 3, 0),
                         {null(0), null(2), null(4), size(1), size(3), size(5)});
    for (const int lags : {3000, 1000})
        for_each_allocation_failure(
            [&] { return call(F::cross, 20, a.data(), 3000, a.data(), 3000, sums.data(), lags, -9); });
}

TYPED_TEST(Correlation, ChecksAndMemory) { expect_frame<TypeParam>(); }

// 16 bits

/// What the norm makes of a rounded sum.
Kel32f normalized(Kel32f sum, int norm_of, int len, int lag) {
    if (norm_of == biased) return sum * static_cast<Kel32f>(1.0L / len);
    return norm_of == unbiased && lag < len ? sum / static_cast<Kel32f>(len - lag) : sum;
}

TEST(Correlation16s, DirectLagsAreExact) {
    Random random("correlations of 16 bits");
    for (const int n : {1, 2, 9, 100, 599, 2000}) {
        const auto x = noise<Kel16s>(random, n), y = noise<Kel16s>(random, 40);
        const int lags = std::min(n + 3, 590);
        std::vector<Kel32f> itself, cross;
        for (int k = 0; k < lags; ++k) itself.push_back(static_cast<Kel32f>(lag_of(x, x, k).sum.real()));
        for (int k = 0; k < 120; ++k) cross.push_back(static_cast<Kel32f>(lag_of(x, y, k - 70).sum.real()));
        GuardedArray<Kel16s> a(x, Edge::back), b(y, Edge::front);
        for (const int scale : {0, 1, 14, 17, 22, 31, INT_MAX, -1, -4, INT_MIN}) {
            for (int norm_of = plain; norm_of <= unbiased; ++norm_of) {
                GuardedArray<Kel16s> dst(itself.size(), Edge::back);
                ASSERT_EQ(Of16s::of_itself[static_cast<std::size_t>(norm_of)](a.data(), n, dst.data(), lags, scale),
                          kelStatusOk);
                for (int k = 0; k < lags; ++k)
                    ASSERT_EQ(dst.data()[k],
                              scaled<Kel16s>(normalized(itself[static_cast<std::size_t>(k)], norm_of, n, k), scale))
                        << n << ", lag " << k << ", scale " << scale;
            }
            GuardedArray<Kel16s> dst(cross.size(), Edge::front);
            ASSERT_EQ(kelsCrossCorr_16s_Sfs(a.data(), n, b.data(), 40, dst.data(), 120, -70, scale), kelStatusOk);
            for (std::size_t k = 0; k < cross.size(); ++k) ASSERT_EQ(dst.data()[k], scaled<Kel16s>(cross[k], scale));
        }
    }
}

TEST(Correlation16s, Transformed) {
    Random random("transformed correlations of 16 bits");
    const auto x = noise<Kel16s>(random, 1500), y = noise<Kel16s>(random, 1400);
    std::vector<Kel16s> r(1600);
    const long double slack = 0x1p-21L * norm(x) * norm(x) * 0x1p-20L + 0.5L;
    for (int norm_of = plain; norm_of <= unbiased; ++norm_of) {
        const int scale = norm_of == plain ? 20 : 10;
        ASSERT_EQ(Of16s::of_itself[static_cast<std::size_t>(norm_of)](x.data(), 1500, r.data(), 1600, scale),
                  kelStatusOk);
        for (int k = 0; k < 1600; k += 13) {
            const long double terms = norm_of == plain ? 1024 : norm_of == biased ? 1500 : std::max(1500 - k, 1);
            const long double want = lag_of(x, x, k).sum.real() / terms * 0x1p-10L;
            ASSERT_NEAR(r[static_cast<std::size_t>(k)], std::clamp(want, -32768.0L, 32767.0L),
                        slack * 1024 / terms + 0.5L)
                << k;
        }
    }
    ASSERT_EQ(kelsCrossCorr_16s_Sfs(x.data(), 1500, y.data(), 1400, r.data(), 1600, -800, 20), kelStatusOk);
    for (int k = 0; k < 1600; k += 13)
        ASSERT_NEAR(r[static_cast<std::size_t>(k)],
                    std::clamp(lag_of(x, y, k - 800).sum.real() * 0x1p-20L, -32768.0L, 32767.0L), slack)
            << k;
}

TEST(Correlation16s, ChecksMemoryAndModes) {
    expect_frame<Of16s>();
    Random random("correlations of 16 bits in any mode");
    const auto x = noise<Kel16s>(random, 2000);
    const auto cross = [](const Kel16s* a, int n, Kel16s* dst, int lags, int scale) {
        return kelsCrossCorr_16s_Sfs(a, n, a, n, dst, lags, -50, scale);
    };
    for (const auto f : {Of16s::of_itself[0], Of16s::of_itself[1], Of16s::of_itself[2], +cross})
        for (const int lags : {100, 2500}) {
            std::vector<Kel16s> r(static_cast<std::size_t>(lags)), again(r.size());
            for_each_allocation_failure([&] { return f(x.data(), 2000, r.data(), lags, 20); });
            in_odd_modes([&] { f(x.data(), 2000, again.data(), lags, 20); }, [&] { EXPECT_EQ(again, r); });
        }
}

} // namespace
