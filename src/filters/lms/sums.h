// What the adaptive filters of real taps share: the sum of a window, the error, the rounding of outputs.
//
// Sums are of double precision, where products of singles are exact, in a fixed number of lanes; the window fills them
// from behind, so that a filter has the same bits however its taps are stored. An update is a product and a sum, each
// rounded, never fused: every level gives the same taps.
#pragma once

#include "frame/reduction.h"

#include <limits>
#include <type_traits>

namespace kels {

constexpr int lms_lanes = 16;
using LmsLanes = Vec<Kel64f, lms_lanes>;

/// tap + error sample, before it is rounded to single.
template <class V>
[[gnu::always_inline]] inline V adapted(V tap, V sample, Kel64f error) {
    const V change = sample * splat<V>(error);
    return change + tap;
}

/// 2 mu (reference - output); 2 mu does not overflow here.
inline Kel64f lms_error(Kel64f reference, Kel64f output, Kel32f mu) {
    return (reference - output) * 2 * static_cast<Kel64f>(mu);
}

/// A real sample is the output rounded, an integer one is cut toward zero.
template <class Sample>
Sample lms_sample(Kel64f output) {
    if constexpr (std::is_integral_v<Sample>) {
        constexpr Kel64f most = std::numeric_limits<Sample>::max(), least = std::numeric_limits<Sample>::min();
        const Kel64f below = output < most ? output : most; // a NaN is not
        return static_cast<Sample>(below > least ? below : least);
    } else {
        return static_cast<Sample>(output);
    }
}

} // namespace kels
