// Transforms of 16-bit data in floating point: the single-precision transform between two conversions, to the bit.

#include "kels/conversion.h"
#include "transforms/families.h"

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
    struct {
        Kel16s x;
        int scale;
        Kel16s wanted;
    } const literals[] = {{3, 0, 3},
                          {3, 1, 2},
                          {-3, 1, -1},
                          {5, 0, 5},
                          {5, 1, 3},
                          {-5, 1, -2},
                          {1, 1, 1},
                          {-1, 1, 0},
                          {7, 31, 0},
                          {-7, 32, 0},
                          {32767, 15, 1},
                          {32767, 16, 0},
                          {32767, 32, 0},
                          {32767, INT_MAX, 0},
                          {-32768, 15, -1},
                          {-32768, 16, 0},
                          {-32768, 31, 0},
                          {-32768, 32, 0},
                          {-32768, INT_MAX, 0},
                          {3, -2, 12},
                          {20000, -1, 32767},
                          {3, -14, 32767},
                          {-20000, -1, -32768},
                          {-3, -14, -32768},
                          {-2, -14, -32768},
                          {1, -15, 32767},
                          {-1, -15, -32768},
                          {5, -20, 32767},
                          {1, INT_MIN, 32767},
                          {0, INT_MIN, 0},
                          {-1, INT_MIN, -32768},
                          {1, -40, 32767}};
    for (const int flag : flags)
        for_each_case<F>(
            {1},
            [&](const Case<F>& c) {
                for (const auto& literal : literals) {
                    std::vector<Kel16s> wanted(c.results(), literal.wanted);
                    if (c.layout == Layout::ccs && !c.inverse) wanted[1] = 0;
                    EXPECT_EQ(c.transformed(std::vector<Kel16s>(c.sources(), literal.x), literal.scale), wanted)
                        << literal.x << " 2^-" << literal.scale;
                }
            },
            flag);
}

TEST(Integers, OfOnePointAreScaledWithTiesUp) {
    expect_points_scaled<Fft16s>();
    expect_points_scaled<Dft16s>();
    expect_points_scaled<Dct16s>();
}

} // namespace
