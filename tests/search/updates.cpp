// Running estimates, held against the recurrence in extended precision.

#include "kels/search.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

namespace {

using namespace kels_test;

enum Samples { linear, power };

template <Samples kind>
constexpr auto recurrence =
    [](const Kel16s* x, const Kel32s* start, Kel32s* estimate, int len, int shift, Kel16s alpha) {
        long double y = *start;
        for (int i = 0; i < len; ++i) {
            const int s = kind == power ? x[i] * x[i] >> std::clamp(shift, 0, 31) : x[i] >> std::clamp(shift, 0, 15);
            y = y * alpha + static_cast<long double>(s) * (1 - alpha);
        }
        *estimate = y > INT_MAX ? INT_MAX : y < INT_MIN ? INT_MIN : static_cast<Kel32s>(static_cast<double>(y));
    };

Rows estimates(const Rows& rows) {
    return rows.values(0, {0, 1, -7, INT_MAX, INT_MIN, 12345678})
        .values(1, {INT_MIN, -3, 0, 1, 7, 14, 15, 16, 30, 31, 32, INT_MAX})
        .values(2, {0, 1, -1, 2, -2, 3, -3, 7, -32768, 32767, 1000})
        .lengths({2, 3, 5, 30, 31, 33, 34, 35, 36, 37, 40})
        .driven_elsewhere();
}

const Rows table = {
    estimates(updates(whole(recurrence<linear>), kelsUpdateLinear_16s32s_I)),
    estimates(updates(whole(recurrence<power>), kelsUpdatePower_16s32s_I)),
};
const bool registered = add_rows("RunningEstimates", table);

// Started where samples and estimate agree, nothing runs away however large the factor; one off, it does, late or soon.
TEST(RunningEstimates, NearTheirBalance) {
    for (const Kel16s alpha : {2, -2, 3, 32767, -32768})
        for (const int off : {0, 1, -1})
            for (int len = 1; len < 45; ++len) {
                const std::vector<Kel16s> x(static_cast<std::size_t>(len), -32768);
                const auto expect = [&](auto function, const auto& reference, Kel32s start) {
                    Kel32s y = start, want = start;
                    ASSERT_EQ(function(x.data(), len, &y, 0, alpha), kelStatusOk);
                    reference(x.data(), &start, &want, len, 0, alpha);
                    ASSERT_EQ(y, want) << "length " << len << " start " << start << " alpha " << alpha;
                };
                expect(kelsUpdateLinear_16s32s_I, recurrence<linear>, -32768 + off);
                expect(kelsUpdatePower_16s32s_I, recurrence<power>, (1 << 30) + off);
            }
}

} // namespace
