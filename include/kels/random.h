/** @file
 *  Noise of uniform and of normal distribution.
 *
 *  **Sequence.** All noise comes from one sequence of 32-bit integers a seed, the sum modulo 2^32 of two generators:
 *  one by subtraction with borrow on the modulus 2^32 - 18, and one by c = 69069 c + 1013904243. With the seed x, x1 =
 *  69069 x + 1013904243 and x2 = 69069 x1 + 1013904243 before it, the borrow set and c = 1131199209, every draw is
 *
 *      t = x1 - x2 - borrow;  borrow = t has bit 31;  x2 = x1;  x1 = x;  x = t - 18 borrow;  draw D = x + c.
 *
 *  **Ways in.** `_Direct` functions take the distribution and a seed in every call; of the state they give back x
 *  alone, as the new seed, so that a sequence of calls is another one than a single call. Contexts keep all of it:
 *  calls of any length continue one stream. Any seed is good, and so are `low` above `high` and a negative `stdDev`.
 *
 *  **Rounding.** Samples are evaluated to more than double precision and rounded once in floating point; `8u` and `16s`
 *  ones are cut toward zero. Neither the samples nor a context depend on the modes of the caller. At most 1 ulp, or
 *  2 ulp in normal noise of doubles, whose logarithm is rounded to double on the way.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1),
 *  `kelStatusContextMismatch`, `kelStatusNoMemory`, `kelStatusOk`. Nothing has been stored when an error is returned.
 *
 *  **Ownership.** `InitAlloc` makes a context, which `Free` of the same name ends. One thread uses it at a time.
 */
#ifndef KELS_RANDOM_H
#define KELS_RANDOM_H

#include "kels/status.h"

typedef struct RandUniformState RandUniformState; /**< A stream of uniform noise. */
typedef struct RandGaussState   RandGaussState;   /**< A stream of normal noise. */

/** @name Uniform distribution
 *  (high - low) 2.3283064365387e-10 D + (low + high) / 2: from `low` on, and below `high`, up to rounding. 16-bit
 *  samples of an interval around zero are 0 twice as often as any other value, and never `high`.
 *  @{ */
KELS_API KelStatus kelsRandUniform_Direct_16s(Kel16s* pDst, int len, Kel16s low, Kel16s high, Kel32u* pSeed);
KELS_API KelStatus kelsRandUniform_Direct_32f(Kel32f* pDst, int len, Kel32f low, Kel32f high, Kel32u* pSeed);
KELS_API KelStatus kelsRandUniform_Direct_64f(Kel64f* pDst, int len, Kel64f low, Kel64f high, Kel32u* pSeed);
KELS_API KelStatus kelsRandUniformInitAlloc_8u (RandUniformState** ppState, Kel8u low, Kel8u high, Kel32u seed);
KELS_API KelStatus kelsRandUniform_8u          (Kel8u*  pDst, int len, RandUniformState* pState);
KELS_API KelStatus kelsRandUniformFree_8u      (RandUniformState* pState);
KELS_API KelStatus kelsRandUniformInitAlloc_16s(RandUniformState** ppState, Kel16s low, Kel16s high, Kel32u seed);
KELS_API KelStatus kelsRandUniform_16s         (Kel16s* pDst, int len, RandUniformState* pState);
KELS_API KelStatus kelsRandUniformFree_16s     (RandUniformState* pState);
KELS_API KelStatus kelsRandUniformInitAlloc_32f(RandUniformState** ppState, Kel32f low, Kel32f high, Kel32u seed);
KELS_API KelStatus kelsRandUniform_32f         (Kel32f* pDst, int len, RandUniformState* pState);
KELS_API KelStatus kelsRandUniformFree_32f     (RandUniformState* pState);
/** @} */

/** @name Normal distribution
 *  The polar method: of pairs of draws, a = 4.656612873077e-10 D1 and b = 4.656612873077e-10 D2, those with
 *  s = a^2 + b^2 between 0 and 1 give two samples, mean + stdDev w b and mean + stdDev w a, with w^2 = -2 ln(s) / s.
 *  Integers are limited to their type. `_Direct` functions draw the pair behind the last whole one in any case.
 *  @{ */
KELS_API KelStatus kelsRandGauss_Direct_16s(Kel16s* pDst, int len, Kel16s mean, Kel16s stdDev, Kel32u* pSeed);
KELS_API KelStatus kelsRandGauss_Direct_32f(Kel32f* pDst, int len, Kel32f mean, Kel32f stdDev, Kel32u* pSeed);
KELS_API KelStatus kelsRandGauss_Direct_64f(Kel64f* pDst, int len, Kel64f mean, Kel64f stdDev, Kel32u* pSeed);
KELS_API KelStatus kelsRandGaussInitAlloc_8u (RandGaussState** ppState, Kel8u mean, Kel8u stdDev, Kel32u seed);
KELS_API KelStatus kelsRandGauss_8u          (Kel8u*  pDst, int len, RandGaussState* pState);
KELS_API KelStatus kelsRandGaussFree_8u      (RandGaussState* pState);
KELS_API KelStatus kelsRandGaussInitAlloc_16s(RandGaussState** ppState, Kel16s mean, Kel16s stdDev, Kel32u seed);
KELS_API KelStatus kelsRandGauss_16s         (Kel16s* pDst, int len, RandGaussState* pState);
KELS_API KelStatus kelsRandGaussFree_16s     (RandGaussState* pState);
KELS_API KelStatus kelsRandGaussInitAlloc_32f(RandGaussState** ppState, Kel32f mean, Kel32f stdDev, Kel32u seed);
KELS_API KelStatus kelsRandGauss_32f         (Kel32f* pDst, int len, RandGaussState* pState);
KELS_API KelStatus kelsRandGaussFree_32f     (RandGaussState* pState);
/** @} */

#endif
