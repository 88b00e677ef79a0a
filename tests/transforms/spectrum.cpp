// Packed spectra: expansion to every bin by the layouts' definition, and products, every part rounded once from an
// exact sum of products.

#include "kels/spectrum.h"
#include "support/exact.h"
#include "support/guarded_array.h"
#include "support/random_data.h"
#include "support/refusals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace kels_test;

enum Layout { pack, perm, ccs };

/// Where the real part of bin k stands, k up to len / 2.
int place(Layout layout, int k, int len) {
    const bool even = len % 2 == 0;
    if (k == 0) return 0;
    if (2 * k == len) return layout == pack ? len - 1 : layout == perm ? 1 : len;
    return layout == ccs || (layout == perm && even) ? 2 * k : 2 * k - 1;
}

bool is_real(int k, int len) { return k == 0 || 2 * k == len; }

// Expansion

template <class T>
T negative(T x) {
    return x == std::numeric_limits<T>::min() && std::is_integral_v<T> ? std::numeric_limits<T>::max()
                                                                       : static_cast<T>(-x);
}

template <Layout layout, class T, class Complex>
void expand(const T* src, Complex* dst, int len) {
    for (int k = 0; k < len; ++k) {
        const bool upper = 2 * k > len;
        const T* bin = src + place(layout, upper ? len - k : k, len);
        const bool no_imaginary = is_real(k, len) && layout != ccs;
        const T im = no_imaginary ? T{} : bin[1];
        dst[k] = {bin[0], upper ? negative(im) : im};
    }
}

template <Layout layout>
constexpr auto expanded = whole([]<class T, class Complex>(const T* src, Complex* dst, int len) {
    if constexpr (std::is_same_v<T, Complex>)
        expand<layout>(&src->re, dst, len);
    else
        expand<layout>(src, dst, len);
});

const Rows expansions = {
    rows(expanded<pack>, kelsConjPack_16sc, kelsConjPack_32fc, kelsConjPack_64fc),
    rows(expanded<perm>, kelsConjPerm_16sc, kelsConjPerm_32fc, kelsConjPerm_64fc),
};

const Rows expansions_in_place = {
    in_place(expanded<pack>, kelsConjPack_16sc_I, kelsConjPack_32fc_I, kelsConjPack_64fc_I),
    in_place(expanded<perm>, kelsConjPerm_16sc_I, kelsConjPerm_32fc_I, kelsConjPerm_64fc_I),
    in_place(expanded<ccs>, kelsConjCcs_16sc_I, kelsConjCcs_32fc_I, kelsConjCcs_64fc_I),
};

/// CCS has more values than bins times one, so its rows would not know the source's length.
template <class T, class Complex>
void expand_ccs(KelStatus (*function)(const T*, Complex*, int)) {
    Random random("CCS");
    for (int len = 1; len <= 140; ++len) {
        const std::size_t values = static_cast<std::size_t>(len) + 2 - static_cast<std::size_t>(len % 2);
        const auto count = static_cast<std::size_t>(len);
        std::vector<T> x(values);
        for (std::size_t i = 0; i < values; ++i)
            x[i] = i % 5 == 1 ? std::numeric_limits<T>::lowest() : static_cast<T>(random.below(60000)) - 30000;
        std::vector<Complex> expected(count);
        expand<ccs>(x.data(), expected.data(), len);
        for (const Edge edge : edges) {
            GuardedArray<T> src(x, edge);
            GuardedArray<Complex> dst(count, edge);
            ASSERT_EQ(function(src.data(), dst.data(), len), kelStatusOk);
            ASSERT_TRUE(same_bits(dst.values(), expected)) << "length " << len;
        }
    }
    T src[4] = {};
    Complex dst[2] = {};
    expect_nulls_refused(function, src, dst, 0);
    EXPECT_EQ(function(src, dst, 0), kelStatusBadSize);
}

TEST(Spectrum, CcsExpands) {
    expand_ccs(kelsConjCcs_16sc);
    expand_ccs(kelsConjCcs_32fc);
    expand_ccs(kelsConjCcs_64fc);
}

// Products

/// Bin by bin; put(exact) gives what is stored.
template <Layout layout, class T, class Put>
void multiply(const T* a, const T* b, T* d, int len, Put put, int sign = 1) {
    for (int k = 0; 2 * k <= len; ++k) {
        if (2 * k == len && len % 2 != 0) continue;
        const int i = place(layout, k, len);
        if (is_real(k, len)) {
            d[i] = put(static_cast<long double>(a[i]) * b[i]);
        } else if (i + 1 < len) {
            const long double ar = a[i], ai = a[i + 1], br = b[i];
            const long double bi = sign * static_cast<long double>(b[i + 1]);
            const auto bin = complex_product(ExactComplex{ar, ai}, ExactComplex{br, bi});
            d[i] = put(bin.re);
            d[i + 1] = put(bin.im);
        }
    }
}

template <Layout layout, int sign = 1>
constexpr auto product = whole([]<class T>(const T* a, const T* b, T* d, int len) {
    multiply<layout>(
        a, b, d, len, [](long double exact) { return static_cast<T>(exact); }, sign);
});

/// Toward minus infinity, then saturated.
template <Layout layout>
constexpr auto truncated_product = whole([](const Kel16s* a, const Kel16s* b, Kel16s* d, int len, int factor) {
    multiply<layout>(a, b, d, len, [factor](long double exact) {
        const long double scaled = std::floor(std::ldexp(exact, -std::clamp(factor, -100, 100)));
        return static_cast<Kel16s>(std::clamp<long double>(scaled, -32768, 32767));
    });
});

const Rows products = {
    rows(product<pack>, kelsMulPack_32f, kelsMulPack_64f).in_place(kelsMulPack_32f_I, kelsMulPack_64f_I).ulps(1, 2),
    rows(truncated_product<pack>, kelsMulPack_16s_Sfs).in_place(kelsMulPack_16s_ISfs),
    rows(product<perm>, kelsMulPerm_32f, kelsMulPerm_64f).in_place(kelsMulPerm_32f_I, kelsMulPerm_64f_I).ulps(1, 2),
    rows(truncated_product<perm>, kelsMulPerm_16s_Sfs).in_place(kelsMulPerm_16s_ISfs),
    in_place(product<pack, -1>, kelsMulPackConj_32f_I, kelsMulPackConj_64f_I).ulps(1, 2),
};

const bool registered =
    add_rows("Spectrum", expansions) && add_rows("Spectrum", expansions_in_place) && add_rows("Spectrum", products);

/// Four extremes: the imaginary part is 2^31, which 32 bits do not hold, and stays so until it is scaled.
TEST(Spectrum, SixteenBitProductOfExtremes) {
    const Kel16s a[] = {-32768, -32768, -32768};
    Kel16s d[3];
    for (const auto& [factor, imaginary] : {std::pair{0, 32767}, {16, 32767}, {17, 16384}, {31, 1}, {32, 0}}) {
        ASSERT_EQ(kelsMulPack_16s_Sfs(a, a, d, 3, factor), kelStatusOk);
        EXPECT_EQ(d[1], 0);
        EXPECT_EQ(d[2], imaginary) << factor;
    }
}

} // namespace
