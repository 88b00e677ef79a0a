/** @file
 *  The orthonormal discrete cosine transform of N samples, N being any positive length.
 *
 *  With c(0) = 1 / sqrt(N) and c(k) = sqrt(2 / N) for k above 0:
 *
 *  - forward (type II): X[k] = c(k) sum over n of x[n] cos(pi (2n + 1) k / 2N)
 *  - inverse (type III): x[n] = sum over k of c(k) X[k] cos(pi (2n + 1) k / 2N)
 *
 *  A transform runs from a plan of its direction: make one, run it any number of times, release it.
 *
 *  **Statuses** of the transforms, in the order of the checks: `kelStatusNullPtr` (no plan), `kelStatusContextMismatch`
 *  (a plan of another kind or of the other direction), `kelStatusNullPtr` (a data pointer), `kelStatusNoMemory`. Not a
 *  value has been stored when one of them is returned. NaN and infinity pass through the arithmetic.
 *
 *  **Work buffer.** `pBuffer` is null or at least as long as the plan's GetBufSize says, at any address. With a null
 *  pointer a transform that needs memory allocates it and frees it before it returns.
 *
 *  **Aliasing.** Every transform runs in place (`pSrc` equal to `pDst`) or between disjoint arrays, with the same bits.
 *  Data may stand at any address.
 *
 *  **Accuracy.** Relative RMS error at most 0.6 eps sqrt(log2 N), eps being 2^-23 or 2^-52, from N = 2 on; at most
 *  4 eps sqrt(log2 L) for long lengths with other factors than 2, 3, 5, 7, 11 and 13, L being the power of two from
 *  2 N - 1 on.
 *
 *  **Threads.** A finished plan is only read: threads may share it, each with its own data and buffer.
 */
#ifndef KELS_DCT_H
#define KELS_DCT_H

#include "kels/status.h"

typedef struct KelsDctPlan_16s KelsDctPlan_16s; /**< Plan over 16-bit data. */
typedef struct KelsDctPlan_32f KelsDctPlan_32f; /**< Plan over single-precision data. */
typedef struct KelsDctPlan_64f KelsDctPlan_64f; /**< Plan over double-precision data. */

/** @name Making a plan of the cosine transform
 *  @param ppPlan receives the plan, on success only; it belongs to the caller, who gives it to the matching Free
 *  @param len    N, at least 1; too large a length is `kelStatusNoMemory`
 *  @param hint   any value; kelHintFloat (kels/fft.h) asks for a larger work buffer at powers of two from 1024 on, and
 *                changes nothing else
 *  @return `kelStatusNullPtr`, `kelStatusBadSize`, `kelStatusNoMemory` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsDCTFwdInitAlloc_16s(KelsDctPlan_16s** ppPlan, int len, int hint);
KELS_API KelStatus kelsDCTFwdInitAlloc_32f(KelsDctPlan_32f** ppPlan, int len, int hint);
KELS_API KelStatus kelsDCTFwdInitAlloc_64f(KelsDctPlan_64f** ppPlan, int len, int hint);
KELS_API KelStatus kelsDCTInvInitAlloc_16s(KelsDctPlan_16s** ppPlan, int len, int hint);
KELS_API KelStatus kelsDCTInvInitAlloc_32f(KelsDctPlan_32f** ppPlan, int len, int hint);
KELS_API KelStatus kelsDCTInvInitAlloc_64f(KelsDctPlan_64f** ppPlan, int len, int hint);
/** @} */

/** @name Releasing a plan of the cosine transform
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` (another kind of plan, which stays usable) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsDCTFwdFree_16s(KelsDctPlan_16s* pPlan);
KELS_API KelStatus kelsDCTFwdFree_32f(KelsDctPlan_32f* pPlan);
KELS_API KelStatus kelsDCTFwdFree_64f(KelsDctPlan_64f* pPlan);
KELS_API KelStatus kelsDCTInvFree_16s(KelsDctPlan_16s* pPlan);
KELS_API KelStatus kelsDCTInvFree_32f(KelsDctPlan_32f* pPlan);
KELS_API KelStatus kelsDCTInvFree_64f(KelsDctPlan_64f* pPlan);
/** @} */

/** @name Size of the work buffer of the cosine transform
 *  Stores the bytes that a transform of this plan wants as `pBuffer`; 0 means that none is used. The size allows for
 *  any alignment of the buffer.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsDCTFwdGetBufSize_16s(const KelsDctPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsDCTFwdGetBufSize_32f(const KelsDctPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsDCTFwdGetBufSize_64f(const KelsDctPlan_64f* pPlan, int* pSize);
KELS_API KelStatus kelsDCTInvGetBufSize_16s(const KelsDctPlan_16s* pPlan, int* pSize);
KELS_API KelStatus kelsDCTInvGetBufSize_32f(const KelsDctPlan_32f* pPlan, int* pSize);
KELS_API KelStatus kelsDCTInvGetBufSize_64f(const KelsDctPlan_64f* pPlan, int* pSize);
/** @} */

/** @name Cosine transforms
 *  N samples to N values, or back.
 *  @{ */
KELS_API KelStatus kelsDCTFwd_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsDctPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDCTFwd_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsDctPlan_64f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDCTInv_32f(const Kel32f* pSrc, Kel32f* pDst, const KelsDctPlan_32f* pPlan, Kel8u* pBuffer);
KELS_API KelStatus kelsDCTInv_64f(const Kel64f* pSrc, Kel64f* pDst, const KelsDctPlan_64f* pPlan, Kel8u* pBuffer);
/** @} */

/** @name Cosine transforms of 16-bit data
 *  Through the single-precision transform: the results, times 2^-scaleFactor, are rounded to the nearest integer, ties
 *  to even, and saturated. Scale factors beyond 100 in magnitude saturate or vanish. A transform of length 1 is the
 *  value itself, scaled with ties up.
 *  @{ */
KELS_API KelStatus kelsDCTFwd_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsDctPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
KELS_API KelStatus kelsDCTInv_16s_Sfs(const Kel16s* pSrc, Kel16s* pDst, const KelsDctPlan_16s* pPlan, int scaleFactor, Kel8u* pBuffer);
/** @} */

#endif
