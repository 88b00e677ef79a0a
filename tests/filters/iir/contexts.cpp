// IIR filters of every family: their contexts, the order of their checks, the memory they touch.

#include "filters/iir/families.h"

namespace {

using namespace iir_test;

template <class F>
class IirContext : public testing::Test {};
TYPED_TEST_SUITE(IirContext, Families, FamilyNames);

/// Taps of 1 and 0, and some noise in the numerators: no denominator is zero.
template <class F>
std::vector<typename F::Taps> simple_taps(Random& random, bool cascade, int size) {
    auto taps = noise<typename F::Taps>(random, cascade ? 6 * size : 2 * size + 2);
    using P = Part<typename F::Taps>;
    for (std::size_t i = 0; i < taps.size(); ++i) {
        P* tap = values(taps) + i * parts<typename F::Taps>;
        const bool leading = cascade ? i % 6 == 3 : i == taps.size() / 2;
        const bool feedback = cascade ? i % 6 > 3 : i > taps.size() / 2;
        if (leading || feedback) std::fill_n(tap, parts<typename F::Taps>, P{0});
        if (leading || (cascade && i % 6 == 0)) *tap = P{1};
    }
    return taps;
}

TYPED_TEST(IirContext, StateIsInStoredOrder) {
    using F = TypeParam;
    Random random("state");
    for (bool cascade : {false, true})
        for (int size : {0, 1, 2, 7, 8, 9, 20}) {
            if (cascade && size == 0) continue;
            const auto registers = static_cast<std::size_t>(cascade ? 2 * size : size);
            const auto state = noise<typename F::Taps>(random, static_cast<int>(registers));
            const Context context = make<F>(cascade, simple_taps<F>(random, cascade, size), 0, state);
            expect_line_kept<F>(context.get(), state);
        }
}

/// make(&context, taps, size, ...) of good taps. A cascade has a section at least.
template <class Tap, class... A>
void expect_creation_checked(KelStatus (*make)(KelIirContext**, const Tap*, int, A...), const Tap* taps, bool cascade) {
    Untouched memory;
    auto* const result = memory.array<KelIirContext*>(1);
    const std::vector<std::intptr_t> bad_sizes = {cascade ? 0 : -1, -2, INT_MIN};
    memory.expect_refusals(make, std::tuple(result, taps, 3),
                           {null(0), null(1), {2, kelStatusBadIirOrder, bad_sizes}, {2, kelStatusNoMemory, {INT_MAX}}});
}

TYPED_TEST(IirContext, IsChecked) {
    using F = TypeParam;
    Random random("checks");
    const auto others = contexts_of_others<F, Context>(Families{}, [&]<class Other>(bool cascade) {
        return make<Other>(cascade, simple_taps<Other>(random, cascade, 2));
    });
    for (bool cascade : {false, true}) {
        const Context own = make<F>(cascade, simple_taps<F>(random, cascade, 3));
        expect_checks_of_context<F>(own, others);
        expect_checks_of_one<F>(own, others);
    }
}

TYPED_TEST(IirContext, MakingOneRefusesAndRunsOutOfMemory) {
    using F = TypeParam;
    Random random("making");
    for (bool cascade : {false, true}) {
        const auto make_one = init_of<F>(cascade);
        const auto taps = simple_taps<F>(random, cascade, 3);
        expect_creation_checked(make_one, taps.data(), cascade);
        // A divisor is zero if both its parts are.
        const long live = kels_test::live_blocks();
        for (std::size_t i = 0; i < taps.size(); ++i) {
            auto with_zero = taps;
            with_zero[i] = {};
            if (cascade ? i % 3 == 0 : i == taps.size() / 2) {
                kels_test::expect_not_made(kelStatusDivByZero, make_one, with_zero.data(), 3, 0, nullptr);
                if (F::complex) values(with_zero)[2 * i + 1] = 1;
                if (!F::complex) continue;
            }
            make<F>(cascade, with_zero);
        }
        EXPECT_EQ(kels_test::live_blocks(), live);
        for (int size : {1, 2, 12})
            kels_test::expect_clean_failures(make_one, F::release, simple_taps<F>(random, cascade, size).data(), size,
                                             0, nullptr);
    }
}

// Making one gives the same filter in any modes.
TYPED_TEST(IirContext, LeavesTheModesAlone) {
    using F = TypeParam;
    Random random("modes");
    for (bool cascade : {false, true}) {
        const auto taps = noise<typename F::Taps>(random, cascade ? 18 : 8);
        const auto x = noise<typename F::Sample>(random, 300);
        const auto wanted = filtered<F>(as_block, x, make<F>(cascade, taps), 4);
        std::vector<Context> contexts;
        kels_test::in_odd_modes(
            [&] {
                contexts.push_back(make<F>(cascade, taps));
                const Context other = make<F>(cascade, taps);
                for (Way way : {as_block, in_place, one_by_one}) filtered<F>(way, x, other, 4);
            },
            [&] { EXPECT_TRUE(same(filtered<F>(as_block, x, contexts.back(), 4), wanted)); });
    }
}

/// Those that take real taps for integers.
template <class Tap, class State>
void expect_clean_creation(KelStatus (*make)(KelIirContext**, const Tap*, int, const State*),
                           KelStatus (*release)(KelIirContext*), bool cascade) {
    std::vector<Tap> taps(24);
    kels_test::expect_not_made(kelStatusDivByZero, make, taps.data(), 3, nullptr);
    for (std::size_t i = 0; i < taps.size() * parts<Tap>; ++i) values(taps)[i] = 1;
    expect_creation_checked(make, taps.data(), cascade);
    kels_test::expect_clean_failures(make, release, taps.data(), 3, nullptr);
}

TEST(IirContexts, OfRealTapsForIntegersFailWell) {
    expect_clean_creation(kelsIIRInitAlloc32s_16s32f, kelsIIRFree32s_16s, false);
    expect_clean_creation(kelsIIRInitAlloc32s_BiQuad_16s32f, kelsIIRFree32s_16s, true);
    expect_clean_creation(kelsIIRInitAlloc32sc_16sc32fc, kelsIIRFree32sc_16sc, false);
    expect_clean_creation(kelsIIRInitAlloc32sc_BiQuad_16sc32fc, kelsIIRFree32sc_16sc, true);
}

} // namespace
