// Median filters: the frame, and the choice of the method by the mask. Both methods work tile by tile from a copy of
// the samples that the windows see, so that results may go where the samples were.

#include "kels/median.h"

#include "filters/median/networks.h"
#include "filters/median/ranks.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kels {
namespace {

/// A vector whose first and last samples go on at both ends.
template <class T>
struct Extended {
    const T* x;
    std::int64_t n;

    /// write(i, x) for samples from..from + count - 1, numbered from 0.
    template <class Write>
    void each(std::int64_t from, std::int64_t count, const Write& write) const {
        const std::int64_t end = from + count, begin_real = std::clamp<std::int64_t>(0, from, end);
        const std::int64_t end_real = std::clamp(n, begin_real, end);
        for (std::int64_t i = from; i < begin_real; ++i) write(i - from, x[0]);
        for (std::int64_t i = begin_real; i < end_real; ++i) write(i - from, x[i]);
        for (std::int64_t i = end_real; i < end; ++i) write(i - from, x[n - 1]);
    }
};

/// Tiles whose samples lie in the vector, with room behind, are taken from there, unless results go to the same place.
template <class T, int half>
void filter_by_network(const T* src, T* dst, int n) {
    using Tile = Networks<T, half>;
    alignas(64) T in[Tile::row + longest_network];
    const Extended<T> samples{src, n};
    int first = 1;
    const auto take = [&](int from, int count, int to) {
        samples.each(from, count, [&](std::int64_t i, T x) { in[to + i] = x; });
    };
    const auto filter = [&](int count) {
        take(first + half, count, 2 * half);
        std::fill_n(in + count + 2 * half, Tile::slack - 2 * half, T{});
        Tile::medians(in, dst + first, count);
        std::memmove(in, in + count, 2 * half * sizeof(T));
        first += count;
    };
    take(1 - half, 2 * half, 0);
    if (src != dst && n > 2 * half + Tile::slack) {
        if (half > 1) filter(half - 1);
        for (int count; (count = std::min(Tile::most_outputs, n - first - Tile::slack)) >= lanes<Vec<T>>;
             first += count)
            Tile::medians(src + first - half, dst + first, count);
        take(first - half, 2 * half, 0);
    }
    while (first < n - 1) filter(std::min(Tile::most_outputs, n - 1 - first));
}

template <class T>
using Filter = void (*)(const T*, T*, int);

template <class T>
inline constexpr auto networks = []<int... I>(std::integer_sequence<int, I...>) {
    return std::array<Filter<T>, sizeof...(I)>{filter_by_network<T, I + 1>...};
}
(std::make_integer_sequence<int, longest_network / 2>{});

/// Half a mask that is longer than the vector on both sides is no other than one that just reaches the ends: what it
/// has more are as many samples from either end, and the median lies between those.
template <class T>
KelStatus filter_by_ranks(const T* src, T* dst, std::int64_t n, std::int64_t half) {
    half = std::min(half, n - 1);
    constexpr std::int64_t fewest = 1024;
    const std::int64_t most = std::min(std::max(6 * half, fewest), n - 2);
    RankedTile<T> tile;
    if (!tile.make(most + 2 * half, half)) return kelStatusNoMemory;

    const Extended<T> samples{src, n};
    auto* const line = tile.samples();
    const auto take = [&](std::int64_t from, std::int64_t count, std::int64_t to) {
        samples.each(from, count, [=](std::int64_t i, T x) { line[to + i] = Ordered<T>::key(x); });
    };
    take(1 - half, 2 * half, 0);
    for (std::int64_t first = 1, count; first < n - 1; first += count) {
        count = std::min(most, n - 1 - first);
        take(first + half, count, 2 * half);
        tile.medians(dst + first, static_cast<std::size_t>(count));
        tile.keep_last(static_cast<std::size_t>(count));
    }
    return kelStatusOk;
}

template <class T>
KelStatus filter_median(const T* pSrc, T* pDst, int len, int maskSize) {
    return vector_call({pSrc, pDst}, len, [=] {
        if (maskSize < 1) return kelStatusBadSize;
        const KelStatus status = maskSize % 2 == 0 ? kelStatusEvenMedianMask : kelStatusOk;
        const int half = (maskSize - 1) / 2;
        // Ranks are stored when all of them have memory only.
        const bool by_ranks = half > longest_network / 2 && len > 2;
        if (pSrc != pDst && (by_ranks || half == 0 || len < 3)) {
            std::memcpy(pDst, pSrc, sizeof(T) * static_cast<std::size_t>(len));
        } else {
            pDst[0] = pSrc[0];
            pDst[len - 1] = pSrc[len - 1];
        }
        if (half == 0 || len < 3) return status;
        const DefaultModes modes(std::is_floating_point_v<T>); // denormals are what they are
        if (!by_ranks) {
            networks<T>[static_cast<std::size_t>(half - 1)](pSrc, pDst, len);
            return status;
        }
        const KelStatus filtered = filter_by_ranks(pSrc, pDst, len, half);
        return filtered == kelStatusOk ? status : filtered;
    });
}

} // namespace
} // namespace kels

// clang-format off
extern "C" {
KelStatus kelsFilterMedian_8u   (const Kel8u*  src, Kel8u*  dst, int n, int mask) { return kels::filter_median(src, dst, n, mask); }
KelStatus kelsFilterMedian_16s  (const Kel16s* src, Kel16s* dst, int n, int mask) { return kels::filter_median(src, dst, n, mask); }
KelStatus kelsFilterMedian_32f  (const Kel32f* src, Kel32f* dst, int n, int mask) { return kels::filter_median(src, dst, n, mask); }
KelStatus kelsFilterMedian_64f  (const Kel64f* src, Kel64f* dst, int n, int mask) { return kels::filter_median(src, dst, n, mask); }
KelStatus kelsFilterMedian_8u_I (Kel8u*  x, int n, int mask) { return kels::filter_median(x, x, n, mask); }
KelStatus kelsFilterMedian_16s_I(Kel16s* x, int n, int mask) { return kels::filter_median(x, x, n, mask); }
KelStatus kelsFilterMedian_32f_I(Kel32f* x, int n, int mask) { return kels::filter_median(x, x, n, mask); }
KelStatus kelsFilterMedian_64f_I(Kel64f* x, int n, int mask) { return kels::filter_median(x, x, n, mask); }
}
// clang-format on
