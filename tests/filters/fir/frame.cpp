// FIR filters: what makes a context and reads it, the order of all checks, allocations that fail.

#include "filters/fir/forms.h"

namespace {

using namespace fir_test;
using kels_test::Careful;

template <class F>
class FirFrame : public testing::Test {};
TYPED_TEST_SUITE(FirFrame, Families, FamilyNames);

TYPED_TEST(FirFrame, ContextGivesBackWhatItWasGiven) {
    using F = TypeParam;
    Random random("read back");
    Careful careful;
    for (int L : {1, 2, 8, 10, 31, 40})
        for (const bool multi_rate : {false, true}) {
            Design<F> design;
            design.taps = noise<typename F::Taps>(random, L);
            if (multi_rate) design.r = {3, 1, 2, 0};
            design.multi_rate = multi_rate;
            design.line = noise<typename F::Sample>(random, design.history());
            const WithContext<F> form(careful, design);
            auto* const context = form.context.get();
            std::vector<typename F::Taps> taps(design.taps.size());
            EXPECT_EQ(get_taps<F>(context, taps.data()), kelStatusOk);
            EXPECT_TRUE(same(taps, design.taps));
            expect_line_kept<F>(context, design.line);
        }
}

/// A context of five taps, of one rate or of two.
constexpr auto make_any = []<class F>(bool multi_rate) {
    const std::vector<typename F::Taps> taps(5);
    return multi_rate ? make_multi_rate<F>(taps, {2, 0, 3, 0}) : make<F>(taps);
};

TYPED_TEST(FirFrame, ContextsAreChecked) {
    using F = TypeParam;
    std::vector<typename F::Taps> taps(5);
    const auto others = contexts_of_others<F, Context>(Families{}, make_any);
    const Context one_rate = make<F>(taps), two_rates = make_multi_rate<F>(taps, {2, 0, 3, 0}),
                  ones = make_multi_rate<F>(taps, {1, 0, 1, 0});
    for (const Context* own : {&one_rate, &two_rates}) {
        expect_checks_of_context<F>(*own, others);
        Untouched().expect_checks(get_taps<F>, std::tuple(own->get(), taps.data()),
                                  {null(0), null(1), foreign(0, others)});
    }
    expect_checks_of_one<F>(one_rate, others);
    typename F::Sample y{};
    EXPECT_EQ(call(F::one, 0, y, &y, two_rates.get()), kelStatusContextMismatch);
    EXPECT_EQ(call(F::one, 0, y, &y, ones.get()), F::degenerates ? kelStatusOk : kelStatusContextMismatch);
}

TYPED_TEST(FirFrame, CreationRefusesAndRunsOutOfMemory) {
    using F = TypeParam;
    const std::vector<typename F::Taps> taps(140);
    Untouched memory;
    auto* const made = memory.array<KelFirContext*>(1);
    memory.expect_refusals(init<F>, std::tuple(made, taps.data(), 5),
                           {null(0), null(1), size(2, kelStatusBadFirLength)});
    memory.expect_refusals(init_multi_rate<F>, std::tuple(made, taps.data(), 4, 0, 3, 0, 3, 0),
                           {null(0), null(1), size(2, kelStatusBadFirLength), size(4, kelStatusBadMrFactor),
                            size(6, kelStatusBadMrFactor), index(5, 3, kelStatusBadMrPhase),
                            index(7, 3, kelStatusBadMrPhase)});
    for (int L : {1, 140}) kels_test::expect_clean_failures(init<F>, F::release, taps.data(), L, 0, nullptr);
    kels_test::expect_clean_failures(init_multi_rate<F>, F::release, taps.data(), 20, 0, 3, 1, 2, 0, nullptr);
}

TYPED_TEST(FirFrame, FormsWithoutAContextAreChecked) {
    using F = TypeParam;
    using T = typename F::Sample;
    Untouched memory;
    T *const x = memory.array<T>(4), *const y = memory.array<T>(4), *const line = memory.array<T>(8);
    const typename F::Taps* const taps = memory.array<typename F::Taps>(4);
    int* const place = memory.array({0});
    const auto with = [&](auto before, auto behind) {
        if constexpr (F::integer_taps)
            return std::tuple_cat(before, std::tuple(taps, 4, 0), behind);
        else
            return std::tuple_cat(before, std::tuple(taps, 4), behind);
    };
    /// The checks of taps at a position and of what follows them.
    const auto checks = [](std::vector<Check> all, int at, std::vector<Check> behind) {
        all.insert(all.end(), {null(at), size(at + 1, kelStatusBadFirLength)});
        for (Check& check : behind) check.argument += at + 2 + F::integer_taps;
        all.insert(all.end(), behind.begin(), behind.end());
        return all;
    };
    const auto ring = std::tuple(line, place);
    const std::vector<Check> of_ring = {null(0), null(1)};
    memory.expect_checks(F::direct_one, with(std::tuple(T{}, y), ring), checks({null(1)}, 2, of_ring));
    memory.expect_checks(F::direct_one_in_place, with(std::tuple(y), ring), checks({null(0)}, 1, of_ring));
    memory.expect_checks(F::direct_block, with(std::tuple(x, y, 4), ring),
                         checks({null(0), null(1), size(2)}, 3, of_ring));
    memory.expect_checks(F::direct_in_place, with(std::tuple(y, 4), ring), checks({null(0), size(1)}, 2, of_ring));
    const auto rates = std::tuple(2, 0, 3, 0, line);
    const std::vector<Check> of_rates = {size(0, kelStatusBadMrFactor), size(2, kelStatusBadMrFactor),
                                         index(1, 2, kelStatusBadMrPhase), index(3, 3, kelStatusBadMrPhase), null(4)};
    memory.expect_checks(F::rates, with(std::tuple(x, y, 1), rates), checks({null(0), null(1), size(2)}, 3, of_rates));
    memory.expect_checks(F::rates_in_place, with(std::tuple(y, 1), rates), checks({null(0), size(1)}, 2, of_rates));
}

TYPED_TEST(FirFrame, RateChangesInPlaceWithoutMemoryChangeNothing) {
    using F = TypeParam;
    Random random("faults");
    Careful careful;
    Design<F> design;
    design.taps = noise<typename F::Taps>(random, 40);
    design.line = noise<typename F::Sample>(random, 20);
    design.r = {2, 0, 3, 0};
    design.multi_rate = true;
    const auto x = noise<typename F::Sample>(random, 60);
    kels_test::for_each_allocation_failure([&] {
        Stateless<F> form(careful, design);
        form.place(careful);
        auto y = x;
        const KelStatus status = form.run(y.data(), 20);
        if (status != kelStatusOk) {
            EXPECT_TRUE(same(form.newest_first(careful), design.line));
            EXPECT_TRUE(same(y, x));
        }
        return status;
    });
}

} // namespace
