// Tones and triangles against their formulas in extended precision; fixed point, to the bit, against its rule.

#include "kels/tones.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;
using Real = long double;

constexpr double pi = 3.141592653589793, two_pi = 6.283185307179586;

/// Rounds exact values, or cuts them to integers.
template <class T>
void store(T* dst, const std::vector<Real>& exact) {
    auto next = exact.begin();
    for (T* end = dst + exact.size() / type_of<T>().parts; dst != end; ++dst)
        if constexpr (ComplexSample<T>) {
            dst->re = static_cast<decltype(T::re)>(*next++);
            dst->im = static_cast<decltype(T::im)>(*next++);
        } else {
            *dst = static_cast<T>(*next++);
        }
}

template <class P>
P next_phase(P phase, P frequency, int len) {
    Real q = frequency * static_cast<Real>(two_pi) * len + phase;
    q = q + std::floor(0.15915494309189535 * q) * -static_cast<Real>(two_pi);
    if (q < 0 || q >= two_pi) q = 0;
    return static_cast<P>(q);
}

/// x n modulo 2 pi, the product in pieces that are exact.
Real turned(Real x, int n) {
    constexpr Real low_of_two_pi = 2.4492935982947064e-16L - 5.9895396194366794e-33L;
    const Real upper = static_cast<Real>(static_cast<float>(x)), lower = x - upper;
    const Real a = upper * n, b = lower * n; // a is exact, b nearly
    const Real turns = std::nearbyint(a / two_pi);
    return ((a - turns * static_cast<Real>(static_cast<float>(two_pi))) -
            turns * (two_pi - static_cast<Real>(static_cast<float>(two_pi)))) -
           turns * low_of_two_pi + b;
}

template <class T, class P>
std::vector<Real> tone_model(int len, Real magn, P frequency, P phase, int from = 0) {
    std::vector<Real> y;
    const Real step = frequency * static_cast<Real>(two_pi);
    for (int n = from; n < len; ++n) {
        const Real angle = turned(step, n) + phase;
        y.push_back(magn * std::cos(angle));
        if (type_of<T>().parts == 2) y.push_back(magn * std::sin(angle));
    }
    return y;
}

/// The phase is the sum of two numbers: a steep side enlarges what one would lose.
Real triangle_at(int n, Real magn, Real frequency, Real asym, Real phase) {
    const Real h1 = pi + asym, h2 = pi - asym, periods = frequency * n;
    const Real part = periods - std::floor(periods), turns = phase / two_pi, sum = part + turns;
    const Real lost = (std::max(part, turns) - sum) + std::min(part, turns) + std::fma(frequency, Real(n), -periods) +
                      std::fma(-turns, Real(two_pi), phase) / two_pi;
    const Real rest = sum - std::floor(sum), angle = rest * two_pi;
    const Real low = std::fma(rest, Real(two_pi), -angle) + lost * two_pi;
    return angle < h1 ? magn * (((h1 - 2 * angle) - 2 * low) / h1) : magn * ((2 * (angle - h1) - h2 + 2 * low) / h2);
}

// Fixed point

struct Chain {
    int p, q;
    void step(int c2, int s2) {
        const auto rounded = [](int x) { return std::clamp((x + 8192) >> 14, -32768, 32767); };
        const int x = p * c2 - q * s2, y = p * s2 + q * c2;
        p = rounded(x);
        q = rounded(y);
    }
};

int cut(Real x) { return static_cast<int>(static_cast<double>(x)); }

/// Real and imaginary parts by turns.
std::vector<int> block_model(int start, int n, Real magn, Kel32f frequency, Kel32f from) {
    const Real step = frequency * static_cast<Real>(two_pi), phase = step * start + from;
    const Real a0 = magn * std::cos(phase), b0 = magn * std::sin(phase), s = std::sin(step), c = std::cos(step);
    const Real a1 = -b0 * s + c * a0, b1 = c * b0 + s * a0;
    std::vector<int> y = {cut(a0), cut(b0), cut(a1), cut(b1)};
    int scale = 1, shift = 0;
    while (scale * magn < 16384) scale *= 2, ++shift;
    Chain chains[] = {{cut(scale * a0), cut(scale * b0)}, {cut(scale * a1), cut(scale * b1)}};
    const int c2 = cut(16384 * (c * c - s * s)), s2 = cut(16384 * (c * s + s * c));
    for (int i = 2; i < n; ++i) {
        Chain& chain = chains[i % 2];
        chain.step(c2, s2);
        y.push_back((chain.p + scale / 2) >> shift);
        y.push_back((chain.q + scale / 2) >> shift);
    }
    y.resize(2 * n);
    return y;
}

// Rows

constexpr auto tone =
    whole([]<class T, class P>(const P* start, T* dst, P* after, int len, auto magn, P frequency, int hint = 0) {
        std::vector<Real> y;
        if (hint == 0) y = tone_model<T>(len, magn, frequency, *start);
        for (int from = 0; hint == 1 && from < len; from += 1024) {
            const auto block = block_model(from, std::min(len - from, 1024), magn, frequency, *start);
            for (std::size_t i = 0; i < block.size(); i += 3 - type_of<T>().parts) y.push_back(block[i]);
        }
        store(dst, y);
        *after = next_phase(*start, frequency, len);
    });

constexpr auto triangle =
    whole([]<class T, class P>(const P* start, T* dst, P* after, int len, auto magn, P frequency, P asym) {
        const Real phase = *start, skew = asym, moved = phase + ((pi + skew) + two_pi) / 2;
        std::vector<Real> y;
        for (int n = 0; n < len; ++n) {
            y.push_back(triangle_at(n, magn, frequency, skew, phase));
            if (type_of<T>().parts == 2) y.push_back(triangle_at(n, magn, frequency, skew, moved));
        }
        store(dst, y);
        *after = next_phase(*start, frequency, len);
    });

Rows waves(const Rows& rows, std::initializer_list<double> magnitudes) {
    return rows.values(0, magnitudes).values_first().any_modes().driven_elsewhere();
}

/// Frequencies lie below the limit.
Rows tones(const Rows& rows, double limit, std::initializer_list<double> magnitudes = {30000}) {
    return waves(rows, magnitudes)
        .values(1, {0, 0.25, 0.0123, 0.4999, 0.0117, 0.3333})
        .values(2, {0, 1.5, 6.283185, 2.5, 0.7})
        .refuses(0, {0, -1}, kelStatusToneMagn)
        .refuses(1, {-1e-30, limit, NAN}, kelStatusToneFreq)
        .refuses(2, {-1, two_pi, NAN}, kelStatusTonePhase);
}
/// Those of fixed point have blocks of 1024 samples.
Rows tones_of_integers(const Rows& rows, double limit) {
    return tones(rows, limit, {1, 2, 100, 8191, 16383, 16384, 20000})
        .values(3, {0, 1})
        .lengths({63, 1023, 1024, 1025, 1026, 1027, 2048, 5000, 16384, 16385, 40001});
}
Rows triangles(const Rows& rows) {
    return waves(rows, {30000})
        .values(1, {0.0, 0.0123, 0.4999, 0.127})
        .values(2, {0.0, 1.0, -2.5, 3.1, -3.14, -3.1415})
        .values(3, {2, 0.1, 6.283185})
        .refuses(0, {0, -1}, kelStatusTriangleMagn)
        .refuses(1, {-1, 0.5, NAN}, kelStatusTriangleFreq)
        .refuses(2, {4, -3.15, NAN}, kelStatusTriangleAsym)
        .refuses(3, {-1, two_pi, NAN}, kelStatusTrianglePhase);
}
/// Of the magnitude 30000.
Rows within(const Rows& rows, double units) { return rows.slack(30000 * units).ulps(0); }

const Rows table = {
    tones_of_integers(rows(tone, kelsTone_Direct_16s), 0.5),
    tones_of_integers(rows(tone, kelsTone_Direct_16sc), 1),
    within({tones(rows(tone, kelsTone_Direct_32f), 0.5), tones(rows(tone, kelsTone_Direct_32fc), 1),
            triangles(rows(triangle, kelsTriangle_Direct_32f, kelsTriangle_Direct_32fc))},
           0x1p-23),
    within({tones(rows(tone, kelsTone_Direct_64f), 0.5), tones(rows(tone, kelsTone_Direct_64fc), 1),
            triangles(rows(triangle, kelsTriangle_Direct_64f, kelsTriangle_Direct_64fc))},
           0x1p-51),
    triangles(rows(triangle, kelsTriangle_Direct_16s, kelsTriangle_Direct_16sc)),
};
const bool registered = add_rows("Tones", table);

// 10^6 samples, without drift.
TEST(Tones, LongOnes) {
    const auto expect = []<class T, class P>(KelStatus (*function)(T*, int, P, P, P*), P unit) {
        constexpr int len = 1000003, last = 20000;
        std::vector<T> dst(len);
        P phase = 0.7F;
        ASSERT_EQ(function(dst.data(), len, 1, 0.123456789F, &phase), kelStatusOk);
        const auto* part = reinterpret_cast<const P*>(&dst[len - last]);
        for (const Real want : tone_model<T>(len, 1, P{0.123456789F}, P{0.7F}, len - last))
            ASSERT_LE(std::fabs(*part++ - want), unit);
    };
    expect(kelsTone_Direct_32f, 0x1p-23F);
    expect(kelsTone_Direct_32fc, 0x1p-23F);
    expect(kelsTone_Direct_64f, 0x1p-51);
    expect(kelsTone_Direct_64fc, 0x1p-51);
}

// A constant, of the phase alone.
TEST(Tones, WithoutFrequency) {
    Kel32f dst[100], phase = 1.5F;
    ASSERT_EQ(kelsTone_Direct_32f(dst, 100, 2, 0, &phase), kelStatusOk);
    for (const Kel32f x : dst) EXPECT_EQ(x, static_cast<Kel32f>(2 * std::cos(1.5L)));
    EXPECT_EQ(phase, 1.5F);
}

TEST(Tones, ExactAtQuarters) {
    Kel16s dst[400];
    Kel32f phase = 0;
    ASSERT_EQ(kelsTone_Direct_16s(dst, 400, 32767, 0.25F, &phase, 0), kelStatusOk);
    for (int n = 0; n < 400; ++n) ASSERT_EQ(dst[n], n % 2 != 0 ? 0 : n % 4 == 0 ? 32767 : -32767) << n;
}

// Triangles

// Either leg is jumped over.
TEST(Triangles, Sawtooths) {
    for (const Kel64f asym : {-pi, std::nextafter(-pi, 0.0), std::nextafter(pi, 0.0), 3.1415, -3.1415}) {
        constexpr int len = 5000;
        std::vector<Kel64f> dst(len);
        Kel64f phase = 0.1;
        ASSERT_EQ(kelsTriangle_Direct_64f(dst.data(), len, 1, 0.0371, asym, &phase), kelStatusOk);
        for (int n = 0; n < len; ++n)
            ASSERT_LE(std::fabs(dst[n] - triangle_at(n, 1, 0.0371, asym, 0.1)), 2e-12) << n << ", " << asym;
    }
}

// The top belongs to the wave, as long as it is hit: it is the step beyond that jumps. Only a start is at the bottom.
TEST(Triangles, SawtoothHitsItsTop) {
    std::vector<Kel64f> dst(100);
    Kel64f phase = 0;
    ASSERT_EQ(kelsTriangle_Direct_64f(dst.data(), 100, 3, 0.125, -pi, &phase), kelStatusOk);
    for (int n = 0; n < 100; ++n) EXPECT_EQ(dst[n], n == 0 ? -3 : 3 - (104 - n) % 8 * 0.75) << n;
}

// Values that are whole are not cut to the ones below.
TEST(Triangles, WholeValues) {
    constexpr int period = 32, top = 30000, len = 100 * period;
    std::vector<Kel16s> re(len);
    std::vector<Kel16sc> both(len);
    Kel32f phases[] = {0, 0};
    ASSERT_EQ(kelsTriangle_Direct_16s(re.data(), len, top, 1.0F / period, 0, phases), kelStatusOk);
    ASSERT_EQ(kelsTriangle_Direct_16sc(both.data(), len, top, 1.0F / period, 0, phases + 1), kelStatusOk);
    const auto value = [](int n) { return std::abs(n % period * (4 * top / period) - 2 * top) - top; };
    for (int n = 0; n < len; ++n) {
        ASSERT_EQ(re[n], value(n)) << n;
        ASSERT_EQ(both[n].re, value(n)) << n;
        ASSERT_EQ(both[n].im, value(n + period * 3 / 4)) << n;
    }
}

// 10^6 samples without drift, slow ones too, whose frequency is less than any last place of a phase.
TEST(Triangles, LongOnes) {
    constexpr int len = 1000003;
    std::vector<Kel32f> dst(len);
    for (const Kel32f frequency : {0.123456789F, 0.4999F, 3e-7F, 7e-13F, 1e-30F})
        for (const Kel32f asym : {0.0F, 1.0F, -3.1F, 3.13F}) {
            Kel32f phase = 0.7F;
            ASSERT_EQ(kelsTriangle_Direct_32f(dst.data(), len, 2, frequency, asym, &phase), kelStatusOk);
            int others = 0;
            for (int n = 0; n < len; n += 7) {
                const Real want = triangle_at(n, 2, frequency, asym, 0.7F);
                ASSERT_LE(std::fabs(dst[n] - want), 0x1p-22L) << n << ", " << frequency << ", " << asym;
                others += dst[n] != static_cast<Kel32f>(want);
            }
            EXPECT_LE(others, len / 7 / 1000) << frequency << ", " << asym;
        }
}

TEST(Waves, EndsOfTheirParameters) {
    Kel32f x = 0, phase = 0;
    EXPECT_EQ(kelsTone_Direct_32f(&x, 1, NAN, 0, &phase), kelStatusOk);
    EXPECT_TRUE(std::isnan(x));
    EXPECT_EQ(kelsTone_Direct_32f(&x, 1, 1, std::nextafter(0.5F, 0.0F), &phase), kelStatusOk);
    phase = std::nextafter(static_cast<Kel32f>(two_pi), 0.0F);
    EXPECT_EQ(kelsTone_Direct_32f(&x, 1, 1, 0, &phase), kelStatusOk);
    Kel64f y = 0, from = 0;
    EXPECT_EQ(kelsTriangle_Direct_64f(&y, 1, NAN, 0, 0, &from), kelStatusTriangleMagn);
    EXPECT_EQ(kelsTriangle_Direct_64f(&y, 1, 1, 0, pi, &from), kelStatusTriangleAsym);
    EXPECT_EQ(kelsTriangle_Direct_64f(&y, 1, 1, 0, -pi, &from), kelStatusOk);
}

} // namespace
