// Plans over 16-bit data: what they ask for and what they refuse.

#include "kels/fft.h"
#include "support/allocation_faults.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

struct Kind {
    const char* name;
    KelStatus (*make)(KelsFftPlan_16s**, int, int, int);
    KelStatus (*release)(KelsFftPlan_16s*);
    KelStatus (*buffer_size)(const KelsFftPlan_16s*, int*);
    bool real;
};

constexpr Kind kinds[] = {
    {"C_16sc", kelsFFTInitAlloc_C_16sc, kelsFFTFree_C_16sc, kelsFFTGetBufSize_C_16sc, false},
    {"C_16s", kelsFFTInitAlloc_C_16s, kelsFFTFree_C_16s, kelsFFTGetBufSize_C_16s, false},
    {"R_16s", kelsFFTInitAlloc_R_16s, kelsFFTFree_R_16s, kelsFFTGetBufSize_R_16s, true},
};

/// Buffer of the single-precision plan of a complex order.
int float_buffer(int order) {
    constexpr int sizes[] = {16, 16, 1040, 2064, 4112, 8208, 8208, 8208, 32784, 32784, 32784};
    return order < 11 ? 0 : sizes[order - 11];
}

TEST(FftPlan16s, ReportsItsBuffer) {
    for (const Kind& kind : kinds)
        for (const int hint : {0, 1, 2, 7, -1})
            for (int order = 0; order <= 18; ++order) {
                SCOPED_TRACE(testing::Message() << kind.name << " order " << order << " hint " << hint);
                KelsFftPlan_16s* plan = nullptr;
                ASSERT_EQ(kind.make(&plan, order, kelFftNormInv, hint), kelStatusOk);
                const bool fixed = (hint == 0 && order <= 8) || (hint == 1 && order <= 10);
                const int points = 1 << order, nested = fixed ? 0 : float_buffer(kind.real ? order - 1 : order);
                int wanted = kind.real ? 4 * points + 24 : (fixed ? 12 : 8) * points + 16;
                wanted = order == 0 ? 0 : wanted + nested;
                int size = -1;
                EXPECT_EQ(kind.buffer_size(plan, &size), kelStatusOk);
                EXPECT_EQ(size, wanted);
                EXPECT_EQ(kind.release(plan), kelStatusOk);
            }
}

TEST(FftPlan16s, RefusesWhatItCannotBe) {
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelsFftPlan_16s*>(&elsewhere);
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        EXPECT_EQ(kind.make(nullptr, -1, 3, 0), kelStatusNullPtr);
        const long before = kels_test::live_blocks(), allocations = kels_test::allocations();
        KelsFftPlan_16s* plan = untouched;
        for (const int order : {-1, 31, INT_MIN, INT_MAX})
            EXPECT_EQ(kind.make(&plan, order, 3, 0), kelStatusBadFftOrder);
        EXPECT_EQ(kels_test::allocations(), allocations);
        for (const int order : {0, 6, 12})
            for (const int flag : {0, 3, 5, 16, -1, INT_MIN})
                EXPECT_EQ(kind.make(&plan, order, flag, 0), kelStatusBadFftFlag) << flag;
        for (int order = kind.real ? 29 : 28; order <= 30; ++order)
            EXPECT_EQ(kind.make(&plan, order, 1, 0), kelStatusNoMemory) << order;
        EXPECT_EQ(plan, untouched);
        EXPECT_EQ(kels_test::live_blocks(), before);
        for (const int order : {0, 1, 3, 8, 12})
            kels_test::for_each_allocation_failure([&] {
                KelsFftPlan_16s* made = untouched;
                const KelStatus status = kind.make(&made, order, 1, 0);
                if (status == kelStatusOk)
                    kind.release(made);
                else
                    EXPECT_EQ(made, untouched);
                return status;
            });
        EXPECT_EQ(kels_test::live_blocks(), before);
    }
}

TEST(FftPlan16s, KnowsItsKind) {
    KelsFftPlan_32f* foreign = nullptr;
    ASSERT_EQ(kelsFFTInitAlloc_C_32fc(&foreign, 4, 1, 0), kelStatusOk);
    for (const Kind& own : kinds) {
        KelsFftPlan_16s* plan = nullptr;
        ASSERT_EQ(own.make(&plan, 5, kelFftNormNone, 0), kelStatusOk);
        int size = -7;
        for (const Kind& other : kinds) {
            if (other.make == own.make) continue;
            EXPECT_EQ(other.release(plan), kelStatusContextMismatch);
            EXPECT_EQ(other.buffer_size(plan, &size), kelStatusContextMismatch);
        }
        auto* wrong = reinterpret_cast<KelsFftPlan_16s*>(foreign);
        EXPECT_EQ(own.release(wrong), kelStatusContextMismatch);
        EXPECT_EQ(own.buffer_size(wrong, &size), kelStatusContextMismatch);
        EXPECT_EQ(kelsFFTFree_C_32fc(reinterpret_cast<KelsFftPlan_32f*>(plan)), kelStatusContextMismatch);
        EXPECT_EQ(own.release(nullptr), kelStatusNullPtr);
        EXPECT_EQ(own.buffer_size(nullptr, &size), kelStatusNullPtr);
        EXPECT_EQ(own.buffer_size(plan, nullptr), kelStatusNullPtr);
        EXPECT_EQ(size, -7);
        EXPECT_EQ(own.release(plan), kelStatusOk);
    }
    EXPECT_EQ(kelsFFTFree_C_32fc(foreign), kelStatusOk);
}

} // namespace
