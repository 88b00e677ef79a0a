// Plans of the discrete cosine transform.
#pragma once

#include "kels/dct.h"
#include "transforms/dft/plan.h"

namespace kels {

/// First field of every plan: what it transforms. The numbers follow those of the DFT.
enum DctPlanId : Kel32s {
    dct_forward_16s = 19,
    dct_inverse_16s = 20,
    dct_forward_32f = 21,
    dct_inverse_32f = 22,
    dct_forward_64f = 23,
    dct_inverse_64f = 24
};

/// Lengths 1, 2, 4 and 8 are straight code.
constexpr bool straight_dct(int len) { return len == 1 || len == 2 || len == 4 || len == 8; }

template <class T>
struct DctPlan {
    using RealPlan = std::conditional_t<sizeof(T) == 4, KelsDftPlan_32f, KelsDftPlan_64f>;
    struct ReleaseReal {
        void operator()(RealPlan* plan) const {
            if constexpr (sizeof(T) == 4)
                kelsDFTFree_R_32f(plan);
            else
                kelsDFTFree_R_64f(plan);
        }
    };

    Kel32s planId = 0;
    Kel32s len = 0;
    Kel32s workBytes = 0;
    T scale = 0;              ///< 1 / sqrt(N)
    const T* turns = nullptr; ///< for k from 1 to (N - 1) / 2: see transform.h
    Owned<Kel8u> tables;
    std::unique_ptr<RealPlan, ReleaseReal> real; ///< of `len` samples; none where the code is straight
};

} // namespace kels

struct KelsDctPlan_32f : kels::DctPlan<Kel32f> {};
struct KelsDctPlan_64f : kels::DctPlan<Kel64f> {};

struct KelsDctPlan_16s {
    Kel32s planId = 0;
    Kel32s len = 0;
    Kel32s hint = 0;
    Kel32s workBytes = 0;
    /// What it runs through; none for length 1.
    std::unique_ptr<KelsDctPlan_32f, KelStatus (*)(KelsDctPlan_32f*)> pFloatPlan{nullptr, nullptr};
};
