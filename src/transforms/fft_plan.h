// Plans: what a transform reads, and what is the same for plans of every kind.
#pragma once

#include "frame/memory.h"
#include "kels/fft.h"
#include "transforms/fft_layouts.h"

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

/// A complex transform of any source to any destination, in place too; the results are multiplied by `factor`.
template <class T>
using FftKernel = void (*)(const FftPlan<T>& plan, T factor, Points<const T> src, Points<T> dst);

/// One direction of a plan.
template <class T>
struct FftDirection {
    FftKernel<T> kernel;
    T factor;
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
    const T* recombination = nullptr;        ///< real data: see fft_real.cpp
    const T* recombination_pairs = nullptr;  ///< real data: the same for a transform in registers, see fft_pairs.h
    const T* recombination_blocks = nullptr; ///< real data: roots between blocks of the table above
    Owned<Kel8u> tables;                     ///< all of the above
};

/// The complex transform of a plan, in the plan's normalisation.
template <class T>
inline void transform(const FftPlan<T>& plan, bool inverse, Points<const T> src, Points<T> dst) {
    const FftDirection<T>& direction = inverse ? plan.inverse : plan.forward;
    direction.kernel(plan, direction.factor, src, dst);
}

/// Orders below this one are one butterfly without tables.
inline constexpr int first_pass_order = 4;

/// Lays tables out one behind the other, each on a cache line: once without memory, to measure, and once to give it
/// out.
class TableSpace {
public:
    explicit TableSpace(Kel8u* memory) : memory_(memory) {}

    template <class E>
    E* take(std::size_t count) {
        Kel8u* p = memory_ ? memory_ + size_ : nullptr;
        size_ += (count * sizeof(E) + 63) / 64 * 64;
        return reinterpret_cast<E*>(p);
    }
    std::size_t size() const { return size_; }

private:
    Kel8u* memory_;
    std::size_t size_ = 0;
};

/// Memory for all that `lay` takes from a TableSpace, laid out; null if there is none.
template <class Lay>
Owned<Kel8u> make_tables(Lay&& lay) {
    TableSpace measure(nullptr);
    lay(measure);
    Owned<Kel8u> tables = make_owned<Kel8u>(measure.size() + 63);
    if (tables) {
        TableSpace space(tables.get() + (64 - reinterpret_cast<std::uintptr_t>(tables.get()) % 64) % 64);
        lay(space);
    }
    return tables;
}

/// Ends a plan, marked as none first.
struct DeletePlan {
    template <class Plan>
    void operator()(Plan* plan) const {
        plan->planId = 0;
        plan->~Plan();
        kelsFree(plan);
    }
};

template <PlanId id, class Plan>
KelStatus free_plan(Plan* plan) {
    if (!plan) return kelStatusNullPtr;
    if (plan->planId != id) return kelStatusContextMismatch;
    DeletePlan{}(plan);
    return kelStatusOk;
}

template <PlanId id, class Plan>
KelStatus buffer_size(const Plan* plan, int* size) {
    if (!plan || !size) return kelStatusNullPtr;
    if (plan->planId != id) return kelStatusContextMismatch;
    *size = plan->workBytes;
    return kelStatusOk;
}

} // namespace kels

struct KelsFftPlan_32f : kels::FftPlan<Kel32f> {};
struct KelsFftPlan_64f : kels::FftPlan<Kel64f> {};
