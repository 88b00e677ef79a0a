// Short transforms of any number of columns side by side: a vector of pairs for each point, which is never taken apart,
// so that the only shuffles are those that exchange real and imaginary parts.
//
// An input turned by w = exp(-2 pi i m / N) costs one fused operation: w is c (1 - i t) or s (t - i), whichever of its
// cosine c and sine s is larger, and the factor moves on into the sums that the input enters. In the inverse
// transform, i changes its sign throughout.
#pragma once

#include "frame/complex_vector.h"
#include "transforms/fft/radices.h"

namespace kels {

/// cos(2 pi k / 64).
constexpr long double cosine_64(int k) {
    constexpr long double quarter[] = {1,
                                       0.99518472667219688624L,
                                       0.98078528040323044913L,
                                       0.95694033573220886494L,
                                       0.92387953251128675613L,
                                       0.88192126434835502971L,
                                       0.83146961230254523708L,
                                       0.77301045336273696081L,
                                       0.70710678118654752440L,
                                       0.63439328416364549822L,
                                       0.55557023301960222474L,
                                       0.47139673682599764856L,
                                       0.38268343236508977173L,
                                       0.29028467725446236764L,
                                       0.19509032201612826785L,
                                       0.09801714032956060199L,
                                       0};
    k %= 64;
    if (k > 32) k = 64 - k;
    return k <= 16 ? quarter[k] : -quarter[32 - k];
}

/// The root exp(-2 pi i m / N) as a real factor of what `turned` makes, or as -i.
template <int N, int m>
struct Root {
    static_assert(0 <= m && m < N && 64 % N == 0 && 4 * m != 3 * N);
    static constexpr long double cosine = cosine_64(64 / N * m), sine = cosine_64(64 / N * m + 48);
    static constexpr bool real = 2 * m % N == 0, minus_i = 4 * m == N;
    static constexpr bool by_cosine = sine <= cosine || sine <= -cosine;
    static constexpr long double factor = minus_i ? 1 : by_cosine ? cosine : sine;
    static constexpr long double ratio = by_cosine ? sine / cosine : cosine / sine;
};

/// a + i b, or a - i b with sign -1.
template <int sign, class V>
[[gnu::always_inline]] inline V plus_i(V a, V b) {
    if constexpr (sign > 0)
        return add_alternating(a, swapped(b));
    else
        return add_alternating_back(a, swapped(b));
}

/// z w / factor.
template <class Root, bool inverse, class V>
[[gnu::always_inline]] inline V turned(V z) {
    constexpr auto ratio = static_cast<Element<V>>(Root::ratio);
    constexpr int minus_i = inverse ? 1 : -1;
    if constexpr (Root::real || Root::minus_i)
        return z;
    else if constexpr (ratio == 1)
        return plus_i<minus_i>(z, z);
    else if constexpr (ratio == -1)
        return plus_i<-minus_i>(z, z);
    else if constexpr (Root::by_cosine)
        return fma(swapped(z), alternate<V>(inverse ? -ratio : ratio, inverse ? ratio : -ratio), z);
    else if constexpr (inverse)
        return fma_alternating(z, splat<V>(ratio), swapped(z));
    else
        return fma_alternating_back(z, splat<V>(ratio), swapped(z));
}

/// The factor of a root, or its ratio to that of another one, as a type.
template <class Root, class Divisor = std::false_type>
struct Factor {
    static constexpr long double value = [] {
        if constexpr (std::is_same_v<Divisor, std::false_type>)
            return Root::factor;
        else
            return Root::factor / Divisor::factor;
    }();
};

/// a + factor b and a - factor b.
template <class F, class V>
[[gnu::always_inline]] inline V plus(V a, V b) {
    constexpr auto f = static_cast<Element<V>>(F::value);
    if constexpr (f == 1)
        return a + b;
    else if constexpr (f == -1)
        return a - b;
    else
        return fma(splat<V>(f), b, a);
}
template <class F, class V>
[[gnu::always_inline]] inline V minus(V a, V b) {
    constexpr auto f = static_cast<Element<V>>(F::value);
    if constexpr (f == 1)
        return a - b;
    else if constexpr (f == -1)
        return a + b;
    else
        return fma_negated(splat<V>(f), b, a);
}

/// a + i factor b, or a - i factor b with sign -1.
template <class F, int sign, class V>
[[gnu::always_inline]] inline V plus_i(V a, V b) {
    constexpr auto f = static_cast<Element<V>>(F::value);
    if constexpr (f == 1)
        return plus_i<sign>(a, b);
    else if constexpr (sign > 0)
        return fma_negated(alternate<V>(f, -f), swapped(b), a);
    else
        return fma(alternate<V>(f, -f), swapped(b), a);
}

/// a + w b and a - w b, where b has been turned.
template <class Root, bool inverse, class V>
[[gnu::always_inline]] inline void add_and_subtract(V& a, V& b) {
    constexpr int minus_i = inverse ? 1 : -1;
    const V x = a, y = b;
    if constexpr (Root::minus_i) {
        a = plus_i<minus_i>(x, y);
        b = plus_i<-minus_i>(x, y);
    } else {
        a = plus<Factor<Root>>(x, y);
        b = minus<Factor<Root>>(x, y);
    }
}

/// a + factor b and a - factor b.
template <class F, class V>
[[gnu::always_inline]] inline void add_and_subtract(V& a, V& b) {
    const V x = a, y = b;
    a = plus<F>(x, y);
    b = minus<F>(x, y);
}

/// The transform of 4 points, the first 1, the others with factors still to come: f2 for x[2], f1 for x[1], and x[3]
/// has f1 times `ratio`.
template <class W1, class W2, class Ratio, bool inverse, class V>
[[gnu::always_inline]] inline void butterfly_4(V* x) {
    constexpr int minus_i = inverse ? 1 : -1;
    V a = x[0], b = x[2], c = x[1], d = x[3];
    add_and_subtract<W2, inverse>(a, b);
    add_and_subtract<Ratio>(c, d);
    x[0] = plus<Factor<W1>>(a, c);
    x[2] = minus<Factor<W1>>(a, c);
    x[1] = plus_i<Factor<W1>, minus_i>(b, d);
    x[3] = plus_i<Factor<W1>, -minus_i>(b, d);
}

/// sqrt(1/2) times the factor of a root.
template <class Root>
struct Diagonal {
    static constexpr long double value = 0.70710678118654752440L * Root::factor;
};

/// How many results a codelet gives at a time.
template <int count>
using Group = std::integral_constant<int, count>;

template <class Together, bool inverse, class V, int First, int Second, class In, class Out>
inline void transform_points(Radices<First, Second>, In&& in, Out&& out);

/// The transform of R points, one in each vector, point j turned by exp(-2 pi i j k / N), k < N / R.
template <int R, bool inverse, int N = R, int k = 0, class V>
[[gnu::always_inline]] inline void butterfly(V* x) {
    constexpr int minus_i = inverse ? 1 : -1;
    unrolled<R - 1>([&](auto i) KELS_INLINE { x[i + 1] = turned<Root<N, (i + 1) * k>, inverse>(x[i + 1]); });
    using W1 = Root<N, k>;
    if constexpr (R == 2) {
        add_and_subtract<W1, inverse>(x[0], x[1]);
    } else if constexpr (R == 16) {
        V y[R];
        transform_points<Group<1>, inverse, V>(
            Radices<4, 4>{}, [&](auto n) KELS_INLINE { return x[n]; },
            [&](auto j, const V* z) KELS_INLINE { y[j] = *z; });
        unrolled<R>([&](auto j) KELS_INLINE { x[j] = y[j]; });
    } else if constexpr (R == 4) {
        butterfly_4<W1, Root<N, 2 * k>, Factor<Root<N, 3 * k>, W1>, inverse>(x);
    } else if constexpr (R == 8) {
        using W2 = Root<N, 2 * k>;
        using W3 = Root<N, 3 * k>;
        add_and_subtract<Root<N, 4 * k>, inverse>(x[0], x[4]);
        add_and_subtract<Factor<Root<N, 5 * k>, W1>>(x[1], x[5]);
        add_and_subtract<Factor<Root<N, 6 * k>, W2>>(x[2], x[6]);
        add_and_subtract<Factor<Root<N, 7 * k>, W3>>(x[3], x[7]);
        V even[4] = {x[0], x[1], x[2], x[3]};
        butterfly_4<W1, W2, Factor<W3, W1>, inverse>(even);
        // Of the differences, the third is turned by -i, and the second and the fourth, m and p being their difference
        // and sum, by the two odd eighths of a circle: m - i p and m + i p have the factor sqrt(1/2).
        const V a = plus_i<Factor<W2>, minus_i>(x[4], x[6]), b = plus_i<Factor<W2>, -minus_i>(x[4], x[6]);
        V p = x[5], m = x[7];
        add_and_subtract<Factor<W3, W1>>(p, m);
        const V s = plus_i<minus_i>(m, p), d = plus_i<-minus_i>(m, p);
        x[1] = plus<Diagonal<W1>>(a, s);
        x[5] = minus<Diagonal<W1>>(a, s);
        x[3] = minus<Diagonal<W1>>(b, d);
        x[7] = plus<Diagonal<W1>>(b, d);
        unrolled<4>([&](auto i) KELS_INLINE { x[2 * i] = even[i]; });
    }
}

/// Transforms of First points, then Second of them across: point n comes from in(n), a group of neighbouring results
/// goes to out(k, z), k being the number of its first; n and k are constants. More points than there are registers go
/// through a stage in memory between the layers.
template <class Together, bool inverse, class V, int First, int Second, class In, class Out>
[[gnu::always_inline]] inline void transform_points(Radices<First, Second>, In&& in, Out&& out) {
    constexpr int size = Together::value;
    alignas(64) V stage[First * Second];
    unrolled<Second>([&](auto n) KELS_INLINE {
        V x[First];
        unrolled<First>([&](auto i) KELS_INLINE { x[i] = in(std::integral_constant<int, i * Second + n>{}); });
        butterfly<First, inverse>(x);
        unrolled<First>([&](auto k) KELS_INLINE { stage[n * First + k] = x[k]; });
    });
    if constexpr (First * Second > vector_registers) settle(stage);
    unrolled<First / size>([&](auto group) KELS_INLINE {
        V z[Second][size];
        unrolled<size>([&](auto i) KELS_INLINE {
            constexpr int k = group * size + i;
            V x[Second];
            unrolled<Second>([&](auto n) KELS_INLINE { x[n] = stage[n * First + k]; });
            if constexpr (Second > 1) butterfly<Second, inverse, First * Second, k>(x);
            unrolled<Second>([&](auto j) KELS_INLINE { z[j][i] = x[j]; });
        });
        unrolled<Second>([&](auto j)
                             KELS_INLINE { out(std::integral_constant<int, group * size + First * j>{}, z[j]); });
    });
}

} // namespace kels
