// Thresholds. Orders of bits are held against a count of the numbers between, magnitudes against extended precision,
// and steps of 24 bits against roundings of the mantissa alone.

#include "kels/thresholds.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/literals.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;
using Real = long double;

// References. Elements are copied as bytes, so that none of their bits change.

template <class T>
void move(T& to, const T& from) {
    std::memcpy(&to, &from, sizeof to);
}

enum class Side { below, above };

constexpr Side side_of(int mode) { return mode == 4 ? Side::above : Side::below; }
constexpr int mode_of(Side side) { return side == Side::above ? 4 : 0; }

/// The place of a number in the order of its bits, the negative ones mirrored.
template <class T>
std::int64_t place(const T& x) {
    if constexpr (std::is_integral_v<T>) {
        return x;
    } else {
        std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t> bits;
        std::memcpy(&bits, &x, sizeof bits);
        return bits < 0 ? std::numeric_limits<decltype(bits)>::min() - std::int64_t{bits} - 1 : bits;
    }
}

struct ByBits {
    template <class T>
    static bool beyond(Side side, const T& x, const T& level) {
        return side == Side::below ? place(x) < place(level) : place(x) > place(level);
    }
};

/// What has no order is below.
struct ByValue {
    template <class T>
    static bool beyond(Side side, const T& x, const T& level) {
        return side == Side::below ? !(x >= level) : x > level;
    }
};

Real squared_modulus(auto z) { return static_cast<Real>(z.re) * z.re + static_cast<Real>(z.im) * z.im; }

struct ByModulus {
    template <class T, class Level>
    static bool beyond(Side side, const T& z, Level level) {
        const Real m = squared_modulus(z), limit = static_cast<Real>(level) * level;
        return side == Side::below ? !(m >= limit) : m > limit;
    }
};

template <class Order, Side side>
constexpr auto with_value = whole([]<class T>(const T* x, T* d, int len, const auto& level, const T& value) {
    for (int i = 0; i < len; ++i) move(d[i], Order::beyond(side, x[i], level) ? value : x[i]);
});
/// With the level itself, on the side of the mode or of the function.
template <class Order, Side S = Side::below>
constexpr auto limited_to = whole([]<class T>(const T* x, T* d, int len, const T& level, int mode = mode_of(S)) {
    for (int i = 0; i < len; ++i) move(d[i], Order::beyond(side_of(mode), x[i], level) ? level : x[i]);
});

/// Rounded to 24 bits, whatever the exponent.
Real rounded(Real x) {
    if (x == 0 || !std::isfinite(x)) return x;
    int exponent = 0;
    const Real fraction = std::frexp(x, &exponent);
    return std::ldexp(std::nearbyint(std::ldexp(fraction, 24)), exponent - 24);
}

/// Steps of a type: those of singles are rounded.
template <class T>
Real step(Real x) {
    return std::is_same_v<T, Kel32fc> ? rounded(x) : x;
}

template <class T>
Real modulus_in_steps(const T& z) {
    const Real re = z.re, im = z.im;
    return step<T>(step<T>(re * re) + step<T>(im * im));
}

template <class T>
void put_complex(T& to, Real re, Real im) {
    to.re = static_cast<decltype(to.re)>(re);
    to.im = static_cast<decltype(to.im)>(im);
}

template <class T, class Level>
void clip_one(T& z, Side side, Level level, bool same_place) {
    const Real m = modulus_in_steps(z), limit = step<T>(static_cast<Real>(level) * level);
    const Real factor = step<T>(std::sqrt(step<T>(limit / m)));
    bool changed = side == Side::below ? m < limit : m > limit;
    if (std::is_same_v<T, Kel32fc> && (std::isnan(m) || std::isnan(limit)))
        changed = same_place == (side == Side::below);
    if (!changed) return;
    if (side == Side::below && !(m > 0)) {
        z.re = level;
        if (m == 0) z.im = 0;
    } else {
        put_complex(z, z.re * factor, z.im * factor);
    }
}

/// A part of a clipped integer element, in extended precision: its rounding errors are far below the corrections.
Kel16s clipped_part(Real part, Real modulus, Real level, Side side) {
    const Real size = std::fabs(part) * level / modulus;
    const Real whole = side == Side::above ? std::floor(size + 0x1p-37L) : std::ceil(size - 0x1p-33L);
    return static_cast<Kel16s>(part < 0 ? -whole : whole);
}

void clip_one(Kel16sc& z, Side side, Kel16s level, bool) {
    const Real m = squared_modulus(z), modulus = std::sqrt(m);
    if (side == Side::below ? m >= level * level : m <= level * level) return;
    if (m == 0)
        z = {level, 0};
    else
        z = {clipped_part(z.re, modulus, level, side), clipped_part(z.im, modulus, level, side)};
}

template <bool SamePlace, class T, class Level>
void clip_all(const T* x, T* d, int len, Side side, Level level) {
    for (int i = 0; i < len; ++i) {
        T z;
        move(z, x[i]);
        clip_one(z, side, level, SamePlace);
        move(d[i], z);
    }
}

template <bool SamePlace, Side S = Side::below>
constexpr auto clipped = whole([]<class T>(const T* x, T* d, int len, auto level, int mode = mode_of(S)) {
    clip_all<SamePlace>(x, d, len, side_of(mode), level);
});

// Limited reciprocals

template <class T>
bool upper_bits_zero(T x) {
    return std::bit_cast<std::uint64_t>(x) >> 32 == 0;
}

bool is_zero(Kel64f x) { return x == 0; }
bool is_zero(Kel32fc z) { return !(squared_modulus(z) > 0); }
bool is_zero(Kel64fc z) { return upper_bits_zero(z.re) && upper_bits_zero(z.im); }

bool zero_level(Kel32f level, Kel32f) { return std::bit_cast<std::uint32_t>(level) == 0; }
bool zero_level(Kel64f level, Kel64f) { return level == 0; }
bool zero_level(Kel32f level, Kel32fc) { return level == 0; }
bool zero_level(Kel64f level, Kel64fc) { return upper_bits_zero(level); }

template <class T>
Real limited_one(T x, T level) {
    const bool single = std::is_same_v<T, Kel32f>;
    if (zero_level(level, x)) return x == 0 ? HUGE_VALL : 1 / static_cast<Real>(x);
    const bool large = std::fabs(x) >= (single ? std::fabs(level) : level) || (single && std::isnan(x));
    return large ? 1 / static_cast<Real>(x) : (x < 0 ? -1 : 1) / static_cast<Real>(level);
}

template <class T, class Level>
ExactComplex limited_complex(T z, Level level) {
    const bool no_level = zero_level(level, z);
    if (is_zero(z)) return {no_level ? HUGE_VALL : 1 / static_cast<Real>(level), 0};
    const Real m = modulus_in_steps(z), limit = no_level ? 0 : step<T>(static_cast<Real>(level) * level);
    if (m >= limit) return {z.re / m, -z.im / m};
    const Real factor = step<T>(1 / step<T>(step<T>(std::sqrt(m)) * level));
    return {z.re * factor, -(z.im * factor)};
}

constexpr auto limited = whole([]<class T, class Level>(const T* x, T* d, int len, Level level) {
    KelStatus status = kelStatusOk;
    for (int i = 0; i < len; ++i) {
        if (is_zero(x[i]) && zero_level(level, x[i])) status = kelStatusInvThreshZeroLevel;
        if constexpr (ComplexSample<T>) {
            const ExactComplex result = limited_complex(x[i], level);
            put_complex(d[i], result.re, result.im);
        } else {
            d[i] = static_cast<T>(limited_one(x[i], level));
        }
    }
    return status;
});

constexpr std::initializer_list<double> integer_levels = {0, 1, 5, 80, 100, 181, 4096, 20000, 32766, 32767};
constexpr std::initializer_list<double> real_levels = {0,    1,    0.3,      2.5,   100,  1e5,
                                                       1e-5, -0.0, HUGE_VAL, 1e-30, 1e30, NAN};

/// Magnitudes have no level below zero; levels are those of integers or of real numbers.
Rows of_integers(const Rows& rows) {
    return rows.values(0, integer_levels).refuses(0, {-1, -32768}, kelStatusNegThreshLevel);
}
Rows of_reals(const Rows& rows) {
    return rows.values(0, real_levels).refuses(0, {-1, -1e-40, -HUGE_VAL}, kelStatusNegThreshLevel);
}
Rows clips_reals(const Rows& rows) { return of_reals(rows).every_size().ulps(1); }

Rows in_modes(const Rows& rows) { return rows.values(1, {0, 1, 2, 3, 4, -1, 4, 4}); }

const Rows table = {
    in_modes({
        rows(limited_to<ByBits>, kelsThreshold_16s, kelsThreshold_32f)
            .in_place(kelsThreshold_16s_I, kelsThreshold_32f_I),
        rows(limited_to<ByValue>, kelsThreshold_64f),
        of_integers({rows(clipped<false>, kelsThreshold_16sc), in_place(clipped<true>, kelsThreshold_16sc_I)}),
        clips_reals({rows(clipped<false>, kelsThreshold_32fc, kelsThreshold_64fc),
                     in_place(clipped<true>, kelsThreshold_64fc_I)}),
    }),
    rows(limited_to<ByBits, Side::below>, kelsThreshold_LT_16s, kelsThreshold_LT_32f)
        .in_place(kelsThreshold_LT_16s_I, kelsThreshold_LT_32f_I),
    rows(limited_to<ByBits, Side::above>, kelsThreshold_GT_16s, kelsThreshold_GT_32f)
        .in_place(kelsThreshold_GT_16s_I, kelsThreshold_GT_32f_I),
    rows(limited_to<ByValue, Side::below>, kelsThreshold_LT_64f),
    rows(limited_to<ByValue, Side::above>, kelsThreshold_GT_64f),
    rows(with_value<ByBits, Side::below>, kelsThreshold_LTVal_16s, kelsThreshold_LTVal_32f)
        .in_place(kelsThreshold_LTVal_16s_I, kelsThreshold_LTVal_32f_I),
    rows(with_value<ByBits, Side::above>, kelsThreshold_GTVal_16s, kelsThreshold_GTVal_32f)
        .in_place(kelsThreshold_GTVal_16s_I, kelsThreshold_GTVal_32f_I),
    rows(with_value<ByValue, Side::below>, kelsThreshold_LTVal_64f),
    rows(with_value<ByValue, Side::above>, kelsThreshold_GTVal_64f),
    of_integers({
        rows(clipped<false, Side::below>, kelsThreshold_LT_16sc),
        rows(clipped<false, Side::above>, kelsThreshold_GT_16sc),
        in_place(clipped<true, Side::below>, kelsThreshold_LT_16sc_I),
        in_place(clipped<true, Side::above>, kelsThreshold_GT_16sc_I),
        rows(with_value<ByModulus, Side::below>, kelsThreshold_LTVal_16sc).in_place(kelsThreshold_LTVal_16sc_I),
        rows(with_value<ByModulus, Side::above>, kelsThreshold_GTVal_16sc).in_place(kelsThreshold_GTVal_16sc_I),
    }),
    clips_reals({
        rows(clipped<false, Side::below>, kelsThreshold_LT_32fc, kelsThreshold_LT_64fc),
        rows(clipped<false, Side::above>, kelsThreshold_GT_32fc, kelsThreshold_GT_64fc),
        in_place(clipped<true, Side::below>, kelsThreshold_LT_64fc_I),
        in_place(clipped<true, Side::above>, kelsThreshold_GT_64fc_I),
    }),
    of_reals({
        rows(with_value<ByModulus, Side::below>, kelsThreshold_LTVal_32fc, kelsThreshold_LTVal_64fc)
            .in_place(kelsThreshold_LTVal_32fc_I, kelsThreshold_LTVal_64fc_I),
        rows(with_value<ByModulus, Side::above>, kelsThreshold_GTVal_32fc, kelsThreshold_GTVal_64fc)
            .in_place(kelsThreshold_GTVal_32fc_I, kelsThreshold_GTVal_64fc_I),
    }),
    of_reals(rows(limited, kelsThreshold_LTInv_32f, kelsThreshold_LTInv_32fc, kelsThreshold_LTInv_64f)
                 .in_place(kelsThreshold_LTInv_32f_I, kelsThreshold_LTInv_32fc_I, kelsThreshold_LTInv_64f_I))
        .ulps(1),
    of_reals(rows(limited, kelsThreshold_LTInv_64fc).in_place(kelsThreshold_LTInv_64fc_I)).ulps(2),
};

// These differ from the ones out of place, where numbers have no order or zeros have signs.
const Rows rows_in_place = {
    in_modes(clips_reals(in_place(clipped<true>, kelsThreshold_32fc_I))),
    in_modes(in_place(limited_to<ByBits>, kelsThreshold_64f_I)),
    clips_reals(in_place(clipped<true, Side::below>, kelsThreshold_LT_32fc_I)),
    clips_reals(in_place(clipped<true, Side::above>, kelsThreshold_GT_32fc_I)),
    in_place(limited_to<ByBits, Side::below>, kelsThreshold_LT_64f_I),
    in_place(limited_to<ByBits, Side::above>, kelsThreshold_GT_64f_I),
    in_place(with_value<ByBits, Side::below>, kelsThreshold_LTVal_64f_I),
    in_place(with_value<ByBits, Side::above>, kelsThreshold_GTVal_64f_I),
};
const bool registered = add_rows("Thresholds", table) && add_rows("ThresholdsInPlace", rows_in_place);

// Integers: every level, on elements whose clipped parts are integers, or come close to one.

TEST(ComplexThreshold, EveryLevelOfIntegers) {
    std::vector<Kel16sc> x = {{0, 0}, {3, 4}, {-32768, -32768}, {-32768, 0}, {32767, 1}, {0, -1}, {1, 1}};
    Random random("levels");
    for (int i = 0; i < 55; ++i) {
        const int k = 1 + random.below(2000), a = random.below(3), sign = random.below(2) ? 1 : -1;
        constexpr int triples[3][2] = {{3, 4}, {-5, 12}, {8, -15}};
        x.push_back(
            {static_cast<Kel16s>(triples[a][0] * k % 32768), static_cast<Kel16s>(sign * triples[a][1] * k % 32768)});
    }
    std::vector<Kel16sc> want(x.size());
    for (int level = 0; level < 32768; ++level)
        for (const Side side : {Side::below, Side::above}) {
            const auto l = static_cast<Kel16s>(level);
            clip_all<false>(x.data(), want.data(), static_cast<int>(x.size()), side, l);
            expect_results(kelsThreshold_16sc, x, want, l, mode_of(side));
        }
}

// Squared magnitudes that differ from the level's in the last bit of extended precision, or not at all.
TEST(ComplexThreshold, ReplacementComparesInExtendedPrecision) {
    for (const Kel32f tiny : {0.0F, 0x1p-30F, 0x1p-31F, 0x1p-32F, 0x1p-33F, 1e-30F}) {
        const Kel32fc z[] = {{1, tiny}, {-tiny, 1}};
        const Real m = squared_modulus(z[0]);
        Kel32fc d[2];
        ASSERT_EQ(kelsThreshold_GTVal_32fc(z, d, 2, 1, {9, 9}), kelStatusOk);
        EXPECT_EQ(d[0].re, m > 1 ? 9 : 1) << tiny;
        EXPECT_EQ(d[1].im, m > 1 ? 9 : 1) << tiny;
        const Kel64fc w[] = {{1 - 0x1p-53, static_cast<Kel64f>(tiny)}};
        Kel64fc e[1];
        ASSERT_EQ(kelsThreshold_LTVal_64fc(w, e, 1, 1, {9, 9}), kelStatusOk);
        EXPECT_EQ(e[0].re, squared_modulus(w[0]) < 1 ? 9 : w[0].re) << tiny;
    }
}

/// The same elements are replaced in any modes, beside the level too.
template <class T>
void expect_same_in_odd_modes(KelStatus (*function)(const T*, T*, int, decltype(T::re), T)) {
    Random random("modes");
    constexpr int len = 256;
    T z[len], want[len], d[len];
    for (T& one : z) {
        const double angle = random.uniform(-3, 3);
        one = {static_cast<decltype(T::re)>(std::cos(angle)), static_cast<decltype(T::re)>(std::sin(angle))};
    }
    ASSERT_EQ(function(z, want, len, 1, {9, 9}), kelStatusOk);
    in_odd_modes([&] { function(z, d, len, 1, {9, 9}); }, [&] { EXPECT_EQ(std::memcmp(d, want, sizeof want), 0); });
}

TEST(ComplexThreshold, ReplacementFollowsNoMode) {
    expect_same_in_odd_modes(kelsThreshold_LTVal_32fc);
    expect_same_in_odd_modes(kelsThreshold_GTVal_32fc);
    expect_same_in_odd_modes(kelsThreshold_LTVal_64fc);
    expect_same_in_odd_modes(kelsThreshold_GTVal_64fc);
}

} // namespace
