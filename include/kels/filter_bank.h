/** @file
 *  Two-band filter banks for wavelet transforms with any taps: a stream into a low and a high band at half its rate, and
 *  back.
 *
 *  **What a band computes.** With the band's taps h[0] to h[T - 1], its offset d, and x[n] sample n of its input since
 *  the state was made, 0 before,
 *
 *      forward:  y[k] = sum of h[i] x[2k - d - i]
 *      inverse:  y[m] = sum of h[j] u[m - d - j],    u[2k] = x[k], u[2k + 1] = 0
 *
 *  An offset delays by as many samples at the full rate, and may be longer than the filter. A forward offset of -1 takes
 *  the outputs one sample later, at odd places; an inverse offset of -1 is taken for 1. The bands may differ in length and
 *  offset. The signal that an inverse call makes is the sum of both bands.
 *
 *  **Shapes.** A forward call reads 2 dstLen samples and stores `dstLen` in each band; an inverse call reads `srcLen` of
 *  each band and stores 2 srcLen. A stream may be cut into calls of any lengths: its results have the same bits.
 *
 *  **Types.** Taps, bands and delay lines are single. The signal is single, or (`8s32f` and so on, `32f8s` and so on) of
 *  integers, which are rounded to nearest with ties to even, and saturated.
 *
 *  **Accuracy.** Sums are made in double precision and rounded once: at most 1 ulp away from the exact sum where its
 *  terms do not cancel. In an inverse call the low band's sum is rounded to single before the high band's sum is added to
 *  it, and that is rounded to single again, before any conversion.
 *
 *  **Delay lines** are what a band keeps of its input, oldest first: forward max(T - 1 - (d is -1), 0) + max(d, 0)
 *  samples, inverse (T - 1 + (d is odd)) / 2 + d / 2, rounded down each (d = -1 counts as 1). They are silent in a new
 *  state.
 *
 *  **Ownership.** A state belongs to the caller, who releases it. Taps are copied. A state changes in every call and
 *  belongs to one thread at a time.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr` (`pState`), `kelStatusContextMismatch` (a state of another
 *  form or of none), then what stands with the group, then `kelStatusOk`. On an error nothing has been stored.
 *
 *  **Aliasing.** Sources and destinations do not overlap. Data may stand at any address.
 */
#ifndef KELS_FILTER_BANK_H
#define KELS_FILTER_BANK_H

#include "kels/status.h"

/** A forward transform: two decimating filters. */
typedef struct WTFwdState WTFwdState;
/** An inverse transform: two interpolating filters. */
typedef struct WTInvState WTInvState;

/** @name Making a state
 *  @return `kelStatusNullPtr` (`ppState`, `pTapsLow`), `kelStatusBadSize` (`lenLow` below 1), `kelStatusNullPtr`
 *  (`pTapsHigh`), `kelStatusBadSize` (`lenHigh` below 1), `kelStatusBadWtOffset` (an offset below -1),
 *  `kelStatusNoMemory`, with `*ppState` null then, or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsWTFwdInitAlloc_32f   (WTFwdState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTFwdInitAlloc_8s32f (WTFwdState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTFwdInitAlloc_8u32f (WTFwdState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTFwdInitAlloc_16s32f(WTFwdState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTFwdInitAlloc_16u32f(WTFwdState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTInvInitAlloc_32f   (WTInvState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTInvInitAlloc_32f8s (WTInvState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTInvInitAlloc_32f8u (WTInvState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTInvInitAlloc_32f16s(WTInvState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
KELS_API KelStatus kelsWTInvInitAlloc_32f16u(WTInvState** ppState, const Kel32f* pTapsLow, int lenLow, int offsLow, const Kel32f* pTapsHigh, int lenHigh, int offsHigh);
/** @} */

/** @name Releasing a state
 *  A state that is not of the form is not released.
 *  @{ */
KELS_API KelStatus kelsWTFwdFree_32f   (WTFwdState* pState);
KELS_API KelStatus kelsWTFwdFree_8s32f (WTFwdState* pState);
KELS_API KelStatus kelsWTFwdFree_8u32f (WTFwdState* pState);
KELS_API KelStatus kelsWTFwdFree_16s32f(WTFwdState* pState);
KELS_API KelStatus kelsWTFwdFree_16u32f(WTFwdState* pState);
KELS_API KelStatus kelsWTInvFree_32f   (WTInvState* pState);
KELS_API KelStatus kelsWTInvFree_32f8s (WTInvState* pState);
KELS_API KelStatus kelsWTInvFree_32f8u (WTInvState* pState);
KELS_API KelStatus kelsWTInvFree_32f16s(WTInvState* pState);
KELS_API KelStatus kelsWTInvFree_32f16u(WTInvState* pState);
/** @} */

/** @name Forward transform
 *  @return after the state's: `kelStatusNullPtr`, `kelStatusBadSize` (`dstLen` below 1) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsWTFwd_32f   (const Kel32f* pSrc, Kel32f* pDstLow, Kel32f* pDstHigh, int dstLen, WTFwdState* pState);
KELS_API KelStatus kelsWTFwd_8s32f (const Kel8s*  pSrc, Kel32f* pDstLow, Kel32f* pDstHigh, int dstLen, WTFwdState* pState);
KELS_API KelStatus kelsWTFwd_8u32f (const Kel8u*  pSrc, Kel32f* pDstLow, Kel32f* pDstHigh, int dstLen, WTFwdState* pState);
KELS_API KelStatus kelsWTFwd_16s32f(const Kel16s* pSrc, Kel32f* pDstLow, Kel32f* pDstHigh, int dstLen, WTFwdState* pState);
KELS_API KelStatus kelsWTFwd_16u32f(const Kel16u* pSrc, Kel32f* pDstLow, Kel32f* pDstHigh, int dstLen, WTFwdState* pState);
/** @} */

/** @name Inverse transform
 *  @return after the state's: `kelStatusNullPtr` (sources), `kelStatusBadSize` (`srcLen` below 1), `kelStatusNullPtr`
 *  (`pDst`) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsWTInv_32f   (const Kel32f* pSrcLow, const Kel32f* pSrcHigh, int srcLen, Kel32f* pDst, WTInvState* pState);
KELS_API KelStatus kelsWTInv_32f8s (const Kel32f* pSrcLow, const Kel32f* pSrcHigh, int srcLen, Kel8s*  pDst, WTInvState* pState);
KELS_API KelStatus kelsWTInv_32f8u (const Kel32f* pSrcLow, const Kel32f* pSrcHigh, int srcLen, Kel8u*  pDst, WTInvState* pState);
KELS_API KelStatus kelsWTInv_32f16s(const Kel32f* pSrcLow, const Kel32f* pSrcHigh, int srcLen, Kel16s* pDst, WTInvState* pState);
KELS_API KelStatus kelsWTInv_32f16u(const Kel32f* pSrcLow, const Kel32f* pSrcHigh, int srcLen, Kel16u* pDst, WTInvState* pState);
/** @} */

/** @name Reading the delay lines
 *  @return after the state's: `kelStatusNullPtr` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsWTFwdGetDlyLine_32f   (const WTFwdState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdGetDlyLine_8s32f (const WTFwdState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdGetDlyLine_8u32f (const WTFwdState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdGetDlyLine_16s32f(const WTFwdState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdGetDlyLine_16u32f(const WTFwdState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvGetDlyLine_32f   (const WTInvState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvGetDlyLine_32f8s (const WTInvState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvGetDlyLine_32f8u (const WTInvState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvGetDlyLine_32f16s(const WTInvState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvGetDlyLine_32f16u(const WTInvState* pState, Kel32f* pDlyLow, Kel32f* pDlyHigh);
/** @} */

/** @name Setting the delay lines
 *  What was read from one state lets another one with the same taps and offsets go on with its stream.
 *  @return after the state's: `kelStatusNullPtr` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsWTFwdSetDlyLine_32f   (WTFwdState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdSetDlyLine_8s32f (WTFwdState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdSetDlyLine_8u32f (WTFwdState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdSetDlyLine_16s32f(WTFwdState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTFwdSetDlyLine_16u32f(WTFwdState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvSetDlyLine_32f   (WTInvState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvSetDlyLine_32f8s (WTInvState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvSetDlyLine_32f8u (WTInvState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvSetDlyLine_32f16s(WTInvState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
KELS_API KelStatus kelsWTInvSetDlyLine_32f16u(WTInvState* pState, const Kel32f* pDlyLow, const Kel32f* pDlyHigh);
/** @} */

#endif
