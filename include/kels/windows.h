/** @file
 *  Windows, applied to a vector: pDst[n] = w(n) pSrc[n]. A vector of ones gives the window itself.
 *
 *  With m = len - 1, w(n) = w(m - n): one weight serves a sample from either end, and both parts of a complex one. The
 *  middle sample of an odd length is copied, to the bit.
 *
 *  **Cosines.** C(n) of Hann, Hamming and Blackman is that of a rotation in extended precision, by the cosine c of
 *  2 pi / m and the sine (1 - c^2)^(1/2). Of these windows all but Hamming's are zeros at both ends; a NaN or an infinity
 *  there gives a NaN, unless the length is 3, when the ends are stored as zeros.
 *
 *  **Rounding.** Products are rounded once in floating point, at most 1 ulp away, doubles (Kaiser), whose exponentials are rounded on the way, at most 3. Integers
 *  are rounded to nearest, halves away from zero, and limited to 16 bits. No result depends on the modes of the caller.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr`, `kelStatusBadSize` (`len` below 3; Kaiser: below 1),
 *  `kelStatusKaiserTooHuge`, `kelStatusOk`. `kelsWinBlackmanOpt` tests its length, which is 4 at least, before the
 *  pointers. Nothing has been stored when an error is returned.
 *
 *  **Aliasing.** `pDst` may be `pSrc`, exactly. Data may stand at any address.
 */
#ifndef KELS_WINDOWS_H
#define KELS_WINDOWS_H

#include "kels/status.h"

/** @name Bartlett
 *  w(n) = 2 n / m up to the middle: a triangle. The ends are stored as zeros, whatever stands there.
 *  @{ */
KELS_API KelStatus kelsWinBartlett_16s   (const Kel16s* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsWinBartlett_16s_I (Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsWinBartlett_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsWinBartlett_16sc_I(Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsWinBartlett_32f   (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsWinBartlett_32f_I (Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsWinBartlett_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsWinBartlett_32fc_I(Kel32fc* pSrcDst, int len);
/** @} */

/** @name Hann
 *  w(n) = (1 - C(n)) / 2.
 *  @{ */
KELS_API KelStatus kelsWinHann_16s   (const Kel16s* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsWinHann_16s_I (Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsWinHann_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsWinHann_16sc_I(Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsWinHann_32f   (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsWinHann_32f_I (Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsWinHann_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsWinHann_32fc_I(Kel32fc* pSrcDst, int len);
/** @} */

/** @name Hamming
 *  w(n) = 0.54 - 0.46 C(n).
 *  @{ */
KELS_API KelStatus kelsWinHamming_16s   (const Kel16s* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsWinHamming_16s_I (Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsWinHamming_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsWinHamming_16sc_I(Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsWinHamming_32f   (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsWinHamming_32f_I (Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsWinHamming_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsWinHamming_32fc_I(Kel32fc* pSrcDst, int len);
/** @} */

/** @name Blackman
 *  w(n) = (alpha + 1) / 2 - C(n) / 2 - alpha B(n) / 2, with B(n) = 2 C(n)^2 - 1, for any alpha, or alpha = alphaQ15 2^-15.
 *  @{ */
KELS_API KelStatus kelsWinBlackman_16s   (const Kel16s* pSrc, Kel16s* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackman_16s_I (Kel16s* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackman_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackman_16sc_I(Kel16sc* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackman_32f   (const Kel32f* pSrc, Kel32f* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackman_32f_I (Kel32f* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackman_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackman_32fc_I(Kel32fc* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinBlackmanQ15_16s   (const Kel16s* pSrc, Kel16s* pDst, int len, int alphaQ15);
KELS_API KelStatus kelsWinBlackmanQ15_16s_I (Kel16s* pSrcDst, int len, int alphaQ15);
KELS_API KelStatus kelsWinBlackmanQ15_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, int alphaQ15);
KELS_API KelStatus kelsWinBlackmanQ15_16sc_I(Kel16sc* pSrcDst, int len, int alphaQ15);
/** @} */

/** @name Standard and optimal Blackman
 *  alpha = -0.16, and -(1 / (2 cos(pi / m)))^2, rounded to single, with which w(1) vanishes.
 *  @{ */
KELS_API KelStatus kelsWinBlackmanStd_16s   (const Kel16s* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsWinBlackmanStd_16s_I (Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsWinBlackmanStd_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsWinBlackmanStd_16sc_I(Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsWinBlackmanStd_32f   (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsWinBlackmanStd_32f_I (Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsWinBlackmanStd_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsWinBlackmanStd_32fc_I(Kel32fc* pSrcDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_16s   (const Kel16s* pSrc, Kel16s* pDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_16s_I (Kel16s* pSrcDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_16sc_I(Kel16sc* pSrcDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_32f   (const Kel32f* pSrc, Kel32f* pDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_32f_I (Kel32f* pSrcDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len);
KELS_API KelStatus kelsWinBlackmanOpt_32fc_I(Kel32fc* pSrcDst, int len);
/** @} */

/** @name Kaiser
 *  w(n) = I0(alpha (n (m - n))^(1/2)) / I0(alpha m / 2), alpha = alphaQ15 2^-15 in `Q15`. |alpha| m / 2 is at most 38 for
 *  `32f` and `32fc`, and 308 for the others: more, or a NaN, gives `kelStatusKaiserTooHuge`. I0 is an approximation of the
 *  modified Bessel function, good for about 7 digits. `64f` divides by a finer one, and `64f_I` divides the finer one, so that
 *  the two differ from the sixth digit on.
 *  @{ */
KELS_API KelStatus kelsWinKaiser_16s   (const Kel16s* pSrc, Kel16s* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_16s_I (Kel16s* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_16sc_I(Kel16sc* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_32f   (const Kel32f* pSrc, Kel32f* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_32f_I (Kel32f* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_32fc_I(Kel32fc* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_64f   (const Kel64f* pSrc, Kel64f* pDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiser_64f_I (Kel64f* pSrcDst, int len, Kel32f alpha);
KELS_API KelStatus kelsWinKaiserQ15_16s   (const Kel16s* pSrc, Kel16s* pDst, int len, int alphaQ15);
KELS_API KelStatus kelsWinKaiserQ15_16s_I (Kel16s* pSrcDst, int len, int alphaQ15);
KELS_API KelStatus kelsWinKaiserQ15_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len, int alphaQ15);
KELS_API KelStatus kelsWinKaiserQ15_16sc_I(Kel16sc* pSrcDst, int len, int alphaQ15);
/** @} */

#endif
