// What every function of the family comes down to: taps that slide over a vector with silence at both ends.
//
//     result[k] = sum over n of conj(taps[n]) line[n + low + k],   k from 0 to count - 1
//
// A convolution slides its shorter vector, backwards; a correlation the first of its vectors.
#pragma once

#include "frame/loop.h"
#include "frame/numeric.h"

#include <algorithm>
#include <cstddef>

namespace kels {

/// A vector with silence at both ends, perhaps backwards.
template <class SampleType, bool backwards = false>
struct SilentEnded {
    using Sample = SampleType;
    const Sample* first;
    std::ptrdiff_t count;

    /// Copies `length` samples from `position` on, as parts of type T.
    template <class T>
    void copy(std::ptrdiff_t position, std::ptrdiff_t length, T* out) const {
        constexpr std::ptrdiff_t width = parts<Sample>;
        static_assert(!backwards || width == 1);
        const std::ptrdiff_t from = std::clamp<std::ptrdiff_t>(-position, 0, length);
        const std::ptrdiff_t to = std::clamp<std::ptrdiff_t>(count - position, from, length);
        std::fill(out, out + from * width, T{});
        const auto* x = reals(first);
        if constexpr (backwards)
            for (std::ptrdiff_t i = from; i < to; ++i) out[i] = static_cast<T>(x[count - 1 - position - i]);
        else
            kels::each(static_cast<int>((to - from) * width), [=](std::ptrdiff_t i) {
                out[from * width + i] = static_cast<T>(x[(position + from) * width + i]);
            });
        std::fill(out + to * width, out + length * width, T{});
    }
};

template <class Taps, class Line>
struct Lags {
    Taps taps;
    Line line;
    std::ptrdiff_t low, count;
    bool itself = false; ///< taps and line are the same

    std::ptrdiff_t high() const { return low + count - 1; }
};

template <class Taps, class Line>
Lags(Taps, Line, std::ptrdiff_t, std::ptrdiff_t) -> Lags<Taps, Line>;
template <class Taps, class Line>
Lags(Taps, Line, std::ptrdiff_t, std::ptrdiff_t, bool) -> Lags<Taps, Line>;

} // namespace kels
