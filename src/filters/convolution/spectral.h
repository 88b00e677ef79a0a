// Lags by transforms. There are three ways from spectra of N points to the lags, and the sizes say which is cheapest:
//
//   at once    both vectors as a whole, N so long that the lags that are wanted do not meet others
//   in blocks  the taps as a whole, the results in blocks of N - taps + 1 (overlap-save)
//   in pieces  both vectors in pieces of N / 2, and the results too. A piece of the line and the next one make one of N
//              points, and of its spectrum every other point has the sign of the second turned; so every piece is
//              transformed once, and the products of spectra are added up by the distance of the pieces (C. M. Rader:
//              An improved algorithm for high speed autocorrelation with applications to spectral estimation, 1970)
//
// The plan is made in the call, and takes as long as some five transforms of its length.
#pragma once

#include "filters/convolution/lags.h"
#include "frame/memory.h"
#include "frame/simd.h"
#include "transforms/fft/functions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace kels {

enum class Way { directly, at_once, in_blocks, in_pieces };

/// How a call is done, and about how many nanoseconds that takes.
struct Method {
    Way way = Way::directly;
    int order = 0;
    double cost = 0;

    void consider(Way other, int other_order, double other_cost) {
        if (other_cost < cost) *this = {other, other_order, other_cost};
    }
};

/// What steps with N points of type T take.
template <class T>
struct Costs {
    static constexpr bool wide = sizeof(Part<T>) == 8, complex = parts<T> == 2;
    double points, plan, product, transform;

    explicit Costs(int order) {
        constexpr double bytes = sizeof(T) / 4.0;
        const int complex_order = complex ? order : order - 1;
        const bool in_cache = complex_order <= (wide ? 11 : 12);
        points = double(std::int64_t{1} << order);
        plan = in_cache ? 300 + (wide ? 3.0 : 2.0) * points : 15000 + 0.2 * bytes * points;
        product = 0.1 * bytes * points;
        transform = ((in_cache ? 0.021 : 0.036) * order + 0.1) * bytes * points;
    }
};

/// The cheapest way by transforms, or by sums if those are cheaper still.
template <class T, class Taps, class Line>
Method cheapest(const Lags<Taps, Line>& lags) {
    const double taps = double(lags.taps.count), results = double(lags.count);
    Method method{Way::directly, 0, 300 + (parts<T> == 2 ? 0.14 : 0.03) * taps * results};
    const double at_once =
        double(std::max({lags.taps.count, lags.line.count, lags.line.count - lags.low, lags.high() + lags.taps.count}));
    for (int order = 5; order <= 30; ++order) {
        const Costs<T> of(order);
        if (of.points >= at_once)
            method.consider(Way::at_once, order, of.plan + of.product + (lags.itself ? 2 : 3) * of.transform);
        if (of.points >= taps) {
            const double blocks = std::ceil(results / (of.points - taps + 1));
            method.consider(Way::in_blocks, order, of.plan + of.transform + blocks * (2 * of.transform + of.product));
        }
        const double pieces = std::ceil(taps / (of.points / 2)), tiles = std::ceil(results / (of.points / 2));
        method.consider(Way::in_pieces, order,
                        of.plan + ((lags.itself ? 1 : 2) * pieces + 2 * tiles) * of.transform +
                            pieces * (tiles + 1) * of.product);
    }
    return method;
}

/// Plan, spectra and the products of them. Spectra of real vectors begin with two real points.
template <class T>
class Spectra {
public:
    using S = Spectral<T>;
    using P = Part<T>;
    static constexpr bool real = parts<T> == 1;

    KelStatus make(int order, std::int64_t arrays) {
        typename S::Plan* made = nullptr;
        if (const KelStatus status = S::make(&made, order, kelFftNormInv, kelHintDefault); status != kelStatusOk)
            return status;
        plan.reset(made);
        points = std::ptrdiff_t{1} << order;
        room = make_owned_product<T>(points, arrays);
        return room ? kelStatusOk : kelStatusNoMemory;
    }

    std::ptrdiff_t length() const { return points; }
    T* array(std::ptrdiff_t i) { return room.get() + i * points; }

    /// The spectrum of `count` samples from `position` on, and silence.
    template <class Vector>
    KelStatus transform(const Vector& x, std::ptrdiff_t position, std::ptrdiff_t count, T* spectrum) {
        x.copy(position, count, reals(spectrum));
        std::fill(spectrum + count, spectrum + points, T{});
        return S::forward(spectrum, spectrum, plan.get(), nullptr);
    }
    KelStatus transform_back(T* spectrum) { return S::inverse(spectrum, spectrum, plan.get(), nullptr); }

    /// to = conj(a) b
    void correlate(const T* a, const T* b, T* to) const { multiply<false>(a, b, to); }
    /// to += conj(a) b
    void add_correlation(const T* a, const T* b, T* to) const { multiply<true>(a, b, to); }

    /// The spectrum of two halves, of those of each: first += +-second.
    void join(T* first, const T* second) const {
        P* to = reals(first);
        each_block_of_points([=](auto width_of, std::ptrdiff_t i) KELS_INLINE {
            using V = Vec<P, width_of>;
            V sign;
            for (int lane = 0; lane < lanes<V>; ++lane)
                sign[lane] = lane / 2 % 2 == 0 || (real && i == 0 && lane == 1) ? 1 : -1;
            store(to + i, fma(sign, load<V>(reals(second) + i), load<V>(to + i)));
        });
    }

private:
    OwnedPlan<T> plan;
    Owned<T> room;
    std::ptrdiff_t points = 0;

    /// At least 32 points.
    template <class Body>
    void each_block_of_points(const Body& body) const {
        constexpr std::integral_constant<int, std::max(max_lanes<P>, 4)> wide;
        for (std::ptrdiff_t i = 0; i < points * parts<T>; i += wide) body(wide, i);
    }

    /// to = conj(a) b, or added to it. The first two values of a real spectrum are no pair.
    template <bool add>
    void multiply(const T* pa, const T* pb, T* pto) const {
        const P *a = reals(pa), *b = reals(pb);
        P* to = reals(pto);
        P first[2] = {};
        if constexpr (real)
            for (int i = 0; i < 2; ++i) first[i] = a[i] * b[i] + (add ? to[i] : 0);
        each_block_of_points([=](auto width_of, std::ptrdiff_t i) KELS_INLINE {
            using V = Vec<P, width_of>;
            const V x = load<V>(a + i), y = load<V>(b + i);
            const V re = shuffle<[](int lane) { return lane & ~1; }>(x, x);
            const V im = negated_every_other<1>(shuffle<[](int lane) { return lane | 1; }>(x, x));
            const V turned = shuffle<[](int lane) { return lane ^ 1; }>(y, y);
            V sum = re * y;
            if constexpr (add) sum = fma(re, y, load<V>(to + i));
            store(to + i, fma(im, turned, sum));
        });
        if constexpr (real) std::copy_n(first, 2, to);
    }
};

template <class T, class Taps, class Line>
KelStatus correlate_at_once(const Lags<Taps, Line>& lags, Spectra<T>& spectra, T* dst) {
    T *const a = spectra.array(0), *const b = lags.itself ? a : spectra.array(1);
    KelStatus status = spectra.transform(lags.taps, 0, lags.taps.count, a);
    if (status == kelStatusOk && a != b) status = spectra.transform(lags.line, 0, lags.line.count, b);
    if (status != kelStatusOk) return status;
    spectra.correlate(a, b, a);
    status = spectra.transform_back(a);
    const std::ptrdiff_t negative = std::clamp<std::ptrdiff_t>(-lags.low, 0, lags.count);
    std::copy_n(a + spectra.length() + lags.low, negative, dst);
    std::copy_n(a + lags.low + negative, lags.count - negative, dst + negative);
    return status;
}

template <class T, class Taps, class Line>
KelStatus correlate_in_blocks(const Lags<Taps, Line>& lags, Spectra<T>& spectra, T* dst) {
    T *const a = spectra.array(0), *const block = spectra.array(1);
    KelStatus status = spectra.transform(lags.taps, 0, lags.taps.count, a);
    const std::ptrdiff_t fresh = spectra.length() - lags.taps.count + 1;
    for (std::ptrdiff_t first = 0; first < lags.count && status == kelStatusOk; first += fresh) {
        status = spectra.transform(lags.line, lags.low + first, spectra.length(), block);
        spectra.correlate(a, block, block);
        if (status == kelStatusOk) status = spectra.transform_back(block);
        std::copy_n(block, std::min(fresh, lags.count - first), dst + first);
    }
    return status;
}

/// Tiles of the results, and pieces of both vectors, of half the points.
template <class Taps, class Line>
struct Pieces {
    std::ptrdiff_t half, of_taps, tiles;

    Pieces(const Lags<Taps, Line>& lags, int order)
        : half(std::ptrdiff_t{1} << (order - 1)), of_taps((lags.taps.count + half - 1) / half),
          tiles((lags.count + half - 1) / half) {}

    /// Sums of products by the distance of the pieces, the pieces of the line that one of the taps meets, and that one.
    std::int64_t arrays() const { return 2 * std::int64_t{tiles} + 3; }
};

template <class T, class Taps, class Line>
KelStatus correlate_in_pieces(const Lags<Taps, Line>& lags, const Pieces<Taps, Line>& pieces, Spectra<T>& spectra,
                              T* dst) {
    const std::ptrdiff_t half = pieces.half, distances = pieces.tiles + 1;
    const auto sum = [&](std::ptrdiff_t distance) { return spectra.array(distance); };
    const auto piece = [&](std::ptrdiff_t i) { return spectra.array(distances + i % distances); };
    T* const of_taps = spectra.array(2 * distances);
    const auto silent = [&](std::ptrdiff_t i) {
        const std::ptrdiff_t at = lags.low + i * half;
        return at >= lags.line.count || at + half <= 0;
    };
    std::fill_n(sum(0), distances * spectra.length(), T{});
    KelStatus status = kelStatusOk;
    const auto take = [&](std::ptrdiff_t i) {
        if (status == kelStatusOk && !silent(i))
            status = spectra.transform(lags.line, lags.low + i * half, half, piece(i));
    };
    for (std::ptrdiff_t i = 0; i < pieces.tiles; ++i) take(i);
    for (std::ptrdiff_t i = 0; i < pieces.of_taps && status == kelStatusOk; ++i) {
        take(i + pieces.tiles);
        const T* a = lags.itself ? piece(i) : of_taps;
        if (!lags.itself && status == kelStatusOk)
            status = spectra.transform(lags.taps, i * half, std::min(half, lags.taps.count - i * half), of_taps);
        for (std::ptrdiff_t distance = 0; distance < distances; ++distance)
            if (!silent(i + distance)) spectra.add_correlation(a, piece(i + distance), sum(distance));
    }
    for (std::ptrdiff_t tile = 0; tile < pieces.tiles && status == kelStatusOk; ++tile) {
        spectra.join(sum(tile), sum(tile + 1));
        status = spectra.transform_back(sum(tile));
        std::copy_n(sum(tile), std::min(half, lags.count - tile * half), dst + tile * half);
    }
    return status;
}

/// Lags that are worth a transform.
template <class T, class Taps, class Line>
KelStatus correlate_by_transforms(const Lags<Taps, Line>& lags, const Method& method, T* dst) {
    const Pieces pieces(lags, method.order);
    Spectra<T> spectra;
    const KelStatus made = spectra.make(method.order, method.way == Way::in_pieces ? pieces.arrays() : 2);
    if (made != kelStatusOk) return made;
    switch (method.way) {
    case Way::at_once:
        return correlate_at_once(lags, spectra, dst);
    case Way::in_blocks:
        return correlate_in_blocks(lags, spectra, dst);
    default:
        return correlate_in_pieces(lags, pieces, spectra, dst);
    }
}

} // namespace kels
