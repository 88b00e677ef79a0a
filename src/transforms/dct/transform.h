// The orthonormal cosine transform of N points, and its inverse, as a real Fourier transform of N points (J. Makhoul):
//
//   v = x[0], x[2], x[4] ... x[5], x[3], x[1] has a spectrum V, and with w[k] = sqrt(2 / N) exp(-i pi k / 2N),
//
//   X[k] - i X[N - k] = w[k] V[k],      X[0] = V[0] / sqrt(N),      X[N/2] = V[N/2] / sqrt(N).
//
// The inverse transform goes back: V[k] = conj(w[k]) / 2 (X[k] - i X[N - k]), and an unnormalised transform gives v.
#pragma once

#include "transforms/dct/plan.h"
#include "transforms/dft/real_transform.h"

#include <numbers>

namespace kels {

/// Values that k from 1 to (N - 1) / 2 takes: w[k], or half of it for the inverse transform.
template <bool inverse, class T>
const T* lay_dct_turns(std::ptrdiff_t n, TableSpace& space) {
    const std::ptrdiff_t pairs = (n - 1) / 2;
    T* table = space.take<T>(static_cast<std::size_t>(2 * pairs));
    const Circle circle(static_cast<std::size_t>(4 * n));
    const double scale = (inverse ? 0.5 : 1) * std::sqrt(2 / static_cast<double>(n));
    for (std::ptrdiff_t k = 1; table && k <= pairs; k += root_lanes) {
        const auto roots = circle.roots<double>(Circle::progression(static_cast<std::size_t>(k), 1));
        const auto scaled = zip(roots.re, roots.im);
        T turns[2 * root_lanes];
        store(turns, convert<T>(scaled * splat<std::remove_const_t<decltype(scaled)>>(scale)));
        std::copy_n(turns, 2 * std::min<std::ptrdiff_t>(root_lanes, pairs - k + 1), table + 2 * k - 2);
    }
    return table;
}

/// Values of work memory: the permuted samples, and what their transform takes.
template <class T>
std::size_t dct_work(const DctPlan<T>& plan) {
    if (!plan.real) return 0;
    return static_cast<std::size_t>(plan.len) + (plan.real->usesFft ? 0 : real_work<T>(*plan.real));
}

/// Sample i of v is sample place(i) of x.
constexpr std::ptrdiff_t place(std::ptrdiff_t i, std::ptrdiff_t n) { return 2 * i < n ? 2 * i : 2 * (n - i) - 1; }

/// Even samples first, then the odd ones backwards.
template <class T>
void permute(const T* x, T* v, std::ptrdiff_t n) {
    constexpr int L = max_lanes<T>;
    using V = Vec<T, L>;
    std::ptrdiff_t i = 0; // pairs of samples
    for (; 2 * (i + L) <= n; i += L) {
        const V a = load<V>(x + 2 * i), b = load<V>(x + 2 * i + L);
        store(v + i, shuffle<[](int lane) { return 2 * lane; }>(a, b));
        store(v + n - i - L, shuffle<[](int lane) { return 2 * (L - lane) - 1; }>(a, b));
    }
    for (; 2 * i < n; ++i) {
        v[i] = x[2 * i];
        if (2 * i + 1 < n) v[n - 1 - i] = x[2 * i + 1];
    }
}

template <class T>
void permute_back(const T* v, T* x, std::ptrdiff_t n) {
    constexpr int L = max_lanes<T>;
    using V = Vec<T, L>;
    std::ptrdiff_t i = 0;
    for (; 2 * (i + L) <= n; i += L) {
        const V even = load<V>(v + i), odd = reverse(load<V>(v + n - i - L));
        store(x + 2 * i, interleave<0>(even, odd));
        store(x + 2 * i + L, interleave<1>(even, odd));
    }
    for (; 2 * i < n; ++i) {
        x[2 * i] = v[i];
        if (2 * i + 1 < n) x[2 * i + 1] = v[n - 1 - i];
    }
}

/// X from V, which stands in another array.
template <class T>
void turn_bins(const DctPlan<T>& plan, Spectrum<const T> v, T* x) {
    const std::ptrdiff_t n = plan.len, pairs = complex_bins(n);
    x[0] = *v.zeroth * plan.scale;
    each_vector<T>(pairs, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i) KELS_INLINE {
        using W = PointVec<T, P>;
        const W z = point_product(load<W>(v.bins + 2 + 2 * i), load<W>(plan.turns + 2 * i));
        store(x + 1 + i, real_parts(z));
        store(x + n - i - P, reverse(-imaginary_parts(z)));
    });
    if (v.middle) x[n / 2] = *v.middle * plan.scale;
}

template <class T>
void turn_back(const DctPlan<T>& plan, const T* x, Spectrum<T> v) {
    const std::ptrdiff_t n = plan.len, pairs = complex_bins(n);
    *v.zeroth = x[0] * plan.scale;
    if (v.middle) *v.middle = x[n / 2] * plan.scale;
    each_vector<T>(pairs, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i) KELS_INLINE {
        using W = PointVec<T, P>;
        using H = Vec<T, P>;
        const W z = joined_parts(load<H>(x + 1 + i), -reverse(load<H>(x + n - i - P)));
        store(v.bins + 2 + 2 * i, conjugate_product(z, load<W>(plan.turns + 2 * i)));
    });
}

/// The ends of an odd length's convolution, which leaves no room for a permuted copy.
template <class T>
struct PermutedSource {
    const T* x;
    std::ptrdiff_t n;

    template <class V>
    [[gnu::always_inline]] V read(std::ptrdiff_t i) const {
        T z[lanes<V>] = {};
        for (int p = 0; p < points_in<V>; ++p) z[2 * p] = x[place(i + p, n)];
        return load<V>(z);
    }
};

template <class T>
struct TurnedSink {
    const DctPlan<T>& plan;
    T* x;

    template <class V>
    [[gnu::always_inline]] void write(std::ptrdiff_t i, V z) const {
        const std::ptrdiff_t n = plan.len;
        for (int p = 0; p < points_in<V> && 2 * (i + p) < n; ++p) {
            const std::ptrdiff_t k = i + p;
            const T re = z[2 * p], im = z[2 * p + 1];
            if (k == 0) {
                x[0] = re * plan.scale;
            } else {
                const T* w = plan.turns + 2 * k - 2;
                x[k] = re * w[0] - im * w[1];
                x[n - k] = -(re * w[1] + im * w[0]);
            }
        }
    }
};

template <class T>
struct TurnedSource {
    const DctPlan<T>& plan;
    const T* x;

    template <class V>
    [[gnu::always_inline]] V read(std::ptrdiff_t i) const {
        const std::ptrdiff_t n = plan.len;
        T z[lanes<V>];
        for (int p = 0; p < points_in<V>; ++p) {
            const std::ptrdiff_t k = std::min(i + p, n - i - p); // bin n - k is the conjugate of bin k
            const T sign = i + p == k ? T(1) : T(-1);
            if (k == 0) {
                z[2 * p] = x[0] * plan.scale;
                z[2 * p + 1] = 0;
            } else {
                const T *w = plan.turns + 2 * k - 2, re = x[k], im = -x[n - k];
                z[2 * p] = re * w[0] + im * w[1];
                z[2 * p + 1] = sign * (im * w[0] - re * w[1]);
            }
        }
        return load<V>(z);
    }
};

template <class T>
struct PermutedSink {
    T* x;
    std::ptrdiff_t n;

    template <class V>
    [[gnu::always_inline]] void write(std::ptrdiff_t i, V z) const {
        for (int p = 0; p < points_in<V>; ++p) x[place(i + p, n)] = z[2 * p];
    }
};

} // namespace kels
