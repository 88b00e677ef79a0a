/** @file
 *  One level of the Haar wavelet transform, in its averaging form.
 *
 *  **Shapes.** `len` counts the samples of the signal at full rate, the source of a forward call and the destination of
 *  an inverse one. The low band has (len + 1) / 2 elements, the high band len / 2. With x0 = pSrc[2k], x1 = pSrc[2k+1],
 *
 *      forward:  pDstLow[k] = (x0 + x1) / 2,               pDstHigh[k]  = (x1 - x0) / 2
 *      inverse:  pDst[2k]   = pSrcLow[k] - pSrcHigh[k],    pDst[2k + 1] = pSrcLow[k] + pSrcHigh[k]
 *
 *  The last of an odd number of samples goes to the low band alone, and comes back from there, as it is.
 *
 *  **Integers.** Results are rounded to nearest with ties to even, and saturated: what the exact sum or difference v is
 *  scaled by is 2^-t, with t = 1 + scaleFactor in a forward call, `scaleFactor` in an inverse one, where a function
 *  without one has 0. Every value of `scaleFactor` is good. A last sample x without a partner has v = 2 x forward, v = x
 *  inverse. There are these exceptions, in the `32s` and `64s` forms, W being their width:
 *
 *  | Case | Result |
 *  |------|--------|
 *  | t = 1, in `32s` and in the inverse of `64s`, where floor(x1 / 2) - floor(x0 / 2) = 2^(W-1) - 1 (x1 being the low element and x0 the high one in an inverse call) | 2^(W-1) - 1 for the difference, 0 for the sum |
 *  | t from W - 3 to W - 1, v within 14 of a tie | may be the other neighbour |
 *  | t = W | 1 for v of 2^(W-1) and more, which is a tie at the first |
 *
 *  **Floating point.** The difference d = (x1 - x0) / 2 and d + x0 are rounded once; overflow there is only where the
 *  result overflows. An infinite x0 gives a NaN in the low band. Inverse, each result is rounded once. All within 1 ulp.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), `kelStatusOk`.
 *  Nothing has been stored when an error is returned.
 *
 *  **Aliasing.** Sources and destinations do not overlap. Data may stand at any address.
 */
#ifndef KELS_HAAR_H
#define KELS_HAAR_H

#include "kels/status.h"

/** @name Forward transform
 *  A signal into a low and a high band.
 *  @{ */
KELS_API KelStatus kelsWTHaarFwd_8s     (const Kel8s*  pSrc, int len, Kel8s*  pDstLow, Kel8s*  pDstHigh);
KELS_API KelStatus kelsWTHaarFwd_8s_Sfs (const Kel8s*  pSrc, int len, Kel8s*  pDstLow, Kel8s*  pDstHigh, int scaleFactor);
KELS_API KelStatus kelsWTHaarFwd_16s    (const Kel16s* pSrc, int len, Kel16s* pDstLow, Kel16s* pDstHigh);
KELS_API KelStatus kelsWTHaarFwd_16s_Sfs(const Kel16s* pSrc, int len, Kel16s* pDstLow, Kel16s* pDstHigh, int scaleFactor);
KELS_API KelStatus kelsWTHaarFwd_32s    (const Kel32s* pSrc, int len, Kel32s* pDstLow, Kel32s* pDstHigh);
KELS_API KelStatus kelsWTHaarFwd_32s_Sfs(const Kel32s* pSrc, int len, Kel32s* pDstLow, Kel32s* pDstHigh, int scaleFactor);
KELS_API KelStatus kelsWTHaarFwd_64s    (const Kel64s* pSrc, int len, Kel64s* pDstLow, Kel64s* pDstHigh);
KELS_API KelStatus kelsWTHaarFwd_64s_Sfs(const Kel64s* pSrc, int len, Kel64s* pDstLow, Kel64s* pDstHigh, int scaleFactor);
KELS_API KelStatus kelsWTHaarFwd_32f    (const Kel32f* pSrc, int len, Kel32f* pDstLow, Kel32f* pDstHigh);
KELS_API KelStatus kelsWTHaarFwd_64f    (const Kel64f* pSrc, int len, Kel64f* pDstLow, Kel64f* pDstHigh);
/** @} */

/** @name Inverse transform
 *  A signal from its low and its high band.
 *  @{ */
KELS_API KelStatus kelsWTHaarInv_8s     (const Kel8s*  pSrcLow, const Kel8s*  pSrcHigh, Kel8s*  pDst, int len);
KELS_API KelStatus kelsWTHaarInv_8s_Sfs (const Kel8s*  pSrcLow, const Kel8s*  pSrcHigh, Kel8s*  pDst, int len, int scaleFactor);
KELS_API KelStatus kelsWTHaarInv_16s    (const Kel16s* pSrcLow, const Kel16s* pSrcHigh, Kel16s* pDst, int len);
KELS_API KelStatus kelsWTHaarInv_16s_Sfs(const Kel16s* pSrcLow, const Kel16s* pSrcHigh, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsWTHaarInv_32s    (const Kel32s* pSrcLow, const Kel32s* pSrcHigh, Kel32s* pDst, int len);
KELS_API KelStatus kelsWTHaarInv_32s_Sfs(const Kel32s* pSrcLow, const Kel32s* pSrcHigh, Kel32s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsWTHaarInv_64s    (const Kel64s* pSrcLow, const Kel64s* pSrcHigh, Kel64s* pDst, int len);
KELS_API KelStatus kelsWTHaarInv_64s_Sfs(const Kel64s* pSrcLow, const Kel64s* pSrcHigh, Kel64s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsWTHaarInv_32f    (const Kel32f* pSrcLow, const Kel32f* pSrcHigh, Kel32f* pDst, int len);
KELS_API KelStatus kelsWTHaarInv_64f    (const Kel64f* pSrcLow, const Kel64f* pSrcHigh, Kel64f* pDst, int len);
/** @} */

#endif
