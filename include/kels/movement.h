/** @file
 *  Data movement: fill, copy, reverse, take complex vectors apart, put them together, conjugate.
 *
 *  Every function here moves bits and does no arithmetic but the negation in the conjugates: signalling NaNs, signs of
 *  zeros and payloads arrive as they left, those of a `val` passed by value too.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), `kelStatusOk`.
 *  Nothing has been stored when an error is returned. `kelsRealToCplx_*` has an order of its own.
 *
 *  **Aliasing.** `kelsCopy_*` and `kelsConj_*` take disjoint arrays or `pSrc` equal to `pDst`; all others take disjoint
 *  arrays. `pSrcDst` is replaced. Data may stand at any address.
 */
#ifndef KELS_MOVEMENT_H
#define KELS_MOVEMENT_H

#include "kels/status.h"

/** @name Copy
 *  pDst[i] = pSrc[i].
 *  @{ */
KELS_API KelStatus kelsCopy_8u  (const Kel8u*   pSrc, Kel8u*   pDst, int len);
KELS_API KelStatus kelsCopy_16s (const Kel16s*  pSrc, Kel16s*  pDst, int len);
KELS_API KelStatus kelsCopy_16sc(const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsCopy_32f (const Kel32f*  pSrc, Kel32f*  pDst, int len);
KELS_API KelStatus kelsCopy_32fc(const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsCopy_64f (const Kel64f*  pSrc, Kel64f*  pDst, int len);
KELS_API KelStatus kelsCopy_64fc(const Kel64fc* pSrc, Kel64fc* pDst, int len);
/** @} */

/** @name Zero
 *  All bytes of the vector become 0.
 *  @{ */
KELS_API KelStatus kelsZero_8u  (Kel8u*   pDst, int len);
KELS_API KelStatus kelsZero_16s (Kel16s*  pDst, int len);
KELS_API KelStatus kelsZero_16sc(Kel16sc* pDst, int len);
KELS_API KelStatus kelsZero_32f (Kel32f*  pDst, int len);
KELS_API KelStatus kelsZero_32fc(Kel32fc* pDst, int len);
KELS_API KelStatus kelsZero_64f (Kel64f*  pDst, int len);
KELS_API KelStatus kelsZero_64fc(Kel64fc* pDst, int len);
/** @} */

/** @name Set
 *  pDst[i] = val.
 *  @{ */
KELS_API KelStatus kelsSet_8u  (Kel8u   val, Kel8u*   pDst, int len);
KELS_API KelStatus kelsSet_16s (Kel16s  val, Kel16s*  pDst, int len);
KELS_API KelStatus kelsSet_16sc(Kel16sc val, Kel16sc* pDst, int len);
KELS_API KelStatus kelsSet_32s (Kel32s  val, Kel32s*  pDst, int len);
KELS_API KelStatus kelsSet_32sc(Kel32sc val, Kel32sc* pDst, int len);
KELS_API KelStatus kelsSet_32f (Kel32f  val, Kel32f*  pDst, int len);
KELS_API KelStatus kelsSet_32fc(Kel32fc val, Kel32fc* pDst, int len);
KELS_API KelStatus kelsSet_64s (Kel64s  val, Kel64s*  pDst, int len);
KELS_API KelStatus kelsSet_64sc(Kel64sc val, Kel64sc* pDst, int len);
KELS_API KelStatus kelsSet_64f (Kel64f  val, Kel64f*  pDst, int len);
KELS_API KelStatus kelsSet_64fc(Kel64fc val, Kel64fc* pDst, int len);
/** @} */

/** @name Flip
 *  pDst[i] = pSrc[len - 1 - i]. In place, the middle element of an odd length stays.
 *  @{ */
KELS_API KelStatus kelsFlip_8u   (const Kel8u*  pSrc, Kel8u*  pDst, int len);
KELS_API KelStatus kelsFlip_16u  (const Kel16u* pSrc, Kel16u* pDst, int len);
KELS_API KelStatus kelsFlip_32f  (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsFlip_64f  (const Kel64f* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsFlip_8u_I (Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsFlip_16u_I(Kel16u* pSrcDst, int len);
KELS_API KelStatus kelsFlip_32f_I(Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsFlip_64f_I(Kel64f* pSrcDst, int len);
/** @} */

/** @name Real and imaginary parts
 *  `kelsReal`: pDst[i] = Re pSrc[i]. `kelsImag`: pDst[i] = Im pSrc[i]. `kelsCplxToReal`: both in one call.
 *  @{ */
KELS_API KelStatus kelsReal_16sc      (const Kel16sc* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsReal_32fc      (const Kel32fc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsReal_64fc      (const Kel64fc* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsImag_16sc      (const Kel16sc* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsImag_32fc      (const Kel32fc* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsImag_64fc      (const Kel64fc* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsCplxToReal_16sc(const Kel16sc* pSrc, Kel16s* pDstRe, Kel16s* pDstIm, int len);
KELS_API KelStatus kelsCplxToReal_32fc(const Kel32fc* pSrc, Kel32f* pDstRe, Kel32f* pDstIm, int len);
KELS_API KelStatus kelsCplxToReal_64fc(const Kel64fc* pSrc, Kel64f* pDstRe, Kel64f* pDstIm, int len);
/** @} */

/** @name Complex from parts
 *  pDst[i] = (pSrcRe[i], pSrcIm[i]). Either source may be null: its part of every element is 0 (+0.0 in floating
 *  point).
 *  @return `kelStatusNullPtr` (no destination), `kelStatusBadSize`, `kelStatusNullPtr` (neither source) or
 *          `kelStatusOk`, in this order
 *  @{ */
KELS_API KelStatus kelsRealToCplx_16s(const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16sc* pDst, int len);
KELS_API KelStatus kelsRealToCplx_32f(const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32fc* pDst, int len);
KELS_API KelStatus kelsRealToCplx_64f(const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64fc* pDst, int len);
/** @} */

/** @name Conjugate
 *  `kelsConj`: the real part copied, the imaginary part negated. `kelsConjFlip`: pDst[i] is the conjugate of
 *  pSrc[len - 1 - i]. In 16sc, -32768 becomes 32767; in floating point the sign bit changes, that of a zero or a NaN
 *  too.
 *  @{ */
KELS_API KelStatus kelsConj_16sc    (const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsConj_32fc    (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsConj_64fc    (const Kel64fc* pSrc, Kel64fc* pDst, int len);
KELS_API KelStatus kelsConj_16sc_I  (Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsConj_32fc_I  (Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsConj_64fc_I  (Kel64fc* pSrcDst, int len);
KELS_API KelStatus kelsConjFlip_16sc(const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsConjFlip_32fc(const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsConjFlip_64fc(const Kel64fc* pSrc, Kel64fc* pDst, int len);
/** @} */

#endif
