/** @file
 *  FIR filters with a state.
 *
 *  y[n] = sum over k from 0 to tapsLen - 1 of h[k] x[n - k], where x continues over calls: samples before the first one
 *  of a call come from the context's delay line. A stream may be cut into calls of any length, and block calls, in-place
 *  calls and single samples may be mixed; as long as all of them are direct (below), its bits do not depend on the cuts.
 *
 *  **Families.** The first type in a name is that of the taps, the second that of the samples: `64f_16s` filters 16-bit
 *  samples with double taps; one type stands for both. A context belongs to its family.
 *
 *  **Rate change.** A multi-rate filter puts sample n at tick n upFactor + upPhase of a stream `upFactor` times as fast,
 *  zeros between, and takes output m at tick m downFactor + downPhase of the filtered fast stream. Its block calls read
 *  `numIters` times `downFactor` samples and write `numIters` times `upFactor`: from 48 to 32 kHz, up by 2 and down by
 *  3, a block of 480 samples is numIters = 160, and gives 320. Its delay line has ceil(tapsLen / upFactor) samples.
 *
 *  **Engines.** Contexts of one rate hold an FFT plan from 32 taps on (`_32f`, `64f_...`, `32fc_16sc`), 16 (`_32fc`,
 *  `64fc_...`) or 128 (`32f_16s`), of the smallest power of two above the tap count, doubled below 256. A block no longer
 *  than the plan has direct results, in place too; a longer one may run overlap-save. How a call reaches its results is
 *  chosen by what it costs: direct sums, or transforms in double precision with the bits of direct sums, those of whole
 *  frames of a call or, in a stream of short calls, of frames behind the newest samples. Multi-rate filters and those of
 *  integer taps are always direct.
 *
 *  **Accuracy.** Sums are formed in double precision and rounded once: direct results of single-precision data are
 *  within 1 ulp, and have the same bits as extended precision on 99.9 % of data; double-precision results lie within
 *  2^-51 sum|terms|, or 2^-50 where the terms are all equal. Overlap-save has the rounding of the transforms: about
 *  1e-7 or 1e-16 of the block's level; in single precision for single taps, else in double.
 *
 *  **Integer samples.** The sum is multiplied by 2^-scaleFactor (the factor counts modulo 128, keeping its sign),
 *  rounded to nearest with ties away from zero, and saturated; a NaN becomes the largest value. Blocks longer than the
 *  plan of `32f_16s`, `32fc_16sc`, `64f_32s` and `64fc_32sc`, and all in-place blocks of `64f_32s` with a plan, tie to
 *  even instead, and take every factor as it is.
 *
 *  **Integer taps** (`32s_16s`, `32sc_16sc`) stand for themselves times 2^tapsFactor. They are kept with 16 bits: shifted
 *  down, toward minus infinity, until the largest magnitude is at most 32766, and the factor raised accordingly. Sums
 *  are 32 bits wide and wrap; they are shifted by tapsFactor - scaleFactor, at most 31 places, to the left within their
 *  32 bits, to the right with ties to even, and then saturated. Where the magnitudes of the kept taps add up to less
 *  than 65536, no sum can wrap.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr` (no context), `kelStatusContextMismatch` (a context of
 *  another family), `kelStatusNullPtr` (a data pointer), `kelStatusBadSize` (a length below 1). On an error nothing has
 *  been stored. Memory is taken when a filter is made, and then never again: `kelStatusNoMemory` is a status of creation,
 *  and a thread that must not wait may filter.
 *
 *  **Aliasing.** `pSrc` and `pDst` are disjoint; the in-place forms work on one array.
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
KELS_API KelStatus kelsFIRInitAlloc_32f     (KelFirContext** pState, const Kel32f*  pTaps, int tapsLen, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc_32fc    (KelFirContext** pState, const Kel32fc* pTaps, int tapsLen, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc32f_16s  (KelFirContext** pState, const Kel32f*  pTaps, int tapsLen, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc32fc_16sc(KelFirContext** pState, const Kel32fc* pTaps, int tapsLen, const Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc_64f     (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc_64fc    (KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc64f_32f  (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc64fc_32fc(KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc64f_32s  (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc64fc_32sc(KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, const Kel32sc* pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc64f_16s  (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc64fc_16sc(KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, const Kel16sc* pDlyLine);
/** @} */

/** @name Making a filter that changes the rate
 *  `_32f` and `32f_16s` filters of factors 1 and 1 are filters of one rate.
 *  `pDlyLine` is null for silence, or the ceil(tapsLen / upFactor) samples before the stream, the most recent first.
 *  @return `kelStatusNullPtr`, `kelStatusBadFirLength`, `kelStatusBadMrFactor` (a factor below 1), `kelStatusBadMrPhase`
 *          (a phase below 0 or not below its factor), `kelStatusNoMemory` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRMRInitAlloc_32f     (KelFirContext** pState, const Kel32f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc_32fc    (KelFirContext** pState, const Kel32fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc32f_16s  (KelFirContext** pState, const Kel32f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc32fc_16sc(KelFirContext** pState, const Kel32fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc_64f     (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc_64fc    (KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc64f_32f  (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc64fc_32fc(KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc64f_32s  (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc64fc_32sc(KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel32sc* pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc64f_16s  (KelFirContext** pState, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc64fc_16sc(KelFirContext** pState, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16sc* pDlyLine);
/** @} */

/** @name Making a filter of integer taps
 *  @return as above
 *  @{ */
KELS_API KelStatus kelsFIRInitAlloc32s_16s    (KelFirContext** pState, const Kel32s*  pTaps, int tapsLen, int tapsFactor, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc32sc_16sc  (KelFirContext** pState, const Kel32sc* pTaps, int tapsLen, int tapsFactor, const Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc32s_16s  (KelFirContext** pState, const Kel32s*  pTaps, int tapsLen, int tapsFactor, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc32sc_16sc(KelFirContext** pState, const Kel32sc* pTaps, int tapsLen, int tapsFactor, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16sc* pDlyLine);
/** @} */

/** @name Making a filter of integer taps from real ones
 *  The factor is found: the largest tap becomes an integer of 15 bits, ties away from zero.
 *  @return as above; the taps are converted before factors and phases are checked
 *  @{ */
KELS_API KelStatus kelsFIRInitAlloc32s_16s32f     (KelFirContext** pState, const Kel32f*  pTaps, int tapsLen, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRInitAlloc32sc_16sc32fc  (KelFirContext** pState, const Kel32fc* pTaps, int tapsLen, const Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc32s_16s32f   (KelFirContext** pState, const Kel32f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRMRInitAlloc32sc_16sc32fc(KelFirContext** pState, const Kel32fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, const Kel16sc* pDlyLine);
/** @} */

/** @name Releasing a filter
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` (nothing is freed) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRFree_32f     (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree_32fc    (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree32f_16s  (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree32fc_16sc(KelFirContext* pState);
KELS_API KelStatus kelsFIRFree32s_16s  (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree32sc_16sc(KelFirContext* pState);
KELS_API KelStatus kelsFIRFree_64f     (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree_64fc    (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree64f_32f  (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree64fc_32fc(KelFirContext* pState);
KELS_API KelStatus kelsFIRFree64f_32s  (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree64fc_32sc(KelFirContext* pState);
KELS_API KelStatus kelsFIRFree64f_16s  (KelFirContext* pState);
KELS_API KelStatus kelsFIRFree64fc_16sc(KelFirContext* pState);
/** @} */

/** @name Reading the taps
 *  Stores the `tapsLen` taps as they were given.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRGetTaps_32f     (const KelFirContext* pState, Kel32f*  pTaps);
KELS_API KelStatus kelsFIRGetTaps_32fc    (const KelFirContext* pState, Kel32fc* pTaps);
KELS_API KelStatus kelsFIRGetTaps32f_16s  (const KelFirContext* pState, Kel32f*  pTaps);
KELS_API KelStatus kelsFIRGetTaps32fc_16sc(const KelFirContext* pState, Kel32fc* pTaps);
KELS_API KelStatus kelsFIRGetTaps_64f     (const KelFirContext* pState, Kel64f*  pTaps);
KELS_API KelStatus kelsFIRGetTaps_64fc    (const KelFirContext* pState, Kel64fc* pTaps);
KELS_API KelStatus kelsFIRGetTaps64f_32f  (const KelFirContext* pState, Kel64f*  pTaps);
KELS_API KelStatus kelsFIRGetTaps64fc_32fc(const KelFirContext* pState, Kel64fc* pTaps);
KELS_API KelStatus kelsFIRGetTaps64f_32s  (const KelFirContext* pState, Kel64f*  pTaps);
KELS_API KelStatus kelsFIRGetTaps64fc_32sc(const KelFirContext* pState, Kel64fc* pTaps);
KELS_API KelStatus kelsFIRGetTaps64f_16s  (const KelFirContext* pState, Kel64f*  pTaps);
KELS_API KelStatus kelsFIRGetTaps64fc_16sc(const KelFirContext* pState, Kel64fc* pTaps);
/** @} */

/** @name Reading integer taps
 *  Stores the taps as they are kept and their factor, or (`32f`, `32fc`) the taps times 2^tapsFactor, the factor modulo
 *  128.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRGetTaps32s_16s      (const KelFirContext* pState, Kel32s*  pTaps, int* pTapsFactor);
KELS_API KelStatus kelsFIRGetTaps32sc_16sc    (const KelFirContext* pState, Kel32sc* pTaps, int* pTapsFactor);
KELS_API KelStatus kelsFIRGetTaps32s_16s32f   (const KelFirContext* pState, Kel32f*  pTaps);
KELS_API KelStatus kelsFIRGetTaps32sc_16sc32fc(const KelFirContext* pState, Kel32fc* pTaps);
/** @} */

/** @name Reading the delay line
 *  Stores the last `tapsLen` samples of the stream, or the ceil(tapsLen / upFactor) that a multi-rate filter keeps, the
 *  most recent first.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRGetDlyLine_32f     (const KelFirContext* pState, Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine_32fc    (const KelFirContext* pState, Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine32f_16s  (const KelFirContext* pState, Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine32fc_16sc(const KelFirContext* pState, Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine32s_16s  (const KelFirContext* pState, Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine32sc_16sc(const KelFirContext* pState, Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine_64f     (const KelFirContext* pState, Kel64f*  pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine_64fc    (const KelFirContext* pState, Kel64fc* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine64f_32f  (const KelFirContext* pState, Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine64fc_32fc(const KelFirContext* pState, Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine64f_32s  (const KelFirContext* pState, Kel32s*  pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine64fc_32sc(const KelFirContext* pState, Kel32sc* pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine64f_16s  (const KelFirContext* pState, Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRGetDlyLine64fc_16sc(const KelFirContext* pState, Kel16sc* pDlyLine);
/** @} */

/** @name Setting the delay line
 *  A new start with the given history: as many samples as are read above, the most recent first, or null for silence.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsFIRSetDlyLine_32f     (KelFirContext* pState, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine_32fc    (KelFirContext* pState, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine32f_16s  (KelFirContext* pState, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine32fc_16sc(KelFirContext* pState, const Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine32s_16s  (KelFirContext* pState, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine32sc_16sc(KelFirContext* pState, const Kel16sc* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine_64f     (KelFirContext* pState, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine_64fc    (KelFirContext* pState, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine64f_32f  (KelFirContext* pState, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine64fc_32fc(KelFirContext* pState, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine64f_32s  (KelFirContext* pState, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine64fc_32sc(KelFirContext* pState, const Kel32sc* pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine64f_16s  (KelFirContext* pState, const Kel16s*  pDlyLine);
KELS_API KelStatus kelsFIRSetDlyLine64fc_16sc(KelFirContext* pState, const Kel16sc* pDlyLine);
/** @} */

/** @name Filtering a block
 *  Filters `numIters` samples of `pSrc` into `pDst`; a multi-rate filter `numIters` times
 *  `downFactor` samples into `numIters` times `upFactor`.
 *  @{ */
KELS_API KelStatus kelsFIR_32f         (const Kel32f*  pSrc, Kel32f*  pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_32fc        (const Kel32fc* pSrc, Kel32fc* pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR32f_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR32fc_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR32s_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR32sc_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR_64f         (const Kel64f*  pSrc, Kel64f*  pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_64fc        (const Kel64fc* pSrc, Kel64fc* pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR64f_32f      (const Kel32f*  pSrc, Kel32f*  pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR64fc_32fc    (const Kel32fc* pSrc, Kel32fc* pDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR64f_32s_Sfs  (const Kel32s*  pSrc, Kel32s*  pDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_32sc_Sfs(const Kel32sc* pSrc, Kel32sc* pDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR64f_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, KelFirContext* pState, int scaleFactor);
/** @} */

/** @name Filtering a block in place
 *  A multi-rate filter needs room for the larger of its two counts.
 *  @{ */
KELS_API KelStatus kelsFIR_32f_I        (Kel32f*  pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_32fc_I       (Kel32fc* pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR32f_16s_ISfs  (Kel16s*  pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR32fc_16sc_ISfs(Kel16sc* pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR32s_16s_ISfs  (Kel16s*  pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR32sc_16sc_ISfs(Kel16sc* pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR_64f_I        (Kel64f*  pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR_64fc_I       (Kel64fc* pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR64f_32f_I     (Kel32f*  pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR64fc_32fc_I   (Kel32fc* pSrcDst, int numIters, KelFirContext* pState);
KELS_API KelStatus kelsFIR64f_32s_ISfs  (Kel32s*  pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_32sc_ISfs(Kel32sc* pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR64f_16s_ISfs  (Kel16s*  pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_16sc_ISfs(Kel16sc* pSrcDst, int numIters, KelFirContext* pState, int scaleFactor);
/** @} */

/** @name Filtering one sample
 *  Multi-rate contexts give `kelStatusContextMismatch`.
 *  @{ */
KELS_API KelStatus kelsFIROne_32f         (Kel32f  src, Kel32f*  pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne_32fc        (Kel32fc src, Kel32fc* pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne32f_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIROne32fc_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIROne32s_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIROne32sc_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIROne_64f         (Kel64f  src, Kel64f*  pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne_64fc        (Kel64fc src, Kel64fc* pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne64f_32f      (Kel32f  src, Kel32f*  pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne64fc_32fc    (Kel32fc src, Kel32fc* pDstVal, KelFirContext* pState);
KELS_API KelStatus kelsFIROne64f_32s_Sfs  (Kel32s  src, Kel32s*  pDstVal, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIROne64fc_32sc_Sfs(Kel32sc src, Kel32sc* pDstVal, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIROne64f_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, KelFirContext* pState, int scaleFactor);
KELS_API KelStatus kelsFIROne64fc_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, KelFirContext* pState, int scaleFactor);
/** @} */

#endif
