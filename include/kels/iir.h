/** @file
 *  IIR filters with a state, of any order or as cascades of second-order sections.
 *
 *  **Filters of any order.** The taps are b[0] to b[order], then a[0] to a[order], those of the transfer function
 *  (b[0] + b[1] z^-1 + ...) / (a[0] + a[1] z^-1 + ...). Divided by a[0] they run as a transposed direct form II:
 *
 *      y = b[0] x + d[0],   d[i] = b[i+1] x - a[i+1] y + d[i+1],   d[order-1] = b[order] x - a[order] y
 *
 *  **Cascades** (`BiQuad`). The taps are b0, b1, b2, a0, a1, a2 of one section after the other. With one gain, the
 *  product of all b0 / a0, ahead, a section is a direct form II:
 *
 *      w = t - (a1/a0) w1 - (a2/a0) w2,   t = w + (b1/b0) w1 + (b2/b0) w2,   w2 = w1,   w1 = w
 *
 *  **State.** d[0] to d[order-1], or w1, w2 of one section after the other, in the type of the taps. A stream goes on
 *  from call to call; it may be cut into calls of any length, and block calls, in-place calls and single samples may be
 *  mixed.
 *
 *  **Families.** The first type in a name is that of the taps and the state, the second that of the samples: `64f_16s`
 *  filters 16-bit samples with double taps; one type stands for both. A context belongs to its family, and every
 *  function of the family takes it, whatever its form.
 *
 *  **Accuracy.** Real taps are divided in extended precision and rounded once. Everything is computed in double
 *  precision; what is stored in the state is rounded to its type: in a block once for a pair of samples (from order 2
 *  on, and in cascades), else once a sample. So single taps give the same bits wherever a stream is cut between pairs,
 *  and those of extended precision on 99.9 % of data, else 1 ulp from them. Results of double taps lie within 2^-51 of
 *  the terms' magnitudes, carried through the recursion.
 *
 *  **Integer samples.** The result is multiplied by 2^-scaleFactor, rounded to nearest with ties away from zero, and
 *  saturated; a NaN becomes the largest value. The power of two is that of extended precision: it is zero from factor
 *  16446 on and infinite from -16384 on. The state knows nothing of the scale.
 *
 *  **Integer taps** (`32s_16s`, `32sc_16sc`) stand for themselves times 2^tapsFactor. Everything is computed in 64 bits;
 *  the state is saturated to 32 bits, results to 16 bits. State and results are in units of the output: products with
 *  samples are shifted left by tapsFactor - scaleFactor, products with results or state by tapsFactor. A negative shift
 *  is one to the right of the magnitude, toward zero; 64 places or more leave nothing. In a block of a filter from order
 *  2 on, the two products of a pair share one shift. In a filter of any order a scale factor below the taps' factor
 *  first shifts the taps left by the difference, saturates them to 32 bits and lowers their factor, for good.
 *  `kelsIIROne32s_16s_Sfs` of such a filter has products with samples that wrap in 32 bits, and so does its result where
 *  the shift is 0.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr` (no context), `kelStatusContextMismatch` (a context of
 *  another family), `kelStatusNullPtr` (a data pointer), `kelStatusBadSize` (a length below 1). On an error nothing has
 *  been stored. Unstable filters and NaNs have no status.
 *
 *  **Aliasing.** `pDst` is `pSrc` or disjoint from it.
 *
 *  **Ownership and threads.** A context belongs to whoever made it, and to one thread at a time. The caller's arrays are
 *  read or written during a call and never kept. Only the functions that make a filter allocate.
 */
#ifndef KELS_IIR_H
#define KELS_IIR_H

#include "kels/status.h"

typedef struct KelIirContext KelIirContext; /**< An IIR filter: taps and state. */

/** @name Making a filter of any order
 *  @param pState   receives the context, on success only
 *  @param pTaps    2 order + 2 taps
 *  @param order    at least 0
 *  @param pDlyLine `order` elements of the state, or null for silence
 *  @return `kelStatusNullPtr` (`pState` or `pTaps`), `kelStatusBadIirOrder`, `kelStatusNoMemory`, `kelStatusDivByZero`
 *          (a[0] is 0, in both parts) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsIIRInitAlloc_32f     (KelIirContext** pState, const Kel32f*  pTaps, int order, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc_32fc    (KelIirContext** pState, const Kel32fc* pTaps, int order, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32f_16s  (KelIirContext** pState, const Kel32f*  pTaps, int order, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32fc_16sc(KelIirContext** pState, const Kel32fc* pTaps, int order, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc_64f     (KelIirContext** pState, const Kel64f*  pTaps, int order, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc_64fc    (KelIirContext** pState, const Kel64fc* pTaps, int order, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64f_32f  (KelIirContext** pState, const Kel64f*  pTaps, int order, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64fc_32fc(KelIirContext** pState, const Kel64fc* pTaps, int order, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64f_32s  (KelIirContext** pState, const Kel64f*  pTaps, int order, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64fc_32sc(KelIirContext** pState, const Kel64fc* pTaps, int order, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64f_16s  (KelIirContext** pState, const Kel64f*  pTaps, int order, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64fc_16sc(KelIirContext** pState, const Kel64fc* pTaps, int order, const Kel64fc* pDlyLine);
/** @} */

/** @name Making a cascade
 *  @param pState   receives the context, on success only
 *  @param pTaps    six taps a section
 *  @param numBq    number of sections, at least 1
 *  @param pDlyLine 2 numBq elements of the state, or null for silence
 *  @return `kelStatusNullPtr` (`pState` or `pTaps`), `kelStatusBadIirOrder`, `kelStatusNoMemory`, `kelStatusDivByZero`
 *          (an a0 or b0 is 0, in both parts) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsIIRInitAlloc_BiQuad_32f     (KelIirContext** pState, const Kel32f*  pTaps, int numBq, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc_BiQuad_32fc    (KelIirContext** pState, const Kel32fc* pTaps, int numBq, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32f_BiQuad_16s  (KelIirContext** pState, const Kel32f*  pTaps, int numBq, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32fc_BiQuad_16sc(KelIirContext** pState, const Kel32fc* pTaps, int numBq, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc_BiQuad_64f     (KelIirContext** pState, const Kel64f*  pTaps, int numBq, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc_BiQuad_64fc    (KelIirContext** pState, const Kel64fc* pTaps, int numBq, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64f_BiQuad_32f  (KelIirContext** pState, const Kel64f*  pTaps, int numBq, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64fc_BiQuad_32fc(KelIirContext** pState, const Kel64fc* pTaps, int numBq, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64f_BiQuad_32s  (KelIirContext** pState, const Kel64f*  pTaps, int numBq, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64fc_BiQuad_32sc(KelIirContext** pState, const Kel64fc* pTaps, int numBq, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64f_BiQuad_16s  (KelIirContext** pState, const Kel64f*  pTaps, int numBq, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc64fc_BiQuad_16sc(KelIirContext** pState, const Kel64fc* pTaps, int numBq, const Kel64fc* pDlyLine);
/** @} */

/** @name Making a filter of integer taps
 *  The taps are divided in 64 bits, toward zero, and saturated to 32 bits. A filter of any order whose a[0] is
 *  2^-tapsFactor, saturated to 32 bits, keeps its taps as they are.
 *  @return as above
 *  @{ */
KELS_API KelStatus kelsIIRInitAlloc32s_16s         (KelIirContext** pState, const Kel32s*  pTaps, int order, int tapsFactor, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32sc_16sc       (KelIirContext** pState, const Kel32sc* pTaps, int order, int tapsFactor, const Kel32sc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32s_BiQuad_16s  (KelIirContext** pState, const Kel32s*  pTaps, int numBq, int tapsFactor, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32sc_BiQuad_16sc(KelIirContext** pState, const Kel32sc* pTaps, int numBq, int tapsFactor, const Kel32sc* pDlyLine);
/** @} */

/** @name Making a filter of integer taps from real ones
 *  The taps are divided and rounded to singles. The factor is found: the largest tap becomes an integer from 2^30 to
 *  2^31, ties away from zero, what is 2^31 one less; if all taps are zero, it is 0. A NaN or an infinity becomes the
 *  lowest integer.
 *  @return as above
 *  @{ */
KELS_API KelStatus kelsIIRInitAlloc32s_16s32f          (KelIirContext** pState, const Kel32f*  pTaps, int order, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32sc_16sc32fc       (KelIirContext** pState, const Kel32fc* pTaps, int order, const Kel32sc* pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32s_BiQuad_16s32f   (KelIirContext** pState, const Kel32f*  pTaps, int numBq, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsIIRInitAlloc32sc_BiQuad_16sc32fc(KelIirContext** pState, const Kel32fc* pTaps, int numBq, const Kel32sc* pDlyLine);
/** @} */

/** @name Releasing a filter
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` (nothing is freed) or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsIIRFree_32f     (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree_32fc    (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree32f_16s  (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree32fc_16sc(KelIirContext* pState);
KELS_API KelStatus kelsIIRFree32s_16s  (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree32sc_16sc(KelIirContext* pState);
KELS_API KelStatus kelsIIRFree_64f     (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree_64fc    (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree64f_32f  (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree64fc_32fc(KelIirContext* pState);
KELS_API KelStatus kelsIIRFree64f_32s  (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree64fc_32sc(KelIirContext* pState);
KELS_API KelStatus kelsIIRFree64f_16s  (KelIirContext* pState);
KELS_API KelStatus kelsIIRFree64fc_16sc(KelIirContext* pState);
/** @} */

/** @name Reading the state
 *  Stores the `order` or 2 numBq elements.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsIIRGetDlyLine_32f     (const KelIirContext* pState, Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine_32fc    (const KelIirContext* pState, Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine32f_16s  (const KelIirContext* pState, Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine32fc_16sc(const KelIirContext* pState, Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine32s_16s  (const KelIirContext* pState, Kel32s*  pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine32sc_16sc(const KelIirContext* pState, Kel32sc* pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine_64f     (const KelIirContext* pState, Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine_64fc    (const KelIirContext* pState, Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine64f_32f  (const KelIirContext* pState, Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine64fc_32fc(const KelIirContext* pState, Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine64f_32s  (const KelIirContext* pState, Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine64fc_32sc(const KelIirContext* pState, Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine64f_16s  (const KelIirContext* pState, Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRGetDlyLine64fc_16sc(const KelIirContext* pState, Kel64fc* pDlyLine);
/** @} */

/** @name Setting the state
 *  A new start with as many elements as are read above, or with null for silence.
 *  @return `kelStatusNullPtr`, `kelStatusContextMismatch` or `kelStatusOk`
 *  @{ */
KELS_API KelStatus kelsIIRSetDlyLine_32f     (KelIirContext* pState, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine_32fc    (KelIirContext* pState, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine32f_16s  (KelIirContext* pState, const Kel32f*  pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine32fc_16sc(KelIirContext* pState, const Kel32fc* pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine32s_16s  (KelIirContext* pState, const Kel32s*  pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine32sc_16sc(KelIirContext* pState, const Kel32sc* pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine_64f     (KelIirContext* pState, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine_64fc    (KelIirContext* pState, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine64f_32f  (KelIirContext* pState, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine64fc_32fc(KelIirContext* pState, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine64f_32s  (KelIirContext* pState, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine64fc_32sc(KelIirContext* pState, const Kel64fc* pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine64f_16s  (KelIirContext* pState, const Kel64f*  pDlyLine);
KELS_API KelStatus kelsIIRSetDlyLine64fc_16sc(KelIirContext* pState, const Kel64fc* pDlyLine);
/** @} */

/** @name Filtering a block
 *  Filters `len` samples.
 *  @{ */
KELS_API KelStatus kelsIIR_32f         (const Kel32f*  pSrc, Kel32f*  pDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR_32fc        (const Kel32fc* pSrc, Kel32fc* pDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR32f_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR32fc_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR32s_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR32sc_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR_64f         (const Kel64f*  pSrc, Kel64f*  pDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR_64fc        (const Kel64fc* pSrc, Kel64fc* pDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR64f_32f      (const Kel32f*  pSrc, Kel32f*  pDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR64fc_32fc    (const Kel32fc* pSrc, Kel32fc* pDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR64f_32s_Sfs  (const Kel32s*  pSrc, Kel32s*  pDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR64fc_32sc_Sfs(const Kel32sc* pSrc, Kel32sc* pDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR64f_16s_Sfs  (const Kel16s*  pSrc, Kel16s*  pDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR64fc_16sc_Sfs(const Kel16sc* pSrc, Kel16sc* pDst, int len, KelIirContext* pState, int scaleFactor);
/** @} */

/** @name Filtering a block in place
 *  @{ */
KELS_API KelStatus kelsIIR_32f_I        (Kel32f*  pSrcDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR_32fc_I       (Kel32fc* pSrcDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR32f_16s_ISfs  (Kel16s*  pSrcDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR32fc_16sc_ISfs(Kel16sc* pSrcDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR32s_16s_ISfs  (Kel16s*  pSrcDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR32sc_16sc_ISfs(Kel16sc* pSrcDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR_64f_I        (Kel64f*  pSrcDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR_64fc_I       (Kel64fc* pSrcDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR64f_32f_I     (Kel32f*  pSrcDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR64fc_32fc_I   (Kel32fc* pSrcDst, int len, KelIirContext* pState);
KELS_API KelStatus kelsIIR64f_32s_ISfs  (Kel32s*  pSrcDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR64fc_32sc_ISfs(Kel32sc* pSrcDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR64f_16s_ISfs  (Kel16s*  pSrcDst, int len, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIR64fc_16sc_ISfs(Kel16sc* pSrcDst, int len, KelIirContext* pState, int scaleFactor);
/** @} */

/** @name Filtering one sample
 *  @{ */
KELS_API KelStatus kelsIIROne_32f         (Kel32f  src, Kel32f*  pDstVal, KelIirContext* pState);
KELS_API KelStatus kelsIIROne_32fc        (Kel32fc src, Kel32fc* pDstVal, KelIirContext* pState);
KELS_API KelStatus kelsIIROne32f_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIROne32fc_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIROne32s_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIROne32sc_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIROne_64f         (Kel64f  src, Kel64f*  pDstVal, KelIirContext* pState);
KELS_API KelStatus kelsIIROne_64fc        (Kel64fc src, Kel64fc* pDstVal, KelIirContext* pState);
KELS_API KelStatus kelsIIROne64f_32f      (Kel32f  src, Kel32f*  pDstVal, KelIirContext* pState);
KELS_API KelStatus kelsIIROne64fc_32fc    (Kel32fc src, Kel32fc* pDstVal, KelIirContext* pState);
KELS_API KelStatus kelsIIROne64f_32s_Sfs  (Kel32s  src, Kel32s*  pDstVal, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIROne64fc_32sc_Sfs(Kel32sc src, Kel32sc* pDstVal, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIROne64f_16s_Sfs  (Kel16s  src, Kel16s*  pDstVal, KelIirContext* pState, int scaleFactor);
KELS_API KelStatus kelsIIROne64fc_16sc_Sfs(Kel16sc src, Kel16sc* pDstVal, KelIirContext* pState, int scaleFactor);
/** @} */

#endif
