/** @file
 *  Median filters.
 *
 *  With M the mask size, or the odd number below an even one, h = (M - 1) / 2 and n = len:
 *
 *      y[i] = the median of x[i - h] to x[i + h], for i from 1 to n - 2
 *
 *  where x[0] stands for what is before the first sample and x[n - 1] for what is behind the last. The samples at both
 *  ends never change. All values are those from before the call, also in place.
 *
 *  Results are samples of the window, bit for bit. Zeros of both signs are equal, and either may stand for the other.
 *  With NaNs in a window its result is one of its samples, which one is free.
 *
 *  **Cost.** Masks up to 31 are networks of comparisons over whole vectors. Beyond, the time for a sample hardly depends
 *  on the mask, and not on the data.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` or `maskSize` below 1),
 *  `kelStatusNoMemory` (masks above 31: in place the data are as they were, out of place `pDst` is a copy),
 *  `kelStatusEvenMedianMask`, a warning (`maskSize` is even, and the odd one below was used), `kelStatusOk`.
 *
 *  **Aliasing.** `pDst` may be `pSrc`, exactly. Data may stand at any address.
 */
#ifndef KELS_MEDIAN_H
#define KELS_MEDIAN_H

#include "kels/status.h"

/** @name Median filter
 *  @{ */
KELS_API KelStatus kelsFilterMedian_8u   (const Kel8u*  pSrc, Kel8u*  pDst, int len, int maskSize);
KELS_API KelStatus kelsFilterMedian_16s  (const Kel16s* pSrc, Kel16s* pDst, int len, int maskSize);
KELS_API KelStatus kelsFilterMedian_32f  (const Kel32f* pSrc, Kel32f* pDst, int len, int maskSize);
KELS_API KelStatus kelsFilterMedian_64f  (const Kel64f* pSrc, Kel64f* pDst, int len, int maskSize);
KELS_API KelStatus kelsFilterMedian_8u_I (Kel8u*  pSrcDst, int len, int maskSize);
KELS_API KelStatus kelsFilterMedian_16s_I(Kel16s* pSrcDst, int len, int maskSize);
KELS_API KelStatus kelsFilterMedian_32f_I(Kel32f* pSrcDst, int len, int maskSize);
KELS_API KelStatus kelsFilterMedian_64f_I(Kel64f* pSrcDst, int len, int maskSize);
/** @} */

#endif
