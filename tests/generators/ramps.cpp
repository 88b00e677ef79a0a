// Straight lines and chirps against their rules in extended precision.

#include "kels/ramps.h"
#include "support/allocation_faults.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;
using Real = long double;

template <class T>
T of_line(Real y) {
    constexpr Real most = std::numeric_limits<T>::max(), least = std::numeric_limits<T>::lowest();
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(y);
    } else if constexpr (std::is_unsigned_v<T>) {
        if (y <= 0) return 0;
        return y + 0.5L < most ? static_cast<T>(y + 0.5L) : std::numeric_limits<T>::max();
    } else {
        const Real v = y > 0 ? y + 0.5L : y - 0.5L;
        if (!(v < most)) return std::numeric_limits<T>::max();
        return v <= least ? std::numeric_limits<T>::min() : static_cast<T>(static_cast<double>(v));
    }
}

constexpr auto line = whole([]<class T>(T* dst, int len, Kel32f offset, Kel32f slope) {
    for (int i = 0; i < len; ++i) dst[i] = of_line<T>(static_cast<Real>(i) * slope + offset);
});

constexpr double half_pi = 1.5707963267948966;

template <class T>
T of_wave(Real x) {
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(x);
    else
        return static_cast<T>(static_cast<double>(x < 0 ? x - 0.5L : x + 0.5L));
}

constexpr auto chirp = whole([]<class T>(T* dst, int len, T magn) {
    const Real c = static_cast<Real>(half_pi) / len;
    for (int n = 0; n < len; ++n) dst[n] = of_wave<T>(std::sin(c * n * n) * static_cast<Real>(magn));
    if (len == 1) dst[0] = 0;
});

template <class T>
void stretch(T* dst, int len, T magn) {
    const Real c = static_cast<double>(static_cast<Real>(half_pi) / len);
    std::vector<double> x(len);
    for (int n = 0; n < len; ++n) x[n] = static_cast<double>(std::sin(c * n * n) * static_cast<Real>(magn));
    const auto [low, high] = std::minmax_element(x.begin(), x.end());
    const Real range = static_cast<Real>(*high) - *low;
    const double factor = range > 0 ? static_cast<double>(magn / range) : 0;
    for (int n = 0; n < len; ++n)
        dst[n] = static_cast<T>(static_cast<std::int64_t>((static_cast<Real>(x[n]) - *low) * factor + 0.5L));
    if (len == 1) dst[0] = 0;
}
constexpr auto stretched = whole([](auto* dst, int len, auto magn) { stretch(dst, len, magn); });

Rows line_row(const Rows& r) {
    return r.values(0, {0, -0.4, 254.5, -0.5, 40000, -3e9, 0.5, NAN, HUGE_VAL, -HUGE_VAL, 4.2e9, 0.49999997})
        .values(1, {0, 0.5, -0.5, 1, -1, 0.1, -0.037, 1e6, HUGE_VAL, NAN, 0.25, -1e30});
}

template <class T>
Rows chirp_row(const Rows& r) {
    constexpr double most = std::numeric_limits<T>::max();
    return r.values(0, {0, 1, 2, 100, 101, most, most - 1, std::floor(most / 3)});
}
Rows wave_row(const Rows& r) { return r.ulps(1).values(0, {0, -0.0, 1, 0.1, 1e30, 1e-30, 3, HUGE_VAL, NAN}); }

const Rows table = {
    line_row(rows(line, kelsVectorRamp_8u, kelsVectorRamp_8s, kelsVectorRamp_16u, kelsVectorRamp_16s,
                  kelsVectorRamp_32u, kelsVectorRamp_32s, kelsVectorRamp_32f, kelsVectorRamp_64f))
        .ulps(1),
    chirp_row<Kel8u>(rows(stretched, kelsVectorJaehne_8u)),
    chirp_row<Kel8s>(rows(chirp, kelsVectorJaehne_8s)),
    chirp_row<Kel16u>(rows(stretched, kelsVectorJaehne_16u)),
    chirp_row<Kel16s>(rows(chirp, kelsVectorJaehne_16s)),
    chirp_row<Kel32u>(rows(stretched, kelsVectorJaehne_32u)),
    chirp_row<Kel32s>(rows(chirp, kelsVectorJaehne_32s)),
    wave_row(rows(chirp, kelsVectorJaehne_32f, kelsVectorJaehne_64f)),
};

const bool registered = add_rows("Ramps", table);

TEST(Ramps, LiteralValues) {
    const auto first = [](auto function, Kel32f offset, auto& room) {
        EXPECT_EQ(function(&room, 1, offset, 0), kelStatusOk);
        return room;
    };
    Kel8u byte = 1;
    Kel16s word = 1;
    Kel64f real = 1;
    EXPECT_EQ(first(kelsVectorRamp_8u, 254.5F, byte), 255);
    EXPECT_EQ(first(kelsVectorRamp_8u, -0.4F, byte), 0);
    EXPECT_EQ(first(kelsVectorRamp_8u, 0.4F, byte), 0);
    EXPECT_EQ(first(kelsVectorRamp_8u, NAN, byte), 255);
    EXPECT_EQ(first(kelsVectorRamp_16s, -0.5F, word), -1);
    EXPECT_EQ(first(kelsVectorRamp_16s, 0.4F, word), 0);
    EXPECT_EQ(first(kelsVectorRamp_16s, 40000.0F, word), 32767);
    EXPECT_EQ(first(kelsVectorRamp_64f, 0.1F, real), static_cast<Kel64f>(0.1F));
}

// A line starts at a negative zero when neither of its parts is a positive one.
TEST(Ramps, NegativeZeros) {
    const auto expect = [](auto function, auto sample) {
        decltype(sample) d[20];
        ASSERT_EQ(function(d, 20, -0.0F, -1.0F), kelStatusOk);
        EXPECT_TRUE(std::signbit(d[0]));
        ASSERT_EQ(function(d, 20, -0.0F, 1.0F), kelStatusOk);
        EXPECT_FALSE(std::signbit(d[0]));
        ASSERT_EQ(function(d, 20, 0.0F, -1.0F), kelStatusOk);
        EXPECT_FALSE(std::signbit(d[0]));
        ASSERT_EQ(function(d, 20, -0.0F, -0.0F), kelStatusOk);
        EXPECT_TRUE(d[19] == 0 && std::signbit(d[19]));
        ASSERT_EQ(function(d, 20, 3.0F, -1.0F), kelStatusOk);
        EXPECT_TRUE(d[3] == 0 && !std::signbit(d[3]));
    };
    expect(kelsVectorRamp_32f, Kel32f{});
    expect(kelsVectorRamp_64f, Kel64f{});
}

TEST(Chirps, LiteralValues) {
    Kel16s word = 7;
    EXPECT_EQ(kelsVectorJaehne_16s(&word, 1, -1), kelStatusNegMagnitude);
    EXPECT_EQ(kelsVectorJaehne_16s(&word, 0, -1), kelStatusBadSize);
    EXPECT_EQ(kelsVectorJaehne_16s(nullptr, 0, -1), kelStatusNullPtr);
    EXPECT_EQ(word, 7);
    Kel32f single = 7;
    EXPECT_EQ(kelsVectorJaehne_32f(&single, 1, NAN), kelStatusOk);
    EXPECT_EQ(single, 0);
    EXPECT_EQ(kelsVectorJaehne_32f(&single, 1, -1e-40F), kelStatusNegMagnitude);
    Kel8u bytes[2];
    ASSERT_EQ(kelsVectorJaehne_8u(bytes, 2, 100), kelStatusOk);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 100);
    Kel32u longs[300];
    ASSERT_EQ(kelsVectorJaehne_32u(longs, 300, 0xFFFFFFFF), kelStatusOk);
    EXPECT_EQ(*std::min_element(longs, longs + 300), 0U);
    EXPECT_EQ(*std::max_element(longs, longs + 300), 0xFFFFFFFF);
}

TEST(Chirps, OutOfMemory) {
    const auto expect = [](auto function, auto magn) {
        std::vector<decltype(magn)> dst(100, 7);
        for_each_allocation_failure([&] {
            const KelStatus status = function(dst.data(), 100, magn);
            EXPECT_TRUE(status == kelStatusOk || dst[99] == 7);
            return status;
        });
        const long before = allocations();
        EXPECT_EQ(function(dst.data(), 1, magn), kelStatusOk);
        EXPECT_EQ(allocations(), before);
    };
    expect(kelsVectorJaehne_8u, Kel8u{200});
    expect(kelsVectorJaehne_16u, Kel16u{200});
    expect(kelsVectorJaehne_32u, Kel32u{200});
}

// Angles beyond those that are reduced by a few doubles.
TEST(Chirps, LongOnes) {
    constexpr int len = 2000000;
    const Real c = static_cast<Real>(half_pi) / len;
    const auto expect = [=]<class T>(auto function, T magn) {
        std::vector<T> x(len);
        ASSERT_EQ(function(x.data(), len, magn), kelStatusOk);
        int others = 0;
        for (int n = 0; n < len; n += 97) {
            const Real want = std::sin(c * n * n) * static_cast<Real>(magn);
            if constexpr (std::is_integral_v<T>) {
                ASSERT_EQ(x[n], of_wave<T>(want)) << n;
            } else {
                ASSERT_LE(std::fabs(x[n] - want), std::fabs(want) * std::numeric_limits<T>::epsilon()) << n;
                others += x[n] != static_cast<T>(want);
            }
        }
        if constexpr (sizeof(T) == 4) {
            EXPECT_LE(others, len / 97 / 1000);
        }
    };
    expect(kelsVectorJaehne_64f, Kel64f{1});
    expect(kelsVectorJaehne_32f, Kel32f{1});
    expect(kelsVectorJaehne_16s, Kel16s{32767});
    expect(kelsVectorJaehne_8s, Kel8s{127});
    expect(kelsVectorJaehne_32s, Kel32s{2147483647});
}

TEST(Chirps, LongStretchedOnes) {
    constexpr int len = 1200000;
    std::vector<Kel16u> x(len);
    ASSERT_EQ(kelsVectorJaehne_16u(x.data(), len, 65535), kelStatusOk);
    std::vector<Kel16u> want(len);
    stretch(want.data(), len, Kel16u{65535});
    ASSERT_EQ(x, want);
}

} // namespace
