// The two steps of a mixed transform.

#include "transforms/dft/mixed.h"

#include <cmath>

namespace kels {
namespace {

/// Bytes for the rows of a piece of columns, twice: on the stack, or in work memory that is not needed otherwise. Where
/// the data come from far, more of a row at a time counts for more than that the scratch stays in the innermost cache.
constexpr std::ptrdiff_t scratch_on_stack = 40960, scratch_from_afar = 57344;

/// Turns a piece of the first step's rows, k1 counting them and n2 in the row from `n2` on, and stores it transposed.
template <bool inverse, bool is_long, int P, class T>
void turn_and_transpose(const MixedTransform<T>& t, Rows<const T> rows, std::ptrdiff_t n2, std::ptrdiff_t columns,
                        T factor, T* middle) {
    using V = WorkVec<T, P>;
    const std::ptrdiff_t A = t.A, B = t.B;
    for (std::ptrdiff_t c = 0; c < columns; c += P) {
        const std::ptrdiff_t column = n2 + c, q = column / max_points<T>, r = column % max_points<T>;
        T* to[P];
        unrolled<P>([&](auto i) KELS_INLINE {
            const std::ptrdiff_t row = column + i;
            to[i] = middle + 2 * A * (inverse && row > 0 ? B - row : row);
        });
        for (std::ptrdiff_t block = 0; block < A; block += P) {
            const std::ptrdiff_t k1 = std::min(block, A - P);
            V x[P];
            unrolled<P>([&](auto i) KELS_INLINE {
                const std::ptrdiff_t k = k1 + i, row = inverse && k > 0 ? A - k : k;
                const V z = load_points<P>(rows.data + row * rows.row + 2 * c);
                V w;
                if constexpr (is_long)
                    w = times_scalar(load_points<P>(t.turns + 2 * (k * t.fine + r)),
                                     t.coarse + 2 * (k * t.coarse_in_row() + q));
                else
                    w = load_points<P>(t.turns + 2 * (k * B + column));
                x[i] = (inverse ? conjugate_product(z, w) : point_product(z, w)) * splat<V>(factor);
            });
            if constexpr (P > 1) transpose_points<V>(x);
            unrolled<P>([&](auto i) KELS_INLINE { store_points<P>(to[i] + 2 * k1, x[i]); });
        }
    }
}

template <class T>
void turn_and_transpose(const MixedTransform<T>& t, Rows<const T> rows, std::ptrdiff_t n2, std::ptrdiff_t columns,
                        int points, bool inverse, T factor, T* middle) {
    while (points > t.A) points /= 2;
    with_points<T>(points, [&]<int P>(std::integral_constant<int, P>) {
        constexpr decltype(&turn_and_transpose<false, false, P, T>) kernels[2][2] = {
            {turn_and_transpose<false, false, P, T>, turn_and_transpose<false, true, P, T>},
            {turn_and_transpose<true, false, P, T>, turn_and_transpose<true, true, P, T>}};
        kernels[inverse][t.is_long()](t, rows, n2, columns, factor, middle);
    });
}

/// The columns of a piece: as many as the scratch has room for, twice, in vectors that one row holds.
template <class T>
struct Pieces {
    std::ptrdiff_t widest;
    int points = max_points<T>;

    Pieces(std::ptrdiff_t longest, std::ptrdiff_t bytes) : widest(bytes / (4 * static_cast<int>(sizeof(T)) * longest)) {
        while (points > widest && points > 1) points /= 2;
        widest = std::max<std::ptrdiff_t>(widest / points * points, 1);
    }
};

/// Columns that find room at all; a longer length is no mixed one.
template <class T>
inline constexpr std::ptrdiff_t longest_column = scratch_on_stack / (4 * static_cast<int>(sizeof(T)));

template <class T>
struct Scratch {
    T* values;

    Rows<T> rows(int which, std::ptrdiff_t length, std::ptrdiff_t columns) const {
        return {values + which * 2 * length * columns, 2 * columns};
    }
};

/// The rows of a source that a piece takes, in memory.
template <class T, class Source>
Rows<const T> read_rows(const MixedTransform<T>& t, Source source, std::ptrdiff_t first, std::ptrdiff_t columns,
                        int points, Rows<T> room) {
    if constexpr (interleaved<Source>) {
        return Rows<const T>{source.data, 2 * t.B}.from(first);
    } else {
        with_points<T>(points, [&]<int P>(std::integral_constant<int, P>) {
            for (std::ptrdiff_t n1 = 0; n1 < t.A; ++n1)
                for (std::ptrdiff_t c = 0; c < columns; c += P)
                    store(room.data + n1 * room.row + 2 * c,
                          source.template read<PointVec<T, P>>(n1 * t.B + first + c));
        });
        return room;
    }
}

template <class T, class Sink>
void write_rows(const MixedTransform<T>& t, Rows<const T> rows, Sink sink, std::ptrdiff_t first, std::ptrdiff_t columns,
                int points) {
    with_points<T>(points, [&]<int P>(std::integral_constant<int, P>) {
        for (std::ptrdiff_t k2 = 0; k2 < t.B; ++k2)
            for (std::ptrdiff_t c = 0; c < columns; c += P)
                sink.write(k2 * t.A + first + c, load<PointVec<T, P>>(rows.data + k2 * rows.row + 2 * c));
    });
}

/// Vectors of the widest kind that cover n columns, and narrower ones at a part of the price.
template <class T>
double vectors(std::ptrdiff_t n) {
    double sum = 0;
    each_piece(n, n, max_points<T>, [&](std::ptrdiff_t, std::ptrdiff_t count, int points) {
        sum += static_cast<double>(count / points) * (points == max_points<T> ? 1 : 0.7);
    });
    return sum;
}

/// Calls f(A) for the factors that may be taken, near the root, until it says that it has had enough.
template <class T, class F>
void each_factor(std::ptrdiff_t length, F f) {
    std::ptrdiff_t rest = length;
    for (const int p : {2, 3, 5, 7, 11, 13})
        while (rest % p == 0) rest /= p;
    if (rest != 1) return;
    const auto root = static_cast<std::ptrdiff_t>(std::sqrt(static_cast<double>(length)));
    for (std::ptrdiff_t A = std::max<std::ptrdiff_t>(root / 6, 2); A <= 6 * (root + 1) && A < length; ++A)
        if (length % A == 0 && std::max(A, length / A) <= longest_column<T>)
            if (f(A)) return;
}

} // namespace

template <class T>
bool is_mixed(std::ptrdiff_t length) {
    bool found = false;
    each_factor<T>(length, [&](std::ptrdiff_t) { return found = true; });
    return found;
}

template <class T>
void split_mixed(MixedTransform<T>& t, std::ptrdiff_t length) {
    double least = INFINITY;
    each_factor<T>(length, [&](std::ptrdiff_t A) {
        const std::ptrdiff_t B = length / A;
        const double of_a = static_cast<double>(A) * vectors<T>(B), of_b = static_cast<double>(B) * vectors<T>(A);
        double cost = 10 * vectors<T>(A) * vectors<T>(B) * max_points<T>;
        cost += of_a * column_cost(A, (least - cost) / of_a);
        if (cost < least) cost += of_b * column_cost(B, (least - cost) / of_b);
        if (cost < least) {
            least = cost;
            t.A = A;
            t.B = B;
        }
        return false;
    });
    t.length = length;
}

template <class T>
void lay_mixed(MixedTransform<T>& t, TableSpace& space) {
    lay_columns(t.first, t.A, space);
    lay_columns(t.second, t.B, space);
    const auto row = static_cast<std::size_t>(t.turns_in_row());
    const auto coarse_row = static_cast<std::size_t>(t.is_long() ? t.coarse_in_row() : 0);
    T* turns = space.take<T>(2 * row * static_cast<std::size_t>(t.A));
    T* coarse = space.take<T>(2 * coarse_row * static_cast<std::size_t>(t.A));
    t.turns = turns;
    t.coarse = coarse;
    const Circle circle(static_cast<std::size_t>(t.length));
    for (std::size_t k1 = 0; turns && k1 < static_cast<std::size_t>(t.A); ++k1) {
        circle.write(turns + 2 * k1 * row, row, 0, k1);
        circle.write(coarse + 2 * k1 * coarse_row, coarse_row, 0, k1 * max_points<T>);
    }
}

template <class T, class Source, class Sink>
void run_mixed(const MixedTransform<T>& t, Source source, Sink sink, bool inverse, T factor, T* middle) {
    alignas(64) T on_stack[scratch_on_stack / sizeof(T)];
    Scratch<T> scratch{on_stack};
    bool through_destination = false;
    if constexpr (interleaved<Source> && interleaved<Sink>)
        if (t.is_long() && source.data != sink.data) {
            through_destination = true;
            scratch.values = middle;
            middle = sink.data;
        }
    const Pieces<T> pieces(std::max(t.A, t.B), through_destination ? scratch_from_afar : scratch_on_stack);
    const auto first_step = [&](std::ptrdiff_t first, std::ptrdiff_t columns, int points) {
        const Rows<T> result = scratch.rows(0, t.A, columns), spare = scratch.rows(1, t.A, columns);
        const bool into_spare = t.first.count % 2 == 0; // the first pass writes there
        const Rows<const T> in = read_rows(t, source, first, columns, points, into_spare ? result : spare);
        run_columns(t.first, in, result, spare, result, columns, points);
        turn_and_transpose<T>(t, result, first, columns, points, inverse, factor, middle);
    };
    const auto second_step = [&](std::ptrdiff_t first, std::ptrdiff_t columns, int points) {
        const Rows<T> other = scratch.rows(0, t.B, columns), spare = scratch.rows(1, t.B, columns);
        const Rows<const T> in = Rows<const T>{middle, 2 * t.A}.from(first);
        if constexpr (interleaved<Sink>) {
            run_columns(t.second, in, Rows<T>{sink.data, 2 * t.A}.from(first), spare, other, columns, points);
        } else {
            run_columns(t.second, in, other, spare, other, columns, points);
            write_rows<T>(t, other, sink, first, columns, points);
        }
    };
    each_piece(t.is_long(), t.B, pieces.widest, pieces.points, first_step);
    each_piece(through_destination, t.A, pieces.widest, pieces.points, second_step);
}

#define KELS_MIXED(T)                                                                                                  \
    template bool is_mixed<T>(std::ptrdiff_t);                                                                         \
    template void split_mixed(MixedTransform<T>&, std::ptrdiff_t);                                                     \
    template void lay_mixed(MixedTransform<T>&, TableSpace&);                                                          \
    template void run_mixed(const MixedTransform<T>&, InterleavedSource<T>, InterleavedSink<T>, bool, T, T*);          \
    template void run_mixed(const MixedTransform<T>&, SplitSource<T>, SplitSink<T>, bool, T, T*);                      \
    template void run_mixed(const MixedTransform<T>&, RealSource<T>, HalfSink<T>, bool, T, T*);                        \
    template void run_mixed(const MixedTransform<T>&, HalfSource<T>, RealSink<T>, bool, T, T*);
KELS_MIXED(Kel32f)
KELS_MIXED(Kel64f)
#undef KELS_MIXED

} // namespace kels
