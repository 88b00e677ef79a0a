// Vector types for the kernels that earn more than a plain loop, and all that is done with them. Intrinsics stand in
// the folder simd/ only, each beside the words for processors without it, so that a new level needs no change
// elsewhere.
//
// A port to another processor touches
//
//     simd/vector.h          the width of a register
//     simd/arithmetic.h      fma, square_root, add_products and what alternates; `fuses`
//     simd/conversion.h      to_integer, nearest_in_any_mode
//     simd/folds.h           zero_or_not_finite
//     simd/lookup.h          lookup
//     modes.h                the modes of the unit that does the arithmetic
//     control_word.cpp       the services that are about this processor's control words
//     processor.cpp          its identification and its clock
#pragma once

#include "frame/simd/arithmetic.h"
#include "frame/simd/conversion.h"
#include "frame/simd/folds.h"
#include "frame/simd/lookup.h"
#include "frame/simd/pairs.h"
#include "frame/simd/shuffle.h"
#include "frame/simd/vector.h"
