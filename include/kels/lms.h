/** @file
 *  Adaptive filters by least mean squares.
 *
 *  **Taps** are given and returned in their natural order, h[0] first; where an array is the caller's own or is shown as
 *  it stands (`Direct` forms, `GetTapsPointer`), the last comes first.
 *
 *  **Delay line.** A doubled ring: a sample is stored at the index and one ring length behind it, then the index moves
 *  on, so that the last samples stand from the new index on, the oldest first. Contexts take and give the first half as
 *  it is stored, together with the index. A null line is silence.
 *
 *  **Contexts** are made by `InitAlloc`, belong to one thread at a time, and are given back to the `Free` of their
 *  family, which takes a null too. No function allocates after creation. What `InitAlloc` stores through `pState` it
 *  stores on success only.
 */
#ifndef KELS_LMS_H
#define KELS_LMS_H

#include "kels/status.h"

typedef struct KelLmsContext   KelLmsContext;   /**< Taps and delay line of a filter driven by blocks. */
typedef struct KelLmsMrContext KelLmsMrContext; /**< Taps and delay line of a filter driven step by step. */

/** @name Making a filter
 *  @param pState       receives the context
 *  @param pTaps        tapsLen taps, or null for zeros
 *  @param tapsLen      at least 1
 *  @param pDlyLine     tapsLen samples, or null
 *  @param dlyLineIndex from 0 to tapsLen - 1
 *  @return `kelStatusNullPtr` (`pState`), `kelStatusBadSize` (`tapsLen`), `kelStatusBadDlyLineIndex`,
 *  `kelStatusNoMemory` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSInitAlloc_32f   (KelLmsContext** pState, const Kel32f* pTaps, int tapsLen, const Kel32f* pDlyLine, int dlyLineIndex);
KELS_API KelStatus kelsFIRLMSInitAlloc32f_16s(KelLmsContext** pState, const Kel32f* pTaps, int tapsLen, const Kel16s* pDlyLine, int dlyLineIndex);
/** @} */

/** @name Releasing a filter
 *  @return `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSFree_32f   (KelLmsContext* pState);
KELS_API KelStatus kelsFIRLMSFree32f_16s(KelLmsContext* pState);
/** @} */

/** @name Taps and delay line of a filter
 *  @return `kelStatusNullPtr` (the context or an output), `kelStatusContextMismatch`, `kelStatusBadDlyLineIndex` (set,
 *  outside 0 to tapsLen - 1) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSGetTaps_32f      (const KelLmsContext* pState, Kel32f* pOutTaps);
KELS_API KelStatus kelsFIRLMSGetTaps32f_16s   (const KelLmsContext* pState, Kel32f* pOutTaps);
KELS_API KelStatus kelsFIRLMSGetDlyLine_32f   (const KelLmsContext* pState, Kel32f* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIRLMSGetDlyLine32f_16s(const KelLmsContext* pState, Kel16s* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIRLMSSetDlyLine_32f   (KelLmsContext* pState, const Kel32f* pDlyLine, int dlyLineIndex);
KELS_API KelStatus kelsFIRLMSSetDlyLine32f_16s(KelLmsContext* pState, const Kel16s* pDlyLine, int dlyLineIndex);
/** @} */

/** @name Filtering a block
 *  For each sample x[n] with its reference r[n]: y = sum of h[k] x[n - k], which is stored, and then
 *  h[k] += 2 mu (r[n] - y) x[n - k]. Sums and errors are of double precision, taps are rounded to single in every step:
 *  within 1 ulp and tapsLen 2^-53 of the sum of the terms' magnitudes, given the taps. 16-bit outputs are saturated and
 *  cut toward zero, NaN to the largest; the error is that of the output before. `pDst` may be `pSrc` or `pRef`.
 *  @return `kelStatusNullPtr` (a pointer or the context), `kelStatusBadSize` (`len` below 1), `kelStatusContextMismatch`
 *  or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMS_32f   (const Kel32f* pSrc, const Kel32f* pRef, Kel32f* pDst, int len, Kel32f mu, KelLmsContext* pState);
KELS_API KelStatus kelsFIRLMS32f_16s(const Kel16s* pSrc, const Kel16s* pRef, Kel16s* pDst, int len, Kel32f mu, KelLmsContext* pState);
/** @} */

/** @name Filtering one sample without a context
 *  The same with taps and ring of the caller's, 2 tapsLen samples. The `Q15` form has integer taps with 15 fractional
 *  bits and divides by the energy E of the window: with the products wrapped to 32 bits, y is their sum over 2^15, ties
 *  to even, stored saturated; if E is not 0, h[k] += muQ15 (r - y) x[n - k] / E, the quotient cut toward zero, the tap
 *  saturated.
 *  @return `kelStatusNullPtr` (a pointer), `kelStatusBadSize` (`tapsLen` below 1), `kelStatusBadDlyLineIndex` or
 *  `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSOne_Direct_32f   (Kel32f src, Kel32f refVal, Kel32f* pDstVal, Kel32f* pTaps, int tapsLen, Kel32f mu, Kel32f* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIRLMSOne_Direct32f_16s(Kel16s src, Kel16s refVal, Kel16s* pDstVal, Kel32f* pTaps, int tapsLen, Kel32f mu, Kel16s* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIRLMSOne_DirectQ15_16s(Kel16s src, Kel16s refVal, Kel16s* pDstVal, Kel32s* pTaps, int tapsLen, int muQ15, Kel16s* pDlyLine, int* pDlyLineIndex);
/** @} */

/** @name Making a filter at several rates
 *  Samples enter, outputs are asked for and taps adapted by calls of their own, at any rates. Taps stand `tapStride`
 *  samples apart, and adapt to what the filter met `errDly` samples before; the ring holds
 *  L = tapStride tapsLen + errDly samples. Arithmetic is that of 32-bit integers, and wraps.
 *
 *  @param pState       receives the context
 *  @param pTaps        tapsLen taps of 32 bits, of which filtering sees the upper 16, or null for zeros
 *  @param tapsLen      at least 1
 *  @param pDlyLine     L samples, or null
 *  @param dlyLineIndex from 0 to L - 1
 *  @param tapStride    at least 1
 *  @param errDly       at least 0
 *  @param mu           the step, with 15 fractional bits
 *  @return `kelStatusNullPtr` (`pState`), `kelStatusBadSize` (a size or the index), `kelStatusNoMemory` or
 *  `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSMRInitAlloc32s_16s  (KelLmsMrContext** pState, const Kel32s*  pTaps, int tapsLen, const Kel16s*  pDlyLine, int dlyLineIndex, int tapStride, int errDly, int mu);
KELS_API KelStatus kelsFIRLMSMRInitAlloc32sc_16sc(KelLmsMrContext** pState, const Kel32sc* pTaps, int tapsLen, const Kel16sc* pDlyLine, int dlyLineIndex, int tapStride, int errDly, int mu);
/** @} */

/** @name Releasing a filter at several rates
 *  @return `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSMRFree32s_16s  (KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMRFree32sc_16sc(KelLmsMrContext* pState);
/** @} */

/** @name Taps, step and delay line of a filter at several rates
 *  `GetTapsPointer` shows the taps that the filter works with, the last first; they stay the context's, and it serves
 *  contexts of either family. `GetDlyVal` gives sample `index` of the filtering window, the oldest being number 0 and
 *  the newest number (tapsLen - 1) tapStride.
 *  @return `kelStatusNullPtr` (the context or an output), `kelStatusContextMismatch`, `kelStatusBadDlyLineIndex`
 *  (`SetDlyLine`, outside 0 to L - 1), `kelStatusBadArg` (`GetDlyVal`, an index below 0, above L or behind the ring) or
 *  `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSMRSetTaps32s_16s         (KelLmsMrContext* pState, const Kel32s* pTaps);
KELS_API KelStatus kelsFIRLMSMRSetTaps32sc_16sc       (KelLmsMrContext* pState, const Kel32sc* pTaps);
KELS_API KelStatus kelsFIRLMSMRGetTaps32s_16s         (const KelLmsMrContext* pState, Kel32s* pOutTaps);
KELS_API KelStatus kelsFIRLMSMRGetTaps32sc_16sc       (const KelLmsMrContext* pState, Kel32sc* pOutTaps);
KELS_API KelStatus kelsFIRLMSMRGetTapsPointer32s_16s  (KelLmsMrContext* pState, Kel32s** ppTaps);
KELS_API KelStatus kelsFIRLMSMRGetTapsPointer32sc_16sc(KelLmsMrContext* pState, Kel32sc** ppTaps);
KELS_API KelStatus kelsFIRLMSMRSetMu32s_16s           (KelLmsMrContext* pState, int mu);
KELS_API KelStatus kelsFIRLMSMRSetMu32sc_16sc         (KelLmsMrContext* pState, int mu);
KELS_API KelStatus kelsFIRLMSMRSetDlyLine32s_16s      (KelLmsMrContext* pState, const Kel16s* pDlyLine, int dlyLineIndex);
KELS_API KelStatus kelsFIRLMSMRSetDlyLine32sc_16sc    (KelLmsMrContext* pState, const Kel16sc* pDlyLine, int dlyLineIndex);
KELS_API KelStatus kelsFIRLMSMRGetDlyLine32s_16s      (const KelLmsMrContext* pState, Kel16s* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIRLMSMRGetDlyLine32sc_16sc    (const KelLmsMrContext* pState, Kel16sc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIRLMSMRGetDlyVal32s_16s       (const KelLmsMrContext* pState, Kel16s* pVal, int index);
KELS_API KelStatus kelsFIRLMSMRGetDlyVal32sc_16sc     (const KelLmsMrContext* pState, Kel16sc* pVal, int index);
/** @} */

/** @name Driving a filter at several rates
 *  `PutVal` takes a sample in; `One` gives the output, the sum over k of (h[k] >> 16) x[n - k tapStride]; `OneVal` does
 *  both. `UpdateTaps` adds to every tap: with e = (mu err + 16384) >> 15 of each part of err, h[k] += e times the
 *  conjugate of x[n - errDly - k tapStride].
 *  @return `kelStatusNullPtr` (the context or the output), `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRLMSMRPutVal32s_16s      (Kel16s val, KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMRPutVal32sc_16sc    (Kel16sc val, KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMROne32s_16s         (Kel32s* pDstVal, const KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMROne32sc_16sc       (Kel32sc* pDstVal, const KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMROneVal32s_16s      (Kel16s val, Kel32s* pDstVal, KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMROneVal32sc_16sc    (Kel16sc val, Kel32sc* pDstVal, KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMRUpdateTaps32s_16s  (Kel32s err, KelLmsMrContext* pState);
KELS_API KelStatus kelsFIRLMSMRUpdateTaps32sc_16sc(Kel32sc err, KelLmsMrContext* pState);
/** @} */

#endif
