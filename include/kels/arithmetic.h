/** @file
 *  Element-wise arithmetic.
 */
#ifndef KELS_ARITHMETIC_H
#define KELS_ARITHMETIC_H

#include "kels/status.h"

/** @name Complex product in place
 *  pSrcDst[i] = pSrc[i] pSrcDst[i]. Each part is evaluated without loss and rounded once: at most 1 ulp (32fc) or 2 ulp
 *  (64fc), cancellation included.
 *  @return `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsMul_32fc_I(const Kel32fc* pSrc, Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsMul_64fc_I(const Kel64fc* pSrc, Kel64fc* pSrcDst, int len);
/** @} */

#endif
