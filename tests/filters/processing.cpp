// Contexts process without the allocator: what they need they have since their creation, so that real-time threads may
// call them. Every stateful family, in every form, in short and in long blocks.

#include "filters/fir/families.h"
#include "filters/iir/families.h"
#include "kels/filter_bank.h"
#include "kels/lms.h"
#include "kels/random.h"
#include "support/allocation_faults.h"

namespace {

using filter_test::call;
using filter_test::FamilyNames;

/// Allocations of one success.
template <class F, class... A>
long allocations_of(F function, A... arguments) {
    const long before = kels_test::allocations();
    EXPECT_EQ(call(function, 3, arguments...), kelStatusOk);
    return kels_test::allocations() - before;
}

constexpr int lengths[] = {1, 2, 7, 64, 65, 300, 1030, 5000};

template <class F>
class FirProcessing : public testing::Test {};
TYPED_TEST_SUITE(FirProcessing, fir_test::Families, FamilyNames);

TYPED_TEST(FirProcessing, AllocatesNothing) {
    using F = TypeParam;
    filter_test::Random random("processing");
    const auto x = filter_test::noise<typename F::Sample>(random, 5000);
    for (int L : {1, 20, 130, 500, 2100}) {
        const auto context = fir_test::make<F>(filter_test::noise<typename F::Taps>(random, L));
        for (int n : lengths) {
            auto y = x;
            EXPECT_EQ(allocations_of(F::one, x[0], y.data(), context.get()), 0) << L;
            EXPECT_EQ(allocations_of(F::block, x.data(), y.data(), n, context.get()), 0) << L << ' ' << n;
            EXPECT_EQ(allocations_of(F::in_place, y.data(), n, context.get()), 0) << L << ' ' << n;
            EXPECT_EQ(allocations_of(F::set_line, context.get(), x.data()), 0) << L;
            EXPECT_EQ(allocations_of(F::get_line, context.get(), y.data()), 0) << L;
        }
    }
}

TYPED_TEST(FirProcessing, AllocatesNothingAtOtherRates) {
    using F = TypeParam;
    filter_test::Random random("processing rates");
    const auto x = filter_test::noise<typename F::Sample>(random, 10000);
    for (const fir_test::Rates& rates : {fir_test::Rates{3, 1, 2, 0}, {1, 0, 7, 2}, {5, 0, 1, 0}, {2, 0, 1500, 3}}) {
        const auto context = fir_test::make_multi_rate<F>(filter_test::noise<typename F::Taps>(random, 300), rates);
        for (int n : {1, 2, 5, 1400 / std::max(rates.up, rates.down)}) {
            std::vector<typename F::Sample> y = x;
            if (n < 1) continue;
            EXPECT_EQ(allocations_of(F::block, x.data(), y.data(), n, context.get()), 0) << n;
            EXPECT_EQ(allocations_of(F::in_place, y.data(), n, context.get()), 0) << n;
        }
    }
}

template <class F>
class IirProcessing : public testing::Test {};
TYPED_TEST_SUITE(IirProcessing, iir_test::Families, FamilyNames);

TYPED_TEST(IirProcessing, AllocatesNothing) {
    using F = TypeParam;
    filter_test::Random random("processing");
    const auto x = filter_test::noise<typename F::Sample>(random, 5000);
    for (bool cascade : {false, true})
        for (int size : {1, 2, 9, 30}) {
            std::vector<typename F::Taps> taps(static_cast<std::size_t>(cascade ? 6 * size : 2 * size + 2));
            for (std::size_t i = 0; i < taps.size(); ++i) // differentiators and averages: every leading tap is 1
                filter_test::values(taps)[i * filter_test::parts<typename F::Taps>] =
                    (cascade ? i % 3 == 0 : i % (taps.size() / 2) == 0) ? 1 : 0;
            const auto context = iir_test::make<F>(cascade, taps);
            for (int n : lengths) {
                auto y = x;
                EXPECT_EQ(allocations_of(F::one, x[0], y.data(), context.get()), 0) << size;
                EXPECT_EQ(allocations_of(F::block, x.data(), y.data(), n, context.get()), 0) << size << ' ' << n;
                EXPECT_EQ(allocations_of(F::in_place, y.data(), n, context.get()), 0) << size << ' ' << n;
            }
        }
}

template <class T>
void adapt(KelStatus (*make)(KelLmsContext**, const Kel32f*, int, const T*, int), KelStatus (*release)(KelLmsContext*),
           KelStatus (*block)(const T*, const T*, T*, int, Kel32f, KelLmsContext*)) {
    const std::vector<Kel32f> taps(40, 0.01F);
    const std::vector<T> line(80), x(5000, T{3}), reference(5000, T{1});
    std::vector<T> y(5000);
    KelLmsContext* context = nullptr;
    ASSERT_EQ(make(&context, taps.data(), 40, line.data(), 0), kelStatusOk);
    for (int n : lengths)
        EXPECT_EQ(allocations_of(block, x.data(), reference.data(), y.data(), n, 1e-6F, context), 0) << n;
    release(context);
}

template <class Taps, class T, class Output>
void adapt_at_rates(KelStatus (*make)(KelLmsMrContext**, const Taps*, int, const T*, int, int, int, int),
                    KelStatus (*release)(KelLmsMrContext*), KelStatus (*one)(T, Output*, KelLmsMrContext*),
                    KelStatus (*update)(Output, KelLmsMrContext*)) {
    const std::vector<Taps> taps(40);
    const std::vector<T> line(400);
    KelLmsMrContext* context = nullptr;
    ASSERT_EQ(make(&context, taps.data(), 40, line.data(), 0, 2, 3, 100), kelStatusOk);
    Output y;
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(allocations_of(one, T{}, &y, context), 0);
        EXPECT_EQ(allocations_of(update, Output{}, context), 0);
    }
    release(context);
}

TEST(LmsProcessing, AllocatesNothing) {
    adapt(kelsFIRLMSInitAlloc_32f, kelsFIRLMSFree_32f, kelsFIRLMS_32f);
    adapt(kelsFIRLMSInitAlloc32f_16s, kelsFIRLMSFree32f_16s, kelsFIRLMS32f_16s);
    adapt_at_rates(kelsFIRLMSMRInitAlloc32s_16s, kelsFIRLMSMRFree32s_16s, kelsFIRLMSMROneVal32s_16s,
                   kelsFIRLMSMRUpdateTaps32s_16s);
    adapt_at_rates(kelsFIRLMSMRInitAlloc32sc_16sc, kelsFIRLMSMRFree32sc_16sc, kelsFIRLMSMROneVal32sc_16sc,
                   kelsFIRLMSMRUpdateTaps32sc_16sc);
}

template <class State>
using MakeBank = KelStatus (*)(State**, const Kel32f*, int, int, const Kel32f*, int, int);

const std::vector<Kel32f> band(8, 0.25F);

template <class T>
void analyse(MakeBank<WTFwdState> make, KelStatus (*release)(WTFwdState*),
             KelStatus (*block)(const T*, Kel32f*, Kel32f*, int, WTFwdState*)) {
    WTFwdState* state = nullptr;
    ASSERT_EQ(make(&state, band.data(), 8, 0, band.data(), 7, 1), kelStatusOk);
    const std::vector<T> x(10000);
    std::vector<Kel32f> low(5000), high(5000);
    for (int n : lengths) EXPECT_EQ(allocations_of(block, x.data(), low.data(), high.data(), n, state), 0) << n;
    release(state);
}

template <class T>
void synthesise(MakeBank<WTInvState> make, KelStatus (*release)(WTInvState*),
                KelStatus (*block)(const Kel32f*, const Kel32f*, int, T*, WTInvState*)) {
    WTInvState* state = nullptr;
    ASSERT_EQ(make(&state, band.data(), 8, 0, band.data(), 7, 1), kelStatusOk);
    const std::vector<Kel32f> low(5000), high(5000);
    std::vector<T> y(10000);
    for (int n : lengths) EXPECT_EQ(allocations_of(block, low.data(), high.data(), n, y.data(), state), 0) << n;
    release(state);
}

TEST(FilterBankProcessing, AllocatesNothing) {
    analyse(kelsWTFwdInitAlloc_32f, kelsWTFwdFree_32f, kelsWTFwd_32f);
    analyse(kelsWTFwdInitAlloc_8s32f, kelsWTFwdFree_8s32f, kelsWTFwd_8s32f);
    analyse(kelsWTFwdInitAlloc_8u32f, kelsWTFwdFree_8u32f, kelsWTFwd_8u32f);
    analyse(kelsWTFwdInitAlloc_16s32f, kelsWTFwdFree_16s32f, kelsWTFwd_16s32f);
    analyse(kelsWTFwdInitAlloc_16u32f, kelsWTFwdFree_16u32f, kelsWTFwd_16u32f);
    synthesise(kelsWTInvInitAlloc_32f, kelsWTInvFree_32f, kelsWTInv_32f);
    synthesise(kelsWTInvInitAlloc_32f8s, kelsWTInvFree_32f8s, kelsWTInv_32f8s);
    synthesise(kelsWTInvInitAlloc_32f8u, kelsWTInvFree_32f8u, kelsWTInv_32f8u);
    synthesise(kelsWTInvInitAlloc_32f16s, kelsWTInvFree_32f16s, kelsWTInv_32f16s);
    synthesise(kelsWTInvInitAlloc_32f16u, kelsWTInvFree_32f16u, kelsWTInv_32f16u);
}

template <class T, class State>
void make_noise(KelStatus (*make)(State**, T, T, Kel32u), KelStatus (*release)(State*),
                KelStatus (*fill)(T*, int, State*)) {
    State* state = nullptr;
    ASSERT_EQ(make(&state, T{1}, T{9}, 5U), kelStatusOk);
    std::vector<T> y(5000);
    for (int n : lengths) EXPECT_EQ(allocations_of(fill, y.data(), n, state), 0) << n;
    release(state);
}

TEST(NoiseProcessing, AllocatesNothing) {
    make_noise(kelsRandUniformInitAlloc_8u, kelsRandUniformFree_8u, kelsRandUniform_8u);
    make_noise(kelsRandUniformInitAlloc_16s, kelsRandUniformFree_16s, kelsRandUniform_16s);
    make_noise(kelsRandUniformInitAlloc_32f, kelsRandUniformFree_32f, kelsRandUniform_32f);
    make_noise(kelsRandGaussInitAlloc_8u, kelsRandGaussFree_8u, kelsRandGauss_8u);
    make_noise(kelsRandGaussInitAlloc_16s, kelsRandGaussFree_16s, kelsRandGauss_16s);
    make_noise(kelsRandGaussInitAlloc_32f, kelsRandGaussFree_32f, kelsRandGauss_32f);
}

} // namespace
