// A complex transform of any length that is no power of two from 8 on, the way being chosen once.
#pragma once

#include "transforms/dft/butterflies.h"
#include "transforms/dft/chirp.h"
#include "transforms/dft/direct.h"
#include "transforms/dft/mixed.h"
#include "transforms/dft/short.h"

#include <cmath>

namespace kels {

enum class Way { straight, short_steps, direct, mixed, chirp };

template <class T>
struct AnyLength {
    std::ptrdiff_t length = 0;
    Way way = Way::straight;
    ShortTransform<T> steps;
    DirectTransform<T> direct;
    MixedTransform<T> mixed;
    ChirpTransform<T> chirp;

    /// Values of work memory that a transform takes.
    std::size_t work() const {
        return way == Way::mixed   ? 2 * static_cast<std::size_t>(length)
               : way == Way::chirp ? 2 * static_cast<std::size_t>(chirp.convolution)
                                   : 0;
    }
};

/// Lengths up to this one are straight code.
inline constexpr std::ptrdiff_t longest_straight = 4;

/// Direct lengths of complex data, of real data, whose sums round the least where there are few, and those whose
/// factors are not small: what the widths of vectors make of them.
template <class T>
inline constexpr std::ptrdiff_t longest_smooth_direct = 17;
inline constexpr std::ptrdiff_t longest_real_direct = 34;
template <class T>
inline constexpr std::ptrdiff_t longest_rough_direct = std::min<std::ptrdiff_t>(64 + 8 * max_lanes<T>, longest_direct);

/// Chooses the way of a length; the status of making what it needs.
template <class T>
KelStatus choose_way(AnyLength<T>& t, std::ptrdiff_t length) {
    t.length = length;
    if (length <= longest_straight) {
        t.way = Way::straight;
    } else if (is_short<T>(length)) {
        t.way = Way::short_steps;
        split_short(t.steps, length);
    } else if (length <= longest_smooth_direct<T>) {
        t.way = Way::direct;
    } else if (is_mixed<T>(length)) {
        t.way = Way::mixed;
        split_mixed(t.mixed, length);
    } else if (length <= longest_rough_direct<T>) {
        t.way = Way::direct;
    } else {
        t.way = Way::chirp;
        const int order = convolution_order(length);
        t.chirp.length = length;
        t.chirp.convolution = std::ptrdiff_t{1} << order;
        using Fft = Spectral<ComplexOf<T>>;
        typename Fft::Plan* plan = nullptr;
        const KelStatus status = Fft::make(&plan, order, kelFftNormNone, kelHintDefault);
        t.chirp.fft.reset(plan);
        return status;
    }
    return kelStatusOk;
}

template <class T>
void lay_any_length(AnyLength<T>& t, TableSpace& space) {
    if (t.way == Way::short_steps) lay_short(t.steps, space);
    if (t.way == Way::direct) lay_direct(t.direct, t.length, space);
    if (t.way == Way::mixed) lay_mixed(t.mixed, space);
    if (t.way == Way::chirp) lay_chirp(t.chirp, space);
}

/// 1 to 4 points.
template <class T, class Source, class Sink>
void run_straight(std::ptrdiff_t n, Source source, Sink sink, bool inverse, T factor) {
    using One = PointVec<T, 1>;
    One x[4];
    for (std::ptrdiff_t i = 0; i < n; ++i) x[i] = source.template read<One>(i);
    if (n == 2) point_transform<2>(x);
    if (n == 3) point_transform<3>(x);
    if (n == 4) point_transform<4>(x);
    for (std::ptrdiff_t k = 0; k < n; ++k) sink.write(inverse && k > 0 ? n - k : k, x[k] * splat<One>(factor));
}

/// The transform of a source to a sink, which may be the same memory; `work` is room for `t.work()` values.
template <class T, class Source, class Sink>
void run_any_length(const AnyLength<T>& t, Source source, Sink sink, bool inverse, T factor, T* work) {
    switch (t.way) {
    case Way::straight:
        return run_straight(t.length, source, sink, inverse, factor);
    case Way::short_steps:
        return run_short(t.steps, source, sink, inverse, factor);
    case Way::direct:
        return run_direct(t.direct, source, sink, inverse, factor);
    case Way::mixed:
        return run_mixed(t.mixed, source, sink, inverse, factor, work);
    case Way::chirp:
        return run_chirp(t.chirp, source, sink, inverse, factor, work);
    }
}

} // namespace kels
