// IIR filters of every family: their contexts, the order of their checks, the memory they touch.

#include "filters/iir/families.h"
#include "support/control_state.h"
#include "support/guarded_array.h"
#include "support/refusals.h"

#include <climits>

namespace {

using namespace iir_test;
using kels_test::Edge;
using kels_test::GuardedArray;

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
            EXPECT_TRUE(same(state_of<F>(context, registers), state));
            EXPECT_EQ(F::set_line(context.get(), nullptr), kelStatusOk);
            EXPECT_TRUE(same(state_of<F>(context, registers), std::vector<typename F::Taps>(registers)));
            EXPECT_EQ(F::set_line(context.get(), state.data()), kelStatusOk);
            EXPECT_TRUE(same(state_of<F>(context, registers), state));
        }
}

/// A context of both forms of every family but one.
template <class Other, class... Rest>
std::vector<Context> contexts_of_others(const char* name, testing::Types<Other, Rest...>*) {
    std::vector<Context> others;
    if constexpr (sizeof...(Rest) > 0)
        others = contexts_of_others(name, static_cast<testing::Types<Rest...>*>(nullptr));
    Random random("others");
    if (std::string(name) != Other::name)
        for (bool cascade : {false, true})
            others.push_back(make<Other>(cascade, simple_taps<Other>(random, cascade, 2)));
    return others;
}

TYPED_TEST(IirContext, RefusesContextsOfOthers) {
    using F = TypeParam;
    typename F::Taps state[8] = {}, kept_state[8] = {};
    typename F::Sample x[8] = {}, y[8] = {}, kept[8] = {};
    const auto others = contexts_of_others(F::name, static_cast<Families*>(nullptr));
    EXPECT_EQ(others.size(), 26U);
    for (const Context& other : others) {
        KelIirContext* foreign = other.get();
        EXPECT_EQ(F::release(foreign), kelStatusContextMismatch);
        EXPECT_EQ(F::get_line(foreign, state), kelStatusContextMismatch);
        EXPECT_EQ(F::set_line(foreign, nullptr), kelStatusContextMismatch);
        EXPECT_EQ(F::set_line(foreign, state), kelStatusContextMismatch);
        for (int count : {0, 1}) {
            EXPECT_EQ(call(F::block, 0, nullptr, y, count, foreign), kelStatusContextMismatch);
            EXPECT_EQ(call(F::in_place, 0, nullptr, count, foreign), kelStatusContextMismatch);
        }
        EXPECT_EQ(call(F::one, 0, x[0], nullptr, foreign), kelStatusContextMismatch);
    }
    EXPECT_EQ(std::memcmp(y, kept, sizeof y), 0);
    EXPECT_EQ(std::memcmp(state, kept_state, sizeof state), 0);
}

TYPED_TEST(IirContext, MakingOneRefusesAndRunsOutOfMemory) {
    using F = TypeParam;
    Random random("making");
    for (bool cascade : {false, true}) {
        const auto make_one = init_of<F>(cascade);
        const auto taps = simple_taps<F>(random, cascade, 3);
        KelIirContext* made = nullptr;
        kels_test::expect_nulls_refused(make_one, &made, taps.data(), -1, 0, nullptr);
        for (int bad : {cascade ? 0 : -1, -2, INT_MIN})
            kels_test::expect_not_made(kelStatusBadIirOrder, make_one, taps.data(), bad, 0, nullptr);
        kels_test::expect_not_made(kelStatusNoMemory, make_one, taps.data(), INT_MAX, 0, nullptr);
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

TYPED_TEST(IirContext, RefusesInTheOrderOfItsChecks) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("refuses");
    for (bool cascade : {false, true}) {
        auto taps = simple_taps<F>(random, cascade, 3);
        const Context own = make<F>(cascade, taps);
        const std::size_t registers = cascade ? 6 : 3;
        const auto before = state_of<F>(own, registers);
        std::vector<T> a(8), b(8);
        std::memset(static_cast<void*>(a.data()), 0x5A, 8 * sizeof(T));
        b = a;
        EXPECT_EQ(F::release(nullptr), kelStatusNullPtr);
        EXPECT_EQ(F::set_line(nullptr, taps.data()), kelStatusNullPtr);
        kels_test::expect_nulls_refused(F::get_line, own.get(), taps.data());
        EXPECT_EQ(call(F::one, 0, a[0], a.data(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(call(F::one, 0, a[0], nullptr, own.get()), kelStatusNullPtr);
        for (int count : {1, 0, -1, INT_MIN}) {
            EXPECT_EQ(call(F::block, 0, nullptr, nullptr, count, nullptr), kelStatusNullPtr);
            EXPECT_EQ(call(F::block, 0, nullptr, a.data(), count, own.get()), kelStatusNullPtr);
            EXPECT_EQ(call(F::block, 0, b.data(), nullptr, count, own.get()), kelStatusNullPtr);
            EXPECT_EQ(call(F::in_place, 0, a.data(), count, nullptr), kelStatusNullPtr);
            EXPECT_EQ(call(F::in_place, 0, nullptr, count, own.get()), kelStatusNullPtr);
            if (count > 0) continue;
            EXPECT_EQ(call(F::block, 0, b.data(), a.data(), count, own.get()), kelStatusBadSize);
            EXPECT_EQ(call(F::in_place, 0, a.data(), count, own.get()), kelStatusBadSize);
        }
        EXPECT_TRUE(same(a, b)) << "nothing stored";
        EXPECT_TRUE(same(state_of<F>(own, registers), before));
    }
}

TYPED_TEST(IirContext, StaysInsideItsArrays) {
    using F = TypeParam;
    using T = typename F::Sample;
    using Taps = typename F::Taps;
    Random random("guards");
    for (bool cascade : {false, true})
        for (int size : {1, 2, 3, 4, 5, 8, 9, 17}) {
            const auto taps = simple_taps<F>(random, cascade, size);
            GuardedArray<Taps> guarded(taps, Edge::back),
                state(static_cast<std::size_t>(cascade ? 2 * size : size), Edge::back);
            KelIirContext* made = nullptr;
            ASSERT_TRUE(kels_test::runs_without_fault([&] {
                init_of<F>(cascade)(&made, guarded.data(), size, 0, nullptr);
                F::get_line(made, state.data());
                F::set_line(made, state.data());
            }));
            const Context context(made, F::release), other = make<F>(cascade, taps);
            for (int count : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 64, 65, 129, 1023, 1024, 1025, 2500})
                for (const Edge edge : kels_test::edges) {
                    const auto x = noise<T>(random, count);
                    GuardedArray<T> src(x, edge), dst(x.size(), edge);
                    const long before = kels_test::allocations();
                    ASSERT_TRUE(kels_test::runs_without_fault([&] {
                        call(F::block, 3, src.data(), dst.data(), count, context.get());
                    })) << size
                        << ' ' << count;
                    EXPECT_TRUE(same(src.values(), x));
                    EXPECT_TRUE(same(dst.values(), filtered<F>(in_place, x, other, 3)))
                        << "in place and at any address the same bits";
                    ASSERT_TRUE(kels_test::runs_without_fault([&] {
                        call(F::in_place, 3, src.data(), count, context.get());
                        call(F::one, 3, x[0], dst.data(), context.get());
                    }));
                    filtered<F>(as_block, x, other, 3);
                    filtered<F>(one_by_one, {x[0]}, other, 3);
                    EXPECT_EQ(kels_test::allocations(), before) << "only making one allocates";
                }
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
                           KelStatus (*release)(KelIirContext*), int lowest) {
    std::vector<Tap> taps(24);
    kels_test::expect_not_made(kelStatusDivByZero, make, taps.data(), 3, nullptr);
    for (std::size_t i = 0; i < taps.size() * parts<Tap>; ++i) values(taps)[i] = 1;
    KelIirContext* made = nullptr;
    kels_test::expect_nulls_refused(make, &made, taps.data(), -5, nullptr);
    kels_test::expect_not_made(kelStatusBadIirOrder, make, taps.data(), lowest - 1, nullptr);
    kels_test::expect_not_made(kelStatusNoMemory, make, taps.data(), INT_MAX, nullptr);
    kels_test::expect_clean_failures(make, release, taps.data(), 3, nullptr);
}

TEST(IirContexts, OfRealTapsForIntegersFailWell) {
    expect_clean_creation(kelsIIRInitAlloc32s_16s32f, kelsIIRFree32s_16s, 0);
    expect_clean_creation(kelsIIRInitAlloc32s_BiQuad_16s32f, kelsIIRFree32s_16s, 1);
    expect_clean_creation(kelsIIRInitAlloc32sc_16sc32fc, kelsIIRFree32sc_16sc, 0);
    expect_clean_creation(kelsIIRInitAlloc32sc_BiQuad_16sc32fc, kelsIIRFree32sc_16sc, 1);
}

} // namespace
