/** @file
 *  Division, element by element.
 *
 *  **Shapes.** Two vectors; a vector and a constant divisor `val` of its type (`C`); a constant divided by a vector
 *  (`CRev`). The first of two vectors is the divisor, the second the dividend; in place (`_I`, `_ISfs`), `pSrcDst` is the
 *  dividend, or the only vector.
 *
 *  **Zeros.** A zero in a vector of divisors stops nothing: its element gets the value below, and the call returns
 *  `kelStatusDivByZeroValues`, a warning, when the whole vector is done. In floating point a NaN counts as a zero divisor.
 *
 *  | Type           | A dividend above 0 | below 0   | 0 or NaN     |
 *  |----------------|--------------------|-----------|--------------|
 *  | `32f`, `64f`   | infinity           | -infinity | NaN          |
 *  | `32fc`, `64fc` | NaN                | NaN       | NaN          |
 *  | `8u`           | 255                |           | 0            |
 *  | `16s`          | 32767              | -32768    | 0            |
 *  | `16sc`         |                    |           | 0, any dividend |
 *  | `16u` (`CRev`) | 65535              |           |              |
 *
 *  **Integers.** The exact quotient is multiplied by 2^-scaleFactor, rounded to nearest with ties to even, and saturated,
 *  each part of a complex quotient by itself. The rounding mode that the caller has set does not matter, and stays.
 *
 *  **Floating point.** Real quotients of two vectors are rounded once; by a constant, they are rounded products with
 *  its rounded reciprocal, up to 1.5 ulp away (more if that is denormal). The parts of complex
 *  quotients are at most 1 ulp (single) or 2 ulp (double) away from the exact ones, cancellation included.
 *
 *  **Long vectors.** From 32 elements on, some functions work blocks of 32 bytes in another way, and it shows: there an
 *  element's value depends on more than its operands. Two vectors in floating point: elements go by groups of four
 *  (`64fc`: of two); an infinite divisor makes NaNs of the others of its group, unless a zero or a NaN is among their
 *  divisors. The blocks begin at the first 32-byte boundary if all arrays reach one with the same element, else at the
 *  first element, as they always do in `32f`. `kelsDivC_8u` and `kelsDivC_16s` have blocks only where source and
 *  destination reach a boundary together: there `8u` multiplies by 65536 / val, a whole number, and halves go up; `16s`
 *  gives zeros when |val| 2^scaleFactor is above 32767.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), `kelStatusDivByZero`
 *  (a constant divisor of zero, both parts of a complex one; NaNs count as zeros), `kelStatusDivByZeroValues`,
 *  `kelStatusOk`. The constant of `kelsDivC_32f` and `kelsDivC_64f` is tested first. Nothing has been stored when an error
 *  is returned.
 *
 *  **Aliasing.** Element by element: `pDst` may be a source, exactly. Data may stand at any address.
 */
#ifndef KELS_DIVISION_H
#define KELS_DIVISION_H

#include "kels/status.h"

/** @name Quotient of two vectors
 *  pDst[i] = pSrc2[i] / pSrc1[i], the second source by the first; in place, pSrcDst[i] = pSrcDst[i] / pSrc[i].
 *  @{ */
KELS_API KelStatus kelsDiv_32f      (const Kel32f*  pSrc1, const Kel32f*  pSrc2, Kel32f*  pDst, int len);
KELS_API KelStatus kelsDiv_32f_I    (const Kel32f*  pSrc, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsDiv_64f      (const Kel64f*  pSrc1, const Kel64f*  pSrc2, Kel64f*  pDst, int len);
KELS_API KelStatus kelsDiv_64f_I    (const Kel64f*  pSrc, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsDiv_32fc     (const Kel32fc* pSrc1, const Kel32fc* pSrc2, Kel32fc* pDst, int len);
KELS_API KelStatus kelsDiv_32fc_I   (const Kel32fc* pSrc, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsDiv_64fc     (const Kel64fc* pSrc1, const Kel64fc* pSrc2, Kel64fc* pDst, int len);
KELS_API KelStatus kelsDiv_64fc_I   (const Kel64fc* pSrc, Kel64fc* pSrcDst, int len);
KELS_API KelStatus kelsDiv_8u_Sfs   (const Kel8u*   pSrc1, const Kel8u*   pSrc2, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsDiv_8u_ISfs  (const Kel8u*   pSrc, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsDiv_16s_Sfs  (const Kel16s*  pSrc1, const Kel16s*  pSrc2, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsDiv_16s_ISfs (const Kel16s*  pSrc, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsDiv_16sc_Sfs (const Kel16sc* pSrc1, const Kel16sc* pSrc2, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsDiv_16sc_ISfs(const Kel16sc* pSrc, Kel16sc* pSrcDst, int len, int scaleFactor);
/** @} */

/** @name Quotient by a constant
 *  pDst[i] = pSrc[i] / val. `32f` and `64f` multiply by the reciprocal of `val`, rounded to the type, as kelsMulC does:
 *  by 1 the elements come through as they are, by an infinity they become zeros.
 *  @{ */
KELS_API KelStatus kelsDivC_32f      (const Kel32f*  pSrc, Kel32f  val, Kel32f*  pDst, int len);
KELS_API KelStatus kelsDivC_32f_I    (Kel32f  val, Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsDivC_64f      (const Kel64f*  pSrc, Kel64f  val, Kel64f*  pDst, int len);
KELS_API KelStatus kelsDivC_64f_I    (Kel64f  val, Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsDivC_32fc     (const Kel32fc* pSrc, Kel32fc val, Kel32fc* pDst, int len);
KELS_API KelStatus kelsDivC_32fc_I   (Kel32fc val, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsDivC_64fc     (const Kel64fc* pSrc, Kel64fc val, Kel64fc* pDst, int len);
KELS_API KelStatus kelsDivC_64fc_I   (Kel64fc val, Kel64fc* pSrcDst, int len);
KELS_API KelStatus kelsDivC_8u_Sfs   (const Kel8u*   pSrc, Kel8u   val, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsDivC_8u_ISfs  (Kel8u   val, Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsDivC_16s_Sfs  (const Kel16s*  pSrc, Kel16s  val, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsDivC_16s_ISfs (Kel16s  val, Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsDivC_16sc_Sfs (const Kel16sc* pSrc, Kel16sc val, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsDivC_16sc_ISfs(Kel16sc val, Kel16sc* pSrcDst, int len, int scaleFactor);
/** @} */

/** @name A constant divided
 *  pDst[i] = val / pSrc[i], rounded to nearest. With a `val` of 0 the result is all zeros, whatever `pSrc` is: it is not
 *  looked at, and there is no warning.
 *  @{ */
KELS_API KelStatus kelsDivCRev_16u  (const Kel16u* pSrc, Kel16u val, Kel16u* pDst, int len);
KELS_API KelStatus kelsDivCRev_16u_I(Kel16u val, Kel16u* pSrcDst, int len);
/** @} */

#endif
