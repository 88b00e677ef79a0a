/** @file
 *  Arithmetic on packed real spectra (the layouts of kels/fft.h).
 */
#ifndef KELS_SPECTRUM_H
#define KELS_SPECTRUM_H

#include "kels/status.h"

/** @name Product of two spectra in Perm layout
 *  pDst = pSrc1 pSrc2, bin by bin: the spectrum of the circular convolution. `len` is the length N of the real sequence,
 *  even or odd; the real bins are products of reals, the others complex products. In place the result replaces
 *  `pSrcDst`.
 *
 *  Each part is evaluated without loss and rounded once: at most 1 ulp (32f) or 2 ulp (64f), cancellation included.
 *  @return `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsMulPerm_32f  (const Kel32f* pSrc1, const Kel32f* pSrc2, Kel32f* pDst, int len);
KELS_API KelStatus kelsMulPerm_64f  (const Kel64f* pSrc1, const Kel64f* pSrc2, Kel64f* pDst, int len);
KELS_API KelStatus kelsMulPerm_32f_I(const Kel32f* pSrc, Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsMulPerm_64f_I(const Kel64f* pSrc, Kel64f* pSrcDst, int len);
/** @} */

#endif
