// The engine of the transposed direct form II.

#include "filters/iir/transposed.h"

#include "filters/iir/integer_taps.h"

namespace kels {
namespace {

/// Lanes i + 2 of two chunks side by side.
constexpr auto two_on = [](auto current, auto next)
                            KELS_INLINE { return shuffle<[](int i) { return i + 2; }>(current, next); };

} // namespace

// The planes reach one chunk beyond the last one.

template <class Taps>
bool TransposedForm<Taps>::allocate(int order) {
    const std::int64_t chunks = (std::int64_t{order} + chunk - 1) / chunk;
    order_ = order;
    chunks_ = static_cast<std::ptrdiff_t>(chunks);
    ahead_serves_ = looks_ahead && TransposedAhead::serves(std::int64_t{order} * parts<Taps>);
    if (ahead_serves_ && !ahead_.allocate(order * parts<Taps>)) return false;
    return lay_out(memory_, chunk * (chunks + 1), {&b_, &a_, &d_});
}

template <class Taps>
void TransposedForm<Taps>::put_tap(std::ptrdiff_t i, const Taps& tap) {
    if (i <= order_)
        b_.put(i, as_number<Element>(tap));
    else
        a_.put(i - order_, as_number<Element>(tap));
}

template <class Taps>
void TransposedForm<Taps>::prepare() {
    if constexpr (looks_ahead) ahead_serves_ = ahead_serves_ && ahead_.prepare(b_, a_);
}

template <class Taps>
void TransposedForm<Taps>::get_state(Taps* out) const {
    for (std::ptrdiff_t i = 0; i < order_; ++i) out[i] = as_tap<Taps>(d_.get(i));
}

template <class Taps>
void TransposedForm<Taps>::set_state(const Taps* state) {
    for (std::ptrdiff_t i = 0; i < order_; ++i) d_.put(i, as_number<Element>(state ? state[i] : Taps{}));
}

template <class Taps>
template <class Rule>
typename TransposedForm<Taps>::Value TransposedForm<Taps>::step(const Rule& rule, Value x) {
    const Value y = rule.result(rule.forward(d_.get(0), b_.get(0), x));
    for (std::ptrdiff_t i = 0; i < order_; ++i)
        d_.put(i, rule.stored(rule.back(rule.forward(d_.get(i + 1), b_.get(i + 1), x), a_.get(i + 1), y)));
    return y;
}

/// Samples one by one through one register.
template <class Taps>
template <class Rule>
void TransposedForm<Taps>::run_single(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t count) {
    const Value b0 = b_.get(0), b1 = b_.get(1), a1 = a_.get(1);
    Value d = d_.get(0);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const Value x = sample_at<complex>(in, i), y = rule.forward(d, b0, x);
        d = rule.stored(rule.back(rule.forward(Value{}, b1, x), a1, y));
        put_sample(out, i, y);
    }
    d_.put(0, d);
}

/// Pairs of samples through few registers, one by one.
template <class Taps>
template <int Order, class Rule>
void TransposedForm<Taps>::run_few(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t pairs) {
    Value b[Order + 1], a[Order + 1], d[Order];
    for (int i = 0; i <= Order; ++i) {
        b[i] = b_.get(i);
        a[i] = a_.get(i);
        if (i < Order) d[i] = d_.get(i);
    }
    for (std::ptrdiff_t i = 0; i < pairs; ++i) {
        const Value x0 = sample_at<complex>(in, 2 * i), x1 = sample_at<complex>(in, 2 * i + 1);
        const Value y0 = rule.forward(d[0], b[0], x0);
        const Value y1 = rule.back(rule.forward(d[1], b[1], x0, b[0], x1), a[1], y0);
        unrolled<Order - 1>([&](auto j) KELS_INLINE {
            const Value before = j + 2 < Order ? d[(j + 2) % Order] : Value{};
            d[j] = rule.stored(rule.back(rule.forward(before, b[j + 1], x1, b[j + 2], x0), a[j + 1], y1, a[j + 2], y0));
        });
        d[Order - 1] = rule.stored(rule.back(rule.forward(Value{}, b[Order], x1), a[Order], y1));
        put_sample(out, 2 * i, y0);
        put_sample(out, 2 * i + 1, y1);
    }
    for (int i = 0; i < Order; ++i) d_.put(i, d[i]);
}

/// Pairs of samples through chunks of registers, side by side: `Chunks` of them, or any number if that is 0.
template <class Taps>
template <int Chunks, class Rule>
void TransposedForm<Taps>::run_pairs(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t pairs) {
    using Lanes = Vec<Element, chunk>;
    using Places = Vec<std::int64_t, chunk>;
    using N = Number<Lanes, complex>;
    const Numbers b = b_, a = a_, d = d_;
    const std::ptrdiff_t last = (Chunks > 0 ? Chunks : chunks_) - 1;
    const N b0 = all_lanes<Lanes>(b.get(0)), b1 = all_lanes<Lanes>(b.get(1)), a1 = all_lanes<Lanes>(a.get(1));
    // Behind the last register stay zeros, even where a sample is infinite.
    const Places used = Places{0, 1, 2, 3, 4, 5, 6, 7} < splat<Places>(order_ - chunk * last);
    const auto where_used = [=](Lanes v, Lanes zero) KELS_INLINE { return used ? v : zero; };
    N kept[Chunks + 1]; // where their number is known
    for (int c = 0; c < Chunks; ++c) kept[c] = d.template get<Lanes>(chunk * c);
    kept[Chunks] = N{};
    for (std::ptrdiff_t i = 0; i < pairs; ++i) {
        const N x0 = all_lanes<Lanes>(sample_at<complex>(in, 2 * i));
        const N x1 = all_lanes<Lanes>(sample_at<complex>(in, 2 * i + 1));
        N current = Chunks > 0 ? kept[0] : d.template get<Lanes>(0);
        const N y0 = rule.forward(spread<0>(current), b0, x0);
        const N y1 = rule.back(rule.forward(spread<1>(current), b1, x0, b0, x1), a1, y0);
        put_sample(out, 2 * i, first_number(y0));
        put_sample(out, 2 * i + 1, first_number(y1));
        const auto moved_on = [&](std::ptrdiff_t c, const N& next) KELS_INLINE {
            const auto from = [=](const Numbers& taps, int k)
                                  KELS_INLINE { return taps.template get<Lanes>(chunk * c + k); };
            const N forward = rule.forward(by_parts(current, next, two_on), from(b, 1), x1, from(b, 2), x0);
            const N sum = rule.stored(rule.back(forward, from(a, 1), y1, from(a, 2), y0));
            current = next;
            return c == last ? by_parts(sum, N{}, where_used) : sum;
        };
        if constexpr (Chunks > 0)
            unrolled<Chunks>([&](auto c) KELS_INLINE { kept[c] = moved_on(c, kept[c + 1]); });
        else
            for (std::ptrdiff_t c = 0; c <= last; ++c)
                d.put(chunk * c, moved_on(c, d.template get<Lanes>(chunk * (c + 1))));
    }
    for (int c = 0; c < Chunks; ++c) d.put(chunk * c, kept[c]);
}

template <class Taps>
template <class Rule>
void TransposedForm<Taps>::run(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t count) {
    const std::ptrdiff_t pairs = count / 2;
    if (order_ == 0) {
        const Value b0 = b_.get(0);
        for (std::ptrdiff_t i = 0; i < count; ++i) put_sample(out, i, rule.enter(b0, sample_at<complex>(in, i)));
        return;
    }
    if (order_ == 1) return run_single(rule, in, out, count);
    if (order_ == 2)
        run_few<2>(rule, in, out, pairs);
    else if (order_ == 3)
        run_few<3>(rule, in, out, pairs);
    else if (order_ == 4)
        run_few<4>(rule, in, out, pairs);
    else if (chunks_ == 1)
        run_pairs<1>(rule, in, out, pairs);
    else if (chunks_ == 2)
        run_pairs<2>(rule, in, out, pairs);
    else
        run_pairs<0>(rule, in, out, pairs);
    for (std::ptrdiff_t i = 2 * pairs; i < count; ++i) put_sample(out, i, step(rule, sample_at<complex>(in, i)));
}

/// A scale below the taps' factor makes integer taps larger, for good; what does not fit is limited.
template <class Taps>
void TransposedForm<Taps>::rescale(int scaleFactor) {
    if constexpr (fixed) {
        if (taps_factor_ <= scaleFactor) return;
        const ShiftAnyhow up(std::int64_t{taps_factor_} - scaleFactor);
        for (Numbers taps : {b_, a_})
            for (std::ptrdiff_t i = 0; i <= order_; ++i) taps.put(i, limited(shifted(up, taps.get(i))));
        taps_factor_ = scaleFactor;
    }
}

template <class Taps>
bool TransposedForm<Taps>::is_calm() const {
    if constexpr (looks_ahead) {
        if (complex && !look_ahead::calm(d_.first + d_.size, order_)) return false;
        return look_ahead::calm(d_.first, order_);
    }
    return false;
}

template <class Taps>
void TransposedForm<Taps>::run_ahead(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks) {
    if constexpr (looks_ahead && complex) {
        Kel64f state[TransposedAhead::most + TransposedAhead::block] = {};
        for (std::ptrdiff_t i = 0; i < order_; ++i) put_sample(state, i, d_.get(i));
        ahead_.run(in, out, blocks, state);
        for (std::ptrdiff_t i = 0; i < order_; ++i) d_.put(i, sample_at<true>(state, i));
    } else if constexpr (looks_ahead) {
        ahead_.run(in, out, blocks, d_.first);
    }
}

template <class Taps>
void TransposedForm<Taps>::run(const Element* in, Element* out, std::ptrdiff_t count,
                               [[maybe_unused]] int scaleFactor) {
    if constexpr (fixed) {
        rescale(scaleFactor);
        with_fixed_rule(taps_factor_, scaleFactor, [=, this](const auto& rule) { this->run(rule, in, out, count); });
    } else if constexpr (looks_ahead) {
        in_calm_blocks<parts<Taps>>(
            in, out, count, ahead_serves_, [this] { return is_calm(); },
            [this](auto... stretch) { run_ahead(stretch...); },
            [this](auto... stretch) { this->run(RealRule<Taps>{}, stretch...); });
    } else {
        run(RealRule<Taps>{}, in, out, count);
    }
}

template <class Taps>
void TransposedForm<Taps>::run_one(const Element* in, Element* out, int scaleFactor) {
    if constexpr (std::is_same_v<Taps, Kel32s>) {
        rescale(scaleFactor);
        const std::int64_t factor = taps_factor_;
        const NarrowRule rule{{ShiftAnyhow(factor - scaleFactor), ShiftAnyhow(factor)}};
        *out = order_ == 0 ? rule.enter(b_.get(0), *in) : step(rule, *in);
    } else {
        run(in, out, 1, scaleFactor);
    }
}

template class TransposedForm<Kel32f>;
template class TransposedForm<Kel32fc>;
template class TransposedForm<Kel32s>;
template class TransposedForm<Kel32sc>;
template class TransposedForm<Kel64f>;
template class TransposedForm<Kel64fc>;

} // namespace kels
