// Sums of products in double precision: many neighbouring outputs at once, or one output from one window.
//
// A sum has one arrangement, however it comes about, so that a stream has the same bits wherever it is cut. The parts
// of samples and taps are dealt out in blocks of four rows of eight, from the newest sample back; what is left of the
// oldest row stands in its first places. The products of one place form a chain. The chains of a block are added up,
// the second half onto the first and then neighbours onto neighbours, and the blocks in fours, sixteens and segments.
// So no long sum carries the rounding of many additions; where there are many segments, their rounding errors are
// summed too.
//
// Neighbouring outputs come in strips of vectors, chain by chain, one broadcast tap against shifted loads. A single
// output has its chains side by side in lanes.
#pragma once

#include "frame/error_free.h"
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
    static constexpr int segment = 1024 / width;  ///< taps that are summed on their own
    /// Vectors of a strip: there are 32 registers, or 16.
    static constexpr int widest = complex ? 3 : vector_bytes == 64 ? 8 : 6;

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

    /// total[j] += sum over i of taps[i] line[j + i], for `outputs` parts of outputs, rounded up to vectors. At most a
    /// segment of taps.
    static void add_strips(const Line* line, const Coefficient* taps, int count, Total* total, int outputs, int pass);

    using Sum = std::array<Total, width>;

    /// Adds dot products to every `total_step`-th total: `taps` with the samples from x on, those `step` later, and so
    /// on. At most 1024 taps.
    static void add_dots(const Line* x, std::ptrdiff_t step, const Coefficient* taps, int count, int dots, Total* total,
                         std::ptrdiff_t total_step, int pass);

    /// The products of `count` samples and taps, added up. The newest samples may have been stored just now.
    template <class X, class Taps>
    static Sum dot_of_fresh(const X* x, Taps taps, int count);

    template <class X>
    static Sum dot_of_fresh(const X* x, const Coefficient* taps, int count) {
        return dot_of_fresh(x, StoredTaps{taps}, count);
    }
};

// The arrangement

inline constexpr int places = 8; ///< parts of a row, each with its chain
inline constexpr int block_rows = 4, block_parts = places * block_rows;

/// Sums that are formed side by side.
template <class V, int Count>
struct Several {
    V of[Count];

    [[gnu::always_inline]] Several& operator+=(const Several& more) {
        unrolled<Count>([&](auto i) KELS_INLINE { of[i] = of[i] + more.of[i]; });
        return *this;
    }
};

/// The sum of `parts` parts before `end`, at most `most`, in fours. `block` sums a block, called in the same way.
template <class Sum, int most, class Block>
[[gnu::always_inline]] inline Sum sum_in_fours(int end, int parts, const Block& block) {
    if constexpr (most == block_parts) {
        return block(end, parts);
    } else {
        Sum sum{};
        for (; parts > 0; parts -= most / 4, end -= most / 4)
            sum += sum_in_fours<Sum, most / 4>(end, std::min(parts, most / 4), block);
        return sum;
    }
}

/// The sum of a segment.
template <class Sum, class Block>
[[gnu::always_inline]] inline Sum sum_of_blocks(int parts, const Block& block) {
    constexpr int most = 64 * block_parts;
    return parts <= block_parts ? block(parts, parts) : sum_in_fours<Sum, most>(parts, parts, block);
}

/// The sum that real parts of taps make and the one that imaginary parts make, which is turned by i.
template <class V>
[[gnu::always_inline]] inline V complex_sum(V direct, V turned) {
    V sign;
    for (int lane = 0; lane < lanes<V>; ++lane) sign[lane] = lane % 2 == 0 ? -1 : 1;
    return fma(sign, shuffle<[](int lane) { return lane ^ 1; }>(turned, turned), direct);
}

// Strips

/// The blocks of a strip of outputs: of complex taps two sums, of their real and of their imaginary parts.
template <bool complex, int Vectors>
struct StripBlocks {
    static constexpr int width = complex ? 2 : 1;
    using V = Vec<Kel64f>;
    using Sum = Several<V, width * Vectors>;

    const Kel64f* line;
    const Kel64f* taps;

    [[gnu::always_inline]] Sum operator()(int end, int parts) const {
        Sum sum{};
        KELS_ROLLED
        for (int place = 0; place < places / 2; place += 2 * width) {
            Sum neighbours = both_halves(place, end, parts);
            neighbours += both_halves(place + width, end, parts);
            sum += neighbours;
        }
        return sum;
    }

private:
    [[gnu::always_inline]] Sum both_halves(int place, int end, int parts) const {
        Sum sum = chain(place, end, parts);
        sum += chain(place + places / 2, end, parts);
        return sum;
    }

    [[gnu::always_inline]] Sum chain(int place, int end, int parts) const {
        const int newest = end - places + place;
        Sum sum{};
        if (parts == block_parts) {
            add_rows<block_rows>(newest, sum);
        } else {
            add_up_to<block_rows - 1>(parts / places, newest, sum);
            if (place < parts % places) add_rows<1>(end - parts + place, sum);
        }
        return sum;
    }

    template <int Most>
    [[gnu::always_inline]] void add_up_to(int rows, int newest, Sum& sum) const {
        unrolled<Most>([&](auto less) KELS_INLINE {
            constexpr int all = Most - less;
            if (rows == all) add_rows<all>(newest, sum);
        });
    }

    /// Rows from the newest on. They share their loads: what one of them reads for an output, the next reads for one
    /// further on.
    template <int Rows>
    [[gnu::always_inline]] void add_rows(int newest, Sum& sum) const {
        constexpr int apart = places / lanes<V>, loads = (Rows - 1) * apart + Vectors;
        const int oldest = newest - (Rows - 1) * places;
        V tap[Rows][width];
        unrolled<Rows>([&](auto r) KELS_INLINE {
            unrolled<width>([&](auto part) KELS_INLINE { tap[r][part] = splat<V>(taps[newest - r * places + part]); });
        });
        unrolled<loads>([&](auto passed) KELS_INLINE {
            constexpr int m = loads - 1 - passed;
            const V x = load<V>(line + oldest + m * lanes<V>);
            unrolled<Rows>([&](auto r) KELS_INLINE {
                constexpr int v = m - (Rows - 1 - r) * apart;
                if constexpr (v >= 0 && v < Vectors)
                    unrolled<width>([&](auto part) KELS_INLINE {
                        V& s = sum.of[v * width + part];
                        s = fma(tap[r][part], x, s);
                    });
            });
        });
    }
};

/// Adds a segment of `count` parts of taps to a strip of outputs.
template <bool complex, int Vectors>
[[gnu::noinline]] void add_strip(const Kel64f* line, const Kel64f* taps, int count, Kel64f* total) {
    using Blocks = StripBlocks<complex, Vectors>;
    using V = typename Blocks::V;
    const auto sums = sum_of_blocks<typename Blocks::Sum>(count, Blocks{line, taps});
    unrolled<Vectors>([&](auto v) KELS_INLINE {
        V sum = sums.of[v * Blocks::width];
        if constexpr (complex) sum = complex_sum(sum, sums.of[2 * v + 1]);
        store(total + v * lanes<V>, load<V>(total + v * lanes<V>) + sum);
    });
}

/// Strips as wide as the registers hold, and one for the rest. What a vector reads and writes behind the last output is
/// slack.
template <bool complex>
void RealSums<complex>::add_strips(const Line* line, const Coefficient* taps, int count, Total* total, int outputs,
                                   int /*pass*/) {
    using V = Vec<Kel64f>;
    int vectors = (outputs + lanes<V> - 1) / lanes<V>;
    for (; vectors >= widest; vectors -= widest, line += widest * lanes<V>, total += widest * lanes<V>)
        add_strip<complex, widest>(line, taps, count * width, total);
    unrolled<widest>([&](auto rest) KELS_INLINE {
        if constexpr (rest > 0)
            if (vectors == rest) add_strip<complex, rest>(line, taps, count * width, total);
    });
}

// One output

/// Lanes from `wanted` on become zeros, to the bit.
template <class V>
[[gnu::always_inline]] inline V first_lanes(int wanted, V a) {
    using Bits = Vec<Kel64s, lanes<V>>;
    Bits index;
    for (int lane = 0; lane < lanes<V>; ++lane) index[lane] = lane;
    const auto kept = index < splat<Bits>(wanted);
    return bits_as<V>(bits_as<Bits>(a) & (Bits)kept);
}

/// The second half onto the first, then neighbours onto neighbours.
template <int width>
[[gnu::always_inline]] inline Vec<Kel64f, width> sum_of_chains(Vec<Kel64f, places> chains) {
    const auto four = half<0>(chains) + half<1>(chains);
    if constexpr (width == 2)
        return half<0>(four) + half<1>(four);
    else {
        const auto pairs = four + shuffle<[](int i) { return i ^ 1; }>(four, four);
        return half<0>(half<0>(pairs)) + half<0>(half<1>(pairs));
    }
}

/// Samples whose stores may still be on their way to the cache: a wide load would wait for them.
template <class V, class X>
[[gnu::always_inline]] inline V loaded_one_by_one(const X* x) {
    V v{};
    unrolled<lanes<V>>([&](auto index) KELS_INLINE {
        constexpr int lane = index;
        if constexpr (std::is_integral_v<X>) {
            v[lane] = loaded_alone(x[lane]);
        } else {
            X one = x[lane];
            asm("" : "+x"(one));
            v[lane] = one;
        }
    });
    return v;
}

/// The blocks of one output, the chains of each side by side.
template <int width, bool fresh, class X, class Taps>
struct OutputBlocks {
    using V = Vec<Kel64f, places>;
    using Sum = Several<Vec<Kel64f, width>, width>;

    const X* x;
    const Taps& taps;
    int count; ///< parts

    [[gnu::always_inline]] Sum operator()(int end, int parts) const {
        Several<V, width> chains{};
        const int whole = parts / places, rest = parts % places;
        if (parts == block_parts) {
            unrolled<block_rows>([&](auto r) KELS_INLINE { add_row(end, r, chains); });
        } else {
            unrolled<block_rows - 1>([&](auto r) KELS_INLINE {
                if (r < whole) add_row(end, r, chains);
            });
            if (const int oldest = end - parts; rest > 0)
                add(first_lanes(rest, convert<Kel64f>(load<Vec<X, places>>(x + oldest))),
                    first_lanes(rest, taps.template at<V>(oldest)), chains);
        }
        Sum sum;
        unrolled<width>([&](auto i) KELS_INLINE { sum.of[i] = sum_of_chains<width>(chains.of[i]); });
        return sum;
    }

private:
    [[gnu::always_inline]] void add_row(int end, int r, Several<V, width>& chains) const {
        const int at = end - (r + 1) * places;
        const V in = fresh && r == 0 && end == count ? loaded_one_by_one<V>(x + at)
                                                     : convert<Kel64f>(load<Vec<X, places>>(x + at));
        add(in, taps.template at<V>(at), chains);
    }

    [[gnu::always_inline]] static void add(V in, V h, Several<V, width>& chains) {
        if constexpr (width == 1) {
            chains.of[0] = fma(h, in, chains.of[0]);
        } else {
            chains.of[0] = fma(shuffle<[](int lane) { return lane & ~1; }>(h, h), in, chains.of[0]);
            chains.of[1] = fma(shuffle<[](int lane) { return lane | 1; }>(h, h), in, chains.of[1]);
        }
    }
};

/// Less than a row: every product is a chain, and those of the second half are few.
template <int width, class X, class Taps>
[[gnu::always_inline]] inline auto sum_of_few(const X* x, const Taps& taps, int count) {
    Kel64f product[width][places] = {};
    unrolled<places>([&](auto i) KELS_INLINE {
        if (i >= count) return;
        const Kel64f in = static_cast<Kel64f>(x[i]);
        if constexpr (width == 1) {
            product[0][i] = taps.template at<Kel64f>(i) * in;
        } else {
            const auto h = taps.template at<Vec<Kel64f, 2>>(i / 2 * 2);
            product[0][i] = h[0] * in;
            product[1][i] = h[1] * in;
        }
    });
    typename OutputBlocks<width, false, X, Taps>::Sum sum;
    unrolled<width>([&](auto i) KELS_INLINE {
        const auto both = [&](int place) KELS_INLINE { return product[i][place] + product[i][place + places / 2]; };
        if constexpr (width == 1)
            sum.of[i] = (both(0) + both(1)) + (both(2) + both(3));
        else
            sum.of[i] = Vec<Kel64f, 2>{both(0) + both(2), both(1) + both(3)};
    });
    return sum;
}

/// The products of at most a segment.
template <int width, bool fresh, class X, class Taps>
[[gnu::always_inline]] inline std::array<Kel64f, width> short_dot(const X* x, const Taps& taps, int count) {
    using Blocks = OutputBlocks<width, fresh, X, Taps>;
    const int n = count * width;
    const auto sums =
        n < places ? sum_of_few<width>(x, taps, n) : sum_of_blocks<typename Blocks::Sum>(n, Blocks{x, taps, n});
    auto sum = sums.of[0];
    if constexpr (width == 2) sum = complex_sum(sum, sums.of[1]);
    std::array<Kel64f, width> parts;
    store(parts.data(), sum);
    return parts;
}

/// Adds the sum of a segment to those before it, and its rounding error to theirs.
[[gnu::always_inline]] inline void add_segment(Kel64f& total, Kel64f& errors, Kel64f more) {
    const Kel64f sum = total + more;
    errors += sum_error(total, more, sum);
    total = sum;
}

/// What is not finite has no error.
[[gnu::always_inline]] inline Kel64f with_error(Kel64f total, Kel64f errors) {
    const Kel64f sum = total + errors;
    return sum - sum == 0 ? sum : total;
}

/// Sums start from +0.
template <std::size_t width>
inline void add_to(Kel64f* total, const std::array<Kel64f, width>& more) {
    for (std::size_t part = 0; part < width; ++part) total[part] += more[part];
}

template <bool complex>
template <class X, class Taps>
auto RealSums<complex>::dot_of_fresh(const X* x, Taps taps, int count) -> Sum {
    Sum total{};
    if (count <= segment) {
        add_to(total.data(), short_dot<width, true>(x, taps, count));
        return total;
    }
    Sum errors{};
    const auto add = [&](const Sum& more) {
        for (int part = 0; part < width; ++part) add_segment(total[part], errors[part], more[part]);
    };
    for (; count > segment; count -= segment, x += segment * width, taps = taps.from(segment * width))
        add(short_dot<width, false>(x, taps, segment));
    add(short_dot<width, true>(x, taps, count));
    for (int part = 0; part < width; ++part) total[part] = with_error(total[part], errors[part]);
    return total;
}

/// Dot products whose windows are one sample apart: strips, started from zero as the sum of one segment is.
template <bool complex>
void add_neighbours(const Kel64f* x, const Kel64f* taps, int count, int dots, Kel64f* total,
                    std::ptrdiff_t total_step) {
    constexpr int width = RealSums<complex>::width, most = 512;
    for (int done; dots > 0; dots -= done, x += done * width, total += done * total_step * width) {
        done = std::min(dots, most / width);
        alignas(64) Kel64f sums[most];
        std::fill_n(sums, (done * width + places - 1) / places * places, 0.0); // whole vectors
        RealSums<complex>::add_strips(x, taps, count, sums, done * width, 0);
        for (int i = 0; i < done * width; ++i) total[i / width * total_step * width + i % width] += sums[i];
    }
}

template <bool complex>
void RealSums<complex>::add_dots(const Line* x, std::ptrdiff_t step, const Coefficient* taps, int count, int dots,
                                 Total* total, std::ptrdiff_t total_step, int /*pass*/) {
    constexpr int least_strip = 12;
    if (step == 1 && dots >= least_strip) return add_neighbours<complex>(x, taps, count, dots, total, total_step);
    for (int i = 0; i < dots; ++i)
        add_to(total + i * total_step * width, short_dot<width, false>(x + i * step * width, StoredTaps{taps}, count));
}

} // namespace kels
