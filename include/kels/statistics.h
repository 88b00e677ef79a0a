/** @file
 *  Reductions of one vector or two to a value: sums, means, deviations, extremes, norms and dot products; and the
 *  larger and the smaller of two vectors, element by element.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1, for a standard
 *  deviation below 2), `kelStatusOk`. kelsMaxOrder tests the length first. Nothing has been stored when an error is
 *  returned.
 *
 *  **Accuracy.** Integers are exact before they are scaled, at any length. Singles are summed in double precision, in a
 *  fixed order, so that the bits do not depend on the processor level or on alignment: a result is within 1 ulp + n 2^-53
 *  of the sum of the magnitudes of the n terms. Doubles, and products of singles where the
 *  result is double, are summed with the rounding errors of every step kept: within 1 ulp + n 2^-64 of the sum of the
 *  magnitudes. Nothing overflows on the way to a result that is in range.
 *
 *  **Scale factor.** The value is multiplied by 2^-scaleFactor. Every value of `scaleFactor` is good. How the result is
 *  rounded differs, and stands with each group; it saturates.
 *
 *  **Arguments.** `hint` has no effect.
 */
#ifndef KELS_STATISTICS_H
#define KELS_STATISTICS_H

#include "kels/status.h"

/** @name Sums
 *  *pSum = pSrc[0] + ... + pSrc[len - 1], each part of complex elements by itself. A positive scale factor rounds to
 *  nearest, ties to even; from 49 on the result is 0. The scaled sum saturates to 32 bits, and then to 16 where they
 *  are asked for.
 *  @{ */
KELS_API KelStatus kelsSum_16s32s_Sfs  (const Kel16s*  pSrc, int len, Kel32s*  pSum, int scaleFactor);
KELS_API KelStatus kelsSum_16s_Sfs     (const Kel16s*  pSrc, int len, Kel16s*  pSum, int scaleFactor);
KELS_API KelStatus kelsSum_16sc32sc_Sfs(const Kel16sc* pSrc, int len, Kel32sc* pSum, int scaleFactor);
KELS_API KelStatus kelsSum_16sc_Sfs    (const Kel16sc* pSrc, int len, Kel16sc* pSum, int scaleFactor);
KELS_API KelStatus kelsSum_32f         (const Kel32f*  pSrc, int len, Kel32f*  pSum, int hint);
KELS_API KelStatus kelsSum_32fc        (const Kel32fc* pSrc, int len, Kel32fc* pSum, int hint);
KELS_API KelStatus kelsSum_64f         (const Kel64f*  pSrc, int len, Kel64f*  pSum);
/** @} */

/** @name Means
 *  *pMean = (pSrc[0] + ... + pSrc[len - 1]) / len, each part of complex elements by itself. Integer results are rounded
 *  in the caller's mode, that of the x87 unit: to nearest, ties to even, if none has been set; `16sc` multiplies by the
 *  rounded reciprocal of the length, so that a mean halfway between integers may go either way. With a scale factor of
 *  16 or more the result is 0; with -15 or less it is 32767, -32768 or 0 by the sign of the sum.
 *  @{ */
KELS_API KelStatus kelsMean_16s_Sfs (const Kel16s*  pSrc, int len, Kel16s*  pMean, int scaleFactor);
KELS_API KelStatus kelsMean_16sc_Sfs(const Kel16sc* pSrc, int len, Kel16sc* pMean, int scaleFactor);
KELS_API KelStatus kelsMean_32f     (const Kel32f*  pSrc, int len, Kel32f*  pMean, int hint);
KELS_API KelStatus kelsMean_32fc    (const Kel32fc* pSrc, int len, Kel32fc* pMean, int hint);
KELS_API KelStatus kelsMean_64f     (const Kel64f*  pSrc, int len, Kel64f*  pMean);
/** @} */

/** @name Standard deviations
 *  *pStdDev = sqrt((n Q - S^2) / (n (n - 1))), S the sum of the n elements and Q that of their squares. `len` is at
 *  least 2. The result is 0 where the quotient has its sign bit set, as the NaN has that comes of infinite elements;
 *  other NaNs come through. Integer results are rounded in the caller's mode, that of the x87 unit: to nearest, ties to
 *  even, if none has been set.
 *  @{ */
KELS_API KelStatus kelsStdDev_16s32s_Sfs(const Kel16s* pSrc, int len, Kel32s* pStdDev, int scaleFactor);
KELS_API KelStatus kelsStdDev_16s_Sfs   (const Kel16s* pSrc, int len, Kel16s* pStdDev, int scaleFactor);
KELS_API KelStatus kelsStdDev_32f       (const Kel32f* pSrc, int len, Kel32f* pStdDev, int hint);
KELS_API KelStatus kelsStdDev_64f       (const Kel64f* pSrc, int len, Kel64f* pStdDev);
/** @} */

/** @name Extremes
 *  The largest and the smallest element. Floating-point elements are ordered by their bits: a zero above a negative
 *  zero, a NaN above infinity or, with its sign bit set, below minus infinity.
 *  @{ */
KELS_API KelStatus kelsMax_16s(const Kel16s* pSrc, int len, Kel16s* pMax);
KELS_API KelStatus kelsMax_32f(const Kel32f* pSrc, int len, Kel32f* pMax);
KELS_API KelStatus kelsMax_64f(const Kel64f* pSrc, int len, Kel64f* pMax);
KELS_API KelStatus kelsMin_16s(const Kel16s* pSrc, int len, Kel16s* pMin);
KELS_API KelStatus kelsMin_32f(const Kel32f* pSrc, int len, Kel32f* pMin);
KELS_API KelStatus kelsMin_64f(const Kel64f* pSrc, int len, Kel64f* pMin);
/** @} */

/** @name Extremes and where they are
 *  The index is that of the first of equal extremes. Elements are compared as numbers: a NaN is passed over by
 *  kelsMaxIndx, but for one at index 0, which stays; in kelsMinIndx a NaN and the element behind it are taken for
 *  smaller, so that what follows the last NaN decides, or that NaN itself if it is the last element. A null `pIndx` is
 *  no error: the result is then that of kelsMax or kelsMin.
 *  @{ */
KELS_API KelStatus kelsMaxIndx_16s(const Kel16s* pSrc, int len, Kel16s* pMax, int* pIndx);
KELS_API KelStatus kelsMaxIndx_32f(const Kel32f* pSrc, int len, Kel32f* pMax, int* pIndx);
KELS_API KelStatus kelsMaxIndx_64f(const Kel64f* pSrc, int len, Kel64f* pMax, int* pIndx);
KELS_API KelStatus kelsMinIndx_16s(const Kel16s* pSrc, int len, Kel16s* pMin, int* pIndx);
KELS_API KelStatus kelsMinIndx_32f(const Kel32f* pSrc, int len, Kel32f* pMin, int* pIndx);
KELS_API KelStatus kelsMinIndx_64f(const Kel64f* pSrc, int len, Kel64f* pMin, int* pIndx);
/** @} */

/** @name The larger and the smaller of two vectors
 *  pSrcDst[i] becomes the larger (smaller) of pSrc[i] and pSrcDst[i]. Of equal numbers that of `pSrcDst` stays, and
 *  beside a NaN kelsMaxEvery takes the element of `pSrc`, kelsMinEvery that of `pSrcDst`.
 *  @{ */
KELS_API KelStatus kelsMaxEvery_16s_I(const Kel16s* pSrc, Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsMaxEvery_32s_I(const Kel32s* pSrc, Kel32s* pSrcDst, int len);
KELS_API KelStatus kelsMaxEvery_32f_I(const Kel32f* pSrc, Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsMinEvery_16s_I(const Kel16s* pSrc, Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsMinEvery_32s_I(const Kel32s* pSrc, Kel32s* pSrcDst, int len);
KELS_API KelStatus kelsMinEvery_32f_I(const Kel32f* pSrc, Kel32f* pSrcDst, int len);
/** @} */

/** @name Bits of the largest magnitude
 *  *pOrder is the least e with every magnitude below 2^e, and 0 where all elements are 0. Infinities and NaNs are passed
 *  over, and `kelStatusNanArg` is returned. It is returned too, with -126 or -1022, where the largest magnitude is
 *  denormal. A length below 1 is found before a null pointer.
 *  @{ */
KELS_API KelStatus kelsMaxOrder_16s(const Kel16s* pSrc, int len, int* pOrder);
KELS_API KelStatus kelsMaxOrder_32s(const Kel32s* pSrc, int len, int* pOrder);
KELS_API KelStatus kelsMaxOrder_32f(const Kel32f* pSrc, int len, int* pOrder);
KELS_API KelStatus kelsMaxOrder_64f(const Kel64f* pSrc, int len, int* pOrder);
/** @} */

/** @name Norms
 *  `Inf`: the largest |pSrc[i]|, NaNs passed over; `L1`: the sum of |pSrc[i]|; `L2`: the root of the sum of pSrc[i]^2.
 *  With a scale factor `Inf` and `L1` are shifted, bits beyond the point dropped, and `L2` is multiplied and rounded
 *  toward zero; they saturate at 2147483647.
 *  @{ */
KELS_API KelStatus kelsNorm_Inf_16s32f    (const Kel16s* pSrc, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNorm_Inf_16s32s_Sfs(const Kel16s* pSrc, int len, Kel32s* pNorm, int scaleFactor);
KELS_API KelStatus kelsNorm_Inf_32f       (const Kel32f* pSrc, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNorm_Inf_64f       (const Kel64f* pSrc, int len, Kel64f* pNorm);
KELS_API KelStatus kelsNorm_L1_16s32f     (const Kel16s* pSrc, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNorm_L1_16s32s_Sfs (const Kel16s* pSrc, int len, Kel32s* pNorm, int scaleFactor);
KELS_API KelStatus kelsNorm_L1_32f        (const Kel32f* pSrc, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNorm_L1_64f        (const Kel64f* pSrc, int len, Kel64f* pNorm);
KELS_API KelStatus kelsNorm_L2_16s32f     (const Kel16s* pSrc, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNorm_L2_16s32s_Sfs (const Kel16s* pSrc, int len, Kel32s* pNorm, int scaleFactor);
KELS_API KelStatus kelsNorm_L2_32f        (const Kel32f* pSrc, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNorm_L2_64f        (const Kel64f* pSrc, int len, Kel64f* pNorm);
/** @} */

/** @name Norms of differences
 *  The norms of pSrc1 - pSrc2, exact differences in `L1` and `L2`.
 *  @{ */
KELS_API KelStatus kelsNormDiff_Inf_16s32f    (const Kel16s* pSrc1, const Kel16s* pSrc2, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNormDiff_Inf_16s32s_Sfs(const Kel16s* pSrc1, const Kel16s* pSrc2, int len, Kel32s* pNorm, int scaleFactor);
KELS_API KelStatus kelsNormDiff_Inf_32f       (const Kel32f* pSrc1, const Kel32f* pSrc2, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNormDiff_Inf_64f       (const Kel64f* pSrc1, const Kel64f* pSrc2, int len, Kel64f* pNorm);
KELS_API KelStatus kelsNormDiff_L1_16s32f     (const Kel16s* pSrc1, const Kel16s* pSrc2, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNormDiff_L1_16s32s_Sfs (const Kel16s* pSrc1, const Kel16s* pSrc2, int len, Kel32s* pNorm, int scaleFactor);
KELS_API KelStatus kelsNormDiff_L1_32f        (const Kel32f* pSrc1, const Kel32f* pSrc2, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNormDiff_L1_64f        (const Kel64f* pSrc1, const Kel64f* pSrc2, int len, Kel64f* pNorm);
KELS_API KelStatus kelsNormDiff_L2_16s32f     (const Kel16s* pSrc1, const Kel16s* pSrc2, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNormDiff_L2_16s32s_Sfs (const Kel16s* pSrc1, const Kel16s* pSrc2, int len, Kel32s* pNorm, int scaleFactor);
KELS_API KelStatus kelsNormDiff_L2_32f        (const Kel32f* pSrc1, const Kel32f* pSrc2, int len, Kel32f* pNorm);
KELS_API KelStatus kelsNormDiff_L2_64f        (const Kel64f* pSrc1, const Kel64f* pSrc2, int len, Kel64f* pNorm);
/** @} */

/** @name Dot products of real numbers, and of integers without a scale factor
 *  *pDp = pSrc1[0] pSrc2[0] + ... + pSrc1[len - 1] pSrc2[len - 1], without conjugation. In the mixed forms `pSrc1` is
 *  real and `pSrc2` complex. From integers: the exact sum, in 64 bits or rounded to single.
 *  @{ */
KELS_API KelStatus kelsDotProd_32f        (const Kel32f*  pSrc1, const Kel32f*  pSrc2, int len, Kel32f*  pDp);
KELS_API KelStatus kelsDotProd_64f        (const Kel64f*  pSrc1, const Kel64f*  pSrc2, int len, Kel64f*  pDp);
KELS_API KelStatus kelsDotProd_32fc       (const Kel32fc* pSrc1, const Kel32fc* pSrc2, int len, Kel32fc* pDp);
KELS_API KelStatus kelsDotProd_64fc       (const Kel64fc* pSrc1, const Kel64fc* pSrc2, int len, Kel64fc* pDp);
KELS_API KelStatus kelsDotProd_32f32fc    (const Kel32f*  pSrc1, const Kel32fc* pSrc2, int len, Kel32fc* pDp);
KELS_API KelStatus kelsDotProd_64f64fc    (const Kel64f*  pSrc1, const Kel64fc* pSrc2, int len, Kel64fc* pDp);
KELS_API KelStatus kelsDotProd_32f64f     (const Kel32f*  pSrc1, const Kel32f*  pSrc2, int len, Kel64f*  pDp);
KELS_API KelStatus kelsDotProd_32fc64fc   (const Kel32fc* pSrc1, const Kel32fc* pSrc2, int len, Kel64fc* pDp);
KELS_API KelStatus kelsDotProd_32f32fc64fc(const Kel32f*  pSrc1, const Kel32fc* pSrc2, int len, Kel64fc* pDp);
KELS_API KelStatus kelsDotProd_16s64s     (const Kel16s*  pSrc1, const Kel16s*  pSrc2, int len, Kel64s*  pDp);
KELS_API KelStatus kelsDotProd_16sc64sc   (const Kel16sc* pSrc1, const Kel16sc* pSrc2, int len, Kel64sc* pDp);
KELS_API KelStatus kelsDotProd_16s16sc64sc(const Kel16s*  pSrc1, const Kel16sc* pSrc2, int len, Kel64sc* pDp);
KELS_API KelStatus kelsDotProd_16s32f     (const Kel16s*  pSrc1, const Kel16s*  pSrc2, int len, Kel32f*  pDp);
KELS_API KelStatus kelsDotProd_16sc32fc   (const Kel16sc* pSrc1, const Kel16sc* pSrc2, int len, Kel32fc* pDp);
KELS_API KelStatus kelsDotProd_16s16sc32fc(const Kel16s*  pSrc1, const Kel16sc* pSrc2, int len, Kel32fc* pDp);
/** @} */

/** @name Dot products of integers
 *  The sum times 2^-scaleFactor, rounded to nearest, ties to even, and saturated.
 *
 *  The scale factor is limited. 16-bit sources, 32-bit results: above to 31, below to -30 for sums that are not
 *  negative and to -31 for others. 16-bit results: from -14 to 31, and **the sum is kept in 32 bits and wraps**. 32-bit
 *  sources: from -31 to 31.
 *  @{ */
KELS_API KelStatus kelsDotProd_16s32s_Sfs     (const Kel16s*  pSrc1, const Kel16s*  pSrc2, int len, Kel32s*  pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_16sc32sc_Sfs   (const Kel16sc* pSrc1, const Kel16sc* pSrc2, int len, Kel32sc* pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_16s16sc32sc_Sfs(const Kel16s*  pSrc1, const Kel16sc* pSrc2, int len, Kel32sc* pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_16s_Sfs        (const Kel16s*  pSrc1, const Kel16s*  pSrc2, int len, Kel16s*  pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_16sc_Sfs       (const Kel16sc* pSrc1, const Kel16sc* pSrc2, int len, Kel16sc* pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_16s16sc_Sfs    (const Kel16s*  pSrc1, const Kel16sc* pSrc2, int len, Kel16sc* pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_32s_Sfs        (const Kel32s*  pSrc1, const Kel32s*  pSrc2, int len, Kel32s*  pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_32sc_Sfs       (const Kel32sc* pSrc1, const Kel32sc* pSrc2, int len, Kel32sc* pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_32s32sc_Sfs    (const Kel32s*  pSrc1, const Kel32sc* pSrc2, int len, Kel32sc* pDp, int scaleFactor);
KELS_API KelStatus kelsDotProd_16s32s32s_Sfs  (const Kel16s*  pSrc1, const Kel32s*  pSrc2, int len, Kel32s*  pDp, int scaleFactor);
/** @} */

#endif
