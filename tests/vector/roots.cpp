// Squares and roots. Integer roots are held against squares of integers, which need no root to be exact; real ones
// against extended precision.

#include "kels/roots.h"
#include "kels/services.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/literals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

// Squares

constexpr auto squared = each([]<class T>(T x, auto... scale) {
    const long double v = x;
    if constexpr (std::is_integral_v<T>)
        return scaled<T>(v * v, (0 + ... + scale));
    else
        return v * v;
});

constexpr auto squared_complex = each([]<class T>(T z, auto... scale) {
    const long double a = z.re, b = z.im;
    if constexpr (std::is_same_v<T, Kel16sc>)
        return T{scaled<Kel16s>(a * a - b * b, (0 + ... + scale)), scaled<Kel16s>(2 * a * b, (0 + ... + scale))};
    else
        return ExactComplex{(a + b) * (a - b), 2 * a * b};
});

// Integers of any size, for squares of 65-bit numbers

struct Wide {
    std::uint64_t high, low;
    auto operator<=>(const Wide&) const = default;
};

Wide product(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t al = a & 0xFFFFFFFF, ah = a >> 32, bl = b & 0xFFFFFFFF, bh = b >> 32;
    const std::uint64_t middle = (al * bl >> 32) + (ah * bl & 0xFFFFFFFF) + (al * bh & 0xFFFFFFFF);
    return {ah * bh + (ah * bl >> 32) + (al * bh >> 32) + (middle >> 32), a * b};
}

Wide shifted(std::uint64_t x, int left) {
    if (left >= 64) return {x << (left - 64), 0};
    return {left == 0 ? 0 : x >> (64 - left), x << left};
}

/// The integer nearest to x^(1/2) 2^-factor, found by trying its bits; at most `limit`.
std::uint64_t integer_root(std::uint64_t x, int factor, std::uint64_t limit) {
    if (x == 0 || factor > 40) return 0;
    if (factor < -63 || static_cast<int>(std::bit_width(x)) - 2 * factor > 126) return limit;
    // r - 1/2 < x^(1/2) 2^-factor: r (r - 1) < x 4^-factor, in integers
    const auto reaches = [&](std::uint64_t r) {
        if (factor <= 0) return product(r, r - 1) < shifted(x, -2 * factor);
        if (2 * r - 1 > 1ULL << (33 - std::min(factor, 33))) return false;
        const std::uint64_t half = (2 * r - 1) << (factor - 1); // (r - 1/2) 2^factor; a tie belongs to the even one
        const Wide square = product(half, half);
        return square < Wide{0, x} || (square == Wide{0, x} && r % 2 == 0);
    };
    std::uint64_t root = 0;
    for (std::uint64_t bit = 1ULL << 62; bit > 0; bit >>= 1)
        if (reaches(root | bit)) root |= bit;
    return std::min(root, limit);
}

template <class T>
T rooted_integer(T x, int factor) {
    if (x < 0) return 0;
    return static_cast<T>(integer_root(static_cast<std::uint64_t>(x), factor, std::numeric_limits<T>::max()));
}

template <class T>
KelStatus negative_among(const T* x, int len) {
    return std::any_of(x, x + len, [](T v) { return v < 0; }) ? kelStatusSqrtNegArg : kelStatusOk;
}

constexpr auto rooted_integers = whole([]<class T>(const T* x, T* d, int len, int factor) {
    for (int i = 0; i < len; ++i) d[i] = rooted_integer(x[i], factor);
    return negative_among(x, len);
});

// Real and complex roots

constexpr auto rooted = whole([]<class T>(const T* x, T* d, int len) {
    for (int i = 0; i < len; ++i) d[i] = static_cast<T>(std::sqrt(static_cast<long double>(x[i])));
    return negative_among(x, len);
});

ExactComplex complex_root(long double re, long double im) {
    const long double a = re / 2, b = im / 2;
    if (a == 0) {
        const long double root = std::sqrt(b < 0 ? -b : b);
        return {root, b < 0 ? -root : root};
    }
    const long double r = std::sqrt(a * a + b * b);
    if (a < 0) {
        const long double v = b < 0 ? -std::sqrt(r - a) : std::sqrt(r - a);
        return {b / v, v};
    }
    const long double u = std::sqrt(a + r);
    return {u, b / u};
}

constexpr auto rooted_complex = each([](auto z) { return complex_root(z.re, z.im); });

/// sqrt(twice / 2) 2^-factor, rounded: sqrt(2 twice) 2^-(factor + 1).
Kel16s half_root(std::int64_t twice, int factor) {
    return static_cast<Kel16s>(integer_root(static_cast<std::uint64_t>(2 * twice), std::min(factor, 100) + 1, 32767));
}

constexpr auto rooted_complex_integer = each([](Kel16sc z, int factor) {
    if (factor < 0) {
        const ExactComplex root = complex_root(z.re, z.im);
        return Kel16sc{scaled<Kel16s>(root.re, factor), scaled<Kel16s>(root.im, factor)};
    }
    const std::int64_t re = z.re, im = z.im, square = re * re + im * im;
    auto modulus = static_cast<std::int64_t>(std::sqrt(static_cast<double>(square)));
    if (factor == 0 && square > modulus * modulus + modulus) ++modulus;
    const Kel16s root = half_root(modulus - re, factor);
    return Kel16sc{half_root(modulus + re, factor), static_cast<Kel16s>(im < 0 ? -root : root)};
});

// Cube roots

/// The rational function's value for a magnitude, brought into its range as it is stated.
long double cube_root(double magnitude) {
    int e = 0;
    long double m = std::frexp(magnitude, &e);
    int r = e % 3;
    if (r > 0) r -= 3;
    m = std::ldexp(m, r);
    const long double n =
        m * (((45.2548339756803 * m + 192.2798368355061) * m + 119.16548242855816) * m + 13.432501390862399) +
        0.16361612265857542;
    const long double d =
        (((14.808840932191346 * m + 151.97140510444356) * m + 168.52544141015682) * m + 33.99059413502156) * m + 1.0;
    return std::ldexp(n / d, (e - r) / 3);
}

constexpr auto cube_rooted = each([](Kel32f x) -> long double {
    if (!std::isfinite(x)) return x;
    if (std::fabs(x) <= 1.1754943508222875e-38F) return 0.0L;
    return x < 0 ? -cube_root(-static_cast<double>(x)) : cube_root(x);
});

constexpr auto cube_rooted_integer = each([](Kel32s x, int factor) {
    if (x == 0) return Kel16s{0};
    const double power = std::pow(2.0, -static_cast<double>(std::clamp(factor, -200, 200)));
    const long double v = (cube_root(std::fabs(static_cast<double>(x))) * power + 0.5L) * (x < 0 ? -1 : 1);
    return static_cast<Kel16s>(v > 32767 ? 32767 : v < -32768 ? -32768 : std::trunc(v));
});

/// Integers beside the squares of integers and of halves, and those whose roots have lower 32 bits that, once scaled,
/// round up to 2^32.
std::vector<std::int64_t> beside_squares() {
    std::vector<std::int64_t> x;
    const auto add = [&](std::uint64_t v) { x.push_back(static_cast<std::int64_t>(v & LLONG_MAX)); };
    for (int shift = 0; shift < 32; ++shift)
        for (std::int64_t delta : {-3, -2, -1, 0, 1, 2, 3}) {
            const auto root = static_cast<std::uint64_t>((1LL << shift) + 12345 * shift + delta);
            for (std::uint64_t square :
                 {root * root, root * root + root, root * root * 4, (2 * root + 1) * (2 * root + 1)})
                for (std::uint64_t beside : {~0ULL, 0ULL, 1ULL}) add(square + beside);
        }
    for (int bits = 1; bits < 31; ++bits)
        for (std::uint64_t odd : {1, 3, 5})
            for (std::uint64_t below : {1, 2, 3}) add((odd << bits) * (odd << bits) - below);
    return x;
}

const Rows table = {
    rows(squared, kelsSqr_8u_Sfs, kelsSqr_16u_Sfs, kelsSqr_16s_Sfs, kelsSqr_32f, kelsSqr_64f)
        .in_place(kelsSqr_8u_ISfs, kelsSqr_16u_ISfs, kelsSqr_16s_ISfs, kelsSqr_32f_I, kelsSqr_64f_I)
        .ulps(0, 1),
    rows(squared_complex, kelsSqr_16sc_Sfs, kelsSqr_32fc, kelsSqr_64fc)
        .in_place(kelsSqr_16sc_ISfs, kelsSqr_32fc_I, kelsSqr_64fc_I)
        .every_size()
        .ulps(1),
    rows(rooted_integers, kelsSqrt_8u_Sfs, kelsSqrt_16u_Sfs, kelsSqrt_16s_Sfs, kelsSqrt_64s_Sfs)
        .in_place(kelsSqrt_8u_ISfs, kelsSqrt_16u_ISfs, kelsSqrt_16s_ISfs, kelsSqrt_64s_ISfs)
        .telling(beside_squares()),
    rows(rooted_complex_integer, kelsSqrt_16sc_Sfs).in_place(kelsSqrt_16sc_ISfs),
    rows(rooted, kelsSqrt_32f, kelsSqrt_64f).in_place(kelsSqrt_32f_I, kelsSqrt_64f_I).ulps(0, 1),
    rows(rooted_complex, kelsSqrt_32fc, kelsSqrt_64fc).in_place(kelsSqrt_32fc_I, kelsSqrt_64fc_I).every_size().ulps(1),
    rows(cube_rooted, kelsCubrt_32f).ulps(1),
    rows(cube_rooted_integer, kelsCubrt_32s16s_Sfs),
};
const bool registered = add_rows("Roots", table);

// Single cases

// Numbers whose root is as close to a half as it can be, at every width of a vector.
TEST(IntegerRoot, CloseToAHalf) {
    for (int len = 1; len < 70; ++len) {
        const std::vector<Kel16s> x(static_cast<std::size_t>(len), 2321);
        std::vector<Kel16s> d(x.size());
        ASSERT_EQ(kelsSqrt_16s_Sfs(x.data(), d.data(), len, -9), kelStatusOk);
        EXPECT_EQ(d, std::vector<Kel16s>(x.size(), 24667)) << len;
    }
}

TEST(RealRoot, NegativeNumbers) {
    const Kel32f undefined = kelConstantOfNAN_32f;
    expect_results<kelStatusSqrtNegArg>(kelsSqrt_32f, {-1, 4, -0.0F, -HUGE_VALF, -1e-45F},
                                        {undefined, 2, -0.0F, undefined, undefined});
    expect_results<kelStatusSqrtNegArg>(kelsSqrt_64f, {-1e-320}, {kelConstantOfNAN_64f});
    expect_results(kelsSqrt_64f, {-0.0, 4}, {-0.0, 2});
}

// Where an overflow gives the largest number in place of an infinity.
TEST(ComplexRoot, OverflowOnTheWayInEveryMode) {
    for (const std::uint32_t mxcsr : {0x1F80, 0x3F80, 0x5F80, 0x7F80}) {
        Kel64fc root[] = {{1e200, 1e200}}, square[] = {{1e160, -1e160}, {1.5e154, 1e154}};
        under({0x037F, mxcsr}, [&] { return kelsSqrt_64fc_I(root, 1); });
        under({0x037F, mxcsr}, [&] { return kelsSqr_64fc_I(square, 2); });
        EXPECT_DOUBLE_EQ(root[0].re, 1.0986841134678099e100);
        EXPECT_DOUBLE_EQ(root[0].im, 4.5508986056222733e99);
        EXPECT_EQ(square[0].re, 0);
        EXPECT_DOUBLE_EQ(square[1].re, 1.25e308);
    }
}

} // namespace
