/** @file
 *  Thresholds: elements below or above a level are replaced.
 *
 *  **Level.** It has the real type of the element. Complex elements are compared by their magnitude, and for them, as
 *  for all inverse thresholds, it may not be negative; a negative zero and a NaN pass. An element at the level stays.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1),
 *  `kelStatusNegThreshLevel` (a level below 0, where it may not be), `kelStatusInvThreshZeroLevel`, a warning (inverse
 *  thresholds: the level is zero and so was an element; the whole vector is done), `kelStatusOk`. Nothing has been
 *  stored when an error is returned.
 *
 *  **Aliasing.** Element by element: `pDst` may be `pSrc`, exactly. Data may stand at any address.
 *
 *  **Rounding** follows no mode of the caller where results are integers.
 */
#ifndef KELS_THRESHOLDS_H
#define KELS_THRESHOLDS_H

#include "kels/status.h"

/** @name Threshold
 *  Elements below the level (`LT`), or above it (`GT`), become the level. `kelsThreshold` does the second for a
 *  `cmpMode` of 4, and the first for any other.  **Real numbers in floating point** are ordered by their bits: negative
 *  NaN, negative infinity, negative numbers, -0, +0, positive numbers, infinity, positive NaN. But for `64f` out of
 *  place, where they are compared as numbers: a zero is equal to the other one, and a NaN, in the element or in the
 *  level, counts as below.  **Complex elements** keep their phase: both parts are multiplied by level / magnitude; a
 *  zero raised to the level becomes (level, 0). `16sc` results are cut toward zero when lowered, and rounded away from
 *  it when raised, each part by itself: parts within 2^-37 below an integer, or 2^-33 above it, count as that integer.
 *  `32fc` rounds every step (squares, their sum, the quotient of the squares, its root) to 24 bits, without limits to
 *  its exponent; `64fc` results are within 1 ulp. A NaN element comes through, but in `32fc`: raised in place, its real
 *  part becomes the level; lowered out of place, both parts become NaN.
 *  @{ */
KELS_API KelStatus kelsThreshold_16s      (const Kel16s*  pSrc, Kel16s*  pDst, int len, Kel16s level, int cmpMode);
KELS_API KelStatus kelsThreshold_16s_I    (Kel16s*  pSrcDst, int len, Kel16s level, int cmpMode);
KELS_API KelStatus kelsThreshold_16sc     (const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel16s level, int cmpMode);
KELS_API KelStatus kelsThreshold_16sc_I   (Kel16sc* pSrcDst, int len, Kel16s level, int cmpMode);
KELS_API KelStatus kelsThreshold_32f      (const Kel32f*  pSrc, Kel32f*  pDst, int len, Kel32f level, int cmpMode);
KELS_API KelStatus kelsThreshold_32f_I    (Kel32f*  pSrcDst, int len, Kel32f level, int cmpMode);
KELS_API KelStatus kelsThreshold_32fc     (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f level, int cmpMode);
KELS_API KelStatus kelsThreshold_32fc_I   (Kel32fc* pSrcDst, int len, Kel32f level, int cmpMode);
KELS_API KelStatus kelsThreshold_64f      (const Kel64f*  pSrc, Kel64f*  pDst, int len, Kel64f level, int cmpMode);
KELS_API KelStatus kelsThreshold_64f_I    (Kel64f*  pSrcDst, int len, Kel64f level, int cmpMode);
KELS_API KelStatus kelsThreshold_64fc     (const Kel64fc* pSrc, Kel64fc* pDst, int len, Kel64f level, int cmpMode);
KELS_API KelStatus kelsThreshold_64fc_I   (Kel64fc* pSrcDst, int len, Kel64f level, int cmpMode);
KELS_API KelStatus kelsThreshold_LT_16s   (const Kel16s*  pSrc, Kel16s*  pDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_LT_16s_I (Kel16s*  pSrcDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_LT_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_LT_16sc_I(Kel16sc* pSrcDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_LT_32f   (const Kel32f*  pSrc, Kel32f*  pDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LT_32f_I (Kel32f*  pSrcDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LT_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LT_32fc_I(Kel32fc* pSrcDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LT_64f   (const Kel64f*  pSrc, Kel64f*  pDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_LT_64f_I (Kel64f*  pSrcDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_LT_64fc  (const Kel64fc* pSrc, Kel64fc* pDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_LT_64fc_I(Kel64fc* pSrcDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_GT_16s   (const Kel16s*  pSrc, Kel16s*  pDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_GT_16s_I (Kel16s*  pSrcDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_GT_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_GT_16sc_I(Kel16sc* pSrcDst, int len, Kel16s level);
KELS_API KelStatus kelsThreshold_GT_32f   (const Kel32f*  pSrc, Kel32f*  pDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_GT_32f_I (Kel32f*  pSrcDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_GT_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_GT_32fc_I(Kel32fc* pSrcDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_GT_64f   (const Kel64f*  pSrc, Kel64f*  pDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_GT_64f_I (Kel64f*  pSrcDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_GT_64fc  (const Kel64fc* pSrc, Kel64fc* pDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_GT_64fc_I(Kel64fc* pSrcDst, int len, Kel64f level);
/** @} */

/** @name Threshold with a value
 *  Elements below the level (`LTVal`), or above it (`GTVal`), become `value`. Real numbers are ordered as by
 *  `kelsThreshold`. Squared magnitudes are compared in extended precision, those of integers exactly; a complex NaN is
 *  replaced by `LTVal` and kept by `GTVal`.
 *  @{ */
KELS_API KelStatus kelsThreshold_LTVal_16s   (const Kel16s*  pSrc, Kel16s*  pDst, int len, Kel16s level, Kel16s value);
KELS_API KelStatus kelsThreshold_LTVal_16s_I (Kel16s*  pSrcDst, int len, Kel16s level, Kel16s value);
KELS_API KelStatus kelsThreshold_LTVal_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel16s level, Kel16sc value);
KELS_API KelStatus kelsThreshold_LTVal_16sc_I(Kel16sc* pSrcDst, int len, Kel16s level, Kel16sc value);
KELS_API KelStatus kelsThreshold_LTVal_32f   (const Kel32f*  pSrc, Kel32f*  pDst, int len, Kel32f level, Kel32f value);
KELS_API KelStatus kelsThreshold_LTVal_32f_I (Kel32f*  pSrcDst, int len, Kel32f level, Kel32f value);
KELS_API KelStatus kelsThreshold_LTVal_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f level, Kel32fc value);
KELS_API KelStatus kelsThreshold_LTVal_32fc_I(Kel32fc* pSrcDst, int len, Kel32f level, Kel32fc value);
KELS_API KelStatus kelsThreshold_LTVal_64f   (const Kel64f*  pSrc, Kel64f*  pDst, int len, Kel64f level, Kel64f value);
KELS_API KelStatus kelsThreshold_LTVal_64f_I (Kel64f*  pSrcDst, int len, Kel64f level, Kel64f value);
KELS_API KelStatus kelsThreshold_LTVal_64fc  (const Kel64fc* pSrc, Kel64fc* pDst, int len, Kel64f level, Kel64fc value);
KELS_API KelStatus kelsThreshold_LTVal_64fc_I(Kel64fc* pSrcDst, int len, Kel64f level, Kel64fc value);
KELS_API KelStatus kelsThreshold_GTVal_16s   (const Kel16s*  pSrc, Kel16s*  pDst, int len, Kel16s level, Kel16s value);
KELS_API KelStatus kelsThreshold_GTVal_16s_I (Kel16s*  pSrcDst, int len, Kel16s level, Kel16s value);
KELS_API KelStatus kelsThreshold_GTVal_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel16s level, Kel16sc value);
KELS_API KelStatus kelsThreshold_GTVal_16sc_I(Kel16sc* pSrcDst, int len, Kel16s level, Kel16sc value);
KELS_API KelStatus kelsThreshold_GTVal_32f   (const Kel32f*  pSrc, Kel32f*  pDst, int len, Kel32f level, Kel32f value);
KELS_API KelStatus kelsThreshold_GTVal_32f_I (Kel32f*  pSrcDst, int len, Kel32f level, Kel32f value);
KELS_API KelStatus kelsThreshold_GTVal_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f level, Kel32fc value);
KELS_API KelStatus kelsThreshold_GTVal_32fc_I(Kel32fc* pSrcDst, int len, Kel32f level, Kel32fc value);
KELS_API KelStatus kelsThreshold_GTVal_64f   (const Kel64f*  pSrc, Kel64f*  pDst, int len, Kel64f level, Kel64f value);
KELS_API KelStatus kelsThreshold_GTVal_64f_I (Kel64f*  pSrcDst, int len, Kel64f level, Kel64f value);
KELS_API KelStatus kelsThreshold_GTVal_64fc  (const Kel64fc* pSrc, Kel64fc* pDst, int len, Kel64f level, Kel64fc value);
KELS_API KelStatus kelsThreshold_GTVal_64fc_I(Kel64fc* pSrcDst, int len, Kel64f level, Kel64fc value);
/** @} */

/** @name Inverse threshold
 *  pDst[i] = 1 / pSrc[i], limited: an element below the level in magnitude has a reciprocal of magnitude 1 / level,
 *  with the sign of the element, or the phase of its true reciprocal; of a zero it is 1 / level. With a level of zero,
 *  the reciprocal of a zero is +infinity, with the warning.  Real numbers: `32f` compares bits without the sign, so
 *  that a NaN gives a NaN, and its level is zero if all its bits are; `64f` compares numbers, and a NaN is below every
 *  level above zero: its result has the magnitude 1 / level, and either sign.  Complex numbers, with m = re^2 + im^2:
 *  (re / m, -im / m) where m is not below level^2, else (re, -im) / (m^(1/2) level), and (1 / level, 0) of a zero.
 *  `32fc` rounds every step to 24 bits, without limits to its exponent, and counts a NaN for a zero. `64fc` is within 2
 *  ulp; there an element is zero, and the level too, if the upper 32 bits of all its parts are: a negative zero is not,
 *  and an element of two zeros with one among them gives NaNs.
 *  @{ */
KELS_API KelStatus kelsThreshold_LTInv_32f   (const Kel32f*  pSrc, Kel32f*  pDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LTInv_32f_I (Kel32f*  pSrcDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LTInv_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LTInv_32fc_I(Kel32fc* pSrcDst, int len, Kel32f level);
KELS_API KelStatus kelsThreshold_LTInv_64f   (const Kel64f*  pSrc, Kel64f*  pDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_LTInv_64f_I (Kel64f*  pSrcDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_LTInv_64fc  (const Kel64fc* pSrc, Kel64fc* pDst, int len, Kel64f level);
KELS_API KelStatus kelsThreshold_LTInv_64fc_I(Kel64fc* pSrcDst, int len, Kel64f level);
/** @} */

#endif
