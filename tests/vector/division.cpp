// Quotients. Integers are held to the last bit, real numbers against extended precision; what long vectors do in groups
// is told here as it is defined, one reciprocal a group, and held at every alignment.

#include "kels/division.h"
#include "kels/services.h"
#include "support/exact.h"
#include "support/literals.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

template <class T>
const T nan_of = std::numeric_limits<T>::quiet_NaN();

// Where groups are

struct Stretch {
    int from, to;
};

/// Whole blocks of 32 bytes, from a boundary that all arrays share.
template <class T>
Stretch stretch(Places arrays, int len, bool apart_too) {
    if (len < 32) return {0, 0};
    const int block = 32 / sizeof(T);
    const auto offset = [](void* p) { return reinterpret_cast<std::uintptr_t>(p) % 32; };
    const std::uintptr_t first = offset(arrays[0]);
    const bool together = std::all_of(arrays.begin(), arrays.end(), [&](void* p) { return offset(p) == first; });
    if (std::is_same_v<T, Kel32f>) return {0, len / block * block};
    if (!together || first % sizeof(T) != 0) return {0, apart_too ? len / block * block : 0};
    int head = 0;
    while ((first + head * sizeof(T)) % 32 != 0) ++head;
    return {head, head + (len - head) / block * block};
}

// Floating point: numerators over divisors in extended precision. Real numbers are their own; complex ones have those
// of b conj(a) / |a|^2.

struct Fraction {
    long double re, im, divisor;
};

template <class T>
Fraction fraction(T a, T b) {
    if constexpr (ComplexSample<T>)
        return {sum_of_products(b.re, a.re, b.im, a.im), sum_of_products(b.im, a.re, -a.im, b.re),
                sum_of_products(a.re, a.re, a.im, a.im)};
    else
        return {static_cast<long double>(b), 0, static_cast<long double>(a)};
}

template <class T>
void store(T& d, long double re, long double im) {
    if constexpr (ComplexSample<T>)
        d = {static_cast<decltype(d.re)>(re), static_cast<decltype(d.re)>(im)};
    else
        d = static_cast<T>(re);
}

/// Gives whether the divisor counts as zero.
template <class T>
bool divide_alone(T a, T b, T& d) {
    const Fraction f = fraction(a, b);
    const bool counts_as_zero = !(f.divisor < 0 || f.divisor > 0);
    if (ComplexSample<T> && counts_as_zero)
        store(d, nan_of<double>, nan_of<double>);
    else if (ComplexSample<T>)
        store(d, f.re * (1 / f.divisor), f.im * (1 / f.divisor));
    else if (counts_as_zero)
        store(d, f.re > 0 ? HUGE_VAL : f.re < 0 ? -HUGE_VAL : nan_of<double>, 0);
    else
        store(d, f.re / f.divisor, 0);
    return counts_as_zero;
}

/// The others' divisors times (numerator times the reciprocal of the product of all).
template <int Group, class T>
bool divide_group(const T* a, const T* b, T* d) {
    Fraction f[Group];
    for (int i = 0; i < Group; ++i) f[i] = fraction(a[i], b[i]);
    const auto pair = [&](int i) { return f[i & ~1].divisor * f[i | 1].divisor; };
    const long double product = Group == 2 ? pair(0) : pair(0) * pair(2);
    if (!(product < 0 || product > 0)) {
        bool zero = false;
        for (int i = 0; i < Group; ++i) zero |= divide_alone(a[i], b[i], d[i]);
        return zero;
    }
    for (int i = 0; i < Group; ++i) {
        const long double reciprocal = Group == 2 ? 1 / product : pair(i ^ 2) * (1 / product);
        const long double partner = f[i ^ 1].divisor;
        store(d[i], partner * (f[i].re * reciprocal), partner * (f[i].im * reciprocal));
    }
    return false;
}

constexpr auto divided = placed([]<class T>(Places arrays, const T* a, const T* b, T* d, int len) {
    constexpr int group = std::is_same_v<T, Kel64fc> ? 2 : 4;
    const auto [from, to] = stretch<T>(arrays, len, true);
    bool zero = false;
    for (int i = 0; i < len; ++i)
        if (i < from || i >= to)
            zero |= divide_alone(a[i], b[i], d[i]);
        else if ((i - from) % group == 0)
            zero |= divide_group<group>(a + i, b + i, d + i);
    return zero ? kelStatusDivByZeroValues : kelStatusOk;
});

constexpr auto divided_by_constant = whole([]<class T>(const T* a, T* d, int len, T val) {
    for (int i = 0; i < len; ++i) {
        if constexpr (ComplexSample<T>) {
            divide_alone(val, a[i], d[i]);
        } else {
            const long double reciprocal = static_cast<T>(1.0L / val);
            store(d[i], reciprocal == 0 ? 0.0L : a[i] * reciprocal, 0);
        }
    }
});

// Integers

/// b / a; so large for a zero divisor that it saturates at any factor, but in complex numbers.
template <class T>
T quotient(T b, T a, int factor) {
    if constexpr (ComplexSample<T>) {
        const auto [re, im, size] = fraction(a, b);
        if (size == 0) return {0, 0};
        return {scaled<Kel16s>(re / size, factor), scaled<Kel16s>(im / size, factor)};
    } else {
        if (a == 0) return b == 0 ? 0 : b > 0 ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
        return scaled<T>(static_cast<long double>(b) / a, factor);
    }
}

template <class T>
KelStatus zero_among(const T* a, int len) {
    const bool any = std::any_of(a, a + len, [](T x) { return fraction(x, x).divisor == 0; });
    return any ? kelStatusDivByZeroValues : kelStatusOk;
}

constexpr auto divided_integers = whole([]<class T>(const T* a, const T* b, T* d, int len, int factor) {
    for (int i = 0; i < len; ++i) d[i] = quotient(b[i], a[i], factor);
    return zero_among(a, len);
});

constexpr auto divided_by_complex = whole([](const Kel16sc* a, Kel16sc* d, int len, Kel16sc val, int factor) {
    for (int i = 0; i < len; ++i) d[i] = quotient(a[i], val, factor);
});

Kel8u in_groups(Kel8u a, Kel8u val, int factor) {
    factor = std::clamp(factor, -30, 30);
    if (factor < 0) return static_cast<Kel8u>(std::min<Kel64s>(255, (a * ((1LL << (9 - factor)) / val) + 256) >> 9));
    const Kel64s whole = 65536 / val, reciprocal = factor == 0 ? whole : (whole + (1LL << (factor - 1))) >> factor;
    return static_cast<Kel8u>((a * reciprocal + 32768) >> 16);
}

Kel16s in_groups(Kel16s a, Kel16s val, int factor) {
    const double k = static_cast<double>(std::ldexp(1.0L / val, -std::clamp(factor, -100, 100)));
    return std::fabs(k) < 3.051850947599719e-05 ? Kel16s{0} : quotient(a, val, factor);
}

constexpr auto divided_by_integer = placed([]<class T>(Places arrays, const T* a, T* d, int len, T val, int factor) {
    const auto [from, to] = stretch<T>(arrays, len, false);
    for (int i = 0; i < len; ++i)
        d[i] = i >= from && i < to ? in_groups(a[i], val, factor) : quotient(a[i], val, factor);
    return kelStatusOk;
});

constexpr auto dividing = whole([](const Kel16u* a, Kel16u* d, int len, Kel16u val) {
    for (int i = 0; i < len; ++i) d[i] = quotient(val, a[i], 0);
    return zero_among(a, len);
});

// A zero constant is an error, for real numbers ahead of the frame; so is one that is no number.
Rows not_by_zero(const Rows& rows) { return rows.refuses(0, {0.0}, kelStatusDivByZero); }
Rows by_bytes(const Rows& rows) { return not_by_zero(rows).values(0, {1, 2, 3, 5, 7, 10, 16, 77, 100, 128, 254, 255}); }
Rows by_words(const Rows& rows) { return rows.values(0, {1, -1, 2, 3, -7, 10, 1000, 181, -32768, 32767, -100, 6}); }
Rows not_by_nothing(const Rows& rows, double special) {
    return not_by_zero(rows)
        .refuses(0, {-0.0, nan_of<double>}, kelStatusDivByZero)
        .values(0, {1, -1, 3, 0.1, -7.3e-5, 1e30, 1e-30, -3e38, 2, special, 49, -10});
}
Rows by_reals(const Rows& rows) { return not_by_nothing(rows, HUGE_VAL).values_first().ulps(0, 1); }
Rows by_complex(const Rows& rows) { return not_by_nothing(rows, 7).ulps(1, 2); }

const Rows table = {
    rows(divided, kelsDiv_32f, kelsDiv_32fc).in_place(kelsDiv_32f_I, kelsDiv_32fc_I).ulps(1),
    rows(divided, kelsDiv_64f).in_place(kelsDiv_64f_I).every_size().ulps(1),
    rows(divided, kelsDiv_64fc).in_place(kelsDiv_64fc_I).every_size().ulps(2),
    rows(divided_integers, kelsDiv_8u_Sfs, kelsDiv_16s_Sfs, kelsDiv_16sc_Sfs)
        .in_place(kelsDiv_8u_ISfs, kelsDiv_16s_ISfs, kelsDiv_16sc_ISfs),
    by_reals(rows(divided_by_constant, kelsDivC_32f, kelsDivC_64f).in_place(kelsDivC_32f_I, kelsDivC_64f_I)),
    by_complex(rows(divided_by_constant, kelsDivC_32fc, kelsDivC_64fc).in_place(kelsDivC_32fc_I, kelsDivC_64fc_I)),
    by_bytes(rows(divided_by_integer, kelsDivC_8u_Sfs).in_place(kelsDivC_8u_ISfs)),
    not_by_zero(by_words(rows(divided_by_integer, kelsDivC_16s_Sfs).in_place(kelsDivC_16s_ISfs))),
    not_by_zero(by_words(rows(divided_by_complex, kelsDivC_16sc_Sfs).in_place(kelsDivC_16sc_ISfs))),
    by_words(rows(dividing, kelsDivCRev_16u).in_place(kelsDivCRev_16u_I)),
};
const bool registered = add_rows("Division", table);

// Zeros

TEST(Div, StoresWhatIsStatedForAZeroDivisor) {
    const Kel32f inf = kelConstantOfINF_32f, undefined = kelConstantOfNAN_32f, nan = nan_of<Kel32f>;
    expect_results<kelStatusDivByZeroValues>(kelsDiv_32f, {0, -0.0F, 0, nan, -nan, nan, 4}, {1, -1, 0, 5, -5, 0, 2},
                                             {inf, -inf, undefined, inf, -inf, undefined, 0.5F});
    expect_results<kelStatusDivByZeroValues>(kelsDiv_64f, {0}, {-0.0}, {kelConstantOfNAN_64f});
    expect_results<kelStatusDivByZeroValues>(kelsDiv_32fc, {{0, -0.0F}}, {{1, 2}}, {{undefined, undefined}});
}

TEST(DivC, ComplexPartsAreNotMistaken) {
    expect_results(kelsDivC_32fc, {{10, 5}}, {3, 4}, {{2, -1}});
    expect_results(kelsDivC_16sc_Sfs, {{10, 5}}, {3, 4}, {{4, -2}}, -1);
    Kel32fc z = {1, 1};
    EXPECT_EQ(kelsDivC_32fc_I({nan_of<Kel32f>, 1}, &z, 1), kelStatusOk);
    EXPECT_TRUE(std::isnan(z.re));
}

TEST(DivCRev, ZeroConstantLooksAtNoSource) {
    Kel16u d[] = {7, 7};
    EXPECT_EQ(kelsDivCRev_16u(nullptr, 0, d, 2), kelStatusOk);
    EXPECT_EQ(d[0] + d[1], 0);
    EXPECT_EQ(kelsDivCRev_16u_I(0, d, 0), kelStatusBadSize);
    EXPECT_EQ(kelsDivCRev_16u(d, 0, nullptr, 0), kelStatusNullPtr);
    const Kel16u zero = 0;
    EXPECT_EQ(kelsDivCRev_16u(&zero, 1, d, 1), kelStatusDivByZeroValues);
    EXPECT_EQ(d[0], 65535);
}

// Numerators that cancel to their last bits.
template <class T>
void expect_cancelling_quotients(KelStatus (*function)(const T*, T*, int), double ulps) {
    using P = decltype(T::re);
    Random random("cancelling quotients");
    std::vector<T> a(1000), b(1000), d;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const P x = static_cast<P>(random.uniform(1, 2)), y = static_cast<P>(random.uniform(1, 2));
        a[i] = {x, y};
        const P factor = static_cast<P>(random.uniform(-4, 4));
        b[i] = {x * factor, y * factor}; // the imaginary part is what rounding left
    }
    d = b;
    ASSERT_EQ(function(a.data(), d.data(), static_cast<int>(a.size())), kelStatusOk);
    for (std::size_t i = 0; i < a.size(); ++i) {
        const Fraction f = fraction(a[i], b[i]);
        const P wanted = static_cast<P>(f.im / f.divisor);
        ASSERT_LE(std::fabs(d[i].im - wanted), ulps * ulp(wanted)) << i;
    }
}

TEST(ComplexQuotient, CancellationKeepsItsLastBits) {
    expect_cancelling_quotients(kelsDiv_32fc_I, 1);
    expect_cancelling_quotients(kelsDiv_64fc_I, 2);
}

} // namespace
