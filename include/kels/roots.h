/** @file
 *  Squares, square roots and cube roots, element by element.
 *
 *  **Integers.** Squares and square roots are exact: the exact value is multiplied by 2^-scaleFactor, rounded to nearest
 *  with ties to even, and saturated, each part of a complex result by itself. Every value of `scaleFactor` is good. The
 *  rounding mode that the caller has set does not matter, and stays.
 *
 *  **Floating point.** Results are at most 1 ulp away from the formula below; squares and square roots of real numbers
 *  are rounded once.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1),
 *  `kelStatusSqrtNegArg`, a warning (real square roots, `16s` and `64s` ones: an element was negative; the whole vector is
 *  done), `kelStatusOk`. Nothing has been stored when an error is returned.
 *
 *  **Aliasing.** Element by element: `pDst` may be `pSrc`, exactly, where both have elements of one size; else the arrays
 *  are disjoint. Data may stand at any address.
 */
#ifndef KELS_ROOTS_H
#define KELS_ROOTS_H

#include "kels/status.h"

/** @name Square
 *  pDst[i] = pSrc[i]^2. Complex numbers in floating point: (a + b) (a - b) and 2 a b, of the parts a and b.
 *  @{ */
KELS_API KelStatus kelsSqr_8u_Sfs   (const Kel8u*   pSrc, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_8u_ISfs  (Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_16u_Sfs  (const Kel16u*  pSrc, Kel16u*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_16u_ISfs (Kel16u*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_16s_ISfs (Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_16sc_Sfs (const Kel16sc* pSrc, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_16sc_ISfs(Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqr_32f      (const Kel32f*  pSrc, Kel32f*  pDst, int len);
KELS_API KelStatus kelsSqr_32f_I    (Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsSqr_32fc     (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsSqr_32fc_I   (Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsSqr_64f      (const Kel64f*  pSrc, Kel64f*  pDst, int len);
KELS_API KelStatus kelsSqr_64f_I    (Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsSqr_64fc     (const Kel64fc* pSrc, Kel64fc* pDst, int len);
KELS_API KelStatus kelsSqr_64fc_I   (Kel64fc* pSrcDst, int len);
/** @} */

/** @name Square root
 *  pDst[i] = pSrc[i]^(1/2). A negative element gives NaN in floating point (::kelConstantOfNAN_32f), 0 in integers, and the
 *  warning; a negative zero and a NaN come through as they are, without it.
 *
 *  A complex root has a real part that is not negative, but for negative zeros, and the sign of the element's imaginary
 *  part: with the halves a and b of the parts and r = (a^2 + b^2)^(1/2), it is (u, b / u), u = (a + r)^(1/2), for a above
 *  0; (b / v, v), v = (r - a)^(1/2) with the sign of b, for a below 0; and (|b|^(1/2), +-|b|^(1/2)) for a = 0. `16sc`
 *  follows it for a `scaleFactor` below 0. From 0 on, its parts are the integer roots of (m + re) / 2 and (m - re) / 2,
 *  where m is the modulus as an integer: the nearest for 0, and what is below it for factors above.
 *  @{ */
KELS_API KelStatus kelsSqrt_8u_Sfs   (const Kel8u*   pSrc, Kel8u*   pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_8u_ISfs  (Kel8u*   pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_16u_Sfs  (const Kel16u*  pSrc, Kel16u*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_16u_ISfs (Kel16u*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_16s_ISfs (Kel16s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_16sc_Sfs (const Kel16sc* pSrc, Kel16sc* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_16sc_ISfs(Kel16sc* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_64s_Sfs  (const Kel64s*  pSrc, Kel64s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_64s_ISfs (Kel64s*  pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsSqrt_32f      (const Kel32f*  pSrc, Kel32f*  pDst, int len);
KELS_API KelStatus kelsSqrt_32f_I    (Kel32f*  pSrcDst, int len);
KELS_API KelStatus kelsSqrt_32fc     (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsSqrt_32fc_I   (Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsSqrt_64f      (const Kel64f*  pSrc, Kel64f*  pDst, int len);
KELS_API KelStatus kelsSqrt_64f_I    (Kel64f*  pSrcDst, int len);
KELS_API KelStatus kelsSqrt_64fc     (const Kel64fc* pSrc, Kel64fc* pDst, int len);
KELS_API KelStatus kelsSqrt_64fc_I   (Kel64fc* pSrcDst, int len);
/** @} */

/** @name Cube root
 *  pDst[i] = pSrc[i]^(1/3) by a rational function n / d of the magnitude m, brought between 1/16 and 1 by a power of 8:
 *
 *      n = m (((45.2548339756803 m + 192.2798368355061) m + 119.16548242855816) m + 13.432501390862399) + 0.16361612265857542
 *      d = (((14.808840932191346 m + 151.97140510444356) m + 168.52544141015682) m + 33.99059413502156) m + 1
 *
 *  It differs from the cube root in the last place of about one single in four. `32f` gives +0 for elements whose
 *  magnitude is at most that of the smallest normal number; infinities and NaNs come through. `32s16s` multiplies the
 *  magnitude by 2^-scaleFactor and rounds it to nearest, halves up; then come the sign and saturation.
 *  @{ */
KELS_API KelStatus kelsCubrt_32f       (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsCubrt_32s16s_Sfs(const Kel32s* pSrc, Kel16s* pDst, int len, int scaleFactor);
/** @} */

#endif
