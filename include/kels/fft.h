/** @file
 *  Fast Fourier transforms of N = 2^order points.
 *
 *  A transform runs from a plan: make one with `kelsFFTInitAlloc_*`, run it any number of times, release it with
 *  `kelsFFTFree_*`. The forward transform is X[k] = sum over n of x[n] exp(-2 pi i n k / N), the inverse has the other
 *  sign; neither divides by N unless the plan's flag says so.
 *
 *  **Statuses** of the transforms, in the order of the checks: `kelStatusNullPtr` (no plan), `kelStatusContextMismatch`
 *  (a plan of another kind), `kelStatusNullPtr` (a data pointer), `kelStatusNoMemory` (16-bit data only). Not a value
 *  has been stored when one of them is returned. NaN and infinity pass through the arithmetic.
 *
 *  **Work buffer.** `pBuffer` is null or at least as long as `kelsFFTGetBufSize_*` says, at any address. Transforms of
 *  floating-point data neither use it nor allocate: their scratch is on the stack. Those of 16-bit data in single
 *  precision work in it; with a null pointer they allocate it and free it before they return.
 *
 *  **Aliasing.** Every transform runs in place (`pSrc` equal to `pDst`) or between disjoint arrays, with the same bits.
 *  Data may stand at any address.
 *
 *  **Accuracy.** In floating point, relative RMS error at most 0.6 eps sqrt(log2 N), eps being 2^-23 or 2^-52.
 *
 *  **Threads.** A finished plan is only read: threads may share it, each with its own data and buffer.
 */
#ifndef KELS_FFT_H
#define KELS_FFT_H

#include "kels/status.h"

/** Where a plan divides. Exactly one of these is passed as `flag`. */
enum {
    kelFftNormFwd  = 1, /**< the forward transform multiplies by 1/N */
    kelFftNormInv  = 2, /**< the inverse transform multiplies by 1/N */
    kelFftNormSqrt = 4, /**< both multiply by 1/sqrt(N) */
    kelFftNormNone = 8  /**< neither multiplies: a round trip gives N times the input */
};

/** Hints for plans over 16-bit data; any value passes, and those not listed are as kelHintFloat. Floating-point plans
 *  read none. */
enum {
    kelHintDefault   = 0, /**< fixed point for orders 1 to 8, single precision above */
    kelHintWideFixed = 1, /**< fixed point for orders 1 to 10, single precision above */
    kelHintFloat     = 2  /**< single precision at every order */
};

typedef struct KelsFftPlan_16s KelsFftPlan_16s; /**< Plan over 16-bit data. */
typedef struct KelsFftPlan_32f KelsFftPlan_32f; /**< Plan over single-precision data. */
typedef struct KelsFftPlan_64f KelsFftPlan_64f; /**< Plan over double-precision data. */

/** @name Making a plan
 *  `C` plans transform complex data (`sc` and `fc` interleaved, `s` and `f` two arrays), `R` plans real data; `order`
 *  counts points of the sequence that is transformed.
 *
 *  @param ppPlan receives the plan, on success only; it belongs to the caller, who gives it to the matching Free
 *  @param order  0 to 30
 *  @param flag   one of kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone
 *  @param hint   of a 16s plan: kelHintDefault, kelHintWideFixed or kelHintFloat; no other plan reads it
 *  @return `kelStatusNullPtr`, `kelStatusBadFftOrder`, `kelStatusBadFftFlag`, `kelStatusNoMemory` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFFTInitAlloc_C_16sc(KelsFftPlan_16s** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_C_16s (KelsFftPlan_16s** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_R_16s (KelsFftPlan_16s** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_C_32fc(KelsFftPlan_32f** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_C_32f (KelsFftPlan_32f** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_C_64fc(KelsFftPlan_64f** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_C_64f (KelsFftPlan_64f** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_R_32f (KelsFftPlan_32f** ppPlan, int order, int flag, int hint);
KELS_API KelStatus kelsFFTInitAlloc_R_64f (KelsFftPlan_64f** ppPlan, int order, int flag, int hint);
/** @} */

/** @name Releasing a plan
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` (another kind of plan, which stays usable) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFFTFree_C_16sc(KelsFftPlan_16s* pPlan);
KELS_API KelStatus kelsFFTFree_C_16s (KelsFftPlan_16s* pPlan);
KELS_API KelStatus kelsFFTFree_R_16s (KelsFftPlan_16s* pPlan);
KELS_API KelStatus kelsFFTFree_C_32fc(KelsFftPlan_32f* pPlan);
KELS_API KelStatus kelsFFTFree_C_32f (KelsFftPlan_32f* pPlan);
KELS_API KelStatus kelsFFTFree_C_64fc(KelsFftPlan_64f* pPlan);
KELS_API KelStatus kelsFFTFree_C_64f (KelsFftPlan_64f* pPlan);
KELS_API KelStatus kelsFFTFree_R_32f (KelsFftPlan_32f* pPlan);
KELS_API KelStatus kelsFFTFree_R_64f (KelsFftPlan_64f* pPlan);
/** @} */

/** @name Size of the work buffer
 *  Stores the bytes that a transform of this plan wants as `pBuffer`; 0 means that none is used. The size allows for
 *  any alignment of the buffer.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFFTGetBufSize_C_16sc(const KelsFftPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_C_16s (const KelsFftPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_R_16s (const KelsFftPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_C_32fc(const KelsFftPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_C_32f (const KelsFftPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_C_64fc(const KelsFftPlan_64f* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_C_64f (const KelsFftPlan_64f* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_R_32f (const KelsFftPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsFFTGetBufSize_R_64f (const KelsFftPlan_64f* pPlan, int* pSize);
/** @} */

/** @name Complex transforms
 *  N complex points to N complex points, both in natural order.
 *  @{ */
KELS_API KelStatus kelsFFTFwd_CToC_32fc(const Kel32fc* pSrc, Kel32fc* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_CToC_64fc(const Kel64fc* pSrc, Kel64fc* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CToC_32fc(const Kel32fc* pSrc, Kel32fc* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CToC_64fc(const Kel64fc* pSrc, Kel64fc* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Complex transforms of two arrays
 *  The same with real and imaginary parts in arrays of their own, from `C_32f` and `C_64f` plans. Each of the two may be
 *  in place without the other.
 *  @{ */
KELS_API KelStatus kelsFFTFwd_CToC_32f(const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDstRe, Kel32f* pDstIm, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_CToC_64f(const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDstRe, Kel64f* pDstIm, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CToC_32f(const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32f* pDstRe, Kel32f* pDstIm, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CToC_64f(const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64f* pDstRe, Kel64f* pDstIm, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Real forward transforms
 *  N real samples to half of a conjugate-symmetric spectrum. With R(k), I(k) the parts of X[k]:
 *
 *  | Layout | Content                                                 | Values |
 *  |--------|---------------------------------------------------------|--------|
 *  | Perm   | R(0), R(N/2), R(1), I(1), ..., R(N/2 - 1), I(N/2 - 1)   | N      |
 *  | Pack   | R(0), R(1), I(1), ..., R(N/2 - 1), I(N/2 - 1), R(N/2)   | N      |
 *  | CCS    | R(0), 0, R(1), I(1), ..., R(N/2 - 1), I(N/2 - 1), R(N/2), 0 | N + 2 |
 *
 *  One point is R(0) in Perm and Pack, and R(0), 0 in CCS. In place, CCS needs room for N + 2 values.
 *  @{ */
KELS_API KelStatus kelsFFTFwd_RToPerm_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToPerm_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToPack_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToPack_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToCCS_32f (const Kel32f* pSrc, Kel32f* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToCCS_64f (const Kel64f* pSrc, Kel64f* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Real inverse transforms
 *  From the layouts above to N real samples. The imaginary parts of bins 0 and N/2 that CCS stores are not read; in
 *  place, the two values of CCS beyond the N samples stay as they were.
 *  @{ */
KELS_API KelStatus kelsFFTInv_PermToR_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_PermToR_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_PackToR_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_PackToR_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CCSToR_32f (const Kel32f* pSrc, Kel32f* pDst, const KelsFftPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CCSToR_64f (const Kel64f* pSrc, Kel64f* pDst, const KelsFftPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Transforms of 16-bit data
 *  The layouts are those above. A result is the transform times 2^-scaleFactor, in the plan's normalisation, rounded to
 *  an integer and saturated; every scale factor passes. How it is computed, the plan has decided (see `hint`):
 *
 *  - Fixed point. A sample is a word of 32 bits, the sample times 2^(16 - order), which leaves room for every real
 *    transform; sums of words wrap, as those of a complex transform near full scale may. Roots of unity have 14 bits
 *    behind the point, their products are rounded down, and results to nearest with ties upward.
 *  - Single precision. The bits of `kelsConvert_16s32f`, the transform of the same name in `32f`, and
 *    `kelsConvert_32f16s_Sfs` to nearest with ties to even.
 *
 *  A single point (order 0) is scaled, ties upward, and not normalised. Only single precision wants a work buffer.
 *  Results depend on neither the level of the processor nor, in fixed point, the rounding mode of the caller.
 *  @{ */
KELS_API KelStatus kelsFFTFwd_CToC_16sc_Sfs  (const Kel16sc* pSrc, Kel16sc* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CToC_16sc_Sfs  (const Kel16sc* pSrc, Kel16sc* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_CToC_16s_Sfs   (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16s* pDstRe, Kel16s* pDstIm, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CToC_16s_Sfs   (const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16s* pDstRe, Kel16s* pDstIm, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToPerm_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToPack_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTFwd_RToCCS_16s_Sfs (const Kel16s* pSrc, Kel16s* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_PermToR_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_PackToR_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsFFTInv_CCSToR_16s_Sfs (const Kel16s* pSrc, Kel16s* pDst, const KelsFftPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
/** @} */

#endif
