// Transforms that do not fit the stack's scratch: N = A M A points in three sweeps over memory.
//
// With n = (n1 M + n2) A + n3 and k = k1 + A (k2 + M k3):
//
//   1. for every n2 and every strip of neighbouring columns n3: transform over n1, turn by exp(-2 pi i (n2 A + n3)
//   k1/N),
//      and store transposed, so that k1 runs where n3 ran;
//   2. for every n3 and every strip of k1: transform over n2, turn by exp(-2 pi i n3 k2 / (M A));
//   3. for every k2 and every strip of k1: transform over n3.
//
// Sweeps 2 and 3 work in place and leave natural order. Sweep 1 exchanges square blocks, so it works in place too:
// before row block g is overwritten, its unread blocks (g, h) move to (h, g), where the columns just read stood.
//
// A strip is `strip_lanes` columns (128 bytes of a row); it is gathered into scratch, transformed by middle passes, and
// scattered, the digit-reversed order of its rows undone on the way.
#pragma once

#include "transforms/fft_in_cache.h"

namespace kels {

/// Columns of a strip.
template <class T>
inline constexpr int strip_lanes = 64 / static_cast<int>(sizeof(T));

/// The longest transform of a strip's columns: 64 KiB of scratch.
inline constexpr int top_column_order = 9;

/// Split of a large order into A = 2^outer, M = 2^middle, A.
struct LargeShape {
    int outer, middle;
};

constexpr LargeShape large_shape(int order) {
    const int outer = std::min(order / 2, top_column_order);
    return {outer, order - 2 * outer};
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
    case 6:
        return f(Radices<8, 8>{});
    case 7:
        return f(Radices<16, 8>{});
    case 8:
        return f(Radices<16, 16>{});
    default:
        return f(Radices<8, 8, 8>{});
    }
}

/// The strip's transform for one column length.
template <class T>
class Strip {
public:
    static constexpr int lanes_of_vector = std::min(max_lanes<T>, strip_lanes<T>);
    static constexpr int groups = strip_lanes<T> / lanes_of_vector;
    using Vector = Vec<T, lanes_of_vector>;

    alignas(64) T scratch[(2 * strip_lanes<T>) << top_column_order];

    Complex<Vector> get(std::ptrdiff_t row, int group) const {
        const T* p = at(row, group);
        return {load<Vector>(p), load<Vector>(p + lanes_of_vector)};
    }
    void put(std::ptrdiff_t row, int group, Complex<Vector> z) {
        T* p = const_cast<T*>(at(row, group));
        store(p, z.re);
        store(p + lanes_of_vector, z.im);
    }

    /// Transforms every column of `rows` = R1 R2 ... rows; afterwards row `k` of the result stands at `place(k)`.
    template <int... R>
    void transform(Radices<R...>, const T* table) {
        passes<(R * ...), 1, R...>(table);
    }

    template <int R, int... More>
    static std::ptrdiff_t place(std::ptrdiff_t k, std::ptrdiff_t rows) {
        if constexpr (sizeof...(More) == 0)
            return k;
        else
            return (k % R) * (rows / R) + place<More...>(k / R, rows / R);
    }

private:
    const T* at(std::ptrdiff_t row, int group) const { return scratch + 2 * lanes_of_vector * (row * groups + group); }

    template <int Left, int Done, int R, int... More>
    void passes(const T* table) {
        constexpr int next = Left / R;
        middle_pass<R, lanes_of_vector>(scratch, Done, next, groups, table);
        if constexpr (sizeof...(More) > 0) passes<next, Done * R, More...>(table + 2 * next * (R - 1));
    }
};

/// Values in the twiddle tables of a strip's passes.
inline std::size_t column_table_size(std::initializer_list<int> radices) {
    std::size_t points = 1, size = 0;
    for (int r : radices) points *= static_cast<std::size_t>(r);
    for (int r : radices) {
        points /= static_cast<std::size_t>(r);
        size += 2 * points * static_cast<std::size_t>(r - 1);
    }
    return size;
}

template <class T>
void make_column_table(T* table, std::initializer_list<int> radices) {
    std::size_t points = 1;
    for (int r : radices) points *= static_cast<std::size_t>(r);
    for (int r : radices) {
        const std::size_t columns = points / static_cast<std::size_t>(r);
        for (std::size_t column = 0; column < columns; ++column)
            for (int k = 1; k < r; ++k, table += 2) write_root(table, column * static_cast<std::size_t>(k), points);
        points = columns;
    }
}

/// A root exp(-2 pi i j / N) as the product of a coarse and a fine one: tables of about sqrt(N) entries.
struct LargeRoots {
    const Kel64f *coarse, *fine;
    int fine_order;

    Complex<Kel64f> operator()(std::size_t j) const {
        const Kel64f* a = coarse + 2 * (j >> fine_order);
        const Kel64f* b = fine + 2 * (j & ((std::size_t{1} << fine_order) - 1));
        return Complex<Kel64f>{a[0], a[1]} * Complex<Kel64f>{b[0], b[1]};
    }
};

template <Mode mode, class T>
class LargeTransform {
    using S = Strip<T>;
    using Vector = typename S::Vector;
    using Plain = Interleaved<Mode{false, false}, Vector>;
    using Ends = Interleaved<mode, Vector>;
    static constexpr int V = S::lanes_of_vector;
    static constexpr int C = strip_lanes<T>;

    const FftPlan<T>& plan_;
    const LargeShape shape_ = large_shape(plan_.complex_order);
    const std::ptrdiff_t A_ = std::ptrdiff_t{1} << shape_.outer;
    const std::ptrdiff_t M_ = std::ptrdiff_t{1} << shape_.middle;
    S strip_;

public:
    explicit LargeTransform(const FftPlan<T>& plan) : plan_(plan) {}

    void run(const T* src, T* dst) {
        with_column_radices(shape_.outer, [&](auto radices) {
            for (std::ptrdiff_t n2 = 0; n2 < M_; ++n2)
                for (std::ptrdiff_t block = 0; block < A_ / C; ++block) first_sweep(radices, src, dst, n2, block);
        });
        if (M_ > 1)
            with_column_radices(shape_.middle, [&](auto radices) {
                for (std::ptrdiff_t n3 = 0; n3 < A_; ++n3)
                    for (std::ptrdiff_t k1 = 0; k1 < A_; k1 += C) middle_sweep(radices, dst, n3, k1);
            });
        with_column_radices(shape_.outer, [&](auto radices) {
            for (std::ptrdiff_t column = 0; column < M_ * A_; column += C) last_sweep(radices, dst, column);
        });
    }

private:
    /// Row r, first column of block c, of the square that belongs to n2.
    std::ptrdiff_t square(std::ptrdiff_t r, std::ptrdiff_t block, std::ptrdiff_t n2) const {
        return (r * M_ + n2) * A_ + block * C;
    }

    template <int... R>
    void first_sweep(Radices<R...> radices, const T* src, T* dst, std::ptrdiff_t n2, std::ptrdiff_t block) {
        const bool in_place = src == dst;
        for (std::ptrdiff_t n1 = 0; n1 < A_; ++n1) {
            const std::ptrdiff_t h = n1 / C;
            const bool moved = in_place && h < block;
            const std::ptrdiff_t from = moved ? square(block * C + n1 % C, h, n2) : square(n1, block, n2);
            for (int group = 0; group < S::groups; ++group) strip_.put(n1, group, Ends::read(src, from + group * V));
        }
        if (in_place)
            for (std::ptrdiff_t h = block + 1; h < A_ / C; ++h)
                for (std::ptrdiff_t i = 0; i < C; ++i)
                    std::memcpy(dst + 2 * square(h * C + i, block, n2), dst + 2 * square(block * C + i, h, n2),
                                2 * C * sizeof(T));
        strip_.transform(radices, plan_.twiddles);

        const LargeRoots root{plan_.coarse_roots, plan_.fine_roots, plan_.complex_order / 2};
        const std::ptrdiff_t column = n2 * A_ + block * C;
        for (std::ptrdiff_t k1 = 0; k1 < A_; k1 += V)
            for (int group = 0; group < S::groups; ++group) {
                Complex<Vector> x[V];
                for (int i = 0; i < V; ++i) {
                    const std::ptrdiff_t k = k1 + lane_order<Vector>(i);
                    const Complex<Kel64f> base = root(static_cast<std::size_t>(column * k));
                    const T* lane = plan_.lane_twiddles + 2 * (k * C + group * V);
                    const Complex<Vector> turn =
                        Complex<Vector>{load<Vector>(lane), load<Vector>(lane + V)} *
                        Complex<Vector>{splat<Vector>(static_cast<T>(base.re)), splat<Vector>(static_cast<T>(base.im))};
                    x[i] = strip_.get(S::template place<R...>(k, A_), group) * turn;
                }
                transpose_square(x);
                for (int i = 0; i < V; ++i) {
                    const std::ptrdiff_t n3 = block * C + group * V + lane_order<Vector>(i);
                    Plain::write(dst, (n3 * M_ + n2) * A_ + k1, x[i], T(0));
                }
            }
    }

    /// Transposes rows that the caller has put into `lane_order`.
    static void transpose_square(Complex<Vector>* x) {
        Vector re[V], im[V];
        unrolled<V>([&](auto i) KELS_INLINE {
            re[i] = x[i].re;
            im[i] = x[i].im;
        });
        transpose<Vector>(re);
        transpose<Vector>(im);
        unrolled<V>([&](auto i) KELS_INLINE { x[i] = {re[i], im[i]}; });
    }

    template <int... R>
    void middle_sweep(Radices<R...> radices, T* dst, std::ptrdiff_t n3, std::ptrdiff_t k1) {
        T* data = dst + 2 * (n3 * M_ * A_ + k1);
        gather(data, M_, A_);
        strip_.transform(radices, plan_.middle_twiddles);
        const LargeRoots root{plan_.coarse_roots, plan_.fine_roots, plan_.complex_order / 2};
        for (std::ptrdiff_t k2 = 0; k2 < M_; ++k2) {
            const Complex<Kel64f> base = root(static_cast<std::size_t>(n3 * k2 * A_)); // exp(-2 pi i n3 k2 / (M A))
            const Complex<Vector> turn = {splat<Vector>(static_cast<T>(base.re)),
                                          splat<Vector>(static_cast<T>(base.im))};
            for (int group = 0; group < S::groups; ++group)
                Plain::write(data, k2 * A_ + group * V, strip_.get(S::template place<R...>(k2, M_), group) * turn,
                             T(0));
        }
    }

    template <int... R>
    void last_sweep(Radices<R...> radices, T* dst, std::ptrdiff_t column) {
        T* data = dst + 2 * column;
        gather(data, A_, M_ * A_);
        strip_.transform(radices, plan_.twiddles);
        for (std::ptrdiff_t k3 = 0; k3 < A_; ++k3)
            for (int group = 0; group < S::groups; ++group)
                Ends::write(data, k3 * M_ * A_ + group * V, strip_.get(S::template place<R...>(k3, A_), group),
                            plan_.normFactor);
    }

    void gather(const T* data, std::ptrdiff_t rows, std::ptrdiff_t stride) {
        for (std::ptrdiff_t row = 0; row < rows; ++row)
            for (int group = 0; group < S::groups; ++group)
                strip_.put(row, group, Plain::read(data, row * stride + group * V));
    }
};

template <Mode mode, class T>
void run_large(const FftPlan<T>& plan, const T* src, T* dst) {
    LargeTransform<mode, T>(plan).run(src, dst);
}

} // namespace kels
