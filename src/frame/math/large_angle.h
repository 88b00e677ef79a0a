// Angles so large that x - n pi / 2 needs more of pi than a few doubles.
#pragma once

namespace kels {

/// Up to it, n pi / 2 in pieces does.
inline constexpr double largest_small_angle = 0x1p20;

struct LargeAngle {
    double high, low; ///< the angle from -pi / 4 to pi / 4
    int quarters;     ///< quarter turns less, in the last two bits
};

/// A larger angle less a multiple of a quarter turn, with an error of at most 2^-120. An infinity gives a NaN.
LargeAngle folded_large_angle(double x);

} // namespace kels
