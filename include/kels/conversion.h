/** @file
 *  Conversion between sample types, and normalisation.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), then
 *  `kelStatusDivByZero` from a normalisation, `kelStatusOk`. Nothing has been stored when an error is returned.
 *  Saturation and NaNs are not reported.
 *
 *  **Aliasing.** `pDst` may be `pSrc`, exactly, where both have elements of one size; else the arrays are disjoint.
 *  Data may stand at any address.
 *
 *  **Rounding modes.** Where a conversion must be rounded to a real type, and in the integer normalisation, the caller's
 *  rounding mode holds: that of the x87 unit, which `fegetround` tells. Conversions to integers take theirs as an
 *  argument. Normalisation of real numbers is arithmetic: `64f` and `64fc` are evaluated to nearest, `32f` and `32fc`
 *  by the SIMD unit in its mode.
 */
#ifndef KELS_CONVERSION_H
#define KELS_CONVERSION_H

#include "kels/status.h"

/** How a conversion to integers rounds: values of `rndMode`. */
enum {
    kelRndZero = 0, /**< toward zero, as does every value but 1 */
    kelRndNear = 1  /**< to nearest, ties to even */
};

/** @name Plain conversion
 *  Exact, but: `32s16s` saturates; `32s32f` and `64f32f` round; `64f32f` gives the largest single for what is above it
 *  and for every NaN, and minus that for what is below, so that no infinity and no NaN comes out.
 *  @{ */
KELS_API KelStatus kelsConvert_8s16s (const Kel8s*  pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsConvert_16s32s(const Kel16s* pSrc, Kel32s* pDst, int len);
KELS_API KelStatus kelsConvert_8s32f (const Kel8s*  pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsConvert_8u32f (const Kel8u*  pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsConvert_16s32f(const Kel16s* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsConvert_16u32f(const Kel16u* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsConvert_32f64f(const Kel32f* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsConvert_32s64f(const Kel32s* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsConvert_32s16s(const Kel32s* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsConvert_32s32f(const Kel32s* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsConvert_64f32f(const Kel64f* pSrc, Kel32f* pDst, int len);
/** @} */

/** @name Integers to real numbers
 *  pDst[i] = pSrc[i] 2^-scaleFactor, rounded once. The factor is limited, so that results stay finite and normal: in
 *  `16s32f` from -112 to 126, in `32s32f` from -96 to 126, in `16s64f` from -1008 to 1022, in `32s64f` from -992 to
 *  1022.
 *  @{ */
KELS_API KelStatus kelsConvert_16s32f_Sfs(const Kel16s* pSrc, Kel32f* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsConvert_16s64f_Sfs(const Kel16s* pSrc, Kel64f* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsConvert_32s32f_Sfs(const Kel32s* pSrc, Kel32f* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsConvert_32s64f_Sfs(const Kel32s* pSrc, Kel64f* pDst, int len, int scaleFactor);
/** @} */

/** @name Real numbers to integers
 *  pDst[i] = pSrc[i] 2^-scaleFactor, rounded as `rndMode` says (::kelRndNear, ::kelRndZero) and saturated. The mode
 *  that the caller has set does not matter, and stays. Every value of `scaleFactor` is good. A NaN saturates by its
 *  sign bit, in 8u and 16u too; in 32s it becomes -2147483648.
 *  @{ */
KELS_API KelStatus kelsConvert_32f8s_Sfs (const Kel32f* pSrc, Kel8s*  pDst, int len, int rndMode, int scaleFactor);
KELS_API KelStatus kelsConvert_32f8u_Sfs (const Kel32f* pSrc, Kel8u*  pDst, int len, int rndMode, int scaleFactor);
KELS_API KelStatus kelsConvert_32f16s_Sfs(const Kel32f* pSrc, Kel16s* pDst, int len, int rndMode, int scaleFactor);
KELS_API KelStatus kelsConvert_32f16u_Sfs(const Kel32f* pSrc, Kel16u* pDst, int len, int rndMode, int scaleFactor);
KELS_API KelStatus kelsConvert_32f32s_Sfs(const Kel32f* pSrc, Kel32s* pDst, int len, int rndMode, int scaleFactor);
KELS_API KelStatus kelsConvert_64f32s_Sfs(const Kel64f* pSrc, Kel32s* pDst, int len, int rndMode, int scaleFactor);
/** @} */

/** @name Normalisation
 *  pDst[i] = (pSrc[i] - vSub) / vDiv, at most 1 ulp from the exact value; `vDiv` divides both parts of a complex
 *  element. A denormal `vDiv` gives `kelStatusDivByZero` too.
 *  @{ */
KELS_API KelStatus kelsNormalize_32f (const Kel32f*  pSrc, Kel32f*  pDst, int len, Kel32f  vSub, Kel32f vDiv);
KELS_API KelStatus kelsNormalize_64f (const Kel64f*  pSrc, Kel64f*  pDst, int len, Kel64f  vSub, Kel64f vDiv);
KELS_API KelStatus kelsNormalize_32fc(const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32fc vSub, Kel32f vDiv);
KELS_API KelStatus kelsNormalize_64fc(const Kel64fc* pSrc, Kel64fc* pDst, int len, Kel64fc vSub, Kel64f vDiv);
/** @} */

/** @name Normalisation of integers
 *  pDst[i] = (pSrc[i] - vSub) / vDiv 2^-scaleFactor, each part of a complex element by itself: the exact difference
 *  times the factor 2^-scaleFactor / vDiv, rounded in the caller's mode (to nearest, ties to even, if none has been
 *  set) and saturated. A difference of 0 times a factor that has overflowed becomes 32767.
 *  @{ */
KELS_API KelStatus kelsNormalize_16s_Sfs (const Kel16s*  pSrc, Kel16s*  pDst, int len, Kel16s  vSub, int vDiv, int scaleFactor);
KELS_API KelStatus kelsNormalize_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel16sc vSub, int vDiv, int scaleFactor);
/** @} */

#endif
