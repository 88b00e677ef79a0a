// Plans: made whole or not at all, read by every transform, released once.
//
// What a caller sees of a plan are its normalisation and the size of its work buffer. Both follow from order, flag and
// element type alone. The kernels here keep their scratch on the stack and use no work buffer.

#include "transforms/fft/plan.h"

#include "frame/modes.h"
#include "transforms/fft/blocked.h"
#include "transforms/fft/in_cache.h"
#include "transforms/fft/large.h"
#include "transforms/fft/real_recombination.h"

#include <cmath>

namespace kels {
namespace {

template <class T>
inline constexpr bool single = sizeof(T) == 4;

/// Complex orders up to this one ask for no work buffer.
template <class T>
inline constexpr int base_order = single<T> ? 10 : 9;

/// Order of the column transforms of a large plan of this order; 0 where it is not split.
template <class T>
int split(int order) {
    static constexpr Kel8u single_split[] = {5, 6, 7, 8, 8, 8, 10, 10, 10, 10, 8, 8}; // orders 13 to 24
    static constexpr Kel8u double_split[] = {4, 5, 6, 7, 7, 8, 9, 9, 9, 8, 8};        // orders 12 to 22
    constexpr int first = single<T> ? 13 : 12;
    if (order < first) return 0;
    if constexpr (single<T>) return order > 24 ? 10 : single_split[order - first];
    return order > 22 ? 9 : double_split[order - first];
}

} // namespace

/// Four columns of the longest split, and slack to align them.
template <class T>
Kel32s work_bytes(int order) {
    if (order <= base_order<T>) return 0;
    int columns = 0;
    for (int left = order; split<T>(left) != 0; left -= split<T>(left))
        columns = std::max(columns, int(4 * 2 * sizeof(T)) << split<T>(left));
    return columns + 16;
}
template Kel32s work_bytes<Kel32f>(int);
template Kel32s work_bytes<Kel64f>(int);

namespace {

/// Whether the points of a large transform are beyond what a table may hold: 2^31 bytes.
template <class T>
bool too_large(int order) {
    return (std::uint64_t{2 * sizeof(T)} << order) > INT_MAX; // in 64 bits, on 32-bit x86 too
}

/// All tables of a plan whose order is set.
template <class Layout, class Inverse, class T>
void lay_tables(FftPlan<T>& plan, bool real, TableSpace& space) {
    if (plan.complex_order > top_blocked_order)
        lay_large<Layout>(plan, space);
    else if (plan.complex_order > top_in_cache_order<T>)
        lay_blocked<Layout>(plan, space);
    else
        lay_in_cache<Layout, Inverse>(plan, space);
    if (real) lay_recombination(plan, space);
}

template <class Layout, class T>
FftKernel<T> kernel(int order) {
    if (order > top_blocked_order) return large_kernel<Layout, T>();
    return order > top_in_cache_order<T> ? blocked_kernel<Layout, T>(order) : in_cache_kernel<Layout, T>(order);
}

/// Sets the normalisation that a flag stands for; false for any other value.
template <class T>
bool normalise(FftPlan<T>& plan, int flag) {
    switch (flag) {
    case kelFftNormFwd:
        plan.normFwd = 1;
        break;
    case kelFftNormInv:
        plan.normInv = 1;
        break;
    case kelFftNormSqrt:
        plan.normFwd = plan.normInv = 1;
        break;
    case kelFftNormNone:
        return true;
    default:
        return false;
    }
    // Powers of two, or one times the root of a half: no rounding that the caller's modes could change.
    constexpr T root_of_half = static_cast<T>(0.70710678118654752440L);
    if (flag == kelFftNormSqrt)
        plan.normFactor = std::ldexp(plan.order % 2 ? root_of_half : T(1), -(plan.order / 2));
    else
        plan.normFactor = std::ldexp(T(1), -plan.order);
    return true;
}

template <PlanId id, class Layout, class Inverse, class Plan>
KelStatus make_plan(Plan** result, int order, int flag) {
    using T = decltype(Plan::normFactor);
    constexpr bool real = id == plan_R_32f || id == plan_R_64f;
    if (!result) return kelStatusNullPtr;
    if (order < 0 || order > 30) return kelStatusBadFftOrder;
    const ModesOfCreation modes;

    auto plan = make_record<Plan>(id);
    if (!plan) return kelStatusNoMemory;
    plan->order = order;
    if (!normalise(*plan, flag)) return kelStatusBadFftFlag;

    plan->complex_order = real && order > 0 ? order - 1 : order;
    const bool direct = plan->complex_order < first_table_order;
    if (too_large<T>(plan->complex_order)) return kelStatusNoMemory;
    plan->workBytes = direct ? 0 : work_bytes<T>(plan->complex_order);
    plan->forward = {kernel<Layout, T>(plan->complex_order), plan->normFwd ? plan->normFactor : T(1)};
    plan->inverse = {kernel<Inverse, T>(plan->complex_order), plan->normInv ? plan->normFactor : T(1)};
    if (!direct) {
        plan->tables = make_tables([&](TableSpace& space) { lay_tables<Layout, Inverse>(*plan, real, space); });
        if (!plan->tables) return kelStatusNoMemory;
    }
    *result = plan.release();
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFFTInitAlloc_C_32fc(KelsFftPlan_32f** plan, int order, int flag, int) { return make_plan<plan_C_32fc, Interleaved<false>, Interleaved<true>>(plan, order, flag); }
KelStatus kelsFFTInitAlloc_C_32f (KelsFftPlan_32f** plan, int order, int flag, int) { return make_plan<plan_C_32f, Split, Split>(plan, order, flag); }
KelStatus kelsFFTInitAlloc_R_32f (KelsFftPlan_32f** plan, int order, int flag, int) { return make_plan<plan_R_32f, Interleaved<false>, Interleaved<true>>(plan, order, flag); }
KelStatus kelsFFTInitAlloc_C_64fc(KelsFftPlan_64f** plan, int order, int flag, int) { return make_plan<plan_C_64fc, Interleaved<false>, Interleaved<true>>(plan, order, flag); }
KelStatus kelsFFTInitAlloc_C_64f (KelsFftPlan_64f** plan, int order, int flag, int) { return make_plan<plan_C_64f, Split, Split>(plan, order, flag); }
KelStatus kelsFFTInitAlloc_R_64f (KelsFftPlan_64f** plan, int order, int flag, int) { return make_plan<plan_R_64f, Interleaved<false>, Interleaved<true>>(plan, order, flag); }

KelStatus kelsFFTFree_C_32fc(KelsFftPlan_32f* plan) { return free_plan<plan_C_32fc>(plan); }
KelStatus kelsFFTFree_C_32f (KelsFftPlan_32f* plan) { return free_plan<plan_C_32f>(plan); }
KelStatus kelsFFTFree_R_32f (KelsFftPlan_32f* plan) { return free_plan<plan_R_32f>(plan); }
KelStatus kelsFFTFree_C_64fc(KelsFftPlan_64f* plan) { return free_plan<plan_C_64fc>(plan); }
KelStatus kelsFFTFree_C_64f (KelsFftPlan_64f* plan) { return free_plan<plan_C_64f>(plan); }
KelStatus kelsFFTFree_R_64f (KelsFftPlan_64f* plan) { return free_plan<plan_R_64f>(plan); }

KelStatus kelsFFTGetBufSize_C_32fc(const KelsFftPlan_32f* plan, int* size) { return buffer_size<plan_C_32fc>(plan, size); }
KelStatus kelsFFTGetBufSize_C_32f (const KelsFftPlan_32f* plan, int* size) { return buffer_size<plan_C_32f>(plan, size); }
KelStatus kelsFFTGetBufSize_R_32f (const KelsFftPlan_32f* plan, int* size) { return buffer_size<plan_R_32f>(plan, size); }
KelStatus kelsFFTGetBufSize_C_64fc(const KelsFftPlan_64f* plan, int* size) { return buffer_size<plan_C_64fc>(plan, size); }
KelStatus kelsFFTGetBufSize_C_64f (const KelsFftPlan_64f* plan, int* size) { return buffer_size<plan_C_64f>(plan, size); }
KelStatus kelsFFTGetBufSize_R_64f (const KelsFftPlan_64f* plan, int* size) { return buffer_size<plan_R_64f>(plan, size); }
}
// clang-format on
