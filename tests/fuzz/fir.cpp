// FIR filters: one stream through two contexts, or through the caller's own delay line, in other pieces and by other
// forms.

#include "filters/fir/forms.h"

namespace {

using namespace fir_test;
using namespace kels_test;

Rates draw_rates(Input& in) {
    const int up = 1 + in.below(6), up_phase = in.below(up), down = 1 + in.below(6), down_phase = in.below(down);
    return {up, up_phase, down, down_phase};
}

/// Transforms spread what is not finite over a block.
template <class F>
Style style_of(const Design<F>& d) {
    return d.plan() > 0 ? Style::tame : Style::any;
}

template <class F>
Design<F> draw(Input& in, std::type_identity<WithContext<F>>) {
    Design<F> d;
    d.multi_rate = in.one_in(3);
    const int count = in.length(d.multi_rate || F::least_for_plan == 0 ? 300 : 3 * F::least_for_plan);
    if (d.multi_rate) d.r = draw_rates(in);
    d.taps.resize(static_cast<std::size_t>(count));
    d.taps = in.data<typename F::Taps>(count, style_of(d));
    d.line = in.data<typename F::Sample>(d.history(), style_of(d));
    d.scale = F::integer_samples ? in.scale_factor() : 0;
    return d;
}

template <class F>
Design<F> draw(Input& in, std::type_identity<Stateless<F>>) {
    Design<F> d;
    d.multi_rate = in.one_in(3);
    if (d.multi_rate) d.r = draw_rates(in);
    d.taps = in.data<typename F::Taps>(in.length(300));
    d.line = in.data<typename F::Sample>(d.history());
    d.start = in.below(d.count());
    if (!d.multi_rate) { // as it lies in the ring
        std::rotate(d.line.begin(), d.line.begin() + d.start, d.line.end());
        std::reverse(d.line.begin(), d.line.end());
    }
    d.tapsFactor = in.below(9) - 4;
    d.scale = F::integer_samples ? in.scale_factor() : 0;
    return d;
}

/// What two ways may differ by once one has gone through transforms.
template <class F>
double tolerance(const Design<F>& d) {
    using Sample = typename F::Sample;
    const double eps = F::single_taps ? 0x1p-21 : 0x1p-48;
    const double level = magnitude(d.taps) * (F::integer_samples ? sizeof(Part<Sample>) == 4 ? 0x1p31 : 0x1p15 : 2);
    const double ulp = std::is_same_v<Part<Sample>, Kel32f> ? 0x1p-24 : 0;
    return F::integer_samples ? 1 + std::ldexp(eps * level, -d.scale) : (eps + ulp) * level;
}

/// Counts results that are direct sums.
template <class Form, class Sample>
void count(const Form& form, Way way, int n, const std::vector<Sample>& y) {
    using F = typename Form::F;
    if constexpr (Form::has_context) {
        if (way == as_block && (form.plan() == 0 || (n <= form.plan() && !F::plan_in_place_always)))
            digest(F::block, y);
    } else {
        if (way == as_block) form.multi_rate ? digest(F::rates, y) : digest(F::direct_block, y);
        if (way == one_by_one) digest(F::direct_one, y);
    }
}

/// Another context goes on, another history for both, or they are given to a family that has no context of theirs.
template <class F>
void change(Input& in, WithContext<F>& one, WithContext<F>& two, const std::vector<typename F::Sample>& line) {
    const int step = in.below(6);
    if (step == 1) {
        Design<F> next = one;
        next.line = line;
        two = WithContext<F>(in, next);
    } else if (step == 2) {
        const auto other = in.data<typename F::Sample>(static_cast<int>(line.size()), style_of<F>(one));
        const GuardedArray<typename F::Sample> source(other, in.edge());
        for (const auto* form : {&one, &two}) EXPECT_EQ(F::set_line(form->context.get(), source.data()), kelStatusOk);
    } else if (step == 3) {
        expect_stranger<std::conditional_t<std::is_same_v<F, Family_32f>, Family_64f, Family_32f>>(one.context.get());
    }
}

template <class Form>
void drive(Input& in) {
    using F = typename Form::F;
    using Sample = typename F::Sample;
    const Design<F> d = draw(in, std::type_identity<Form>{});
    Form one(in, d), two(in, d);
    const int plan = one.plan(), down = d.r.down;
    while (in.more()) {
        const int iterations = in.length(plan > 0 ? 6 * plan : 400);
        const auto x = in.data<Sample>(iterations * down, plan > 0 ? Style::tame : Style::any);
        const auto stream = [&](Form& form, int from, int n) {
            form.place(in);
            const int ways = d.multi_rate ? 2 : Form::has_context ? 3 : 4;
            const Way way = static_cast<Way>(in.below(ways));
            const auto y =
                filtered(in, form, way, piece(x, from * down, n * down), n, static_cast<std::size_t>(n * d.r.up));
            count(form, way, n, y);
            return y;
        };
        at_once_and_cut(one, two, iterations, in.below(iterations), stream,
                        [&](const auto& whole, const auto& parts, const char*) {
                            if (plan == 0)
                                expect_same(whole, parts, "cut stream");
                            else
                                expect_near(whole, parts, tolerance(d), "cut stream");
                        });
        const auto line = one.newest_first(in);
        expect_same(line, two.newest_first(in), "delay lines");
        if constexpr (Form::has_context)
            change(in, one, two, line);
        else
            EXPECT_EQ(one.index, two.index);
    }
}

template <template <class> class Form, class... F>
bool add(const char* name, testing::Types<F...>) {
    return add_target(name, {drive<Form<F>>...});
}
const bool contexts_added = add<WithContext>("fir", Families{});

/// As the kept inputs and digests count them.
using OfDirectForms = testing::Types<Family_32f, Family_32fc, Family_64f, Family_64fc, Family64f_32f, Family64fc_32fc,
                                     Family32f_16s, Family32fc_16sc, Family64f_16s, Family64fc_16sc, Family64f_32s,
                                     Family64fc_32sc, Family32s_16s, Family32sc_16sc>;
const bool direct_forms_added = add<Stateless>("fir_direct", OfDirectForms{});

} // namespace
