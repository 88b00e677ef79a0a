// Transforms that fit the outer cache: N = 16 B 16 points, seen as a cube.
//
// With n = (n1 B + b) 16 + n3 and k = k1 + 16 (kb + B k3):
//
//   first sweep   for every b: transform over n1, turn by exp(-2 pi i k1 (16 b + n3) / N), and exchange k1 with n3, so
//                 that k1 runs along the rows and n3 counts them;
//   middle sweep  for every n3: transform over b, turn by exp(-2 pi i n3 kb / (16 B));
//   last sweep    for every kb: transform over n3.
//
// Each step of a sweep writes just where it has read: the first and the last one a square of 16 rows of 16 points, the
// middle one a row of B squares' edges, contiguous. So the sweeps work in place and leave natural order, and every step
// meets a line once: that rows a power of two apart fall into the same set of the cache costs no second fetch. Between
// the sweeps the points are kept as vectors of real and imaginary parts.

#include "transforms/fft/blocked.h"

#include "transforms/fft/strip.h"

namespace kels {
namespace {

/// Rows and columns of a square.
constexpr int side = 16;
constexpr int side_order = 4;

/// Calls f with the radices of the middle transform at a complex order.
template <class F>
auto with_middle_radices(int order, F&& f) {
    return with_column_radices(order - 2 * side_order, f);
}

template <class Layout, class T>
class BlockedTransform {
    using S = Strip<T>;
    using Vector = typename S::Vector;
    using Kept = typename Layout::Forward::template Of<Vector>;
    using Ends = typename Layout::template Of<Vector>;
    static constexpr int V = S::V;
    static constexpr int groups = side / V;

    const FftPlan<T>& plan_;
    const T factor_;
    const std::ptrdiff_t blocks_ = std::ptrdiff_t{1} << (plan_.complex_order - 2 * side_order);
    const std::ptrdiff_t row_ = blocks_ * side;
    S strip_;

    // A vector as long as a row is transposed in two steps, which leave the results in natural order.
    static constexpr bool wide = V == side;

public:
    /// The column that a lane holds when a square has been read.
    static constexpr int point(int lane) { return wide ? lane_point<Vector>(lane) : Ends::order(lane); }

    BlockedTransform(const FftPlan<T>& plan, T factor, S strip) : plan_(plan), factor_(factor), strip_(strip) {}

    [[gnu::noinline]] void run(Points<const T> src, Points<T> dst) {
        for (std::ptrdiff_t b = 0; b < blocks_; ++b) first_square(src, dst, b);
        with_middle_radices(plan_.complex_order, [&](auto radices) {
            for (std::ptrdiff_t n3 = 0; n3 < side; ++n3)
                for (std::ptrdiff_t column = 0; column < side; column += strip_lanes<T>)
                    middle_strip(radices, dst, n3, column);
        });
        for (std::ptrdiff_t i = 0; i < row_; i += V) last_columns(dst, i);
    }

private:
    [[gnu::always_inline]] static Complex<Vector> read(Points<const T> src, std::ptrdiff_t i) {
        if constexpr (wide)
            return Ends::read_across(src, i);
        else
            return Ends::read(src, i);
    }
    [[gnu::always_inline]] static void write(Points<T> dst, std::ptrdiff_t i, Complex<Vector> z) {
        if constexpr (wide)
            Ends::template write_pieces<V>(dst, i, 0, z);
        else
            Ends::write(dst, i, z);
    }

    /// Result k1 of the columns from `column` on, turned.
    template <int k1>
    [[gnu::always_inline]] Complex<Vector> turned(Complex<Vector> z, std::ptrdiff_t b, int column) const {
        if constexpr (k1 == 0) {
            return z;
        } else {
            const T* fine = plan_.lane_twiddles + 2 * (side - 1) * column + 2 * V * (k1 - 1);
            return times_root<k1>(z, plan_.twiddles + 2 * (side - 1) * b) *
                   Complex<Vector>{load<Vector>(fine), load<Vector>(fine + V)};
        }
    }

    /// In steps of four vectors, which registers hold: both halves of the butterfly, and of the transposition.
    void first_square(Points<const T> src, Points<T> dst, std::ptrdiff_t b) requires(wide) {
        unrolled<4>([&](auto j) KELS_INLINE {
            Complex<Vector> x[4];
            unrolled<4>([&](auto i) KELS_INLINE { x[i] = read(src, (j + 4 * i) * row_ + b * side); });
            butterfly<4>(x);
            unrolled<4>([&](auto k) KELS_INLINE { strip_.put_vector(4 * k + j, turned_16<j * k>(x[k])); });
        });
        unrolled<4>([&](auto k) KELS_INLINE {
            Complex<Vector> x[4];
            unrolled<4>([&](auto j) KELS_INLINE { x[j] = strip_.get_vector(4 * k + j); });
            butterfly<4>(x);
            unrolled<4>([&](auto i) KELS_INLINE { x[i] = turned<k + 4 * i>(x[i], b, 0); });
            exchange<4>(x, [](auto& rows) KELS_INLINE { transpose_parts<Vector>(rows); });
            unrolled<4>([&](auto p) KELS_INLINE { strip_.put_vector(side + 4 * p + k, x[p]); });
        });
        unrolled<4>([&](auto p) KELS_INLINE {
            Complex<Vector> x[4];
            unrolled<4>([&](auto k) KELS_INLINE { x[k] = strip_.get_vector(side + 4 * p + k); });
            exchange<4>(x, [](auto& rows) KELS_INLINE { transpose_inside_parts<Vector>(rows); });
            unrolled<4>([&](auto w) KELS_INLINE { Kept::keep(dst, point(4 * p + w) * row_ + b * side, x[w]); });
        });
    }

    void first_square(Points<const T> src, Points<T> dst, std::ptrdiff_t b) requires(!wide) {
        unrolled<groups>([&](auto group) KELS_INLINE {
            Complex<Vector> x[side];
            unrolled<side>([&](auto n1) KELS_INLINE { x[n1] = read(src, n1 * row_ + b * side + group * V); });
            butterfly<side>(x);
            each_result<side>([&](auto k1) KELS_INLINE { x[k1] = turned<k1>(x[k1], b, group * V); });
            unrolled<groups>([&](auto k) KELS_INLINE {
                transpose_tile<Ends, V, T>(x + k * V);
                unrolled<V>([&](auto i)
                                KELS_INLINE { strip_.put_vector((group * V + point(i)) * groups + k, x[k * V + i]); });
            });
        });
        for (std::ptrdiff_t row = 0; row < side; ++row) // now that all of the square has been read
            for (std::ptrdiff_t k = 0; k < groups; ++k)
                Kept::keep(dst, row * row_ + b * side + k * V, strip_.get_vector(row * groups + k));
    }

    /// A strip of row n3, from `column` of every square on.
    template <int... R>
    void middle_strip(Radices<R...> radices, Points<T> dst, std::ptrdiff_t n3, std::ptrdiff_t column) {
        const std::ptrdiff_t first = n3 * row_ + column;
        const T* turns = plan_.coarse_turns + 2 * n3 * blocks_;
        strip_.transform(
            radices, plan_.middle_twiddles,
            [&](std::ptrdiff_t b, std::ptrdiff_t group)
                KELS_INLINE { return Kept::kept(dst, first + b * side + group * V); },
            [&](std::ptrdiff_t k, std::ptrdiff_t group, Complex<Vector> z, std::ptrdiff_t) KELS_INLINE {
                const Complex<Vector> turn = {splat<Vector>(turns[2 * k]), splat<Vector>(turns[2 * k + 1])};
                Kept::keep(dst, first + k * side + group * V, z * turn);
            });
    }

    void last_columns(Points<T> dst, std::ptrdiff_t column) const {
        Complex<Vector> x[side];
        unrolled<side>([&](auto n) KELS_INLINE { x[n] = Kept::kept(dst, n * row_ + column); });
        butterfly<side>(x);
        each_result<side>([&](auto k) KELS_INLINE { write(dst, k * row_ + column, x[k] * factor_); });
    }
};

/// The kernel with scratch for middle columns up to an order.
template <class Layout, class T, int column_order>
void run_blocked(const FftPlan<T>& plan, const FftDirection<T>& direction, Points<const T> src, Points<T> dst) {
    typename Strip<T>::template Scratch<column_order> scratch;
    BlockedTransform<Layout, T>(plan, direction.factor, Strip<T>(scratch)).run(src, dst);
}

} // namespace

template <class Layout, class T>
FftKernel<T> blocked_kernel(int order) {
    return order < top_blocked_order ? run_blocked<Layout, T, top_column_order - 1>
                                     : run_blocked<Layout, T, top_column_order>;
}

template <class Layout, class T>
void lay_blocked(FftPlan<T>& plan, TableSpace& space) {
    const std::size_t points = std::size_t{1} << plan.complex_order, blocks = points / (side * side);
    const Circle circle(points);
    plan.middle_twiddles =
        with_middle_radices(plan.complex_order, [&](auto radices) { return lay_column_table<T>(space, radices); });

    T* coarse = space.take<T>(2 * blocks * (side - 1)); // of the first sweep: exp(-2 pi i k1 b / (16 B))
    plan.twiddles = coarse;
    for (std::size_t b = 0; coarse && b < blocks; ++b, coarse += 2 * (side - 1))
        circle.write(coarse, side - 1, b * side, b * side);

    constexpr int V = Strip<T>::V;
    T* fine = space.take<T>(2 * side * (side - 1)); // and exp(-2 pi i k1 n3 / N), in vectors
    plan.lane_twiddles = fine;
    for (std::size_t column = 0; fine && column < side; column += V)
        for (std::size_t k = 1; k < side; ++k)
            fine = write_root_vectors<V>(fine, circle, [=](std::size_t lane) {
                const int point = BlockedTransform<Layout, T>::point(static_cast<int>(lane));
                return k * (column + static_cast<std::size_t>(point));
            });

    T* turns = space.take<T>(2 * blocks * side); // of the middle sweep
    plan.coarse_turns = turns;
    for (std::size_t row = 0; turns && row < side; ++row, turns += 2 * blocks)
        circle.write(turns, blocks, 0, row * side);
}

template FftKernel<Kel32f> blocked_kernel<Interleaved<false>, Kel32f>(int);
template FftKernel<Kel32f> blocked_kernel<Interleaved<true>, Kel32f>(int);
template FftKernel<Kel32f> blocked_kernel<Split, Kel32f>(int);
template FftKernel<Kel64f> blocked_kernel<Interleaved<false>, Kel64f>(int);
template FftKernel<Kel64f> blocked_kernel<Interleaved<true>, Kel64f>(int);
template FftKernel<Kel64f> blocked_kernel<Split, Kel64f>(int);
template void lay_blocked<Interleaved<false>>(FftPlan<Kel32f>&, TableSpace&);
template void lay_blocked<Split>(FftPlan<Kel32f>&, TableSpace&);
template void lay_blocked<Interleaved<false>>(FftPlan<Kel64f>&, TableSpace&);
template void lay_blocked<Split>(FftPlan<Kel64f>&, TableSpace&);

} // namespace kels
