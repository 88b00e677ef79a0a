// The engine of cascades: a lane of a vector is a section. A section works some turns behind the one before it, whose
// results have arrived by then; so the sections of a group take hardly longer than one of them.

#include "filters/iir/cascade.h"

#include "filters/iir/integer_taps.h"

#include <algorithm>
#include <array>
#include <limits>

namespace kels {
namespace {

/// Numbers that a section takes in a turn.
template <class N, int Samples>
using Turn = std::array<N, Samples>;

/// Sections side by side, one a lane.
template <class Rule, class N>
struct SectionTaps {
    Rule rule;
    N c1, c2, c3, c4;
};

/// Real taps take pairs. The second w = t' - c1 w - c2 w1 of a pair is (t' - c1 t) + (c1^2 - c2) w1 + c1 c2 w2, where
/// the first one need not be waited for.
template <class Rule, class N>
struct Sections {
    static constexpr int samples = 2;
    static constexpr bool fused = Rule::fused;
    struct State {
        N w1, w2;
    };
    SectionTaps<Rule, N> taps;
    N k1, k2;

    explicit Sections(const SectionTaps<Rule, N>& of)
        : taps(of), k1(product<fused>(of.c1, of.c1) - of.c2), k2(product<fused>(of.c1, of.c2)) {}

    static State state(const N& w1, const N& w2) { return {w1, w2}; }

    /// What becomes of a turn, and the state behind it.
    [[gnu::always_inline]] Turn<N, 2> filter(const Turn<N, 2>& t, const State& now, State* next) const {
        const auto& [rule, c1, c2, c3, c4] = taps;
        const auto& [w1, w2] = now;
        const N first = minus_product<true>(minus_product<true>(t[0], c2, w2), c1, w1);
        const N ahead = plus_product<fused>(minus_product<fused>(t[1], c1, t[0]), k2, w2);
        const N second = plus_product<fused>(ahead, k1, w1);
        *next = {rule.stored(second), rule.stored(first)};
        return {plus_product<true>(plus_product<true>(first, c4, w2), c3, w1),
                plus_product<fused>(plus_product<true>(second, c4, w1), c3, first)};
    }
};

/// Integer taps take one sample: its state is limited before the next one.
template <class Shift, class N>
struct Sections<FixedRule<Shift>, N> {
    static constexpr int samples = 1;
    struct State {
        N w1, w2;
    };
    SectionTaps<FixedRule<Shift>, N> taps;

    explicit Sections(const SectionTaps<FixedRule<Shift>, N>& of) : taps(of) {}

    static State state(const N& w1, const N& w2) { return {w1, w2}; }

    [[gnu::always_inline]] Turn<N, 1> filter(const Turn<N, 1>& t, const State& now, State* next) const {
        const auto& [rule, c1, c2, c3, c4] = taps;
        const N w = rule.back(t[0], c1, now.w1, c2, now.w2);
        *next = {rule.stored(w), now.w1};
        return {w + shifted(rule.feedback, product<false>(c3, now.w1) + product<false>(c4, now.w2))};
    }
};

/// Real integer taps, shifted down: the feedback p = c1 w1 + c2 w2 of a sample is formed with the one before. Rounded
/// down, and not toward zero, it gives w, or 1 more: c1 times that is taken off p where it is. Few states have to be
/// limited, and then p is formed again.
template <class N>
requires(!requires(N z) { z.im; }) struct Sections<FixedRule<ShiftDown>, N> {
    static constexpr int samples = 1;
    struct State {
        N w1, w2, p;
    };
    SectionTaps<FixedRule<ShiftDown>, N> taps;

    explicit Sections(const SectionTaps<FixedRule<ShiftDown>, N>& of) : taps(of) {}

    State state(const N& w1, const N& w2) const { return {w1, w2, taps.c1 * w1 + taps.c2 * w2}; }

    [[gnu::always_inline]] Turn<N, 1> filter(const Turn<N, 1>& t, const State& now, State* next) const {
        const auto& [rule, c1, c2, c3, c4] = taps;
        const auto& [w1, w2, p] = now;
        const N high = t[0] - rule.feedback.down(p);
        const N inexact = p & splat<N>(rule.feedback.dropped());
        const auto too_high = (as_signed(p) < 0) & (inexact != 0);
        const N w = too_high ? high - 1 : high;
        const N other = c2 * w1;
        *next = {w, w1, c1 * high + (too_high ? other - c1 : other)};
        if (!fits(w)) [[unlikely]] {
            asm volatile(""); // a branch
            *next = state(limited(w), w1);
        }
        return {w + rule.feedback(c3 * w1 + c4 * w2)};
    }
};

/// How many turns a section lags behind the one before it.
constexpr int lag = 2;

template <int Lanes>
using Places = Vec<std::int64_t, Lanes>;

/// 0, 1, 2 ...
template <int Lanes>
Places<Lanes> numbered() {
    Places<Lanes> all{};
    for (int i = 0; i < Lanes; ++i) all[i] = i;
    return all;
}

} // namespace

template <class Taps>
bool Cascade<Taps>::allocate(int sections) {
    if (sections > std::numeric_limits<int>::max() / 2) return false; // more than there are indices for
    sections_ = sections;
    const std::int64_t groups = (std::int64_t{sections} + group - 1) / group;
    return lay_out(memory_, groups * group, {&c_[0], &c_[1], &c_[2], &c_[3], &w_[0], &w_[1]});
}

/// Of the group that begins with a section.
template <class Taps>
int Cascade<Taps>::sections_of(std::ptrdiff_t first) const {
    return static_cast<int>(std::min<std::ptrdiff_t>(sections_ - first, group));
}

template <class Taps>
std::ptrdiff_t Cascade<Taps>::lane_of(std::ptrdiff_t section) const {
    const std::ptrdiff_t first = section / group * group;
    return first + sections_of(first) - 1 - (section - first);
}

template <class Taps>
void Cascade<Taps>::put_tap(std::ptrdiff_t i, const Taps& tap) {
    if (i == 0)
        gain_ = as_number<Element>(tap);
    else
        c_[(i - 1) % 4].put(lane_of((i - 1) / 4), as_number<Element>(tap));
}

template <class Taps>
void Cascade<Taps>::prepare() {
    if constexpr (looks_ahead) {
        ahead_serves_ = sections_ <= most_ahead;
        for (std::ptrdiff_t s = 0; ahead_serves_ && s < sections_; ++s) {
            const std::ptrdiff_t lane = lane_of(s);
            ahead_serves_ = ahead_[s].prepare(s == 0 ? gain_ : 1, c_[0].get(lane), c_[1].get(lane), c_[2].get(lane),
                                              c_[3].get(lane));
        }
    }
}

/// The sections of `blocks` blocks, one after the other.
template <class Taps>
void Cascade<Taps>::run_ahead(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks) {
    if constexpr (looks_ahead)
        for (std::ptrdiff_t s = 0; s < sections_; ++s, in = out)
            ahead_[s].run(in, out, blocks, w_[0].first + lane_of(s), w_[1].first + lane_of(s));
}

template <class Taps>
void Cascade<Taps>::get_state(Taps* out) const {
    for (std::ptrdiff_t i = 0; i < state_size(); ++i) out[i] = as_tap<Taps>(w_[i % 2].get(lane_of(i / 2)));
}

template <class Taps>
void Cascade<Taps>::set_state(const Taps* state) {
    for (std::ptrdiff_t i = 0; i < state_size(); ++i)
        w_[i % 2].put(lane_of(i / 2), as_number<Element>(state ? state[i] : Taps{}));
}

/// One sample through all sections of real taps.
template <class Taps>
template <class Rule>
typename Cascade<Taps>::Value Cascade<Taps>::step(const Rule& rule, Value x) {
    Value t = rule.enter(gain_, x);
    for (std::ptrdiff_t s = 0; s < sections_; ++s) {
        const std::ptrdiff_t lane = lane_of(s);
        const Value w1 = w_[0].get(lane), w2 = w_[1].get(lane);
        const Value w = minus_product<true>(minus_product<true>(t, c_[1].get(lane), w2), c_[0].get(lane), w1);
        t = plus_product<true>(plus_product<true>(w, c_[3].get(lane), w2), c_[2].get(lane), w1);
        w_[1].put(lane, w1);
        w_[0].put(lane, rule.stored(w));
    }
    return t;
}

/// Turns of the group that begins with section `first`; the gain goes before the first one.
template <class Taps>
template <int Lanes, class Rule>
void Cascade<Taps>::run_group(const Rule& rule, std::ptrdiff_t first, const Element* in, Element* out,
                              std::ptrdiff_t turns) {
    using V = Vec<Element, Lanes>;
    using N = Number<V, complex>;
    using Group = Sections<Rule, N>;
    constexpr int samples = Group::samples;
    const auto lanes_of = [first](const Numbers& plane) KELS_INLINE { return plane.template get<V>(first); };
    const Group sections({rule, lanes_of(c_[0]), lanes_of(c_[1]), lanes_of(c_[2]), lanes_of(c_[3])});
    typename Group::State state = sections.state(lanes_of(w_[0]), lanes_of(w_[1]));
    const Value gain = gain_;
    const bool with_gain = first == 0;
    const auto input = [=](std::ptrdiff_t i) KELS_INLINE {
        Turn<Value, samples> x;
        for (int j = 0; j < samples; ++j) {
            x[j] = sample_at<complex>(in, samples * i + j);
            if (with_gain) x[j] = rule.enter(gain, x[j]);
        }
        return x;
    };
    const auto output = [=](std::ptrdiff_t i, const Turn<N, samples>& t) KELS_INLINE {
        for (int j = 0; j < samples; ++j) put_sample(out, samples * i + j, first_number(t[j]));
    };
    if constexpr (Lanes == 1) {
        for (std::ptrdiff_t i = 0; i < turns; ++i) {
            const typename Group::State now = state;
            output(i, sections.filter(input(i), now, &state));
        }
    } else {
        const std::ptrdiff_t last = sections_of(first) - 1, depth = lag * last;
        // Lane `last` has the first section, lane 0 the last one. Lanes beyond have none, and start never.
        const Places<Lanes> place = splat<Places<Lanes>>(last) - numbered<Lanes>();
        const Places<Lanes> entrance = place == 0;
        const Places<Lanes> start = place < 0 ? splat<Places<Lanes>>(std::numeric_limits<std::int32_t>::max())
                                              : place * splat<Places<Lanes>>(lag);
        Turn<N, samples> older{}, newer{};
        const auto advance = [&](std::ptrdiff_t i, const Turn<Value, samples>& x, auto every_lane) KELS_INLINE {
            const auto enter = [=](V entering, V before) KELS_INLINE {
                return entrance ? entering : shuffle<[](int l) { return (l + 1) % Lanes; }>(before, before);
            };
            Turn<N, samples> t;
            for (int j = 0; j < samples; ++j) t[j] = by_parts(all_lanes<V>(x[j]), older[j], enter);
            const typename Group::State now = state;
            older = newer;
            newer = sections.filter(t, now, &state);
            if constexpr (!every_lane.value) {
                const auto turn = splat<Places<Lanes>>(i);
                const Places<Lanes> running = (start <= turn) & (turn < start + splat<Places<Lanes>>(turns));
                const auto where_running = [=](V then, V before) KELS_INLINE { return running ? then : before; };
                state = sections.state(by_parts(state.w1, now.w1, where_running),
                                       by_parts(state.w2, now.w2, where_running));
            }
        };
        constexpr std::false_type some;
        constexpr std::true_type all;
        std::ptrdiff_t i = 0;
        for (; i < depth; ++i) advance(i, i < turns ? input(i) : Turn<Value, samples>{}, some);
        for (; i < turns; ++i) {
            advance(i, input(i), all);
            output(i - depth, newer);
        }
        for (; i < turns + depth; ++i) {
            advance(i, {}, some);
            output(i - depth, newer);
        }
    }
    w_[0].put(first, state.w1);
    w_[1].put(first, state.w2);
}

template <class Taps>
template <class Rule>
void Cascade<Taps>::run(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t count) {
    constexpr int samples = Sections<Rule, Value>::samples;
    constexpr std::ptrdiff_t near = 1024; // turns that stay in the cache between groups
    const std::ptrdiff_t turns = count / samples;
    for (std::ptrdiff_t done = 0; done < turns; done += near) {
        const std::ptrdiff_t at = samples * done * parts<Taps>, some = std::min(near, turns - done);
        const Element* source = in + at;
        for (std::ptrdiff_t first = 0; first < sections_; first += group, source = out + at) {
            const int sections = sections_of(first);
            if (sections == 1)
                run_group<1>(rule, first, source, out + at, some);
            else if (sections == 2)
                run_group<2>(rule, first, source, out + at, some);
            else if (sections <= 4)
                run_group<4>(rule, first, source, out + at, some);
            else
                run_group<8>(rule, first, source, out + at, some);
        }
    }
    if constexpr (samples == 2)
        if (count % 2 != 0) put_sample(out, count - 1, step(rule, sample_at<complex>(in, count - 1)));
}

template <class Taps>
void Cascade<Taps>::run(const Element* in, Element* out, std::ptrdiff_t count, [[maybe_unused]] int scaleFactor) {
    if constexpr (fixed)
        with_fixed_rule(taps_factor_, scaleFactor, [=, this](const auto& rule) { this->run(rule, in, out, count); });
    else if constexpr (looks_ahead)
        in_calm_blocks<1>(
            in, out, count, ahead_serves_,
            [this] { return look_ahead::calm(w_[0].first, sections_) && look_ahead::calm(w_[1].first, sections_); },
            [this](auto... stretch) { run_ahead(stretch...); },
            [this](auto... stretch) { this->run(RealRule<Taps>{}, stretch...); });
    else
        run(RealRule<Taps>{}, in, out, count);
}

template class Cascade<Kel32f>;
template class Cascade<Kel32fc>;
template class Cascade<Kel32s>;
template class Cascade<Kel32sc>;
template class Cascade<Kel64f>;
template class Cascade<Kel64fc>;

} // namespace kels
