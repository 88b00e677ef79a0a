// Packed spectra: expansion to every bin by the layouts' definition, and products, every part rounded once from an
// exact sum of products.

#include "kels/spectrum.h"
#include "support/exact.h"
#include "support/guarded_memory.h"
#include "support/random_data.h"
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

using kels_test::complex_product;
using kels_test::in_place;
using kels_test::Row;
using kels_test::row;
using kels_test::whole;

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

const Row expansions[] = {
    row(kelsConjPack_16sc, expanded<pack>), row(kelsConjPack_32fc, expanded<pack>),
    row(kelsConjPack_64fc, expanded<pack>), row(kelsConjPerm_16sc, expanded<perm>),
    row(kelsConjPerm_32fc, expanded<perm>), row(kelsConjPerm_64fc, expanded<perm>),
};

const Row expansions_in_place[] = {
    in_place(kelsConjPack_16sc_I, expanded<pack>), in_place(kelsConjPack_32fc_I, expanded<pack>),
    in_place(kelsConjPack_64fc_I, expanded<pack>), in_place(kelsConjPerm_16sc_I, expanded<perm>),
    in_place(kelsConjPerm_32fc_I, expanded<perm>), in_place(kelsConjPerm_64fc_I, expanded<perm>),
    in_place(kelsConjCcs_16sc_I, expanded<ccs>),   in_place(kelsConjCcs_32fc_I, expanded<ccs>),
    in_place(kelsConjCcs_64fc_I, expanded<ccs>),
};

/// CCS has more values than bins times one, so its rows would not know the source's length.
template <class T, class Complex>
void expand_ccs(KelStatus (*function)(const T*, Complex*, int)) {
    kels_test::Random random("CCS");
    for (int len = 1; len <= 140; ++len) {
        const std::size_t values = static_cast<std::size_t>(len) + 2 - static_cast<std::size_t>(len % 2);
        kels_test::GuardedMemory source(values * sizeof(T)), result(static_cast<std::size_t>(len) * sizeof(Complex));
        for (const bool at_end : {true, false}) {
            auto* src = reinterpret_cast<T*>(at_end ? source.end() - values * sizeof(T) : source.begin());
            auto* dst = reinterpret_cast<Complex*>(
                at_end ? result.end() - static_cast<std::size_t>(len) * sizeof(Complex) : result.begin());
            for (std::size_t i = 0; i < values; ++i)
                src[i] = i % 5 == 1 ? std::numeric_limits<T>::lowest() : static_cast<T>(random.below(60000)) - 30000;
            std::vector<Complex> expected(static_cast<std::size_t>(len));
            expand<ccs>(src, expected.data(), len);
            ASSERT_EQ(function(src, dst, len), kelStatusOk);
            ASSERT_EQ(std::memcmp(dst, expected.data(), expected.size() * sizeof(Complex)), 0) << "length " << len;
        }
    }
    T src[4] = {};
    Complex dst[2] = {};
    EXPECT_EQ(function(nullptr, dst, 0), kelStatusNullPtr);
    EXPECT_EQ(function(src, nullptr, 0), kelStatusNullPtr);
    EXPECT_EQ(function(src, dst, 0), kelStatusBadSize);
}

TEST(Spectrum, CcsExpands) {
    expand_ccs(kelsConjCcs_16sc);
    expand_ccs(kelsConjCcs_32fc);
    expand_ccs(kelsConjCcs_64fc);
}

// Products

template <class T>
struct Pair {
    T re, im;
};

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
            const auto bin = complex_product(Pair<long double>{ar, ai}, Pair<long double>{br, bi});
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

const Row products[] = {
    row(kelsMulPack_32f, product<pack>).ulps(1),
    row(kelsMulPack_64f, product<pack>).ulps(2),
    row(kelsMulPack_16s_Sfs, truncated_product<pack>),
    in_place(kelsMulPack_32f_I, product<pack>).ulps(1),
    in_place(kelsMulPack_64f_I, product<pack>).ulps(2),
    in_place(kelsMulPack_16s_ISfs, truncated_product<pack>),
    row(kelsMulPerm_32f, product<perm>).ulps(1),
    row(kelsMulPerm_64f, product<perm>).ulps(2),
    row(kelsMulPerm_16s_Sfs, truncated_product<perm>),
    in_place(kelsMulPerm_32f_I, product<perm>).ulps(1),
    in_place(kelsMulPerm_64f_I, product<perm>).ulps(2),
    in_place(kelsMulPerm_16s_ISfs, truncated_product<perm>),
    in_place(kelsMulPackConj_32f_I, product<pack, -1>).ulps(1),
    in_place(kelsMulPackConj_64f_I, product<pack, -1>).ulps(2),
};

const bool registered = kels_test::add_rows("Spectrum", expansions) &&
                        kels_test::add_rows("Spectrum", expansions_in_place) &&
                        kels_test::add_rows("Spectrum", products);

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
