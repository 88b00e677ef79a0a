// Lags as sums of products, by the strips of the FIR filters. Silence outside of the vectors takes part in the strips:
// it adds nothing, unless it meets a NaN or an infinity. Vectors that have one are summed without those samples first,
// and the lags that they belong to are summed again, term by term.
#pragma once

#include "filters/convolution/lags.h"
#include "filters/fir/direct.h"

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

namespace kels {

template <class Sample>
bool all_finite(const Sample* x, std::ptrdiff_t count) {
    if constexpr (std::is_floating_point_v<Part<Sample>>) {
        using W = Word<Sample>;
        constexpr W exponent = std::bit_cast<W>(std::numeric_limits<Part<Sample>>::infinity());
        W largest = 0;
        for (std::ptrdiff_t i = 0; i < count * parts<Sample>; ++i)
            largest = std::max<W>(largest, load<W>(reals(x) + i) & exponent);
        return largest != exponent;
    }
    return true;
}

/// The line as a stream of the strips, whose first window ends with position 0.
template <class Line>
struct LineStream {
    const Line& line;
    std::ptrdiff_t start; ///< in the line
    bool only_finite;

    template <class T>
    void copy(std::ptrdiff_t position, std::ptrdiff_t length, T* out) const {
        line.copy(position + start, length, out);
        if (only_finite)
            for (std::ptrdiff_t i = 0; i < length * parts<typename Line::Sample>; ++i)
                if (!std::isfinite(out[i])) out[i] = 0;
    }
    bool silent(std::ptrdiff_t position, std::ptrdiff_t length) const {
        return position + start >= line.count || position + start + length <= 0;
    }
};

/// The taps as coefficients of the strips, conjugated.
template <class Taps>
struct ConjugatedCoefficients {
    using Sample = typename Taps::Sample;
    static constexpr int width = parts<Sample>;
    using Sums = RealSums<width == 2>;
    static constexpr int room = Sums::segment * width;

    const Taps& taps;
    bool only_finite;

    static constexpr int passes() { return 1; }
    const Kel64f* segment(int tap, int count, int /*pass*/, Kel64f* out) const {
        taps.copy(tap, count, out);
        for (int i = 0; i < count * width; ++i) {
            if (only_finite && !std::isfinite(out[i])) out[i] = 0;
            if (i % width == 1) out[i] = -out[i];
        }
        return out;
    }
};

/// One lag, over the terms that there are.
template <class Taps, class Line>
std::array<Kel64f, parts<typename Taps::Sample>> sum_of_terms(const Lags<Taps, Line>& lags, std::ptrdiff_t lag) {
    constexpr int width = parts<typename Taps::Sample>;
    std::array<Kel64f, width> sum{};
    const std::ptrdiff_t from = std::max<std::ptrdiff_t>(0, -lag);
    const std::ptrdiff_t to = std::min(lags.taps.count, lags.line.count - lag);
    for (std::ptrdiff_t n = from; n < to; ++n) {
        Kel64f a[width], b[width];
        lags.taps.copy(n, 1, a);
        lags.line.copy(n + lag, 1, b);
        if constexpr (width == 1) {
            sum[0] += a[0] * b[0];
        } else {
            sum[0] += a[0] * b[0] + a[1] * b[1];
            sum[1] += a[0] * b[1] - a[1] * b[0];
        }
    }
    return sum;
}

template <class Taps, class Line, class Result>
void correlate_directly(const Lags<Taps, Line>& lags, Result* dst) {
    using Coefficients = ConjugatedCoefficients<Taps>;
    const bool finite = all_finite(lags.taps.first, lags.taps.count) && all_finite(lags.line.first, lags.line.count);
    const Coefficients coefficients{lags.taps, !finite};
    const int count = static_cast<int>(lags.taps.count);
    const LineStream<Line> stream{lags.line, lags.low + count - 1, !finite};
    Tile<typename Coefficients::Sums> tile;
    for (std::ptrdiff_t first = 0; first < lags.count; first += tile.most_outputs) {
        const int outputs = static_cast<int>(std::min<std::ptrdiff_t>(tile.most_outputs, lags.count - first));
        tile.sum(stream, first, outputs, coefficients, count);
        tile.store(dst + first, outputs, RoundedOnce{});
    }
    if (finite) return;
    for (std::ptrdiff_t k = 0; k < lags.count; ++k) {
        const auto sum = sum_of_terms(lags, lags.low + k);
        if (!all_finite(sum.data(), parts<Result>)) dst[k] = rounded_sample<Result>(sum, RoundedOnce{});
    }
}

} // namespace kels
