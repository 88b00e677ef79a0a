// Plans: what a transform reads, and what is the same for plans of every kind.
#pragma once

#include "frame/record.h"
#include "frame/tables.h"
#include "kels/fft.h"
#include "transforms/fft/layouts.h"

namespace kels {

/// First field of every plan: what it transforms.
enum PlanId : Kel32s {
    plan_C_16sc = 1,
    plan_C_16s = 2,
    plan_R_16s = 3,
    plan_C_32fc = 4,
    plan_C_32f = 5,
    plan_R_32f = 6,
    plan_C_64fc = 7,
    plan_C_64f = 8,
    plan_R_64f = 9
};

template <class T>
struct FftPlan;

template <class T>
struct FftDirection;

/// A complex transform of any source to any destination, in place too, by one direction of a plan.
template <class T>
using FftKernel = void (*)(const FftPlan<T>& plan, const FftDirection<T>& direction, Points<const T> src,
                           Points<T> dst);

/// One direction of a plan: the results are multiplied by `factor`.
template <class T>
struct FftDirection {
    FftKernel<T> kernel = nullptr;
    T factor = 1;
    const T* roots = nullptr; ///< in-cache transforms: of the last pass, times the factor
};

/// What an FFT reads. The complex transform has order `complex_order`: the plan's own for complex data, one less for
/// real data, which then recombines the halves.
template <class T>
struct FftPlan {
    Kel32s planId = 0;
    Kel32s order = 0;
    Kel32s normFwd = 0, normInv = 0; ///< whether a direction multiplies by normFactor
    T normFactor = 0;
    Kel32s workBytes = 0;
    Kel32s complex_order = 0;
    FftDirection<T> forward{}, inverse{};
    const T* twiddles = nullptr;        ///< of the passes of an in-cache transform, or of a longer one's first sweep
    const T* middle_twiddles = nullptr; ///< longer transforms: of the middle columns
    const T* lane_twiddles = nullptr;   ///< between neighbouring columns
    const T* coarse_turns = nullptr;    ///< blocked transforms: of the middle sweep's results
    const Kel64f* coarse_roots = nullptr;
    const Kel64f* fine_roots = nullptr;
    const T* recombination = nullptr;        ///< real data: see real.cpp
    const T* recombination_blocks = nullptr; ///< real data: roots between blocks of the table above
    Owned<Kel8u> tables;                     ///< all of the above
};

/// The complex transform of a plan, in the plan's normalisation.
template <class T>
inline void transform(const FftPlan<T>& plan, bool inverse, Points<const T> src, Points<T> dst) {
    const FftDirection<T>& direction = inverse ? plan.inverse : plan.forward;
    direction.kernel(plan, direction, src, dst);
}

/// Bytes of work buffer that a transform of this complex order may use.
template <class T>
Kel32s work_bytes(int order);

/// Complex orders below this one are one butterfly without tables.
inline constexpr int first_table_order = 3;

} // namespace kels

struct KelsFftPlan_32f : kels::FftPlan<Kel32f> {};
struct KelsFftPlan_64f : kels::FftPlan<Kel64f> {};
