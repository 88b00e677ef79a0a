/** @file
 *  Discrete Fourier transforms of N points, N being any positive length.
 *
 *  The interface, the normalisation and the layouts are those of the FFT (kels/fft.h): X[k] = sum over n of
 *  x[n] exp(-2 pi i n k / N) forward, the other sign back, from a plan that is made once. A power of two from 8 on is
 *  the FFT itself, to the bit. Lengths whose factors are 2, 3, 5, 7, 11 and 13 take about as long as powers of two of
 *  their size; others about five times that.
 *
 *  **Statuses** of the transforms, in the order of the checks: `kelStatusNullPtr` (no plan), `kelStatusContextMismatch`
 *  (a plan of another kind), `kelStatusNullPtr` (a data pointer), `kelStatusNoMemory`. Not a value has been stored when
 *  one of them is returned. NaN and infinity pass through the arithmetic.
 *
 *  **Work buffer.** `pBuffer` is null or at least as long as `kelsDFTGetBufSize_*` says, at any address. With a null
 *  pointer a transform that needs memory allocates it and frees it before it returns; in single and double precision
 *  none of up to 1024 values does.
 *
 *  **Aliasing.** Every transform runs in place (`pSrc` equal to `pDst`) or between disjoint arrays, with the same bits.
 *  Data may stand at any address.
 *
 *  **Accuracy.** Relative RMS error at most 0.6 eps sqrt(log2 N), eps being 2^-23 or 2^-52; at most 4 eps sqrt(log2 L)
 *  for long lengths with other factors, L being the power of two from 2 N - 1 on.
 *
 *  **Threads.** A finished plan is only read: threads may share it, each with its own data and buffer.
 */
#ifndef KELS_DFT_H
#define KELS_DFT_H

#include "kels/fft.h"

typedef struct KelsDftPlan_16s KelsDftPlan_16s; /**< Plan over 16-bit data. */
typedef struct KelsDftPlan_32f KelsDftPlan_32f; /**< Plan over single-precision data. */
typedef struct KelsDftPlan_64f KelsDftPlan_64f; /**< Plan over double-precision data. */

/** @name Making a plan of any length
 *  `C` plans transform complex data (`sc` and `fc` interleaved, `s` and `f` two arrays), `R` plans real data.
 *
 *  @param ppPlan receives the plan, on success only; it belongs to the caller, who gives it to the matching Free
 *  @param len    N, at least 1; too large a length is `kelStatusNoMemory`
 *  @param flag   one of kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone; 16s plans of length 1 do not look
 *                at it
 *  @param hint   not looked at
 *  @return `kelStatusNullPtr`, `kelStatusBadSize`, `kelStatusBadFftFlag`, `kelStatusNoMemory` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsDFTInitAlloc_C_16sc(KelsDftPlan_16s** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_C_16s (KelsDftPlan_16s** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_R_16s (KelsDftPlan_16s** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_C_32fc(KelsDftPlan_32f** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_C_32f (KelsDftPlan_32f** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_R_32f (KelsDftPlan_32f** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_C_64fc(KelsDftPlan_64f** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_C_64f (KelsDftPlan_64f** ppPlan, int len, int flag, int hint);
KELS_API KelStatus kelsDFTInitAlloc_R_64f (KelsDftPlan_64f** ppPlan, int len, int flag, int hint);
/** @} */

/** @name Releasing a plan of any length
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` (another kind of plan, which stays usable) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsDFTFree_C_16sc(KelsDftPlan_16s* pPlan);
KELS_API KelStatus kelsDFTFree_C_16s (KelsDftPlan_16s* pPlan);
KELS_API KelStatus kelsDFTFree_R_16s (KelsDftPlan_16s* pPlan);
KELS_API KelStatus kelsDFTFree_C_32fc(KelsDftPlan_32f* pPlan);
KELS_API KelStatus kelsDFTFree_C_32f (KelsDftPlan_32f* pPlan);
KELS_API KelStatus kelsDFTFree_R_32f (KelsDftPlan_32f* pPlan);
KELS_API KelStatus kelsDFTFree_C_64fc(KelsDftPlan_64f* pPlan);
KELS_API KelStatus kelsDFTFree_C_64f (KelsDftPlan_64f* pPlan);
KELS_API KelStatus kelsDFTFree_R_64f (KelsDftPlan_64f* pPlan);
/** @} */

/** @name Size of the work buffer for any length
 *  Stores the bytes that a transform of this plan wants as `pBuffer`; 0 means that none is used. The size allows for
 *  any alignment of the buffer.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsDFTGetBufSize_C_16sc(const KelsDftPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_C_16s (const KelsDftPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_R_16s (const KelsDftPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_C_32fc(const KelsDftPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_C_32f (const KelsDftPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_R_32f (const KelsDftPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_C_64fc(const KelsDftPlan_64f* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_C_64f (const KelsDftPlan_64f* pPlan, int* pSize);
KELS_API KelStatus kelsDFTGetBufSize_R_64f (const KelsDftPlan_64f* pPlan, int* pSize);
/** @} */

/** @name Complex transforms of any length
 *  N complex points to N complex points, interleaved or in two arrays each, of which one may be in place without the
 *  other.
 *  @{ */
KELS_API KelStatus kelsDFTFwd_CToC_32fc(const Kel32fc* pSrc, Kel32fc* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CToC_32fc(const Kel32fc* pSrc, Kel32fc* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_CToC_64fc(const Kel64fc* pSrc, Kel64fc* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CToC_64fc(const Kel64fc* pSrc, Kel64fc* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_CToC_32f (const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDstRe, Kel32f* pDstIm, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CToC_32f (const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDstRe, Kel32f* pDstIm, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_CToC_64f (const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDstRe, Kel64f* pDstIm, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CToC_64f (const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDstRe, Kel64f* pDstIm, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Real forward transforms of any length
 *  N real samples to half of a conjugate-symmetric spectrum. With R(k), I(k) the parts of X[k], an odd length has
 *
 *  | Layout     | Content                                       | Values |
 *  |------------|-----------------------------------------------|--------|
 *  | Perm, Pack | R(0) R(1) I(1) ... R((N-1)/2) I((N-1)/2)      | N      |
 *  | CCS        | R(0) 0 R(1) I(1) ... R((N-1)/2) I((N-1)/2)    | N + 1  |
 *
 *  and an even one the layouts of kels/fft.h.
 *  @{ */
KELS_API KelStatus kelsDFTFwd_RToPerm_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToPack_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToCCS_32f (const Kel32f* pSrc, Kel32f* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToPerm_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToPack_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToCCS_64f (const Kel64f* pSrc, Kel64f* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Real inverse transforms of any length
 *  From a layout back to N samples; the imaginary parts that CCS stores with real bins are not read.
 *  @{ */
KELS_API KelStatus kelsDFTInv_PermToR_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_PackToR_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CCSToR_32f (const Kel32f* pSrc, Kel32f* pDst, const KelsDftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_PermToR_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_PackToR_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CCSToR_64f (const Kel64f* pSrc, Kel64f* pDst, const KelsDftPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Transforms of 16-bit data of any length
 *  Through the single-precision transform: the results, times 2^-scaleFactor, are rounded to the nearest integer, ties
 *  to even, and saturated. Scale factors beyond 100 in magnitude saturate or vanish. A transform of length 1 is the
 *  value itself, scaled with ties up.
 *  @{ */
KELS_API KelStatus kelsDFTFwd_CToC_16sc_Sfs  (const Kel16sc* pSrc, Kel16sc* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CToC_16sc_Sfs  (const Kel16sc* pSrc, Kel16sc* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_CToC_16s_Sfs   (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16s* pDstRe, Kel16s* pDstIm, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CToC_16s_Sfs   (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16s* pDstRe, Kel16s* pDstIm, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToPerm_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToPack_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTFwd_RToCCS_16s_Sfs (const Kel16s* pSrc, Kel16s* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_PermToR_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_PackToR_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDFTInv_CCSToR_16s_Sfs (const Kel16s* pSrc, Kel16s* pDst, const KelsDftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
/** @} */

#endif
