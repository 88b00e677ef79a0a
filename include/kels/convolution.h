/** @file
 *  Convolution and correlation of whole vectors.
 *
 *  **Rounding.** Short sums are formed directly, each in double precision and rounded once: at most 1 ulp from the formula
 *  for `32f` and `32fc`, within 2^-51 of the sum of the terms' magnitudes for `64f` and `64fc`. Long ones may go through
 *  fast Fourier transforms of the library, which are made and released in the call; those round as they do: relative to
 *  the norms of both vectors, by eps log2 of the transform's length at most. The sizes decide: convolutions from 150
 *  results on, autocorrelations from 600 lags on (96 of complex data), and cross-correlations whose number of lags times
 *  the shorter length by the longer is above 383 (`32f`, `16s`), 511 (`64f`, `64fc`) or 255 (`32fc`) may be transformed.
 *  Shorter convolutions round every single step to single precision, in the order of the shorter vector.
 *
 *  A NaN or an infinity reaches those direct sums only whose terms have it; a transform spreads it.
 *
 *  **16 bits.** Sums become singles, are normalised as such, and then converted by kelsConvert_32f16s_Sfs(), to nearest,
 *  ties to even: times 2^-scaleFactor and saturated. Results do not depend on the rounding mode that the caller has set.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (a length below 1),
 *  `kelStatusNoMemory`, `kelStatusOk`. Nothing has been stored when one of the first two is returned. For want of memory,
 *  what lies outside of the overlap may have been set to 0.
 *
 *  **Aliasing.** `pDst` is disjoint from the sources, which may be one array. Data may stand at any address.
 */
#ifndef KELS_CONVOLUTION_H
#define KELS_CONVOLUTION_H

#include "kels/status.h"

/** @name Convolution
 *  pDst[k] = sum over i of pSrc1[i] pSrc2[k - i], for k from 0 to len1 + len2 - 2, indices outside of the vectors left
 *  out. Short ones of `16s` without memory give `kelStatusNullPtr`.
 *  @{ */
KELS_API KelStatus kelsConv_32f    (const Kel32f* pSrc1, int len1, const Kel32f* pSrc2, int len2, Kel32f* pDst);
KELS_API KelStatus kelsConv_16s_Sfs(const Kel16s* pSrc1, int len1, const Kel16s* pSrc2, int len2, Kel16s* pDst, int scaleFactor);
/** @} */

/** @name Cyclic convolution
 *  y[k] = sum over j of x[j] h[(k - j) mod S], S = 8 or 4. Nothing is checked, and the status is `kelStatusOk`. Real
 *  results are rounded once. `16s`: the sum of 32 bits wraps; it is shifted right by `scaleFactor`, toward minus infinity
 *  and by 31 at most, or left by -scaleFactor, within its 32 bits, and then saturated. `y` may be `x` or `h`.
 *  @{ */
KELS_API KelStatus kelsConvCyclic8x8_32f    (const Kel32f* x, const Kel32f*  h, Kel32f*  y);
KELS_API KelStatus kelsConvCyclic4x4_32f32fc(const Kel32f* x, const Kel32fc* h, Kel32fc* y);
KELS_API KelStatus kelsConvCyclic8x8_16s_Sfs(const Kel16s* x, const Kel16s*  h, Kel16s*  y, int scaleFactor);
/** @} */

/** @name Autocorrelation
 *  pDst[k] = sum over n of pSrc[n + k] conj(pSrc[n]), n from 0 to srcLen - 1 - k, for lags k below `dstLen`; 0 for lags
 *  from `srcLen` on.
 *  @{ */
KELS_API KelStatus kelsAutoCorr_32f    (const Kel32f*  pSrc, int srcLen, Kel32f*  pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_64f    (const Kel64f*  pSrc, int srcLen, Kel64f*  pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_32fc   (const Kel32fc* pSrc, int srcLen, Kel32fc* pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_64fc   (const Kel64fc* pSrc, int srcLen, Kel64fc* pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_16s_Sfs(const Kel16s*  pSrc, int srcLen, Kel16s*  pDst, int dstLen, int scaleFactor);
/** @} */

/** @name Biased autocorrelation
 *  The same, rounded, times 1 / srcLen, rounded.
 *  @{ */
KELS_API KelStatus kelsAutoCorr_NormA_32f    (const Kel32f*  pSrc, int srcLen, Kel32f*  pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormA_64f    (const Kel64f*  pSrc, int srcLen, Kel64f*  pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormA_32fc   (const Kel32fc* pSrc, int srcLen, Kel32fc* pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormA_64fc   (const Kel64fc* pSrc, int srcLen, Kel64fc* pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormA_16s_Sfs(const Kel16s*  pSrc, int srcLen, Kel16s*  pDst, int dstLen, int scaleFactor);
/** @} */

/** @name Unbiased autocorrelation
 *  The same, rounded, by srcLen - k, for lags k below `srcLen`.
 *  @{ */
KELS_API KelStatus kelsAutoCorr_NormB_32f    (const Kel32f*  pSrc, int srcLen, Kel32f*  pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormB_64f    (const Kel64f*  pSrc, int srcLen, Kel64f*  pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormB_32fc   (const Kel32fc* pSrc, int srcLen, Kel32fc* pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormB_64fc   (const Kel64fc* pSrc, int srcLen, Kel64fc* pDst, int dstLen);
KELS_API KelStatus kelsAutoCorr_NormB_16s_Sfs(const Kel16s*  pSrc, int srcLen, Kel16s*  pDst, int dstLen, int scaleFactor);
/** @} */

/** @name Cross-correlation
 *  pDst[k] = sum over n of conj(pSrc1[n]) pSrc2[n + lowLag + k], where both indices exist; 0 where none do. Every int is a
 *  good `lowLag`.
 *  @{ */
KELS_API KelStatus kelsCrossCorr_32f    (const Kel32f*  pSrc1, int len1, const Kel32f*  pSrc2, int len2, Kel32f*  pDst, int dstLen, int lowLag);
KELS_API KelStatus kelsCrossCorr_64f    (const Kel64f*  pSrc1, int len1, const Kel64f*  pSrc2, int len2, Kel64f*  pDst, int dstLen, int lowLag);
KELS_API KelStatus kelsCrossCorr_32fc   (const Kel32fc* pSrc1, int len1, const Kel32fc* pSrc2, int len2, Kel32fc* pDst, int dstLen, int lowLag);
KELS_API KelStatus kelsCrossCorr_64fc   (const Kel64fc* pSrc1, int len1, const Kel64fc* pSrc2, int len2, Kel64fc* pDst, int dstLen, int lowLag);
KELS_API KelStatus kelsCrossCorr_16s_Sfs(const Kel16s*  pSrc1, int len1, const Kel16s*  pSrc2, int len2, Kel16s*  pDst, int dstLen, int lowLag, int scaleFactor);
/** @} */

#endif
