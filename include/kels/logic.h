/** @file
 *  Bitwise logic and shifts, element by element.
 *
 *  **Shapes.** Two vectors, or a vector and a constant `val` (`C`). In place (`_I`), `pSrcDst` is the second vector, or
 *  the only one.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1),
 *  `kelStatusNegShift` (a shift below 0), `kelStatusOk`. Nothing has been stored when an error is returned.
 *
 *  **Aliasing.** Element by element: `pDst` may be a source, exactly. Data may stand at any address.
 */
#ifndef KELS_LOGIC_H
#define KELS_LOGIC_H

#include "kels/status.h"

/** @name And
 *  pDst[i] = pSrc1[i] & pSrc2[i], or pSrc[i] & val.
 *  @{ */
KELS_API KelStatus kelsAnd_8u    (const Kel8u*  pSrc1, const Kel8u*  pSrc2, Kel8u*  pDst, int len);
KELS_API KelStatus kelsAnd_8u_I  (const Kel8u*  pSrc, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsAnd_16u   (const Kel16u* pSrc1, const Kel16u* pSrc2, Kel16u* pDst, int len);
KELS_API KelStatus kelsAnd_16u_I (const Kel16u* pSrc, Kel16u* pSrcDst, int len);
KELS_API KelStatus kelsAndC_8u   (const Kel8u*  pSrc, Kel8u val, Kel8u*  pDst, int len);
KELS_API KelStatus kelsAndC_8u_I (Kel8u val, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsAndC_16u  (const Kel16u* pSrc, Kel16u val, Kel16u* pDst, int len);
KELS_API KelStatus kelsAndC_16u_I(Kel16u val, Kel16u* pSrcDst, int len);
/** @} */

/** @name Or
 *  pDst[i] = pSrc1[i] | pSrc2[i], or pSrc[i] | val.
 *  @{ */
KELS_API KelStatus kelsOr_8u    (const Kel8u*  pSrc1, const Kel8u*  pSrc2, Kel8u*  pDst, int len);
KELS_API KelStatus kelsOr_8u_I  (const Kel8u*  pSrc, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsOr_16u   (const Kel16u* pSrc1, const Kel16u* pSrc2, Kel16u* pDst, int len);
KELS_API KelStatus kelsOr_16u_I (const Kel16u* pSrc, Kel16u* pSrcDst, int len);
KELS_API KelStatus kelsOrC_8u   (const Kel8u*  pSrc, Kel8u val, Kel8u*  pDst, int len);
KELS_API KelStatus kelsOrC_8u_I (Kel8u val, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsOrC_16u  (const Kel16u* pSrc, Kel16u val, Kel16u* pDst, int len);
KELS_API KelStatus kelsOrC_16u_I(Kel16u val, Kel16u* pSrcDst, int len);
/** @} */

/** @name Exclusive or
 *  pDst[i] = pSrc1[i] ^ pSrc2[i], or pSrc[i] ^ val.
 *  @{ */
KELS_API KelStatus kelsXor_8u    (const Kel8u*  pSrc1, const Kel8u*  pSrc2, Kel8u*  pDst, int len);
KELS_API KelStatus kelsXor_8u_I  (const Kel8u*  pSrc, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsXor_16u   (const Kel16u* pSrc1, const Kel16u* pSrc2, Kel16u* pDst, int len);
KELS_API KelStatus kelsXor_16u_I (const Kel16u* pSrc, Kel16u* pSrcDst, int len);
KELS_API KelStatus kelsXorC_8u   (const Kel8u*  pSrc, Kel8u val, Kel8u*  pDst, int len);
KELS_API KelStatus kelsXorC_8u_I (Kel8u val, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsXorC_16u  (const Kel16u* pSrc, Kel16u val, Kel16u* pDst, int len);
KELS_API KelStatus kelsXorC_16u_I(Kel16u val, Kel16u* pSrcDst, int len);
/** @} */

/** @name Complement
 *  pDst[i] = ~pSrc[i].
 *  @{ */
KELS_API KelStatus kelsNot_8u   (const Kel8u*  pSrc, Kel8u*  pDst, int len);
KELS_API KelStatus kelsNot_8u_I (Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsNot_16u  (const Kel16u* pSrc, Kel16u* pDst, int len);
KELS_API KelStatus kelsNot_16u_I(Kel16u* pSrcDst, int len);
/** @} */

/** @name Left shift
 *  Bits that leave the element are lost, zeros come in, nothing saturates. A shift by the width of the element or more
 *  leaves zeros.
 *  @{ */
KELS_API KelStatus kelsLShiftC_8u   (const Kel8u*  pSrc, int val, Kel8u*  pDst, int len);
KELS_API KelStatus kelsLShiftC_8u_I (int val, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsLShiftC_16u  (const Kel16u* pSrc, int val, Kel16u* pDst, int len);
KELS_API KelStatus kelsLShiftC_16u_I(int val, Kel16u* pSrcDst, int len);
KELS_API KelStatus kelsLShiftC_16s  (const Kel16s* pSrc, int val, Kel16s* pDst, int len);
KELS_API KelStatus kelsLShiftC_16s_I(int val, Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsLShiftC_32s  (const Kel32s* pSrc, int val, Kel32s* pDst, int len);
KELS_API KelStatus kelsLShiftC_32s_I(int val, Kel32s* pSrcDst, int len);
/** @} */

/** @name Right shift
 *  Unsigned elements take in zeros, signed ones their sign, so that a result is rounded down: -3 by 1 is -2. A shift by
 *  the width of the element or more leaves 0 of what is not negative, and -1 of what is.
 *  @{ */
KELS_API KelStatus kelsRShiftC_8u   (const Kel8u*  pSrc, int val, Kel8u*  pDst, int len);
KELS_API KelStatus kelsRShiftC_8u_I (int val, Kel8u*  pSrcDst, int len);
KELS_API KelStatus kelsRShiftC_16u  (const Kel16u* pSrc, int val, Kel16u* pDst, int len);
KELS_API KelStatus kelsRShiftC_16u_I(int val, Kel16u* pSrcDst, int len);
KELS_API KelStatus kelsRShiftC_16s  (const Kel16s* pSrc, int val, Kel16s* pDst, int len);
KELS_API KelStatus kelsRShiftC_16s_I(int val, Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsRShiftC_32s  (const Kel32s* pSrc, int val, Kel32s* pDst, int len);
KELS_API KelStatus kelsRShiftC_32s_I(int val, Kel32s* pSrcDst, int len);
/** @} */

#endif
