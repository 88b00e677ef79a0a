// The complex transform in fixed point.
#pragma once

#include "frame/tables.h"
#include "kels/types.h"

#include <cstddef>

namespace kels {

/// Words of complex points, real and imaginary parts in arrays of their own.
struct FixedPoints {
    Kel32u *re, *im;
};

/// What the passes read whose roots differ from lane to lane: see fixed_core.cpp.
struct FixedTables {
    const Kel32u* lane_roots[2] = {};
};

FixedTables lay_fixed_tables(int order, TableSpace& space);

/// The forward transform of 2^order points, order 0 to 10, both sides in natural order. It goes to and fro between the
/// points and the work space; what is given back is where the result stands.
FixedPoints fixed_transform(const FixedTables& tables, int order, FixedPoints points, FixedPoints work);

} // namespace kels
