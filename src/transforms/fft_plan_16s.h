// Plans over 16-bit data: tables of a fixed-point transform, or a floating-point plan that it runs through.
#pragma once

#include "transforms/fft_plan.h"

#include <memory>

struct KelsFftPlan_16s {
    Kel32s planId = 0;
    Kel32s order = 0;
    Kel32s shiftFwd = 0, shiftInv = 0; ///< what a direction adds to the scale factor in fixed point
    Kel32s oddSqrt = 0;                ///< 1: and both multiply by 1/sqrt(2)
    Kel32s hint = 0;
    Kel32s workBytes = 0;
    Kel32s fixedPath = 0; ///< 1: fixed point; 0: through pFloatPlan
    // In fixed point. Transforms of fewer than 4 points read no table.
    const Kel32s* pBitRev = nullptr;  ///< of the complex transform
    const Kel16s* pTwd = nullptr;     ///< of the complex transform
    const Kel16s* pTwdReal = nullptr; ///< real data: of the recombination
    kels::Owned<Kel8u> tables;        ///< all of the above
    std::unique_ptr<KelsFftPlan_32f, KelStatus (*)(KelsFftPlan_32f*)> pFloatPlan{nullptr, nullptr};
};

// The tables of fixed-point transforms of 2^order points, order 2 and above.
extern "C" {

/// sin(2 pi k / N) in Q14, rounded to nearest, for k from 0 to N/4.
KELS_API void kels_createTabTwdBase_16s(Kel16s* base, int order);

/// The circle: for k from 0 to N - 1, with c and s the cosine and sine of 2 pi k / N in Q14, the four values
/// c, s, -s, c, which a product of a complex number with c - i s takes as two paired multiply-adds. `base` may be that
/// of a higher order.
KELS_API void kels_createTabTwd_R4_16s(Kel16s* table, int order, const Kel16s* base, int baseOrder);

/// The bit reversal of order m by the middle bits alone, as N/4 + 1 words: pairs 4i, 4j of middle indices to exchange,
/// i < j; a 0, which stands for the middle index 0 too; 4i of the other middle indices that are their own reversal; and
/// a 0.
KELS_API void kels_createTabBitRev(Kel32s* table, int order);
}
