// Median filters against their definition, window by window.

#include "filters/checks.h"
#include "filters/medians.h"
#include "filters/samples.h"
#include "support/allocation_faults.h"
#include "support/guarded_array.h"

namespace {

using namespace kels_test;
using namespace filter_test;

template <class T, auto separate_, auto in_place_>
struct Functions {
    using Sample = T;
    static constexpr auto separate = separate_;
    static constexpr auto in_place = in_place_;
};

template <class F>
struct Median : testing::Test {
    using Sample = typename F::Sample;

    /// Filters out of place and in place, at both ends of a page, and gives the result.
    static std::vector<Sample> filtered(const std::vector<Sample>& x, int mask, KelStatus status) {
        std::vector<Sample> y;
        for (const Edge edge : edges) {
            GuardedArray<Sample> src(x, edge), dst(x.size(), edge), both(x, edge);
            EXPECT_EQ(F::separate(src.data(), dst.data(), static_cast<int>(x.size()), mask), status);
            EXPECT_EQ(F::in_place(both.data(), static_cast<int>(x.size()), mask), status);
            EXPECT_TRUE(same(src.values(), x));
            y = dst.values();
            EXPECT_TRUE(same(y, both.values())) << "in place, mask " << mask;
        }
        return y;
    }
};

using Families = testing::Types<Functions<Kel8u, kelsFilterMedian_8u, kelsFilterMedian_8u_I>,
                                Functions<Kel16s, kelsFilterMedian_16s, kelsFilterMedian_16s_I>,
                                Functions<Kel32f, kelsFilterMedian_32f, kelsFilterMedian_32f_I>,
                                Functions<Kel64f, kelsFilterMedian_64f, kelsFilterMedian_64f_I>>;
TYPED_TEST_SUITE(Median, Families);

KelStatus status_of(int mask) { return mask % 2 == 0 ? kelStatusEvenMedianMask : kelStatusOk; }

enum Shape { any_values, few_values, rising, falling, constant, sawtooth, shapes };

template <class T>
std::vector<T> data(Random& random, int shape, int len) {
    using Limits = std::numeric_limits<T>;
    std::vector<T> x;
    for (int i = 0; i < len; ++i) {
        const double any = std::is_integral_v<T> ? random.uniform(double(Limits::min()), double(Limits::max()) + 1)
                                                 : random.uniform(-1, 1);
        const double values[] = {std::is_integral_v<T> ? std::floor(any) : any,
                                 double(random.below(3)),
                                 double(std::min(i, 255)),
                                 double(std::max(255 - i, 0)),
                                 7,
                                 double(i % 37 * 5)};
        x.push_back(static_cast<T>(values[shape]));
    }
    if (shape == any_values) x[static_cast<std::size_t>(random.below(len))] = Limits::lowest();
    if (shape == any_values) x[static_cast<std::size_t>(random.below(len))] = Limits::max();
    return x;
}

template <class F>
void expect_medians(Random& random, int shape, int len, int mask) {
    const auto x = data<typename F::Sample>(random, shape, len);
    ASSERT_EQ(Median<F>::filtered(x, mask, status_of(mask)), medians(x, (mask - 1) / 2 * 2 + 1))
        << mask << ", shape " << shape << ", length " << len;
}

TYPED_TEST(Median, EveryMask) {
    Random random("medians");
    std::vector<int> masks = {50, 63, 64, 65, 99, 101, 127, 128, 129, 200, 255, 301, 1001};
    for (int mask = 1; mask <= 40; ++mask) masks.push_back(mask);
    for (const int mask : masks)
        for (int shape = 0; shape < shapes; ++shape)
            expect_medians<TypeParam>(random, shape, 1 + random.below(1500), mask);
}

TYPED_TEST(Median, ShortAndLongVectors) {
    Random random("short medians");
    for (int len = 1; len <= 140; len += len < 40 ? 1 : 9)
        for (const int mask : {1, 2, 3, 5, 7, 8, 9, 11, 13, 21, 31, 33, 61, 277, 1000})
            expect_medians<TypeParam>(random, any_values, len, mask);
    // Several tiles, and levels above the words of a window.
    for (const int shape : {any_values, rising, sawtooth})
        for (const int mask : {3, 9, 31, 33, 255, 3001}) expect_medians<TypeParam>(random, shape, 20000, mask);
}

// A mask beyond the vector has as many samples more at either end: the one that just reaches both gives the same.
TYPED_TEST(Median, HugeMasks) {
    using T = typename TypeParam::Sample;
    Random random("huge masks");
    for (const int len : {3, 4, 5, 30, 64, 500}) {
        const auto x = data<T>(random, any_values, len);
        const auto want = medians(x, 4 * len + 1);
        EXPECT_EQ(want, medians(x, 8 * len + 1));
        for (const int mask : {INT_MAX, INT_MAX - 1, 1 << 30})
            EXPECT_EQ(this->filtered(x, mask, status_of(mask)), want);
    }
}

TYPED_TEST(Median, IsChecked) {
    using T = typename TypeParam::Sample;
    Untouched memory;
    T *const x = memory.array<T>(3), *const y = memory.array<T>(3);
    memory.expect_checks(TypeParam::separate, std::tuple(x, y, 3, 3), {null(0), null(1), size(2), size(3)});
    memory.expect_checks(TypeParam::in_place, std::tuple(x, 3, 3), {null(0), size(1), size(2)});
    for (const int even : {-2, INT_MIN}) EXPECT_EQ(TypeParam::in_place(x, 3, even), kelStatusBadSize);
}

TYPED_TEST(Median, WithoutMemory) {
    using T = typename TypeParam::Sample;
    Random random("medians without memory");
    const auto x = data<T>(random, any_values, 100), want = medians(x, 41);
    const auto expect_all_or_none = [&](auto filter) {
        for_each_allocation_failure([&] {
            auto y = x;
            const KelStatus status = filter(y);
            EXPECT_EQ(y, status == kelStatusOk ? want : x);
            return status;
        });
    };
    expect_all_or_none([&](auto& y) { return TypeParam::in_place(y.data(), 100, 41); });
    expect_all_or_none([&](auto& y) { return TypeParam::separate(x.data(), y.data(), 100, 41); });
}

// Any of the window's samples, and the array's edges stand.
TYPED_TEST(Median, NotANumber) {
    using T = typename TypeParam::Sample;
    if constexpr (std::is_floating_point_v<T>) {
        Random random("medians of NaNs");
        for (const int mask : {3, 5, 9, 21, 31, 33, 99})
            for (const int len : {3, 10, 200}) {
                auto x = data<T>(random, any_values, len);
                for (T& v : x)
                    if (random.below(3) == 0) v = std::numeric_limits<T>::quiet_NaN();
                const auto y = this->filtered(x, mask, kelStatusOk);
                for (int i = 0; i < len; ++i) {
                    bool found = false;
                    for (int k = std::max(i - mask / 2, 0); k <= std::min(i + mask / 2, len - 1); ++k)
                        found |= std::memcmp(&y[static_cast<std::size_t>(i)], &x[static_cast<std::size_t>(k)],
                                             sizeof(T)) == 0;
                    ASSERT_TRUE(found) << mask << ", length " << len << ", sample " << i;
                }
            }
    }
}

// Denormals come through, and modes stay.
TYPED_TEST(Median, AnyModes) {
    using T = typename TypeParam::Sample;
    Random random("medians in any mode");
    auto x = data<T>(random, any_values, 300);
    if constexpr (std::is_floating_point_v<T>)
        for (T& v : x) v *= std::numeric_limits<T>::min();
    for (const int mask : {3, 9, 31, 33}) {
        std::vector<T> y;
        in_odd_modes(
            [&] {
                y = x;
                TypeParam::in_place(y.data(), 300, mask);
            },
            [&] { EXPECT_EQ(y, medians(x, mask)); });
    }
    const ControlState zeros = {0x0C7F, 0xFFC0}; // denormals are zeros, too
    auto y = x;
    under(zeros, [&] { return TypeParam::in_place(y.data(), 300, 9); });
    EXPECT_EQ(y, medians(x, 9));
}

TEST(MedianFilter, LiteralValues) {
    Kel16s x[] = {1, 9, 2, 8};
    EXPECT_EQ(kelsFilterMedian_16s_I(x, 4, 6), kelStatusEvenMedianMask);
    EXPECT_EQ(std::vector<Kel16s>(x, x + 4), (std::vector<Kel16s>{1, 2, 8, 8}));
}

} // namespace
