// IIR filters: one stream through two contexts, whole and in place, or cut between pairs of samples.

#include "filters/iir/families.h"

namespace {

using namespace iir_test;
using namespace kels_test;

template <class F>
struct Filter {
    using Taps = typename F::Taps;
    using Sample = typename F::Sample;

    bool cascade;
    std::vector<Taps> taps, state;
    int tapsFactor = 0, scale = 0;

    explicit Filter(Input& in) {
        cascade = in.below(2) == 1;
        const int size = cascade ? in.length(12) : in.below(40);
        const auto style = in.below(2) == 0 ? Style::tame : Style::any;
        taps = in.data<Taps>(cascade ? 6 * size : 2 * size + 2, style);
        if (style == Style::tame) calm();
        state = in.data<Taps>(cascade ? 2 * size : size, style);
        tapsFactor = in.below(40) - 30;
        scale = F::integer_samples ? in.scale_factor() : 0;
    }

    /// A large divisor keeps most filters from growing.
    void calm() {
        const std::size_t step = cascade ? 6 : taps.size(), divisor = step / 2;
        for (std::size_t i = 0; i < taps.size(); i += step)
            values(taps)[(i + divisor) * parts<Taps>] = F::integer_taps ? 1 << 20 : 8;
    }

    /// Null, where a divisor is 0.
    Context make(Input& in, const std::vector<Taps>& from) const {
        KelIirContext* context = nullptr;
        const GuardedArray<Taps> h(taps, in.edge()), d(from, in.edge());
        const int size = static_cast<int>(cascade ? taps.size() / 6 : taps.size() / 2 - 1);
        const auto status =
            in.attempt([&] { return init_of<F>(cascade)(&context, h.data(), size, tapsFactor, d.data()); });
        EXPECT_EQ(status, context ? kelStatusOk : kelStatusDivByZero);
        return {context, F::release};
    }

    std::vector<Sample> filtered(Input& in, Way way, const Context& context, const std::vector<Sample>& x) const {
        Through<F, KelIirContext> through{context.get(), scale};
        const auto y = filter_test::filtered(in, through, way, x, static_cast<int>(x.size()), x.size());
        if (way == as_block) digest(F::block, y);
        if (way == one_by_one) digest(F::one, y);
        return y;
    }

    std::vector<Taps> state_of(Input& in, const Context& context) const {
        return results<Taps>(in, state.size(), [&](Taps* to) { return F::get_line(context.get(), to); });
    }
};

template <class F>
void drive(Input& in) {
    using Sample = typename F::Sample;
    const Filter<F> filter(in);
    const Context one = filter.make(in, filter.state);
    Context two = filter.make(in, filter.state);
    while (one && in.more()) {
        // Double states feel every cut in their last bits.
        const int count = in.length(600), pairs = in.below((count + 1) / 2);
        const int cut = F::single_taps || F::integer_taps ? 2 * pairs : 0;
        const auto x = in.data<Sample>(count);
        const Way way = in.one_in(4) ? one_by_one : in.below(2) == 0 ? as_block : filter_test::in_place;
        const Way other = way == one_by_one ? way : in.below(2) == 0 ? as_block : filter_test::in_place;
        at_once_and_cut(one, two, count, cut, [&](const Context& context, int from, int n) {
            return filter.filtered(in, &context == &one ? way : other, context, piece(x, from, n));
        });
        const auto state = filter.state_of(in, one);
        expect_same(state, filter.state_of(in, two), "states");
        const int step = in.below(6);
        if (step == 1 && !F::integer_taps) { // whose taps a scale factor may have changed
            two = filter.make(in, state);
        } else if (step == 2) {
            const auto drawn = in.data<typename F::Taps>(static_cast<int>(state.size()));
            const GuardedArray<typename F::Taps> source(drawn, in.edge());
            const auto* next = in.below(4) == 0 ? nullptr : source.data();
            for (KelIirContext* context : {one.get(), two.get()}) EXPECT_EQ(F::set_line(context, next), kelStatusOk);
        } else if (step == 3) {
            expect_stranger<std::conditional_t<std::is_same_v<F, Family_32f>, Family_64f, Family_32f>>(one.get());
        }
    }
}

template <class... F>
bool add(testing::Types<F...>) {
    return add_target("iir", {drive<F>...});
}
const bool added = add(Families{});

} // namespace
