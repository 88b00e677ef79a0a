// The Haar transform: integers against the rule in exact arithmetic, reals against it in extended precision.

#include "filters/careful.h"
#include "filters/checks.h"
#include "support/exact.h"
#include "wavelets/families.h"

#include <limits>

namespace {

using namespace kels_test;
using namespace filter_test;
using namespace wavelet_test;

// Sum (sign 1) or difference (sign -1) of a pair, by the rows of long types where these have their own

constexpr int carries[2][4][4] = {{{0, 0, 0, 1}, {0, 0, -1, 0}, {0, 1, 0, 0}, {-1, 0, 0, 0}},
                                  {{0, 0, 0, 1}, {0, 1, 1, 1}, {0, 1, 0, 0}, {1, 1, 0, 1}}};

template <class T>
T halved_by_table(T x0, T x1, int sign, bool guarded) {
    constexpr T most = std::numeric_limits<T>::max();
    const T a1 = x1 >> 1, a0 = x0 >> 1;
    if (guarded && a1 - a0 == most) return sign < 0 ? most : 0;
    const int carry = carries[sign > 0][x0 & 3][x1 & 3];
    const T whole = sign > 0 ? a1 + a0 : a1 - a0;
    return whole == most && carry > 0 ? most : static_cast<T>(whole + carry);
}

template <class T>
T from_top_bits(T x0, T x1, int sign, int t) {
    const T S = sign > 0 ? (x1 >> 3) + (x0 >> 3) : (x1 >> 3) - (x0 >> 3);
    const int r1 = static_cast<int>(x1 & 7), r0 = static_cast<int>(x0 & 7);
    const int c = sign > 0 ? ((r1 + r0 + 7) & 8) >> 3 : ((r1 + 7 - r0) & 8) >> 3;
    return static_cast<T>((S + (T{1} << (t - 4)) - 1 + ((S >> (t - 3)) & 1) + c) >> (t - 3));
}

template <class T>
T of_pair(T x0, T x1, int sign, int t, bool guarded) {
    const long double v = static_cast<long double>(x1) + sign * static_cast<long double>(x0); // exact: 64 bits
    if constexpr (sizeof(T) >= 4) {
        constexpr int width = 8 * sizeof(T);
        if (t == 1) return halved_by_table(x0, x1, sign, guarded);
        if (t >= width - 3 && t <= width - 1) return from_top_bits(x0, x1, sign, t);
        const long double half = std::ldexp(1.0L, width - 1);
        if (t == width) return static_cast<T>(v >= half ? 1 : v < -half ? -1 : 0);
    }
    return scaled<T>(v, t);
}

template <class T>
struct Bands {
    std::vector<T> low, high;
};

template <class T>
Bands<T> expected_bands(const std::vector<T>& x, int scaleFactor) {
    const int t = std::clamp(scaleFactor, -200, 200) + 1;
    Bands<T> bands;
    for (std::size_t i = 0; i + 1 < x.size(); i += 2) {
        bands.low.push_back(of_pair(x[i], x[i + 1], 1, t, sizeof(T) == 4));
        bands.high.push_back(of_pair(x[i], x[i + 1], -1, t, sizeof(T) == 4));
    }
    if (x.size() % 2 == 1) {
        constexpr int width = 8 * sizeof(T);
        const T last = x.back();
        if (t == 1)
            bands.low.push_back(last);
        else if (sizeof(T) >= 4 && t >= width - 3 && t <= width - 1)
            bands.low.push_back(from_top_bits<T>(0, last, 1, t - 1));
        else
            bands.low.push_back(of_pair(last, last, 1, t, false));
    }
    return bands;
}

template <class T>
std::vector<T> expected_signal(const Bands<T>& bands, int scaleFactor) {
    const int t = std::clamp(scaleFactor, -200, 200);
    std::vector<T> x;
    for (std::size_t k = 0; k < bands.high.size(); ++k) {
        x.push_back(of_pair(bands.high[k], bands.low[k], -1, t, true));
        x.push_back(of_pair(bands.high[k], bands.low[k], 1, t, true));
    }
    if (bands.low.size() > bands.high.size())
        x.push_back(sizeof(T) >= 4 && t == 1 ? scaled<T>(bands.low.back(), t)
                                             : of_pair<T>(0, bands.low.back(), 1, t, true));
    return x;
}

// Forms

constexpr int plain = INT_MIN + 12345; // in the place of a scale factor: the function without one

/// The function with a scale factor, or the one without.
template <class T, class... A>
KelStatus call(auto function, auto scaled_function, int scaleFactor, A... arguments) {
    if constexpr (std::is_integral_v<T>)
        if (scaleFactor != plain) return scaled_function(arguments..., scaleFactor);
    return function(arguments...);
}

template <class T>
Bands<T> split(const std::vector<T>& x, int scaleFactor = plain) {
    static Careful careful;
    const GuardedArray<T> signal(x, careful.edge());
    GuardedArray<T> high(x.size() / 2, careful.edge());
    const auto low = results<T>(careful, (x.size() + 1) / 2, [&](T* to) {
        return call<T>(Haar<T>::forward, Haar<T>::scaled_forward, scaleFactor, signal.data(),
                       static_cast<int>(x.size()), to, high.data());
    });
    return {low, high.values()};
}
template <class T>
std::vector<T> merge(const Bands<T>& bands, int scaleFactor = plain) {
    static Careful careful;
    const GuardedArray<T> low(bands.low, careful.edge()), high(bands.high, careful.edge());
    const std::size_t len = bands.low.size() + bands.high.size();
    return results<T>(careful, len, [&](T* to) {
        return call<T>(Haar<T>::inverse, Haar<T>::scaled_inverse, scaleFactor, low.data(), high.data(), to,
                       static_cast<int>(len));
    });
}

template <class T>
void expect_both_ways(const std::vector<T>& x, int scaleFactor) {
    const int factor = scaleFactor == plain ? 0 : scaleFactor;
    const Bands<T> got = split(x, scaleFactor), want = expected_bands(x, factor);
    ASSERT_EQ(got.low, want.low) << "factor " << scaleFactor;
    ASSERT_EQ(got.high, want.high) << "factor " << scaleFactor;
    // The signal's halves as bands
    const auto middle = x.begin() + static_cast<std::ptrdiff_t>((x.size() + 1) / 2);
    const Bands<T> bands{{x.begin(), middle}, {middle, x.end()}};
    ASSERT_EQ(merge(bands, scaleFactor), expected_signal(bands, factor)) << "factor " << scaleFactor;
}

/// And the samples of each pair as elements of the bands, the second one as the low one.
template <class T>
void expect_pairs(const std::vector<T>& x, int scaleFactor) {
    expect_both_ways(x, scaleFactor);
    Bands<T> bands;
    for (std::size_t i = 0; i < x.size(); i += 2) {
        bands.low.push_back(x[i + 1]);
        bands.high.push_back(x[i]);
    }
    ASSERT_EQ(merge(bands, scaleFactor), expected_signal(bands, scaleFactor == plain ? 0 : scaleFactor)) << scaleFactor;
}

template <class T>
class HaarInteger : public testing::Test {};
using Integers = testing::Types<Kel8s, Kel16s, Kel32s, Kel64s>;
TYPED_TEST_SUITE(HaarInteger, Integers);

std::vector<int> factors(int width) {
    std::vector<int> all = {plain, INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, -1000, 1000};
    for (int s = -width - 3; s <= width + 3; ++s) all.push_back(s);
    return all;
}

TYPED_TEST(HaarInteger, EveryFactorOfRandomSamples) {
    using T = TypeParam;
    Random random("haar");
    for (const int factor : factors(8 * sizeof(T)))
        for (int len = 1; len < 1200; len += factor != plain && len > 3 ? 97 : len < 260 ? 1 : 900) {
            std::vector<T> x(static_cast<std::size_t>(len));
            fill_random(random, type_of<T>(), x.data(), x.size());
            expect_both_ways(x, factor);
        }
}

/// Pairs whose sum, or difference, is at a tie of the shift, or close to one, or to the largest and least there are.
TYPED_TEST(HaarInteger, BesideTies) {
    using T = TypeParam;
    constexpr int width = 8 * sizeof(T);
    constexpr T least = std::numeric_limits<T>::min(), most = std::numeric_limits<T>::max();
    std::vector<T> ends = {T{-1}, T{0}, T{1}, least / 2, most / 2, most / 2 + 1, most - 1, most};
    for (const int above : {0, 1, 2}) ends.push_back(static_cast<T>(least + above));
    Random random("ties");
    for (const int factor : factors(width)) {
        const int t = std::clamp(factor, 0, width + 1);
        std::vector<T> x;
        const auto add = [&](std::uint64_t x0, std::uint64_t v) { // x1 so that the low bits of sum and difference tell
            x.push_back(static_cast<T>(x0));
            x.push_back(static_cast<T>(v - x0));
            x.push_back(static_cast<T>(x0));
            x.push_back(static_cast<T>(v + x0));
        };
        for (int round = 0; round < 4; ++round)
            for (int off = -18; off <= 18; ++off)
                for (const int shift : {t, t + 1}) {
                    const std::uint64_t tie = shift > 0 ? (2 * random.bits() + 1) << std::min(shift - 1, 63) : 0;
                    add(random.bits(), tie + static_cast<std::uint64_t>(off));
                    add(random.bits() % 16, tie + static_cast<std::uint64_t>(off));
                }
        for (const T a : ends)
            for (const T b : ends) x.insert(x.end(), {a, b});
        expect_pairs(x, factor);
        for (std::size_t i = 0; i < x.size(); i += 17) expect_both_ways(std::vector<T>{x[i]}, factor);
    }
}

TEST(HaarInteger8, EveryPair) {
    std::vector<Kel8s> x;
    for (int a = -128; a < 128; ++a)
        for (int b = -128; b < 128; ++b) x.insert(x.end(), {static_cast<Kel8s>(a), static_cast<Kel8s>(b)});
    for (const int factor : factors(8)) expect_pairs(x, factor);
}

TEST(HaarInteger, LiteralValues) {
    const auto pair = []<class T>(T x0, T x1, int factor, T low, T high) {
        const Bands<T> bands = split(std::vector<T>{x0, x1}, factor);
        EXPECT_EQ(bands.low[0], low);
        EXPECT_EQ(bands.high[0], high);
    };
    pair(Kel16s{1}, Kel16s{2}, plain, Kel16s{2}, Kel16s{0});
    pair(Kel16s{0}, Kel16s{3}, plain, Kel16s{2}, Kel16s{2});
    pair(Kel8s{-128}, Kel8s{127}, plain, Kel8s{0}, Kel8s{127});
    pair(INT_MIN, INT_MAX - 1, plain, 0, INT_MAX);
    pair(Kel64s{LLONG_MIN}, Kel64s{LLONG_MAX - 1}, 0, Kel64s{-1}, Kel64s{LLONG_MAX});
    pair(Kel16s{20000}, Kel16s{20000}, -1, Kel16s{32767}, Kel16s{0});
    pair(Kel16s{32767}, Kel16s{32767}, 16, Kel16s{0}, Kel16s{0});
    pair(Kel16s{32767}, Kel16s{32767}, 15, Kel16s{1}, Kel16s{0});
    pair(1 << 30, 1 << 30, 31, 1, 0);
    EXPECT_EQ(merge<Kel8s>({{-5, 5}, {5, 5}}, -8), (std::vector<Kel8s>{-128, 0, 0, 127}));
    EXPECT_EQ(merge<Kel32s>({{7, 9, 1}, {8, 1}}, 33), std::vector<Kel32s>(5, 0));
    EXPECT_EQ(merge<Kel64s>({{LLONG_MAX - 1}, {LLONG_MIN}}, 1), (std::vector<Kel64s>{LLONG_MAX, 0})) << "guarded";
    EXPECT_EQ(split<Kel16s>({20000}, -1).low[0], 32767);
}

// Reals

template <class T>
class HaarReal : public testing::Test {};
using Reals = testing::Types<Kel32f, Kel64f>;
TYPED_TEST_SUITE(HaarReal, Reals);

/// The bits, but for NaNs; a double may be the neighbour of what extended precision rounds to, twice.
template <class T>
void expect_close(T got, long double exact, long double x0, long double x1) {
    const T want = static_cast<T>(exact);
    if (std::isnan(want) && std::isnan(got)) return;
    if (sizeof(T) == 8 && (got == std::nextafter(want, T{INFINITY}) || got == std::nextafter(want, -T{INFINITY})))
        return;
    ASSERT_EQ(std::memcmp(&got, &want, sizeof got), 0) << got << " for " << want << " of " << x0 << " and " << x1;
}

template <class T>
void expect_real(const std::vector<T>& x) {
    const Bands<T> bands = split(x);
    for (std::size_t k = 0; k < bands.high.size(); ++k) {
        const long double x0 = x[2 * k], x1 = x[2 * k + 1], d = (x1 - x0) * 0.5L;
        expect_close(bands.high[k], d, x0, x1);
        expect_close(bands.low[k], d + x0, x0, x1);
    }
    if (x.size() % 2 == 1) {
        EXPECT_EQ(std::memcmp(&bands.low.back(), &x.back(), sizeof(T)), 0);
    }

    const auto middle = x.begin() + static_cast<std::ptrdiff_t>((x.size() + 1) / 2);
    const Bands<T> halves{{x.begin(), middle}, {middle, x.end()}};
    const std::vector<T> merged = merge(halves);
    for (std::size_t k = 0; k < halves.high.size(); ++k) {
        const long double l = halves.low[k], h = halves.high[k];
        expect_close(merged[2 * k], l - h, l, h);
        expect_close(merged[2 * k + 1], l + h, l, h);
    }
    if (x.size() % 2 == 1) {
        EXPECT_EQ(std::memcmp(&merged.back(), &halves.low.back(), sizeof(T)), 0);
    }
}

TYPED_TEST(HaarReal, SpecialValuesAndAnyOthers) {
    using T = TypeParam;
    Random random("reals");
    for (const int specials : {0, 1, 2, 8, 3000})
        for (int len = 1; len < 5200; len += len < 70 ? 1 : 1711) {
            std::vector<T> x(static_cast<std::size_t>(len));
            fill_random(random, type_of<T>(), x.data(), x.size(), 0, 0, specials);
            expect_real(x);
        }
}

TYPED_TEST(HaarReal, OneBandBack) {
    using T = TypeParam;
    const Bands<T> bands = split(std::vector<T>{1, 2, 7});
    EXPECT_EQ(bands.low, (std::vector<T>{T(1.5), 7}));
    EXPECT_EQ(bands.high, (std::vector<T>{T(0.5)}));
    EXPECT_EQ(merge(bands), (std::vector<T>{1, 2, 7}));
}

// The frame

template <class T>
class HaarFrame : public testing::Test {};
using Types = testing::Types<Kel8s, Kel16s, Kel32s, Kel64s, Kel32f, Kel64f>;
TYPED_TEST_SUITE(HaarFrame, Types);

TYPED_TEST(HaarFrame, IsChecked) {
    using T = TypeParam;
    Untouched memory;
    auto *const x = memory.array<T>(4), *const low = memory.array<T>(2), *const high = memory.array<T>(2);
    const auto expect = [&](auto forward, auto inverse) {
        for (const int len : {1, 4}) {
            memory.expect_checks(forward, std::tuple(x, len, low, high), {null(0), null(2), null(3), size(1)});
            memory.expect_checks(inverse, std::tuple(low, high, x, len), {null(0), null(1), null(2), size(3)});
        }
    };
    expect(Haar<T>::forward, Haar<T>::inverse);
    if constexpr (std::is_integral_v<T>) expect(Haar<T>::scaled_forward, Haar<T>::scaled_inverse);
}

} // namespace
