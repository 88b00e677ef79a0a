// Fixed-point transforms by decimation in frequency: passes of radix 4, and for odd orders one of radix 2 at the end.
//
// A pass at stride s takes the s interleaved transforms of L = N / s points each to 4 s transforms of L / 4 points.
// With i = g + s p, g < s being the transform and p < L / 4 the point,
//
//     x[i + m N / 4], m = 0 to 3   ->   y[g + s (4 p + k)] = result k of the butterfly, times exp(-2 pi i p k / L)
//
// so that sources are read in order, and results end in natural order. The rounding is that of the scalar rule, element
// for element: products are rounded down, and p = 0 and p = L / 8 have none, or products of their own.
//
// Where s is below the width of a vector, lanes hold different p: their roots come from a table, and results are
// interleaved in runs of s. From there on a vector has one root.

#include "transforms/fft/fixed_core.h"

#include "transforms/fft/butterflies.h"
#include "transforms/fft/fixed_point.h"

#include <utility>

namespace kels {
namespace {

template <class V>
[[gnu::always_inline]] inline Complex<V> read(FixedPoints p, std::ptrdiff_t i) {
    return {load<V>(p.re + i), load<V>(p.im + i)};
}

template <class V>
[[gnu::always_inline]] inline void write(FixedPoints p, std::ptrdiff_t i, Complex<V> z) {
    store(p.re + i, z.re);
    store(p.im + i, z.im);
}

template <class V>
[[gnu::always_inline]] inline void read_quarters(FixedPoints src, std::ptrdiff_t quarter, std::ptrdiff_t i,
                                                 Complex<V>* x) {
    unrolled<4>([&](auto m) KELS_INLINE { x[m] = read<V>(src, i + m * quarter); });
}

/// The butterfly of p = L / 8: the turn by a quarter is exact, and those by an eighth are of sums and differences of
/// the sources' parts.
template <class V>
[[gnu::always_inline]] inline void butterfly_at_eighth(Complex<V>* x) {
    constexpr int h = 11585; // 1 / sqrt(2)
    const Complex<V> a = x[0] - x[2], b = x[1] - x[3], sum = a + b, dif = a - b;
    butterfly<4>(x);
    const CutWords<V> of_re(Complex<V>{dif.re, sum.im}), of_im(Complex<V>{sum.re, dif.im});
    const V plus = splat<V>(root_q14(h, h).re), minus = splat<V>(root_q14(h, h).im),
            none = splat<V>(root_q14(-h, -h).re);
    x[1] = {turned_part<0>(of_re, plus), turned_part<0>(of_im, minus)};
    x[2] = times_minus_i(x[2]);
    x[3] = {turned_part<0>(of_re, minus), turned_part<0>(of_im, none)};
}

/// A stride that fills vectors.
template <class V>
void pass_over_vectors(int order, int stride, FixedPoints src, FixedPoints dst) {
    const int quarter = (1 << order) / 4, turns = quarter / stride;
    const auto column = [&](int p, const auto& transform) KELS_INLINE {
        for (int g = 0; g < stride; g += lanes<V>) {
            Complex<V> x[4];
            read_quarters(src, quarter, stride * p + g, x);
            transform(x);
            unrolled<4>([&](auto k) KELS_INLINE { write(dst, stride * (4 * p + k) + g, x[k]); });
        }
    };
    column(0, [](Complex<V>* x) KELS_INLINE { butterfly<4>(x); });
    for (int p = 1; p < turns; ++p)
        if (2 * p == turns) {
            column(p, [](Complex<V>* x) KELS_INLINE { butterfly_at_eighth(x); });
        } else {
            const auto root = [&](int k) { return root_q14_of_order(order, stride * p * k); };
            const RootQ14 roots[] = {root(1), root(2), root(3)};
            column(p, [&](Complex<V>* x) KELS_INLINE {
                butterfly<4>(x);
                unrolled<3>([&](auto k) KELS_INLINE { x[k + 1] = turned_q14(x[k + 1], roots[k]); });
            });
        }
}

/// Words of `Lanes` roots for each of the results 1 to 3.
template <int Lanes>
constexpr int lane_root_words = 6 * Lanes;

/// The turns of a butterfly whose lanes hold different points.
template <class V>
[[gnu::always_inline]] inline void turn_lanes(const Kel32u* roots, Complex<V>* x) {
    unrolled<3>([&](auto k) KELS_INLINE {
        const Kel32u* root = roots + 2 * lanes<V> * k;
        x[k + 1] = turned_q14(x[k + 1], load<V>(root), load<V>(root + lanes<V>));
    });
}

template <class V, class Mask>
[[gnu::always_inline]] inline Complex<V> select(Mask mask, Complex<V> a, Complex<V> b) {
    return {mask ? a.re : b.re, mask ? a.im : b.im};
}

/// A butterfly some of whose lanes hold p = 0 or p = L / 8.
template <int Stride, class V>
[[gnu::always_inline]] inline void butterfly_of_lanes(int i, int eighth, const Kel32u* roots, Complex<V>* x) {
    constexpr auto count = [] {
        std::array<Kel32u, lanes<V>> numbers{};
        for (int lane = 0; lane < lanes<V>; ++lane) numbers[lane] = static_cast<Kel32u>(lane);
        return numbers;
    }();
    const V at = load<V>(count.data()) + splat<V>(static_cast<Kel32u>(i)), stride = splat<V>(Kel32u{Stride});
    const auto is_first = at < stride;
    const auto is_eighth = at - splat<V>(static_cast<Kel32u>(eighth)) < stride;
    Complex<V> plain[4], turned[4];
    unrolled<4>([&](auto m) KELS_INLINE { plain[m] = turned[m] = x[m]; });
    butterfly_at_eighth(x);
    butterfly<4>(plain);
    butterfly<4>(turned);
    turn_lanes(roots, turned);
    unrolled<4>([&](auto k) KELS_INLINE { x[k] = select(is_first, plain[k], select(is_eighth, x[k], turned[k])); });
}

/// Interleaves four results in runs of `Stride`.
template <int Stride, class V>
[[gnu::always_inline]] inline void write_interleaved(Kel32u* dst, V a, V b, V c, V d) {
    const V ac[] = {interleave<0, Stride>(a, c), interleave<1, Stride>(a, c)};
    const V bd[] = {interleave<0, Stride>(b, d), interleave<1, Stride>(b, d)};
    unrolled<4>([&](auto i)
                    KELS_INLINE { store(dst + i * lanes<V>, interleave<i % 2, Stride>(ac[i / 2], bd[i / 2])); });
}

/// A stride below the width of a vector.
template <class V, int Stride>
void pass_across_lanes(const Kel32u* roots, int order, FixedPoints src, FixedPoints dst) {
    const int quarter = (1 << order) / 4, eighth = quarter / 2, eighth_vector = eighth / lanes<V> * lanes<V>;
    for (int i = 0; i < quarter; i += lanes<V>, roots += lane_root_words<lanes<V>>) {
        Complex<V> x[4];
        read_quarters(src, quarter, i, x);
        if (i == 0 || i == eighth_vector) {
            butterfly_of_lanes<Stride>(i, eighth, roots, x);
        } else {
            butterfly<4>(x);
            turn_lanes(roots, x);
        }
        write_interleaved<Stride>(dst.re + 4 * i, x[0].re, x[1].re, x[2].re, x[3].re);
        write_interleaved<Stride>(dst.im + 4 * i, x[0].im, x[1].im, x[2].im, x[3].im);
    }
}

template <class V>
void pass_of_two(int order, FixedPoints src, FixedPoints dst) {
    const int half = (1 << order) / 2;
    for (int i = 0; i < half; i += lanes<V>) {
        Complex<V> x[2] = {read<V>(src, i), read<V>(src, i + half)};
        butterfly<2>(x);
        write(dst, i, x[0]);
        write(dst, i + half, x[1]);
    }
}

template <class V>
FixedPoints transform(const FixedTables& tables, int order, FixedPoints src, FixedPoints dst) {
    int stride = 1;
    for (; 4 * stride <= 1 << order; stride *= 4) {
        if (stride >= lanes<V>)
            pass_over_vectors<V>(order, stride, src, dst);
        else if (stride == 1)
            pass_across_lanes<V, 1>(tables.lane_roots[0], order, src, dst);
        else if constexpr (lanes<V> > 4)
            pass_across_lanes<V, 4>(tables.lane_roots[1], order, src, dst);
        std::swap(src, dst);
    }
    if (stride == 1 << order) return src;
    pass_of_two<V>(order, src, dst);
    return dst;
}

/// Calls f with the widest vector that a quarter of the points fills.
template <class F>
auto with_lanes(int order, F&& f) {
    const auto fills = [=](int width) { return width <= max_lanes<Kel32u> && 4 * width <= 1 << order; };
    if (fills(16)) return f(Words<16>{});
    if (fills(8)) return f(Words<8>{});
    if (fills(4)) return f(Words<4>{});
    return f(Words<1>{});
}

} // namespace

FixedTables lay_fixed_tables(int order, TableSpace& space) {
    return with_lanes(order, [&]<class V>(V) {
        FixedTables tables;
        const int quarter = (1 << order) / 4;
        for (int pass = 0, stride = 1; stride < lanes<V>; ++pass, stride *= 4) {
            Kel32u* word = space.take<Kel32u>(static_cast<std::size_t>(6 * quarter));
            tables.lane_roots[pass] = word;
            if (!word) continue;
            for (int i = 0; i < quarter; i += lanes<V>)
                for (int k = 1; k <= 3; ++k, word += 2 * lanes<V>)
                    for (int lane = 0; lane < lanes<V>; ++lane) {
                        const RootQ14 root = root_q14_of_order(order, (i + lane) / stride * stride * k);
                        word[lane] = root.re;
                        word[lanes<V> + lane] = root.im;
                    }
        }
        return tables;
    });
}

FixedPoints fixed_transform(const FixedTables& tables, int order, FixedPoints points, FixedPoints work) {
    return with_lanes(order, [&]<class V>(V) { return transform<V>(tables, order, points, work); });
}

} // namespace kels
