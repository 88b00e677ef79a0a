// Convolutions against their definition in extended precision: short ones step by step, every way of long ones.

#include "filters/convolution/definitions.h"

namespace {

using namespace kels_test;
using namespace filter_test;

/// Every sum rounded to single precision, in the order of the shorter vector.
template <class T>
std::vector<Kel32f> stepwise(const std::vector<T>& a, const std::vector<T>& b) {
    const auto& longer = a.size() < b.size() ? b : a;
    const auto& shorter = a.size() < b.size() ? a : b;
    std::vector<Kel32f> y(a.size() + b.size() - 1);
    for (std::size_t j = 0; j < shorter.size(); ++j)
        for (std::size_t i = 0; i < longer.size(); ++i)
            y[i + j] = static_cast<Kel32f>(y[i + j] + static_cast<long double>(shorter[j]) * longer[i]);
    return y;
}

template <class T>
constexpr auto function = [] {
    if constexpr (std::is_integral_v<T>)
        return kelsConv_16s_Sfs;
    else
        return kelsConv_32f;
}();

template <class T>
std::vector<T> convolve(const std::vector<T>& a, const std::vector<T>& b, Edge edge, int scale = 0) {
    const GuardedArray<T> x(a, edge), y(b, edge);
    GuardedArray<T> dst(a.size() + b.size() - 1, edge);
    EXPECT_EQ(call(function<T>, scale, x.data(), static_cast<int>(a.size()), y.data(), static_cast<int>(b.size()),
                   dst.data()),
              kelStatusOk);
    return dst.values();
}

constexpr int short_lengths[][2] = {{1, 1},  {1, 149}, {149, 1}, {75, 75}, {74, 75},
                                    {3, 40}, {40, 3},  {16, 17}, {64, 64}};
constexpr int long_lengths[][2] = {{75, 76},    {76, 75},    {150, 1},    {1, 3000},   {149, 2},
                                   {300, 300},  {257, 700},  {700, 257},  {1000, 999}, {20000, 5},
                                   {4096, 256}, {400, 5000}, {1500, 1500}};

TEST(Convolution, RoundsEveryStepOfShortOnes) {
    Random random("short convolutions");
    for (const auto& [m, n] : short_lengths)
        for (const Edge edge : edges) {
            const auto a = noise<Kel32f>(random, m), b = noise<Kel32f>(random, n);
            EXPECT_EQ(convolve(a, b, edge), stepwise(a, b)) << m << " " << n;
            const auto c = noise<Kel16s>(random, m), d = noise<Kel16s>(random, n);
            const auto sums = stepwise(c, d);
            for (const int scale : {0, 1, 15, 17, 20, 31, 200, INT_MAX, -1, -3, INT_MIN}) {
                std::vector<Kel16s> want;
                for (const Kel32f sum : sums) want.push_back(scaled<Kel16s>(sum, scale));
                EXPECT_EQ(convolve(c, d, edge, scale), want) << m << " " << n << " scale " << scale;
            }
        }
}

TEST(Convolution, LongOnes) {
    Random random("long convolutions");
    for (const auto& [m, n] : long_lengths) {
        const auto a = noise<Kel32f>(random, m), b = noise<Kel32f>(random, n);
        const auto want = convolved(a, b);
        const long double slack = 0x1p-22L * norm(a) * norm(b);
        const auto c = noise<Kel16s>(random, m), d = noise<Kel16s>(random, n);
        const auto integers = convolved(c, d);
        for (const Edge edge : edges) {
            const int scale = edge == Edge::front ? 14 : 20;
            const long double power = std::ldexp(1.0L, -scale), steps = 0x1p-22L * norm(c) * norm(d) * power + 0.5L;
            const auto y = convolve(a, b, edge);
            const auto z = convolve(c, d, edge, scale);
            for (std::size_t k = 0; k < want.size(); ++k) {
                ASSERT_NEAR(y[k], want[k], slack + std::fabs(want[k]) * 0x1p-23L) << m << " " << n << " result " << k;
                ASSERT_NEAR(z[k], std::clamp(integers[k] * power, -32768.0L, 32767.0L), steps)
                    << m << " " << n << " result " << k;
            }
        }
    }
}

// As if the other samples were not there: no way of the direct sums multiplies what is outside.
TEST(Convolution, InfinitiesReachTheirTermsOnly) {
    std::vector<Kel32f> a(40, 1), b(30, 2);
    a[39] = HUGE_VALF;
    b[0] = std::nanf("");
    const auto y = convolve(a, b, Edge::front);
    for (std::size_t k = 0; k < y.size(); ++k) {
        EXPECT_EQ(std::isnan(y[k]), k < 40) << k;
        EXPECT_EQ(std::isinf(y[k]), k >= 40) << k;
    }
}

template <class T>
void expect_frame() {
    Untouched memory;
    T *const x = memory.array<T>(2), *const y = memory.array<T>(2), *const z = memory.array<T>(3);
    memory.expect_checks(function<T>, std::tuple(x, 2, y, 2, z), {null(0), null(2), null(4), size(1), size(3)});
    Random random("convolutions without memory");
    const auto a = noise<T>(random, 3000);
    std::vector<T> sums(5999);
    for_each_allocation_failure([&] { return call(function<T>, 15, a.data(), 3000, a.data(), 3000, sums.data()); });
}

TEST(Convolution, ChecksAndMemory) {
    expect_frame<Kel32f>();
    expect_frame<Kel16s>();
    const Kel16s few[10] = {};
    Kel16s sums[19];
    for_each_allocation_failure([&] { // a status of their own
        const KelStatus status = kelsConv_16s_Sfs(few, 10, few, 10, sums, 15);
        EXPECT_NE(status, kelStatusNoMemory);
        return status == kelStatusNullPtr ? kelStatusNoMemory : status;
    });
}

TEST(Convolution, IntegersInAnyMode) {
    Random random("convolutions in any mode");
    for (const int n : {60, 700}) {
        const auto a = noise<Kel16s>(random, n), b = noise<Kel16s>(random, n);
        const auto want = convolve(a, b, Edge::back, 16);
        std::vector<Kel16s> y(want.size());
        in_odd_modes([&] { kelsConv_16s_Sfs(a.data(), n, b.data(), n, y.data(), 16); }, [&] { EXPECT_EQ(y, want); });
    }
}

// Cyclic convolutions

/// Against the definition, in place of the second vector, too.
template <class H, class R>
void expect_cyclic(KelStatus (*function)(const Kel32f*, const H*, R*), const std::vector<Kel32f>& x, std::vector<H> h) {
    const std::size_t n = h.size();
    std::vector<R> y(n);
    ASSERT_EQ(function(x.data(), h.data(), y.data()), kelStatusOk);
    for (std::size_t k = 0; k < n; ++k) {
        Number sum;
        for (std::size_t j = 0; j < n; ++j) sum += number(x[j]) * number(h[(k - j) % n]);
        const Number error = number(y[k]) - sum;
        EXPECT_LE(std::fabs(error.real()), 0x1p-24L * std::fabs(sum.real()) + 0x1p-50L);
        EXPECT_LE(std::fabs(error.imag()), 0x1p-24L * std::fabs(sum.imag()) + 0x1p-50L);
    }
    ASSERT_EQ(function(x.data(), h.data(), h.data()), kelStatusOk);
    EXPECT_TRUE(same(h, y));
}

TEST(CyclicConvolution, RealNumbers) {
    Random random("cyclic convolutions");
    for (int i = 0; i < 200; ++i) {
        const auto x = noise<Kel32f>(random, 8);
        expect_cyclic(kelsConvCyclic8x8_32f, x, noise<Kel32f>(random, 8));
        expect_cyclic(kelsConvCyclic4x4_32f32fc, x, noise<Kel32fc>(random, 4));
    }
}

TEST(CyclicConvolution, SixteenBitsWrapShiftAndSaturate) {
    Random random("cyclic convolutions of 16 bits");
    for (int i = 0; i < 400; ++i) {
        auto x = noise<Kel16s>(random, 8), h = noise<Kel16s>(random, 8);
        if (i % 3 == 0) {
            for (Kel16s& v : x) v = static_cast<Kel16s>(v % 20);
            for (Kel16s& v : h) v = static_cast<Kel16s>(v % 20);
        }
        if (i == 1) x = h = std::vector<Kel16s>(8, -32768);
        for (const int scale : {0, 1, 2, 15, 16, 30, 31, 32, 33, INT_MAX, -1, -2, -8, -30, -31, -32, -33, INT_MIN}) {
            Kel16s y[8];
            EXPECT_EQ(kelsConvCyclic8x8_16s_Sfs(x.data(), h.data(), y, scale), kelStatusOk);
            for (std::size_t k = 0; k < 8; ++k) {
                std::int64_t sum = 0;
                for (std::size_t j = 0; j < 8; ++j) sum += std::int64_t{x[j]} * h[(k - j) % 8];
                const std::int64_t wrapped = static_cast<std::int32_t>(sum & 0xFFFFFFFF);
                const std::int64_t shift = scale;
                std::int64_t want = wrapped;
                if (shift > 0) want = wrapped >> std::min<std::int64_t>(shift, 31);
                if (shift < 0) want = shift <= -32 ? 0 : static_cast<std::int32_t>((sum << -shift) & 0xFFFFFFFF);
                EXPECT_EQ(y[k], std::clamp<std::int64_t>(want, -32768, 32767)) << scale;
            }
        }
    }
    Kel16s x[8] = {-3}, h[8] = {1}, y[8];
    kelsConvCyclic8x8_16s_Sfs(x, h, y, 1);
    EXPECT_EQ(y[0], -2);
}

} // namespace
