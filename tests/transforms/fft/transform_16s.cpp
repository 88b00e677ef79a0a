// Transforms of 16-bit data: fixed point against a model of its arithmetic, one number at a time in 64 bits; floating
// point against the conversions and the transform that it stands for.

#include "kels/conversion.h"
#include "kels/fft.h"
#include "support/allocation_faults.h"
#include "support/control_state.h"
#include "support/emulation.h"
#include "support/guarded_memory.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <numbers>
#include <thread>
#include <vector>

namespace {

using kels_test::effort;
using kels_test::Random;

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

void model_bit_reversal(Points& x) {
    for (std::size_t i = 0; i < x.size(); ++i) {
        std::size_t j = 0;
        for (std::size_t bit = 1; bit < x.size(); bit *= 2) j = 2 * j + (i / bit & 1);
        if (i < j) std::swap(x[i], x[j]);
    }
}

void model_transform(Points& x) {
    model_core(x);
    model_bit_reversal(x);
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

// Plans and data

enum class Form { interleaved, split, perm, pack, ccs };
constexpr Form forms[] = {Form::interleaved, Form::split, Form::perm, Form::pack, Form::ccs};

bool is_real(Form form) { return form >= Form::perm; }

struct Case {
    Form form;
    int order, flag, hint;
    bool inverse;

    int points() const { return 1 << order; }
    int values(bool spectrum) const {
        return form == Form::ccs && spectrum ? (order == 0 ? 2 : points() + 2)
               : is_real(form)               ? points()
                                             : 2 * points();
    }
    int sources() const { return values(inverse); }
    int results() const { return values(!inverse); }
    bool fixed() const {
        return order > 0 && order <= (hint == kelHintDefault ? 8 : hint == kelHintWideFixed ? 10 : 0);
    }
};

std::ostream& operator<<(std::ostream& out, const Case& c) {
    constexpr const char* names[] = {"interleaved", "split", "Perm", "Pack", "CCS"};
    return out << names[static_cast<int>(c.form)] << (c.inverse ? " inverse" : " forward") << " order " << c.order
               << " flag " << c.flag << " hint " << c.hint;
}

using Plan = std::unique_ptr<KelsFftPlan_16s, KelStatus (*)(KelsFftPlan_16s*)>;

Plan make_plan(const Case& c) {
    KelsFftPlan_16s* plan = nullptr;
    const auto make = is_real(c.form)         ? kelsFFTInitAlloc_R_16s
                      : c.form == Form::split ? kelsFFTInitAlloc_C_16s
                                              : kelsFFTInitAlloc_C_16sc;
    EXPECT_EQ(make(&plan, c.order, c.flag, c.hint), kelStatusOk);
    return Plan(plan, is_real(c.form)         ? kelsFFTFree_R_16s
                      : c.form == Form::split ? kelsFFTFree_C_16s
                                              : kelsFFTFree_C_16sc);
}

using RealTransform = KelStatus (*)(const Kel16s*, Kel16s*, const KelsFftPlan_16s*, int, Kel8u*);

RealTransform real_transform(const Case& c) {
    if (c.form == Form::perm) return c.inverse ? kelsFFTInv_PermToR_16s_Sfs : kelsFFTFwd_RToPerm_16s_Sfs;
    if (c.form == Form::pack) return c.inverse ? kelsFFTInv_PackToR_16s_Sfs : kelsFFTFwd_RToPack_16s_Sfs;
    return c.inverse ? kelsFFTInv_CCSToR_16s_Sfs : kelsFFTFwd_RToCCS_16s_Sfs;
}

/// The transform of one array; of two that stand one behind the other in the split form.
KelStatus run(const Case& c, const Kel16s* src, Kel16s* dst, const KelsFftPlan_16s* plan, int factor, Kel8u* buffer) {
    if (is_real(c.form)) return real_transform(c)(src, dst, plan, factor, buffer);
    if (c.form == Form::interleaved)
        return (c.inverse ? kelsFFTInv_CToC_16sc_Sfs : kelsFFTFwd_CToC_16sc_Sfs)(
            reinterpret_cast<const Kel16sc*>(src), reinterpret_cast<Kel16sc*>(dst), plan, factor, buffer);
    return (c.inverse ? kelsFFTInv_CToC_16s_Sfs : kelsFFTFwd_CToC_16s_Sfs)(src, src + c.points(), dst, dst + c.points(),
                                                                           plan, factor, buffer);
}

/// A spectrum in the layout of the form, from and to Perm.
std::vector<Kel16s> to_layout(const Case& c, std::vector<Kel16s> perm) {
    if (c.form == Form::pack && c.order > 0) std::rotate(perm.begin() + 1, perm.begin() + 2, perm.end());
    if (c.form == Form::ccs) {
        if (c.order > 0) perm.insert(perm.end(), {perm[1], 0});
        perm.resize(static_cast<std::size_t>(c.values(true)));
        perm[1] = 0;
    }
    return perm;
}

std::vector<Kel16s> to_perm(const Case& c, std::vector<Kel16s> spectrum) {
    if (c.form == Form::pack && c.order > 0) std::rotate(spectrum.begin() + 1, spectrum.end() - 1, spectrum.end());
    if (c.form == Form::ccs) {
        if (c.order > 0) spectrum[1] = spectrum[static_cast<std::size_t>(c.points())];
        spectrum.resize(static_cast<std::size_t>(c.points()));
    }
    return spectrum;
}

std::vector<Kel16s> model(const Case& c, std::vector<Kel16s> src, int factor) {
    const int s = 16 - c.order;
    if (is_real(c.form) && c.inverse) src = to_perm(c, src);
    const std::size_t count = src.size() / 2;
    Points x(count);
    for (std::size_t i = 0; i < count; ++i) {
        const bool split = c.form == Form::split;
        x[i] = {wrapped(Wide{src[split ? i : 2 * i]} << s), wrapped(Wide{src[split ? i + count : 2 * i + 1]} << s)};
    }
    const auto sum_and_difference = [&] {
        x[0] = {wrapped(Wide{x[0].re} + x[0].im), wrapped(Wide{x[0].re} - x[0].im)};
    };
    if (!is_real(c.form)) {
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
    if (c.flag == (c.inverse ? kelFftNormInv : kelFftNormFwd)) shift += c.order;
    if (c.flag == kelFftNormSqrt) shift += c.order / 2;
    std::vector<Kel16s> dst(2 * count);
    for (std::size_t i = 0; i < count; ++i)
        for (const bool imaginary : {false, true}) {
            Word v = imaginary ? x[i].im : x[i].re;
            if (c.flag == kelFftNormSqrt && c.order % 2) v = static_cast<Word>(Wide{v} * 23170 >> 15);
            dst[c.form == Form::split ? i + imaginary * count : 2 * i + imaginary] = model_sample(v, shift);
        }
    return is_real(c.form) && !c.inverse ? to_layout(c, dst) : dst;
}

/// Kinds of data: noise of all sizes, noise of extremes, a constant, a tone of half the rate.
std::vector<Kel16s> data(int kind, std::size_t count) {
    Random random("samples of 16 bits " + std::to_string(kind));
    std::vector<Kel16s> x(count);
    for (std::size_t i = 0; i < count; ++i) {
        constexpr Kel16s extremes[] = {SHRT_MIN, SHRT_MIN + 1, SHRT_MAX, SHRT_MAX - 1, -1, 0, 1};
        switch (kind) {
        case 0:
            x[i] = static_cast<Kel16s>(random.bits());
            break;
        case 1:
            x[i] = extremes[random.below(7)];
            break;
        case 2:
            x[i] = static_cast<Kel16s>(static_cast<Kel16s>(random.bits()) / 256);
            break;
        case 3:
            x[i] = SHRT_MIN;
            break;
        default:
            x[i] = i / 2 % 2 ? SHRT_MIN : SHRT_MAX;
        }
    }
    return x;
}
constexpr int data_kinds = 5;

void for_each_case(const std::function<void(const Case&)>& test, int hint, int last_order) {
    for (const Form form : forms)
        for (const bool inverse : {false, true})
            for (const int flag : {kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone})
                for (int order = 0; order <= last_order; ++order) {
                    const Case c = {form, order, flag, hint, inverse};
                    SCOPED_TRACE(testing::Message() << c);
                    test(c);
                }
}

// Tests

TEST(Fft16s, FixedPointIsThatOfTheModel) {
    for_each_case(
        [](const Case& c) {
            if (!c.fixed()) return;
            const Plan plan = make_plan(c);
            for (int kind = 0; kind < data_kinds; ++kind) {
                const std::vector<Kel16s> x = data(kind, static_cast<std::size_t>(c.sources()));
                for (const int factor : {0, c.order, 1, 3, -1, -c.order}) {
                    std::vector<Kel16s> y(static_cast<std::size_t>(c.results()), 99);
                    ASSERT_EQ(run(c, x.data(), y.data(), plan.get(), factor, nullptr), kelStatusOk);
                    ASSERT_EQ(y, model(c, x, factor)) << "data " << kind << " factor " << factor;
                }
            }
        },
        kelHintWideFixed, effort(10, 6));
}

TEST(Fft16s, EveryScaleFactorPasses) {
    for (const Form form : forms)
        for (const bool inverse : {false, true})
            for (const int order : {1, 5, 8}) {
                const Case c = {form, order, kelFftNormSqrt, kelHintDefault, inverse};
                SCOPED_TRACE(testing::Message() << c);
                const Plan plan = make_plan(c);
                const std::vector<Kel16s> x = data(2, static_cast<std::size_t>(c.sources()));
                std::vector<int> factors = {INT_MIN, INT_MIN + 1, -100, 100, INT_MAX - 20, INT_MAX};
                for (int factor = -40; factor <= 40; ++factor) factors.push_back(factor);
                for (const int factor : factors) {
                    std::vector<Kel16s> y(static_cast<std::size_t>(c.results()));
                    ASSERT_EQ(run(c, x.data(), y.data(), plan.get(), factor, nullptr), kelStatusOk);
                    ASSERT_EQ(y, model(c, x, factor)) << factor;
                }
            }
}

TEST(Fft16s, APointIsOnlyScaled) {
    struct {
        Kel16s x;
        int factor;
        Kel16s wanted;
    } const literals[] = {{3, 0, 3},       {3, 1, 2},           {-3, 1, -1},           {5, 1, 3},
                          {-5, 1, -2},     {20000, -1, 32767},  {-20000, -1, -32768},  {7, 31, 0},
                          {-7, 32, 0},     {1, INT_MIN, 32767}, {-1, INT_MIN, -32768}, {0, INT_MIN, 0},
                          {-32768, 16, 0}, {-32768, 15, -1},    {32767, INT_MAX, 0}};
    for_each_case(
        [&](const Case& c) {
            const Plan plan = make_plan(c);
            for (const auto& literal : literals) {
                const std::vector<Kel16s> x(2, literal.x);
                std::vector<Kel16s> y(3, 99), wanted = {literal.wanted, 99, 99};
                if (!is_real(c.form)) wanted[1] = literal.wanted;
                if (c.form == Form::ccs && !c.inverse) wanted[1] = 0;
                EXPECT_EQ(run(c, x.data(), y.data(), plan.get(), literal.factor, nullptr), kelStatusOk);
                EXPECT_EQ(y, wanted) << literal.x << " 2^-" << literal.factor;
            }
        },
        kelHintDefault, 0);
}

TEST(Fft16s, TwoPointsAreSumAndDifference) {
    const Case c = {Form::interleaved, 1, kelFftNormNone, kelHintDefault, false};
    const Kel16s x[] = {100, -7, 30, 32767};
    Kel16s y[4];
    ASSERT_EQ(run(c, x, y, make_plan(c).get(), 0, nullptr), kelStatusOk);
    EXPECT_EQ(std::vector<Kel16s>(y, y + 4), (std::vector<Kel16s>{130, 32760, 70, SHRT_MIN}));
}

// The single-precision engine, beyond the last order of fixed point too.
TEST(Fft16s, FloatingPointIsItsThreeSteps) {
    for_each_case(
        [](const Case& c) {
            if (c.order == 0 || c.fixed()) return;
            const Plan plan = make_plan(c);
            KelsFftPlan_32f* single = nullptr;
            (is_real(c.form) ? kelsFFTInitAlloc_R_32f : kelsFFTInitAlloc_C_32fc)(&single, c.order, c.flag, 0);
            for (const int kind : {0, 1}) {
                const std::vector<Kel16s> x = data(kind, static_cast<std::size_t>(c.sources()));
                std::vector<Kel32f> z(x.size() + 2);
                const std::size_t n = static_cast<std::size_t>(c.points());
                for (std::size_t i = 0; i < x.size(); ++i) z[c.form == Form::split ? 2 * (i % n) + i / n : i] = x[i];
                auto* pairs = reinterpret_cast<Kel32fc*>(z.data());
                Kel32f* values = z.data();
                switch (c.form) {
                case Form::perm:
                    (c.inverse ? kelsFFTInv_PermToR_32f : kelsFFTFwd_RToPerm_32f)(values, values, single, nullptr);
                    break;
                case Form::pack:
                    (c.inverse ? kelsFFTInv_PackToR_32f : kelsFFTFwd_RToPack_32f)(values, values, single, nullptr);
                    break;
                case Form::ccs:
                    (c.inverse ? kelsFFTInv_CCSToR_32f : kelsFFTFwd_RToCCS_32f)(values, values, single, nullptr);
                    break;
                default:
                    (c.inverse ? kelsFFTInv_CToC_32fc : kelsFFTFwd_CToC_32fc)(pairs, pairs, single, nullptr);
                }
                for (const int factor : {0, c.order, -3, INT_MIN, INT_MAX}) {
                    std::vector<Kel16s> y(static_cast<std::size_t>(c.results())), wanted(y.size()), ordered(y.size());
                    ASSERT_EQ(run(c, x.data(), y.data(), plan.get(), factor, nullptr), kelStatusOk);
                    kelsConvert_32f16s_Sfs(values, wanted.data(), c.results(), kelRndNear, factor);
                    for (std::size_t i = 0; i < y.size(); ++i)
                        ordered[i] = wanted[c.form == Form::split ? 2 * (i % n) + i / n : i];
                    ASSERT_EQ(y, ordered) << "data " << kind << " factor " << factor;
                }
            }
            (is_real(c.form) ? kelsFFTFree_R_32f : kelsFFTFree_C_32fc)(single);
        },
        kelHintFloat, 13);
}

TEST(Fft16s, EnginesMeetAtTheBordersOfTheHints) {
    for (const auto& [hint, border] : {std::pair(0, 8), std::pair(1, 10), std::pair(-1, 0)})
        for (int order = 1; order <= 11; ++order) {
            const Case c = {Form::perm, order, kelFftNormNone, hint, false};
            const Case as_float = {Form::perm, order, kelFftNormNone, kelHintFloat, false};
            const std::vector<Kel16s> x = data(0, static_cast<std::size_t>(c.points()));
            std::vector<Kel16s> y(x.size()), wanted(x.size());
            run(c, x.data(), y.data(), make_plan(c).get(), order / 2, nullptr);
            run(as_float, x.data(), wanted.data(), make_plan(as_float).get(), order / 2, nullptr);
            EXPECT_EQ(y == (order <= border ? model(c, x, order / 2) : wanted), true) << order << " hint " << hint;
        }
}

// In place and not, at odd addresses, flush against unmapped pages on either side, with a buffer of the stated size.
TEST(Fft16s, StaysInsideItsArraysInPlaceToo) {
    for (const int hint : {kelHintWideFixed, kelHintFloat})
        for_each_case(
            [](const Case& c) {
                if (c.flag != kelFftNormSqrt) return;
                const Plan plan = make_plan(c);
                const std::size_t source_bytes = 2 * static_cast<std::size_t>(c.sources());
                const std::size_t bytes = 2 * static_cast<std::size_t>(c.results());
                const std::size_t room = std::max(bytes, source_bytes);
                const std::vector<Kel16s> x = data(0, static_cast<std::size_t>(c.sources()));
                std::vector<Kel16s> wanted(static_cast<std::size_t>(c.results()));
                ASSERT_EQ(run(c, x.data(), wanted.data(), plan.get(), 2, nullptr), kelStatusOk);
                int size = 0;
                (is_real(c.form)         ? kelsFFTGetBufSize_R_16s
                 : c.form == Form::split ? kelsFFTGetBufSize_C_16s
                                         : kelsFFTGetBufSize_C_16sc)(plan.get(), &size);
                kels_test::GuardedMemory source(room + 2), target(room + 2), work(static_cast<std::size_t>(size) + 1);
                const long before = kels_test::allocations();
                for (const std::size_t offset : {0, 1}) {
                    auto* src = reinterpret_cast<Kel16s*>(source.end() - source_bytes - offset);
                    auto* dst = reinterpret_cast<Kel16s*>(target.end() - bytes - offset);
                    auto* front = reinterpret_cast<Kel16s*>(target.begin() + offset);
                    auto* both = reinterpret_cast<Kel16s*>(source.end() - room - offset);
                    auto* buffer = reinterpret_cast<Kel8u*>(work.end() - size - offset);
                    for (Kel16s* to : {dst, front, both}) {
                        Kel16s* from = to == both ? both : src;
                        std::memcpy(static_cast<void*>(from), x.data(), source_bytes);
                        ASSERT_TRUE(kels_test::runs_without_fault([&] { run(c, from, to, plan.get(), 2, buffer); }));
                        EXPECT_EQ(std::memcmp(to, wanted.data(), bytes), 0) << "offset " << offset;
                    }
                }
                EXPECT_EQ(kels_test::allocations(), before);
            },
            hint, 10);
}

// A value that a CCS inverse does not read, and those beyond its result that it does not write.
TEST(Fft16s, TheFixedEntriesOfCcsAreNotRead) {
    for (const int order : {0, 1, 2, 6, 9}) {
        const Case c = {Form::ccs, order, kelFftNormNone, kelHintDefault, true};
        const Plan plan = make_plan(c);
        std::vector<Kel16s> x = data(2, static_cast<std::size_t>(c.sources())), y(x.size()), other = x;
        other[1] = other.back() = 777;
        run(c, x.data(), y.data(), plan.get(), 0, nullptr);
        run(c, other.data(), other.data(), plan.get(), 0, nullptr);
        y.resize(static_cast<std::size_t>(c.points()));
        EXPECT_EQ(other.back(), 777);
        other.resize(y.size());
        EXPECT_EQ(other, y) << order;
    }
}

TEST(Fft16s, OneOfTwoArraysMayBeInPlace) {
    for (const int order : {0, 1, 4, 7, 10}) {
        const Case c = {Form::split, order, kelFftNormInv, kelHintDefault, true};
        const Plan plan = make_plan(c);
        const std::size_t n = static_cast<std::size_t>(c.points());
        const std::vector<Kel16s> x = data(0, 2 * n);
        std::vector<Kel16s> wanted(2 * n);
        run(c, x.data(), wanted.data(), plan.get(), 0, nullptr);
        std::vector<Kel16s> re(x.begin(), x.begin() + c.points()), im(x.begin() + c.points(), x.end()), other(n);
        kelsFFTInv_CToC_16s_Sfs(re.data(), im.data(), re.data(), other.data(), plan.get(), 0, nullptr);
        re.insert(re.end(), other.begin(), other.end());
        EXPECT_EQ(re, wanted) << order;
    }
}

TEST(Fft16s, RefusesForeignPlansAndNulls) {
    for (const Form form : forms)
        for (const bool inverse : {false, true})
            for (const int hint : {kelHintDefault, kelHintFloat}) {
                const Case c = {form, 4, kelFftNormNone, hint, inverse};
                SCOPED_TRACE(testing::Message() << c);
                const Plan plan = make_plan(c);
                const Plan foreign =
                    make_plan({is_real(form) ? Form::split : Form::perm, 4, kelFftNormNone, hint, inverse});
                const std::vector<Kel16s> x(40, 5);
                std::vector<Kel16s> y(40, 7);
                EXPECT_EQ(run(c, x.data(), y.data(), nullptr, 0, nullptr), kelStatusNullPtr);
                EXPECT_EQ(run(c, x.data(), y.data(), foreign.get(), 0, nullptr), kelStatusContextMismatch);
                if (form == Form::split) {
                    const auto split = inverse ? kelsFFTInv_CToC_16s_Sfs : kelsFFTFwd_CToC_16s_Sfs;
                    const Kel16s* in = x.data();
                    Kel16s* out = y.data();
                    EXPECT_EQ(split(nullptr, in, out, out, foreign.get(), 0, nullptr), kelStatusContextMismatch);
                    EXPECT_EQ(split(nullptr, in, out, out, plan.get(), 0, nullptr), kelStatusNullPtr);
                    EXPECT_EQ(split(in, nullptr, out, out, plan.get(), 0, nullptr), kelStatusNullPtr);
                    EXPECT_EQ(split(in, in, nullptr, out, plan.get(), 0, nullptr), kelStatusNullPtr);
                    EXPECT_EQ(split(in, in, out, nullptr, plan.get(), 0, nullptr), kelStatusNullPtr);
                } else {
                    EXPECT_EQ(run(c, nullptr, y.data(), foreign.get(), 0, nullptr), kelStatusContextMismatch);
                    EXPECT_EQ(run(c, nullptr, y.data(), plan.get(), 0, nullptr), kelStatusNullPtr);
                    EXPECT_EQ(run(c, x.data(), nullptr, plan.get(), 0, nullptr), kelStatusNullPtr);
                }
                EXPECT_EQ(y, std::vector<Kel16s>(40, 7));
            }
}

TEST(Fft16s, WantsMemoryInFloatingPointOnly) {
    for (const Form form : forms)
        for (const bool inverse : {false, true}) {
            const Case c = {form, 5, kelFftNormNone, kelHintFloat, inverse};
            const Plan plan = make_plan(c);
            const std::vector<Kel16s> x(static_cast<std::size_t>(c.sources()), 5);
            kels_test::for_each_allocation_failure([&] {
                std::vector<Kel16s> y(static_cast<std::size_t>(c.results()), 7);
                const std::vector<Kel16s> before = y;
                const KelStatus status = run(c, x.data(), y.data(), plan.get(), 0, nullptr);
                EXPECT_EQ(y == before, status != kelStatusOk);
                return status;
            });
            const Case fixed = {form, 5, kelFftNormNone, kelHintDefault, inverse};
            const Plan fixed_plan = make_plan(fixed);
            std::vector<Kel16s> y(static_cast<std::size_t>(c.results()));
            const long before = kels_test::allocations();
            EXPECT_EQ(run(fixed, x.data(), y.data(), fixed_plan.get(), 0, nullptr), kelStatusOk);
            EXPECT_EQ(kels_test::allocations(), before);
        }
}

TEST(Fft16s, ModesOfTheCallerDoNotReachFixedPoint) {
    const kels_test::KeepControlState keep;
    const Case c = {Form::ccs, 7, kelFftNormSqrt, kelHintDefault, false};
    const std::vector<Kel16s> x = data(0, static_cast<std::size_t>(c.sources()));
    const std::vector<Kel16s> wanted = model(c, x, 1);
    for (const auto& modes : kels_test::odd_modes) {
        modes.load();
        const Plan plan = make_plan(c);
        std::vector<Kel16s> y(static_cast<std::size_t>(c.results()));
        run(c, x.data(), y.data(), plan.get(), 1, nullptr);
        EXPECT_TRUE(kels_test::ControlState::current().same_modes(modes));
        EXPECT_EQ(y, wanted);
    }
}

TEST(Fft16s, ThreadsShareAPlan) {
    for (const int hint : {kelHintDefault, kelHintFloat}) {
        const Case c = {Form::interleaved, 8, kelFftNormFwd, hint, false};
        const Plan plan = make_plan(c);
        const std::vector<Kel16s> x = data(0, static_cast<std::size_t>(c.sources()));
        std::vector<Kel16s> wanted(x.size());
        run(c, x.data(), wanted.data(), plan.get(), 0, nullptr);
        std::vector<std::vector<Kel16s>> results(4, std::vector<Kel16s>(x.size()));
        std::vector<std::thread> threads;
        for (auto& y : results)
            threads.emplace_back([&] {
                for (int i = 0; i < 20; ++i) run(c, x.data(), y.data(), plan.get(), 0, nullptr);
            });
        for (auto& thread : threads) thread.join();
        for (const auto& y : results) EXPECT_EQ(y, wanted);
    }
}

} // namespace
