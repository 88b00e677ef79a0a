// Medians of short windows: networks of comparisons over whole vectors, the neighbouring windows in lanes.
//
// Windows share what they sort. The samples from i on, for every i of a tile, are brought in order in runs of 2, 4, 8,
// and those of h out of these, each by one merge for all the windows that it is part of. A window of 2 h + 1 samples is
// two runs of h and a sample; of the two runs together only the two in the middle are wanted, and the compiler drops
// what leads to the others. The merges are K. E. Batcher's, which need no power of two.
//
// A step keeps both values whatever they are, NaNs and zeros of both signs too: none is lost or doubled.
#pragma once

#include "frame/simd.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

namespace kels {

inline constexpr int longest_network = 31;

/// Brings two values in order.
template <class V>
[[gnu::always_inline]] inline void exchange(V& low, V& high) {
    const V a = low, b = high;
    low = a < b ? a : b;
    high = b > a ? b : a;
}

template <class V, std::size_t Count>
using Run = std::array<V, Count>;

/// Every other one of a run, from the first or the second on.
template <int First, class V, std::size_t Count>
[[gnu::always_inline]] inline auto every_other(const Run<V, Count>& run) {
    constexpr int count = (static_cast<int>(Count) + 1 - First) / 2;
    Run<V, count> some;
    unrolled<count>([&](auto i) KELS_INLINE { some[i] = run[2 * i + First]; });
    return some;
}

/// Two runs as one.
template <class V, std::size_t A, std::size_t B>
[[gnu::always_inline]] inline Run<V, A + B> merged(const Run<V, A>& a, const Run<V, B>& b) {
    Run<V, A + B> all;
    if constexpr (B == 0) {
        all = a;
    } else if constexpr (A == 0) {
        all = b;
    } else if constexpr (A + B == 2) {
        all = {a[0], b[0]};
        exchange(all[0], all[1]);
    } else {
        const auto even = merged(every_other<0>(a), every_other<0>(b));
        const auto odd = merged(every_other<1>(a), every_other<1>(b));
        constexpr int evens = static_cast<int>(even.size()), odds = static_cast<int>(odd.size());
        constexpr int pairs = std::min(evens - 1, odds);
        all[0] = even[0];
        unrolled<pairs>([&](auto i) KELS_INLINE {
            all[2 * i + 1] = odd[i];
            all[2 * i + 2] = even[i + 1];
            exchange(all[2 * i + 1], all[2 * i + 2]);
        });
        if constexpr (odds > pairs) all[A + B - 1] = odd[pairs];
        if constexpr (evens > pairs + 1) all[A + B - 1] = even[pairs + 1];
    }
    return all;
}

/// The runs of all starts in a tile: their first samples, then their second ones.
template <class T, int Count, int row>
struct RunsOfTile {
    using V = Vec<T>;
    alignas(64) T sample[Count][row];

    [[gnu::always_inline]] Run<V, Count> at(int i) const {
        Run<V, Count> run;
        unrolled<Count>([&](auto k) KELS_INLINE { run[k] = load<V>(sample[k] + i); });
        return run;
    }
    [[gnu::always_inline]] void put(int i, const Run<V, Count>& run) {
        unrolled<Count>([&](auto k) KELS_INLINE { store(sample[k] + i, run[k]); });
    }
};

/// Runs of one are the samples.
template <class T, int row>
struct RunsOfTile<T, 1, row> {
    using V = Vec<T>;
    const T* sample;

    [[gnu::always_inline]] Run<V, 1> at(int i) const { return {load<V>(sample + i)}; }
};

/// Tiles of windows of 2 half + 1 samples. They are as long as the cache allows: what a pass has stored shall have left
/// the store buffer when the next one loads it, a few samples further on.
template <class T, int half>
struct Networks {
    using V = Vec<T>;
    static constexpr int most_outputs = (half < 4 ? 64 : half < 8 ? 32 : 16) * lanes<V>;
    /// More starts are those of the last window, and what whole vectors of them need.
    static constexpr int slack = (longest_network / lanes<V> + 3) * lanes<V>;
    static constexpr int row = most_outputs + slack;

    template <int Count>
    using Runs = RunsOfTile<T, Count, row>;

    /// The medians of in[i] to in[i + 2 half] for i below `count`. Reads less than `slack` behind in[count].
    [[gnu::noinline]] static void medians(const T* in, T* out, int count) {
        Runs<half> runs;
        sort<half>(in, runs, count + half);
        int i = 0;
        const auto median = [&]() KELS_INLINE {
            const auto both = merged(runs.at(i), runs.at(i + half));
            const V low = both[half - 1], high = both[half], last = load<V>(in + i + 2 * half);
            const V below = last < high ? last : high;
            return below > low ? below : low;
        };
        for (; i + lanes<V> <= count; i += lanes<V>) store(out + i, median());
        if (i == count) return;
        const V rest = median();
        std::memcpy(out + i, &rest, static_cast<std::size_t>(count - i) * sizeof(T));
    }

private:
    /// Runs of Count for the starts below `starts`, out of the two largest ones that make it.
    template <int Count>
    [[gnu::always_inline]] static void sort(const T* in, Runs<Count>& runs, int starts) {
        if constexpr (Count == 1) {
            runs.sample = in;
        } else {
            constexpr int first = static_cast<int>(std::bit_floor(static_cast<unsigned>(Count - 1)));
            constexpr int second = Count - first;
            Runs<first> firsts;
            sort<first>(in, firsts, starts + second);
            if constexpr (first == second) {
                merge(firsts, firsts, runs, starts);
            } else {
                Runs<second> seconds;
                sort<second>(in, seconds, starts + first);
                merge(firsts, seconds, runs, starts);
            }
        }
    }

    template <int A, int B>
    [[gnu::always_inline]] static void merge(const Runs<A>& firsts, const Runs<B>& seconds, Runs<A + B>& runs,
                                             int starts) {
        KELS_ROLLED
        for (int i = 0; i < starts; i += lanes<V>) runs.put(i, merged(firsts.at(i), seconds.at(i + A)));
    }
};

} // namespace kels
