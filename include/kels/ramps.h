/** @file
 *  Deterministic test signals: straight lines and chirps. Nothing is kept from call to call, and no result depends on the
 *  modes of the caller.
 *
 *  **Rounding.** Products and sums are those of extended precision, rounded once in floating point (at most 1 ulp).
 *  Integers are rounded to nearest, halves away from zero.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1),
 *  `kelStatusNegMagnitude`, `kelStatusNoMemory`, `kelStatusOk`. Nothing has been stored when an error is returned.
 */
#ifndef KELS_RAMPS_H
#define KELS_RAMPS_H

#include "kels/status.h"

/** @name Ramp
 *  pDst[i] = i slope + offset; there is no running sum, and no error that grows. Integers are limited to their type, and a
 *  NaN gives the largest. Where the slope is infinite, element 0 is a NaN.
 *  @{ */
KELS_API KelStatus kelsVectorRamp_8u (Kel8u*  pDst, int len, Kel32f offset, Kel32f slope);
KELS_API KelStatus kelsVectorRamp_8s (Kel8s*  pDst, int len, Kel32f offset, Kel32f slope);
KELS_API KelStatus kelsVectorRamp_16u(Kel16u* pDst, int len, Kel32f offset, Kel32f slope);
KELS_API KelStatus kelsVectorRamp_16s(Kel16s* pDst, int len, Kel32f offset, Kel32f slope);
KELS_API KelStatus kelsVectorRamp_32u(Kel32u* pDst, int len, Kel32f offset, Kel32f slope);
KELS_API KelStatus kelsVectorRamp_32s(Kel32s* pDst, int len, Kel32f offset, Kel32f slope);
KELS_API KelStatus kelsVectorRamp_32f(Kel32f* pDst, int len, Kel32f offset, Kel32f slope);
KELS_API KelStatus kelsVectorRamp_64f(Kel64f* pDst, int len, Kel32f offset, Kel32f slope);
/** @} */

/** @name Jaehne chirp
 *  pDst[n] = magn sin(pi n^2 / (2 len)): a sine whose frequency grows up to a half. The chirps of unsigned integers are
 *  stretched to run from 0 to `magn`; they need memory for `len` doubles during the call. A single element is 0, whatever
 *  the magnitude. A negative magnitude is an error.
 *  @{ */
KELS_API KelStatus kelsVectorJaehne_8u (Kel8u*  pDst, int len, Kel8u  magn);
KELS_API KelStatus kelsVectorJaehne_8s (Kel8s*  pDst, int len, Kel8s  magn);
KELS_API KelStatus kelsVectorJaehne_16u(Kel16u* pDst, int len, Kel16u magn);
KELS_API KelStatus kelsVectorJaehne_16s(Kel16s* pDst, int len, Kel16s magn);
KELS_API KelStatus kelsVectorJaehne_32u(Kel32u* pDst, int len, Kel32u magn);
KELS_API KelStatus kelsVectorJaehne_32s(Kel32s* pDst, int len, Kel32s magn);
KELS_API KelStatus kelsVectorJaehne_32f(Kel32f* pDst, int len, Kel32f magn);
KELS_API KelStatus kelsVectorJaehne_64f(Kel64f* pDst, int len, Kel64f magn);
/** @} */

#endif
