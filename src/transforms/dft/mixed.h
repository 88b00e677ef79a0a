// Transforms of lengths whose factors are small: N = A B points as two steps of column transforms.
//
// With n = n1 B + n2 and k = k1 + A k2:
//
//   first step    for every n2: transform over n1, turn by exp(-2 pi i n2 k1 / N), and store transposed, so that k1
//                 runs along the rows and n2 counts them;
//   second step   for every k1: transform over n2. Its rows are rows of the results.
//
// The inverse transform is the same with k1 and n2 counted backwards between the steps, and conjugate turns.
//
// Long transforms are bound by the memory that they touch: they take the destination as the middle array, where it is
// not the source, and turns as products of a coarse and a fine one.
#pragma once

#include "transforms/dft/columns.h"
#include "transforms/dft/ends.h"

namespace kels {

template <class T>
struct MixedTransform {
    std::ptrdiff_t length = 0, A = 0, B = 0;
    ColumnTransform<T> first, second;
    /// For every k1, the turns of exponents n2 k1: of all n2, or, where there are coarse ones, of the first ones.
    const T* turns = nullptr;
    const T* coarse = nullptr; ///< for every k1, those of the n2 that are multiples of a vector's most points

    static constexpr std::ptrdiff_t fine = 2 * max_points<T>;
    bool is_long() const { return length * static_cast<std::ptrdiff_t>(sizeof(T)) > 1 << 17; }
    std::ptrdiff_t turns_in_row() const { return is_long() ? fine : B; }
    std::ptrdiff_t coarse_in_row() const { return B / max_points<T> + 1; }
};

/// Whether a length has such factors.
template <class T>
bool is_mixed(std::ptrdiff_t length);

/// Sets the factors of such a length that take the least time.
template <class T>
void split_mixed(MixedTransform<T>& transform, std::ptrdiff_t length);

template <class T>
void lay_mixed(MixedTransform<T>& transform, TableSpace& space);

/// The transform of a source to a sink, which may be the same memory. `middle` is room for all points, and `rows` for
/// twice as many rows as the longer column has, as many points in each as `room` says.
template <class T, class Source, class Sink>
void run_mixed(const MixedTransform<T>& transform, Source source, Sink sink, bool inverse, T factor, T* middle);

} // namespace kels
