// Transforms of short lengths whose factors are small, as straight code.
//
// A length that is a radix itself is one butterfly of points. N = A B, both of them radices, is done in two steps as
// longer ones are (mixed.h), the turns and the transposition being part of the first:
//
//   first step    for P neighbouring n2: transform over n1, turn, transpose squares of P x P points on the way to the
//                 middle array, where k1 runs along the rows and n2 counts them;
//   second step   for P neighbouring k1: transform over n2, to the places where the results belong.
//
// What is left of a row is done by vectors that reach back.
#pragma once

#include "frame/tables.h"
#include "transforms/dft/ends.h"

namespace kels {

/// The longest one.
inline constexpr std::ptrdiff_t longest_short = 256;

template <class T>
struct ShortTransform {
    using First = void (*)(const ShortTransform&, const T* src, T factor, T* middle);
    using Second = void (*)(const ShortTransform&, const T* middle, T* dst);

    std::ptrdiff_t length = 0, A = 1, B = 1;
    First first[2] = {}; ///< forward and inverse; where A is 1, there is but one step, which needs no plan
    Second second = nullptr;
    const T* turns = nullptr; ///< for every vector of the first step and k1 from 1, in the order of access
};

/// Whether a length is such a one.
template <class T>
bool is_short(std::ptrdiff_t length);

/// Sets the factors of such a length.
template <class T>
void split_short(ShortTransform<T>& transform, std::ptrdiff_t length);

template <class T>
void lay_short(ShortTransform<T>& transform, TableSpace& space);

/// The transform of a source to a sink, which may be the same memory.
template <class T, class Source, class Sink>
void run_short(const ShortTransform<T>& transform, Source source, Sink sink, bool inverse, T factor);

} // namespace kels
