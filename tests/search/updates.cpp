// Running estimates, held against the recurrence in extended precision.

#include "kels/search.h"
#include "support/control_state.h"
#include "support/guarded_array.h"
#include "support/random_data.h"
#include "support/refusals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

namespace {

using kels_test::Random;

using Update = KelStatus (*)(const Kel16s*, int, Kel32s*, int, Kel16s);

constexpr Update functions[] = {kelsUpdateLinear_16s32s_I, kelsUpdatePower_16s32s_I};

Kel32s reference(bool power, const std::vector<Kel16s>& x, Kel32s start, int shift, Kel16s alpha) {
    long double y = start;
    for (const int sample : x) {
        const int s = power ? sample * sample >> std::clamp(shift, 0, 31) : sample >> std::clamp(shift, 0, 15);
        y = y * alpha + static_cast<long double>(s) * (1 - alpha);
    }
    if (y > INT_MAX) return INT_MAX;
    return y < INT_MIN ? INT_MIN : static_cast<Kel32s>(static_cast<double>(y));
}

void expect_reference(const std::vector<Kel16s>& x, Kel32s start, int shift, Kel16s alpha) {
    for (const bool power : {false, true}) {
        Kel32s y = start;
        ASSERT_EQ(functions[power](x.data(), static_cast<int>(x.size()), &y, shift, alpha), kelStatusOk);
        ASSERT_EQ(y, reference(power, x, start, shift, alpha))
            << "power " << power << " length " << x.size() << " start " << start << " shift " << shift << " alpha "
            << alpha;
    }
}

TEST(RunningEstimate, FollowsTheRecurrence) {
    Random random("estimates");
    const int shifts[] = {INT_MIN, -3, -1, 0, 1, 7, 14, 15, 16, 30, 31, 32, 40, INT_MAX};
    for (const int alpha : {0, 1, -1, 2, -2, 3, -3, 7, -32768, 32767, 1000})
        for (const int len : {1, 2, 3, 5, 30, 31, 33, 34, 35, 36, 37, 40, 1000})
            for (const int shift : shifts)
                for (const Kel32s start : {0, 1, -7, INT_MAX, INT_MIN, 12345678}) {
                    std::vector<Kel16s> x(static_cast<std::size_t>(len));
                    for (Kel16s& v : x) v = static_cast<Kel16s>(random.bits());
                    if (random.below(3) == 0) x[0] = -32768;
                    expect_reference(x, start, shift, static_cast<Kel16s>(alpha));
                }
}

// Started where samples and estimate agree, nothing runs away however large the factor; one off, it does, late or soon.
TEST(RunningEstimate, NearItsBalance) {
    for (const int alpha : {2, -2, 3, 32767, -32768})
        for (const int off : {0, 1, -1})
            for (int len = 1; len < 45; ++len) {
                const std::vector<Kel16s> x(static_cast<std::size_t>(len), -32768);
                expect_reference(x, -32768 + off, 0, static_cast<Kel16s>(alpha));
                expect_reference(x, (1 << 30) + off, 0, static_cast<Kel16s>(alpha));
            }
}

TEST(RunningEstimate, LiteralValues) {
    const std::vector<Kel16s> x = {5, -9, -32768};
    Kel32s y = 77;
    EXPECT_EQ(kelsUpdateLinear_16s32s_I(x.data(), 3, &y, 1, 1), kelStatusOk);
    EXPECT_EQ(y, 77);
    EXPECT_EQ(kelsUpdateLinear_16s32s_I(x.data(), 2, &y, 1, 0), kelStatusOk);
    EXPECT_EQ(y, -5);
    EXPECT_EQ(kelsUpdatePower_16s32s_I(x.data(), 3, &y, 0, 0), kelStatusOk);
    EXPECT_EQ(y, 1073741824);
    y = 2;
    EXPECT_EQ(kelsUpdateLinear_16s32s_I(x.data(), 1, &y, 0, 3), kelStatusOk);
    EXPECT_EQ(y, 2 * 3 + 5 * -2);
    y = 0;
    EXPECT_EQ(kelsUpdateLinear_16s32s_I(x.data() + 2, 1, &y, 0, -32768), kelStatusOk);
    EXPECT_EQ(y, -32768 * 32769);
}

TEST(RunningEstimate, ObeysItsFrame) {
    const Kel16s x[] = {1, 2};
    for (const Update update : functions) {
        Kel32s y = 3;
        kels_test::expect_nulls_refused(update, x, 0, &y, 0, 2);
        for (const int bad : kels_test::bad_lengths) EXPECT_EQ(update(x, bad, &y, 0, 2), kelStatusBadSize);
        EXPECT_EQ(y, 3);
        for (const kels_test::Edge edge : kels_test::edges) {
            kels_test::GuardedArray<Kel16s> samples({3, 4, 5}, edge);
            ASSERT_TRUE(kels_test::runs_without_fault([&] { update(samples.data(), 3, &y, 0, 0); }));
        }
        EXPECT_TRUE(y == 5 || y == 25);
        kels_test::in_odd_modes(
            [&] {
                y = 1000001;
                update(x, 2, &y, 0, 3);
            },
            [&] { EXPECT_TRUE(y == 9000009 - 6 - 4 || y == 9000009 - 6 - 8) << y; });
    }
}

} // namespace
