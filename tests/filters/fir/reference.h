// The defining sums of FIR filters in extended precision, and how far from them a result may lie.
#pragma once

#include "filters/fir/families.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace fir_test {

/// A sum and the size of its terms; of integer taps the wrapping one.
struct Sum {
    long double part[2] = {0, 0};
    long double magnitude = 0;
    std::uint32_t wrapped[2] = {0, 0};

    template <class Taps, class Sample>
    void add(const Taps& h, const Sample& x) {
        if constexpr (parts<Sample> == 1) {
            if constexpr (std::is_integral_v<Taps>) {
                wrapped[0] += static_cast<std::uint32_t>(h) * static_cast<std::uint32_t>(x);
            } else {
                const long double term = static_cast<long double>(h) * x;
                part[0] += term;
                magnitude += std::fabs(term);
            }
        } else if constexpr (std::is_integral_v<Part<Taps>>) {
            const std::uint32_t hr(h.re), hi(h.im), xr(x.re), xi(x.im);
            wrapped[0] += hr * xr - hi * xi;
            wrapped[1] += hr * xi + hi * xr;
        } else {
            const long double hr = h.re, hi = h.im, xr = x.re, xi = x.im;
            part[0] += hr * xr - hi * xi;
            part[1] += hr * xi + hi * xr;
            magnitude += std::sqrt((hr * hr + hi * hi) * (xr * xr + xi * xi));
        }
    }
};

/// Every output of a stream that follows `line` (newest first): over all n, the tap at m down + downPhase - upPhase -
/// n up times sample n.
template <class Taps, class Sample>
std::vector<Sum> defining_sums(const std::vector<Taps>& taps, const std::vector<Sample>& line,
                               const std::vector<Sample>& x, const Rates& r = {}) {
    const auto outputs = static_cast<std::ptrdiff_t>(x.size()) / r.down * r.up;
    std::vector<Sum> sums(static_cast<std::size_t>(outputs));
    for (std::ptrdiff_t m = 0; m < outputs; ++m) {
        const std::ptrdiff_t tick = m * r.down + r.downPhase - r.upPhase;
        const std::ptrdiff_t newest = (tick + r.up) / r.up - 1; // rounded down
        std::ptrdiff_t k = tick - newest * r.up;
        for (std::ptrdiff_t n = newest; k < static_cast<std::ptrdiff_t>(taps.size()); --n, k += r.up)
            sums[static_cast<std::size_t>(m)].add(taps[static_cast<std::size_t>(k)],
                                                  n >= 0 ? x[static_cast<std::size_t>(n)]
                                                         : line[static_cast<std::size_t>(-1 - n)]);
    }
    return sums;
}

/// 2^-factor, the factor modulo 128.
inline long double scale_of(int factor) { return std::ldexp(1.0L, -(factor % 128)); }

/// A wrapped sum shifted left in its 32 bits, or right with ties to even, then saturated.
template <class R>
R shifted(std::uint32_t sum, int left) {
    std::int32_t t = static_cast<std::int32_t>(sum);
    left = std::clamp(left, -31, 31);
    if (left > 0) t = static_cast<std::int32_t>(sum << left);
    if (left < 0) {
        const auto odd = static_cast<std::uint32_t>(t >> -left) & 1U;
        t = static_cast<std::int32_t>(sum + (1U << (-left - 1)) - 1 + odd) >> -left;
    }
    return static_cast<R>(std::clamp<std::int32_t>(t, std::numeric_limits<R>::min(), std::numeric_limits<R>::max()));
}

/// Checks results of a family.
template <class F>
struct Comparison {
    using Sample = typename F::Sample;
    using R = Part<Sample>;
    int scaleFactor = 0, tapsFactor = 0;
    int bits_of_doubles = -51; ///< of the sum of the terms' magnitudes, the most that a direct sum is off
    Accuracy direct;

    void check(const Sample& got, const Sum& wanted, bool transformed = false) {
        const long double scale = F::integer_samples ? scale_of(scaleFactor) : 1;
        const long double noise = std::is_same_v<R, Kel32f> ? 0 : std::ldexp(wanted.magnitude * scale, bits_of_doubles);
        for (int i = 0; i < parts<Sample>; ++i) {
            const R value = reinterpret_cast<const R*>(&got)[i];
            if constexpr (F::integer_taps)
                ASSERT_EQ(value, shifted<R>(wanted.wrapped[i], tapsFactor - scaleFactor));
            else if (transformed)
                check_transformed(value, wanted.part[i] * scale, wanted.magnitude, scale);
            else
                direct.check(value, wanted.part[i] * scale, noise);
        }
    }

    static long double rounding([[maybe_unused]] R nearest) {
        if constexpr (F::integer_samples)
            return 0.5L;
        else
            return kels_test::ulp(nearest);
    }
    /// The level of a block of samples, not the sum alone, makes the noise of transforms.
    static void check_transformed(R value, long double exact, long double magnitude, long double scale) {
        using Limits = std::numeric_limits<R>;
        constexpr bool integer = F::integer_samples;
        const long double level = magnitude + (integer ? Limits::max() : 1);
        const long double noise = 16 * std::numeric_limits<Part<typename F::Taps>>::epsilon() * level * scale;
        const long double nearest = integer ? std::clamp<long double>(exact, Limits::min(), Limits::max()) : exact;
        ASSERT_LE(std::fabs(value - nearest), noise + rounding(static_cast<R>(nearest))) << value;
    }
};

} // namespace fir_test
