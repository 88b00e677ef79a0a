// Plans over 16-bit data: tables of a fixed-point transform, or a floating-point plan that it runs through.
#pragma once

#include "transforms/fft/fixed_core.h"
#include "transforms/fft/fixed_recombination.h"
#include "transforms/fft/plan.h"

#include <memory>

struct KelsFftPlan_16s {
    Kel32s planId = 0;
    Kel32s order = 0;
    Kel32s shiftFwd = 0, shiftInv = 0; ///< what a direction adds to the scale factor in fixed point
    Kel32s oddSqrt = 0;                ///< 1: and both multiply by 1/sqrt(2)
    Kel32s hint = 0;
    Kel32s workBytes = 0;
    Kel32s fixedPath = 0;                   ///< 1: fixed point; 0: through pFloatPlan
    kels::FixedTables fixed_tables;         ///< of the complex transform
    kels::RecombinationRoots recombination; ///< real data
    kels::Owned<Kel8u> tables;              ///< all of the above
    std::unique_ptr<KelsFftPlan_32f, KelStatus (*)(KelsFftPlan_32f*)> pFloatPlan{nullptr, nullptr};
};
