// The steps of a short transform.

#include "transforms/dft/short.h"

#include "transforms/dft/butterflies.h"
#include "transforms/roots.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace kels {
namespace {

/// Rows of `count` points by vectors of P: how many there are.
constexpr std::ptrdiff_t vectors(std::ptrdiff_t count, int P) { return (count + P - 1) / P; }

template <bool inverse, class V>
[[gnu::always_inline]] inline V turned(V z, const Element<V>* w) {
    const V across = swapped(z) * load<V>(w + lanes<V>);
    return fma(z, load<V>(w), inverse ? -across : across);
}

/// The inverse transform counts k1 and n2 backwards on the way to the middle array, and turns the other way.
template <class V, int A, bool inverse, class T>
void first_step(const ShortTransform<T>& t, const T* src, T factor, T* middle) {
    constexpr int P = points_in<V>;
    const std::ptrdiff_t B = t.B;
    const T* turns = t.turns;
    for (std::ptrdiff_t c = 0; c < B; c += P) {
        const std::ptrdiff_t first = std::min(c, B - P);
        V x[A], y[A];
        unrolled<A>([&](auto a) KELS_INLINE { x[a] = load<V>(src + 2 * (a * B + first)); });
        point_transform<A>(x);
        y[0] = x[0] * splat<V>(factor);
        unrolled<A - 1>([&](auto i) KELS_INLINE {
            constexpr int k = i + 1;
            y[k] = turned<inverse>(x[inverse ? A - k : k], turns) * splat<V>(factor);
            turns += 2 * lanes<V>;
        });
        unrolled<(A + P - 1) / P>([&](auto group) KELS_INLINE {
            constexpr int k1 = std::min<int>(group * P, A - P);
            V tile[P];
            unrolled<P>([&](auto i) KELS_INLINE { tile[i] = y[k1 + i]; });
            transpose_points<V>(tile);
            unrolled<P>([&](auto i) KELS_INLINE {
                const std::ptrdiff_t n2 = first + i, row = inverse && n2 > 0 ? B - n2 : n2;
                store(middle + 2 * (row * A + k1), tile[i]);
            });
        });
    }
}

template <class V, int B, class T>
void second_step(const ShortTransform<T>& t, const T* middle, T* dst) {
    constexpr int P = points_in<V>;
    for (std::ptrdiff_t c = 0; c < t.A; c += P) {
        const std::ptrdiff_t k1 = std::min(c, t.A - P);
        V x[B];
        unrolled<B>([&](auto n2) KELS_INLINE { x[n2] = load<V>(middle + 2 * (n2 * t.A + k1)); });
        point_transform<B>(x);
        unrolled<B>([&](auto k2) KELS_INLINE { store(dst + 2 * (k2 * t.A + k1), x[k2]); });
    }
}

/// All of a transform whose length is a radix.
template <int N, bool inverse, class T, class Source, class Sink>
void one_step(Source source, Sink sink, T factor) {
    using V = WorkVec<T, 1>;
    V x[N];
    unrolled<N>([&](auto n) KELS_INLINE { x[n] = widened<T, 1>(source.template read<PointVec<T, 1>>(n)); });
    point_transform<N>(x);
    unrolled<N>([&](auto k) KELS_INLINE {
        const V z = opaque(x[inverse && k > 0 ? N - k : int{k}] * splat<V>(factor)); // stored by itself
        sink.write(k, slice<2, 0>(z));
    });
}

/// Points of the vectors of both steps.
template <class T>
int points_of(std::ptrdiff_t A, std::ptrdiff_t B) {
    int points = max_points<T>;
    while (points > std::min(A, B)) points /= 2;
    return points;
}

/// Transforms of one step, by direction and length.
template <class T, class Source, class Sink>
constexpr auto one_steps = []<int... i>(std::integer_sequence<int, i...>) {
    std::array<std::array<void (*)(Source, Sink, T), radices[0].radix + 1>, 2> kernels{};
    ((kernels[false][radices[i].radix] = one_step<radices[i].radix, false, T, Source, Sink>), ...);
    ((kernels[true][radices[i].radix] = one_step<radices[i].radix, true, T, Source, Sink>), ...);
    return kernels;
}
(std::make_integer_sequence<int, radix_count>{});

bool is_radix(std::ptrdiff_t n) {
    return std::ranges::any_of(radices, [=](const PassRadix& pass) { return pass.radix == n; });
}

double instructions(std::ptrdiff_t n) {
    return std::ranges::find_if(radices, [=](const PassRadix& pass) { return pass.radix == n; })->instructions;
}

/// Instructions of two steps; a turned and transposed vector takes some ten.
template <class T>
double cost(std::ptrdiff_t A, std::ptrdiff_t B) {
    const int P = points_of<T>(A, B);
    const auto a = static_cast<double>(vectors(A, P)), b = static_cast<double>(vectors(B, P));
    return b * (instructions(A) + 6 * static_cast<double>(A) + 4 * a * P) + a * instructions(B);
}

/// Calls f(A) for the factors that leave another radix.
template <class F>
void each_factor(std::ptrdiff_t length, F f) {
    for (const PassRadix& pass : radices)
        if (length % pass.radix == 0 && is_radix(length / pass.radix)) f(pass.radix);
}

template <class T>
void choose_kernels(ShortTransform<T>& t) {
    with_points<T>(points_of<T>(t.A, t.B), [&]<int P>(std::integral_constant<int, P>) {
        using V = PointVec<T, P>;
        with_radix(t.A, [&]<int A>(std::integral_constant<int, A>) {
            if constexpr (P <= A && P > 1) {
                t.first[false] = first_step<V, A, false, T>;
                t.first[true] = first_step<V, A, true, T>;
            }
        });
        with_radix(t.B, [&]<int B>(std::integral_constant<int, B>) {
            if constexpr (P <= B && P > 1) t.second = second_step<V, B, T>;
        });
    });
}

} // namespace

template <class T>
bool is_short(std::ptrdiff_t length) {
    if (length == 9) return false; // two layers with turns between them: as plain sums it rounds less
    bool found = is_radix(length);
    if (max_points < T >> 1) each_factor(length, [&](std::ptrdiff_t) { found = true; });
    return found;
}

template <class T>
void split_short(ShortTransform<T>& t, std::ptrdiff_t length) {
    t.length = length;
    t.A = 1;
    double least = INFINITY;
    if (!is_radix(length))
        each_factor(length, [&](std::ptrdiff_t A) {
            if (const double all = cost<T>(A, length / A); all < least) {
                least = all;
                t.A = A;
            }
        });
    t.B = length / t.A;
    if (t.A > 1) choose_kernels(t);
}

template <class T>
void lay_short(ShortTransform<T>& t, TableSpace& space) {
    if (t.A == 1) return;
    const int P = points_of<T>(t.A, t.B);
    T* turns = space.take<T>(static_cast<std::size_t>(vectors(t.B, P) * (t.A - 1) * 4 * P));
    t.turns = turns;
    const Circle circle(static_cast<std::size_t>(t.length));
    for (std::ptrdiff_t c = 0; turns && c < t.B; c += P)
        for (std::ptrdiff_t k = 1; k < t.A; ++k, turns += 4 * P) {
            const std::ptrdiff_t first = std::min(c, t.B - P);
            T roots[2 * max_points<T>];
            circle.write(roots, static_cast<std::size_t>(P), static_cast<std::size_t>(k * first),
                         static_cast<std::size_t>(k));
            for (int i = 0; i < 2 * P; i += 2) {
                turns[i] = turns[i + 1] = roots[i];
                turns[2 * P + i] = -roots[i + 1];
                turns[2 * P + i + 1] = roots[i + 1];
            }
        }
}

template <class T, class Source, class Sink>
void run_short(const ShortTransform<T>& t, Source source, Sink sink, bool inverse, T factor) {
    if (t.A == 1) return one_steps<T, Source, Sink>[inverse][static_cast<std::size_t>(t.B)](source, sink, factor);
    alignas(64) T points[2 * longest_short], middle[2 * longest_short];
    const T* src = points;
    T* dst = points;
    if constexpr (interleaved<Source>)
        src = source.data;
    else
        each_vector<T>(t.length, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i)
                                     KELS_INLINE { store(points + 2 * i, source.template read<PointVec<T, P>>(i)); });
    if constexpr (interleaved<Sink>) dst = sink.data;
    t.first[inverse](t, src, factor, middle);
    t.second(t, middle, dst);
    if constexpr (!interleaved<Sink>) copy_points(points, t.length, sink, 0);
}

#define KELS_SHORT(T)                                                                                                  \
    template bool is_short<T>(std::ptrdiff_t);                                                                         \
    template void split_short(ShortTransform<T>&, std::ptrdiff_t);                                                     \
    template void lay_short(ShortTransform<T>&, TableSpace&);                                                          \
    template void run_short(const ShortTransform<T>&, InterleavedSource<T>, InterleavedSink<T>, bool, T);              \
    template void run_short(const ShortTransform<T>&, SplitSource<T>, SplitSink<T>, bool, T);                          \
    template void run_short(const ShortTransform<T>&, RealSource<T>, HalfSink<T>, bool, T);                            \
    template void run_short(const ShortTransform<T>&, HalfSource<T>, RealSink<T>, bool, T);
KELS_SHORT(Kel32f)
KELS_SHORT(Kel64f)
#undef KELS_SHORT

} // namespace kels
