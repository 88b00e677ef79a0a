// Products of packed spectra and of complex vectors: every part rounded once from an exact sum of products.

#include "kels/spectrum.h"
#include "kels/arithmetic.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using kels_test::in_place;
using kels_test::Random;
using kels_test::Row;
using kels_test::row;
using kels_test::whole;

/// a b + c d in extended precision, the error of each product kept: right where the products cancel.
long double sum_of_products(long double a, long double b, long double c, long double d) {
    const long double p = a * b, q = c * d;
    const long double sum = p + q;
    if (!std::isfinite(sum)) return sum;
    const long double error = std::fma(a, b, -p) + std::fma(c, d, -q);
    return error == 0 ? sum : sum + error;
}

template <class T>
void multiply(const T* a, const T* b, T* d) {
    const T x[2] = {a[0], a[1]}, y[2] = {b[0], b[1]};
    d[0] = static_cast<T>(sum_of_products(x[0], y[0], -x[1], y[1]));
    d[1] = static_cast<T>(sum_of_products(x[0], y[1], x[1], y[0]));
}

constexpr auto complex_product = whole([]<class T>(const T* a, const T* b, T* d, int len) {
    for (int i = 0; i < len; ++i) multiply(&a[i].re, &b[i].re, &d[i].re);
});

constexpr auto perm_product = whole([]<class T>(const T* a, const T* b, T* d, int len) {
    int i = 0;
    for (; i < 2 - len % 2; ++i) d[i] = static_cast<T>(static_cast<long double>(a[i]) * b[i]);
    for (; i < len; i += 2) multiply(a + i, b + i, d + i);
});

const Row rows[] = {
    in_place(kelsMul_32fc_I, complex_product).ulps(1), in_place(kelsMul_64fc_I, complex_product).ulps(2),
    row(kelsMulPerm_32f, perm_product).ulps(1),        row(kelsMulPerm_64f, perm_product).ulps(2),
    in_place(kelsMulPerm_32f_I, perm_product).ulps(1), in_place(kelsMulPerm_64f_I, perm_product).ulps(2),
};

const bool registered = kels_test::add_rows("Spectrum", rows);

// Parts that cancel to their last bits, at every size of the factors: what a plain product gets wrong.
template <class Sample>
void expect_cancelling_products(KelStatus (*function)(const Sample*, Sample*, int), double ulps) {
    using T = decltype(Sample::re);
    constexpr int digits = std::numeric_limits<T>::digits;
    Random random("cancelling products");
    for (int exponent : {-400, -60, -10, 0, 10, 60, 300, 500}) {
        if (sizeof(T) == 4) exponent /= 8;
        std::vector<Sample> a(1000), b(1000), d;
        for (std::size_t i = 0; i < a.size(); ++i) {
            // re = x y - z w with z w just beside x y
            const T x = static_cast<T>(std::ldexp(random.uniform(1, 2), exponent)),
                    y = static_cast<T>(random.uniform(1, 2));
            const T z = static_cast<T>(x * static_cast<T>(1 + random.below(9) * std::ldexp(1.0, 2 - digits)));
            a[i] = {x, z};
            b[i] = {y, static_cast<T>(static_cast<long double>(x) * y / z)};
        }
        d = b;
        ASSERT_EQ(function(a.data(), d.data(), static_cast<int>(a.size())), kelStatusOk);
        for (std::size_t i = 0; i < a.size(); ++i) {
            Sample wanted;
            multiply(&a[i].re, &b[i].re, &wanted.re);
            const T spacing =
                std::nextafter(std::fabs(wanted.re), std::numeric_limits<T>::infinity()) - std::fabs(wanted.re);
            ASSERT_LE(std::fabs(d[i].re - wanted.re), ulps * spacing) << exponent << " at " << i;
        }
    }
}

TEST(ComplexProduct, CancellationKeepsItsLastBits) {
    expect_cancelling_products(kelsMul_32fc_I, 1);
    expect_cancelling_products(kelsMul_64fc_I, 2);
}

// Zeros by operand, by cancellation and by underflow: each with the sign of the exact result.
TEST(ComplexProduct, ZerosHaveTheirSign) {
    const double values[] = {0.0, -0.0, 0.027, -0.027, 1e308, 5e-324, -5e-324, 1e-300, -2.5};
    for (double a : values)
        for (double b : values)
            for (double c : values)
                for (double d : values) {
                    const Kel64fc x = {a, b};
                    Kel64fc y = {c, d}, wanted;
                    multiply(&x.re, &y.re, &wanted.re);
                    kelsMul_64fc_I(&x, &y, 1);
                    EXPECT_EQ(std::signbit(y.re), std::signbit(wanted.re)) << a << ' ' << b << ' ' << c << ' ' << d;
                    EXPECT_EQ(std::signbit(y.im), std::signbit(wanted.im)) << a << ' ' << b << ' ' << c << ' ' << d;
                }
}

// Products beyond the range whose difference is inside it.
TEST(ComplexProduct, IntermediateOverflowDoesNoHarm) {
    const Kel64fc a = {0x1p600, 0x1p600};
    std::vector<Kel64fc> b(40, {1, 2});
    b[17] = {0x1.8p440, 0x1.8p440};
    b[31] = {0x1p423, 0x1p423};
    const std::vector<Kel64fc> factors(40, a);
    ASSERT_EQ(kelsMul_64fc_I(factors.data(), b.data(), 40), kelStatusOk);
    EXPECT_EQ(b[17].re, 0);
    EXPECT_EQ(b[17].im, std::numeric_limits<double>::infinity());
    EXPECT_EQ(b[31].re, 0);
    EXPECT_EQ(b[31].im, std::numeric_limits<double>::infinity());
    EXPECT_EQ(b[16].re, -0x1p600);
    EXPECT_EQ(b[16].im, 3 * 0x1p600);
}

} // namespace
