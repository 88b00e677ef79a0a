// Transforms of every family and layout: where their arrays may stand, what they refuse, how their plans live.

#include "transforms/families.h"

#include "support/control_state.h"
#include "support/exact.h"
#include "support/guarded_array.h"

#include <map>
#include <memory>

namespace {

using namespace transform_test;

template <class F>
class Transform : public testing::Test {};
using Families = testing::Types<Fft32f, Fft64f, Fft16s, Dft32f, Dft64f, Dft16s, Dct32f, Dct64f, Dct16s>;
TYPED_TEST_SUITE(Transform, Families, FamilyNames);

/// Two arrays, or one and an empty one, at the edge of a page or a little off it.
template <class T>
struct Pair {
    GuardedArray<T> first, second;

    Pair(std::size_t count, std::size_t arrays, Edge edge, std::size_t offset)
        : first(count / arrays, edge, offset), second(count - count / arrays, edge, offset) {}
    void fill(const std::vector<T>& x, std::size_t arrays) {
        const auto middle = x.begin() + static_cast<std::ptrdiff_t>(x.size() / arrays);
        first.fill({x.begin(), middle});
        second.fill({middle, x.end()});
    }
    std::vector<T> values() const {
        std::vector<T> all = first.values(), rest = second.values();
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    }
};

// At odd addresses too, out of place, in place, and one of two arrays in place, with a buffer of the stated size: the
// same bits, not a byte outside, and no memory.
TYPED_TEST(Transform, GivesTheSameBitsAtAnyPlace) {
    using F = TypeParam;
    using T = typename F::Real;
    const auto body = [](const Case<F>& c) {
        const auto plan = c.plan();
        const std::vector<T> x = c.noise(), wanted = c.transformed(x, plan.get(), 2);
        const std::size_t arrays = c.arrays(), room = std::max(c.sources(), c.results());
        for (const Edge edge : edges)
            for (const std::size_t offset : {0, 1, 4, 20}) {
                if (c.n > 5000 && offset > 1) continue;
                Pair<T> src(x.size(), arrays, edge, offset), dst(wanted.size(), arrays, edge, offset),
                    both(room, arrays, edge, offset);
                GuardedArray<Kel8u> buffer(static_cast<std::size_t>(c.buffer_size()), edge, offset);
                const auto run = [&](Pair<T>& from, Pair<T>& to, Pair<T>& to_second) {
                    const long before = allocations();
                    ASSERT_TRUE(runs_without_fault([&] {
                        F::run(c.layout, c.inverse, from.first.data(), from.second.data(), to.first.data(),
                               to_second.second.data(), plan.get(), 2, buffer.data());
                    })) << "offset "
                        << offset;
                    EXPECT_EQ(allocations(), before);
                };
                src.fill(x, arrays);
                run(src, dst, dst);
                ASSERT_TRUE(same_bits(dst.values(), wanted)) << "offset " << offset;
                ASSERT_TRUE(same_bits(src.values(), x)) << "offset " << offset;

                std::vector<T> in_place = x;
                in_place.resize(room, T{9});
                if (c.layout == Layout::ccs && c.inverse)
                    in_place[1] = in_place[c.n % 2 == 0 ? room - 1 : 1] = 77; // not read
                both.fill(in_place, arrays);
                run(both, both, both);
                std::copy(wanted.begin(), wanted.end(), in_place.begin()); // and what is behind stays
                ASSERT_TRUE(same_bits(both.values(), in_place)) << "in place, offset " << offset;
                if (arrays == 1) continue;
                run(src, src, dst);
                ASSERT_TRUE(same_bits(src.first.values(), dst.first.values())) << "one array in place";
                ASSERT_TRUE(same_bits(dst.values(), wanted)) << "one array in place";
            }
    };
    for_each_case<F>(F::places(), body, kelFftNormInv);
    if (sizeof(T) == 2) for_each_case<F>(F::places(), body, kelFftNormSqrt, kelHintFloat);
}

/// A plan of each kind that there is, beside the function that releases it.
using AnyFunction = void (*)();
using AnyPlans = std::map<AnyFunction, std::shared_ptr<void>>;

template <class F>
void add_plans(AnyPlans& plans) {
    for_each_case<F>({16}, [&](const Case<F>& c) {
        const auto release = c.plans().release;
        plans[reinterpret_cast<AnyFunction>(release)] = std::shared_ptr<void>(
            c.plan().release(), [release](void* plan) { release(static_cast<typename F::Plan*>(plan)); });
    });
}

template <class... F>
AnyPlans all_plans(testing::Types<F...>) {
    AnyPlans plans;
    (add_plans<F>(plans), ...);
    return plans;
}

TYPED_TEST(Transform, RefusesInTheOrderOfItsChecks) {
    using F = TypeParam;
    using T = typename F::Real;
    using Plan = typename F::Plan;
    const AnyPlans plans = all_plans(Families{});
    EXPECT_EQ(plans.size(), 24U);
    for_each_case<F>({16}, [&](const Case<F>& c) {
        const std::vector<T> x(40, T{5});
        std::vector<T> y(40, T{7});
        int size = -7;
        for (const auto& [release, any_plan] : plans) {
            auto* plan = static_cast<Plan*>(any_plan.get());
            const bool own = release == reinterpret_cast<AnyFunction>(c.plans().release);
            const KelStatus status = own ? kelStatusNullPtr : kelStatusContextMismatch;
            for (const int null : {0, 1, 2, 3}) {
                if (null % 2 == 1 && c.arrays() == 1) continue;
                const T* src[] = {null == 0 ? nullptr : x.data(), null == 1 ? nullptr : x.data()};
                T* dst[] = {null == 2 ? nullptr : y.data(), null == 3 ? nullptr : y.data()};
                EXPECT_EQ(F::run(c.layout, c.inverse, src[0], src[1], dst[0], dst[1], plan, 0, nullptr), status)
                    << null;
            }
            if (own) {
                EXPECT_EQ(c.plans().buffer_size(plan, nullptr), kelStatusNullPtr);
                continue;
            }
            EXPECT_EQ(c.run(x.data(), y.data(), plan), kelStatusContextMismatch);
            EXPECT_EQ(c.plans().buffer_size(plan, &size), kelStatusContextMismatch);
            EXPECT_EQ(c.plans().release(plan), kelStatusContextMismatch);
        }
        EXPECT_EQ(c.run(x.data(), y.data(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(c.plans().buffer_size(nullptr, &size), kelStatusNullPtr);
        EXPECT_EQ(c.plans().release(nullptr), kelStatusNullPtr);
        EXPECT_EQ(size, -7);
        EXPECT_EQ(y, std::vector<T>(40, T{7}));
    });
}

TYPED_TEST(Transform, PlansAreMadeWholeOrNotAtAll) {
    using F = TypeParam;
    for_each_case<F>({1}, [](const Case<F>& c) {
        const auto& plans = c.plans();
        EXPECT_EQ(plans.make(nullptr, -1, 3, 0), kelStatusNullPtr);
        const long before = live_blocks();
        for (const Refused& r : F::refused(c.layout)) {
            SCOPED_TRACE(testing::Message() << "size " << r.size << " flag " << r.flag);
            expect_not_made(r.status, plans.make, r.size, r.flag, kelHintFloat);
        }
        EXPECT_EQ(live_blocks(), before);
        for (const int hint : {0, 1, 2, 77, -5}) made(plans.make, plans.release, 5, kelFftNormNone, hint);
        for (const int n : F::some_lengths())
            expect_clean_failures(plans.make, plans.release, F::size(n), kelFftNormFwd, kelHintDefault);
    });
}

TYPED_TEST(Transform, StoresNothingForWantOfMemory) {
    using F = TypeParam;
    for_each_case<F>(F::lengths_that_allocate(), [](const Case<F>& c) {
        const auto plan = c.plan();
        const auto x = c.noise();
        for_each_allocation_failure([&] {
            std::vector<typename F::Real> y(c.results(), 7), before = y;
            const KelStatus status = c.run(x.data(), y.data(), plan.get());
            EXPECT_EQ(same_bits(y, before), status != kelStatusOk);
            return status;
        });
    });
}

TYPED_TEST(Transform, ThreadsShareAPlan) {
    using F = TypeParam;
    const std::vector<int> lengths = F::some_lengths();
    for_each_case<F>({lengths.begin() + 1, lengths.end() - 1}, [](const Case<F>& c) {
        const auto plan = c.plan();
        const auto x = c.noise();
        expect_same_on_threads([&] { return c.transformed(x, plan.get()); });
    });
}

// Nor do the modes under which a plan is made show in what it gives.
TYPED_TEST(Transform, LeavesTheModesAlone) {
    using F = TypeParam;
    const auto body = [](const Case<F>& c) {
        const auto plan = c.plan();
        const auto x = c.noise(), wanted = c.transformed(x, plan.get());
        const long before = allocations();
        in_odd_modes([&] { c.transformed(x, plan.get()); });
        if (F::lengths_that_allocate().empty()) {
            EXPECT_EQ(allocations(), before);
        }
        for (const ControlState& modes : odd_modes) {
            const auto other_plan = under(modes, [&] { return c.plan(); });
            EXPECT_TRUE(same_bits(c.transformed(x, other_plan.get()), wanted)) << "made under " << modes.x87;
        }
    };
    for_each_case<F>(F::some_lengths(), body, kelFftNormSqrt);
}

} // namespace
