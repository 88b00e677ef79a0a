/** @file
 *  Periodic test signals: sinusoids, and triangle waves with an asymmetry.
 *
 *  **Streams.** `*pPhase`, in radians from 0 to 2 pi, is the phase of the first sample, and becomes that of the sample
 *  behind the last one, rounded to its type: calls of any lengths continue one signal. 2 pi is the double 6.283185307179586.
 *  A single so returned may be the one above 2 pi, which the next call rejects.
 *
 *  **Rounding.** Samples are evaluated from their index; no error grows along the vector. Singles are at most 1 ulp of
 *  `magn` away from the formula, doubles at most 2. 16-bit samples are cut toward zero. No result depends on the modes of
 *  the caller.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr` (`pPhase`), then of the magnitude, the frequency, the
 *  asymmetry and the phase, then `kelStatusNullPtr` (`pDst`), `kelStatusBadSize` (`len` below 1), `kelStatusOk`. Nothing
 *  has been stored when an error is returned, and the phase is as it was.
 */
#ifndef KELS_TONES_H
#define KELS_TONES_H

#include "kels/status.h"

/** @name Tone
 *  pDst[n] = magn cos(2 pi rFreq n + phase); complex: magn exp(i (2 pi rFreq n + phase)). `rFreq`, in cycles a sample, is
 *  from 0 on and below 0.5, complex below 1. Errors: `kelStatusToneMagn` (`magn` not above 0; a NaN gives NaNs),
 *  `kelStatusToneFreq`, `kelStatusTonePhase`.
 *
 *  `hint` 1 asks for fixed point: blocks of 1024 samples, whose first two are those of the formula, and the others come
 *  from rotations in 16 bits.
 *  @{ */
KELS_API KelStatus kelsTone_Direct_16s (Kel16s*  pDst, int len, Kel16s magn, Kel32f rFreq, Kel32f* pPhase, int hint);
KELS_API KelStatus kelsTone_Direct_16sc(Kel16sc* pDst, int len, Kel16s magn, Kel32f rFreq, Kel32f* pPhase, int hint);
KELS_API KelStatus kelsTone_Direct_32f (Kel32f*  pDst, int len, Kel32f magn, Kel32f rFreq, Kel32f* pPhase);
KELS_API KelStatus kelsTone_Direct_32fc(Kel32fc* pDst, int len, Kel32f magn, Kel32f rFreq, Kel32f* pPhase);
KELS_API KelStatus kelsTone_Direct_64f (Kel64f*  pDst, int len, Kel64f magn, Kel64f rFreq, Kel64f* pPhase);
KELS_API KelStatus kelsTone_Direct_64fc(Kel64fc* pDst, int len, Kel64f magn, Kel64f rFreq, Kel64f* pPhase);
/** @} */

/** @name Triangle
 *  With h = pi + asym, the wave falls from `magn` at phase 0 to -`magn` at phase h, and rises again until 2 pi. The
 *  imaginary part is the same wave, (h + 2 pi) / 2 ahead. `rFreq` is from 0 on and below 0.5, complex too; `asym` from -pi
 *  on, where the wave is a sawtooth, and below pi. Errors: `kelStatusTriangleMagn` (`magn` not above 0),
 *  `kelStatusTriangleFreq`, `kelStatusTriangleAsym`, `kelStatusTrianglePhase`.
 *  @{ */
KELS_API KelStatus kelsTriangle_Direct_16s (Kel16s*  pDst, int len, Kel16s magn, Kel32f rFreq, Kel32f asym, Kel32f* pPhase);
KELS_API KelStatus kelsTriangle_Direct_16sc(Kel16sc* pDst, int len, Kel16s magn, Kel32f rFreq, Kel32f asym, Kel32f* pPhase);
KELS_API KelStatus kelsTriangle_Direct_32f (Kel32f*  pDst, int len, Kel32f magn, Kel32f rFreq, Kel32f asym, Kel32f* pPhase);
KELS_API KelStatus kelsTriangle_Direct_32fc(Kel32fc* pDst, int len, Kel32f magn, Kel32f rFreq, Kel32f asym, Kel32f* pPhase);
KELS_API KelStatus kelsTriangle_Direct_64f (Kel64f*  pDst, int len, Kel64f magn, Kel64f rFreq, Kel64f asym, Kel64f* pPhase);
KELS_API KelStatus kelsTriangle_Direct_64fc(Kel64fc* pDst, int len, Kel64f magn, Kel64f rFreq, Kel64f asym, Kel64f* pPhase);
/** @} */

#endif
