// The C++ face: that calls reach the C functions they should, with the arguments in their places, and what is refused.

#include <kels.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <numeric>
#include <vector>

namespace {

using floats = std::vector<float>;
using shorts = std::vector<Kel16s>;
using complexes = std::vector<std::complex<float>>;

template <class Call>
KelStatus thrown_by(Call call) {
    try {
        call();
    } catch (const kels::error& e) {
        EXPECT_STREQ(e.what(), kelGetStatusString(e.status()));
        return e.status();
    }
    return kelStatusOk;
}

floats wave(int n) {
    floats x(n);
    for (int i = 0; i < n; ++i) x[i] = std::sin(0.3f * i) + 0.01f * i;
    return x;
}

TEST(CppFunctions, TakeTheirTypeFromTheArrays) {
    floats d(3);
    EXPECT_EQ(kels::add(floats{1, 2, 3}, floats{10, 20, 30}, d), kelStatusOk);
    EXPECT_EQ(d, (floats{11, 22, 33}));
    const double a[] = {1, 2};
    std::array<double, 2> e;
    kels::mul(a, std::span(a), e);
    EXPECT_EQ(e, (std::array<double, 2>{1, 4}));
    shorts s(2);
    kels::add(shorts{30000, 3}, shorts{30000, 3}, s);
    EXPECT_EQ(s, (shorts{32767, 6}));
    floats whole(2);
    kels::add(shorts{30000, 3}, shorts{30000, 3}, whole);
    EXPECT_EQ(whole, (floats{60000, 6}));
    kels::add(std::span(d).first(2), std::span(d).last(2), std::span(d).first(2));
    EXPECT_EQ(d, (floats{33, 55, 33}));
}

TEST(CppFunctions, ScaleIntegersLast) {
    shorts d(2);
    kels::add(shorts{100, 3}, shorts{100, 3}, d, kels::scale(3));
    EXPECT_EQ(d, (shorts{25, 1}));
    std::vector<Kel8u> bytes(1);
    kels::add(std::vector<Kel8u>{200}, std::vector<Kel8u>{100}, bytes); // no function without a scale factor
    EXPECT_EQ(bytes[0], 255);
    kels::convert(floats{2.5f, 3.5f}, d, kelRndNear, kels::scale(-1));
    EXPECT_EQ(d, (shorts{5, 7}));
}

TEST(CppFunctions, StandAsOneWritesThem) {
    floats d(2), x{10, 20};
    const floats y{2, 5};
    kels::sub(x, y, d);
    EXPECT_EQ(d, (floats{8, 15}));
    kels::div(x, y, d);
    EXPECT_EQ(d, (floats{5, 4}));
    kels::sub(x, 1.f, d);
    EXPECT_EQ(d, (floats{9, 19}));
    kels::sub(1.f, x, d);
    EXPECT_EQ(d, (floats{-9, -19}));
    std::vector<Kel16u> quotient(2);
    kels::div(40, std::vector<Kel16u>{10, 20}, quotient);
    EXPECT_EQ(quotient, (std::vector<Kel16u>{4, 2}));
}

TEST(CppFunctions, WithoutADestinationChangeTheFirstArray) {
    floats x{16, 25};
    const floats y{6, 5};
    kels::sub(x, y);
    EXPECT_EQ(x, (floats{10, 20}));
    kels::div(x, y);
    EXPECT_EQ(x, (floats{10.f / 6, 4}));
    x = {16, 25};
    kels::sqrt(x);
    kels::add(x, 1);
    EXPECT_EQ(x, (floats{5, 6}));
    kels::sub(1.f, x);
    EXPECT_EQ(x, (floats{-4, -5}));
    kels::threshold_lt_val(x, -4, 0);
    EXPECT_EQ(x, (floats{-4, 0}));
}

TEST(CppFunctions, TakeStandardComplexNumbers) {
    complexes z{{1, 2}, {3, 4}};
    floats magnitude(2);
    kels::power_spectr(z, magnitude);
    EXPECT_EQ(magnitude, (floats{5, 25}));
    kels::mul(z, std::complex<float>(0, 1));
    EXPECT_EQ(z, (complexes{{-2, 1}, {-4, 3}}));
    const std::vector<Kel32fc> records{{1, 1}, {1, 1}};
    kels::add(z, records, z);
    EXPECT_EQ(z, (complexes{{-1, 2}, {-3, 4}}));
    const Kel32fc sum = kels::sum(z);
    EXPECT_EQ(sum.re, -4);
    EXPECT_EQ(sum.im, 6);
    kels::set({5, 6}, z);
    EXPECT_EQ(z[1], (std::complex<float>(5, 6)));
}

TEST(CppFunctions, ReturnValues) {
    EXPECT_EQ(kels::norm_l2(floats{3, 4}), 5.f);
    const auto [largest, where] = kels::max_indx(floats{3, 9, 4});
    EXPECT_EQ(largest, 9.f);
    EXPECT_EQ(where, 1);
    const floats big{1e30f};
    EXPECT_EQ(kels::dot_prod(big, big), INFINITY);
    static_assert(std::is_same_v<decltype(kels::dot_prod(big, big)), float>);
    EXPECT_EQ(kels::dot_prod<double>(big, big), static_cast<double>(1e30f) * 1e30f);
    EXPECT_EQ(kels::norm_l1(shorts{-30000, 30000}), 60000.f);
    EXPECT_EQ(kels::norm_l1<Kel32s>(shorts{-30000, 30000}, kels::scale(1)), 30000);
    EXPECT_EQ(kels::sum(shorts{30000, 30000}), 32767);
    EXPECT_EQ(kels::sum<Kel32s>(shorts{30000, 30000}), 60000);
}

TEST(CppFunctions, TellWarningsAndThrowErrors) {
    floats d(2, 7);
    EXPECT_EQ(kels::div(floats{1, 2}, floats{1, 0}, d), kelStatusDivByZeroValues);
    KelStatus warning = kelStatusOk;
    EXPECT_EQ(kels::sum_ln(floats{0, 1}, &warning), -INFINITY);
    EXPECT_EQ(warning, kelStatusLnZeroArg);
    d = {7, 7};
    EXPECT_EQ(thrown_by([&] { kels::add(floats{1, 2}, floats{1}, d); }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([&] { kels::add(floats{1}, floats{1}, d); }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([&] { kels::div(d, 0.f); }), kelStatusDivByZero);
    EXPECT_EQ(d, (floats{7, 7}));
    EXPECT_NE(thrown_by([] { kels::sum(floats{}); }), kelStatusOk);
}

TEST(CppFunctions, MeasureEveryShape) {
    floats d(4);
    kels::conv(floats{1, 1}, floats{1, 2, 3}, d);
    EXPECT_EQ(d, (floats{1, 3, 5, 3}));
    EXPECT_EQ(thrown_by([&] { kels::conv(floats{1, 1}, floats{1, 2}, d); }), kelStatusBadSize);

    floats low(2), high(1);
    kels::wt_haar_fwd(floats{1, 3, 5}, low, high);
    EXPECT_EQ(low, (floats{2, 5}));
    EXPECT_EQ(thrown_by([&] { kels::wt_haar_fwd(floats{1, 3, 5}, high, low); }), kelStatusBadSize);

    int phase = 1;
    floats kept(3);
    EXPECT_EQ(kels::sample_down(floats{0, 1, 2, 3, 4, 5}, kept, 2, phase), 3);
    EXPECT_EQ(kept, (floats{1, 3, 5}));
    EXPECT_EQ(thrown_by([&] { kels::sample_down(floats(7), kept, 2, phase = 0); }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([&] { kels::sample_down(floats(7), kept, 0, phase); }), kelStatusFactorRange);

    // Two ticks for one sample, the mean of a sample and itself.
    floats up(4), ring(1);
    kels::fir_multirate_direct(floats{1, 2}, up, floats{1, 1}, 2, 0, 1, 0, ring);
    EXPECT_EQ(up, (floats{1, 1, 2, 2}));
    EXPECT_EQ(thrown_by([&] {
                  kels::fir_multirate_direct(floats{1, 2}, up, floats{1, 1}, 1, 0, 1, 0, ring);
              }),
              kelStatusBadSize);
    EXPECT_NE(thrown_by([&] {
                  kels::fir_multirate_direct(floats{1, 2}, up, floats{1, 1}, 2, 0, 0, 0, ring);
              }),
              kelStatusOk);

    int index = 0;
    floats x{1, 0, 0}, line(4);
    kels::fir_direct(x, floats{2, 3}, line, index);
    EXPECT_EQ(x, (floats{2, 3, 0}));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(kels::fir_direct_one(1.f, floats{2, 3}, line, index), 2.f);

    complexes two(2);
    kels::goertz_two(complexes{1, 1, 1, 1}, two, floats{0, 0.25f});
    EXPECT_EQ(two[0], 4.f);
    std::vector<Kel16u> found(2);
    std::vector<int> at(2);
    kels::find_nearest(std::vector<Kel16u>{7, 1}, found, at, std::vector<Kel16u>{0, 5, 9});
    EXPECT_EQ(found, (std::vector<Kel16u>{5, 0}));
    EXPECT_EQ(at, (std::vector<int>{1, 0}));
}

TEST(CppTransforms, GiveTheBitsOfC) {
    const floats x = wave(16);
    const kels::fft<float> real(16);
    complexes half(9), whole(16);
    real.forward(x, half);

    const kels::fft<std::complex<float>> full(16);
    full.forward(complexes(x.begin(), x.end()), whole);
    for (int k = 0; k < 9; ++k) EXPECT_NEAR(std::abs(half[k] - whole[k]), 0, 1e-5);

    floats perm(16), back(16), re(16), im(16), zero(16);
    real.forward_perm(x, perm);
    EXPECT_EQ(perm[1], half[8].real());
    real.inverse(half, back);
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(back[i], x[i], 1e-5);
    real.inverse_perm(perm, perm);
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(perm[i], x[i], 1e-5);

    kels::fft<kels::split<float>>(16).forward(x, zero, re, im);
    for (int k = 0; k < 9; ++k) EXPECT_NEAR(re[k], half[k].real(), 1e-5);

    EXPECT_EQ(thrown_by([] { kels::fft<float>(12); }), kelStatusBadFftOrder);
    EXPECT_EQ(thrown_by([] { kels::dft<float>(0); }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([&] { real.forward(x, whole); }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([&] { real.forward(x, half, kels::scale(1)); }), kelStatusBadArg); // which floats have not
}

TEST(CppTransforms, OfIntegersAndAnyLength) {
    const shorts x{100, 200, 300, 400, 500, 600};
    std::vector<Kel16sc> bins(4);
    const kels::dft<Kel16s> plan(6, kels::norm::none);
    std::vector<Kel8u> room(plan.scratch_size());
    plan.forward(x, bins, kels::scale(1), room);
    EXPECT_EQ(bins[0].re, 1050);
    EXPECT_EQ(bins[3].re, -150);
    shorts back(6);
    plan.inverse(bins, back, kels::scale(1));
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(back[i], 1.5 * x[i], 2);

    const kels::dct<double> cosines(7);
    std::vector<double> y{1, 2, 3, 4, 5, 6, 8}, z(7);
    cosines.forward(y, z);
    EXPECT_NEAR(z[0], 29 / std::sqrt(7), 1e-14);
    cosines.inverse(z, z);
    for (int i = 0; i < 7; ++i) EXPECT_NEAR(z[i], y[i], 1e-14);
}

TEST(CppFilters, ContinueTheirStream) {
    const floats x = wave(50), taps{0.5f, 0.25f, -0.125f};
    floats whole(50), parts(50);
    kels::fir<float>{taps}(x, whole);
    kels::fir<float> filter(taps);
    filter(std::span(x).first(20), std::span(parts).first(20));
    EXPECT_EQ(filter.delay_line(), (floats{x[19], x[18], x[17]}));
    kels::fir<float> next(filter.taps(), filter.delay_line());
    next = std::move(filter);
    parts[20] = next.one(x[20]);
    std::copy(x.begin() + 21, x.end(), parts.begin() + 21);
    next(std::span(parts).last(29));
    EXPECT_EQ(whole, parts);
    EXPECT_EQ(whole[2], 0.5f * x[2] + 0.25f * x[1] - 0.125f * x[0]);
    EXPECT_EQ(thrown_by([&] { next(x, std::span(parts).first(3)); }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([] { kels::fir<float>(floats{}); }), kelStatusNullPtr);
}

TEST(CppFilters, OfIntegers) {
    shorts y(2);
    kels::fir<Kel32s, Kel16s> whole(std::vector<Kel32s>{1, 2}, 3);
    whole(shorts{1, 1}, y, kels::scale(1));
    EXPECT_EQ(y, (shorts{4, 12}));
    kels::fir<Kel32s, Kel16s> found(floats{0.5f, 0.25f});
    found(shorts{1000, 0}, y);
    EXPECT_EQ(y, (shorts{500, 250}));
    EXPECT_EQ(found.real_taps(), (floats{0.5f, 0.25f}));
    EXPECT_EQ(found.taps().taps[0], 2 * found.taps().taps[1]);
    kels::fir_multirate<float, Kel16s> doubled(floats{1, 1}, {.up = 2, .down = 1});
    shorts twice(4);
    doubled(shorts{5, 7}, twice);
    EXPECT_EQ(twice, (shorts{5, 5, 7, 7}));
    EXPECT_EQ(doubled.delay_line(), (shorts{7}));
}

TEST(CppFilters, WithPoles) {
    const std::vector<double> b{1, 0.5}, a{2, -1}, section{1, 0.5, 0, 2, -1, 0}, x{4, 0, 0, 0};
    std::vector<double> y(4), z(4);
    kels::iir<double> filter(b, a);
    filter(x, y);
    EXPECT_EQ(y, (std::vector<double>{2, 2, 1, 0.5}));
    EXPECT_EQ(filter.delay_line(), (std::vector<double>{0.25}));
    kels::biquads<double>{section}(x, z);
    EXPECT_EQ(z, y);
    EXPECT_EQ(thrown_by([&] { kels::iir<double>(b, x); }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([&] { kels::biquads<double>{x}; }), kelStatusBadSize);
    EXPECT_EQ(thrown_by([&] { kels::iir<double>(b, std::vector<double>{0, 1}); }), kelStatusDivByZero);
}

TEST(CppFilters, ThatAdapt) {
    floats x(4000), y(4000), reference(4000);
    kels::uniform_noise<float>(-1, 1, 7)(x);
    const floats system{0.5f, -0.25f};
    kels::fir<float>{system}(x, reference);
    kels::lms<float> filter(floats(2));
    filter(x, reference, y, 0.1f);
    EXPECT_NEAR(filter.taps()[0], 0.5f, 1e-4);
    EXPECT_NEAR(filter.taps()[1], -0.25f, 1e-4);
    EXPECT_EQ(filter.delay_line().samples.size(), 2u);

    kels::lms_multirate<Kel32s, Kel16s> steps(std::vector<Kel32s>{3 << 16, 2 << 16}, 1, 0, 1 << 15);
    steps.put(10);
    EXPECT_EQ(steps.one(), 30);
    EXPECT_EQ(steps.one(1), 23);
    EXPECT_EQ(steps.at(0), 10);
    steps.update(1);
    EXPECT_EQ(steps.taps(), (std::vector<Kel32s>{(3 << 16) + 1, (2 << 16) + 10}));
    EXPECT_EQ(steps.live_taps()[0], (2 << 16) + 10);
}

TEST(CppFilters, InTwoBands) {
    const floats low{0.5f, 0.5f}, high{0.5f, -0.5f}, back_low{1, 1}, back_high{-1, 1};
    kels::filter_bank<Kel16s> bank({.low = {low}, .high = {high}}, {.low = {back_low}, .high = {back_high}});
    const shorts x{8, 4, 2, 6, 1, 3, 9, 5};
    floats l(4), h(4);
    shorts y(8);
    bank.forward(x, l, h);
    EXPECT_EQ(l[1], 3.f);
    bank.inverse(l, h, y);
    EXPECT_EQ(shorts(y.begin() + 1, y.end()), shorts(x.begin(), x.end() - 1));
    EXPECT_EQ(bank.analysis.delay_lines().low, (floats{5}));
    bank.analysis.reset();
    EXPECT_EQ(bank.analysis.delay_lines().low, (floats{0}));
    EXPECT_EQ(thrown_by([&] { bank.forward(x, l, std::span(h).first(3)); }), kelStatusBadSize);
}

TEST(CppNoise, IsOneStream) {
    floats whole(10), parts(10), other(10);
    kels::normal_noise<float>(0, 1, 3)(whole);
    kels::normal_noise<float> noise(0, 1, 3);
    noise(std::span(parts).first(3));
    noise(std::span(parts).last(7));
    EXPECT_EQ(whole, parts);
    kels::normal_noise<float>(0, 1, 4)(other);
    EXPECT_NE(whole, other);
}

} // namespace
