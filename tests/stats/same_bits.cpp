// Reductions of singles give the same bits at every level and on 32-bit x86: those kept here.

#include "kels/statistics.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

/// The same on every machine: sums of it all but cancel, so that their last bits depend on the order.
std::vector<Kel32f> cancelling(std::size_t n) {
    std::mt19937 random(1);
    std::vector<Kel32f> x(n);
    Kel64f sum = 0;
    for (std::size_t i = 0; i + 1 < n; ++i) {
        const Kel32f value = static_cast<Kel32f>(static_cast<std::int32_t>(random())) * 0x1p-31F;
        x[i] = i % 3 == 0 ? value * 0x1p30F : value;
        sum += x[i];
    }
    x[n - 1] = static_cast<Kel32f>(-sum);
    return x;
}

class Checksum {
public:
    template <class R>
    void add(const R& result) {
        unsigned char bytes[sizeof result];
        std::memcpy(bytes, &result, sizeof result);
        for (const unsigned char byte : bytes) hash = (hash ^ byte) * 0x100000001B3;
    }
    std::uint64_t value() const { return hash; }

private:
    std::uint64_t hash = 0xCBF29CE484222325;
};

template <class R, class T, class... Hint>
void add_result(Checksum& sum, KelStatus (*function)(const T*, int, R*, Hint...), const T* x, int n) {
    R result;
    ASSERT_EQ(function(x, n, &result, Hint{}...), kelStatusOk);
    sum.add(result);
}

template <class R, class A, class B>
void add_result(Checksum& sum, KelStatus (*function)(const A*, const B*, int, R*), const A* x, const B* y, int n) {
    R result;
    ASSERT_EQ(function(x, y, n, &result), kelStatusOk);
    sum.add(result);
}

TEST(ReductionsOfSingles, SameBitsEverywhere) {
    const std::vector<Kel32f> data = cancelling(20001);
    const Kel32f *x = data.data(), *y = x + 7;
    const auto* z = reinterpret_cast<const Kel32fc*>(x);
    const auto* w = reinterpret_cast<const Kel32fc*>(y);
    Checksum sum;
    for (int n = 2; n < 9000; n += n < 300 ? 1 : 997) {
        add_result(sum, kelsSum_32f, x, n);
        add_result(sum, kelsSum_32fc, z, n);
        add_result(sum, kelsMean_32f, y, n);
        add_result(sum, kelsStdDev_32f, x, n);
        add_result(sum, kelsNorm_L1_32f, x, n);
        add_result(sum, kelsNorm_L2_32f, x, n);
        add_result(sum, kelsNormDiff_L1_32f, x, y, n);
        add_result(sum, kelsNormDiff_L2_32f, x, y, n);
        add_result(sum, kelsDotProd_32f, x, y, n);
        add_result(sum, kelsDotProd_32fc, z, w, n);
        add_result(sum, kelsDotProd_32f32fc, x, w, n);
        add_result(sum, kelsDotProd_32f64f, x, y, n);
        add_result(sum, kelsDotProd_32fc64fc, z, w, n);
    }
    EXPECT_EQ(sum.value(), 9986642301989537065U);
}

} // namespace
