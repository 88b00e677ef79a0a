// Real transforms in fixed point: N samples as N/2 complex ones, and the bins of those recombined.
//
// With a = x[k], b = x[n - k], n = N/2, S = a + b and D = a - b (both halved, rounded down, in the forward direction),
//
//     V = (Re S, Im D),  U = (-Im S, Re D),  P = U exp(-+2 pi i k / N)
//
// the forward bins are x[k] = V - P and x[n - k] = conj(V + P). The inverse gives twice the bins of the complex
// transform with k and n - k exchanged, so that the forward transform takes them back.
#pragma once

#include "frame/blocks.h"
#include "frame/tables.h"
#include "transforms/fft/fixed_core.h"
#include "transforms/fft/fixed_point.h"

#include <cstddef>

namespace kels {

/// exp(-2 pi i k / N) for k below N/4, and their conjugates: factors of the real and of the imaginary part.
struct RecombinationRoots {
    const Kel32u *forward[2] = {}, *inverse[2] = {};
};

inline RecombinationRoots lay_recombination_roots(int order, TableSpace& space) {
    const int points = 1 << order, count = points / 4;
    const auto lay = [&](int sign, const Kel32u*(&parts)[2]) {
        Kel32u* re = space.take<Kel32u>(static_cast<std::size_t>(count));
        Kel32u* im = space.take<Kel32u>(static_cast<std::size_t>(count));
        parts[0] = re;
        parts[1] = im;
        if (!re) return;
        for (int k = 0; k < count; ++k) {
            const RootQ14 root = root_q14_of_order(order, sign * k & (points - 1));
            re[k] = root.re;
            im[k] = root.im;
        }
    };
    RecombinationRoots roots;
    lay(1, roots.forward);
    lay(-1, roots.inverse);
    return roots;
}

/// One vector of bins k and one of their mirror images, in place.
template <bool inverse, class V>
[[gnu::always_inline]] inline void recombine_fixed(Complex<V>& a, Complex<V>& b, V root_re, V root_im) {
    const V zero{};
    Complex<V> s = a + b, d = a - b;
    if constexpr (!inverse) {
        s = {shifted_down(s.re, 1), shifted_down(s.im, 1)};
        d = {shifted_down(d.re, 1), shifted_down(d.im, 1)};
    }
    constexpr int rounding = inverse ? 4096 : 0; // the inverse rounds to nearest
    const Complex<V> v = {s.re, d.im};
    const Complex<V> p = turned_q14<rounding>(Complex<V>{zero - s.im, d.re}, root_re, root_im);
    const Complex<V> sum = v + p, dif = v - p;
    if constexpr (inverse) {
        a = {dif.re, zero - dif.im};
        b = sum;
    } else {
        a = dif;
        b = {sum.re, zero - sum.im};
    }
}

/// Bins 1 to n - 1 of the n = 2^order / 2 points, n >= 2. The points are followed by one that this writes.
template <bool inverse>
void recombine_fixed(const RecombinationRoots& all_roots, int order, FixedPoints points) {
    const int n = (1 << order) / 2, middle = n / 2;
    const Kel32u* const* roots = inverse ? all_roots.inverse : all_roots.forward;
    const Kel32u first[] = {points.re[0], points.im[0]}, halfway[] = {points.re[middle], points.im[middle]};
    points.re[n] = points.im[n] = 0; // what stands opposite to point 0
    in_widest<Kel32u, 1, 4>(middle, [&](auto width) KELS_INLINE {
        using V = Words<width>;
        for (int k = 0; k < middle; k += width) {
            const int mirror = n - k - (width - 1);
            Complex<V> a = {load<V>(points.re + k), load<V>(points.im + k)};
            Complex<V> b = {reverse(load<V>(points.re + mirror)), reverse(load<V>(points.im + mirror))};
            recombine_fixed<inverse>(a, b, load<V>(roots[0] + k), load<V>(roots[1] + k));
            store(points.re + k, a.re);
            store(points.im + k, a.im);
            store(points.re + mirror, reverse(b.re));
            store(points.im + mirror, reverse(b.im));
        }
    });
    points.re[0] = first[0];
    points.im[0] = first[1];
    points.re[middle] = inverse ? 2 * halfway[0] : halfway[0];
    points.im[middle] = inverse ? 0U - 2 * halfway[1] : 0U - halfway[1];
}

} // namespace kels
