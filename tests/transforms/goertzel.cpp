// Goertzel evaluation against its definition, sample by sample in extended precision.

#include "kels/goertzel.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/random_data.h"
#include "support/refusals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <complex>
#include <cstring>
#include <vector>

namespace {

using namespace kels_test;
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
Sum reference(const Sample* x, int n, Frequency freq) {
    const long double w = static_cast<long double>(6.283185307179586) * static_cast<long double>(freq);
    Sum sum{};
    Extended rest = 0; // what the running sum has lost
    for (int i = 0; i < n; ++i) {
        const Extended sample(x[i].re, x[i].im), term = sample * turn(w, n - i), before = sum.value;
        const Extended y = term + rest;
        sum.value = before + y;
        rest = y - (sum.value - before);
        sum.magnitudes += std::abs(sample);
    }
    return sum;
}

constexpr auto goertzel = reduced([](const auto* x, int n, auto freq) {
    const Sum sum = reference(x, n, freq);
    const long double slack = n * (sizeof freq == 4 ? 0x1p-53L : 0x1p-64L) * sum.magnitudes;
    return ComplexWithin{{sum.value.real(), slack}, {sum.value.imag(), slack}};
});

Kel16s away_from_zero(long double value, int factor) {
    const long double scaled = std::ldexp(value, -std::clamp(factor, -100, 100));
    return static_cast<Kel16s>(std::clamp<long double>(std::round(scaled), SHRT_MIN, SHRT_MAX));
}

/// Of one frequency by way of singles.
constexpr auto goertzel_16sc = reduced([](const Kel16sc* x, int n, Kel32f freq, int factor) {
    const Extended value = reference(x, n, freq).value;
    return Kel16sc{away_from_zero(static_cast<Kel32f>(value.real()), factor),
                   away_from_zero(static_cast<Kel32f>(value.imag()), factor)};
});

Rows at_frequencies(const Rows& rows) {
    return rows.refuses(0, {1, -0x1p-60, NAN, -1, HUGE_VAL, -HUGE_VAL, 2}, kelStatusBadRelFreq)
        .finite()
        .driven_elsewhere();
}

const Rows table = {
    at_frequencies(Rows{reductions(goertzel, kelsGoertz_32fc).values(0, {0x1.fffffep-1}),
                        reductions(goertzel, kelsGoertz_64fc).values(0, {0x1.fffffffffffffp-1})})
        .values(0, {0.0, -0.0, 0.5, 0.25, 1e-9, 1e-3, 0.1, 0.4999, 0.37, 0.9999999})
        .range(-1, 1)
        .ulps(1),
    at_frequencies(reductions(goertzel_16sc, kelsGoertz_16sc_Sfs)).values(0, {0.0, 0.11, 0.0, 0.61}),
};
const bool registered = add_rows("Goertzel", table);

// Two frequencies at once

template <class Sample>
std::vector<Sample> noise(int n) {
    Random random("goertzel " + std::to_string(n));
    const double size = std::is_integral_v<decltype(Sample::re)> ? 32767 : 1;
    return uniform<Sample>(random, static_cast<std::size_t>(n), size);
}

std::vector<int> lengths() {
    std::vector<int> all = {100, 255, 256, 1000, 1024, 4099, 20000};
    for (int n = 1; n <= 50; ++n) all.push_back(n);
    return all;
}

template <class Sample, class Frequency>
void expect_bits_of_each(KelStatus (*one)(const Sample*, int, Sample*, Frequency),
                         KelStatus (*two)(const Sample*, int, Sample*, const Frequency*)) {
    for (const int n : lengths()) {
        const std::vector<Sample> x = noise<Sample>(n);
        const Frequency freq[] = {Frequency(0.0123), Frequency(0.77)};
        Sample both[2], alone[2];
        ASSERT_EQ(two(x.data(), n, both, freq), kelStatusOk);
        for (const int i : {0, 1}) ASSERT_EQ(one(x.data(), n, &alone[i], freq[i]), kelStatusOk);
        EXPECT_EQ(std::memcmp(both, alone, sizeof both), 0) << n;
    }
}

TEST(GoertzelTwo, GivesTheBitsOfEach) {
    expect_bits_of_each(kelsGoertz_32fc, kelsGoertzTwo_32fc);
    expect_bits_of_each(kelsGoertz_64fc, kelsGoertzTwo_64fc);
}

TEST(GoertzelTwo, Of16BitsIsRoundedOnce) {
    for (const int n : lengths())
        for (const int factor : {0, 2, 5, 11, -1, INT_MIN, INT_MAX}) {
            const std::vector<Kel16sc> x = noise<Kel16sc>(n);
            const Kel32f freq[] = {n % 2 ? 0.61F : 0, 0.3F};
            Kel16sc two[2];
            ASSERT_EQ(kelsGoertzTwo_16sc_Sfs(x.data(), n, two, freq, factor), kelStatusOk);
            for (const int i : {0, 1}) {
                const Extended value = reference(x.data(), n, freq[i]).value;
                EXPECT_EQ(two[i].re, away_from_zero(value.real(), factor)) << n << " by " << factor;
                EXPECT_EQ(two[i].im, away_from_zero(value.imag(), factor)) << n << " by " << factor;
            }
        }
}

template <class Sample, class Frequency, class... Scale>
void expect_checks(KelStatus (*two)(const Sample*, int, Sample*, const Frequency*, Scale...), Scale... scale) {
    const Sample x[3] = {{1, 2}, {3, 4}, {5, 6}}, untouched = {7, 7};
    Sample y[2] = {untouched, untouched};
    for (const double bad : {1.0, -0x1p-60, static_cast<double>(NAN), -1.0, HUGE_VAL, 2.0})
        for (const int place : {0, 1}) {
            Frequency pair[] = {0.5, 0.5};
            pair[place] = static_cast<Frequency>(bad);
            EXPECT_EQ(two(x, 3, y, pair, scale...), kelStatusBadRelFreq) << bad;
            for (const int len : bad_lengths) EXPECT_EQ(two(x, len, y, pair, scale...), kelStatusBadSize);
            expect_nulls_refused(two, x, 0, y, pair, scale...);
        }
    for (const Sample& z : y) EXPECT_EQ(std::memcmp(&z, &untouched, sizeof z), 0);
}

// Halfway between integers a caller's direction would decide, even of sums that are exact.
TEST(Goertzel, TiesOf16BitsDoNotFeelTheCallersRounding) {
    const Kel16sc x = {-3, 1};
    const Kel32f frequencies[2] = {0, 0};
    Kel16sc one, both[2];
    const auto evaluate = [&] {
        one = both[0] = both[1] = {};
        kelsGoertz_16sc_Sfs(&x, 1, &one, 0, 1);
        kelsGoertzTwo_16sc_Sfs(&x, 1, both, frequencies, 1);
    };
    const auto expect_ties_away = [&] {
        for (const Kel16sc& y : {one, both[0], both[1]}) {
            EXPECT_EQ(y.re, -2);
            EXPECT_EQ(y.im, 1);
        }
    };
    evaluate();
    expect_ties_away();
    in_odd_modes(evaluate, expect_ties_away);
}

// Turns are reduced by exact steps, which a caller's direction would disturb.
TEST(Goertzel, LongSumsFeelTheCallersRoundingLittle) {
    constexpr int n = 20000;
    const std::vector<Kel32fc> x = noise<Kel32fc>(n);
    Kel32fc value;
    const auto evaluate = [&] { kelsGoertz_32fc(x.data(), n, &value, 0.123F); };
    evaluate();
    const Kel32fc nearest = value;
    in_odd_modes(evaluate, [&] {
        EXPECT_NEAR(value.re, nearest.re, static_cast<double>(2 * ulp(nearest.re)));
        EXPECT_NEAR(value.im, nearest.im, static_cast<double>(2 * ulp(nearest.im)));
    });
}

TEST(GoertzelTwo, ChecksInOrderAndStoresNothing) {
    expect_checks(kelsGoertzTwo_16sc_Sfs, 1);
    expect_checks(kelsGoertzTwo_32fc);
    expect_checks(kelsGoertzTwo_64fc);
}

// Ends of the range, and beyond

// Where two doubles leave their range.
TEST(Goertzel, DoublesOfEverySize) {
    for (const double size : {0x1p1022, 0x1p1000, 0x1p-800, 0x1p-960, 0x1p-1020, 0x1p-1060})
        for (const int n : {1, 3, 16, 33}) {
            std::vector<Kel64fc> x = noise<Kel64fc>(n);
            for (Kel64fc& z : x) z = {z.re * size / n, z.im * size / n};
            Kel64fc value;
            ASSERT_EQ(kelsGoertz_64fc(x.data(), n, &value, 0.123), kelStatusOk);
            const Sum sum = reference(x.data(), n, 0.123);
            const long double slack = 4 * n * 0x1p-64L * sum.magnitudes;
            for (const auto& [got, wanted] : {std::pair(value.re, sum.value.real()), {value.im, sum.value.imag()}})
                EXPECT_LE(std::abs(got - wanted), ulp(static_cast<Kel64f>(wanted)) + slack) << size << ", " << n;
        }
}

template <class Sample, class Frequency>
void expect_no_numbers(KelStatus (*one)(const Sample*, int, Sample*, Frequency)) {
    for (const double special : {std::nan(""), HUGE_VAL, -HUGE_VAL})
        for (const std::size_t at : {0, 17, 39}) {
            std::vector<Sample> x = noise<Sample>(40);
            x[at].re = static_cast<Frequency>(special);
            Sample value;
            EXPECT_EQ(one(x.data(), 40, &value, Frequency(0.1)), kelStatusOk);
            EXPECT_FALSE(std::isfinite(value.re) || std::isfinite(value.im)) << special << " at " << at;
        }
}

TEST(Goertzel, NoNumbersPassThrough) {
    expect_no_numbers(kelsGoertz_32fc);
    expect_no_numbers(kelsGoertz_64fc);
}

} // namespace
