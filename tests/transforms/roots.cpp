// Roots of unity against extended precision, and the symmetries of the circle.

#include "transforms/roots.h"

#include "transforms/reference.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cstdint>

namespace {

using kels_test::Extended;

/// Counts that divide the table, that it divides, and that it has nothing to do with; the last ones at the top.
constexpr std::size_t counts[] = {1,    2,     3,     4,     5,     7,     8,        12,         60,        1000,
                                  4096, 10007, 16384, 44100, 65536, 99991, 16777259, 1073741824, 2147483647};

/// Some exponents of a large circle, all of a small one.
std::size_t stride(std::size_t n) { return n < 20000 ? 1 : n / 20000 + 1; }

/// An angle in the first eighth of the circle keeps its last bits: k is folded in integers.
Extended folded_root(std::uint64_t k, std::uint64_t n) {
    const std::uint64_t quarter = 4 * k / n, inside = 4 * k - quarter * n; // of n parts of a quarter
    const bool high = 2 * inside > n;
    const long double parts = static_cast<long double>(high ? n - inside : inside);
    const long double angle = std::numbers::pi_v<long double> * parts / (2 * static_cast<long double>(n));
    const Extended near(std::cos(angle), -std::sin(angle));
    Extended root = high ? Extended(-near.imag(), -near.real()) : near;
    for (std::uint64_t i = 0; i < quarter; ++i) root = {root.imag(), -root.real()};
    return root;
}

/// The error of x in units of the last place that the reference has in T.
template <class T>
long double ulps(T x, long double reference) {
    const int digits = std::is_same_v<T, float> ? FLT_MANT_DIG : DBL_MANT_DIG;
    return std::fabs(x - reference) / std::ldexp(1.0L, std::ilogb(reference) + 1 - digits);
}

template <class T>
class RootsOfUnity : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(RootsOfUnity, Reals);

TYPED_TEST(RootsOfUnity, AreRoundedAsIfOnce) {
    for (const std::size_t n : counts) {
        const kels::Circle circle(n);
        std::size_t values = 0, off = 0;
        for (std::size_t k = 0; k < n; k += stride(n)) {
            TypeParam root[2];
            circle.write(root, k);
            const Extended reference = folded_root(k, n);
            for (const auto& [x, r] : {std::pair{root[0], reference.real()}, std::pair{root[1], reference.imag()}}) {
                if (r == 0) {
                    EXPECT_EQ(x, 0) << n << " " << k;
                    continue;
                }
                EXPECT_LE(ulps(x, r), 0.51L) << n << " " << k;
                ++values;
                off += x != static_cast<TypeParam>(r);
            }
        }
        EXPECT_LE(off, values / (sizeof(TypeParam) == 4 ? 10000 : 400)) << n;
    }
}

TYPED_TEST(RootsOfUnity, AreMirroredToTheBit) {
    for (const std::size_t n : counts) {
        const kels::Circle circle(n);
        for (std::size_t k = 1; k < n; k += stride(n)) {
            TypeParam root[2], mirror[2];
            circle.write(root, k);
            circle.write(mirror, n - k);
            EXPECT_EQ(root[0], mirror[0]) << n << " " << k;
            EXPECT_EQ(root[1], -mirror[1]) << n << " " << k;
            if (n % 4 != 0) continue;
            circle.write(mirror, (n / 4 + n - k) % n);
            EXPECT_EQ(root[0], -mirror[1]) << n << " " << k;
            EXPECT_EQ(root[1], -mirror[0]) << n << " " << k;
        }
    }
}

} // namespace
