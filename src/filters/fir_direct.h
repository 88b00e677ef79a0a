// The direct engine: every output is a sum of products in double precision, rounded once.
//
// Outputs are made in strips of neighbouring vectors, one broadcast tap against one shifted load each, from a line of
// samples in double precision that is assembled tile by tile. The line joins the history and the caller's block, so the
// strips know nothing of the seam, and they read past the last sample only there.
#pragma once

#include "filters/fir_context.h"
#include "frame/loop.h"
#include "frame/simd.h"

namespace kels {

/// The samples of a call behind its history: position 0 is src[0], the history ends at position -1.
template <class Sample>
struct Stream {
    const Sample* history; ///< `past` samples, oldest first
    int past;
    const Sample* src;
    int count;

    /// Copies `length` samples from `position` on, as components of type T; beyond the end, zeros.
    template <class T>
    void copy(std::ptrdiff_t position, std::ptrdiff_t length, T* out) const {
        const auto piece = [&](const Sample* samples, std::ptrdiff_t begin, std::ptrdiff_t end) {
            const std::ptrdiff_t from = std::max(position, begin), to = std::min(position + length, end);
            if (from >= to) return;
            constexpr int width = is_complex<Sample> ? 2 : 1;
            const auto* in = reinterpret_cast<const Component<Sample>*>(samples + (from - begin));
            T* to_place = out + (from - position) * width;
            each(static_cast<int>((to - from) * width), [=](auto i) { to_place[i] = static_cast<T>(in[i]); });
        };
        constexpr int width = is_complex<Sample> ? 2 : 1;
        piece(history, -past, 0);
        piece(src, 0, count);
        const std::ptrdiff_t missing = std::min(length, position + length - count);
        if (missing > 0)
            std::memset(out + (length - missing) * width, 0, static_cast<std::size_t>(missing * width) * sizeof(T));
    }
};

/// Taps that are summed on their own before they join the total: bounds the rounding of long sums.
inline constexpr int partial_taps = 32;

/// `Vectors` vectors of outputs: total[j] += sum over i of taps[i] line[j + i].
template <int Vectors>
[[gnu::always_inline]] inline void real_strip(const Kel64f* line, const Kel64f* taps, int count, Vec<Kel64f>* total) {
    using V = Vec<Kel64f>;
    for (int begin = 0; begin < count; begin += partial_taps) {
        const int end = std::min(begin + partial_taps, count);
        V sum[Vectors] = {};
        for (int i = begin; i < end; ++i) {
            const V tap = splat<V>(taps[i]);
            unrolled<Vectors>([&](auto v) KELS_INLINE { sum[v] = fma(tap, load<V>(line + i + v * lanes<V>), sum[v]); });
        }
        unrolled<Vectors>([&](auto v) KELS_INLINE { total[v] = total[v] + sum[v]; });
    }
}

/// The same over interleaved complex samples: the real and imaginary parts of the taps meet the samples separately, and
/// the second sum joins the first turned by i.
template <int Vectors>
[[gnu::always_inline]] inline void complex_strip(const Kel64f* line, const Kel64f* re, const Kel64f* im, int count,
                                                 Vec<Kel64f>* total) {
    using V = Vec<Kel64f>;
    V sign;
    for (int lane = 0; lane < lanes<V>; ++lane) sign[lane] = lane % 2 == 0 ? -1 : 1;
    for (int begin = 0; begin < count; begin += partial_taps) {
        const int end = std::min(begin + partial_taps, count);
        V direct[Vectors] = {}, turned[Vectors] = {};
        for (int i = begin; i < end; ++i) {
            const V tap_re = splat<V>(re[i]), tap_im = splat<V>(im[i]);
            unrolled<Vectors>([&](auto v) KELS_INLINE {
                const V x = load<V>(line + 2 * i + v * lanes<V>);
                direct[v] = fma(tap_re, x, direct[v]);
                turned[v] = fma(tap_im, x, turned[v]);
            });
        }
        unrolled<Vectors>([&](auto v) KELS_INLINE {
            const V swapped = shuffle<[](int lane) { return lane ^ 1; }>(turned[v], turned[v]);
            total[v] = total[v] + fma(sign, swapped, direct[v]);
        });
    }
}

/// Adds the taps' part of `width` output components, in strips of four vectors and then of one.
template <bool complex>
inline void add_products(const Kel64f* line, const Kel64f* re, const Kel64f* im, int count, Kel64f* total, int width) {
    using V = Vec<Kel64f>;
    const auto strip = [&]<int Vectors>(std::integral_constant<int, Vectors>, int at) {
        V sum[Vectors];
        unrolled<Vectors>([&](auto v) KELS_INLINE { sum[v] = load<V>(total + at + v * lanes<V>); });
        if constexpr (complex)
            complex_strip<Vectors>(line + at, re, im, count, sum);
        else
            real_strip<Vectors>(line + at, re, count, sum);
        unrolled<Vectors>([&](auto v) KELS_INLINE { store(total + at + v * lanes<V>, sum[v]); });
    };
    int at = 0;
    for (; at + 4 * lanes<V> <= width; at += 4 * lanes<V>) strip(std::integral_constant<int, 4>{}, at);
    for (; at < width; at += lanes<V>) strip(std::integral_constant<int, 1>{}, at);
}

/// Filters a block whose history is the context's window. The delay line stays as it is.
template <class Family>
void filter_direct(const FirContext<Family>& context, const typename Family::Sample* src, typename Family::Sample* dst,
                   int count) {
    using Sample = typename Family::Sample;
    constexpr bool complex = is_complex<Sample>;
    constexpr int width = complex ? 2 : 1;
    constexpr int tile = 1024 / width;        // outputs
    constexpr int tap_segment = 2048 / width; // taps between two stores of the totals
    constexpr int slack = 64;

    alignas(64) Kel64f line[(tile + tap_segment) * width + slack];
    alignas(64) Kel64f total[tile * width + slack];

    const int L = context.tapsLen;
    const Stream<Sample> stream{context.window() + 1, L - 1, src, count};
    for (int first = 0; first < count; first += tile) {
        const int outputs = std::min(tile, count - first);
        std::fill_n(total, outputs * width + lanes<Vec<Kel64f>>, 0.0);
        for (int tap = 0; tap < L; tap += tap_segment) {
            const int taps = std::min(tap_segment, L - tap);
            const int needed = outputs + taps - 1;
            stream.copy(std::ptrdiff_t{first} - (L - 1) + tap, needed, line);
            std::fill_n(line + needed * width, lanes<Vec<Kel64f>>, 0.0);
            const Kel64f* h = context.coefficients.get() + tap;
            add_products<complex>(line, h, complex ? h + L : nullptr, taps, total, outputs * width);
        }
        auto* out = reinterpret_cast<Component<Sample>*>(dst + first);
        each(outputs * width, [=, &total](auto i) { out[i] = static_cast<Component<Sample>>(total[i]); });
    }
}

/// Sums of a single output, side by side: as many at every level, folded in one order, so that the result does not
/// depend on the level.
inline constexpr int parallel_sums = 16;

/// One output from the window, in double precision.
template <class Family>
typename Family::Sample filter_window(const FirContext<Family>& context) {
    using Sample = typename Family::Sample;
    using V = Vec<Kel64f>;
    constexpr int vectors = parallel_sums / lanes<V>;
    const Sample* x = context.window();
    const Kel64f* h = context.coefficients.get();
    const int L = context.tapsLen;
    if constexpr (is_complex<Sample>) {
        Kel64f re[parallel_sums] = {}, im[parallel_sums] = {};
        const auto add = [&](int lane, int i) {
            const Kel64f xr = x[i].re, xi = x[i].im, hr = h[i], hi = h[L + i];
            re[lane] = fma(hr, xr, fma(-hi, xi, re[lane]));
            im[lane] = fma(hr, xi, fma(hi, xr, im[lane]));
        };
        int i = 0;
        for (; i + parallel_sums <= L; i += parallel_sums)
            for (int lane = 0; lane < parallel_sums; ++lane) add(lane, i + lane);
        for (int lane = 0; i < L; ++i, ++lane) add(lane, i);
        for (int half = parallel_sums / 2; half > 0; half /= 2)
            for (int lane = 0; lane < half; ++lane) {
                re[lane] += re[lane + half];
                im[lane] += im[lane + half];
            }
        return {static_cast<Component<Sample>>(re[0]), static_cast<Component<Sample>>(im[0])};
    } else {
        V sum[vectors] = {};
        const auto add = [&](const Sample* samples, const Kel64f* taps) KELS_INLINE {
            unrolled<vectors>([&](auto v) KELS_INLINE {
                const auto in = load<Vec<Sample, lanes<V>>>(samples + v * lanes<V>);
                sum[v] = fma(load<V>(taps + v * lanes<V>), convert<Kel64f>(in), sum[v]);
            });
        };
        int i = 0;
        for (; i + parallel_sums <= L; i += parallel_sums) add(x + i, h + i);
        if (i < L) { // the rest, filled up with silence
            Sample rest[parallel_sums] = {};
            Kel64f taps[parallel_sums] = {};
            std::memcpy(rest, x + i, static_cast<std::size_t>(L - i) * sizeof(Sample));
            std::memcpy(taps, h + i, static_cast<std::size_t>(L - i) * sizeof(Kel64f));
            add(rest, taps);
        }
        for (int half = vectors / 2; half > 0; half /= 2)
            for (int v = 0; v < half; ++v) sum[v] = sum[v] + sum[v + half];
        return static_cast<Sample>(sum_of_lanes(sum[0]));
    }
}

} // namespace kels
