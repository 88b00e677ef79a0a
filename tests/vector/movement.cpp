#include "kels/movement.h"
#include "support/exact.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using namespace kels_test;

// References move bytes, so that no register changes a NaN.

template <class T>
void move(T& to, const T& from) {
    std::memcpy(&to, &from, sizeof to);
}

enum Order { forward, backward };

template <Order order>
constexpr auto copied = whole([]<class T>(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) move(dst[i], src[order == forward ? i : len - 1 - i]);
});

constexpr auto zeroed = whole([]<class T>(T* dst, int len) {
    for (std::size_t i = 0; i < len * sizeof(T); ++i) reinterpret_cast<unsigned char*>(dst)[i] = 0;
});

constexpr auto filled = whole([]<class T>(T* dst, int len, const T& val) {
    for (int i = 0; i < len; ++i) move(dst[i], val);
});

template <auto part>
constexpr auto part_of = whole([](const auto* src, auto* dst, int len) {
    for (int i = 0; i < len; ++i) move(dst[i], part(src[i]));
});
constexpr auto real_part = [](const auto& z) -> const auto& { return z.re; };
constexpr auto imaginary_part = [](const auto& z) -> const auto& { return z.im; };

constexpr auto both_parts = whole([]<class T, class P>(const T* src, P* re, P* im, int len) {
    for (int i = 0; i < len; ++i) {
        move(re[i], src[i].re);
        move(im[i], src[i].im);
    }
});

constexpr auto joined = whole([]<class P, class T>(const P* re, const P* im, T* dst, int len) {
    for (int i = 0; i < len; ++i) {
        move(dst[i].re, re[i]);
        move(dst[i].im, im[i]);
    }
});

void negate(Kel16s& x) { x = x == -32768 ? 32767 : static_cast<Kel16s>(-x); }

// Little-endian: the sign is the top bit of the last byte.
template <class T>
void negate(T& x) {
    reinterpret_cast<unsigned char*>(&x)[sizeof x - 1] ^= 0x80;
}

template <Order order>
constexpr auto conjugated = whole([]<class T>(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) {
        move(dst[i], src[order == forward ? i : len - 1 - i]);
        negate(dst[i].im);
    }
});

const Rows table = {
    rows(copied<forward>, kelsCopy_8u, kelsCopy_16s, kelsCopy_16sc, kelsCopy_32f, kelsCopy_32fc, kelsCopy_64f,
         kelsCopy_64fc),
    rows(zeroed, kelsZero_8u, kelsZero_16s, kelsZero_16sc, kelsZero_32f, kelsZero_32fc, kelsZero_64f, kelsZero_64fc),
    rows(filled, kelsSet_8u, kelsSet_16s, kelsSet_16sc, kelsSet_32s, kelsSet_32sc, kelsSet_64s, kelsSet_64sc,
         kelsSet_32f, kelsSet_32fc, kelsSet_64f, kelsSet_64fc)
        .lengths({20000}), // beyond a block scheme's switch
    rows(copied<backward>, kelsFlip_8u, kelsFlip_16u, kelsFlip_32f, kelsFlip_64f).disjoint(),
    in_place(copied<backward>, kelsFlip_8u_I, kelsFlip_16u_I, kelsFlip_32f_I, kelsFlip_64f_I),
    rows(part_of<real_part>, kelsReal_16sc, kelsReal_32fc, kelsReal_64fc),
    rows(part_of<imaginary_part>, kelsImag_16sc, kelsImag_32fc, kelsImag_64fc),
    rows(both_parts, kelsCplxToReal_16sc, kelsCplxToReal_32fc, kelsCplxToReal_64fc),
    rows(joined, kelsRealToCplx_16s, kelsRealToCplx_32f, kelsRealToCplx_64f).nullable({0, 1}),
    rows(conjugated<forward>, kelsConj_16sc, kelsConj_32fc, kelsConj_64fc)
        .in_place(kelsConj_16sc_I, kelsConj_32fc_I, kelsConj_64fc_I),
    rows(conjugated<backward>, kelsConjFlip_16sc, kelsConjFlip_32fc, kelsConjFlip_64fc).disjoint(),
};

const bool registered = add_rows("Movement", table);

template <class P, class C>
void join_with_null_sources(KelStatus (*join)(const P*, const P*, C*, int)) {
    for (int len = 1; len <= 70; ++len) {
        std::vector<P> x(len);
        for (int i = 0; i < len; ++i) x[i] = static_cast<P>(i + 1);
        std::vector<C> z(len + 1, C{-7, -7}), with_zeros = z;
        const std::vector<P> zeros(len);
        for (const bool imaginary : {false, true}) {
            const P *first = x.data(), *second = zeros.data();
            if (imaginary) std::swap(first, second);
            ASSERT_EQ(join(first, second, with_zeros.data(), len), kelStatusOk);
            ASSERT_EQ(join(imaginary ? nullptr : first, imaginary ? second : nullptr, z.data(), len), kelStatusOk);
            ASSERT_TRUE(same_bits(z, with_zeros));
        }
    }
    C z{-7, -7};
    P x{};
    EXPECT_EQ(join(nullptr, nullptr, nullptr, 0), kelStatusNullPtr);
    EXPECT_EQ(join(nullptr, nullptr, &z, 0), kelStatusBadSize);
    EXPECT_EQ(join(&x, nullptr, &z, -1), kelStatusBadSize);
    EXPECT_EQ(join(nullptr, nullptr, &z, 1), kelStatusNullPtr);
    EXPECT_EQ(z.re, -7);
    EXPECT_EQ(z.im, -7);
}

TEST(RealToCplx, OneSourceMayBeNull) {
    join_with_null_sources(kelsRealToCplx_16s);
    join_with_null_sources(kelsRealToCplx_32f);
    join_with_null_sources(kelsRealToCplx_64f);
}

} // namespace
