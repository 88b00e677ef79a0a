/** @file
 *  Companding: the 8-bit A-law and mu-law codes of ITU-T G.711, linear samples, and each other.
 *
 *  A code is one byte as it is transmitted, with every other bit inverted (A-law) or all of them (mu-law). Linear
 *  samples are 16-bit integers at full scale, or singles whose full scale is 1: the integers over 32768.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1), `kelStatusOk`.
 *  Every code and every sample is good. Nothing has been stored when an error is returned.
 *
 *  **Aliasing.** From one law to the other `pDst` may be `pSrc`, exactly; other arrays are disjoint. Data may stand at
 *  any address.
 */
#ifndef KELS_COMPANDING_H
#define KELS_COMPANDING_H

#include "kels/status.h"

/** @name From law to law
 *  By the tables of G.711, which are no conversion by way of linear samples.
 *  @{ */
KELS_API KelStatus kelsALawToMuLaw_8u(const Kel8u* pSrc, Kel8u* pDst, int len);
KELS_API KelStatus kelsMuLawToALaw_8u(const Kel8u* pSrc, Kel8u* pDst, int len);
/** @} */

/** @name Decoding
 *  With the sign s, the exponent e and the four bits q of a code whose inversions are undone, A-law gives
 *  
 *      +-(16 q + 8)   for e = 0,   +-(16 q + 264) 2^(e - 1)   above, from -32256 to 32256 without 0,
 *  
 *  and mu-law +-((8 q + 132) 2^e - 132), from -32124 to 32124 with two codes for 0.
 *  @{ */
KELS_API KelStatus kelsALawToLin_8u16s (const Kel8u*  pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsMuLawToLin_8u16s(const Kel8u*  pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsALawToLin_8u32f (const Kel8u*  pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsMuLawToLin_8u32f(const Kel8u*  pSrc, Kel32f* pDst, int len);
/** @} */

/** @name Encoding
 *  The inverse, mantissas cut. A-law takes a negative sample 8 less in magnitude; -1 to -7 have the code 0x5A. Singles
 *  are multiplied by 32768, limited to the 16-bit range, and rounded to nearest, ties to even, in any mode of the
 *  caller; a NaN counts as the highest sample.
 *  @{ */
KELS_API KelStatus kelsLinToALaw_16s8u (const Kel16s* pSrc, Kel8u*  pDst, int len);
KELS_API KelStatus kelsLinToMuLaw_16s8u(const Kel16s* pSrc, Kel8u*  pDst, int len);
KELS_API KelStatus kelsLinToALaw_32f8u (const Kel32f* pSrc, Kel8u*  pDst, int len);
KELS_API KelStatus kelsLinToMuLaw_32f8u(const Kel32f* pSrc, Kel8u*  pDst, int len);
/** @} */

#endif
