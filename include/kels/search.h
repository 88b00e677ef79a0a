/** @file
 *  Aids for decoding and measuring: a kit for Viterbi decoding of four-dimensional trellis codes, nearest entries of a
 *  sorted table, running estimates of level and power. Nothing here keeps a state; all arithmetic is exact.
 *
 *  **Statuses**, in the order of the checks: `kelStatusNullPtr` (any null pointer), `kelStatusBadSize` (a length below
 *  1, where there is one), `kelStatusOk`. Nothing has been stored when an error is returned.
 */
#ifndef KELS_SEARCH_H
#define KELS_SEARCH_H

#include "kels/status.h"

/** @name Viterbi decoding of four-dimensional trellis codes
 *  Constellation points lie on a square grid of step 256, at odd multiples of 128 in each coordinate. The codes have 16,
 *  32 or 64 states, which `state` tells; any other value counts as 64. All arrays belong to the caller, and so does the
 *  walk back through the path table.
 *
 *  **kelsGetVarPointDV_16sc** finds the grid points around one received point. `*pDst` becomes the one below and to the
 *  left of it, the reference point, its coordinates modulo 2^16. `pLabel` has the labels of a tile of four by four
 *  points that repeats over the plane: pLabel[c + 4 r] in column c and row r, of which 2 bits (16 states) or 3 count.
 *  `pVariantPoint` gets a word for every label, 4 or 8 of them: the nearest candidate of the label, its position in bits
 *  16 to 31 and its squared distance, each coordinate's square divided by 16, in bits 0 to 15. A label that the tile does
 *  not have keeps its word. Positions are columns and rows from the reference point:
 *
 *  | Code | Place  | Code | Place  | Code | Place  | Code | Place  | Code | Place  | Code | Place  |
 *  |------|--------|------|--------|------|--------|------|--------|------|--------|------|--------|
 *  | 0    | 0, 0   | 2    | +1, +1 | 4    | 0, +2  | 6    | +2, +1 | 8    | +2, 0  | 10   | 0, -1  |
 *  | 1    | +1, 0  | 3    | 0, +1  | 5    | +1, +2 | 7    | +1, -1 | 9    | -1, 0  | 11   | -1, +1 |
 *
 *  With 16 states only codes 0 to 3 are tried. Otherwise each of codes 4 to 7 vies with the one four above it, which
 *  wins where they are equally near, for the label of a place: that of code 4, 5 and, with their columns exchanged,
 *  +1, -1 for codes 6 and 10, 0, -1 for codes 7 and 11.
 *
 *  **kelsBuildSymblTableDV4D_16sc** joins the words of two received points, those of the second from element 8 on, into
 *  8, 16 or 32 symbols, two values each: the positions, the first point's in bits 0 to 7 and the second's in 8 to 15;
 *  then the metric, the sum of the distances, modulo 2^16. Symbol i is the pair of labels with the least sum among those
 *  of the subset of i xor `bitInversion`, the first pair where sums are equal. Of `bitInversion` the bits count that an
 *  index of a symbol has.
 *
 *  **kelsCalcStatesDV_16sc** does one stage of the trellis: add, compare, select. `pNextState` lists the successors of
 *  each state, 4, 8 or 16 bytes by the number of states; branch k of state s has symbol 2 k + (s & 1). A branch into
 *  state n whose total, pPathError[s] plus the metric as a signed number, is below pNewError[n], replaces it, and
 *  pPathTable[presentIndex + n] becomes the positions plus s 2^16; so that of equal totals the first state's first
 *  branch stays. The caller sets `pNewError` beforehand to values that no path reaches. With `state` below 1 nothing is
 *  done.
 *  @{ */
KELS_API KelStatus kelsGetVarPointDV_16sc      (const Kel16sc* pSrc, Kel16sc* pDst, Kel32u* pVariantPoint, const Kel8u* pLabel, int state);
KELS_API KelStatus kelsBuildSymblTableDV4D_16sc(const Kel32u* pVariantPoint, Kel16u* pSymbols, int state, int bitInversion);
KELS_API KelStatus kelsCalcStatesDV_16sc       (const Kel16u* pPathError, const Kel8u* pNextState, Kel16u* pNewError, const Kel16u* pSymbols, Kel32u* pPathTable, int state, int presentIndex);
/** @} */

/** @name Nearest entry of a sorted table
 *  The entry of `pTable`, ascending, that is nearest to each value, and its index; between two entries at one distance the
 *  lower. Of equal entries it is the first one of the table's lowest, the last one of its highest, and elsewhere the last
 *  one where the value is not below them, else the first. In place `pOutVals` may be `pVals`.
 *  @{ */
KELS_API KelStatus kelsFindNearestOne_16u(Kel16u value, Kel16u* pOutValue, int* pOutIndex, const Kel16u* pTable, int tblLen);
KELS_API KelStatus kelsFindNearest_16u   (const Kel16u* pVals, Kel16u* pOutVals, int* pOutIndexes, int len, const Kel16u* pTable, int tblLen);
/** @} */

/** @name Running estimates
 *  y = y alpha + s (1 - alpha) for every sample in turn, from y = *pSrcDst on, with integer factors; the result is
 *  saturated to 32 bits. `Linear`: s = pSrc[i] 2^-srcShiftRight; `Power`: s = pSrc[i]^2 2^-srcShiftRight; both rounded
 *  down. Shifts below 0 count as 0, those above 15 (`Linear`) or 31 as these.
 *  @{ */
KELS_API KelStatus kelsUpdateLinear_16s32s_I(const Kel16s* pSrc, int len, Kel32s* pSrcDst, int srcShiftRight, Kel16s alpha);
KELS_API KelStatus kelsUpdatePower_16s32s_I (const Kel16s* pSrc, int len, Kel32s* pSrcDst, int srcShiftRight, Kel16s alpha);
/** @} */

#endif
