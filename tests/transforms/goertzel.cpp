// Goertzel evaluation against its definition, sample by sample in extended precision.

#include "kels/goertzel.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/guarded_array.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <complex>
#include <cstring>
#include <vector>

namespace {

using kels_test::Random;
using Extended = std::complex<long double>;

/// exp(i w m), the product w m never rounded: both halves of w have half of its bits.
Extended turn(long double w, int m) {
    int exponent = 0;
    const long double mantissa = std::frexp(w, &exponent);
    const long double high = std::ldexp(std::trunc(std::ldexp(mantissa, 32)), exponent - 32), low = w - high;
    const long double a = high * m, b = low * m;
    return Extended(std::cos(a), std::sin(a)) * Extended(std::cos(b), std::sin(b));
}

struct Sum {
    Extended value;
    long double magnitudes;
};

/// Two long doubles would say more; terms of extended precision are within what the tests leave.
template <class Sample, class Frequency>
Sum reference(const std::vector<Sample>& x, Frequency freq) {
    const long double w = static_cast<long double>(6.283185307179586) * static_cast<long double>(freq);
    Sum sum{};
    Extended rest = 0; // what the running sum has lost
    const int n = static_cast<int>(x.size());
    for (int i = 0; i < n; ++i) {
        const Extended sample(x[i].re, x[i].im), term = sample * turn(w, n - i), before = sum.value;
        const Extended y = term + rest;
        sum.value = before + y;
        rest = y - (sum.value - before);
        sum.magnitudes += std::abs(sample);
    }
    return sum;
}

template <class T>
void expect_near(T got, long double wanted, long double slack, int ulps = 1) {
    const long double ulp = kels_test::ulp(static_cast<T>(wanted));
    EXPECT_LE(std::abs(got - wanted), ulps * ulp + slack) << got << " for " << static_cast<double>(wanted);
}

template <class Sample>
std::vector<Sample> noise(int n) {
    Random random("goertzel " + std::to_string(n));
    const double size = std::is_integral_v<decltype(Sample::re)> ? 32767 : 1;
    return kels_test::uniform<Sample>(random, static_cast<std::size_t>(n), size);
}

template <class Sample>
struct Goertzel;
template <>
struct Goertzel<Kel32fc> {
    using Frequency = Kel32f;
    static constexpr auto one = kelsGoertz_32fc;
    static constexpr auto two = kelsGoertzTwo_32fc;
    static constexpr long double eps = 0x1p-53L;
};
template <>
struct Goertzel<Kel64fc> {
    using Frequency = Kel64f;
    static constexpr auto one = kelsGoertz_64fc;
    static constexpr auto two = kelsGoertzTwo_64fc;
    static constexpr long double eps = 0x1p-64L;
};
template <>
struct Goertzel<Kel16sc> {
    using Frequency = Kel32f;
    static KelStatus one(const Kel16sc* src, int len, Kel16sc* val, Kel32f freq) {
        return kelsGoertz_16sc_Sfs(src, len, val, freq, 0);
    }
    static KelStatus two(const Kel16sc* src, int len, Kel16sc* val, const Kel32f* freq) {
        return kelsGoertzTwo_16sc_Sfs(src, len, val, freq, 0);
    }
};

std::vector<int> lengths() {
    std::vector<int> all = {100, 255, 256, 1000, 1024, 4099, 20000};
    for (int n = 1; n <= 50; ++n) all.push_back(n);
    return all;
}

template <class Sample>
class GoertzelTest : public testing::Test {};
using Reals = testing::Types<Kel32fc, Kel64fc>;
TYPED_TEST_SUITE(GoertzelTest, Reals);

TYPED_TEST(GoertzelTest, MatchesReference) {
    using G = Goertzel<TypeParam>;
    using F = typename G::Frequency;
    std::vector<F> frequencies = {std::nextafter(F(1), F(0))};
    for (const double f : {0.0, -0.0, 0.5, 0.25, 1e-9, 1e-3, 0.1, 0.4999, 0.37, 0.9999999})
        frequencies.push_back(static_cast<F>(f));
    for (const int n : lengths()) {
        const std::vector<TypeParam> x = noise<TypeParam>(n);
        for (const F freq : frequencies) {
            if (n > 5000 && freq != F(0.1) && freq != F(1e-3)) continue;
            SCOPED_TRACE(testing::Message() << n << " samples at " << freq);
            TypeParam value;
            ASSERT_EQ(G::one(x.data(), n, &value, freq), kelStatusOk);
            const Sum sum = reference(x, freq);
            expect_near(value.re, sum.value.real(), n * G::eps * sum.magnitudes);
            expect_near(value.im, sum.value.imag(), n * G::eps * sum.magnitudes);
        }
    }
}

// A pair of frequencies gives the bits of each.
TYPED_TEST(GoertzelTest, TwoAreOneAndOne) {
    using G = Goertzel<TypeParam>;
    using F = typename G::Frequency;
    for (const int n : lengths()) {
        const std::vector<TypeParam> x = noise<TypeParam>(n);
        const F freq[] = {F(0.0123), F(0.77)};
        TypeParam both[2], alone[2];
        ASSERT_EQ(G::two(x.data(), n, both, freq), kelStatusOk);
        for (const int i : {0, 1}) ASSERT_EQ(G::one(x.data(), n, &alone[i], freq[i]), kelStatusOk);
        EXPECT_EQ(std::memcmp(both, alone, sizeof both), 0) << n;
    }
}

TYPED_TEST(GoertzelTest, ABinOfTheGridIsThatOfTheTransform) {
    using G = Goertzel<TypeParam>;
    const std::vector<TypeParam> x = noise<TypeParam>(64);
    for (const int k : {0, 1, 5, 16, 32, 63}) {
        Extended wanted = 0;
        for (int i = 0; i < 64; ++i)
            wanted += Extended(x[i].re, x[i].im) * turn(-2 * 3.141592653589793238462643L / 64, i * k);
        TypeParam value;
        G::one(x.data(), 64, &value, typename G::Frequency(k / 64.0));
        EXPECT_LE(std::abs(Extended(value.re, value.im) - wanted), 64 * 0x1p-44L + (sizeof(value.re) == 4 ? 1e-6L : 0));
    }
}

// Where two doubles leave their range.
TEST(Goertzel, DoublesOfEverySize) {
    for (const double size : {0x1p1022, 0x1p1000, 0x1p-800, 0x1p-960, 0x1p-1020, 0x1p-1060})
        for (const int n : {1, 3, 16, 33}) {
            std::vector<Kel64fc> x = noise<Kel64fc>(n);
            for (Kel64fc& z : x) z = {z.re * size / n, z.im * size / n};
            Kel64fc value;
            ASSERT_EQ(kelsGoertz_64fc(x.data(), n, &value, 0.123), kelStatusOk);
            const Sum sum = reference(x, 0.123);
            expect_near(value.re, sum.value.real(), 4 * n * 0x1p-64L * sum.magnitudes);
            expect_near(value.im, sum.value.imag(), 4 * n * 0x1p-64L * sum.magnitudes);
        }
}

TYPED_TEST(GoertzelTest, NoNumbersPassThrough) {
    using G = Goertzel<TypeParam>;
    for (const double special : {std::nan(""), HUGE_VAL, -HUGE_VAL})
        for (const std::size_t at : {0, 17, 39}) {
            std::vector<TypeParam> x = noise<TypeParam>(40);
            x[at].re = static_cast<decltype(TypeParam::re)>(special);
            TypeParam value;
            EXPECT_EQ(G::one(x.data(), 40, &value, typename G::Frequency(0.1)), kelStatusOk);
            EXPECT_FALSE(std::isfinite(value.re)) << special << " at " << at;
            EXPECT_FALSE(std::isfinite(value.im)) << special << " at " << at;
        }
    const std::vector<TypeParam> silence(50);
    TypeParam value = {1, 1};
    G::one(silence.data(), 50, &value, typename G::Frequency(0.1));
    EXPECT_EQ(value.re, 0);
    EXPECT_EQ(value.im, 0);
}

// 16 bits

Kel16s away_from_zero(long double value, int factor) {
    return static_cast<Kel16s>(std::clamp<long double>(std::round(std::ldexp(value, -factor)), SHRT_MIN, SHRT_MAX));
}

TEST(Goertzel, SamplesOf16BitsMatchReference) {
    for (const int n : lengths()) {
        const std::vector<Kel16sc> x = noise<Kel16sc>(n);
        for (const int factor : {0, 2, 5, 11, -1})
            for (const Kel32f freq : {0.0F, 0.11F, 0.61F}) {
                const Kel32f pair[] = {freq, 0.3F};
                Kel16sc value, two[2];
                ASSERT_EQ(kelsGoertz_16sc_Sfs(x.data(), n, &value, freq, factor), kelStatusOk);
                ASSERT_EQ(kelsGoertzTwo_16sc_Sfs(x.data(), n, two, pair, factor), kelStatusOk);
                const Sum first = reference(x, freq), second = reference(x, pair[1]);
                const auto single = [](long double v) { return static_cast<long double>(static_cast<float>(v)); };
                EXPECT_EQ(value.re, away_from_zero(single(first.value.real()), factor)) << n << ", " << freq;
                EXPECT_EQ(value.im, away_from_zero(single(first.value.imag()), factor)) << n << ", " << freq;
                EXPECT_EQ(two[0].re, away_from_zero(first.value.real(), factor)) << n << ", " << freq;
                EXPECT_EQ(two[1].im, away_from_zero(second.value.imag(), factor)) << n << ", " << freq;
            }
    }
}

TEST(Goertzel, TiesGoAwayFromZeroAndExcessSaturates) {
    struct {
        Kel16s x;
        int factor;
        Kel16s wanted;
    } const literals[] = {{5, 1, 3},
                          {-5, 1, -3},
                          {1, 1, 1},
                          {-1, 1, -1},
                          {1, 2, 0},
                          {3, 2, 1},
                          {20000, -1, 32767},
                          {-20000, -1, -32768},
                          {1, INT_MIN, 32767},
                          {-1, -40, -32768},
                          {-32768, INT_MAX, 0},
                          {32767, 31, 0},
                          {0, INT_MIN, 0},
                          {-32768, 16, -1},
                          {-32768, 17, 0}};
    for (const auto& literal : literals) {
        const Kel16sc x[] = {{literal.x, 0}, {0, literal.x}};
        const Kel32f freq[] = {0, 0};
        Kel16sc value, two[2];
        EXPECT_EQ(kelsGoertz_16sc_Sfs(x, 2, &value, 0, literal.factor), kelStatusOk);
        EXPECT_EQ(kelsGoertzTwo_16sc_Sfs(x, 2, two, freq, literal.factor), kelStatusOk);
        for (const Kel16sc& z : {value, two[0], two[1]}) {
            EXPECT_EQ(z.re, literal.wanted) << literal.x << " 2^-" << literal.factor;
            EXPECT_EQ(z.im, literal.wanted) << literal.x << " 2^-" << literal.factor;
        }
    }
}

// The frame

template <class Sample>
class GoertzelFrame : public testing::Test {};
using Samples = testing::Types<Kel16sc, Kel32fc, Kel64fc>;
TYPED_TEST_SUITE(GoertzelFrame, Samples);

TYPED_TEST(GoertzelFrame, ChecksInOrderAndStoresNothing) {
    using G = Goertzel<TypeParam>;
    using F = typename G::Frequency;
    const TypeParam x[3] = {{1, 2}, {3, 4}, {5, 6}};
    const TypeParam untouched = {7, 7};
    TypeParam y[2] = {untouched, untouched};
    const F bad[] = {F(1), F(-0x1p-60), F(std::nan("")), F(-1), F(HUGE_VAL), F(-HUGE_VAL), F(2)};
    EXPECT_EQ(G::one(nullptr, 0, y, 2), kelStatusNullPtr);
    EXPECT_EQ(G::one(x, 0, nullptr, 2), kelStatusNullPtr);
    for (const int len : {0, -1, INT_MIN}) EXPECT_EQ(G::one(x, len, y, 2), kelStatusBadSize);
    for (const F freq : bad) {
        EXPECT_EQ(G::one(x, 3, y, freq), kelStatusBadRelFreq) << freq;
        const F pairs[][2] = {{freq, F(0.5)}, {F(0.5), freq}};
        for (const auto& pair : pairs) {
            EXPECT_EQ(G::two(x, 3, y, pair), kelStatusBadRelFreq) << freq;
            EXPECT_EQ(G::two(x, 0, y, pair), kelStatusBadSize);
            EXPECT_EQ(G::two(nullptr, 0, y, pair), kelStatusNullPtr);
            EXPECT_EQ(G::two(x, 0, nullptr, pair), kelStatusNullPtr);
        }
    }
    EXPECT_EQ(G::two(x, 0, y, nullptr), kelStatusNullPtr);
    for (const TypeParam& z : y) EXPECT_EQ(std::memcmp(&z, &untouched, sizeof z), 0);
}

TYPED_TEST(GoertzelFrame, StaysInsideItsArraysInAnyMode) {
    using G = Goertzel<TypeParam>;
    const auto frequency = typename G::Frequency(0.2);
    for (const int n : {1, 2, 7, 15, 16, 17, 31, 32, 33, 70}) {
        const std::vector<TypeParam> x = noise<TypeParam>(n);
        TypeParam wanted, value;
        G::one(x.data(), n, &wanted, frequency);
        for (const std::size_t offset : {0, 1, 3})
            for (const kels_test::Edge edge : kels_test::edges) {
                kels_test::GuardedArray<TypeParam> array(x, edge, offset);
                ASSERT_TRUE(kels_test::runs_without_fault([&] { G::one(array.data(), n, &value, frequency); }));
                EXPECT_EQ(std::memcmp(&value, &wanted, sizeof value), 0) << n;
            }
        kels_test::in_odd_modes(
            [&] { G::one(x.data(), n, &value, frequency); },
            [&] {
                const Extended exact(wanted.re, wanted.im);
                EXPECT_LE(std::abs(Extended(value.re, value.im) - exact), std::abs(exact) * 0x1p-20L) << n;
            });
    }
}

} // namespace
