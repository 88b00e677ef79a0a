/** @file
 *  Addition, subtraction, multiplication and absolute value, element by element.
 *
 *  **Shapes.** Two vectors, or a vector and a constant `val` of its type (`C`; `CRev` where the constant is what is
 *  subtracted from). In place (`_I`, `_ISfs`), `pSrcDst` is the second vector, or the only one.
 *
 *  **Integers.** The exact result is multiplied by 2^-scaleFactor, rounded to nearest with ties to even, and
 *  saturated to the type of the destination, each part of a complex result by itself. Every value of `scaleFactor` is
 *  good; a function without one only saturates. Nothing reports a saturation.
 *
 *  **Floating point.** A result is the exact one, rounded; the parts of complex products are at most 1 ulp (single) or
 *  2 ulp (double) away from it, cancellation included. Overflow gives an infinity, and a NaN makes a NaN, but where a real
 *  constant leaves nothing to compute: a NaN added or multiplied by copies the elements, and zero times anything is zero
 *  (see the groups).
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), `kelStatusOk`.
 *  Sums and differences of two complex vectors test the length first. Nothing has been stored when an error is
 *  returned.
 *
 *  **Aliasing.** Element by element: `pDst` may be a source, exactly. Data may stand at any address.
 */
#ifndef KELS_ARITHMETIC_H
#define KELS_ARITHMETIC_H

#include "kels/status.h"

/** @name Sum of two vectors
 *  pDst[i] = pSrc1[i] + pSrc2[i]; in place, pSrcDst[i] = pSrc[i] + pSrcDst[i]. `8u16u` is exact; `16s32f` adds singles.
 *  @{ */
KELS_API KelStatus kelsAdd_8u_Sfs   (const Kel8u*   pSrc1, const Kel8u*   pSrc2, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_8u_ISfs  (const Kel8u*   pSrc, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_8u16u    (const Kel8u*   pSrc1, const Kel8u*   pSrc2, Kel16u*  pDst, int len);
KELS_API KelStatus kelsAdd_16u      (const Kel16u*  pSrc1, const Kel16u*  pSrc2, Kel16u*  pDst, int len);
KELS_API KelStatus kelsAdd_16s      (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len);
KELS_API KelStatus kelsAdd_16s_I    (const Kel16s*  pSrc, Kel16s*  pSrcDst, int len);
KELS_API KelStatus kelsAdd_16s_Sfs  (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_16s_ISfs (const Kel16s*  pSrc, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_16s32f   (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel32f*  pDst, int len);
KELS_API KelStatus kelsAdd_16sc_Sfs (const Kel16sc* pSrc1, const Kel16sc* pSrc2, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_16sc_ISfs(const Kel16sc* pSrc, Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_32u      (const Kel32u*  pSrc1, const Kel32u*  pSrc2, Kel32u*  pDst, int len);
KELS_API KelStatus kelsAdd_32s_Sfs  (const Kel32s*  pSrc1, const Kel32s*  pSrc2, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_32s_ISfs (const Kel32s*  pSrc, Kel32s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_32sc_Sfs (const Kel32sc* pSrc1, const Kel32sc* pSrc2, Kel32sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_32sc_ISfs(const Kel32sc* pSrc, Kel32sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAdd_32f      (const Kel32f*  pSrc1, const Kel32f*  pSrc2, Kel32f*  pDst, int len);
KELS_API KelStatus kelsAdd_32f_I    (const Kel32f*  pSrc, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsAdd_32fc     (const Kel32fc* pSrc1, const Kel32fc* pSrc2, Kel32fc* pDst, int len);
KELS_API KelStatus kelsAdd_32fc_I   (const Kel32fc* pSrc, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsAdd_64f      (const Kel64f*  pSrc1, const Kel64f*  pSrc2, Kel64f*  pDst, int len);
KELS_API KelStatus kelsAdd_64f_I    (const Kel64f*  pSrc, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsAdd_64fc     (const Kel64fc* pSrc1, const Kel64fc* pSrc2, Kel64fc* pDst, int len);
KELS_API KelStatus kelsAdd_64fc_I   (const Kel64fc* pSrc, Kel64fc* pSrcDst, int len);
/** @} */

/** @name Difference of two vectors
 *  pDst[i] = pSrc2[i] - pSrc1[i], the first source from the second; in place, pSrcDst[i] = pSrcDst[i] - pSrc[i].
 *  `16s32f` subtracts singles.
 *  @{ */
KELS_API KelStatus kelsSub_8u_Sfs   (const Kel8u*   pSrc1, const Kel8u*   pSrc2, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_8u_ISfs  (const Kel8u*   pSrc, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_16s      (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len);
KELS_API KelStatus kelsSub_16s_I    (const Kel16s*  pSrc, Kel16s*  pSrcDst, int len);
KELS_API KelStatus kelsSub_16s_Sfs  (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_16s_ISfs (const Kel16s*  pSrc, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_16s32f   (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel32f*  pDst, int len);
KELS_API KelStatus kelsSub_16sc_Sfs (const Kel16sc* pSrc1, const Kel16sc* pSrc2, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_16sc_ISfs(const Kel16sc* pSrc, Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_32s_Sfs  (const Kel32s*  pSrc1, const Kel32s*  pSrc2, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_32s_ISfs (const Kel32s*  pSrc, Kel32s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_32sc_Sfs (const Kel32sc* pSrc1, const Kel32sc* pSrc2, Kel32sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_32sc_ISfs(const Kel32sc* pSrc, Kel32sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSub_32f      (const Kel32f*  pSrc1, const Kel32f*  pSrc2, Kel32f*  pDst, int len);
KELS_API KelStatus kelsSub_32f_I    (const Kel32f*  pSrc, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsSub_32fc     (const Kel32fc* pSrc1, const Kel32fc* pSrc2, Kel32fc* pDst, int len);
KELS_API KelStatus kelsSub_32fc_I   (const Kel32fc* pSrc, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsSub_64f      (const Kel64f*  pSrc1, const Kel64f*  pSrc2, Kel64f*  pDst, int len);
KELS_API KelStatus kelsSub_64f_I    (const Kel64f*  pSrc, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsSub_64fc     (const Kel64fc* pSrc1, const Kel64fc* pSrc2, Kel64fc* pDst, int len);
KELS_API KelStatus kelsSub_64fc_I   (const Kel64fc* pSrc, Kel64fc* pSrcDst, int len);
/** @} */

/** @name Product of two vectors
 *  pDst[i] = pSrc1[i] pSrc2[i]; in place, pSrcDst[i] = pSrc[i] pSrcDst[i]. `8u16u` is exact; `16s32f` multiplies singles,
 *  so that a zero has the sign of a real product.
 *  @{ */
KELS_API KelStatus kelsMul_8u_Sfs    (const Kel8u*   pSrc1, const Kel8u*   pSrc2, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_8u_ISfs   (const Kel8u*   pSrc, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_8u16u     (const Kel8u*   pSrc1, const Kel8u*   pSrc2, Kel16u*  pDst, int len);
KELS_API KelStatus kelsMul_16s       (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len);
KELS_API KelStatus kelsMul_16s_I     (const Kel16s*  pSrc, Kel16s*  pSrcDst, int len);
KELS_API KelStatus kelsMul_16s_Sfs   (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_16s_ISfs  (const Kel16s*  pSrc, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_16s32f    (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel32f*  pDst, int len);
KELS_API KelStatus kelsMul_16s32s_Sfs(const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_16u16s_Sfs(const Kel16u*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_16sc_Sfs  (const Kel16sc* pSrc1, const Kel16sc* pSrc2, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_16sc_ISfs (const Kel16sc* pSrc, Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_32s_Sfs   (const Kel32s*  pSrc1, const Kel32s*  pSrc2, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_32s_ISfs  (const Kel32s*  pSrc, Kel32s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_32sc_Sfs  (const Kel32sc* pSrc1, const Kel32sc* pSrc2, Kel32sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_32sc_ISfs (const Kel32sc* pSrc, Kel32sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMul_32f       (const Kel32f*  pSrc1, const Kel32f*  pSrc2, Kel32f*  pDst, int len);
KELS_API KelStatus kelsMul_32f_I     (const Kel32f*  pSrc, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsMul_32fc      (const Kel32fc* pSrc1, const Kel32fc* pSrc2, Kel32fc* pDst, int len);
KELS_API KelStatus kelsMul_32fc_I    (const Kel32fc* pSrc, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsMul_64f       (const Kel64f*  pSrc1, const Kel64f*  pSrc2, Kel64f*  pDst, int len);
KELS_API KelStatus kelsMul_64f_I     (const Kel64f*  pSrc, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsMul_64fc      (const Kel64fc* pSrc1, const Kel64fc* pSrc2, Kel64fc* pDst, int len);
KELS_API KelStatus kelsMul_64fc_I    (const Kel64fc* pSrc, Kel64fc* pSrcDst, int len);
/** @} */

/** @name Sum with a constant
 *  pDst[i] = pSrc[i] + val. A real floating-point `val` of zero or NaN leaves the elements as they are, negative zeros and
 *  signalling NaNs too.
 *  @{ */
KELS_API KelStatus kelsAddC_8u_Sfs   (const Kel8u*   pSrc, Kel8u   val, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_8u_ISfs  (Kel8u   val, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_16s_I    (Kel16s  val, Kel16s*  pSrcDst, int len);
KELS_API KelStatus kelsAddC_16s_Sfs  (const Kel16s*  pSrc, Kel16s  val, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_16s_ISfs (Kel16s  val, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_16sc_Sfs (const Kel16sc* pSrc, Kel16sc val, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_16sc_ISfs(Kel16sc val, Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_32s_Sfs  (const Kel32s*  pSrc, Kel32s  val, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_32s_ISfs (Kel32s  val, Kel32s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_32sc_Sfs (const Kel32sc* pSrc, Kel32sc val, Kel32sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_32sc_ISfs(Kel32sc val, Kel32sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsAddC_32f      (const Kel32f*  pSrc, Kel32f  val, Kel32f*  pDst, int len);
KELS_API KelStatus kelsAddC_32f_I    (Kel32f  val, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsAddC_32fc     (const Kel32fc* pSrc, Kel32fc val, Kel32fc* pDst, int len);
KELS_API KelStatus kelsAddC_32fc_I   (Kel32fc val, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsAddC_64f      (const Kel64f*  pSrc, Kel64f  val, Kel64f*  pDst, int len);
KELS_API KelStatus kelsAddC_64f_I    (Kel64f  val, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsAddC_64fc     (const Kel64fc* pSrc, Kel64fc val, Kel64fc* pDst, int len);
KELS_API KelStatus kelsAddC_64fc_I   (Kel64fc val, Kel64fc* pSrcDst, int len);
/** @} */

/** @name Difference from a constant
 *  pDst[i] = pSrc[i] - val. A real floating-point `val` of zero leaves the elements as they are; with a NaN every result
 *  is one.
 *  @{ */
KELS_API KelStatus kelsSubC_8u_Sfs   (const Kel8u*   pSrc, Kel8u   val, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_8u_ISfs  (Kel8u   val, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_16s_I    (Kel16s  val, Kel16s*  pSrcDst, int len);
KELS_API KelStatus kelsSubC_16s_Sfs  (const Kel16s*  pSrc, Kel16s  val, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_16s_ISfs (Kel16s  val, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_16sc_Sfs (const Kel16sc* pSrc, Kel16sc val, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_16sc_ISfs(Kel16sc val, Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_32s_Sfs  (const Kel32s*  pSrc, Kel32s  val, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_32s_ISfs (Kel32s  val, Kel32s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_32sc_Sfs (const Kel32sc* pSrc, Kel32sc val, Kel32sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_32sc_ISfs(Kel32sc val, Kel32sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubC_32f      (const Kel32f*  pSrc, Kel32f  val, Kel32f*  pDst, int len);
KELS_API KelStatus kelsSubC_32f_I    (Kel32f  val, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsSubC_32fc     (const Kel32fc* pSrc, Kel32fc val, Kel32fc* pDst, int len);
KELS_API KelStatus kelsSubC_32fc_I   (Kel32fc val, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsSubC_64f      (const Kel64f*  pSrc, Kel64f  val, Kel64f*  pDst, int len);
KELS_API KelStatus kelsSubC_64f_I    (Kel64f  val, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsSubC_64fc     (const Kel64fc* pSrc, Kel64fc val, Kel64fc* pDst, int len);
KELS_API KelStatus kelsSubC_64fc_I   (Kel64fc val, Kel64fc* pSrcDst, int len);
/** @} */

/** @name Product with a constant
 *  pDst[i] = pSrc[i] val. A real floating-point `val` of one or NaN leaves the elements as they are; a zero makes each
 *  +0.0, whatever it was.
 *  @{ */
KELS_API KelStatus kelsMulC_8u_Sfs   (const Kel8u*   pSrc, Kel8u   val, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_8u_ISfs  (Kel8u   val, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_16s_I    (Kel16s  val, Kel16s*  pSrcDst, int len);
KELS_API KelStatus kelsMulC_16s_Sfs  (const Kel16s*  pSrc, Kel16s  val, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_16s_ISfs (Kel16s  val, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_16sc_Sfs (const Kel16sc* pSrc, Kel16sc val, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_16sc_ISfs(Kel16sc val, Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_32s_Sfs  (const Kel32s*  pSrc, Kel32s  val, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_32s_ISfs (Kel32s  val, Kel32s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_32sc_Sfs (const Kel32sc* pSrc, Kel32sc val, Kel32sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_32sc_ISfs(Kel32sc val, Kel32sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulC_32f      (const Kel32f*  pSrc, Kel32f  val, Kel32f*  pDst, int len);
KELS_API KelStatus kelsMulC_32f_I    (Kel32f  val, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsMulC_32fc     (const Kel32fc* pSrc, Kel32fc val, Kel32fc* pDst, int len);
KELS_API KelStatus kelsMulC_32fc_I   (Kel32fc val, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsMulC_64f      (const Kel64f*  pSrc, Kel64f  val, Kel64f*  pDst, int len);
KELS_API KelStatus kelsMulC_64f_I    (Kel64f  val, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsMulC_64fc     (const Kel64fc* pSrc, Kel64fc val, Kel64fc* pDst, int len);
KELS_API KelStatus kelsMulC_64fc_I   (Kel64fc val, Kel64fc* pSrcDst, int len);
/** @} */

/** @name Constant minus a vector
 *  pDst[i] = val - pSrc[i].
 *  @{ */
KELS_API KelStatus kelsSubCRev_8u_Sfs   (const Kel8u*   pSrc, Kel8u   val, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_8u_ISfs  (Kel8u   val, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_16s_Sfs  (const Kel16s*  pSrc, Kel16s  val, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_16s_ISfs (Kel16s  val, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_16sc_Sfs (const Kel16sc* pSrc, Kel16sc val, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_16sc_ISfs(Kel16sc val, Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_32s_Sfs  (const Kel32s*  pSrc, Kel32s  val, Kel32s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_32s_ISfs (Kel32s  val, Kel32s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_32sc_Sfs (const Kel32sc* pSrc, Kel32sc val, Kel32sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_32sc_ISfs(Kel32sc val, Kel32sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSubCRev_32f      (const Kel32f*  pSrc, Kel32f  val, Kel32f*  pDst, int len);
KELS_API KelStatus kelsSubCRev_32f_I    (Kel32f  val, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsSubCRev_32fc     (const Kel32fc* pSrc, Kel32fc val, Kel32fc* pDst, int len);
KELS_API KelStatus kelsSubCRev_32fc_I   (Kel32fc val, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsSubCRev_64f      (const Kel64f*  pSrc, Kel64f  val, Kel64f*  pDst, int len);
KELS_API KelStatus kelsSubCRev_64f_I    (Kel64f  val, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsSubCRev_64fc     (const Kel64fc* pSrc, Kel64fc val, Kel64fc* pDst, int len);
KELS_API KelStatus kelsSubCRev_64fc_I   (Kel64fc val, Kel64fc* pSrcDst, int len);
/** @} */

/** @name Absolute value
 *  pDst[i] = |pSrc[i]|. In 16s, -32768 becomes 32767. In floating point the sign bit is cleared, that of a zero or a NaN
 *  too, and nothing else changes.
 *  @{ */
KELS_API KelStatus kelsAbs_16s  (const Kel16s* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsAbs_16s_I(Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsAbs_32f  (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsAbs_32f_I(Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsAbs_64f  (const Kel64f* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsAbs_64f_I(Kel64f* pSrcDst, int len);
/** @} */

#endif
