/** @file
 *  Exponentials, logarithms and sums of logarithms, element by element.
 *
 *  **Floating point.** Results are at most 1 ulp away from the exact value; those in single precision are rounded from a
 *  value that is right to 2^-35, and have the same bits on every machine. There are no subnormal results.
 *
 *  **Integers.** The exact value is multiplied by 2^-scaleFactor, rounded to nearest and saturated, where the groups below
 *  do not say otherwise. Every value of `scaleFactor` is good.
 *
 *  The modes that the caller has set in the floating-point units do not matter, and stay.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), the warnings of the
 *  logarithms, `kelStatusOk`. Nothing has been stored when an error is returned.
 *
 *  **Aliasing.** Element by element: `pDst` may be `pSrc`, exactly, where both have elements of one size; else the arrays
 *  are disjoint. Data may stand at any address.
 */
#ifndef KELS_EXPONENTIAL_H
#define KELS_EXPONENTIAL_H

#include "kels/status.h"

/** @name Exponential
 *  pDst[i] = e^pSrc[i]. No status tells of overflow or underflow:
 *
 *  | Results in | zero up to         | infinity from                                          |
 *  |------------|--------------------|--------------------------------------------------------|
 *  | `32f`      | -87.33650207519531 | 87.0999984741211                                       |
 *  | `64f`      | -708.3935546875    | 1023.5 ln 2 = 709.436139303104, half of the largest double |
 *
 *  A NaN gives the quiet NaN of its sign without a payload; `32f` takes a signalling NaN for a number beyond the range.
 *
 *  Integers: halves do not arise but at 0, where they are rounded up. `64s` is right to the last bit; with a scale factor
 *  of 1 and -1 it is the rounded e^x, halved with halves rounded up, or doubled (so that e^1 doubled is 6; e^-1 doubled is
 *  1). With any other one but 0, elements from 710 on give the largest integer and those up to -709 give 0, whatever the
 *  factor.
 *  @{ */
KELS_API KelStatus kelsExp_32f     (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsExp_32f_I   (Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsExp_64f     (const Kel64f* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsExp_64f_I   (Kel64f* pSrcDst, int len);
KELS_API KelStatus kelsExp_32f64f  (const Kel32f* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsExp_16s_Sfs (const Kel16s* pSrc, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsExp_16s_ISfs(Kel16s* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsExp_32s_Sfs (const Kel32s* pSrc, Kel32s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsExp_32s_ISfs(Kel32s* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsExp_64s_Sfs (const Kel64s* pSrc, Kel64s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsExp_64s_ISfs(Kel64s* pSrcDst, int len, int scaleFactor);
/** @} */

/** @name Logarithm
 *  pDst[i] = ln pSrc[i]. The first element that has none decides the warning, `kelStatusLnZeroArg` or
 *  `kelStatusLnNegArg`; the whole vector is done.
 *
 *  | Element                          | `32f`, `64f`, `64f32f`             | integers | warning              |
 *  |----------------------------------|------------------------------------|----------|----------------------|
 *  | sign bit set, -0 and NaNs too    | NaN (::kelConstantOfNAN_32f)       | 0        | `kelStatusLnNegArg`  |
 *  | +0                               | -infinity                          | 0        | `kelStatusLnZeroArg` |
 *  | positive NaN                     | the positive quiet NaN, no payload |          |                      |
 *
 *  `16s` with a factor of -1 adds up rounded logarithms of pieces: with R(x) the integer nearest to ln x, it is R(x^2) for
 *  x up to 181; beyond, x is v 2^n with v the first of the halves of x up to 181, cut, and R(v^2) and the result for 2^n,
 *  found in the same way, are added. `32s16s` with a factor above 0 shifts R(x) right, which cuts; `16s` rounds.
 *  @{ */
KELS_API KelStatus kelsLn_32f       (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsLn_32f_I     (Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsLn_64f       (const Kel64f* pSrc, Kel64f* pDst, int len);
KELS_API KelStatus kelsLn_64f_I     (Kel64f* pSrcDst, int len);
KELS_API KelStatus kelsLn_64f32f    (const Kel64f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsLn_16s_Sfs   (const Kel16s* pSrc, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsLn_16s_ISfs  (Kel16s* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsLn_32s16s_Sfs(const Kel32s* pSrc, Kel16s* pDst, int len, int scaleFactor);
/** @} */

/** @name Sum of logarithms
 *  *pSum = sum of ln pSrc[i], as the logarithm of a product whose exponent is kept apart: nothing overflows. The product
 *  of doubles is carried as the sum of two.
 *
 *  The first element that has no logarithm ends the call:
 *
 *  | Element                       | *pSum, floating point       | *pSum, `16s32f` | status               |
 *  |-------------------------------|-----------------------------|-----------------|----------------------|
 *  | sign bit set, -0 and NaNs too | NaN (::kelConstantOfNAN_32f) | 0               | `kelStatusLnNegArg`  |
 *  | positive quiet NaN            | that NaN, negated           |                 | `kelStatusOk`        |
 *  | +0                            | -infinity                   | 0               | `kelStatusLnZeroArg` |
 *  @{ */
KELS_API KelStatus kelsSumLn_32f   (const Kel32f* pSrc, int len, Kel32f* pSum);
KELS_API KelStatus kelsSumLn_64f   (const Kel64f* pSrc, int len, Kel64f* pSum);
KELS_API KelStatus kelsSumLn_32f64f(const Kel32f* pSrc, int len, Kel64f* pSum);
KELS_API KelStatus kelsSumLn_16s32f(const Kel16s* pSrc, int len, Kel32f* pSum);
/** @} */

#endif
