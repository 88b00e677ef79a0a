/** @file
 *  Arctangents, phases and magnitudes, the two conversions between Cartesian and polar coordinates, and power spectra,
 *  element by element. A complex vector comes interleaved, or as two arrays of its real and imaginary parts.
 *
 *  **Floating point.** Results are at most 1 ulp away from the exact value, power spectra in double precision 1.25 ulp
 *  on a machine that does not fuse; those in single precision are rounded from a value that is right to 2^-35, and have
 *  the same bits on every machine.
 *
 *  **Integers.** What a group says is multiplied by 2^-scaleFactor, rounded as the group says, and saturated. Every value of
 *  `scaleFactor` is good.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), `kelStatusOk`. Nothing
 *  has been stored when an error is returned, but for the note at ::kelsCartToPolar_32fc.
 *
 *  **Aliasing.** Element by element: a destination may be a source, exactly, where both have elements of one size; else the
 *  arrays are disjoint. Data may stand at any address.
 */
#ifndef KELS_POLAR_H
#define KELS_POLAR_H

#include "kels/status.h"

/** @name Arctangent
 *  pDst[i] = arctan pSrc[i], from -pi / 2 to pi / 2. Zeros of both signs give +0; infinities and signalling NaNs pi / 2 with
 *  their sign; quiet NaNs the quiet NaN of their sign without a payload.
 *  @{ */
KELS_API KelStatus kelsArctan_32f  (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsArctan_64f  (const Kel64f* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsArctan_32f_I(Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsArctan_64f_I(Kel64f* pSrcDst, int len);
/** @} */

/** @name Phase
 *  pDst[i] = the angle of pSrc[i], or of pSrcRe[i] + i pSrcIm[i], from -pi to pi, with the signs of the C library's `atan2`:
 *  -pi for a negative zero above a negative real part, 0 for 0.
 *
 *  Integers are rounded to nearest, halves away from zero. With a scale factor of 0 the angle is one of first order: with
 *  r = |im| + 1e-10 it is pi / 4 (1 - (re - r) / (re + r)) for a real part from 0 on and
 *  pi / 4 (3 - (re + r) / (r - re)) below, and has the sign of the imaginary part; 0 for 0. It is up to 0.071 off.
 *  @{ */
KELS_API KelStatus kelsPhase_64fc    (const Kel64fc* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsPhase_32fc    (const Kel32fc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsPhase_16sc32f (const Kel16sc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsPhase_64f     (const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDst, int len);
KELS_API KelStatus kelsPhase_32f     (const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDst, int len);
KELS_API KelStatus kelsPhase_16s32f  (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel32f* pDst, int len);
KELS_API KelStatus kelsPhase_16sc_Sfs(const Kel16sc* pSrc, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsPhase_16s_Sfs (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16s* pDst, int len, int scaleFactor);
/** @} */

/** @name Magnitude
 *  pDst[i] = (re^2 + im^2)^(1/2). Nothing overflows but the result, nothing underflows; with a NaN the magnitude is one.
 *
 *  Results in single precision round every step, the squares, their sum and the root, to 24 bits, and follow the rounding
 *  mode of the SIMD unit. `16s` is the exact root, rounded to nearest with ties to even for a scale factor from 0 on; below,
 *  and in `32sc` always, it is rounded as the x87 unit is set to.
 *  @{ */
KELS_API KelStatus kelsMagnitude_32fc    (const Kel32fc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsMagnitude_64fc    (const Kel64fc* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsMagnitude_16sc32f (const Kel16sc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsMagnitude_32f     (const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDst, int len);
KELS_API KelStatus kelsMagnitude_64f     (const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDst, int len);
KELS_API KelStatus kelsMagnitude_16sc_Sfs(const Kel16sc* pSrc, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMagnitude_32sc_Sfs(const Kel32sc* pSrc, Kel32s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMagnitude_16s_Sfs (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16s* pDst, int len, int scaleFactor);
/** @} */

/** @name Power spectrum
 *  pDst[i] = re^2 + im^2. Integers are shifted right, which cuts, by a scale factor above 0; below, they are saturated,
 *  multiplied and saturated again.
 *  @{ */
KELS_API KelStatus kelsPowerSpectr_64fc    (const Kel64fc* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsPowerSpectr_32fc    (const Kel32fc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsPowerSpectr_16sc32f (const Kel16sc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsPowerSpectr_64f     (const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDst, int len);
KELS_API KelStatus kelsPowerSpectr_32f     (const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDst, int len);
KELS_API KelStatus kelsPowerSpectr_16s32f  (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel32f* pDst, int len);
KELS_API KelStatus kelsPowerSpectr_16sc_Sfs(const Kel16sc* pSrc, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsPowerSpectr_16s_Sfs (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16s* pDst, int len, int scaleFactor);
/** @} */

/** @name Cartesian to polar coordinates
 *  Magnitude and phase of every element, one after the other as their own functions give them: pDstMagn is none of the
 *  sources. The first status that is not `kelStatusOk` is the result; with one destination null the other one is filled
 *  all the same.
 *  @{ */
KELS_API KelStatus kelsCartToPolar_32fc(const Kel32fc* pSrc, Kel32f* pDstMagn, Kel32f* pDstPhase, int len);
KELS_API KelStatus kelsCartToPolar_64fc(const Kel64fc* pSrc, Kel64f* pDstMagn, Kel64f* pDstPhase, int len);
KELS_API KelStatus kelsCartToPolar_32f (const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDstMagn, Kel32f* pDstPhase, int len);
KELS_API KelStatus kelsCartToPolar_64f (const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDstMagn, Kel64f* pDstPhase, int len);
/** @} */

/** @name Polar to Cartesian coordinates
 *  pDst[i] = pSrcMagn[i] (cos pSrcPhase[i] + i sin pSrcPhase[i]), for angles of any size; an infinite one gives NaNs.
 *  @{ */
KELS_API KelStatus kelsPolarToCart_32fc(const Kel32f* pSrcMagn, const Kel32f* pSrcPhase, Kel32fc* pDst, int len);
KELS_API KelStatus kelsPolarToCart_64fc(const Kel64f* pSrcMagn, const Kel64f* pSrcPhase, Kel64fc* pDst, int len);
KELS_API KelStatus kelsPolarToCart_32f (const Kel32f* pSrcMagn, const Kel32f* pSrcPhase, Kel32f* pDstRe, Kel32f* pDstIm, int len);
KELS_API KelStatus kelsPolarToCart_64f (const Kel64f* pSrcMagn, const Kel64f* pSrcPhase, Kel64f* pDstRe, Kel64f* pDstIm, int len);
/** @} */

#endif
