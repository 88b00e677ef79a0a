/** @file
 *  FIR filters with a state.
 *
 *  y[n] = sum over k from 0 to tapsLen - 1 of h[k] x[n - k], where x continues over calls: samples before the first one
 *  of a call come from the context's delay line. A stream may be cut into calls of any length, and block calls, in-place
 *  calls and single samples may be mixed.
 *
 *  **Engines.** A context whose tap count is at least 32 (real) or 16 (complex) holds an FFT plan, of the smallest power
 *  of two above the tap count, doubled below 256. A block longer than the plan runs overlap-save over it, a shorter one
 *  runs the direct form; real in-place calls run overlap-save at any length.
 *
 *  **Accuracy.** Direct results of single-precision data are those of double sums rounded once (1 ulp, and the same bits
 *  as extended precision on 99.9 % of data); double-precision results lie within 2^-51 sum|terms|. Overlap-save has the
 *  rounding of the transforms: about 1e-7 or 1e-16 of the block's level.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr` (no context), `kelStatusContextMismatch` (a context of
 *  another family), `kelStatusNullPtr` (a data pointer), `kelStatusBadSize` (a length below 1), `kelStatusNoMemory`
 *  (scratch of the overlap-save engine and of the in-place forms). On an error nothing has been stored.
 *
 *  **Ownership and threads.** A context belongs to whoever made it, and to one thread at a time. The caller's arrays are
 *  read or written during a call and never kept.
 */
#ifndef KELS_FIR_H
#define KELS_FIR_H

#include "kels/status.h"

typedef struct KelFirContext KelFirContext; /**< A FIR filter: taps, delay line and tables. */

/** @name Making a filter
 *  @param pState   receives the context, on success only
 *  @param pTaps    `tapsLen` taps, h[0] first
 *  @param tapsLen  number of taps, at least 1
 *  @param pDlyLine null for silence, or the `tapsLen` samples before the stream, the most recent first
 *  @return `kelStatusNullPtr`, `kelStatusBadFirLength` (`tapsLen` below 1), `kelStatusNoMemory` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRInitAlloc_32f (KelFirContext** pState, const Kel32f* pTaps, int tapsLen, const Kel32f* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc_32fc(KelFirContext** pState, const Kel32fc* pTaps, int tapsLen, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc_64f (KelFirContext** pState, const Kel64f* pTaps, int tapsLen, const Kel64f* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc_64fc(KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, const Kel64fc* pDlyLine);
/** @} */

/** @name Releasing a filter
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` (nothing is freed) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRFree_32f (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree_32fc(KelFirContext* pState);
KELS_API KelStatus kelsFIRFree_64f (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree_64fc(KelFirContext* pState);
/** @} */

/** @name Reading the taps
 *  Stores the `tapsLen` taps as they were given.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRGetTaps_32f (const KelFirContext* pState, Kel32f* pTaps);
KELS_API KelStatus kelsFIRGetTaps_32fc(const KelFirContext* pState, Kel32fc* pTaps);
KELS_API KelStatus kelsFIRGetTaps_64f (const KelFirContext* pState, Kel64f* pTaps);
KELS_API KelStatus kelsFIRGetTaps_64fc(const KelFirContext* pState, Kel64fc* pTaps);
/** @} */

/** @name Reading the delay line
 *  Stores the last `tapsLen` samples of the stream, the most recent first.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRGetDlyLine_32f (const KelFirContext* pState, Kel32f* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine_32fc(const KelFirContext* pState, Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine_64f (const KelFirContext* pState, Kel64f* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine_64fc(const KelFirContext* pState, Kel64fc* pDlyLine);
/** @} */

/** @name Setting the delay line
 *  A new start with the given history: `tapsLen` samples, the most recent first, or null for silence.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRSetDlyLine_32f (KelFirContext* pState, const Kel32f* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine_32fc(KelFirContext* pState, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine_64f (KelFirContext* pState, const Kel64f* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine_64fc(KelFirContext* pState, const Kel64fc* pDlyLine);
/** @} */

/** @name Filtering a block
 *  Filters `numIters` samples of `pSrc` into `pDst`.
 *  @{ */
KELS_API KelStatus kelsFIR_32f (const Kel32f* pSrc, Kel32f* pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_32fc(const Kel32fc* pSrc, Kel32fc* pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_64f (const Kel64f* pSrc, Kel64f* pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_64fc(const Kel64fc* pSrc, Kel64fc* pDst, int numIters, KelFirContext* pState);
/** @} */

/** @name Filtering a block in place
 *  @{ */
KELS_API KelStatus kelsFIR_32f_I (Kel32f* pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_32fc_I(Kel32fc* pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_64f_I (Kel64f* pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_64fc_I(Kel64fc* pSrcDst, int numIters, KelFirContext* pState);
/** @} */

/** @name Filtering one sample
 *  @{ */
KELS_API KelStatus kelsFIROne_32f (Kel32f src, Kel32f* pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne_32fc(Kel32fc src, Kel32fc* pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne_64f (Kel64f src, Kel64f* pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne_64fc(Kel64fc src, Kel64fc* pDstVal, KelFirContext* pState);
/** @} */

#endif
