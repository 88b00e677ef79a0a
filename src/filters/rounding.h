// From a sum in double precision to a sample: what filters store.
#pragma once

#include "frame/blocks.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <limits>

namespace kels {

/// Real samples: the sum, rounded once.
struct RoundedOnce {
    template <class R, class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> to(V sum) const {
        return convert<R>(sum);
    }
};

/// Integer samples of real taps: the sum times a power of two, to nearest, ties away from zero, saturated first. A NaN
/// becomes the largest value.
struct AwayFromZero {
    Kel64f power;

    template <class R, class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> to(V sum) const {
        const V most = splat<V>(std::numeric_limits<R>::max()), least = splat<V>(std::numeric_limits<R>::min());
        const V scaled = sum * splat<V>(power);
        const V above = scaled <= most ? scaled : most;
        const V limited = above < least ? least : above;
        return convert<R>(to_integer<true>(limited + (limited < 0 ? splat<V>(-0.5) : splat<V>(0.5))));
    }
};

/// Stores `count` sums as samples.
template <class R, class Total, class Rounding>
void store_rounded(const Total* sums, R* dst, int count, const Rounding& rounding) {
    map_blocks(
        dst, count, [=](auto sum) KELS_INLINE { return rounding.template to<R>(sum); }, sums);
}

/// A sum as one sample.
template <class Sample, class Sum, class Rounding>
Sample rounded_sample(const Sum& sum, const Rounding& rounding) {
    Sample sample;
    for (int part = 0; part < parts<Sample>; ++part)
        reals(&sample)[part] = rounding.template to<Part<Sample>>(sum[part]);
    return sample;
}

} // namespace kels
