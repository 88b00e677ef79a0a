/** @file
 *  Rate changes of streams without filtering, and pre-emphasis.
 *
 *  **Statuses** of the rate changes, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`srcLen` below 1),
 *  `kelStatusFactorRange` (`factor` below 1), `kelStatusPhaseRange` (`*pPhase` below 0 or not below `factor`),
 *  `kelStatusOk`; of the pre-emphasis `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), `kelStatusOk`. Nothing has
 *  been stored when an error is returned, neither a length nor a phase.
 *
 *  **Aliasing.** The arrays of a rate change are disjoint. Data may stand at any address.
 */
#ifndef KELS_RATE_CHANGE_H
#define KELS_RATE_CHANGE_H

#include "kels/status.h"

/** @name Fewer samples
 *  Keeps every `factor`-th sample: pDst[k] = pSrc[*pPhase + k factor], for every k for which there is one, bit for bit.
 *  `*pDstLen` becomes the number of samples that were kept, at most (srcLen + factor - 1) / factor, and `*pPhase` the
 *  number of samples to skip at the head of the next block: a stream gives the same samples however it is cut. A phase
 *  that reaches past the block keeps nothing.
 *  @{ */
KELS_API KelStatus kelsSampleDown_16s (const Kel16s*  pSrc, int srcLen, Kel16s*  pDst, int* pDstLen, int factor, int* pPhase);
KELS_API KelStatus kelsSampleDown_16sc(const Kel16sc* pSrc, int srcLen, Kel16sc* pDst, int* pDstLen, int factor, int* pPhase);
KELS_API KelStatus kelsSampleDown_32f (const Kel32f*  pSrc, int srcLen, Kel32f*  pDst, int* pDstLen, int factor, int* pPhase);
KELS_API KelStatus kelsSampleDown_32fc(const Kel32fc* pSrc, int srcLen, Kel32fc* pDst, int* pDstLen, int factor, int* pPhase);
KELS_API KelStatus kelsSampleDown_64f (const Kel64f*  pSrc, int srcLen, Kel64f*  pDst, int* pDstLen, int factor, int* pPhase);
KELS_API KelStatus kelsSampleDown_64fc(const Kel64fc* pSrc, int srcLen, Kel64fc* pDst, int* pDstLen, int factor, int* pPhase);
/** @} */

/** @name More samples
 *  Puts zeros between the samples: pDst[*pPhase + k factor] = pSrc[k], bit for bit, and 0 everywhere else in the
 *  srcLen factor elements of `pDst`. `*pDstLen` becomes their number, modulo 2^32 where that is more than an int holds.
 *  The phase stays, and holds for the next block.
 *  @{ */
KELS_API KelStatus kelsSampleUp_16s (const Kel16s*  pSrc, int srcLen, Kel16s*  pDst, int* pDstLen, int factor, const int* pPhase);
KELS_API KelStatus kelsSampleUp_16sc(const Kel16sc* pSrc, int srcLen, Kel16sc* pDst, int* pDstLen, int factor, const int* pPhase);
KELS_API KelStatus kelsSampleUp_32f (const Kel32f*  pSrc, int srcLen, Kel32f*  pDst, int* pDstLen, int factor, const int* pPhase);
KELS_API KelStatus kelsSampleUp_32fc(const Kel32fc* pSrc, int srcLen, Kel32fc* pDst, int* pDstLen, int factor, const int* pPhase);
KELS_API KelStatus kelsSampleUp_64f (const Kel64f*  pSrc, int srcLen, Kel64f*  pDst, int* pDstLen, int factor, const int* pPhase);
KELS_API KelStatus kelsSampleUp_64fc(const Kel64fc* pSrc, int srcLen, Kel64fc* pDst, int* pDstLen, int factor, const int* pPhase);
/** @} */

/** @name Pre-emphasis
 *  y[n] = x[n] - val x[n - 1], of the samples as they were before the call, in place. The first sample stays: a block
 *  begins afresh. `32f` rounds the difference once, within 1 ulp. `16s` cuts it toward zero and saturates; a NaN becomes
 *  32767.
 *  @{ */
KELS_API KelStatus kelsPreemphasize_32f(Kel32f* pSrcDst, int len, Kel32f val);
KELS_API KelStatus kelsPreemphasize_16s(Kel16s* pSrcDst, int len, Kel32f val);
/** @} */

#endif
