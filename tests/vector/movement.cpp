#include "kels/movement.h"
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

constexpr auto copied = whole([]<class T>(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) move(dst[i], src[i]);
});

constexpr auto zeroed = whole([]<class T>(T* dst, int len) {
    for (std::size_t i = 0; i < len * sizeof(T); ++i) reinterpret_cast<unsigned char*>(dst)[i] = 0;
});

constexpr auto filled = whole([]<class T>(T* dst, int len, const T& val) {
    for (int i = 0; i < len; ++i) move(dst[i], val);
});

constexpr auto reversed = whole([]<class T>(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) move(dst[i], src[len - 1 - i]);
});

constexpr auto real_part = whole([]<class T, class P>(const T* src, P* dst, int len) {
    for (int i = 0; i < len; ++i) move(dst[i], src[i].re);
});

constexpr auto imaginary_part = whole([]<class T, class P>(const T* src, P* dst, int len) {
    for (int i = 0; i < len; ++i) move(dst[i], src[i].im);
});

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

constexpr auto conjugated = whole([]<class T>(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) {
        move(dst[i], src[i]);
        negate(dst[i].im);
    }
});

constexpr auto conjugated_reversed = whole([]<class T>(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) {
        move(dst[i], src[len - 1 - i]);
        negate(dst[i].im);
    }
});

const Rows table = {
    rows(copied, kelsCopy_8u, kelsCopy_16s, kelsCopy_16sc, kelsCopy_32f, kelsCopy_32fc, kelsCopy_64f, kelsCopy_64fc),
    rows(zeroed, kelsZero_8u, kelsZero_16s, kelsZero_16sc, kelsZero_32f, kelsZero_32fc, kelsZero_64f, kelsZero_64fc),
    rows(filled, kelsSet_8u, kelsSet_16s, kelsSet_16sc, kelsSet_32s, kelsSet_32sc, kelsSet_64s, kelsSet_64sc,
         kelsSet_32f, kelsSet_32fc, kelsSet_64f, kelsSet_64fc),
    rows(reversed, kelsFlip_8u, kelsFlip_16u, kelsFlip_32f, kelsFlip_64f).disjoint(),
    in_place(reversed, kelsFlip_8u_I, kelsFlip_16u_I, kelsFlip_32f_I, kelsFlip_64f_I),
    rows(real_part, kelsReal_16sc, kelsReal_32fc, kelsReal_64fc),
    rows(imaginary_part, kelsImag_16sc, kelsImag_32fc, kelsImag_64fc),
    rows(both_parts, kelsCplxToReal_16sc, kelsCplxToReal_32fc, kelsCplxToReal_64fc),
    rows(joined, kelsRealToCplx_16s, kelsRealToCplx_32f, kelsRealToCplx_64f).nullable_sources(),
    rows(conjugated, kelsConj_16sc, kelsConj_32fc, kelsConj_64fc)
        .in_place(kelsConj_16sc_I, kelsConj_32fc_I, kelsConj_64fc_I),
    rows(conjugated_reversed, kelsConjFlip_16sc, kelsConjFlip_32fc, kelsConjFlip_64fc).disjoint(),
};

const bool registered = add_rows("Movement", table);

template <class P, class C>
void join_with_null_sources(KelStatus (*join)(const P*, const P*, C*, int)) {
    for (int len = 1; len <= 70; ++len) {
        std::vector<P> x(len);
        for (int i = 0; i < len; ++i) x[i] = static_cast<P>(i + 1);
        std::vector<C> z(len + 1, C{-7, -7});
        ASSERT_EQ(join(x.data(), nullptr, z.data(), len), kelStatusOk);
        for (int i = 0; i < len; ++i) {
            ASSERT_EQ(z[i].re, x[i]);
            ASSERT_TRUE(z[i].im == 0 && !std::signbit(static_cast<double>(z[i].im)));
        }
        ASSERT_EQ(join(nullptr, x.data(), z.data(), len), kelStatusOk);
        for (int i = 0; i < len; ++i) {
            ASSERT_EQ(z[i].im, x[i]);
            ASSERT_TRUE(z[i].re == 0 && !std::signbit(static_cast<double>(z[i].re)));
        }
        ASSERT_EQ(z[len].re, -7);
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

TEST(Conj, IntegersSaturate) {
    Kel16sc z[] = {{1, -32768}, {1, 2}, {-32768, 32767}, {5, 0}};
    ASSERT_EQ(kelsConj_16sc_I(z, 4), kelStatusOk);
    const Kel16sc want[] = {{1, 32767}, {1, -2}, {-32768, -32767}, {5, 0}};
    EXPECT_EQ(std::memcmp(z, want, sizeof z), 0);
}

TEST(Conj, ZerosAndInfinitiesChangeSign) {
    Kel64fc z[] = {{0.0, 0.0}, {0.0, -0.0}, {1.0, HUGE_VAL}};
    ASSERT_EQ(kelsConj_64fc_I(z, 3), kelStatusOk);
    EXPECT_TRUE(std::signbit(z[0].im) && !std::signbit(z[0].re));
    EXPECT_FALSE(std::signbit(z[1].im));
    EXPECT_EQ(z[2].im, -HUGE_VAL);
}

TEST(Flip, MiddleOfAnOddLengthStays) {
    Kel32f x[] = {1, 2, 3, 4, 5};
    ASSERT_EQ(kelsFlip_32f_I(x, 5), kelStatusOk);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(x[i], 5 - i);
}

// Longer than any block scheme's switch, and large enough for the wide stores to run unevenly.
TEST(Set, LongVectorsAtEveryAlignment) {
    constexpr int len = 20000;
    std::vector<Kel64fc> memory(len + 8);
    const Kel64fc val{1.5, -2.5};
    for (int offset = 0; offset < 8; ++offset) {
        std::memset(static_cast<void*>(memory.data()), 0, memory.size() * sizeof val);
        auto* dst = reinterpret_cast<Kel64fc*>(reinterpret_cast<Kel64f*>(memory.data()) + offset);
        ASSERT_EQ(kelsSet_64fc(val, dst, len), kelStatusOk);
        for (int i = 0; i < len; ++i) ASSERT_TRUE(dst[i].re == val.re && dst[i].im == val.im) << i;
    }
}

} // namespace
