// Transforms of n points, n a product of small factors, of many columns side by side: a row of neighbouring columns
// takes the place of a point, so that passes go over whole vectors.
//
// A pass of radix R over n = s R m points, s being the product of the radices before, takes the rows q + s (p + m u),
// transforms over u, turns by exp(-2 pi i p k / (R m)), and leaves the rows q + s (R p + k) (T. G. Stockham). So the
// order is natural on both ends, and every pass goes from one array to another.
#pragma once

#include "frame/tables.h"
#include "transforms/dft/points.h"
#include "transforms/roots.h"

#include <bit>

namespace kels {

/// Rows of columns: row i stands at data + i * row, in values.
template <class E>
struct Rows {
    E* data;
    std::ptrdiff_t row;

    operator Rows<const E>() const requires(!std::is_const_v<E>) { return {data, row}; }
    Rows from(std::ptrdiff_t column) const { return {data + 2 * column, row}; }
};

/// Counts of points that a vector may have, as powers of two.
inline constexpr int point_counts = 4;

template <class T>
struct ColumnPass {
    /// The pass over a number of columns.
    using Kernel = void (*)(const ColumnPass&, Rows<const T> in, Rows<T> out, std::ptrdiff_t columns);

    std::ptrdiff_t m, s;
    const T* roots;               ///< for every p, those of k from 1; ahead of the last pass only
    Kernel kernels[point_counts]; ///< by the points of a vector
};

template <class T>
struct ColumnTransform {
    static constexpr int most_passes = 16;

    std::ptrdiff_t length = 1;
    int count = 0;
    ColumnPass<T> passes[most_passes];
};

/// Time that a transform of n points takes per point, in terms of instructions; infinite where n has other factors, or
/// where it is not below the limit.
double column_cost(std::ptrdiff_t n, double limit);

/// Sets the passes of n points, whose factors are small, and lays their tables.
template <class T>
void lay_columns(ColumnTransform<T>& transform, std::ptrdiff_t n, TableSpace& space);

/// The transform of columns from `in` to `out`, by way of two arrays of as many rows. Only `out` and `spare` are
/// written; the last pass writes `out`, and the first reads `in`, which may be what is written two passes later.
template <class T>
void run_columns(const ColumnTransform<T>& transform, Rows<const T> in, Rows<T> out, Rows<T> spare, Rows<T> other,
                 std::ptrdiff_t columns, int points) {
    Rows<const T> from = in;
    for (int i = 0; i < transform.count; ++i) {
        const int left = transform.count - 1 - i;
        const Rows<T> to = left == 0 ? out : left % 2 ? spare : other;
        const ColumnPass<T>& pass = transform.passes[i];
        pass.kernels[std::countr_zero(static_cast<unsigned>(points))](pass, from, to, columns);
        from = to;
    }
}

} // namespace kels
