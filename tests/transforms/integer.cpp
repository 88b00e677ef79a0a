// Transforms of 16-bit data in floating point: the single-precision transform between two conversions, to the bit.

#include "kels/conversion.h"
#include "transforms/families.h"

#include <cmath>

namespace {

using namespace transform_test;

template <class Of16Bits, class OfSingles>
void expect_rounded_singles(const std::vector<int>& lengths) {
    std::size_t count = 0;
    for (const int scale : {0, 1, 5, 12, -1, -3, 100, -100, INT_MAX, INT_MIN})
        for_each_case<Of16Bits>(
            lengths,
            [&](const Case<Of16Bits>& c) {
                const Case<OfSingles> single = {c.layout, c.inverse, c.n, c.flag};
                const std::vector<Kel16s> x = c.noise();
                const std::vector<Kel32f> y = single.transformed({x.begin(), x.end()});
                std::vector<Kel16s> wanted(y.size());
                kelsConvert_32f16s_Sfs(y.data(), wanted.data(), static_cast<int>(y.size()), kelRndNear, scale);
                ASSERT_EQ(c.transformed(x, scale), wanted) << "scale " << scale;
            },
            flags[count++ % 4], kelHintFloat);
}

TEST(Integers, AreTheSingleTransformRounded) {
    expect_rounded_singles<Fft16s, Fft32f>({2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192});
    expect_rounded_singles<Dft16s, Dft32f>({2, 3, 4, 5, 6, 7, 8, 15, 16, 60, 97, 181, 240, 257, 1000, 1009, 2018});
    expect_rounded_singles<Dct16s, Dct32f>({2, 3, 4, 8, 15, 16, 97, 101, 509, 1000, 1024});
}

/// Transforms of one point only scale it, with ties up.
template <class F>
void expect_points_scaled() {
    const auto body = [](const Case<F>& c) {
        const auto plan = c.plan();
        for (const int x : {0, 1, -1, -2, 3, -3, 5, -5, 7, -7, 20000, -20000, 32767, -32768})
            for (const int scale : {0, 1, 15, 16, 31, 32, INT_MAX, -1, -2, -14, -15, -20, -40, INT_MIN}) {
                const double scaled = std::floor(std::ldexp(x, -std::clamp(scale, -100, 100)) + 0.5);
                std::vector<Kel16s> wanted(c.results(), static_cast<Kel16s>(std::clamp(scaled, -32768.0, 32767.0)));
                if (c.layout == Layout::ccs && !c.inverse) wanted[1] = 0;
                const std::vector<Kel16s> points(c.sources(), static_cast<Kel16s>(x));
                EXPECT_EQ(c.transformed(points, plan.get(), scale), wanted) << x << " 2^-" << scale;
            }
    };
    for (const int flag : flags) for_each_case<F>({1}, body, flag);
}

TEST(Integers, OfOnePointAreScaledWithTiesUp) {
    expect_points_scaled<Fft16s>();
    expect_points_scaled<Dft16s>();
    expect_points_scaled<Dct16s>();
}

} // namespace
