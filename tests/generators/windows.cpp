// Windows, held against their rules in extended precision, sample by sample.

#include "kels/windows.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <numbers>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace kels_test;
using Real = long double;

// The rules

template <class T>
T product(T x, Real w) {
    if constexpr (ComplexSample<T>) {
        return {product(x.re, w), product(x.im, w)};
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(x * w);
    } else {
        const Real y = x * w;
        if (y > 32767) return 32767;
        if (y < -32768) return -32768;
        return static_cast<T>(static_cast<double>(y >= 0 ? y + 0.5L : y - 0.5L));
    }
}

/// Pairs from `first` on; next() is the weight of each.
template <class T, class Next>
void walk(const T* src, T* dst, int len, int first, Next next) {
    for (int n = first; n < len / 2; ++n) {
        const Real w = next(n);
        const T left = product(src[n], w), right = product(src[len - 1 - n], w);
        dst[n] = left;
        dst[len - 1 - n] = right;
    }
    if (len % 2 != 0) dst[len / 2] = src[len / 2];
}

constexpr auto bartlett = whole([]<class T>(const T* src, T* dst, int len) {
    Real sum = 0;
    walk(src, dst, len, 1, [&](int) { return sum += 2 / static_cast<Real>(len - 1); });
    dst[0] = dst[len - 1] = T{};
});

constexpr int q15 = 1 << 15;

struct Blackman {
    Real half, minus_half;
    explicit Blackman(Real alpha) : half((alpha + 1) / 2), minus_half(static_cast<double>(-(alpha / 2))) {}
    Real operator()(Real c) const { return (half - 0.5L * c) + minus_half * (2 * c * c - 1); }
};

/// By the rotation; a window with zeros at its ends does not read them at length 3.
template <class T, class Weight>
void rotated(const T* src, T* dst, int len, bool zeros, bool sine_in_double, const Weight& weight) {
    if (zeros && len == 3) {
        dst[1] = src[1];
        dst[0] = dst[2] = T{};
        return;
    }
    const Real c = std::cos(static_cast<Real>(6.283185307179586) / (len - 1));
    Real s = std::sqrt(1 - c * c), cosine = 1, sine = 0;
    if (sine_in_double) s = static_cast<double>(s);
    walk(src, dst, len, 0, [&](int) {
        const Real w = weight(cosine), next = c * cosine + -s * sine;
        sine = sine * c + cosine * s;
        cosine = next;
        return w;
    });
}

constexpr auto hann = whole([]<class T>(const T* src, T* dst, int len) {
    rotated(src, dst, len, true, false, [](Real c) { return 0.5L * (1 - c); });
});
constexpr auto hamming = whole([]<class T>(const T* src, T* dst, int len) {
    rotated(src, dst, len, false, false, [](Real c) { return static_cast<Real>(-0.46) * c + 0.54; });
});
template <int one>
constexpr auto blackman = whole([]<class T>(const T* src, T* dst, int len, auto alpha) {
    rotated(src, dst, len, true, true, Blackman(static_cast<Real>(alpha) / one));
});
constexpr auto blackman_standard =
    whole([]<class T>(const T* src, T* dst, int len) { rotated(src, dst, len, true, true, Blackman(-0.16F)); });
constexpr auto blackman_optimal = whole([]<class T>(const T* src, T* dst, int len) {
    const Real q = 0.5L / std::cos(static_cast<Real>(3.141592653589793) / (len - 1));
    rotated(src, dst, len, true, true, Blackman(static_cast<Kel32f>(-(q * q))));
});

// Kaiser

Real horner(Real t, const std::vector<double>& coefficients) {
    Real sum = 0;
    for (auto c = coefficients.rbegin(); c != coefficients.rend(); ++c) sum = sum * t + *c;
    return sum;
}

Real far_bessel(Real x, Real u, const std::vector<double>& coefficients) {
    const auto p = static_cast<double>(horner(u, coefficients));
    const auto e = static_cast<double>(std::exp(x)), root = static_cast<double>(std::sqrt(x));
    return static_cast<Real>(e) * p / root;
}

Real coarse(double argument) {
    const Real x = std::fabs(static_cast<Real>(argument)), t = x * 0.26666666666666666;
    if (x < 3.75L) return horner(t * t, {1, 3.5156229, 3.0899424, 1.2067492, 0.2659732, 0.0360768, 0.0045813});
    return far_bessel(x, 3.75L / x,
                      {0.39894228, 0.01328592, 0.00225319, -0.00157565, 0.00916281, -0.02057706, 0.02635537,
                       -0.01647633, 0.00392377});
}

Real fine(double argument) {
    const Real x = std::fabs(static_cast<Real>(argument)), t = 0.25L * x;
    if (x < 4)
        return horner(t * t, {0.9999999985, 4.0000001935, 3.9999959541, 1.777809969, 0.4443189384, 0.0713758187,
                              0.0075942968, 0.0008267816});
    return far_bessel(x, 4 / x,
                      {0.3989422809, 0.0124667783, 0.0017623668, 0.00026, 0.0022585672, -0.0128314822, 0.0495811118,
                       -0.1209940805, 0.1895476618, -0.1867783276, 0.1113315511, -0.0366694767, 0.0051246015});
}

template <Real (*Numerator)(double), Real (*Denominator)(double), class T>
void kaiser_window(const T* src, T* dst, int len, double alpha) {
    const Real m = len - 1, half = alpha * m * 0.5L;
    const auto divisor = static_cast<double>(Denominator(static_cast<double>(half)));
    walk(src, dst, len, 0, [&](int n) {
        const double root = std::sqrt(static_cast<double>(n * (len - 1 - n)));
        return Numerator(static_cast<double>(static_cast<Real>(root) * alpha)) / divisor;
    });
}

template <Real (*Numerator)(double), Real (*Denominator)(double), int one = 1>
constexpr auto kaiser = whole([](const auto* src, auto* dst, int len, auto alpha) {
    kaiser_window<Numerator, Denominator>(src, dst, len, static_cast<double>(alpha) / one);
});

// Rows

constexpr Kel32f not_a_number = std::numeric_limits<Kel32f>::quiet_NaN();

/// Long windows show the roundings of the rotation's angle, and some products of theirs lie beside halves.
const std::vector<int> long_ones = {196609, 199998, 200001};

/// Of any length up to 65536.
Rows kaiser_row(const Rows& r) {
    return r.values(0, {0, 0.0001, -0.0003, 0.001}).refuses(0, {HUGE_VAL, -1e30, not_a_number}, kelStatusKaiserTooHuge);
}

const Rows table = {
    rows(bartlett, kelsWinBartlett_16s, kelsWinBartlett_16sc, kelsWinBartlett_32f, kelsWinBartlett_32fc)
        .in_place(kelsWinBartlett_16s_I, kelsWinBartlett_16sc_I, kelsWinBartlett_32f_I, kelsWinBartlett_32fc_I)
        .shortest(3)
        .lengths(long_ones)
        .ulps(1),
    rows(hann, kelsWinHann_16s, kelsWinHann_16sc, kelsWinHann_32f, kelsWinHann_32fc)
        .in_place(kelsWinHann_16s_I, kelsWinHann_16sc_I, kelsWinHann_32f_I, kelsWinHann_32fc_I)
        .shortest(3)
        .lengths(long_ones)
        .ulps(1),
    rows(hamming, kelsWinHamming_16s, kelsWinHamming_16sc, kelsWinHamming_32f, kelsWinHamming_32fc)
        .in_place(kelsWinHamming_16s_I, kelsWinHamming_16sc_I, kelsWinHamming_32f_I, kelsWinHamming_32fc_I)
        .shortest(3)
        .ulps(1),
    rows(blackman<1>, kelsWinBlackman_16s, kelsWinBlackman_16sc, kelsWinBlackman_32f, kelsWinBlackman_32fc)
        .in_place(kelsWinBlackman_16s_I, kelsWinBlackman_16sc_I, kelsWinBlackman_32f_I, kelsWinBlackman_32fc_I)
        .shortest(3)
        .lengths(long_ones)
        .values(0, {0, -0.16, -0.25, 1, -1, 0.5, -7.5, 1e5, -3e30})
        .ulps(1),
    rows(blackman<q15>, kelsWinBlackmanQ15_16s, kelsWinBlackmanQ15_16sc)
        .in_place(kelsWinBlackmanQ15_16s_I, kelsWinBlackmanQ15_16sc_I)
        .shortest(3)
        .values(0, {0, -5243, -8192, 32768, -32768, 1 << 20, INT_MAX, INT_MIN}),
    rows(blackman_standard, kelsWinBlackmanStd_16s, kelsWinBlackmanStd_16sc, kelsWinBlackmanStd_32f,
         kelsWinBlackmanStd_32fc)
        .in_place(kelsWinBlackmanStd_16s_I, kelsWinBlackmanStd_16sc_I, kelsWinBlackmanStd_32f_I,
                  kelsWinBlackmanStd_32fc_I)
        .shortest(3)
        .ulps(1),
    rows(blackman_optimal, kelsWinBlackmanOpt_16s, kelsWinBlackmanOpt_16sc, kelsWinBlackmanOpt_32f,
         kelsWinBlackmanOpt_32fc)
        .in_place(kelsWinBlackmanOpt_16s_I, kelsWinBlackmanOpt_16sc_I, kelsWinBlackmanOpt_32f_I,
                  kelsWinBlackmanOpt_32fc_I)
        .shortest(4)
        .length_first()
        .ulps(1),
    kaiser_row(
        rows(kaiser<coarse, coarse>, kelsWinKaiser_16s, kelsWinKaiser_16sc, kelsWinKaiser_32f, kelsWinKaiser_32fc)
            .in_place(kelsWinKaiser_16s_I, kelsWinKaiser_16sc_I, kelsWinKaiser_32f_I, kelsWinKaiser_32fc_I))
        .ulps(1),
    rows(kaiser<coarse, coarse, q15>, kelsWinKaiserQ15_16s, kelsWinKaiserQ15_16sc)
        .in_place(kelsWinKaiserQ15_16s_I, kelsWinKaiserQ15_16sc_I)
        .values(0, {0, 1, 33, -67, 300}),
    kaiser_row(rows(kaiser<coarse, fine>, kelsWinKaiser_64f)).ulps(3),
};
const Rows extremes =
    rows(blackman<1>, kelsWinBlackman_32f).shortest(3).values(0, {HUGE_VAL, -HUGE_VAL, not_a_number}).ulps(1);
// On doubles it is no partner of the one that works out of place.
const Rows kaiser_in_place = kaiser_row(in_place(kaiser<fine, coarse>, kelsWinKaiser_64f_I)).ulps(3);
const bool registered = add_rows("Windows", table) && add_rows("Windows", kaiser_in_place) &&
                        add_rows("WindowsOfInfinities", extremes.driven_elsewhere());

// Kaiser

TEST(Kaiser, LimitsOfAlpha) {
    const auto status = []<class T, class A>(KelStatus (*window)(T*, int, A), std::type_identity_t<A> alpha, int len) {
        std::vector<T> x(static_cast<std::size_t>(len));
        return window(x.data(), len, alpha);
    };
    // |alpha| 64 is twice the limit and once more.
    EXPECT_EQ(status(kelsWinKaiser_32f_I, 38.0F / 32, 65), kelStatusOk);
    EXPECT_EQ(status(kelsWinKaiser_32f_I, std::nextafter(38.0F / 32, 2.0F), 65), kelStatusKaiserTooHuge);
    EXPECT_EQ(status(kelsWinKaiser_32fc_I, std::nextafter(-38.0F / 32, -2.0F), 65), kelStatusKaiserTooHuge);
    EXPECT_EQ(status(kelsWinKaiser_64f_I, 308.0F / 32, 65), kelStatusOk);
    EXPECT_EQ(status(kelsWinKaiser_16s_I, std::nextafter(308.0F / 32, 20.0F), 65), kelStatusKaiserTooHuge);
    EXPECT_EQ(status(kelsWinKaiserQ15_16s_I, 308 * 1024, 65), kelStatusOk);
    EXPECT_EQ(status(kelsWinKaiserQ15_16sc_I, 308 * 1024 + 1, 65), kelStatusKaiserTooHuge);
    EXPECT_EQ(status(kelsWinKaiser_32f_I, not_a_number, 1), kelStatusKaiserTooHuge);
    EXPECT_EQ(status(kelsWinKaiser_32f_I, 1e30F, 1), kelStatusOk);
}

// Both branches of both approximations, up to the limits.
TEST(Kaiser, SteepWindows) {
    for (int len = 1; len <= 70; ++len)
        for (const double steepness :
             {0.1, 3.7499, 3.75, 3.76, 3.999, 4.0, 4.01, 12.0, 37.99, 178.6617431640625, 307.9}) {
            const auto alpha = static_cast<Kel32f>(len == 1 ? steepness : 2 * steepness / (len - 1));
            const auto expect = [=]<class T>(auto function, auto reference, T value, double error) {
                const std::vector<T> x(len, value);
                std::vector<T> got = x, want(len);
                ASSERT_EQ(function(got.data(), len, alpha), kelStatusOk);
                reference(x.data(), want.data(), len, alpha);
                for (int n = 0; n < len; ++n)
                    ASSERT_LE(std::fabs(got[n] - want[n]), error * std::fabs(want[n]))
                        << n << " of " << len << ", " << alpha;
            };
            const auto out_of_place = [](Kel64f* x, int n, Kel32f a) { return kelsWinKaiser_64f(x, x, n, a); };
            expect(out_of_place, kaiser_window<coarse, fine, Kel64f>, 1.0, 3 * 0x1p-52);
            expect(kelsWinKaiser_64f_I, kaiser_window<fine, coarse, Kel64f>, 1.0, 3 * 0x1p-52);
            expect(kelsWinKaiser_16s_I, kaiser_window<coarse, coarse, Kel16s>, Kel16s{-32768}, 0);
            if (steepness < 38) expect(kelsWinKaiser_32f_I, kaiser_window<coarse, coarse, Kel32f>, 1.0F, 4 * 0x1p-23);
        }
}

} // namespace
