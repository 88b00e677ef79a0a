// Filters with a state, which goes on from call to call: a stream may be cut into blocks of any length. A filter belongs
// to one thread at a time.
#ifndef KELS_CPP_FILTERS_HPP
#define KELS_CPP_FILTERS_HPP

#include <kels/cpp/families.hpp>
#include <kels/cpp/owner.hpp>

#include <vector>

namespace kels {

namespace detail {

// The first of an array that may be absent: null for an empty one, else of the length that is wanted.
template <class Array>
auto optional(const Array& array, long long wanted) {
    if (!array.empty()) has(array, wanted);
    return array.empty() ? nullptr : array.data();
}

template <class T>
std::vector<std::remove_const_t<T>> joined(std::span<T> first, std::span<T> second) {
    std::vector<std::remove_const_t<T>> both(first.begin(), first.end());
    both.insert(both.end(), second.begin(), second.end());
    return both;
}

// What FIR and IIR filters of one rate have in common. State is the type of the delay line.
template <class Calls, class Sample, class State>
class filter {
public:
    // In place only the form of one array will do.
    KelStatus operator()(in<Sample> src, out<Sample> dst, scale by = scale(0)) {
        has(dst, length(src));
        return call_scaled(Calls::run, by, src.data(), dst.data(), static_cast<int>(src.size()), handle_.get());
    }
    KelStatus operator()(out<Sample> x, scale by = scale(0)) {
        return call_scaled(Calls::run_in_place, by, x.data(), static_cast<int>(length(x)), handle_.get());
    }
    // One sample.
    Sample one(value<Sample> x, scale by = scale(0)) {
        Sample y;
        call_scaled(Calls::one, by, Sample(x), &y, handle_.get());
        return y;
    }

    std::vector<State> delay_line() const {
        std::vector<State> line(static_cast<std::size_t>(states_));
        // A filter without a state has an array all the same.
        State none;
        checked(Calls::get_dly_line(handle_.get(), line.empty() ? &none : line.data()));
        return line;
    }
    void delay_line(in<State> line) {
        has(line, states_);
        checked(Calls::set_dly_line(handle_.get(), line.data()));
    }
    void reset() { checked(Calls::set_dly_line(handle_.get(), nullptr)); }

protected:
    filter(owner<Calls> made, long long states) : handle_(std::move(made)), states_(states) {}

    auto handle() const { return handle_.get(); }

private:
    owner<Calls> handle_;
    long long states_;
};

template <class Taps>
concept whole = std::same_as<Taps, Kel32s> || std::same_as<Taps, Kel32sc>;

// The real type of taps that become integers.
template <class Taps>
using unrounded = std::conditional_t<std::same_as<Taps, Kel32s>, Kel32f, Kel32fc>;

template <class Taps, class Sample>
using fir_base = filter<fir_calls<c_type<Taps>, c_type<Sample>>, c_type<Sample>, c_type<Sample>>;
template <class Taps, class Sample>
using iir_base = filter<iir_calls<c_type<Taps>, c_type<Sample>>, c_type<Sample>, c_type<Taps>>;

// Integer taps as they are kept.
template <class Tap>
struct scaled_taps {
    std::vector<Tap> taps;
    int factor; // they stand for themselves times 2^factor
};

} // namespace detail

// The FIR filter: taps h[0] first; a delay line is the samples before the stream, the most recent first.
template <class Taps, class Sample = Taps>
class fir : public detail::fir_base<Taps, Sample> {
    using tap = detail::c_type<Taps>;
    using calls = detail::fir_calls<tap, detail::c_type<Sample>>;
    using made = detail::owner<calls>;

public:
    template <class T = tap>
        requires(!detail::whole<T>)
    explicit fir(in<Taps> taps, in<Sample> before = {})
        : fir(taps.size(), made::make(calls::init_alloc, taps.data(), static_cast<int>(detail::length(taps)),
                                      detail::optional(before, detail::length(taps)))) {}
    // Integer taps stand for themselves times 2^taps_factor.
    template <class T = tap>
        requires detail::whole<T>
    fir(in<Taps> taps, int taps_factor, in<Sample> before = {})
        : fir(taps.size(), made::make(calls::init_alloc, taps.data(), static_cast<int>(detail::length(taps)),
                                      taps_factor, detail::optional(before, detail::length(taps)))) {}
    // Integer taps made of real ones, the factor found.
    template <class T = tap>
        requires detail::whole<T>
    explicit fir(in<detail::unrounded<tap>> taps, in<Sample> before = {})
        : fir(taps.size(), made::make(calls::init_alloc_real, taps.data(), static_cast<int>(detail::length(taps)),
                                      detail::optional(before, detail::length(taps)))) {}

    template <class T = tap>
        requires(!detail::whole<T>)
    std::vector<T> taps() const {
        std::vector<T> found(count_);
        detail::checked(calls::get_taps(this->handle(), found.data()));
        return found;
    }
    template <class T = tap>
        requires detail::whole<T>
    detail::scaled_taps<T> taps() const {
        detail::scaled_taps<T> found{std::vector<T>(count_), 0};
        detail::checked(calls::get_taps(this->handle(), found.taps.data(), &found.factor));
        return found;
    }
    template <class T = tap>
        requires detail::whole<T>
    std::vector<detail::unrounded<T>> real_taps() const {
        std::vector<detail::unrounded<T>> found(count_);
        detail::checked(calls::get_taps_real(this->handle(), found.data()));
        return found;
    }

private:
    fir(std::size_t count, made owned)
        : detail::fir_base<Taps, Sample>(std::move(owned), static_cast<long long>(count)), count_(count) {}

    std::size_t count_;
};

// How a filter changes the rate: up / down, and which ticks of the fast stream inputs and outputs stand at.
struct rate {
    int up, down;
    int up_phase = 0, down_phase = 0;
};

// The FIR filter that changes the rate. A block has a multiple of `down` samples, and gives `up` for every `down`.
template <class Taps, class Sample = Taps>
class fir_multirate : private detail::fir_base<Taps, Sample> {
    using base = detail::fir_base<Taps, Sample>;
    using tap = detail::c_type<Taps>;
    using calls = detail::fir_calls<tap, detail::c_type<Sample>>;
    using made = detail::owner<calls>;

public:
    template <class T = tap>
        requires(!detail::whole<T>)
    fir_multirate(in<Taps> taps, rate r, in<Sample> before = {})
        : fir_multirate(taps.size(), r,
                        made::make(calls::mr_init_alloc, taps.data(), static_cast<int>(detail::length(taps)), r.up,
                                   r.up_phase, r.down, r.down_phase, line(before, taps.size(), r))) {}
    template <class T = tap>
        requires detail::whole<T>
    fir_multirate(in<Taps> taps, int taps_factor, rate r, in<Sample> before = {})
        : fir_multirate(taps.size(), r,
                        made::make(calls::mr_init_alloc, taps.data(), static_cast<int>(detail::length(taps)),
                                   taps_factor, r.up, r.up_phase, r.down, r.down_phase,
                                   line(before, taps.size(), r))) {}
    template <class T = tap>
        requires detail::whole<T>
    fir_multirate(in<detail::unrounded<tap>> taps, rate r, in<Sample> before = {})
        : fir_multirate(taps.size(), r,
                        made::make(calls::mr_init_alloc_real, taps.data(), static_cast<int>(detail::length(taps)),
                                   r.up, r.up_phase, r.down, r.down_phase, line(before, taps.size(), r))) {}

    KelStatus operator()(in<Sample> src, out<Sample> dst, scale by = scale(0)) {
        const long long blocks = detail::quotient(detail::length(src), rate_.down);
        detail::has(src, blocks * rate_.down), detail::has(dst, blocks * rate_.up);
        return detail::call_scaled(calls::run, by, src.data(), dst.data(), static_cast<int>(blocks), this->handle());
    }

    using base::delay_line;
    using base::reset;

private:
    fir_multirate(std::size_t count, rate r, made owned)
        : base(std::move(owned), detail::quotient_up(static_cast<long long>(count), r.up)), rate_(r) {}

    static auto line(in<Sample> before, std::size_t count, rate r) {
        return detail::optional(before, detail::quotient_up(static_cast<long long>(count), r.up));
    }

    rate rate_;
};

// The IIR filter of any order, (b[0] + b[1] z^-1 + ...) / (a[0] + a[1] z^-1 + ...), with as many b as a.
template <class Taps, class Sample = Taps>
class iir : public detail::iir_base<Taps, Sample> {
    using base = detail::iir_base<Taps, Sample>;
    using tap = detail::c_type<Taps>;
    using calls = detail::iir_calls<tap, detail::c_type<Sample>>;
    using made = detail::owner<calls>;

public:
    template <class T = tap>
        requires(!detail::whole<T>)
    iir(in<Taps> b, in<Taps> a, in<Taps> state = {})
        : base(made::make(calls::init_alloc, both<tap>(b, a).data(), order(b), detail::optional(state, order(b))),
               order(b)) {}
    // Integer taps stand for themselves times 2^taps_factor.
    template <class T = tap>
        requires detail::whole<T>
    iir(in<Taps> b, in<Taps> a, int taps_factor, in<Taps> state = {})
        : base(made::make(calls::init_alloc, both<tap>(b, a).data(), order(b), taps_factor,
                          detail::optional(state, order(b))),
               order(b)) {}
    // Integer taps made of real ones, the factor found.
    template <class T = tap>
        requires detail::whole<T>
    iir(in<detail::unrounded<tap>> b, in<detail::unrounded<tap>> a, in<Taps> state = {})
        : base(made::make(calls::init_alloc_real, both<detail::unrounded<tap>>(b, a).data(), order(b),
                          detail::optional(state, order(b))),
               order(b)) {}

private:
    template <class T>
    static std::vector<T> both(std::span<const T> b, std::span<const T> a) {
        detail::has(a, detail::length(b));
        return detail::joined(b, a);
    }
    template <class T>
    static int order(const std::span<T>& b) {
        return static_cast<int>(detail::length(b)) - 1;
    }
};

// A cascade of second-order sections, b0, b1, b2, a0, a1, a2 of one after the other.
template <class Taps, class Sample = Taps>
class biquads : public detail::iir_base<Taps, Sample> {
    using base = detail::iir_base<Taps, Sample>;
    using tap = detail::c_type<Taps>;
    using calls = detail::iir_calls<tap, detail::c_type<Sample>>;
    using made = detail::owner<calls>;

public:
    template <class T = tap>
        requires(!detail::whole<T>)
    explicit biquads(in<Taps> taps, in<Taps> state = {})
        : base(made::make(calls::init_alloc_bi_quad, taps.data(), sections(taps),
                          detail::optional(state, 2 * sections(taps))),
               2 * sections(taps)) {}
    template <class T = tap>
        requires detail::whole<T>
    biquads(in<Taps> taps, int taps_factor, in<Taps> state = {})
        : base(made::make(calls::init_alloc_bi_quad, taps.data(), sections(taps), taps_factor,
                          detail::optional(state, 2 * sections(taps))),
               2 * sections(taps)) {}
    template <class T = tap>
        requires detail::whole<T>
    explicit biquads(in<detail::unrounded<tap>> taps, in<Taps> state = {})
        : base(made::make(calls::init_alloc_bi_quad_real, taps.data(), sections(taps),
                          detail::optional(state, 2 * sections(taps))),
               2 * sections(taps)) {}

private:
    template <class T>
    static int sections(const std::span<T>& taps) {
        const long long count = detail::length(taps) / 6;
        detail::has(taps, 6 * count);
        return static_cast<int>(count);
    }
};

namespace detail {

// A ring of samples as a context keeps it: the index is where the next one goes.
template <class Sample>
struct ring {
    std::vector<Sample> samples;
    int index = 0;
};

template <class Calls, class Tap, class Sample>
class adaptive {
public:
    std::vector<Tap> taps() const {
        std::vector<Tap> found(static_cast<std::size_t>(taps_));
        checked(Calls::get_taps(handle_.get(), found.data()));
        return found;
    }
    ring<Sample> delay_line() const {
        ring<Sample> line{std::vector<Sample>(static_cast<std::size_t>(ring_)), 0};
        checked(Calls::get_dly_line(handle_.get(), line.samples.data(), &line.index));
        return line;
    }
    void delay_line(in<Sample> samples, int index) {
        has(samples, ring_);
        checked(Calls::set_dly_line(handle_.get(), samples.data(), index));
    }
    void reset() { checked(Calls::set_dly_line(handle_.get(), nullptr, 0)); }

protected:
    adaptive(owner<Calls> made, long long taps, long long ring) : handle_(std::move(made)), taps_(taps), ring_(ring) {}

    auto handle() const { return handle_.get(); }
    long long count() const { return taps_; }

private:
    owner<Calls> handle_;
    long long taps_, ring_;
};

} // namespace detail

// The filter that adapts by least mean squares to a reference, block by block.
template <class Sample>
class lms : public detail::adaptive<detail::lms_calls<float, Sample>, float, Sample> {
    using calls = detail::lms_calls<float, Sample>;

public:
    explicit lms(in<float> taps)
        : detail::adaptive<calls, float, Sample>(
              detail::owner<calls>::make(calls::init_alloc, taps.data(), static_cast<int>(detail::length(taps)),
                                         nullptr, 0),
              detail::length(taps), detail::length(taps)) {}

    KelStatus operator()(in<Sample> src, in<Sample> reference, out<Sample> dst, float mu) {
        const long long length = detail::length(src);
        detail::has(reference, length), detail::has(dst, length);
        return detail::checked(
            calls::run(src.data(), reference.data(), dst.data(), static_cast<int>(length), mu, this->handle()));
    }
};

// The same driven step by step, at any rates of samples, outputs and steps: integer taps, of which the upper half filters.
template <class Taps, class Sample>
class lms_multirate : public detail::adaptive<detail::lms_multirate_calls<Taps, Sample>, Taps, Sample> {
    using calls = detail::lms_multirate_calls<Taps, Sample>;

public:
    lms_multirate(in<Taps> taps, int tap_stride, int error_delay, int mu)
        : detail::adaptive<calls, Taps, Sample>(
              detail::owner<calls>::make(calls::init_alloc, taps.data(), static_cast<int>(detail::length(taps)),
                                         nullptr, 0, tap_stride, error_delay, mu),
              detail::length(taps), tap_stride * detail::length(taps) + error_delay) {}

    using detail::adaptive<calls, Taps, Sample>::taps;
    void taps(in<Taps> h) {
        detail::has(h, this->count());
        detail::checked(calls::set_taps(this->handle(), h.data()));
    }
    // The taps that it works with, the last first.
    std::span<Taps> live_taps() {
        Taps* first = nullptr;
        detail::checked(calls::get_taps_pointer(this->handle(), &first));
        return {first, static_cast<std::size_t>(this->count())};
    }
    void mu(int step) { detail::checked(calls::set_mu(this->handle(), step)); }

    void put(value<Sample> x) { detail::checked(calls::put_val(x, this->handle())); }
    Taps one() const {
        Taps y;
        detail::checked(calls::one(&y, this->handle()));
        return y;
    }
    Taps one(value<Sample> x) {
        Taps y;
        detail::checked(calls::one_val(x, &y, this->handle()));
        return y;
    }
    void update(value<Taps> error) { detail::checked(calls::update_taps(error, this->handle())); }
    // Sample `index` of the window that it filters, the oldest being number 0.
    Sample at(int index) const {
        Sample x;
        detail::checked(calls::get_dly_val(this->handle(), &x, index));
        return x;
    }
};

// One band of a filter bank: its taps, and the delay at the full rate, or -1.
struct band {
    in<float> taps;
    int offset = 0;
};

// The two filters of one direction, and what they keep of their input.
struct bands {
    band low, high;
};

namespace detail {

template <class Calls>
class half_bank {
public:
    struct lines {
        std::vector<float> low, high;
    };

    half_bank(bands b, lines silence)
        : handle_(owner<Calls>::make(Calls::init_alloc, b.low.taps.data(), static_cast<int>(length(b.low.taps)),
                                     b.low.offset, b.high.taps.data(), static_cast<int>(length(b.high.taps)),
                                     b.high.offset)),
          silence_(std::move(silence)) {}

    lines delay_lines() const {
        // One more: a band without a state has an array all the same.
        lines found{std::vector<float>(silence_.low.size() + 1), std::vector<float>(silence_.high.size() + 1)};
        checked(Calls::get_dly_line(handle_.get(), found.low.data(), found.high.data()));
        found.low.pop_back(), found.high.pop_back();
        return found;
    }
    void delay_lines(in<float> low, in<float> high) {
        has(low, static_cast<long long>(silence_.low.size())), has(high, static_cast<long long>(silence_.high.size()));
        const float none = 0;
        checked(Calls::set_dly_line(handle_.get(), low.empty() ? &none : low.data(), high.empty() ? &none : high.data()));
    }
    void reset() { delay_lines(silence_.low, silence_.high); }

    auto handle() const { return handle_.get(); }

private:
    owner<Calls> handle_;
    lines silence_;
};

inline std::vector<float> analysis_line(const band& b) {
    const auto taps = static_cast<int>(length(b.taps));
    return std::vector<float>(static_cast<std::size_t>(larger(taps - 1 - (b.offset == -1), 0) + larger(b.offset, 0)));
}

inline std::vector<float> synthesis_line(const band& b) {
    const auto taps = static_cast<int>(length(b.taps));
    const int offset = b.offset == -1 ? 1 : b.offset;
    return std::vector<float>(static_cast<std::size_t>(larger((taps - 1 + offset % 2) / 2 + offset / 2, 0)));
}

} // namespace detail

// Two bands at half the rate of a signal, and the signal from them: float, or integers of 8 and 16 bits.
template <class Sample = float>
class filter_bank {
    using analysis_calls = detail::wavelet_forward_calls<Sample>;
    using synthesis_calls = detail::wavelet_inverse_calls<Sample>;

public:
    filter_bank(bands apart, bands together)
        : analysis(apart, {detail::analysis_line(apart.low), detail::analysis_line(apart.high)}),
          synthesis(together, {detail::synthesis_line(together.low), detail::synthesis_line(together.high)}) {}

    KelStatus forward(in<Sample> x, out<float> low, out<float> high) {
        const long long half = detail::length(low);
        detail::has(x, 2 * half), detail::has(high, half);
        return detail::checked(
            analysis_calls::run(x.data(), low.data(), high.data(), static_cast<int>(half), analysis.handle()));
    }
    KelStatus inverse(in<float> low, in<float> high, out<Sample> x) {
        const long long half = detail::length(low);
        detail::has(x, 2 * half), detail::has(high, half);
        return detail::checked(
            synthesis_calls::run(low.data(), high.data(), static_cast<int>(half), x.data(), synthesis.handle()));
    }

    // Both directions have delay_lines() and reset().
    detail::half_bank<analysis_calls> analysis;
    detail::half_bank<synthesis_calls> synthesis;
};

} // namespace kels

#endif
