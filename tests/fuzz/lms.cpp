// Adaptive filters: blocks against cuts and against the form without a context, and those of several rates by either
// way of driving them.

#include "filters/lms/families.h"
#include "fuzz/sequence.h"

namespace {

using namespace kels_test;
using namespace lms_test;

template <class T>
void drive(Input& in) {
    using F = Lms<T>;
    const int count = in.length(300);
    const auto style = in.below(2) == 0 ? Style::tame : Style::any;
    const auto taps = in.data<Kel32f>(count, style);
    const auto first = in.data<T>(count, style);
    const int first_index = in.below(count);
    const auto mu = static_cast<Kel32f>(std::ldexp(1.0, -in.below(40)));
    const auto create = [&](const std::vector<T>& line, const std::vector<Kel32f>& from, int index) {
        const GuardedArray<T> samples(line, in.edge());
        const GuardedArray<Kel32f> h(from, in.edge());
        return made(in, F::release,
                    [&](auto** context) { return F::make(context, h.data(), count, samples.data(), index); });
    };
    const auto taps_of = [&](const auto& context) {
        return results<Kel32f>(in, taps.size(), [&](Kel32f* to) { return F::get_taps(context.get(), to); });
    };
    int index = 0;
    const auto line_of = [&](const auto& context) {
        return results<T>(in, first.size(), [&](T* to) { return F::get_line(context.get(), to, &index); });
    };
    const auto whole = create(first, taps, first_index);
    auto cut_up = create(first, taps, first_index);
    while (in.more()) {
        const int len = in.length(200);
        const auto x = in.data<T>(len, style), r = in.data<T>(len, style);
        const auto y = at_once_and_cut(whole, cut_up, len, in.below(len), [&](const auto& context, int from, int n) {
            const GuardedArray<T> source(piece(x, from, n), in.edge()), reference(piece(r, from, n), in.edge());
            if (in.one_in(3))
                return results_in_place(in, piece(x, from, n), [&](T* to) {
                    return F::block(to, reference.data(), to, n, mu, context.get());
                });
            return results<T>(in, static_cast<std::size_t>(n), [&](T* to) {
                return F::block(source.data(), reference.data(), to, n, mu, context.get());
            });
        });
        digest(F::block, y);
        const auto h = taps_of(whole);
        expect_same(h, taps_of(cut_up), "taps");
        auto line = line_of(whole);
        const int at = index;
        expect_same(line, line_of(cut_up), "delay lines");
        EXPECT_EQ(at, index);
        const int step = in.below(4);
        if (step == 1) {
            cut_up = create(line, h, at);
        } else if (step == 2) {
            line = in.data<T>(count, style);
            for (KelLmsContext* context : {whole.get(), cut_up.get()})
                EXPECT_EQ(F::set_line(context, line.data(), at), kelStatusOk);
        } else if (step == 3) { // the form without a context, on copies
            auto ring = line;
            append(ring, line);
            std::vector<Kel32f> reversed(h.rbegin(), h.rend());
            T alone, in_context;
            int place = at;
            EXPECT_EQ(F::one(x[0], r[0], &alone, reversed.data(), count, mu, ring.data(), &place), kelStatusOk);
            EXPECT_EQ(F::block(x.data(), r.data(), &in_context, 1, mu, cut_up.get()), kelStatusOk);
            digest(F::one, std::vector<T>{alone});
            expect_same<T>({alone}, {in_context}, "without a context");
            expect_same(std::vector<Kel32f>(reversed.rbegin(), reversed.rend()), taps_of(cut_up), "taps of both forms");
            cut_up = create(line, h, at);
        }
    }
}

template <class F>
void drive_rates(Input& in) {
    using Tap = typename F::Tap;
    using T = typename F::Sample;
    const int count = in.length(60), stride = 1 + in.below(4), delay = in.below(6), ring = stride * count + delay;
    const auto taps = in.data<Tap>(count);
    const auto line = in.data<T>(ring);
    const int first_index = in.below(ring), mu = in.below(1 << 16) - (1 << 15);
    const auto create = [&](const std::vector<Tap>& h, const std::vector<T>& samples, int index, int step) {
        const GuardedArray<Tap> from(h, in.edge());
        const GuardedArray<T> history(samples, in.edge());
        return made(in, F::release, [&](auto** context) {
            return F::make(context, from.data(), count, history.data(), index, stride, delay, step);
        });
    };
    const auto one = create(taps, line, first_index, mu);
    auto two = create(taps, line, first_index, mu);
    int step = mu;
    while (in.more()) {
        const int samples = in.length(40);
        const auto x = in.data<T>(samples);
        const auto errors = in.data<Tap>(samples);
        const int every = 1 + in.below(4);
        std::vector<Tap> a(x.size()), b(x.size());
        for (std::size_t i = 0; i < x.size(); ++i) {
            EXPECT_EQ(F::put_and_output(x[i], &a[i], one.get()), kelStatusOk);
            EXPECT_EQ(F::put(x[i], two.get()), kelStatusOk);
            EXPECT_EQ(F::output(&b[i], two.get()), kelStatusOk);
            if (i % static_cast<std::size_t>(every) != 0) continue;
            EXPECT_EQ(F::update(errors[i], one.get()), kelStatusOk);
            EXPECT_EQ(F::update(errors[i], two.get()), kelStatusOk);
        }
        expect_same(a, b, "either way");
        digest(F::put_and_output, a);
        const auto h = results<Tap>(in, taps.size(), [&](Tap* to) { return F::get_taps(one.get(), to); });
        digest(F::update, h);
        int index = 0;
        const auto history = results<T>(in, line.size(), [&](T* to) { return F::get_line(one.get(), to, &index); });
        const int change = in.below(6);
        if (change == 1) {
            two = create(h, history, index, step);
        } else if (change == 2) {
            step = in.below(1 << 16) - (1 << 15);
            for (KelLmsMrContext* context : {one.get(), two.get()}) EXPECT_EQ(F::set_mu(context, step), kelStatusOk);
        } else if (change == 3) {
            const auto next = in.data<Tap>(count);
            const auto past = in.data<T>(ring);
            for (KelLmsMrContext* context : {one.get(), two.get()}) {
                EXPECT_EQ(F::set_taps(context, next.data()), kelStatusOk);
                EXPECT_EQ(F::set_line(context, past.data(), index), kelStatusOk);
            }
        } else if (change == 4) {
            T newest;
            EXPECT_EQ(F::get_sample(two.get(), &newest, (count - 1) * stride), kelStatusOk);
            expect_same<T>({newest}, {x.back()}, "newest sample");
        }
    }
}

const bool added = add_target("lms", {drive<Kel32f>, drive<Kel16s>, drive_rates<Real>, drive_rates<Complex>});

} // namespace
