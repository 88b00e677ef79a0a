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

constexpr auto stretched = whole([]<class T>(T* dst, int len, T magn) {
    const Real c = static_cast<double>(static_cast<Real>(half_pi) / len);
    std::vector<double> x(len);
    for (int n = 0; n < len; ++n) x[n] = static_cast<double>(std::sin(c * n * n) * static_cast<Real>(magn));
    const auto [low, high] = std::minmax_element(x.begin(), x.end());
    const Real range = static_cast<Real>(*high) - *low;
    const double factor = range > 0 ? static_cast<double>(magn / range) : 0;
    for (int n = 0; n < len; ++n)
        dst[n] = static_cast<T>(static_cast<std::int64_t>((static_cast<Real>(x[n]) - *low) * factor + 0.5L));
    if (len == 1) dst[0] = 0;
});

/// Of chirps so long the angles are beyond those that are reduced by a few doubles.
constexpr int beyond_small_angles = 700005;

template <class T>
Rows chirp_row(KelStatus (*function)(T*, int, T)) {
    constexpr double most = std::numeric_limits<T>::max();
    const Rows row = std::is_signed_v<T> ? Rows(rows(chirp, function)).refuses(0, {-1, -most}, kelStatusNegMagnitude)
                                         : rows(stretched, function);
    return row.values(0, {0, 1, 2, 100, 101, most, most - 1, std::floor(most / 3)}).lengths({beyond_small_angles});
}

const Rows table = {
    rows(line, kelsVectorRamp_8u, kelsVectorRamp_8s, kelsVectorRamp_16u, kelsVectorRamp_16s, kelsVectorRamp_32u,
         kelsVectorRamp_32s, kelsVectorRamp_32f, kelsVectorRamp_64f)
        .values(0, {0, -0.4, 254.5, -0.5, 40000, -3e9, 0.5, NAN, HUGE_VAL, -HUGE_VAL, 4.2e9, 0.49999997})
        .values(1, {0, 0.5, -0.5, 1, -1, 0.1, -0.037, 1e6, HUGE_VAL, NAN, 0.25, -1e30})
        .ulps(1),
    chirp_row(kelsVectorJaehne_8u),
    chirp_row(kelsVectorJaehne_8s),
    chirp_row(kelsVectorJaehne_16u),
    chirp_row(kelsVectorJaehne_16s),
    chirp_row(kelsVectorJaehne_32u),
    chirp_row(kelsVectorJaehne_32s),
    rows(chirp, kelsVectorJaehne_32f, kelsVectorJaehne_64f)
        .values(0, {0, -0.0, 1, 0.1, 1e30, 1e-30, 3, HUGE_VAL, NAN})
        .refuses(0, {-1e-40, -1}, kelStatusNegMagnitude)
        .lengths({beyond_small_angles})
        .ulps(1),
};

// A line starts at a negative zero when neither of its parts is a positive one.
const Rows signs_of_zeros =
    rows(line, kelsVectorRamp_32f, kelsVectorRamp_64f).values(0, {-0.0, 0, 3}).values(1, {-1, 1, -0.0, 0});

const bool registered = add_rows("Ramps", table) && add_rows("SignsOfZeros", signs_of_zeros.driven_elsewhere());

// The last integers below the top, from lines that no double holds.
TEST(Ramps, JustBelowTheTop) {
    const auto last = [](auto function, Kel32f offset, Kel32f slope, int len, auto below) {
        std::vector<decltype(below)> d(static_cast<std::size_t>(len));
        EXPECT_EQ(function(d.data(), len, offset, slope), kelStatusOk);
        EXPECT_EQ(d.back(), below);
    };
    last(kelsVectorRamp_8u, 254.5F, -1e-16F, 2, Kel8u{254});
    last(kelsVectorRamp_16u, 65534.5F, -1e-13F, 20, Kel16u{65534});
    last(kelsVectorRamp_32u, 0x1p32F, -0.3F, 6, Kel32u{4294967294});
    last(kelsVectorRamp_8u, 254.5F, -1e-20F, 2, Kel8u{255});
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

} // namespace
