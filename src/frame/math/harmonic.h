// Sines and cosines of a phase that grows by the same angle from sample to sample. The phase of sample n comes from n
// itself, as quarter turns in two doubles, so that no error grows along the vector.
#pragma once

#include "frame/math/circular.h"
#include "frame/two_doubles.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace kels {

/// An extended number as two doubles. What is not finite stays in the first.
inline TwoDoubles two_doubles(long double x) {
    const auto high = static_cast<double>(x);
    const auto low = static_cast<double>(x - high);
    return {high, low - low == 0 ? low : 0};
}

/// Radians as quarter turns.
inline TwoDoubles quarter_turns(TwoDoubles angle) {
    return angle * TwoDoubles{0x1.45f306dc9c883p-1, -0x1.6b01ec5417056p-55}; // 2 / pi
}

class Harmonic {
public:
    Harmonic(long double step, long double start)
        : per_sample(quarter_turns(two_doubles(step))), at_start(quarter_turns(two_doubles(start))) {}

    /// Of samples n, whole numbers less than 2^32; the step is at most a turn.
    template <Grade G, class V>
    [[gnu::always_inline]] SineCosine<V> at(V n) const {
        const V product = n * per_sample.high, error = product_error(n, splat<V>(per_sample.high), product);
        const Whole<V> whole = nearest_whole(product);
        const V part = product - whole.real, start = splat<V>(at_start.high), sum = part + start;
        const Whole<V> rest = nearest_whole(sum);
        const V head = sum - rest.real;
        const V tail = sum_error(part, start, sum) + (error + (n * per_sample.low + at_start.low));
        const SineCosine<V> r = of_quarters<G>(head, tail);
        return turned(r, whole.low_bits + rest.low_bits);
    }

private:
    TwoDoubles per_sample, at_start;

    /// Of head + tail quarter turns, at most a half.
    template <Grade G, class V>
    [[gnu::always_inline]] static SineCosine<V> of_quarters(V head, V tail) {
        const V half_pi = splat<V>(0x1.921fb54442d18p+0), main = head * half_pi;
        const V rest = product_error(head, half_pi, main) + (head * 0x1.1a62633145c07p-54 + tail * half_pi);
        const V high = main + rest, low = (main - high) + rest;
        const Unrounded<V> sine = sine_of_folded<G>(high, low), cosine = cosine_of_folded<G>(high, low);
        return {sine.head + sine.tail, cosine.head + cosine.tail};
    }

    template <class V>
    [[gnu::always_inline]] static SineCosine<V> turned(SineCosine<V> r, Bits<V> quarters) {
        using B = Bits<V>;
        const auto odd = (quarters & splat<B>(1)) != 0;
        const auto sign = [](B q) KELS_INLINE { return bits_as<V>((q & splat<B>(2)) << splat<B>(62)); };
        return {with_sign_of(odd ? r.cosine : r.sine, sign(quarters)),
                with_sign_of(odd ? r.sine : r.cosine, sign(quarters + splat<B>(1)))};
    }
};

/// The first numbers from `from` on, one a lane.
template <class V>
[[gnu::always_inline]] inline V counted(double from) {
    alignas(64) static constexpr double first[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                                   16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31};
    static_assert(lanes<V> <= std::size(first));
    return load<V>(first) + from;
}

/// The same harmonic in stretches of samples: a sum of two products each, of a table and of the stretch's first phase.
template <Grade G>
class Stretches {
public:
    static constexpr int length = 64;

    /// For n samples from number `from` on.
    Stretches(long double step, long double start, double from, std::ptrdiff_t n) : phase(step, start), first(from) {
        const Harmonic unmoved(step, 0);
        const int entries = static_cast<int>(std::min<std::ptrdiff_t>(n, length));
        for (int j = 0; j < entries; j += lanes<V>) {
            const SineCosine<V> at = unmoved.at<G>(counted<V>(j));
            store(sine + j, at.sine);
            store(cosine + j, at.cosine);
        }
    }

    /// Goes to stretch i; in order, or by multiples of the lanes.
    void go_to(std::ptrdiff_t i) {
        const auto lane = i % lanes<V>;
        if (lane == 0) {
            const SineCosine<V> at = phase.at<G>(counted<V>(static_cast<double>(i)) * length + first);
            store(sines, at.sine);
            store(cosines, at.cosine);
        }
        here = {sines[lane], cosines[lane]};
    }

    /// Of samples j, j + 1 ... of the stretch.
    [[gnu::always_inline]] Vec<double> sine_at(int j) const {
        const V s = load<V>(sine + j), c = load<V>(cosine + j);
        return multiply_add<G>(splat<V>(here.sine), c, here.cosine * s);
    }
    [[gnu::always_inline]] Vec<double> cosine_at(int j) const {
        const V s = load<V>(sine + j), c = load<V>(cosine + j);
        return multiply_add<G>(splat<V>(here.cosine), c, -(here.sine * s));
    }

private:
    using V = Vec<double>;

    Harmonic phase;
    double first;
    SineCosine<double> here{};
    alignas(64) double sines[lanes<V>], cosines[lanes<V>];
    alignas(64) double sine[length], cosine[length];
};

} // namespace kels
