// FIR filters: one stream through two contexts, or through the caller's own delay line, in other pieces and by other
// forms.

#include "filters/fir/families.h"
#include "fuzz/sequence.h"
#include "kels/fir_direct.h"

#include <limits>

namespace {

using namespace fir_test;
using namespace kels_test;

Rates draw_rates(Input& in) {
    const int up = 1 + in.below(6), up_phase = in.below(up), down = 1 + in.below(6), down_phase = in.below(down);
    return {up, up_phase, down, down_phase};
}

/// A family of which no context belongs to F.
template <class F>
using Stranger = std::conditional_t<std::is_same_v<F, Family_32f>, Family_64f, Family_32f>;

template <class F>
struct Filter {
    using Taps = typename F::Taps;
    using Sample = typename F::Sample;

    Rates rates;
    std::vector<Taps> taps;
    std::vector<Sample> line; // newest first
    bool multi_rate = false;
    int scale = 0;
    int plan = 0;

    explicit Filter(Input& in) {
        multi_rate = in.one_in(3);
        const int count = in.length(multi_rate || F::least_for_plan == 0 ? 300 : 3 * F::least_for_plan);
        if (multi_rate) rates = draw_rates(in);
        const bool degenerate = F::degenerates && rates.up == 1 && rates.down == 1;
        plan = !multi_rate || degenerate ? plan_length<F>(count) : 0;
        taps = in.data<Taps>(count, style());
        line = in.data<Sample>((count + rates.up - 1) / rates.up, style());
        scale = F::integer_samples ? in.scale_factor() : 0;
    }

    /// Transforms spread what is not finite over a block.
    Style style() const { return plan > 0 ? Style::tame : Style::any; }

    Context make(Input& in) const {
        const int count = static_cast<int>(taps.size());
        const GuardedArray<Taps> h(taps, in.edge());
        const GuardedArray<Sample> x(line, in.edge());
        return made(in, F::release, [&](KelFirContext** context) {
            return multi_rate ? init_multi_rate<F>(context, h.data(), count, rates, x.data())
                              : init<F>(context, h.data(), count, x.data());
        });
    }

    std::vector<Sample> line_of(Input& in, const Context& context) const {
        return results<Sample>(in, line.size(), [&](Sample* y) { return F::get_line(context.get(), y); });
    }

    /// The context filters some iterations in one of its ways.
    std::vector<Sample> filtered(Input& in, const Context& context, const std::vector<Sample>& x) const {
        const int count = static_cast<int>(x.size()) / rates.down;
        const auto room = static_cast<std::size_t>(count * rates.up);
        const int way = in.below(multi_rate ? 2 : 3);
        if (way == 0) {
            const GuardedArray<Sample> source(x, in.edge());
            auto y = results<Sample>(
                in, room, [&](Sample* to) { return call(F::block, scale, source.data(), to, count, context.get()); });
            if (is_direct(count)) digest(F::block, y);
            return y;
        }
        auto y = x;
        if (way == 1) {
            y = results_in_place(
                in, x, [&](Sample* to) { return call(F::in_place, scale, to, count, context.get()); }, room);
            y.resize(room);
            return y;
        }
        for (Sample& v : y) EXPECT_EQ(call(F::one, scale, v, &v, context.get()), kelStatusOk);
        return y;
    }

    bool is_direct(int count) const { return plan == 0 || (count <= plan && !F::plan_in_place_always); }

    /// What two ways may differ by once one has gone through transforms.
    double tolerance() const {
        const double eps = std::is_same_v<Part<Taps>, Kel32f> ? 0x1p-21 : 0x1p-48;
        constexpr bool integers = F::integer_samples;
        const double level = magnitude(taps) * (integers ? sizeof(Part<Sample>) == 4 ? 0x1p31 : 0x1p15 : 2);
        const double ulp = std::is_same_v<Part<Sample>, Kel32f> ? 0x1p-24 : 0;
        return integers ? 1 + std::ldexp(eps * level, -scale) : (eps + ulp) * level;
    }
    void expect_alike(const std::vector<Sample>& a, const std::vector<Sample>& b) const {
        if (plan == 0)
            expect_same(a, b, F::name);
        else
            expect_near(a, b, tolerance(), F::name);
    }
};

template <class F>
void drive_contexts(Input& in) {
    using Sample = typename F::Sample;
    const Filter<F> filter(in);
    Context one = filter.make(in), two = filter.make(in);
    while (in.more()) {
        const int iterations = in.length(filter.plan > 0 ? 6 * filter.plan : 400), down = filter.rates.down;
        const auto x = in.data<Sample>(iterations * down, filter.style());
        at_once_and_cut(
            one, two, iterations, in.below(iterations),
            [&](const Context& context, int from, int n) {
                return filter.filtered(in, context, piece(x, from * down, n * down));
            },
            [&](const auto& whole, const auto& parts, const char*) { filter.expect_alike(whole, parts); });
        const auto line = filter.line_of(in, one);
        expect_same(line, filter.line_of(in, two), "delay lines");
        const int step = in.below(6);
        if (step == 1) { // a new context goes on
            auto next = filter;
            next.line = line;
            two = next.make(in);
        } else if (step == 2) { // another history
            const auto other = in.data<Sample>(static_cast<int>(line.size()), filter.style());
            const GuardedArray<Sample> source(other, in.edge());
            for (KelFirContext* context : {one.get(), two.get()})
                EXPECT_EQ(F::set_line(context, source.data()), kelStatusOk);
        } else if (step == 3) {
            using G = Stranger<F>;
            typename G::Sample y[4] = {};
            EXPECT_EQ(call(G::block, 0, y, y + 2, 2, one.get()), kelStatusContextMismatch);
            EXPECT_EQ(G::get_line(one.get(), y), kelStatusContextMismatch);
            EXPECT_EQ(G::release(one.get()), kelStatusContextMismatch);
        }
    }
}

// The forms without a context

template <class F, auto one, auto one_in_place, auto block, auto block_in_place, auto rates, auto rates_in_place>
struct Direct {
    using Taps = typename F::Taps;
    using Sample = typename F::Sample;

    /// The caller's arrays: a doubled ring, or the line of a rate change.
    struct Arrays {
        std::vector<Taps> taps;
        std::vector<Sample> line;
        int index = 0;
        int tapsFactor = 0, scale = 0;
        bool change = false;
        Rates r;

        /// Taps and their factor between what stands before and behind them.
        template <class Function, class... Before>
        auto with_taps(Function f, const Taps* h, Before... before) const {
            return [=, this](auto... behind) {
                const int count = static_cast<int>(taps.size());
                if constexpr (F::integer_taps)
                    return call(f, scale, before..., h, count, tapsFactor, behind...);
                else
                    return call(f, scale, before..., h, count, behind...);
            };
        }

        std::vector<Sample> filtered(Input& in, const std::vector<Sample>& x) {
            const GuardedArray<Taps> h(taps, in.edge());
            const GuardedArray<Sample> source(x, in.edge());
            GuardedArray<Sample> kept(line, in.edge());
            const int way = in.below(change ? 2 : 4), count = static_cast<int>(x.size()) / r.down;
            const auto room = static_cast<std::size_t>(count * r.up);
            const auto run = [&](auto ring_form, auto rates_form, auto... before) {
                if (!change) return with_taps(ring_form, h.data(), before...)(kept.data(), &index);
                return with_taps(rates_form, h.data(), before...)(r.up, r.upPhase, r.down, r.downPhase, kept.data());
            };
            auto y = x;
            if (way == 0) {
                y = results<Sample>(in, room, [&](Sample* to) { return run(block, rates, source.data(), to, count); });
                change ? digest(rates, y) : digest(block, y);
            } else if (way == 1) {
                y = results_in_place(
                    in, x, [&](Sample* to) { return run(block_in_place, rates_in_place, to, count); }, room);
                y.resize(room);
            } else {
                for (Sample& v : y)
                    EXPECT_EQ(way == 2 ? with_taps(one, h.data(), v, &v)(kept.data(), &index)
                                       : with_taps(one_in_place, h.data(), &v)(kept.data(), &index),
                              kelStatusOk);
                if (way == 2) digest(one, y);
            }
            line = kept.values();
            return y;
        }
    };

    static void drive(Input& in) {
        Arrays whole;
        whole.change = in.one_in(3);
        if (whole.change) whole.r = draw_rates(in);
        const int count = in.length(300), half = (count + whole.r.up - 1) / whole.r.up;
        whole.taps = in.data<Taps>(count);
        whole.line = in.data<Sample>(half);
        if (!whole.change) append(whole.line, std::vector<Sample>(whole.line));
        whole.index = in.below(count);
        whole.tapsFactor = in.below(9) - 4;
        whole.scale = F::integer_samples ? in.scale_factor() : 0;
        Arrays parts = whole;
        while (in.more()) {
            const int iterations = in.length(400), down = whole.r.down;
            const auto x = in.data<Sample>(iterations * down);
            at_once_and_cut(whole, parts, iterations, in.below(iterations), [&](Arrays& arrays, int from, int n) {
                return arrays.filtered(in, piece(x, from * down, n * down));
            });
            expect_same(whole.line, parts.line, "delay lines");
            EXPECT_EQ(whole.index, parts.index);
        }
    }
};

template <class... F>
bool add_contexts(testing::Types<F...>) {
    return add_target("fir", {drive_contexts<F>...});
}
const bool contexts_added = add_contexts(Families{});

#define KELS_DIRECT(family, taps, separate, in_place)                                                                  \
    Direct<family, kelsFIROne##taps##_Direct_##separate, kelsFIROne##taps##_Direct_##in_place,                         \
           kelsFIR##taps##_Direct_##separate, kelsFIR##taps##_Direct_##in_place, kelsFIRMR##taps##_Direct_##separate,  \
           kelsFIRMR##taps##_Direct_##in_place>::drive

const bool direct_forms_added = add_target(
    "fir_direct",
    {KELS_DIRECT(Family_32f, , 32f, 32f_I), KELS_DIRECT(Family_32fc, , 32fc, 32fc_I),
     KELS_DIRECT(Family_64f, , 64f, 64f_I), KELS_DIRECT(Family_64fc, , 64fc, 64fc_I),
     KELS_DIRECT(Family_64f_32f, 64f, 32f, 32f_I), KELS_DIRECT(Family_64fc_32fc, 64fc, 32fc, 32fc_I),
     KELS_DIRECT(Family_32f_16s, 32f, 16s_Sfs, 16s_ISfs), KELS_DIRECT(Family_32fc_16sc, 32fc, 16sc_Sfs, 16sc_ISfs),
     KELS_DIRECT(Family_64f_16s, 64f, 16s_Sfs, 16s_ISfs), KELS_DIRECT(Family_64fc_16sc, 64fc, 16sc_Sfs, 16sc_ISfs),
     KELS_DIRECT(Family_64f_32s, 64f, 32s_Sfs, 32s_ISfs), KELS_DIRECT(Family_64fc_32sc, 64fc, 32sc_Sfs, 32sc_ISfs),
     KELS_DIRECT(Family_32s_16s, 32s, 16s_Sfs, 16s_ISfs), KELS_DIRECT(Family_32sc_16sc, 32sc, 16sc_Sfs, 16sc_ISfs)});
#undef KELS_DIRECT

} // namespace
