// Transforms beyond the outer cache: N = A M A points, A = 512, in two or three sweeps over memory.
//
// With n = (n1 M + n2) A + n3 and k = k1 + A (k2 + M k3):
//
//   first sweep   for every n2 and every strip of neighbouring columns n3: transform over n1, turn by
//                 exp(-2 pi i (n2 A + n3) k1 / N), and store transposed, so that k1 runs where n3 ran;
//   middle sweep  for every n3 and every strip of k1: transform over n2, turn by exp(-2 pi i n3 k2 / (M A));
//   last sweep    for every k2 and every strip of k1: transform over n3.
//
// The sweeps after the first work in place and leave natural order; M = 1 has no middle one. The first one exchanges
// square blocks, so it works in place too: before row block g is overwritten, its unread blocks (g, h) move to (h, g),
// where the columns just read stood.
//
// A strip's first pass reads memory and its last one writes memory; what lies between stays in its scratch.

#include "transforms/fft/large.h"

#include "transforms/fft/strip.h"

namespace kels {
namespace {

/// The columns of the first and the last sweep.
constexpr int outer_order = top_column_order;
using OuterRadices = Radices<8, 8, 8>;

/// A root exp(-2 pi i j / N) as the product of a coarse and a fine one: tables of about sqrt(N) entries.
struct LargeRoots {
    const Kel64f *coarse, *fine;
    int fine_order;

    Complex<Kel64f> operator()(std::ptrdiff_t j) const {
        const Kel64f* a = coarse + 2 * (j >> fine_order);
        const Kel64f* b = fine + 2 * (j & ((std::ptrdiff_t{1} << fine_order) - 1));
        return Complex<Kel64f>{a[0], a[1]} * Complex<Kel64f>{b[0], b[1]};
    }
};

template <class Layout, class T>
class LargeTransform {
    using S = Strip<T>;
    using Vector = typename S::Vector;
    using Kept = typename Layout::Forward::template Of<Vector>;
    using Ends = typename Layout::template Of<Vector>;
    static constexpr int V = S::V;
    static constexpr int C = strip_lanes<T>;
    static constexpr int width = Layout::width;

    const FftPlan<T>& plan_;
    const T factor_;
    static constexpr std::ptrdiff_t A_ = std::ptrdiff_t{1} << outer_order;
    const int middle_order_ = plan_.complex_order - 2 * outer_order;
    const std::ptrdiff_t M_ = std::ptrdiff_t{1} << middle_order_;
    const LargeRoots root_{plan_.coarse_roots, plan_.fine_roots, plan_.complex_order / 2};
    S strip_;

public:
    LargeTransform(const FftPlan<T>& plan, T factor, S strip) : plan_(plan), factor_(factor), strip_(strip) {}

    void run(Points<const T> src, Points<T> dst) {
        if (width == 1 && (src.re == dst.re) != (src.im == dst.im)) { // half in place: bring the other half along
            const std::size_t bytes = sizeof(T) << plan_.complex_order;
            if (src.re == dst.re)
                std::memcpy(dst.im, src.im, bytes);
            else
                std::memcpy(dst.re, src.re, bytes);
            src = dst;
        }
        for (std::ptrdiff_t n2 = 0; n2 < M_; ++n2)
            for (std::ptrdiff_t block = 0; block < A_ / C; ++block) first_sweep(OuterRadices{}, src, dst, n2, block);
        if (M_ > 1)
            with_column_radices(middle_order_, [&](auto radices) {
                for (std::ptrdiff_t n3 = 0; n3 < A_; ++n3)
                    for (std::ptrdiff_t k1 = 0; k1 < A_; k1 += C) middle_sweep(radices, dst, n3, k1);
            });
        for (std::ptrdiff_t column = 0; column < M_ * A_; column += C) last_sweep(OuterRadices{}, dst, column);
    }

private:
    /// The first point of row r, block c of columns, in the square that belongs to n2.
    std::ptrdiff_t square(std::ptrdiff_t r, std::ptrdiff_t block, std::ptrdiff_t n2) const {
        return (r * M_ + n2) * A_ + block * C;
    }

    /// Fetches a row of the strip beside the present one while that is worked on: its rows are too far apart for the
    /// processor to guess.
    static void prefetch(Points<const T> p, std::ptrdiff_t i) {
        __builtin_prefetch(p.re + width * (i + C));
        if (width == 2)
            __builtin_prefetch(p.re + width * (i + C) + 64 / sizeof(T));
        else
            __builtin_prefetch(p.im + i + C);
    }

    template <int... R>
    void first_sweep(Radices<R...> radices, Points<const T> src, Points<T> dst, std::ptrdiff_t n2,
                     std::ptrdiff_t block) {
        const bool in_place = src.re == dst.re;
        const std::ptrdiff_t column = n2 * A_ + block * C;
        strip_.transform(
            radices, plan_.twiddles,
            [&](std::ptrdiff_t n1, std::ptrdiff_t group) KELS_INLINE {
                const bool moved = in_place && n1 / C < block;
                const std::ptrdiff_t at = moved ? square(block * C + n1 % C, n1 / C, n2) : square(n1, block, n2);
                if (group == 0) prefetch(src, at);
                return Ends::read(src, at + group * V);
            },
            [&](std::ptrdiff_t k1, std::ptrdiff_t group, Complex<Vector> z, std::ptrdiff_t place) KELS_INLINE {
                const Complex<Kel64f> base = root_(column * k1);
                const T* lane = plan_.lane_twiddles + 2 * (k1 * C + group * V);
                strip_.put(place, group,
                           z * (Complex<Vector>{load<Vector>(lane), load<Vector>(lane + V)} * broadcast(base)));
            });
        if (in_place) clear_row_block(dst, n2, block);
        for (std::ptrdiff_t k1 = 0; k1 < A_; k1 += V)
            for (std::ptrdiff_t group = 0; group < S::groups; ++group) {
                Complex<Vector> x[V];
                for (int i = 0; i < V; ++i) x[i] = strip_.get(place(radices, k1 + i), group);
                transpose_tile<Kept, V, T>(x);
                for (int i = 0; i < V; ++i)
                    Kept::keep(dst, square(block * C + group * V + Kept::order(i), 0, n2) + k1, x[i]);
            }
    }

    /// Moves the blocks of this row block that are still to be read to where the columns just read stood.
    void clear_row_block(Points<T> dst, std::ptrdiff_t n2, std::ptrdiff_t block) const {
        for (std::ptrdiff_t h = block + 1; h < A_ / C; ++h)
            for (std::ptrdiff_t i = 0; i < C; ++i) {
                const std::ptrdiff_t to = width * square(h * C + i, block, n2),
                                     from = width * square(block * C + i, h, n2);
                std::memcpy(dst.re + to, dst.re + from, width * C * sizeof(T));
                if (width == 1) std::memcpy(dst.im + to, dst.im + from, C * sizeof(T));
            }
    }

    template <int... R>
    void middle_sweep(Radices<R...> radices, Points<T> dst, std::ptrdiff_t n3, std::ptrdiff_t k1) {
        const std::ptrdiff_t first = n3 * M_ * A_ + k1;
        strip_.transform(
            radices, plan_.middle_twiddles,
            [&](std::ptrdiff_t n2, std::ptrdiff_t group) KELS_INLINE {
                if (group == 0) prefetch(dst, first + n2 * A_);
                return Kept::kept(dst, first + n2 * A_ + group * V);
            },
            [&](std::ptrdiff_t k2, std::ptrdiff_t group, Complex<Vector> z, std::ptrdiff_t) KELS_INLINE {
                const Complex<Kel64f> turn = root_(n3 * k2 * A_); // exp(-2 pi i n3 k2 / (M A))
                Kept::keep(dst, first + k2 * A_ + group * V, z * broadcast(turn));
            });
    }

    template <int... R>
    void last_sweep(Radices<R...> radices, Points<T> dst, std::ptrdiff_t column) {
        strip_.transform(
            radices, plan_.twiddles,
            [&](std::ptrdiff_t n3, std::ptrdiff_t group) KELS_INLINE {
                const std::ptrdiff_t at = column + n3 * M_ * A_;
                if (group == 0) prefetch(dst, at);
                return Kept::kept(dst, at + group * V);
            },
            [&](std::ptrdiff_t k3, std::ptrdiff_t group, Complex<Vector> z, std::ptrdiff_t)
                KELS_INLINE { Ends::write(dst, column + k3 * M_ * A_ + group * V, z * factor_); });
    }

    static Complex<Vector> broadcast(Complex<Kel64f> z) {
        return {splat<Vector>(static_cast<T>(z.re)), splat<Vector>(static_cast<T>(z.im))};
    }

    /// The row of scratch where the last pass left row k.
    template <int R, int... More>
    static std::ptrdiff_t place(Radices<R, More...>, std::ptrdiff_t k) {
        if constexpr (sizeof...(More) == 0)
            return k;
        else
            return k % R * (... * More) + place(Radices<More...>{}, k / R);
    }
};

const Kel64f* lay_roots(TableSpace& space, int entries_order, std::size_t step, std::size_t points) {
    const std::size_t entries = std::size_t{1} << entries_order;
    const Circle circle(points);
    Kel64f* table = space.take<Kel64f>(2 * entries);
    if (table) circle.write(table, entries, 0, step);
    return table;
}

} // namespace

template <class Layout, class T>
FftKernel<T> large_kernel() {
    return [](const FftPlan<T>& plan, const FftDirection<T>& direction, Points<const T> src, Points<T> dst) {
        typename Strip<T>::template Scratch<outer_order> scratch;
        LargeTransform<Layout, T>(plan, direction.factor, Strip<T>(scratch)).run(src, dst);
    };
}

template <class Layout, class T>
void lay_large(FftPlan<T>& plan, TableSpace& space) {
    const int order = plan.complex_order;
    const std::size_t points = std::size_t{1} << order, rows = std::size_t{1} << outer_order;
    plan.twiddles = lay_column_table<T>(space, OuterRadices{});
    if (order > 2 * outer_order)
        plan.middle_twiddles = with_column_radices(order - 2 * outer_order,
                                                   [&](auto radices) { return lay_column_table<T>(space, radices); });
    plan.fine_roots = lay_roots(space, order / 2, 1, points);
    plan.coarse_roots = lay_roots(space, order - order / 2, std::size_t{1} << (order / 2), points);

    using S = Strip<T>;
    constexpr int V = S::V;
    const Circle circle(points);
    T* table = space.take<T>(2 * strip_lanes<T> * rows);
    plan.lane_twiddles = table;
    for (std::size_t k = 0; table && k < rows; ++k)
        for (std::size_t group = 0; group < S::groups; ++group)
            table = write_root_vectors<V>(table, circle, [=](std::size_t lane) {
                const int place = Layout::template Of<Vec<T, V>>::order(static_cast<int>(lane));
                return k * (group * V + static_cast<std::size_t>(place));
            });
}

template FftKernel<Kel32f> large_kernel<Interleaved<false>, Kel32f>();
template FftKernel<Kel32f> large_kernel<Interleaved<true>, Kel32f>();
template FftKernel<Kel32f> large_kernel<Split, Kel32f>();
template FftKernel<Kel64f> large_kernel<Interleaved<false>, Kel64f>();
template FftKernel<Kel64f> large_kernel<Interleaved<true>, Kel64f>();
template FftKernel<Kel64f> large_kernel<Split, Kel64f>();
template void lay_large<Interleaved<false>>(FftPlan<Kel32f>&, TableSpace&);
template void lay_large<Split>(FftPlan<Kel32f>&, TableSpace&);
template void lay_large<Interleaved<false>>(FftPlan<Kel64f>&, TableSpace&);
template void lay_large<Split>(FftPlan<Kel64f>&, TableSpace&);

} // namespace kels
