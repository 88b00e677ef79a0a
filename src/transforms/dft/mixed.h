// Transforms of lengths whose factors are small: N = A B points as two steps of column transforms.
//
// With n = n1 B + n2 and k = k1 + A k2:
//
//   first step    for every n2: transform over n1, turn by exp(-2 pi i n2 k1 / N), and store transposed, so that k1
//                 runs along the rows and n2 counts them;
//   second step   for every k1: transform over n2. Its rows are rows of the results.
//
// The inverse transform is the same with k1 and n2 counted backwards between the steps, and conjugate turns.
#pragma once

#include "transforms/dft/columns.h"
#include "transforms/dft/ends.h"

namespace kels {

template <class T>
struct MixedTransform {
    std::ptrdiff_t length = 0, A = 0, B = 0;
    ColumnTransform<T> first, second;
    const T* turns = nullptr; ///< row k1 of the exponents n2 k1, for every k1
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
