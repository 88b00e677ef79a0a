// Sums of products in double precision: many neighbouring outputs at once, or one output from one window.
//
// Neighbouring outputs come in strips of vectors, one broadcast tap against one shifted load each. A single output is
// the sum of sixteen partial sums, folded in one order: as many at every level, so that it does not depend on the
// level.
#pragma once

#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

namespace kels {

/// Where dot products take their taps: coefficients in the order of the samples.
struct StoredTaps {
    const Kel64f* first;

    template <class V>
    [[gnu::always_inline]] V at(int i) const {
        return load<V>(first + i);
    }
    StoredTaps from(std::ptrdiff_t i) const { return {first + i}; }
};

/// Or a caller's taps, backwards.
template <class Taps>
struct ReversedTaps {
    const Part<Taps>* end;

    template <class V>
    [[gnu::always_inline]] V at(int i) const {
        const auto h = convert<Kel64f>(load<Vec<Part<Taps>, lanes<V>>>(end - i - lanes<V>));
        if constexpr (lanes<V> == 1)
            return h;
        else
            return shuffle<[](int lane) { return lanes<V> - parts<Taps> - lane + 2 * (lane % parts<Taps>); }>(h, h);
    }
    ReversedTaps from(std::ptrdiff_t i) const { return {end - i}; }
};

template <bool complex>
struct RealSums {
    using Line = Kel64f; ///< what samples become before they are summed
    using Coefficient = Kel64f;
    using Total = Kel64f;
    static constexpr int width = complex ? 2 : 1; ///< parts of a sample
    static constexpr int per_tap = width;         ///< coefficients of a tap
    static constexpr int padding = 0;             ///< zero taps behind the last

    /// Passes over the samples that the taps need.
    template <class Taps>
    static int passes(const Taps*, int) {
        return 1;
    }

    /// The coefficients of one tap, for one of the passes over all of them.
    template <class Taps>
    static void put(const Taps& tap, int /*pass*/, Coefficient* out) {
        for (int i = 0; i < width; ++i) out[i] = static_cast<Kel64f>(reals(&tap)[i]);
    }

    /// total[j] += sum over i of taps[i] line[j + i], for `outputs` parts of outputs, rounded up to vectors.
    static void add_strips(const Line* line, const Coefficient* taps, int count, Total* total, int outputs, int pass);

    using Sum = std::array<Total, width>;

    /// Adds dot products to every `total_step`-th total: `taps` with the samples from x on, those `step` later, and so
    /// on. At most 1024 taps.
    static void add_dots(const Line* x, std::ptrdiff_t step, const Coefficient* taps, int count, int dots, Total* total,
                         std::ptrdiff_t total_step, int pass);

    /// The products of `count` samples and taps, added up.
    template <class X, class Taps>
    static Sum dot(const X* x, const Taps& taps, int count);

    /// The same where the newest samples have only just been stored.
    template <class X, class Taps>
    static Sum dot_of_fresh(const X* x, const Taps& taps, int count);

    template <class X>
    static Sum dot(const X* x, const Coefficient* taps, int count) {
        return dot(x, StoredTaps{taps}, count);
    }
    template <class X>
    static Sum dot_of_fresh(const X* x, const Coefficient* taps, int count) {
        return dot_of_fresh(x, StoredTaps{taps}, count);
    }
};

// Strips

/// Taps that are summed on their own before they join the total: bounds the rounding of long sums.
inline constexpr int partial_taps = 32;

/// Taps are taken in rows of those that are this far apart: what one of them reads for an output, the next reads for
/// one further on.
inline constexpr int tap_stride = 8;

/// sum[j] += the products of `Rows` times eight taps. With the widest vectors, nearly all loads cross cache lines and
/// would limit the engine: the taps of a row share theirs. Narrower levels have no registers for it, nor the need.
template <int Rows, int Vectors>
[[gnu::always_inline]] inline void add_rows(const Kel64f* line, const Kel64f* taps, Vec<Kel64f>* sum) {
    using V = Vec<Kel64f>;
    KELS_ROLLED
    for (int first = 0; first < tap_stride; ++first) {
        if constexpr (lanes<V> == tap_stride) {
            V x[Vectors + Rows - 1];
            unrolled<Vectors + Rows - 1>([&](auto k) KELS_INLINE { x[k] = load<V>(line + first + k * lanes<V>); });
            unrolled<Rows>([&](auto row) KELS_INLINE {
                const V tap = splat<V>(taps[first + row * tap_stride]);
                unrolled<Vectors>([&](auto v) KELS_INLINE { sum[v] = fma(tap, x[v + row], sum[v]); });
            });
        } else {
            KELS_ROLLED
            for (int i = first; i < Rows * tap_stride; i += tap_stride) {
                const V tap = splat<V>(taps[i]);
                unrolled<Vectors>([&](auto v)
                                      KELS_INLINE { sum[v] = fma(tap, load<V>(line + i + v * lanes<V>), sum[v]); });
            }
        }
    }
}

template <int Vectors>
[[gnu::always_inline]] inline void real_strip(const Kel64f* line, const Kel64f* taps, int count, Vec<Kel64f>* total) {
    using V = Vec<Kel64f>;
    int i = 0;
    const auto join = [&](const V* sum)
                          KELS_INLINE { unrolled<Vectors>([&](auto v) KELS_INLINE { total[v] = total[v] + sum[v]; }); };
    for (; i + partial_taps <= count; i += partial_taps) {
        V sum[Vectors] = {};
        add_rows<partial_taps / tap_stride, Vectors>(line + i, taps + i, sum);
        join(sum);
    }
    V sum[Vectors] = {};
    const auto add = [&]<int Rows>(std::integral_constant<int, Rows>) KELS_INLINE {
        if (i + Rows * tap_stride > count) return;
        add_rows<Rows, Vectors>(line + i, taps + i, sum);
        i += Rows * tap_stride;
    };
    add(std::integral_constant<int, 3>{});
    add(std::integral_constant<int, 2>{});
    for (; i < count; ++i) {
        const V tap = splat<V>(taps[i]);
        unrolled<Vectors>([&](auto v) KELS_INLINE { sum[v] = fma(tap, load<V>(line + i + v * lanes<V>), sum[v]); });
    }
    join(sum);
}

/// The sum that real parts of taps make and the one that imaginary parts make, which is turned by i.
template <class V>
[[gnu::always_inline]] inline V complex_sum(V direct, V turned) {
    V sign;
    for (int lane = 0; lane < lanes<V>; ++lane) sign[lane] = lane % 2 == 0 ? -1 : 1;
    return fma(sign, shuffle<[](int lane) { return lane ^ 1; }>(turned, turned), direct);
}

template <int Vectors>
[[gnu::always_inline]] inline void complex_strip(const Kel64f* line, const Kel64f* taps, int count,
                                                 Vec<Kel64f>* total) {
    using V = Vec<Kel64f>;
    for (int begin = 0; begin < count; begin += partial_taps) {
        const int end = std::min(begin + partial_taps, count);
        V direct[Vectors] = {}, turned[Vectors] = {};
        for (int i = begin; i < end; ++i) {
            const V re = splat<V>(taps[2 * i]), im = splat<V>(taps[2 * i + 1]);
            unrolled<Vectors>([&](auto v) KELS_INLINE {
                const V x = load<V>(line + 2 * i + v * lanes<V>);
                direct[v] = fma(re, x, direct[v]);
                turned[v] = fma(im, x, turned[v]);
            });
        }
        unrolled<Vectors>([&](auto v) KELS_INLINE { total[v] = total[v] + complex_sum(direct[v], turned[v]); });
    }
}

/// Strips as wide as the registers hold, then narrower ones.
template <bool complex>
void RealSums<complex>::add_strips(const Line* line, const Coefficient* taps, int count, Total* total, int outputs,
                                   int /*pass*/) {
    using V = Vec<Kel64f>;
    const auto strip = [&]<int Vectors>(std::integral_constant<int, Vectors>, int at) {
        V sum[Vectors];
        unrolled<Vectors>([&](auto v) KELS_INLINE { sum[v] = load<V>(total + at + v * lanes<V>); });
        if constexpr (complex)
            complex_strip<Vectors>(line + at, taps, count, sum);
        else
            real_strip<Vectors>(line + at, taps, count, sum);
        unrolled<Vectors>([&](auto v) KELS_INLINE { store(total + at + v * lanes<V>, sum[v]); });
    };
    int at = 0;
    const auto strips = [&]<int Vectors>(std::integral_constant<int, Vectors> vectors) {
        for (; at + Vectors * lanes<V> <= outputs; at += Vectors * lanes<V>) strip(vectors, at);
    };
    constexpr int registers = vector_bytes == 64 ? 32 : 16; // half of them for sums, of which complex outputs have two
    if constexpr (!complex || registers == 32) strips(std::integral_constant<int, 8>{});
    strips(std::integral_constant<int, 4>{});
    for (; at < outputs; at += lanes<V>) strip(std::integral_constant<int, 1>{}, at);
}

// One output

/// Lanes from the first on that are not wanted become zeros, to the bit.
template <class V>
[[gnu::always_inline]] inline V without_first(int unwanted, int first_lane, V a) {
    using Bits = Vec<Kel64s, lanes<V>>;
    Bits index;
    for (int lane = 0; lane < lanes<V>; ++lane) index[lane] = lane;
    const auto wanted = index >= splat<Bits>(unwanted - first_lane);
    return bits_as<V>(bits_as<Bits>(a) & (Bits)wanted);
}

/// Chunks of `Lanes` parts, then a half of one, then one that overlaps it. There are at least half a chunk's parts.
template <int Lanes, int width, class X, class Taps>
[[gnu::always_inline]] inline std::array<Kel64f, width> dot_in_chunks(const X* x, const Taps& taps, int n) {
    constexpr int half_chunk = Lanes / 2;
    using V = Vec<Kel64f, std::min(half_chunk, max_lanes<Kel64f>)>;
    constexpr int vectors = Lanes / lanes<V>;
    V direct[vectors] = {}, turned[vectors] = {};
    const auto add = [&](int i, auto v, auto prepared) KELS_INLINE {
        constexpr int at = v * lanes<V>;
        const V in = prepared(at, convert<Kel64f>(load<Vec<X, lanes<V>>>(x + i + at)));
        const V h = prepared(at, taps.template at<V>(i + at));
        if constexpr (width == 1) {
            direct[v] = fma(h, in, direct[v]);
        } else {
            direct[v] = fma(shuffle<[](int lane) { return lane & ~1; }>(h, h), in, direct[v]);
            turned[v] = fma(shuffle<[](int lane) { return lane | 1; }>(h, h), in, turned[v]);
        }
    };
    const auto whole = [](int, V a) KELS_INLINE { return a; };
    int i = 0;
    for (; i + Lanes <= n; i += Lanes) unrolled<vectors>([&](auto v) KELS_INLINE { add(i, v, whole); });
    if (i + half_chunk <= n) {
        unrolled<vectors / 2>([&](auto v) KELS_INLINE { add(i, v, whole); });
        i += half_chunk;
    }
    if (const int last = n - half_chunk; i < n) {
        const auto the_rest = [=](int at, V a) KELS_INLINE { return without_first(i - last, at, a); };
        unrolled<vectors / 2>([&](auto v) KELS_INLINE { add(last, v, the_rest); });
    }

    unrolled<vectors>([&](auto v) KELS_INLINE {
        if constexpr (width == 2) direct[v] = complex_sum(direct[v], turned[v]);
    });
    unrolled<std::bit_width(unsigned{vectors}) - 1>([&](auto step) KELS_INLINE {
        constexpr int half = vectors >> (step + 1);
        unrolled<half>([&](auto v) KELS_INLINE { direct[v] = direct[v] + direct[v + half]; });
    });
    std::array<Kel64f, width> sum;
    store(sum.data(), fold<width>(direct[0]));
    return sum;
}

/// Samples from..to - 1, four by turns into sums of their own.
template <int width, class X, class Taps>
[[gnu::always_inline]] inline std::array<Kel64f, width> dot_one_by_one(const X* x, const Taps& taps, int from, int to) {
    Kel64f sum[4][width] = {};
    const auto add = [&](int i, auto turn) KELS_INLINE {
        const Kel64f re = static_cast<Kel64f>(x[width * i]);
        if constexpr (width == 1) {
            sum[turn][0] = fma(taps.template at<Kel64f>(i), re, sum[turn][0]);
        } else {
            const auto h = taps.template at<Vec<Kel64f, 2>>(2 * i);
            const Kel64f im = static_cast<Kel64f>(x[2 * i + 1]), hr = h[0], hi = h[1];
            sum[turn][0] = fma(hr, re, fma(-hi, im, sum[turn][0]));
            sum[turn][1] = fma(hr, im, fma(hi, re, sum[turn][1]));
        }
    };
    int i = from;
    for (; i + 4 <= to; i += 4) unrolled<4>([&](auto turn) KELS_INLINE { add(i + turn, turn); });
    unrolled<3>([&](auto turn) KELS_INLINE {
        if (i + turn < to) add(i + turn, turn);
    });
    std::array<Kel64f, width> result;
    for (int part = 0; part < width; ++part)
        result[part] = (sum[0][part] + sum[2][part]) + (sum[1][part] + sum[3][part]);
    return result;
}

template <int width, class X, class Taps>
[[gnu::always_inline]] inline std::array<Kel64f, width> short_dot(const X* x, const Taps& taps, int count) {
    if (count * width >= 8) return dot_in_chunks<16, width>(x, taps, count * width);
    if (count * width >= 4) return dot_in_chunks<8, width>(x, taps, count * width);
    return dot_one_by_one<width>(x, taps, 0, count);
}

template <std::size_t width>
inline void add_to(std::array<Kel64f, width>& total, const std::array<Kel64f, width>& more) {
    for (std::size_t part = 0; part < width; ++part) total[part] += more[part];
}

/// Long sums in pieces, which bounds their rounding.
template <bool complex>
template <class X, class Taps>
auto RealSums<complex>::dot(const X* x, const Taps& taps, int count) -> Sum {
    constexpr int piece = 1024 / width;
    Sum total = short_dot<width>(x, taps, std::min(count, piece));
    for (int i = piece; i < count; i += piece)
        add_to(total, short_dot<width>(x + width * std::ptrdiff_t{i}, taps.from(width * std::ptrdiff_t{i}),
                                       std::min(count - i, piece)));
    return total;
}

template <bool complex>
void RealSums<complex>::add_dots(const Line* x, std::ptrdiff_t step, const Coefficient* taps, int count, int dots,
                                 Total* total, std::ptrdiff_t total_step, int /*pass*/) {
    for (int i = 0; i < dots; ++i) {
        const Sum sum = short_dot<width>(x + i * step * width, StoredTaps{taps}, count);
        for (int part = 0; part < width; ++part) total[i * total_step * width + part] += sum[part];
    }
}

/// Wide loads of what narrow stores have not yet brought to the cache wait for it: those samples come one by one.
template <bool complex>
template <class X, class Taps>
auto RealSums<complex>::dot_of_fresh(const X* x, const Taps& taps, int count) -> Sum {
    constexpr int fresh = 8;
    const int old = std::max(count - fresh, 0);
    Sum total = dot(x, taps, old);
    add_to(total, dot_one_by_one<width>(x, taps, old, count));
    return total;
}

} // namespace kels
