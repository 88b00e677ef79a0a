// Real transforms of any length. An even length goes through the complex transform of its pairs and a recombination, an
// odd one through the complex transform of its own length; short ones are plain sums.
#pragma once

#include "transforms/dft/plan.h"
#include "transforms/dft/real_recombination.h"
#include "transforms/packed_spectrum.h"

namespace kels {

/// The places of a packed spectrum: bin k from 1 stands at bins + 2k.
template <class T>
struct Spectrum {
    T *zeroth, *bins, *middle; ///< middle: of an even length, else null

    Spectrum(Layout layout, T* base, std::ptrdiff_t points)
        : zeroth(base), bins(base + first_complex(layout, points) - 2),
          middle(points % 2 == 0 ? base + nyquist(layout, points) : nullptr) {}
};

/// Values of work memory: the way's, and the pairs' spectrum.
template <class T>
std::size_t real_work(const DftPlan<T>& plan) {
    return plan.points.work() + (plan.real_way == RealWay::halves ? static_cast<std::size_t>(plan.len) : 0);
}

template <class T>
void forward_straight(const DftPlan<T>& plan, const T* src, Spectrum<T> dst, T factor) {
    const std::ptrdiff_t n = plan.len;
    T x[2 * longest_straight];
    run_straight(n, RealSource<T>{src}, InterleavedSink<T>{x}, false, factor);
    *dst.zeroth = x[0];
    for (std::ptrdiff_t i = 2; i < 2 + 2 * complex_bins(n); ++i) dst.bins[i] = x[i];
    if (dst.middle) *dst.middle = x[n];
}

template <class T>
void inverse_straight(const DftPlan<T>& plan, Spectrum<const T> src, T* dst, T factor) {
    const std::ptrdiff_t n = plan.len;
    T x[2 * longest_straight] = {*src.zeroth};
    for (std::ptrdiff_t k = 1; k <= complex_bins(n); ++k) {
        x[2 * k] = x[2 * (n - k)] = src.bins[2 * k];
        x[2 * k + 1] = src.bins[2 * k + 1];
        x[2 * (n - k) + 1] = -src.bins[2 * k + 1];
    }
    if (src.middle) x[n] = *src.middle;
    run_straight(n, InterleavedSource<T>{x}, RealSink<T>{dst}, true, factor);
}

/// Samples to bins, in the plan's normalisation; `work` is room for `real_work(plan)` values.
template <class T>
void run_real_forward(const DftPlan<T>& plan, const T* src, Spectrum<T> dst, T* work) {
    const T factor = plan.factor(false);
    switch (plan.real_way) {
    case RealWay::straight:
        return forward_straight(plan, src, dst, factor);
    case RealWay::direct:
        return run_direct_forward(plan.points.direct, src, dst.zeroth, dst.bins, dst.middle, factor);
    case RealWay::halves: {
        T* z = work + plan.points.work();
        run_any_length(plan.points, InterleavedSource<T>{src}, InterleavedSink<T>{z}, false, factor, work);
        recombine_any<false>(z, dst.bins, plan.len / 2, plan.recombination);
        *dst.zeroth = z[0] + z[1];
        *dst.middle = z[0] - z[1];
        return;
    }
    case RealWay::whole:
        return run_any_length(plan.points, RealSource<T>{src}, HalfSink<T>{dst.zeroth, dst.bins, plan.len}, false,
                              factor, work);
    }
}

/// And back.
template <class T>
void run_real_inverse(const DftPlan<T>& plan, Spectrum<const T> src, T* dst, T* work) {
    const T factor = plan.factor(true);
    switch (plan.real_way) {
    case RealWay::straight:
        return inverse_straight(plan, src, dst, factor);
    case RealWay::direct:
        return run_direct_inverse(plan.points.direct, *src.zeroth, src.bins, src.middle ? *src.middle : T(0), dst,
                                  factor);
    case RealWay::halves: {
        T* z = work + plan.points.work();
        recombine_any<true>(src.bins, z, plan.len / 2, plan.recombination);
        z[0] = *src.zeroth + *src.middle;
        z[1] = *src.zeroth - *src.middle;
        return run_any_length(plan.points, InterleavedSource<T>{z}, InterleavedSink<T>{dst}, true, factor, work);
    }
    case RealWay::whole:
        return run_any_length(plan.points, HalfSource<T>{src.zeroth, src.bins, plan.len}, RealSink<T>{dst}, true,
                              factor, work);
    }
}

} // namespace kels
