/** @file
 *  Arithmetic on packed real spectra (the layouts of kels/fft.h).
 */
#ifndef KELS_SPECTRUM_H
#define KELS_SPECTRUM_H

#include "kels/status.h"

/** @name Expansion of a packed spectrum
 *  The N complex bins of a real sequence's spectrum, from the half that a layout holds: pDst[k] for k up to N/2, and
 *  pDst[N - k] = conj(pDst[k]). `len` is N, even or odd. Pack and Perm store real numbers for bin 0 and bin N/2; CCS
 *  stores imaginary parts with them, which are copied. At 16sc the conjugate of -32768 is 32767.
 *
 *  `pSrc` holds N values, in CCS N + 2 (N + 1 for odd N). In place, the array of N complex numbers begins with them.
 *  @return `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsConjPack_16sc  (const Kel16s* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsConjPack_32fc  (const Kel32f* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsConjPack_64fc  (const Kel64f* pSrc, Kel64fc* pDst, int len);
KELS_API KelStatus kelsConjPerm_16sc  (const Kel16s* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsConjPerm_32fc  (const Kel32f* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsConjPerm_64fc  (const Kel64f* pSrc, Kel64fc* pDst, int len);
KELS_API KelStatus kelsConjCcs_16sc   (const Kel16s* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsConjCcs_32fc   (const Kel32f* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsConjCcs_64fc   (const Kel64f* pSrc, Kel64fc* pDst, int len);
KELS_API KelStatus kelsConjPack_16sc_I(Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsConjPack_32fc_I(Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsConjPack_64fc_I(Kel64fc* pSrcDst, int len);
KELS_API KelStatus kelsConjPerm_16sc_I(Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsConjPerm_32fc_I(Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsConjPerm_64fc_I(Kel64fc* pSrcDst, int len);
KELS_API KelStatus kelsConjCcs_16sc_I (Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsConjCcs_32fc_I (Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsConjCcs_64fc_I (Kel64fc* pSrcDst, int len);
/** @} */

/** @name Product of two packed spectra
 *  pDst = pSrc1 pSrc2, bin by bin: the spectrum of the circular convolution. `len` is the length N of the real sequence,
 *  even or odd; the real bins are products of reals, the others complex products. In place the result replaces
 *  `pSrcDst`.
 *
 *  Each floating-point part is evaluated without loss and rounded once: at most 1 ulp (32f) or 2 ulp (64f),
 *  cancellation included. A 16-bit part is the exact one times 2^-scaleFactor, rounded toward minus infinity and
 *  saturated.
 *  @return `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 1) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsMulPack_32f     (const Kel32f* pSrc1, const Kel32f* pSrc2, Kel32f* pDst, int len);
KELS_API KelStatus kelsMulPack_64f     (const Kel64f* pSrc1, const Kel64f* pSrc2, Kel64f* pDst, int len);
KELS_API KelStatus kelsMulPack_16s_Sfs (const Kel16s* pSrc1, const Kel16s* pSrc2, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulPack_32f_I   (const Kel32f* pSrc, Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsMulPack_64f_I   (const Kel64f* pSrc, Kel64f* pSrcDst, int len);
KELS_API KelStatus kelsMulPack_16s_ISfs(const Kel16s* pSrc, Kel16s* pSrcDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulPerm_32f     (const Kel32f* pSrc1, const Kel32f* pSrc2, Kel32f* pDst, int len);
KELS_API KelStatus kelsMulPerm_64f     (const Kel64f* pSrc1, const Kel64f* pSrc2, Kel64f* pDst, int len);
KELS_API KelStatus kelsMulPerm_16s_Sfs (const Kel16s* pSrc1, const Kel16s* pSrc2, Kel16s* pDst, int len, int scaleFactor);
KELS_API KelStatus kelsMulPerm_32f_I   (const Kel32f* pSrc, Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsMulPerm_64f_I   (const Kel64f* pSrc, Kel64f* pSrcDst, int len);
KELS_API KelStatus kelsMulPerm_16s_ISfs(const Kel16s* pSrc, Kel16s* pSrcDst, int len, int scaleFactor);
/** @} */

/** @name Product with a conjugate
 *  pSrcDst = pSrc conj(pSrcDst), both in Pack layout: the spectrum of the circular correlation. Bounds and statuses are
 *  those of the products above.
 *  @{ */
KELS_API KelStatus kelsMulPackConj_32f_I(const Kel32f* pSrc, Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsMulPackConj_64f_I(const Kel64f* pSrc, Kel64f* pSrcDst, int len);
/** @} */

#endif
