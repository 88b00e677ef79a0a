// Transforms that do not fit the stack's scratch: N = A M A points in two or three sweeps over memory.
//
// With n = (n1 M + n2) A + n3 and k = k1 + A (k2 + M k3):
//
//   first sweep   for every n2 and every strip of neighbouring columns n3: transform over n1, turn by
//                 exp(-2 pi i (n2 A + n3) k1 / N), and store transposed, so that k1 runs where n3 ran;
//   middle sweep  for every n3 and every strip of k1: transform over n2, turn by exp(-2 pi i n3 k2 / (M A));
//   last sweep    for every k2 and every strip of k1: transform over n3.
//
// The sweeps after the first work in place and leave natural order; with M = 2 the last one takes the middle one's work
// along where its columns fit, and M = 1 has none. The first one exchanges square blocks, so it works in place too:
// before row block g is overwritten, its unread blocks (g, h) move to (h, g), where the columns just read stood.
//
// A strip is `strip_lanes` columns, 128 bytes of a row. Its first pass reads memory and its last one writes memory;
// what lies between stays in 64 KiB of scratch.

#include "transforms/fft_large.h"

#include "transforms/fft_passes.h"
#include "transforms/fft_radices.h"

namespace kels {
namespace {

/// Columns of a strip.
template <class T>
inline constexpr int strip_lanes = 64 / static_cast<int>(sizeof(T));

/// The longest transform of a strip's columns: 64 KiB of scratch.
inline constexpr int top_column_order = 9;

/// Split of a large order: A = 2^outer, M = 2^middle. `last` is the order of the last sweep's columns.
struct LargeShape {
    int outer, middle, last;
};

constexpr LargeShape large_shape(int order) {
    const int outer = std::min(order / 2, top_column_order), middle = order - 2 * outer;
    return {outer, middle, middle == 1 && outer < top_column_order ? outer + 1 : outer};
}

/// Calls f with the radices of an outer column transform, of order 6 to 9.
template <class F>
auto with_outer_radices(int order, F&& f) {
    switch (order) {
    case 6:
        return f(Radices<8, 8>{});
    case 7:
        return f(Radices<8, 16>{});
    case 8:
        return f(Radices<16, 16>{});
    default:
        return f(Radices<8, 8, 8>{});
    }
}

/// Calls f with the radices of a column transform of order 1 to 9.
template <class F>
auto with_column_radices(int order, F&& f) {
    switch (order) {
    case 1:
        return f(Radices<2>{});
    case 2:
        return f(Radices<4>{});
    case 3:
        return f(Radices<8>{});
    case 4:
        return f(Radices<16>{});
    case 5:
        return f(Radices<4, 8>{});
    default:
        return with_outer_radices(order, f);
    }
}

/// Values in the twiddle tables of a column transform's passes; the last pass has none.
template <int... R>
std::size_t column_table_size(Radices<R...>) {
    std::size_t points = (std::size_t{1} * ... * R), size = 0;
    for (int r : {R...}) {
        points /= static_cast<std::size_t>(r);
        if (points > 1) size += 2 * points * static_cast<std::size_t>(r - 1);
    }
    return size;
}

template <class T, int... R>
void make_column_table(T* table, Radices<R...>) {
    std::size_t points = (std::size_t{1} * ... * R);
    for (int r : {R...}) {
        const std::size_t columns = points / static_cast<std::size_t>(r);
        for (std::size_t column = 0; columns > 1 && column < columns; ++column)
            for (int k = 1; k < r; ++k, table += 2) write_root(table, column * static_cast<std::size_t>(k), points);
        points = columns;
    }
}

/// A strip's columns in scratch, a group of lanes to a vector.
template <class T>
class Strip {
public:
    static constexpr int V = std::min(max_lanes<T>, strip_lanes<T>);
    static constexpr int groups = strip_lanes<T> / V;
    using Vector = Vec<T, V>;

    Complex<Vector> get(std::ptrdiff_t row, std::ptrdiff_t group) const {
        const T* p = scratch_ + 2 * V * (row * groups + group);
        return {load<Vector>(p), load<Vector>(p + V)};
    }

    /// Transforms every column: row n comes from in(n, group), row k goes to out(k, group, value, place); `place` is a
    /// row of scratch that is free by then.
    template <int R, int... More, class In, class Out>
    void transform(Radices<R, More...>, const T* table, In&& in, Out&& out) {
        constexpr int columns = (1 * ... * More);
        for (std::ptrdiff_t column = 0; column < columns; ++column)
            for (std::ptrdiff_t group = 0; group < groups; ++group) {
                Complex<Vector> x[R];
                unrolled<R>([&](auto u) KELS_INLINE { x[u] = in(u * columns + column, group); });
                butterfly<R>(x);
                if constexpr (columns == 1) {
                    unrolled<R>([&](auto k) KELS_INLINE { out(k, group, x[k], k); });
                } else {
                    const T* w = table + 2 * (R - 1) * column;
                    unrolled<R - 1>([&](auto i) KELS_INLINE {
                        x[i + 1] = x[i + 1] * Complex<Vector>{splat<Vector>(w[2 * i]), splat<Vector>(w[2 * i + 1])};
                    });
                    unrolled<R>([&](auto u) KELS_INLINE { put(u * columns + column, group, x[u]); });
                }
            }
        if constexpr (columns > 1) later_passes<R, columns, R, More...>(table + 2 * columns * (R - 1), out);
    }

    void put(std::ptrdiff_t row, std::ptrdiff_t group, Complex<Vector> z) {
        T* p = scratch_ + 2 * V * (row * groups + group);
        store(p, z.re);
        store(p + V, z.im);
    }

private:
    alignas(64) T scratch_[(2 * strip_lanes<T>) << top_column_order];

    /// `Done` blocks of `Left` rows remain; `First` and the radices behind it are those already taken, then those to
    /// come.
    template <int Done, int Left, int First, int R, int... More, class Out>
    void later_passes(const T* table, Out&& out) {
        if constexpr (sizeof...(More) > 0) {
            constexpr int next = Left / R;
            middle_pass<R, V>(scratch_, Done, next, groups, table);
            last_pass<Done * R, next, First, R>(out);
            static_assert(sizeof...(More) == 1, "columns take three passes at most");
        } else {
            last_pass<Done, R, First, 1>(out);
        }
    }

    /// Blocks (k1, k2) of R rows, k1 < First, k2 < Second.
    template <int Blocks, int R, int First, int Second, class Out>
    void last_pass(Out&& out) {
        static_assert(Blocks == First * Second);
        for (std::ptrdiff_t block = 0; block < Blocks; ++block)
            for (std::ptrdiff_t group = 0; group < groups; ++group) {
                Complex<Vector> x[R];
                unrolled<R>([&](auto u) KELS_INLINE { x[u] = get(block * R + u, group); });
                butterfly<R>(x);
                const std::ptrdiff_t first = block / Second + First * (block % Second);
                unrolled<R>([&](auto k) KELS_INLINE { out(first + k * Blocks, group, x[k], block * R + k); });
            }
    }
};

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
    using Plain = typename Layout::Forward::template Of<Vector>;
    using Ends = typename Layout::template Of<Vector>;
    static constexpr int V = S::V;
    static constexpr int C = strip_lanes<T>;
    static constexpr int width = Layout::width;

    const FftPlan<T>& plan_;
    const T factor_;
    const LargeShape shape_ = large_shape(plan_.complex_order);
    const std::ptrdiff_t A_ = std::ptrdiff_t{1} << shape_.outer;
    const std::ptrdiff_t M_ = std::ptrdiff_t{1} << shape_.middle;
    const LargeRoots root_{plan_.coarse_roots, plan_.fine_roots, plan_.complex_order / 2};
    S strip_;

public:
    LargeTransform(const FftPlan<T>& plan, T factor) : plan_(plan), factor_(factor) {}

    void run(Points<const T> src, Points<T> dst) {
        if (width == 1 && (src.re == dst.re) != (src.im == dst.im)) { // half in place: bring the other half along
            const std::size_t bytes = sizeof(T) << plan_.complex_order;
            if (src.re == dst.re)
                std::memcpy(dst.im, src.im, bytes);
            else
                std::memcpy(dst.re, src.re, bytes);
            src = dst;
        }
        with_outer_radices(shape_.outer, [&](auto radices) {
            for (std::ptrdiff_t n2 = 0; n2 < M_; ++n2)
                for (std::ptrdiff_t block = 0; block < A_ / C; ++block) first_sweep(radices, src, dst, n2, block);
        });
        if (M_ > 1 && shape_.last == shape_.outer)
            with_column_radices(shape_.middle, [&](auto radices) {
                for (std::ptrdiff_t n3 = 0; n3 < A_; ++n3)
                    for (std::ptrdiff_t k1 = 0; k1 < A_; k1 += C) middle_sweep(radices, dst, n3, k1);
            });
        with_outer_radices(shape_.last, [&](auto radices) {
            if (shape_.last == shape_.outer)
                for (std::ptrdiff_t column = 0; column < M_ * A_; column += C)
                    last_sweep(radices, dst, column, plan_.twiddles, M_ * A_, [](std::ptrdiff_t n) { return n; });
            else
                for (std::ptrdiff_t column = 0; column < A_; column += C)
                    last_sweep(radices, dst, column, plan_.middle_twiddles, A_, [this](std::ptrdiff_t n) {
                        return n % A_ * 2 + n / A_; // the row of (n2, n3)
                    });
        });
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
                transpose_tile<Plain, V, T>(x);
                for (int i = 0; i < V; ++i)
                    Plain::write(dst, square(block * C + group * V + Plain::order(i), 0, n2) + k1, x[i]);
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
                return Plain::read(dst, first + n2 * A_ + group * V);
            },
            [&](std::ptrdiff_t k2, std::ptrdiff_t group, Complex<Vector> z, std::ptrdiff_t) KELS_INLINE {
                const Complex<Kel64f> turn = root_(n3 * k2 * A_); // exp(-2 pi i n3 k2 / (M A))
                Plain::write(dst, first + k2 * A_ + group * V, z * broadcast(turn));
            });
    }

    template <int... R, class Row>
    void last_sweep(Radices<R...> radices, Points<T> dst, std::ptrdiff_t column, const T* table, std::ptrdiff_t stride,
                    Row row) {
        strip_.transform(
            radices, table,
            [&](std::ptrdiff_t n, std::ptrdiff_t group) KELS_INLINE {
                const std::ptrdiff_t at = column + row(n) * stride;
                if (group == 0) prefetch(dst, at);
                return Plain::read(dst, at + group * V);
            },
            [&](std::ptrdiff_t k, std::ptrdiff_t group, Complex<Vector> z, std::ptrdiff_t)
                KELS_INLINE { Ends::write(dst, column + k * stride + group * V, z * factor_); });
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
    Kel64f* table = space.take<Kel64f>(2 * entries);
    for (std::size_t i = 0; table && i < entries; ++i) write_root(table + 2 * i, i * step, points);
    return table;
}

template <class T>
const T* lay_column_table(TableSpace& space, int order) {
    return with_column_radices(order, [&](auto radices) -> const T* {
        T* table = space.take<T>(column_table_size(radices));
        if (table) make_column_table(table, radices);
        return table;
    });
}

} // namespace

template <class Layout, class T>
FftKernel<T> large_kernel() {
    return [](const FftPlan<T>& plan, T factor, Points<const T> src, Points<T> dst) {
        LargeTransform<Layout, T>(plan, factor).run(src, dst);
    };
}

template <class Layout, class T>
void lay_large(FftPlan<T>& plan, TableSpace& space) {
    const int order = plan.complex_order;
    const LargeShape shape = large_shape(order);
    const std::size_t points = std::size_t{1} << order, rows = std::size_t{1} << shape.outer;
    plan.twiddles = lay_column_table<T>(space, shape.outer);
    if (shape.middle > 0)
        plan.middle_twiddles = lay_column_table<T>(space, shape.last > shape.outer ? shape.last : shape.middle);
    plan.fine_roots = lay_roots(space, order / 2, 1, points);
    plan.coarse_roots = lay_roots(space, order - order / 2, std::size_t{1} << (order / 2), points);

    constexpr int V = Strip<T>::V;
    T* table = space.take<T>(2 * strip_lanes<T> * rows);
    plan.lane_twiddles = table;
    for (std::size_t k = 0; table && k < rows; ++k)
        for (std::size_t group = 0; group < Strip<T>::groups; ++group, table += 2 * V)
            for (int lane = 0; lane < V; ++lane) {
                T root[2];
                const auto n = group * V + static_cast<std::size_t>(Layout::template Of<Vec<T, V>>::order(lane));
                write_root(root, n * k, points);
                table[lane] = root[0];
                table[V + lane] = root[1];
            }
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
