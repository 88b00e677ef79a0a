// Tones and triangles against their formulas in extended precision; fixed point, to the bit, against its rule.

#include "kels/tones.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/guarded_array.h"
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

constexpr double pi = 3.141592653589793, two_pi = 6.283185307179586;

template <class T>
struct PartsOf {
    using Part = T;
    static constexpr int count = 1;
};
template <ComplexSample T>
struct PartsOf<T> {
    using Part = decltype(T::re);
    static constexpr int count = 2;
};

template <class T>
const auto* parts_of(const T* p) {
    return reinterpret_cast<const typename PartsOf<T>::Part*>(p);
}

/// Exact values, of which `got` must be the nearest within a bound, or the integers cut from them.
template <class T>
void expect_near(const std::vector<T>& got, const std::vector<Real>& want, Real magn) {
    using P = typename PartsOf<T>::Part;
    for (std::size_t i = 0; i < want.size(); ++i) {
        const P x = parts_of(got.data())[i];
        if constexpr (std::is_integral_v<P>) {
            // Beside an integer either is right.
            const Real beside = 0x1p-40L * magn;
            ASSERT_GE(x, std::trunc(want[i] - beside)) << i;
            ASSERT_LE(x, std::trunc(want[i] + beside)) << i;
        } else {
            const Real ulp = magn * std::numeric_limits<P>::epsilon();
            ASSERT_LE(std::fabs(x - want[i]), (sizeof(P) == 8 ? 2 : 1) * ulp) << i;
        }
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
        if (PartsOf<T>::count == 2) y.push_back(magn * std::sin(angle));
    }
    return y;
}

/// By incremental addition.
class TriangleModel {
public:
    TriangleModel(Real magn, Real frequency, Real asym, Real phase)
        : top(magn), h1(pi + asym), h2(pi - asym), a1(1 / h1), a2(1 / h2) {
        const Real travel = 12.566370614359172 * magn, gain = frequency * travel;
        falling = -gain * a1;
        rising = gain * a2;
        period_falling = travel * a1;
        period_rising = travel * a2;
        const bool falls = h1 > phase;
        x = falls ? top * (1 + a1 * (-2 * phase)) : top * (-1 + (2 * (phase - h1)) * a2);
        step = falls ? falling : rising;
    }

    Real next() {
        const Real now = x, n = x + step;
        x = n;
        if (step > 0 && n > top) {
            const Real y = -(h2 * a1) * n + top * (1 + h2 * a1);
            if (y >= -top) {
                x = y;
                step = falling;
            } else {
                x = n - period_rising;
            }
        } else if (step <= 0 && n < -top) {
            const Real y = -(h1 * a2) * n - top * (1 + h1 * a2);
            if (y <= top) {
                x = y;
                step = rising;
            } else {
                x = n + period_falling;
            }
        }
        return now;
    }

private:
    Real top, h1, h2, a1, a2, falling, rising, period_falling, period_rising, x, step;
};

template <class T>
std::vector<Real> triangle_model(int len, Real magn, Real frequency, Real asym, Real phase) {
    const Real moved = phase + ((pi + asym) + two_pi) * 0.5L;
    TriangleModel re(magn, frequency, asym, phase), im(magn, frequency, asym, moved < two_pi ? moved : moved - two_pi);
    std::vector<Real> y;
    for (int n = 0; n < len; ++n) {
        y.push_back(re.next());
        if (PartsOf<T>::count == 2) y.push_back(im.next());
    }
    return y;
}

/// Calls with the arguments of a kind: tone(dst, len, magn, frequency, phase), any hint being 0.
template <class T, class M, class P>
KelStatus call(KelStatus (*f)(T*, int, M, P, P*), T* dst, int len, double magn, double frequency, P* phase) {
    return f(dst, len, static_cast<M>(magn), static_cast<P>(frequency), phase);
}
template <class T, class M, class P>
KelStatus call(KelStatus (*f)(T*, int, M, P, P*, int), T* dst, int len, double magn, double frequency, P* phase) {
    return f(dst, len, static_cast<M>(magn), static_cast<P>(frequency), phase, 0);
}

/// f(function, sample, phase) for all six.
template <class F>
void each_tone(const F& f) {
    f(kelsTone_Direct_16s, Kel16s{}, Kel32f{});
    f(kelsTone_Direct_16sc, Kel16sc{}, Kel32f{});
    f(kelsTone_Direct_32f, Kel32f{}, Kel32f{});
    f(kelsTone_Direct_32fc, Kel32fc{}, Kel32f{});
    f(kelsTone_Direct_64f, Kel64f{}, Kel64f{});
    f(kelsTone_Direct_64fc, Kel64fc{}, Kel64f{});
}
template <class F>
void each_triangle(const F& f) {
    f(kelsTriangle_Direct_16s, Kel16s{}, Kel32f{});
    f(kelsTriangle_Direct_16sc, Kel16sc{}, Kel32f{});
    f(kelsTriangle_Direct_32f, Kel32f{}, Kel32f{});
    f(kelsTriangle_Direct_32fc, Kel32fc{}, Kel32f{});
    f(kelsTriangle_Direct_64f, Kel64f{}, Kel64f{});
    f(kelsTriangle_Direct_64fc, Kel64fc{}, Kel64f{});
}

TEST(Tones, EveryLength) {
    each_tone([]<class T, class P>(auto function, T, P) {
        for (int len = 1; len <= 133; len += len < 70 ? 1 : 9)
            for (const double frequency : {0.25, 0.0123, 0.4999})
                for (const double from : {0.0, 1.5, 6.2831}) {
                    const P start = static_cast<P>(from);
                    for (const auto edge : edges) {
                        GuardedArray<T> dst(len, edge);
                        P phase = start;
                        ASSERT_EQ(call(function, dst.data(), len, 30000, frequency, &phase), kelStatusOk);
                        ASSERT_EQ(phase, next_phase(start, static_cast<P>(frequency), len));
                        expect_near(dst.values(), tone_model<T>(len, 30000, static_cast<P>(frequency), start), 30000);
                    }
                }
    });
}

// 10^6 samples, without drift.
TEST(Tones, LongOnes) {
    each_tone([]<class T, class P>(auto function, T, P) {
        constexpr int len = 1000003;
        std::vector<T> dst(len);
        P phase = static_cast<P>(0.7);
        ASSERT_EQ(call(function, dst.data(), len, 20000, 0.123456789, &phase), kelStatusOk);
        dst.erase(dst.begin(), dst.end() - 20000);
        expect_near(dst, tone_model<T>(len, 20000, static_cast<P>(0.123456789), static_cast<P>(0.7), len - 20000),
                    20000);
    });
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

TEST(Tones, FixedPointToTheBit) {
    for (const int len : {1, 2, 3, 4, 5, 63, 1023, 1024, 1025, 1026, 1027, 2048, 5000, 16384, 16385, 40001})
        for (const Kel16s magn : {1, 2, 100, 8191, 16383, 16384, 20000})
            for (const Kel32f frequency : {0.0F, 0.01F, 0.25F, 0.3333F, 0.49F}) {
                std::vector<int> want;
                for (int start = 0; start < len; start += 1024) {
                    const auto block = block_model(start, std::min(len - start, 1024), magn, frequency, 2.5F);
                    want.insert(want.end(), block.begin(), block.end());
                }
                GuardedArray<Kel16s> re(len, Edge::back);
                GuardedArray<Kel16sc> both(len, Edge::back);
                Kel32f phases[] = {2.5F, 2.5F};
                ASSERT_EQ(kelsTone_Direct_16s(re.data(), len, magn, frequency, phases, 1), kelStatusOk);
                ASSERT_EQ(kelsTone_Direct_16sc(both.data(), len, magn, frequency, phases + 1, 1), kelStatusOk);
                for (int n = 0; n < len; ++n) {
                    ASSERT_EQ(re.data()[n], want[2 * n]) << n << " of " << len << ", " << magn << ", " << frequency;
                    ASSERT_EQ(both.data()[n].re, want[2 * n]) << n;
                    ASSERT_EQ(both.data()[n].im, want[2 * n + 1]) << n;
                }
                ASSERT_EQ(phases[0], next_phase(2.5F, frequency, len));
                ASSERT_EQ(phases[1], phases[0]);
            }
}

// Triangles

TEST(Triangles, EveryLengthAndAsymmetry) {
    each_triangle([]<class T, class P>(auto function, T, P) {
        for (int len = 1; len <= 70; len += len < 20 ? 1 : 5)
            for (const double asymmetry : {0.0, 1.0, -2.5, 3.1, -3.14159, -pi})
                for (const double frequency : {0.0, 0.125, 0.0123, 0.4999}) {
                    const P asym = static_cast<P>(asymmetry), f = static_cast<P>(frequency), start = 2;
                    if (asym < -pi) continue;
                    for (const auto edge : edges) {
                        GuardedArray<T> dst(len, edge);
                        P phase = start;
                        ASSERT_EQ(function(dst.data(), len, 30000, f, asym, &phase), kelStatusOk);
                        ASSERT_EQ(phase, next_phase(start, f, len));
                        expect_near(dst.values(), triangle_model<T>(len, 30000, f, asym, start), 30000);
                    }
                }
    });
}

// Either leg is jumped over.
TEST(Triangles, Sawtooths) {
    for (const Kel64f asym : {-pi, std::nextafter(-pi, 0.0), std::nextafter(pi, 0.0), 3.1415, -3.1415}) {
        constexpr int len = 5000;
        std::vector<Kel64f> dst(len);
        Kel64f phase = 0.1;
        ASSERT_EQ(kelsTriangle_Direct_64f(dst.data(), len, 1, 0.0371, asym, &phase), kelStatusOk);
        // A sum of so many steps is not as exact as a sample.
        const auto want = triangle_model<Kel64f>(len, 1, 0.0371, asym, 0.1);
        for (int n = 0; n < len; ++n) ASSERT_LE(std::fabs(dst[n] - want[n]), 2e-12) << n << ", " << asym;
    }
}

// The top belongs to the wave, as long as it is hit: it is the step beyond that jumps. Only a start is at the bottom.
TEST(Triangles, SawtoothHitsItsTop) {
    std::vector<Kel64f> dst(100);
    Kel64f phase = 0;
    ASSERT_EQ(kelsTriangle_Direct_64f(dst.data(), 100, 3, 0.125, -pi, &phase), kelStatusOk);
    const auto want = triangle_model<Kel64f>(100, 3, 0.125, -pi, 0);
    EXPECT_EQ(want[8], 3);
    for (int n = 0; n < 100; ++n) EXPECT_EQ(dst[n], want[n]) << n;
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

/// Samples from a fraction of the period that is exact as far as extended numbers reach.
Real triangle_at(int n, Real magn, Real frequency, Real asym, Real phase) {
    const Real h1 = pi + asym, h2 = pi - asym, periods = frequency * n + phase / two_pi;
    const Real angle = (periods - std::floor(periods)) * two_pi;
    return angle < h1 ? magn * (1 - 2 * angle / h1) : magn * (2 * (angle - h1) / h2 - 1);
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

// Streams

TEST(Tones, StreamsContinue) {
    constexpr int len = 3000;
    std::vector<Kel64f> whole(len), cut_up(len);
    for (const bool triangle : {false, true}) {
        const auto go = [&](Kel64f* dst, int n, Kel64f* phase) {
            return triangle ? kelsTriangle_Direct_64f(dst, n, 1, 0.0317, 0.5, phase)
                            : kelsTone_Direct_64f(dst, n, 1, 0.0317, phase);
        };
        Kel64f phase = 0.25, parts = 0.25;
        ASSERT_EQ(go(whole.data(), len, &phase), kelStatusOk);
        for (int at = 0, n = 1; at < len; at += n, n = std::min(n + 7, len - at))
            ASSERT_EQ(go(cut_up.data() + at, n, &parts), kelStatusOk);
        for (int n = 0; n < len; ++n) ASSERT_NEAR(whole[n], cut_up[n], 1e-13) << n;
        EXPECT_NEAR(phase, parts, 1e-13);
    }
}

/// go(dst, phase) makes a hundred samples.
template <class T, class P, class Go>
void expect_same_in_odd_modes(const Go& go) {
    std::vector<T> wanted(100), dst(100);
    P wanted_phase = 1, phase;
    EXPECT_EQ(go(wanted.data(), &wanted_phase), kelStatusOk);
    in_odd_modes(
        [&] {
            phase = 1;
            go(dst.data(), &phase);
        },
        [&] {
            EXPECT_TRUE(same_bits(dst, wanted));
            EXPECT_EQ(phase, wanted_phase);
        });
}

TEST(Tones, ModesOfTheCaller) {
    each_tone([]<class T, class P>(auto function, T, P) {
        expect_same_in_odd_modes<T, P>(
            [=](T* dst, P* phase) { return call(function, dst, 100, 30000, 0.0123, phase); });
    });
    each_triangle([]<class T, class P>(auto function, T, P) {
        expect_same_in_odd_modes<T, P>(
            [=](T* dst, P* phase) { return function(dst, 100, 30000, P(0.0123), 1, phase); });
    });
}

// Checks, in their order

TEST(Tones, Statuses) {
    each_tone([]<class T, class P>(auto function, T, P) {
        constexpr double limit = PartsOf<T>::count == 2 ? 1 : 0.5;
        const auto status = [=](double magn, double frequency, P phase, bool null, int len) {
            T dst{};
            P after = phase;
            const KelStatus result = call(function, null ? nullptr : &dst, len, magn, frequency, &after);
            EXPECT_TRUE(result == kelStatusOk || after == phase || phase != phase);
            return result;
        };
        T dst{};
        EXPECT_EQ(call(function, &dst, 1, 1, 0, static_cast<P*>(nullptr)), kelStatusNullPtr);
        EXPECT_EQ(status(0, -1, -1, true, 0), kelStatusToneMagn);
        EXPECT_EQ(status(1, -1e-30, -1, true, 0), kelStatusToneFreq);
        EXPECT_EQ(status(1, limit, -1, true, 0), kelStatusToneFreq);
        EXPECT_EQ(status(1, NAN, -1, true, 0), kelStatusToneFreq);
        EXPECT_EQ(status(1, 0, -1, true, 0), kelStatusTonePhase);
        EXPECT_EQ(status(1, 0, static_cast<P>(two_pi), true, 0), kelStatusTonePhase);
        EXPECT_EQ(status(1, 0, std::nextafter(static_cast<P>(two_pi), P(0)), true, 0), kelStatusNullPtr);
        EXPECT_EQ(status(1, 0, static_cast<P>(NAN), true, 0), kelStatusTonePhase);
        EXPECT_EQ(status(1, std::nextafter(static_cast<P>(limit), P(0)), 0, false, 0), kelStatusBadSize);
        EXPECT_EQ(status(1, 0, 0, false, 1), kelStatusOk);
    });
    Kel32f x = 0, phase = 0;
    EXPECT_EQ(kelsTone_Direct_32f(&x, 1, NAN, 0, &phase), kelStatusOk);
    EXPECT_TRUE(std::isnan(x));
}

TEST(Triangles, Statuses) {
    each_triangle([]<class T, class P>(auto function, T, P) {
        using M = std::conditional_t<sizeof(P) == 8, Kel64f, typename PartsOf<T>::Part>;
        const auto status = [=](double magn, double frequency, double asym, P phase, bool null, int len) {
            T dst{};
            return function(null ? nullptr : &dst, len, static_cast<M>(magn), static_cast<P>(frequency),
                            static_cast<P>(asym), &phase);
        };
        T dst{};
        EXPECT_EQ(function(&dst, 1, 1, 0, 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(status(0, -1, 4, -1, true, 0), kelStatusTriangleMagn);
        EXPECT_EQ(status(1, 0.5, 4, -1, true, 0), kelStatusTriangleFreq);
        EXPECT_EQ(status(1, NAN, 4, -1, true, 0), kelStatusTriangleFreq);
        EXPECT_EQ(status(1, 0, 4, -1, true, 0), kelStatusTriangleAsym);
        EXPECT_EQ(status(1, 0, -3.15, -1, true, 0), kelStatusTriangleAsym);
        EXPECT_EQ(status(1, 0, NAN, -1, true, 0), kelStatusTriangleAsym);
        EXPECT_EQ(status(1, 0, 0, static_cast<P>(two_pi), true, 0), kelStatusTrianglePhase);
        EXPECT_EQ(status(1, 0, 0, 0, true, 0), kelStatusNullPtr);
        EXPECT_EQ(status(1, 0, 0, 0, false, 0), kelStatusBadSize);
        EXPECT_EQ(status(1, 0, 0, 0, false, 1), kelStatusOk);
    });
    Kel64f x = 0, phase = 0;
    EXPECT_EQ(kelsTriangle_Direct_64f(&x, 1, NAN, 0, 0, &phase), kelStatusTriangleMagn);
    EXPECT_EQ(kelsTriangle_Direct_64f(&x, 1, 1, 0, pi, &phase), kelStatusTriangleAsym);
    EXPECT_EQ(kelsTriangle_Direct_64f(&x, 1, 1, 0, -pi, &phase), kelStatusOk);
}

} // namespace
