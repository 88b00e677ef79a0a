// Short transforms of any length as plain sums over pairs of points: with h = (N - 1) / 2 and for k = 0 to N / 2,
//
//   even(k) = x[0] (+ (-1)^k x[N/2]) + sum over j of (x[j] + x[N-j]) cos(2 pi jk/N)
//   odd(k)  =                          sum over j of (x[j] - x[N-j]) sin(2 pi jk/N),   j from 1 to h,
//
// X[k] and X[N-k] are even(k) -+ i odd(k). Neighbouring k lie side by side in the lanes. A quarter of the products of
// the definition is left, and there is nothing else to do: up to lengths of some hundreds this is ahead of longer ways.
#pragma once

#include "frame/tables.h"
#include "transforms/dft/ends.h"
#include "transforms/roots.h"

#include <algorithm>
#include <cstring>

namespace kels {

/// Lengths up to this one may be direct.
inline constexpr std::ptrdiff_t longest_direct = 256;

template <class T>
struct DirectTransform {
    std::ptrdiff_t length = 0, pairs = 0, results = 0; ///< N, h, and N / 2 + 1
    int lanes = 0, blocks = 0;                         ///< vectors that the indices k take
    const T* table = nullptr; ///< for every block, for every j: a vector of cosines and one of sines
};

/// Lanes of the sums: a vector that holds all of them, or the widest.
template <class T, class F>
void with_direct_lanes(std::ptrdiff_t results, F&& f) {
    constexpr int V = max_lanes<T>, least = 16 / static_cast<int>(sizeof(T));
    if constexpr (V / 4 >= least)
        if (results <= V / 4) return f(std::integral_constant<int, V / 4>{});
    if constexpr (V / 2 >= least)
        if (results <= V / 2) return f(std::integral_constant<int, V / 2>{});
    f(std::integral_constant<int, V>{});
}

template <class T>
void lay_direct(DirectTransform<T>& t, std::ptrdiff_t length, TableSpace& space) {
    t.length = length;
    t.pairs = (length - 1) / 2;
    t.results = length / 2 + 1;
    with_direct_lanes<T>(t.results, [&](auto lanes) { t.lanes = lanes; });
    t.blocks = static_cast<int>((t.results + t.lanes - 1) / t.lanes);
    T* roots = space.take<T>(static_cast<std::size_t>(2 * length));
    T* table = space.take<T>(static_cast<std::size_t>(2 * t.pairs * t.lanes * t.blocks));
    t.table = table;
    if (!table) return;
    const Circle circle(static_cast<std::size_t>(length));
    circle.write(roots, static_cast<std::size_t>(length), 0, 1);
    for (std::ptrdiff_t first = 0; first < t.results; first += t.lanes)
        for (std::ptrdiff_t j = 1; j <= t.pairs; ++j, table += 2 * t.lanes) {
            std::ptrdiff_t exponent = j * first % length;
            for (int lane = 0; lane < t.lanes; ++lane) {
                table[lane] = roots[2 * exponent];
                table[t.lanes + lane] = -roots[2 * exponent + 1];
                exponent += j;
                if (exponent >= length) exponent -= length;
            }
        }
}

/// The pairs of a sequence of real (1 part) or complex (2 parts) values.
template <class T, int Parts>
struct Pairs {
    static constexpr std::ptrdiff_t most = longest_direct / 2;
    T sums[Parts][most], differences[Parts][most];
    T zeroth[Parts], middle[Parts]; ///< middle: of an even length, else 0
};

/// Reads value(j, part), each once.
template <class T, int Parts, class F>
[[gnu::always_inline]] inline Pairs<T, Parts> pairs_of(std::ptrdiff_t length, F&& value) {
    Pairs<T, Parts> x;
    unrolled<Parts>([&](auto part) KELS_INLINE {
        x.zeroth[part] = value(0, part);
        x.middle[part] = length % 2 == 0 ? value(length / 2, part) : T(0);
    });
    for (std::ptrdiff_t j = 1; j <= (length - 1) / 2; ++j)
        unrolled<Parts>([&](auto part) KELS_INLINE {
            const T a = value(j, part), b = value(length - j, part);
            x.sums[part][j - 1] = a + b;
            x.differences[part][j - 1] = a - b;
        });
    return x;
}

/// The sums of `Blocks` neighbouring blocks from `block` on, given to out(block, even, odd).
template <int Blocks, class V, int Parts, class T, class Out>
[[gnu::always_inline]] inline void direct_blocks(const DirectTransform<T>& t, const Pairs<T, Parts>& x, int block,
                                                 Out&& out) {
    constexpr int L = lanes<V>;
    V even[Blocks][Parts], odd[Blocks][Parts];
    unrolled<Blocks>([&](auto b) KELS_INLINE {
        unrolled<Parts>([&](auto part) KELS_INLINE {
            even[b][part] = splat<V>(x.zeroth[part]) + alternate<V>(x.middle[part], -x.middle[part]);
            odd[b][part] = V{};
        });
    });
    const T* table = t.table + 2 * L * t.pairs * block;
    for (std::ptrdiff_t j = 0; j < t.pairs; ++j, table += 2 * L)
        unrolled<Blocks>([&](auto b) KELS_INLINE {
            const V c = load<V>(table + 2 * L * t.pairs * b), s = load<V>(table + 2 * L * t.pairs * b + L);
            unrolled<Parts>([&](auto part) KELS_INLINE {
                even[b][part] = fma(c, splat<V>(x.sums[part][j]), even[b][part]);
                odd[b][part] = fma(s, splat<V>(x.differences[part][j]), odd[b][part]);
            });
        });
    unrolled<Blocks>([&](auto b) KELS_INLINE { out(block + b, even[b], odd[b]); });
}

template <class V, int Parts, class T, class Out>
[[gnu::always_inline]] inline void direct_sums(const DirectTransform<T>& t, const Pairs<T, Parts>& x, Out&& out) {
    constexpr int together = 4 / Parts; // chains of sums that run side by side
    int block = 0;
    for (; block + together <= t.blocks; block += together) direct_blocks<together, V>(t, x, block, out);
    for (; block < t.blocks; ++block) direct_blocks<1, V>(t, x, block, out);
}

/// Two runs of results, k from 0 on and N - k up to N, with the room that whole blocks take.
template <class T, int Width>
struct TwoRuns {
    static constexpr std::ptrdiff_t room = Width * (longest_direct / 2 + 1 + max_lanes<T>);
    T rising[room], falling[room];

    template <class R>
    [[gnu::always_inline]] void put(int block, R results, R mirror) {
        store(rising + block * lanes<R>, results);
        store(falling + room - (block + 1) * lanes<R>, mirror);
    }
    /// From N - h on.
    const T* upper(std::ptrdiff_t pairs) const { return falling + room - Width * (pairs + 1); }
};

/// The transform of a source to a sink, which may be the same memory.
template <class T, class Source, class Sink>
void run_direct(const DirectTransform<T>& t, Source source, Sink sink, bool inverse, T factor) {
    const std::ptrdiff_t n = t.length;
    const auto x = pairs_of<T, 2>(n, [&](std::ptrdiff_t j, int part) KELS_INLINE {
        return source.template read<PointVec<T, 1>>(inverse && j > 0 ? n - j : j)[part];
    });
    TwoRuns<T, 2> runs;
    with_direct_lanes<T>(t.results, [&]<int L>(std::integral_constant<int, L>) {
        using V = Vec<T, L>;
        direct_sums<V>(t, x, [&](int block, const V* even, const V* odd) KELS_INLINE {
            const V f = splat<V>(factor);
            const V re = (even[0] + odd[1]) * f, im = (even[1] - odd[0]) * f;
            const V mirror_re = (even[0] - odd[1]) * f, mirror_im = (even[1] + odd[0]) * f;
            runs.put(block, joined_parts(re, im), joined_parts(reverse(mirror_re), reverse(mirror_im)));
        });
    });
    copy_points(runs.rising, t.results, sink, 0);
    copy_points(runs.upper(t.pairs), t.pairs, sink, n - t.pairs);
}

/// Real samples to their bins: 0 and N / 2, if there is one, at `zeroth` and `middle`, bin k from 1 at bins + 2k.
template <class T>
void run_direct_forward(const DirectTransform<T>& t, const T* src, T* zeroth, T* bins, T* middle, T factor) {
    const auto x = pairs_of<T, 1>(t.length, [&](std::ptrdiff_t j, int) KELS_INLINE { return src[j]; });
    TwoRuns<T, 2> runs;
    with_direct_lanes<T>(t.results, [&]<int L>(std::integral_constant<int, L>) {
        using V = Vec<T, L>;
        direct_sums<V>(t, x, [&](int block, const V* even, const V* odd) KELS_INLINE {
            const V f = splat<V>(factor);
            store(runs.rising + 2 * L * block, joined_parts(*even * f, -*odd * f));
        });
    });
    *zeroth = runs.rising[0];
    if (t.length % 2 == 0) *middle = runs.rising[t.length];
    std::memcpy(bins + 2, runs.rising + 2, static_cast<std::size_t>(2 * t.pairs) * sizeof(T));
}

/// And back.
template <class T>
void run_direct_inverse(const DirectTransform<T>& t, T zeroth, const T* bins, T middle, T* dst, T factor) {
    Pairs<T, 1> x; // a bin and its conjugate
    x.zeroth[0] = zeroth;
    x.middle[0] = middle;
    for (std::ptrdiff_t j = 0; j < t.pairs; ++j) {
        x.sums[0][j] = 2 * bins[2 * j + 2];
        x.differences[0][j] = 2 * bins[2 * j + 3];
    }
    TwoRuns<T, 1> runs;
    with_direct_lanes<T>(t.results, [&]<int L>(std::integral_constant<int, L>) {
        using V = Vec<T, L>;
        direct_sums<V>(t, x, [&](int block, const V* even, const V* odd) KELS_INLINE {
            const V f = splat<V>(factor);
            runs.put(block, (*even - *odd) * f, reverse((*even + *odd) * f));
        });
    });
    std::memcpy(dst, runs.rising, static_cast<std::size_t>(t.results) * sizeof(T));
    std::memcpy(dst + t.length - t.pairs, runs.upper(t.pairs), static_cast<std::size_t>(t.pairs) * sizeof(T));
}

} // namespace kels
