// Arctangents, phases, magnitudes and conversions between coordinates, against extended precision; integer magnitudes
// against the integers that their squares lie between.

#include "kels/polar.h"
#include "support/literals.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfenv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

/// A reference of both parts, for points of either form.
template <class F>
constexpr auto of_points(F) {
    return each([](auto a, auto... more) {
        if constexpr (ComplexSample<decltype(a)>)
            return F{}(a.re, a.im, more...);
        else
            return F{}(a, more...);
    });
}

// Angles

constexpr auto arctangent = each([]<class T>(T x) -> long double {
    if (std::isnan(x)) {
        if (is_quiet_nan(x)) return x;
        return std::copysign(std::atan(HUGE_VALL), static_cast<long double>(x));
    }
    return std::atan(static_cast<long double>(x)) + 0.0L;
});

struct Phase {
    template <class T>
    long double operator()(T re, T im) const {
        return std::atan2(static_cast<long double>(im), static_cast<long double>(re));
    }
};

/// The line that stands for the angle when there is no factor.
double first_order(double x, double y) {
    if (x == 0 && y == 0) return 0;
    const double r = std::fabs(y) + 1e-10;
    const double angle = x >= 0 ? (x - r) / (x + r) * -0.7853981633974483 + 0.7853981633974483
                                : (x + r) / (r - x) * -0.7853981633974483 + 2.356194490192345;
    return y >= 0 ? angle : -angle;
}

struct IntegerPhase {
    Kel16s operator()(Kel16s re, Kel16s im, int factor) const {
        const long double angle =
            factor == 0 ? first_order(re, im) : std::ldexp(Phase{}(re, im), -std::clamp(factor, -60, 60));
        return static_cast<Kel16s>(std::clamp(std::round(angle), -32768.0L, 32767.0L));
    }
};

// Magnitudes

long double to_24_bits(long double x) {
    int e = 0;
    const long double m = std::frexp(x, &e);
    return std::isfinite(x) ? std::ldexp(std::nearbyint(std::ldexp(m, 24)), e - 24) : x;
}

struct Magnitude {
    template <class T>
    auto operator()(T re, T im) const {
        const long double a = re, b = im;
        if constexpr (sizeof(T) == 8)
            return static_cast<Kel64f>(std::sqrt(a * a + b * b));
        else
            return static_cast<Kel32f>(to_24_bits(std::sqrt(to_24_bits(to_24_bits(a * a) + to_24_bits(b * b)))));
    }
};

/// The largest integer whose square is at most v.
std::uint64_t root_below(std::uint64_t v) {
    auto n = static_cast<std::uint64_t>(std::sqrt(static_cast<long double>(v)));
    while (n > 0 && n * n > v) --n;
    while ((n + 1) * (n + 1) <= v && n < 4294967295U) ++n;
    return n;
}

template <class T>
std::uint64_t squared(T re, T im) {
    const auto square = [](std::int64_t x) { return static_cast<std::uint64_t>(x) * static_cast<std::uint64_t>(x); };
    return square(re) + square(im);
}

struct IntegerMagnitude {
    /// To nearest, ties to even; as the caller rounds where 16 bits are scaled up, and with 32 bits.
    template <class T>
    T operator()(T re, T im, int factor) const {
        constexpr std::uint64_t most = std::numeric_limits<T>::max();
        const std::uint64_t v = squared(re, im);
        if (v == 0 || factor > 32) return 0;
        if (factor < -31) return static_cast<T>(most);
        const bool by_caller = factor < 0 || (sizeof(T) == 4 && (factor == 0 || std::fegetround() != FE_TONEAREST));
        if (by_caller) { // the root of v 4^-factor, which is no tie
            const long double wide = std::sqrt(static_cast<long double>(v)) * std::ldexp(1.0L, -factor);
            return wide >= static_cast<long double>(most) ? static_cast<T>(most) : static_cast<T>(std::nearbyint(wide));
        }
        // The candidates q and q + 1, and the square of what lies between them.
        if (const std::uint64_t q = root_below(v); factor == 0)
            return static_cast<T>(std::min(q + ((2 * q + 1) * (2 * q + 1) < 4 * v), most));
        const std::uint64_t q = root_below(v) >> factor, middle = (2 * q + 1) << (factor - 1);
        const bool up = (middle < (std::uint64_t{1} << 32) && middle * middle < v + (q & 1));
        return static_cast<T>(std::min(q + up, most));
    }
};

// Power spectra

struct Power {
    template <class T>
    long double operator()(T re, T im) const {
        const long double a = re, b = im;
        return a * a + b * b;
    }
};

struct IntegerPower {
    Kel16s operator()(Kel16s re, Kel16s im, int factor) const {
        const std::uint64_t v = squared(re, im), limit = 32767;
        if (factor >= 0) return static_cast<Kel16s>(factor > 31 ? 0 : std::min(v >> factor, limit));
        return static_cast<Kel16s>(std::min(std::min(v, limit) << std::min(-std::max(factor, -20), 20), limit));
    }
};

// Both coordinates

/// F sets one pair from another; either may stand in one array or in two.
template <class F>
struct Pairs {
    template <ComplexSample C, class R>
    void operator()(const C* z, R* first, R* second, int len) const {
        for (int i = 0; i < len; ++i) F::set(z[i].re, z[i].im, first[i], second[i]);
    }
    template <class T, ComplexSample C>
    void operator()(const T* first, const T* second, C* z, int len) const {
        for (int i = 0; i < len; ++i) F::set(first[i], second[i], z[i].re, z[i].im);
    }
    template <class T>
    void operator()(const T* a, const T* b, T* first, T* second, int len) const {
        for (int i = 0; i < len; ++i) F::set(a[i], b[i], first[i], second[i]);
    }
};

struct Polar {
    template <class T>
    static void set(T re, T im, T& magnitude, T& phase) {
        magnitude = Magnitude{}(re, im);
        phase = static_cast<T>(Phase{}(re, im));
    }
};
struct Cartesian {
    template <class T>
    static void set(T radius, T angle, T& re, T& im) {
        re = static_cast<T>(radius * std::cos(static_cast<long double>(angle)));
        im = static_cast<T>(radius * std::sin(static_cast<long double>(angle)));
    }
};

constexpr auto phase = of_points(Phase{});
constexpr auto magnitude = of_points(Magnitude{});
constexpr auto power = of_points(Power{});
constexpr auto polar = whole(Pairs<Polar>{});

const Rows table = {
    rows(arctangent, kelsArctan_32f, kelsArctan_64f).in_place(kelsArctan_32f_I, kelsArctan_64f_I).ulps(1),
    rows(phase, kelsPhase_32fc, kelsPhase_32f, kelsPhase_64fc, kelsPhase_64f, kelsPhase_16sc32f, kelsPhase_16s32f)
        .ulps(1),
    rows(of_points(IntegerPhase{}), kelsPhase_16sc_Sfs, kelsPhase_16s_Sfs),
    rows(magnitude, kelsMagnitude_32fc, kelsMagnitude_32f, kelsMagnitude_16sc32f, kelsMagnitude_64fc, kelsMagnitude_64f)
        .every_size()
        .ulps(0, 1),
    rows(of_points(IntegerMagnitude{}), kelsMagnitude_32sc_Sfs, kelsMagnitude_16sc_Sfs, kelsMagnitude_16s_Sfs)
        .follows_rounding(),
    rows(power, kelsPowerSpectr_32fc, kelsPowerSpectr_32f, kelsPowerSpectr_64fc, kelsPowerSpectr_64f).ulps(1),
    rows(power, kelsPowerSpectr_16sc32f, kelsPowerSpectr_16s32f).ulps(0),
    rows(of_points(IntegerPower{}), kelsPowerSpectr_16sc_Sfs, kelsPowerSpectr_16s_Sfs),
    rows(polar, kelsCartToPolar_32fc, kelsCartToPolar_64fc).nullable({1, 2}).ulps(1),
    rows(polar, kelsCartToPolar_32f, kelsCartToPolar_64f).disjoint().nullable({2, 3}).ulps(1),
    rows(whole(Pairs<Cartesian>{}), kelsPolarToCart_32fc, kelsPolarToCart_32f, kelsPolarToCart_64fc,
         kelsPolarToCart_64f)
        .ulps(1),
};
const bool registered = add_rows("Polar", table);

// Literal values

TEST(Arctangent, NansAndEnds) {
    std::uint32_t x[] = {0x7FC12345, 0xFFE00000, 0x7F800001, 0xFFA00000, 0xFF800000, 0x80000000};
    const std::uint32_t want[] = {0x7FC00000, 0xFFC00000, 0x3FC90FDB, 0xBFC90FDB, 0xBFC90FDB, 0};
    EXPECT_EQ(kelsArctan_32f_I(reinterpret_cast<Kel32f*>(x), 6), kelStatusOk);
    EXPECT_EQ(std::memcmp(x, want, sizeof x), 0);
    std::uint64_t y = 0xFFFFFFFFFFFFFFFF;
    EXPECT_EQ(kelsArctan_64f_I(reinterpret_cast<Kel64f*>(&y), 1), kelStatusOk);
    EXPECT_EQ(y, 0xFFF8000000000000);
}

// Every first part with some second ones, at every factor that divides.
TEST(Magnitude, IntegersAreExact) {
    Random random("magnitudes");
    std::vector<Kel16s> re(65536), im(65536), d(65536);
    for (int factor = -14; factor <= 18; ++factor) {
        for (int i = 0; i < 65536; ++i) {
            re[i] = static_cast<Kel16s>(i);
            im[i] = static_cast<Kel16s>(random.below(3) ? random.bits() : 0);
        }
        ASSERT_EQ(kelsMagnitude_16s_Sfs(re.data(), im.data(), d.data(), 65536, factor), kelStatusOk);
        for (int i = 0; i < 65536; ++i)
            ASSERT_EQ(d[i], IntegerMagnitude{}(re[i], im[i], factor)) << re[i] << ", " << im[i] << " by " << factor;
    }
}

// Elements that need extended precision change nothing beside them.
TEST(Magnitude, DependsOnNoNeighbour) {
    Random random("neighbours");
    for (int i = 0; i < 5000; ++i) {
        Kel64fc z[8];
        for (Kel64fc& one : z) one = {random.uniform(-2, 2), random.uniform(-2, 2)};
        z[random.below(8)].re = random.below(2) ? 1e-200 : HUGE_VAL;
        Kel64f together[8], alone = 0;
        ASSERT_EQ(kelsMagnitude_64fc(z, together, 8), kelStatusOk);
        for (int k = 0; k < 8; ++k) {
            ASSERT_EQ(kelsMagnitude_64fc(z + k, &alone, 1), kelStatusOk);
            ASSERT_EQ(alone, together[k]) << z[k].re << ", " << z[k].im;
        }
    }
}

TEST(CartesianToPolar, StoresEitherWithoutTheOther) {
    const Kel32f re[] = {3, 0}, im[] = {4, -2};
    Kel32f magnitudes[2] = {-1, -1};
    EXPECT_EQ(kelsCartToPolar_32f(re, im, magnitudes, nullptr, 2), kelStatusNullPtr);
    EXPECT_EQ(magnitudes[0], 5);
    EXPECT_EQ(magnitudes[1], 2);
    const Kel64fc z = {3, 4};
    Kel64f magnitude_of_z = -1, phase_of_z = -1;
    EXPECT_EQ(kelsCartToPolar_64fc(&z, &magnitude_of_z, nullptr, 1), kelStatusNullPtr);
    EXPECT_EQ(magnitude_of_z, 5);
    EXPECT_EQ(kelsCartToPolar_64fc(&z, nullptr, &phase_of_z, 1), kelStatusNullPtr);
    EXPECT_EQ(phase_of_z, std::atan2(4.0, 3.0));
}

// Angles of any size, and multiples of a quarter turn as near as doubles come to them.
TEST(PolarToCartesian, AnglesOfAnySize) {
    Random random("angles");
    for (int i = 0; i < 20000; ++i) {
        const Kel64f radius = random.uniform(0.5, 2);
        const Kel64f multiple = random.below(1 << 20) * 1.57079632679489661923;
        const Kel64f angle = random.below(2) ? multiple : std::ldexp(random.uniform(-2, 2), random.below(1000));
        Kel64f re = 0, im = 0, want_re = 0, want_im = 0;
        ASSERT_EQ(kelsPolarToCart_64f(&radius, &angle, &re, &im, 1), kelStatusOk);
        Cartesian::set(radius, angle, want_re, want_im);
        ASSERT_LE(std::fabs(re - want_re), std::fabs(want_re) * 0x1p-52) << radius << " at " << angle;
        ASSERT_LE(std::fabs(im - want_im), std::fabs(want_im) * 0x1p-52) << radius << " at " << angle;
    }
}

// The quarters of an angle are counted in its bits.
TEST(PolarToCartesian, AngleOfOnesThroughout) {
    const Kel64f radius = 1, angle = std::bit_cast<Kel64f>(~std::uint64_t{0});
    Kel64f re = 0, im = 0;
    ASSERT_EQ(kelsPolarToCart_64f(&radius, &angle, &re, &im, 1), kelStatusOk);
    EXPECT_TRUE(std::isnan(re) && std::isnan(im));
}

// A point alone is formed in doubles at every level, points in a row by quicker steps where those are enough.
TEST(PolarToCartesian, SinglesInARowAndAlone) {
    constexpr int n = 1 << 16;
    Random random("singles");
    std::vector<Kel32f> radius(n), angle(n), re(n), im(n);
    for (int i = 0; i < n; ++i) {
        const int exponent = random.below(8) ? 0 : -149 + random.below(270);
        radius[i] = random.below(8) ? static_cast<Kel32f>(std::ldexp(random.uniform(-1, 1), exponent)) : 0;
        angle[i] = random.below(8) ? static_cast<Kel32f>(random.uniform(-10, 10))
                                   : static_cast<Kel32f>(std::ldexp(random.uniform(-1, 1), -150 + random.below(175)));
    }
    ASSERT_EQ(kelsPolarToCart_32f(radius.data(), angle.data(), re.data(), im.data(), n), kelStatusOk);
    for (int i = 0; i < n; ++i) {
        Kel32f part[2] = {};
        ASSERT_EQ(kelsPolarToCart_32f(&radius[i], &angle[i], &part[0], &part[1], 1), kelStatusOk);
        ASSERT_EQ(std::bit_cast<std::uint32_t>(re[i]), std::bit_cast<std::uint32_t>(part[0]))
            << radius[i] << " at " << angle[i];
        ASSERT_EQ(std::bit_cast<std::uint32_t>(im[i]), std::bit_cast<std::uint32_t>(part[1]))
            << radius[i] << " at " << angle[i];
    }
}

// Radii with which a product or what it rounds away leaves the range, and angles with which it does.
TEST(PolarToCartesian, RadiiOfAnySize) {
    Random random("radii");
    for (int i = 0; i < 20000; ++i) {
        const int kind = i % 3;
        const int exponent = kind == 0 ? -1074 + random.below(60) : kind == 1 ? 1022 - random.below(40) : 0;
        const Kel64f radius = std::ldexp(random.uniform(1, 2), exponent);
        const Kel64f angle = std::ldexp(random.uniform(-4, 4), kind == 2 ? -1074 + random.below(60) : 0);
        Kel64f part[2] = {};
        ASSERT_EQ(kelsPolarToCart_64f(&radius, &angle, &part[0], &part[1], 1), kelStatusOk);
        const long double want[] = {radius * std::cos(static_cast<long double>(angle)),
                                    radius * std::sin(static_cast<long double>(angle))};
        for (int k = 0; k < 2; ++k) {
            const long double place = std::ldexp(1.0L, std::max(std::ilogb(want[k]), -1022) - 52);
            ASSERT_LE(std::fabs(part[k] - want[k]), place) << radius << " at " << angle << ", part " << k;
        }
    }
}

} // namespace
