// Reductions of singles give the same bits at every level and on 32-bit x86: those kept here.

#include "kels/statistics.h"
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

using namespace kels_test;

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

/// As many elements from an offset on, whatever they are made of.
template <class T>
std::vector<T> elements(const std::vector<Kel32f>& data, std::size_t offset, int n) {
    const auto* first = reinterpret_cast<const T*>(data.data() + offset);
    return {first, first + n};
}

TEST(ReductionsOfSingles, SameBitsEverywhere) {
    const std::vector<Kel32f> data = cancelling(20001);
    std::uint64_t hash = 0xCBF29CE484222325;
    int n = 0;
    const auto add = [&](const auto& result) {
        unsigned char bytes[sizeof result];
        std::memcpy(bytes, &result, sizeof result);
        for (const unsigned char byte : bytes) hash = (hash ^ byte) * 0x100000001B3;
    };
    const auto add_one = [&]<class T, class R, class... Hint>(KelStatus (*function)(const T*, int, R*, Hint...),
                                                              std::size_t offset = 0) {
        add(reduce_with(function, elements<T>(data, offset, n), Hint{}...));
    };
    const auto add_two = [&]<class A, class B, class R>(KelStatus (*function)(const A*, const B*, int, R*)) {
        add(reduce_with(function, elements<A>(data, 0, n), elements<B>(data, 7, n)));
    };
    for (n = 2; n < 9000; n += n < 300 ? 1 : 997) {
        add_one(kelsSum_32f);
        add_one(kelsSum_32fc);
        add_one(kelsMean_32f, 7);
        add_one(kelsStdDev_32f);
        add_one(kelsNorm_L1_32f);
        add_one(kelsNorm_L2_32f);
        add_two(kelsNormDiff_L1_32f);
        add_two(kelsNormDiff_L2_32f);
        add_two(kelsDotProd_32f);
        add_two(kelsDotProd_32fc);
        add_two(kelsDotProd_32f32fc);
        add_two(kelsDotProd_32f64f);
        add_two(kelsDotProd_32fc64fc);
    }
    EXPECT_EQ(hash, 9986642301989537065U);
}

} // namespace
