// The FFT of 16-bit data in fixed point, against a model of its arithmetic, one number at a time in 64 bits.

#include "support/control_state.h"
#include "transforms/families.h"

#include <cmath>
#include <numbers>

namespace {

using namespace transform_test;
using FixedCase = Case<Fft16s>;

// The model

using Word = std::int32_t;
using Wide = std::int64_t;

Word wrapped(Wide v) { return static_cast<Word>(static_cast<std::uint32_t>(v)); }

struct Point {
    Word re, im;
    bool operator==(const Point&) const = default;
};
using Points = std::vector<Point>;

Point operator+(Point a, Point b) { return {wrapped(Wide{a.re} + b.re), wrapped(Wide{a.im} + b.im)}; }
Point operator-(Point a, Point b) { return {wrapped(Wide{a.re} - b.re), wrapped(Wide{a.im} - b.im)}; }

int q14(long double x) { return static_cast<int>(std::floor(std::abs(x) * 16384 + 0.5L)) * (x < 0 ? -1 : 1); }

Wide high(Word v) { return v >> 16; }
Wide low(Word v) { return (v & 0xFFFF) >> 1; }

/// x c + y s, each word in two pieces.
Word product_sum(Word x, Wide c, Word y, Wide s, int rounding = 0) {
    return wrapped(((low(x) * c + low(y) * s + rounding) >> 13) + 4 * (high(x) * c + high(y) * s));
}

/// z exp(-2 pi i k / n).
Point turned(Point z, int k, int n, int rounding = 0) {
    const long double angle = 2 * std::numbers::pi_v<long double> * k / n;
    const int c = q14(std::cos(angle)), s = q14(std::sin(angle));
    return {product_sum(z.re, c, z.im, s, rounding), product_sum(z.im, c, z.re, -s, rounding)};
}

/// In place, to bit-reversed order.
void model_core(Points& x) {
    const int n = static_cast<int>(x.size());
    int length = n;
    for (int stride = 1; length > 2; length /= 4, stride *= 4)
        for (int g = 0; g < n; g += length)
            for (int j = 0; j < length / 4; ++j) {
                const int q = length / 4, p = g + j;
                const Point a = x[p] - x[p + 2 * q], b = x[p + q] - x[p + 3 * q];
                const Point t = (x[p] + x[p + 2 * q]) - (x[p + q] + x[p + 3 * q]);
                const Point minus = {wrapped(Wide{a.re} + b.im), wrapped(Wide{a.im} - b.re)};
                const Point plus = {wrapped(Wide{a.re} - b.im), wrapped(Wide{a.im} + b.re)};
                x[p] = (x[p] + x[p + 2 * q]) + (x[p + q] + x[p + 3 * q]);
                if (j == 0) {
                    x[p + q] = t;
                    x[p + 2 * q] = minus;
                    x[p + 3 * q] = plus;
                } else if (8 * j == length) {
                    constexpr Wide k = 11585;
                    const Point sum = a + b, dif = a - b;
                    x[p + q] = {t.im, wrapped(-Wide{t.re})};
                    x[p + 2 * q] = {product_sum(sum.im, k, dif.re, k), product_sum(dif.im, k, sum.re, -k)};
                    x[p + 3 * q] = {product_sum(sum.im, k, dif.re, -k), product_sum(sum.re, -k, dif.im, -k)};
                } else {
                    x[p + q] = turned(t, 2 * j * stride, n);
                    x[p + 2 * q] = turned(minus, j * stride, n);
                    x[p + 3 * q] = turned(plus, 3 * j * stride, n);
                }
            }
    if (length == 2)
        for (int p = 0; p < n; p += 2) {
            const Point a = x[p], b = x[p + 1];
            x[p] = a + b;
            x[p + 1] = a - b;
        }
}

void model_transform(Points& x) {
    model_core(x);
    for (std::size_t i = 0; i < x.size(); ++i) {
        std::size_t j = 0;
        for (std::size_t bit = 1; bit < x.size(); bit *= 2) j = 2 * j + (i / bit & 1);
        if (i < j) std::swap(x[i], x[j]);
    }
}

void model_real_bins(Points& x) {
    const int n = static_cast<int>(x.size());
    for (int k = 1; k < n / 2; ++k) {
        const Point sum = x[k] + x[n - k], dif = x[k] - x[n - k];
        const Point s = {sum.re >> 1, sum.im >> 1}, d = {dif.re >> 1, dif.im >> 1};
        const Point v = {s.re, d.im}, p = turned({wrapped(-Wide{s.im}), d.re}, k, 2 * n);
        x[k] = v - p;
        x[n - k] = {(v + p).re, wrapped(-Wide{(v + p).im})};
    }
    if (n > 1) x[n / 2].im = wrapped(-Wide{x[n / 2].im});
}

void model_bins_of_points(Points& x) {
    const int n = static_cast<int>(x.size());
    for (int k = 1; k < n / 2; ++k) {
        const Point s = x[k] + x[n - k], d = x[k] - x[n - k];
        const Point v = {s.re, d.im}, p = turned({wrapped(-Wide{s.im}), d.re}, 2 * n - k, 2 * n, 4096);
        x[n - k] = v + p;
        x[k] = {(v - p).re, wrapped(-Wide{(v - p).im})};
    }
    if (n > 1) x[n / 2] = {wrapped(2 * Wide{x[n / 2].re}), wrapped(-2 * Wide{x[n / 2].im})};
}

Kel16s model_sample(Word v, Wide shift) {
    Wide r = v;
    if (shift >= 32)
        r = 0;
    else if (shift > 0)
        r = (r + (Wide{1} << (shift - 1))) >> shift;
    else
        r = r << std::min<Wide>(-shift, 20);
    return static_cast<Kel16s>(std::clamp<Wide>(r, SHRT_MIN, SHRT_MAX));
}

/// A spectrum in the layout of the case, from and to Perm.
std::vector<Kel16s> to_layout(const FixedCase& c, std::vector<Kel16s> perm) {
    if (c.layout == Layout::pack && c.n > 1) std::rotate(perm.begin() + 1, perm.begin() + 2, perm.end());
    if (c.layout == Layout::ccs) {
        if (c.n > 1) perm.insert(perm.end(), {perm[1], 0});
        perm.resize(c.values(true));
        perm[1] = 0;
    }
    return perm;
}

std::vector<Kel16s> to_perm(const FixedCase& c, std::vector<Kel16s> spectrum) {
    if (c.layout == Layout::pack && c.n > 1) std::rotate(spectrum.begin() + 1, spectrum.end() - 1, spectrum.end());
    if (c.layout == Layout::ccs) {
        if (c.n > 1) spectrum[1] = spectrum[static_cast<std::size_t>(c.n)];
        spectrum.resize(static_cast<std::size_t>(c.n));
    }
    return spectrum;
}

std::vector<Kel16s> model(const FixedCase& c, std::vector<Kel16s> src, int factor) {
    const int order = Fft16s::size(c.n), s = 16 - order;
    if (!c.is_complex() && c.inverse) src = to_perm(c, src);
    const std::size_t count = src.size() / 2;
    Points x(count);
    for (std::size_t i = 0; i < count; ++i) {
        const bool split = c.layout == Layout::split;
        x[i] = {wrapped(Wide{src[split ? i : 2 * i]} << s), wrapped(Wide{src[split ? i + count : 2 * i + 1]} << s)};
    }
    const auto sum_and_difference = [&] {
        x[0] = {wrapped(Wide{x[0].re} + x[0].im), wrapped(Wide{x[0].re} - x[0].im)};
    };
    if (c.is_complex()) {
        if (c.inverse) std::reverse(x.begin() + 1, x.end());
        model_transform(x);
    } else if (!c.inverse) {
        model_transform(x);
        model_real_bins(x);
        sum_and_difference();
    } else {
        sum_and_difference();
        model_bins_of_points(x);
        model_transform(x);
    }
    Wide shift = Wide{factor} + s;
    if (c.flag == (c.inverse ? kelFftNormInv : kelFftNormFwd)) shift += order;
    if (c.flag == kelFftNormSqrt) shift += order / 2;
    std::vector<Kel16s> dst(2 * count);
    for (std::size_t i = 0; i < count; ++i)
        for (const bool imaginary : {false, true}) {
            Word v = imaginary ? x[i].im : x[i].re;
            if (c.flag == kelFftNormSqrt && order % 2) v = static_cast<Word>(Wide{v} * 23170 >> 15);
            dst[c.layout == Layout::split ? i + imaginary * count : 2 * i + imaginary] = model_sample(v, shift);
        }
    return !c.is_complex() && !c.inverse ? to_layout(c, dst) : dst;
}

constexpr int data_kinds = 5;

/// Kinds of data: noise of all sizes, noise of extremes, small noise, a constant, a tone of half the rate.
std::vector<Kel16s> data(int kind, std::size_t count) {
    Random random("samples of 16 bits " + std::to_string(kind));
    std::vector<Kel16s> x(count);
    for (std::size_t i = 0; i < count; ++i) {
        constexpr Kel16s extremes[] = {SHRT_MIN, SHRT_MIN + 1, SHRT_MAX, SHRT_MAX - 1, -1, 0, 1};
        const auto noise = static_cast<Kel16s>(random.bits());
        const int kinds[data_kinds] = {noise, extremes[random.below(7)], noise / 256, SHRT_MIN,
                                       i / 2 % 2 ? SHRT_MIN : SHRT_MAX};
        x[i] = static_cast<Kel16s>(kinds[kind]);
    }
    return x;
}

// Tests

TEST(Fft16s, FixedPointIsThatOfTheModel) {
    std::vector<int> lengths;
    for (int order = 1; order <= effort(10, 6); ++order) lengths.push_back(1 << order);
    const auto body = [](const FixedCase& c) {
        const auto plan = c.plan();
        const long before = allocations();
        for (int kind = 0; kind < data_kinds; ++kind) {
            const std::vector<Kel16s> x = data(kind, c.sources());
            const int order = Fft16s::size(c.n);
            for (const int factor : {0, order, 1, 3, -1, -order})
                ASSERT_EQ(c.transformed(x, plan.get(), factor), model(c, x, factor))
                    << "data " << kind << " factor " << factor;
        }
        EXPECT_EQ(allocations(), before);
    };
    for (const int flag : flags) for_each_case<Fft16s>(lengths, body, flag, kelHintWideFixed);
}

TEST(Fft16s, EveryScaleFactorPasses) {
    std::vector<int> factors = {INT_MIN, INT_MIN + 1, -100, 100, INT_MAX - 20, INT_MAX};
    for (int factor = -40; factor <= 40; ++factor) factors.push_back(factor);
    const auto body = [&](const FixedCase& c) {
        const auto plan = c.plan();
        const std::vector<Kel16s> x = data(2, c.sources());
        for (const int factor : factors) ASSERT_EQ(c.transformed(x, plan.get(), factor), model(c, x, factor)) << factor;
    };
    for_each_case<Fft16s>({2, 32, 256}, body, kelFftNormSqrt);
}

TEST(Fft16s, TwoPointsAreSumAndDifference) {
    EXPECT_EQ((FixedCase{Layout::interleaved, false, 2}.transformed({100, -7, 30, 32767})),
              (std::vector<Kel16s>{130, 32760, 70, SHRT_MIN}));
}

TEST(Fft16s, EnginesMeetAtTheBordersOfTheHints) {
    for (const auto& [hint, border] : {std::pair(0, 8), std::pair(1, 10), std::pair(-1, 0)})
        for (int order = 1; order <= 11; ++order) {
            const FixedCase c = {Layout::perm, false, 1 << order, kelFftNormNone, hint};
            FixedCase in_singles = c;
            in_singles.hint = kelHintFloat;
            const std::vector<Kel16s> x = data(0, c.sources());
            EXPECT_EQ(c.transformed(x, order / 2),
                      order <= border ? model(c, x, order / 2) : in_singles.transformed(x, order / 2))
                << c;
        }
}

TEST(Fft16s, ModesOfTheCallerDoNotReachFixedPoint) {
    const FixedCase c = {Layout::ccs, false, 128, kelFftNormSqrt};
    const std::vector<Kel16s> x = data(0, c.sources());
    std::vector<Kel16s> y;
    in_odd_modes([&] { y = c.transformed(x, 1); }, [&] { EXPECT_EQ(y, model(c, x, 1)); });
}

} // namespace
