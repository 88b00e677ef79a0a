// Between the spectrum X of N real samples, N even, and the spectrum Z of the M = N/2 complex ones that their pairs
// form, from one array to another. With s = Z[k] + conj Z[M - k], d = Z[k] - conj Z[M - k], v = -i exp(-2 pi i k / N):
//
//   forward   X[k] = (s + v d) / 2         X[M - k] = conj(s - v d) / 2
//   inverse   2 Z[k] = s + conj(v) d       2 Z[M - k] = conj(s - conj(v) d)      with s, d of X
//
// Number k stands at 2k, k from 1; the real bins 0 and N/2, which make number 0 of Z, are the caller's.
#pragma once

#include "frame/tables.h"
#include "transforms/dft/plan.h"

namespace kels {

/// How a real length goes that is no power of two from 8 on.
template <class T>
RealWay real_way(std::ptrdiff_t length) {
    if (length <= longest_straight) return RealWay::straight;
    if (length % 2 != 0 && length <= longest_odd_direct<T>) return RealWay::direct;
    const std::ptrdiff_t complex_length = length % 2 == 0 ? length / 2 : length;
    const bool smooth = is_short<T>(complex_length) || is_mixed<T>(complex_length);
    if (!smooth && length <= longest_rough_direct<T>) return RealWay::direct;
    return length % 2 == 0 ? RealWay::halves : RealWay::whole;
}

/// v for k from 1 to (M - 1) / 2.
template <class T>
const T* lay_any_recombination(std::ptrdiff_t length, TableSpace& space) {
    const std::ptrdiff_t pairs = (length / 2 - 1) / 2;
    T* table = space.take<T>(static_cast<std::size_t>(2 * pairs));
    const Circle circle(static_cast<std::size_t>(4 * length));
    if (table)
        circle.write(table, static_cast<std::size_t>(pairs), static_cast<std::size_t>(4 + length),
                     4); // a quarter turn on
    return table;
}

template <bool inverse, class T>
void recombine_any(const T* from, T* to, std::ptrdiff_t M, const T* table) {
    const std::ptrdiff_t pairs = (M - 1) / 2;
    const T scale = inverse ? T(1) : T(0.5);
    each_vector<T>(pairs, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i) KELS_INLINE {
        using V = PointVec<T, P>;
        const std::ptrdiff_t k = i + 1, high = M - i - P;
        const V a = load<V>(from + 2 * k), b = mirrored(load<V>(from + 2 * high)), v = load<V>(table + 2 * i);
        const V s = a + b, t = inverse ? conjugate_product(a - b, v) : point_product(a - b, v);
        store(to + 2 * k, (s + t) * splat<V>(scale));
        store(to + 2 * high, mirrored((s - t) * splat<V>(scale)));
    });
    if (M % 2 == 0) {
        to[M] = 2 * scale * from[M];
        to[M + 1] = -2 * scale * from[M + 1];
    }
}

} // namespace kels
