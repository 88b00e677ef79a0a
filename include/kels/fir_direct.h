/** @file
 *  FIR filters without a state of the library's.
 *
 *  What the filters of fir.h compute, with taps and delay line that are the caller's and come with every call: nothing
 *  is made and nothing freed, taps may change between calls, and one set of taps may serve many channels. There is no
 *  FFT engine. The types in a name, the accuracy and the rounding are those of fir.h.
 *
 *  **Taps** stand in their natural order, h[0] first. Integer ones are taken as they are, all 32 bits, times
 *  2^tapsFactor; sums wrap in 32 bits.
 *
 *  **Delay line of one rate.** A doubled ring of 2 tapsLen samples and an index from 0 to tapsLen - 1, which is not
 *  tested. A sample is stored at the index and at index + tapsLen, then the index moves on; the last tapsLen samples
 *  stand from the new index on, the oldest first. Both halves are the same at the start: silence, or a history.
 *
 *  **Delay line of a rate change.** The last ceil(tapsLen / upFactor) samples, the most recent first. A call spans whole
 *  periods: it reads `numIters` times `downFactor` samples and writes `numIters` times `upFactor`.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr` (a data pointer), `kelStatusBadSize` (`numIters` below
 *  1), `kelStatusNullPtr` (`pTaps`), `kelStatusBadFirLength` (`tapsLen` below 1), `kelStatusBadMrFactor` (a factor below
 *  1), `kelStatusBadMrPhase` (a phase below 0 or not below its factor), `kelStatusNullPtr` (`pDlyLine`,
 *  `pDlyLineIndex`), `kelStatusNoMemory` (the copy that a rate change in place works from). On an error nothing has been
 *  stored, and the delay line is as it was.
 *
 *  **Aliasing.** With one rate `pDst` may be `pSrc`, exactly. A rate change wants them disjoint.
 */
#ifndef KELS_FIR_DIRECT_H
#define KELS_FIR_DIRECT_H

#include "kels/status.h"

/** @name Filtering one sample
 *  @{ */
KELS_API KelStatus kelsFIROne_Direct_32f         (Kel32f  src, Kel32f*  pDstVal, const Kel32f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne_Direct_32fc        (Kel32fc src, Kel32fc* pDstVal, const Kel32fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne_Direct_64f         (Kel64f  src, Kel64f*  pDstVal, const Kel64f*  pTaps, int tapsLen, Kel64f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne_Direct_64fc        (Kel64fc src, Kel64fc* pDstVal, const Kel64fc* pTaps, int tapsLen, Kel64fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne64f_Direct_32f      (Kel32f  src, Kel32f*  pDstVal, const Kel64f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne64fc_Direct_32fc    (Kel32fc src, Kel32fc* pDstVal, const Kel64fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne32f_Direct_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, const Kel32f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne32fc_Direct_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, const Kel32fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64f_Direct_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, const Kel64f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64fc_Direct_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, const Kel64fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64f_Direct_32s_Sfs  (Kel32s  src, Kel32s*  pDstVal, const Kel64f*  pTaps, int tapsLen, Kel32s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64fc_Direct_32sc_Sfs(Kel32sc src, Kel32sc* pDstVal, const Kel64fc* pTaps, int tapsLen, Kel32sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne32s_Direct_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, const Kel32s*  pTaps, int tapsLen, int tapsFactor, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne32sc_Direct_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, const Kel32sc* pTaps, int tapsLen, int tapsFactor, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
/** @} */

/** @name Filtering one sample in place
 *  @{ */
KELS_API KelStatus kelsFIROne_Direct_32f_I        (Kel32f*  pSrcDst, const Kel32f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne_Direct_32fc_I       (Kel32fc* pSrcDst, const Kel32fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne_Direct_64f_I        (Kel64f*  pSrcDst, const Kel64f*  pTaps, int tapsLen, Kel64f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne_Direct_64fc_I       (Kel64fc* pSrcDst, const Kel64fc* pTaps, int tapsLen, Kel64fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne64f_Direct_32f_I     (Kel32f*  pSrcDst, const Kel64f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne64fc_Direct_32fc_I   (Kel32fc* pSrcDst, const Kel64fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIROne32f_Direct_16s_ISfs  (Kel16s*  pSrcDst, const Kel32f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne32fc_Direct_16sc_ISfs(Kel16sc* pSrcDst, const Kel32fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64f_Direct_16s_ISfs  (Kel16s*  pSrcDst, const Kel64f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64fc_Direct_16sc_ISfs(Kel16sc* pSrcDst, const Kel64fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64f_Direct_32s_ISfs  (Kel32s*  pSrcDst, const Kel64f*  pTaps, int tapsLen, Kel32s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne64fc_Direct_32sc_ISfs(Kel32sc* pSrcDst, const Kel64fc* pTaps, int tapsLen, Kel32sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne32s_Direct_16s_ISfs  (Kel16s*  pSrcDst, const Kel32s*  pTaps, int tapsLen, int tapsFactor, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIROne32sc_Direct_16sc_ISfs(Kel16sc* pSrcDst, const Kel32sc* pTaps, int tapsLen, int tapsFactor, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
/** @} */

/** @name Filtering a block
 *  @{ */
KELS_API KelStatus kelsFIR_Direct_32f         (const Kel32f*  pSrc, Kel32f*  pDst, int numIters, const Kel32f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR_Direct_32fc        (const Kel32fc* pSrc, Kel32fc* pDst, int numIters, const Kel32fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR_Direct_64f         (const Kel64f*  pSrc, Kel64f*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel64f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR_Direct_64fc        (const Kel64fc* pSrc, Kel64fc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel64fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR64f_Direct_32f      (const Kel32f*  pSrc, Kel32f*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR64fc_Direct_32fc    (const Kel32fc* pSrc, Kel32fc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR32f_Direct_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, const Kel32f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR32fc_Direct_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, const Kel32fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64f_Direct_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_Direct_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64f_Direct_32s_Sfs  (const Kel32s*  pSrc, Kel32s*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel32s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_Direct_32sc_Sfs(const Kel32sc* pSrc, Kel32sc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel32sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR32s_Direct_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, const Kel32s*  pTaps, int tapsLen, int tapsFactor, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR32sc_Direct_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, const Kel32sc* pTaps, int tapsLen, int tapsFactor, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
/** @} */

/** @name Filtering a block in place
 *  @{ */
KELS_API KelStatus kelsFIR_Direct_32f_I        (Kel32f*  pSrcDst, int numIters, const Kel32f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR_Direct_32fc_I       (Kel32fc* pSrcDst, int numIters, const Kel32fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR_Direct_64f_I        (Kel64f*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel64f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR_Direct_64fc_I       (Kel64fc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel64fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR64f_Direct_32f_I     (Kel32f*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel32f*  pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR64fc_Direct_32fc_I   (Kel32fc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel32fc* pDlyLine, int* pDlyLineIndex);
KELS_API KelStatus kelsFIR32f_Direct_16s_ISfs  (Kel16s*  pSrcDst, int numIters, const Kel32f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR32fc_Direct_16sc_ISfs(Kel16sc* pSrcDst, int numIters, const Kel32fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64f_Direct_16s_ISfs  (Kel16s*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_Direct_16sc_ISfs(Kel16sc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64f_Direct_32s_ISfs  (Kel32s*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, Kel32s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR64fc_Direct_32sc_ISfs(Kel32sc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, Kel32sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR32s_Direct_16s_ISfs  (Kel16s*  pSrcDst, int numIters, const Kel32s*  pTaps, int tapsLen, int tapsFactor, Kel16s*  pDlyLine, int* pDlyLineIndex, int scaleFactor);
KELS_API KelStatus kelsFIR32sc_Direct_16sc_ISfs(Kel16sc* pSrcDst, int numIters, const Kel32sc* pTaps, int tapsLen, int tapsFactor, Kel16sc* pDlyLine, int* pDlyLineIndex, int scaleFactor);
/** @} */

/** @name Filtering a block and changing its rate
 *  @{ */
KELS_API KelStatus kelsFIRMR_Direct_32f         (const Kel32f*  pSrc, Kel32f*  pDst, int numIters, const Kel32f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRMR_Direct_32fc        (const Kel32fc* pSrc, Kel32fc* pDst, int numIters, const Kel32fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRMR_Direct_64f         (const Kel64f*  pSrc, Kel64f*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel64f*  pDlyLine);
KELS_API KelStatus kelsFIRMR_Direct_64fc        (const Kel64fc* pSrc, Kel64fc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel64fc* pDlyLine);
KELS_API KelStatus kelsFIRMR64f_Direct_32f      (const Kel32f*  pSrc, Kel32f*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRMR64fc_Direct_32fc    (const Kel32fc* pSrc, Kel32fc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRMR32f_Direct_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, const Kel32f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR32fc_Direct_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, const Kel32fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16sc* pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64f_Direct_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64fc_Direct_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16sc* pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64f_Direct_32s_Sfs  (const Kel32s*  pSrc, Kel32s*  pDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64fc_Direct_32sc_Sfs(const Kel32sc* pSrc, Kel32sc* pDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32sc* pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR32s_Direct_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int numIters, const Kel32s*  pTaps, int tapsLen, int tapsFactor, int upFactor, int upPhase, int downFactor, int downPhase, Kel16s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR32sc_Direct_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int numIters, const Kel32sc* pTaps, int tapsLen, int tapsFactor, int upFactor, int upPhase, int downFactor, int downPhase, Kel16sc* pDlyLine, int scaleFactor);
/** @} */

/** @name Changing the rate in place
 *  `pSrcDst` has room for the larger of the two counts.
 *  @{ */
KELS_API KelStatus kelsFIRMR_Direct_32f_I        (Kel32f*  pSrcDst, int numIters, const Kel32f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRMR_Direct_32fc_I       (Kel32fc* pSrcDst, int numIters, const Kel32fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRMR_Direct_64f_I        (Kel64f*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel64f*  pDlyLine);
KELS_API KelStatus kelsFIRMR_Direct_64fc_I       (Kel64fc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel64fc* pDlyLine);
KELS_API KelStatus kelsFIRMR64f_Direct_32f_I     (Kel32f*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32f*  pDlyLine);
KELS_API KelStatus kelsFIRMR64fc_Direct_32fc_I   (Kel32fc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32fc* pDlyLine);
KELS_API KelStatus kelsFIRMR32f_Direct_16s_ISfs  (Kel16s*  pSrcDst, int numIters, const Kel32f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR32fc_Direct_16sc_ISfs(Kel16sc* pSrcDst, int numIters, const Kel32fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16sc* pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64f_Direct_16s_ISfs  (Kel16s*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64fc_Direct_16sc_ISfs(Kel16sc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel16sc* pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64f_Direct_32s_ISfs  (Kel32s*  pSrcDst, int numIters, const Kel64f*  pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR64fc_Direct_32sc_ISfs(Kel32sc* pSrcDst, int numIters, const Kel64fc* pTaps, int tapsLen, int upFactor, int upPhase, int downFactor, int downPhase, Kel32sc* pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR32s_Direct_16s_ISfs  (Kel16s*  pSrcDst, int numIters, const Kel32s*  pTaps, int tapsLen, int tapsFactor, int upFactor, int upPhase, int downFactor, int downPhase, Kel16s*  pDlyLine, int scaleFactor);
KELS_API KelStatus kelsFIRMR32sc_Direct_16sc_ISfs(Kel16sc* pSrcDst, int numIters, const Kel32sc* pTaps, int tapsLen, int tapsFactor, int upFactor, int upPhase, int downFactor, int downPhase, Kel16sc* pDlyLine, int scaleFactor);
/** @} */

#endif
