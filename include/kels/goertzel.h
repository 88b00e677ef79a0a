/** @file
 *  The spectrum of a complex sequence at one or two frequencies, without a plan.
 */
#ifndef KELS_GOERTZEL_H
#define KELS_GOERTZEL_H

#include "kels/status.h"

/** @name Goertzel evaluation
 *  *pVal = exp(i w len) sum over n of pSrc[n] exp(-i w n), with w = 2 pi freq: at a frequency k / len it is bin k of the
 *  forward transform. `freq` counts cycles a sample and lies in [0, 1). The `Two` forms evaluate pFreq[0] into pVal[0]
 *  and pFreq[1] into pVal[1], and read every sample once. 2 pi stands for the double nearest to it.
 *
 *  The result is within 1 ulp and len 2^-53 times the sum of the magnitudes of pSrc; in `64fc` len 2^-64 times. The
 *  16-bit result is multiplied by 2^-scaleFactor, rounded to nearest with ties away from zero, and saturated; the one of
 *  a single frequency is rounded to a single before. NaN and infinity in the data give NaN or infinity.
 *
 *  @return `kelStatusNullPtr`, `kelStatusBadSize` (len below 1), `kelStatusBadRelFreq` (a frequency outside [0, 1), or
 *  NaN; both are tested before anything is stored) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsGoertz_32fc       (const Kel32fc* pSrc, int len, Kel32fc* pVal, Kel32f freq);
KELS_API KelStatus kelsGoertz_64fc       (const Kel64fc* pSrc, int len, Kel64fc* pVal, Kel64f freq);
KELS_API KelStatus kelsGoertz_16sc_Sfs   (const Kel16sc* pSrc, int len, Kel16sc* pVal, Kel32f freq, int scaleFactor);
KELS_API KelStatus kelsGoertzTwo_32fc    (const Kel32fc* pSrc, int len, Kel32fc* pVal, const Kel32f* pFreq);
KELS_API KelStatus kelsGoertzTwo_64fc    (const Kel64fc* pSrc, int len, Kel64fc* pVal, const Kel64f* pFreq);
KELS_API KelStatus kelsGoertzTwo_16sc_Sfs(const Kel16sc* pSrc, int len, Kel16sc* pVal, const Kel32f* pFreq, int scaleFactor);
/** @} */

#endif
