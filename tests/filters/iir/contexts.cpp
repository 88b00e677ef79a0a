// IIR filters of every family: their contexts, the order of their checks, the memory they touch.

#include "filters/iir/families.h"
#include "support/allocation_faults.h"
#include "support/control_state.h"
#include "support/guarded_memory.h"

#include <climits>

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

TYPED_TEST(IirContext, RefusesInTheOrderOfItsChecks) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("refuses");
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelIirContext*>(&elsewhere);
    for (bool cascade : {false, true}) {
        auto taps = simple_taps<F>(random, cascade, 3);
        KelIirContext* made = untouched;
        EXPECT_EQ(init<F>(nullptr, cascade, taps.data(), -1, 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(init<F>(&made, cascade, nullptr, -1, 0, nullptr), kelStatusNullPtr);
        for (int bad : {cascade ? 0 : -1, -2, INT_MIN})
            EXPECT_EQ(init<F>(&made, cascade, taps.data(), bad, 0, nullptr), kelStatusBadIirOrder);
        EXPECT_EQ(init<F>(&made, cascade, taps.data(), INT_MAX, 0, nullptr), kelStatusNoMemory);
        // A divisor is zero if both its parts are.
        for (std::size_t i = 0; i < taps.size(); ++i) {
            const bool divides = cascade ? i % 3 == 0 : i == taps.size() / 2;
            auto with_zero = taps;
            with_zero[i] = {};
            EXPECT_EQ(init<F>(&made, cascade, with_zero.data(), 3, 0, nullptr),
                      divides ? kelStatusDivByZero : kelStatusOk)
                << i;
            if (!divides) F::release(made);
            made = untouched;
            if (!divides || parts<T> == 1) continue;
            values(with_zero)[2 * i + 1] = 1;
            EXPECT_EQ(init<F>(&made, cascade, with_zero.data(), 3, 0, nullptr), kelStatusOk) << i;
            F::release(made);
            made = untouched;
        }

        const Context own = make<F>(cascade, taps);
        const std::size_t registers = cascade ? 6 : 3;
        const auto before = state_of<F>(own, registers);
        std::vector<T> a(8), b(8);
        std::memset(static_cast<void*>(a.data()), 0x5A, 8 * sizeof(T));
        b = a;
        EXPECT_EQ(F::release(nullptr), kelStatusNullPtr);
        EXPECT_EQ(F::get_line(nullptr, taps.data()), kelStatusNullPtr);
        EXPECT_EQ(F::get_line(own.get(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(F::set_line(nullptr, taps.data()), kelStatusNullPtr);
        for (int count : {0, 1}) {
            EXPECT_EQ(call(F::block, 0, nullptr, nullptr, count, nullptr), kelStatusNullPtr);
            EXPECT_EQ(call(F::block, 0, nullptr, a.data(), count, own.get()), kelStatusNullPtr);
            EXPECT_EQ(call(F::block, 0, b.data(), nullptr, count, own.get()), kelStatusNullPtr);
            EXPECT_EQ(call(F::in_place, 0, a.data(), count, nullptr), kelStatusNullPtr);
            EXPECT_EQ(call(F::in_place, 0, nullptr, count, own.get()), kelStatusNullPtr);
        }
        for (int bad : {0, -1, INT_MIN}) {
            EXPECT_EQ(call(F::block, 0, b.data(), a.data(), bad, own.get()), kelStatusBadSize);
            EXPECT_EQ(call(F::in_place, 0, a.data(), bad, own.get()), kelStatusBadSize);
        }
        EXPECT_EQ(call(F::one, 0, a[0], a.data(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(call(F::one, 0, a[0], nullptr, own.get()), kelStatusNullPtr);
        EXPECT_TRUE(same(a, b)) << "nothing stored";
        EXPECT_TRUE(same(state_of<F>(own, registers), before));
    }
}

TYPED_TEST(IirContext, StaysInsideItsArrays) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("guards");
    kels_test::GuardedMemory source(3000 * sizeof(T)), target(3000 * sizeof(T)), inputs(400 * sizeof(typename F::Taps));
    for (bool cascade : {false, true})
        for (int size : {1, 2, 3, 4, 5, 8, 9, 17}) {
            const auto taps = simple_taps<F>(random, cascade, size);
            const std::size_t tap_bytes = taps.size() * sizeof taps[0];
            auto* guarded = reinterpret_cast<typename F::Taps*>(inputs.end() - tap_bytes);
            std::memcpy(static_cast<void*>(guarded), taps.data(), tap_bytes);
            KelIirContext* made = nullptr;
            ASSERT_TRUE(kels_test::runs_without_fault([&] { init<F>(&made, cascade, guarded, size, 0, nullptr); }));
            const Context context(made, F::release), other = make<F>(cascade, taps);
            ASSERT_TRUE(kels_test::runs_without_fault([&] {
                const int registers = cascade ? 2 * size : size;
                auto* state = reinterpret_cast<typename F::Taps*>(inputs.end()) - registers;
                F::get_line(context.get(), state);
                F::set_line(context.get(), state);
            }));
            for (int count : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 64, 65, 129, 1023, 1024, 1025, 2500})
                for (bool at_end : {false, true}) {
                    const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(T);
                    const auto x = noise<T>(random, count);
                    auto* src = reinterpret_cast<T*>(at_end ? source.end() - bytes : source.begin());
                    auto* dst = reinterpret_cast<T*>(at_end ? target.end() - bytes : target.begin());
                    std::memcpy(static_cast<void*>(src), x.data(), bytes);
                    ASSERT_TRUE(kels_test::runs_without_fault([&] {
                        call(F::block, 3, src, dst, count, context.get());
                    })) << size
                        << ' ' << count;
                    EXPECT_EQ(std::memcmp(src, x.data(), bytes), 0);
                    const auto y = filtered<F>(in_place, x, other, 3);
                    EXPECT_EQ(std::memcmp(y.data(), dst, bytes), 0) << "in place and at any address the same bits";
                    ASSERT_TRUE(
                        kels_test::runs_without_fault([&] { call(F::in_place, 3, src, count, context.get()); }));
                    filtered<F>(as_block, x, other, 3);
                    ASSERT_TRUE(kels_test::runs_without_fault([&] { call(F::one, 3, x[0], dst, context.get()); }));
                    filtered<F>(one_by_one, {x[0]}, other, 3);
                }
        }
}

TYPED_TEST(IirContext, OnlyMakingOneAllocates) {
    using F = TypeParam;
    Random random("faults");
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelIirContext*>(&elsewhere);
    for (bool cascade : {false, true})
        for (int size : {1, 2, 12}) {
            const auto taps = simple_taps<F>(random, cascade, size);
            kels_test::for_each_allocation_failure([&] {
                KelIirContext* made = untouched;
                const KelStatus status = init<F>(&made, cascade, taps.data(), size, 0, nullptr);
                if (status == kelStatusOk)
                    F::release(made);
                else
                    EXPECT_EQ(made, untouched);
                return status;
            });
            const long live = kels_test::live_blocks();
            auto zeros = taps;
            std::fill(zeros.begin(), zeros.end(), typename F::Taps{});
            KelIirContext* made = untouched;
            EXPECT_EQ(init<F>(&made, cascade, zeros.data(), size, 0, nullptr), kelStatusDivByZero);
            EXPECT_EQ(kels_test::live_blocks(), live);
            const Context context = make<F>(cascade, taps);
            const auto x = noise<typename F::Sample>(random, 3000);
            const long before = kels_test::allocations();
            for (Way way : {as_block, in_place, one_by_one}) filtered<F>(way, x, context, -1);
            EXPECT_EQ(kels_test::allocations(), before);
        }
}

// Making one gives the same filter in any modes.
TYPED_TEST(IirContext, LeavesTheModesAlone) {
    using F = TypeParam;
    const kels_test::KeepControlState keep;
    const auto usual = kels_test::ControlState::current();
    Random random("modes");
    for (bool cascade : {false, true}) {
        auto taps = noise<typename F::Taps>(random, cascade ? 18 : 8);
        const auto x = noise<typename F::Sample>(random, 300);
        const auto wanted = filtered<F>(as_block, x, make<F>(cascade, taps), 4);
        for (const auto& modes : kels_test::odd_modes) {
            modes.load();
            const Context context = make<F>(cascade, taps), other = make<F>(cascade, taps);
            for (Way way : {as_block, in_place, one_by_one}) filtered<F>(way, x, other, 4);
            EXPECT_TRUE(kels_test::ControlState::current().same_modes(modes));
            usual.load();
            const auto y = filtered<F>(as_block, x, context, 4);
            EXPECT_EQ(std::memcmp(y.data(), wanted.data(), y.size() * sizeof y[0]), 0);
        }
    }
}

/// Those that take real taps for integers.
template <class Tap, class State>
void fails_well(KelStatus (*make)(KelIirContext**, const Tap*, int, const State*), KelStatus (*release)(KelIirContext*),
                int lowest) {
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelIirContext*>(&elsewhere);
    std::vector<Tap> taps(24);
    KelIirContext* made = untouched;
    EXPECT_EQ(make(&made, taps.data(), 3, nullptr), kelStatusDivByZero);
    for (std::size_t i = 0; i < taps.size() * parts<Tap>; ++i) values(taps)[i] = 1;
    EXPECT_EQ(make(nullptr, taps.data(), 3, nullptr), kelStatusNullPtr);
    EXPECT_EQ(make(&made, nullptr, 3, nullptr), kelStatusNullPtr);
    EXPECT_EQ(make(&made, taps.data(), lowest - 1, nullptr), kelStatusBadIirOrder);
    EXPECT_EQ(make(&made, taps.data(), INT_MAX, nullptr), kelStatusNoMemory);
    EXPECT_EQ(made, untouched);
    kels_test::for_each_allocation_failure([&] {
        made = untouched;
        const KelStatus status = make(&made, taps.data(), 3, nullptr);
        EXPECT_EQ(made != untouched, status == kelStatusOk);
        if (made != untouched) release(made);
        return status;
    });
}

TEST(IirContexts, OfRealTapsForIntegersFailWell) {
    fails_well(kelsIIRInitAlloc32s_16s32f, kelsIIRFree32s_16s, 0);
    fails_well(kelsIIRInitAlloc32s_BiQuad_16s32f, kelsIIRFree32s_16s, 1);
    fails_well(kelsIIRInitAlloc32sc_16sc32fc, kelsIIRFree32sc_16sc, 0);
    fails_well(kelsIIRInitAlloc32sc_BiQuad_16sc32fc, kelsIIRFree32sc_16sc, 1);
}

} // namespace
